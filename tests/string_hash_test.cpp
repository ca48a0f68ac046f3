// Text hashes against one multiplication a character.
#include "text/str_hash.h"

#include "ktstring.h"
#include "slow_hash.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using kt_test::slowHash;

std::string stored(const std::u16string& text, unsigned char codeSet) {
  std::string out;
  for (const char16_t c : text) {
    const unsigned code = KtCodeSet::Get(codeSet).FromUnicode(c);
    if (KtCodeSet::CharSizeOf(codeSet) == 2) out += static_cast<char>(code >> 8);
    out += static_cast<char>(code & 255);
  }
  return out;
}

constexpr unsigned char kCodeSets[] = {1, 5, 10, 253};
constexpr unsigned char kLanguages[] = {0, 4, 20};  // kinds 1, 2, 20
const std::u16string kLong = u"The quick brown f\u00F6x j\u00FCmps over 13 l\u00E0zy d\u00F4gs - twice.";

}  // namespace

TEST(StringHash, is_the_same_in_every_code_set_and_length) {
  for (std::size_t n = 0; n <= kLong.size(); ++n) {
    const std::u16string text = kLong.substr(0, n);
    for (const unsigned char language : kLanguages) {
      const unsigned long expected = slowHash(text, language, 0);
      for (const unsigned char set : kCodeSets) {
        std::string data = stored(text, set);
        EXPECT_EQ(kt::hashText({data.data(), n, set, language, 2}, -1), expected) << n << " set " << int{set};
        data.append(2, '\0');
        EXPECT_EQ(HashString(set, language, data.data(), -1, 2), expected) << n << " set " << int{set};
      }
    }
  }
}

// Characters below 256, of pages of their own, of pages that rise, and with several orders, wherever they stand; the
// texts also become usual on the way.
TEST(StringHash, texts_in_host_order_hash_alike) {
  const std::u16string all = u"\u0141\u00F3d\u017A ab \u9001\uAC00Z\u00FF\u0100\u00E9\u9001\u9001e.";
  for (const unsigned char language : kLanguages) {
    for (std::size_t start = 0; start < all.size(); ++start) {
      for (std::size_t n = 0; start + n <= all.size(); ++n) {
        std::u16string text = all.substr(start, n);
        char* const data = reinterpret_cast<char*>(text.data());
        EXPECT_EQ(HashString(253, language, data, -1, 1), slowHash(text, language, 0)) << start << " " << n;
      }
    }
  }
}

TEST(StringHash, a_positive_length_takes_that_many_orders) {
  const std::u16string text = u"a\u9001\u00E9";  // the ideograph has two orders
  std::string data = stored(text, 253) + std::string(2, '\0');
  EXPECT_EQ(HashString(253, 0, data.data(), -1, 2), slowHash(text, 0, 0));
  for (const short length : std::initializer_list<short>{1, 2, 3, 4, 6}) {
    EXPECT_EQ(HashString(253, 0, data.data(), length, 2), slowHash(text, 0, static_cast<std::size_t>(length)))
        << length;
  }
  EXPECT_EQ(HashString(253, 0, data.data(), 0, 2), 0u);
  EXPECT_EQ(HashString(253, 0, data.data(), -2, 2), 0u);
}

TEST(StringHash, special_texts) {
  char text[] =
      "\xE9"
      "b",
       empty[] = "\0";
  EXPECT_EQ(HashString(1, 254, text, -1, 1), 0xFEFE7575ul);
  EXPECT_EQ(HashString(254, 0, text, 0, 1), 0xFEFE7575ul);
  EXPECT_EQ(HashString(1, 0, empty, -1, 1), 0ul);
  EXPECT_EQ(HashString(0, 0, text, -1, 1), 0xE9ul * 9 + 'b') << "code set 0: unsigned bytes";
  EXPECT_EQ(HashString(0, 0, text, 1, 1), 0xE9ul);
  EXPECT_EQ(HashString(255, 0, text, -1, 1), HashString(KtLanguageContext::GetDefault8CodeSet(), 0, text, -1, 1));
}

// Beside another code set it is compared as the native one, whose characters they are here.
TEST(StringHash, code_set_0_hashes_by_its_bytes_and_apart_from_its_equals_in_others) {
  char text[] = "a\xE9";
  for (const unsigned short op : {KtCMP_NO_WILDCARDS, KtCMP_BINARY})
    EXPECT_EQ(KtStrCmp(0, 1, text, 1, 1, text, op, -1), 0);
  EXPECT_EQ(HashString(0, 1, text, -1, 255), 0x61ul * 9 + 0xE9);
  EXPECT_EQ(HashString(1, 1, text, -1, 255), slowHash(u"a\u00E9", 1, 0));
  EXPECT_NE(HashString(1, 1, text, -1, 255), HashString(0, 1, text, -1, 255));
  for (const unsigned char language : kLanguages)  // no language has rules for mere bytes
    EXPECT_EQ(HashString(0, language, text, -1, 255), HashString(0, 1, text, -1, 255));
}

TEST(StringHash, of_string_objects_takes_stored_characters) {
  KtString s("\xE9");
  EXPECT_EQ(HashKtString(s), 0xFFFFFFE9ul);
  EXPECT_EQ(HashKtString7(s), 0x69ul);
  EXPECT_EQ(HashKtString(KtString()), 0ul);

  const std::string bytes = stored(kLong, 1);
  unsigned expected = 0, expected7 = 0;
  for (const char c : bytes) {
    expected = expected * 9u + static_cast<unsigned>(static_cast<signed char>(c));
    expected7 = expected7 * 9u + (static_cast<unsigned char>(c) & 127u);
  }
  EXPECT_EQ(HashKtString(KtString(bytes.c_str())), expected);
  EXPECT_EQ(HashKtString7(KtString(bytes.c_str())), expected7);
}

TEST(StringHash, only_code_set_253_is_walked_in_units) {
  const unsigned short units[] = {0x0141, 0x0062, 0};
  KtString s(units);
  s.SetCodeSetCode(253);
  EXPECT_EQ(HashKtString(s), 0x141ul * 9 + 0x62);
  EXPECT_EQ(HashKtString7(s), 0x41ul * 9 + 0x62);

  const unsigned short inMemory[] = {0x6261, 0x6300, 0};  // bytes of either order: the second unit holds a zero
  KtString other(inMemory);
  other.SetCodeSetCode(240);
  const auto* raw = reinterpret_cast<const signed char*>(inMemory);
  unsigned expected = 0;
  for (; *raw != 0; ++raw) expected = expected * 9u + static_cast<unsigned>(*raw);
  EXPECT_EQ(HashKtString(other), expected);
}
