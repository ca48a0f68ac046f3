// Bounds and estimates of string comparisons: keys worked by hand, and the law over names of cities that no string which
// satisfies a comparison has a key outside its bounds.
#include "ktmbs.h"
#include "kttypops.h"
#include "ops/string_ops.h"
#include "string_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <random>

namespace {

using namespace kt_test;

constexpr unsigned char kMemory = 8;
constexpr unsigned char kKeys = 0x82;  // index keys with big-endian lengths
constexpr unsigned short kEqual = KtBOUND_EQUAL, kLess = KtBOUND_LESS, kGreater = KtBOUND_GREATER;

struct Row {
  const char* name;
  KtTypeCmpFunc compare;
  KtEvalAndBoundFunc evalAndBound;
  KtTranslateFunc translate;
  bool hasWildcards;
};

template <class Ops>
constexpr Row rowOf(const char* name, bool hasWildcards) {
  return {name, Ops::compare, Ops::evalAndBound, Ops::translate, hasWildcards};
}

constexpr Row kString = rowOf<kt::StringOps>("KtString", true);
constexpr Row kLegacy = rowOf<kt::LegacyStringOps>("legacy string", true);
constexpr Row kIString = rowOf<kt::IStringOps>("KtIString", false);
constexpr Row kCaseIString = rowOf<kt::CaseIStringOps>("KtCaseIString", false);
constexpr Row kRows[] = {kString, kLegacy, kIString, kCaseIString};

struct Bounds : KtIdxBounds {
  Bounds() = default;
  Bounds(const Bounds&) = delete;
  ~Bounds() { KtFreeIdxBounds(this); }
  Bytes low() const { return lowKey != nullptr ? Bytes(lowKey, lowKey + lowKeyLength) : Bytes(); }
  Bytes high() const { return highKey != nullptr ? Bytes(highKey, highKey + highKeyLength) : Bytes(); }
};

Bytes keyOf(const Row& row, KtString s, unsigned char format = kKeys) {
  Bytes key(KtINDEX_MAX_KEYLEN);
  key.resize(row.translate(key.data(), format, key.size(), &s, kMemory, 0, 1));
  return key;
}

// A range over exact blocks, so that a read behind a key is found.
struct Range : KtIdxBounds {
  Range(const Bytes& low, const Bytes& high) : lowBlock(low), highBlock(high) {
    lowKey = lowBlock.get();
    highKey = highBlock.get();
    lowKeyLength = static_cast<unsigned char>(low.size());
    highKeyLength = static_cast<unsigned char>(high.size());
  }
  Block lowBlock, highBlock;
};

Bytes recordOf(const KtString& s, unsigned char format) {
  Bytes record(StringSizeGet(&s, kMemory, format, 1));
  StringStore(record.data(), &s, format, 1);
  return record;
}

// By way of a record, so that keys are big-endian on every host.
float estimateRecord(const Row& row, KtIdxBounds* range, unsigned short flags, const KtString& key,
                     KtIdxBounds* result = nullptr, unsigned char format = 2) {
  Block record(recordOf(key, format));
  return row.evalAndBound(range, flags, record.get(), format, 1, result);
}

KtString text(const char* latin1, unsigned char codeSet = 1, unsigned char language = 1) {
  std::u16string units;
  for (const char* at = latin1; *at != 0; ++at) units += static_cast<unsigned char>(*at);
  return makeString(units, codeSet, language);
}

// --- bounds by hand -----------------------------------------------------------------------------------------------

// a is 01 40 0C 20, B 01 40 10 00, the blank 01 00 21 00 or below; 01 3E FF 00 is above all that is ignorable.
TEST(StringBounds, keys_follow_the_comparison) {
  const struct {
    const char* text;
    unsigned char codeSet;
    unsigned short flags;
    const char* low;
    const char* high;
  } cases[] = {
      {"aB", 1, 1, "00 0C 01 01 01 40 0C 20 01 40 10 00 00 FF", "00 0C 01 01 01 40 0C 20 01 40 10 00 00 FF"},
      {"aB", 1, 2, "", "00 0C 01 01 01 40 0C 20 01 40 10 00 00 FF"},
      {"aB", 1, 5, "00 0C 01 01 01 40 0C 20 01 40 10 00 00 FF", ""},
      {"aB", 1, 6, "", ""},
      {"", 1, 1, "00 04 00 FE 00 00", "00 04 01 01 00 FF"},  // with wildcards a null equals it
      {"", 1, 4, "00 04 01 01 00 FF", ""},
      {"aB*", 1, 1, "00 0C 01 01 01 40 0C 20 01 40 10 00 00 FF",
       "00 18 01 01 01 3E FF 00 01 40 0C 1F 01 3E FF 00 01 40 10 1F 01 3E FF 00 FF FF"},
      {"aB?z*", 1, 1, "00 0C 01 01 01 40 0C 20 01 40 10 00 00 FF",
       "00 18 01 01 01 3E FF 00 01 40 0C 1F 01 3E FF 00 01 40 10 1F 01 3E FF 00 FF FF"},
      {"a \t*", 1, 1, "00 08 01 01 01 40 0C 20 00 FF", "00 10 01 01 01 3E FF 00 01 40 0C 1F 01 3E FF 00 FF FF"},
      {"a\\*B", 1, 4, "00 10 01 01 01 40 0C 20 01 00 9F 00 01 40 10 00 00 FF", ""},  // "*" is symbol 79: 159
      // By order: the least and the greatest that letters without a primary difference can be.
      {"a*", 1, 5, "00 08 01 01 01 40 0C 60 00 FF", ""},
      {"a*", 1, 3, "", "00 10 01 01 01 3E FF 00 01 40 0C 1F 01 3E FF 00 FF FF"},
      {"*a", 1, 1, "00 04 00 FE 00 00", "00 08 01 00 01 3E FF 00 FF FF"},
      {"ab", 0, 1, "00 06 00 01 61 62 00 FF", "00 06 00 01 61 62 00 FF"},
      {"ab*", 0, 1, "00 06 00 01 61 62 00 FF", "00 06 00 01 61 62 FF FF"},
      {"a\\*", 0, 1, "00 06 00 01 61 5C 00 FF", "00 06 00 01 61 5C FF FF"},  // nothing escapes
      {"?", 0, 1, "00 04 00 FE 00 00", "00 04 00 00 FF FF"},
  };
  for (const auto& c : cases) {
    Bounds bounds;
    EXPECT_EQ(estimateRecord(kString, nullptr, c.flags, text(c.text, c.codeSet), &bounds), 0) << c.text;
    EXPECT_EQ(bounds.low(), hex(c.low)) << c.text << " " << c.flags;
    EXPECT_EQ(bounds.high(), hex(c.high)) << c.text << " " << c.flags;
  }
}

TEST(StringBounds, wildcards_act_in_plain_strings_only) {
  for (const Row& row : kRows) {
    Bounds bounds;
    estimateRecord(row, nullptr, kEqual, text("aB*"), &bounds);
    EXPECT_EQ(bounds.low() != bounds.high(), row.hasWildcards) << row.name;
    if (!row.hasWildcards) {
      EXPECT_EQ(bounds.low(), keyOf(row, text("aB*"))) << row.name;
    }
  }
  // An index key holds no wildcards, but under code set 0.
  for (const unsigned char codeSet : Codes{0, 1}) {
    Block key(keyOf(kString, text("aB*", codeSet)));
    Bounds bounds;
    unsigned short flags = kEqual;
    kString.evalAndBound(nullptr, flags, key.get(), kKeys, 1, &bounds);
    EXPECT_EQ(bounds.low() != bounds.high(), codeSet == 0);
  }
}

TEST(StringBounds, every_form_of_the_value_gives_the_same_keys) {
  KtString memory = text("aB");
  Block older(hex("00 06 61 42 00 63 64 00"));
  for (const Row& row : kRows) {
    for (const unsigned char code : Codes{0, 2, 4}) {
      const unsigned char format = code | 0x80;
      Bounds byRecord, byKey;
      estimateRecord(row, nullptr, kEqual, memory, &byRecord, code);
      Block key(keyOf(row, memory, format));
      unsigned short flags = kEqual;
      row.evalAndBound(nullptr, flags, key.get(), format, 1, &byKey);
      EXPECT_EQ(byRecord.low(), keyOf(row, memory, format));
      EXPECT_EQ(byKey.low(), byRecord.low());
      EXPECT_EQ(byKey.high(), byRecord.high());
    }
    Bounds byMemory;
    unsigned short flags = kEqual;
    row.evalAndBound(nullptr, flags, &memory, kMemory, 1, &byMemory);
    EXPECT_EQ(byMemory.low(), keyOf(row, memory, 0x81));
  }
  Bounds byOlder;
  unsigned short flags = kEqual;
  kString.evalAndBound(nullptr, flags, older.get(), 2, 2, &byOlder);
  EXPECT_EQ(byOlder.low(), hex("00 06 00 00 61 42 00 FF"));
  Bounds seen;
  estimateRecord(kString, nullptr, kEqual, memory, &seen, 0x22);  // the disk knows no code sets
  EXPECT_EQ(seen.low(), hex("00 06 00 01 61 42 00 FF"));
}

TEST(StringBounds, set_bounds_stay_and_flags_are_masked_only_with_a_result) {
  Bounds bounds;
  estimateRecord(kString, nullptr, kGreater, text("b"), &bounds);
  unsigned char* const low = bounds.lowKey;
  EXPECT_EQ(bounds.highKey, nullptr);
  estimateRecord(kString, nullptr, kEqual, text("c"), &bounds);
  EXPECT_EQ(bounds.lowKey, low);
  EXPECT_EQ(bounds.low(), keyOf(kString, text("b")));
  EXPECT_EQ(bounds.high(), keyOf(kString, text("c")));

  KtString value = text("b");
  unsigned short flags = 0xFFF1;
  kString.evalAndBound(nullptr, flags, &value, kMemory, 1, nullptr);
  EXPECT_EQ(flags, 0xFFF1);
  Bounds other;
  kString.evalAndBound(nullptr, flags, &value, kMemory, 1, &other);
  EXPECT_EQ(flags, 0x8001);
}

TEST(StringBounds, without_a_value_nothing_is_recorded) {
  for (const Row& row : kRows) {
    KtString value = text("b");
    Range range(keyOf(row, text("a")), keyOf(row, text("z")));
    Bounds bounds;
    unsigned short flags = kEqual;
    EXPECT_EQ(row.evalAndBound(&range, flags, &value, kMemory, 0, &bounds), 0);
    EXPECT_EQ(row.evalAndBound(&range, flags, nullptr, kMemory, 1, &bounds), 0);
    EXPECT_EQ(bounds.lowKey, nullptr);
    EXPECT_EQ(bounds.highKey, nullptr);
  }
}

TEST(StringBounds, keys_lie_in_blocks_of_even_size) {
  Bounds bounds;
  estimateRecord(kString, nullptr, kEqual, text("a", 0), &bounds);
  ASSERT_EQ(bounds.lowKeyLength, 7);
  EXPECT_EQ(bounds.lowKey[7], 0);  // readable
  EXPECT_EQ(bounds.highKey[7], 0);
}

TEST(StringBounds, keys_of_long_texts_are_cut_at_254_bytes) {
  const std::string longText(100, 'a');
  Bounds exact;
  estimateRecord(kString, nullptr, kEqual, text(longText.c_str(), 0), &exact);
  EXPECT_EQ(exact.low().size(), 106u);
  const std::string longer(300, 'a');
  for (const Row& row : kRows)
    for (const unsigned char codeSet : Codes{0, 1, 253}) {
      Bounds bounds;
      estimateRecord(row, nullptr, kEqual, text(longer.c_str(), codeSet), &bounds);
      EXPECT_LE(bounds.low().size(), 254u);
      EXPECT_LE(bounds.high().size(), 254u);
      EXPECT_EQ(bounds.high()[bounds.high().size() - 2], 0xFF);  // cut
    }
}

// --- the law over names -------------------------------------------------------------------------------------------

std::u16string unitsOf(const KtString& s) {
  std::u16string units;
  const unsigned long width = KtCodeSet::CharSizeOf(s.codeSet);
  for (unsigned long i = 0; s.buffer != nullptr && i + 1 < s.bufferSize / width; ++i)
    units += static_cast<char16_t>(KtCodeSet::Get(s.codeSet).ToUnicode(kt::unitAt(s.buffer, i, width)));
  return units;
}

// The names of the largest cities, as 16-bit units.
const std::vector<std::u16string>& cityNames() {
  static const std::vector<std::u16string> names = [] {
    std::vector<std::u16string> read;
    std::ifstream file(KT_TESTS_DIR "/../examples/data/cities.csv");
    std::string line;
    for (std::getline(file, line); std::getline(file, line);) {
      const bool quoted = line.front() == '"';
      const std::string name = quoted ? line.substr(1, line.find('"', 1) - 1) : line.substr(0, line.find(','));
      KtString s;
      KtMBS2KtString(name.c_str(), s, static_cast<long>(name.size()));
      read.push_back(unitsOf(s));
    }
    return read;
  }();
  return names;
}

bool fits(const std::u16string& units, unsigned char codeSet) {
  if (codeSet == 253) return true;
  return std::all_of(units.begin(), units.end(), [codeSet](char16_t unit) {
    const bool isPlain = unit < 0x80;
    return isPlain || (codeSet != 0 && KtCodeSet::Get(codeSet).FromUnicode(unit) != KtCodeSet::kSubstitute);
  });
}

struct Texts {
  unsigned char codeSet;
  unsigned char language;
};
constexpr Texts kTexts[] = {{0, 1}, {1, 1}, {1, 5}, {253, 6}, {253, 20}};

// Names, the same in capitals, long, and with spaces and signs put in; the empty string, and a null.
std::vector<KtString> sampleOf(const Texts& texts, std::size_t count) {
  std::vector<KtString> sample;
  std::mt19937 random(20240229);
  while (sample.size() < count) {
    std::u16string units = cityNames()[random() % cityNames().size()];
    if (!fits(units, texts.codeSet)) continue;
    if (random() % 4 == 0)
      for (char16_t& unit : units) unit = unit >= 'a' && unit <= 'z' ? static_cast<char16_t>(unit - 32) : unit;
    if (random() % 4 == 0) units.insert(random() % (units.size() + 1), random() % 2 == 0 ? u" -" : u"- ");
    if (texts.codeSet == 253 && random() % 6 == 0)  // characters with several orders, of other scripts, ideographs
      units.insert(random() % (units.size() + 1), 1, u"\uAC00\uFFFE\u7FFF\u0416\u4E2D\u1EBF"[random() % 6]);
    if (random() % 6 == 0) {
      // Alike in far more than an index key holds, but for what tells them apart by case or at the very end.
      std::u16string beginning = random() % 2 == 0 ? u"Saint Thomas " : u"SAINT Thomas- ";
      for (int i = 0; i < 5; ++i) beginning += u"upon the Lake, ";
      units = random() % 3 == 0 ? beginning : beginning + units;
    }
    sample.push_back(makeString(units, texts.codeSet, texts.language));
  }
  sample.emplace_back(texts.codeSet, texts.language);
  sample.emplace_back().SetNullValue();
  return sample;
}

// A comparison value: a name, or its beginning with a wildcard behind.
std::vector<KtString> valuesOf(const std::vector<KtString>& sample, const Texts& texts) {
  static const std::u16string endings[] = {u"*", u"?", u"?*", u"*a", u"\\*", u" *", u"*-*"};
  std::vector<KtString> values;
  for (std::size_t i = 0; i < sample.size(); i += 9) {
    values.push_back(sample[i]);
    const std::u16string units = unitsOf(sample[i]);
    const std::size_t length = i % 18 == 0 ? i / 9 % 5 : units.size() - std::min<std::size_t>(units.size(), i / 9 % 7);
    values.push_back(makeString(units.substr(0, length) + endings[i / 9 % 7], texts.codeSet, texts.language));
  }
  values.push_back(makeString(u"Saint*", texts.codeSet, texts.language));
  values.emplace_back().SetNullValue();
  return values;
}

int compareMemory(const Row& row, const KtString& a, const KtString& b) {
  int status = 0;
  return static_cast<int>(
      row.compare(kMemory, 0, const_cast<KtString*>(&a), 0, const_cast<KtString*>(&b), 0, 1, status));
}

int compareKeyBytes(const Row& row, const Bytes& a, const Bytes& b) {
  int status = 0;
  return static_cast<int>(row.compare(kKeys, a.size(), const_cast<unsigned char*>(a.data()), b.size(),
                                      const_cast<unsigned char*>(b.data()), KtCMP_NO_WILDCARDS, 1, status));
}

bool satisfies(int order, unsigned flags) { return (flags & (order < 0 ? kLess : order > 0 ? kGreater : kEqual)) != 0; }

struct Keyed {
  KtString text;
  Bytes key;
};

// An index: sorted by the keys.
std::vector<Keyed> indexOf(const Row& row, const std::vector<KtString>& texts) {
  std::vector<Keyed> all;
  for (const KtString& s : texts) all.push_back({s, keyOf(row, s)});
  std::stable_sort(all.begin(), all.end(),
                   [&row](const Keyed& a, const Keyed& b) { return compareKeyBytes(row, a.key, b.key) < 0; });
  return all;
}

// Every text is compared; the bounds are found as a scan finds them, by bisecting.
void expectInside(const Row& row, const std::vector<Keyed>& index, const KtString& value) {
  std::vector<int> orders;
  for (const Keyed& s : index) orders.push_back(compareMemory(row, s.text, value));
  for (const unsigned short flags : Operators{1, 2, 3, 4, 5}) {
    Bounds bounds;
    estimateRecord(row, nullptr, flags, value, &bounds);
    const Bytes low = bounds.low(), high = bounds.high();
    ASSERT_EQ(low.empty(), (flags & kLess) != 0);
    ASSERT_EQ(high.empty(), (flags & kGreater) != 0);
    const auto isBelow = [&](const Keyed& s) { return !low.empty() && compareKeyBytes(row, s.key, low) < 0; };
    const auto isUpTo = [&](const Keyed& s) { return high.empty() || compareKeyBytes(row, s.key, high) <= 0; };
    const auto first = std::partition_point(index.begin(), index.end(), isBelow) - index.begin();
    const auto end = std::partition_point(index.begin(), index.end(), isUpTo) - index.begin();
    for (std::size_t i = 0; i < index.size(); ++i) {
      const auto place = static_cast<std::ptrdiff_t>(i);
      const bool isInside = place >= first && place < end;
      if (isInside || !satisfies(orders[i], flags)) continue;
      FAIL() << row.name << " " << flags << " '" << index[i].text.StrGet() << "' '" << value.StrGet() << "' "
             << int{value.codeSet} << " " << int{value.language};
    }
  }
}

// All names; fewer where the host is emulated or a sanitizer watches.
#if defined(__SANITIZE_ADDRESS__) || defined(__s390x__)
constexpr std::size_t kStep = 50;
#else
constexpr std::size_t kStep = 1;
#endif

TEST(StringBounds, no_string_that_satisfies_the_comparison_has_its_key_outside) {
  for (const Texts& texts : kTexts) {
    std::vector<KtString> all = sampleOf(texts, 160);
    const std::vector<KtString> values = valuesOf(all, texts);
    for (std::size_t i = 0; i < cityNames().size(); i += kStep)
      if (fits(cityNames()[i], texts.codeSet)) all.push_back(makeString(cityNames()[i], texts.codeSet, texts.language));
    for (const Row& row : kRows) {
      const std::vector<Keyed> index = indexOf(row, all);
      for (const KtString& value : values) ASSERT_NO_FATAL_FAILURE(expectInside(row, index, value));
    }
  }
}

TEST(StringBounds, nor_has_one_that_differs_behind_the_bound) {
  const auto times = [](unsigned count, char c) { return std::string(count, c); };
  const struct {
    std::string value, text;
    unsigned short flags;
  } cases[] = {
      {"a-*", "a- ", 1},  // the last of several ignorable characters counts
      {"San*", "San Francisco", 1},
      {"A*", "\xE0", 4},
      {times(62, 'A'), times(62, 'a') + "b", 4},  // the cut key of the text comes before that of the value
      {times(62, 'a'), times(61, 'A') + "B", 4},
      {times(70, 'a') + "b", times(70, 'A') + "a", 2},
      {times(40, 'a') + times(30, '-'), times(40, 'a') + times(29, ' ') + "-", 1},
  };
  for (const auto& c : cases) {
    const KtString s = text(c.text.c_str());
    ASSERT_TRUE(satisfies(compareMemory(kString, s, text(c.value.c_str())), c.flags)) << c.value;
    expectInside(kString, {{s, keyOf(kString, s)}}, text(c.value.c_str()));
  }
}

// --- estimates ----------------------------------------------------------------------------------------------------

TEST(StringEstimate, is_the_share_of_the_orders_between_the_bounds) {
  const struct {
    const char *low, *high;
    unsigned char codeSet;
    const char* value;
    unsigned short flags;
    double share;
    double tolerance;
  } cases[] = {
      // Letters are evenly spaced: A to K are ten steps.
      {"A", "K", 1, "F", 2, 0.5, 1e-6},
      {"A", "K", 1, "f", 4, 0.5, 1e-6},
      {"SanA", "SanK", 1, "SanB", 2, 0.1, 1e-6},  // what all have in common does not count
      {"0", "8", 1, "2", 2, 0.25, 1e-6},
      {"A", "K", 1, "F*", 1, 0.1, 0.02},
      {"A", "K", 1, "*", 1, 1, 0},
      {"A", "K", 1, "?a", 2, 1, 0},
      {"A", "K", 1, "", 4, 1, 0},
      {"A", "K", 1, "Z", 2, 1, 0},
      {"A", "K", 1, "Z", 4, 0, 0},
      {"A", "K", 1, "Z", 1, 0, 0},
      {"A", "K", 1, "F", 7, 1, 0},
      {"A", "K", 0, "F", 2, 0.5, 1e-6},
      {"A", "K", 0, "F*", 1, 0.1, 0.02},
      {"A", "A", 1, "A", 1, 1, 0},
      {"A", "A", 1, "A", 6, 0, 0},
      {"\xC4\xC4", "\xC4\xC4", 1, "AA", 4, 1, 0},  // only the compared strings tell them apart: a tie
      {"\xC4\xC4", "\xC4\xC4", 1, "AA", 2, 0, 0},
      {"K", "A", 1, "F", 7, 0, 0},  // upside down: nothing lies in it
      {"k", "A", 1, "K", 2, 1,
       0},  // but its lower end, by which the value's number is tied: a unit, over a divisor of 1
  };
  for (const auto& c : cases) {
    for (const Row& row : {kString, kLegacy}) {
      Range range(keyOf(row, text(c.low, c.codeSet)), keyOf(row, text(c.high, c.codeSet)));
      EXPECT_NEAR(estimateRecord(row, &range, c.flags, text(c.value, c.codeSet)), c.share, c.tolerance)
          << c.low << " " << c.high << " " << c.value << " " << c.flags;
    }
  }
}

TEST(StringEstimate, one_unit_is_added_for_a_bound_that_ties_and_is_selected) {
  // "a" and "A" are one number apart from nothing: the range is one unit, which either side has when the bound lies there.
  Range range(keyOf(kIString, text("a")), keyOf(kIString, text("a")));
  EXPECT_EQ(estimateRecord(kIString, &range, kLess, text("A")), 1);
  EXPECT_EQ(estimateRecord(kIString, &range, kGreater, text("A")), 0);
  Range folded(keyOf(kCaseIString, text("a")), keyOf(kCaseIString, text("a")));
  EXPECT_EQ(estimateRecord(kCaseIString, &folded, kLess, text("A")), 0);
  EXPECT_EQ(estimateRecord(kCaseIString, &folded, kEqual, text("A")), 1);
}

// Keys of strings in memory have the host's byte order, as records in memory layout have.
TEST(StringEstimate, does_not_depend_on_where_the_value_lies) {
  constexpr unsigned char kLayout = 1;
  for (const Row& row : kRows) {
    for (const char* bound : {"D", "Dddd"}) {
      const Range range(keyOf(row, text(bound), 0x80 | kLayout), keyOf(row, text(bound), 0x80 | kLayout));
      for (const char* value : {"", "d", "D", "dddd", "DDDD", "Dddd", "m"}) {
        for (unsigned short flags = 1; flags <= 7; ++flags) {
          KtIdxBounds known = range;
          KtString inMemory = text(value);
          unsigned short given = flags;
          const float share = row.evalAndBound(&known, given, &inMemory, kMemory, 1, nullptr);
          EXPECT_EQ(share, estimateRecord(row, &known, flags, inMemory, nullptr, kLayout))
              << row.name << " " << bound << " " << value << " " << flags;
        }
      }
    }
  }
}

TEST(StringEstimate, is_0_without_a_whole_range_and_the_bounds_are_recorded_all_the_same) {
  const Bytes low = keyOf(kString, text("a")), high = keyOf(kString, text("z"));
  for (int missing = 0; missing < 2; ++missing) {
    Range range(low, high);
    (missing == 0 ? range.lowKey : range.highKey) = nullptr;
    Bounds bounds;
    EXPECT_EQ(estimateRecord(kString, &range, kEqual, text("b"), &bounds), 0);
    EXPECT_EQ(bounds.low(), keyOf(kString, text("b")));
  }
}

TEST(StringEstimate, damaged_keys_of_the_range_stay_within_0_and_1) {
  std::mt19937 random(7);
  const KtString texts[] = {makeString(u"Na\u00EFve \uAC00", 253, 1), text("naive", 0),
                            makeString(u"\uFFFF\u7FFF", 253, 20), text("")};
  for (const Row& row : kRows)
    for (const KtString& a : texts)
      for (const KtString& b : texts) {
        const Bytes whole = keyOf(row, a);
        for (std::size_t size = 0; size <= whole.size(); ++size) {
          Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
          if (size > 4 && size % 2 == 0) cut[random() % size] = static_cast<unsigned char>(random());
          Range range(cut, keyOf(row, b)), turned(keyOf(row, b), cut);
          for (const unsigned short flags : Operators{0, 1, 2, 4, 7}) {
            for (KtIdxBounds* r : {static_cast<KtIdxBounds*>(&range), static_cast<KtIdxBounds*>(&turned)}) {
              const float share = estimateRecord(row, r, flags, text("Na*"));
              ASSERT_TRUE(share >= 0 && share <= 1) << share;
              if (size < 6) {
                ASSERT_EQ(share, 0);
              }
            }
          }
        }
      }
}

// Sorted as the row sorts, with the keys of the first and the last.
struct Index {
  Index(const Row& row, std::vector<KtString> given) : texts(std::move(given)) {
    std::stable_sort(texts.begin(), texts.end(), [&row](const KtString& a, const KtString& b) {
      int status = 0;
      return row.compare(kMemory, 0, const_cast<KtString*>(&a), 0, const_cast<KtString*>(&b), KtCMP_NO_WILDCARDS, 1,
                         status) < 0;
    });
    range = std::make_unique<Range>(keyOf(row, texts.front()), keyOf(row, texts.back()));
  }
  std::vector<KtString> texts;
  std::unique_ptr<Range> range;
};

TEST(StringEstimate, grows_with_what_is_selected) {
  for (const Texts& texts : kTexts)
    for (const Row& row : kRows) {
      const Index index(row, sampleOf(texts, 200));
      float before = 0;
      for (const KtString& value : index.texts) {
        float share[8];
        for (unsigned short flags = 0; flags < 8; ++flags) {
          share[flags] = estimateRecord(row, index.range.get(), flags, value);
          ASSERT_TRUE(share[flags] >= 0 && share[flags] <= 1);
          for (const unsigned bit : {1u, 2u, 4u}) {
            if ((flags & bit) != 0) {
              ASSERT_GE(share[flags], share[flags & ~bit]);
            }
          }
        }
        ASSERT_EQ(share[7], 1);
        ASSERT_GE(share[2], before) << row.name << " " << value.StrGet();
        before = share[2];
        if (!row.hasWildcards) continue;
        float shorter = 1;
        const std::u16string units = unitsOf(value);
        for (std::size_t length = 0; length <= units.size(); ++length) {
          const KtString pattern = makeString(units.substr(0, length) + u"*", value.codeSet, value.language);
          const float longer = estimateRecord(row, index.range.get(), kEqual, pattern);
          ASSERT_LE(longer, shorter) << pattern.StrGet();
          shorter = longer;
        }
      }
    }
}

// --- how good it is -----------------------------------------------------------------------------------------------

// The mean absolute error of the estimates over all names, against the share counted.
TEST(StringEstimate, is_near_the_share_of_the_names_of_cities) {
  const CaughtAssertions caught;
  for (const Texts& texts : {Texts{0, 1}, Texts{1, 1}, Texts{253, 1}}) {
    std::vector<KtString> names;
    for (const std::u16string& units : cityNames())
      if (fits(units, texts.codeSet)) names.push_back(makeString(units, texts.codeSet, texts.language));
    const Index index(kString, names);
    const double count = static_cast<double>(index.texts.size());
    const auto positionOf = [&](const KtString& value, bool behind) {
      return static_cast<double>(std::partition_point(index.texts.begin(), index.texts.end(),
                                                      [&](const KtString& s) {
                                                        const long order = s.Compare(value, -1, KtCMP_NO_WILDCARDS);
                                                        return order < 0 || (behind && order == 0);
                                                      }) -
                                 index.texts.begin());
    };
    double less = 0, lessEqual = 0, equal = 0, prefix = 0;
    int asked = 0;
    for (std::size_t i = 0; i < index.texts.size(); i += 101, ++asked) {
      const KtString& value = index.texts[i];
      const double first = positionOf(value, false) / count, last = positionOf(value, true) / count;
      less += std::fabs(estimateRecord(kString, index.range.get(), kLess, value) - first);
      lessEqual += std::fabs(estimateRecord(kString, index.range.get(), kLess | kEqual, value) - last);
      equal += std::fabs(estimateRecord(kString, index.range.get(), kEqual, value) - (last - first));
      const std::u16string units = unitsOf(value).substr(0, 1 + i % 4);
      const KtString pattern = makeString(units + u"*", texts.codeSet, texts.language);
      double matching = 0;
      if (i % 1010 != 0) continue;  // counting takes time
      for (const KtString& s : index.texts) matching += compareMemory(kString, s, pattern) == 0;
      prefix += 10 * std::fabs(estimateRecord(kString, index.range.get(), kEqual, pattern) - matching / count);
    }
    const std::string set = std::to_string(texts.codeSet);
    RecordProperty("less_" + set, std::to_string(less / asked));
    RecordProperty("equal_" + set, std::to_string(equal / asked));
    RecordProperty("prefix_" + set, std::to_string(prefix / asked));
    EXPECT_LT(less / asked, 0.11) << set;
    EXPECT_LT(lessEqual / asked, 0.11) << set;
    EXPECT_LT(equal / asked, 0.001) << set;
    EXPECT_LT(prefix / asked, 0.05) << set;
  }
  EXPECT_EQ(CaughtAssertions::count(), 0);
}

}  // namespace
