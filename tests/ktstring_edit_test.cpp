// ktstring_edit_test.cpp - the rebuild and the edits against a slow twin over std::u16string; overflow; block classes.
#include "ktstring.h"

#include <gtest/gtest.h>
#include <ktbs.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "text/string_block.h"
#include "values/string_edit.h"

namespace {

constexpr unsigned char kNarrow = 1;
constexpr unsigned char kWide = 253;

// Whatever the string's code set: its characters, which the tests keep within those of Latin 1.
std::u16string unitsOf(const KtString& s) {
  std::u16string units;
  for (int i = 0; i < s.Len(); ++i) units += static_cast<char16_t>(s[i].code);
  return units;
}

KtString made(const std::u16string& units, unsigned char codeSet) {
  KtString s(codeSet, 1);
  for (const char16_t unit : units) s += static_cast<unsigned short>(unit);
  return s;
}

// What holds for every string between two calls.
void expectSound(const KtString& s) {
  ASSERT_EQ(s.buffer == nullptr, s.bufferSize == 0);
  if (s.buffer == nullptr) return;
  const unsigned width = s.CharSize();
  ASSERT_EQ(s.bufferSize % width, 0u);
  for (unsigned i = 1; i <= width; ++i) ASSERT_EQ(s.buffer[s.bufferSize - i], 0);
  ASSERT_TRUE(s.Len() == s.bufferSize / width - 1 || kt::mayHoldZero(s.buffer, s.bufferSize));
}

struct Overflows {
  std::vector<int> lines;
};
Overflows* seen = nullptr;

class OverflowWatch {
public:
  OverflowWatch() {
    seen = &overflows_;
    old_ = KtSetAssertHandler([](const char* message, const char* source, int line) {
      EXPECT_STREQ(message, "\"String overflow\" && 0");
      EXPECT_STREQ(source, "src\\ktstring");
      seen->lines.push_back(line);
    });
  }
  ~OverflowWatch() { KtSetAssertHandler(old_); }
  std::vector<int> take() { return std::exchange(overflows_.lines, {}); }

private:
  Overflows overflows_;
  KtAssertHandler old_;
};

class RandomEdits : public testing::TestWithParam<std::pair<unsigned char, unsigned char>> {
protected:
  std::mt19937 random_{20240229};

  unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }
  std::u16string text() {
    std::u16string units(below(20) == 0 ? below(300) : below(12), u' ');
    for (char16_t& unit : units) unit = static_cast<char16_t>(below(5) == 0 ? 0xC0 + below(60) : 'a' + below(26));
    return units;
  }
};

// One step on both; n and pos run over the ends on purpose.
void step(unsigned choice, KtString& s, std::u16string& twin, const KtString& other, const std::u16string& units,
          unsigned short pos, int n) {
  const std::size_t length = twin.size();
  switch (choice) {
    case 0:
      s += other;
      twin += units;
      break;
    case 1:
      s.Insert(other, pos);
      if (pos <= length) twin.insert(pos, units);
      break;
    case 2:
      s.Replace(other, pos);
      if (pos < length) twin.replace(pos, std::min(units.size(), length - pos), units, 0, length - pos);
      break;
    case 3:
      s.Cut(pos, n);
      if (pos < length) twin.erase(pos, n == -1 ? std::u16string::npos : static_cast<std::size_t>(n));
      break;
    case 4:
      s.Expand(pos, static_cast<char>('x'));
      if (pos > length) twin.resize(pos, u'x');
      break;
    case 5:
      s = s.Copy(pos, n);
      twin = pos < length ? twin.substr(pos, n == -1 ? std::u16string::npos : static_cast<std::size_t>(n)) : u"";
      break;
    case 6:
      s.Insert(s, pos);
      if (pos <= length) twin.insert(pos, std::u16string(twin));
      break;
    case 7:
      s.Replace(s, pos);
      if (pos < length) twin.replace(pos, length - pos, std::u16string(twin), 0, length - pos);
      break;
    case 8:
      s += static_cast<char>('y');
      twin += u'y';
      break;
    default:
      s.Rebuild(other.buffer, other.codeSet, std::min<std::size_t>(pos, length), 0, units.size(), 1,
                KtString::RebuildMode::kRebuild);
      twin.resize(std::min<std::size_t>(pos, length));
      twin += units;
  }
}

}  // namespace

