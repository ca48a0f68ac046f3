// KtInt64: arithmetic against native integers and a slow division, operators in every order of operands, texts, row.
#include <kttm.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using std::int64_t;
using std::uint64_t;

constexpr int64_t kMin = std::numeric_limits<int64_t>::min();
constexpr int64_t kMax = std::numeric_limits<int64_t>::max();

KtTypeMgr mgr(12);

using Codes = std::initializer_list<unsigned char>;

KtInt64 number(int64_t v) { return KtInt64(static_cast<long long>(v)); }

// Limits, word boundaries and small numbers of both signs.
// clang-format off
const int64_t kEdges[] = {
    0, 1, 2, 3, 7, 10, 1000, 0x7FFFFFFF, 0x80000000LL, 0xFFFFFFFFLL, kMax, kMax - 1, kMin + 1, kMin, kMin + 2, -1, -2,
    -3, -7, -10, -100, 1LL << 32, -(1LL << 32), 1LL << 62, -(1LL << 62), -0x80000000LL, -0xFFFFFFFFLL,
    1234567890123456789, 0x7FFFFFFF00000000,
};
// clang-format on

std::vector<int64_t> samples() {
  std::vector<int64_t> values(std::begin(kEdges), std::end(kEdges));
  std::mt19937_64 random(7);
  for (int i = 0; i < 60; ++i) values.push_back(static_cast<int64_t>(random() >> random() % 64));
  for (int i = 0; i < 60; ++i) values.push_back(-static_cast<int64_t>(random() >> (random() % 63 + 1)));
  return values;
}

// Restoring division, bit by bit over magnitudes, as a machine without 64-bit numbers would do it. Zero divisors apart.
int64_t slowDivision(int64_t dividend, int64_t divisor, bool wantRemainder) {
  const bool negative = wantRemainder ? dividend < 0 : (dividend < 0) != (divisor < 0);
  const bool correct = dividend == kMin;
  uint64_t rest = correct ? static_cast<uint64_t>(kMax) : static_cast<uint64_t>(dividend < 0 ? -dividend : dividend);
  const uint64_t by = divisor < 0 ? 0 - static_cast<uint64_t>(divisor) : static_cast<uint64_t>(divisor);
  uint64_t quotient = 0;
  uint64_t remainder = 0;
  if (divisor == kMin) {
    remainder = rest;
  } else {
    for (uint64_t mask = uint64_t{1} << 62; mask != 0; mask >>= 1) {
      remainder = remainder << 1 | ((rest & mask) != 0);
      if (remainder >= by) {
        remainder -= by;
        quotient |= mask;
      }
    }
  }
  if (correct && ++remainder == by) {
    ++quotient;
    remainder = 0;
  }
  const uint64_t magnitude = wantRemainder ? remainder : quotient;
  return static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
}

TEST(KtInt64, division_agrees_with_shift_and_subtract_for_all_signs_and_limits) {
  const std::vector<int64_t> values = samples();
  for (int64_t a : values) {
    for (int64_t b : values) {
      if (b == 0) continue;
      ASSERT_EQ((number(a) / number(b)).Value(), slowDivision(a, b, false)) << a << " / " << b;
      ASSERT_EQ((number(a) % number(b)).Value(), slowDivision(a, b, true)) << a << " % " << b;
    }
  }
}

TEST(KtInt64, division_results_worked_by_hand) {
  struct Case {
    int64_t a, b, quotient, remainder;
  };
  const Case cases[] = {{-7, 2, -3, -1},
                        {7, -2, -3, 1},
                        {kMin, -1, kMin, 0},
                        {kMin, kMin, 1, 0},
                        {5, kMin, 0, 5},
                        {kMin, 1, kMin, 0},
                        {kMin, 10, -922337203685477580, -8},
                        {-5, kMin, 0, -5},
                        {kMax, kMin, 0, kMax},
                        {kMin, kMax, -1, -1}};
  for (const Case& c : cases) {
    KtInt64 a = number(c.a);
    EXPECT_EQ(a.Division(number(c.b), 0).Value(), c.quotient) << c.a << " / " << c.b;
    EXPECT_EQ(a.Division(number(c.b), 1).Value(), c.remainder) << c.a << " % " << c.b;
    EXPECT_EQ((a %= number(c.b)).Value(), c.remainder);
  }
}

