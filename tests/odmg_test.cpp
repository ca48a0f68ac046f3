// The ODMG classes: the historical calendar counted day by day, intervals, and instants across time zones.
#include <kttm.h>

#include "fixed_clock.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

namespace {

int lengthOfMonth(int year, int month) {
  static const int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool isJulian = year * 12 + month < 1582 * 12 + 10;
  const bool isLeap = year % 4 == 0 && (isJulian || year % 100 != 0 || year % 400 == 0);
  return kLengths[month - 1] + (month == 2 && isLeap ? 1 : 0);
}

// The rules as they are written, with decimal numbers in floating point.
long absDateInDoubles(int year, int month, int day) {
  const int m = month < 3 ? month + 13 : month + 1;
  const int y = month < 3 ? year - 1 : year;
  const long julian = static_cast<long>(std::trunc(365.25 * y) + std::trunc(30.6001 * m)) + day + 1720994;
  return julian < 2299170 ? julian : julian + 2 - y / 100 + y / 100 / 4;
}

d_Date dateInDoubles(long absDate) {
  double z = static_cast<double>(absDate) + 1;
  if (z > 2299160) {
    const auto alpha = static_cast<long>((z - 1867216.25) / 36524.25);
    z += static_cast<double>(1 + alpha - alpha / 4);
  }
  const double b = z + 1524;
  const double g = std::trunc((b - 122.1) / 365.25);
  const double d = std::trunc(365.25 * g);
  const double e = std::trunc((b - d) / 30.6001);
  const auto month = static_cast<short>(e < 14 ? e - 1 : e - 13);
  const double year = month < 3 ? g - 4715 : g - 4716;
  return {static_cast<short>(static_cast<long>(year)), static_cast<unsigned short>(month),
          static_cast<unsigned short>(static_cast<long>(b - d - std::floor(30.6001 * e)))};
}

bool sameFields(const d_Date& a, const d_Date& b) { return a.year == b.year && a.month == b.month && a.day == b.day; }

TEST(OdmgDate, agrees_with_the_historical_calendar_counted_day_by_day) {
  long number = 2451544;  // 2000-01-01, counted back below
  const auto skipped = [](int year, int month, int day) { return year == 1582 && month == 10 && day > 4 && day < 15; };
  for (int year = -4716; year < 2000; ++year) {
    for (int month = 1; month <= 12; ++month) number -= lengthOfMonth(year, month);
  }
  number += 10;
  long faults = 0;
  for (int year = -4716; year <= 32767; ++year) {
    for (int month = 1, dayOfYear = 0; month <= 12; ++month) {
      const int length = lengthOfMonth(year, month);
      for (int day = 1; day <= length; ++day) {
        if (skipped(year, month, day)) continue;
        const d_Date date(static_cast<short>(year), static_cast<unsigned short>(month),
                          static_cast<unsigned short>(day));
        d_Date back(0, 1, 1);
        ++dayOfYear;
        if (year > -4716 || month > 2) faults += !sameFields(back.setAbsDate(number), date);
        if (year > 0 || (year == 0 && month > 2)) {
          faults += date.getAbsDate() != number || date.day_of_week() != (number - 2451544 + 6 + 7000000) % 7;
          faults += date.is_valid() != 1 || date.days_in_month() != length;
        }
        if (year > 0) faults += date.day_of_year() != dayOfYear;
        ++number;
      }
    }
  }
  EXPECT_EQ(faults, 0);
}

TEST(OdmgDate, whole_numbers_give_what_the_rules_give_in_floating_point) {
  long faults = 0;
  for (int year = -32768; year <= 32767; year += 7) {
    for (int month = -128; month <= 127; month += 5) {
      const d_Date date(static_cast<short>(year), static_cast<unsigned short>(month), 200);
      faults += date.getAbsDate() != absDateInDoubles(year, month, -56);
    }
  }
  for (long number = -9000000; number < 14000000; number += 13) {
    d_Date date(0, 1, 1);
    faults += !sameFields(date.setAbsDate(number), dateInDoubles(number));
  }
  EXPECT_EQ(faults, 0);
}

TEST(OdmgDate, the_calendar_switch_leaves_ten_days_out) {
  d_Date date(1582, 10, 4);
  EXPECT_TRUE(sameFields(date++, d_Date(1582, 10, 4)));
  EXPECT_TRUE(sameFields(date, d_Date(1582, 10, 15)));
  EXPECT_EQ(date.getAbsDate(), 2299160);
  EXPECT_TRUE(sameFields(date--, d_Date(1582, 10, 15)));
  EXPECT_EQ(date.getAbsDate(), 2299159);
  EXPECT_EQ(d_Date(1582, 10, 10).is_valid(), 0);
  EXPECT_EQ(d_Date::days_in_month(1500, 2), 29);
  EXPECT_EQ(d_Date::days_in_month(1900, 2), 28);
  EXPECT_EQ(d_Date::days_in_month(2005, 13), 0);
}

TEST(OdmgDate, weekdays_lie_one_to_seven_days_ahead_and_back) {
  const d_Date tuesday(2005, 6, 28);
  EXPECT_EQ(tuesday.day_of_week(), d_Date::Tuesday);
  for (int w = 0; w < 7; ++w) {
    const auto weekday = static_cast<d_Date::Weekday>(w);
    d_Date next = tuesday;
    d_Date previous = tuesday;
    EXPECT_EQ(next.next(weekday).day_of_week(), weekday);
    EXPECT_EQ(previous.previous(weekday).day_of_week(), weekday);
    EXPECT_TRUE((next != tuesday) >= 1 && (next != tuesday) <= 7);
    EXPECT_TRUE((previous != tuesday) <= -1 && (previous != tuesday) >= -7);
  }
  d_Date date = tuesday;
  EXPECT_TRUE(date.next(d_Date::Tuesday) == d_Date(2005, 7, 5));
}

TEST(OdmgDate, is_made_of_days_of_the_year_and_of_other_dates) {
  EXPECT_TRUE(sameFields(d_Date(2004, 60), d_Date(2004, 2, 29)));
  EXPECT_EQ(d_Date(2004, 12, 31).day_of_year(), 366);
  const FixedClock clock;
  EXPECT_TRUE(d_Date() == d_Date(2005, 6, 28) && d_Date::current() == d_Date());
  d_Date date = KtDate(2001, 2, 3);
  EXPECT_TRUE(sameFields(date, d_Date(2001, 2, 3)));
  date = KtDateTime(KtDate(2002, 3, 4), KtTime(5, 6, 7));
  EXPECT_TRUE(sameFields(date, d_Date(2002, 3, 4)));
  date = d_Timestamp(2003, 4, 5, 6);
  EXPECT_TRUE(sameFields(date, d_Date(2003, 4, 5)));
}

TEST(OdmgDate, intervals_move_it_by_whole_days) {
  const d_Date date(2005, 3, 1);
  EXPECT_TRUE(date + d_Interval::FromSeconds(86399.9F) == date);
  EXPECT_TRUE(d_Interval::FromSeconds(-86400) + date == d_Date(2005, 2, 28));
  EXPECT_TRUE(date - d_Interval(365, 23, 59) == d_Date(2004, 3, 1));
  EXPECT_TRUE(date + d_Interval::FromSeconds(std::numeric_limits<float>::quiet_NaN()) == date);
  d_Date far = date;  // no particular day, but no undefined one either
  far += d_Interval::FromSeconds(3e38F);
  far -= d_Interval::FromSeconds(3e38F);
  EXPECT_EQ(d_Date(2005, 7, 1) != date, 122);
  EXPECT_EQ(date != d_Date(2005, 7, 1), -122);
}

TEST(OdmgDate, periods_overlap_when_they_touch_whatever_their_direction) {
  struct Case {
    int days[4];  // of January 2005
    int expected;
  };
  const Case cases[] = {{{10, 1, 10, 31}, 1}, {{1, 10, 11, 31}, 0}, {{1, 31, 5, 6}, 1},   {{6, 5, 31, 1}, 1},
                        {{1, 10, 31, 10}, 1}, {{20, 25, 1, 19}, 0}, {{20, 20, 20, 20}, 1}};
  for (const Case& c : cases) {
    const auto day = [&c](int i) { return d_Date(2005, 1, static_cast<unsigned short>(c.days[i])); };
    EXPECT_EQ(overlaps(day(0), day(1), day(2), day(3)), c.expected);
    EXPECT_EQ(overlaps(day(2), day(3), day(0), day(1)), c.expected);
  }
}

TEST(OdmgInterval, parts_add_up_and_share_the_sign) {
  const d_Interval interval(2, 3, 4, 5.5F);
  EXPECT_EQ(interval.seconds, 183845.5F);
  EXPECT_EQ(interval.day(), 2);
  EXPECT_EQ(interval.hour(), 3);
  EXPECT_EQ(interval.minute(), 4);
  EXPECT_EQ(interval.second(), 5.5F);
  const d_Interval back = -interval;
  EXPECT_EQ(back.day(), -2);
  EXPECT_EQ(back.minute(), -4);
  EXPECT_EQ(back.second(), -5.5F);
  EXPECT_TRUE((interval + back).is_zero());
  EXPECT_TRUE(interval * 2 / 2 == interval && interval > back && interval / 0 == d_Interval());
  const d_Interval huge = d_Interval::FromSeconds(-std::numeric_limits<float>::infinity());
  EXPECT_EQ(huge.day(), -2147483647);
  EXPECT_EQ(huge.second(), static_cast<float>(huge.WholeSeconds() % 60));
}

TEST(OdmgTime, compares_instants_not_clock_faces) {
  const d_Time vienna(14, 0, 0, 2, 0);
  EXPECT_TRUE(vienna == d_Time(12, 0, 0, 0, 0));
  EXPECT_TRUE(vienna == d_Time(17, 45, 0, 5, 45));
  EXPECT_EQ(vienna != d_Time(12, 0, 0.01F, 0, 0), -1);
  EXPECT_TRUE(d_Time(23, 0, 0, -5, 0) > d_Time(4, 0, 0, 0, 0));  // of the next day
  EXPECT_EQ((vienna - d_Time(12, 0, 30, 2, 0)).seconds, 7170);
  EXPECT_TRUE(overlaps(vienna, vienna, d_Time(11, 0, 0, 0, 0), d_Time(12, 0, 0, 0, 0)));
}

TEST(OdmgTime, moves_within_its_day_and_keeps_its_zone) {
  d_Time time(23, 59, 59.5F, -3, -30);
  EXPECT_EQ(time.hundredths, 50);
  time += d_Interval::FromSeconds(0.75F);
  EXPECT_TRUE(time == d_Time(0, 0, 0.25F, -3, -30) && time.tz_hour == -3 && time.tz_minute == -30);
  time -= d_Interval(1, 0, 0, 0.25F);
  EXPECT_TRUE(time.hour == 0 && time.minute == 0 && time.second == 0 && time.hundredths == 0);
  EXPECT_EQ(time.is_valid(), 1);
  EXPECT_EQ(d_Time(12, 0, std::numeric_limits<float>::quiet_NaN(), 0, 0).is_valid(), 1);
  for (const float second : {59.994F, 59.996F, 59.99999F, std::nextafter(60.0F, 0.0F)}) {
    const d_Time below(23, 59, second, 0, 0);
    EXPECT_TRUE(below.is_valid() && below.second == 59 && below.hundredths == 99) << second;
  }
  EXPECT_EQ(d_Time(12, 0, 60, 0, 0).second, 60);
  EXPECT_EQ(d_Time(12, 0, 61, 0, 0).is_valid(), 0);
  EXPECT_EQ(d_Time(12, 0, 0, 1, -30).is_valid(), 0);
}

TEST(OdmgTime, zones_come_from_the_clock_until_one_is_set) {
  FixedClock clock(FixedClock::kTuesday, -210);
  const d_Time now;
  EXPECT_TRUE(now == d_Time(9, 4, 56, -3, -30) && now.tz_minute == -30);
  EXPECT_EQ(d_Time(1, 2).tz_hour, -3);
  d_Time::set_default_Time_Zone(d_Time::GMT2);
  EXPECT_EQ(d_Time(1, 2).time_zone(), d_Time::GMT2);
  EXPECT_EQ(d_Time().tz_hour, -3);
  d_Time::set_default_Time_Zone_to_local();
  for (const int notKnown : {-2171, INT_MAX, INT_MIN}) {
    clock.offset = notKnown;
    EXPECT_TRUE(d_Time(1, 2).tz_hour == 0 && d_Time(1, 2).tz_minute == 0);
  }
  d_Time::set_default_Time_Zone(d_Time::USpacific);
  for (const int noZone : {24, -24, INT_MAX, INT_MIN}) {
    d_Time::set_default_Time_Zone(static_cast<d_Time::Time_Zone>(noZone));
    EXPECT_EQ(d_Time(1, 2).time_zone(), d_Time::USpacific) << noZone;
  }
  d_Time::set_default_Time_Zone_to_local();
}

TEST(OdmgTimestamp, is_taken_apart_and_put_together) {
  const FixedClock clock;
  const d_Timestamp noon(2005, 6, 28, 12, 30, 15);
  EXPECT_TRUE(sameFields(d_Date(noon), d_Date(2005, 6, 28)));
  d_Time time = noon;
  EXPECT_TRUE(time == d_Time(12, 30, 15, 0, 0));
  time = d_Timestamp(2005, 6, 28, 1, 2, 3);
  EXPECT_TRUE(time == d_Time(1, 2, 3, 0, 0));
  time = KtTime(4, 5, 6);
  EXPECT_TRUE(time == d_Time(4, 5, 6, 0, 0));
  EXPECT_TRUE(d_Time::current() == d_Time(12, 34, 56, 0, 0));
  d_Timestamp midnight(d_Date(2004, 2, 29));
  EXPECT_TRUE(midnight == d_Timestamp(2004, 2, 29));
  midnight = d_Date(2005, 3, 1);
  EXPECT_TRUE(midnight == d_Timestamp(2005, 3, 1));
}

TEST(OdmgTimestamp, carries_into_the_date_across_the_calendar_switch) {
  const FixedClock clock;
  EXPECT_TRUE(d_Timestamp::current() == d_Timestamp(2005, 6, 28, 12, 34, 56));
  const d_Timestamp last(1582, 10, 4, 23, 59, 59.99F);
  EXPECT_TRUE(last + d_Interval::FromSeconds(0.01F) == d_Timestamp(1582, 10, 15));
  EXPECT_TRUE(d_Timestamp(1582, 10, 15) - d_Interval(1) == d_Timestamp(1582, 10, 4));
  EXPECT_EQ((d_Timestamp(2005, 3, 1) - d_Timestamp(2005, 2, 28, 23)).seconds, 3600);
  EXPECT_TRUE(d_Timestamp(d_Date(2005, 1, 1), d_Time(0, 30, 0, 1, 0)) == d_Timestamp(2004, 12, 31, 23, 30));
  EXPECT_TRUE(d_Timestamp(2005, 1, 1) < d_Timestamp(2005, 1, 1, 0, 0, 0.01F));
  d_Timestamp far(2005, 1, 1);
  far += d_Interval::FromSeconds(-3e38F);
  EXPECT_TRUE(overlaps(d_Timestamp(2005), d_Timestamp(2004), d_Timestamp(2003), d_Timestamp(2004)));
}

}  // namespace
