// ktstring_test.cpp - making, assigning and asking strings; code sets against iconv; numbers against the C library.
#include "ktstring.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "ktoption.h"
#include "ktstriter.h"
#include "values/null_text.h"

namespace {

constexpr unsigned char kWide = 253;
using Bytes = std::vector<unsigned char>;

KtString widened(const char* text) {
  KtString s(text);
  s.SetCodeSet(kWide);
  return s;
}

struct NamedSet {
  unsigned char code;
  const char* iconvName;
};
constexpr NamedSet kSets[] = {{1, "ISO-8859-1"},  {2, "ISO-8859-2"}, {3, "ISO-8859-5"}, {4, "ISO-8859-7"},
                              {5, "ISO-8859-15"}, {10, "CP1252"},    {12, "CP1251"}};

// One byte through iconv; 0x1A where iconv finds no character for it.
unsigned char converted(iconv_t handle, unsigned char byte) {
  char in = static_cast<char>(byte);
  char out = 0x1A;
  char* from = &in;
  char* to = &out;
  std::size_t inLeft = 1, outLeft = 1;
  return iconv(handle, &from, &inLeft, &to, &outLeft) == 0 && outLeft == 0 ? static_cast<unsigned char>(out) : 0x1A;
}

// Does the byte stand for a visible character? Controls are kept even by sets that do not define them.
bool isVisible(const NamedSet& set, unsigned char byte) {
  char in = static_cast<char>(byte);
  unsigned char out[2] = {};
  char* from = &in;
  char* to = reinterpret_cast<char*>(out);
  std::size_t inLeft = 1, outLeft = 2;
  iconv_t handle = iconv_open("UTF-16LE", set.iconvName);
  const bool defined = iconv(handle, &from, &inLeft, &to, &outLeft) == 0;
  iconv_close(handle);
  return defined && (out[1] != 0 || out[0] >= 0xA0);
}

// The visible characters from 0x80 to 0xFF.
std::string upperHalf(const NamedSet& set) {
  std::string text;
  for (unsigned byte = 0x80; byte < 0x100; ++byte) {
    if (isVisible(set, static_cast<unsigned char>(byte))) text += static_cast<char>(byte);
  }
  return text;
}

}  // namespace

TEST(KtString, empty_strings_have_no_buffer) {
  const unsigned short nothing = 0;
  for (const KtString& s :
       {KtString(), KtString(static_cast<char>(0)), KtString(static_cast<const char*>(nullptr)), KtString(nothing),
        KtString(&nothing), KtString("abc", static_cast<unsigned short>(0)), KtString(0, 1), KtString::EmptyString()}) {
    EXPECT_EQ(s.buffer, nullptr);
    EXPECT_EQ(s.bufferSize, 0);
    EXPECT_EQ(s.Len(), 0);
    EXPECT_EQ(s.IsEmpty(), 1);
    EXPECT_STREQ(s.StrGet(), "");
  }
}

TEST(KtString, constructors_take_the_defaults_of_their_character_size) {
  KtLanguageContext::SetDefault8CodeSet(10);
  KtLanguageContext::SetDefault16CodeSet(230);
  KtLanguageContext::SetDefaultLanguage(3);
  const unsigned short wideText[] = {'h', 0x20AC, 0};
  const KtString narrow("a"), wide(wideText), empty, number(-7);
  EXPECT_EQ(narrow.codeSet, 10);
  EXPECT_EQ(number.codeSet, 10);
  EXPECT_EQ(wide.codeSet, 230);
  EXPECT_EQ(wide.Len(), 2);
  EXPECT_EQ(wide.bufferSize, 6);
  EXPECT_EQ(empty.codeSet, 1);
  EXPECT_EQ(narrow.language, 3);
  KtLanguageContext::SetDefault8CodeSet(kWide);  // of the wrong size: must not make 16-bit units of bytes
  EXPECT_EQ(KtString("a").CharSize(), 1);
  KtLanguageContext::SetDefault8CodeSet(1);
  KtLanguageContext::SetDefault16CodeSet(kWide);
  KtLanguageContext::SetDefaultLanguage(1);
}

