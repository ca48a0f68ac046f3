// text_units.h - the units of a text (bytes, or 16-bit numbers) and their way from one code set into another.
#ifndef KT_TEXT_UNITS_H
#define KT_TEXT_UNITS_H

#include <ktin.h>

#include <bit>
#include <cstdint>
#include <cstring>

namespace kt {

// Byte orders of 16-bit characters.
constexpr bool kHostIsBig = std::endian::native == std::endian::big;

// Whether 16-bit characters under a byte order flag are in the order that is not the host's. 1 (laid out like memory), 8
// (memory) and 255 (ordinary use) are the host's order, 2 is big-endian, all else little-endian.
constexpr bool isSwappedText(unsigned char flag) {
  return flag != 1 && flag != 8 && flag != 255 && (flag == 2) != kHostIsBig;
}

inline std::uint16_t swapped(std::uint16_t unit) { return static_cast<std::uint16_t>((unit << 8) | (unit >> 8)); }

// Unit `index` of a text with `width` bytes a unit.
inline std::uint16_t unitAt(const char* text, unsigned long index, unsigned long width) {
  if (width == 1) {
    return static_cast<unsigned char>(text[index]);
  }
  std::uint16_t unit;
  std::memcpy(&unit, text + 2 * index, sizeof unit);
  return unit;
}

inline void putUnit(char* text, unsigned long index, unsigned long width, std::uint16_t unit) {
  if (width == 1) {
    text[index] = static_cast<char>(static_cast<unsigned char>(unit));
  } else {
    std::memcpy(text + 2 * index, &unit, sizeof unit);
  }
}

// Units before the first zero, at most `limit`; nothing is read beyond `limit` units.
unsigned long unitLength(const char* text, unsigned long width, unsigned long limit);

// Units before the terminator of a text that has one.
unsigned long unitLength(const unsigned short* text);

// The code sets of texts made of char and of 16-bit characters. A default of the wrong character size (the language
// context does not refuse one) would lead outside the text; it counts as the set that is the default at load.
inline unsigned char narrowSet() {
  constexpr unsigned char kLatin1 = 1;
  const unsigned char code = KtLanguageContext::GetDefault8CodeSet();
  return KtCodeSet::CharSizeOf(code) == 1 ? code : kLatin1;
}
inline unsigned char wideSet() {
  constexpr unsigned char kUnicode = 253;
  const unsigned char code = KtLanguageContext::GetDefault16CodeSet();
  return KtCodeSet::CharSizeOf(code) == 2 ? code : kUnicode;
}

// The set behind a character's code, where 255 stands for the default 8-bit set.
const KtCodeSet& characterSet(unsigned char code);

// Maps `count` units of source from one code set into another; swap tells that 16-bit source units are in the order
// that is not the host's. target may be source where both have one character size.
void mapUnits(char* target, unsigned char targetCode, const char* source, unsigned char sourceCode, unsigned long count,
              bool swap = false);

}  // namespace kt

#endif
