// EvalAndBound: the share of an index that a comparison selects, and the keys that bound the scan. Values by hand.
#include "string_bytes.h"
#include "table/type_table.h"

#include <kttm.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using kt_test::Bytes;
using kt_test::hex;

constexpr double kLeast = 1.1920928955078125e-7;
constexpr const char* kUnset = "";

KtTypeMgr& manager() {
  static KtTypeMgr current(12);
  return current;
}

// Keys in hexadecimal; a range without bytes on a side is not set there.
struct Range {
  Range(const char* lowHex, const char* highHex) : low(hex(lowHex)), high(hex(highHex)) {
    if (!low.empty()) keys.lowKey = low.data();
    if (!high.empty()) keys.highKey = high.data();
    keys.lowKeyLength = static_cast<unsigned char>(low.size());
    keys.highKeyLength = static_cast<unsigned char>(high.size());
  }
  Bytes low, high;
  KtIdxBounds keys;
};

double shareOf(char id, unsigned char format, KtIdxBounds* range, const char* keyHex, unsigned short flags) {
  const kt_test::Block key(hex(keyHex));
  return static_cast<double>(manager().EvalAndBound(id, range, flags, key.get(), format, 1, nullptr, nullptr));
}

struct Case {
  char id;
  unsigned char format;
  const char *low, *high, *key;
  unsigned short flags;
  double share;
};

void expectShares(std::initializer_list<Case> cases) {
  for (const Case& c : cases) {
    Range range(c.low, c.high);
    const double share = shareOf(c.id, c.format, &range.keys, c.key, c.flags);
    EXPECT_NEAR(share, c.share, c.share * 1e-7) << manager().NameGet(c.id, nullptr) << " " << c.key << " in " << c.low
                                                << " to " << c.high << ", flags " << c.flags;
  }
}

// --- whole numbers ----------------------------------------------------------------------------------------------------

TEST(Estimate, counts_the_keys_that_a_comparison_selects) {
  constexpr const char *low = "00 00 00 00", *high = "00 00 00 63";  // 0 to 99
  constexpr const char *ten = "00 00 00 0A", *below = "FF FF FF FF", *above = "00 00 00 C8";
  expectShares({{KT_ID_long, 2, low, high, ten, 0, 0},
                {KT_ID_long, 2, low, high, ten, 1, 0.01},
                {KT_ID_long, 2, low, high, ten, 2, 0.1},
                {KT_ID_long, 2, low, high, ten, 3, 0.11},
                {KT_ID_long, 2, low, high, ten, 4, 0.89},
                {KT_ID_long, 2, low, high, ten, 5, 0.9},
                {KT_ID_long, 2, low, high, ten, 6, 0.99},
                {KT_ID_long, 2, low, high, ten, 7, 1},
                {KT_ID_long, 2, low, high, below, 4, 1},
                {KT_ID_long, 2, low, high, below, 3, 0},
                {KT_ID_long, 2, low, high, above, 2, 1},
                {KT_ID_long, 2, low, high, above, 5, 0},
                {KT_ID_long, 2, low, high, ten, 0xFFF9, 0.01},
                {KT_ID_long, 0, "00 00 00 00", "63 00 00 00", "0A 00 00 00", 2, 0.1}});
}

TEST(Estimate, reads_keys_in_the_width_and_sign_of_their_type) {
  expectShares({{KT_ID_char, 2, "80", "7F", "80", 4, 255.0 / 256},
                {KT_ID_char, 2, "80", "7F", "00", 2, 0.5},
                {KT_ID_KtByte, 2, "00", "FF", "80", 2, 0.5},
                {KT_ID_short, 2, "FF FE", "00 01", "FF FF", 2, 0.25},
                {KT_ID_KtWord, 2, "00 00", "FF FF", "FF FF", 2, 65535.0 / 65536},
                {KT_ID_int, 4, "00 00", "09 00", "05 00", 2, 0.5},
                {KT_ID_int, 4, "FB FF", "04 00", "00 00", 2, 0.5},
                {KT_ID_enum, 2, "00 00 00 00", "00 00 00 09", "00 00 00 05", 2, 0.5},
                {KT_ID_unsigned, 2, "00 00 00 00", "FF FF FF FF", "80 00 00 00", 2, 0.5},
                {KT_ID_unsigned, 4, "00 00", "FF FF", "FF FF", 1, 1.0 / 65536},
                {KT_ID_KtDWord, 2, "00 00 00 00", "FF FF FF FF", "80 00 00 00", 2, 0.5},
                {KT_ID_BlockId, 0, "00 00 00 00", "FF FF FF FF", "00 00 00 80", 2, 0.5}});
}

