// string_bytes.h - bytes, strings and caught assertions for the tests of string storage, keys and comparison.
#ifndef KT_TESTS_STRING_BYTES_H
#define KT_TESTS_STRING_BYTES_H

#include "ktstring.h"

#include <ktbs.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kt_test {

using Bytes = std::vector<unsigned char>;
using Codes = std::initializer_list<unsigned char>;
using Operators = std::initializer_list<unsigned short>;

// "00 FF" as bytes.
inline Bytes hex(std::string_view text) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 3)
    bytes.push_back(static_cast<unsigned char>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
  return bytes;
}

// A block of exactly these bytes, so that the address sanitizer sees a read behind them.
struct Block {
  explicit Block(const Bytes& bytes) : Block(bytes, bytes.size()) {}
  Block(const Bytes& bytes, std::size_t count) : size(count), data(new unsigned char[count]) {
    for (std::size_t i = 0; i < count; ++i) data[i] = bytes[i];
  }
  unsigned char* get() const { return data.get(); }

  std::size_t size;
  std::unique_ptr<unsigned char[]> data;
};

// A string of these Unicode characters, all of which the code set has.
inline KtString makeString(const std::u16string& units, unsigned char codeSet, unsigned char language) {
  KtString s(codeSet, language);
  std::string narrow;
  std::u16string wide;
  for (const char16_t unit : units) {
    const unsigned short code = KtCodeSet::Get(codeSet).FromUnicode(unit);
    narrow += static_cast<char>(code);
    wide += static_cast<char16_t>(code);
  }
  const bool isWide = KtCodeSet::CharSizeOf(codeSet) == 2;
  const char* text = isWide ? reinterpret_cast<const char*>(wide.data()) : narrow.data();
  if (!units.empty()) s.Rebuild(text, codeSet, 0, 0, units.size(), 1, KtString::RebuildMode::kRebuild);
  return s;
}

// Counts assertions instead of printing them, and keeps the last.
class CaughtAssertions {
public:
  CaughtAssertions() : old_(KtSetAssertHandler(note)) { count() = 0; }
  ~CaughtAssertions() { KtSetAssertHandler(old_); }
  static int& count() {
    static int caught;
    return caught;
  }
  static std::string& last() {
    static std::string text;
    return text;
  }

private:
  static void note(const char* message, const char* source, int line) {
    ++count();
    last() = std::string(message) + " " + source + " " + std::to_string(line);
  }
  KtAssertHandler old_;
};

}  // namespace kt_test

#endif
