#include "ops/date_ops.h"

#include "ktstring.h"
#include "text/number_format.h"
#include "values/narrow_text.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace kt {
namespace {

std::uint32_t signedByte(unsigned char byte) { return static_cast<std::uint32_t>(static_cast<signed char>(byte)); }

// DISK: hashes may be stored.
std::uint32_t dateWord(std::uint32_t year, const unsigned char* monthAndDay) {
  return (year << 16) + (signedByte(monthAndDay[0]) << 8) + signedByte(monthAndDay[1]);
}

constexpr unsigned long kMemorySize = sizeof(KtDateTime);
constexpr unsigned long kTimeAt = 4;

// Moves 7 bytes a value between runs of the two step widths, 8 at a time: the byte too many is padding, or is written
// again with the next value. The last value's is not touched.
template <unsigned long kFrom, unsigned long kTo>
void moveDateTimes(unsigned char* dst, const unsigned char* src, unsigned long count, bool swapped) {
  static_assert(sizeof(std::uint64_t) == kMemorySize);
  unsigned char last[kMemorySize] = {};
  for (; count > 1; --count, dst += kTo, src += kFrom) {
    std::memcpy(last, src, kMemorySize);
    if (swapped) std::swap(last[0], last[1]);
    if (kTo == kMemorySize) last[kMemorySize - 1] = 0;
    std::memcpy(dst, last, kMemorySize);
  }
  if (count == 0) return;
  std::memcpy(last, src, DateTimeValue::kDiskSize);
  if (swapped) std::swap(last[0], last[1]);
  last[kMemorySize - 1] = 0;
  std::memcpy(dst, last, kTo);
}

// A decimal number, saturated at 32 bits; 0 for other texts.
long numberOf(const char* begin, const char* end) {
  std::uint32_t number = 0;
  scanInteger(begin, static_cast<unsigned long>(end - begin), "%d", number);
  return static_cast<std::int32_t>(number);
}

template <bool kWildcards>
struct DateOrder : DateValue {
  static long compareDisk(unsigned char code, const unsigned char* a, const unsigned char* b) {
    return compareDiskDates<std::int16_t, kWildcards>(code, a, b);
  }
};

}  // namespace

// --- hashes: a date's word and a time's word are three bytes side by side as long as none is negative ------------------

std::uint32_t DateValue::word(unsigned char code, const unsigned char* p) { return dateWord(yearOf(code, p), p + 2); }

std::uint32_t DateValue::hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
  return xorWords<4, 2, 3>(p, n, [code](const unsigned char* date) { return word(code, date); });
}

std::uint32_t TimeValue::word(const unsigned char* p) { return dateWord(signedByte(p[0]), p + 1); }

std::uint32_t TimeValue::hashWords(unsigned char, const unsigned char* p, unsigned long n) {
  return xorWords<3, 0, 2>(p, n, [](const unsigned char* time) { return word(time); });
}

std::uint32_t DateTimeValue::hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
  const auto word = [code](const unsigned char* value) {
    return DateValue::word(code, value) ^ TimeValue::word(value + kTimeAt);
  };
  return code == kMemoryForm ? xorWords<8, 2, 6>(p, n, word) : xorWords<7, 2, 6>(p, n, word);
}

// --- storage and text of date-times -------------------------------------------------------------------------------------

unsigned long DateTimeValue::store(void* dst, const void* src, unsigned char format, unsigned long count) {
  moveDateTimes<kMemorySize, kDiskSize>(static_cast<unsigned char*>(dst), static_cast<const unsigned char*>(src), count,
                                        !isHostLayout(lowCode(format)));
  return kDiskSize * count;
}

unsigned long DateTimeValue::load(void* dst, const void* src, unsigned char format, unsigned long count) {
  moveDateTimes<kDiskSize, kMemorySize>(static_cast<unsigned char*>(dst), static_cast<const unsigned char*>(src), count,
                                        !isHostLayout(lowCode(format)));
  return kDiskSize * count;
}

// Day number and seconds since midnight, as in "2453550:45296". Written as a whole: a part, which is what remains when
// memory runs out in between, would be another time.
KtString DateTimeValue::toText(const KtDateTime& v) {
  if (v.IsNullValue()) {
    KtString null;
    null.SetNullValue();
    return null;
  }
  constexpr unsigned long kNumber = 24;  // the longest of 64 bits takes 20 characters
  char text[2 * kNumber];
  char* colon = std::to_chars(text, text + kNumber, v.date.dayabs()).ptr;
  *colon = ':';
  const char* end = std::to_chars(colon + 1, text + sizeof text, static_cast<long>(v.time)).ptr;
  return KtString(text, static_cast<unsigned short>(end - text));
}

// Without seconds: midnight. With nothing in front of the colon: no date, all zeros.
KtDateTime DateTimeValue::fromText(const KtString& s) {
  const NarrowText text(s);
  const char* colon = std::find(text.begin(), text.end(), ':');
  const bool hasDate = colon != text.begin() || colon == text.end();
  KtDateTime value(hasDate ? KtDate(numberOf(text.begin(), colon)) : KtDate(0, 0, 0), KtTime(0, 0, 0));
  if (colon != text.end() && colon + 1 != text.end()) value.time = KtTime(numberOf(colon + 1, text.end()));
  return value;
}

}  // namespace kt

KT_COMPARE_COVER(DateCompare, kt::compareDates<kt::DateOrder>)
KT_COMPARE_COVER(TimeCompare, kt::ScalarOps<kt::TimeValue>::compare)
KT_COMPARE_COVER(DaTimeCompare, kt::ScalarOps<kt::DateTimeValue>::compare)