TEST_P(RandomEdits, equal_those_of_a_plain_string) {
  KtString s(GetParam().first, 1);
  std::u16string twin;
  for (int round = 0; round < 6000; ++round) {
    if (twin.size() > 600) {
      s.Cut(0, -1);
      twin.clear();
    }
    const std::u16string units = text();
    const KtString other = made(units, GetParam().second);
    const auto pos = static_cast<unsigned short>(below(static_cast<unsigned>(twin.size()) + 3));
    const int n = static_cast<int>(below(20)) - 1;
    const unsigned choice = below(10);
    step(choice, s, twin, other, units, pos, n);
    ASSERT_EQ(unitsOf(s), twin) << "round " << round << " choice " << choice << " pos " << pos << " n " << n;
    expectSound(s);
  }
}

INSTANTIATE_TEST_SUITE_P(CodeSets, RandomEdits,
                         testing::Values(std::pair(kNarrow, kNarrow), std::pair(kWide, kWide),
                                         std::pair(kNarrow, kWide), std::pair(kWide, kNarrow),
                                         std::pair<unsigned char, unsigned char>(10, kNarrow)));

// The rebuild as it is defined: everything through a fresh buffer of zeros. Text may hold zeros.
TEST(Rebuild, in_place_equals_the_fresh_buffer_in_all_modes) {
  std::mt19937 random(7);
  const auto below = [&](unsigned n) { return static_cast<unsigned long>(random() % n); };
  for (int round = 0; round < 20000; ++round) {
    std::string old(below(90), 'o');
    std::string source(1 + below(60), 's');
    for (char& ch : old) ch = static_cast<char>('a' + below(26));
    for (char& ch : source) ch = static_cast<char>(below(30) == 0 ? 0 : 'A' + below(26));
    const auto mode = static_cast<KtString::RebuildMode>(1 + below(3));
    const unsigned long pos = below(static_cast<unsigned>(old.size()) + 1);
    unsigned long repeat = mode == KtString::RebuildMode::kInsert || below(2) == 0 ? 1 : 2 + below(40);
    unsigned long count = repeat > 1 ? 1 : below(static_cast<unsigned>(source.size()) + 1);
    if (mode == KtString::RebuildMode::kOverwrite) count = std::min<unsigned long>(count, old.size() - pos);
    if (count == 0 && mode == KtString::RebuildMode::kOverwrite) repeat = 1;

    KtString s(old.c_str());
    std::string fresh(s.buffer, s.bufferSize);
    if (mode == KtString::RebuildMode::kRebuild || source[0] != 0) {
      const std::string part = repeat > 1 ? std::string(count == 0 ? 0 : repeat, source[0]) : source.substr(0, count);
      switch (mode) {
        case KtString::RebuildMode::kOverwrite: fresh.replace(pos, count, part); break;
        case KtString::RebuildMode::kInsert: fresh = fresh.empty() ? part + '\0' : fresh.insert(pos, part); break;
        default: fresh = fresh.substr(0, pos) + part + '\0';
      }
    }
    s.Rebuild(source.c_str(), kNarrow, pos, 0, count, repeat, mode);
    const std::string result(s.buffer == nullptr ? "" : s.buffer, s.bufferSize);
    if (s.buffer == nullptr && fresh.size() <= 1) continue;
    ASSERT_EQ(result, fresh) << "round " << round;
    ASSERT_TRUE(s.Len() + 1 == s.bufferSize || kt::mayHoldZero(s.buffer, s.bufferSize));
  }
}

TEST(Rebuild, takes_characters_in_the_byte_order_of_the_store_flag) {
  const char disk[] = {0x00, 'a', 0x01, 0x02};
  KtString s(kWide, 1);
  s.Rebuild(disk, kWide, 0, 0, 2, 1, KtString::RebuildMode::kRebuild, 2);
  EXPECT_EQ(unitsOf(s), u"a\u0102");
  const char little[] = {'a', 0x00, 0x02, 0x01};
  s.Rebuild(little, kWide, 0, 0, 2, 1, KtString::RebuildMode::kRebuild, 4);
  EXPECT_EQ(unitsOf(s), u"a\u0102");
  const unsigned short own[] = {'b', 0x0203};
  for (const unsigned char memory : std::vector<unsigned char>{1, 8, 255}) {
    s.Fill(0, 'x');
    s.Rebuild(reinterpret_cast<const char*>(own), kWide, 0, 0, 2, 1, KtString::RebuildMode::kRebuild, memory);
    EXPECT_EQ(unitsOf(s), u"b\u0203") << int{memory};
  }
}

