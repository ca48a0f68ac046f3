// str_levels.h - what a three-level comparison remembers on its way through two texts.
#ifndef KT_STR_LEVELS_H
#define KT_STR_LEVELS_H

#include "str_compare.h"

namespace kt {

// Of the case level; lower case comes first there, hence the reversed sign.
constexpr std::int32_t secondaryDifference(Weight k1, Weight k2) {
  return keyDifference(k2 & ~kDiacriticMask, k1 & ~kDiacriticMask);
}

// Of the diacritics.
constexpr std::int32_t tertiaryDifference(Weight k1, Weight k2) {
  return keyDifference(k1 & ~kCaseMask, k2 & ~kCaseMask);
}

// Differences that decide when there is no primary one: the last of the diacritics, else the first of case, else the
// last between ignorable orders.
struct LevelDifferences {
  std::int32_t secondary = 0;
  std::int32_t tertiary = 0;
  std::int32_t ignorable = 0;

  // Two keys without primary difference.
  void note(Weight k1, Weight k2) {
    if (secondary == 0) secondary = secondaryDifference(k1, k2);
    if (const std::int32_t difference = tertiaryDifference(k1, k2)) tertiary = difference;
  }
  void noteIgnorable(std::int32_t difference) {
    if (difference != 0) ignorable = difference;
  }
  std::int32_t ofLetters(unsigned cmpOp) const {
    if (tertiary != 0 && (cmpOp & kIgnoreDiacritics) == 0) return tertiary;
    return (cmpOp & kIgnoreCase) == 0 ? secondary : 0;
  }
  long result(unsigned cmpOp) const {
    const std::int32_t letters = ofLetters(cmpOp);
    return letters != 0 ? letters : ignorable;
  }
};

constexpr bool isDropped(int order, unsigned cmpOp) {
  return (cmpOp & (order < static_cast<int>(kFirstTextOrder) ? kDropSpaces : kDropSymbols)) != 0;
}

// Takes orders until `weight` is significant or the end. Returns the last ignorable order that the operator keeps, or 0.
template <class Cursor>
int skipIgnorables(Cursor& cursor, Weight& weight, unsigned cmpOp) {
  int kept = 0;
  while (weight != 0 && weight < cursor.significant()) {
    const int order = ignorableOrder(weight);
    if (!isDropped(order, cmpOp)) kept = order;
    weight = cursor.next();
  }
  return kept;
}

}  // namespace kt

#endif
