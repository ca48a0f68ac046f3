// multi_byte_test.cpp - UTF-8 against iconv and against a decoder that follows the bit patterns one by one.
#include "ktmbs.h"

#include <gtest/gtest.h>
#include <ktbs.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#include <iconv.h>
#endif

namespace {

using Units = std::vector<unsigned short>;

constexpr unsigned char kWide = 253;

unsigned below(std::mt19937& random, std::size_t bound) { return static_cast<unsigned>(random() % bound); }

KtString wide(const Units& units) { return KtString(units.data(), static_cast<unsigned short>(units.size())); }

Units unitsOf(const KtString& s) {
  Units units(s.Len());
  if (!units.empty()) std::memcpy(units.data(), s.StrGet(), 2 * units.size());
  return units;
}

// A copy whose end is the end of its memory, so that the address sanitizer sees every byte read too far.
struct Exact {
  explicit Exact(const std::string& text) : bytes(new char[text.size()]), size(text.size()) {
    std::copy(text.begin(), text.end(), bytes.get());
  }
  std::unique_ptr<char[]> bytes;
  std::size_t size;
};

long decode(const std::string& text, KtString& out) {
  const Exact in(text);
  return KtMBS2KtString(in.bytes.get(), out, static_cast<long>(text.size()));
}

std::string encode(const KtString& s) {
  std::string out(3ul * s.Len() + 1, '#');
  const long n = KtString2KtMBS(s, out.data(), static_cast<long>(out.size()));
  out.resize(n < 0 ? 0 : static_cast<std::size_t>(n));
  return out;
}

// The value of one sequence that must be the whole text, by the bit patterns of its bytes; -1 where it is none.
long long sequenceValue(const std::string& text) {
  static constexpr struct {
    unsigned char first, last;
    long long smallest;
  } kLeads[] = {{0x00, 0x7F, 0},       {0xC0, 0xDF, 0x80},     {0xE0, 0xEF, 0x800},
                {0xF0, 0xF7, 0x10000}, {0xF8, 0xFB, 0x200000}, {0xFC, 0xFD, 0x4000000}};
  if (text.empty() || text.size() > std::size(kLeads)) return -1;
  const auto& lead = kLeads[text.size() - 1];
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < lead.first || first > lead.last) return -1;
  long long value = first - lead.first;
  for (const char ch : text.substr(1)) {
    const auto byte = static_cast<unsigned char>(ch);
    if (byte / 64 != 2) return -1;
    value = value * 64 + byte % 64;
  }
  return value < lead.smallest ? -1 : value;
}

// Decodes one character the slow way: tries every length.
int slowDecode(const std::string& text, unsigned short& unit) {
  for (std::size_t n = 1; n <= std::min<std::size_t>(6, text.size()); ++n) {
    const long long value = sequenceValue(text.substr(0, n));
    if (value < 0) continue;
    unit = static_cast<unsigned short>(value % 65536);
    return static_cast<int>(n);
  }
  return -1;
}

struct SlowText {
  Units units;
  long result;
};

// The result of KtMBS2KtString.
SlowText slowDecodeText(const std::string& text) {
  SlowText slow{{}, 0};
  while (static_cast<std::size_t>(slow.result) < text.size()) {
    unsigned short unit = 0;
    const int used = slowDecode(text.substr(static_cast<std::size_t>(slow.result), 6), unit);
    if (used < 0) return {slow.units, -1};
    if (unit == 0) return slow;
    slow.units.push_back(unit);
    slow.result += used;
    if (slow.result >= 32768) return {slow.units, -2};
  }
  return slow;
}

std::string sequenceOf(unsigned long value, int bytes) {
  static constexpr unsigned char kLead[] = {0, 0, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};
  std::string text(static_cast<std::size_t>(bytes), 0);
  for (int i = bytes - 1; i > 0; --i, value /= 64)
    text[static_cast<std::size_t>(i)] = static_cast<char>(0x80 + value % 64);
  text[0] = static_cast<char>(kLead[bytes] + value);
  return text;
}

