// append_short.h - appending a few characters that the library made itself: numbers.
#ifndef KT_APPEND_SHORT_H
#define KT_APPEND_SHORT_H

#include "ktstring.h"
#include "text/copy_text.h"
#include "text/string_block.h"
#include "values/string_edit.h"

namespace kt {

constexpr unsigned long kShortText = 24;

// Appends n ASCII characters, 1 to kShortText, in the string's own code set. kShortText bytes can be read at text, so
// that the usual case copies them all.
inline void appendShort(KtString& s, const char* text, unsigned long n) {
  const unsigned long old = s.bufferSize;
  const unsigned long size = old + n;
  const unsigned long block = blockSize(old);
  const bool fits = old != 0 && s.CharSize() == 1 && size <= kMaxTextBytes && blockSize(size) == block;
  if (!fits || mayHoldZero(s.buffer, old)) {
    appendAscii(s, text, n);
    return;
  }
  char* target = s.buffer + old - 1;
  if (old - 1 + kShortText <= block) {
    std::memcpy(target, text, kShortText);
  } else {
    copyText(target, text, n);
  }
  target[n] = '\0';
  noteMayHoldZero(s.buffer, size, false);
  s.bufferSize = static_cast<std::uint16_t>(size);
}

}  // namespace kt

#endif
