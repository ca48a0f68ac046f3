// null_text.h - the texts that stand for null and zero values.
//
// Both are made on first use, so that static initialisation may use them and loading the library costs nothing.
#ifndef KT_NULL_TEXT_H
#define KT_NULL_TEXT_H

#include "ktstring.h"

namespace kt {

// What null values print as and scan from: "{NULL}" until it is replaced. Process-wide and unguarded.
KtString& nullPrintString();

// "0", the last resort of setting a value to null.
const KtString& zeroText();

}  // namespace kt

#endif
