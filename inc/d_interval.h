// d_interval.h - a period of time, the ODMG class.
#ifndef D_INTERVAL_H
#define D_INTERVAL_H

#include "ktapi.h"

#include <type_traits>

// d_Interval: a number of seconds, forward or backward.
//
// Range:  that of a 32-bit float; beyond 2^24 seconds (194 days) seconds are not exact.
// Null:   none.
// Order:  that of the numbers; a NaN is neither below nor above anything.
// Size:   4 bytes.
// Disk:   docs/formats/dates.md, ODMG types: 4 bytes: the float in the byte order of the format code.
// Text:   as days, hours, minutes and seconds by a format, see ktdate.h; the row's format is "%e days, %I hours, %M
//         minutes, %S seconds". %I prints hours above 12 less 12, %H prints them all. Of the days the low 8 bits are
//         printed, as a signed number: 200 days are "-56 days"; scanning reads two digits of them. The null print
//         string scans as the fields of a null, -11,527,808 seconds.
// Status: nothing here fails. Where whole days or seconds are asked for, a NaN counts as 0 and a number that is too
//         large as the largest possible.
// Owner:  a plain value, trivially copyable.
// Threads: pure.
class KTTM_API d_Interval {
public:
  float seconds;

  // --- make -----------------------------------------------------------------------------------------------------
  constexpr d_Interval() : seconds(0) {}
  constexpr explicit d_Interval(int days, int hours = 0, int minutes = 0, float second = 0)
      : seconds(static_cast<float>(((static_cast<double>(days) * 24 + hours) * 60 + minutes) * 60 +
                                   static_cast<double>(second))) {}
  // A lone number that is no integer would be taken for days: say FromSeconds.
  d_Interval(float) = delete;
  d_Interval(double) = delete;
  static constexpr d_Interval FromSeconds(float number) {
    d_Interval interval;
    interval.seconds = number;
    return interval;
  }

  // --- ask: the parts add up to the whole and share its sign ------------------------------------------------------
  constexpr int day() const { return static_cast<int>(Clamped(static_cast<double>(seconds) / 86400, 2147483647.0)); }
  constexpr int hour() const { return static_cast<int>(WholeSeconds() % 86400 / 3600); }
  constexpr int minute() const { return static_cast<int>(WholeSeconds() % 3600 / 60); }
  constexpr float second() const {  // with its fraction; beyond 2^53 seconds without
    const long long whole = WholeSeconds();
    const double fraction = static_cast<double>(seconds) - static_cast<double>(whole);
    return static_cast<float>(static_cast<double>(whole % 60) + (fraction > -1 && fraction < 1 ? fraction : 0));
  }
  constexpr int is_zero() const { return seconds == 0; }
  constexpr long long WholeSeconds() const {  // toward zero
    return static_cast<long long>(Clamped(static_cast<double>(seconds), 9e18));
  }

  // --- change -----------------------------------------------------------------------------------------------------
  constexpr d_Interval operator-() const { return FromSeconds(-seconds); }
  constexpr d_Interval& operator+=(const d_Interval& other) { return *this = FromSeconds(seconds + other.seconds); }
  constexpr d_Interval& operator-=(const d_Interval& other) { return *this = FromSeconds(seconds - other.seconds); }
  constexpr d_Interval& operator*=(int factor) { return *this = FromSeconds(seconds * static_cast<float>(factor)); }
  constexpr d_Interval& operator/=(int divisor) {  // by 0: 0
    return *this = FromSeconds(divisor == 0 ? 0 : seconds / static_cast<float>(divisor));
  }

private:
  static constexpr double Clamped(double number, double limit) {
    if (number != number) return 0;
    return number > limit ? limit : number < -limit ? -limit : number;
  }
};

constexpr d_Interval operator+(d_Interval a, const d_Interval& b) { return a += b; }
constexpr d_Interval operator-(d_Interval a, const d_Interval& b) { return a -= b; }
constexpr d_Interval operator*(d_Interval a, int factor) { return a *= factor; }
constexpr d_Interval operator*(int factor, d_Interval a) { return a *= factor; }
constexpr d_Interval operator/(d_Interval a, int divisor) { return a /= divisor; }

// 1 or 0.
constexpr int operator==(const d_Interval& a, const d_Interval& b) { return a.seconds == b.seconds; }
constexpr int operator!=(const d_Interval& a, const d_Interval& b) { return a.seconds != b.seconds; }
constexpr int operator<(const d_Interval& a, const d_Interval& b) { return a.seconds < b.seconds; }
constexpr int operator>(const d_Interval& a, const d_Interval& b) { return a.seconds > b.seconds; }
constexpr int operator<=(const d_Interval& a, const d_Interval& b) { return a.seconds <= b.seconds; }
constexpr int operator>=(const d_Interval& a, const d_Interval& b) { return a.seconds >= b.seconds; }

static_assert(sizeof(d_Interval) == 4 && std::is_trivially_copyable_v<d_Interval>);

#endif
