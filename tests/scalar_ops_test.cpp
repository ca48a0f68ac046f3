// The plain scalar rows through the type manager: storage, sizes, translation, text, hash, defaults.
#include <kttm.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

KtTypeMgr mgr(12);

std::string text(const KtString& s) { return s.StrGet(); }

std::string printed(char id, void* values, const char* format, unsigned long count = 1) {
  KtString out("old");
  mgr.PrintToKtString(id, out, values, format, count);
  return text(out);
}

TEST(ScalarOps, sizes_follow_the_format_only_for_int) {
  struct Case {
    int id;
    unsigned long size, shortIntSize;
  };
  const Case cases[] = {{KT_ID_char, 1, 1},     {KT_ID_KtByte, 1, 1},  {KT_ID_short, 2, 2},   {KT_ID_KtWord, 2, 2},
                        {KT_ID_long, 4, 4},     {KT_ID_KtDWord, 4, 4}, {KT_ID_BlockId, 4, 4}, {KT_ID_int, 4, 2},
                        {KT_ID_unsigned, 4, 2}, {KT_ID_enum, 4, 2},    {KT_ID_float, 4, 4},   {KT_ID_double, 8, 8}};
  for (const Case& c : cases) {
    const char id = static_cast<char>(c.id);
    SCOPED_TRACE(mgr.NameGet(id, nullptr));
    for (const unsigned char format : std::initializer_list<unsigned char>{0, 1, 2, 8, 0x92, 0xF8}) {
      EXPECT_EQ(mgr.DiskLenGet(id, nullptr, format, 5, 8), 5 * c.size);
      EXPECT_EQ(mgr.DiskLenGetFromMemFile(id, nullptr, format, 5), 5 * c.size);
    }
    EXPECT_EQ(mgr.DiskLenGet(id, nullptr, 4, 5, 8), 5 * c.shortIntSize);
    EXPECT_EQ(mgr.DiskLenGetFromMemFile(id, nullptr, 4, 5), 5 * c.shortIntSize);
  }
}

TEST(ScalarOps, translate_converts_to_and_from_memory_and_copies_between_disk_forms) {
  std::int32_t values[3] = {1, -2, 0x01020304};
  unsigned char disk[12];
  std::int32_t back[3] = {};
  EXPECT_EQ(mgr.Translate(KT_ID_long, back, 8, 12, values, 8, 12, 3), 12u);
  EXPECT_EQ(std::memcmp(back, values, 12), 0);
  EXPECT_EQ(mgr.Translate(KT_ID_long, disk, 2, 12, values, 0x18, 12, 3), 12u);
  const unsigned char big[] = {0, 0, 0, 1, 0xFF, 0xFF, 0xFF, 0xFE, 1, 2, 3, 4};
  EXPECT_EQ(std::memcmp(disk, big, 12), 0);
  std::memset(back, 0, sizeof back);
  EXPECT_EQ(mgr.Translate(KT_ID_long, back, 9, 12, disk, 2, 12, 3), 12u);
  EXPECT_EQ(std::memcmp(back, values, 12), 0);
  // Disk to disk: no byte order, cut or cleared behind.
  unsigned char target[4] = {9, 9, 9, 9};
  EXPECT_EQ(mgr.Translate(KT_ID_long, target, 2, 4, disk + 8, 0, 2, 1), 2u);
  const unsigned char cleared[] = {1, 2, 0, 0};
  EXPECT_EQ(std::memcmp(target, cleared, 4), 0);
  EXPECT_EQ(mgr.Translate(KT_ID_long, target, 2, 3, disk + 8, 0, 4, 1), 3u);
}

TEST(ScalarOps, two_byte_ints_come_back_by_their_own_signedness) {
  std::int32_t values[2] = {-1, 40000};
  unsigned char disk[4];
  std::int32_t back[2];
  for (char id : {KT_ID_int, KT_ID_enum}) {
    EXPECT_EQ(mgr.Translate(id, disk, 4, 4, values, 8, 8, 2), 4u);
    EXPECT_EQ(mgr.Translate(id, back, 8, 8, disk, 4, 4, 2), 4u);
    EXPECT_EQ(back[0], -1);
    EXPECT_EQ(back[1], 40000 - 65536);
  }
  EXPECT_EQ(mgr.Store(KT_ID_unsigned, disk, values, 4, 2), 4u);
  EXPECT_EQ(mgr.Load(KT_ID_unsigned, back, disk, 4, 2), 4u);
  EXPECT_EQ(back[0], 65535);
  EXPECT_EQ(back[1], 40000);
}

