// StringCompare and the Hash operation over runs: forms, statuses, code sets seen through format bits, kinds of rows.
#include "kttypops.h"
#include "ops/string_ops.h"
#include "string_bytes.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace kt_test;

constexpr unsigned char kMemory = 8;

Bytes recordsOf(const std::vector<KtString>& strings, unsigned char format) {
  Bytes records(StringSizeGet(strings.data(), kMemory, format, strings.size()));
  StringStore(records.data(), strings.data(), format, strings.size());
  return records;
}

struct Outcome {
  long result;
  int status;
  bool operator==(const Outcome&) const = default;
};

Outcome compareRecords(const Bytes& a, const Bytes& b, unsigned char format, unsigned long count,
                       unsigned short op = 0x10) {
  const Block x(a), y(b);
  Outcome outcome{};
  outcome.result = StringCompare(format, x.size, x.get(), y.size, y.get(), op, count, outcome.status);
  return outcome;
}

// --- runs and statuses --------------------------------------------------------------------------------------------

TEST(StringCompareRuns, the_first_difference_decides_and_short_runs_say_so) {
  std::vector<KtString> a = {"x", "b", "c"};
  std::vector<KtString> b = {"x", "a", "c"};
  constexpr unsigned long kOne = sizeof(KtString);
  const struct {
    unsigned long lengthA, lengthB, count;
    Outcome expected;
  } inMemory[] = {
      {0, 0, 0, {0, 0}},
      {0, 0, 1, {0, 0}},
      {0, 0, 3, {1, 0}},
      {3 * kOne, 3 * kOne, 3, {1, 0}},
      {2 * kOne, 3 * kOne, 3, {1, 2101}},  // the next string is missing, after a difference too
      {kOne, 0, 3, {0, 2101}},
      {kOne, kOne, 1, {0, 0}},
      {kOne - 1, kOne, 1, {0, 2101}},  // not even the first string is there
  };
  for (const auto& c : inMemory) {
    Outcome outcome{};
    outcome.result = StringCompare(kMemory, c.lengthA, a.data(), c.lengthB, b.data(), 0x10, c.count, outcome.status);
    EXPECT_EQ(outcome, c.expected) << c.lengthA << " " << c.count;
  }
  const Bytes recordsA = recordsOf(a, 2);  // 7 bytes each
  const Bytes recordsB = recordsOf(b, 2);
  const struct {
    std::ptrdiff_t lengthA;
    unsigned long count;
    Outcome expected;
  } onDisk[] = {{21, 3, {1, 0}},    {14, 3, {1, 2101}}, {18, 3, {1, 2101}}, {19, 3, {1, 0}},  {7, 2, {0, 2101}},
                {11, 2, {0, 2101}}, {13, 2, {0, 2101}}, {7, 1, {0, 0}},     {6, 1, {0, 2101}}};
  for (const auto& c : onDisk) {
    const Bytes part(recordsA.begin(), recordsA.begin() + c.lengthA);
    EXPECT_EQ(compareRecords(part, recordsB, 2, c.count), c.expected) << c.lengthA << " " << c.count;
  }
  int status = 0;
  const Block x(recordsA), y(recordsB);
  EXPECT_EQ(StringCompare(2, 0, x.get(), 0, y.get(), 0x10, 3, status), 1);
}

TEST(StringCompareRuns, memory_and_records_agree_under_every_operator) {
  std::mt19937 random(7);
  const unsigned char sets[] = {0, 1, 5, 10, 253};
  const std::u16string pool = u"abAB* ?\u00E4\u00C4-";
  for (int i = 0; i < 3000; ++i) {
    std::vector<KtString> pair;
    for (int side = 0; side < 2; ++side) {
      std::u16string text;
      for (std::size_t n = random() % 4; n != 0; --n) text += pool[random() % pool.size()];
      pair.push_back(makeString(text, sets[random() % 5], 1));
      if (random() % 16 == 0) pair.back().SetNullValue();
    }
    for (const unsigned short op : Operators{0, 0x10, 0x20, 0x70, 0x100, 0x290}) {
      int status = 0;
      const long expected = StringCompare(kMemory, 0, &pair[0], 0, &pair[1], op, 1, status);
      const long exact = KtStrCmp(pair[0].codeSet, pair[0].language, pair[0].StrGet(), pair[1].codeSet,
                                  pair[1].language, pair[1].StrGet(), op, -1);
      ASSERT_EQ(expected, exact < 0 ? -1 : exact > 0) << op;
      for (const unsigned char format : Codes{0, 1, 2, 4}) {
        const Bytes a = recordsOf({pair[0]}, format);
        const Bytes b = recordsOf({pair[1]}, format);
        ASSERT_EQ(compareRecords(a, b, format, 1, op), (Outcome{expected, 0})) << op << " " << int{format};
      }
    }
  }
}