TEST(Estimate, ranges_wider_than_their_type_are_measured) {
  expectShares(
      {{KT_ID_long, 2, "80 00 00 00", "7F FF FF FF", "00 00 00 00", 2, 0.5},
       {KT_ID_long, 2, "80 00 00 00", "7F FF FF FF", "00 00 00 00", 1, 1 / 4294967296.0},
       {KT_ID_long, 2, "80 00 00 00", "7F FF FF FF", "80 00 00 00", 7, 1},
       {KT_ID_short, 2, "80 00", "7F FF", "00 00", 2, 0.5},
       // The low word comes first.
       {KT_ID_KtInt64, 2, "00 00 00 00 80 00 00 00", "FF FF FF FF 7F FF FF FF", "00 00 00 00 00 00 00 00", 2, 0.5},
       // Beyond 2^53: 2^53 to 2^53 + 8.
       {KT_ID_KtInt64, 2, "00 00 00 00 00 20 00 00", "00 00 00 08 00 20 00 00", "00 00 00 04 00 20 00 00", 2,
        4.0 / 9}});
}

TEST(Estimate, without_a_whole_range_there_is_none) {
  constexpr const char *low = "00 00 00 00", *high = "00 00 00 63", *ten = "00 00 00 0A";
  EXPECT_EQ(shareOf(KT_ID_long, 2, nullptr, ten, 7), 0);
  expectShares({{KT_ID_long, 2, kUnset, high, ten, 7, 0},
                {KT_ID_long, 2, low, kUnset, ten, 7, 0},
                {KT_ID_long, 2, "00 00 00", high, ten, 7, 0},
                {KT_ID_long, 2, low, "00 00 63", ten, 7, 0},
                {KT_ID_KtNull_long, 2, "00 00 00 00", "00 00 00 00 63", "00 00 00 00 0A", 7, 0},
                {KT_ID_long, 2, "00 00 00 00 FF", "00 00 00 63 FF", ten, 2, 0.1},
                {KT_ID_long, 2, high, low, ten, 7, 0}});  // no range at all
}

// --- reals ------------------------------------------------------------------------------------------------------------

TEST(Estimate, reals_have_a_least_share) {
  constexpr const char *zero = "00 00 00 00 00 00 00 00", *trillion = "42 6D 1A 94 A2 00 00 00";
  expectShares({{KT_ID_float, 2, "00 00 00 00", "3F 80 00 00", "3F 00 00 00", 2, 0.25},  // 0 to 1, 0.5
                {KT_ID_float, 2, "00 00 00 00", "3F 80 00 00", "3F 00 00 00", 1, 0.5},
                {KT_ID_float, 2, "00 00 00 00", "50 15 02 F9", "00 00 00 00", 1, kLeast},  // to 10^10
                {KT_ID_float, 2, "00 00 00 00", "50 15 02 F9", "00 00 00 00", 2, 0},
                {KT_ID_d_Interval, 2, "00 00 00 00", "50 15 02 F9", "00 00 00 00", 1, kLeast},
                {KT_ID_double, 2, zero, trillion, zero, 1, kLeast},
                {KT_ID_double, 2, zero, trillion, zero, 2, 0},
                {KT_ID_KtNull_double, 2, "00 00 00 00 00 00 00 00 00", "00 42 6D 1A 94 A2 00 00 00",
                 "00 00 00 00 00 00 00 00 00", 1, 1 / (1e12 + 1)}});
}

