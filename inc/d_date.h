// d_date.h - the calendar date of the ODMG interface.
#ifndef D_DATE_H
#define D_DATE_H

#include "d_interval.h"
#include "ktapi.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

class KtDate;
class KtDateTime;
class d_Timestamp;

// d_Date: a day of the historical calendar: Julian up to 1582-10-04, Gregorian from 1582-10-15 on.
//
// Range:  any fields; is_valid tells the days that exist. Absolute dates count days, 2000-01-01 is 2,451,544. They follow
//         the calendar from 0000-03-01 (dates of absolute dates from -4716-03-01) on; before, the rules give what they
//         give.
// Null:   none; the null print string scans as year -32768, month -128, day -128.
// Order:  != gives the days between two dates: negative, 0, positive; the other relational operators 1 or 0, by it. The
//         disk form is compared field by field, its years as unsigned numbers, see d_DateCompare.
// Size:   4 bytes.
// Disk:   docs/formats/dates.md, ODMG types: 4 bytes: the year in the byte order of the format code, month, day.
// Text:   by a format, see ktdate.h, the time being midnight; %a and %A print the weekday of the Gregorian calendar. The
//         row's format is "%a %b %e".
// Status: nothing here fails. Moving a date of any fields makes a date that exists.
// Owner:  a plain value, trivially copyable.
// Threads: pure, but for what reads the clock.
class KTTM_API d_Date {
public:
  // The names are those of KtDaysOfTheWeek as well, the numbers are not: outside the class say d_Date::Sunday.
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wshadow"
#endif
  enum Weekday : int { Sunday, Monday, Tuesday, Wednesday, Thursday, Friday, Saturday };
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

  std::int16_t year;
  std::int8_t month;  // 1 to 12
  std::int8_t day;    // 1 to 31

  // --- make -----------------------------------------------------------------------------------------------------
  d_Date();  // today's local date
  // Month and day are cut to 8 bits.
  constexpr d_Date(short aYear, unsigned short aMonth, unsigned short aDay)
      : year(aYear), month(static_cast<std::int8_t>(aMonth)), day(static_cast<std::int8_t>(aDay)) {}
  constexpr d_Date(short aYear, unsigned short dayOfYear) : d_Date(aYear, 1, 1) {  // 1 is 1 January
    setAbsDate(getAbsDate() + dayOfYear - 1);
  }
  d_Date(const d_Timestamp& timestamp);
  d_Date(const KtDate& date);
  d_Date(const KtDateTime& dateTime);
  d_Date& operator=(const d_Timestamp& timestamp);
  d_Date& operator=(const KtDate& date);
  d_Date& operator=(const KtDateTime& dateTime);

  static d_Date current();  // today's local date

  // --- ask ------------------------------------------------------------------------------------------------------
  constexpr long getAbsDate() const;
  constexpr unsigned short day_of_year() const {
    return static_cast<unsigned short>(getAbsDate() - d_Date(year, 1, 1).getAbsDate() + 1);
  }
  // Negative, and none of the names, for absolute dates below -2.
  constexpr Weekday day_of_week() const { return static_cast<Weekday>((getAbsDate() + 2) % 7); }
  constexpr int days_in_month() const { return days_in_month(year, month); }
  constexpr int is_leap_year() const { return is_leap_year(year); }
  constexpr int is_valid() const { return is_valid_date(year, month, day); }

  // Every fourth year before 1600, then by the Gregorian rule.
  static constexpr int is_leap_year(int aYear) {
    return aYear % 4 == 0 && (aYear % 100 != 0 || aYear % 400 == 0 || aYear < 1600);
  }
  static constexpr int days_in_month(int aYear, int aMonth) {  // 0 for months outside 1 to 12
    if (aMonth == 2) return is_leap_year(aYear) ? 29 : 28;
    if (aMonth < 1 || aMonth > 12) return 0;
    return aMonth == 4 || aMonth == 6 || aMonth == 9 || aMonth == 11 ? 30 : 31;
  }
  // 0 for 1582-10-05 to 1582-10-14 as well: the calendar left them out.
  static constexpr int is_valid_date(int aYear, int aMonth, int aDay) {
    if (aYear == 1582 && aMonth == 10 && aDay > 4 && aDay < 15) return 0;
    return aDay >= 1 && aDay <= days_in_month(aYear, aMonth);
  }

