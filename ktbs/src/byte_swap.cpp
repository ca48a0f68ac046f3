#include "byte_swap.h"

#include <cstring>

#include "clones.h"

namespace kt {
namespace {

// Always inlined, so that it is compiled with the instructions of the clone that it stands in. Four vectors a turn: a
// shorter loop is held up by the fetching of its instructions, and takes twice the time.
template <class Word>
[[gnu::always_inline]] inline unsigned long swapLoop(unsigned char* dst, const unsigned char* src,
                                                     unsigned long count) {
#pragma GCC unroll 4
  for (unsigned long i = 0; i < count; ++i) {
    Word word;
    std::memcpy(&word, src + i * sizeof(Word), sizeof(Word));
    word = swapBytes(word);
    std::memcpy(dst + i * sizeof(Word), &word, sizeof(Word));
  }
  return count * sizeof(Word);
}

KT_CLONES unsigned long swapCopy16(unsigned char* dst, const unsigned char* src, unsigned long count) {
  return swapLoop<std::uint16_t>(dst, src, count);
}
KT_CLONES unsigned long swapCopy32(unsigned char* dst, const unsigned char* src, unsigned long count) {
  return swapLoop<std::uint32_t>(dst, src, count);
}
KT_CLONES unsigned long swapCopy64(unsigned char* dst, const unsigned char* src, unsigned long count) {
  return swapLoop<std::uint64_t>(dst, src, count);
}

// Every second wide store to an address between two boundaries touches two cache lines, which costs once a run outgrows
// the first-level cache. So such a run's first vector is stored where it lies, and all behind it from the next boundary
// on, some values of the first for the second time.
constexpr unsigned long kVector = 32;
constexpr unsigned long kLongRun = 65536;  // bytes

template <class Word>
[[gnu::always_inline]] inline unsigned long swapAligned(unsigned char* dst, const unsigned char* src,
                                                        unsigned long count) {
  unsigned long head = kVector - reinterpret_cast<std::uintptr_t>(dst) % kVector;
  head -= head % sizeof(Word);
  swapLoop<Word>(dst, src, kVector / sizeof(Word));
  swapLoop<Word>(dst + head, src + head, count - head / sizeof(Word));
  return count * sizeof(Word);
}

KT_CLONES unsigned long swapLong16(unsigned char* dst, const unsigned char* src, unsigned long count) {
  return swapAligned<std::uint16_t>(dst, src, count);
}
KT_CLONES unsigned long swapLong32(unsigned char* dst, const unsigned char* src, unsigned long count) {
  return swapAligned<std::uint32_t>(dst, src, count);
}
KT_CLONES unsigned long swapLong64(unsigned char* dst, const unsigned char* src, unsigned long count) {
  return swapAligned<std::uint64_t>(dst, src, count);
}

// In place: the copies would find that their runs overlap and go value by value. Told that both are one run, the
// compiler vectorises these too.
KT_CLONES unsigned long swapInPlace16(unsigned char* run, unsigned long count) {
  return swapLoop<std::uint16_t>(run, run, count);
}
KT_CLONES unsigned long swapInPlace32(unsigned char* run, unsigned long count) {
  return swapLoop<std::uint32_t>(run, run, count);
}
KT_CLONES unsigned long swapInPlace64(unsigned char* run, unsigned long count) {
  return swapLoop<std::uint64_t>(run, run, count);
}

}  // namespace

unsigned long swapRun16(unsigned char* dst, const unsigned char* src, unsigned long count) {
  if (dst == src) return swapInPlace16(dst, count);
  return count < kLongRun / 2 ? swapCopy16(dst, src, count) : swapLong16(dst, src, count);
}
unsigned long swapRun32(unsigned char* dst, const unsigned char* src, unsigned long count) {
  if (dst == src) return swapInPlace32(dst, count);
  return count < kLongRun / 4 ? swapCopy32(dst, src, count) : swapLong32(dst, src, count);
}
unsigned long swapRun64(unsigned char* dst, const unsigned char* src, unsigned long count) {
  if (dst == src) return swapInPlace64(dst, count);
  return count < kLongRun / 8 ? swapCopy64(dst, src, count) : swapLong64(dst, src, count);
}

}  // namespace kt
