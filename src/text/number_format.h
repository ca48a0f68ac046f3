// number_format.h - printing and scanning numbers by a format that comes from a user.
//
// The format is never handed to printf or scanf. It is parsed here, and one conversion of the value's kind is accepted:
//   integers   %d %i %u %o %x %X %c
//   reals      %f %F %e %E %g %G %a %A
// with the length modifiers hh and h (the value is reduced to 8 or 16 bits), l ll j z t q L (no effect: a value has
// 32 bits or is a double). Printing takes the flags "-+ #0", a width and a precision, scanning a width of input.
// "%%" stands for a percent sign. Everything else, a second conversion and '*' included, is literal text.
//
// A format that begins with "ldex" ("ldexp(%.17g,%d)") takes two conversions when the value is a double: the mantissa,
// magnitude in [0.5, 1), and then the binary exponent as an integer. With 17 significant digits this form is lossless.
// Scanning takes flags and a precision there, and no width, so that one format serves both ways.
//
// Results equal those of snprintf and sscanf in the C locale; the locale of the process does not matter.
// Null: no pointer may be null. Thread: all functions are pure.
#ifndef KT_TEXT_NUMBER_FORMAT_H
#define KT_TEXT_NUMBER_FORMAT_H

#include <cstdint>

namespace kt {

// What printing fills: zero-terminated text; characters beyond 511 are dropped. `%c` of 0 ends the text where it stands.
struct NumberText {
  static constexpr unsigned kCapacity = 511;
  unsigned length;
  char text[kCapacity + 1];
};

// Replace `out` with `value` as `format` says. A value narrower than 32 bits comes widened.
void printInteger(NumberText& out, const char* format, std::int32_t value);
void printFloat(NumberText& out, const char* format, float value);
// Takes the "ldex" form as well.
void printDouble(NumberText& out, const char* format, double value);

// Scan `length` characters at `text`, which needs no terminator. They return whether `value` was set: if the text does
// not match, it is left alone. Blanks in the format match any run of blanks, other characters themselves; blanks before
// a number (not before %c) are skipped. What follows the conversion in the format is not looked at.

// Base 10 for %d and %u, 8 for %o, 16 for %x (0x allowed), by prefix for %i, one byte for %c. Numbers outside 32 bits
// become the nearest 32-bit number; %u %o %x take '-' and negate modulo 2^32. The caller keeps the bits it stores.
bool scanInteger(const char* text, unsigned long length, const char* format, std::uint32_t& value);
// The same, of one to 24 characters the first 19 of which are readable, though what lies behind the end has no meaning.
bool scanPaddedInteger(const char* text, unsigned long length, const char* format, std::uint32_t& value);
// Decimal and hexadecimal numbers, inf, infinity and nan in any case. Too large a number becomes infinite.
bool scanFloat(const char* text, unsigned long length, const char* format, float& value);
// Takes the "ldex" form as well; without an integer conversion in it the exponent is 0.
bool scanDouble(const char* text, unsigned long length, const char* format, double& value);
// Whether the text begins with a number written "0x41"; sets `value` to it. The same as the format "0x%x".
bool scanHexCode(const char* text, unsigned long length, std::uint32_t& value);

}  // namespace kt

#endif
