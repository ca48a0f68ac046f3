#include "ops/nullable_ops.h"

#include "values/narrow_text.h"
#include "values/null_text.h"

namespace kt {

bool isNullText(const KtString& text) {
  const NarrowText narrow(text);
  const NarrowText null(nullPrintString());
  return null.length() == 0 ? narrow.length() == 0 : narrow.beginsWith(null);
}

KtString nullText() { return nullPrintString(); }

}  // namespace kt
