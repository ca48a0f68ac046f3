#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <system_error>
#include <type_traits>

#include "text/integer_digits.h"
#include "text/number_format.h"
#include "text/number_spec.h"

namespace kt {
namespace {

// The C locale's white space.
bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c; }

// The part of the text that is still to be read.
struct Cursor {
  const char* at;
  const char* end;

  bool atEnd() const { return at == end; }
  void skipBlanks() {
    while (at != end && isBlank(*at)) ++at;
  }
  bool take(char c) {
    if (at == end || *at != c) return false;
    ++at;
    return true;
  }
  // Takes a letter in either case; c is lower case.
  bool takeLetter(char c) {
    if (at == end || lowerCase(*at) != c) return false;
    ++at;
    return true;
  }
  // Takes a sign, if there is one; whether it is '-'.
  bool takeMinus() {
    if (atEnd()) return false;
    const bool isMinus = *at == '-';
    at += static_cast<int>(isMinus) | static_cast<int>(*at == '+');
    return isMinus;
  }
  // What a width leaves of it.
  Cursor limited(int width) const { return width > 0 && width < end - at ? Cursor{at, at + width} : *this; }
};

// ---- integers -----------------------------------------------------------------------------------------------------

constexpr unsigned kNoDigit = 99;

unsigned digitValue(char c) {
  if (isDecimalDigit(c)) return static_cast<unsigned>(c - '0');
  const char lower = lowerCase(c);
  return lower >= 'a' && lower <= 'f' ? static_cast<unsigned>(lower - 'a') + 10 : kNoDigit;
}

struct Magnitude {
  std::uint64_t value = 0;  // stays above 32 bits once it is
  bool hasDigits = false;

