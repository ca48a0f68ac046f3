#include "ops/kernels.h"

#include "byte_order.h"
#include "clones.h"

#include <bit>
#include <cstring>

#if defined(KT_FOR_AVX2)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kt {
namespace {

template <class Word>
inline Word read(const unsigned char* p) {
  Word word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

// 256 bytes of independent sums keep the loads busy; the compiler turns them into vectors.
template <class Word>
inline Word xorRun(const unsigned char* p, unsigned long count) {
  constexpr unsigned long kLanes = 256 / sizeof(Word);
  Word lanes[kLanes] = {};
  unsigned long i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    for (unsigned long lane = 0; lane < kLanes; ++lane) {
      lanes[lane] = static_cast<Word>(lanes[lane] ^ read<Word>(p + (i + lane) * sizeof(Word)));
    }
  }
  Word sum = 0;
  if (i != 0) {
    for (Word lane : lanes) sum = static_cast<Word>(sum ^ lane);
  }
  for (; i < count; ++i) sum = static_cast<Word>(sum ^ read<Word>(p + i * sizeof(Word)));
  return sum;
}

// The hash word of one number of each width, and what tells the exceptions. A word's top bit is set in
//   bits & ~(bits - 1)           for -0 alone,
//   magnitude + kBelowInfinity   for a NaN alone,
// which takes additions only and so runs in vectors.
template <class Word>
struct Ieee;

template <>
struct Ieee<std::uint32_t> {
  static constexpr std::uint32_t kBelowInfinity = 0x007FFFFFu;
  static constexpr std::uint32_t kInfinity = 0x7F800000u;
  static std::uint32_t fold(std::uint32_t bits) { return bits; }
};

template <>
struct Ieee<std::uint64_t> {
  static constexpr std::uint64_t kBelowInfinity = 0x000FFFFFFFFFFFFFull;
  static constexpr std::uint64_t kInfinity = 0x7FF0000000000000ull;
  static std::uint32_t fold(std::uint64_t bits) {
    return static_cast<std::uint32_t>(bits) ^ static_cast<std::uint32_t>(bits >> 32);
  }
};

template <class Word>
constexpr Word kTopBit = static_cast<Word>(1) << (sizeof(Word) * 8 - 1);

template <class Word, bool kSwapped>
inline Word readIeee(const unsigned char* p) {
  const Word bits = read<Word>(p);
  return kSwapped ? swapBytes(bits) : bits;
}

// Value by value.
template <class Word, bool kSwapped>
inline std::uint32_t xorIeeeWords(const unsigned char* p, unsigned long count) {
  std::uint32_t sum = 0;
  for (unsigned long i = 0; i < count; ++i) {
    const Word bits = readIeee<Word, kSwapped>(p + i * sizeof(Word));
    const Word magnitude = bits & ~kTopBit<Word>;
    if (magnitude > Ieee<Word>::kInfinity) {
      sum ^= kNanWord;
    } else if (magnitude != 0) {
      sum ^= Ieee<Word>::fold(bits);
    }
  }
  return sum;
}

// By blocks: the bits of all values at once, unless the block holds an exception.
template <class Word, bool kSwapped>
inline std::uint32_t xorIeeeRun(const unsigned char* p, unsigned long count) {
  constexpr unsigned long kBlock = 64;
  std::uint32_t sum = 0;
  unsigned long i = 0;
  for (; i + kBlock <= count; i += kBlock) {
    const unsigned char* block = p + i * sizeof(Word);
    Word all = 0;
    Word exceptions = 0;
    for (unsigned long k = 0; k < kBlock; ++k) {
      const Word bits = readIeee<Word, kSwapped>(block + k * sizeof(Word));
      all ^= bits;
      exceptions |= (bits & ~(bits - 1)) | ((bits & ~kTopBit<Word>)+Ieee<Word>::kBelowInfinity);
    }
    sum ^= (exceptions & kTopBit<Word>) == 0 ? Ieee<Word>::fold(all) : xorIeeeWords<Word, kSwapped>(block, kBlock);
  }
  return sum ^ xorIeeeWords<Word, kSwapped>(p + i * sizeof(Word), count - i);
}

constexpr unsigned long kBlockBytes = 256;

inline bool equalBlock(const unsigned char* a, const unsigned char* b) {
  std::uint64_t difference = 0;
  for (unsigned long i = 0; i < kBlockBytes; i += 8)
    difference |= read<std::uint64_t>(a + i) ^ read<std::uint64_t>(b + i);
  return difference == 0;
}

// Of the block in which a difference lies: bit i tells whether byte i differs.
constexpr unsigned long kMaskBytes = 64;

#if defined(__SSE2__)
inline std::uint64_t unequalBytes(const unsigned char* a, const unsigned char* b) {
  std::uint64_t equal = 0;
  for (unsigned i = 0; i < kMaskBytes; i += 16) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
    const __m128i y = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
    equal |= std::uint64_t{static_cast<std::uint16_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(x, y)))} << i;
  }
  return ~equal;
}
#else
inline std::uint64_t unequalBytes(const unsigned char* a, const unsigned char* b) {
  std::uint64_t unequal = 0;
  for (unsigned i = 0; i < kMaskBytes; ++i) unequal |= std::uint64_t{a[i] != b[i]} << i;
  return unequal;
}
#endif

