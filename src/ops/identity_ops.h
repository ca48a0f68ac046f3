// identity_ops.h - the rows of object ids, class ids and references.
#ifndef KT_OPS_IDENTITY_OPS_H
#define KT_OPS_IDENTITY_OPS_H

#include "ktclassid.h"
#include "ktobjid.h"
#include "ktref.h"
#include "kttypops.h"
#include "ops/class_text.h"
#include "ops/scalar_ops.h"
#include "ops/scalar_values.h"
#include "values/identity_text.h"

#include <cstdint>
#include <cstring>

namespace kt {

// DISK: block and low (32 bits each), high (16), packed; big-endian in code 2, else little-endian.
struct ObjIdDisk {
  static constexpr unsigned long kSize = 10;
  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count);
  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count);
  static std::uint64_t key(const unsigned char* p);
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n);
};

// DISK: class number and version (16 bits each); byte order as above.
struct ClassIdDisk {
  static constexpr unsigned long kSize = 4;
  static constexpr std::uint64_t kNullKey = 0xFFFFFFFFu;  // comes before all others
  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count);
  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count);
  static std::uint64_t key(const unsigned char* p);
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n);
};

// DISK: an object id, database and class number (16 bits each); the version is not stored. Byte order as above.
struct RefDisk {
  static constexpr unsigned long kSize = 14;
  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count);
  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count);
  static std::uint64_t key(const unsigned char* p);
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n);
};

// The first bytes that differ, from the most significant one down: a's minus b's.
long byteDifference(std::uint64_t a, std::uint64_t b);

// One identity. Disk::key is what orders the little-endian disk form, as a number: its bytes are compared. That order is
// used for every disk form, and for a KtRef it is not the order in memory.
template <class MemoryType, class Disk>
struct IdentityValue : ClassText<MemoryType> {
  using Memory = MemoryType;
  static constexpr bool kEqualBytes = true;
  static constexpr unsigned long elementSize(unsigned char code) {
    return code == kMemoryForm ? sizeof(Memory) : Disk::kSize;
  }
  static constexpr bool direct(unsigned char code) { return code == kMemoryForm; }
  static long compareDirect(const unsigned char* a, const unsigned char* b) {
    return readValue<Memory>(a) != readValue<Memory>(b);
  }
  static long compareDisk(unsigned char, const unsigned char* a, const unsigned char* b) {
    const std::uint64_t keyA = Disk::key(a);
    const std::uint64_t keyB = Disk::key(b);
    if constexpr (requires { Disk::kNullKey; }) {
      if (keyA != keyB && (keyA == Disk::kNullKey || keyB == Disk::kNullKey)) return keyA == Disk::kNullKey ? -1 : 1;
    }
    return byteDifference(keyA, keyB);
  }
  static constexpr auto store = &Disk::store;
  static constexpr auto load = &Disk::load;
  static constexpr auto hashWords = &Disk::hashWords;
  static unsigned long fileSize(unsigned char, unsigned long count) { return Disk::kSize * count; }

  // Null values are null strings, and so are empty ones: the default value is null.
  static KtString toText(const Memory& v) {
    KtString text;
    if (v.IsNullValue()) {
      text.SetNullValue();
    } else {
      v.PrintToKtString(text);
    }
    return text;
  }
  static Memory fromText(const KtString& s) {
    Memory value = fromNoText();
    if (!s.IsEmpty()) value.ScanFromKtString(s);
    return value;
  }
  static Memory fromNoText() {
    Memory value;
    value.SetNullValue();
    return value;
  }
};

template <class V>
struct IdentityOps : ScalarOps<V, PlainArrays<typename V::Memory, true>> {
  using Memory = typename V::Memory;
  using Base = ScalarOps<V, PlainArrays<Memory, true>>;

  // Only the format 8 is memory form: not code 1, and not 8 with one of the high bits.
  static constexpr unsigned char wholeCode(unsigned char format) {
    return format == kMemoryForm ? kMemoryForm : kOrdinaryDiskForm;
  }
  // A difference ends the compare: whether the runs go on is not looked at.
  static long compare(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b,
                      unsigned short, unsigned long count, int& status) {
    const long result = compareOperation<V>(wholeCode(format), lengthA, a, lengthB, b, count, status);
    if (result != 0) status = 0;
    return result;
  }
  static unsigned long hash(unsigned char format, unsigned long length, void* values, unsigned long count,
                            int& status) {
    return hashOperation<V>(wholeCode(format), length, values, count, status);
  }
  static int isNull(void* value) { return readValue<Memory>(value).IsNullValue(); }
  static int setNull(void* value) {
    auto memory = readValue<Memory>(value);
    memory.SetNullValue();
    std::memcpy(value, &memory, sizeof memory);
    return 0;
  }
  static constexpr KtSetNullFunc kSetNull = &setNull;
  // Null values, asked for or not.
  static void* defaultValue(unsigned long count, int) { return convertEmptyStrings(&Base::convertFrom, count); }
};

struct ObjIdValue : IdentityValue<KtObjId, ObjIdDisk> {
  static constexpr KeyRange<double> kUnknownRange{0, 0};
  static double number(unsigned char code, const unsigned char* p);
};

struct RefValue : IdentityValue<KtRef, RefDisk> {
  static constexpr const char* kFormat = kVersionedRefFormat;  // all fields, unlike the class
};

struct ObjIdOps : IdentityOps<ObjIdValue> {
  static constexpr KtTypeCmpFunc compare = &ObjIdCompare;
};
struct ClassIdOps : IdentityOps<IdentityValue<KtClassId, ClassIdDisk>> {
  static constexpr KtTypeCmpFunc compare = &ClassIdCompare;
  // No index narrows by class: everything is selected, and nothing bounds the scan.
  static float evalAndBound(KtIdxBounds*, unsigned short&, void*, unsigned char, unsigned long, KtIdxBounds*) {
    return 1;
  }
};
struct RefOps : IdentityOps<RefValue> {
  static constexpr KtTypeCmpFunc compare = &RefCompare;
  // The share of all references there can be, whatever the range; the flags are always masked.
  static float evalAndBound(KtIdxBounds* range, unsigned short& flags, void* key, unsigned char format,
                            unsigned long count, KtIdxBounds* result);
};

}  // namespace kt

#endif