TEST(ScalarOps, assignment_copies_or_fills_and_keeps_every_bit) {
  std::uint32_t signalling = 0x7FA00001;  // a signalling NaN: moving it as a number would change it
  std::uint32_t run[3] = {};
  mgr.AssignmentPtrGet(KT_ID_float)(run, &signalling, 3, 1);
  for (std::uint32_t bits : run) EXPECT_EQ(bits, signalling);
  std::uint32_t other[3] = {1, 2, 3};
  mgr.CopyPtrGet(KT_ID_float)(run, other, 3, 0);
  EXPECT_EQ(std::memcmp(run, other, sizeof run), 0);
  mgr.ConstructorPtrGet(KT_ID_float)(run, 2, 0);
  EXPECT_EQ(run[0] | run[1], 0u);
  EXPECT_EQ(run[2], 3u);
}

struct TextCase {
  int id;
  double value;      // stored into the type
  const char* text;  // of ConvertTo
};

TEST(ScalarOps, conversion_to_text_and_back) {
  // KtWord and KtDWord above the signed range print negative; characters print as signed codes.
  const TextCase cases[] = {{KT_ID_char, 65, "65"},
                            {KT_ID_KtByte, 200, "-56"},
                            {KT_ID_short, -7, "-7"},
                            {KT_ID_KtWord, 65535, "-1"},
                            {KT_ID_long, -2147483648.0, "-2147483648"},
                            {KT_ID_KtDWord, 4294967295.0, "-1"},
                            {KT_ID_int, 12, "12"},
                            {KT_ID_unsigned, 3000000000.0, "-1294967296"},
                            {KT_ID_enum, 3, "3"},
                            {KT_ID_float, 0.5, "0.5"},
                            {KT_ID_double, 1e300, "1e+300"},
                            {KT_ID_BlockId, 8, "8"}};
  for (const TextCase& c : cases) {
    const char id = static_cast<char>(c.id);
    SCOPED_TRACE(mgr.NameGet(id, nullptr));
    unsigned char value[8] = {};
    const auto bits = static_cast<std::uint32_t>(static_cast<std::int64_t>(std::fmod(c.value, 9e18)));
    if (id == KT_ID_double) {
      std::memcpy(value, &c.value, 8);
    } else if (id == KT_ID_float) {
      const auto narrow = static_cast<float>(c.value);
      std::memcpy(value, &narrow, 4);
    } else if (mgr.MemLenGet(id, 1) == 4) {
      std::memcpy(value, &bits, 4);
    } else {
      const auto word = static_cast<std::uint16_t>(bits);
      if (mgr.MemLenGet(id, 1) == 2) std::memcpy(value, &word, 2);
      value[0] = mgr.MemLenGet(id, 1) == 1 ? static_cast<unsigned char>(bits) : value[0];
    }
    std::unique_ptr<KtTypeConvertData> holder(mgr.ConvertTo(id, value, 1));
    ASSERT_NE(holder, nullptr);
    EXPECT_EQ(holder->typeManager, &mgr);
    EXPECT_EQ(text(*holder->GetString(0)), c.text);
    EXPECT_EQ(holder->GetString(1), nullptr);
    EXPECT_EQ(holder->GetString(-1), nullptr);
    void* back = mgr.ConvertFrom(id, holder.get(), 1);
    EXPECT_EQ(std::memcmp(back, value, mgr.MemLenGet(id, 1)), 0);
    mgr.Delete(id, back, 1);
  }
}

