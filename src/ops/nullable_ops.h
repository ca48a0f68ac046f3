// nullable_ops.h - the rows of the nullable scalars, written once over the description of the scalar beneath.
//
// In memory an element is the value and then the null mark, a byte, padded to the value's alignment. Any mark but 0 is
// null there; a null element that the library made holds the value 0.
#ifndef KT_OPS_NULLABLE_OPS_H
#define KT_OPS_NULLABLE_OPS_H

#include "_ktnulty.h"
#include "ops/int64_ops.h"
#include "ops/scalar_ops.h"
#include "ops/scalar_values.h"

#include <algorithm>
#include <cstddef>

namespace kt {

// A double takes 8 bytes of alignment on every platform: stored schemas count on 16 bytes an element.
template <class T>
constexpr std::size_t kNullableAlignment = std::is_same_v<T, double> ? 8 : alignof(T);

template <class T>
struct alignas(kNullableAlignment<T>) NullableMemory {
  T value;
  unsigned char mark;
};

template <class T, std::size_t kSize>
constexpr bool kNullableFits = sizeof(NullableMemory<T>) == kSize&& offsetof(NullableMemory<T>, value) == 0 &&
                               offsetof(NullableMemory<T>, mark) == sizeof(T);
static_assert(kNullableFits<std::int8_t, 2> && kNullableFits<std::uint8_t, 2>);
static_assert(kNullableFits<std::int16_t, 4> && kNullableFits<std::uint16_t, 4>);
static_assert(kNullableFits<std::int32_t, 8> && kNullableFits<std::uint32_t, 8> && kNullableFits<float, 8>);
static_assert(kNullableFits<double, 16> && kNullableFits<KtInt64, 12>);

// DISK: hashes may be stored; the word of a null element, apart from 0 and other small numbers.
constexpr std::uint32_t kNullHashWord = 0x4E554C4C;

// Whether a text stands for null: it begins with the null print string, or both are empty.
bool isNullText(const KtString& text);
KtString nullText();

// Moves one column of a run of records: kWidth bytes of each.
template <unsigned long kWidth>
inline void moveColumn(unsigned char* dst, unsigned long dstStep, const unsigned char* src, unsigned long srcStep,
                       unsigned long count) {
  for (unsigned long i = 0; i < count; ++i) std::memcpy(dst + i * dstStep, src + i * srcStep, kWidth);
}

// DISK: the mark, 0 or 1, and then the value as the plain scalar stores it, packed. In codes with the memory bit the
// value comes first. A mark of exactly 1 is null, any other is not.
template <class V>
struct NullableValue {
  using Memory = NullableMemory<typename V::Memory>;
  static constexpr bool kEqualBytes = true;
  static constexpr const char* kFormat = V::kFormat;

  static unsigned long elementSize(unsigned char code) { return recordOf(code).size; }
  static unsigned long fileSize(unsigned char format, unsigned long count) {
    return V::fileSize(format, count) + count;
  }

  // --- compare --------------------------------------------------------------------------------------------------
  static constexpr bool direct(unsigned char code) { return code == kMemoryForm; }
  static long compareDirect(const unsigned char* a, const unsigned char* b) {
    const KtNullRelation nulls = KtNullRelationOf(a[kWidth] != 0, b[kWidth] != 0);
    return nulls == KtNULL_UNKNOWN ? V::compareDirect(a, b) : KtNullRelationResult(nulls);
  }
  static long compareDisk(unsigned char code, const unsigned char* a, const unsigned char* b) {
    const unsigned long mark = isMemoryForm(code) ? kWidth : 0;  // values are as wide as in memory there
    const unsigned long value = isMemoryForm(code) ? 0 : 1;
    const KtNullRelation nulls = KtNullRelationOf(a[mark] == kNull, b[mark] == kNull);
    return nulls == KtNULL_UNKNOWN ? V::compareDisk(code, a + value, b + value) : KtNullRelationResult(nulls);
  }

  static NullableNumber number(unsigned char code, const unsigned char* p) {
    const Record record = packedRecord(code);
    const bool null = p[record.mark] == kNull;
    return {null ? 0 : V::number(code, p + record.value), null};
  }

