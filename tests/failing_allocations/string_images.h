// string_images.h - strings for operations whose allocations fail, and what is looked at afterwards.
#ifndef KT_TESTS_STRING_IMAGES_H
#define KT_TESTS_STRING_IMAGES_H

#include <ktstring.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kt_test {

// What a string is, with nothing allocated.
struct Image {
  explicit Image(const KtString& s)
      : text(s.buffer == nullptr ? "" : std::string(s.buffer, s.bufferSize)), set(s.codeSet), language(s.language) {}
  bool operator==(const Image&) const = default;
  std::string text;
  unsigned char set, language;
};

// Empty, short, long, of 16-bit units, with a zero, null, without characters, a long number of 16-bit units.
inline std::vector<KtString> strings() {
  const KtString empty, space("  a b  ");
  const KtString small("two, commas, 30");
  KtString large, wide(253, 1), withZero("ab"), null, onlyTerminator("x"), number(253, 1);
  large.Fill(900, 'l') += 'a';
  wide.Fill(90, 'w') += 'a';
  withZero.Rebuild("\0z", 1, 2, 0, 2, 1, KtString::RebuildMode::kRebuild);
  null.SetNullValue();
  onlyTerminator.Cut(0, 1);
  number.Fill(90, '0') += "42";
  return {empty, space, small, large, wide, withZero, null, onlyTerminator, number};
}

// Whether the string is one, and may be appended to: the end of the text is known.
inline void expectValid(KtString s, const std::string& name) {
  ASSERT_EQ(s.buffer == nullptr, s.bufferSize == 0) << name;
  ASSERT_EQ(s.bufferSize % s.CharSize(), 0) << name;
  if (s.buffer != nullptr) {
    for (unsigned i = 0; i < s.CharSize(); ++i) ASSERT_EQ(s.buffer[s.bufferSize - 1 - i], 0) << name;
  }
  const int length = s.Len();
  s += 'x';
  EXPECT_EQ(s.Len(), length + 1) << name;
  EXPECT_EQ(s[length].Unicode(), 'x') << name;
}

}  // namespace kt_test

#endif
