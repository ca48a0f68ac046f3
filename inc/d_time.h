// d_time.h - the time of day of the ODMG interface.
#ifndef D_TIME_H
#define D_TIME_H

#include "d_interval.h"
#include "ktapi.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

class KtTime;
class d_Timestamp;

// d_Time: a time of day to the hundredth of a second, and the time zone in which it is told.
//
// Range:  any fields; is_valid tells 00:00:00.00 to 23:59:59.99 in zones up to 23:59 from universal time.
// Null:   none; the null print string scans as -128 in hour, minute and second, to which the zone is added.
// Order:  by the instant in universal time, not reduced to a day: 23:00 at -05:00 comes after 04:00 at +00:00. != is a
//         three-way comparison: -1, 0, 1; the other relational operators give 1 or 0 by it. The disk form is compared
//         byte by byte, zone first, see d_TimeCompare.
// Size:   6 bytes.
// Disk:   docs/formats/dates.md, ODMG types: 6 bytes: the fields in this order, whatever the format code.
// Text:   by a format, see ktdate.h, the date being 0000-01-01. Hour and minute are printed less those of the zone, and
//         get them back when scanned, field by field, without a carry; hundredths become 0. The row's format is
//         "%I:%M:%S %p".
// Status: nothing here fails.
// Owner:  a plain value, trivially copyable.
// Threads: pure, but for what reads the clock. The default zone is process-wide: setting it is safe beside other
//         threads, which of its values they then use is open.
class KTTM_API d_Time {
public:
  // Whole hours from universal time.
  enum Time_Zone : int {
    GMT = 0,
    GMT1 = 1,
    GMT2 = 2,
    GMT3 = 3,
    GMT4 = 4,
    GMT5 = 5,
    GMT6 = 6,
    GMT7 = 7,
    GMT8 = 8,
    GMT9 = 9,
    GMT10 = 10,
    GMT11 = 11,
    GMT12 = 12,
    GMT_1 = -1,
    GMT_2 = -2,
    GMT_3 = -3,
    GMT_4 = -4,
    GMT_5 = -5,
    GMT_6 = -6,
    GMT_7 = -7,
    GMT_8 = -8,
    GMT_9 = -9,
    GMT_10 = -10,
    GMT_11 = -11,
    GMT_12 = -12,
    USeastern = -5,
    UScentral = -6,
    USmountain = -7,
    USpacific = -8
  };

  std::int8_t tz_hour;  // the zone, to add to universal time; tz_minute has the same sign
  std::int8_t tz_minute;
  std::int8_t hour;        // 0 to 23, in that zone
  std::int8_t minute;      // 0 to 59
  std::int8_t second;      // 0 to 59
  std::int8_t hundredths;  // of a second, 0 to 99

  // --- make -----------------------------------------------------------------------------------------------------
  d_Time();  // the local time of day in the local zone (+00:00 when that is not known)
  // In the default zone. Hundredths are rounded, but a second below 60 stays below: 59.996 is 59.99. Other seconds are
  // cut to -127.99 to 127.99, a NaN is 0; hours, minutes and zones are cut to 8 bits.
  d_Time(unsigned short anHour, unsigned short aMinute, float aSecond = 0);
  d_Time(unsigned short anHour, unsigned short aMinute, float aSecond, short zoneHour, short zoneMinute);
  d_Time(const d_Timestamp& timestamp);
  d_Time(const KtTime& time);  // in the default zone
  d_Time& operator=(const d_Timestamp& timestamp);
  d_Time& operator=(const KtTime& time);

  static d_Time current();  // as d_Time()

  // The zone of times made without one: the clock's until set. Beyond 23 hours either way it stays what it was.
  static void set_default_Time_Zone(Time_Zone zone);
  static void set_default_Time_Zone_to_local();

  // --- ask ------------------------------------------------------------------------------------------------------
  constexpr Time_Zone time_zone() const { return static_cast<Time_Zone>(tz_hour); }
  constexpr float seconds() const { return static_cast<float>(second) + static_cast<float>(hundredths) / 100; }
  constexpr int is_valid() const {
    return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60 && hundredths >= 0 &&
           hundredths < 100 && tz_hour > -24 && tz_hour < 24 && tz_minute > -60 && tz_minute < 60 &&
           tz_hour * tz_minute >= 0;
  }
  // Hundredths of a second since midnight, as told and in universal time.
  constexpr long LocalHundredths() const { return ((hour * 60L + minute) * 60 + second) * 100 + hundredths; }
  constexpr long UniversalHundredths() const { return LocalHundredths() - (tz_hour * 60L + tz_minute) * 6000; }

  // --- change: within the day, past midnight the hours begin anew; the zone stays ---------------------------------
  d_Time& operator+=(const d_Interval& interval);
  d_Time& operator-=(const d_Interval& interval) { return *this += -interval; }
};

static_assert(sizeof(d_Time) == 6 && alignof(d_Time) == 1 && std::is_trivially_copyable_v<d_Time>);
static_assert(offsetof(d_Time, tz_hour) == 0 && offsetof(d_Time, tz_minute) == 1 && offsetof(d_Time, hour) == 2);
static_assert(offsetof(d_Time, minute) == 3 && offsetof(d_Time, second) == 4 && offsetof(d_Time, hundredths) == 5);

inline d_Time operator+(d_Time time, const d_Interval& interval) { return time += interval; }
inline d_Time operator+(const d_Interval& interval, d_Time time) { return time += interval; }
inline d_Time operator-(d_Time time, const d_Interval& interval) { return time -= interval; }
KTTM_API d_Interval operator-(const d_Time& a, const d_Time& b);  // between the instants

constexpr int operator!=(const d_Time& a, const d_Time& b) {
  const long difference = a.UniversalHundredths() - b.UniversalHundredths();
  return (difference > 0) - (difference < 0);
}
constexpr int operator==(const d_Time& a, const d_Time& b) { return (a != b) == 0; }
constexpr int operator<(const d_Time& a, const d_Time& b) { return (a != b) < 0; }
constexpr int operator>(const d_Time& a, const d_Time& b) { return (a != b) > 0; }
constexpr int operator<=(const d_Time& a, const d_Time& b) { return (a != b) <= 0; }
constexpr int operator>=(const d_Time& a, const d_Time& b) { return (a != b) >= 0; }

// 1 when two periods have an instant in common, bounds included; each may be given with its end first.
KTTM_API int overlaps(const d_Time& start1, const d_Time& end1, const d_Time& start2, const d_Time& end2);

#endif