// A text of pieces that meet every branch; `kinds` of them, the last ones bad.
std::string randomText(std::mt19937& random, unsigned kinds, std::size_t pieces) {
  std::string text;
  for (std::size_t i = 0; i < pieces; ++i) {
    const unsigned long value = random();
    switch (random() % kinds) {
      case 0: text.append(1 + value % 40, static_cast<char>('a' + value % 26)); break;
      case 1: text += static_cast<char>(1 + value % 127); break;
      case 2: text += sequenceOf(0x80 + value % (0x800 - 0x80), 2); break;
      case 3: text += sequenceOf(0x800 + value % (0x10000 - 0x800), 3); break;
      case 4: text += sequenceOf(0x10000 + value % 0x1F0000, 4); break;
      case 5: text += sequenceOf(0x200000 + value % 0x3E00000, 5); break;
      case 6: text += sequenceOf(0x4000000 + value % 0x7C000000, 6); break;
      default: text += static_cast<char>(value); break;
    }
  }
  return text;
}

// --- one character --------------------------------------------------------------------------------------------------

TEST(MultiByte, decodes_one_character_or_refuses_it) {
  const struct {
    const char* bytes;
    unsigned n;
    int result;
    unsigned short unit;
  } cases[] = {
      {"A", 1, 1, 'A'},
      {"", 1, 1, 0},
      {"\x7F", 1, 1, 0x7F},
      {"\xC3\xA9", 2, 2, 0xE9},
      {"\xC3\xA9", 1, -1, 0},
      {"\xC3\xA9", 0, -1, 0},
      {"\xC0\x80", 2, -1, 0},  // over-long
      {"\xC1\xBF", 2, -1, 0},
      {"\xE0\x9F\xBF", 3, -1, 0},
      {"\xF0\x8F\xBF\xBF", 4, -1, 0},
      {"\xF8\x87\xBF\xBF\xBF", 5, -1, 0},
      {"\xFC\x83\xBF\xBF\xBF\xBF", 6, -1, 0},
      {"\xC2\x80", 2, 2, 0x80},
      {"\xDF\xBF", 2, 2, 0x7FF},
      {"\xE0\xA0\x80", 3, 3, 0x800},
      {"\xE2\x82\xAC", 3, 3, 0x20AC},
      {"\xED\xA0\x80", 3, 3, 0xD800},  // surrogates are characters
      {"\xEF\xBF\xBF", 3, 3, 0xFFFF},
      {"\xF0\x90\x81\x81", 4, 4, 0x41},  // 0x10041
      {"\xF7\xBF\xBF\xBF", 4, 4, 0xFFFF},
      {"\xF8\x88\x80\x80\x82", 5, 5, 2},
      {"\xFC\x84\x80\x80\x80\x83", 6, 6, 3},
      {"\xFD\xBF\xBF\xBF\xBF\xBF", 6, 6, 0xFFFF},
      {"\xC3(", 2, -1, 0},
      {"\xE2\x82(", 3, -1, 0},
      {"\x80", 1, -1, 0},
      {"\xBF\xBF\xBF\xBF\xBF\xBF\xBF\xBF", 8, -1, 0},
      {"\xFE\x80\x80\x80\x80\x80\x80", 7, -1, 0},
      {"\xFF", 1, -1, 0},
  };
  for (const auto& c : cases) {
    Exact in(std::string(c.bytes, std::max(c.n, 1u)));
    unsigned short unit = 0;
    EXPECT_EQ(KtMultiByte2WChar(&unit, in.bytes.get(), c.n), c.result) << testing::PrintToString(c.bytes);
    EXPECT_EQ(unit, c.unit) << testing::PrintToString(c.bytes);
    EXPECT_EQ(KtMultiByte2WChar(nullptr, in.bytes.get(), c.n), c.result);
  }
  unsigned short unit = 7;
  EXPECT_EQ(KtMultiByte2WChar(&unit, nullptr, 0), 0);
  EXPECT_EQ(unit, 7);
  EXPECT_EQ(KtWChar2MultiByte(nullptr, 'A'), 0);
}

