// ktint64_text.cpp - printing and scanning KtInt64 by a format.
#include "ktint64.h"

#include "ktstring.h"
#include "text/format_or.h"
#include "text/integer_digits.h"
#include "text/text_units.h"
#include "values/append_short.h"
#include "values/append_whole.h"
#include "values/int64_text.h"
#include "values/narrow_text.h"
#include "values/string_edit.h"

#include <algorithm>
#include <array>

namespace {

constexpr char kDefaultFormat[] = "%S";

// The base that a directive takes, by its letter; 0: it is none.
constexpr unsigned kAnyBase = 1;
constexpr auto kBases = [] {
  std::array<unsigned char, 256> bases{};
  bases['S'] = kAnyBase;
  bases['d'] = bases['i'] = 10;
  bases['o'] = 8;
  bases['x'] = bases['X'] = 16;
  return bases;
}();

inline unsigned baseOf(char letter) { return kBases[static_cast<unsigned char>(letter)]; }

inline bool isConversion(const char* format) { return format[0] == '%' && baseOf(format[1]) != 0; }

// --- printing -------------------------------------------------------------------------------------------------------

static_assert(kt::kShortRoom >= 3 + kt::kDigitRoom);  // a sign, 0x, the digits

[[gnu::always_inline]] inline char* writeDecimal(char* at, const KtInt64& number) {
  const std::uint64_t sign = number.Bits() >> 63;
  *at = '-';
  return kt::writeDecimal(at + sign, (number.Bits() ^ (0 - sign)) + sign);
}

// The least number, which has no positive counterpart, stands without a sign.
inline std::uint64_t takeSign(char*& at, const KtInt64& number) {
  if (number.high >= 0 || number.Abs().high < 0) return number.Bits();
  *at++ = '-';
  return number.Abs().Bits();
}

[[gnu::always_inline]] inline char* writeOctal(char* at, const KtInt64& number) {
  const std::uint64_t magnitude = takeSign(at, number);
  *at++ = '0';
  return kt::writeDigits<8>(at, magnitude);
}

[[gnu::always_inline]] inline char* writeHex(char* at, const KtInt64& number, char x) {
  const std::uint64_t magnitude = takeSign(at, number);
  *at++ = '0';
  *at++ = x;
  return kt::writeDigits<16>(at, magnitude, x == 'x' ? kt::kLowerCaseGap : kt::kUpperCaseGap);
}

// Writes one conversion and returns its end; kShortRoom bytes may be written.
[[gnu::always_inline]] inline char* writeNumber(char* at, const KtInt64& number, char directive) {
  switch (directive) {
    case 'o': return writeOctal(at, number);
    case 'x':
    case 'X': return writeHex(at, number, directive);
    default: return writeDecimal(at, number);
  }
}

// Straight into the string's block, where it has the room.
inline bool appendInPlace(KtString& out, const KtInt64& number, char directive) {
  char* const behind = kt::roomBehind(out);
  if (behind == nullptr) return false;
  kt::grow(out, writeNumber(behind, number, directive));
  return true;
}

void appendNumber(KtString& out, const KtInt64& number, char directive) {
  char text[kt::kShortRoom];
  kt::appendShort(out, text, static_cast<unsigned long>(writeNumber(text, number, directive) - text));
}

// The end of the run of ordinary characters that begins at `from`.
const char* ordinaryEnd(const char* from) {
  while (*from != '\0' && !isConversion(from)) ++from;
  return from;
}

void appendText(KtString& out, const KtInt64& number, const char* format) {
  while (*format != '\0') {
    if (isConversion(format)) {
      appendNumber(out, number, format[1]);
      format += 2;
      continue;
    }
    const char* end = ordinaryEnd(format);
    kt::append(out, format, kt::narrowSet(), static_cast<unsigned long>(end - format));
    format = end;
  }
}

[[gnu::noinline]] KtString& printText(KtString& out, const KtInt64& number, const char* format) {
  const kt::AppendWhole whole(out);
  const kt::LastingFormat lasting(out, format);
  appendText(out, number, lasting.text());
  return out;
}

// --- scanning -------------------------------------------------------------------------------------------------------

// The base that the prefix of a number tells; 0x is stepped over, a 0 stays a digit. A terminator stands somewhere behind.
inline unsigned takeBase(const char*& at) {
  if (*at != '0') return 10;
  if (at[1] != 'x' && at[1] != 'X') return 8;
  at += 2;
  return 16;
}

inline bool agrees(char letter, unsigned base) { return baseOf(letter) == kAnyBase || baseOf(letter) == base; }

kt::ReadNumber readNumber(const char* begin, const char* end, unsigned base) {
  const auto length = static_cast<unsigned long>(end - begin);
  switch (base) {
    case 8: return kt::readDigits<8>(begin, length);
    case 16: return kt::readDigits<16>(begin, length);
    default: return kt::readDigits<10>(begin, length);
  }
}

inline KtInt64 signedNumber(std::uint64_t magnitude, bool isNegative) {
  return KtInt64(static_cast<unsigned long long>(isNegative ? 0 - magnitude : magnitude));
}

// One conversion; moves `at` behind the number, which ends in front of `stop` or at the end of the text.
bool scanNumber(const char*& at, const char* end, char directive, char stop, KtInt64& number) {
  const bool isNegative = *at == '-';
  if (*at == '-' || *at == '+') ++at;
  const unsigned base = takeBase(at);
  if (!agrees(directive, base)) return false;
  const char* last = stop == '\0' ? end : std::find(at, end, stop);
  const kt::ReadNumber magnitude = readNumber(at, last, base);
  if (!magnitude.isNumber) return false;
  at = last;
  number = signedNumber(magnitude.value, isNegative);
  return true;
}

// False where the text, which has a terminator, does not match the format.
bool scanText(const char* at, const char* end, const char* format, KtInt64& number) {
  while (at != end && *format != '\0') {
    if (!isConversion(format)) {
      if (*format++ != *at++) return false;
      continue;
    }
    const char directive = format[1];
    format += 2;
    if (!scanNumber(at, end, directive, *format, number)) return false;
    // What follows the number must be there: a text that ends early does not match.
    if (*format != (at == end ? '\0' : *at)) return false;
  }
  return true;
}

// False, and the number is as it was, when memory ran out.
[[gnu::noinline]] bool scanAnyText(KtInt64& number, const KtString& in, const char* format) {
  const kt::NarrowText text(in);
  if (!text.isThere()) return false;
  KtInt64 scanned;
  number = scanText(text.begin(), text.end(), format, scanned) ? scanned : KtInt64(-1);
  return true;
}

inline kt::ReadNumber readShort(const char* begin, unsigned long length, unsigned base) {
  switch (base) {
    case 8: return kt::readPaddedDigits<8>(begin, length);
    case 16: return kt::readPaddedDigits<16>(begin, length);
    default: return kt::readPaddedDigits<10>(begin, length);
  }
}

// A number alone.
inline KtInt64 scanShortText(const KtString& in, char directive) {
  const char* at = in.buffer;
  const char* const end = at + in.bufferSize - 1;
  const bool isNegative = *at == '-';
  if (*at == '-' || *at == '+') ++at;
  const unsigned base = takeBase(at);
  if (!agrees(directive, base)) return KtInt64(-1);
  const kt::ReadNumber magnitude = readShort(at, static_cast<unsigned long>(end - at), base);
  return magnitude.isNumber ? signedNumber(magnitude.value, isNegative) : KtInt64(-1);
}

}  // namespace

KtString& KtInt64::PrintToKtString(KtString& out, const char* format) const {
  format = kt::formatOr(format, kDefaultFormat);
  const bool isNumberOnly = isConversion(format) && format[2] == '\0';
  if (isNumberOnly && appendInPlace(out, *this, format[1])) return out;
  return printText(out, *this, format);
}

void KtInt64::ScanFromKtString(const KtString& in, const char* format) { kt::scanInt64(*this, in, format); }

bool kt::scanInt64(KtInt64& number, const KtString& in, const char* format) {
  format = kt::formatOr(format, kDefaultFormat);
  const bool isNumberOnly = isConversion(format) && format[2] == '\0';
  if (!isNumberOnly || !kt::isShortText(in)) return scanAnyText(number, in, format);
  number = scanShortText(in, format[1]);
  return true;
}