TEST(KtInt64, division_by_zero_asserts_and_gives_zero) {
  static std::string said;
  KtAssertHandler old = KtSetAssertHandler([](const char* message, const char* source, int line) {
    said = message;
    said += '|';
    said += source;
    said += '|';
    said += std::to_string(line);
  });
  for (int64_t a : {int64_t{0}, int64_t{5}, int64_t{-5}, kMin}) {
    said.clear();
    EXPECT_EQ((number(a) / 0).Value(), 0);
    EXPECT_EQ(said, "0 && \"KtInt64 divide by zero\"|src\\ktint64|737");
    EXPECT_EQ((number(a) % 0).Value(), 0) << a;
  }
  KtSetAssertHandler(old);
}

TEST(KtInt64, sums_products_shifts_and_order_are_those_of_native_numbers) {
  const std::vector<int64_t> values = samples();
  for (int64_t a : values) {
    const auto ua = static_cast<uint64_t>(a);
    for (int64_t b : values) {
      const auto ub = static_cast<uint64_t>(b);
      const KtInt64 x = number(a);
      const KtInt64 y = number(b);
      ASSERT_TRUE((x + y).Bits() == ua + ub && (x - y).Bits() == ua - ub && (x * y).Bits() == ua * ub);
      ASSERT_TRUE((x | y).Value() == (a | b) && (x & y).Value() == (a & b) && (~x).Value() == ~a);
      ASSERT_TRUE((x == y) == (a == b) && (x != y) == (a != b) && (x < y) == (a < b));
      ASSERT_TRUE((x > y) == (a > b) && (x <= y) == (a <= b) && (x >= y) == (a >= b));
    }
    for (unsigned n : {0u, 1u, 31u, 32u, 33u, 63u}) {
      ASSERT_EQ((number(a) << n).Bits(), ua << n);
      ASSERT_EQ((number(a) >> n).Value(), a >> n);
    }
    for (unsigned n : {64u, 65u, 4000000000u}) {
      ASSERT_EQ((number(a) << n).Value(), 0);
      ASSERT_EQ((number(a) >> n).Value(), a < 0 ? -1 : 0);
    }
  }
  EXPECT_EQ((-number(kMin)).Value(), kMin);
  EXPECT_EQ(number(kMin).Abs().Value(), kMin);
  EXPECT_EQ(number(-5).Abs().Value(), 5);
}

TEST(KtInt64, compound_operators_change_the_number_and_give_it) {
  KtInt64 n(0xFFFFFFFFu);
  EXPECT_EQ((n += 1).Value(), 1LL << 32);  // carries into the high word
  EXPECT_EQ((n -= 1).Value(), 0xFFFFFFFFLL);
  EXPECT_EQ((n *= 16L).Value(), 0xFFFFFFFF0LL);
  EXPECT_EQ((n /= 15ul).Value(), 0x111111110LL);
  EXPECT_EQ((n <<= 4).Value(), 0x1111111100LL);
  EXPECT_EQ((n >>= 8).Value(), 0x11111111LL);
  EXPECT_EQ((n %= 2).Value(), 1);
  EXPECT_EQ((n++).Value(), 1);
  EXPECT_EQ((++n).Value(), 3);
  EXPECT_EQ((n--).Value(), 3);
  EXPECT_EQ((--n).Value(), 1);
  EXPECT_EQ(n.low, 1u);
  n = KtInt64(0);
  EXPECT_EQ((--n).high, -1);
}

template <class T>
void expectAllOrders(T five) {
  const KtInt64 n(5);
  EXPECT_EQ(KtInt64(five), n);
  EXPECT_TRUE(n == five && five == n && !(n != five) && !(five != n));
  EXPECT_TRUE(n <= five && five <= n && n >= five && five >= n);
  EXPECT_FALSE(n < five || five < n || n > five || five > n);
  EXPECT_EQ((n + five).Value(), 10);
  EXPECT_EQ((five - n).Value(), 0);
  EXPECT_EQ((five * n / five % n).Value(), 0);
  EXPECT_EQ((five | n).Value(), 5);
  KtInt64 assigned;
  assigned = five;
  EXPECT_EQ(assigned.Value(), 5);
}