TEST(Estimate, terms_without_a_number_count_as_the_largest) {
  constexpr const char *zero = "00 00 00 00 00 00 00 00", *one = "3F F0 00 00 00 00 00 00";
  constexpr const char *lowest = "FF EF FF FF FF FF FF FF", *highest = "7F EF FF FF FF FF FF FF";
  constexpr const char *infinity = "7F F0 00 00 00 00 00 00", *minusInfinity = "FF F0 00 00 00 00 00 00";
  constexpr const char* nan = "7F F8 00 00 00 00 00 00";
  expectShares({{KT_ID_double, 2, lowest, highest, zero, 2, 1},
                {KT_ID_double, 2, lowest, highest, zero, 4, 1},
                {KT_ID_double, 2, lowest, highest, zero, 1, kLeast},
                {KT_ID_double, 2, minusInfinity, infinity, zero, 7, 1},
                {KT_ID_double, 2, zero, one, infinity, 2, 1},
                {KT_ID_double, 2, zero, one, infinity, 4, 1},  // 1 - infinity
                {KT_ID_double, 2, zero, one, nan, 1, 1},
                {KT_ID_double, 2, zero, one, nan, 4, 1},
                {KT_ID_double, 2, nan, one, zero, 1, kLeast},
                {KT_ID_float, 2, "FF 80 00 00", "7F 80 00 00", "00 00 00 00", 7, 1}});
}

// --- null -------------------------------------------------------------------------------------------------------------

TEST(Estimate, nulls_are_guessed) {
  constexpr const char *null = "01 00 00 00 00", *zero = "00 00 00 00 00", *five = "00 00 00 00 05";
  constexpr const char *nine = "00 00 00 00 09", *minusFive = "00 FF FF FF FB", *minusSeven = "00 FF FF FF F9";
  constexpr char id = KT_ID_KtNull_long;
  expectShares({{id, 2, zero, nine, five, 1, 0.1},
                {id, 2, zero, nine, five, 2, 0.5},
                {id, 2, zero, nine, five, 4, 0.4},
                {id, 2, null, nine, null, 1, 1e-4},
                {id, 2, null, nine, null, 2, 0},
                {id, 2, null, nine, null, 4, 0.05},
                {id, 2, zero, nine, null, 1, 0},
                {id, 2, zero, nine, null, 2, 0},
                {id, 2, zero, nine, null, 4, 0.05},
                {id, 2, null, nine, five, 1, 0.01},
                {id, 2, null, nine, five, 2, 0.05},
                {id, 2, null, nine, five, 4, 0.05},
                {id, 2, null, null, five, 7, 0},
                {id, 2, null, null, null, 1, 0.001},
                {id, 2, zero, null, five, 7, 0},
                {id, 2, null, minusFive, minusSeven, 4, 0.5},   // a divisor of -4 counts as 1
                {id, 2, null, minusFive, minusSeven, 7, 1},     // 1.1
                {id, 2, zero, nine, "02 00 00 00 05", 2, 0.5},  // a mark of 2 is no null
                {KT_ID_KtNull_char, 2, "01 00", "00 09", "01 00", 1, 1e-4},
                {KT_ID_KtNull_uchar, 2, "00 00", "00 FF", "00 80", 2, 0.5},
                {KT_ID_KtNull_int, 4, "00 00 00", "00 09 00", "00 05 00", 2, 0.5},
                {KT_ID_KtNull_KtInt64, 2, "01 00 00 00 00 00 00 00 00", "00 00 00 00 09 00 00 00 00",
                 "00 00 00 00 05 00 00 00 00", 1, 0.01}});
}

TEST(Estimate, nothing_is_beyond_infinity_where_keys_may_be_null) {
  constexpr const char *zero = "00 00 00 00 00 00 00 00 00", *one = "00 3F F0 00 00 00 00 00 00";
  constexpr const char *infinity = "00 7F F0 00 00 00 00 00 00", *minusInfinity = "00 FF F0 00 00 00 00 00 00";
  constexpr const char* nan = "00 7F F8 00 00 00 00 00 00";
  constexpr char id = KT_ID_KtNull_double;
  expectShares({{id, 2, zero, one, infinity, 4, 0},
                {id, 2, zero, one, infinity, 2, 1},
                {id, 2, zero, one, minusInfinity, 2, 0},
                {id, 2, zero, one, minusInfinity, 4, 1},
                {id, 2, zero, infinity, infinity, 4, 0},  // infinity - infinity
                {id, 2, zero, infinity, infinity, 2, 1},
                {id, 2, minusInfinity, infinity, zero, 4, 1},
                {id, 2, infinity, infinity, infinity, 1, 1},
                {id, 2, zero, one, nan, 1, 1},
                {KT_ID_KtNull_float, 2, "00 00 00 00 00", "00 3F 80 00 00", "00 7F 80 00 00", 4, 0}});
}

