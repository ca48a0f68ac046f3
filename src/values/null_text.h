// null_text.h - the texts that stand for null and zero values.
//
// Both are made on first use, so that static initialisation may use them and loading the library costs nothing, and take
// no memory.
#ifndef KT_NULL_TEXT_H
#define KT_NULL_TEXT_H

#include "ktstring.h"

namespace kt {

// What null values print as and scan from: "{NULL}" until it is replaced, which is process-wide and unguarded. The
// reference stays valid. Replacing it keeps the old text when memory is exhausted.
const KtString& nullPrintString();
void setNullPrintString(const KtString& text);

// "0", the last resort of setting a value to null.
const KtString& zeroText();

}  // namespace kt

#endif