TEST(KtInt64, numbers_of_every_type_stand_on_either_side) {
  expectAllOrders(5);
  expectAllOrders(5u);
  expectAllOrders(5L);
  expectAllOrders(5ul);
  expectAllOrders(5LL);
  expectAllOrders(static_cast<short>(5));
  expectAllOrders(static_cast<unsigned char>(5));
  expectAllOrders(5.0);
  static_assert(std::is_same_v<decltype(KtInt64(1) == 1), int>);
  static_assert(std::is_trivially_copyable_v<KtInt64>);
  EXPECT_EQ(KtInt64(-1).high, -1);
  EXPECT_EQ(KtInt64(0xFFFFFFFFu).high, 0);
  EXPECT_EQ(KtInt64(-1L).Value(), -1);
  EXPECT_EQ(KtInt64(std::numeric_limits<long>::min()).Value(), std::numeric_limits<long>::min());
  EXPECT_EQ(KtInt64(~0ul).Bits(), ~0ul);
  EXPECT_EQ(KtInt64(7, -2).Value(), 7 - 2 * (1LL << 32));
}

TEST(KtInt64, doubles_truncate_and_saturate) {
  struct Case {
    double in;
    int64_t out;
  };
  const double inf = std::numeric_limits<double>::infinity();
  const Case cases[] = {{2.9, 2},
                        {-2.9, -2},
                        {1e300, kMax},
                        {-1e300, kMin},
                        {inf, kMax},
                        {-inf, kMin},
                        {-0.0, 0},
                        {std::nan(""), 0},
                        {9223372036854775808.0, kMax},
                        {-9223372036854775808.0, kMin},
                        {4294967296.5, 1LL << 32}};
  for (const Case& c : cases) EXPECT_EQ(KtInt64(c.in).Value(), c.out) << c.in;
}

std::string printed(int64_t value, const char* format, const char* before = "") {
  KtString out(before);
  number(value).PrintToKtString(out, format);
  return out.StrGet();
}

TEST(KtInt64, appends_to_texts_of_any_length) {
  for (unsigned long length = 0; length < 200; ++length) {
    const std::string text(length, 'x');
    EXPECT_EQ(printed(-1234567890123, "%d", text.c_str()), text + "-1234567890123");
  }
}

struct PrintCase {
  int64_t value;
  const char* format;
  const char* text;
};

// clang-format off
const PrintCase kPrintCases[] = {
    {-255, "%x", "-0xff"}, {-255, "%o", "-0377"}, {-255, "[%S]", "[-255]"}, {255, "%X", "0XFF"}, {0, "%S", "0"},
    {0, "%o", "00"}, {0, "%x", "0x0"}, {kMin, "%S", "-9223372036854775808"}, {kMin, "%d", "-9223372036854775808"},
    {kMin, "%o", "01000000000000000000000"}, {kMin, "%x", "0x8000000000000000"}, {kMin, "%X", "0X8000000000000000"},
    {kMin + 1, "%x", "-0x7fffffffffffffff"}, {kMax, "%i", "9223372036854775807"},
    {kMax, "%o", "0777777777777777777777"}, {5, "%%d", "%5"}, {5, "%d%d and %i", "55 and 5"},
    {5, "%n%s%5d%", "%n%s%5d%"}, {5, "%u", "%u"}, {5, nullptr, "5"}, {5, "", ""},
};
// clang-format on

TEST(KtInt64, prints_behind_what_the_string_holds) {
  for (const PrintCase& c : kPrintCases) {
    std::string expected = "x=";
    expected += c.text;
    EXPECT_EQ(printed(c.value, c.format, "x="), expected);
  }
  KtString wide(253, 1);
  number(-12).PrintToKtString(wide, "%d;");
  EXPECT_EQ(wide.GetCodeSet(), 253);
  EXPECT_TRUE(wide == "-12;");
}

