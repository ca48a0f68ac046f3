#include "query.h"

#include <algorithm>

namespace atlas {

namespace {

class Run {
public:
  Run(const ClassSchema& cls, const BoundPredicate& predicate, const std::function<bool(const Record&)>& visit)
      : judge_(cls), predicate_(predicate), visit_(visit) {}

  Work work;

  // False when the visitor has seen enough.
  bool take(const Record& record) {
    ++work.objects;
    if (!judge_.matches(predicate_, record)) return true;
    ++work.matches;
    return visit_(record);
  }

private:
  Judge judge_;
  const BoundPredicate& predicate_;
  const std::function<bool(const Record&)>& visit_;
};

}  // namespace

Work run(const Database& database, const ClassSchema& cls, const Plan& plan, const BoundPredicate& predicate,
         const std::function<bool(const Record&)>& visit) {
  Run run(cls, predicate, visit);
  if (const Candidate* chosen = plan.chosen()) {
    IndexScan scan = chosen->index->scan(*chosen->bounds);
    while (scan.next()) {
      ++run.work.keys;
      if (!run.take(database.get(scan.id()))) break;
    }
  } else {
    ObjectScan scan = database.objects(&cls);
    while (scan.next() && run.take(scan.record())) {}
  }
  return run.work;
}

std::vector<double> actualSelectivity(const Database& database, const ClassSchema& cls,
                                      const std::vector<Candidate>& candidates) {
  Judge judge(cls);
  std::vector<unsigned long long> matches(candidates.size());
  unsigned long long objects = 0;
  ObjectScan scan = database.objects(&cls);
  for (; scan.next(); ++objects) {
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      const auto holds = [&](const BoundComparison* comparison) {
        return judge.answerOf(*comparison, scan.record()) == Answer::kTrue;
      };
      const auto& comparisons = candidates[i].comparisons;
      matches[i] += std::all_of(comparisons.begin(), comparisons.end(), holds) ? 1 : 0;
    }
  }
  std::vector<double> parts;
  parts.reserve(matches.size());
  for (const unsigned long long count : matches) {
    parts.push_back(objects == 0 ? 0 : static_cast<double>(count) / static_cast<double>(objects));
  }
  return parts;
}

}  // namespace atlas