TEST(KtString, explicit_counts_keep_zeros_that_end_the_text) {
  const KtString s("ab\0cd", static_cast<unsigned short>(5));
  EXPECT_EQ(s.bufferSize, 6);
  EXPECT_EQ(s.Len(), 2);
  KtString copy(s);
  EXPECT_EQ(std::memcmp(copy.buffer, "ab\0cd", 6), 0);
  EXPECT_STREQ((copy += "x").StrGet(), "abx");
  EXPECT_EQ(copy.bufferSize, 4);
  EXPECT_STREQ(KtString("abc", static_cast<unsigned short>(65535)).StrGet(), "abc");
  const unsigned short wide[] = {'a', 'b', 0};
  EXPECT_EQ(KtString(wide, static_cast<unsigned short>(65535)).Len(), 2);
}

TEST(KtString, numbers_print_as_printf_does) {
  EXPECT_STREQ(KtString(4294967295u).StrGet(), "-1");
  EXPECT_STREQ(KtString(static_cast<short>(-32768)).StrGet(), "-32768");
  EXPECT_STREQ(KtString(std::numeric_limits<int>::min()).StrGet(), "-2147483648");
  EXPECT_STREQ(KtString(~0ul).StrGet(), std::to_string(~0ul).c_str());
  std::mt19937_64 random(1);
  std::vector<double> values = {0.0,      -0.0,      1e15, 1e16, 123456789012345.0, 0.1, 1e-5, 1e-4,
                                HUGE_VAL, -HUGE_VAL, NAN,  -NAN};
  for (int i = 0; i < 2000; ++i) {
    double value;
    const std::uint64_t bits = random();
    std::memcpy(&value, &bits, sizeof value);
    values.push_back(value);
  }
  for (const double value : values) {
    char expected[64];
    std::snprintf(expected, sizeof expected, "%.15g", value);
    EXPECT_STREQ(KtString(value).StrGet(), expected);
  }
}

// --- reading numbers; the C library tells what is expected ------------------------------------------------------------

const char* const kNumberTexts[] = {
    // whole numbers, their bases and limits
    "", " ", "12", " \t\n-12x", "+7", "- 7", "0x1F", "0x", "0xg", "-0X10", "010", "08", "0", "--5", "+-5", "2147483647",
    "2147483648", "-2147483648", "-99999999999", "9223372036854775808", "-9223372036854775809", "12abc",
    // fractions and exponents
    "1e3", "1.5", ".5e1", "-.5", ".", "e5", "1e", "1e+", "1e400", "-1e400", "1e-400", "0.0001e-320", "0e999999999999",
    "1e99999999999", "1e-99999999999",
    // hexadecimal fractions, names
    "0x1.8p1", "0x.8", "0x.p1", "0x1p-1080", "0x1p5000", "-0x1p5000", "inf", "-Infinity", "INFINIT", "nan", "-nan(12)",
    // the least and the greatest numbers, and a long text
    "4.9e-324", "1.7976931348623157e308", "1.7976931348623159e308",
    "00000000000000000000000000000000000000000000000000000000000000000000000012.5"};

// Each text in 8-bit and in 16-bit characters.
template <class Check>
void checkNumberTexts(Check check) {
  for (const char* text : kNumberTexts) {
    for (const KtString& s : {KtString(text), widened(text)}) {
      SCOPED_TRACE(testing::Message() << '"' << text << "\", bytes a character: " << s.CharSize());
      check(text, s);
    }
  }
}

int saturated(long value) { return static_cast<int>(std::min(2147483647l, std::max(-2147483647l - 1, value))); }

