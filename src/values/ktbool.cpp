// ktbool.cpp - the text forms of KtBoolean.
#include "ktbool.h"

#include "ktstring.h"
#include "values/narrow_text.h"
#include "values/null_text.h"

#include <algorithm>
#include <iterator>

KtString& KtBoolean::PrintToKtString(KtString& out, const char*) const {
  if (IsNullValue()) return out = kt::nullPrintString();
  return out = value == 1 ? "TRUE" : "FALSE";
}

void KtBoolean::ScanFromKtString(const KtString& in, const char*) {
  static constexpr const char* kTrueTexts[] = {"T", "t", "TRUE", "true", "1"};
  if (kt::beginsWithNullText(in)) {
    SetNullValue();
    return;
  }
  const kt::NarrowText text(in);
  if (!text.isThere()) return;
  value = std::any_of(std::begin(kTrueTexts), std::end(kTrueTexts), [&](const char* t) { return text.equals(t); });
}