TEST(ScalarOps, missing_and_null_strings_convert_like_empty_ones_and_default_is_zero) {
  for (int i = 0; i <= KT_ID_BlockId; ++i) {
    const char id = static_cast<char>(i);
    if (mgr.SupportsNullValue(id)) continue;
    SCOPED_TRACE(mgr.NameGet(id, nullptr));
    const unsigned long bytes = mgr.MemLenGet(id, 3);
    const std::vector<unsigned char> zeros(bytes, 0);
    KtString strings[2] = {KtString(""), KtString("")};
    strings[1].SetNullValue();
    KtTypeConvertData holder(KT_ID_KtString, 2, strings, nullptr);
    void* converted = mgr.ConvertFrom(id, &holder, 3);
    holder.typeManager = nullptr;
    EXPECT_EQ(std::memcmp(converted, zeros.data(), bytes), 0);
    mgr.Delete(id, converted, 3);
    void* defaults = mgr.DefaultValue(id, 3, 1);
    EXPECT_EQ(std::memcmp(defaults, zeros.data(), bytes), 0);
    mgr.Delete(id, defaults, 3);
    std::vector<unsigned char> value(8, 0x55);
    EXPECT_EQ(mgr.SetNullValue(id, value.data()), 0);
    EXPECT_EQ(std::memcmp(value.data(), zeros.data(), mgr.MemLenGet(id, 1)), 0);
    EXPECT_EQ(mgr.IsNullValue(id, value.data()), 0);
  }
}

TEST(ScalarOps, text_beyond_the_stored_width_saturates_at_32_bits) {
  KtString strings[2] = {KtString("99999999999"), KtString("-99999999999")};
  KtTypeConvertData holder(KT_ID_KtString, 2, strings, nullptr);
  for (char id : {KT_ID_long, KT_ID_int}) {
    auto* values = static_cast<std::int32_t*>(mgr.ConvertFrom(id, &holder, 2));
    EXPECT_EQ(values[0], 2147483647);
    EXPECT_EQ(values[1], -2147483647 - 1);
    mgr.Delete(id, values, 2);
  }
  holder.typeManager = nullptr;
}

TEST(ScalarOps, what_the_output_held_does_not_matter) {
  const KtString before[] = {KtString(),
                             KtString("old"),
                             KtString("a\0b", 3),
                             KtString(std::string(30, 'x').c_str()),
                             KtString(static_cast<unsigned short>('w')),
                             KtString(std::string(100, 'x').c_str())};
  std::int32_t value = -2147483647;
  double real = -1234.5;
  for (const KtString& held : before) {
    for (const char* format : {"%d", "%16d", "%016d", "%+d", "%-40d|"}) {
      KtString out(held);
      out.SetLanguage(3);
      char expected[64];
      std::snprintf(expected, sizeof expected, format, value);
      EXPECT_EQ(text(mgr.PrintToKtString(KT_ID_int, out, &value, format, 1)), expected);
      EXPECT_EQ(out.Len(), std::strlen(expected));
      EXPECT_EQ(out.GetCodeSet(), KtString::GetDefault8CodeSet());
      EXPECT_EQ(out.GetLanguage(), KtString::GetDefaultLanguage());
      EXPECT_EQ(text(out += "!"), std::string(expected) + "!");
    }
    KtString out(held);
    EXPECT_EQ(text(mgr.PrintToKtString(KT_ID_double, out, &real, "%.2f", 1) += '!'), "-1234.50!");
  }
  KtString itself("%08x");
  EXPECT_EQ(text(mgr.PrintToKtString(KT_ID_int, itself, &value, itself.buffer, 1)), "80000001");
}

TEST(ScalarOps, printing_replaces_the_output_and_arrays_are_joined) {
  std::int32_t longs[3] = {1, 2, 3};
  EXPECT_EQ(printed(KT_ID_long, longs, nullptr), "1");
  EXPECT_EQ(printed(KT_ID_long, longs, nullptr, 0), "1");
  EXPECT_EQ(printed(KT_ID_long, longs, "<%05ld>"), "<00001>");
  EXPECT_EQ(printed(KT_ID_BlockId, longs, nullptr), "#1");
  KtString out;
  EXPECT_EQ(text(mgr.PrintToKtString(KT_ID_long, out, longs, nullptr, 3)), "1,2,3");
  std::uint16_t word = 65535;
  EXPECT_EQ(printed(KT_ID_KtWord, &word, nullptr), "65535");
  EXPECT_EQ(printed(KT_ID_short, &word, nullptr), "-1");
  EXPECT_EQ(printed(KT_ID_KtWord, &word, "%d"), "-1");  // 16-bit values are passed sign-extended
  char chars[] = {'A', 7, '\xE9', '%'};
  EXPECT_EQ(printed(KT_ID_char, chars, nullptr, 2), "A0x07");
  EXPECT_EQ(printed(KT_ID_KtByte, chars, "[%c]", 4), "[A]0x070xe9[%]");
  EXPECT_EQ(printed(KT_ID_char, chars, nullptr, 0), "");
}

