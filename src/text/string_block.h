// string_block.h - how large the block behind a string's buffer is.
//
// A string stores no capacity: the block follows from bufferSize. Behind the text, at the end of the 16 bytes in which
// it ends, the block holds a note "this text may hold a zero before its end". Where the note is clear, the end of the
// text is the end of its bytes, and appending need not look for it; only texts made with an explicit count (records, the
// constructors with n, Fill with the character 0) ever set it.
#ifndef KT_STRING_BLOCK_H
#define KT_STRING_BLOCK_H

#include <bit>

namespace kt {

constexpr unsigned long kSmallestBlock = 32;
constexpr unsigned long kMaxTextBytes = 65533;  // above, terminator included, a text overflows
constexpr unsigned long kTextSizeMask = 0xFFFF;

// Bytes of the block for a text of bufferSize bytes (at most 65,535): 32, 48, 64, 96, ... 65,536; a multiple of 16, and
// always more than bufferSize.
constexpr unsigned long blockSize(unsigned long bufferSize) {
  if (bufferSize < kSmallestBlock) return kSmallestBlock;
  const unsigned long step = std::bit_floor(bufferSize) / 2;
  return (bufferSize & ~(step - 1)) + step;
}

static_assert(blockSize(0) == 32 && blockSize(31) == 32 && blockSize(32) == 48 && blockSize(47) == 48);
static_assert(blockSize(48) == 64 && blockSize(64) == 96 && blockSize(49151) == 49152 && blockSize(65535) == 65536);

// Whether texts of two sizes, the first from kSmallestBlock up to the second, have one block: their highest two bits are
// alike. From a smaller size on, true only where that is so.
constexpr bool shareBlock(unsigned long size, unsigned long larger) {
  const unsigned long changed = 2 * (size ^ larger);
  return changed < size && changed < (size ^ changed);  // its highest bit is below that of size
}

static_assert(shareBlock(48, 63) && !shareBlock(47, 48) && !shareBlock(63, 64) && !shareBlock(31, 32));
static_assert(shareBlock(32768, 49151) && !shareBlock(32768, 49152) && !shareBlock(0, 40) && !shareBlock(31, 71));

// Is size the smallest of its class: 32, 48, 64, 96, ...? Then a text that grows to it needs a new block.
constexpr bool startsBlock(unsigned long size) {
  const unsigned long lowest = size & (~size + 1);
  return size >= kSmallestBlock && (size == lowest || size == 3 * lowest);
}

static_assert(!startsBlock(16) && startsBlock(32) && startsBlock(48) && !startsBlock(80) && startsBlock(49152));

constexpr unsigned long notePosition(unsigned long bufferSize) { return bufferSize | 15; }

inline bool mayHoldZero(const char* block, unsigned long bufferSize) { return block[notePosition(bufferSize)] != 0; }

inline void noteMayHoldZero(char* block, unsigned long bufferSize, bool note) {
  block[notePosition(bufferSize)] = note ? 1 : 0;
}

}  // namespace kt

#endif
