// Prints values of every type under formats from outside, the first part of the input, and converts them to text and back:
// the outcome depends on the value and the format alone, and nothing is read past either.
#include "date_plans.h"
#include "fixed_clock.h"
#include "row_case.h"

using namespace kt_fuzz;

namespace {

void requireWhole(const KtString& text) {
  require(text.StrGet() != nullptr && (text.buffer == nullptr || std::strlen(text.StrGet()) < text.bufferSize));
}

// Replaced or appended, as the type has it.
void requirePrinted(const RowCase& c, const Values& values, const char* format) {
  KtString walked;
  closePlans();
  c.manager->PrintToKtString(c.id, walked, values.get(), format, values.count());
  forgetPlans();
  KtString fresh;
  KtString used("used");
  require(&c.manager->PrintToKtString(c.id, fresh, values.get(), format, values.count()) == &fresh);
  c.manager->PrintToKtString(c.id, used, values.get(), format, values.count());
  requireWhole(fresh);
  require(fresh.EqualsIgnoreLanguage(walked) && fresh.bufferSize == walked.bufferSize);
  KtString appended("used");
  appended += fresh;
  require(used == fresh || used == appended || used == KtString("used"));
}

// What a text means is in the text: converted once more it does not change any more.
void requireConversion(const RowCase& c, const Values& values) {
  KtTypeConvertData* texts = c.manager->ConvertTo(c.id, values.get(), values.count());
  if (texts == nullptr) return;
  for (unsigned long i = 0; i < values.count(); ++i) requireWhole(*texts->GetString(static_cast<int>(i)));
  const Values back(c, values.count(), c.manager->ConvertFrom(c.id, texts, values.count()));
  delete texts;
  KtTypeConvertData* again = c.manager->ConvertTo(c.id, back.get(), back.count());
  const Values same(c, values.count(), c.manager->ConvertFrom(c.id, again, values.count()));
  delete again;
  // Fields that are no date or time have a number of which the calendar makes others.
  const bool isNumber = c.id == KT_ID_KtDate || c.id == KT_ID_KtTime || c.id == KT_ID_KtDateTime;
  if (values.count() == 0 || isNumber) return;
  require(c.manager->Cmp(c.id, same.get(), back.get(), KtCMP_NO_WILDCARDS, values.count(), kMemory) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const RowCase c(data, size);
  const FixedClock clock;
  const Values values = valuesOf(c, c.second);
  const Block format = textBlock(c.first);
  requirePrinted(c, values, textIn(format));
  requirePrinted(c, values, nullptr);
  for (unsigned long i = 0; i < values.count(); ++i) c.manager->IsNullValue(c.id, values.at(i));
  requireConversion(c, values);
  return 0;
}
