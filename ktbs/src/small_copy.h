// small_copy.h - a copy for runs that are mostly short.
#ifndef KT_SMALL_COPY_H
#define KT_SMALL_COPY_H

#include <cstdint>
#include <cstring>

#include "clones.h"

namespace kt {

// Vectors, so that a piece never passes through the stack. Halves, where the machine has registers of 16 bytes only.
using Piece16 [[gnu::vector_size(16)]] = std::uint8_t;
using Piece32 [[gnu::vector_size(32)]] = std::uint8_t;

// sizeof(Piece) to twice as many bytes as two pieces that may overlap, both read before either is written.
template <class Piece>
[[gnu::always_inline]] inline void copyPair(unsigned char* dst, const unsigned char* src, unsigned long bytes) {
  Piece head, tail;
  std::memcpy(&head, src, sizeof(Piece));
  std::memcpy(&tail, src + bytes - sizeof(Piece), sizeof(Piece));
  std::memcpy(dst, &head, sizeof(Piece));
  std::memcpy(dst + bytes - sizeof(Piece), &tail, sizeof(Piece));
}

// The same with two pieces at each end: 2 to 4 times sizeof(Piece) bytes.
template <class Piece>
[[gnu::always_inline]] inline void copyQuad(unsigned char* dst, const unsigned char* src, unsigned long bytes) {
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

[[gnu::noinline]] inline unsigned long copyLong(void* dst, const void* src, unsigned long bytes) {
  std::memmove(dst, src, bytes);
  return bytes;
}

namespace {
KT_CLONES unsigned long copyBeyond64(void* dst, const void* src, unsigned long bytes) {
  if (bytes > 128) [[unlikely]] return copyLong(dst, src, bytes);
  copyQuad<Piece32>(static_cast<unsigned char*>(dst), static_cast<const unsigned char*>(src), bytes);
  return bytes;
}
}

// Copies `bytes` bytes, up to 64 of them without a call, and returns `bytes`. dst may equal src; both may be null if
// bytes is 0.
inline unsigned long copyBytes(void* dstBytes, const void* srcBytes, unsigned long bytes) {
  if (bytes > 64) return copyBeyond64(dstBytes, srcBytes, bytes);
  auto* dst = static_cast<unsigned char*>(dstBytes);
  const auto* src = static_cast<const unsigned char*>(srcBytes);
  if (bytes > 32) {
    copyQuad<Piece16>(dst, src, bytes);
  } else if (bytes > 16) {
    copyPair<Piece16>(dst, src, bytes);
  } else if (bytes > 8) {
    copyPair<std::uint64_t>(dst, src, bytes);
  } else if (bytes > 4) {
    copyPair<std::uint32_t>(dst, src, bytes);
  } else if (bytes > 2) {
    copyPair<std::uint16_t>(dst, src, bytes);
  } else if (bytes > 0) {
    copyPair<std::uint8_t>(dst, src, bytes);
  }
  return bytes;
}

}  // namespace kt

#endif