TEST(Rebuild, stays_inside_under_absurd_arguments) {
  OverflowWatch watch;
  KtString s("abc");
  s.Rebuild("xyz", kNarrow, 10, 0, 3, 1, KtString::RebuildMode::kRebuild);  // behind the end: zeros between
  EXPECT_EQ(s.bufferSize, 14);
  EXPECT_EQ(s.Len(), 3);
  s += 'd';
  EXPECT_STREQ(s.StrGet(), "abcd");
  s.Rebuild("xyz", kNarrow, 2, 0, 3, 1, KtString::RebuildMode::kOverwrite);  // over the end
  EXPECT_STREQ(s.StrGet(), "abxy");
  s.Rebuild("xyz", kNarrow, 50, 0, 3, 1, KtString::RebuildMode::kInsert);
  EXPECT_STREQ(s.StrGet(), "abxy");
  s.Rebuild("x", kNarrow, ~0ul, 0, 1, ~0ul, KtString::RebuildMode::kRebuild);
  expectSound(s);
}

TEST(StringEdit, own_text_may_be_the_argument) {
  KtString s("abcdef");
  s = s.StrGet() + 2;
  EXPECT_STREQ(s.StrGet(), "cdef");
  s += s.StrGet() + 1;
  EXPECT_STREQ(s.StrGet(), "cdefdef");
  s += s;
  EXPECT_STREQ(s.StrGet(), "cdefdefcdefdef");
  const KtString& same = s;
  s = same;
  s.ReplaceAll(s, s);
  EXPECT_STREQ(s.StrGet(), "cdefdefcdefdef");
  KtString wide(kWide, 1);
  wide = s;
  wide.SetCodeSet(kWide);
  wide += wide;
  EXPECT_EQ(wide.Len(), 28);
}

// However a text was emptied, whether a block is left of it or not.
TEST(StringEdit, an_emptied_string_adds_as_an_empty_one) {
  void (*const empties[])(KtString&) = {
      [](KtString& s) { s = ""; },
      [](KtString& s) { s = reinterpret_cast<const unsigned short*>(u""); },
      [](KtString& s) { s = KtString(); },
      [](KtString& s) { s.Cut(0, -1); },
      [](KtString& s) { s.Fill(0, 'x'); },
      [](KtString& s) { s.Fill(3, '\0'); },
      [](KtString& s) { s = s.Copy(9); },
      [](KtString& s) { s.Expand(3, ' ').Cut(0, 1).Trim(); },
      [](KtString& s) { s.ReplaceAll("x", ""); },
  };
  const unsigned short wide[] = {'a', 0xE9, 0};
  for (const unsigned char codeSet : {kNarrow, kWide})
    for (const auto& empty : empties) {
      KtString s = made(u"x", codeSet);
      empty(s);
      ASSERT_EQ(s.Len(), 0);
      for (const KtString& other : {made(u"a\u00E9", kNarrow), made(u"a\u00E9", kWide)}) {
        EXPECT_EQ(unitsOf(s + other), u"a\u00E9");
        EXPECT_EQ((s + other).codeSet, s.codeSet);
        EXPECT_EQ(unitsOf(other + s), u"a\u00E9");
      }
      EXPECT_EQ(unitsOf(s + "ab"), u"ab");
      EXPECT_EQ(unitsOf("ab" + s), u"ab");
      EXPECT_EQ(unitsOf(s + 'a' + wide), u"aa\u00E9");
      EXPECT_EQ(unitsOf(wide + s + wide[1]), u"a\u00E9\u00E9");
      EXPECT_EQ((s + s).Len(), 0);
    }
}