#if defined(__GLIBC__)  // other iconvs name their code sets otherwise
TEST(MultiByte, every_character_agrees_with_iconv) {
  iconv_t toUtf8 = iconv_open("UTF-8", "UCS-2LE");
  for (unsigned code = 0; code < 65536; ++code) {
    char bytes[4] = {};
    const int n = KtWChar2MultiByte(bytes, static_cast<unsigned short>(code));
    ASSERT_GT(n, 0);
    unsigned short back = 0;
    EXPECT_EQ(KtMultiByte2WChar(&back, bytes, static_cast<unsigned>(n)), n);
    EXPECT_EQ(back, code);
    char source[2] = {static_cast<char>(code & 255), static_cast<char>(code >> 8)};
    char target[4] = {};
    char *from = source, *to = target;
    std::size_t inLeft = 2, outLeft = 4;
    if (iconv(toUtf8, &from, &inLeft, &to, &outLeft) != 0) {  // iconv refuses surrogates and nothing else
      EXPECT_TRUE(code >= 0xD800 && code < 0xE000) << code;
      iconv(toUtf8, nullptr, nullptr, nullptr, nullptr);
      continue;
    }
    EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(n)), std::string(target, 4 - outLeft)) << code;
  }
  iconv_close(toUtf8);
}

TEST(MultiByte, random_texts_agree_with_iconv) {
  iconv_t toUtf8 = iconv_open("UTF-8", "UCS-2LE");
  std::mt19937 random(20);
  for (int round = 0; round < 2000; ++round) {
    static constexpr unsigned kLargest[] = {0x7F, 0x17F, 0x7FF, 0xD7FF};
    const unsigned largest = kLargest[random() % 4];
    Units units(random() % 700);
    std::string source;
    for (unsigned short& unit : units) {
      unit = static_cast<unsigned short>(1 + random() % (random() % 3 == 0 ? largest : 0x7F));
      source += static_cast<char>(unit & 255);
      source += static_cast<char>(unit >> 8);
    }
    std::string target(3 * units.size() + 1, 0);
    char *from = source.data(), *to = target.data();
    std::size_t inLeft = source.size(), outLeft = target.size();
    iconv(toUtf8, &from, &inLeft, &to, &outLeft);
    target.resize(target.size() - outLeft);
    const KtString s = wide(units);
    ASSERT_EQ(encode(s), target);
    ASSERT_EQ(KtMBSLength(s, 65535), static_cast<long>(target.size()));
    KtString back(kWide, 3);
    ASSERT_EQ(decode(target, back), static_cast<long>(target.size()));
    ASSERT_EQ(unitsOf(back), units);
  }
  iconv_close(toUtf8);
}
#endif

// --- decoding texts -------------------------------------------------------------------------------------------------

TEST(MultiByte, texts_decode_as_character_by_character) {
  std::mt19937 random(21);
  for (int round = 0; round < 6000; ++round) {
    const std::string text = randomText(random, 3 + below(random, 6), below(random, 60));
    const SlowText slow = slowDecodeText(text);
    KtString out("old text");
    ASSERT_EQ(decode(text, out), slow.result) << testing::PrintToString(text);
    ASSERT_EQ(unitsOf(out), slow.units) << testing::PrintToString(text);
    ASSERT_EQ(out.bufferSize, slow.units.empty() ? 0 : 2 * slow.units.size() + 2);
  }
}

TEST(MultiByte, a_text_cut_anywhere_is_bad_inside_a_sequence_and_good_between) {
  const std::string text =
      "na\xC3\xAFve caf\xC3\xA9, 20 \xE2\x82\xAC: plain words follow, long enough for a block\xF0\x90\x81\x81"
      "\xF8\x88\x80\x80\x82\xFC\x84\x80\x80\x80\x83 and end \xE2\x82\xAC";
  for (std::size_t n = 0; n <= text.size(); ++n) {
    const std::string part = text.substr(0, n);
    const SlowText slow = slowDecodeText(part);
    KtString out;
    EXPECT_EQ(decode(part, out), slow.result) << n;
    EXPECT_EQ(unitsOf(out), slow.units) << n;
    for (const int room : {0, 1, 15, 16, 17, 40, 200}) {
      Exact in(part);
      Units units(200, 0xAAAA);
      const long all = slow.result < 0 ? -1 : static_cast<long>(slow.units.size());
      const int got = KtMultiByteStr2WCharStr(units.data(), room, in.bytes.get(), static_cast<int>(n));
      // A sequence is not looked at when there is no room for its character.
      EXPECT_EQ(got, static_cast<int>(slow.units.size()) >= room ? room : all) << n << " " << room;
      for (std::size_t i = 0; got >= 0 && i < units.size(); ++i) {
        ASSERT_EQ(units[i], i < static_cast<std::size_t>(got) ? slow.units[i] : 0xAAAA) << n << " " << room;
      }
    }
  }
}

