// The base services: typed conversion, memory files, handlers, configuration, version and clock.
#include "ktbs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using Convert = unsigned long (*)(void*, const void*, unsigned char, unsigned long);
using SizeOf = unsigned long (*)(const void*, unsigned char, unsigned char, unsigned long);
using NullSizeOf = unsigned long (*)(unsigned long);

constexpr unsigned long kCounts[] = {0, 1, 2, 3, 7, 8, 16, 17, 31, 32, 33, 1000};
constexpr bool kLittleHost = std::endian::native == std::endian::little;

struct Kind {
  const char* name;
  unsigned long width;
  Convert store, load;
  SizeOf size;
  NullSizeOf nullSize;
};

constexpr Kind kKinds[] = {
    {"char", 1, CharStore, CharStore, CharSizeGet, CharNullSizeGet},
    {"short", 2, ShortStore, ShortStore, ShortSizeGet, ShortNullSizeGet},
    {"long", 4, LongStore, LongStore, LongSizeGet, LongNullSizeGet},
    {"float", 4, FloatStore, FloatStore, FloatSizeGet, FloatNullSizeGet},
    {"double", 8, DoubleStore, DoubleStore, DoubleSizeGet, DoubleNullSizeGet},
    {"int", 4, IntStore, IntLoad, IntSizeGet, IntNullSizeGet},
    {"unsigned", 4, UnsignedStore, UnsignedLoad, IntSizeGet, IntNullSizeGet},
};

bool isInt(const Kind& kind) { return kind.store == IntStore || kind.store == UnsignedStore; }

bool isReversed(unsigned code) {
  if (code == 1 || code == 8) return false;
  return (code == 2) == kLittleHost;
}

// No two neighbours alike, and every bit pattern among them.
Bytes patternOf(unsigned long size) {
  Bytes bytes(size);
  for (unsigned long i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(i * 37 + i / 256 + 1);
  return bytes;
}

Bytes reversedByValue(const Bytes& from, unsigned long width) {
  Bytes to(from.size());
  for (unsigned long i = 0; i < from.size(); ++i) to[i] = from[i / width * width + (width - 1 - i % width)];
  return to;
}

// Converts at an odd address between two guard bytes, or in place.
Bytes converted(Convert convert, const Bytes& from, unsigned long room, unsigned char format, unsigned long count,
                bool inPlace) {
  Bytes source(from.size() + room + 2, 0xEE);
  Bytes target(room + 2, 0xEE);
  if (count) std::memcpy(source.data() + 1, from.data(), from.size());
  Bytes& written = inPlace ? source : target;
  const unsigned long bytes = convert(written.data() + 1, source.data() + 1, format, count);
  EXPECT_EQ(bytes, std::min<unsigned long>(from.size(), room));
  EXPECT_EQ(written[0], 0xEE);
  EXPECT_EQ(target.back(), 0xEE);
  return Bytes(written.begin() + 1, written.begin() + 1 + static_cast<long>(room));
}

}  // namespace

TEST(TypedStore, every_code_gives_its_byte_order_and_back) {
  for (const Kind& kind : kKinds) {
    for (unsigned format = 0; format < 256; format += (format & 15) == 15 ? 0x71 : 1) {
      if (isInt(kind) && (format & 15) == 4) continue;
      for (unsigned long count : kCounts) {
        SCOPED_TRACE(std::string(kind.name) + " format " + std::to_string(format) + " count " + std::to_string(count));
        const auto code = static_cast<unsigned char>(format);
        const Bytes memory = patternOf(count * kind.width);
        const Bytes disk = isReversed(format & 15) ? reversedByValue(memory, kind.width) : memory;
        for (bool inPlace : {false, true}) {
          ASSERT_EQ(converted(kind.store, memory, disk.size(), code, count, inPlace), disk);
          ASSERT_EQ(converted(kind.load, disk, memory.size(), code, count, inPlace), memory);
        }
      }
    }
  }
}

TEST(TypedStore, long_runs_convert_whole_wherever_they_lie) {
  for (const Kind& kind : kKinds) {
    const unsigned long count = 70000 / kind.width;
    const Bytes memory = patternOf(count * kind.width);
    const Bytes disk = reversedByValue(memory, kind.width);
    for (const unsigned long offset : {0ul, 1ul, 8ul, 31ul}) {
      Bytes room(disk.size() + offset + 1, 0xEE);
      kind.store(room.data() + offset, memory.data(), kLittleHost ? 2 : 0, count);
      EXPECT_EQ(Bytes(room.begin() + static_cast<long>(offset), room.end() - 1), disk) << kind.name << ' ' << offset;
      EXPECT_EQ(room.back(), 0xEE);
    }
  }
}

