// scalar_ops.h - the operations of the rows of plain values of fixed size, written once over the description of one
// value: the scalars (scalar_values.h), integers, booleans, seals and the nullable scalars (…_ops.h).
#ifndef KT_OPS_SCALAR_OPS_H
#define KT_OPS_SCALAR_OPS_H

#include "kttypdsc.h"
#include "ops/run_compare.h"
#include "ops/run_estimate.h"
#include "ops/run_hash.h"
#include "ops/scalar_values.h"
#include "ops/string_array.h"
#include "ops/translate.h"
#include "text/format_or.h"

#include <ktbs.h>

#include <cstdlib>
#include <cstring>
#include <limits>

namespace kt {

// Memory for `count` values of `size` bytes; one byte at least, so that null means exhausted memory (the memory handler
// is called). Freed by std::free.
void* allocateValues(unsigned long count, unsigned long size, bool cleared);

// The same, zeroed; two and more values stand behind a 32-bit word that holds count, the last 4 bytes of a prefix as
// large as the alignment and 4 at least. Freed by freeCounted with the same count.
void* allocateCounted(unsigned long count, unsigned long size, unsigned long alignment);
void freeCounted(void* values, unsigned long count, unsigned long alignment);

// For types without a null value.
int neverNull(void* value);

// How a type's arrays are made.
template <class Memory, bool kZeroed>
struct PlainArrays {
  static void* create(unsigned long count) { return allocateValues(count, sizeof(Memory), kZeroed); }
  static void destroy(void* values, unsigned long) { std::free(values); }
};

template <class Memory>
struct CountedArrays {
  static void* create(unsigned long count) { return allocateCounted(count, sizeof(Memory), alignof(Memory)); }
  static void destroy(void* values, unsigned long count) { freeCounted(values, count, alignof(Memory)); }
};

// Characters start as zeros, other scalars as they come.
template <class Memory>
using ScalarArrays = PlainArrays<Memory, sizeof(Memory) == 1>;

template <class V, class Arrays = ScalarArrays<typename V::Memory>>
struct ScalarOps {
  using Memory = typename V::Memory;
  static constexpr unsigned long kSize = sizeof(Memory);

  static void* create(unsigned long count) { return Arrays::create(count); }

  static void* destroy(void* values, unsigned long count) {
    Arrays::destroy(values, count);
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
  static constexpr KtCopyFunc copy = &assign;

  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count) {
    return V::store(dst, src, format, count);
  }

  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count) {
    return V::load(dst, src, format, count);
  }

  static unsigned long nullSizeGet(unsigned long count) { return V::fileSize(kOrdinaryDiskForm, count); }

  static unsigned long sizeGet(const void*, unsigned char, unsigned char format, unsigned long count) {
    return V::fileSize(format, count);
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

  static long compare(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b,
                      unsigned short, unsigned long count, int& status) {
    return compareOperation<V>(format, lengthA, a, lengthB, b, count, status);
  }

  static float evalAndBound(KtIdxBounds* range, unsigned short& flags, void* key, unsigned char format,
                            unsigned long count, KtIdxBounds* result) {
    return evalAndBoundOperation<V>(range, flags, key, format, count, result);
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
    return makeFilled<ScalarOps>(count, [data](void* values, unsigned long i) {
      const Memory value = fromText(textAt(data, i));
      std::memcpy(static_cast<unsigned char*>(values) + i * kSize, &value, kSize);
    });
  }

  static void* defaultValue(unsigned long count, int) { return convertEmptyStrings(&convertFrom, count); }

  static constexpr KtIsNullFunc isNull = &neverNull;
  static constexpr KtSetNullFunc kSetNull = nullptr;

  // One value, whatever count is: the manager goes through runs.
  static KtString& print(KtString& out, void* values, const char* format, unsigned long) {
    if (values != nullptr) V::print(out, values, formatOrOwn(format));
    return out;
  }

  static void* scan(void* values, KtString& in, const char* format, unsigned long) {
    if (values != nullptr) V::scan(values, in, formatOrOwn(format));
    return values;
  }

private:
  // Who calls without a format gets the one that the description of the value names, or else finds itself: the row's
  // own, or that of its class.
  static const char* formatOrOwn(const char* format) {
    if constexpr (requires { V::kFormat; }) return formatOr(format, V::kFormat);
    return format;
  }

  // A missing or null string converts as an empty one, unless the type says otherwise.
  static Memory fromText(const KtString* text) {
    if (text != nullptr) return V::fromText(*text);
    if constexpr (requires { V::fromNoText(); }) {
      return V::fromNoText();
    } else {
      return V::fromText(KtString::EmptyString());
    }
  }
};

}  // namespace kt

#endif
