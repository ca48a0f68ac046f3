// The rows of the seven date and time types through the type manager.
#include <kttm.h>

#include "fixed_clock.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

KtTypeMgr mgr(12);

const char kIds[] = {KT_ID_KtDate, KT_ID_KtTime,      KT_ID_KtDateTime, KT_ID_d_Date,
                     KT_ID_d_Time, KT_ID_d_Timestamp, KT_ID_d_Interval};

template <class Value>
Bytes bytesOf(const Value& value) {
  Bytes bytes(sizeof value);
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

Bytes stored(char id, const Bytes& value, unsigned char format) {
  Bytes disk(mgr.DiskLenGet(id, nullptr, format, 1, 8) + 1, 0xEE);
  Bytes memory = value;
  EXPECT_EQ(mgr.Store(id, disk.data(), memory.data(), format, 1), disk.size() - 1);
  EXPECT_EQ(disk.back(), 0xEE) << "wrote too much";
  disk.pop_back();
  return disk;
}

KtDateTime at(int year, int month, int day, int hour, int minute, int second) {
  return {KtDate(year, month, day), KtTime(hour, minute, second)};
}

// Values of a type: random bytes, so that every sign occurs, or fields that are never negative.
Bytes randomRun(char id, unsigned long count, bool small) {
  std::mt19937 random(static_cast<unsigned>(id) + small);
  Bytes run(count * mgr.MemLenGet(id, 1));
  for (unsigned char& byte : run) byte = static_cast<unsigned char>(random() & (small ? 0x7F : 0xFF));
  return run;
}

// Compare a byte more than the run needs: nothing may be written behind it.
TEST(DateOps, runs_of_any_length_come_back_from_every_form) {
  for (char id : kIds) {
    SCOPED_TRACE(mgr.NameGet(id, nullptr));
    const unsigned long size = mgr.MemLenGet(id, 1);
    for (unsigned long count : {0ul, 1ul, 2ul, 3ul, 31ul, 32ul, 33ul, 300ul}) {
      for (const unsigned char format : std::initializer_list<unsigned char>{0, 1, 2, 4, 8}) {
        Bytes values = randomRun(id, count, false);
        if (id == KT_ID_KtDateTime) {
          for (unsigned long i = 0; i < count; ++i) values[i * size + 7] = 0;  // what loading makes of the padding
        }
        Bytes disk(mgr.DiskLenGet(id, values.data(), format, count, 8) + 2, 0xEE);
        Bytes back(values.size() + 2, 0xEE);
        const unsigned long length = disk.size() - 2;
        EXPECT_EQ(mgr.Store(id, disk.data() + 1, values.data(), format, count), length);
        EXPECT_EQ(mgr.Load(id, back.data() + 1, disk.data() + 1, format, count), length);
        EXPECT_TRUE(disk.back() == 0xEE && disk.front() == 0xEE && back.back() == 0xEE && back.front() == 0xEE);
        EXPECT_EQ(Bytes(back.begin() + 1, back.end() - 1), values) << int{format} << ' ' << count;
      }
    }
  }
}

TEST(DateOps, dates_convert_in_place_too) {
  for (const char id : {KT_ID_KtDate, KT_ID_d_Date}) {
    const Bytes values = randomRun(id, 300, false);
    Bytes apart(values.size());
    mgr.Store(id, apart.data(), const_cast<unsigned char*>(values.data()), 2, 300);
    Bytes inPlace = values;
    mgr.Store(id, inPlace.data(), inPlace.data(), 2, 300);
    EXPECT_EQ(inPlace, apart);
    mgr.Load(id, inPlace.data(), inPlace.data(), 2, 300);
    EXPECT_EQ(inPlace, values);
  }
}

TEST(DateOps, translate_converts_copies_or_pads) {
  KtDateTime values[2] = {at(2005, 6, 28, 1, 2, 3), at(1, 1, 1, 4, 5, 6)};
  KtDateTime back[2] = {KtDateTime::Null(), KtDateTime::Null()};
  unsigned char disk[14];
  EXPECT_EQ(mgr.Translate(KT_ID_KtDateTime, disk, 2, 14, values, 8, 16, 2), 14u);
  EXPECT_EQ(mgr.Translate(KT_ID_KtDateTime, back, 9, 16, disk, 2, 14, 2), 14u);
  EXPECT_TRUE(back[0] == values[0] && back[1] == values[1]);
  EXPECT_EQ(mgr.Translate(KT_ID_KtDateTime, values, 8, 16, values + 1, 8, 8, 1), 8u);
  EXPECT_TRUE(values[0] == values[1]);
  unsigned char source[4] = {1, 2, 3, 4};
  unsigned char target[8] = {9, 9, 9, 9, 9, 9, 9, 9};
  EXPECT_EQ(mgr.Translate(KT_ID_KtDate, target, 2, 8, source, 0, 4, 1), 4u);
  EXPECT_EQ(Bytes(target, target + 8), (Bytes{1, 2, 3, 4, 0, 0, 0, 0}));
}

struct Pair {
  KtDate a, b;
  long memory, disk, exact;  // exact: on disk without wildcards
};

TEST(DateOps, wildcards_act_on_both_sides_in_memory_and_on_the_second_on_disk) {
  const Pair pairs[] = {
      {KtDate(2005, 6, 28), KtDate(2005, 6, 28), 0, 0, 0},  {KtDate(2005, 6, 28), KtDate(-1, 6, 28), 0, 0, 1},
      {KtDate(-1, 6, 28), KtDate(2005, 6, 28), 0, -1, -1},  {KtDate(2005, 6, 28), KtDate(-1, 7, 28), -1, -1, 1},
      {KtDate(2005, 6, 28), KtDate(2005, -1, -1), 0, 0, 1}, {KtDate(2005, 6, 28), KtDate(2005, -1, 29), -1, -1, 1},
      {KtDate(2005, 6, 28), KtDate(2005, 4, -1), 2, 1, 1},  {KtDate(2005, 6, 28), KtDate(2003, -1, -1), 2, 1, 1},
      {KtDate(-5, 6, 28), KtDate(3, 6, 28), -8, -1, -1},    {KtDate(2005, 6, -1), KtDate(2005, 6, 3), 0, -1, -1},
  };
  for (const Pair& p : pairs) {
    for (const unsigned char format : std::initializer_list<unsigned char>{0, 1, 2}) {
      Bytes a = stored(KT_ID_KtDate, bytesOf(p.a), format);
      Bytes b = stored(KT_ID_KtDate, bytesOf(p.b), format);
      int status = 1;
      EXPECT_EQ(DateCompare(format, 0, a.data(), 0, b.data(), 0, 1, status), p.disk);
      EXPECT_EQ(DateCompare(format, 4, a.data(), 4, b.data(), 0x10, 1, status), p.exact);
      EXPECT_EQ(status, 0);
    }
    KtDate a = p.a;
    KtDate b = p.b;
    int status = 1;
    EXPECT_EQ(DateCompare(8, 0, &a, 0, &b, 0, 1, status), p.memory);
    EXPECT_EQ(DateCompare(8, 0, &a, 0, &b, 0x10, 1, status), p.memory);
  }
}

TEST(DateOps, each_type_has_its_own_order_in_memory_and_on_disk) {
  struct Case {
    char id;
    Bytes a, b;
    long memory, disk;
  };
  const d_Date early(-1, 12, 31);
  const d_Date late(1, 1, 1);
  const auto stamp = [](int hour, int zone) {
    return bytesOf(
        d_Timestamp(d_Date(2005, 1, 1), d_Time(static_cast<unsigned short>(hour), 0, 0, static_cast<short>(zone), 0)));
  };
  const Case cases[] = {
      {KT_ID_KtTime, bytesOf(KtTime(5, 1, 1)), bytesOf(KtTime(-5, 2, 2)), 1, 1},
      {KT_ID_KtDateTime, bytesOf(at(2005, 1, 1, 5, 0, 0)), bytesOf(at(2005, 1, 1, 6, 0, 0)), -1, -1},
      {KT_ID_KtDateTime, bytesOf(at(2005, 1, 1, 5, 0, 0)), bytesOf(at(-1, 1, 1, 5, 0, 0)), 0, 1},
      {KT_ID_KtDateTime, bytesOf(at(2003, 1, 1, 5, 0, 0)), bytesOf(at(2005, 1, 1, 1, 0, 0)), -2, -1},
      {KT_ID_d_Date, bytesOf(early), bytesOf(late), early != late, 1},   // unsigned years on disk
      {KT_ID_d_Date, bytesOf(late), bytesOf(early), late != early, -1},  // any year: months decide
      {KT_ID_d_Date, bytesOf(d_Date(1582, 10, 15)), bytesOf(d_Date(1582, 10, 4)), 1, 1},
      {KT_ID_d_Time, bytesOf(d_Time(14, 0, 0, 2, 0)), bytesOf(d_Time(12, 0, 0, 0, 0)), 0, 1},
      {KT_ID_d_Time, bytesOf(d_Time(1, 0, 0, -5, 0)), bytesOf(d_Time(2, 0, 0, 0, 0)), 1, -1},
      {KT_ID_d_Timestamp, stamp(14, 2), stamp(12, 0), 0, 1},
      {KT_ID_d_Timestamp, stamp(14, 2), stamp(15, 2), -1, -1},
      {KT_ID_d_Interval, bytesOf(d_Interval(1)), bytesOf(d_Interval(2)), -1, -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(mgr.NameGet(c.id, nullptr));
    Bytes a = c.a;
    Bytes b = c.b;
    EXPECT_EQ(mgr.Cmp(c.id, a.data(), b.data(), 0, 1, 8), c.memory);
    Bytes diskA = stored(c.id, a, 2);
    Bytes diskB = stored(c.id, b, 2);
    EXPECT_EQ(mgr.Cmp(c.id, diskA.data(), diskB.data(), 0, 1, 2), c.disk);
  }
}

TEST(DateOps, runs_that_end_early_say_so) {
  KtDateTime values[3] = {at(1, 1, 1, 1, 1, 1), at(2, 2, 2, 2, 2, 2), at(3, 3, 3, 3, 3, 3)};
  KtDateTime others[3] = {values[0], values[1], at(9, 9, 9, 9, 9, 9)};
  int status = 0;
  EXPECT_EQ(DaTimeCompare(8, 16, values, 16, others, 0, 3, status), 0);
  EXPECT_EQ(status, 2101);
  EXPECT_EQ(DaTimeCompare(8, 24, values, 0, others, 0, 3, status), -6);
  EXPECT_EQ(status, 0);
  unsigned char padded[8];
  std::memcpy(padded, values, 8);
  padded[7] = 0x77;
  EXPECT_EQ(DaTimeCompare(8, 0, padded, 0, values, 0, 1, status), 0);
  const unsigned long two = mgr.Hash(KT_ID_KtDateTime, 0, values, 2, 8, status);
  EXPECT_EQ(mgr.Hash(KT_ID_KtDateTime, 16, values, 3, 8, status), two);
  EXPECT_EQ(status, 2101);
  EXPECT_EQ(mgr.Hash(KT_ID_KtDateTime, 0, values, 0, 8, status), 0u);
  EXPECT_EQ(status, 0);
}

// --- hashes -------------------------------------------------------------------------------------------------------------

std::uint32_t extended(unsigned char byte) { return static_cast<std::uint32_t>(static_cast<signed char>(byte)); }

// The word of one value as the rule says, one byte after the other. Disk forms are big-endian.
std::uint32_t wordOf(char id, const unsigned char* p, bool isDisk) {
  const auto year = [isDisk](const unsigned char* q) {
    std::int16_t value;
    std::memcpy(&value, q, 2);
    return isDisk ? static_cast<std::uint32_t>(q[0] << 8 | q[1]) : static_cast<std::uint32_t>(value);
  };
  const auto time = [](const unsigned char* q) {
    return (extended(q[0]) * 256 + extended(q[1])) * 256 + extended(q[2]);
  };
  const auto date = [&](const unsigned char* q) { return (year(q) * 256 + extended(q[2])) * 256 + extended(q[3]); };
  const auto odmgDate = [&](const unsigned char* q) {
    return (year(q) * 256 + (extended(q[2]) & 0xFFFF)) * 256 + (extended(q[3]) & 0xFFFF);
  };
  const auto odmgTime = [isDisk](const unsigned char* q) {
    if (isDisk) return ((((q[0] * 16u ^ q[1]) * 16 ^ q[2]) * 16 ^ q[3]) * 16 ^ q[4]) * 16 ^ q[5];
    const std::uint32_t minutes = (extended(q[2]) - extended(q[0])) * 256 + (extended(q[3]) - extended(q[1]));
    const double seconds = static_cast<signed char>(q[4]) + static_cast<signed char>(q[5]) / 100.0;
    return (minutes << 16) + static_cast<std::uint16_t>(static_cast<int>(seconds));
  };
  switch (id) {
    case KT_ID_KtDate: return date(p);
    case KT_ID_KtTime: return time(p);
    case KT_ID_KtDateTime: return date(p) ^ time(p + 4);
    case KT_ID_d_Date: return odmgDate(p);
    case KT_ID_d_Time: return odmgTime(p);
    default: return odmgDate(p) ^ odmgTime(p + 4);
  }
}

TEST(DateOps, hashes_are_made_of_one_word_a_value_whatever_its_signs) {
  for (char id : {KT_ID_KtDate, KT_ID_KtTime, KT_ID_KtDateTime, KT_ID_d_Date, KT_ID_d_Time, KT_ID_d_Timestamp}) {
    SCOPED_TRACE(mgr.NameGet(id, nullptr));
    const unsigned long size = mgr.MemLenGet(id, 1);
    const unsigned long diskSize = mgr.DiskLenGet(id, nullptr, 2, 1, 8);
    for (bool small : {true, false}) {
      for (unsigned long count : {1ul, 7ul, 8ul, 33ul, 4097ul, 5000ul}) {
        Bytes run = randomRun(id, count, small);
        Bytes disk(count * diskSize);
        mgr.Store(id, disk.data(), run.data(), 2, count);
        std::uint32_t memoryWords = 0;
        std::uint32_t diskWords = 0;
        for (unsigned long i = 0; i < count; ++i) memoryWords ^= wordOf(id, run.data() + i * size, false);
        for (unsigned long i = 0; i < count; ++i) diskWords ^= wordOf(id, disk.data() + i * diskSize, true);
        int status;
        EXPECT_EQ(mgr.Hash(id, 0, run.data(), count, 8, status), std::uint32_t(memoryWords * 1103515245u)) << count;
        EXPECT_EQ(mgr.Hash(id, 0, disk.data(), count, 2, status), std::uint32_t(diskWords * 1103515245u)) << count;
      }
    }
  }
  KtTime second(0, 0, 1);
  int status;
  EXPECT_EQ(mgr.Hash(KT_ID_KtTime, 0, &second, 1, 8, status), 1103515245u);
}

// --- null, defaults, conversions ------------------------------------------------------------------------------------------

template <class Value>
std::string converted(char id, const Value& value) {
  Bytes bytes = bytesOf(value);
  const std::unique_ptr<KtTypeConvertData> holder(mgr.ConvertTo(id, bytes.data(), 1));
  const KtString* text = holder->GetString(0);
  return text->IsNullValue() ? "null" : text->StrGet();
}

Bytes convertedFrom(char id, const char* text) {
  KtString string(text == nullptr ? "" : text);
  if (text == nullptr) string.SetNullValue();
  KtTypeConvertData holder(KT_ID_KtString, 1, &string, nullptr);
  void* values = mgr.ConvertFrom(id, &holder, 1);
  holder.typeManager = nullptr;  // the string is not the holder's
  Bytes bytes(mgr.MemLenGet(id, 1));
  std::memcpy(bytes.data(), values, bytes.size());
  mgr.Delete(id, values, 1);
  if (id == KT_ID_KtDateTime) bytes[7] = 0;
  return bytes;
}

Bytes unpadded(const KtDateTime& value) {
  Bytes bytes = bytesOf(value);
  bytes[7] = 0;
  return bytes;
}

TEST(DateOps, kt_values_convert_through_day_numbers_and_seconds) {
  KtDateTime null = KtDateTime::Null();
  null.SetNullValue();
  EXPECT_EQ(converted(KT_ID_KtDate, KtDate(2005, 6, 28)), "2453550");
  EXPECT_EQ(converted(KT_ID_KtTime, KtTime(12, 34, 56)), "45296");
  EXPECT_EQ(converted(KT_ID_KtDateTime, at(2005, 6, 28, 12, 34, 56)), "2453550:45296");
  EXPECT_EQ(converted(KT_ID_KtDateTime, KtDateTime::Null()), "1721028:0");
  EXPECT_EQ(converted(KT_ID_KtDate, null.date), "null");
  EXPECT_EQ(converted(KT_ID_KtTime, null.time), "null");
  EXPECT_EQ(converted(KT_ID_KtDateTime, null), "null");
  EXPECT_EQ(convertedFrom(KT_ID_KtDate, "2453550"), bytesOf(KtDate(2005, 6, 28)));
  EXPECT_EQ(convertedFrom(KT_ID_KtTime, "90061"), bytesOf(KtTime(25, 1, 1)));
  EXPECT_EQ(convertedFrom(KT_ID_KtDate, nullptr), bytesOf(null.date));
  struct Case {
    const char* text;
    KtDateTime value;
  };
  const Case cases[] = {{"2453550:45296", at(2005, 6, 28, 12, 34, 56)},
                        {"2453550", at(2005, 6, 28, 0, 0, 0)},
                        {"2453550:", at(2005, 6, 28, 0, 0, 0)},
                        {":3600", at(0, 0, 0, 1, 0, 0)},
                        {":", at(0, 0, 0, 0, 0, 0)},
                        {"", at(-4713, 11, 24, 0, 0, 0)},
                        {"0:1:2", at(-4713, 11, 24, 0, 0, 1)}};
  for (const Case& c : cases) EXPECT_EQ(convertedFrom(KT_ID_KtDateTime, c.text), unpadded(c.value)) << c.text;
  EXPECT_EQ(convertedFrom(KT_ID_KtDateTime, nullptr), unpadded(null));
}

TEST(DateOps, odmg_values_convert_without_loss) {
  const d_Time time(14, 5, 9.25F, 2, 0);
  EXPECT_EQ(converted(KT_ID_d_Date, d_Date(-660, 2, 11)), "-0660-02-11");
  EXPECT_EQ(converted(KT_ID_d_Time, time), "14:05:09.25+02:00");
  EXPECT_EQ(converted(KT_ID_d_Time, d_Time(0, 0, 0, 0, -30)), "00:00:00.00-00:30");
  EXPECT_EQ(converted(KT_ID_d_Timestamp, d_Timestamp(d_Date(2005, 6, 28), time)), "2005-06-28 14:05:09.25+02:00");
  EXPECT_EQ(converted(KT_ID_d_Interval, d_Interval(0, 14)), "50400");
  for (char id : {KT_ID_d_Date, KT_ID_d_Time, KT_ID_d_Timestamp}) {
    Bytes run = randomRun(id, 500, false);
    const std::unique_ptr<KtTypeConvertData> holder(mgr.ConvertTo(id, run.data(), 500));
    void* back = mgr.ConvertFrom(id, holder.get(), 500);
    EXPECT_EQ(std::memcmp(back, run.data(), run.size()), 0) << mgr.NameGet(id, nullptr);
    mgr.Delete(id, back, 500);
  }
  EXPECT_EQ(convertedFrom(KT_ID_d_Date, ""), bytesOf(d_Date(0, 1, 1)));
  EXPECT_EQ(convertedFrom(KT_ID_d_Date, "2005"), bytesOf(d_Date(2005, 1, 1)));
  EXPECT_EQ(convertedFrom(KT_ID_d_Time, "7:08"), bytesOf(d_Time(7, 8, 0, 0, 0)));
  EXPECT_EQ(convertedFrom(KT_ID_d_Timestamp, nullptr), bytesOf(d_Timestamp(d_Date(0, 1, 1), d_Time(0, 0, 0, 0, 0))));
}

TEST(DateOps, defaults_and_nulls_follow_the_type) {
  const FixedClock clock;
  for (char id : kIds) {
    SCOPED_TRACE(mgr.NameGet(id, nullptr));
    const unsigned long size = mgr.MemLenGet(id, 1);
    const bool hasNull = mgr.SupportsNullValue(id) != 0;
    auto* nulls = static_cast<unsigned char*>(mgr.DefaultValue(id, 2, 1));
    auto* values = static_cast<unsigned char*>(mgr.DefaultValue(id, 2, 0));
    EXPECT_EQ(mgr.IsNullValue(id, nulls + size), hasNull ? 1 : 0);
    EXPECT_EQ(mgr.IsNullValue(id, values + size), 0);
    if (hasNull) {
      EXPECT_EQ(mgr.SetNullValue(id, values + size), 0);
      EXPECT_EQ(mgr.IsNullValue(id, values + size), 1);
      EXPECT_EQ(mgr.IsNullValue(id, values), 0);
    }
    mgr.Delete(id, nulls, 2);
    mgr.Delete(id, values, 2);
    auto* zeros = static_cast<unsigned char*>(mgr.Create(id, 3));
    EXPECT_EQ(Bytes(zeros, zeros + 3 * size), Bytes(3 * size));
    mgr.Delete(id, zeros, 3);
  }
  EXPECT_EQ(convertedFrom(KT_ID_KtDate, ""), bytesOf(KtDate(-4713, 11, 24)));
  EXPECT_EQ(clock.readings, 0);
}

// --- text -----------------------------------------------------------------------------------------------------------------

template <class Value>
std::string printed(char id, const Value& value, const char* format = nullptr) {
  KtString out;
  Bytes bytes = bytesOf(value);
  return mgr.PrintToKtString(id, out, bytes.data(), format, 1).StrGet();
}

TEST(DateOps, rows_print_in_their_own_formats) {
  EXPECT_EQ(printed(KT_ID_KtDate, KtDate(2005, 6, 28)), "Tue 28.Jun 2005");
  EXPECT_EQ(printed(KT_ID_KtTime, KtTime(12, 0, 0)), "12:00:00 pm");
  EXPECT_EQ(printed(KT_ID_KtDateTime, at(2005, 1, 5, 0, 30, 0)), "Wed 05.Jan 2005 12:30:00 am");
  EXPECT_EQ(printed(KT_ID_d_Date, d_Date(2005, 6, 28)), "Tue Jun 28");
  EXPECT_EQ(printed(KT_ID_d_Date, d_Date(2005, 6, 28), "%H:%M"), "00:00");
  EXPECT_EQ(printed(KT_ID_d_Time, d_Time(14, 5, 9.99F, 2, 0)), "12:05:09 pm");
  EXPECT_EQ(printed(KT_ID_d_Time, d_Time(1, 0, 0, 2, 30), "%Y-%m-%d %H:%M"), "0000-01-01 -01:-30");
  EXPECT_EQ(printed(KT_ID_d_Timestamp, d_Timestamp(d_Date(2005, 6, 28), d_Time(14, 5, 9, 2, 0))),
            "Tue Jun 28 12:05:09 pm");
  EXPECT_EQ(printed(KT_ID_d_Interval, d_Interval::FromSeconds(50400)), "00 days, 02 hours, 00 minutes, 00 seconds");
  EXPECT_EQ(printed(KT_ID_d_Interval, d_Interval(-1, -2, -3, -4.5F), "%d %H %M %S"), "-01 -02 -03 -04");
  KtDate dates[2] = {KtDate(2005, 6, 28), KtDate(0, 0, 0)};
  dates[1].SetNullValue();
  EXPECT_EQ(printed(KT_ID_KtDate, dates[1]), "{NULL}");
}

TEST(DateOps, rows_scan_what_belongs_to_their_type) {
  const auto scan = [](char id, auto value, const char* text, const char* format) {
    KtString in(text);
    EXPECT_EQ(mgr.ScanFromKtString(id, &value, in, format, 1), &value);
    return value;
  };
  EXPECT_TRUE(scan(KT_ID_KtDate, KtDate(1, 1, 1), "Tue 28.Jun 2005", nullptr) == KtDate(2005, 6, 28));
  EXPECT_EQ(scan(KT_ID_KtDate, KtDate(1, 1, 1), "{NULL}", nullptr).IsNullValue(), 1);
  EXPECT_TRUE(scan(KT_ID_KtTime, KtTime(1, 1, 1), "01:05:09 pm", nullptr) == KtTime(13, 5, 9));
  EXPECT_TRUE(scan(KT_ID_d_Date, d_Date(1, 1, 1), "2005-02-30", "%Y-%m-%d") == d_Date(0, 1, 1));
  // The zone stays, and the text is taken for universal time.
  const auto time = scan(KT_ID_d_Time, d_Time(1, 1, 1.5F, 2, 30), "10:05:09 am", nullptr);
  EXPECT_EQ(bytesOf(time), (Bytes{2, 30, 12, 35, 9, 0}));
  const d_Timestamp stamp(d_Date(1, 1, 1), d_Time(1, 1, 1, -1, 0));
  const auto scanned = scan(KT_ID_d_Timestamp, stamp, "2005-06-28 10", "%Y-%m-%d %H");
  EXPECT_TRUE(scanned == d_Timestamp(d_Date(2005, 6, 28), d_Time(10, 0, 0, 0, 0)) && scanned.time.hour == 9);
  // A period starts from nothing and has no fields that could be wrong.
  const auto interval = scan(KT_ID_d_Interval, d_Interval(), "40 days, 99 hours, 00 minutes, 07 seconds",
                             "%e days, %H hours, %M minutes, %S seconds");
  EXPECT_EQ(interval.seconds, 40 * 86400.0F + 99 * 3600.0F + 7);
  EXPECT_EQ(scan(KT_ID_d_Interval, d_Interval(9), "", nullptr).seconds, 0);
}

TEST(DateOps, intervals_share_what_the_float_row_does) {
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_d_Interval), &FloatCompare);
  EXPECT_NE(mgr.StorePtrGet(KT_ID_d_Interval), mgr.StorePtrGet(KT_ID_float));
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_KtDate), &DateCompare);
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_d_Timestamp), &d_TimestampCompare);
  float zero = 0.0F;
  float negative = -0.0F;
  int status;
  EXPECT_EQ(mgr.Hash(KT_ID_d_Interval, 0, &zero, 1, 8, status), mgr.Hash(KT_ID_d_Interval, 0, &negative, 1, 8, status));
}

}  // namespace