TEST(MultiByte, character_runs_decode_into_their_room_and_nothing_behind_it) {
  std::mt19937 random(22);
  for (int round = 0; round < 3000; ++round) {
    std::string text = randomText(random, 3 + below(random, 5), below(random, 80));
    text.append(random() % 3, '\0');  // zeros are characters here
    Units expected;
    for (std::size_t pos = 0; pos < text.size();) {
      unsigned short unit = 0;
      pos += static_cast<std::size_t>(slowDecode(text.substr(pos, 6), unit));
      expected.push_back(unit);
    }
    const std::size_t room = random() % (expected.size() + 30);
    const std::size_t count = std::min(room, expected.size());
    Units out(room + 20, 0xAAAA);
    Exact in(text);
    ASSERT_EQ(KtMultiByteStr2WCharStr(out.data(), static_cast<int>(room), in.bytes.get(), static_cast<int>(in.size)),
              static_cast<int>(count));
    expected.resize(count);
    expected.resize(out.size(), 0xAAAA);
    ASSERT_EQ(out, expected);
  }
  Units out(4);
  char byte = 'a';
  EXPECT_EQ(KtMultiByteStr2WCharStr(nullptr, 4, &byte, 1), 0);
  EXPECT_EQ(KtMultiByteStr2WCharStr(out.data(), 4, nullptr, 1), 0);
  EXPECT_EQ(KtMultiByteStr2WCharStr(out.data(), -1, &byte, 1), 0);
  EXPECT_EQ(KtMultiByteStr2WCharStr(out.data(), 4, &byte, -1), 0);
}

TEST(MultiByte, decoding_ends_before_a_zero) {
  const struct {
    std::string text;
    long result;
    unsigned short length;
  } cases[] = {
      {std::string("ab\0cd", 5), 2, 2},
      {std::string("\0cd", 3), 0, 0},
      {"abc\xF0\x90\x80\x80xyz", 3, 3},  // 0x10000 has no low bits
      {std::string("ab\xC3\0\xA9", 5), -1, 2},
      {std::string(600, 'x') + std::string("\0\xFF", 2), 600, 600},
      {std::string(600, 'x') + "\xF0\x90\x80\x80", 600, 600},
  };
  for (const auto& c : cases) {
    KtString out;
    EXPECT_EQ(decode(c.text, out), c.result);
    EXPECT_EQ(out.Len(), c.length);
  }
  // n may lie: nothing behind the zero is read.
  const Exact in(std::string("ab", 3));
  KtString out;
  EXPECT_EQ(KtMBS2KtString(in.bytes.get(), out, 1000000), 2);
}

TEST(MultiByte, decoding_sets_the_code_set_and_keeps_the_language) {
  for (const char* in : {static_cast<const char*>(nullptr), "", "caf\xC3\xA9", "\xFF"}) {
    KtString out("old", 3);
    out.language = 7;
    KtMBS2KtString(in, out, in == nullptr ? 3 : static_cast<long>(std::strlen(in)));
    EXPECT_EQ(out.codeSet, kWide);
    EXPECT_EQ(out.language, 7);
    EXPECT_EQ(out.Len(), in == nullptr ? 0 : std::min<std::size_t>(4, std::strlen(in) == 1 ? 0 : std::strlen(in)));
  }
  KtString out("old");
  EXPECT_EQ(KtMBS2KtString("abc", out, -5), 0);
  EXPECT_TRUE(out.IsEmpty());
}