// One record against one takes a short way; the first of a run of two takes none.
TEST(StringCompareRuns, single_records_compare_as_the_first_of_a_run_does) {
  std::mt19937 random(8);
  // What ends a record, 00 FF, is a letter in languages of ideographs, where it is taken for a character.
  const std::u16string pool = u"aaaaabAB -\u00E4\u00C4\u4EAC\uFF00";
  const unsigned char languages[] = {1, 1, 20, 22};
  const auto stored = [&random](const std::u16string& text, unsigned char set, unsigned char language,
                                unsigned char format) {
    const bool cutsCharacters = set == 253 && random() % 4 == 0;  // an odd number of bytes
    KtString s = makeString(text, cutsCharacters ? 1 : set, language);
    s.codeSet = set;
    return recordsOf({s}, format);
  };
  const auto changed = [&random](Bytes record, std::size_t from) {
    record[from + random() % (record.size() - 1 - from)] = static_cast<unsigned char>(random() % 3 * 0x61);
    return record;
  };
  for (int i = 0; i < 20000; ++i) {
    std::u16string a, b;
    for (std::size_t n = random() % (random() % 2 * 16 + 4); n != 0; --n) a += pool[random() % pool.size()];
    b = a.substr(0, random() % 22);
    for (std::size_t n = random() % 3; n != 0; --n)
      b.insert(random() % (b.size() + 1), 1, pool[random() % pool.size()]);
    const unsigned char set = random() % 2 == 0 ? 1 : 253, format = static_cast<unsigned char>(random() % 3);
    const unsigned char language = languages[random() % 4];
    Bytes x = stored(a, set, language, format);
    Bytes y = stored(b, set, language, format);
    if (random() % 4 == 0) x = changed(x, 4);  // ends within the text, and texts without one, too
    if (random() % 4 == 0) y = changed(y, 2);
    Bytes xx = x, yy = y;
    xx.insert(xx.end(), x.begin(), x.end());
    yy.insert(yy.end(), y.begin(), y.end());
    for (const unsigned short op : Operators{0x10, 0x70, 0x290})
      ASSERT_EQ(compareRecords(x, y, format, 1, op), compareRecords(xx, yy, format, 2, op)) << i << " " << op;
  }
}

TEST(StringCompareRuns, format_bits_change_the_code_set_that_counts) {
  const Bytes upper = recordsOf({makeString(u"B", 1, 1)}, 0);
  const Bytes lower = recordsOf({makeString(u"a", 1, 1)}, 0);
  const Bytes rawUpper = recordsOf({makeString(u"B", 0, 1)}, 0);
  const Bytes rawLower = recordsOf({makeString(u"a", 0, 1)}, 0);
  EXPECT_EQ(compareRecords(upper, lower, 0, 1), (Outcome{1, 0}));      // letters: a before B
  EXPECT_EQ(compareRecords(upper, lower, 0x20, 1), (Outcome{-1, 0}));  // bytes: 42 before 61
  EXPECT_EQ(compareRecords(rawUpper, rawLower, 0, 1), (Outcome{-1, 0}));
  EXPECT_EQ(compareRecords(rawUpper, rawLower, 0x40, 1), (Outcome{1, 0}));
  EXPECT_EQ(compareRecords(upper, lower, 0x60, 1), (Outcome{1, 0}));
}

TEST(StringCompareRuns, older_records_are_compared_text_by_text_under_code_set_0) {
  const Bytes older = hex("00 06 61 62 00 42 64 00");  // "ab", "Bd"
  const Bytes other = hex("00 06 61 62 00 61 64 00");  // "ab", "ad"
  EXPECT_EQ(compareRecords(older, other, 2, 1), (Outcome{0, 0}));
  EXPECT_EQ(compareRecords(older, other, 2, 2), (Outcome{-1, 0}));
  EXPECT_EQ(compareRecords(older, other, 2, 3), (Outcome{-1, 2101}));
  EXPECT_EQ(compareRecords(older, older, 2, 3), (Outcome{0, 2101}));
  // Against a record of the current form, by the native code set.
  EXPECT_EQ(compareRecords(older, recordsOf({makeString(u"ab", 1, 0)}, 2), 2, 1), (Outcome{0, 0}));
}

// --- hash ---------------------------------------------------------------------------------------------------------

TEST(StringHashRuns, memory_and_records_hash_alike_and_combine_by_exclusive_or) {
  std::vector<KtString> run = {"abc", makeString(u"\u00E4\u0416\uAC00", 253, 5), makeString(u"raw", 0, 1), ""};
  unsigned long expected = 0;
  for (KtString& s : run) expected ^= HashString(s.codeSet, s.language, const_cast<char*>(s.StrGet()), -1, 1);
  int status = 1;
  EXPECT_EQ(kt::StringOps::hash(kMemory, 0, run.data(), run.size(), status), expected);
  EXPECT_EQ(status, 0);
  for (const unsigned char format : Codes{0, 1, 2, 4}) {
    const Block records(recordsOf(run, format));
    EXPECT_EQ(kt::StringOps::hash(format, records.size, records.get(), run.size(), status), expected);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(kt::StringOps::hash(format, records.size, records.get(), run.size() + 1, status), expected);
    EXPECT_EQ(status, KtERR_OVERRUN);
  }
}

