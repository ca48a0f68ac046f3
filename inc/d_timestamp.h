// d_timestamp.h - the instant of the ODMG interface.
#ifndef D_TIMESTAMP_H
#define D_TIMESTAMP_H

#include "d_date.h"
#include "d_interval.h"
#include "d_time.h"
#include "ktapi.h"

#include <cstddef>
#include <type_traits>

class KtDateTime;

// d_Timestamp: a date and a time of day in its zone.
//
// Range:  any fields; is_valid tells the instants that exist.
// Null:   none; the null print string scans as in d_Date and d_Time.
// Order:  by the instant in universal time. != is a three-way comparison: -1, 0, 1; the other relational operators give
//         1 or 0 by it. The disk form is compared as its date, then its time.
// Size:   10 bytes.
// Disk:   docs/formats/dates.md, ODMG types: 10 bytes: the forms of the date and of the time.
// Text:   by a format, see ktdate.h; hour and minute as for d_Time. The row's format is "%a %b %e %I:%M:%S %p".
// Status: nothing here fails.
// Owner:  a plain value, trivially copyable.
// Threads: pure, but for what reads the clock and the default zone (d_time.h).
class KTTM_API d_Timestamp {
public:
  d_Date date;
  d_Time time;

  // --- make -----------------------------------------------------------------------------------------------------
  d_Timestamp();  // now, in the local zone
  explicit d_Timestamp(short year, unsigned short month = 1, unsigned short day = 1, unsigned short hour = 0,
                       unsigned short minute = 0, float second = 0);  // in the default zone
  d_Timestamp(const d_Date& aDate, const d_Time& aTime) : date(aDate), time(aTime) {}
  explicit d_Timestamp(const d_Date& aDate);    // its midnight in the default zone
  d_Timestamp(const KtDateTime& dateTime);      // in the default zone
  d_Timestamp& operator=(const d_Date& aDate);  // its midnight in the default zone
  d_Timestamp& operator=(const KtDateTime& dateTime) { return *this = d_Timestamp(dateTime); }

  static d_Timestamp current();  // as d_Timestamp()

  // --- ask ------------------------------------------------------------------------------------------------------
  constexpr int is_valid() const { return date.is_valid() && time.is_valid(); }
  // Hundredths of a second in universal time since absolute date 0.
  constexpr long long UniversalHundredths() const {
    return date.getAbsDate() * kDayHundredths + time.UniversalHundredths();
  }

  // --- change: the zone stays -------------------------------------------------------------------------------------
  d_Timestamp& operator+=(const d_Interval& interval);
  d_Timestamp& operator-=(const d_Interval& interval) { return *this += -interval; }

private:
  static constexpr long long kDayHundredths = 8640000;
};

static_assert(sizeof(d_Timestamp) == 10 && alignof(d_Timestamp) == 2 && std::is_trivially_copyable_v<d_Timestamp>);
static_assert(offsetof(d_Timestamp, date) == 0 && offsetof(d_Timestamp, time) == 4);

inline d_Timestamp operator+(d_Timestamp timestamp, const d_Interval& interval) { return timestamp += interval; }
inline d_Timestamp operator+(const d_Interval& interval, d_Timestamp timestamp) { return timestamp += interval; }
inline d_Timestamp operator-(d_Timestamp timestamp, const d_Interval& interval) { return timestamp -= interval; }
KTTM_API d_Interval operator-(const d_Timestamp& a, const d_Timestamp& b);  // between the instants

constexpr int operator!=(const d_Timestamp& a, const d_Timestamp& b) {
  const long long difference = a.UniversalHundredths() - b.UniversalHundredths();
  return (difference > 0) - (difference < 0);
}
constexpr int operator==(const d_Timestamp& a, const d_Timestamp& b) { return (a != b) == 0; }
constexpr int operator<(const d_Timestamp& a, const d_Timestamp& b) { return (a != b) < 0; }
constexpr int operator>(const d_Timestamp& a, const d_Timestamp& b) { return (a != b) > 0; }
constexpr int operator<=(const d_Timestamp& a, const d_Timestamp& b) { return (a != b) <= 0; }
constexpr int operator>=(const d_Timestamp& a, const d_Timestamp& b) { return (a != b) >= 0; }

// 1 when two periods have an instant in common, bounds included; each may be given with its end first.
constexpr int overlaps(const d_Timestamp& start1, const d_Timestamp& end1, const d_Timestamp& start2,
                       const d_Timestamp& end2) {
  return kt::periodsOverlap(start1, end1, start2, end2);
}

#endif
