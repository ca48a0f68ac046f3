// short_integer.h - printing a 32-bit integer by one of the usual formats, without a detour through pieces.
#ifndef KT_TEXT_SHORT_INTEGER_H
#define KT_TEXT_SHORT_INTEGER_H

#include "text/integer_digits.h"
#include "text/number_spec.h"

#include <cstdint>
#include <cstring>

namespace kt {

constexpr unsigned kShortNumber = 16;  // characters at most, the sign not counted
constexpr unsigned kShortNumberRoom = 32;

// The usual integer formats: "%", perhaps 0, a width, h or l, and the conversion.
struct ShortFormat {
  bool zeros = false;
  bool half = false;
  unsigned width = 0;
  char conversion = 0;
};

// False for every other format. The conversion is not looked at.
inline bool parseShortFormat(const char* at, ShortFormat& format) {
  if (*at++ != '%') return false;
  if (*at < 'A') {  // most formats have no width
    format.zeros = *at == '0';
    if (format.zeros) ++at;
    for (; isDecimalDigit(*at); ++at) {
      format.width = format.width * 10 + static_cast<unsigned>(*at - '0');
      if (format.width > kShortNumber) return false;
    }
  }
  format.half = *at == 'h';
  if (format.half || *at == 'l') ++at;
  format.conversion = *at;
  return *at != '\0' && at[1] == '\0';
}

// Moves the number from `at` to `end` to the right, and blanks in front of it: whole rooms, so that nothing is called.
inline char* rightAlign(char* at, char* end, unsigned width) {
  const auto length = static_cast<unsigned>(end - at);
  if (length >= width) return end;
  char number[kShortNumber];
  std::memcpy(number, at, sizeof number);
  std::memset(at, ' ', sizeof number);
  std::memcpy(at + (width - length), number, sizeof number);
  return at + width;
}
static_assert(kShortNumberRoom >= 2 * kShortNumber);

// As printInteger for the usual formats, "%d", "%hu", "%5ld", "%08x" and the like: writes the text at `at`, without a
// terminator, and returns its end. Null, and nothing is written, for another format. Takes a room of kShortNumberRoom
// bytes; what it holds behind the end means nothing.
[[gnu::always_inline]] inline char* printShortInteger(char* at, const char* format, std::int32_t value) {
  ShortFormat parsed;
  if (!parseShortFormat(format, parsed)) return nullptr;
  auto bits = static_cast<std::uint32_t>(value);
  const unsigned least = parsed.zeros && parsed.width != 0 ? parsed.width : 1;
  char* end;
  switch (parsed.conversion) {
    case 'd': {
      if (parsed.half) bits = static_cast<std::uint32_t>(static_cast<std::int16_t>(bits & 0xFFFF));
      const std::uint32_t signs = bits >> 31;
      *at = '-';
      // The sign takes the place of a zero.
      end = writeAtLeast<10>(at + signs, (bits ^ (0 - signs)) + signs, 0, least > 1 ? least - signs : 1);
      break;
    }
    case 'u': end = writeAtLeast<10>(at, parsed.half ? bits & 0xFFFF : bits, 0, least); break;
    case 'x':
    case 'X': {
      const unsigned letterGap = parsed.conversion == 'x' ? kLowerCaseGap : kUpperCaseGap;
      end = writeAtLeast<16>(at, parsed.half ? bits & 0xFFFF : bits, letterGap, least);
      break;
    }
    default: return nullptr;
  }
  return parsed.zeros || parsed.width == 0 ? end : rightAlign(at, end, parsed.width);
}

}  // namespace kt

#endif
