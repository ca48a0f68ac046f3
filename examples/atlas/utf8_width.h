// utf8_width.h - how many columns of a terminal a UTF-8 text takes.
#ifndef EXAMPLES_ATLAS_UTF8_WIDTH_H
#define EXAMPLES_ATLAS_UTF8_WIDTH_H

#include <cstddef>
#include <string>
#include <string_view>

namespace atlas {

// One character of a text: its number, the bytes it takes, and whether they are UTF-8 (else it is one byte, number 0xFFFD).
struct Utf8Character {
  char32_t number;
  std::size_t bytes;
  bool isValid;
};

// The first character of a text that is not empty.
inline Utf8Character firstCharacter(std::string_view text) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = at(0);
  if (lead < 0x80) return {lead, 1, true};
  const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  constexpr Utf8Character kBroken = {0xFFFD, 1, false};
  if (lead < 0xC2 || lead > 0xF4 || bytes > text.size()) return kBroken;
  char32_t number = lead & (0x7Fu >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) {
    if ((at(i) & 0xC0u) != 0x80) return kBroken;
    number = number << 6 | (at(i) & 0x3Fu);
  }
  const char32_t least = bytes == 2 ? 0x80 : bytes == 3 ? 0x800 : 0x10000;
  const bool isSurrogate = number >= 0xD800 && number < 0xE000;
  if (number < least || number > 0x10FFFF || isSurrogate) return kBroken;
  return {number, bytes, true};
}

struct CharacterRange {
  char32_t first;
  char32_t last;
};

template <std::size_t kCount>
bool isAmong(const CharacterRange (&ranges)[kCount], char32_t number) {
  for (const CharacterRange& range : ranges) {
    if (number >= range.first && number <= range.last) return true;
  }
  return false;
}

// 0 for marks that stand on the character before them, 2 for the wide characters of East Asia, else 1.
inline int characterWidth(char32_t number) {
  static constexpr CharacterRange kMarks[] = {{0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A},
                                              {0x064B, 0x065F}, {0x093C, 0x093C}, {0x0941, 0x0948}, {0x094D, 0x094D},
                                              {0x0E31, 0x0E31}, {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x0F71, 0x0F7E},
                                              {0x0F80, 0x0F84}, {0x1039, 0x103A}, {0x17B7, 0x17BD}, {0x17C9, 0x17D3},
                                              {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
  static constexpr CharacterRange kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},  {0x3041, 0xA4CF}, {0xAC00, 0xD7A3},
                                             {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},  {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6},
                                             {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};
  if (number < 0x300) return 1;
  return isAmong(kMarks, number) ? 0 : isAmong(kWide, number) ? 2 : 1;
}

inline std::size_t displayWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const Utf8Character character = firstCharacter(text);
    width += static_cast<std::size_t>(characterWidth(character.number));
    text.remove_prefix(character.bytes);
  }
  return width;
}

// A text that a terminal shows as it stands: control characters become spaces, and bytes that are not UTF-8 "?".
inline std::string printable(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const Utf8Character character = firstCharacter(text);
    const bool isControl = character.number < 0x20 || (character.number >= 0x7F && character.number < 0xA0);
    if (!character.isValid)
      shown += '?';
    else if (isControl)
      shown += ' ';
    else
      shown += text.substr(0, character.bytes);
    text.remove_prefix(character.bytes);
  }
  return shown;
}

}  // namespace atlas

#endif
