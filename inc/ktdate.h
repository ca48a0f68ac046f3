// ktdate.h - the calendar date value class.
#ifndef KTDATE_H
#define KTDATE_H

#include "ktapi.h"
#include "ktlongcmp.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

class KtString;

enum KtDaysOfTheWeek : int { Monday, Tuesday, Wednesday, Thursday, Friday, Saturday, Sunday };

namespace kt {

// The low 32 bits as a number: sums and products that leave 32 bits wrap.
constexpr std::int32_t wrapped(std::uint64_t bits) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
}
constexpr std::int32_t stored32(long number) { return wrapped(static_cast<std::uint64_t>(number)); }

}  // namespace kt

// KtDate: a day of the Gregorian calendar, carried on before its introduction as well.
//
// Range:  any fields; IsDate tells the days that exist. Day numbers count from day 0, -4713-11-24; 2000-01-01 is day
//         2,451,545. They follow the calendar from -4800-03-01 (dates of day numbers from -4900-03-01) on; before, and
//         for day numbers that need more than 32 bits or 16 bits of year, the rules below give what they give.
// Null:   year -32768, month -128, day -128.
// Order:  != is a three-way comparison, field by field: negative, 0, positive. A field of -1 on either side matches any
//         other, for !=, <, >, <= and >=. == compares the fields as they are; so two dates may be neither == nor !=.
//         Against an integer a date counts as its day number.
// Size:   4 bytes.
// Disk:   docs/formats/dates.md, KtDate: 4 bytes: the year in the byte order of the format code, month, day.
// Text:   by a format, see datetime text below; "%Y-%m-%d" when it is null. The row's format is "%a %e.%b %Y".
// Status: nothing here fails. Arithmetic on null or invalid dates takes the fields as numbers. Printing overflows as
//         KtString's += does; where memory runs out it leaves out as it was, and scanning leaves the value. A null
//         string stays marked as null when something is printed into it.
// Owner:  a plain value, trivially copyable.
// Threads: pure, but for what reads the clock.
//
// Formats: %% percent; %a %A weekday, three letters or all; %b %B month (the first two are spelled "Januar" and
// "Februar"); %d %e day; %H hour; %I hour of twelve; %M minute; %m month; %p %P am or pm, AM or PM; %S second; %Y year,
// %y year of the century. Numbers have two digits at least, years four. Of another letter after % the letter stands for
// itself, as does everything else; a lone % at the end is ignored.
//   Printing: %I counts 12, 1 to 11 when %p or %P occurs anywhere in the format, else 0 to 12. %b %B of a month outside
//   1 to 12 print its number, of three digits; a weekday that is none prints "no " or "no day".
//   Scanning: %Y takes 4 characters, other numbers and %p %P take 2, %% and letters that are no directive 1, and any
//   other character of the format 1 as well, whatever it is. %a %A %b %B take the letters that agree with the first
//   name whose three letters stand there, case included; without one %a %A take nothing, %b %B a number of 3 characters
//   for the month. A number may have a sign, which counts for its width, and blanks before it, which do not; the step
//   is the same. It is cut to its field (8 bits, a year 16) before it is judged. Fields without digits keep 0, months
//   and days 1; %y adds 1900. pm adds 12 to an hour below 12, otherwise am makes 12 into 0. A text that begins with the
//   null print string, compared by characters, is null. A result that is no date and time becomes 0000-01-01 00:00:00,
//   but all zeros stay.
class KTTM_API KtDate {
public:
  std::int16_t year;  // 2005, not 105
  std::int8_t month;  // 1 to 12
  std::int8_t day;    // 1 to 31

  // --- make -----------------------------------------------------------------------------------------------------
  KtDate();  // today's local date
  constexpr KtDate(long dayNumber) : year(0), month(0), day(0) { dateabs(dayNumber); }
  // The fields, each cut to its width.
  constexpr KtDate(int wholeYear, int monthOfYear, int dayOfMonth)
      : year(static_cast<std::int16_t>(wholeYear)),
        month(static_cast<std::int8_t>(monthOfYear)),
        day(static_cast<std::int8_t>(dayOfMonth)) {}

  KtDate& Today();                            // becomes today's local date
  constexpr KtDate& dateabs(long dayNumber);  // becomes the date of the day number

