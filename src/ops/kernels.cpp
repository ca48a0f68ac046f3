#include "ops/kernels.h"

#include "clones.h"

#include <cstring>

namespace kt {
namespace {

template <class Word>
inline Word read(const unsigned char* p) {
  Word word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

inline std::uint32_t swapBytes(std::uint32_t v) {
  return (v >> 24) | ((v >> 8) & 0xFF00u) | ((v << 8) & 0xFF0000u) | (v << 24);
}

inline std::uint64_t swapBytes(std::uint64_t v) {
  return (static_cast<std::uint64_t>(swapBytes(static_cast<std::uint32_t>(v))) << 32) |
         swapBytes(static_cast<std::uint32_t>(v >> 32));
}

// Four independent sums keep the loads busy; the compiler turns them into vectors.
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

inline std::uint32_t floatWord(std::uint32_t bits) {
  const std::uint32_t magnitude = bits & 0x7FFFFFFFu;
  const std::uint32_t word = magnitude == 0 ? 0 : bits;
  return magnitude > 0x7F800000u ? kNanWord : word;
}

inline std::uint32_t doubleWord(std::uint64_t bits) {
  const std::uint64_t magnitude = bits & 0x7FFFFFFFFFFFFFFFull;
  const std::uint32_t folded = static_cast<std::uint32_t>(bits) ^ static_cast<std::uint32_t>(bits >> 32);
  const std::uint32_t word = magnitude == 0 ? 0 : folded;
  return magnitude > 0x7FF0000000000000ull ? kNanWord : word;
}

template <bool kSwapped>
inline std::uint32_t xorFloatRun(const unsigned char* p, unsigned long count) {
  std::uint32_t sum = 0;
  for (unsigned long i = 0; i < count; ++i) {
    const std::uint32_t bits = read<std::uint32_t>(p + i * 4);
    sum ^= floatWord(kSwapped ? swapBytes(bits) : bits);
  }
  return sum;
}

template <bool kSwapped>
inline std::uint32_t xorDoubleRun(const unsigned char* p, unsigned long count) {
  std::uint32_t sum = 0;
  for (unsigned long i = 0; i < count; ++i) {
    const std::uint64_t bits = read<std::uint64_t>(p + i * 8);
    sum ^= doubleWord(kSwapped ? swapBytes(bits) : bits);
  }
  return sum;
}

inline bool equalBlock(const unsigned char* a, const unsigned char* b) {
  std::uint64_t difference = 0;
  for (unsigned long i = 0; i < kEqualBlock; i += 8)
    difference |= read<std::uint64_t>(a + i) ^ read<std::uint64_t>(b + i);
  return difference == 0;
}

// The loops proper, once for plain x86-64 and once for wider vectors. Clones stay inside this file: their symbols differ
// between compilers.
KT_CLONES unsigned long equalBlocksLoop(const unsigned char* a, const unsigned char* b, unsigned long bytes) {
  unsigned long i = 0;
  // Four blocks a step: one branch for 256 bytes, then single blocks to find the one that differs.
  for (; i + 4 * kEqualBlock <= bytes; i += 4 * kEqualBlock) {
    std::uint64_t difference = 0;
    for (unsigned long k = 0; k < 4 * kEqualBlock; k += 8) {
      difference |= read<std::uint64_t>(a + i + k) ^ read<std::uint64_t>(b + i + k);
    }
    if (difference != 0) break;
  }
  while (i + kEqualBlock <= bytes && equalBlock(a + i, b + i)) i += kEqualBlock;
  return i;
}

KT_CLONES std::uint8_t xor8Loop(const unsigned char* p, unsigned long n) { return xorRun<std::uint8_t>(p, n); }
KT_CLONES std::uint16_t xor16Loop(const unsigned char* p, unsigned long n) { return xorRun<std::uint16_t>(p, n); }
KT_CLONES std::uint32_t xor32Loop(const unsigned char* p, unsigned long n) { return xorRun<std::uint32_t>(p, n); }
KT_CLONES std::uint64_t xor64Loop(const unsigned char* p, unsigned long n) { return xorRun<std::uint64_t>(p, n); }

KT_CLONES std::uint32_t xorFloatsLoop(const unsigned char* p, unsigned long n, bool swapped) {
  return swapped ? xorFloatRun<true>(p, n) : xorFloatRun<false>(p, n);
}

KT_CLONES std::uint32_t xorDoublesLoop(const unsigned char* p, unsigned long n, bool swapped) {
  return swapped ? xorDoubleRun<true>(p, n) : xorDoubleRun<false>(p, n);
}

}  // namespace

unsigned long equalBlocks(const unsigned char* a, const unsigned char* b, unsigned long bytes) {
  const unsigned long i = bytes < kEqualBlock ? 0 : equalBlocksLoop(a, b, bytes);
  return bytes - i < kEqualBlock && std::memcmp(a + i, b + i, bytes - i) == 0 ? bytes : i;
}

std::uint8_t xor8(const unsigned char* values, unsigned long count) { return xor8Loop(values, count); }
std::uint16_t xor16(const unsigned char* values, unsigned long count) { return xor16Loop(values, count); }
std::uint32_t xor32(const unsigned char* values, unsigned long count) { return xor32Loop(values, count); }
std::uint64_t xor64(const unsigned char* values, unsigned long count) { return xor64Loop(values, count); }

std::uint32_t xorFloats(const unsigned char* values, unsigned long count, bool swapped) {
  return xorFloatsLoop(values, count, swapped);
}

std::uint32_t xorDoubles(const unsigned char* values, unsigned long count, bool swapped) {
  return xorDoublesLoop(values, count, swapped);
}

}  // namespace kt
