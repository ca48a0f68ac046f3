// KtTime: arithmetic that carries once in 8-bit fields, order, clock. Its texts: date_text_test.cpp.
#include <kttm.h>

#include "fixed_clock.h"

#include <gtest/gtest.h>

namespace {

std::string fields(const KtTime& t) {
  return std::to_string(t.hour) + ':' + std::to_string(t.minute) + ':' + std::to_string(t.second);
}

TEST(KtTime, seconds_become_fields_and_are_not_reduced_to_a_day) {
  EXPECT_EQ(fields(KtTime(45296L)), "12:34:56");
  EXPECT_EQ(fields(KtTime(90061L)), "25:1:1");
  EXPECT_EQ(KtTime(90061L).IsTime(), 0);
  EXPECT_EQ(fields(KtTime(-3661L)), "-1:-1:-1");
  EXPECT_EQ(fields(KtTime(3600L * 300)), "44:0:0");  // 300 hours in 8 bits
  EXPECT_EQ(static_cast<long>(KtTime(23, 59, 59)), 86399);
}

TEST(KtTime, moving_agrees_with_seconds_of_the_day_for_every_pair_within_one) {
  for (long start : {0L, 1L, 59L, 3599L, 43200L, 86399L}) {
    for (long move = 0; move < 86400; move += 61) {
      const KtTime time(start);
      EXPECT_EQ(static_cast<long>(time + move), (start + move) % 86400);
      EXPECT_EQ(static_cast<long>(time - move), (start - move + 86400) % 86400);
      EXPECT_EQ(static_cast<long>(time - KtTime(move)), (start - move + 86400) % 86400);
    }
  }
}

TEST(KtTime, beyond_a_day_every_field_carries_and_borrows_once_as_it_is) {
  const KtTime noon(12, 0, 0);
  EXPECT_EQ(fields(noon + 86400), "12:0:0");
  EXPECT_EQ(fields(noon + (-60)), "12:-1:0");         // adding never borrows
  EXPECT_EQ(fields(noon - (-3600 * 13)), "25:0:0");   // taking away never carries
  EXPECT_EQ(fields(noon - 3600 * 48), "-12:0:0");     // one day is given back, not two
  EXPECT_EQ(fields(noon + 3600L * 116), "-128:0:0");  // 128 hours in 8 bits
}

TEST(KtTime, steps_wrap_at_midnight_and_take_every_integer_type) {
  KtTime last(23, 59, 59);
  EXPECT_EQ(fields(++last), "0:0:0");
  EXPECT_EQ(fields(--last), "23:59:59");
  EXPECT_EQ(fields(last += 1), "0:0:0");
  EXPECT_EQ(fields(last -= 1), "23:59:59");
  EXPECT_EQ(fields(last - 1), "23:59:58");
  EXPECT_EQ(fields(last - 1u), "23:59:58");
  EXPECT_EQ(fields(last + 1ll), "0:0:0");
  EXPECT_EQ(fields(KtTime(10, 0, 0) - KtTime(11, 0, 0)), "23:0:0");
}

TEST(KtTime, order_goes_by_signed_fields_and_numbers_count_seconds) {
  const KtTime times[] = {KtTime(-128, -128, -128), KtTime(0, 0, -1),  KtTime(0, 0, 0), KtTime(0, 0, 1),
                          KtTime(0, 1, 0),          KtTime(0, 59, 59), KtTime(1, 0, 0), KtTime(127, 0, 0)};
  for (const KtTime& a : times) {
    for (const KtTime& b : times) {
      const int expected = &a < &b ? -1 : &a > &b ? 1 : 0;
      EXPECT_EQ(a != b, expected);
      EXPECT_EQ(a == b, expected == 0);
      EXPECT_EQ(a < b, expected < 0);
      EXPECT_EQ(a >= b, expected >= 0);
    }
  }
  EXPECT_EQ(KtTime(0, 1, 0) == 60, 1);
  EXPECT_EQ(60L == KtTime(0, 1, 0), 1);
  EXPECT_EQ(61 > KtTime(0, 1, 0), 1);
}

TEST(KtTime, validity_null_and_clock) {
  EXPECT_EQ(KtTime(23, 59, 59).IsTime(), 1);
  for (const KtTime& t : {KtTime(24, 0, 0), KtTime(0, 60, 0), KtTime(0, 0, 60), KtTime(-1, 0, 0), KtTime(0, 0, -1)})
    EXPECT_EQ(t.IsTime(), 0);
  KtTime time(0, 0, 0);
  EXPECT_EQ(time.SetNullValue(), 0);
  EXPECT_EQ(time.IsNullValue(), 1);
  EXPECT_EQ(time.IsTime(), 0);
  FixedClock clock(FixedClock::kTuesday, -60);
  EXPECT_EQ(fields(KtTime()), "11:34:56");
  EXPECT_EQ(&time.Now(), &time);
  EXPECT_EQ(fields(time), "11:34:56");
}

}  // namespace