TEST(KtString, int_and_short_detect_the_base_and_saturate_at_32_bits) {
  checkNumberTexts([](const char* text, const KtString& s) {
    const int expected = saturated(std::strtol(text, nullptr, 0));
    EXPECT_EQ(static_cast<int>(s), expected);
    EXPECT_EQ(static_cast<short>(s), static_cast<short>(expected));
  });
}

TEST(KtString, long_is_decimal_and_so_is_int_under_option_bit_0) {
  checkNumberTexts([](const char* text, const KtString& s) {
    const long expected = std::strtol(text, nullptr, 10);
    EXPECT_EQ(static_cast<long>(s), expected);
    ___KtTypeMgrOptions() = 1;
    EXPECT_EQ(static_cast<int>(s), saturated(expected));
    ___KtTypeMgrOptions() = 0;
  });
}

TEST(KtString, double_reads_fractions_exponents_and_names) {
  checkNumberTexts([](const char* text, const KtString& s) {
    const double expected = std::strtod(text, nullptr);
    const double value = s;
    EXPECT_EQ(std::isnan(value), std::isnan(expected)) << value;
    if (std::isnan(expected)) return;
    EXPECT_EQ(value, expected);
    EXPECT_EQ(std::signbit(value), std::signbit(expected));
  });
}

TEST(KtString, atol_and_strtol_refuse_what_begins_with_neither_digit_nor_minus) {
  checkNumberTexts([](const char* text, const KtString& s) {
    const bool isTaken = text[0] == '-' || (text[0] >= '0' && text[0] <= '9');
    long decimal = 5, detected = 5;
    EXPECT_EQ(s.Atol(decimal), isTaken ? 0 : -1);
    EXPECT_EQ(s.Strtol(detected), isTaken ? 0 : -1);
    EXPECT_EQ(decimal, isTaken ? std::strtol(text, nullptr, 10) : 0);
    EXPECT_EQ(detected, isTaken ? std::strtol(text, nullptr, 0) : 0);
  });
}

TEST(KtString, null_is_told_by_language_or_code_set) {
  const struct {
    unsigned char codeSet, language;
    int isNull;
  } cases[] = {{1, 254, 1}, {230, 254, 1}, {254, 0, 1}, {254, 3, 0}, {1, 0, 0}};
  for (const auto& c : cases) EXPECT_EQ(KtString(c.codeSet, c.language).IsNullValue(), c.isNull);
  KtString s("text");
  EXPECT_EQ(s.SetNullValue(), 0);
  EXPECT_EQ(s.buffer, nullptr);
  EXPECT_EQ(s.codeSet, 0);
  EXPECT_EQ(s.language, 254);
  EXPECT_EQ(KtString(s).IsNullValue(), 1);
  s = "text";
  EXPECT_EQ(s.IsNullValue(), 0);
  EXPECT_STREQ(kt::nullPrintString().StrGet(), "{NULL}");
  EXPECT_STREQ(kt::zeroText().StrGet(), "0");
}

TEST(KtString, moves_and_destroys) {
  KtString from("abc"), to("old text");
  from.SetCodeSetCode(2);
  to.Destruct(from).Destruct(to);
  EXPECT_STREQ(to.StrGet(), "abc");
  EXPECT_EQ(to.codeSet, 2);
  EXPECT_EQ(from.buffer, nullptr);
  EXPECT_EQ(from.codeSet, 2);
  alignas(KtString) unsigned char place[sizeof(KtString)];
  auto* s = new (place) KtString("abc");
  s->~KtString();
  constexpr std::size_t kFields = sizeof(void*) + 4;  // the padding behind them is nobody's
  EXPECT_EQ(Bytes(place, place + kFields), Bytes(kFields, 0));
}

TEST(KtString, fields_can_be_forgotten_and_texts_given_up) {
  KtString s("text");
  char* const block = s.buffer;
  EXPECT_EQ(s.Init(), 0);
  EXPECT_TRUE(s.buffer == nullptr && s.bufferSize == 0 && s.codeSet == 1 && s.language == 1);
  s.buffer = block;
  s.bufferSize = 5;
  s.d_deactivate();
  EXPECT_TRUE(s.buffer == nullptr && s.bufferSize == 0);
}

