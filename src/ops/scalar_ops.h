// scalar_ops.h - the operations of the plain scalar rows, written once over the description of one value
// (scalar_values.h). Text forms stand in scalar_text.h.
#ifndef KT_OPS_SCALAR_OPS_H
#define KT_OPS_SCALAR_OPS_H

#include "kttypdsc.h"
#include "ops/run_hash.h"
#include "ops/scalar_values.h"
#include "ops/string_array.h"
#include "ops/translate.h"

#include <ktbs.h>

#include <cstdlib>
#include <cstring>
#include <limits>

namespace kt {

// Memory for `count` values of `size` bytes; one byte at least, so that null means exhausted memory (the memory handler
// is called). Freed by std::free.
void* allocateValues(unsigned long count, unsigned long size, bool cleared);

// For types without a null value.
int neverNull(void* value);

template <class V>
struct ScalarOps {
  using Memory = typename V::Memory;
  static constexpr unsigned long kSize = sizeof(Memory);
  static constexpr bool kCleared = kSize == 1;  // characters start as zeros, other scalars as they come

  static void* create(unsigned long count) { return allocateValues(count, kSize, kCleared); }

  static void* destroy(void* values, unsigned long) {
    std::free(values);
    return nullptr;
  }

  static void construct(void* values, unsigned long count, unsigned long) {
    if (count != 0) std::memset(values, 0, count * kSize);
  }

  static void destruct(void*, unsigned long, unsigned long) {}

  // Bytes, never numbers: a signalling NaN moves unchanged.
  static void assign(void* dst, void* src, unsigned long count, int fill) {
    if (count == 0) return;
    if (fill == 0) {
      std::memmove(dst, src, count * kSize);
      return;
    }
    unsigned char value[kSize];
    std::memcpy(value, src, kSize);
    auto* out = static_cast<unsigned char*>(dst);
    for (unsigned long i = 0; i < count; ++i) std::memcpy(out + i * kSize, value, kSize);
  }

  static unsigned long sizeGetFromMemFile(MemFile*, unsigned char format, unsigned long count) {
    return V::fileSize(format, count);
  }

  static unsigned long translate(void* dst, unsigned char dstFormat, unsigned long dstLength, void* src,
                                 unsigned char srcFormat, unsigned long srcLength, unsigned long count) {
    return translateRun(
        dst, dstFormat, dstLength, src, srcFormat, srcLength, [&] { return V::load(dst, src, srcFormat, count); },
        [&] { return V::store(dst, src, lowCode(dstFormat), count); },
        [&] {
          assign(dst, src, count, 0);
          return count * kSize;
        });
  }

  static unsigned long hash(unsigned char format, unsigned long length, void* values, unsigned long count,
                            int& status) {
    return hashOperation<V>(format, length, values, count, status);
  }

  static KtTypeConvertData* convertTo(void* values, unsigned long count) {
    const auto* p = static_cast<const unsigned char*>(values);
    return convertToStrings(count, [p](unsigned long i) { return V::toText(readValue<Memory>(p + i * kSize)); });
  }

  static void* convertFrom(KtTypeConvertData* data, unsigned long count) {
    auto* values = static_cast<unsigned char*>(create(count));
    for (unsigned long i = 0; values != nullptr && i < count; ++i) {
      const KtString* text = stringAt(data, i);
      const Memory value = V::fromText(text != nullptr ? *text : KtString::EmptyString());
      std::memcpy(values + i * kSize, &value, kSize);
    }
    return values;
  }

  static void* defaultValue(unsigned long count, int) { return convertEmptyStrings(&convertFrom, count); }
};

}  // namespace kt

#endif
