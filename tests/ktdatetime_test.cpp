// KtDateTime: seconds that carry into the date, time zones, the clock.
#include <kttm.h>

#include "fixed_clock.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

std::string text(const KtDateTime& value) {
  KtString out;
  return value.PrintToKtString(out).StrGet();
}

KtDateTime at(int year, int month, int day, int hour, int minute, int second) {
  return {KtDate(year, month, day), KtTime(hour, minute, second)};
}

TEST(KtDateTime, seconds_carry_into_the_date) {
  struct Case {
    KtDateTime from;
    long seconds;
    const char* expected;
  };
  const Case cases[] = {{at(2005, 12, 31, 23, 59, 30), 45, "2006-01-01T00:00:15"},
                        {at(2005, 1, 1, 0, 0, 10), -20, "2004-12-31T23:59:50"},
                        {at(2005, 1, 1, 7, 8, 9), 86400, "2005-01-02T07:08:09"},
                        {at(2005, 1, 1, 7, 8, 9), -86400, "2004-12-31T07:08:09"},
                        {at(2005, 1, 1, 0, 0, 0), -86399, "2004-12-31T00:00:01"},
                        {at(2005, 2, 30, 12, 0, 0), 0, "2005-03-02T12:00:00"},
                        {at(2000, 1, 1, 0, 0, 0), 31622400L, "2001-01-01T00:00:00"}};
  for (const Case& c : cases) {
    KtDateTime value = c.from;
    value.AddSeconds(c.seconds);
    EXPECT_EQ(text(value), c.expected);
  }
}

TEST(KtDateTime, seconds_agree_with_one_count_of_all_seconds) {
  const KtDateTime start = at(2004, 2, 28, 17, 42, 3);
  const long origin = static_cast<long>(start.time);
  for (long move = -200000; move <= 200000; move += 37) {
    KtDateTime value = start;
    value.AddSeconds(move);
    ASSERT_EQ((value.date - start.date) * 86400 + static_cast<long>(value.time), origin + move) << move;
    ASSERT_EQ(value.IsDaTime(), 1);
  }
}

TEST(KtDateTime, time_zones_shift_minutes_and_at_most_one_day) {
  struct Case {
    KtDateTime from;
    int offset;
    const char *local, *utc;
  };
  const Case cases[] = {
      {at(2005, 6, 28, 23, 30, 0), 120, "2005-06-29T01:30:00", "2005-06-28T21:30:00"},
      {at(2005, 6, 29, 0, 30, 0), 120, "2005-06-29T02:30:00", "2005-06-28T22:30:00"},
      {at(2005, 3, 1, 0, 0, 0), -60, "2005-02-28T23:00:00", "2005-03-01T01:00:00"},
      {at(2005, 3, 1, 0, 20, 59), 345, "2005-03-01T06:05:59", "2005-02-28T18:35:59"},
      {at(2005, 12, 31, 18, 15, 0), 345, "2006-01-01T00:00:00", "2005-12-31T12:30:00"},
      {at(2005, 1, 1, 0, 0, 0), -1440, "2004-12-31T00:00:00", "2005-01-02T00:00:00"},
      {at(2005, 1, 1, 12, 0, 0), 0, "2005-01-01T12:00:00", "2005-01-01T12:00:00"},
  };
  FixedClock clock;
  for (const Case& c : cases) {
    clock.offset = c.offset;
    KtDateTime local = c.from;
    KtDateTime utc = c.from;
    EXPECT_EQ(local.ToLocalTime(), 0);
    EXPECT_EQ(utc.ToUTCTime(), 0);
    EXPECT_EQ(text(local), c.local);
    EXPECT_EQ(text(utc), c.utc);
  }
  for (const int notKnown : {-2171, 1441, -1441, INT_MAX, INT_MIN}) {
    clock.offset = notKnown;
    KtDateTime value = cases[0].from;
    EXPECT_EQ(value.ToLocalTime(), -2171);
    EXPECT_EQ(value.ToUTCTime(), -2171);
    EXPECT_TRUE(value == cases[0].from);
  }
}

TEST(KtDateTime, what_is_not_given_comes_from_the_clock) {
  FixedClock clock(FixedClock::kTuesday, 120);
  EXPECT_EQ(text(KtDateTime()), "2005-06-28T14:34:56");
  EXPECT_EQ(text(KtDateTime(KtDate(1999, 1, 2))), "1999-01-02T14:34:56");
  EXPECT_EQ(text(KtDateTime(KtTime(1, 2, 3))), "2005-06-28T01:02:03");
  KtDateTime value = at(1999, 1, 2, 3, 4, 5);
  value = KtTime(6, 7, 8);
  EXPECT_EQ(text(value), "1999-01-02T06:07:08");
  EXPECT_EQ(&value.Now(), &value);
  EXPECT_EQ(text(value), "2005-06-28T14:34:56");
  clock.readings = 0;
  EXPECT_EQ(text(value.NowUTC()), "2005-06-28T12:34:56");
  EXPECT_EQ(clock.readings, 1);
  KtInt64 milliseconds(5);
  EXPECT_EQ(GetSystemTimeInMSSinceTheEpoch(milliseconds), 0);
  EXPECT_EQ(milliseconds.Value(), FixedClock::kTuesday);
}