TEST(TypedStore, literal_bytes_of_one_value) {
  const std::int32_t value = 0x01020304;
  const double half = 0.5;
  Bytes bytes(8);
  LongStore(bytes.data(), &value, 2, 1);
  LongStore(bytes.data() + 4, &value, 0x24, 1);
  EXPECT_EQ(bytes, (Bytes{1, 2, 3, 4, 4, 3, 2, 1}));
  DoubleStore(bytes.data(), &half, 2, 1);
  EXPECT_EQ(bytes, (Bytes{0x3F, 0xE0, 0, 0, 0, 0, 0, 0}));
}

TEST(TypedStore, code_4_keeps_two_bytes_of_an_int) {
  struct Case {
    std::int32_t stored;
    Bytes disk;
    std::int32_t asInt, asUnsigned;
  };
  const Case cases[] = {
      {0, {0, 0}, 0, 0},
      {0x1234, {0x34, 0x12}, 0x1234, 0x1234},
      {-1, {0xFF, 0xFF}, -1, 65535},
      {-32768, {0x00, 0x80}, -32768, 32768},
      {65536 + 7, {7, 0}, 7, 7},
      {INT_MIN, {0, 0}, 0, 0},
  };
  for (const Case& c : cases) {
    for (Convert store : {IntStore, UnsignedStore}) {
      Bytes disk(2);
      EXPECT_EQ(store(disk.data(), &c.stored, 0xF4, 1), 2u);
      EXPECT_EQ(disk, c.disk) << c.stored;
    }
    std::int32_t loaded = 99;
    EXPECT_EQ(IntLoad(&loaded, c.disk.data(), 4, 1), 2u);
    EXPECT_EQ(loaded, c.asInt) << c.stored;
    EXPECT_EQ(UnsignedLoad(&loaded, c.disk.data(), 4, 1), 2u);
    EXPECT_EQ(loaded, c.asUnsigned) << c.stored;
  }
}

TEST(TypedStore, runs_of_two_byte_ints_convert_unaligned_and_in_place) {
  for (unsigned long count : kCounts) {
    Bytes memory(count * 4), disk(count * 2);
    for (unsigned long i = 0; i < count; ++i) {
      const auto value = static_cast<std::int16_t>(i * 4099);
      const std::int32_t wide = value;
      std::memcpy(memory.data() + i * 4, &wide, 4);
      disk[i * 2] = static_cast<unsigned char>(value & 0xFF);
      disk[i * 2 + 1] = static_cast<unsigned char>((value >> 8) & 0xFF);
    }
    for (bool inPlace : {false, true}) {
      ASSERT_EQ(converted(IntStore, memory, disk.size(), 4, count, inPlace), disk) << count;
      ASSERT_EQ(converted(IntLoad, disk, memory.size(), 4, count, inPlace), memory) << count;
    }
  }
}

TEST(TypedSize, follows_the_width_and_reads_no_values) {
  for (const Kind& kind : kKinds) {
    EXPECT_EQ(kind.nullSize(17), 17 * kind.width) << kind.name;
    for (unsigned format = 0; format < 32; ++format) {
      const auto code = static_cast<unsigned char>(format);
      const unsigned long width = isInt(kind) && (format & 15) == 4 ? 2 : kind.width;
      EXPECT_EQ(kind.size(nullptr, 8, code, 17), 17 * width) << kind.name << format;
      EXPECT_EQ(kind.store(nullptr, nullptr, code, 0), 0u) << kind.name << format;
      EXPECT_EQ(kind.load(nullptr, nullptr, code, 0), 0u) << kind.name << format;
    }
  }
}

