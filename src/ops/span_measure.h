// span_measure.h - how much of an index a comparison with a span of keys selects.
#ifndef KT_OPS_SPAN_MEASURE_H
#define KT_OPS_SPAN_MEASURE_H

#include "kttypbnd.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kt {

// A term of the measure: nothing below 0, and no infinity.
inline double measureTerm(double term) {
  if (!std::isfinite(term)) return std::numeric_limits<double>::max();
  return term > 0 ? term : 0;
}

// The part of [LO, HI] that the flags select around the key interval [low, high], in units of `unit`.
inline double spanMeasure(unsigned flags, double low, double high, double LO, double HI, double unit) {
  double measure = 0;
  if ((flags & KtBOUND_GREATER) != 0) measure += measureTerm(LO <= high ? HI - high : HI - LO + unit);
  if ((flags & KtBOUND_LESS) != 0) measure += measureTerm(HI >= low ? low - LO : HI + unit - LO);
  if ((flags & KtBOUND_EQUAL) != 0) {
    const double width = std::min(high, HI) - std::max(low, LO);
    measure += measureTerm((std::isfinite(width) ? width : std::numeric_limits<double>::max()) + unit);
  }
  return measure;
}

}  // namespace kt

#endif
