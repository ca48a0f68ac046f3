// ktstring_number.cpp - numbers to text and text to numbers, whatever the process locale.
#include "ktoption.h"
#include "ktstring.h"

#include "string_edit.h"
#include "text/text_units.h"

#include <ktbs.h>

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <system_error>

namespace {

constexpr int kDecimalOnlyOption = 1;

// --- to text --------------------------------------------------------------------------------------------------------

// A number as decimal text.
class NumberText {
public:
  template <class Integer>
  explicit NumberText(Integer number) : end_(std::to_chars(text_, text_ + sizeof text_, number).ptr) {}
  explicit NumberText(double number)
      : end_(std::to_chars(text_, text_ + sizeof text_, number, std::chars_format::general, 15).ptr) {}

  void appendTo(KtString& s) const { kt::appendAscii(s, text_, static_cast<unsigned long>(end_ - text_)); }

private:
  char text_[32];  // the longest: -1.23456789012345e-308
  char* end_;
};

// --- from text ------------------------------------------------------------------------------------------------------

// The ASCII characters at the beginning of a text, as bytes. Numbers hold no others.
class AsciiText {
public:
  explicit AsciiText(const KtString& s) : begin_(s.StrGet()), length_(s.Len()) {
    if (s.CharSize() == 2) narrow(s);
  }
  ~AsciiText() { std::free(copy_); }
  AsciiText(const AsciiText&) = delete;
  AsciiText& operator=(const AsciiText&) = delete;

  const char* begin() const { return begin_; }
  const char* end() const { return begin_ + length_; }

private:
  void narrow(const KtString& s) {
    char* target = local_;
    if (length_ > sizeof local_) target = copy_ = static_cast<char*>(std::malloc(length_));
    if (target == nullptr) {
      KtCallMemoryHandler(length_);
      length_ = 0;
      return;
    }
    unsigned long n = 0;
    for (; n < length_ && kt::unitAt(s.buffer, n, 2) < 0x80; ++n)
      target[n] = static_cast<char>(kt::unitAt(s.buffer, n, 2));
    begin_ = target;
    length_ = n;
  }

  char local_[64];
  char* copy_ = nullptr;
  const char* begin_;
  unsigned long length_;
};

bool isBlank(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }

bool isDigit(char ch) { return ch >= '0' && ch <= '9'; }

bool isHexDigit(char ch) { return isDigit(ch) || (ch >= 'a' && ch <= 'f') || (ch >= 'A' && ch <= 'F'); }

// Steps over blanks and one sign; true for "-".
bool takeSign(const char*& p, const char* end) {
  while (p != end && isBlank(*p)) ++p;
  if (p == end || (*p != '-' && *p != '+')) return false;
  return *p++ == '-';
}

// Steps over "0x" where a hexadecimal digit follows (behind a point, too, for real numbers).
bool takeHexPrefix(const char*& p, const char* end, bool real) {
  if (end - p < 3 || p[0] != '0' || (p[1] != 'x' && p[1] != 'X')) return false;
  const bool pointed = real && p[2] == '.' && end - p > 3 && isHexDigit(p[3]);
  if (!pointed && !isHexDigit(p[2])) return false;
  p += 2;
  return true;
}

enum class Base { kDecimal, kDetected };

// As strtol with base 10 or 0, saturating at the limits of Result.
template <class Result>
Result parseInteger(const AsciiText& text, Base base) {
  const char* p = text.begin();
  const bool negative = takeSign(p, text.end());
  int radix = 10;
  if (base == Base::kDetected && p != text.end() && *p == '0') radix = takeHexPrefix(p, text.end(), false) ? 16 : 8;
  constexpr auto kMax = static_cast<unsigned long long>(std::numeric_limits<Result>::max());
  const unsigned long long limit = kMax + (negative ? 1 : 0);
  unsigned long long magnitude = 0;
  const auto [last, error] = std::from_chars(p, text.end(), magnitude, radix);
  if (error == std::errc::invalid_argument) return 0;
  if (error == std::errc::result_out_of_range || magnitude > limit) magnitude = limit;
  return static_cast<Result>(negative ? 0 - magnitude : magnitude);
}

// Steps over digits (skipZeros: only over zeros) and returns their number.
long skipDigits(const char*& p, const char* end, int base, bool onlyZeros) {
  const char* begin = p;
  while (p != end && (onlyZeros ? *p == '0' : base == 16 ? isHexDigit(*p) : isDigit(*p))) ++p;
  return static_cast<long>(p - begin);
}

// Is a number that a double cannot hold too large, rather than too small? Its first significant digit tells, in digits
// before (positive) or behind the point, together with the exponent.
bool isHuge(const char* p, const char* end, int base) {
  skipDigits(p, end, base, true);
  long scale = skipDigits(p, end, base, false);
  if (p != end && *p == '.') {
    ++p;
    if (scale == 0) scale = -skipDigits(p, end, base, true);
    skipDigits(p, end, base, false);
  }
  if (p == end) return scale > 0;
  int exponent = 0;
  ++p;
  const bool negative = p != end && *p == '-';
  if (p != end && (*p == '-' || *p == '+')) ++p;
  const bool beyond = std::from_chars(p, end, exponent).ec == std::errc::result_out_of_range;
  const long long power = beyond ? INT_MAX : exponent;
  return (negative ? -power : power) + 1ll * scale * (base == 16 ? 4 : 1) > 0;
}

// As atof.
double parseDouble(const AsciiText& text) {
  const char* p = text.begin();
  const bool negative = takeSign(p, text.end());
  if (p == text.end() || *p == '-') return 0;
  const bool isHex = takeHexPrefix(p, text.end(), true);
  double value = 0;
  const auto [last, error] =
      std::from_chars(p, text.end(), value, isHex ? std::chars_format::hex : std::chars_format::general);
  if (error == std::errc::invalid_argument) return 0;
  if (error == std::errc::result_out_of_range) value = isHuge(p, last, isHex ? 16 : 10) ? HUGE_VAL : 0;
  return negative ? -value : value;
}

Base baseByOptions() { return (___KtTypeMgrOptions() & kDecimalOnlyOption) != 0 ? Base::kDecimal : Base::kDetected; }

int readChecked(const KtString& s, long& value, Base base) {
  value = 0;
  const AsciiText text(s);
  if (text.begin() == text.end() || !(isDigit(*text.begin()) || *text.begin() == '-')) return -1;
  value = parseInteger<long>(text, base);
  return 0;
}

}  // namespace

