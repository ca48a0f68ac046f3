// KtDate against a calendar that counts day by day, and the places where it deliberately differs from one.
#include <kttm.h>

#include "fixed_clock.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

bool isLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int lengthOfMonth(int year, int month) {
  static const int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return kLengths[month - 1] + (month == 2 && isLeapYear(year) ? 1 : 0);
}

// Calls each(year, month, day, days to the next month, day number) for all days of the years, counting.
template <class Each>
void walkCalendar(int firstYear, int lastYear, Each each) {
  long number = 2451545;  // 2000-01-01
  for (int year = firstYear; year < 2000; ++year) number -= isLeapYear(year) ? 366 : 365;
  for (int year = firstYear; year <= lastYear; ++year) {
    for (int month = 1; month <= 12; ++month) {
      const int length = lengthOfMonth(year, month);
      for (int day = 1; day <= length; ++day) each(year, month, day, length + 1 - day, number++);
    }
  }
}

TEST(KtDate, agrees_with_a_calendar_counted_day_by_day_over_all_years) {
  long faults = 0;
  walkCalendar(-4900, 32767, [&](int year, int month, int day, int left, long number) {
    const KtDate date(year, month, day);
    const int order = year * 100 + month;
    if (order >= -4800 * 100 + 3) {
      faults += date.dayabs() != number || date.daynxtmonth() != left || date.IsDate() != 1;
      faults += KtDate(year, month, day + left).IsDate();  // one beyond the month
      faults += date.IsLastDayOfTheMonth() != (left == 1);
    }
    if (order >= -4900 * 100 + 3) faults += !(KtDate(number) == date);
    if (order >= 3 && order < 460003) faults += (number - 2451545 + 5 + 7L * 400000) % 7 != date.DayOfTheDate();
  });
  EXPECT_EQ(faults, 0);
}

TEST(KtDate, weekdays_have_names_where_the_rule_gives_one) {
  struct Case {
    int year, month, day;
    const char* name;
  };
  const Case cases[] = {{2000, 1, 1, "Saturday"},  {2005, 6, 28, "Tuesday"}, {1900, 3, 1, "Thursday"},
                        {4600, 2, 28, "Friday"},   {4600, 3, 1, "no day"},   {32767, 1, 2, "no day"},
                        {2024, 2, 29, "Thursday"}, {1970, 1, 1, "Thursday"}};
  for (const Case& c : cases) {
    const KtDate date(c.year, c.month, c.day);
    EXPECT_STREQ(date.PrintDayOfTheDate().StrGet(), c.name) << c.year;
  }
}

TEST(KtDate, days_that_do_not_exist_are_told_apart) {
  struct Case {
    int year, month, day, isDate;
  };
  const Case cases[] = {{2000, 2, 29, 1}, {1900, 2, 29, 0}, {2100, 2, 29, 0},  {2000, 2, 30, 0}, {2005, 13, 1, 0},
                        {2005, 0, 1, 0},  {2005, 1, 0, 0},  {2005, 12, 32, 0}, {0, 1, 1, 1},     {-4000, 12, 31, 1},
                        {2005, -1, 1, 0}, {2005, 4, 31, 0}, {2005, 1, -1, 0},  {0, 0, 0, 0}};
  for (const Case& c : cases) {
    EXPECT_EQ(KtDate(c.year, c.month, c.day).IsDate(), c.isDate) << c.year << '-' << c.month << '-' << c.day;
  }
  KtDate null(2005, 6, 28);
  EXPECT_EQ(null.IsNullValue(), 0);
  EXPECT_EQ(null.SetNullValue(), 0);
  EXPECT_EQ(null.IsNullValue(), 1);
  EXPECT_EQ(null.IsDate(), 0);
}

TEST(KtDate, arithmetic_takes_numbers_of_every_integer_type) {
  const KtDate date(2005, 3, 1);
  EXPECT_TRUE(date - 1 == KtDate(2005, 2, 28));
  EXPECT_TRUE(date - 1L == KtDate(2005, 2, 28));
  EXPECT_TRUE(date + 1u == KtDate(2005, 3, 2));
  EXPECT_TRUE(date + short{31} == KtDate(2005, 4, 1));
  EXPECT_TRUE(date - 1ll == KtDate(2005, 2, 28));
  EXPECT_EQ(1 + KtDate(2000, 1, 1), 2451546);
  EXPECT_EQ(date - KtDate(2004, 3, 1), 365);
  KtDate moved(2004, 3, 1);
  EXPECT_TRUE(--moved == KtDate(2004, 2, 29));
  EXPECT_TRUE(++ ++moved == KtDate(2004, 3, 2));
  EXPECT_TRUE((moved += 365) == KtDate(2005, 3, 2));
  EXPECT_TRUE((moved -= 365) == KtDate(2004, 3, 2));
  // A day beyond the month's end is the day it comes to in March.
  EXPECT_TRUE(KtDate(2000, 2, 30) + 0 == KtDate(2000, 3, 1));
  EXPECT_TRUE(KtDate(2001, 2, 30) + 0 == KtDate(2001, 3, 2));
  EXPECT_EQ(static_cast<long>(KtDate(0L)), 0);
  EXPECT_TRUE(KtDate(0L) == KtDate(-4713, 11, 24));
}

