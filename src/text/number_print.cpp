#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "text/decimal_text.h"
#include "text/integer_digits.h"
#include "text/number_format.h"
#include "text/number_spec.h"
#include "text/short_integer.h"

namespace kt {
namespace {

void finish(NumberText& out, const char* end) {
  out.length = static_cast<unsigned>(end - out.text);
  out.text[out.length] = '\0';
}

class Appender {
public:
  explicit Appender(NumberText& out) : out_(out), end_(out.text) {}

  std::size_t room() const { return static_cast<std::size_t>(out_.text + NumberText::kCapacity - end_); }
  char* end() { return end_; }
  void moveTo(char* end) { end_ = end; }
  void append(char c) {
    if (room() > 0) *end_++ = c;
  }
  void append(const char* from, std::size_t count) {
    const std::size_t kept = std::min(count, room());
    std::memcpy(end_, from, kept);
    end_ += kept;
  }
  void fill(char c, int count) {
    if (count <= 0) return;
    const std::size_t kept = std::min(static_cast<std::size_t>(count), room());
    std::memset(end_, c, kept);
    end_ += kept;
  }
  void finish() { kt::finish(out_, end_); }

private:
  NumberText& out_;
  char* end_;
};

// A converted number in the order in which its pieces are written. Zeros are counted, never stored.
struct Pieces {
  const char* digits;
  int digitCount;
  int zerosBefore = 0;    // of an integer's precision
  int zerosBehind = 0;    // of a real's precision, beyond the digits that can differ from 0
  const char* tail = "";  // a real's exponent
  int tailCount = 0;
  bool zeroPad = false;  // the width is filled with zeros, behind the prefix
  int prefixCount = 0;
  char prefix[3] = {};  // sign, 0x

  void addPrefix(char c) { prefix[prefixCount++] = c; }
  void addSign(bool negative, const NumberSpec& spec) {
    if (negative) {
      addPrefix('-');
    } else if (spec.has(NumberSpec::kPlus)) {
      addPrefix('+');
    } else if (spec.has(NumberSpec::kBlank)) {
      addPrefix(' ');
    }
  }
};

void appendPieces(Appender& out, const NumberSpec& spec, const Pieces& p) {
  const int pad = spec.width - (p.prefixCount + p.zerosBefore + p.digitCount + p.zerosBehind + p.tailCount);
  const bool left = spec.has(NumberSpec::kLeft);
  const bool zeros = p.zeroPad && !left;
  if (!left && !zeros) out.fill(' ', pad);
  out.append(p.prefix, static_cast<std::size_t>(p.prefixCount));
  if (zeros) out.fill('0', pad);
  out.fill('0', p.zerosBefore);
  out.append(p.digits, static_cast<std::size_t>(p.digitCount));
  out.fill('0', p.zerosBehind);
  out.append(p.tail, static_cast<std::size_t>(p.tailCount));
  if (left) out.fill(' ', pad);
}

void upperCase(char* at, const char* end) {
  for (; at != end; ++at) {
    if (*at >= 'a' && *at <= 'z') *at = static_cast<char>(*at - 0x20);
  }
}

int baseOf(char conversion) {
  switch (conversion) {
    case 'o': return 8;
    case 'x':
    case 'X': return 16;
    default: return 10;
  }
}

void appendCharacter(Appender& out, const NumberSpec& spec, std::uint32_t value) {
  const char c = static_cast<char>(static_cast<unsigned char>(value));
  Pieces pieces{.digits = &c, .digitCount = 1};
  appendPieces(out, spec, pieces);
}

char* writeMagnitude(char* at, char conversion, std::uint32_t magnitude) {
  switch (conversion) {
    case 'o': return writeDigits<8>(at, magnitude);
    case 'x': return writeDigits<16>(at, magnitude, kLowerCaseGap);
    case 'X': return writeDigits<16>(at, magnitude, kUpperCaseGap);
    default: return writeDigits<10>(at, magnitude);
  }
}

void appendFormattedInteger(Appender& out, const NumberSpec& spec, bool negative, std::uint32_t magnitude) {
  char digits[kDigitRoom];
  const char* const end = writeMagnitude(digits, spec.conversion, magnitude);
  Pieces pieces{.digits = digits, .digitCount = static_cast<int>(end - digits)};
  if (magnitude == 0 && spec.precision == 0) pieces.digitCount = 0;
  if (spec.precision > pieces.digitCount) pieces.zerosBefore = spec.precision - pieces.digitCount;
  pieces.zeroPad = spec.has(NumberSpec::kZero) && spec.precision < 0;
  if (isSignedConversion(spec.conversion)) pieces.addSign(negative, spec);
  if (spec.has(NumberSpec::kAlternate)) {
    if (spec.conversion == 'o' && pieces.zerosBefore == 0 && (magnitude != 0 || pieces.digitCount == 0)) {
      pieces.zerosBefore = 1;
    } else if (baseOf(spec.conversion) == 16 && magnitude != 0) {
      pieces.addPrefix('0');
      pieces.addPrefix(spec.conversion);
    }
  }
  appendPieces(out, spec, pieces);
}

void appendInteger(Appender& out, const NumberSpec& spec, std::int32_t value) {
  if (spec.conversion == 'c') return appendCharacter(out, spec, static_cast<std::uint32_t>(value));
  const std::uint32_t bits = reduceToLength(static_cast<std::uint32_t>(value), spec);
  const bool negative = isSignedConversion(spec.conversion) && (bits >> 31) != 0;
  appendFormattedInteger(out, spec, negative, negative ? 0 - bits : bits);
}

constexpr int kUsualPrecision = 6;
// Every decimal digit of a double that can differ from 0 stands within this many digits of the point.
constexpr int kExactDigits = 1100;
// 309 digits before the point, the point, the exponent.
constexpr int kRealText = kExactDigits + 330;

struct RealText {
  char text[kRealText];
  char* end;

