// ktdatetime.cpp - what of KtDateTime needs the clock or text.
#include "ktdatetime.h"

#include "ktint64.h"
#include "ktstring.h"
#include "text/format_or.h"
#include "values/datetime_text.h"
#include "values/local_offset.h"

#include <ktbs.h>

namespace {

// Moves to the given minute of the day, which may lie up to a day before or behind it.
void setMinuteOfDay(KtDateTime& value, int minutes) {
  if (minutes >= kt::kDayMinutes) {
    ++value.date;
    minutes -= kt::kDayMinutes;
  }
  int hour = minutes / 60;
  int minute = minutes % 60;
  if (minutes < 0) {
    --value.date;
    hour += minute == 0 ? 24 : 23;
    minute += minute == 0 ? 0 : 60;
  }
  value.time = KtTime(hour, minute, value.time.second);
}

// direction: 1 adds the offset of local time, -1 takes it away.
int shiftByOffset(KtDateTime& value, int direction) {
  const int offset = kt::localOffset();
  if (offset == kt::kUnknownOffset) return offset;
  setMinuteOfDay(value, value.time.hour * 60 + value.time.minute + direction * offset);
  return 0;
}

}  // namespace

KtDateTime::KtDateTime() = default;
KtDateTime::KtDateTime(const KtDate& aDate) : date(aDate) {}
KtDateTime::KtDateTime(const KtTime& aTime) : time(aTime) {}

KtDateTime& KtDateTime::Now() {
  time.Now();
  date.Today();
  return *this;
}

KtDateTime& KtDateTime::NowUTC() {
  KtTimeRecord now;
  KtDateRecord today;
  bksgetsystemtime(now, today);
  return *this = KtDateTime(KtDate(today.year, today.month, today.day), KtTime(now.hour, now.minute, now.second));
}

const KtDateTime& KtDateTime::Null() {
  static constexpr KtDateTime kZeros(KtDate(0, 0, 0), KtTime(0, 0, 0));
  return kZeros;
}

int KtDateTime::ToLocalTime() { return shiftByOffset(*this, 1); }
int KtDateTime::ToUTCTime() { return shiftByOffset(*this, -1); }

KtString& KtDateTime::PrintToKtString(KtString& out, const char* format) const {
  return kt::printDateTime(out, *this, kt::formatOr(format, kt::kDateTimeFormat));
}

void KtDateTime::ScanFromKtString(const KtString& in, const char* format) {
  kt::scanDateTime(in, kt::formatOr(format, kt::kDateTimeFormat), this);
}

int GetSystemTimeInMSSinceTheEpoch(KtInt64& result) {
  result = KtInt64(bksgetmilliseconds());
  return 0;
}
