#include "text/digit_vectors.h"

#if defined(KT_FOR_AVX2)

#include "text/powers.h"

#include <immintrin.h>
#include <algorithm>
#include <array>
#include <bit>

namespace kt {
namespace {

// For shuffles that move sixteen bytes: from [16 - n] on, up by n bytes; from [16 + n] on, down by n. Zeros move in.
constexpr auto kMoves = [] {
  std::array<unsigned char, 48> moves{};
  moves.fill(0x80);
  for (unsigned char i = 0; i < 16; ++i) moves[16u + i] = i;
  return moves;
}();

constexpr auto kPowersOfTen = powers<10, 20>();

// How many digits a number has; 0 has one. A bit is 1233/4096 digits, nearly.
inline unsigned long decimalDigits(std::uint64_t number) {
  const std::uint64_t positive = number | 1;
  const unsigned long most = static_cast<unsigned long>(std::bit_width(positive)) * 1233 >> 12;
  return most + (positive >= kPowersOfTen[most] ? 1 : 0);
}

KT_FOR_AVX2 inline __m256i twoHalves(const void* low, const void* high) {
  return _mm256_loadu2_m128i(static_cast<const __m128i*>(high), static_cast<const __m128i*>(low));
}

// What pairs a, b are multiplied by to become a * kFactor + b: pairs of bytes, of words.
template <int kFactor>
KT_FOR_AVX2 inline __m256i bytePairs() {
  return _mm256_set1_epi16(kFactor | 1 << 8);
}
template <int kFactor>
KT_FOR_AVX2 inline __m256i wordPairs() {
  return _mm256_set1_epi32(kFactor | 1 << 16);
}

template <unsigned kBase>
KT_FOR_AVX2 inline ReadNumber readVector(const char* p, unsigned long n) {
  constexpr std::uint64_t kPair = kBase * kBase, kFour = kPair * kPair, kEight = kFour * kFour;
  const unsigned long front = std::max(n, 16ul) - 16;
  const __m256i digits = _mm256_sub_epi8(twoHalves(p, p + front), _mm256_set1_epi8('0'));
  // Both halves end with their last digit and begin with zeros.
  const __m256i moves = twoHalves(kMoves.data() + front, kMoves.data() + (n - front));
  const __m256i ones = _mm256_shuffle_epi8(digits, moves);
  const __m256i isDigit = _mm256_cmpeq_epi8(_mm256_min_epu8(ones, _mm256_set1_epi8(kBase - 1)), ones);
  const __m256i pairs = _mm256_maddubs_epi16(ones, bytePairs<kBase>());
  const __m256i fours = _mm256_madd_epi16(pairs, wordPairs<static_cast<int>(kPair)>());
  const __m256i packed = _mm256_packus_epi32(fours, fours);
  const __m256i eights = _mm256_madd_epi16(packed, wordPairs<static_cast<int>(kFour)>());
  const auto head = static_cast<std::uint64_t>(_mm256_extract_epi64(eights, 0)) >> 32;
  const auto tail = static_cast<std::uint64_t>(_mm256_extract_epi64(eights, 2));
  const std::uint64_t value = (head * kEight + static_cast<std::uint32_t>(tail)) * kEight + (tail >> 32);
  return {value, _mm256_movemask_epi8(isDigit) == -1};
}

// Eight digits a lane: the first half of what is written, behind eight zeros, and the second half.
KT_FOR_AVX2 inline __m256i eightDigits(std::uint64_t head, std::uint64_t high, std::uint64_t low) {
  return _mm256_set_epi64x(static_cast<long long>(low), static_cast<long long>(high), static_cast<long long>(head), 0);
}

// Each lane becomes two of kBits bits: its quotient, then its remainder.
template <int kBits>
KT_FOR_AVX2 inline __m256i splitLanes(__m256i quotients, __m256i remainders) {
  return _mm256_or_si256(quotients, kBits == 32   ? _mm256_slli_epi64(remainders, 32)
                                    : kBits == 16 ? _mm256_slli_epi32(remainders, 16)
                                                  : _mm256_slli_epi16(remainders, 8));
}

// Writes the last `count` digits of 32 and returns their end.
KT_FOR_AVX2 inline char* writeOnes(char* at, __m256i ones, unsigned long count) {
  const unsigned long front = std::max(count, 16ul) - 16;
  const auto* const moves = kMoves.data() + 32;
  const __m256i move = twoHalves(moves - front, moves - (count - front));
  const __m256i text = _mm256_shuffle_epi8(_mm256_add_epi8(ones, _mm256_set1_epi8('0')), move);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(at), _mm256_castsi256_si128(text));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(at + front), _mm256_extracti128_si256(text, 1));
  return at + count;
}

}  // namespace

KT_FOR_AVX2 ReadNumber readOctalVector(const char* p, unsigned long n) { return readVector<8>(p, n); }
KT_FOR_AVX2 ReadNumber readDecimalVector(const char* p, unsigned long n) { return readVector<10>(p, n); }

// Quotients by multiplication, exact for the numbers that occur.
KT_FOR_AVX2 char* writeDecimalVector(char* at, std::uint64_t number) {
  constexpr std::uint64_t kEight = 100000000, kSixteen = kEight * kEight;
  const std::uint64_t tail = number % kSixteen;
  const __m256i eights = eightDigits(number / kSixteen, tail / kEight, tail % kEight);
  const __m256i myriads = _mm256_srli_epi64(_mm256_mul_epu32(eights, _mm256_set1_epi64x(3518437209)), 45);
  const __m256i fours =
      splitLanes<32>(myriads, _mm256_sub_epi64(eights, _mm256_mul_epu32(myriads, _mm256_set1_epi64x(10000))));
  const __m256i hundreds = _mm256_srli_epi16(_mm256_mulhi_epu16(fours, _mm256_set1_epi32(5243)), 3);
  const __m256i pairs =
      splitLanes<16>(hundreds, _mm256_sub_epi16(fours, _mm256_mullo_epi16(hundreds, _mm256_set1_epi32(100))));
  const __m256i tens = _mm256_mulhi_epu16(pairs, _mm256_set1_epi16(6554));
  const __m256i ones = splitLanes<8>(tens, _mm256_sub_epi16(pairs, _mm256_mullo_epi16(tens, _mm256_set1_epi16(10))));
  return writeOnes(at, ones, decimalDigits(number));
}

}  // namespace kt

#endif