  template <class... Precision>
  void convert(double magnitude, std::chars_format format, Precision... precision) {
    end = std::to_chars(text, text + kRealText - 1, magnitude, format, precision...).ptr;
  }
  // The first c before `limit`, or `limit`.
  char* find(char c, char* limit) { return std::find(text, limit, c); }
  // Makes room for a point behind the mantissa `text` to `at`.
  void insertPoint(char* at) {
    std::memmove(at + 1, at, static_cast<std::size_t>(end - at));
    *at = '.';
    ++end;
  }
};

// '#' with %g keeps the zeros that %g drops, so that the form %g would take is written by %e or %f instead.
char replaceGeneral(double magnitude, int& precision) {
  if (precision == 0) precision = 1;
  char text[kRealText];
  const int digits = precision < kExactDigits ? precision : kExactDigits;
  const char* const end =
      std::to_chars(text, text + kRealText, magnitude, std::chars_format::scientific, digits - 1).ptr;
  const char* at = end;
  while (at[-1] != 'e') --at;
  int exponent = 0;
  std::from_chars(*at == '+' ? at + 1 : at, end, exponent);
  const bool fixed = exponent >= -4 && exponent < precision;
  precision -= fixed ? 1 + exponent : 1;
  return fixed ? 'f' : 'e';
}

// Null where it takes to_chars.
char* writeDecimal(char* at, char kind, double magnitude, int precision) {
  switch (kind) {
    case 'f': return writeFixed(at, magnitude, precision);
    case 'e': return writeScientific(at, magnitude, precision);
    default: return writeGeneral(at, magnitude, precision);
  }
}

// Returns the zeros that the precision asks for beyond the digits written.
int convertDecimal(RealText& text, double magnitude, char kind, int precision) {
  const int written = precision < kExactDigits ? precision : kExactDigits;
  if (char* const end = writeDecimal(text.text, kind, magnitude, precision)) {
    text.end = end;
    return 0;
  }
  switch (kind) {
    case 'f': text.convert(magnitude, std::chars_format::fixed, written); return precision - written;
    case 'e': text.convert(magnitude, std::chars_format::scientific, written); return precision - written;
    default: text.convert(magnitude, std::chars_format::general, written); return 0;
  }
}

int convertHex(RealText& text, double magnitude, int precision) {
  constexpr int kFractionDigits = 13;
  if (precision < 0) {
    text.convert(magnitude, std::chars_format::hex);
    return 0;
  }
  const int written = precision < kFractionDigits ? precision : kFractionDigits;
  text.convert(magnitude, std::chars_format::hex, written);
  return precision - written;
}

void appendSpecial(Appender& out, const NumberSpec& spec, double value) {
  const bool upper = spec.conversion < 'a';
  const char* const word = std::isnan(value) ? (upper ? "NAN" : "nan") : (upper ? "INF" : "inf");
  Pieces pieces{.digits = word, .digitCount = 3};
  pieces.addSign(std::signbit(value), spec);
  appendPieces(out, spec, pieces);
}

// Where the mantissa ends and the exponent begins.
char* mantissaEnd(RealText& text, bool hex) { return hex ? text.find('p', text.end) : text.find('e', text.end); }

// Writes the digits of a finite number as conversion `kind` (f, e, g or a); returns the pieces without sign and padding.
Pieces convertReal(RealText& text, const NumberSpec& spec, char kind, double magnitude) {
  const bool hex = kind == 'a';
  const bool alternate = spec.has(NumberSpec::kAlternate);
  int precision = spec.precision < 0 && !hex ? kUsualPrecision : spec.precision;
  if (kind == 'g' && alternate) kind = replaceGeneral(magnitude, precision);
  const int zeros = hex ? convertHex(text, magnitude, precision) : convertDecimal(text, magnitude, kind, precision);
  // Only what is put behind the mantissa asks where that is.
  char* end = zeros > 0 || alternate ? mantissaEnd(text, hex) : text.end;
  if (alternate && text.find('.', end) == end) text.insertPoint(end++);
  Pieces pieces{.digits = text.text, .digitCount = static_cast<int>(end - text.text)};
  pieces.zerosBehind = zeros;
  pieces.tail = end;
  pieces.tailCount = static_cast<int>(text.end - end);
  return pieces;
}

void appendReal(Appender& out, const NumberSpec& spec, double value) {
  if (!std::isfinite(value)) return appendSpecial(out, spec, value);
  const bool upper = spec.conversion < 'a';
  const char kind = static_cast<char>(spec.conversion | 0x20);
  RealText text;
  Pieces pieces = convertReal(text, spec, kind, std::fabs(value));
  if (upper) upperCase(text.text, text.end);
  pieces.zeroPad = spec.has(NumberSpec::kZero);
  pieces.addSign(std::signbit(value), spec);
  if (kind == 'a') {
    pieces.addPrefix('0');
    pieces.addPrefix(upper ? 'X' : 'x');
  }
  appendPieces(out, spec, pieces);
}

// Walks the format. convert(spec) writes a conversion and returns true, or declines it: then it is literal text.
template <class Convert>
void printFormat(Appender& out, const char* format, Convert convert) {
  while (*format != '\0') {
    if (*format != '%') {
      out.append(*format++);
    } else if (format[1] == '%') {
      out.append('%');
      format += 2;
    } else {
      const NumberSpec spec = parseNumberSpec(format + 1, true);
      if (!convert(spec)) out.append(format, static_cast<std::size_t>(spec.end - format));
      format = spec.end;
    }
  }
  out.finish();
}

// The short way for formats such as "%lf" and "%.15g". False if the format or the number is another one.
bool printShortReal(NumberText& text, const char* format, double value) {
  NumberSpec spec;
  if (!parseOnlySpec(format, spec) || spec.flags != 0 || spec.width != 0 || !std::isfinite(value)) return false;
  if (spec.conversion != 'f' && spec.conversion != 'e' && spec.conversion != 'g') return false;
  const bool negative = std::signbit(value);
  text.text[0] = '-';
  const char* const end = writeDecimal(text.text + (negative ? 1 : 0), spec.conversion, std::fabs(value),
                                       spec.precision < 0 ? kUsualPrecision : spec.precision);
  if (end == nullptr) return false;
  finish(text, end);
  return true;
}

void printReal(NumberText& text, const char* format, double value) {
  if (printShortReal(text, format, value)) return;
  Appender out(text);
  bool done = false;
  printFormat(out, format, [&](const NumberSpec& spec) {
    if (done || !isRealConversion(spec.conversion)) return false;
    appendReal(out, spec, value);
    return done = true;
  });
}

void printMantissaExponent(NumberText& text, const char* format, double value) {
  Appender out(text);
  int exponent = 0;
  const double mantissa = std::isfinite(value) ? std::frexp(value, &exponent) : value;
  int done = 0;
  printFormat(out, format, [&](const NumberSpec& spec) {
    const bool fits = done == 0 ? isRealConversion(spec.conversion) : done == 1 && isIntegerConversion(spec.conversion);
    if (!fits) return false;
    if (done++ == 0) {
      appendReal(out, spec, mantissa);
    } else {
      appendInteger(out, spec, exponent);
    }
    return true;
  });
}

}  // namespace

void printInteger(NumberText& out, const char* format, std::int32_t value) {
  if (const char* const end = printShortInteger(out.text, format, value)) return finish(out, end);
  Appender appender(out);
  bool done = false;
  bool ended = false;
  printFormat(appender, format, [&](const NumberSpec& spec) {
    if (done || !isIntegerConversion(spec.conversion)) return false;
    appendInteger(appender, spec, value);
    ended = spec.conversion == 'c' && (value & 0xFF) == 0;
    return done = true;
  });
  if (ended) out.length = static_cast<unsigned>(std::strlen(out.text));
}

void printFloat(NumberText& out, const char* format, float value) {
  printReal(out, format, static_cast<double>(value));
}

void printDouble(NumberText& out, const char* format, double value) {
  if (isMantissaExponentFormat(format)) return printMantissaExponent(out, format, value);
  printReal(out, format, value);
}

}  // namespace kt