TEST(MemFile, seeks_inside_and_refuses_outside) {
  const char bytes[10] = {};
  MemFile file(bytes, 10);
  struct Step {
    long offset;
    int whence;
    long at;  // -1: refused
  };
  const Step steps[] = {
      {4, MemFile::Begin, 4},
      {0, MemFile::Current, 4},
      {6, MemFile::Current, 10},
      {1, MemFile::Current, -1},
      {-10, MemFile::Current, 0},
      {-1, MemFile::Current, -1},
      {0, MemFile::End, 10},
      {-10, MemFile::End, 0},
      {-11, MemFile::End, -1},
      {11, MemFile::Begin, -1},
      {3, MemFile::Begin, 3},
      {LONG_MAX, MemFile::Current, -1},
      {LONG_MIN, MemFile::Current, -1},
      {LONG_MAX, MemFile::End, -1},
      {0, 3, -1},
  };
  unsigned long position = 0;
  for (const Step& step : steps) {
    const char* found = file.Seek(step.offset, step.whence);
    if (step.at >= 0) position = static_cast<unsigned long>(step.at);
    EXPECT_EQ(found, step.at < 0 ? nullptr : bytes + step.at) << step.offset << " from " << step.whence;
    EXPECT_EQ(file.Tell(), position);
    EXPECT_EQ(file.Remaining(), 10 - position);
  }
  EXPECT_EQ(MemFile(nullptr, 10).Remaining(), 0u);
}

namespace {
std::string reported;
unsigned long failedSize;
void reportAssertion(const char* message, const char* source, int line) {
  reported = std::string(source) + '|' + std::to_string(line) + '|' + message;
}
void noteFailure(unsigned long size) { failedSize = size; }
}  // namespace

TEST(Handlers, are_exchanged_and_null_restores_the_default) {
  const KtAssertHandler usual = KtSetAssertHandler(reportAssertion);
  KATO_assert("\"String overflow\" && 0", "src\\ktstring", 1361);
  EXPECT_EQ(reported, "src\\ktstring|1361|\"String overflow\" && 0");
  EXPECT_EQ(KtSetAssertHandler(nullptr), reportAssertion);
  EXPECT_EQ(KtSetAssertHandler(usual), usual);

  testing::internal::CaptureStderr();
  KATO_assert("a && 0", "src\\x", 7);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "src\\x:7: assertion failed: a && 0\n");

  const KtMemoryHandler quiet = KtSetMemoryHandler(noteFailure);
  KtCallMemoryHandler(4711);
  EXPECT_EQ(KtSetMemoryHandler(nullptr), noteFailure);
  KtCallMemoryHandler(1);
  EXPECT_EQ(failedSize, 4711u);
  EXPECT_EQ(KtSetMemoryHandler(quiet), quiet);
}

TEST(Config, key_and_qualifier_name_a_setting) {
  KtConfig config;
  std::string key = "stringOverflow";
  EXPECT_EQ(config.GetShort(key.c_str(), "debug", -7), -7);
  config.SetShort(key.c_str(), "debug", 1);
  config.SetShort(key.c_str(), nullptr, 2);
  config.SetShort(key.c_str(), "", 3);
  config.SetShort("other", "debug", SHRT_MIN);
  config.SetShort(key.c_str(), "debug", 4);
  config.SetShort(nullptr, "debug", 5);
  key[0] = 'X';  // the configuration has its own copy
  EXPECT_EQ(config.GetShort("stringOverflow", "debug", 0), 4);
  EXPECT_EQ(config.GetShort("stringOverflow", nullptr, 0), 2);
  EXPECT_EQ(config.GetShort("stringOverflow", "", 0), 3);
  EXPECT_EQ(config.GetShort("other", "debug", 0), SHRT_MIN);
  EXPECT_EQ(config.GetShort("stringoverflow", "debug", 0), 0);
  EXPECT_EQ(config.GetShort(nullptr, nullptr, 9), 9);
}

TEST(Config, the_default_is_exchanged_and_may_be_none) {
  KtConfig mine;
  KtConfig* const usual = DefaultConfig();
  ASSERT_NE(usual, nullptr);
  EXPECT_EQ(SetDefaultConfig(&mine), usual);
  EXPECT_EQ(SetDefaultConfig(nullptr), &mine);
  EXPECT_EQ(DefaultConfig(), nullptr);
  EXPECT_EQ(SetDefaultConfig(usual), nullptr);
}

TEST(Version, this_release_serves_callers_that_are_not_newer) {
  struct Case {
    int version[5], compatible;
  };
  const Case cases[] = {
      {{9, 5, 23, 262, 0}, 1}, {{9, 5, 23, 261, 99}, 1}, {{9, 4, 99, 999, 9}, 1}, {{9, 5, 23, 262, 1}, 0},
      {{9, 5, 24, 0, 0}, 0},   {{9, 6, 0, 0, 0}, 0},     {{8, 5, 23, 262, 0}, 0}, {{10, 0, 0, 0, 0}, 0},
  };
  for (const auto& [v, compatible] : cases) {
    EXPECT_EQ(CheckKtVersionNumber(v[0], v[1], v[2], v[3], v[4], 3), compatible) << v[0] << '.' << v[1] << '.' << v[2];
  }
}