TEST(StringEdit, counts_are_sixteen_bits) {
  const struct {
    unsigned short pos;
    int n;
    const char* cut;
    const char* copied;
  } cases[] = {{2, 65535, "ab", "cdef"}, {2, -1, "ab", "cdef"},    {6, 1, "abcdef", ""}, {1, 2, "adef", "bc"},
               {1, -2, "abcdef", ""},    {1, 40000, "abcdef", ""}, {1, 0, "abcdef", ""}, {0, 100000, "", "abcdef"},
               {4, 30000, "abcd", "ef"}, {7, 65535, "abcdef", ""}};
  for (const auto& c : cases) {
    KtString s("abcdef");
    EXPECT_STREQ(s.Copy(c.pos, c.n).StrGet(), c.copied) << c.pos << ' ' << c.n;
    EXPECT_STREQ(s.Cut(c.pos, c.n).StrGet(), c.cut) << c.pos << ' ' << c.n;
  }
}

TEST(StringEdit, left_right_fill_expand_replace_insert) {
  KtString s("abcdef");
  EXPECT_STREQ(s.Left(2).StrGet(), "ab");
  EXPECT_STREQ(s.Left(9).StrGet(), "abcdef");
  EXPECT_STREQ(s.Right(2).StrGet(), "ef");
  EXPECT_STREQ(s.Right(9).StrGet(), "abcdef");
  EXPECT_STREQ(s.Replace("XYZ", 4).StrGet(), "abcdXY");
  EXPECT_STREQ(s.Replace("Z", 6).StrGet(), "abcdXY");
  EXPECT_STREQ(s.Insert("-", 7).StrGet(), "abcdXY");
  EXPECT_STREQ(s.Insert("-", 6).StrGet(), "abcdXY-");
  EXPECT_STREQ(s.Expand(9, '.').StrGet(), "abcdXY-..");
  EXPECT_STREQ(s.Expand(3, '.').StrGet(), "abcdXY-..");
  EXPECT_STREQ(s.Expand(10, static_cast<unsigned short>('!')).StrGet(), "abcdXY-..!");
  EXPECT_STREQ(s.Fill(3, 'x').StrGet(), "xxx");
  EXPECT_EQ(s.Fill(0, 'x').IsEmpty(), 1);
  s.Fill(2, static_cast<unsigned short>(0x20AC));  // the euro sign, which Latin 1 lacks
  EXPECT_STREQ(s.StrGet(), "\x1A\x1A");
  EXPECT_EQ(s.Fill(4, '\0').Len(), 0);
  EXPECT_EQ(s.bufferSize, 5);
}

TEST(StringEdit, trimming_removes_what_sorts_as_space) {
  const char* cases[][3] = {{"  a b \t", "a b \t", "  a b"}, {"   ", "", ""},    {"", "", ""},
                            {"\x01x\x02", "x\x02", "\x01x"}, {"ab", "ab", "ab"}, {"\xA0x\xA0", "x\xA0", "\xA0x"}};
  for (const unsigned char language : std::vector<unsigned char>{1, 20}) {
    for (const auto& c : cases) {
      KtString left(c[0]), right(c[0]);
      left.SetLanguage(language);
      right.SetLanguage(language);
      EXPECT_STREQ(left.LeftTrim().StrGet(), c[1]);
      EXPECT_STREQ(right.RightTrim().StrGet(), c[2]);
    }
  }
}

TEST(StringEdit, transform_may_drop_and_double_characters) {
  struct Operation : KtCharOperation {
    int Apply(const KtChar& in, KtChar out[kMaxCharacters]) override {
      out[0] = out[1] = in;
      return in == 'x' ? 0 : in == 'n' ? -1 : in == 'd' ? 7 : 1;
    }
  } operation;
  for (const unsigned char codeSet : {kNarrow, kWide}) {
    KtString s = made(u"axdnbdx", codeSet);
    EXPECT_EQ(unitsOf(s.Transform(operation)), u"addbdd");
    EXPECT_EQ(s.bufferSize, 7 * s.CharSize());
    EXPECT_EQ(unitsOf(made(u"Stra\u00DFe \u00C4\u00E9", codeSet).ToUpper()), u"STRA\u00DFE \u00C4\u00C9");
    EXPECT_EQ(unitsOf(made(u"STRA\u00DFE \u00C4\u00E9", codeSet).ToLower()), u"stra\u00DFe \u00E4\u00E9");
  }
  KtLowerCaseOperation lower;
  EXPECT_STREQ(KtString("ABc").Transform(lower).StrGet(), "abc");
  KtString zeroInside("ab\0cd", static_cast<unsigned short>(5));
  EXPECT_STREQ(zeroInside.ToUpper().StrGet(), "AB");
  EXPECT_EQ(zeroInside.bufferSize, 3);
}