// Of at least kBlockBytes: how many are found equal, by whole blocks; 0 where the first kMaskBytes are not.
unsigned long equalBlocks(const unsigned char* a, const unsigned char* b, unsigned long bytes) {
  if (unequalBytes(a, b) != 0) return 0;
  unsigned long i = kMaskBytes - reinterpret_cast<std::uintptr_t>(a) % kMaskBytes;  // few loads cross a cache line
  while (i + kBlockBytes <= bytes && equalBlock(a + i, b + i)) i += kBlockBytes;
  return i;
}

// The loops proper, once for plain x86-64 and once for wider vectors. Clones stay inside this file: their symbols differ
// between compilers.
KT_CLONES std::uint8_t xor8Loop(const unsigned char* p, unsigned long n) { return xorRun<std::uint8_t>(p, n); }
KT_CLONES std::uint16_t xor16Loop(const unsigned char* p, unsigned long n) { return xorRun<std::uint16_t>(p, n); }
KT_CLONES std::uint32_t xor32Loop(const unsigned char* p, unsigned long n) { return xorRun<std::uint32_t>(p, n); }

KT_CLONES std::uint32_t xorFloatsLoop(const unsigned char* p, unsigned long n, bool swapped) {
  return swapped ? xorIeeeRun<std::uint32_t, true>(p, n) : xorIeeeRun<std::uint32_t, false>(p, n);
}

KT_CLONES std::uint32_t xorDoublesLoop(const unsigned char* p, unsigned long n, bool swapped) {
  return swapped ? xorIeeeRun<std::uint64_t, true>(p, n) : xorIeeeRun<std::uint64_t, false>(p, n);
}

#if defined(KT_FOR_AVX2)

