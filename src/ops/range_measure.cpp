#include "ops/range_measure.h"

#include "kttypbnd.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kt {
namespace {

double finite(double number) { return std::isfinite(number) ? number : std::numeric_limits<double>::max(); }

// What a term adds: nothing when it is not above 0, NaN included.
double positive(double term) { return term > 0 ? term : 0; }

// The keys above `key`; all of them when it lies below the range. A term as it comes: NaN, infinite or below 0.
double above(double key, const KeyRange<double>& range, double unit) {
  return range.low <= key ? range.high - key : range.high - range.low + unit;
}

// The keys below `key`; all of them when it lies above the range.
double below(double key, const KeyRange<double>& range, double unit) {
  return range.high >= key ? key - range.low : range.high + unit - range.low;
}

// A key that is NaN stays one, and selects all: it equals every number.
double equalTo(const KeyRange<double>& keys, const KeyRange<double>& range, double unit) {
  return positive(finite(std::min(keys.high, range.high) - std::max(keys.low, range.low)) + unit);
}

double equalMeasure(const NullableNumber& key, const KeyRange<NullableNumber>& range) {
  if (key.isNull) return range.low.isNull ? kNullGuess : 0;
  if (range.high.isNull) return 0;
  if (range.low.isNull) return kKeyAmongNullsGuess;
  return equalTo({key.value, key.value}, {range.low.value, range.high.value}, kWholeUnit);
}

}  // namespace

double rangeMeasure(unsigned short flags, const KeyRange<double>& keys, const KeyRange<double>& range, double unit) {
  double measure = 0;
  if ((flags & KtBOUND_GREATER) != 0) measure += positive(finite(above(keys.high, range, unit)));
  if ((flags & KtBOUND_LESS) != 0) measure += positive(finite(below(keys.low, range, unit)));
  if ((flags & KtBOUND_EQUAL) != 0) measure += equalTo(keys, range, unit);
  return measure;
}

double rangeMeasure(unsigned short flags, const NullableNumber& key, const KeyRange<NullableNumber>& range) {
  const KeyRange<double> numbers{range.low.value, range.high.value};
  double measure = 0;
  if ((flags & KtBOUND_GREATER) != 0 && !range.high.isNull) {
    measure += key.isNull || range.low.isNull ? kSideGuess : positive(above(key.value, numbers, kWholeUnit));
  }
  if ((flags & KtBOUND_LESS) != 0 && !key.isNull && !range.high.isNull) {
    measure += range.low.isNull ? kSideGuess : positive(below(key.value, numbers, kWholeUnit));
  }
  if ((flags & KtBOUND_EQUAL) != 0) measure += equalMeasure(key, range);
  return measure;
}

float shareOf(double measure, double width, double least) {
  const double whole = finite(width);
  const double share = finite(measure) / (whole > 0 ? whole : 1);
  if (share == 0) return 0;
  return static_cast<float>(std::clamp(share, least, 1.0));
}

}  // namespace kt
