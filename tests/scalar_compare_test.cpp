// The compare contract and the scalar comparisons.
#include <kttm.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr unsigned char kFormats[] = {8, 1, 0, 2, 3, 5, 15, 0xF2, 0x98};

template <class T>
std::vector<unsigned char> diskForm(char id, const std::vector<T>& values, unsigned char format) {
  KtTypeMgr mgr(12);
  std::vector<unsigned char> disk(values.size() * 8 + 1);
  std::vector<T> copy = values;
  mgr.Store(id, disk.data() + 1, copy.data(), format, copy.size());  // + 1: runs are unaligned
  return disk;
}

struct RunCase {
  const char* what;
  std::vector<std::int32_t> a, b;
  unsigned long lengthA, lengthB, count;
  long result;
  int status;
};

// Worked by hand from the stepping rule: after each pair the next one must begin inside both runs.
const RunCase kRunCases[] = {
    {"no values", {1}, {2}, 0, 0, 0, 0, 0},
    {"first difference decides", {1, 2}, {1, 3}, 0, 0, 2, -1, 0},
    {"exact lengths hold all", {1, 3}, {1, 2}, 8, 8, 2, 1, 0},
    {"first run one short", {1, 2}, {1, 3}, 4, 0, 2, 0, 2101},
    {"second run one short", {1, 2}, {1, 3}, 0, 4, 2, 0, 2101},
    {"difference and short run together", {5, 0}, {1, 0}, 4, 0, 2, 1, 2101},
    {"difference at the last value", {1, 5}, {1, 6}, 8, 8, 2, -1, 0},
    {"not even the first value", {7}, {8}, 3, 0, 1, 0, 2101},
    {"a part of the second value", {1, 9}, {1, 3}, 6, 0, 2, 0, 2101},
    {"longer than needed", {1, 2}, {1, 2}, 800, 800, 2, 0, 0},
};

TEST(ScalarCompare, runs_end_and_differ_by_the_stepping_rule) {
  for (const RunCase& c : kRunCases) {
    for (unsigned char format : kFormats) {
      SCOPED_TRACE(testing::Message() << c.what << ", format " << int(format));
      auto a = diskForm(KT_ID_long, c.a, format);
      auto b = diskForm(KT_ID_long, c.b, format);
      int status = 99;
      EXPECT_EQ(LongCompare(format, c.lengthA, a.data() + 1, c.lengthB, b.data() + 1, 0, c.count, status), c.result);
      EXPECT_EQ(status, c.status);
    }
  }
}

// A slow twin of the loop: one pair at a time through the converter.
template <class T>
long slowCompare(const std::vector<T>& a, const std::vector<T>& b) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] < b[i]) return -1;
    if (a[i] > b[i]) return 1;
  }
  return 0;
}

template <class T>
void compareLongRuns(char id, KtTypeCmpFunc compare, unsigned char skipFormat = 255) {
  std::mt19937 random(42);
  for (unsigned long count : {1ul, 2ul, 7ul, 15ul, 16ul, 17ul, 31ul, 64ul, 100ul, 1000ul}) {
    for (int round = 0; round < 20; ++round) {
      std::vector<T> a(count);
      std::vector<unsigned char> noise(count * sizeof(T));
      for (auto& byte : noise) byte = static_cast<unsigned char>(random());
      std::memcpy(a.data(), noise.data(), noise.size());
      if constexpr (std::is_floating_point_v<T>) {
        for (auto& v : a) v = static_cast<T>(static_cast<int>(random() % 2000) - 1000) / 8;
      }
      std::vector<T> b = a;
      if (round != 0) b[random() % count] = a[random() % count];
      for (unsigned char format : kFormats) {
        if (format == skipFormat) continue;
        auto diskA = diskForm(id, a, format);
        auto diskB = diskForm(id, b, format);
        int status = 1;
        ASSERT_EQ(compare(format, 0, diskA.data() + 1, 0, diskB.data() + 1, 0, count, status), slowCompare(a, b))
            << "format " << int(format) << " count " << count;
        ASSERT_EQ(status, 0);
      }
    }
  }
}