  template <unsigned kBase>
  void take(Cursor& in) {
    unsigned count = 8;
    while (count == 8 && !in.atEnd()) {
      std::uint64_t longer = value;
      count = continueNumber<kBase>(in.at, static_cast<unsigned long>(in.end - in.at), longer);
      if (value >> 32 == 0) value = longer;
      hasDigits |= count != 0;
      in.at += count;
    }
  }
  void take(Cursor& in, unsigned base) {
    switch (base) {
      case 8: return take<8>(in);
      case 16: return take<16>(in);
      default: return take<10>(in);
    }
  }
};

std::uint32_t saturateSigned(bool negative, std::uint64_t magnitude) {
  constexpr std::uint32_t kMax = std::numeric_limits<std::int32_t>::max();
  const std::uint32_t limit = negative ? kMax + 1 : kMax;
  const std::uint32_t kept = magnitude < limit ? static_cast<std::uint32_t>(magnitude) : limit;
  return negative ? 0 - kept : kept;
}

std::uint32_t saturateUnsigned(bool negative, std::uint64_t magnitude) {
  if (magnitude >> 32 != 0) return std::numeric_limits<std::uint32_t>::max();
  const auto kept = static_cast<std::uint32_t>(magnitude);
  return negative ? 0 - kept : kept;
}

// 0 asks for detection by prefix.
unsigned scanBase(char conversion) {
  switch (conversion) {
    case 'i': return 0;
    case 'o': return 8;
    case 'x':
    case 'X': return 16;
    default: return 10;
  }
}

// Reads "0x", "0" or nothing in front of the digits. The 0 counts as a digit: "0x" alone is 0.
unsigned takeBasePrefix(Cursor& in, unsigned base, Magnitude& magnitude) {
  if (base == 10 || !in.take('0')) return base == 0 ? 10 : base;
  magnitude.hasDigits = true;
  if (base != 8 && in.takeLetter('x')) return 16;
  return base == 0 ? 8 : base;
}

bool readCharacter(Cursor& in, std::uint32_t& value) {
  if (in.atEnd()) return false;
  value = static_cast<unsigned char>(*in.at++);
  return true;
}

std::uint32_t storedInteger(const NumberSpec& spec, bool negative, std::uint64_t magnitude) {
  const bool isSigned = isSignedConversion(spec.conversion);
  return reduceToLength(isSigned ? saturateSigned(negative, magnitude) : saturateUnsigned(negative, magnitude), spec);
}

bool readInteger(Cursor& in, const NumberSpec& spec, std::uint32_t& value) {
  if (spec.conversion == 'c') return readCharacter(in, value);
  in.skipBlanks();
  Cursor number = in.limited(spec.width);
  const bool negative = number.takeMinus();
  Magnitude magnitude;
  const unsigned base = takeBasePrefix(number, scanBase(spec.conversion), magnitude);
  magnitude.take(number, base);
  if (!magnitude.hasDigits) return false;
  in.at = number.at;
  value = storedInteger(spec, negative, magnitude.value);
  return true;
}

// A number alone, without blanks, by "%d", "%u" or "%x", with or without an l. False, and nothing is set, for all else.
bool readPaddedInteger(const char* at, const char* end, const char* format, std::uint32_t& value) {
  if (format[0] != '%') return false;
  const char conversion = format[format[1] == 'l' ? 2 : 1];
  if (conversion == '\0' || format[format[1] == 'l' ? 3 : 2] != '\0') return false;
  const bool isHex = conversion == 'x';
  if (!isHex && conversion != 'd' && conversion != 'u') return false;
  const bool negative = *at == '-';
  if (negative || *at == '+') ++at;
  if (isHex && at[0] == '0' && lowerCase(at[1]) == 'x') at += 2;
  const auto count = static_cast<unsigned long>(end - at);
  if (count - 1 > 15) return false;
  const ReadNumber number = isHex ? readPaddedDigits<16>(at, count) : readPaddedDigits<10>(at, count);
  if (!number.isNumber) return false;
  value = conversion == 'd' ? saturateSigned(negative, number.value) : saturateUnsigned(negative, number.value);
  return true;
}

// ---- reals --------------------------------------------------------------------------------------------------------

bool takeWord(Cursor& in, const char* word) {
  Cursor tried = in;
  for (; *word != '\0'; ++word) {
    if (!tried.takeLetter(*word)) return false;
  }
  in = tried;
  return true;
}

// "inf" must not be the beginning of a broken "infinity".
template <class Real>
bool takeSpecial(Cursor& in, Real& value) {
  if (takeWord(in, "nan")) {
    value = std::numeric_limits<Real>::quiet_NaN();
    return true;
  }
  Cursor tried = in;
  if (!takeWord(tried, "inf")) return false;
  if (takeWord(tried, "i") && !takeWord(tried, "nity")) return false;
  in = tried;
  value = std::numeric_limits<Real>::infinity();
  return true;
}

// Whether a number outside the range of its type is above 1: the place of its first digit that is not 0, plus the exponent.
bool isHuge(Cursor number, unsigned base, char exponentLetter) {
  constexpr long long kEnough = 1LL << 40;
  long long place = 0;
  bool started = false;
  bool fraction = false;
  for (; !number.atEnd(); ++number.at) {
    if (*number.at == '.') {
      fraction = true;
    } else if (digitValue(*number.at) >= base) {
      break;
    } else {
      started = started || *number.at != '0';
      if (started != fraction) place += started ? 1 : -1;
    }
  }
  if (!started) return false;
  if (base == 16) place *= 4;
  if (!number.takeLetter(exponentLetter)) return place > 0;
  const bool negative = number.takeMinus();
  long long exponent = 0;
  for (; !number.atEnd() && isDecimalDigit(*number.at); ++number.at) {
    if (exponent < kEnough) exponent = exponent * 10 + (*number.at - '0');
  }
  return place + (negative ? -exponent : exponent) > 0;
}

// Appends digits to `number`, which is only right up to 19 of them; returns how many they are.
inline unsigned takeRun(Cursor& in, std::uint64_t& number) {
  const char* at = in.at;
  std::uint64_t longer = number;
  for (unsigned digit; at != in.end && (digit = static_cast<unsigned char>(*at) - unsigned{'0'}) < 10; ++at) {
    longer = longer * 10 + digit;
  }
  number = longer;
  const auto count = at - in.at;
  in.at = at;
  return count < 100 ? static_cast<unsigned>(count) : 100;
}

// The short way for numbers such as "-12.75": where the digits and the power of ten that divides them are exact, so is
// their quotient but for its one rounding. False, and nothing is taken, where that does not hold.
template <class Real>
bool takeShortDecimal(Cursor& in, Real& value) {
  static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                       1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr unsigned kExactPower = std::is_same_v<Real, float> ? 10 : 22;
  if constexpr (FLT_EVAL_METHOD != 0) return false;
  Cursor rest = in;
  std::uint64_t number = 0;
  unsigned digits = takeRun(rest, number);
  const unsigned behind = rest.take('.') ? takeRun(rest, number) : 0;
  digits += behind;
  if (digits == 0 || digits > 19 || behind > kExactPower) return false;
  if (number >> std::numeric_limits<Real>::digits != 0) return false;
  if (!rest.atEnd() && lowerCase(*rest.at) == 'e') return false;
  value = static_cast<Real>(static_cast<std::int64_t>(number)) / static_cast<Real>(kPowers[behind]);
  in = rest;
  return true;
}

template <class Real>
bool takeDigits(Cursor& in, Real& value, bool hex) {
  if (!hex && takeShortDecimal(in, value)) return true;
  // Neither a second sign nor a word may follow.
  const unsigned base = hex ? 16 : 10;
  if (in.atEnd() || (*in.at != '.' && digitValue(*in.at) >= base)) return false;
  const auto format = hex ? std::chars_format::hex : std::chars_format::general;
  const auto [end, error] = std::from_chars(in.at, in.end, value, format);
  if (error == std::errc::invalid_argument) return false;
  if (error == std::errc::result_out_of_range) {
    value = isHuge({in.at, end}, base, hex ? 'p' : 'e') ? std::numeric_limits<Real>::infinity() : Real{0};
  }
  in.at = end;
  return true;
}

template <class Real>
bool takeMagnitude(Cursor& in, Real& value) {
  Cursor hex = in;
  if (hex.take('0') && hex.takeLetter('x')) {
    in = hex;
    return takeDigits(in, value, true);
  }
  return takeDigits(in, value, false) || takeSpecial(in, value);
}

template <class Real>
bool readReal(Cursor& in, int width, Real& value) {
  in.skipBlanks();
  Cursor number = in.limited(width);
  const bool negative = number.takeMinus();
  Real magnitude = 0;
  if (!takeMagnitude(number, magnitude)) return false;
  value = std::copysign(magnitude, negative ? Real{-1} : Real{1});
  in.at = number.at;
  return true;
}

// ---- formats ------------------------------------------------------------------------------------------------------

enum class Step { kDeclined, kFailed, kRead, kFinished };

bool takeLiteral(Cursor& in, const char* begin, const char* end) {
  for (; begin != end; ++begin) {
    if (!in.take(*begin)) return false;
  }
  return true;
}

// Takes one format character that is no conversion.
bool takeFormatCharacter(Cursor& in, char c) {
  if (!isBlank(c)) return in.take(c);
  in.skipBlanks();
  return true;
}

bool takePercent(Cursor& in) {
  in.skipBlanks();
  return in.take('%');
}

// Walks the format. read(in, spec) reads a conversion or declines it: then it is literal text. The result is true when
// a step has finished or the whole format matches, false at the first mismatch.
template <class Read>
bool scanFormat(Cursor in, const char* format, bool printSyntax, Read read) {
  while (*format != '\0') {
    if (*format != '%') {
      if (!takeFormatCharacter(in, *format++)) return false;
    } else if (format[1] == '%') {
      if (!takePercent(in)) return false;
      format += 2;
    } else {
      const NumberSpec spec = parseNumberSpec(format + 1, printSyntax);
      const Step step = read(in, spec);
      if (step == Step::kFinished) return true;
      if (step == Step::kFailed) return false;
      if (step == Step::kDeclined && !takeLiteral(in, format, spec.end)) return false;
      format = spec.end;
    }
  }
  return true;
}

template <class Real>
bool scanReal(const char* text, unsigned long length, const char* format, Real& value) {
  Cursor all{text, text + length};
  NumberSpec only;
  if (parseOnlySpec(format, only, false) && isRealConversion(only.conversion)) return readReal(all, only.width, value);
  bool done = false;
  scanFormat(all, format, false, [&](Cursor& in, const NumberSpec& spec) {
    if (!isRealConversion(spec.conversion)) return Step::kDeclined;
    done = readReal(in, spec.width, value);
    return done ? Step::kFinished : Step::kFailed;
  });
  return done;
}

// The format is one for printing: its width is the least, not the most, and a left-justified number has blanks behind it.
bool scanMantissaExponent(const char* text, unsigned long length, const char* format, double& value) {
  double mantissa = 0;
  std::uint32_t exponent = 0;
  bool hasMantissa = false;
  const bool matched = scanFormat({text, text + length}, format, true, [&](Cursor& in, NumberSpec spec) {
    spec.width = 0;
    if (hasMantissa) {
      if (!isIntegerConversion(spec.conversion)) return Step::kDeclined;
      return readInteger(in, spec, exponent) ? Step::kFinished : Step::kFailed;
    }
    if (!isRealConversion(spec.conversion)) return Step::kDeclined;
    hasMantissa = readReal(in, 0, mantissa);
    if (spec.has(NumberSpec::kLeft)) in.skipBlanks();
    return hasMantissa ? Step::kRead : Step::kFailed;
  });
  if (!matched || !hasMantissa) return false;
  value = std::ldexp(mantissa, static_cast<int>(static_cast<std::int32_t>(exponent)));
  return true;
}

}  // namespace