TEST(StringHashRuns, a_null_marked_by_its_language_hashes_as_its_text) {
  const struct {
    unsigned char codeSet, language;
    unsigned long expected;
  } cases[] = {{0, 254, 0}, {1, 254, 0}, {254, 0, 0xFEFE7575ul}};
  for (const auto& c : cases) {
    KtString s(c.codeSet, c.language);
    int status = 0;
    EXPECT_EQ(kt::StringOps::hash(kMemory, 0, &s, 1, status), c.expected);
  }
}

// --- the kin of KtString ------------------------------------------------------------------------------------------

template <class Ops>
int compareAs(KtString a, KtString b, unsigned short op = 0) {
  int status = 0;
  return static_cast<int>(Ops::compare(kMemory, 0, &a, 0, &b, op, 1, status));
}

template <class Ops>
unsigned long hashAs(KtString s) {
  int status = 0;
  return Ops::hash(kMemory, 0, &s, 1, status);
}

TEST(StringKin, international_strings_sort_by_language_without_wildcards) {
  EXPECT_EQ(compareAs<kt::StringOps>("abc", "a*"), 0);
  EXPECT_NE(compareAs<kt::IStringOps>("abc", "a*"), 0);
  EXPECT_EQ(compareAs<kt::IStringOps>(makeString(u"B", 0, 1), makeString(u"a", 0, 1)), 1);
  EXPECT_EQ(compareAs<kt::IStringOps>(makeString(u"\u00E4", 1, 5), makeString(u"z", 1, 5)), 1);
  EXPECT_EQ(compareAs<kt::IStringOps>("A", "a"), 1);
  EXPECT_EQ(compareAs<kt::IStringOps>(KtString(0, 254), makeString(u"a", 1, 1)), -1);
}

TEST(StringKin, caseless_strings_ignore_case_and_equal_ones_hash_alike) {
  for (const unsigned short op : Operators{0, 0x10, 0x100, 0x110}) {
    EXPECT_EQ(compareAs<kt::CaseIStringOps>("Stra\xDF"
                                            "e",
                                            "STRA\xDF"
                                            "E",
                                            op),
              0);
    EXPECT_EQ(compareAs<kt::CaseIStringOps>("b", "A", op), 1);
    EXPECT_EQ(compareAs<kt::CaseIStringOps>("\xE4", "a", op), 1);
  }
  EXPECT_EQ(hashAs<kt::CaseIStringOps>("Name"), hashAs<kt::CaseIStringOps>("nAME"));
  EXPECT_EQ(hashAs<kt::CaseIStringOps>(makeString(u"Name", 0, 1)),
            hashAs<kt::CaseIStringOps>(makeString(u"nAME", 253, 1)));
  EXPECT_EQ(compareAs<kt::IStringOps>("a -b", "a-b"), 0);  // of two symbols in one step the last one counts
  EXPECT_EQ(hashAs<kt::IStringOps>("a -b"), hashAs<kt::IStringOps>("a-b"));
  EXPECT_NE(hashAs<kt::IStringOps>("ab"), hashAs<kt::IStringOps>("ac"));
}

TEST(StringKin, legacy_strings_compare_and_hash_as_what_they_load_as) {
  std::vector<KtString> texts = {"", "a", "B", "\xE4", "b"};
  for (KtString& a : texts) {
    Block recordA(Bytes(kt::LegacyStringOps::sizeGet(&a, kMemory, 2, 1), 0));
    kt::LegacyStringOps::store(recordA.get(), &a, 2, 1);
    int status = 0;
    EXPECT_EQ(kt::LegacyStringOps::hash(2, recordA.size, recordA.get(), 1, status), hashAs<kt::LegacyStringOps>(a));
    for (KtString& b : texts) {
      Block recordB(Bytes(kt::LegacyStringOps::sizeGet(&b, kMemory, 2, 1), 0));
      kt::LegacyStringOps::store(recordB.get(), &b, 2, 1);
      EXPECT_EQ(
          kt::LegacyStringOps::compare(2, recordA.size, recordA.get(), recordB.size, recordB.get(), 0x10, 1, status),
          compareAs<kt::LegacyStringOps>(a, b, 0x10));
      EXPECT_EQ(status, 0);
    }
  }
  EXPECT_EQ(compareAs<kt::LegacyStringOps>(KtString(0, 254), KtString(0, 254), 0x10), 0);
}

}  // namespace
