#include "terminal.h"

#include "error.h"
#include "names.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

namespace tool {
namespace {

constexpr unsigned char kLatin1 = 1;
constexpr std::size_t kLongestText = 32767;  // bytes that one library call decodes

[[noreturn]] void throwBadText(const std::string& text) { throw Error(quoted(text) + " is not valid UTF-8"); }

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

KtString decoded(const std::string& text) {
  // The decoder would cut such characters to their low 16 bits.
  if (std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0xF0U; })) {
    throw Error(quoted(text) + " holds a character beyond 16 bits, or is not valid UTF-8");
  }
  if (text.find('\0') != std::string::npos) throw Error("the text holds a zero character");
  if (text.size() > kLongestText) throw Error("the text is longer than " + std::to_string(kLongestText) + " bytes");
  KtString result;
  const long used = KtMBS2KtString(text.data(), result, static_cast<long>(text.size()));
  if (used != static_cast<long>(text.size())) throwBadText(text);
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

std::string codePoint(unsigned short character) {
  char text[8];
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
  std::vector<unsigned short> characters;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = std::min(at + kLongestText, text.size());
    while (end < text.size() && end > at + 1 && isContinuation(text[end])) --end;
    const std::vector<unsigned short> part = unitsOf(decoded(text.substr(at, end - at)));
    characters.insert(characters.end(), part.begin(), part.end());
    at = end;
  }
  return characters;
}

std::string toTerminal(const std::vector<unsigned short>& characters) {
  constexpr std::size_t kPart = 10000;
  std::string bytes;
  for (std::size_t at = 0; at < characters.size(); at += kPart) {
    const std::size_t n = std::min(kPart, characters.size() - at);
    bytes += toTerminal(KtString(characters.data() + at, static_cast<unsigned short>(n)));
  }
  return bytes;
}

std::string quoted(const std::string& text) {
  constexpr std::size_t kShown = 60;
  if (text.size() <= kShown) return '"' + text + '"';
  std::size_t end = kShown;
  while (end > 0 && isContinuation(text[end])) --end;
  return '"' + text.substr(0, end) + "...\"";
}

}  // namespace tool
