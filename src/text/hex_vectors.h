// hex_vectors.h - sixteen hexadecimal digits at once, where the processor is known to have vectors of 16 bytes.
#ifndef KT_HEX_VECTORS_H
#define KT_HEX_VECTORS_H

#include <algorithm>
#include <bit>
#include <cstdint>

#if defined(__x86_64__)
#define KT_HEX_VECTORS 1
#include <emmintrin.h>

namespace kt {

// Lanes of `bytes` that lie between two characters below 127, which do not count.
inline __m128i liesBetween(__m128i bytes, int below, int above) {
  return _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8(static_cast<char>(below))),
                       _mm_cmplt_epi8(bytes, _mm_set1_epi8(static_cast<char>(above))));
}

// The number that n (1 to 16) digits stand for; 16 bytes are read. False, and it means nothing, where one is no digit.
inline bool readHexVector(const char* p, unsigned long n, std::uint64_t& number) {
  const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
  const __m128i isLetter = liesBetween(_mm_or_si128(text, _mm_set1_epi8('a' ^ 'A')), 'a' - 1, 'f' + 1);
  const __m128i isDigit = _mm_or_si128(isLetter, liesBetween(text, '0' - 1, '9' + 1));
  // The low halves of '0' and 'A' are 0 and 1.
  const __m128i digits =
      _mm_add_epi8(_mm_and_si128(text, _mm_set1_epi8(0x0F)), _mm_and_si128(isLetter, _mm_set1_epi8(9)));
  const __m128i pairs = _mm_or_si128(_mm_slli_epi16(digits, 4), _mm_srli_epi16(digits, 8));
  const __m128i bytes = _mm_and_si128(pairs, _mm_set1_epi16(0xFF));
  const auto packed = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(bytes, bytes)));
  number = __builtin_bswap64(packed) >> 4 * (16 - n);  // what lies behind the digits falls out
  return ~static_cast<std::uint32_t>(_mm_movemask_epi8(isDigit)) << (32 - n) == 0;
}

// Writes the digits of a number, of leading zeros those that make up `least` (1 to 16) digits, and returns their end; 16
// bytes are written. letterGap: what lies between '9' + 1 and the first letter.
inline char* writeHexVector(char* at, std::uint64_t number, unsigned letterGap, unsigned least) {
  const unsigned zeros = std::min(static_cast<unsigned>(std::countl_zero(number | 1)) / 4, 16 - least);
  const std::uint64_t packed = __builtin_bswap64(number << 4 * zeros);
  const __m128i bytes = _mm_cvtsi64_si128(static_cast<long long>(packed));
  const __m128i half = _mm_set1_epi8(0x0F);
  const __m128i digits = _mm_unpacklo_epi8(_mm_and_si128(_mm_srli_epi16(bytes, 4), half), _mm_and_si128(bytes, half));
  const __m128i gaps =
      _mm_and_si128(_mm_cmpgt_epi8(digits, _mm_set1_epi8(9)), _mm_set1_epi8(static_cast<char>(letterGap)));
  const __m128i text = _mm_add_epi8(_mm_add_epi8(digits, _mm_set1_epi8('0')), gaps);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(at), text);
  return at + (16 - zeros);
}

}  // namespace kt

#endif
#endif
