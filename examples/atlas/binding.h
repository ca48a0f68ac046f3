// binding.h - a predicate bound to a class: fields found, values read by their type ids, and the answer for an object.
//
// Answers are true, false or unknown. A comparison with a field that is null is unknown, whatever the operator; only
// `is null` sees nulls. `not` leaves unknown as it is, so that `not a < 1` and `a >= 1` are the same; `and` and `or` are
// unknown where the other side does not decide. An object matches when the answer is true.
#ifndef EXAMPLES_ATLAS_BINDING_H
#define EXAMPLES_ATLAS_BINDING_H

#include "database.h"
#include "predicate.h"

#include <string>
#include <vector>

namespace atlas {

enum class Answer { kFalse, kUnknown, kTrue };

// A comparison of a field with values in stored form.
struct BoundComparison {
  std::size_t field = 0;
  Operator op = Operator::kEqual;
  std::vector<Buffer> values;  // as Comparison::values; of `is null` the null value, unless the type has none
  Order order;                 // of the field: that of its index where it has one
};

struct BoundPredicate {
  Predicate::Kind kind = Predicate::Kind::kComparison;
  BoundComparison comparison;
  std::vector<BoundPredicate> parts;
};

// The class a predicate is about: the one that is named, or, with an empty name, the only one that has all its fields.
// Throws Mistake when there is no such class, or several.
const ClassSchema& classOf(const Database& database, const std::string& text, const Predicate& predicate,
                           const std::string& className);

// Reads the values of a predicate, whose text is for messages. The value of a field that references another class is
// the text of the field by which it does. Throws Mistake for a field that the class lacks, a value that its type cannot
// read or that is null, a pattern where the type has none, and an object that is not there.
BoundPredicate bindPredicate(const Database& database, const ClassSchema& cls, const std::string& text,
                             const Predicate& predicate);

// Whether `like` differs from "=": the type reads wildcards in the second of two compared values.
bool hasPatterns(char type);

// The order in which values of a field are compared.
Order orderOf(const Database& database, const ClassSchema& cls, const Field& field);

// The answer of one comparison for a stored value, given its type and whether it is null.
Answer answer(const BoundComparison& comparison, char type, Bytes stored, bool isNull);

// Answers for objects of one class; keeps a value of each field to tell nulls by.
class Judge {
public:
  explicit Judge(const ClassSchema& cls);

  bool matches(const BoundPredicate& predicate, const Record& record) {
    return answerOf(predicate, record) == Answer::kTrue;
  }
  Answer answerOf(const BoundPredicate& predicate, const Record& record);
  Answer answerOf(const BoundComparison& comparison, const Record& record);

private:
  std::vector<Value> values_;
};

}  // namespace atlas

#endif