TEST(StringEdit, replace_all_goes_on_behind_what_it_put_in) {
  EXPECT_STREQ(KtString("aaaa").ReplaceAll("a", "aa").StrGet(), "aaaaaaaa");
  EXPECT_STREQ(KtString("abcabc").ReplaceAll("bc", "", 2).StrGet(), "abca");
  EXPECT_STREQ(KtString("a,b,c").ReplaceAll(',', ';').StrGet(), "a;b;c");
  EXPECT_EQ(unitsOf(made(u"a,b,c", kWide).ReplaceAll(static_cast<unsigned short>(','), 0xE9)), u"a\u00E9b\u00E9c");
  EXPECT_STREQ(KtString("abc").ReplaceAll("", "x").StrGet(), "abc");
  EXPECT_STREQ(KtString("abc").ReplaceAll("abc", "").StrGet(), "");
}

TEST(StringEdit, appends_numbers_and_characters_as_their_constructors_make_them) {
  KtString s("");
  s << static_cast<unsigned short>(65) << ' ' << static_cast<short>(-5) << ' ' << 4294967295u << ' ' << 1.5f << ' '
    << 0.1 << ' ' << 7ul;
  EXPECT_STREQ(s.StrGet(), "65 -5 -1 1.5 0.1 7");
  s += 12;
  s += 2.5;
  EXPECT_STREQ(s.StrGet(), "65 -5 -1 1.5 0.1 7122.5");
  KtString wide(kWide, 1);
  wide << static_cast<unsigned short>(65) << 42 << "x" << static_cast<char>('\xE9');
  EXPECT_EQ(unitsOf(wide), u"A42x\u00E9");
  const unsigned short units[] = {'y', 0xE9, 0};
  wide << units << KtString("z");
  EXPECT_EQ(unitsOf(wide += units), u"A42x\u00E9y\u00E9zy\u00E9");
}

TEST(StringEdit, find_honours_position_and_wildcards) {
  const struct {
    const char* text;
    const char* pattern;
    unsigned short pos, cmpOp;
    int found;
  } cases[] = {{"abcabc", "bc", 0, 65535, 1}, {"abcabc", "bc", 2, 65535, 4}, {"abcabc", "bc", 5, 65535, -1},
               {"abc", "b?", 0, 0x10, -1},    {"abc", "b?", 0, 0, 1},        {"abc", "a*c", 0, 0, 0},
               {"abc", "abcd", 0, 0, -1},     {"abc", "c", 4, 0x10, -1},     {"ABC", "b", 0, 0x30, 1},
               {"", "a", 0, 0x10, -1},        {"a", "", 0, 0x10, -1},        {"abc", "b", 0, 0x110, 1},
               {"abc", "b", 0, 0x100, -1},    {"ab*", "b", 0, 0x100, 1},     {"ba", "*a", 0, 0, 0},
               {"a", "*a", 0, 0, -1}};
  for (const auto& c : cases) {
    EXPECT_EQ(KtString(c.text).Find(KtString(c.pattern), c.pos, c.cmpOp), c.found) << c.text << ' ' << c.pattern;
  }
  EXPECT_EQ(KtString("abcb").Find('b', 2, 0x10), 3);
  EXPECT_EQ(made(u"a\u00E9b", kWide).Find(static_cast<unsigned short>(0xE9), 0, 0x10), 1);
  KtString text;
  text.Fill(40000, 'x');
  KtString longPattern(text);
  text += "y";
  longPattern.Cut(0, 1);
  EXPECT_EQ(text.Find(longPattern + 'y', 0, 0x10), 1);
  EXPECT_EQ(text.Find(longPattern + 'z', 0, 0x10), -1);
}

