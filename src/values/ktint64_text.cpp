// ktint64_text.cpp - printing and scanning KtInt64 by a format.
#include "ktint64.h"

#include "ktstring.h"
#include "text/integer_digits.h"
#include "text/text_units.h"
#include "values/append_short.h"
#include "values/narrow_text.h"
#include "values/string_edit.h"

#include <algorithm>

namespace {

constexpr char kDefaultFormat[] = "%S";

bool isConversion(const char* format) {
  if (format[0] != '%') return false;
  switch (format[1]) {
    case 'S':
    case 'd':
    case 'i':
    case 'o':
    case 'x':
    case 'X': return true;
    default: return false;
  }
}

// --- printing -------------------------------------------------------------------------------------------------------

static_assert(kt::kShortRoom >= 3 + kt::kDigitRoom);  // a sign, 0x, the digits

// Writes one conversion and returns its end; kShortRoom bytes may be written.
[[gnu::always_inline]] inline char* writeNumber(char* at, const KtInt64& number, char directive) {
  const std::uint64_t magnitude = number.Abs().Bits();
  const bool isDecimal = directive != 'o' && directive != 'x' && directive != 'X';
  // The least number has no positive counterpart: beyond base 10 it stands without a sign.
  const bool hasSign = number.high < 0 && (isDecimal || static_cast<std::int64_t>(magnitude) >= 0);
  *at = '-';
  at += hasSign ? 1 : 0;
  if (isDecimal) return kt::writeDigits<10>(at, magnitude);
  *at++ = '0';
  if (directive == 'o') return kt::writeDigits<8>(at, magnitude);
  *at++ = directive;
  return kt::writeDigits<16>(at, magnitude, directive == 'x' ? kt::kLowerCaseGap : kt::kUpperCaseGap);
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

[[gnu::noinline]] KtString& printText(KtString& out, const KtInt64& number, const char* format) {
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
  return out;
}

// --- scanning -------------------------------------------------------------------------------------------------------

// The base that the prefix of a number tells; 0x is stepped over, a 0 stays a digit.
unsigned takeBase(const char*& at, const char* end) {
  if (at == end || *at != '0') return 10;
  if (end - at < 2 || (at[1] != 'x' && at[1] != 'X')) return 8;
  at += 2;
  return 16;
}

bool agrees(char directive, unsigned base) {
  switch (directive) {
    case 'd':
    case 'i': return base == 10;
    case 'o': return base == 8;
    case 'x':
    case 'X': return base == 16;
    default: return true;
  }
}

bool readNumber(const char* begin, const char* end, unsigned base, std::uint64_t& number) {
  const auto length = static_cast<unsigned long>(end - begin);
  switch (base) {
    case 8: return kt::readDigits<8>(begin, length, number);
    case 16: return kt::readDigits<16>(begin, length, number);
    default: return kt::readDigits<10>(begin, length, number);
  }
}

// One conversion; moves `at` behind the number, which ends in front of `stop` or at the end of the text.
bool scanNumber(const char*& at, const char* end, char directive, char stop, KtInt64& number) {
  const bool isNegative = *at == '-';
  if (*at == '-' || *at == '+') ++at;
  const unsigned base = takeBase(at, end);
  if (!agrees(directive, base)) return false;
  const char* last = stop == '\0' ? end : std::find(at, end, stop);
  std::uint64_t magnitude;
  if (!readNumber(at, last, base, magnitude)) return false;
  at = last;
  number = KtInt64(static_cast<unsigned long long>(isNegative ? 0 - magnitude : magnitude));
  return true;
}

// False where the text does not match the format.
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

[[gnu::noinline]] KtInt64 scanAnyText(const KtString& in, const char* format) {
  const kt::NarrowText text(in);
  KtInt64 number;
  return scanText(text.begin(), text.end(), format, number) ? number : KtInt64(-1);
}

constexpr unsigned kLongestShort = 25;
static_assert(3 + 16 <= kt::kSmallestBlock && kLongestShort < kt::kSmallestBlock);

// Something in 8-bit characters, in the smallest of blocks, where sixteen bytes can be read behind a sign and 0x.
inline bool isShortText(const KtString& in) {
  if (in.CharSize() != 1 || in.bufferSize < 2 || in.bufferSize > kLongestShort) return false;
  return !kt::mayHoldZero(in.buffer, in.bufferSize);
}

bool readShort(const char* begin, unsigned long length, unsigned base, std::uint64_t& number) {
  switch (base) {
    case 8: return kt::readPaddedDigits<8>(begin, length, number);
    case 16: return kt::readPaddedDigits<16>(begin, length, number);
    default: return kt::readPaddedDigits<10>(begin, length, number);
  }
}

// A number alone.
inline KtInt64 scanShortText(const KtString& in, char directive) {
  const char* at = in.buffer;
  const char* const end = at + in.bufferSize - 1;
  const bool isNegative = *at == '-';
  if (*at == '-' || *at == '+') ++at;
  const unsigned base = takeBase(at, end);
  if (!agrees(directive, base)) return KtInt64(-1);
  std::uint64_t magnitude = 0;
  if (at != end && !readShort(at, static_cast<unsigned long>(end - at), base, magnitude)) return KtInt64(-1);
  return KtInt64(static_cast<unsigned long long>(isNegative ? 0 - magnitude : magnitude));
}

}  // namespace

KtString& KtInt64::PrintToKtString(KtString& out, const char* format) const {
  if (format == nullptr) format = kDefaultFormat;
  const bool isNumberOnly = isConversion(format) && format[2] == '\0';
  if (isNumberOnly && appendInPlace(out, *this, format[1])) return out;
  if (!kt::liesIn(out, format)) return printText(out, *this, format);
  const KtString copy(format);  // of a format that what it prints would overwrite
  return printText(out, *this, copy.StrGet());
}

void KtInt64::ScanFromKtString(const KtString& in, const char* format) {
  if (format == nullptr) format = kDefaultFormat;
  const bool isNumberOnly = isConversion(format) && format[2] == '\0';
  *this = isNumberOnly && isShortText(in) ? scanShortText(in, format[1]) : scanAnyText(in, format);
}
