// ktint64.h - the 64-bit integer value class.
#ifndef KTINT64_H
#define KTINT64_H

#include "ktapi.h"

#include <cstddef>
#include <cstdint>

class KtString;

// KtInt64: a signed 64-bit integer, kept as two 32-bit words.
//
// Range:  -2^63 to 2^63 - 1: high * 2^32 + low in two's complement. Sums, differences, products, negation and left
//         shifts wrap; only division by zero is an error.
// Null:   none.
// Order:  that of the numbers.
// Size:   8 bytes, aligned as 32-bit words.
// Disk:   docs/formats/numbers.md, KtInt64: 8 bytes: the low word, then the high word, each in the byte order of the
//         format code.
// Text:   see PrintToKtString and ScanFromKtString; the row's format is "%S".
// Status: division by zero raises the assertion 0 && "KtInt64 divide by zero" (source src\ktint64) and gives 0; a text
//         that cannot be scanned gives -1.
// Owner:  a plain value, trivially copyable.
// Threads: pure.
//
// Numbers of every integer type and double convert implicitly, on either side of the comparisons and of + - * / % | &
// and on the right of the compound operators. Shifts take a KtInt64 on the left and an unsigned count.
class KTTM_API KtInt64 {
public:
  std::uint32_t low;
  std::int32_t high;

  // --- make -----------------------------------------------------------------------------------------------------
  constexpr KtInt64() : low(0), high(0) {}
  // All bits of the number, sign-extended or zero-extended into the high word.
  constexpr KtInt64(int number) : KtInt64(static_cast<long long>(number)) {}
  constexpr KtInt64(unsigned int number) : KtInt64(static_cast<unsigned long long>(number)) {}
  constexpr KtInt64(long number) : KtInt64(static_cast<long long>(number)) {}
  constexpr KtInt64(unsigned long number) : KtInt64(static_cast<unsigned long long>(number)) {}
  constexpr KtInt64(long long number) : KtInt64(static_cast<unsigned long long>(number)) {}
  constexpr KtInt64(unsigned long long number)
      : low(static_cast<std::uint32_t>(number)),
        high(static_cast<std::int32_t>(static_cast<std::uint32_t>(number >> 32))) {}
  // The words; of each argument the low 32 bits.
  constexpr KtInt64(unsigned long lowWord, long highWord)
      : low(static_cast<std::uint32_t>(lowWord)),
        high(static_cast<std::int32_t>(static_cast<std::uint32_t>(highWord))) {}
  // Truncates toward zero; beyond the range the nearest number; NaN gives 0.
  KtInt64(double number);

  // --- ask ------------------------------------------------------------------------------------------------------
  constexpr long long Value() const { return static_cast<long long>(Bits()); }
  constexpr unsigned long long Bits() const {
    return static_cast<unsigned long long>(static_cast<std::uint32_t>(high)) << 32 | low;
  }
  constexpr KtInt64 Abs() const { return high < 0 ? -*this : *this; }  // of -2^63: itself

  // --- change: the compound operators give the new value --------------------------------------------------------
  constexpr KtInt64 operator-() const { return KtInt64(0ull - Bits()); }
  constexpr KtInt64 operator~() const { return KtInt64(~Bits()); }
  // Counts of 64 and more shift everything out: 0, or for >> of a negative number -1.
  constexpr KtInt64 operator<<(unsigned int count) const { return KtInt64(count > 63 ? 0ull : Bits() << count); }
  constexpr KtInt64 operator>>(unsigned int count) const { return KtInt64(Value() >> (count > 63 ? 63 : count)); }
  // The quotient, truncated toward zero, or with wantRemainder the remainder, which has this number's sign.
  // -2^63 / -1 is -2^63, with remainder 0.
  KtInt64 Division(const KtInt64& divisor, int wantRemainder) const;

