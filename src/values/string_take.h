// string_take.h - the fast way of giving a string a new text: what loading records does most.
#ifndef KT_STRING_TAKE_H
#define KT_STRING_TAKE_H

#include "ktstring.h"
#include "text/copy_text.h"
#include "text/string_block.h"

#include <ktbs.h>

#include <cstdlib>

namespace kt {

// Blocks up to here are kept when the text becomes shorter.
constexpr unsigned long kKeptBlock = 512;

// The block for a text of `size` bytes: the string's own where that fits, else a new one, its old text given up. Null
// when memory ran out: the memory handler was called and the string is unchanged.
inline char* blockFor(KtString& s, unsigned long size) {
  const unsigned long wanted = blockSize(size);
  const unsigned long owned = blockSize(s.bufferSize);
  if (s.buffer != nullptr && (wanted == owned || (wanted < owned && owned <= kKeptBlock))) return s.buffer;
  char* block = static_cast<char*>(std::malloc(wanted));
  if (block == nullptr) {
    KtCallMemoryHandler(wanted);
    return nullptr;
  }
  std::free(s.buffer);
  return block;
}

// The string becomes `bytes` bytes (at least one character, at most 65,532 bytes) of a text that does not lie in it, in
// the host's order and in the given code set and language. The text may hold zeros. When memory runs out the string
// stays as it was.
inline void takeText(KtString& s, const char* text, unsigned long bytes, unsigned char codeSet,
                     unsigned char language) {
  const unsigned long charSize = KtCodeSet::CharSizeOf(codeSet);
  const unsigned long size = bytes + charSize;
  char* block = blockFor(s, size);
  if (block == nullptr) return;
  copyText(block, text, bytes);
  std::memset(block + bytes, 0, charSize);
  noteMayHoldZero(block, size, true);
  s.buffer = block;
  s.bufferSize = static_cast<std::uint16_t>(size);
  s.codeSet = codeSet;
  s.language = language;
}

}  // namespace kt

#endif