KT_FOR_AVX2 inline __m256i bytesAt(const unsigned char* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

// Blocks of doubles in vectors of four. What a block shows of itself: the exclusive or of the bits, the least of the 32-bit
// halves as signed numbers (INT32_MIN among the upper halves for -0), and where one of two doubles is a NaN.
struct DoublesBlock {
  static constexpr unsigned long kBytes = 2048;
  static constexpr unsigned long kDoubles = kBytes / sizeof(double);

  __m256i bits[4], least[4];
  __m256d unordered[2];
};

template <int kPair>
KT_FOR_AVX2 inline void takePair(DoublesBlock& block, const unsigned char* p) {
  constexpr int kFirst = 2 * kPair, kSecond = kFirst + 1;
  const __m256i a = bytesAt(p);
  const __m256i b = bytesAt(p + sizeof a);
  block.bits[kFirst] = _mm256_xor_si256(block.bits[kFirst], a);
  block.bits[kSecond] = _mm256_xor_si256(block.bits[kSecond], b);
  block.least[kFirst] = _mm256_min_epi32(block.least[kFirst], a);
  block.least[kSecond] = _mm256_min_epi32(block.least[kSecond], b);
  const __m256d apart = _mm256_cmp_pd(_mm256_castsi256_pd(a), _mm256_castsi256_pd(b), _CMP_UNORD_Q);
  block.unordered[kPair] = _mm256_or_pd(block.unordered[kPair], apart);
}

// Numbers next to 0 look like -0.
KT_FOR_AVX2 inline bool mayHoldExceptions(const DoublesBlock& block) {
  const __m256i least = _mm256_min_epi32(_mm256_min_epi32(block.least[0], block.least[1]),
                                         _mm256_min_epi32(block.least[2], block.least[3]));
  const __m256i negativeZero = _mm256_cmpeq_epi32(least, _mm256_set1_epi32(-0x7FFFFFFF - 1));
  const __m256d unordered = _mm256_or_pd(block.unordered[0], block.unordered[1]);
  return _mm256_movemask_pd(_mm256_or_pd(unordered, _mm256_castsi256_pd(negativeZero))) != 0;
}

// The exclusive or of the bits, in which 0 stands for -0, and the word of a NaN for each.
KT_FOR_AVX2 inline __m256i xorWithExceptions(const unsigned char* p) {
  const __m256i negativeZero = _mm256_castpd_si256(_mm256_set1_pd(-0.0));
  const __m256i nanWord = _mm256_set1_epi64x(kNanWord);
  __m256i all = _mm256_setzero_si256();
  for (const unsigned char* const end = p + DoublesBlock::kBytes; p != end; p += sizeof all) {
    const __m256i bits = bytesAt(p);
    const __m256d number = _mm256_castsi256_pd(bits);
    const __m256i isNan = _mm256_castpd_si256(_mm256_cmp_pd(number, number, _CMP_UNORD_Q));
    const __m256i isDropped = _mm256_or_si256(isNan, _mm256_cmpeq_epi64(bits, negativeZero));
    all = _mm256_xor_si256(all, _mm256_andnot_si256(isDropped, bits));
    all = _mm256_xor_si256(all, _mm256_and_si256(isNan, nanWord));
  }
  return all;
}

KT_FOR_AVX2 inline __m256i xorBlock(const unsigned char* p) {
  const __m256i zero = _mm256_setzero_si256();
  const __m256d none = _mm256_setzero_pd();
  DoublesBlock block{{zero, zero, zero, zero}, {zero, zero, zero, zero}, {none, none}};
#pragma GCC unroll 1
  for (unsigned long i = 0; i < DoublesBlock::kBytes; i += 4 * sizeof zero) {
    takePair<0>(block, p + i);
    takePair<1>(block, p + i + 2 * sizeof zero);
  }
  if (mayHoldExceptions(block)) return xorWithExceptions(p);
  return _mm256_xor_si256(_mm256_xor_si256(block.bits[0], block.bits[1]),
                          _mm256_xor_si256(block.bits[2], block.bits[3]));
}

// Which of kComparedBytes bytes are equal, in vectors.
constexpr unsigned long kVectors = 4, kComparedBytes = kVectors * sizeof(__m256i);

struct ComparedBlock {
  __m256i equal[kVectors];

  KT_FOR_AVX2 ComparedBlock(const unsigned char* a, const unsigned char* b) {
    for (unsigned long i = 0; i < kVectors; ++i)
      equal[i] = _mm256_cmpeq_epi8(bytesAt(a + i * sizeof *equal), bytesAt(b + i * sizeof *equal));
  }
  KT_FOR_AVX2 bool isEqual() const {
    const __m256i all = _mm256_and_si256(_mm256_and_si256(equal[0], equal[1]), _mm256_and_si256(equal[2], equal[3]));
    return _mm256_movemask_epi8(all) == -1;
  }
  // Where it is not equal.
  KT_FOR_AVX2 unsigned long firstDifference() const {
    for (unsigned long i = 0;; ++i) {
      const auto unequal = ~static_cast<unsigned>(_mm256_movemask_epi8(equal[i]));
      if (unequal != 0) return i * sizeof *equal + static_cast<unsigned long>(std::countr_zero(unequal));
    }
  }
};

// As equalBytes, of at least kComparedBytes. Between the first block and the last, which overlap the others, no load of
// `a` crosses a cache line.
KT_FOR_AVX2 unsigned long equalBytesByVectors(const unsigned char* a, const unsigned char* b, unsigned long bytes) {
  const unsigned long last = bytes - kComparedBytes;
  const ComparedBlock first(a, b);
  if (!first.isEqual()) return first.firstDifference();
  unsigned long i = kComparedBytes - reinterpret_cast<std::uintptr_t>(a) % kComparedBytes;
  for (; i < last; i += kComparedBytes) {
    const ComparedBlock block(a + i, b + i);
    if (!block.isEqual()) return i + block.firstDifference();
  }
  const ComparedBlock block(a + last, b + last);
  return block.isEqual() ? bytes : last + block.firstDifference();
}

// As xorIeeeRun.
KT_FOR_AVX2 std::uint32_t xorDoublesByFours(const unsigned char* p, unsigned long n) {
  __m256i all = _mm256_setzero_si256();
  for (; n >= DoublesBlock::kDoubles; n -= DoublesBlock::kDoubles, p += DoublesBlock::kBytes)
    all = _mm256_xor_si256(all, xorBlock(p));
  std::uint64_t lanes[4];
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(lanes), all);
  const std::uint32_t sum = Ieee<std::uint64_t>::fold(lanes[0] ^ lanes[1] ^ lanes[2] ^ lanes[3]);
  return sum ^ xorIeeeWords<std::uint64_t, false>(p, n);
}