  constexpr KtInt64 operator+=(const KtInt64& b) { return *this = KtInt64(Bits() + b.Bits()); }
  constexpr KtInt64 operator-=(const KtInt64& b) { return *this = KtInt64(Bits() - b.Bits()); }
  constexpr KtInt64 operator*=(const KtInt64& b) { return *this = KtInt64(Bits() * b.Bits()); }
  KtInt64 operator/=(const KtInt64& b) { return *this = Division(b, 0); }
  KtInt64 operator%=(const KtInt64& b) { return *this = Division(b, 1); }
  constexpr KtInt64 operator<<=(unsigned int count) { return *this = *this << count; }
  constexpr KtInt64 operator>>=(unsigned int count) { return *this = *this >> count; }
  constexpr KtInt64& operator++() { return *this = KtInt64(Bits() + 1); }
  constexpr KtInt64& operator--() { return *this = KtInt64(Bits() - 1); }
  constexpr KtInt64 operator++(int) {
    const KtInt64 old = *this;
    ++*this;
    return old;
  }
  constexpr KtInt64 operator--(int) {
    const KtInt64 old = *this;
    --*this;
    return old;
  }

  // --- text -----------------------------------------------------------------------------------------------------
  // Appends the number to out by a format; null stands for "%S". Returns out.
  //   %S %d %i   decimal            %o         octal with a leading 0: zero is "00"
  //   %x %X      hexadecimal with 0x or 0X; digits in the letter's case
  // Negative numbers are a "-" in front of the magnitude, prefix included, but -2^63, which has no sign in octal and
  // hexadecimal. Everything else in the format stands for itself, a "%" that no such letter follows included: there is
  // no escape, "%%d" is a percent sign and the number.
  KtString& PrintToKtString(KtString& out, const char* format = nullptr) const;

  // Becomes the number in a text by a format; null stands for "%S". -1 where the text does not match; 0 where the text
  // or the format ends before a number.
  //   A number: "-" or "+", then 0x or 0X and hexadecimal digits, 0 and octal digits, or decimal digits.
  //   %S takes any of them, %d and %i decimal ones, %o octal ones, %x and %X hexadecimal ones: "0" and "007" are octal.
  //   It reaches up to the character that follows in the format, or to the end of the text. Numbers too large wrap.
  void ScanFromKtString(const KtString& in, const char* format = nullptr);
};

constexpr KtInt64 operator+(const KtInt64& a, const KtInt64& b) { return KtInt64(a.Bits() + b.Bits()); }
constexpr KtInt64 operator-(const KtInt64& a, const KtInt64& b) { return KtInt64(a.Bits() - b.Bits()); }
constexpr KtInt64 operator*(const KtInt64& a, const KtInt64& b) { return KtInt64(a.Bits() * b.Bits()); }
constexpr KtInt64 operator|(const KtInt64& a, const KtInt64& b) { return KtInt64(a.Bits() | b.Bits()); }
constexpr KtInt64 operator&(const KtInt64& a, const KtInt64& b) { return KtInt64(a.Bits() & b.Bits()); }
inline KtInt64 operator/(const KtInt64& a, const KtInt64& b) { return a.Division(b, 0); }
inline KtInt64 operator%(const KtInt64& a, const KtInt64& b) { return a.Division(b, 1); }

// Relational operators: 1 or 0. Free functions, so that both orders of operands convert alike.
constexpr int operator==(const KtInt64& a, const KtInt64& b) { return a.Bits() == b.Bits(); }
constexpr int operator!=(const KtInt64& a, const KtInt64& b) { return a.Bits() != b.Bits(); }
constexpr int operator<(const KtInt64& a, const KtInt64& b) { return a.Value() < b.Value(); }
constexpr int operator>(const KtInt64& a, const KtInt64& b) { return a.Value() > b.Value(); }
constexpr int operator<=(const KtInt64& a, const KtInt64& b) { return a.Value() <= b.Value(); }
constexpr int operator>=(const KtInt64& a, const KtInt64& b) { return a.Value() >= b.Value(); }

static_assert(sizeof(KtInt64) == 8 && alignof(KtInt64) == 4);
static_assert(offsetof(KtInt64, low) == 0 && offsetof(KtInt64, high) == 4);

#endif