TEST(ScalarOps, hostile_formats_print_as_literal_text) {
  std::int32_t value = 5;
  for (const char* format : {"%n", "%s", "%*d", "%5$d", "%", "%f"}) {
    EXPECT_EQ(printed(KT_ID_long, &value, format), format);
  }
  const std::string wide = "%" + std::string(10000, '9') + "d";
  EXPECT_LE(printed(KT_ID_long, &value, wide.c_str()).size(), 511u);
}

TEST(ScalarOps, scanning_sets_the_first_value_or_nothing) {
  std::int32_t values[2] = {7, 7};
  KtString in(" 42 43");
  EXPECT_EQ(mgr.ScanFromKtString(KT_ID_long, values, in, nullptr, 2), values);
  EXPECT_EQ(values[0], 42);
  EXPECT_EQ(values[1], 7);
  KtString no("none");
  mgr.ScanFromKtString(KT_ID_long, values, no, nullptr, 1);
  EXPECT_EQ(values[0], 42);
  EXPECT_EQ(mgr.ScanFromKtString(KT_ID_long, nullptr, in, nullptr, 1), nullptr);
  const unsigned short wideText[] = {'#', '9', 0};
  KtString wide(wideText);
  std::uint32_t block = 0;
  mgr.ScanFromKtString(KT_ID_BlockId, &block, wide, nullptr, 1);
  EXPECT_EQ(block, 9u);
  std::int16_t words[2] = {1, 2};
  KtString large("70000");
  mgr.ScanFromKtString(KT_ID_short, words, large, nullptr, 1);
  EXPECT_EQ(words[0], 70000 - 65536);
  EXPECT_EQ(words[1], 2);
}

TEST(ScalarOps, characters_scan_one_text_character_an_element) {
  struct Case {
    const char* in;
    unsigned char expected[3];
  };
  // A number 0x.. is read whole, but only one character is stepped over.
  const Case cases[] = {{"B", {'B', 9, 9}}, {"0x41", {0x41, 'x', '4'}}, {"A0x7F", {'A', 0x7F, 'x'}}, {"", {9, 9, 9}}};
  for (const Case& c : cases) {
    unsigned char values[3] = {9, 9, 9};
    KtString in(c.in);
    mgr.ScanFromKtString(KT_ID_char, values, in, nullptr, 3);
    EXPECT_EQ(std::memcmp(values, c.expected, 3), 0) << c.in;
  }
}

TEST(ScalarOps, doubles_survive_the_mantissa_and_exponent_form) {
  const double limits[] = {0.1, -1.0 / 3, 5e-324, std::numeric_limits<double>::max(), 0.0, -0.0, 1.0, 1e22};
  for (double value : limits) {
    KtString out;
    mgr.PrintToKtString(KT_ID_double, out, &value, "ldexp(%.17g,%d)", 1);
    double back = 7;
    mgr.ScanFromKtString(KT_ID_double, &back, out, "ldexp(%.17g,%d)", 1);
    EXPECT_EQ(std::memcmp(&back, &value, 8), 0) << text(out);
  }
}

