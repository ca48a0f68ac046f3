// date_ops.h - the rows of KtDate, KtTime and KtDateTime.
//
// Only format code 8 is memory form; code 1 is a disk form like the others, with years in host order.
#ifndef KT_OPS_DATE_OPS_H
#define KT_OPS_DATE_OPS_H

#include "ktdatetime.h"
#include "ktstring.h"
#include "kttypops.h"
#include "ops/class_text.h"
#include "ops/date_kernels.h"
#include "ops/scalar_ops.h"
#include "values/datetime_text.h"
#include "values/string_edit.h"

#include <cstdint>
#include <cstring>

namespace kt {

inline long compareSignedBytes(unsigned char a, unsigned char b) {
  return threeWay(static_cast<signed char>(a), static_cast<signed char>(b));
}

// The first two bytes that differ, as signed numbers.
inline long compareSignedBytes(const unsigned char* a, const unsigned char* b, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    if (a[i] != b[i]) return compareSignedBytes(a[i], b[i]);
  }
  return 0;
}

// DISK: a field of -1 on disk, alike in every byte order.
constexpr std::uint16_t kAnyYear = 0xFFFF;
constexpr unsigned char kAnyByte = 0xFF;

// Dates on disk: years, compared as numbers of the type Year, then months and days as signed bytes. With wildcards a
// field of -1 in the second date matches any other.
template <class Year, bool kWildcards>
inline long compareDiskDates(unsigned char code, const unsigned char* a, const unsigned char* b) {
  const std::uint16_t yearA = yearOf(code, a);
  const std::uint16_t yearB = yearOf(code, b);
  if (yearA != yearB && !(kWildcards && yearB == kAnyYear)) {
    return threeWay(static_cast<Year>(yearA), static_cast<Year>(yearB));
  }
  if (kWildcards && b[2] == kAnyByte) return b[3] == kAnyByte ? 0 : compareSignedBytes(a[3], b[3]);
  if (kWildcards && b[3] == kAnyByte) return compareSignedBytes(a[2], b[2]);
  return compareSignedBytes(a + 2, b + 2, 2);
}

// The compare of rows whose dates on disk know wildcards, which the options forbid.
template <template <bool kWildcards> class Order>
inline long compareDates(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b,
                         unsigned short options, unsigned long count, int& status) {
  if ((options & KtCMP_NO_WILDCARDS) != 0)
    return compareOperation<Order<false>>(format, lengthA, a, lengthB, b, count, status);
  return compareOperation<Order<true>>(format, lengthA, a, lengthB, b, count, status);
}

// What values without padding, of the same size everywhere, have in common.
template <class MemoryType>
struct DateFamily {
  using Memory = MemoryType;
  static constexpr bool kEqualBytes = true;
  static constexpr unsigned long elementSize(unsigned char) { return sizeof(Memory); }
  static constexpr bool direct(unsigned char code) { return code == kMemoryForm; }
  static long compareDirect(const unsigned char* a, const unsigned char* b) {
    return readValue<Memory>(a) != readValue<Memory>(b);
  }
  static unsigned long fileSize(unsigned char, unsigned long count) { return sizeof(Memory) * count; }
};

// DISK: the year in the order of the format code, then month and day, a byte each.
template <class MemoryType>
struct DateStorage : DateFamily<MemoryType> {
  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count) {
    if (isHostLayout(lowCode(format))) return CharStore(dst, src, format, 4 * count);
    if (count == 1) {
      const std::uint32_t date = swapYear(readValue<std::uint32_t>(src));
      std::memcpy(dst, &date, sizeof date);
    } else {
      swapYears(static_cast<unsigned char*>(dst), static_cast<const unsigned char*>(src), count);
    }
    return 4 * count;
  }
  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count) {
    return store(dst, src, format, count);
  }
};

// What the classes bring along, which know null.
template <class Class>
struct DateText : ClassText<Class> {
  // A missing or null string; an empty one is a number, 0.
  static Class fromNoText() {
    constexpr unsigned char kZeros[sizeof(Class)] = {};
    auto value = readValue<Class>(kZeros);
    value.SetNullValue();
    return value;
  }

protected:
  // Decimal, or a null string.
  static KtString numberText(const Class& value) {
    if (!value.IsNullValue()) return KtString(static_cast<long>(value));
    KtString text;
    text.SetNullValue();
    return text;
  }
};