  // --- ask ------------------------------------------------------------------------------------------------------
  constexpr long dayabs() const;  // the day number; days beyond a month's end count on into the next
  constexpr operator long() const { return dayabs(); }
  // Days to the first of the next month: 31 on 1 January, 1 on the last day of a month, 0 or less beyond it.
  constexpr long daynxtmonth() const { return KtDate(year, month + 1, 1).dayabs() - dayabs(); }
  constexpr int IsLastDayOfTheMonth() const { return daynxtmonth() == 1; }
  constexpr int IsDate() const {
    if (day < 1 || day > 31 || month < 1 || month > 12) return 0;
    return (day <= 28 && year > -4800) || daynxtmonth() > 0;  // no month is shorter
  }
  constexpr int IsNullValue() const { return year == -32768 && month == -128 && day == -128; }

  // The weekday from 0000-03-01 to 4600-02-28. In far years a value outside the enumeration: "no day".
  constexpr KtDaysOfTheWeek DayOfTheDate() const;
  KtString PrintDayOfTheDate() const;  // "Monday" to "Sunday", or "no day"

  // Quotient and remainder of the magnitudes, negative when exactly one operand is: modulo(7, -2) is -1, modulo(-7, -2)
  // is 1. b must not be 0.
  static constexpr long divide(long a, long b) {
    return static_cast<long>(signedAs(a, b, magnitude(a) / magnitude(b)));
  }
  static constexpr long modulo(long a, long b) {
    return static_cast<long>(signedAs(a, b, magnitude(a) % magnitude(b)));
  }

  // --- change: through the day number, which makes a date of any fields -----------------------------------------
  constexpr int SetNullValue() {  // 0
    *this = KtDate(-32768, -128, -128);
    return 0;
  }
  template <class Number>
    requires(std::is_integral_v<Number>)
  constexpr KtDate operator+(Number days) const { return KtDate(sum(dayabs(), static_cast<long>(days))); }
  template <class Number>
    requires(std::is_integral_v<Number>)
  constexpr KtDate operator-(Number days) const { return KtDate(difference(dayabs(), static_cast<long>(days))); }
  constexpr long operator-(const KtDate& other) const { return dayabs() - other.dayabs(); }
  constexpr KtDate& operator+=(long days) { return *this = *this + days; }
  constexpr KtDate& operator-=(long days) { return *this = *this - days; }
  constexpr KtDate& operator++() { return *this += 1; }
  constexpr KtDate& operator--() { return *this -= 1; }

  // --- compare ----------------------------------------------------------------------------------------------------
  constexpr int operator!=(const KtDate& other) const {  // this field minus the other's, of the first that differ
    if (differ(year, other.year)) return year - other.year;
    if (differ(month, other.month)) return month - other.month;
    return differ(day, other.day) ? day - other.day : 0;
  }
  constexpr int operator==(const KtDate& other) const {
    return day == other.day && month == other.month && year == other.year;
  }
  constexpr int operator<(const KtDate& other) const { return (*this != other) < 0; }
  constexpr int operator>(const KtDate& other) const { return (*this != other) > 0; }
  constexpr int operator<=(const KtDate& other) const { return (*this != other) <= 0; }
  constexpr int operator>=(const KtDate& other) const { return (*this != other) >= 0; }