TEST(StringEdit, splits_lists_and_skips_only_a_leading_separator) {
  KtString list(",a, b ,,c"), item;
  unsigned short pos = 0;
  for (const char* expected : {"a", "b", "", "c"}) {
    ASSERT_EQ(KtSplitList(list, item, ",", pos), 0);
    EXPECT_STREQ(item.StrGet(), expected);
  }
  EXPECT_EQ(KtSplitList(list, item, ",", pos), -2005);
  KtString none;
  pos = 0;
  EXPECT_EQ(KtSplitList(none, item, ",", pos), -2005);
  KtString emptied("x");  // has a buffer: Find finds it at every position
  emptied.Cut(0, 1);
  for (const KtString& separator : {emptied, KtString()}) {
    pos = 0;
    EXPECT_EQ(KtSplitList(list, item, separator, pos), 0);
    EXPECT_STREQ(item.StrGet(), ",a, b ,,c");
    EXPECT_EQ(KtSplitList(list, item, separator, pos), -2005);
  }
  pos = 0;
  KtString pairs("a--b");
  ASSERT_EQ(KtSplitList(pairs, item, "--", pos), 0);
  EXPECT_EQ(pos, 2);  // one past where the separator begins
}

TEST(StringOverflow, asserts_unless_configured_and_wraps_the_size) {
  OverflowWatch watch;
  KtString s("");
  s.Fill(65532, 'x');
  EXPECT_TRUE(watch.take().empty());
  EXPECT_EQ(s.Len(), 65532);
  s += 'y';
  EXPECT_EQ(watch.take(), std::vector<int>{1361});
  EXPECT_EQ(s.Len(), 65533);
  s += "z";
  EXPECT_EQ(s.bufferSize, 65535);
  s += "z";  // 65,536 bytes leave none
  EXPECT_EQ(s.IsEmpty(), 1);
  watch.take();
  KtString half("ab");
  half.Fill(40000, 'h');
  half += half;
  EXPECT_EQ(half.bufferSize, 80001 - 65536);
  EXPECT_EQ(half.Len(), half.bufferSize - 1);
  EXPECT_EQ(watch.take().size(), 1u);

  DefaultConfig()->SetShort("stringOverflow", "debug", 0);
  KtString quiet("");
  quiet.Fill(65535, 'x');
  EXPECT_TRUE(watch.take().empty());
  KtConfig* config = SetDefaultConfig(nullptr);
  quiet.Fill(65535, 'x');
  EXPECT_EQ(watch.take().size(), 1u);
  SetDefaultConfig(config);
  DefaultConfig()->SetShort("stringOverflow", "debug", 1);
}

TEST(StringOverflow, of_a_mapped_copy_names_its_own_line) {
  OverflowWatch watch;
  KtString text("");
  text.Fill(32767, 'x');
  KtString copy;
  EXPECT_EQ(copy.CopyMapped(text, kWide, -1), 0);  // 65,536 bytes leave none
  EXPECT_EQ(watch.take(), std::vector<int>{1150});
  EXPECT_EQ(copy.CopyMapped(text, kWide, 32765), 32765);
  EXPECT_TRUE(watch.take().empty());
  text.SetCodeSet(kWide);
  EXPECT_EQ(watch.take(), std::vector<int>{1361});
  expectSound(text);
}

TEST(StringBlock, appending_one_by_one_changes_the_block_a_few_times_only) {
  for (const unsigned char codeSet : {kNarrow, kWide}) {
    KtString s(codeSet, 1);
    int classes = 0;
    unsigned long block = 0;
    for (int i = 0; i < 32765; ++i) {
      s += 'x';
      if (kt::blockSize(s.bufferSize) != block) ++classes;
      block = kt::blockSize(s.bufferSize);
    }
    EXPECT_LE(classes, 23);
    EXPECT_EQ(s.Len(), 32765);
  }
}

TEST(StringBlock, classes_grow_and_leave_a_byte) {
  for (unsigned long size = 0; size < 65536; ++size) {
    ASSERT_GT(kt::blockSize(size), size);
    ASSERT_LE(kt::blockSize(size), std::max(32ul, size + size / 2));
    ASSERT_LE(kt::blockSize(size), kt::blockSize(size + 1 == 65536 ? size : size + 1));
    for (unsigned long larger : {size + 1, size + 40, size + size / 4}) {
      const bool haveOneBlock = kt::blockSize(size) == kt::blockSize(larger);
      ASSERT_TRUE(haveOneBlock || !kt::shareBlock(size, larger)) << size << " and " << larger;
      ASSERT_TRUE(!haveOneBlock || size < 32 || kt::shareBlock(size, larger)) << size << " and " << larger;
    }
  }
}
