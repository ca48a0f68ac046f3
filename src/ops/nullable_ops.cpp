#include "ops/nullable_ops.h"

#include "values/null_text.h"

namespace kt {

bool isNullText(const KtString& text) {
  return beginsWithNullText(text) && (text.Len() == 0 || nullPrintString().Len() != 0);
}

KtString nullText() { return nullPrintString(); }

}  // namespace kt