TEST(KtDate, day_numbers_of_absurd_size_wrap_at_32_bits) {
  for (long number : {LONG_MAX, LONG_MIN, 2147483647L, -2147483647L - 1, 536870911L, -68570L, 13689326L}) {
    const KtDate date(number);
    EXPECT_TRUE(date == KtDate(static_cast<long>(static_cast<std::int32_t>(static_cast<std::uint32_t>(number)))));
    (void)(date + number);
    (void)(date - number);
    (void)(date.DayOfTheDate());
  }
  EXPECT_TRUE(KtDate(static_cast<long>(2451545LL + (1LL << 32))) == KtDate(2000, 1, 1));
}

TEST(KtDate, quotient_and_remainder_take_their_sign_from_the_operands) {
  struct Case {
    long a, b, quotient, remainder;
  };
  // The remainder is negative exactly when one operand is.
  const Case cases[] = {{7, 2, 3, 1}, {-7, 2, -3, -1}, {7, -2, -3, -1}, {-7, -2, 3, 1}, {0, 5, 0, 0}, {-6, 3, -2, 0}};
  for (const Case& c : cases) {
    EXPECT_EQ(KtDate::divide(c.a, c.b), c.quotient) << c.a << ' ' << c.b;
    EXPECT_EQ(KtDate::modulo(c.a, c.b), c.remainder) << c.a << ' ' << c.b;
  }
  EXPECT_EQ(KtDate::divide(LONG_MIN, 1), LONG_MIN);
  EXPECT_EQ(KtDate::modulo(LONG_MIN, -1), 0);
}

TEST(KtDate, a_field_of_minus_one_matches_any_but_is_not_equal) {
  const KtDate date(2005, 6, 28);
  struct Case {
    KtDate other;
    int difference;
  };
  const Case cases[] = {{KtDate(2005, 6, 28), 0},   {KtDate(-1, 6, 28), 0},    {KtDate(2005, -1, 28), 0},
                        {KtDate(-1, -1, -1), 0},    {KtDate(2003, 12, 31), 2}, {KtDate(2005, 8, 1), -2},
                        {KtDate(2005, -1, 29), -1}, {KtDate(-1, 5, 31), 1},    {KtDate(-32768, 6, 28), 34773}};
  for (const Case& c : cases) {
    EXPECT_EQ(date != c.other, c.difference);
    EXPECT_EQ(c.other != date, -c.difference);
    EXPECT_EQ(date < c.other, c.difference < 0);
    EXPECT_EQ(date > c.other, c.difference > 0);
    EXPECT_EQ(date <= c.other, c.difference <= 0);
    EXPECT_EQ(date >= c.other, c.difference >= 0);
    EXPECT_EQ(date == c.other, &c == &cases[0]);
    EXPECT_EQ(c.other == date, &c == &cases[0]);
  }
}

TEST(KtDate, against_numbers_a_date_is_its_day_number_in_both_orders) {
  const KtDate date(2000, 1, 1);
  EXPECT_EQ(date == 2451545, 1);
  EXPECT_EQ(2451545L == date, 1);
  EXPECT_EQ(date != 2451545u, 0);
  EXPECT_EQ(0 != date, 1);
  EXPECT_EQ(date < 2451546ll, 1);
  EXPECT_EQ(2451546 < date, 0);
  EXPECT_EQ(date >= short{1}, 1);
  EXPECT_EQ(2451545 <= date, 1);
  static_assert(std::is_same_v<decltype(date == date), int> && std::is_same_v<decltype(1 == date), int>);
}

TEST(KtDate, today_is_the_clock_s_local_date) {
  FixedClock clock(FixedClock::kTuesday, 12 * 60);
  EXPECT_TRUE(KtDate() == KtDate(2005, 6, 29));
  KtDate date(1, 1, 1);
  EXPECT_EQ(&date.Today(), &date);
  EXPECT_TRUE(date == KtDate(2005, 6, 29));
}

}  // namespace
