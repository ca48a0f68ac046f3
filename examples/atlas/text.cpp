// text.cpp - UTF-8 to strings and back, and the names of languages.
#include "error.h"
#include "value.h"

#include <algorithm>

namespace atlas {
namespace {

constexpr unsigned char kLatin1 = 1;
constexpr unsigned char kUnicode = 253;
constexpr std::size_t kLongestText = 32000;  // bytes: every value of them can be printed in 16-bit characters

struct Language {
  const char* name;
  unsigned char code;
};
constexpr Language kLanguages[] = {{"neutral", 0},   {"english", 1},   {"german", 2},   {"french", 3}, {"spanish", 4},
                                   {"swedish", 5},   {"finnish", 5},   {"danish", 6},   {"greek", 7},  {"russian", 8},
                                   {"norwegian", 6}, {"japanese", 20}, {"chinese", 21}, {"korean", 22}};

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) - 1U < 0x7FU; });
}

bool fitsLatin1(const KtString& text) {
  const char* at = text.StrGet();
  for (unsigned i = 0; i < text.Len(); ++i, at += sizeof(unsigned short)) {
    unsigned short unit;
    std::memcpy(&unit, at, sizeof unit);
    if (unit > 0xFF) return false;
  }
  return true;
}

}  // namespace

KtString stringOf(std::string_view utf8, unsigned char language) {
  if (utf8.size() > kLongestText) throw Mistake("the text is longer than 32,000 bytes");
  if (isAscii(utf8)) {
    KtString plain(utf8.data(), static_cast<unsigned short>(utf8.size()));
    plain.SetCodeSetCode(kLatin1);
    plain.SetLanguage(language);
    return plain;
  }
  KtString text(kUnicode, language);
  const bool isShort = std::none_of(utf8.begin(), utf8.end(), [](char c) {
    return c == '\0' || static_cast<unsigned char>(c) >= 0xF0U;  // the decoder keeps the low 16 bits of such characters
  });
  if (!isShort || KtMBS2KtString(utf8.data(), text, static_cast<long>(utf8.size())) != static_cast<long>(utf8.size())) {
    throw Mistake("the text is not UTF-8 of 16-bit characters");
  }
  if (fitsLatin1(text)) text.MapToCodeSet(kLatin1);
  return text;
}

unsigned char languageOf(const std::string& name) {
  std::string known;
  for (const Language& language : kLanguages) {
    if (name == language.name) return language.code;
    known += std::string(known.empty() ? "" : ", ") + language.name;
  }
  throw Mistake("\"" + name + "\" is no language; there are " + known);
}

std::string languageName(unsigned char language) {
  for (const Language& known : kLanguages) {
    if (known.code == language) return known.name;
  }
  return std::to_string(language);
}

}  // namespace atlas