TEST(Estimate, booleans_select_a_third) {
  EXPECT_EQ(shareOf(KT_ID_KtBoolean, 2, nullptr, "01", 1), 0);
  expectShares({{KT_ID_KtBoolean, 2, "00", "01", "01", 1, 1.0 / 3}, {KT_ID_KtBoolean, 2, "00", kUnset, "01", 1, 0}});
}

// --- dates and times: by days, seconds, hundredths of a second ----------------------------------------------------------

TEST(Estimate, dates_and_times_count_by_their_numbers) {
  constexpr const char *first = "07 D0 01 01", *last = "07 D0 0C 1F", *eleventh = "07 D0 01 0B";  // of 366 days
  expectShares({{KT_ID_KtDate, 2, first, last, eleventh, 2, 10.0 / 366},
                {KT_ID_KtDate, 0, "D0 07 01 01", "D0 07 0C 1F", "D0 07 01 0B", 1, 1.0 / 366},
                {KT_ID_d_Date, 2, first, last, eleventh, 2, 10.0 / 366},
                // A null counts as day -10,251,263; 2000-01-01 is day 2,451,545.
                {KT_ID_KtDate, 2, "80 00 80 80", first, "80 00 80 80", 1, 1 / 12702809.0},
                {KT_ID_KtTime, 2, "00 00 00", "17 3B 3B", "0C 00 00", 2, 0.5},
                {KT_ID_KtTime, 2, "FF FF FF", "00 00 00", "FF FF FF", 1, 1 / 3662.0},  // -1:-1:-1 is -3661
                {KT_ID_KtDateTime, 2, "07 D0 01 01 00 00 00", "07 D0 01 02 17 3B 3B", "07 D0 01 02 00 00 00", 2, 0.5},
                {KT_ID_d_Time, 2, "00 00 00 00 00 00", "00 00 17 3B 3B 63", "00 00 06 00 00 00", 2, 0.25},
                // The zones from +00:00 to +01:00 are 61 days.
                {KT_ID_d_Time, 2, "00 00 00 00 00 00", "01 00 17 3B 3B 63", "01 00 00 00 00 00", 2, 60.0 / 61},
                {KT_ID_d_Timestamp, 2, "07 D0 01 01 00 00 00 00 00 00", "07 D0 01 01 00 00 17 3B 3B 63",
                 "07 D0 01 01 02 00 0E 00 00 00", 2, 0.5}});
}

// --- identities -------------------------------------------------------------------------------------------------------

TEST(Estimate, object_ids_count_65535_to_a_step_of_high) {
  constexpr const char *zero = "00 00 00 00 00 00 00 00 00 00", *five = "00 00 00 07 00 00 00 05 00 00";
  expectShares({{KT_ID_KtObjId, 2, zero, "00 00 00 00 00 00 00 09 00 00", five, 2, 0.5},
                {KT_ID_KtObjId, 0, zero, "00 00 00 00 09 00 00 00 00 00", "07 00 00 00 05 00 00 00 00 00", 2, 0.5},
                {KT_ID_KtObjId, 2, zero, "00 00 00 00 00 00 00 00 00 01", "00 00 00 00 00 00 80 00 00 00", 2, 0.5},
                // Without a range: from 0 to 0.
                {KT_ID_KtObjId, 2, kUnset, kUnset, five, 2, 1},
                {KT_ID_KtObjId, 2, kUnset, kUnset, five, 5, 0},
                {KT_ID_KtObjId, 2, kUnset, kUnset, zero, 1, 1}});
}

