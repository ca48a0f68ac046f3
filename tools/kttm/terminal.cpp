#include "terminal.h"

#include "error.h"
#include "names.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>

namespace tool {
namespace {

constexpr unsigned char kLatin1 = 1;
constexpr std::size_t kLongestText = 32767;  // bytes that one library call decodes

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// A character of a text, and the bytes that it takes there.
struct Sequence {
  char32_t character;
  std::size_t size;
};

std::size_t sizeByFirst(unsigned char first) {
  if (first < 0x80) return 1;
  if (first < 0xC0) return 0;  // nothing begins so
  if (first < 0xE0) return 2;
  if (first < 0xF0) return 3;
  return first < 0xF8 ? 4 : 0;
}

// What begins at `at`; nothing where that is no UTF-8. Halves of surrogate pairs pass, as strings may hold them.
std::optional<Sequence> sequenceAt(const std::string& text, std::size_t at) {
  static constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};  // of so many bytes
  const unsigned first = static_cast<unsigned char>(text[at]);
  const std::size_t size = sizeByFirst(static_cast<unsigned char>(first));
  if (size == 0 || size > text.size() - at) return std::nullopt;
  char32_t character = size == 1 ? first : first & (0x7FU >> size);
  for (std::size_t i = at + 1; i < at + size; ++i) {
    if (!isContinuation(text[i])) return std::nullopt;
    character = character << 6U | (static_cast<unsigned char>(text[i]) & 0x3FU);
  }
  if (character < kLeast[size] || character > 0x10FFFF) return std::nullopt;
  return Sequence{character, size};
}

// What a terminal would act on; a tab is only room.
bool isControl(char32_t character) {
  return (character < 0x20 && character != '\t') || (character >= 0x7F && character < 0xA0);
}

// For a control character, or a byte, that takes so many bytes.
std::string escapeOf(char32_t character, std::size_t size) {
  if (character == '\n') return "\\n";
  char escape[16];
  std::snprintf(escape, sizeof escape, size == 1 ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(character));
  return escape;
}

// The decoder would say no place, and cut what is beyond 16 bits to its low ones.
void requireCharacters(const std::string& text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::optional<Sequence> next = sequenceAt(text, at);
    if (!next || next->character > 0xFFFF) {
      const std::string message = next ? " holds " + codePoint(next->character) + ", which is beyond U+FFFF,"
                                       : std::string(" is not valid UTF-8");
      throw Error(quoted(text) + message + " at byte " + std::to_string(at));
    }
    at += next->size;
  }
}

KtString decoded(const std::string& text) {
  requireCharacters(text);
  if (text.find('\0') != std::string::npos) throw Error("the text holds a zero character");
  if (text.size() > kLongestText) throw Error("the text is longer than " + std::to_string(kLongestText) + " bytes");
  KtString result;
  const long used = KtMBS2KtString(text.data(), result, static_cast<long>(text.size()));
  if (used != static_cast<long>(text.size())) throw Error(quoted(text) + " is not valid UTF-8");
  return result;
}

// The units of a Unicode string.
std::vector<unsigned short> unitsOf(const KtString& text) {
  std::vector<unsigned short> units(text.Len());
  if (!units.empty()) std::memcpy(units.data(), text.StrGet(), units.size() * sizeof(unsigned short));
  return units;
}

bool fits(const KtString& text, unsigned char codeSet, unsigned short& misfit) {
  const KtCodeSet& set = KtCodeSet::Get(codeSet);
  const std::vector<unsigned short> units = unitsOf(text);
  const auto found = std::find_if(units.begin(), units.end(), [&](unsigned short unit) {
    return set.FromUnicode(unit) == KtCodeSet::kSubstitute && unit != KtCodeSet::kSubstitute;
  });
  if (found != units.end()) misfit = *found;
  return found == units.end();
}

}  // namespace

std::string codePoint(char32_t character) {
  char text[16];
  std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(character));
  return text;
}

KtString fromTerminal(const std::string& text, const TextOptions& options) {
  KtString result = decoded(text);
  unsigned short misfit = 0;
  unsigned char target = options.codeSet.value_or(kLatin1);
  if (!fits(result, target, misfit)) {
    if (options.codeSet) throw Error(codePoint(misfit) + " is not in the code set " + codeSetTitle(target));
    target = kUnicode;
  }
  const bool native = target == 0;
  result.MapToCodeSet(native ? KtLanguageContext::GetNativeCodeSet() : target);
  if (native) result.SetCodeSetCode(0);
  result.SetLanguage(options.language);
  return result;
}

std::string toTerminal(const KtString& text) {
  std::string bytes(static_cast<std::size_t>(text.Len()) * 3 + 1, '\0');
  const long used = KtString2KtMBS(text, bytes.data(), static_cast<long>(bytes.size()));
  if (used < 0) throw Error("the text has a character that UTF-8 cannot show");
  bytes.resize(static_cast<std::size_t>(used));
  return bytes;
}

std::vector<unsigned short> charactersOf(const std::string& text) {
  requireCharacters(text);
  if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw Error("the text is too long");
  std::vector<unsigned short> characters(text.size());
  std::string copy = text;  // the decoder reads only, whatever its signature says
  const int room = static_cast<int>(text.size());
  const int count = KtMultiByteStr2WCharStr(characters.data(), room, copy.data(), room);
  if (count < 0) throw Error(quoted(text) + " is not valid UTF-8");
  characters.resize(static_cast<std::size_t>(count));
  return characters;
}

std::string toTerminal(const std::vector<unsigned short>& characters) {
  std::string bytes;
  for (const unsigned short character : characters) {
    char sequence[3];
    bytes.append(sequence, static_cast<std::size_t>(KtWChar2MultiByte(sequence, character)));
  }
  return bytes;
}

std::string formatFrom(const std::string& text) {
  TextOptions options;
  options.codeSet = KtString::GetDefault8CodeSet();
  try {
    const KtString format = fromTerminal(text, options);
    return {format.StrGet(), format.Len()};
  } catch (const Error& error) {
    throw Error(std::string("format: ") + error.what());
  }
}

std::string visible(const std::string& text) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const std::optional<Sequence> next = sequenceAt(text, at);
    const std::size_t size = next ? next->size : 1;
    if (next && !isControl(next->character)) {
      result += text.substr(at, size);
    } else {
      result += escapeOf(next ? next->character : static_cast<unsigned char>(text[at]), size);
    }
    at += size;
  }
  return result;
}

std::string quoted(const std::string& text) {
  constexpr std::size_t kShown = 60;
  if (text.size() <= kShown) return '"' + visible(text) + '"';
  std::size_t end = kShown;
  while (end > kShown - 3 && isContinuation(text[end])) --end;
  return '"' + visible(text.substr(0, end)) + "...\"";
}

}  // namespace tool
