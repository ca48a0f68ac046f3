#include "laws/samples.h"

#include <bit>
#include <initializer_list>
#include <utility>

namespace kt_laws {
namespace {

using Samples = std::vector<Sample>;
using Exceptions = std::vector<Exception>;

Sample null() { return {"null", Sample::kNull, "", nullptr, false}; }
Sample text(const char* name, const char* content) { return {name, Sample::kText, content, nullptr, false}; }
Sample bytes(const char* name, const char* hex) { return {name, Sample::kBytes, hex, nullptr, false}; }
Sample scan(const char* name, const char* format, const char* content) {
  return {name, Sample::kScan, content, format, false};
}
Sample equal(Sample sample) {
  sample.isEqual = true;
  return sample;
}

Samples operator+(Samples a, const Samples& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
Exceptions operator+(Exceptions a, const Exceptions& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Texts are those of signed numbers in every row: the highest bits of an unsigned number read as a sign.
Samples numbers(bool isSigned, const char* topBit, const char* lowBits) {
  const Samples high = {text("top_bit", topBit), text("all_bits", "-1")};
  const Samples low = {text("zero", "0"), text("one", "1"), text("letter", "65"), text("low_bits", lowBits)};
  return isSigned ? high + low : low + high;
}

Row chars(char id, const char* stem, bool isSigned) { return {id, stem, "%c", numbers(isSigned, "-128", "127"), {}}; }
Row shorts(char id, const char* stem, const char* format, bool isSigned) {
  return {id, stem, format, numbers(isSigned, "-32768", "32767"), {}};
}
Row longs(char id, const char* stem, const char* format, bool isSigned) {
  return {id, stem, format, numbers(isSigned, "-2147483648", "2147483647"), {}};
}

// What code 4 does to an int that does not fit into two bytes.
Exceptions cutInt(const char* sample) {
  constexpr char kReason[] = "code 4 keeps the low two bytes of an int";
  return {{"store_load", sample, "code 4", kReason},
          {"translate", sample, "code 4: is no load", kReason},
          {"hash", sample, "code 4: unlike memory", kReason}};
}

Row ints(char id, const char* stem, bool isSigned) {
  Row row = longs(id, stem, isSigned ? "%d" : "%u", isSigned);
  row.exceptions = cutInt("top_bit") + cutInt("low_bits") +
                   Exceptions{{"order", "top_bit", "code 4", "code 4 makes it 0"},
                              {"order", "low_bits", "code 4", "code 4 makes it -1"},
                              {"runs", "", "code 4", "code 4 keeps the low two bytes of an int"}};
  if (!isSigned) row.exceptions = row.exceptions + cutInt("all_bits");
  return row;
}

const Exceptions kNaN = {
    {"order", "nan", "", "NaN compares equal to every number"},
    {"total_order", "nan", "", "NaN compares equal to every number"},
    {"hash", "nan", "unlike its equal", "a constant of its own, although it is equal to every number"},
};
const Exceptions kMinusZero = {{"total_order", "minus_zero", "equal with other bytes", "-0 equals 0"}};

Row floats(char id, const char* stem) {
  return {id,
          stem,
          "%.9g",
          {bytes("minus_infinity", "FF 80 00 00"), text("minus_one_half", "-0.5"), text("zero", "0"),
           equal(bytes("minus_zero", "80 00 00 00")), bytes("denormal", "00 00 00 01"), bytes("third", "3E AA AA AB"),
           text("one_half", "0.5"), bytes("infinity", "7F 80 00 00"), bytes("nan", "7F C0 00 00")},
          kNaN + kMinusZero,
          0xF0,
          "%g"};
}

Row doubles(char id, const char* stem) {
  return {id,
          stem,
          "ldexp(%.17g,%d)",
          {bytes("minus_infinity", "FF F0 00 00 00 00 00 00"), text("minus_one_half", "-0.5"), text("zero", "0"),
           equal(bytes("minus_zero", "80 00 00 00 00 00 00 00")), bytes("denormal", "00 00 00 00 00 00 00 01"),
           bytes("third", "3F D5 55 55 55 55 55 55"), text("one_half", "0.5"),
           bytes("infinity", "7F F0 00 00 00 00 00 00"), bytes("nan", "7F F8 00 00 00 00 00 00")},
          kNaN + kMinusZero + Exceptions{{"convert", "third", "", "a string of a number has 15 digits"}}};
}

Row int64s(char id, const char* stem) {
  return {id,
          stem,
          "%S",
          {text("lowest", "-9223372036854775808"), text("all_bits", "-1"), text("zero", "0"), text("one", "1"),
           text("low_word", "4294967295"), text("high_word", "4294967296"), text("highest", "9223372036854775807")},
          {{"hash_spreads", "*", "", "both words are exclusive-ored"}}};
}

// The nullable form of a scalar's row.
Row nullable(char id, const char* stem, Row row) {
  row.id = id;
  row.stem = stem;
  for (Sample& sample : row.samples) {
    if (sample.source == Sample::kBytes) sample.content = "00 " + sample.content;
  }
  row.samples.insert(row.samples.begin(), null());
  row.exceptions.push_back({"null", "", "the default is null", "new elements are null, asked for or not"});
  return row;
}

// Identities on disk are compared and hashed as little-endian ones, whatever the code.
Exceptions bigEndianIds() {
  constexpr char kReason[] = "big-endian ids are read as little-endian ones";
  return {{"order", "*", "code 2", kReason},
          {"hash", "*", "code 2: unlike memory", kReason},
          {"runs", "", "code 2: run hashes", kReason}};
}

// A field of -1 in memory matches every other.
Exceptions wildcard(const char* sample) {
  constexpr char kReason[] = "-1 matches any year in memory";
  return {{"order", sample, "code 8", kReason}, {"total_order", sample, "code 8", kReason}};
}

// By the instant in memory, by the fields on disk.
Exceptions zones() {
  constexpr char kReason[] = "memory knows instants, disk only fields";
  return {{"order", "in_other_zone", "", kReason},
          {"total_order", "in_other_zone", "code 8: equal with other bytes", kReason},
          {"hash", "*", "unlike memory", kReason},
          {"runs", "", "run hashes unlike memory", kReason},
          {"print_scan", "in_other_zone", "", "the zone is not printed"}};
}

// Outside the years 0 to 9999.
Exceptions longYears(std::initializer_list<const char*> samples) {
  Exceptions all;
  for (const char* sample : samples) all.push_back({"print_scan", sample, "", "%Y takes four characters"});
  return all;
}

Exceptions oddBytes(std::initializer_list<const char*> samples) {
  Exceptions all;
  for (const char* sample : samples) {
    all = all + Exceptions{{"order", sample, "", "the relations of bytes beyond 0 and 1 are lopsided"},
                           {"total_order", sample, "", "the relations of bytes beyond 0 and 1 are lopsided"},
                           {"convert", sample, "", "prints as FALSE"},
                           {"print_scan", sample, "", "prints as FALSE"}};
  }
  return all;
}

// Code 1 is hashed as memory; where the host is big-endian its bytes are those of memory.
Exceptions nativeSeals() {
  constexpr char kReason[] = "hashed as in memory, although it is a disk form";
  if (std::endian::native == std::endian::big) return {};
  return {{"hash", "*", "code 1: unlike memory", kReason}, {"runs", "", "code 1: run hashes", kReason}};
}

Samples strings(bool ignoresCase) {
  return {text("empty", ""),
          text("digit", "1"),
          text("letter", "a"),
          ignoresCase ? equal(text("capital", "A")) : text("capital", "A"),
          bytes("accent", "00 05 01 00 E1 00 FF"),
          text("two_letters", "ab"),
          equal(bytes("wide", "00 08 FD 00 00 61 00 62 00 FF")),
          text("word", "Bird"),
          text("long", "Birds of a feather flock together"),
          bytes("long_wide",
                "00 3C FD 00 00 42 00 69 00 72 00 64 00 73 00 20 00 6F 00 66 00 20 00 61 00 20 00 66 "
                "00 65 00 61 00 74 00 68 00 65 00 72 00 20 00 66 00 6C 00 79 00 20 00 66 00 6F 00 72 "
                "00 20 20 AC 00 FF"),
          bytes("euro", "00 08 FD 00 00 7A 20 AC 00 FF")};
}

const Exceptions kOneByOne = {{"runs", "", "is no load", "Translate loads strings one by one"}};

Row stringRow(char id, const char* stem, Samples samples, Exceptions exceptions) {
  constexpr char kReason[] = "prints into a text of the default code set and language";
  const Exceptions ofAll = {{"total_order", "wide", "equal with other bytes", "code sets are not compared"},
                            {"print_scan", "accent", "", kReason},
                            {"print_scan", "wide", "", kReason},
                            {"print_scan", "euro", "", kReason},
                            {"print_scan", "long_wide", "", kReason}};
  return {id, stem, "%s", std::move(samples), kOneByOne + ofAll + exceptions, 0x10};
}

// Strings without null hash letters without case and diacritics.
const Exceptions kRoughHash = {{"hash_spreads", "letter", "", "hashes without case and diacritics"},
                               {"hash_spreads", "capital", "", "hashes without case and diacritics"}};

}  // namespace

const std::vector<Row>& rows() {
  static const std::vector<Row> all = {
      chars(KT_ID_char, "char", true),
      shorts(KT_ID_short, "short", "%hd", true),
      longs(KT_ID_long, "long", "%ld", true),
      doubles(KT_ID_double, "double"),
      floats(KT_ID_float, "float"),
      shorts(KT_ID_KtWord, "word", "%hu", false),
      longs(KT_ID_KtDWord, "dword", "%lu", false),
      ints(KT_ID_int, "int", true),
      ints(KT_ID_unsigned, "unsigned", false),
      ints(KT_ID_enum, "enum", true),
      chars(KT_ID_KtByte, "byte", false),
      stringRow(KT_ID_KtString, "string", Samples{null()} + strings(false),
                {{"hash_spreads", "null", "", "a null hashes as the empty string that it holds"}}),
      {KT_ID_KtDate,
       "date",
       "%Y-%m-%d",
       {null(), text("day_zero", "0"), bytes("before_christ", "FF FE 06 1C"), bytes("no_year", "FF FF 06 1C"),
        bytes("zeros", "00 00 00 00"), bytes("year_one", "00 01 01 01"), bytes("leap_day", "07 D0 02 1D"),
        bytes("other_day", "07 D0 03 01"), bytes("last", "7F FF 0C 1F")},
       wildcard("no_year") + longYears({"day_zero", "before_christ", "no_year", "last"}) +
           Exceptions{{"hash", "no_year", "code 8: unlike its equal", "-1 matches any year in memory"},
                      {"convert", "zeros", "", "a day number says nothing of fields that are no date"}}},
      {KT_ID_KtTime,
       "time",
       "%H:%M:%S",
       {null(), bytes("minus_ones", "FF FF FF"), text("midnight", "0"), text("second", "1"), text("noon", "43200"),
        text("last", "86399"), bytes("beyond", "7F 7F 7F")},
       {{"convert", "beyond", "", "a number of seconds says nothing of fields that are no time"},
        {"print_scan", "beyond", "", "scans as midnight, being no time"},
        {"print_scan", "minus_ones", "", "scans as midnight, being no time"}}},
      longs(KT_ID_BlockId, "block_id", "#%lu", false),
      {KT_ID_KtObjId,
       "obj_id",
       "(%H-%L#%B)",
       {null(), equal(bytes("null_in_block", "00 00 00 05 00 00 00 00 00 00")), text("one", "(0-1#0)"),
        text("high_byte", "(0-256#7)"), equal(text("other_block", "(0-256#8)")), text("low_bits", "(0-4294967295#0)"),
        text("high_bit", "(1-0#0)"), text("all_bits", "(65535-4294967295#4294967295)")},
       bigEndianIds() +
           Exceptions{{"hash_spreads", "high_bit", "", "low and high are exclusive-ored"},
                      {"total_order", "null_in_block", "equal with other bytes", "the block is not compared"},
                      {"total_order", "other_block", "equal with other bytes", "the block is not compared"},
                      {"convert", "null_in_block", "", "null converts without its block"},
                      {"print_scan", "null_in_block", "", "null prints without its block"},
                      {"null", "", "null_in_block: is null already", "null whatever the block"},
                      {"null", "", "the default is null", "so is a new id"}}},
      {KT_ID_KtClassId,
       "class_id",
       "(%Cv%V)",
       {null(), text("zero", "(0v0)"), text("version", "(0v2)"), text("one", "(1v0)"), text("high_byte", "(256v1)"),
        text("no_version", "(65535v65534)")},
       bigEndianIds() +
           Exceptions{{"hash_spreads", "*", "", "both words are exclusive-ored"},
                      {"null", "", "the default is null", "asked for or not"},
                      {"estimate", "null", "less than null are 1", "all, whatever the key and the flags"}}},
      {KT_ID_KtRef,
       "ref",
       "%D:%H-%L#%B,%Cv%V",
       {null(), text("one", "(0:0-1#0, 0)"), text("two", "(5:0-2#3, 9)"), equal(text("other_class", "(5:0-2#3, 8)")),
        equal(scan("version", "%D:%H-%L#%B,%Cv%V", "5:0-2#3,9v1")), text("other_database", "(6:0-2#3, 9)"),
        text("high_bit", "(1:1-0#0, 0)"), text("no_database", "(65535:65535-4294967295#0, 65535)")},
       bigEndianIds() +
           Exceptions{{"store_load", "version", "", "the version is not stored"},
                      {"translate", "version", "is no load", "the version is not stored"},
                      {"runs", "", "load", "the version is not stored"},
                      {"convert", "version", "", "the version is not converted"},
                      {"order", "high_bit", "", "the database comes last in memory and first on disk"},
                      {"total_order", "other_class", "equal with other bytes", "the class is not compared"},
                      {"hash_spreads", "high_bit", "", "low and high are exclusive-ored"},
                      {"null", "", "is not set to null", "database and class stay"},
                      {"null", "", "the default is null", "so is a new reference"}}},
      {KT_ID_KtBlob,
       "blob",
       nullptr,
       {null(), bytes("empty", "00 00 00 04 00 00 00 00"), bytes("zero_byte", "00 00 00 05 00 00 00 01 00"),
        bytes("text", "00 00 00 06 00 00 00 02 61 00"), bytes("longer", "00 00 00 07 00 00 00 03 61 00 00"),
        bytes("high_byte", "00 00 00 05 00 00 00 01 FF")},
       {{"hash_spreads", "*", "", "blobs hash by their lengths"},
        {"convert", "zero_byte", "", "a string ends at the first zero, and its blob behind it"},
        {"convert", "longer", "", "a string ends at the first zero, and its blob behind it"},
        {"convert", "high_byte", "", "a string ends at the first zero, and its blob behind it"},
        {"null", "", "null size", "the size of nulls is that of a run of none"}}},
      {KT_ID_KtDateTime,
       "date_time",
       "%Y-%m-%dT%H:%M:%S",
       {null(), text("day_zero", "0"), bytes("no_year", "FF FF 06 1C 00 00 00"), bytes("zeros", "00 00 00 00 00 00 00"),
        text("leap_day", "2451604:0"), text("second", "2451604:1"), text("noon", "2453550:45296"),
        bytes("last", "7F FF 0C 1F 17 3B 3B")},
       wildcard("no_year") + longYears({"day_zero", "no_year", "last"}) +
           Exceptions{{"convert", "zeros", "", "a day number says nothing of fields that are no date"}}},
      stringRow(KT_ID_KtIString, "istring", strings(false), kRoughHash),
      stringRow(KT_ID_KtCaseIString, "case_istring", strings(true),
                kRoughHash + Exceptions{{"total_order", "capital", "equal with other bytes", "case is not compared"}}),
      {KT_ID_d_Date,
       "odmg_date",
       "%Y-%m-%d",
       {bytes("before_christ", "FF FE 06 1C"), text("year_zero", ""), text("julian", "1582-10-04"),
        text("gregorian", "1582-10-15"), text("leap_day", "2000-02-29"), bytes("last", "7F FF 0C 1F")},
       longYears({"before_christ", "last"}) + Exceptions{{"order", "before_christ", "", "years on disk are unsigned"}}},
      {KT_ID_d_Time,
       "odmg_time",
       "%H:%M:%S",
       {text("midnight", "00:00:00.00+00:00"), text("hundredth", "00:00:00.01+00:00"),
        text("quarter", "12:05:09.25+00:00"), equal(text("in_other_zone", "14:05:09.25+02:00")),
        equal(text("in_half_hour_zone", "11:35:09.25-00:30")), text("last", "23:59:59.99+00:00"),
        text("west", "23:00:00.00-05:00")},
       zones() + Exceptions{{"order", "in_half_hour_zone", "", "memory knows instants, disk only fields"},
                            {"order", "west", "", "memory knows instants, disk only fields"},
                            {"total_order", "in_half_hour_zone", "code 8: equal with other bytes", "one instant"},
                            {"hash", "in_half_hour_zone", "code 8: unlike its equal", "minutes do not carry"},
                            {"hash_spreads", "hundredth", "", "hundredths are not hashed"},
                            {"print_scan", "*", "", "neither hundredths nor zones are printed"}}},
      {KT_ID_d_Timestamp,
       "odmg_timestamp",
       "%Y-%m-%d %H:%M:%S",
       {text("year_zero", ""), text("leap_day", "2000-02-29 00:00:00.00+00:00"),
        equal(text("in_other_zone", "2000-02-29 02:00:00.00+02:00")), text("evening", "2000-02-29 23:00:00.00+00:00"),
        text("next_day", "2000-03-01 00:00:00.00+00:00"), bytes("last", "7F FF 0C 1F 00 00 17 3B 3B 63")},
       zones() + longYears({"last"})},
      {KT_ID_d_Interval,
       "odmg_interval",
       "%e days, %H hours, %M minutes, %S seconds",
       {text("backward", "-1"), text("zero", "0"), equal(bytes("minus_zero", "80 00 00 00")), text("half", "0.5"),
        text("second", "1"), text("days", "1001045"), bytes("nan", "7F C0 00 00")},
       kNaN + kMinusZero +
           Exceptions{{"print_scan", "backward", "", "scanned fields have no sign"},
                      {"print_scan", "minus_zero", "", "whole seconds are printed"},
                      {"print_scan", "half", "", "whole seconds are printed"},
                      {"print_scan", "nan", "", "whole seconds are printed"}}},
      int64s(KT_ID_KtInt64, "int64"),
      {KT_ID_KtBoolean,
       "boolean",
       "noop",
       {null(), bytes("false", "00"), bytes("true", "01"), bytes("two", "02"), bytes("five", "05"),
        bytes("top_bit", "80")},
       oddBytes({"two", "five", "top_bit"}) +
           Exceptions{{"hash", "top_bit", "unlike its equal false", "the relations are lopsided"},
                      {"estimate", "*", "of all it selects 0.333", "a third, whatever the key and the flags"},
                      {"hash_spreads", "*", "", "all true bytes hash alike"},
                      {"null", "", "a missing string is not null", "it is false"}}},
      nullable(KT_ID_KtNull_char, "null_char", chars(0, "", true)),
      nullable(KT_ID_KtNull_uchar, "null_uchar", chars(0, "", false)),
      nullable(KT_ID_KtNull_short, "null_short", shorts(0, "", "%hd", true)),
      nullable(KT_ID_KtNull_ushort, "null_ushort", shorts(0, "", "%hu", false)),
      nullable(KT_ID_KtNull_int, "null_int", ints(0, "", true)),
      nullable(KT_ID_KtNull_unsigned, "null_unsigned", ints(0, "", false)),
      nullable(KT_ID_KtNull_long, "null_long", longs(0, "", "%ld", true)),
      nullable(KT_ID_KtNull_ulong, "null_ulong", longs(0, "", "%lu", false)),
      nullable(KT_ID_KtNull_float, "null_float", floats(0, "")),
      nullable(KT_ID_KtNull_double, "null_double", doubles(0, "")),
      nullable(KT_ID_KtNull_KtInt64, "null_int64", int64s(0, "")),
      {KT_ID_KtSeal,
       "seal",
       "noop",
       {text("zero", "0"), text("one", "1"), text("low_word", "65535"), text("middle_word", "65536"),
        text("high_word", "4294967296"), text("highest", "281474976710655")},
       nativeSeals() + Exceptions{{"hash_spreads", "*", "", "the three words are exclusive-ored"},
                                  {"overrun", "", "compare of", "the lengths are not looked at"}},
       0xF0,
       nullptr,
       12,
       true},
      {KT_ID_KtString,
       "legacy_string",
       "%s",
       {text("empty", ""), text("letter", "a"), text("capital", "A"), text("two_letters", "ab"), text("word", "Bird")},
       kOneByOne,
       0x10,
       nullptr,
       11},
  };
  return all;
}

}  // namespace kt_laws
