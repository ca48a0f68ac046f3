// typed_store.cpp - the typed stores, loads and sizes: one body a direction, the exported functions are covers.
#include "byte_swap.h"
#include "ktbs.h"
#include "small_copy.h"

#include <bit>
#include <cstring>
#include <type_traits>

namespace {

using Bytes = unsigned char*;
using ConstBytes = const unsigned char*;

// DISK: format codes in the low four bits; every code without a name is little-endian with a four-byte int.
constexpr unsigned kLikeMemory = 1;
constexpr unsigned kBigEndian = 2;
constexpr unsigned kShortInt = 4;  // little-endian, two-byte int
constexpr unsigned kMemory = 8;
constexpr unsigned kFormatMask = 0x0F;

// DISK: bytes of an int, and of one under code 4.
constexpr unsigned long kIntWidth = 4;
constexpr unsigned long kShortIntWidth = 2;

constexpr bool isSwapped(unsigned char format) {
  const unsigned code = format & kFormatMask;
  if constexpr (std::endian::native == std::endian::little) {
    return code == kBigEndian;
  } else {
    return code != kBigEndian && code != kMemory && code != kLikeMemory;
  }
}

constexpr bool isShortInt(unsigned char format) { return (format & kFormatMask) == kShortInt; }

inline unsigned long swapRun(Bytes dst, ConstBytes src, unsigned long count, std::uint16_t) { return kt::swapRun16(dst, src, count); }
inline unsigned long swapRun(Bytes dst, ConstBytes src, unsigned long count, std::uint32_t) { return kt::swapRun32(dst, src, count); }
inline unsigned long swapRun(Bytes dst, ConstBytes src, unsigned long count, std::uint64_t) { return kt::swapRun64(dst, src, count); }

template <class Word>
inline void copyOne(void* dst, const void* src, bool swapped) {
  Word word;
  std::memcpy(&word, src, sizeof(Word));
  if (swapped) word = kt::swapBytes(word);
  std::memcpy(dst, &word, sizeof(Word));
}

// Values of one fixed width, in either direction. A product beyond unsigned long wraps; no more than the wrapped
// number of bytes is touched.
template <class Word>
inline unsigned long convertRun(void* dst, const void* src, unsigned char format, unsigned long count) {
  const bool swapped = isSwapped(format);
  if (count == 1) {
    copyOne<Word>(dst, src, swapped);
    return sizeof(Word);
  }
  const unsigned long bytes = count * sizeof(Word);
  if (!swapped) return kt::copyBytes(dst, src, bytes);
  return swapRun(static_cast<Bytes>(dst), static_cast<ConstBytes>(src), bytes / sizeof(Word), Word{});
}

// To code 4: the low two bytes of each value, low byte first. Rising, which is right in place too.
unsigned long narrowRun(void* dst, const void* src, unsigned long count) {
  auto* out = static_cast<Bytes>(dst);
  const auto* in = static_cast<ConstBytes>(src);
  for (unsigned long i = 0; i < count; ++i) {
    std::uint32_t value;
    std::memcpy(&value, in + i * kIntWidth, kIntWidth);
    out[i * kShortIntWidth] = static_cast<unsigned char>(value);
    out[i * kShortIntWidth + 1] = static_cast<unsigned char>(value >> 8);
  }
  return count * kShortIntWidth;
}

// From code 4: Half is signed or unsigned and decides how a value is extended. Falling, so that a value written in
// place covers only halves that were read before.
template <class Half>
unsigned long widenRun(void* dst, const void* src, unsigned long count) {
  auto* out = static_cast<Bytes>(dst);
  const auto* in = static_cast<ConstBytes>(src);
  for (unsigned long i = count; i-- > 0;) {
    const unsigned low = in[i * kShortIntWidth];
    const unsigned high = in[i * kShortIntWidth + 1];
    const auto value = static_cast<std::int32_t>(static_cast<Half>(low | (high << 8)));
    std::memcpy(out + i * kIntWidth, &value, kIntWidth);
  }
  return count * kShortIntWidth;
}

unsigned long storeInts(void* dst, const void* src, unsigned char format, unsigned long count) {
  return isShortInt(format) ? narrowRun(dst, src, count) : convertRun<std::uint32_t>(dst, src, format, count);
}

template <class Half>
unsigned long loadInts(void* dst, const void* src, unsigned char format, unsigned long count) {
  return isShortInt(format) ? widenRun<Half>(dst, src, count) : convertRun<std::uint32_t>(dst, src, format, count);
}

}  // namespace

unsigned long CharStore(void* dst, const void* src, unsigned char, unsigned long count) {
  if (count == 1) {
    *static_cast<Bytes>(dst) = *static_cast<ConstBytes>(src);
  } else {
    kt::copyBytes(dst, src, count);
  }
  return count;
}

unsigned long ShortStore(void* dst, const void* src, unsigned char format, unsigned long count) {
  return convertRun<std::uint16_t>(dst, src, format, count);
}
unsigned long LongStore(void* dst, const void* src, unsigned char format, unsigned long count) {
  return convertRun<std::uint32_t>(dst, src, format, count);
}
// As integers: a float register may change the bits of a signalling NaN.
unsigned long FloatStore(void* dst, const void* src, unsigned char format, unsigned long count) {
  return convertRun<std::uint32_t>(dst, src, format, count);
}
unsigned long DoubleStore(void* dst, const void* src, unsigned char format, unsigned long count) {
  return convertRun<std::uint64_t>(dst, src, format, count);
}

unsigned long IntStore(void* dst, const void* src, unsigned char format, unsigned long count) {
  return storeInts(dst, src, format, count);
}
unsigned long IntLoad(void* dst, const void* src, unsigned char format, unsigned long count) {
  return loadInts<std::int16_t>(dst, src, format, count);
}
unsigned long UnsignedStore(void* dst, const void* src, unsigned char format, unsigned long count) {
  return storeInts(dst, src, format, count);
}
unsigned long UnsignedLoad(void* dst, const void* src, unsigned char format, unsigned long count) {
  return loadInts<std::uint16_t>(dst, src, format, count);
}

unsigned long CharSizeGet(const void*, unsigned char, unsigned char, unsigned long count) { return count; }
unsigned long ShortSizeGet(const void*, unsigned char, unsigned char, unsigned long count) { return count * 2; }
unsigned long LongSizeGet(const void*, unsigned char, unsigned char, unsigned long count) { return count * 4; }
unsigned long FloatSizeGet(const void*, unsigned char, unsigned char, unsigned long count) { return count * 4; }
unsigned long DoubleSizeGet(const void*, unsigned char, unsigned char, unsigned long count) { return count * 8; }
unsigned long IntSizeGet(const void*, unsigned char, unsigned char format, unsigned long count) {
  return count * (isShortInt(format) ? kShortIntWidth : kIntWidth);
}

unsigned long CharNullSizeGet(unsigned long count) { return count; }
unsigned long ShortNullSizeGet(unsigned long count) { return count * 2; }
unsigned long LongNullSizeGet(unsigned long count) { return count * 4; }
unsigned long FloatNullSizeGet(unsigned long count) { return count * 4; }
unsigned long DoubleNullSizeGet(unsigned long count) { return count * 8; }
unsigned long IntNullSizeGet(unsigned long count) { return count * kIntWidth; }
