// kernels.h - loops over raw bytes that all types share. None needs alignment; all are pure.
#ifndef KT_OPS_KERNELS_H
#define KT_OPS_KERNELS_H

#include <cstdint>

namespace kt {

// The bytes from the beginning that are equal: the offset of the first difference, or `bytes`.
unsigned long equalBytes(const unsigned char* a, const unsigned char* b, unsigned long bytes);

// Exclusive or over `count` elements of the given width, as they lie.
std::uint8_t xor8(const unsigned char* values, unsigned long count);
std::uint16_t xor16(const unsigned char* values, unsigned long count);
std::uint32_t xor32(const unsigned char* values, unsigned long count);

// The hash words of IEEE numbers, exclusive-ored: the bits folded to 32, -0 as 0 and every NaN as kNanWord. With
// `swapped` each value's bytes are reversed first.
constexpr std::uint32_t kNanWord = 0x7FC00000;
std::uint32_t xorFloats(const unsigned char* values, unsigned long count, bool swapped);
std::uint32_t xorDoubles(const unsigned char* values, unsigned long count, bool swapped);

}  // namespace kt

#endif