TEST(ScalarCompare, long_runs_agree_with_a_loop_over_values_in_every_form) {
  compareLongRuns<std::int8_t>(KT_ID_char, CharCompare);
  compareLongRuns<std::uint8_t>(KT_ID_KtByte, ByteCompare);
  compareLongRuns<std::int16_t>(KT_ID_short, ShortCompare);
  compareLongRuns<std::uint16_t>(KT_ID_KtWord, WordCompare);
  compareLongRuns<std::int32_t>(KT_ID_long, LongCompare);
  compareLongRuns<std::uint32_t>(KT_ID_KtDWord, DwordCompare);
  compareLongRuns<std::int32_t>(KT_ID_int, IntCompare);
  compareLongRuns<std::uint32_t>(KT_ID_unsigned, UnsignedCompare);
  compareLongRuns<float>(KT_ID_float, FloatCompare);
  compareLongRuns<double>(KT_ID_double, DoubleCompare);
}

TEST(ScalarCompare, two_byte_ints_step_by_two_and_are_sign_extended_even_when_unsigned) {
  // -1, 5 and -1, -2 as little-endian words
  unsigned char a[] = {0xFF, 0xFF, 5, 0};
  unsigned char b[] = {0xFF, 0xFF, 0xFE, 0xFF};
  int status;
  EXPECT_EQ(IntCompare(4, 4, a, 4, b, 0, 2, status), 1);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(UnsignedCompare(4, 4, a, 4, b, 0, 2, status), -1);  // 0xFFFFFFFE
  unsigned char word[] = {0x00, 0x80};                          // sign-extended: 0xFFFF8000
  unsigned char big[] = {0xFF, 0x7F};
  EXPECT_EQ(UnsignedCompare(4, 0, word, 0, big, 0, 1, status), 1);
}

TEST(ScalarCompare, not_a_number_equals_everything_and_zeros_are_equal) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::vector<double> a(40, 1.0);
  std::vector<double> b = a;
  int status;
  a[3] = nan;
  b[17] = nan;
  a[20] = 0.0;
  b[20] = -0.0;
  EXPECT_EQ(DoubleCompare(8, 0, a.data(), 0, b.data(), 0, 40, status), 0);
  b[39] = 2.0;  // found behind blocks that differ in bytes only
  EXPECT_EQ(DoubleCompare(8, 0, a.data(), 0, b.data(), 0, 40, status), -1);
}

TEST(ScalarCompare, signedness_is_the_types) {
  std::uint32_t a = 0xFFFFFFFFu;
  std::uint32_t one = 1;
  unsigned char high = 200;
  unsigned char low = 100;
  int status;
  EXPECT_EQ(DwordCompare(8, 0, &a, 0, &one, 0, 1, status), 1);
  EXPECT_EQ(LongCompare(8, 0, &a, 0, &one, 0, 1, status), -1);
  EXPECT_EQ(CharCompare(2, 0, &high, 0, &low, 0, 1, status), -1);
  EXPECT_EQ(ByteCompare(2, 0, &high, 0, &low, 0, 1, status), 1);
}

TEST(ScalarCompare, sixty_four_bits_order_by_the_signed_high_word_then_the_low_word) {
  struct Words {
    std::uint32_t low;
    std::int32_t high;
  };
  const Words ordered[] = {{0, INT32_MIN},   {0xFFFFFFFFu, -1}, {0, 0}, {1, 0},
                           {0x80000000u, 0}, {0xFFFFFFFFu, 0},  {0, 1}};
  for (unsigned char format : kFormats) {
    for (std::size_t i = 0; i + 1 < std::size(ordered); ++i) {
      std::uint32_t disk[2][2];
      for (int k = 0; k < 2; ++k) LongStore(disk[k], &ordered[i + static_cast<std::size_t>(k)], format, 2);
      int status;
      EXPECT_EQ(Int64Compare(format, 0, disk[0], 0, disk[1], 0, 1, status), -1) << i << " format " << int(format);
      EXPECT_EQ(Int64Compare(format, 0, disk[1], 0, disk[0], 0, 1, status), 1) << i;
    }
  }
}

TEST(ScalarCompare, booleans_put_null_first_and_keep_their_asymmetry) {
  struct Case {
    int a, b;
    long result;
  };
  // 255 is null. a < b only for 0 against 1 to 127; a > b as signed bytes.
  const Case cases[] = {{255, 255, 0}, {255, 1, -1}, {0, 255, 1}, {0, 1, -1},  {1, 0, 1},    {2, 5, 0},
                        {5, 2, 1},     {0, 0, 0},    {0, 200, 1}, {200, 0, 0}, {0, 127, -1}, {128, 255, 1}};
  for (const Case& c : cases) {
    auto a = static_cast<unsigned char>(c.a);
    auto b = static_cast<unsigned char>(c.b);
    int status;
    EXPECT_EQ(BooleanCompare(2, 0, &a, 0, &b, 0, 1, status), c.result) << c.a << " against " << c.b;
  }
}

}  // namespace
