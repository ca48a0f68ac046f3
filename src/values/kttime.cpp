// kttime.cpp - what of KtTime needs the clock or text.
#include "kttime.h"

#include "ktstring.h"
#include "text/format_or.h"
#include "values/datetime_text.h"
#include "values/null_text.h"

#include <ktbs.h>

namespace {

constexpr char kDefaultFormat[] = "%H:%M:%S";

}  // namespace

KtTime::KtTime() { Now(); }

KtTime& KtTime::Now() {
  KtTimeRecord now;
  bksgettime(now);
  return *this = KtTime(now.hour, now.minute, now.second);
}

KtString& KtTime::PrintToKtString(KtString& out, const char* format) const {
  if (IsNullValue()) return out = kt::nullPrintString();
  const KtDateTime record(KtDate(0, 1, 1), *this);
  return kt::printDateTime(out, record, kt::formatOr(format, kDefaultFormat), kt::FromClock::kDate);
}

void KtTime::ScanFromKtString(const KtString& in, const char* format) {
  KtDateTime record(KtDate(0, 1, 1), *this);
  kt::scanDateTime(in, kt::formatOr(format, kDefaultFormat), &record);
  *this = record.time;
}
