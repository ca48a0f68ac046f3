// string_block.h - how large the block behind a string's buffer is.
//
// A string stores no capacity: the block follows from bufferSize. Its last byte lies behind every text and is the
// string's own note "this text may hold a zero before its end". Where the note is clear, the end of the text is the end
// of its bytes, and appending need not look for it; only texts made with an explicit count (records, the constructors
// with n, Fill with the character 0) ever set it.
#ifndef KT_STRING_BLOCK_H
#define KT_STRING_BLOCK_H

#include <bit>

namespace kt {

constexpr unsigned long kSmallestBlock = 32;
constexpr unsigned long kMaxTextBytes = 65533;  // above, terminator included, a text overflows
constexpr unsigned long kTextSizeMask = 0xFFFF;

// Bytes of the block for a text of bufferSize bytes (at most 65,535): 32, 48, 64, 96, ... 65,536; always more than
// bufferSize.
constexpr unsigned long blockSize(unsigned long bufferSize) {
  if (bufferSize < kSmallestBlock) {
    return kSmallestBlock;
  }
  const unsigned long step = std::bit_floor(bufferSize) / 2;
  return (bufferSize & ~(step - 1)) + step;
}

static_assert(blockSize(0) == 32 && blockSize(31) == 32 && blockSize(32) == 48 && blockSize(47) == 48);
static_assert(blockSize(48) == 64 && blockSize(64) == 96 && blockSize(49151) == 49152 && blockSize(65535) == 65536);

inline bool mayHoldZero(const char* block, unsigned long bufferSize) { return block[blockSize(bufferSize) - 1] != 0; }

inline void noteMayHoldZero(char* block, unsigned long bufferSize, bool note) {
  block[blockSize(bufferSize) - 1] = note ? 1 : 0;
}

}  // namespace kt

#endif
