// append_short.h - appending a few characters that the library made itself: numbers.
#ifndef KT_APPEND_SHORT_H
#define KT_APPEND_SHORT_H

#include "ktstring.h"
#include "text/copy_text.h"
#include "text/string_block.h"
#include "values/string_edit.h"

namespace kt {

constexpr unsigned long kShortRoom = 40;

// The end of the text, where kShortRoom bytes may be written before grow() takes some of them in; null where the block
// has no such room.
inline char* roomBehind(KtString& s) {
  const unsigned long size = s.bufferSize;
  const bool fits =
      size != 0 && s.CharSize() == 1 && size + kShortRoom < kMaxTextBytes && size + kShortRoom < blockSize(size);
  return fits && !mayHoldZero(s.buffer, size) ? s.buffer + size - 1 : nullptr;
}

// The n characters behind the text, within its block, belong to it.
inline void grow(KtString& s, unsigned long n) {
  const unsigned long size = s.bufferSize + n;
  s.buffer[size - 1] = '\0';
  noteMayHoldZero(s.buffer, size, false);
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
  copyText(s.buffer + old - 1, text, n);
  grow(s, n);
}

}  // namespace kt

#endif