TEST(MultiByte, a_string_decodes_into_itself) {
  for (const int words : {1, 3, 5, 200}) {
    std::string text, latin;
    for (int i = 0; i < words; ++i) text += "caf\xC3\xA9 ", latin += "caf\xE9 ";
    KtString s(text.c_str());
    EXPECT_EQ(KtMultiByteString2KtString(s, s), static_cast<long>(text.size()));
    KtString expected(latin.c_str());
    expected.MapToCodeSet(kWide);
    EXPECT_EQ(unitsOf(s), unitsOf(expected));
    KtString again(text.c_str());
    EXPECT_EQ(KtMultiByteString2KtString(again.StrGet(), again, 4), -1);  // within the é
    EXPECT_EQ(again.Len(), 3);
  }
}

int overflows = 0;

TEST(MultiByte, input_of_32768_bytes_is_too_long) {
  KtAssertHandler old = KtSetAssertHandler([](const char*, const char*, int) { ++overflows; });
  const struct {
    std::string text;
    long result;
    std::size_t length;
    int overflows;
  } cases[] = {
      {std::string(32765, 'x'), 32765, 32765, 0},
      {std::string(32766, 'x'), 32766, 32766, 1},  // 65,534 bytes with the terminator: more than allowed, not cut
      {std::string(32767, 'x'), 32767, 0, 1},      // 65,536 bytes: nothing is left of them in 16 bits
      {std::string(32600, 'x') + std::string("\0x", 2), 32600, 32600, 0},
      {std::string(32766, 'x') + "\xE2\x82\xAC", -2, 0, 1},
      {std::string(32768, 'x'), -2, 0, 1},
      {std::string(40000, 'x'), -2, 0, 1},
      {std::string(32767, 'x') + '\xFF', -1, 0, 1},
  };
  for (const auto& c : cases) {
    overflows = 0;
    KtString out;
    EXPECT_EQ(decode(c.text, out), c.result) << c.text.size();
    EXPECT_EQ(overflows, c.overflows) << c.text.size();
    EXPECT_EQ(unitsOf(out), Units(c.length, 'x')) << c.text.size();
  }
  overflows = 0;
  std::string euros;
  for (int i = 0; i < 12000; ++i) euros += "\xE2\x82\xAC";
  KtString out;
  EXPECT_EQ(decode(euros, out), -2);
  EXPECT_EQ(unitsOf(out), Units(10923, 0x20AC));  // the one that reaches 32,769 is still taken
  EXPECT_EQ(decode(euros.substr(0, 32766), out), 32766);
  EXPECT_EQ(overflows, 0);
  KtSetAssertHandler(old);
}

// --- encoding -------------------------------------------------------------------------------------------------------

KtString inSet(const char* text, unsigned char codeSet) {
  KtString s(text);
  s.codeSet = codeSet;
  return s;
}

TEST(MultiByte, encodes_into_the_room_given) {
  const struct {
    const char* what;
    const char* text;  // in code set
    unsigned char codeSet;
    long size, result;
    const char* out;  // "#": untouched, "0": zero
  } cases[] = {
      {"plain, rest zero-filled", "abc", 1, 6, 3, "abc000##"},
      {"plain, exactly", "abc", 1, 3, 3, "abc#####"},
      {"plain, cut", "abcdef", 5, 4, 4, "abcd####"},
      {"plain, empty", "", 0, 2, 0, "00######"},
      {"high byte behind the room", "abc\xE9", 1, 3, 3, "abc#####"},
      {"high byte does not fit", "abc\xE9", 1, 4, -3, "abc#####"},
      {"high byte, no room for the terminator", "abc\xE9", 1, 5, 5, "abc\xC3\xA9###"},
      {"high byte, one terminator only", "abc\xE9", 1, 8, 5,
       "abc\xC3\xA9"
       "0##"},
      {"first does not fit",
       "\xE9"
       "bc",
       1, 1, 0, "########"},
      {"Euro sign of its set", "\xA4", 5, 8, 3,
       "\xE2\x82\xAC"
       "0####"},
      {"cp1252, no fast path", "ab", 10, 8, 2, "ab0#####"},
      {"cp1252, too small", "abc", 10, 2, -2, "ab######"},
      {"no room", "abc", 1, 0, 0, "########"},
      {"negative room", "abc", 1, -4, 0, "########"},
  };
  for (const auto& c : cases) {
    char out[9] = "########";
    EXPECT_EQ(KtString2KtMBS(inSet(c.text, c.codeSet), out, c.size), c.result) << c.what;
    std::string expected = c.out;
    std::replace(expected.begin(), expected.end(), '0', '\0');
    EXPECT_EQ(std::string(out, 8), expected) << c.what;
  }
  EXPECT_EQ(KtString2KtMBS(KtString("abc"), nullptr, 5), 0);
}

