// range_measure.h - how much of a known range of keys a comparison selects, in numbers.
//
// A key is a number here, equal to itself, and keys are spread evenly over the range, `unit` apart. Terms that no number
// can tell (NaN, infinite) count as the largest finite double, terms below 0 as nothing. Where keys may be null, only
// the term of equality is replaced so: nothing is greater than infinity, nor less than minus infinity. All functions are
// pure.
#ifndef KT_OPS_RANGE_MEASURE_H
#define KT_OPS_RANGE_MEASURE_H

namespace kt {

// A key that may be null; its value is 0 then.
struct NullableNumber {
  double value;
  bool isNull;
};

template <class Number>
struct KeyRange {
  Number low;
  Number high;
};

// Whole numbers, and what is measured as if it were, are 1 apart.
constexpr double kWholeUnit = 1;

// Guesses for sides of a comparison that nulls leave without a measure. They are shares of one unit, not of the range:
// nulls lie outside every measure, so each counts for less than a single key that can be measured.
constexpr double kSideGuess = 0.5;           // less or greater: it may or may not select
constexpr double kNullGuess = 0.001;         // a null among keys that begin with nulls: nulls are rare
constexpr double kKeyAmongNullsGuess = 0.1;  // a value where only the upper end of the range is one

// The part of the range, in units, that the flags (KtBOUND_...) select around a span of keys. 0 or more, possibly
// infinite.
double rangeMeasure(unsigned short flags, const KeyRange<double>& keys, const KeyRange<double>& range, double unit);

// The same around one key, in whole units.
inline double rangeMeasure(unsigned short flags, double key, const KeyRange<double>& range) {
  return rangeMeasure(flags, {key, key}, range, kWholeUnit);
}

// The same where keys may be null, in whole units.
double rangeMeasure(unsigned short flags, const NullableNumber& key, const KeyRange<NullableNumber>& range);

// The measure of the whole range.
inline double rangeWidth(const KeyRange<double>& range, double unit = kWholeUnit) {
  return range.high - range.low + unit;
}
inline double rangeWidth(const KeyRange<NullableNumber>& range) {
  return range.high.value - range.low.value + kWholeUnit;
}

// measure / width as a share of 0 to 1; a share above 0 is at least `least`. A width of 0 or less counts as 1, one that is
// NaN or infinite as the largest finite double.
float shareOf(double measure, double width, double least = 0);

}  // namespace kt

#endif
