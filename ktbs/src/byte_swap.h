// byte_swap.h - values, and runs of them, with the bytes of each value reversed.
#ifndef KT_BYTE_SWAP_H
#define KT_BYTE_SWAP_H

#include <cstdint>

namespace kt {

// Shifts, which compilers turn into their swap instruction or a vector shuffle.
constexpr std::uint16_t swapBytes(std::uint16_t v) { return static_cast<std::uint16_t>((v << 8) | (v >> 8)); }
constexpr std::uint32_t swapBytes(std::uint32_t v) {
  return (v << 24) | ((v & 0xFF00u) << 8) | ((v >> 8) & 0xFF00u) | (v >> 24);
}
constexpr std::uint64_t swapBytes(std::uint64_t v) {
  const std::uint64_t low = swapBytes(static_cast<std::uint32_t>(v));
  return (low << 32) | swapBytes(static_cast<std::uint32_t>(v >> 32));
}

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
