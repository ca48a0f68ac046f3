// calendar.h - an instant as date and time of day, for any 64-bit number of milliseconds.
#ifndef KT_CALENDAR_H
#define KT_CALENDAR_H

#include "ktbs.h"

namespace kt {

// Days from 1970-01-01 to the given day of the Gregorian calendar, which runs backwards without a gap. month 1 to 12.
long long daysFromCivil(long long year, int month, int day);

// Seconds since 1970-01-01 00:00:00; negative ones lie before. A year outside 16 bits is cut.
KtDateRecord dateOfSeconds(long long seconds);
KtTimeRecord timeOfSeconds(long long seconds);

// The whole seconds that have passed at `milliseconds`, rounded towards the past.
long long secondsOfMilliseconds(long long milliseconds);

}  // namespace kt

#endif
