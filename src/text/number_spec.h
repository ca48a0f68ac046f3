// number_spec.h - the parts of a number format that printing and scanning share.
#ifndef KT_TEXT_NUMBER_SPEC_H
#define KT_TEXT_NUMBER_SPEC_H

#include <cstdint>
#include <cstring>

namespace kt {

// One conversion directive, that is, what stands behind a percent sign.
struct NumberSpec {
  enum Flag : unsigned char { kLeft = 1, kPlus = 2, kBlank = 4, kAlternate = 8, kZero = 16 };

  unsigned char flags = 0;
  char length = 0;      // 'h', or 'H' for hh; other modifiers have no effect
  char conversion = 0;  // the character that ends the directive, 0 at the end of the format
  bool plain = true;    // neither flags, width nor precision
  int width = 0;
  int precision = -1;         // -1: none
  const char* end = nullptr;  // behind the directive

  bool has(Flag flag) const { return (flags & flag) != 0; }
};

// Far beyond any text that is kept, and safe to add to.
constexpr int kMaxSpecNumber = 1 << 24;

constexpr bool isDecimalDigit(char c) { return c >= '0' && c <= '9'; }

inline int parseSpecNumber(const char*& at) {
  int number = 0;
  for (; isDecimalDigit(*at); ++at) {
    if (number < kMaxSpecNumber) number = number * 10 + (*at - '0');
  }
  return number < kMaxSpecNumber ? number : kMaxSpecNumber;
}

inline unsigned char specFlag(char c) {
  switch (c) {
    case '-': return NumberSpec::kLeft;
    case '+': return NumberSpec::kPlus;
    case ' ': return NumberSpec::kBlank;
    case '#': return NumberSpec::kAlternate;
    case '0': return NumberSpec::kZero;
    default: return 0;
  }
}

inline char parseLengthModifier(const char*& at) {
  char length = 0;
  for (;; ++at) {
    switch (*at) {
      case 'h': length = length == 'h' ? 'H' : 'h'; break;
      case 'l':
      case 'L':
      case 'j':
      case 'z':
      case 't':
      case 'q': break;
      default: return length;
    }
  }
}

// Flags and a precision belong to the syntax of printing.
inline void parseSpecFields(NumberSpec& spec, const char*& at, bool printSyntax) {
  if (printSyntax) {
    while (const unsigned char flag = specFlag(*at)) {
      spec.flags = static_cast<unsigned char>(spec.flags | flag);
      ++at;
    }
  }
  spec.width = parseSpecNumber(at);
  if (printSyntax && *at == '.') {
    ++at;
    spec.precision = parseSpecNumber(at);
  }
}

// `at` stands behind the percent sign.
inline NumberSpec parseNumberSpec(const char* at, bool printSyntax) {
  NumberSpec spec;
  if (*at < 'A') {
    spec.plain = false;
    parseSpecFields(spec, at, printSyntax);
  }
  spec.length = parseLengthModifier(at);
  spec.conversion = *at;
  spec.end = *at == '\0' ? at : at + 1;
  return spec;
}

// Whether the whole format is one conversion directive, as those of the type table are: then `spec` is it.
inline bool parseOnlySpec(const char* format, NumberSpec& spec, bool printSyntax = true) {
  if (format[0] != '%') return false;
  const char* at = format + 1;
  if (*at == 'l') ++at;
  if (*at >= 'A' && at[1] == '\0') {  // at most a letter that means nothing
    spec.conversion = *at;
    return true;
  }
  spec = parseNumberSpec(format + 1, printSyntax);
  return spec.conversion != '\0' && *spec.end == '\0';
}

// Conversions that write digits of an integer.
inline bool isDigitConversion(char c) {
  switch (c) {
    case 'd':
    case 'i':
    case 'u':
    case 'o':
    case 'x':
    case 'X': return true;
    default: return false;
  }
}

inline bool isIntegerConversion(char c) { return c == 'c' || isDigitConversion(c); }

inline bool isRealConversion(char c) {
  switch (c | 0x20) {
    case 'e':
    case 'f':
    case 'g':
    case 'a': return (c & 0x40) != 0;
    default: return false;
  }
}

inline bool isSignedConversion(char c) { return c == 'd' || c == 'i'; }

// The value as a variable of the length modifier's type would hold it.
inline std::uint32_t reduceToLength(std::uint32_t value, const NumberSpec& spec) {
  const bool isSigned = isSignedConversion(spec.conversion);
  if (spec.length == 'h') {
    const auto low = static_cast<std::uint16_t>(value);
    return isSigned ? static_cast<std::uint32_t>(static_cast<std::int16_t>(low)) : low;
  }
  if (spec.length == 'H') {
    const auto low = static_cast<std::uint8_t>(value);
    return isSigned ? static_cast<std::uint32_t>(static_cast<std::int8_t>(low)) : low;
  }
  return value;
}

// Only the first four characters of "ldexp(" count.
inline bool isMantissaExponentFormat(const char* format) {
  return format[0] == 'l' && std::strncmp(format, "ldex", 4) == 0;
}

}  // namespace kt

#endif
