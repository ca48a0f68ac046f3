// datetime_text.h - printing and scanning dates and times by a format (the directives: ktdate.h), for all seven types.
#ifndef KT_DATETIME_TEXT_H
#define KT_DATETIME_TEXT_H

#include "ktdatetime.h"
#include "ktstring.h"

namespace kt {

// "Monday" to "Sunday", or "no day".
const char* weekdayName(const KtDate& date);

// The part of a value that its type lacks: directives of that part print the local clock, which is read for them alone.
enum class FromClock { kDate, kTime };

// Of date-times, where none is given.
constexpr char kDateTimeFormat[] = "%Y-%m-%dT%H:%M:%S";

// Appends the value to out, or replaces out by the null print string when both parts of the value are null. Returns out.
// The value is that of the 7 bytes at value, which need no alignment.
KtString& printDateTime(KtString& out, const void* value, const char* format);
inline KtString& printDateTime(KtString& out, const KtDateTime& value, const char* format) {
  return printDateTime(out, static_cast<const void*>(&value), format);
}
KtString& printDateTime(KtString& out, const KtDateTime& value, const char* format, FromClock fromClock);

// The value becomes what the text holds: null when it begins with the null print string; a valid value, 0000-01-01
// 00:00:00 or all zeros else. It is that of the 8 bytes at value, which need no alignment and lie in no text. False, and
// the value is as it was, when memory ran out.
bool scanDateTime(const KtString& in, const char* format, void* value);

// The same from day 0 instead of day 1, and without a check: a period of time, its fields as they were read.
bool scanPeriod(const KtString& in, const char* format, KtDateTime& value);

}  // namespace kt

#endif