TEST(MultiByte, a_wide_text_that_does_not_fit_gives_minus_what_was_written) {
  char out[100];
  EXPECT_EQ(KtString2KtMBS(wide(Units(300, 'x')), out, 100), -100);
  const KtString s = wide({'a', 0xE9, 0x20AC, 'b', 0x7F, 0x80});
  const std::string all =
      "a\xC3\xA9\xE2\x82\xAC"
      "b\x7F\xC2\x80";
  static constexpr long kResults[] = {0, -1, -1, -3, -3, -3, -6, -7, -8, -8, 10, 10};
  for (long size = 0; size < 12; ++size) {
    std::string room(12, '#');
    const long expected = kResults[size];
    EXPECT_EQ(KtString2KtMBS(s, room.data(), size), expected);
    const auto written = static_cast<std::size_t>(std::abs(expected));
    EXPECT_EQ(room.substr(0, written), all.substr(0, written));
    EXPECT_EQ(room[std::min<std::size_t>(written, 11)], size > 10 ? '\0' : '#') << size;
  }
}

TEST(MultiByte, long_texts_encode_alike_from_narrow_and_wide_and_in_any_room) {
  std::mt19937 random(23);
  for (int round = 0; round < 1500; ++round) {
    std::string text(random() % 700, 0);
    const unsigned rare = 1 + below(random, 40);
    for (char& ch : text) ch = static_cast<char>(random() % rare == 0 ? 0xA0 + random() % 96 : 1 + random() % 127);
    const KtString narrow = inSet(text.c_str(), static_cast<unsigned char>(round % 2 == 0 ? 1 : 10));
    KtString s(narrow);
    s.MapToCodeSet(kWide);
    std::string expected;
    for (const unsigned short unit : unitsOf(s)) {
      char bytes[3];
      expected.append(bytes, static_cast<std::size_t>(KtWChar2MultiByte(bytes, unit)));
    }
    ASSERT_EQ(encode(narrow), expected);
    ASSERT_EQ(encode(s), expected);
    ASSERT_EQ(KtMBSLength(narrow, 65535), static_cast<long>(expected.size()));
    // In less room: whole characters, and all that fit.
    const std::size_t size = random() % (expected.size() + 1);
    std::size_t fits = size;
    while (fits > 0 && fits < expected.size() && (expected[fits] & 0xC0) == 0x80) --fits;
    const std::unique_ptr<char[]> out(new char[size]);
    const long result = KtString2KtMBS(s, out.get(), static_cast<long>(size));
    ASSERT_EQ(result, size == expected.size() ? static_cast<long>(size) : -static_cast<long>(fits));
    ASSERT_EQ(std::string(out.get(), fits), expected.substr(0, fits));
  }
}

TEST(MultiByte, the_text_ends_at_its_first_zero) {
  const KtString narrow("ab\0\xE9", 4);
  EXPECT_EQ(encode(narrow), "ab");
  EXPECT_EQ(KtMBSLength(narrow, 9), 2);
  EXPECT_EQ(encode(KtString("a\xE9\0b", 4)), "a\xC3\xA9");
  const KtString s = wide({'a', 0xE9, 0, 'b'});
  EXPECT_EQ(encode(s), "a\xC3\xA9");
  EXPECT_EQ(KtMBSLength(s, 9), 3);
}

