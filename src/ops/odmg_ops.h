// odmg_ops.h - the rows of d_Date, d_Time, d_Timestamp and d_Interval. Like their classes they have no null value.
#ifndef KT_OPS_ODMG_OPS_H
#define KT_OPS_ODMG_OPS_H

#include "d_timestamp.h"
#include "kttypops.h"
#include "ops/date_ops.h"
#include "ops/scalar_ops.h"
#include "ops/scalar_values.h"

namespace kt {

// Texts of conversions lose nothing: "2005-06-28", "14:05:09.25+02:00", both with a blank between them. What an empty or
// unfit text does not tell is that of 0000-01-01 00:00:00.00+00:00.

// DISK: as KtDate.
struct OdmgDateValue : DateStorage<d_Date> {
  static constexpr char kFormat[] = "%a %b %e";
  static std::uint32_t word(unsigned char code, const unsigned char* p);
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n);
  // The absolute date. Years before 0 come last, as they do on disk: they count as the unsigned numbers.
  static double number(unsigned char code, const unsigned char* p) {
    constexpr double kDaysOfAllYears = 65536 * 365.2425;
    const auto date = loadValue<OdmgDateValue>(code, p);
    return static_cast<double>(date.getAbsDate()) + (date.year < 0 ? kDaysOfAllYears : 0);
  }
  static KtString toText(const d_Date& v);
  static d_Date fromText(const KtString& s);
  static void print(KtString& out, void* value, const char* format);
  static bool scan(void* value, const KtString& in, const char* format);
};

// DISK: six bytes in the order of the fields, in every format code.
struct OdmgTimeValue : DateFamily<d_Time> {
  static constexpr char kFormat[] = "%I:%M:%S %p";
  static long compareDisk(unsigned char, const unsigned char* a, const unsigned char* b) {
    return compareSignedBytes(a, b, sizeof(d_Time));
  }
  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count) {
    return CharStore(dst, src, format, sizeof(d_Time) * count);
  }
  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count) {
    return CharStore(dst, src, format, sizeof(d_Time) * count);
  }
  static std::uint32_t word(unsigned char code, const unsigned char* p);
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n);
  // Hundredths of a second in the zone, the zones one after the other: the order on disk, in which indexes are sorted.
  static double number(unsigned char code, const unsigned char* p) {
    constexpr double kDay = 8640000;
    const auto time = loadValue<OdmgTimeValue>(code, p);
    return (time.tz_hour * 60 + time.tz_minute) * kDay + static_cast<double>(time.LocalHundredths());
  }
  static KtString toText(const d_Time& v);
  static d_Time fromText(const KtString& s);
  static void print(KtString& out, void* value, const char* format);
  static bool scan(void* value, const KtString& in, const char* format);
};

// DISK: a d_Date, then a d_Time.
struct OdmgTimestampValue : DateFamily<d_Timestamp> {
  static constexpr char kFormat[] = "%a %b %e %I:%M:%S %p";
  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count);
  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count) {
    return store(dst, src, format, count);
  }
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n);
  // The instant, in hundredths of a second: off the order on disk by no more than the zones differ.
  static double number(unsigned char code, const unsigned char* p) {
    constexpr double kDay = 8640000;
    const auto time = loadValue<OdmgTimeValue>(code, p + sizeof(d_Date));
    return OdmgDateValue::number(code, p) * kDay + static_cast<double>(time.UniversalHundredths());
  }
  static KtString toText(const d_Timestamp& v);
  static d_Timestamp fromText(const KtString& s);
  static void print(KtString& out, void* value, const char* format);
  static bool scan(void* value, const KtString& in, const char* format);
};

// A float, as scalars are.
struct OdmgIntervalValue : FloatValue {
  static constexpr char kFormat[] = "%e days, %I hours, %M minutes, %S seconds";
  static void print(KtString& out, void* value, const char* format);
  static bool scan(void* value, const KtString& in, const char* format);
};

// Values start as zeros.
template <class V>
using OdmgOps = ScalarOps<V, PlainArrays<typename V::Memory, true>>;

struct OdmgDateOps : OdmgOps<OdmgDateValue> {
  static constexpr KtTypeCmpFunc compare = &d_DateCompare;
};
struct OdmgTimeOps : OdmgOps<OdmgTimeValue> {
  static constexpr KtTypeCmpFunc compare = &d_TimeCompare;
};
struct OdmgTimestampOps : OdmgOps<OdmgTimestampValue> {
  static constexpr KtTypeCmpFunc compare = &d_TimestampCompare;
};
// The row shares more with that of the floats: see the type table.
using OdmgIntervalOps = OdmgOps<OdmgIntervalValue>;

}  // namespace kt

#endif