  // --- change -----------------------------------------------------------------------------------------------------
  constexpr d_Date& setAbsDate(long absDate);  // of the number the low 32 bits
  // The day of that name, 1 to 7 days ahead or back; some other day where day_of_week is none or weekday not 0 to 6.
  constexpr d_Date& next(Weekday weekday);
  constexpr d_Date& previous(Weekday weekday);
  constexpr d_Date operator++(int) { return Step(1); }
  constexpr d_Date operator--(int) { return Step(-1); }
  // By whole days; the rest of the interval is dropped.
  constexpr d_Date& operator+=(const d_Interval& interval) { return Move(interval.day()); }
  constexpr d_Date& operator-=(const d_Interval& interval) { return Move(-static_cast<long long>(interval.day())); }

private:
  constexpr d_Date& Move(long long days) { return setAbsDate(static_cast<long>(getAbsDate() + days)); }
  constexpr d_Date Step(int days) {
    const d_Date old = *this;
    Move(days);
    return old;
  }
};

static_assert(sizeof(d_Date) == 4 && alignof(d_Date) == 2 && std::is_trivially_copyable_v<d_Date>);
static_assert(offsetof(d_Date, year) == 0 && offsetof(d_Date, month) == 2 && offsetof(d_Date, day) == 3);

constexpr d_Date operator+(d_Date date, const d_Interval& interval) { return date += interval; }
constexpr d_Date operator+(const d_Interval& interval, d_Date date) { return date += interval; }
constexpr d_Date operator-(d_Date date, const d_Interval& interval) { return date -= interval; }

constexpr int operator!=(const d_Date& a, const d_Date& b) { return static_cast<int>(a.getAbsDate() - b.getAbsDate()); }
constexpr int operator==(const d_Date& a, const d_Date& b) { return (a != b) == 0; }
constexpr int operator<(const d_Date& a, const d_Date& b) { return (a != b) < 0; }
constexpr int operator>(const d_Date& a, const d_Date& b) { return (a != b) > 0; }
constexpr int operator<=(const d_Date& a, const d_Date& b) { return (a != b) <= 0; }
constexpr int operator>=(const d_Date& a, const d_Date& b) { return (a != b) >= 0; }

namespace kt {

// Whether two periods have an instant in common, bounds included; each may be given with its end first.
template <class Instant>
constexpr int periodsOverlap(const Instant& start1, const Instant& end1, const Instant& start2, const Instant& end2) {
  const Instant& low1 = end1 < start1 ? end1 : start1;
  const Instant& high1 = end1 < start1 ? start1 : end1;
  const Instant& low2 = end2 < start2 ? end2 : start2;
  const Instant& high2 = end2 < start2 ? start2 : end2;
  return low1 <= high2 && low2 <= high1;
}

}  // namespace kt

constexpr int overlaps(const d_Date& start1, const d_Date& end1, const d_Date& start2, const d_Date& end2) {
  return kt::periodsOverlap(start1, end1, start2, end2);
}

// The months are counted from March, as 30.6001 days each. All quotients are those of the decimal numbers 365.25 and
// 30.6001, cut toward zero.
constexpr long d_Date::getAbsDate() const {
  const int m = month < 3 ? month + 13 : month + 1;
  const int y = month < 3 ? year - 1 : year;
  const int julian = 1461 * y / 4 + 306001 * m / 10000 + day + 1720994;
  const int century = y / 100;
  return julian < 2299170 ? julian : julian + 2 - century + century / 4;
}

constexpr d_Date& d_Date::setAbsDate(long absDate) {
  long long z = static_cast<std::int32_t>(static_cast<std::uint32_t>(absDate)) + 1LL;
  if (z > 2299160) {  // Gregorian: add the leap days that were left out
    const long long century = (4 * z - 7468865) / 146097;
    z += 1 + century - century / 4;
  }
  const long long b = z + 1524;
  const long long y = (100 * b - 12210) / 36525;
  const long long dayOfYear = b - 1461 * y / 4;
  const long long m = 10000 * dayOfYear / 306001;
  const long long monthDays = 306001 * m / 10000 - (m < 0 ? 1 : 0);  // rounded down
  day = static_cast<std::int8_t>(dayOfYear - monthDays);
  month = static_cast<std::int8_t>(m < 14 ? m - 1 : m - 13);
  year = static_cast<std::int16_t>(month < 3 ? y - 4715 : y - 4716);
  return *this;
}

constexpr d_Date& d_Date::next(Weekday weekday) {
  const int ahead = weekday - day_of_week();
  return setAbsDate(getAbsDate() + (ahead <= 0 ? ahead + 7 : ahead));
}

constexpr d_Date& d_Date::previous(Weekday weekday) {
  const int back = day_of_week() - weekday;
  return setAbsDate(getAbsDate() - (back < 1 ? back + 7 : back));
}

#endif
