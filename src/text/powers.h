// powers.h - tables of powers: base^0 to base^(count - 1), modulo 2^64.
#ifndef KT_POWERS_H
#define KT_POWERS_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace kt {

template <std::uint64_t kBase, std::size_t kCount>
constexpr std::array<std::uint64_t, kCount> powers() {
  std::array<std::uint64_t, kCount> table{1};
  for (std::size_t i = 1; i < kCount; ++i) table[i] = kBase * table[i - 1];
  return table;
}

}  // namespace kt

#endif
