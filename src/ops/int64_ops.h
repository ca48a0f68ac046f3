// int64_ops.h - the row of KtInt64.
#ifndef KT_OPS_INT64_OPS_H
#define KT_OPS_INT64_OPS_H

#include "ktint64.h"
#include "kttypops.h"
#include "ops/class_text.h"
#include "ops/scalar_ops.h"
#include "ops/scalar_values.h"
#include "values/int64_text.h"

namespace kt {

// DISK: two 32-bit words in the order of the format code, the low word first in every code.
struct Int64Value : ScalarCompare<Int64Value, KtInt64>, ClassText<KtInt64> {
  static constexpr char kFormat[] = "%S";
  static unsigned long store(void* dst, const void* src, unsigned char f, unsigned long n) {
    return LongStore(dst, src, lowCode(f), 2 * n);
  }
  static unsigned long load(void* dst, const void* src, unsigned char f, unsigned long n) {
    return store(dst, src, f, n);
  }
  static unsigned long fileSize(unsigned char, unsigned long count) { return 8 * count; }
  static double number(unsigned char code, const unsigned char* p) {
    const auto value = loadValue<Int64Value>(code, p);
    return value.high * 4294967296.0 + value.low;
  }
  // A value's word is low ^ high.
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
    return LongValue::hashWords(code, p, 2 * n);
  }
  // Every text gives a number, an unfit one -1.
  static bool scan(void* value, const KtString& in, const char* format) {
    auto number = readValue<KtInt64>(value);
    const bool isScanned = scanInt64(number, in, format);
    std::memcpy(value, &number, sizeof number);
    return isScanned;
  }
};

struct Int64Ops : ScalarOps<Int64Value, PlainArrays<KtInt64, true>> {
  static constexpr KtTypeCmpFunc compare = &Int64Compare;
};

}  // namespace kt

#endif
