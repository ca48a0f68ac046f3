// datetime_names.h - what printing and scanning of dates and times share: names, and where the fields lie.
#ifndef KT_DATETIME_NAMES_H
#define KT_DATETIME_NAMES_H

#include "ktdatetime.h"

#include <cstddef>

namespace kt {

struct Name {
  const char* text;
  unsigned length;
};

template <unsigned kSize>
constexpr Name named(const char (&text)[kSize]) {
  return {text, kSize - 1};
}

// The spelling of the first two is part of every stored text: it stays.
inline constexpr Name kMonths[] = {named("Januar"),    named("Februar"), named("March"),    named("April"),
                                   named("May"),       named("June"),    named("July"),     named("August"),
                                   named("September"), named("October"), named("November"), named("December")};
inline constexpr Name kWeekdays[] = {named("Monday"), named("Tuesday"),  named("Wednesday"), named("Thursday"),
                                     named("Friday"), named("Saturday"), named("Sunday")};
constexpr unsigned kShortName = 3;

// Where in a value the two-digit field of a directive lies, by the directive's letter; 0: it has none.
constexpr unsigned char kTimeAt = offsetof(KtDateTime, time);
struct PairFields {
  unsigned char of[256];
  constexpr PairFields() : of() {
    at('d') = at('e') = offsetof(KtDate, day);
    at('m') = offsetof(KtDate, month);
    at('H') = kTimeAt + offsetof(KtTime, hour);
    at('M') = kTimeAt + offsetof(KtTime, minute);
    at('S') = kTimeAt + offsetof(KtTime, second);
  }

private:
  constexpr unsigned char& at(char letter) { return of[static_cast<unsigned char>(letter)]; }
};
inline constexpr PairFields kPairFields;

}  // namespace kt

#endif
