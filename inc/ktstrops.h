// ktstrops.h - the operators between strings, and between a string and a text; ktstring.h brings them.
#ifndef KTSTROPS_H
#define KTSTROPS_H

#include "ktstring.h"

#include <type_traits>

// a's characters, then b's, in a's code set and language; empty when memory is exhausted. What is no string stands for the
// string that its constructor makes: "x" + s is in the default 8-bit code set. (In relations that string, too, is empty
// when memory is exhausted.)
KTTM_API KtString operator+(const KtString& a, const KtString& b);

// What a string may be added to and compared with: it stands for the string that its constructor makes. One overload for
// each order of operands, and the very type of the operand, so that the conversions of KtString to numbers never compete.
template <class Text>
concept KtTextOperand = std::is_same_v<Text, char> || std::is_same_v<Text, unsigned short> ||
    std::is_same_v<Text, char*> || std::is_same_v<Text, const char*> || std::is_same_v<Text, unsigned short*> ||
    std::is_same_v<Text, const unsigned short*>;

namespace kt {

// Whether there was memory for the string that was made of a text or character: one without characters, though they have
// some, was clipped to none, or could not be made.
template <KtTextOperand Text>
bool isMade(const KtString& made, Text from) {
  if (made.buffer != nullptr) return true;
  if constexpr (std::is_pointer_v<Text>) {
    unsigned long bytes = 0;
    while (from != nullptr && from[bytes / sizeof *from] != 0) bytes += sizeof *from;
    return bytes == 0 || bytes + sizeof *from > 65533;
  } else {
    return from == 0;
  }
}

}  // namespace kt

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