#endif

}  // namespace

unsigned long equalBytes(const unsigned char* a, const unsigned char* b, unsigned long bytes) {
#if defined(KT_FOR_AVX2)
  if (bytes >= kComparedBytes && hasAvx2()) return equalBytesByVectors(a, b, bytes);
#endif
  unsigned long i = bytes < kBlockBytes ? 0 : equalBlocks(a, b, bytes);
  for (; i + kMaskBytes <= bytes; i += kMaskBytes) {
    const std::uint64_t unequal = unequalBytes(a + i, b + i);
    if (unequal != 0) return i + static_cast<unsigned long>(std::countr_zero(unequal));
  }
  for (; i + 8 <= bytes; i += 8) {
    const std::uint64_t difference = read<std::uint64_t>(a + i) ^ read<std::uint64_t>(b + i);
    if (difference != 0) return i + firstDifferentByte(difference);
  }
  while (i < bytes && a[i] == b[i]) ++i;
  return i;
}

std::uint8_t xor8(const unsigned char* values, unsigned long count) { return xor8Loop(values, count); }
std::uint16_t xor16(const unsigned char* values, unsigned long count) { return xor16Loop(values, count); }
std::uint32_t xor32(const unsigned char* values, unsigned long count) { return xor32Loop(values, count); }

std::uint32_t xorFloats(const unsigned char* values, unsigned long count, bool swapped) {
  return xorFloatsLoop(values, count, swapped);
}

std::uint32_t xorDoubles(const unsigned char* values, unsigned long count, bool swapped) {
#if defined(KT_FOR_AVX2)
  if (!swapped && count >= DoublesBlock::kDoubles && hasAvx2()) return xorDoublesByFours(values, count);
#endif
  return xorDoublesLoop(values, count, swapped);
}

}  // namespace kt
