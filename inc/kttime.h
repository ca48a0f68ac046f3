// kttime.h - the time of day value class.
#ifndef KTTIME_H
#define KTTIME_H

#include "ktapi.h"
#include "ktlongcmp.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

class KtString;

// KtTime: a time of day to the second.
//
// Range:  any fields; IsTime tells 00:00:00 to 23:59:59.
// Null:   hour, minute and second -128.
// Order:  hour, minute, second, as signed numbers. != is a three-way comparison: -1, 0, 1. Against an integer a time
//         counts as its seconds.
// Size:   3 bytes.
// Disk:   docs/formats/dates.md, KtTime: 3 bytes: hour, minute, second, whatever the format code.
// Text:   by a format, see ktdate.h; "%H:%M:%S" when it is null. The row's format is "%I:%M:%S %p".
// Status: nothing here fails. Arithmetic is done in 8-bit fields and carries, or borrows, once from field to field.
//         Text: as ktdate.h says.
// Owner:  a plain value, trivially copyable.
// Threads: pure, but for what reads the clock.
class KTTM_API KtTime {
public:
  std::int8_t hour;    // 0 to 23
  std::int8_t minute;  // 0 to 59
  std::int8_t second;  // 0 to 59

  // --- make -----------------------------------------------------------------------------------------------------
  KtTime();  // the local time of day
  // Seconds after midnight, not reduced to a day: 90,061 is 25:01:01. Of the number the low 32 bits.
  constexpr KtTime(long seconds);
  // The fields, each cut to its width.
  constexpr KtTime(int hourOfDay, int minuteOfHour, int secondOfMinute)
      : hour(static_cast<std::int8_t>(hourOfDay)),
        minute(static_cast<std::int8_t>(minuteOfHour)),
        second(static_cast<std::int8_t>(secondOfMinute)) {}

  KtTime& Now();  // becomes the local time of day

  // --- ask ------------------------------------------------------------------------------------------------------
  constexpr operator long() const { return (hour * 60 + minute) * 60 + second; }
  constexpr int IsTime() const {
    return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
  }
  constexpr int IsNullValue() const { return hour == -128 && minute == -128 && second == -128; }

  // --- change -----------------------------------------------------------------------------------------------------
  constexpr int SetNullValue() {  // 0
    *this = KtTime(-128, -128, -128);
    return 0;
  }
  // For counts from 0 up to a day; past midnight the hours begin anew.
  template <class Number>
    requires(std::is_integral_v<Number>)
  constexpr KtTime operator+(Number seconds) const { return Later(static_cast<long>(seconds)); }
  template <class Number>
    requires(std::is_integral_v<Number>)
  constexpr KtTime operator-(Number seconds) const { return Earlier(static_cast<long>(seconds)); }
  // How long ago the other time was, within a day: 10:00:00 - 11:00:00 is 23:00:00.
  constexpr KtTime operator-(const KtTime& other) const {
    return Borrowed(hour - other.hour, minute - other.minute, second - other.second);
  }
  constexpr KtTime& operator+=(long seconds) { return *this = *this + seconds; }
  constexpr KtTime& operator-=(long seconds) { return *this = *this - seconds; }
  constexpr KtTime& operator++() { return *this += 1; }
  constexpr KtTime& operator--() { return *this -= 1; }

  // --- compare ----------------------------------------------------------------------------------------------------
  constexpr int operator!=(const KtTime& other) const {
    if (hour != other.hour) return hour < other.hour ? -1 : 1;
    if (minute != other.minute) return minute < other.minute ? -1 : 1;
    return (second > other.second) - (second < other.second);
  }
  constexpr int operator==(const KtTime& other) const { return (*this != other) == 0; }
  constexpr int operator<(const KtTime& other) const { return (*this != other) < 0; }
  constexpr int operator>(const KtTime& other) const { return (*this != other) > 0; }
  constexpr int operator<=(const KtTime& other) const { return (*this != other) <= 0; }
  constexpr int operator>=(const KtTime& other) const { return (*this != other) >= 0; }

  // --- text -------------------------------------------------------------------------------------------------------
  // Appends the time to out; a null time replaces out by the null print string. Date directives print today's local
  // date. Returns out.
  KtString& PrintToKtString(KtString& out, const char* format = nullptr) const;
  // Becomes the time part of what the text holds.
  void ScanFromKtString(const KtString& in, const char* format = nullptr);

private:
  constexpr KtTime Later(long seconds) const;
  constexpr KtTime Earlier(long seconds) const;
  static constexpr KtTime Borrowed(int hours, int minutes, int seconds);
};

static_assert(sizeof(KtTime) == 3 && alignof(KtTime) == 1 && std::is_trivially_copyable_v<KtTime>);
static_assert(offsetof(KtTime, hour) == 0 && offsetof(KtTime, minute) == 1 && offsetof(KtTime, second) == 2);

constexpr KtTime::KtTime(long seconds) : KtTime(0, 0, 0) {
  const auto stored = static_cast<std::int32_t>(static_cast<std::uint32_t>(seconds));
  *this = KtTime(stored / 3600, stored % 3600 / 60, stored % 60);
}

constexpr KtTime KtTime::Later(long seconds) const {
  const auto stored = static_cast<std::int32_t>(static_cast<std::uint32_t>(seconds));
  const int minutes = stored / 60;
  const int hours = minutes / 60;
  KtTime sum(hour + hours, minute + (minutes - 60 * hours), second + stored % 60);
  if (sum.second >= 60) sum = KtTime(sum.hour, sum.minute + 1, sum.second - 60);
  if (sum.minute >= 60) sum = KtTime(sum.hour + 1, sum.minute - 60, sum.second);
  if (sum.hour >= 24) sum.hour = static_cast<std::int8_t>(sum.hour % 24);
  return sum;
}

constexpr KtTime KtTime::Earlier(long seconds) const {
  const auto stored = static_cast<std::int32_t>(static_cast<std::uint32_t>(seconds));
  const int minutes = stored / 60;
  const int hours = minutes / 60;
  return Borrowed(hour - hours, minute - (minutes - 60 * hours), second - stored % 60);
}

constexpr KtTime KtTime::Borrowed(int hours, int minutes, int seconds) {
  KtTime rest(hours, minutes, seconds);
  if (rest.second < 0) rest = KtTime(rest.hour, rest.minute - 1, rest.second + 60);
  if (rest.minute < 0) rest = KtTime(rest.hour - 1, rest.minute + 60, rest.second);
  if (rest.hour < 0) rest.hour = static_cast<std::int8_t>(rest.hour + 24);
  return rest;
}

#endif