TEST(ScalarOps, hashes_are_the_exclusive_or_of_words_times_the_factor_in_every_form) {
  struct Case {
    int id;
    std::vector<std::int32_t> values;
    std::uint32_t word;  // worked by hand
  };
  const Case cases[] = {{KT_ID_long, {1, 2, 4}, 7},
                        {KT_ID_long, {-1}, 0xFFFFFFFFu},
                        {KT_ID_KtDWord, {-1}, 0xFFFFFFFFu},
                        {KT_ID_int, {-1, 5}, 0xFFFFFFFAu},
                        {KT_ID_long, {3, 3}, 0}};
  for (const Case& c : cases) {
    const char id = static_cast<char>(c.id);
    for (const unsigned char format : std::initializer_list<unsigned char>{8, 1, 0, 2, 4}) {
      std::vector<std::int32_t> values = c.values;
      std::vector<unsigned char> disk(values.size() * 4);
      mgr.Store(id, disk.data(), values.data(), format, values.size());
      int status = 1;
      EXPECT_EQ(mgr.Hash(id, 0, disk.data(), values.size(), format, status), std::uint32_t(c.word * 1103515245u));
      EXPECT_EQ(status, 0);
    }
  }
  std::int16_t shorts[] = {-1, 1};
  int status;
  EXPECT_EQ(mgr.Hash(KT_ID_short, 0, shorts, 2, 8, status), std::uint32_t(0xFFFFFFFEu * 1103515245u));
  EXPECT_EQ(mgr.Hash(KT_ID_KtWord, 0, shorts, 2, 8, status), std::uint32_t(0x0000FFFEu * 1103515245u));
  EXPECT_EQ(mgr.Hash(KT_ID_short, 3, shorts, 2, 8, status), std::uint32_t(0xFFFFFFFFu * 1103515245u));
  EXPECT_EQ(status, 2101);
  EXPECT_EQ(mgr.Hash(KT_ID_short, 0, shorts, 0, 8, status), 0u);
}

// Numbers of either sign, next to none the exceptions of the hash: zeros, NaNs, and what looks like them in its upper half.
std::pair<double, double> equalDoubles(std::mt19937& random, unsigned exceptions) {
  const double number = (static_cast<double>(random()) - 2e9) / 7;
  if (random() % 1000 >= exceptions) return {number, number};
  switch (random() % 4) {
    case 0: return {0.0, -0.0};
    case 1: return {std::nan("1"), -std::nan("2")};
    case 2: return {-5e-324, -5e-324};
    default: return {-HUGE_VAL, -HUGE_VAL};
  }
}

TEST(ScalarOps, equal_numbers_hash_alike_in_every_form_and_run_length) {
  std::mt19937 random(3);
  for (int round = 0; round < 400; ++round) {
    const unsigned exceptions = round % 3 == 0 ? 0 : round % 3 == 1 ? 3 : 300;  // of a thousand
    const unsigned long count = 1 + random() % 700;
    std::vector<double> values(count), same(count);
    for (unsigned long i = 0; i < count; ++i) std::tie(values[i], same[i]) = equalDoubles(random, exceptions);
    std::vector<unsigned char> disk(count * 8 + 1);
    int status;
    const unsigned long hash = mgr.Hash(KT_ID_double, 0, values.data(), count, 8, status);
    for (const unsigned char format : std::initializer_list<unsigned char>{0, 1, 2}) {
      mgr.Store(KT_ID_double, disk.data() + 1, same.data(), format, count);
      EXPECT_EQ(mgr.Hash(KT_ID_double, 0, disk.data() + 1, count, format, status), hash) << count;
    }
    values[count - 1] += 1;
    const bool isSame = same[count - 1] == values[count - 1] || std::isnan(values[count - 1]);
    EXPECT_EQ(mgr.Hash(KT_ID_double, 0, values.data(), count, 8, status) == hash, isSame) << count;
  }
}

TEST(ScalarOps, impossible_allocations_give_null_and_tell_the_memory_handler) {
  static int calls;
  calls = 0;
  KtMemoryHandler old = KtSetMemoryHandler([](unsigned long) { ++calls; });
  EXPECT_EQ(mgr.Create(KT_ID_double, ~0ul / 2), nullptr);
  KtSetMemoryHandler(old);
  EXPECT_EQ(calls, 1);
  auto* chars = static_cast<char*>(mgr.Create(KT_ID_char, 4));
  EXPECT_EQ(std::memcmp(chars, "\0\0\0\0", 4), 0);
  EXPECT_EQ(mgr.Delete(KT_ID_char, chars, 4), nullptr);
}

}  // namespace
