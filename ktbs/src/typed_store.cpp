// typed_store.cpp - the typed stores and loads: one body for all fixed widths, one for each direction of the two-byte
// int. The exported functions are covers.
#include <cstdint>
#include <cstring>

#include "byte_swap.h"
#include "clones.h"
#include "format_code.h"
#include "ktbs.h"

namespace {

using Bytes = unsigned char*;
using ConstBytes = const unsigned char*;

// Vectors, so that a piece never passes through the stack; two registers where the machine has 16-byte ones only.
using Piece16 [[gnu::vector_size(16)]] = std::uint8_t;
using Piece32 [[gnu::vector_size(32)]] = std::uint8_t;

// sizeof(Piece) to twice as many bytes, as two pieces that may overlap, both read before either is written.
template <class Piece>
inline void copyTwo(Bytes dst, ConstBytes src, unsigned long bytes) {
  constexpr unsigned long kSize = sizeof(Piece);
  Piece head, tail;
  std::memcpy(&head, src, kSize);
  std::memcpy(&tail, src + bytes - kSize, kSize);
  std::memcpy(dst, &head, kSize);
  std::memcpy(dst + bytes - kSize, &tail, kSize);
}

// The same with two pieces at each end: for 2 to 4 times sizeof(Piece) bytes. Always inlined, into clones too.
template <class Piece>
[[gnu::always_inline]] inline void copyFour(Bytes dst, ConstBytes src, unsigned long bytes) {
  constexpr unsigned long kSize = sizeof(Piece);
  Piece first, second, third, fourth;
  std::memcpy(&first, src, kSize);
  std::memcpy(&second, src + kSize, kSize);
  std::memcpy(&third, src + bytes - 2 * kSize, kSize);
  std::memcpy(&fourth, src + bytes - kSize, kSize);
  std::memcpy(dst, &first, kSize);
  std::memcpy(dst + kSize, &second, kSize);
  std::memcpy(dst + bytes - 2 * kSize, &third, kSize);
  std::memcpy(dst + bytes - kSize, &fourth, kSize);
}

// Out of line, so that the shorter copies need no stack frame.
[[gnu::noinline]] unsigned long copyLong(Bytes dst, ConstBytes src, unsigned long bytes) {
  std::memmove(dst, src, bytes);
  return bytes;
}

KT_CLONES unsigned long copyBeyond64(Bytes dst, ConstBytes src, unsigned long bytes) {
  if (bytes > 128) return copyLong(dst, src, bytes);
  copyFour<Piece32>(dst, src, bytes);
  return bytes;
}

// Returns `bytes`. dst may equal src; both may be null if bytes is 0.
inline unsigned long copyBytes(Bytes dst, ConstBytes src, unsigned long bytes) {
  if (bytes > 64) return copyBeyond64(dst, src, bytes);
  if (bytes > 32) {
    copyFour<Piece16>(dst, src, bytes);
  } else if (bytes > 16) {
    copyTwo<Piece16>(dst, src, bytes);
  } else if (bytes > 8) {
    copyTwo<std::uint64_t>(dst, src, bytes);
  } else if (bytes > 4) {
    copyTwo<std::uint32_t>(dst, src, bytes);
  } else if (bytes > 2) {
    copyTwo<std::uint16_t>(dst, src, bytes);
  } else if (bytes > 0) {
    copyTwo<std::uint8_t>(dst, src, bytes);
  }
  return bytes;
}

// Values of one width, in either direction. A product beyond unsigned long wraps, and no more than the wrapped number
// of bytes is touched.
template <class Word>
inline unsigned long convertRun(void* dst, const void* src, unsigned char format, unsigned long count) {
  const bool swapped = kt::isSwapped(format);
  if (count == 1) {
    Word word;
    std::memcpy(&word, src, sizeof(Word));
    if (swapped) word = kt::swapBytes(word);
    std::memcpy(dst, &word, sizeof(Word));
    return sizeof(Word);
  }
  const unsigned long bytes = count * sizeof(Word);
  if (!swapped) return copyBytes(static_cast<Bytes>(dst), static_cast<ConstBytes>(src), bytes);
  return kt::swapRun<Word>(static_cast<Bytes>(dst), static_cast<ConstBytes>(src), bytes / sizeof(Word));
}

// To code 4: the low two bytes of each value, low byte first. Rising, which is right in place too.
unsigned long narrowRun(Bytes dst, ConstBytes src, unsigned long count) {
  for (unsigned long i = 0; i < count; ++i) {
    std::uint32_t value;
    std::memcpy(&value, src + i * kt::kIntWidth, kt::kIntWidth);
    dst[i * kt::kShortIntWidth] = static_cast<unsigned char>(value);
    dst[i * kt::kShortIntWidth + 1] = static_cast<unsigned char>(value >> 8);
  }
  return count * kt::kShortIntWidth;
}

// From code 4: Half is signed or unsigned and decides how a value is extended. Falling, so that in place a value
// overwrites only what was read before.
template <class Half>
unsigned long widenRun(Bytes dst, ConstBytes src, unsigned long count) {
  for (unsigned long i = count; i-- > 0;) {
    const unsigned low = src[i * kt::kShortIntWidth];
    const unsigned high = src[i * kt::kShortIntWidth + 1];
    const std::int32_t value = static_cast<Half>(low | (high << 8));
    std::memcpy(dst + i * kt::kIntWidth, &value, kt::kIntWidth);
  }
  return count * kt::kShortIntWidth;
}

inline unsigned long storeInts(void* dst, const void* src, unsigned char format, unsigned long count) {
  if (!kt::isShortInt(format)) return convertRun<std::uint32_t>(dst, src, format, count);
  return narrowRun(static_cast<Bytes>(dst), static_cast<ConstBytes>(src), count);
}

template <class Half>
inline unsigned long loadInts(void* dst, const void* src, unsigned char format, unsigned long count) {
  if (!kt::isShortInt(format)) return convertRun<std::uint32_t>(dst, src, format, count);
  return widenRun<Half>(static_cast<Bytes>(dst), static_cast<ConstBytes>(src), count);
}

}  // namespace

unsigned long CharStore(void* dst, const void* src, unsigned char, unsigned long count) {
  return copyBytes(static_cast<Bytes>(dst), static_cast<ConstBytes>(src), count);
}
unsigned long ShortStore(void* dst, const void* src, unsigned char format, unsigned long count) {
  return convertRun<std::uint16_t>(dst, src, format, count);
}
unsigned long LongStore(void* dst, const void* src, unsigned char format, unsigned long count) {
  return convertRun<std::uint32_t>(dst, src, format, count);
}
// Floating-point values move as integers: a float register may change the bits of a signalling NaN.
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
