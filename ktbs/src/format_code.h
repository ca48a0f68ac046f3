// format_code.h - what the low four bits of a format code say about byte order and width.
#ifndef KT_FORMAT_CODE_H
#define KT_FORMAT_CODE_H

#include <bit>

namespace kt {

// DISK: format codes. Every code without a name here is little-endian with a four-byte int.
constexpr unsigned kLikeMemoryCode = 1;
constexpr unsigned kBigEndianCode = 2;
constexpr unsigned kShortIntCode = 4;  // little-endian, two-byte int
constexpr unsigned kMemoryCode = 8;
constexpr unsigned kCodeMask = 0x0F;

// DISK: bytes of an int, and of an int in code 4.
constexpr unsigned long kIntWidth = 4;
constexpr unsigned long kShortIntWidth = 2;

constexpr bool isShortInt(unsigned char format) { return (format & kCodeMask) == kShortIntCode; }

// True when the bytes of a value stand the other way round than in this host's memory.
constexpr bool isSwapped(unsigned char format) {
  const unsigned code = format & kCodeMask;
  if constexpr (std::endian::native == std::endian::little) {
    return code == kBigEndianCode;
  } else {
    return code != kBigEndianCode && code != kLikeMemoryCode && code != kMemoryCode;
  }
}

}  // namespace kt

#endif