struct DateValue : DateStorage<KtDate>, DateText<KtDate> {
  static std::uint32_t word(unsigned char code, const unsigned char* p);
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n);
  // The day number of the fields as they are, those of a null and -1 too: in the order of the dates.
  static double number(unsigned char code, const unsigned char* p) {
    return static_cast<double>(loadValue<DateValue>(code, p).dayabs());
  }
  static KtString toText(const KtDate& v) { return numberText(v); }
  static KtDate fromText(const KtString& s) { return KtDate(static_cast<long>(storedLong(s))); }
};

// DISK: hour, minute and second, a byte each, in every format code.
struct TimeValue : DateFamily<KtTime>, DateText<KtTime> {
  static long compareDisk(unsigned char, const unsigned char* a, const unsigned char* b) {
    return compareSignedBytes(a, b, 3);
  }
  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count) {
    return CharStore(dst, src, format, 3 * count);
  }
  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count) {
    return CharStore(dst, src, format, 3 * count);
  }
  static std::uint32_t word(const unsigned char* p);
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n);
  static double number(unsigned char code, const unsigned char* p) {
    return static_cast<double>(static_cast<long>(loadValue<TimeValue>(code, p)));
  }
  static KtString toText(const KtTime& v) { return numberText(v); }
  static KtTime fromText(const KtString& s) { return KtTime(static_cast<long>(storedLong(s))); }
};

// DISK: the year in the order of the format code, then month, day, hour, minute and second, a byte each; no padding,
// not even in format code 8.
struct DateTimeValue : DateFamily<KtDateTime>, DateText<KtDateTime> {
  static constexpr const char* kFormat = kDateTimeFormat;
  static constexpr unsigned long kDiskSize = 7;
  static constexpr unsigned long elementSize(unsigned char code) {
    return code == kMemoryForm ? sizeof(KtDateTime) : kDiskSize;
  }
  static long compareDisk(unsigned char code, const unsigned char* a, const unsigned char* b) {
    const long years = threeWay(static_cast<std::int16_t>(yearOf(code, a)), static_cast<std::int16_t>(yearOf(code, b)));
    return years != 0 ? years : compareSignedBytes(a + 2, b + 2, kDiskSize - 2);
  }
  static unsigned long fileSize(unsigned char, unsigned long count) { return kDiskSize * count; }
  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count);
  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count);
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n);
  static double number(unsigned char code, const unsigned char* p) {  // seconds since day 0
    constexpr double kDay = 86400;
    return DateValue::number(code, p) * kDay + TimeValue::number(code, p + sizeof(KtDate));
  }
  static void print(KtString& out, void* value, const char* format) {
    if (liesIn(out, static_cast<const char*>(value))) [[unlikely]] {
      const auto copy = readValue<KtDateTime>(value);  // the text may move
      printDateTime(out, &copy, format);
    } else {
      printDateTime(out, value, format);
    }
  }
  static bool scan(void* value, const KtString& in, const char* format) { return scanDateTime(in, format, value); }
  static KtString toText(const KtDateTime& v);
  static KtDateTime fromText(const KtString& s);
};

// Values start as zeros.
template <class V>
struct DateOps : ScalarOps<V, PlainArrays<typename V::Memory, true>> {
  using Memory = typename V::Memory;
  using Base = ScalarOps<V, PlainArrays<Memory, true>>;

  static int isNull(void* value) { return readValue<Memory>(value).IsNullValue(); }
  static int setNull(void* value) {
    const Memory null = V::fromNoText();
    std::memcpy(value, &null, sizeof null);
    return 0;
  }
  static constexpr KtSetNullFunc kSetNull = &setNull;
  static void* defaultValue(unsigned long count, int asNull) {
    if (asNull == 0) return convertEmptyStrings(&Base::convertFrom, count);
    void* values = Base::create(count);
    Memory null = V::fromNoText();
    if (values != nullptr) Base::assign(values, &null, count, 1);
    return values;
  }
};

struct KtDateOps : DateOps<DateValue> {
  static constexpr KtTypeCmpFunc compare = &DateCompare;
};
struct KtTimeOps : DateOps<TimeValue> {
  static constexpr KtTypeCmpFunc compare = &TimeCompare;
};
struct KtDateTimeOps : DateOps<DateTimeValue> {
  static constexpr KtTypeCmpFunc compare = &DaTimeCompare;
};

}  // namespace kt

#endif
