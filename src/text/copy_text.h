// copy_text.h - copying texts, most of which are short.
#ifndef KT_COPY_TEXT_H
#define KT_COPY_TEXT_H

#include <cstdint>
#include <cstring>

namespace kt {

// As memcpy: two moves that may overlap each other do for up to 16 bytes.
inline void copyText(void* to, const void* from, unsigned long bytes) {
  auto* target = static_cast<unsigned char*>(to);
  const auto* source = static_cast<const unsigned char*>(from);
  const auto move = [&](auto& first, auto& last) {
    std::memcpy(&first, source, sizeof first);
    std::memcpy(&last, source + bytes - sizeof last, sizeof last);
    std::memcpy(target, &first, sizeof first);
    std::memcpy(target + bytes - sizeof last, &last, sizeof last);
  };
  if (bytes > 16) {
    std::memcpy(to, from, bytes);
  } else if (bytes >= 8) {
    std::uint64_t first, last;
    move(first, last);
  } else if (bytes >= 4) {
    std::uint32_t first, last;
    move(first, last);
  } else if (bytes >= 2) {
    std::uint16_t first, last;
    move(first, last);
  } else if (bytes == 1) {
    *target = *source;
  }
}

}  // namespace kt

#endif