KtString::KtString(short number) : KtString(static_cast<int>(number)) {}

KtString::KtString(int number) : KtString(static_cast<long>(number)) {}

KtString::KtString(unsigned int number) : KtString(static_cast<int>(number)) {}

KtString::KtString(long number) : KtString("") { NumberText(number).appendTo(*this); }

KtString::KtString(unsigned long number) : KtString("") { NumberText(number).appendTo(*this); }

KtString::KtString(double number) : KtString("") { NumberText(number).appendTo(*this); }

KtString::operator int() const { return parseInteger<std::int32_t>(AsciiText(*this), baseByOptions()); }

KtString::operator short() const { return static_cast<short>(static_cast<int>(*this)); }

KtString::operator long() const { return parseInteger<long>(AsciiText(*this), Base::kDecimal); }

KtString::operator double() const { return parseDouble(AsciiText(*this)); }

int KtString::Atol(long& value) const { return readChecked(*this, value, Base::kDecimal); }

int KtString::Strtol(long& value) const { return readChecked(*this, value, Base::kDetected); }

KtString& KtString::operator<<(char x) { return *this += x; }

KtString& KtString::operator<<(const char* x) { return *this += x; }

KtString& KtString::operator<<(const unsigned short* x) { return *this += x; }

KtString& KtString::operator<<(const KtString& x) { return *this += x; }

KtString& KtString::operator<<(short x) { return *this << static_cast<long>(x); }

KtString& KtString::operator<<(unsigned short x) {
  return CharSize() == 2 ? *this += x : *this << static_cast<long>(x);
}

KtString& KtString::operator<<(int x) { return *this << static_cast<long>(x); }

KtString& KtString::operator<<(unsigned int x) { return *this << static_cast<int>(x); }

KtString& KtString::operator<<(long x) {
  NumberText(x).appendTo(*this);
  return *this;
}

KtString& KtString::operator<<(unsigned long x) {
  NumberText(x).appendTo(*this);
  return *this;
}

KtString& KtString::operator<<(float x) { return *this << static_cast<double>(x); }

KtString& KtString::operator<<(double x) {
  NumberText(x).appendTo(*this);
  return *this;
}
