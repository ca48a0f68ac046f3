#include "byte_swap.h"

#include <cstring>

#include "clones.h"

namespace kt {
namespace {

// Always inlined, so that it is compiled with the instructions of the clone that it stands in.
template <class Word>
[[gnu::always_inline]] inline unsigned long swapLoop(unsigned char* dst, const unsigned char* src,
                                                     unsigned long count) {
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

template <>
unsigned long swapRun<std::uint16_t>(unsigned char* dst, const unsigned char* src, unsigned long count) {
  return dst == src ? swapInPlace16(dst, count) : swapCopy16(dst, src, count);
}
template <>
unsigned long swapRun<std::uint32_t>(unsigned char* dst, const unsigned char* src, unsigned long count) {
  return dst == src ? swapInPlace32(dst, count) : swapCopy32(dst, src, count);
}
template <>
unsigned long swapRun<std::uint64_t>(unsigned char* dst, const unsigned char* src, unsigned long count) {
  return dst == src ? swapInPlace64(dst, count) : swapCopy64(dst, src, count);
}

}  // namespace kt