  // --- text -------------------------------------------------------------------------------------------------------
  // Appends the date to out; a null date replaces out by the null print string. Time directives print the local time.
  // Returns out.
  KtString& PrintToKtString(KtString& out, const char* format = nullptr) const;
  // Becomes the date part of what the text holds.
  void ScanFromKtString(const KtString& in, const char* format = nullptr);

private:
  constexpr KtDate& farDateabs(std::uint32_t count);
  static constexpr unsigned long magnitude(long a) {
    return a < 0 ? 0 - static_cast<unsigned long>(a) : static_cast<unsigned long>(a);
  }
  static constexpr unsigned long signedAs(long a, long b, unsigned long result) {
    return (a < 0) != (b < 0) ? 0 - result : result;
  }
  static constexpr long sum(long a, long b) {
    return kt::wrapped(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
  }
  static constexpr long difference(long a, long b) {
    return kt::wrapped(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
  }
  static constexpr bool differ(int a, int b) { return a != b && a != -1 && b != -1; }
};

static_assert(sizeof(KtDate) == 4 && alignof(KtDate) == 2 && std::is_trivially_copyable_v<KtDate>);
static_assert(offsetof(KtDate, year) == 0 && offsetof(KtDate, month) == 2 && offsetof(KtDate, day) == 3);

// The rule of Fliegel and Van Flandern. Quotients are cut toward zero, which shows for years before -4800. All others
// are counted without signs, which makes the divisions by constants cheaper.
constexpr long KtDate::dayabs() const {
  if (month >= 1 && month <= 12 && year > -4800) [[likely]] {
    const bool early = month <= 2;
    const auto b = static_cast<unsigned>(year + 4800 - early);
    const auto c = static_cast<unsigned>(month - 2 + (early ? 12 : 0));
    const unsigned days = 1461 * b / 4 + 367 * c / 12 - 3 * (b / 100 + 1) / 4;
    return static_cast<int>(days) + day - 32075;
  }
  const int a = (month - 14) / 12;   // -1 in January and February, else 0, for months 1 to 13
  const int b = year + a + 4800;     // -27,980 to 37,567
  const int c = month - 2 - 12 * a;  // 1 in March to 12 in February
  return 1461 * b / 4 + 367 * c / 12 - 3 * ((b + 100) / 100) / 4 + day - 32075;
}

// Years begin in March, so that leap days end them; day 0 is -4900-03-01. Divisions are multiplications whose low half
// is the remainder, scaled.
constexpr KtDate& KtDate::dateabs(long dayNumber) {
  constexpr std::uint32_t kDaysOf400 = 146097;
  const std::uint32_t count = static_cast<std::uint32_t>(dayNumber) + 68569u;
  if (count >= 1u << 29) [[unlikely]]
    return farDateabs(count);
  const std::uint32_t quarters = 4 * (count + 3 * (kDaysOf400 / 4)) + 3;  // from -5200-03-01 on
  const std::uint32_t century = quarters / kDaysOf400;
  const std::uint32_t inCentury = quarters % kDaysOf400 | 3;
  const std::uint64_t years = std::uint64_t{2939745} * inCentury;  // 2^32 / 1461, rounded up
  const auto dayOfYear = static_cast<std::uint32_t>(years) / 2939745 / 4;
  const std::uint32_t months = 2141 * dayOfYear + 197913;  // 2^16 / 30.6
  const bool isNextYear = dayOfYear >= 306;
  day = static_cast<std::int8_t>((months & 0xFFFF) / 2141 + 1);
  month = static_cast<std::int8_t>((months >> 16) - (isNextYear ? 12 : 0));
  year = static_cast<std::int16_t>(100 * century + static_cast<std::uint32_t>(years >> 32) - 5200 + isNextYear);
  return *this;
}

// The rule of Fliegel and Van Flandern, which wraps and cuts quotients toward zero, for numbers far off.
constexpr KtDate& KtDate::farDateabs(std::uint32_t count) {
  using kt::wrapped;
  const auto u = [](std::int32_t number) { return static_cast<std::uint32_t>(number); };
  std::int32_t l = wrapped(count);
  const std::int32_t n = wrapped(4u * u(l)) / 146097;             // centuries of 400 years
  l = wrapped(u(l) - u((146097 * n + 3) / 4));                    // day in the century: 0 to 36,524
  const std::int32_t i = wrapped(4000u * (u(l) + 1u)) / 1461001;  // year in it: 0 to 99
  l = wrapped(u(l) - u(1461 * i / 4) + 31u);                      // day from a March on: 31 to 396
  const std::int32_t j = wrapped(80u * u(l)) / 2447;              // month: 1 to 12
  day = static_cast<std::int8_t>(wrapped(u(l) - u(2447 * j / 80)));
  const std::int32_t k = j / 11;  // 1 in January and February of the next year
  month = static_cast<std::int8_t>(j + 2 - 12 * k);
  year = static_cast<std::int16_t>(100 * (n - 49) + i + k);
  return *this;
}

// A form of Zeller's congruence. 77, a multiple of 7, keeps the sum positive for ordinary years.
constexpr KtDaysOfTheWeek KtDate::DayOfTheDate() const {
  const int zellerYear = year + (month - 14) / 12;
  const int zellerMonth = month + 10 - 12 * ((month + 10) / 13);
  const int century = zellerYear / 100;
  const int w =
      (13 * zellerMonth - 1) / 5 + zellerYear / 400 + (day - 2 * century) + 5 * (zellerYear - 100 * century) / 4 + 77;
  const int r = w % 7;
  return static_cast<KtDaysOfTheWeek>(r == 0 ? Sunday : r - 1);
}

#endif
