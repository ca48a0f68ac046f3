// ktdatetime.h - the date and time value class, and the clock in milliseconds.
#ifndef KTDATETIME_H
#define KTDATETIME_H

#include "ktapi.h"
#include "ktdate.h"
#include "ktlongcmp.h"
#include "kttime.h"

#include <cstddef>
#include <type_traits>

class KtInt64;
class KtString;

// KtDateTime: a date and a time of day, in no particular time zone.
//
// Range:  any fields; IsDaTime tells the dates and times that exist.
// Null:   date and time both null. Null() is something else: all fields 0, and not null.
// Order:  != is a three-way comparison: the dates as KtDate's != compares them (-1 fields match any), then the times;
//         <, >, <= and >= go by it. == compares all fields. Against a lone date or time a value is compared with what
//         the constructors make of that: the rest comes from the clock.
// Size:   8 bytes; the last is padding and never counts.
// Disk:   docs/formats/dates.md, KtDateTime: 7 bytes: the year in the byte order of the format code, month, day, hour,
//         minute, second. Store and Load move 7 bytes a value under code 8 as well; the other operations take that for
//         the 8 bytes in memory.
// Text:   by a format, see ktdate.h; "%Y-%m-%dT%H:%M:%S" when it is null. The row's: "%a %e.%b %Y %I:%M:%S %p".
// Status: -2171 of the conversions between time zones: the offset is not known. Nothing else fails. Arithmetic on null
//         or invalid values takes the fields as numbers. Text: as ktdate.h says.
// Owner:  a plain value, trivially copyable.
// Threads: pure, but for what reads the clock (ktbs.h).
class KTTM_API KtDateTime {
public:
  KtDate date;
  KtTime time;

  // --- make -----------------------------------------------------------------------------------------------------
  KtDateTime();  // today and now, local
  constexpr KtDateTime(const KtDate& aDate, const KtTime& aTime) : date(aDate), time(aTime) {}
  KtDateTime(const KtDate& aDate);                        // with the local time of day, not midnight
  KtDateTime(const KtTime& aTime);                        // with today's local date
  constexpr KtDateTime& operator=(const KtTime& aTime) {  // the date stays
    time = aTime;
    return *this;
  }

  KtDateTime& Now();     // becomes the local time of day, then today's local date: two readings of the clock
  KtDateTime& NowUTC();  // becomes the universal date and time of one reading

  static const KtDateTime& Null();  // 0000-00-00 00:00:00, one object for the life of the process

  // --- ask ------------------------------------------------------------------------------------------------------
  constexpr int IsDaTime() const { return date.IsDate() && time.IsTime(); }
  constexpr int IsNullValue() const { return date.IsNullValue() && time.IsNullValue(); }

  // --- change -----------------------------------------------------------------------------------------------------
  constexpr int SetNullValue() {  // 0
    date.SetNullValue();
    return time.SetNullValue();
  }
  // Any number of seconds, also negative ones; the date passes through its day number, even for 0 seconds. Of a null
  // value or one with fields out of range it makes some other: ask first.
  constexpr void AddSeconds(long seconds);
  // From and to universal time by the clock's present offset: 0; or -2171, the value unchanged, where that is not known
  // or more than a day (1440 minutes). The date moves by one day at most, seconds stay. Null and invalid values are not
  // recognised: their fields count as numbers, an hour that leaves 8 bits is cut.
  int ToLocalTime();
  int ToUTCTime();

  // --- compare ----------------------------------------------------------------------------------------------------
  constexpr int operator!=(const KtDateTime& other) const {
    const int dates = date != other.date;
    return dates != 0 ? dates : time != other.time;
  }
  constexpr int Compare(const KtDateTime& other) const { return *this != other; }
  constexpr int operator==(const KtDateTime& other) const { return date == other.date && time == other.time; }
  constexpr int operator<(const KtDateTime& other) const { return (*this != other) < 0; }
  constexpr int operator>(const KtDateTime& other) const { return (*this != other) > 0; }
  constexpr int operator<=(const KtDateTime& other) const { return (*this != other) <= 0; }
  constexpr int operator>=(const KtDateTime& other) const { return (*this != other) >= 0; }

  // --- text -------------------------------------------------------------------------------------------------------
  // Appends the value to out; null replaces out by the null print string. Returns out.
  KtString& PrintToKtString(KtString& out, const char* format = nullptr) const;
  // Becomes what the text holds.
  void ScanFromKtString(const KtString& in, const char* format = nullptr);
};

// With a lone date or time on either side. Said for both orders, or d_Date, to which dates and date-times convert as
// well, would compare them without their times.
// clang-format off: one operator a line
#define KT_COMPARE_WITH_PART(op)                                                                             \
  template <class Part>                                                                                      \
    requires(kt::kCountsAsLong<Part>)                                                                        \
  int operator op(const KtDateTime& value, const Part& part) { return value.operator op(KtDateTime(part)); } \
  template <class Part>                                                                                      \
    requires(kt::kCountsAsLong<Part>)                                                                        \
  int operator op(const Part& part, const KtDateTime& value) { return KtDateTime(part).operator op(value); }
KT_COMPARE_WITH_PART(==)
KT_COMPARE_WITH_PART(!=)
KT_COMPARE_WITH_PART(<)
KT_COMPARE_WITH_PART(>)
KT_COMPARE_WITH_PART(<=)
KT_COMPARE_WITH_PART(>=)
#undef KT_COMPARE_WITH_PART
// clang-format on

static_assert(sizeof(KtDateTime) == 8 && alignof(KtDateTime) == 2 && std::is_trivially_copyable_v<KtDateTime>);
static_assert(offsetof(KtDateTime, date) == 0 && offsetof(KtDateTime, time) == 4);

constexpr void KtDateTime::AddSeconds(long seconds) {
  long days = seconds / 86400;
  const long rest = seconds % 86400;
  KtTime moved = time;
  if (rest < 0) {
    moved -= -rest;
    if (moved > time) --days;
  } else {
    moved += rest;
    if (moved < time) ++days;
  }
  date += days;
  time = moved;
}

// result becomes the milliseconds since 1970-01-01 00:00:00 UTC. Always 0.
KTTM_API int GetSystemTimeInMSSinceTheEpoch(KtInt64& result);

#endif
