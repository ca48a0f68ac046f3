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

// Whether two texts differ in their first bytes and thus, being ASCII here or there, in their first characters, too.
inline bool differAtOnce(const KtString& text, const KtString& ascii) {
  if (text.CharSize() != 1 || ascii.CharSize() != 1 || text.buffer == nullptr || ascii.buffer == nullptr) return false;
  const auto first = static_cast<unsigned char>(*ascii.buffer);
  return first != 0 && first < 0x80 && *ascii.buffer != *text.buffer;
}

// Whether the text begins with the null print string, character by character, whatever their code sets; every text
// begins with an empty one. Takes no memory.
bool beginsWithNullText(const KtString& text);

// "0", the last resort of setting a value to null.
const KtString& zeroText();

}  // namespace kt

#endif
