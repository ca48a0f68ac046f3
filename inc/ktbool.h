// ktbool.h - the boolean value class with a null value.
#ifndef KTBOOL_H
#define KTBOOL_H

#include "ktapi.h"

#include <type_traits>

class KtString;

// KtBoolean: false, true or null, in one byte.
//
// Range:  0 false, 1 true, 255 null. Other bytes come from copies of foreign bytes only; they count as true.
// Null:   the byte 255; less than every other value and equal to null.
// Order:  false before true. Over other bytes it is deliberately lopsided: a < b holds when a is 0 and b is 1 to 127,
//         a > b when a is the greater signed byte; so 5 > 2, but not 2 < 5. There is no <= and no >=.
// Size:   1 byte.
// Disk:   docs/formats/numbers.md, KtBoolean: the byte, whatever the format code.
// Text:   "TRUE" for the byte 1, the null print string for null, else "FALSE". Formats are ignored.
// Status: scanning cannot fail: unknown text is false.
// Owner:  a plain value, trivially copyable.
// Threads: pure.
class KTTM_API KtBoolean {
public:
  unsigned char value;

  constexpr KtBoolean() : value(0) {}  // false
  // True for all numbers but 0, 255 included. A double goes through long: 0.5 is false.
  constexpr KtBoolean(long number) : value(number != 0) {}
  template <class Number>
    requires std::is_integral_v<Number>
  constexpr KtBoolean(Number number) : value(number != 0) {}

  constexpr int IsNullValue() const { return value == 255; }
  constexpr int SetNullValue() {
    value = 255;
    return 0;
  }

  // Replaces out. Returns it.
  KtString& PrintToKtString(KtString& out, const char* format = nullptr) const;
  // Null when the text begins with the null print string (every text does when that is empty); true for exactly T, t,
  // TRUE, true and 1; else false.
  void ScanFromKtString(const KtString& in, const char* format = nullptr);
};

// 1 or 0. Free functions, so that a number may stand on either side: it counts as false or true, never as null.
constexpr int operator==(const KtBoolean& a, const KtBoolean& b) {
  if (a.IsNullValue() || b.IsNullValue()) return a.IsNullValue() && b.IsNullValue();
  return (a.value != 0) == (b.value != 0);
}
constexpr int operator<(const KtBoolean& a, const KtBoolean& b) {
  if (a.IsNullValue() || b.IsNullValue()) return !b.IsNullValue();
  return a.value == 0 && b.value >= 1 && b.value <= 127;
}
constexpr int operator>(const KtBoolean& a, const KtBoolean& b) {
  if (a.IsNullValue() || b.IsNullValue()) return !a.IsNullValue();
  return static_cast<signed char>(a.value) > static_cast<signed char>(b.value);
}
constexpr int operator!=(const KtBoolean& a, const KtBoolean& b) { return !(a == b); }

static_assert(sizeof(KtBoolean) == 1);

#endif