bool scanInteger(const char* text, unsigned long length, const char* format, std::uint32_t& value) {
  Cursor all{text, text + length};
  NumberSpec only;
  if (parseOnlySpec(format, only, false) && isIntegerConversion(only.conversion)) return readInteger(all, only, value);
  bool done = false;
  scanFormat(all, format, false, [&](Cursor& in, const NumberSpec& spec) {
    if (!isIntegerConversion(spec.conversion)) return Step::kDeclined;
    done = readInteger(in, spec, value);
    return done ? Step::kFinished : Step::kFailed;
  });
  return done;
}

bool scanPaddedInteger(const char* text, unsigned long length, const char* format, std::uint32_t& value) {
  return readPaddedInteger(text, text + length, format, value) || scanInteger(text, length, format, value);
}

bool scanFloat(const char* text, unsigned long length, const char* format, float& value) {
  return scanReal(text, length, format, value);
}

bool scanDouble(const char* text, unsigned long length, const char* format, double& value) {
  if (isMantissaExponentFormat(format)) return scanMantissaExponent(text, length, format, value);
  return scanReal(text, length, format, value);
}

bool scanHexCode(const char* text, unsigned long length, std::uint32_t& value) {
  return length > 2 && text[0] == '0' && text[1] == 'x' && scanInteger(text, length, "0x%x", value);
}

}  // namespace kt
