// byte_order.h - values with their bytes reversed, and where two words differ.
#ifndef KT_BYTE_ORDER_H
#define KT_BYTE_ORDER_H

#include <bit>
#include <cstdint>

namespace kt {

// Shifts, which compilers turn into their swap instruction or a vector shuffle.
constexpr std::uint16_t swapBytes(std::uint16_t v) { return static_cast<std::uint16_t>((v << 8) | (v >> 8)); }
constexpr std::uint32_t swapBytes(std::uint32_t v) {
  return (v << 24) | ((v & 0xFF00u) << 8) | ((v >> 8) & 0xFF00u) | (v >> 24);
}
constexpr std::uint64_t swapBytes(std::uint64_t v) {
  const std::uint64_t low = swapBytes(static_cast<std::uint32_t>(v));
  return (low << 32) | swapBytes(static_cast<std::uint32_t>(v >> 32));
}

// The first byte, in memory order, in which two words differ; difference is their exclusive or, not 0.
constexpr unsigned long firstDifferentByte(std::uint64_t difference) {
  const bool bigHost = std::endian::native == std::endian::big;
  const int bits = bigHost ? std::countl_zero(difference) : std::countr_zero(difference);
  return static_cast<unsigned long>(bits) / 8;
}

}  // namespace kt

#endif
