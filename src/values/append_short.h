// append_short.h - appending or assigning a few characters that the library made itself: numbers.
#ifndef KT_APPEND_SHORT_H
#define KT_APPEND_SHORT_H

#include "ktstring.h"
#include "text/copy_text.h"
#include "text/string_block.h"
#include "text/text_units.h"
#include "values/string_edit.h"

namespace kt {

constexpr unsigned long kShortRoom = 40;

// The end of the text, where kShortRoom bytes may be written before grow() takes some of them in (up to kMostShort, which
// do not overflow either); null where the block has no such room.
constexpr unsigned long kMostShort = 32;
inline char* roomBehind(KtString& s) {
  const unsigned size = s.bufferSize;
  if (s.CharSize() != 1 || !shareBlock(size, size + static_cast<unsigned>(kShortRoom))) return nullptr;
  return mayHoldZero(s.buffer, size) ? nullptr : s.buffer + size - 1;
}
static_assert(kTextSizeMask + 1 - kShortRoom + kMostShort <= kMaxTextBytes);

// What stands behind the text up to `end`, within its block, belongs to it.
inline void grow(KtString& s, char* end) {
  char* const block = s.buffer;
  const auto size = static_cast<unsigned long>(end - block) + 1;
  *end = '\0';
  noteMayHoldZero(block, size, false);
  s.bufferSize = static_cast<std::uint16_t>(size);
}

// Appends n ASCII characters in the string's own code set.
inline void appendShort(KtString& s, const char* text, unsigned long n) {
  const unsigned long old = s.bufferSize;
  const unsigned long size = old + n;
  const bool fits = old != 0 && s.CharSize() == 1 && size <= kMaxTextBytes && blockSize(size) == blockSize(old);
  if (!fits || mayHoldZero(s.buffer, old)) {
    appendAscii(s, text, n);
    return;
  }
  char* const behind = s.buffer + old - 1;
  copyText(behind, text, n);
  grow(s, behind + n);
}

constexpr unsigned long kShortBlock = kSmallestBlock;

// The block of a string whose text is as short, where kShortBlock bytes may be written before setShort() makes some of
// them the text; null where the string has none.
inline char* shortBlock(KtString& s) { return s.bufferSize < kShortBlock ? s.buffer : nullptr; }

// The first n characters of the block become the text, as in s = text. A terminator fits behind them.
inline void setShort(KtString& s, unsigned long n) {
  char* const block = s.buffer;
  block[n] = '\0';
  noteMayHoldZero(block, n + 1, false);
  s.bufferSize = static_cast<std::uint16_t>(n + 1);
  s.codeSet = narrowSet();
  s.language = KtLanguageContext::GetDefaultLanguage();
}

}  // namespace kt

#endif
