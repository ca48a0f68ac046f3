// clock.cpp - the clock in use, and the dates and times that derive from one reading of it.
#include <chrono>
#include <ctime>
#include <utility>

#include "calendar.h"
#include "ktbs.h"

namespace {

constexpr int kUnknownOffset = -2171;

constinit KtClock* replacement = nullptr;  // null: the system's clock

long long systemMilliseconds() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::floor<std::chrono::milliseconds>(now).count();
}

// False when the C library cannot tell.
bool localCalendar(long long utcSeconds, std::tm& local) {
#if defined(_WIN32)
  const __time64_t seconds = utcSeconds;  // time_t may have 32 bits
  return _localtime64_s(&local, &seconds) == 0;
#else
  const auto seconds = static_cast<std::time_t>(utcSeconds);
  return seconds == utcSeconds && localtime_r(&seconds, &local);
#endif
}

// The offset that holds at that instant, summer time included.
int systemOffset(long long utcSeconds) {
  std::tm local{};
  if (!localCalendar(utcSeconds, local)) return kUnknownOffset;
  const long long days = kt::daysFromCivil(local.tm_year + 1900LL, local.tm_mon + 1, local.tm_mday);
  const long long localSeconds = ((days * 24 + local.tm_hour) * 60 + local.tm_min) * 60 + local.tm_sec;
  return static_cast<int>((localSeconds - utcSeconds) / 60);
}

long long utcSeconds() { return kt::secondsOfMilliseconds(bksgetmilliseconds()); }

int offsetAt(long long utc) { return replacement ? replacement->OffsetMinutes() : systemOffset(utc); }

long long localSeconds() {
  const long long utc = utcSeconds();
  const int offset = offsetAt(utc);
  return offset == kUnknownOffset ? utc : utc + offset * 60LL;
}

}  // namespace

// Here, so that this library holds the class's virtual table.
KtClock::~KtClock() = default;

KtClock* KtSetClock(KtClock* clock) { return std::exchange(replacement, clock); }

void bksgetdate(KtDateRecord& date) { date = kt::dateOfSeconds(localSeconds()); }

void bksgettime(KtTimeRecord& time) { time = kt::timeOfSeconds(localSeconds()); }

void bksgetsystemtime(KtTimeRecord& time, KtDateRecord& date) {
  const long long utc = utcSeconds();
  time = kt::timeOfSeconds(utc);
  date = kt::dateOfSeconds(utc);
}

int bksgettimezone() { return replacement ? replacement->OffsetMinutes() : systemOffset(utcSeconds()); }

long long bksgetmilliseconds() { return replacement ? replacement->UtcMilliseconds() : systemMilliseconds(); }
