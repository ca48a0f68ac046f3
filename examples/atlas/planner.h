// planner.h - chooses how to find the objects that match a predicate: by the index whose part between bounds is estimated
// smallest, or by all objects of the class.
//
// Every part of the predicate that must hold by itself is offered to the index of its field, if there is one: the type
// manager answers how large a part of the index it selects, and records the bounds. Of several parts on one field the
// most selective goes first, because the first bound that is set stays; each further one is asked for its share of what
// the ones before it have left, and the shares are multiplied. What "or" and "not" hold does not narrow anything.
#ifndef EXAMPLES_ATLAS_PLANNER_H
#define EXAMPLES_ATLAS_PLANNER_H

#include "binding.h"

#include <utility>
#include <vector>

namespace atlas {

// Bounds of a scan, freed in the end.
class Bounds {
public:
  Bounds() = default;
  Bounds(const Bounds&) = delete;
  Bounds& operator=(const Bounds&) = delete;
  Bounds(Bounds&& other) noexcept : bounds_(other.bounds_) { other.bounds_ = {}; }
  Bounds& operator=(Bounds&& other) noexcept {
    std::swap(bounds_, other.bounds_);
    return *this;
  }
  ~Bounds() { KtFreeIdxBounds(&bounds_); }

  KtIdxBounds* get() { return &bounds_; }
  const KtIdxBounds& operator*() const { return bounds_; }

private:
  KtIdxBounds bounds_;
};

// An index that could serve.
struct Candidate {
  const Index* index = nullptr;
  std::vector<const BoundComparison*> comparisons;  // that it was asked about
  double estimate = 1;                              // the part of the index that they select, 0 to 1
  Bounds bounds;
};

struct Plan {
  std::vector<Candidate> candidates;  // the smallest estimate first
  bool usesIndex = false;             // candidates[0], or else a scan of all objects

  const Candidate* chosen() const { return usesIndex ? &candidates[0] : nullptr; }
};

// From this estimate on an index saves less than its detours to the objects cost.
constexpr double kNotWorthwhile = 0.9;

// The plan points into the predicate and the database.
Plan plan(const Database& database, const ClassSchema& cls, const BoundPredicate& predicate);

// What an index says about comparisons of its field.
Candidate evaluate(const Index& index, const std::vector<const BoundComparison*>& comparisons);

}  // namespace atlas

#endif
