// format_code.h - reading the format code that storage, compare and hash operations take.
#ifndef KT_OPS_FORMAT_CODE_H
#define KT_OPS_FORMAT_CODE_H

#include <bit>

namespace kt {

constexpr unsigned char kOrdinaryDiskForm = 0;  // little-endian
constexpr unsigned char kMemoryForm = 8;
constexpr unsigned char kMemoryLayout = 1;
constexpr unsigned char kBigEndian = 2;
constexpr unsigned char kShortInts = 4;  // little-endian, int in two bytes

// The code proper: the high four bits belong to the types that read them.
constexpr unsigned char lowCode(unsigned char format) { return format & 15; }
// For Translate every code with the memory bit is memory form.
constexpr bool isMemoryForm(unsigned char format) { return (format & kMemoryForm) != 0; }
// Whether values of the base library's types lie in memory layout: no conversion is needed to read them.
constexpr bool isHostLayout(unsigned char code) {
  const bool bigHost = std::endian::native == std::endian::big;
  return code == kMemoryForm || code == kMemoryLayout || (code == kBigEndian) == bigHost;
}

}  // namespace kt

#endif
