// explain.h - plans and bounds in words.
#ifndef EXAMPLES_ATLAS_EXPLAIN_H
#define EXAMPLES_ATLAS_EXPLAIN_H

#include "query.h"

#include <string>

namespace atlas {

// A field of an object in UTF-8; of a reference the field of the other object by which texts name it.
std::string fieldText(const Database& database, const Record& record, std::size_t field);
std::string storedText(const Database& database, const Field& field, Bytes stored);

// A bound key in UTF-8. The key of a string holds the orders of its characters: each is shown as a character that has
// its order, and "..." where the key was cut.
std::string boundText(const Database& database, const Index& index, Bytes key);

// The candidates with their estimates and bounds, the choice, and the work that a complete run of the plan took.
std::string explanation(const Database& database, const ClassSchema& cls, const std::string& predicate,
                        const Plan& plan, const Work& work);

}  // namespace atlas

#endif
