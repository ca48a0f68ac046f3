// Estimates of string comparisons: shares worked by hand, and how near they are to those counted over names of cities.
#include "string_estimates.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace kt_test;

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
