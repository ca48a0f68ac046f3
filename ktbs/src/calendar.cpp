// calendar.cpp - both directions count years from March on, so that the leap day is a year's last, in cycles of 400.
#include "calendar.h"

namespace kt {
namespace {

constexpr long long kSecondsADay = 86400;
constexpr long long kDaysACycle = 146097;  // 400 years
constexpr long long kEpochDay = 719468;    // from 0000-03-01 to 1970-01-01

constexpr long long floorDivide(long long value, long long divisor) {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

// Days before a month that is counted from March: 0, 31, 61, 92, ...
constexpr int daysBeforeMonth(int monthFromMarch) { return (153 * monthFromMarch + 2) / 5; }

}  // namespace

long long daysFromCivil(long long year, int month, int day) {
  const long long marchYear = month > 2 ? year : year - 1;
  const long long cycle = floorDivide(marchYear, 400);
  const long long yearOfCycle = marchYear - cycle * 400;
  const long long leapDays = yearOfCycle / 4 - yearOfCycle / 100;
  return cycle * kDaysACycle + yearOfCycle * 365 + leapDays + daysBeforeMonth((month + 9) % 12) + day - 1 - kEpochDay;
}

KtDateRecord dateOfSeconds(long long seconds) {
  const long long day = floorDivide(seconds, kSecondsADay) + kEpochDay;
  const long long cycle = floorDivide(day, kDaysACycle);
  const int dayOfCycle = static_cast<int>(day - cycle * kDaysACycle);
  // 1460, 36524 and 146096 are the last days of 4, 100 and 400 years: without them every year has 365 days.
  const int yearOfCycle = (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / 146096) / 365;
  const int dayOfYear = dayOfCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
  const int monthFromMarch = (5 * dayOfYear + 2) / 153;
  const int month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  const long long year = cycle * 400 + yearOfCycle + (month <= 2 ? 1 : 0);
  return {static_cast<short>(year), static_cast<signed char>(month),
          static_cast<signed char>(dayOfYear - daysBeforeMonth(monthFromMarch) + 1)};
}

KtTimeRecord timeOfSeconds(long long seconds) {
  const int second = static_cast<int>(seconds - floorDivide(seconds, kSecondsADay) * kSecondsADay);
  return {static_cast<signed char>(second / 3600), static_cast<signed char>(second / 60 % 60),
          static_cast<signed char>(second % 60)};
}

long long secondsOfMilliseconds(long long milliseconds) { return floorDivide(milliseconds, 1000); }

}  // namespace kt
