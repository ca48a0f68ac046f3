// boolean_ops.h - the row of KtBoolean.
#ifndef KT_OPS_BOOLEAN_OPS_H
#define KT_OPS_BOOLEAN_OPS_H

#include "ktbool.h"
#include "kttypops.h"
#include "ops/class_text.h"
#include "ops/scalar_ops.h"
#include "ops/scalar_values.h"

namespace kt {

// DISK: the byte, in every format code.
struct BooleanValue : ClassText<KtBoolean> {
  using Memory = KtBoolean;
  static constexpr bool kEqualBytes = true;
  static constexpr unsigned long elementSize(unsigned char) { return 1; }
  static constexpr bool direct(unsigned char) { return true; }
  // The two relations are not each other's opposite for bytes beyond 0, 1 and null.
  static long compareDirect(const unsigned char* a, const unsigned char* b) {
    const auto first = readValue<KtBoolean>(a);
    const auto second = readValue<KtBoolean>(b);
    return first < second ? -1 : first > second;
  }
  static long compareDisk(unsigned char, const unsigned char* a, const unsigned char* b) { return compareDirect(a, b); }
  static unsigned long store(void* dst, const void* src, unsigned char f, unsigned long n) {
    return CharStore(dst, src, f, n);
  }
  static unsigned long load(void* dst, const void* src, unsigned char f, unsigned long n) {
    return CharStore(dst, src, f, n);
  }
  static unsigned long fileSize(unsigned char, unsigned long count) { return count; }
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n);
};

struct BooleanOps : ScalarOps<BooleanValue, CountedArrays<KtBoolean>> {
  static constexpr KtTypeCmpFunc compare = &BooleanCompare;
  // One of null, false and true, where a range is known.
  static float evalAndBound(KtIdxBounds* range, unsigned short& flags, void* key, unsigned char format,
                            unsigned long count, KtIdxBounds* result);
  static void* defaultValue(unsigned long count, int asNull);
  static int isNull(void* value) { return readValue<KtBoolean>(value).IsNullValue(); }
  static int setNull(void* value) { return static_cast<KtBoolean*>(value)->SetNullValue(); }
  static constexpr KtSetNullFunc kSetNull = &setNull;
};

}  // namespace kt

#endif