TEST(KtInt64, prints_and_scans_as_the_c_library_in_every_base_and_length) {
  std::vector<int64_t> values = samples();
  for (int64_t power = 1; power < kMax / 10; power *= 10) {
    for (int64_t v : {power - 1, power, power + 1}) values.push_back(v);
  }
  for (int bit = 1; bit < 63; ++bit) values.push_back((int64_t{1} << bit) - 1);
  std::mt19937_64 random(21);
  for (int i = 0; i < 3000; ++i) values.push_back(static_cast<int64_t>(random()) >> random() % 64);
  const std::string before(40, '.');  // behind it there is room in the block
  for (int64_t v : values) {
    if (v == kMin) continue;
    char expected[3][40];
    const auto magnitude = static_cast<unsigned long long>(v < 0 ? -v : v);
    const char* sign = v < 0 ? "-" : "";
    std::snprintf(expected[0], 40, "%lld", static_cast<long long>(v));
    std::snprintf(expected[1], 40, "%s0%llo", sign, magnitude);
    std::snprintf(expected[2], 40, "%s0x%llx", sign, magnitude);
    const char* formats[] = {"%S", "%o", "%x"};
    for (int i = 0; i < 3; ++i) {
      ASSERT_EQ(printed(v, formats[i]), expected[i]);
      ASSERT_EQ(printed(v, formats[i], before.c_str()), before + expected[i]);
      KtInt64 back(77);
      back.ScanFromKtString(KtString(expected[i]), "%S");
      ASSERT_EQ(back.Value(), v) << expected[i];
    }
  }
}

struct ScanCase {
  const char* in;
  const char* format;
  int64_t value;
};

// "31" under %x is base 10 text under a base-16 directive; a leading 0 is octal, which %d refuses. In "%S6" the number
// ends at the 6. Numbers beyond 64 bits wrap.
// clang-format off
const ScanCase kScanCases[] = {
    {"0x1F", "%x", 31}, {"0X1f", "%X", 31}, {"31", "%x", -1}, {"0", "%S", 0}, {"007", "%S", 7}, {"0", "%d", -1},
    {"007", "%i", -1}, {"007", "%o", 7}, {"7", "%o", -1}, {"08", "%S", -1}, {"-0x10", "%S", -16}, {"+12", "%d", 12},
    {"+-12", "%d", -1}, {" 12", "%S", -1}, {"12 ", "%S", -1}, {"12 ", "%S ", 12}, {"12a", "%S", -1},
    {"0x1g", "%S", -1}, {"0x@", "%S", -1}, {"0x`", "%S", -1}, {"0x:", "%S", -1}, {"0xAbCdEf", "%S", 0xABCDEF},
    {"0x", "%S", 0}, {"-", "%S", 0}, {"[255]", "[%S]", 255}, {"[255", "[%S]", -1}, {"(255]", "[%S]", -1},
    {"255]", "%S]tail", 255}, {"25565", "%S6", 255}, {"", "%S", 0}, {"", "", 0}, {"12", "", 0}, {"%5", "%%d", 5},
    {"9223372036854775808", "%S", kMin}, {"-9223372036854775808", "%S", kMin}, {"0x8000000000000000", "%S", kMin},
    {"01000000000000000000000", "%S", kMin}, {"18446744073709551617", "%S", 1},
    {"00000000000000000000000000000000000017", "%S", 15}, {"1234567\xB9", "%S", -1},
    {"999999999999999999999999", "%S", 2003764205206896639}, {"1000000000000000000000001", "%S", 2003764205206896641},
    {"123456789012345678901234567", "%S", -1055827308501316729},
    {"01234567012345670123456701", "%S", 6755767080614518209},
};
// clang-format on

TEST(KtInt64, scans_by_the_prefix_and_the_directive) {
  for (const ScanCase& c : kScanCases) {
    for (const bool wide : {false, true}) {
      KtString in(c.in);
      if (wide) in.SetCodeSet(253);
      KtInt64 n(99);
      n.ScanFromKtString(in, c.format);
      EXPECT_EQ(n.Value(), c.value) << c.in << " under " << c.format << (wide ? ", 16-bit" : "");
    }
  }
}

