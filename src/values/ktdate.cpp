// ktdate.cpp - what of KtDate needs the clock or text.
#include "ktdate.h"

#include "ktstring.h"
#include "text/format_or.h"
#include "values/datetime_text.h"
#include "values/null_text.h"

#include <ktbs.h>

namespace {

constexpr char kDefaultFormat[] = "%Y-%m-%d";

}  // namespace

KtDate::KtDate() { Today(); }

KtDate& KtDate::Today() {
  KtDateRecord today;
  bksgetdate(today);
  return *this = KtDate(today.year, today.month, today.day);
}

KtString KtDate::PrintDayOfTheDate() const { return KtString(kt::weekdayName(*this)); }

KtString& KtDate::PrintToKtString(KtString& out, const char* format) const {
  if (IsNullValue()) return out = kt::nullPrintString();
  const KtDateTime record(*this, KtTime(0, 0, 0));
  return kt::printDateTime(out, record, kt::formatOr(format, kDefaultFormat), kt::FromClock::kTime);
}

void KtDate::ScanFromKtString(const KtString& in, const char* format) {
  KtDateTime record(*this, KtTime(0, 0, 0));
  kt::scanDateTime(in, kt::formatOr(format, kDefaultFormat), &record);
  *this = record.date;
}
