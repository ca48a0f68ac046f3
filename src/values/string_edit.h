// string_edit.h - the one operation behind every change of a string, and short forms of it.
#ifndef KT_STRING_EDIT_H
#define KT_STRING_EDIT_H

#include "ktstring.h"

namespace kt {

constexpr int kOverflowLine = 1361;
constexpr int kCopyOverflowLine = 1150;
constexpr unsigned char kOrdinaryUse = 255;

// What KtString::Rebuild takes, and what it cannot know.
struct TextEdit {
  const char* source = nullptr;
  unsigned char sourceSet = 0;
  unsigned long pos = 0;
  unsigned long srcPos = 0;
  unsigned long count = 0;
  unsigned long repeat = 1;
  KtString::RebuildMode mode = KtString::RebuildMode::kRebuild;
  unsigned char storeFlag = kOrdinaryUse;
  bool mayHoldZero = false;  // the source's part may hold the character 0
  int overflowLine = kOverflowLine;
};

// False when memory ran out: the handler was called and the string is unchanged. The source may lie in s.
bool rebuild(KtString& s, const TextEdit& edit);

// Whether an address lies in the string's own text, which an edit may move.
inline bool liesIn(const KtString& s, const char* address) {
  return reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(s.buffer) < s.bufferSize;
}

// The code set that the string's characters name. A character, and an iterator, take 255 for the default 8-bit set, while a
// string's 255 is a set of 16-bit units like every other from 225 on.
inline unsigned char characterLabel(const KtString& s) {
  return s.codeSet != 255 ? s.codeSet : KtCodeSet::Get(255).Code();
}

// Frees the text; code set and language stay.
void release(KtString& s);

// The size that a text of `size` bytes gets; asserts where it is too large.
unsigned long checkedSize(unsigned long long size, int overflowLine);

// The character position at which appending goes on: Len(), without looking for it where that can be avoided.
unsigned long appendPosition(const KtString& s);

// Appends count characters of a text in sourceSet that holds no zero.
bool append(KtString& s, const char* source, unsigned char sourceSet, unsigned long count);

// Replaces the text by count characters; code set and language become the given ones. A text without characters
// leaves a string without buffer as it is. False, and the string is unchanged, when memory ran out.
bool assign(KtString& s, const char* source, unsigned char codeSet, unsigned char language, unsigned long count,
            bool mayHoldZero = false);

// The same for what the library writes itself: n ASCII characters, in the string's own code set, whichever it is ...
inline bool appendAscii(KtString& s, const char* text, unsigned long n) { return append(s, text, 0, n); }
// ... or as s = text does: default 8-bit code set, default language.
bool assignText(KtString& s, const char* text, unsigned long n);

// Characters pos to pos + count of s, which has them.
KtString slice(const KtString& s, unsigned long pos, unsigned long count);

// A count that a caller gave as 16 bits: 65535 and -1, and whatever exceeds 65535, are "to the end", i.e. `available`;
// other values that are negative in 16 bits are 0.
inline unsigned long countOf(int n, unsigned long available) {
  constexpr int kToEnd = 65535;
  constexpr int kLargest = 32767;
  if (n == -1 || n >= kToEnd) return available;
  if (n < 0 || n > kLargest) return 0;
  const auto count = static_cast<unsigned long>(n);
  return count < available ? count : available;
}

}  // namespace kt

#endif