TEST(KtString, takes_texts_and_characters_on_either_side) {
  const KtString s("ab");
  char text[] = "ab";
  unsigned short wide[] = {'a', 'b', 0};
  EXPECT_STREQ((s + text).StrGet(), "abab");
  EXPECT_STREQ((text + s + "x" + 'y').StrGet(), "ababxy");
  EXPECT_STREQ((s + wide + wide[1]).StrGet(), "ababb");
  EXPECT_EQ((wide + s).codeSet, kWide);
  EXPECT_EQ((s == text) + (text == s) + (s == wide) + (wide == s) + (s == "ab") + ("ab" == s), 6);
  EXPECT_EQ((s != text) + (s != 'a') + ('a' != s) + (s != wide[0]), 3);
  EXPECT_EQ((s > 'a') + ('a' < s) + (s < 'b') + ('b' >= s) + (s <= wide[1]) + (s >= wide), 6);
  EXPECT_EQ((s < 'a') + ('a' > s) + (s > 'b') + ('b' <= s) + (s > wide) + (s < text), 0);
}

TEST(KtString, index_reaches_the_terminator_and_no_further) {
  for (const KtString& s : {KtString("ab"), widened("ab")}) {
    EXPECT_EQ(s[1].code, 'b');
    EXPECT_EQ(s[1].codeSet, s.codeSet);
    EXPECT_EQ(s[2].code, 0);
    EXPECT_EQ(s[2].codeSet, s.codeSet);
    for (const int outside : {3, -1}) {
      EXPECT_EQ(s[outside].code, 0);
      EXPECT_EQ(s[outside].codeSet, 255);
      EXPECT_EQ(s[outside].language, 255);
    }
  }
}

// Elsewhere a character's code set 255 is the default 8-bit one, in a string it has 16 bits.
TEST(KtString, characters_of_code_set_255_are_unicode) {
  KtString s(255, 1);
  const unsigned short units[] = {0x20AC, ' '};
  s.Rebuild(reinterpret_cast<const char*>(units), 255, 0, 0, 2, 1, KtString::RebuildMode::kRebuild);
  EXPECT_EQ(s[0].Unicode(), 0x20AC);
  EXPECT_EQ(s[2].CharSize(), 2);
  EXPECT_EQ(s.Trim().Len(), 1);
  struct Look : KtCharOperation {
    int Apply(const KtChar& in, KtChar out[kMaxCharacters]) override {
      seen = in.Unicode();
      out[0] = in;
      return 1;
    }
    unsigned short seen = 0;
  } look;
  s.Transform(look);
  EXPECT_EQ(look.seen, 0x20AC);
  EXPECT_EQ(s.codeSet, 255);
}

TEST(CodeSets, relabelling_keeps_bytes_and_refuses_other_sizes) {
  KtString s("\xA4");
  EXPECT_EQ(s.SetCodeSetCode(230), -2002);
  EXPECT_EQ(s.codeSet, 1);
  EXPECT_EQ(s.SetCodeSetCode(5), 0);
  EXPECT_STREQ(s.StrGet(), "\xA4");
  s.SetCodeSet(10);  // of equal size: relabels
  EXPECT_STREQ(s.StrGet(), "\xA4");
  EXPECT_EQ(s.MapToCodeSet(0), -2002);
  EXPECT_EQ(s.MapToCodeSet(10), 0);
  s.SetCodeSetCode(5);
  EXPECT_EQ(s.MapToCodeSet(10), 0);  // the euro sign
  EXPECT_STREQ(s.StrGet(), "\x80");
  EXPECT_EQ(s.MapToCodeSet(kWide), 0);
  EXPECT_EQ(s[0].code, 0x20AC);
  EXPECT_EQ(s.bufferSize, 4);
  s.SetCodeSet(0);  // back through the native set, which lacks it
  EXPECT_EQ(s.codeSet, 0);
  EXPECT_STREQ(s.StrGet(), "\x1A");
}

