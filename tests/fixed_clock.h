// fixed_clock.h - a clock that stands still, in place of the system's while it lives.
#ifndef TESTS_FIXED_CLOCK_H
#define TESTS_FIXED_CLOCK_H

#include <ktbs.h>

class FixedClock : public KtClock {
public:
  static constexpr long long kTuesday = 1119962096789;  // 2005-06-28 12:34:56.789 UTC

  explicit FixedClock(long long utcMilliseconds = kTuesday, int offsetMinutes = 0)
      : now(utcMilliseconds), offset(offsetMinutes), old_(KtSetClock(this)) {}
  FixedClock(const FixedClock&) = delete;
  FixedClock& operator=(const FixedClock&) = delete;
  ~FixedClock() override { KtSetClock(old_); }

  long long UtcMilliseconds() override {
    ++readings;
    return now;
  }
  int OffsetMinutes() override { return offset; }

  long long now;
  int offset;
  int readings = 0;

private:
  KtClock* old_;
};

#endif