TEST(KtDateTime, null_and_the_value_called_null_are_two_things) {
  const KtDateTime& zeros = KtDateTime::Null();
  EXPECT_EQ(&zeros, &KtDateTime::Null());
  EXPECT_EQ(zeros.IsNullValue(), 0);
  EXPECT_EQ(zeros.IsDaTime(), 0);
  EXPECT_EQ(text(zeros), "0000-00-00T00:00:00");
  KtDateTime value = zeros;
  EXPECT_EQ(value.SetNullValue(), 0);
  EXPECT_EQ(value.IsNullValue(), 1);
  value.time = KtTime(0, 0, 0);
  EXPECT_EQ(value.IsNullValue(), 0);
}

TEST(KtDateTime, order_takes_dates_with_their_wildcards_and_then_times) {
  const KtDateTime value = at(2005, 6, 28, 12, 0, 0);
  EXPECT_EQ(value.Compare(at(2003, 6, 28, 23, 0, 0)), 2);
  EXPECT_EQ(value.Compare(at(-1, -1, -1, 12, 0, 1)), -1);
  EXPECT_EQ(value != at(2005, 6, 28, 3, 0, 0), 1);
  EXPECT_EQ(value != at(-1, 6, 28, 12, 0, 0), 0);
  EXPECT_EQ(value == at(-1, 6, 28, 12, 0, 0), 0);
  EXPECT_EQ(value == at(2005, 6, 28, 12, 0, 0), 1);
}

// Dates, times and date-times convert to the ODMG classes: none of those may be what is compared in the end.
TEST(KtDateTime, comparisons_never_leave_out_the_time) {
  const FixedClock clock(FixedClock::kTuesday, 120);  // 2005-06-28 14:34:56
  const KtDateTime early = at(2005, 6, 28, 9, 0, 0);
  const KtDateTime late = at(2005, 6, 28, 21, 0, 0);
  EXPECT_TRUE(early < late && late > early && early <= late && late >= early);
  EXPECT_FALSE(late < early || early > late || late <= early || early >= late);
  const KtDate today(2005, 6, 28);  // counts as 14:34:56
  EXPECT_TRUE(early < today && today < late && late > today && today > early && today >= early && late >= today);
  EXPECT_TRUE(today == at(2005, 6, 28, 14, 34, 56) && at(2005, 6, 28, 14, 34, 56) == today);
  EXPECT_EQ(today != late, -1);
  EXPECT_EQ(late != today, 1);
  const KtTime noon(12, 0, 0);  // counts as today's
  EXPECT_TRUE(early <= noon && noon <= late && noon == at(2005, 6, 28, 12, 0, 0) && noon < at(2005, 6, 29, 0, 0, 0));
  EXPECT_EQ(noon != early, 1);
  d_Timestamp stamp(early);
  EXPECT_TRUE(stamp == early && early == stamp);
  EXPECT_EQ(stamp != late, -1);
  stamp = late;
  EXPECT_EQ(late != stamp, 0);
}

#if !defined(_WIN32)
std::string outputOf(const char* command) {
  std::string output;
  if (FILE* pipe = popen(command, "r")) {
    for (int ch; (ch = std::fgetc(pipe)) != EOF && ch != '\n';) output += static_cast<char>(ch);
    if (pclose(pipe) != 0) output.clear();
  }
  return output;
}

void setZone(const char* zone) {
  if (zone != nullptr) {
    setenv("TZ", zone, 1);
  } else {
    unsetenv("TZ");
  }
  tzset();
}

// The rules stand in the variable itself: no time zone files are needed.
TEST(KtDateTime, local_time_is_what_the_date_command_tells_in_any_zone) {
  const char* was = std::getenv("TZ");
  const std::string old = was != nullptr ? was : "";
  for (const char* zone : {"UTC0", "IST-5:30", "<+0545>-5:45", "EST5EDT,M3.2.0,M11.1.0"}) {
    setZone(zone);
    const std::string before = outputOf("date '+%Y-%m-%dT%H:%M:%S'");
    if (before.empty()) GTEST_SKIP() << "no date command";
    const std::string local = text(KtDateTime().Now());
    KtDateTime utc(KtDateTime().NowUTC());
    const std::string utcText = text(utc);
    EXPECT_EQ(utc.ToLocalTime(), 0);
    const std::string after = outputOf("date '+%Y-%m-%dT%H:%M:%S'");
    EXPECT_LE(before, local) << zone;
    EXPECT_LE(local, after) << zone;
    EXPECT_LE(before, text(utc)) << zone;
    EXPECT_LE(text(utc), after) << zone;
    EXPECT_LE(utcText, outputOf("date -u '+%Y-%m-%dT%H:%M:%S'"));
  }
  setZone(was != nullptr ? old.c_str() : nullptr);
}
#endif

}  // namespace
