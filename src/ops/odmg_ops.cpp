// odmg_ops.cpp - storage, compare and hash of the ODMG types. Their text forms stand in odmg_text.cpp.
#include "ops/odmg_ops.h"

#include "ktstring.h"

namespace kt {
namespace {

constexpr unsigned long kTimestampSize = sizeof(d_Timestamp);
constexpr unsigned long kTimeAt = 4;

std::uint32_t signedHalf(unsigned char byte) {
  return static_cast<std::uint16_t>(static_cast<std::int16_t>(static_cast<signed char>(byte)));
}

template <bool kWildcards>
struct OdmgDateOrder : OdmgDateValue {
  static long compareDisk(unsigned char code, const unsigned char* a, const unsigned char* b) {
    return compareDiskDates<std::uint16_t, kWildcards>(code, a, b);
  }
};

template <bool kWildcards>
struct OdmgTimestampOrder : OdmgTimestampValue {
  static long compareDisk(unsigned char code, const unsigned char* a, const unsigned char* b) {
    const long dates = compareDiskDates<std::uint16_t, kWildcards>(code, a, b);
    return dates != 0 ? dates : OdmgTimeValue::compareDisk(code, a + kTimeAt, b + kTimeAt);
  }
};

// What a d_Time in memory counts: hours and minutes less those of the zone, and whole seconds.
std::uint32_t memoryTimeWord(const unsigned char* p) {
  const auto time = readValue<d_Time>(p);
  const int hours = time.hour - time.tz_hour;
  const int minutes = time.minute - time.tz_minute;
  const int seconds = (time.second * 100 + time.hundredths) / 100;
  return (static_cast<std::uint32_t>(hours * 256 + minutes) << 16) + static_cast<std::uint16_t>(seconds);
}

std::uint32_t diskTimeWord(const unsigned char* p) {
  std::uint32_t word = 0;
  for (unsigned i = 0; i < sizeof(d_Time); ++i) word = word * 16 ^ p[i];
  return word;
}

}  // namespace

std::uint32_t OdmgDateValue::word(unsigned char code, const unsigned char* p) {
  return (static_cast<std::uint32_t>(yearOf(code, p)) << 16) + (signedHalf(p[2]) << 8) + signedHalf(p[3]);
}

std::uint32_t OdmgDateValue::hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
  return xorWords<4, 2, 3>(p, n, [code](const unsigned char* date) { return word(code, date); });
}

std::uint32_t OdmgTimeValue::word(unsigned char code, const unsigned char* p) {
  return code == kMemoryForm ? memoryTimeWord(p) : diskTimeWord(p);
}

// On disk shifts and exclusive or only: bytes may be folded first, whatever they are.
std::uint32_t OdmgTimeValue::hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
  if (code != kMemoryForm) {
    Fold<6> fold;
    foldRecords(p, n, fold);
    return diskTimeWord(fold.sum);
  }
  std::uint32_t words = 0;
  for (; n != 0; --n, p += sizeof(d_Time)) words ^= memoryTimeWord(p);
  return words;
}

std::uint32_t OdmgTimestampValue::hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
  const auto word = [code](const unsigned char* value) {
    return OdmgDateValue::word(code, value) ^ OdmgTimeValue::word(code, value + kTimeAt);
  };
  if (code != kMemoryForm) return xorWords<kTimestampSize, 2, 3>(p, n, word);
  std::uint32_t words = 0;
  for (; n != 0; --n, p += kTimestampSize) words ^= word(p);
  return words;
}

unsigned long OdmgTimestampValue::store(void* dst, const void* src, unsigned char format, unsigned long count) {
  if (isHostLayout(lowCode(format))) return CharStore(dst, src, format, kTimestampSize * count);
  auto* to = static_cast<unsigned char*>(dst);
  const auto* from = static_cast<const unsigned char*>(src);
  for (unsigned long i = 0; i < count; ++i, to += kTimestampSize, from += kTimestampSize) {
    const std::uint32_t date = swapYear(readValue<std::uint32_t>(from));
    const auto time = readValue<d_Time>(from + kTimeAt);
    std::memcpy(to, &date, sizeof date);
    std::memcpy(to + kTimeAt, &time, sizeof time);
  }
  return kTimestampSize * count;
}

}  // namespace kt

KT_COMPARE_COVER(d_DateCompare, kt::compareDates<kt::OdmgDateOrder>)
KT_COMPARE_COVER(d_TimeCompare, kt::ScalarOps<kt::OdmgTimeValue>::compare)
KT_COMPARE_COVER(d_TimestampCompare, kt::compareDates<kt::OdmgTimestampOrder>)
