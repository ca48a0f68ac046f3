// first_difference.h - where two texts first differ, found without a branch per character.
//
// The place where neighbours in sorted order differ cannot be predicted, and a wrong guess costs more than comparing 16
// bytes: so all of them are compared, and the answer is the lowest bit of a mask.
#ifndef KT_FIRST_DIFFERENCE_H
#define KT_FIRST_DIFFERENCE_H

#include "order_cursor.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kt {

constexpr unsigned long kFirstBytes = 16;  // of a text, that are compared at once
constexpr unsigned long kBytesBefore = 4;  // of a record, before the text

// Byte i of memory is bits 8 * i to 8 * i + 7.
inline std::uint64_t loadLowFirst(const void* p) {
  std::uint64_t word;
  std::memcpy(&word, p, sizeof word);
  return std::endian::native == std::endian::little ? word : __builtin_bswap64(word);
}

// Of a mask that is not 0.
inline unsigned lowestBit(std::uint32_t mask) { return static_cast<unsigned>(std::countr_zero(mask)); }
inline unsigned lowestBit(std::uint64_t mask) { return static_cast<unsigned>(std::countr_zero(mask)); }

// Bit i of a mask: byte i differs or belongs to the end of the first text, a zero character of kCharSize bytes. In wide
// texts both bits of a character may be set, or one.
#if defined(__SSE2__)

template <unsigned long kCharSize>
std::uint32_t differenceMask(__m128i a, __m128i b) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i same =
      kCharSize == 1 ? _mm_and_si128(_mm_cmpeq_epi8(a, b), a) : _mm_and_si128(_mm_cmpeq_epi16(a, b), a);
  const __m128i ends = kCharSize == 1 ? _mm_cmpeq_epi8(same, zero) : _mm_cmpeq_epi16(same, zero);
  return static_cast<unsigned>(_mm_movemask_epi8(ends));
}

template <unsigned long kCharSize>
std::uint32_t differences16(const char* a, const char* b) {
  return differenceMask<kCharSize>(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a)),
                                   _mm_loadu_si128(reinterpret_cast<const __m128i*>(b)));
}

template <unsigned long kCharSize>
std::uint32_t differences8(const char* a, const char* b) {
  return differenceMask<kCharSize>(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(a)),
                                   _mm_loadl_epi64(reinterpret_cast<const __m128i*>(b))) &
         0xFF;
}

#else

// The top bit of every lane of kCharSize bytes that is 0; nothing is carried from lane to lane.
template <unsigned long kCharSize>
constexpr std::uint64_t zeroLanes(std::uint64_t word) {
  constexpr std::uint64_t low = kCharSize == 1 ? 0x7F7F7F7F7F7F7F7Fu : 0x7FFF7FFF7FFF7FFFu;
  return ~(((word & low) + low) | word | low);
}

template <unsigned long kCharSize>
std::uint32_t differences8(const char* a, const char* b) {
  const std::uint64_t x = loadLowFirst(a);
  const std::uint64_t y = loadLowFirst(b);
  constexpr std::uint64_t tops = kCharSize == 1 ? 0x8080808080808080u : 0x8000800080008000u;
  const std::uint64_t ends = (~zeroLanes<kCharSize>(x ^ y) & tops) | zeroLanes<kCharSize>(x);
  return static_cast<std::uint32_t>((ends >> 7) * 0x0102040810204080u >> 56);  // gathers the tops of the bytes
}

template <unsigned long kCharSize>
std::uint32_t differences16(const char* a, const char* b) {
  return differences8<kCharSize>(a, b) | differences8<kCharSize>(a + 8, b + 8) << 8;
}

#endif

// The same where only what lies between `kBytesBefore` before the texts and byte `end` (4 to 16) may be read, by two
// pieces that overlap; bits from `end` on are 0.
template <unsigned long kCharSize>
[[gnu::always_inline]] inline std::uint32_t differencesBefore(const char* a, const char* b, unsigned long end) {
  const unsigned long first = std::min(end, 8ul);
  const std::uint32_t low = differences8<kCharSize>(a + first - 8, b + first - 8);
  const std::uint32_t high = differences8<kCharSize>(a + end - 8, b + end - 8);
  return (low << first | high << end) >> 8;
}

}  // namespace kt

#endif
