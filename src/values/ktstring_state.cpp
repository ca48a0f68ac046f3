// ktstring_state.cpp - giving up a text, and the strings that the process shares.
#include "null_text.h"
#include "string_edit.h"

// Out of the destructor's sight: the zeros must reach memory, a string may be destroyed twice.
void KtString::Destroy() {
  kt::release(*this);
  codeSet = 0;
  language = 0;
}

const KtString& KtString::EmptyString() {
  static const KtString empty;
  return empty;
}

namespace kt {

KtString& nullPrintString() {
  static KtString text("{NULL}");
  return text;
}

const KtString& zeroText() {
  static const KtString text("0");
  return text;
}

}  // namespace kt