TEST(CodeSets, mapping_agrees_with_iconv_for_all_pairs) {
  for (const NamedSet& from : kSets) {
    const std::string text = upperHalf(from);
    for (const NamedSet& to : kSets) {
      iconv_t handle = iconv_open(to.iconvName, from.iconvName);
      std::string expected;
      for (const char ch : text) expected += static_cast<char>(converted(handle, static_cast<unsigned char>(ch)));
      iconv_close(handle);
      KtString s(text.c_str());
      s.SetCodeSetCode(from.code);
      KtString wide, mapped, appended(to.code, 1);
      wide.CopyMapped(s, kWide, -1);
      EXPECT_EQ(mapped.CopyMapped(wide, to.code, 65535), static_cast<int>(text.size()));
      appended += s;
      s.MapToCodeSet(to.code);
      EXPECT_EQ(s.StrGet(), expected) << from.iconvName << " to " << to.iconvName;
      EXPECT_EQ(mapped.StrGet(), expected);
      EXPECT_EQ(appended.StrGet(), expected);
    }
  }
}

TEST(CodeSets, a_mapped_copy_takes_what_its_content_needs) {
  const KtString source("abcdef");
  KtString copy("a text longer than the copy");
  EXPECT_EQ(copy.CopyMapped(copy, 1, 1), -2002);
  EXPECT_EQ(copy.CopyMapped(source, 1, 3), 3);
  EXPECT_STREQ(copy.StrGet(), "abc");
  EXPECT_EQ(copy.bufferSize, 4);
  EXPECT_EQ(copy.CopyMapped(source, kWide, 40000), 0);
  EXPECT_EQ(copy.CopyMapped(source, kWide, 65535), 6);
  EXPECT_EQ(copy.bufferSize, 14);
  EXPECT_EQ(copy.CopyMapped(KtString(2, 3), 1, -1), 0);
  EXPECT_EQ(copy.IsEmpty(), 1);
  EXPECT_EQ(copy.language, 3);
}

// Every length about the thirty that are mapped at once, with a letter that moves (L with caron) at each place, into a
// string that has held nothing, less or more.
TEST(CodeSets, a_mapped_copy_agrees_with_mapping_each_character) {
  for (unsigned length = 0; length <= 40; ++length) {
    for (unsigned special = 0; special <= length; ++special) {
      std::string text(length, 'n');
      if (special < length) text[special] = '\xA5';
      KtString source(text.c_str());
      source.SetCodeSetCode(2);
      source.SetLanguage(3);
      for (const unsigned held : {0u, 3u, 20u, 100u}) {
        KtString copy(std::string(held, 'h').c_str());
        const int count = static_cast<int>(special % 2 == 0 ? 65535 : length / 2);
        const unsigned mapped = count == 65535 ? length : length / 2;
        std::string expected = text.substr(0, mapped);
        for (char& ch : expected) {
          const unsigned short unicode = KtCodeSet::Get(2).ToUnicode(static_cast<unsigned char>(ch));
          ch = static_cast<char>(KtCodeSet::Get(11).FromUnicode(unicode));
        }
        ASSERT_EQ(copy.CopyMapped(source, 11, count), static_cast<int>(mapped));
        ASSERT_EQ(copy.StrGet(), expected);
        ASSERT_EQ(copy.codeSet, 11);
        ASSERT_EQ(copy.language, 3);
        copy += '!';
        copy += "0123456789";
        ASSERT_EQ(copy.StrGet(), expected + "!0123456789");
      }
    }
  }
}

