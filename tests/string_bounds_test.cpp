// Bounds of string comparisons: keys worked by hand, and the law over names of cities that no string which satisfies a
// comparison has a key outside its bounds.
#include "string_estimates.h"

#include <gtest/gtest.h>

namespace {

using namespace kt_test;

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

int compareKeyBytes(const Row& row, const Bytes& a, const Bytes& b) {
  int status = 0;
  return static_cast<int>(row.compare(kKeys, a.size(), const_cast<unsigned char*>(a.data()), b.size(),
                                      const_cast<unsigned char*>(b.data()), KtCMP_NO_WILDCARDS, 1, status));
}

bool satisfies(int order, unsigned flags) { return (flags & (order < 0 ? kLess : order > 0 ? kGreater : kEqual)) != 0; }

// All names; fewer where the host is emulated or a sanitizer watches.
#if defined(__SANITIZE_ADDRESS__) || defined(__s390x__)
constexpr std::size_t kStep = 50;
#else
constexpr std::size_t kStep = 1;
#endif

std::vector<KtString> namesIn(const Texts& texts, std::size_t step) {
  std::vector<KtString> names;
  for (std::size_t i = 0; i < cityNames().size(); i += step)
    if (fits(cityNames()[i], texts.codeSet)) names.push_back(makeString(cityNames()[i], texts.codeSet, texts.language));
  return names;
}

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

TEST(StringBounds, no_string_that_satisfies_the_comparison_has_its_key_outside) {
  for (const Texts& texts : kTexts) {
    std::vector<KtString> all = sampleOf(texts, 160);
    const std::vector<KtString> values = valuesOf(all, texts);
    for (const KtString& name : namesIn(texts, 10 * kStep)) all.push_back(name);
    for (const Row& row : kRows) {
      const std::vector<Keyed> index = indexOf(row, all);
      for (const KtString& value : values) ASSERT_NO_FATAL_FAILURE(expectInside(row, index, value));
    }
  }
}

// What a value without wildcards selects is a part of the sorted index: the keys of its ends lie inside, and so do all.
void expectEndsInside(const Row& row, const Index& index, const std::vector<Bytes>& keys, const KtString& value) {
  const auto place = [&](int most) {
    const auto isBefore = [&](const KtString& s) { return compareMemory(row, s, value) <= most; };
    return std::partition_point(index.texts.begin(), index.texts.end(), isBefore) - index.texts.begin();
  };
  const auto first = static_cast<std::size_t>(place(-1)), end = static_cast<std::size_t>(place(0));
  for (const unsigned short flags : Operators{1, 2, 3, 4, 5}) {
    const std::size_t from = (flags & kLess) != 0 ? 0 : (flags & kEqual) != 0 ? first : end;
    const std::size_t to = (flags & kGreater) != 0 ? keys.size() : (flags & kEqual) != 0 ? end : first;
    if (from == to) continue;
    Bounds bounds;
    estimateRecord(row, nullptr, flags, value, &bounds);
    ASSERT_TRUE(bounds.lowKey == nullptr || compareKeyBytes(row, keys[from], bounds.low()) >= 0) << value.StrGet();
    ASSERT_TRUE(bounds.highKey == nullptr || compareKeyBytes(row, keys[to - 1], bounds.high()) <= 0) << value.StrGet();
  }
}

TEST(StringBounds, of_every_name_let_in_what_it_selects) {
  for (const Texts& texts : kTexts)
    for (const Row& row : kRows) {
      const Index index(row, namesIn(texts, kStep));
      std::vector<Bytes> keys;
      for (const KtString& name : index.texts) {
        keys.push_back(keyOf(row, name));
        ASSERT_TRUE(keys.size() == 1 || compareKeyBytes(row, keys[keys.size() - 2], keys.back()) <= 0) << name.StrGet();
      }
      for (const KtString& value : index.texts) ASSERT_NO_FATAL_FAILURE(expectEndsInside(row, index, keys, value));
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

}  // namespace