TEST(KtInt64, every_wrong_character_in_every_place_is_refused) {
  struct Base {
    const char* head;
    const char* digits;
  };
  for (const Base& base : {Base{"0x", "0123456789abcdefABCDEF"}, Base{"1", "0123456789"}, Base{"00", "01234567"}}) {
    for (std::size_t length = 1; length <= 24; ++length) {
      for (std::size_t at = 0; at < length; ++at) {
        for (int ch = 1; ch < 256; ++ch) {
          std::string text = base.head;
          const std::size_t place = text.size() + at;
          text.append(length, '1');
          text[place] = static_cast<char>(ch);
          KtInt64 n;
          n.ScanFromKtString(KtString(text.c_str()), "%S");
          ASSERT_EQ(n != -1, std::strchr(base.digits, ch) != nullptr) << text;
        }
      }
    }
  }
}

TEST(KtInt64, scans_nothing_of_what_its_block_held_before) {
  KtString in("987654321098765432109876543");
  for (const char* text : {"5", "1234567", "12345678", "123456789", "1234567890123456", "12345678901234567"}) {
    in = text;
    KtInt64 n;
    n.ScanFromKtString(in, "%S");
    EXPECT_EQ(n.Value(), std::strtoll(text, nullptr, 10));
    in = "98765432109876543210";
  }
}

TEST(KtInt64, row_hashes_both_words_in_every_format) {
  const KtInt64 values[2] = {KtInt64(0x01020304ul, 0x05060708), KtInt64(-2)};
  KtInt64 in[2] = {values[0], values[1]};
  for (const unsigned char format : Codes{0x02, 0xF2, 0x00, 0x34, 0x08, 0x01}) {
    unsigned char disk[17];
    ASSERT_EQ(mgr.Store(KT_ID_KtInt64, disk + 1, in, format, 2), 16u);
    KtInt64 back[2];
    EXPECT_EQ(mgr.Load(KT_ID_KtInt64, back, disk + 1, format, 2), 16u);
    EXPECT_TRUE(back[0] == values[0] && back[1] == values[1]);
    int status = 1;
    const auto word = std::uint32_t{0x01020304u ^ 0x05060708u ^ 1u};  // of -2: 0xFFFFFFFE ^ 0xFFFFFFFF
    EXPECT_EQ(mgr.Hash(KT_ID_KtInt64, 0, disk + 1, 2, format, status), std::uint32_t(word * 1103515245u));
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(mgr.DiskLenGet(KT_ID_KtInt64, nullptr, 2, 3, 8), 24u);
  EXPECT_EQ(mgr.DiskLenGetFromMemFile(KT_ID_KtInt64, nullptr, 4, 3), 24u);
}

TEST(KtInt64, row_prints_runs_converts_and_defaults_to_zero) {
  KtInt64 values[2] = {KtInt64(-1), KtInt64(1LL << 40)};
  KtString out("n: ");
  mgr.PrintToKtString(KT_ID_KtInt64, out, values, nullptr, 2);
  EXPECT_STREQ(out.StrGet(), "n: -1,1099511627776");
  KtTypeConvertData* texts = mgr.ConvertTo(KT_ID_KtInt64, values, 2);
  auto* back = static_cast<KtInt64*>(mgr.ConvertFrom(KT_ID_KtInt64, texts, 3));
  EXPECT_TRUE(back[0] == values[0] && back[1] == values[1] && back[2] == 0);  // the third has no text
  delete texts;
  mgr.Delete(KT_ID_KtInt64, back, 3);
  auto* zeros = static_cast<KtInt64*>(mgr.DefaultValue(KT_ID_KtInt64, 2, 1));
  EXPECT_TRUE(zeros[0] == 0 && zeros[1] == 0);
  mgr.Delete(KT_ID_KtInt64, zeros, 2);
  KtString in("0x10");
  EXPECT_EQ(mgr.ScanFromKtString(KT_ID_KtInt64, values, in, nullptr, 2), values);
  EXPECT_TRUE(values[0] == 16);
  EXPECT_EQ(mgr.SetNullValue(KT_ID_KtInt64, values), 0);
  EXPECT_TRUE(values[0] == 0);
}

TEST(KtInt64, prints_by_a_format_that_stands_in_the_target_itself) {
  KtString text("%S, %S;");
  KtInt64(7).PrintToKtString(text, text.StrGet());
  EXPECT_STREQ(text.StrGet(), "%S, %S;7, 7;");
}

}  // namespace