TEST(KtChar, maps_into_its_own_code_set) {
  KtChar latin(0, 1, 1), western(0, 10, 1), wide(0, kWide, 1);
  wide = KtChar(0x80, 10, 1);
  EXPECT_EQ(wide.code, 0x20AC);
  latin = wide;
  EXPECT_EQ(latin.code, 0x1A);
  EXPECT_EQ(latin.codeSet, 1);
  western = wide;
  EXPECT_EQ(western.code, 0x80);
  EXPECT_TRUE(western == wide);
  EXPECT_TRUE(wide != latin);
  EXPECT_TRUE(KtChar('a') == 'a');
  EXPECT_TRUE(KtChar().code == 0 && KtChar().codeSet == 1 && KtChar().language == 1);
  const KtChar euro(static_cast<unsigned short>(0x20AC));
  EXPECT_TRUE(euro.code == 0x20AC && euro.codeSet == kWide && euro.language == 1);
  EXPECT_EQ(KtChar(0xC4, 1, 1).ToLower().code, 0xE4);
  EXPECT_EQ(KtChar('7', 1, 20).IsSpace(), 0);
  EXPECT_EQ(KtChar(' ', 1, 20).IsSpace(), 1);
  KtLanguageContext::SetDefaultLanguage(20);
  EXPECT_EQ(KtChar('a', 1, 255).Order(), KtChar('a', 1, 0).Order());  // an unknown language is the neutral one
  KtLanguageContext::SetDefaultLanguage(1);
}

TEST(KtStringIterator, walks_both_ways_in_every_byte_order) {
  const char big[] = {0x00, 'a', 0x01, 0x02, 0x00, 0x00};
  const char little[] = {'a', 0x00, 0x02, 0x01, 0x00, 0x00};
  for (const auto& [text, flag] : {std::pair(big, 2), std::pair(little, 4)}) {
    KtStringIterator it(text, kWide, 1, static_cast<unsigned char>(flag));
    EXPECT_EQ(it.Previous(), 0);
    EXPECT_EQ(it.GetNext().code, 'a');
    EXPECT_EQ(it.GetNext().code, 0x0102);
    EXPECT_EQ(it.Next(), 0);
    EXPECT_EQ(it.Get().code, 0);
    EXPECT_EQ(it.Position(), 2u);
    EXPECT_EQ(it.Previous(), 1);
    EXPECT_EQ(it.Get().code, 0x0102);
  }
  KtStringIterator limited("abc", 255, 1, 1, 2);
  EXPECT_EQ(limited.CodeSet(), 1);
  EXPECT_NE(limited.GetNextOrder(), 0);
  EXPECT_NE(limited.GetNextOrder(), 0);
  EXPECT_EQ(limited.GetNextOrder(), 0);
  EXPECT_EQ(KtStringIterator(nullptr, 1, 1).GetNextOrder(), 0);
}

TEST(KtStringIterator, gives_all_orders_of_a_character_in_turn) {
  const unsigned short text[] = {0xE000, 'b', 0};  // private use: two orders under an alphabetic kind
  KtStringIterator it(reinterpret_cast<const char*>(text), kWide, 1);
  const KtString b("b");
  KtStringIterator plain(b.StrGet(), 1, 1);
  EXPECT_EQ(it.GetNextOrder(), 0xFFFF);
  EXPECT_EQ(it.Position(), 0u);
  EXPECT_EQ(it.GetNextOrder(), 0x8000 + 0xE000 - 0x7FFF);
  EXPECT_EQ(it.Position(), 1u);
  EXPECT_EQ(it.GetNextOrder(), plain.GetNextOrder());
  EXPECT_EQ(it.GetNextOrder(), 0);
}

TEST(KtStringIterator, transform_drops_what_does_not_fit) {
  KtUpperCaseOperation upper;
  char target[4] = {'?', '?', '?', '?'};
  EXPECT_EQ(KtStringIterator("abcdef", 1, 1).Transform(upper, target, 4), 4u);
  EXPECT_STREQ(target, "ABC");
  EXPECT_EQ(KtStringIterator("abc", 1, 1).Transform(upper, target, 0), 0u);
  EXPECT_EQ(KtStringIterator("", 1, 1).Transform(upper, target, 1), 1u);
}