  // --- store, load, hash: block by block the bare values, which are a run of the scalar -----------------------------
  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count) {
    const Record record = packedRecord(lowCode(format));
    auto* out = static_cast<unsigned char*>(dst);
    const auto* in = static_cast<const unsigned char*>(src);
    for (unsigned long done = 0; done < count; done += kBlock) {
      const unsigned long n = std::min(count - done, kBlock);
      Block values, disk;
      moveColumn<kWidth>(values, kWidth, in, sizeof(Memory), n);
      V::store(disk, values, format, n);
      if (record.width == kWidth) {
        moveColumn<kWidth>(out + record.value, record.size, disk, kWidth, n);
      } else {
        moveColumn<kShortWidth>(out + record.value, record.size, disk, kShortWidth, n);
      }
      for (unsigned long i = 0; i < n; ++i) out[i * record.size + record.mark] = in[i * sizeof(Memory) + kWidth] != 0;
      in += n * sizeof(Memory);
      out += n * record.size;
    }
    return count * record.size;
  }

  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count) {
    const Record record = packedRecord(lowCode(format));
    auto* out = static_cast<unsigned char*>(dst);
    const auto* in = static_cast<const unsigned char*>(src);
    for (unsigned long done = 0; done < count; done += kBlock) {
      const unsigned long n = std::min(count - done, kBlock);
      Block values, disk;
      takeValues(disk, in, record, n);
      V::load(values, disk, format, n);
      moveColumn<kWidth>(out, sizeof(Memory), values, kWidth, n);
      for (unsigned long i = 0; i < n; ++i) {
        unsigned char* element = out + i * sizeof(Memory);
        element[kWidth] = 0;
        if (in[i * record.size + record.mark] == kNull) setNull(element);
      }
      in += n * record.size;
      out += n * sizeof(Memory);
    }
    return count * record.size;
  }

  // Nulls count as the value 0, whose word is 0, and then by their number.
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long count) {
    const Record record = recordOf(code);
    std::uint32_t words = 0;
    unsigned long nulls = 0;
    for (unsigned long done = 0; done < count; done += kBlock) {
      const unsigned long n = std::min(count - done, kBlock);
      Block values;
      takeValues(values, p, record, n);
      for (unsigned long i = 0; i < n; ++i) {
        const unsigned char mark = p[i * record.size + record.mark];
        if (code == kMemoryForm ? mark == 0 : mark != kNull) continue;
        std::memset(values + i * record.width, 0, record.width);
        ++nulls;
      }
      words ^= V::hashWords(code, values, n);
      p += n * record.size;
    }
    return words ^ (nulls % 2 == 0 ? 0 : kNullHashWord);
  }

  // --- null and text --------------------------------------------------------------------------------------------
  static bool isNull(const unsigned char* element) { return element[kWidth] != 0; }
  static int markOf(const unsigned char* element) { return static_cast<signed char>(element[kWidth]); }
  static void setNull(unsigned char* element) {
    std::memset(element, 0, kWidth);
    element[kWidth] = kNull;
  }
  static Memory fromNoText() { return {{}, kNull}; }
  static KtString toText(Memory v) { return v.mark != 0 ? nullText() : V::toText(v.value); }
  static Memory fromText(const KtString& s) { return isNullText(s) ? fromNoText() : Memory{V::fromText(s), 0}; }
  static void print(KtString& out, void* value, const char* format) {
    if (isNull(static_cast<unsigned char*>(value))) {
      out = nullText();
    } else {
      V::print(out, value, format);
    }
  }
  static bool scan(void* value, const KtString& in, const char* format) {
    auto* element = static_cast<unsigned char*>(value);
    if (isNullText(in)) {
      setNull(element);
      return true;
    }
    if (!V::scan(element, in, format)) return false;
    element[kWidth] = 0;
    return true;
  }

private:
  static constexpr unsigned long kWidth = sizeof(typename V::Memory);  // and the place of the mark in memory
  static constexpr unsigned long kShortWidth = 2;                      // of an int on disk in code 4
  static constexpr unsigned char kNull = 1;
  static constexpr unsigned long kBlock = 64;
  using Block = unsigned char[kBlock * kWidth];

  // Where things lie in an element, and the value's bytes.
  struct Record {
    unsigned long size, value, mark, width;
  };
  static Record packedRecord(unsigned char code) {
    const unsigned long width = V::elementSize(code);
    return isMemoryForm(code) ? Record{width + 1, 0, width, width} : Record{width + 1, 1, 0, width};
  }
  static Record recordOf(unsigned char code) {
    return code == kMemoryForm ? Record{sizeof(Memory), 0, kWidth, kWidth} : packedRecord(code);
  }
  static void takeValues(unsigned char* values, const unsigned char* run, const Record& record, unsigned long n) {
    if (record.width == kWidth) {
      moveColumn<kWidth>(values, kWidth, run + record.value, record.size, n);
    } else {
      moveColumn<kShortWidth>(values, kShortWidth, run + record.value, record.size, n);
    }
  }
};

// New elements are null.
template <class V>
struct NullableOps : ScalarOps<NullableValue<V>, CountedArrays<typename NullableValue<V>::Memory>> {
  using Value = NullableValue<V>;
  using Base = ScalarOps<Value, CountedArrays<typename Value::Memory>>;

  static void* create(unsigned long count) {
    void* values = Base::create(count);
    if (values != nullptr) construct(values, count == 0 ? 1 : count, 0);
    return values;
  }
  static void construct(void* values, unsigned long count, unsigned long) {
    unsigned char element[Base::kSize] = {};
    Value::setNull(element);
    Base::assign(values, element, count, 1);
  }
  static void* defaultValue(unsigned long count, int) { return create(count); }
  // The mark as it is, a signed byte.
  static int isNull(void* value) { return Value::markOf(static_cast<unsigned char*>(value)); }
  static int setNull(void* value) {
    Value::setNull(static_cast<unsigned char*>(value));
    return 0;
  }
  static constexpr KtSetNullFunc kSetNull = &setNull;
};

}  // namespace kt

#endif
