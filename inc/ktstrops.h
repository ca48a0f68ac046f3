// ktstrops.h - the operators between strings, and between a string and a text; ktstring.h brings them.
#ifndef KTSTROPS_H
#define KTSTROPS_H

#include "ktstring.h"

// a's characters, then b's, in a's code set and language; empty when memory is exhausted. What is no string stands for the
// string that its constructor makes: "x" + s is in the default 8-bit code set. (In relations that string, too, is empty
// when memory is exhausted.)
KTTM_API KtString operator+(const KtString& a, const KtString& b);

// A KtTextOperand may be added to and compared with. One overload for each order of operands, and the very type of the
// operand, so that the conversions of KtString to numbers never compete.
template <KtTextOperand Text>
KtString operator+(const KtString& a, Text b) {
  const KtString text(b);
  return kt::isMade(text, b) ? a + text : KtString(a.codeSet, a.language);
}
template <KtTextOperand Text>
KtString operator+(Text a, const KtString& b) {
  const KtString text(a);
  return kt::isMade(text, a) ? text + b : text;
}

// Relational operators, 1 or 0: the default compare operator over the whole strings. What is no string is compared in the
// default language, and so equals no text of a language with another collation kind (ktstrcmp.h).
KTTM_API int operator==(const KtString& a, const KtString& b);
KTTM_API int operator!=(const KtString& a, const KtString& b);
KTTM_API int operator<(const KtString& a, const KtString& b);
KTTM_API int operator>(const KtString& a, const KtString& b);
KTTM_API int operator<=(const KtString& a, const KtString& b);
KTTM_API int operator>=(const KtString& a, const KtString& b);
template <KtTextOperand Text>
int operator==(const KtString& a, Text b) {
  return a == KtString(b);
}
template <KtTextOperand Text>
int operator==(Text a, const KtString& b) {
  return KtString(a) == b;
}
template <KtTextOperand Text>
int operator!=(const KtString& a, Text b) {
  return a != KtString(b);
}
template <KtTextOperand Text>
int operator!=(Text a, const KtString& b) {
  return KtString(a) != b;
}
template <KtTextOperand Text>
int operator<(const KtString& a, Text b) {
  return a < KtString(b);
}
template <KtTextOperand Text>
int operator<(Text a, const KtString& b) {
  return KtString(a) < b;
}
template <KtTextOperand Text>
int operator>(const KtString& a, Text b) {
  return a > KtString(b);
}
template <KtTextOperand Text>
int operator>(Text a, const KtString& b) {
  return KtString(a) > b;
}
template <KtTextOperand Text>
int operator<=(const KtString& a, Text b) {
  return a <= KtString(b);
}
template <KtTextOperand Text>
int operator<=(Text a, const KtString& b) {
  return KtString(a) <= b;
}
template <KtTextOperand Text>
int operator>=(const KtString& a, Text b) {
  return a >= KtString(b);
}
template <KtTextOperand Text>
int operator>=(Text a, const KtString& b) {
  return KtString(a) >= b;
}

#endif
