#include "planner.h"

#include <algorithm>

namespace atlas {

namespace {

// One question to an index: the keys that stand so to this value. Wildcards act in a stored value, never in a key.
struct Question {
  unsigned short flags;
  Buffer value;
  unsigned char form = kStoredKey;
  double estimate = 1;
};

constexpr unsigned short kAtMost = KtBOUND_LESS | KtBOUND_EQUAL;
constexpr unsigned short kAtLeast = KtBOUND_GREATER | KtBOUND_EQUAL;

unsigned short flagsOf(Operator op) {
  switch (op) {
    case Operator::kNotEqual: return KtBOUND_LESS | KtBOUND_GREATER;
    case Operator::kLess: return KtBOUND_LESS;
    case Operator::kLessEqual: return kAtMost;
    case Operator::kGreater: return KtBOUND_GREATER;
    case Operator::kGreaterEqual:
    case Operator::kBetween: return kAtLeast;
    case Operator::kEqual:
    case Operator::kLike:
    case Operator::kIsNull: break;
  }
  return KtBOUND_EQUAL;
}

void addQuestions(std::vector<Question>& questions, char type, const BoundComparison& comparison) {
  const std::vector<Buffer>& values = comparison.values;
  const unsigned short flags = flagsOf(comparison.op);
  if (comparison.op == Operator::kLike)
    questions.push_back({flags, values[0], kStored});
  else
    questions.push_back({flags, indexKey(type, values[0])});
  if (comparison.op == Operator::kBetween) questions.push_back({kAtMost, indexKey(type, values[1])});
}

// The part of the keys from known.first to known.last that a question selects.
double ask(const Index& index, const IndexRange& known, const Question& question, KtIdxBounds* result) {
  KtIdxBounds range = known.bounds();
  unsigned short flags = question.flags;
  const float part = manager().EvalAndBound(index.field().type, &range, flags, Bytes(question.value).address(),
                                            question.form, 1, result, nullptr);
  return std::clamp(static_cast<double>(part), 0.0, 1.0);
}

// What is left of a known range between bounds.
void narrow(const Index& index, IndexRange& known, const KtIdxBounds& bounds) {
  const Bytes low(bounds.lowKey, bounds.lowKeyLength), high(bounds.highKey, bounds.highKeyLength);
  if (low.data != nullptr && index.compareKeys(low, known.first) > 0) known.first.assign(low.data, low.data + low.size);
  if (high.data != nullptr && index.compareKeys(high, known.last) < 0) {
    known.last.assign(high.data, high.data + high.size);
  }
}

// The comparisons that must hold by themselves.
void collect(const BoundPredicate& predicate, std::vector<const BoundComparison*>& found) {
  if (predicate.kind == Predicate::Kind::kComparison) found.push_back(&predicate.comparison);
  if (predicate.kind != Predicate::Kind::kAnd) return;
  for (const BoundPredicate& part : predicate.parts) collect(part, found);
}

bool isUsable(const Candidate& candidate) {
  const KtIdxBounds& bounds = *candidate.bounds;
  return candidate.estimate < kNotWorthwhile && (bounds.lowKey != nullptr || bounds.highKey != nullptr);
}

bool asksForNull(const std::vector<const BoundComparison*>& comparisons) {
  return std::any_of(comparisons.begin(), comparisons.end(),
                     [](const BoundComparison* comparison) { return comparison->op == Operator::kIsNull; });
}

// Nulls come first, and would make a range that nothing can be measured in. No comparison but "is null" selects them, so
// the others are asked about the keys behind. Returns the part of the index that these are.
double leaveNullsOut(const Index& index, IndexRange& known) {
  const char type = index.field().type;
  if (manager().SupportsNullValue(type) == 0) return 1;
  Value null(type);
  null.clear();
  const Buffer nullKey = indexKey(type, null.stored());
  unsigned long nulls = 0;
  IndexScan scan = index.scan();
  bool isFound = scan.next();
  for (; isFound && index.compareKeys(scan.key(), nullKey) == 0; isFound = scan.next()) ++nulls;
  if (!isFound) return 0;
  known.first.assign(scan.key().data, scan.key().data + scan.key().size);
  return 1 - static_cast<double>(nulls) / static_cast<double>(index.entries());
}

}  // namespace

Candidate evaluate(const Index& index, const std::vector<const BoundComparison*>& comparisons) {
  Candidate candidate;
  candidate.index = &index;
  candidate.comparisons = comparisons;
  IndexRange known = index.range();
  if (known.empty()) {
    candidate.estimate = 0;
    return candidate;
  }
  if (!asksForNull(comparisons)) candidate.estimate = leaveNullsOut(index, known);
  std::vector<Question> questions;
  for (const BoundComparison* comparison : comparisons) addQuestions(questions, index.field().type, *comparison);
  for (Question& question : questions) question.estimate = ask(index, known, question, nullptr);
  std::stable_sort(questions.begin(), questions.end(),
                   [](const Question& a, const Question& b) { return a.estimate < b.estimate; });
  for (const Question& question : questions) {
    const bool isLeft = index.compareKeys(known.first, known.last) <= 0;
    const double share = ask(index, known, question, candidate.bounds.get());
    candidate.estimate *= isLeft ? share : 0;
    narrow(index, known, *candidate.bounds);
  }
  return candidate;
}

Plan plan(const Database& database, const ClassSchema& cls, const BoundPredicate& predicate) {
  std::vector<const BoundComparison*> all;
  collect(predicate, all);
  Plan result;
  for (const Field& field : cls.fields) {
    const Index* index = database.index(cls, field);
    std::vector<const BoundComparison*> own;
    for (const BoundComparison* comparison : all) {
      const bool hasKey = !comparison->values.empty();  // not of "is null" where nothing is null
      if (comparison->field == cls.placeOf(field) && hasKey) own.push_back(comparison);
    }
    if (index != nullptr && !own.empty()) result.candidates.push_back(evaluate(*index, own));
  }
  std::stable_sort(result.candidates.begin(), result.candidates.end(), [](const Candidate& a, const Candidate& b) {
    return isUsable(a) != isUsable(b) ? isUsable(a) : a.estimate < b.estimate;
  });
  result.usesIndex = !result.candidates.empty() && isUsable(result.candidates[0]);
  return result;
}

}  // namespace atlas
