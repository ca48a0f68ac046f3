// byte_swap.h - values, and runs of them, with the bytes of each value reversed.
#ifndef KT_BYTE_SWAP_H
#define KT_BYTE_SWAP_H

#include "byte_order.h"

#include <cstdint>

namespace kt {

// Copies `count` values swapped; returns the bytes written. dst and src may be unaligned; they are equal or do not
// overlap. Word is std::uint16_t, std::uint32_t or std::uint64_t.
unsigned long swapRun16(unsigned char* dst, const unsigned char* src, unsigned long count);
unsigned long swapRun32(unsigned char* dst, const unsigned char* src, unsigned long count);
unsigned long swapRun64(unsigned char* dst, const unsigned char* src, unsigned long count);

template <class Word>
inline unsigned long swapRun(unsigned char* dst, const unsigned char* src, unsigned long count) {
  if constexpr (sizeof(Word) == 2) return swapRun16(dst, src, count);
  if constexpr (sizeof(Word) == 4) return swapRun32(dst, src, count);
  if constexpr (sizeof(Word) == 8) return swapRun64(dst, src, count);
}

}  // namespace kt

#endif