TEST(Estimate, references_are_a_share_of_all_there_can_be) {
  constexpr const char* zero = "00 00 00 00 00 00 00 00 00 00 00 00 00 00";
  constexpr const char* one = "00 00 00 00 00 00 00 01 00 00 00 00 00 00";
  constexpr const char* middle = "00 00 00 00 00 00 00 00 00 00 80 00 00 00";  // database 32768
  constexpr const char* all = "FF FF FF FF FF FF FF FF FF FF FF FF FF FF";
  constexpr double kAll = 18446744065119617024.0;
  for (const char* key : {zero, one, middle, all})
    EXPECT_FLOAT_EQ(static_cast<float>(shareOf(KT_ID_KtRef, 2, nullptr, key, 7)), 1) << key;
  expectShares({{KT_ID_KtRef, 2, kUnset, kUnset, one, 2, 1 / kAll},
                {KT_ID_KtRef, 2, kUnset, kUnset, middle, 1, 1 / kAll},
                {KT_ID_KtRef, 2, kUnset, kUnset, middle, 2, 32768.0 * 65535 * 4294967295.0 / kAll},
                {KT_ID_KtRef, 2, zero, one, zero, 2, 0},
                {KT_ID_KtRef, 2, zero, one, zero, 4, 1}});
  unsigned short flags = 0xFFFF;
  Bytes key = hex(zero);
  manager().EvalAndBound(KT_ID_KtRef, nullptr, flags, key.data(), 2, 1, nullptr, nullptr);
  EXPECT_EQ(flags, 0x800F);
}

TEST(Estimate, class_ids_select_everything_and_bound_nothing) {
  unsigned short flags = 0xFFF0;
  Bytes key = hex("00 01 00 01");
  KtIdxBounds result;
  EXPECT_EQ(manager().EvalAndBound(KT_ID_KtClassId, nullptr, flags, key.data(), 2, 1, &result, nullptr), 1);
  EXPECT_EQ(flags, 0xFFF0);
  EXPECT_EQ(result.lowKey, nullptr);
  EXPECT_EQ(result.highKey, nullptr);
}

TEST(Estimate, seals_are_48_bit_numbers_in_every_format) {
  EXPECT_EQ(shareOf(KT_ID_KtSeal, 2, nullptr, "00 00 00 00 00 05", 7), 0);
  expectShares({{KT_ID_KtSeal, 0, "00 00 00 00 00 00", "00 00 00 00 00 09", "00 00 00 00 00 05", 2, 0.5},
                {KT_ID_KtSeal, 2, "00 00 00 00 00 00", "00 01 FF FF FF FF", "00 01 00 00 00 00", 2, 0.5}});
}

// --- bounds -----------------------------------------------------------------------------------------------------------

Bytes bytesOf(const unsigned char* key, unsigned char length) {
  return key == nullptr ? Bytes{} : Bytes(key, key + length);
}

TEST(Estimate, records_the_key_as_the_bounds_that_the_flags_leave) {
  struct BoundCase {
    char id;
    unsigned char format;
    const char* key;
    unsigned long count;
    unsigned short flags, masked;
    const char *low, *high;
  };
  const BoundCase cases[] = {
      {KT_ID_long, 2, "00 00 00 0A", 1, 1, 1, "00 00 00 0A", "00 00 00 0A"},
      {KT_ID_long, 2, "00 00 00 0A", 1, 2, 2, kUnset, "00 00 00 0A"},
      {KT_ID_long, 2, "00 00 00 0A", 1, 0xFFF5, 0x8005, "00 00 00 0A", kUnset},
      {KT_ID_long, 2, "00 00 00 0A", 1, 6, 6, kUnset, kUnset},
      {KT_ID_long, 2, "00 00 00 0A 00 00 00 0B", 2, 3, 3, kUnset, "00 00 00 0A 00 00 00 0B"},
      {KT_ID_int, 4, "0A 00 0B 00", 2, 1, 1, "0A 00 0B 00", "0A 00 0B 00"},
      {KT_ID_KtNull_int, 4, "00 0A 00", 1, 1, 1, "00 0A 00", "00 0A 00"},
      {KT_ID_KtNull_double, 2, "00 3F F0 00 00 00 00 00 00", 1, 2, 2, kUnset, "00 3F F0 00 00 00 00 00 00"},
      {KT_ID_KtDateTime, 2, "07 D0 01 01 00 00 00", 1, 4, 4, "07 D0 01 01 00 00 00", kUnset},
      {KT_ID_KtBoolean, 2, "01", 1, 1, 1, "01", "01"},
      {KT_ID_KtRef, 2, "00 00 00 03 00 00 00 02 00 00 00 05 00 09", 1, 0xFFF2, 0x8002, kUnset,
       "00 00 00 03 00 00 00 02 00 00 00 05 00 09"},
      {KT_ID_KtBlob, 2, "00 00 00 04 FF FF FF FF", 1, 0xFFFF, 0xFFFF, kUnset, kUnset},
  };
  for (const BoundCase& c : cases) {
    SCOPED_TRACE(std::string(manager().NameGet(c.id, nullptr)) + " " + c.key);
    const kt_test::Block key(hex(c.key));
    unsigned short flags = c.flags;
    manager().EvalAndBound(c.id, nullptr, flags, key.get(), c.format, c.count, nullptr, nullptr);
    EXPECT_EQ(flags, c.id == KT_ID_KtRef ? c.masked : c.flags);  // where nothing is recorded
    flags = c.flags;
    KtIdxBounds result;
    EXPECT_EQ(manager().EvalAndBound(c.id, nullptr, flags, key.get(), c.format, c.count, &result, nullptr) > 0,
              c.id == KT_ID_KtRef);
    EXPECT_EQ(flags, c.masked);
    EXPECT_EQ(bytesOf(result.lowKey, result.lowKeyLength), hex(c.low));
    EXPECT_EQ(bytesOf(result.highKey, result.highKeyLength), hex(c.high));
    KtFreeIdxBounds(&result);
  }
}