namespace {

class FixedClock : public KtClock {
public:
  FixedClock(long long utc, int offset) : utc_(utc), offset_(offset), old_(KtSetClock(this)) {}
  ~FixedClock() override { KtSetClock(old_); }
  long long UtcMilliseconds() override { return ++readings_ == 1 ? utc_ : 0; }
  int OffsetMinutes() override { return offset_; }

private:
  int readings_ = 0;
  long long utc_;
  int offset_;
  KtClock* old_;
};

std::string text(const KtDateRecord& d) {
  return std::to_string(d.year) + '-' + std::to_string(d.month) + '-' + std::to_string(d.day);
}
std::string text(const KtTimeRecord& t) {
  return std::to_string(t.hour) + ':' + std::to_string(t.minute) + ':' + std::to_string(t.second);
}

}  // namespace

TEST(Clock, an_instant_has_its_calendar_date_and_time) {
  struct Case {
    long long utc;
    int offset;
    const char *date, *time, *localDate, *localTime;
  };
  constexpr long long kDay = 86400000;
  const Case cases[] = {
      {0, 0, "1970-1-1", "0:0:0", "1970-1-1", "0:0:0"},
      {0, -2171, "1970-1-1", "0:0:0", "1970-1-1", "0:0:0"},
      {0, -1, "1970-1-1", "0:0:0", "1969-12-31", "23:59:0"},
      {-1, 0, "1969-12-31", "23:59:59", "1969-12-31", "23:59:59"},
      {-1000, 1, "1969-12-31", "23:59:59", "1970-1-1", "0:0:59"},
      {951782400000, -300, "2000-2-29", "0:0:0", "2000-2-28", "19:0:0"},
      {1709251199999, 330, "2024-2-29", "23:59:59", "2024-3-1", "5:29:59"},
      {4107542400000, 0, "2100-3-1", "0:0:0", "2100-3-1", "0:0:0"},
      {2147483648000, 0, "2038-1-19", "3:14:8", "2038-1-19", "3:14:8"},
      {-11676096000000, 0, "1600-1-1", "0:0:0", "1600-1-1", "0:0:0"},
      {-719468 * kDay, 0, "0-3-1", "0:0:0", "0-3-1", "0:0:0"},
      {-719469 * kDay, 0, "0-2-29", "0:0:0", "0-2-29", "0:0:0"},
      // 164 cycles of 400 years later the year is 67570, which 16 bits hold as 2034
      {164 * 146097 * kDay, 0, "2034-1-1", "0:0:0", "2034-1-1", "0:0:0"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.utc);
    KtDateRecord date{};
    KtTimeRecord time{};
    // A clock answers once: a second reading would give 1970.
    const auto read = [&c](auto answer) {
      FixedClock clock(c.utc, c.offset);
      answer();
    };
    read([&] { bksgetsystemtime(time, date); });
    EXPECT_EQ(text(date) + ' ' + text(time), std::string(c.date) + ' ' + c.time);
    read([&] { bksgetdate(date); });
    read([&] { bksgettime(time); });
    EXPECT_EQ(text(date) + ' ' + text(time), std::string(c.localDate) + ' ' + c.localTime);
    read([&] { EXPECT_EQ(bksgettimezone(), c.offset); });
    read([&] { EXPECT_EQ(bksgetmilliseconds(), c.utc); });
  }
}

TEST(Clock, the_ends_of_64_bits_are_harmless) {
  KtDateRecord date{};
  KtTimeRecord time{};
  for (long long utc : {LLONG_MIN, LLONG_MAX}) {
    for (int offset : {INT_MIN, INT_MAX}) {
      const FixedClock clock(utc, offset);
      bksgetdate(date);
      bksgettime(time);
      EXPECT_TRUE(date.month >= 1 && date.month <= 12 && date.day >= 1 && date.day <= 31);
    }
  }
}

TEST(Clock, the_systems_clock_is_plausible) {
  EXPECT_GT(bksgetmilliseconds(), 1704067200000);  // 2024-01-01
  EXPECT_LE(std::abs(bksgettimezone()), 14 * 60);
}
