// d_time.cpp - d_Time and d_Timestamp: the clock, time zones, and moving by intervals.
#include "d_time.h"

#include "d_timestamp.h"
#include "ktdatetime.h"
#include "values/local_offset.h"

#include <atomic>
#include <cmath>

namespace {

constexpr long long kDayHundredths = 8640000;

constexpr int kLocalZone = 10000;  // no zone has that many minutes
std::atomic<int> defaultZone = kLocalZone;

struct Zone {
  short hour, minute;
};

Zone zoneOf(int minutes) { return {static_cast<short>(minutes / 60), static_cast<short>(minutes % 60)}; }

Zone localZone() {
  const int minutes = kt::localOffset();
  return zoneOf(minutes == kt::kUnknownOffset ? 0 : minutes);
}

Zone zoneOfNewTimes() {
  const int minutes = defaultZone.load(std::memory_order_relaxed);
  return minutes == kLocalZone ? localZone() : zoneOf(minutes);
}

// Rounded to hundredths; NaN is 0, and nothing leaves the range.
long long hundredthsOf(float seconds, double limit) {
  const double hundredths = std::round(static_cast<double>(seconds) * 100);
  if (std::isnan(hundredths)) return 0;
  return static_cast<long long>(hundredths > limit ? limit : hundredths < -limit ? -limit : hundredths);
}

d_Time timeIn(const Zone& zone, const KtTime& time) {
  d_Time result(0, 0, 0, zone.hour, zone.minute);
  result.hour = time.hour;
  result.minute = time.minute;
  result.second = time.second;
  return result;
}

// Sets the time within its day; the days that the hundredths go beyond it, forward or back.
long long setLocalHundredths(d_Time& time, long long hundredths) {
  long long days = hundredths / kDayHundredths;
  if (hundredths % kDayHundredths < 0) --days;
  const auto rest = static_cast<int>(hundredths - days * kDayHundredths);
  time.hour = static_cast<std::int8_t>(rest / 360000);
  time.minute = static_cast<std::int8_t>(rest / 6000 % 60);
  time.second = static_cast<std::int8_t>(rest / 100 % 60);
  time.hundredths = static_cast<std::int8_t>(rest % 100);
  return days;
}

// More would leave every calendar, and less than that stays far inside 64 bits.
constexpr double kLongestMove = 1e17;

d_Interval intervalOf(long long hundredths) {
  return d_Interval::FromSeconds(static_cast<float>(static_cast<double>(hundredths) / 100));
}

}  // namespace

// --- d_Time ---------------------------------------------------------------------------------------------------------

d_Time::d_Time() : d_Time(timeIn(localZone(), KtTime())) {}

d_Time::d_Time(unsigned short anHour, unsigned short aMinute, float aSecond) : d_Time(anHour, aMinute, aSecond, 0, 0) {
  const Zone zone = zoneOfNewTimes();
  tz_hour = static_cast<std::int8_t>(zone.hour);
  tz_minute = static_cast<std::int8_t>(zone.minute);
}

d_Time::d_Time(unsigned short anHour, unsigned short aMinute, float aSecond, short zoneHour, short zoneMinute)
    : tz_hour(static_cast<std::int8_t>(zoneHour)),
      tz_minute(static_cast<std::int8_t>(zoneMinute)),
      hour(static_cast<std::int8_t>(anHour)),
      minute(static_cast<std::int8_t>(aMinute)) {
  const bool isBelowMinute = aSecond > 0 && aSecond < 60;
  const long long total = hundredthsOf(aSecond, isBelowMinute ? 5999 : 12799);
  second = static_cast<std::int8_t>(total / 100);
  hundredths = static_cast<std::int8_t>(total % 100);
}

d_Time::d_Time(const d_Timestamp& timestamp) : d_Time(timestamp.time) {}
d_Time::d_Time(const KtTime& time) : d_Time(timeIn(zoneOfNewTimes(), time)) {}
d_Time& d_Time::operator=(const d_Timestamp& timestamp) { return *this = timestamp.time; }
d_Time& d_Time::operator=(const KtTime& time) { return *this = d_Time(time); }

d_Time d_Time::current() { return {}; }

void d_Time::set_default_Time_Zone(Time_Zone zone) {
  if (zone > -24 && zone < 24) defaultZone = zone * 60;
}
void d_Time::set_default_Time_Zone_to_local() { defaultZone = kLocalZone; }

d_Time& d_Time::operator+=(const d_Interval& interval) {
  setLocalHundredths(*this, LocalHundredths() + hundredthsOf(interval.seconds, kLongestMove));
  return *this;
}

d_Interval operator-(const d_Time& a, const d_Time& b) {
  return intervalOf(a.UniversalHundredths() - b.UniversalHundredths());
}

int overlaps(const d_Time& start1, const d_Time& end1, const d_Time& start2, const d_Time& end2) {
  return kt::periodsOverlap(start1, end1, start2, end2);
}

// --- d_Timestamp ----------------------------------------------------------------------------------------------------

d_Timestamp::d_Timestamp() : d_Timestamp(KtDateTime()) {
  const Zone zone = localZone();
  time.tz_hour = static_cast<std::int8_t>(zone.hour);
  time.tz_minute = static_cast<std::int8_t>(zone.minute);
}

d_Timestamp::d_Timestamp(short year, unsigned short month, unsigned short day, unsigned short hour,
                         unsigned short minute, float second)
    : date(year, month, day), time(hour, minute, second) {}

d_Timestamp::d_Timestamp(const d_Date& aDate) : date(aDate), time(0, 0) {}
d_Timestamp::d_Timestamp(const KtDateTime& dateTime) : date(dateTime), time(dateTime.time) {}
d_Timestamp& d_Timestamp::operator=(const d_Date& aDate) { return *this = d_Timestamp(aDate); }

d_Timestamp d_Timestamp::current() { return {}; }

d_Timestamp& d_Timestamp::operator+=(const d_Interval& interval) {
  const long long hundredths = time.LocalHundredths() + hundredthsOf(interval.seconds, kLongestMove);
  const long long days = setLocalHundredths(time, hundredths);
  date.setAbsDate(static_cast<long>(date.getAbsDate() + days));
  return *this;
}

d_Interval operator-(const d_Timestamp& a, const d_Timestamp& b) {
  return intervalOf(a.UniversalHundredths() - b.UniversalHundredths());
}