TEST(Estimate, cuts_bounds_at_the_longest_key_and_takes_the_first_value) {
  const Range range("00 00", "00 09");
  const kt_test::Block run(Bytes(2 * 200, 0));
  run.get()[1] = 5;
  KtIdxBounds known = range.keys;
  KtIdxBounds result;
  unsigned short flags = 3;
  EXPECT_FLOAT_EQ(manager().EvalAndBound(KT_ID_short, &known, flags, run.get(), 2, 200, &result, nullptr), 0.6F);
  EXPECT_EQ(result.highKeyLength, 254);
  EXPECT_EQ(bytesOf(result.highKey, 254), Bytes(run.get(), run.get() + 254));
  KtFreeIdxBounds(&result);
}

TEST(Estimate, of_no_values_is_nothing) {
  Range range("00 00", "00 09");
  unsigned short flags = 7;
  for (const char id : {KT_ID_short, KT_ID_KtNull_char, KT_ID_KtObjId, KT_ID_KtRef}) {
    KtIdxBounds empty;
    EXPECT_EQ(manager().EvalAndBound(id, &range.keys, flags, nullptr, 2, 0, nullptr, nullptr), 0);
    flags = KtBOUND_EQUAL;
    EXPECT_EQ(manager().EvalAndBound(id, &range.keys, flags, nullptr, 2, 0, &empty, nullptr), 0);
    EXPECT_NE(empty.lowKey, nullptr);
    EXPECT_EQ(empty.lowKeyLength, 0);
    KtFreeIdxBounds(&empty);
  }
}

// --- rows -------------------------------------------------------------------------------------------------------------

TEST(Estimate, rows_share_their_estimate_where_they_share_their_numbers) {
  const auto rows = kt::currentTypeTable();
  const auto isShared = [&](int a, int b) { return rows[a]->EvalAndBound == rows[b]->EvalAndBound; };
  EXPECT_TRUE(isShared(KT_ID_BlockId, KT_ID_KtDWord));
  EXPECT_TRUE(isShared(KT_ID_enum, KT_ID_int));
  EXPECT_TRUE(isShared(KT_ID_d_Interval, KT_ID_float));
  EXPECT_FALSE(isShared(KT_ID_KtWord, KT_ID_short));
  EXPECT_FALSE(isShared(KT_ID_KtDWord, KT_ID_long));
  EXPECT_FALSE(isShared(KT_ID_unsigned, KT_ID_int));
  EXPECT_FALSE(isShared(KT_ID_KtByte, KT_ID_char));
}

TEST(Estimate, every_type_of_fixed_size_has_one) {
  const auto rows = kt::currentTypeTable();
  std::set<std::string> without;
  for (int id = 0; id < KtTYPE_COUNT; ++id) {
    if (id != KT_ID_illegal && rows[id]->IsFixed == 1 && rows[id]->EvalAndBound == rows[KT_ID_illegal]->EvalAndBound)
      without.insert(rows[id]->Name);
  }
  EXPECT_EQ(without, std::set<std::string>{});
}

}  // namespace
