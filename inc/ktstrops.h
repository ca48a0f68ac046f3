// ktstrops.h - the operators between strings, and between a string and a text; ktstring.h brings them.
#ifndef KTSTROPS_H
#define KTSTROPS_H

#include "ktstring.h"

#include <type_traits>

// a's characters, then b's, in a's code set and language; empty when memory is exhausted. What is no string stands for the
// string that its constructor makes: "x" + s is in the default 8-bit code set.
KTTM_API KtString operator+(const KtString& a, const KtString& b);

// What a string may be added to and compared with: it stands for the string that its constructor makes. One overload for
// each order of operands, and the very type of the operand, so that the conversions of KtString to numbers never compete.
template <class Text>
concept KtTextOperand = std::is_same_v<Text, char> || std::is_same_v<Text, unsigned short> ||
    std::is_same_v<Text, char*> || std::is_same_v<Text, const char*> || std::is_same_v<Text, unsigned short*> ||
    std::is_same_v<Text, const unsigned short*>;

template <KtTextOperand Text>
KtString operator+(const KtString& a, Text b) {
  return a + KtString(b);
}
template <KtTextOperand Text>
KtString operator+(Text a, const KtString& b) {
  return KtString(a) + b;
}

// Relational operators, 1 or 0: the default compare operator over the whole strings.
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
