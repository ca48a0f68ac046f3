// query.h - runs a plan: the objects that match, and what finding them took.
#ifndef EXAMPLES_ATLAS_QUERY_H
#define EXAMPLES_ATLAS_QUERY_H

#include "planner.h"

#include <functional>

namespace atlas {

struct Work {
  unsigned long long keys = 0;     // that the index scan walked
  unsigned long long objects = 0;  // that were fetched and judged
  unsigned long long matches = 0;
};

// Calls visit with every object that matches, in the order of the chosen index or else of the objects' ids, until visit
// answers false or there are no more.
Work run(const Database& database, const ClassSchema& cls, const Plan& plan, const BoundPredicate& predicate,
         const std::function<bool(const Record&)>& visit);

// The part of all objects of the class for which the comparisons of each candidate hold.
std::vector<double> actualSelectivity(const Database& database, const ClassSchema& cls,
                                      const std::vector<Candidate>& candidates);

}  // namespace atlas

#endif