TEST(MultiByte, a_zero_among_many_wide_characters_ends_the_text) {
  for (const unsigned zero : {0u, 3u, 7u, 8u, 12u, 30u}) {
    KtString text(253, 1);
    text.Fill(40, static_cast<unsigned short>(0x20AC));
    std::memset(text.buffer + 2 * zero, 0, 2);
    char out[200];
    EXPECT_EQ(KtString2KtMBS(text, out, sizeof out), 3 * zero);
    EXPECT_EQ(KtMBSLength(text, 65535), 3 * zero);
  }
}

TEST(MultiByte, lengths_count_characters_unless_the_text_is_plain) {
  const KtString plain("abc");
  EXPECT_EQ(KtMBSLength(plain, 1), 3);
  EXPECT_EQ(KtMBSLength(plain, 200), 3);
  EXPECT_EQ(KtMBSLength(plain, 0), 0);
  const KtString latin("a\xE9z");
  const KtString s = wide({0x7F, 0x80, 0x7FF, 0x800, 0xFFFF});
  static constexpr long kLatin[] = {0, 1, 3, 4, 4, 4}, kTotals[] = {0, 1, 3, 5, 8, 11};
  for (unsigned short n = 0; n < 6; ++n) {
    EXPECT_EQ(KtMBSLength(latin, n), kLatin[n]);
    EXPECT_EQ(KtMBSLength(s, n), kTotals[n]);
  }
  EXPECT_EQ(KtMBSLength(inSet("abc", 10), 2), 2);  // no fast path, so n counts
  EXPECT_EQ(KtMBSLength(KtString(), 5), 0);
}

TEST(MultiByte, a_new_buffer_holds_the_text_and_a_terminator) {
  std::string longPlain(3000, 'p');
  const struct {
    KtString s;
    std::string expected;
  } cases[] = {
      {KtString("abc"), "abc"},
      {KtString(""), ""},
      {KtString("caf\xE9"), "caf\xC3\xA9"},
      {wide({}), ""},
      {KtString(longPlain.c_str()), longPlain},  // more than any scratch buffer would hold
      {wide(Units(3000, 0x20AC)),
       [] {
         std::string euros;
         for (int i = 0; i < 3000; ++i) euros += "\xE2\x82\xAC";
         return euros;
       }()},
  };
  for (const auto& c : cases) {
    char* out = nullptr;
    long size = 100;
    ASSERT_EQ(KtString2MultiByteString(c.s, out, size), static_cast<long>(c.expected.size()));
    EXPECT_EQ(size, static_cast<long>(c.expected.size()) + 1);
    EXPECT_EQ(std::string(out), c.expected);
    std::free(out);
  }
  char unused = 'u';
  char* out = &unused;
  long size = 0;  // a buffer without room is none
  EXPECT_EQ(KtString2MultiByteString(KtString("abc"), out, size), 3);
  EXPECT_NE(out, &unused);
  std::free(out);
}

TEST(MultiByte, a_callers_buffer_is_used_as_it_is) {
  const struct {
    KtString s;
    long size, result, newSize;
    std::string bytes;
  } cases[] = {
      {KtString("abc"), 5, 3, 5, std::string("abc\0\0#", 6)},
      {KtString("abcdef"), 4, 4, 4, "abcd#"},    // plain text is cut
      {wide({'a', 'b', 'c'}), 3, 3, 3, "abc#"},  // no room for a terminator
      {wide({'a', 'b', 'c'}), 2, -1, 3, "ab#"},  // what it takes
      {KtString("caf\xE9"), 4, -1, 5, "caf#"},
      {wide({0x20AC}), 1, -1, 3, "#"},
      {wide({}), 2, 0, 2, std::string("\0#", 2)},
      {KtString(""), 2, 0, 2, std::string("\0\0#", 3)},
  };
  for (const auto& c : cases) {
    char buffer[8] = "#######";
    char* out = buffer;
    long size = c.size;
    EXPECT_EQ(KtString2MultiByteString(c.s, out, size), c.result) << c.bytes;
    EXPECT_EQ(size, c.newSize) << c.bytes;
    EXPECT_EQ(out, buffer);
    EXPECT_EQ(std::string(buffer, c.bytes.size()), c.bytes);
  }
}

}  // namespace
