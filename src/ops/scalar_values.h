// scalar_values.h - the plain scalars, one description each: how one value is stored, compared, hashed, estimated,
// converted, and printed and scanned by a format (scan tells whether the text matched). kFormat is that of the row, and of
// the nullable one.
#ifndef KT_OPS_SCALAR_VALUES_H
#define KT_OPS_SCALAR_VALUES_H

#include "byte_order.h"
#include "ktstring.h"
#include "ops/format_code.h"
#include "ops/kernels.h"
#include "ops/scalar_text.h"

#include <ktbs.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace kt {

// Made of its bytes: no constructor runs (that of a date would read the clock).
template <class Memory>
inline Memory readValue(const void* p) {
  struct {
    unsigned char bytes[sizeof(Memory)];
  } value;
  std::memcpy(&value, p, sizeof value);
  return std::bit_cast<Memory>(value);
}

// One value from its disk form.
template <class V>
inline typename V::Memory loadValue(unsigned char code, const void* p) {
  unsigned char memory[sizeof(typename V::Memory)] = {};
  V::load(memory, p, code, 1);
  return readValue<typename V::Memory>(memory);
}

// -1, 0 or +1. A NaN is neither below nor above anything: 0.
template <class Memory>
inline long threeWay(Memory a, Memory b) {
  return static_cast<long>(a > b) - static_cast<long>(a < b);
}

// What the scalars of one width share: comparing them as they lie in memory, or after conversion by V::load.
template <class V, class MemoryType>
struct ScalarCompare {
  using Memory = MemoryType;
  static constexpr bool kEqualBytes = true;
  static constexpr unsigned long elementSize(unsigned char) { return sizeof(Memory); }
  static constexpr bool direct(unsigned char code) { return isHostLayout(code); }
  static long compareDirect(const unsigned char* a, const unsigned char* b) {
    return threeWay(readValue<Memory>(a), readValue<Memory>(b));
  }
  // Side by side, not by loadValue: a value from one call would have to be kept across the other.
  static long compareDisk(unsigned char code, const unsigned char* a, const unsigned char* b) {
    Memory valueA;
    Memory valueB;
    V::load(&valueA, a, code, 1);
    V::load(&valueB, b, code, 1);
    return threeWay(valueA, valueB);
  }
  static double number(unsigned char code, const unsigned char* p) {
    return static_cast<double>(loadValue<V>(code, p));
  }
};

// --- 8 bits: the format never matters ----------------------------------------------------------------------------
template <class Memory>
struct ByteFamily : ScalarCompare<ByteFamily<Memory>, Memory> {
  static constexpr char kFormat[] = "%c";
  static constexpr bool direct(unsigned char) { return true; }
  static unsigned long store(void* dst, const void* src, unsigned char f, unsigned long n) {
    return CharStore(dst, src, f, n);
  }
  static unsigned long load(void* dst, const void* src, unsigned char f, unsigned long n) {
    return CharStore(dst, src, f, n);
  }
  static unsigned long fileSize(unsigned char, unsigned long count) { return count; }
  static std::uint32_t hashWords(unsigned char, const unsigned char* p, unsigned long n) {
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<Memory>(xor8(p, n))));
  }
  // The code as a signed number: a byte of 200 is "-56".
  static KtString toText(Memory v) { return KtString(static_cast<short>(static_cast<signed char>(v))); }
  static Memory fromText(const KtString& s) { return static_cast<Memory>(static_cast<short>(s)); }
  static void print(KtString& out, void* value, const char* format) { printChars(out, value, format, 1); }
  static bool scan(void* value, const KtString& in, const char* format) { return scanCharValue(value, in, format); }
};
using CharValue = ByteFamily<std::int8_t>;
using ByteValue = ByteFamily<std::uint8_t>;

// --- 16 bits ---------------------------------------------------------------------------------------------------------
template <class Memory>
struct ShortFamily : ScalarCompare<ShortFamily<Memory>, Memory> {
  static constexpr const char* kFormat = std::is_signed_v<Memory> ? "%hd" : "%hu";
  static unsigned long store(void* dst, const void* src, unsigned char f, unsigned long n) {
    return ShortStore(dst, src, f, n);
  }
  static unsigned long load(void* dst, const void* src, unsigned char f, unsigned long n) {
    return ShortStore(dst, src, f, n);
  }
  static unsigned long fileSize(unsigned char, unsigned long count) { return 2 * count; }
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
    const std::uint16_t words = xor16(p, n);
    const auto value = static_cast<Memory>(isHostLayout(code) ? words : swapBytes(words));
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
  }
  static KtString toText(Memory v) { return KtString(static_cast<short>(v)); }
  static Memory fromText(const KtString& s) { return static_cast<Memory>(static_cast<short>(s)); }
  static void print(KtString& out, void* value, const char* format) { printShort(out, value, format, 1); }
  static bool scan(void* value, const KtString& in, const char* format) { return scanShortValue(value, in, format); }
};
using ShortValue = ShortFamily<std::int16_t>;
using WordValue = ShortFamily<std::uint16_t>;

// --- 32 bits ---------------------------------------------------------------------------------------------------------
// The decimal value of a text, saturated where the host's long is wider than what is stored.
inline std::int32_t storedLong(const KtString& s) {
  const long value = s;
  if (value > INT32_MAX) return INT32_MAX;
  return value < INT32_MIN ? INT32_MIN : static_cast<std::int32_t>(value);
}

template <class Memory>
struct LongFamily : ScalarCompare<LongFamily<Memory>, Memory> {
  static constexpr const char* kFormat = std::is_signed_v<Memory> ? "%ld" : "%lu";
  static unsigned long store(void* dst, const void* src, unsigned char f, unsigned long n) {
    return LongStore(dst, src, f, n);
  }
  static unsigned long load(void* dst, const void* src, unsigned char f, unsigned long n) {
    return LongStore(dst, src, f, n);
  }
  static unsigned long fileSize(unsigned char, unsigned long count) { return 4 * count; }
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
    const std::uint32_t words = xor32(p, n);
    return isHostLayout(code) ? words : swapBytes(words);
  }
  // Unsigned values above 2,147,483,647 read as negative numbers.
  static KtString toText(Memory v) { return KtString(static_cast<long>(static_cast<std::int32_t>(v))); }
  static Memory fromText(const KtString& s) { return static_cast<Memory>(storedLong(s)); }
  static void print(KtString& out, void* value, const char* format) { printLong(out, value, format, 1); }
  static bool scan(void* value, const KtString& in, const char* format) { return scanLongValue(value, in, format); }
};
using LongValue = LongFamily<std::int32_t>;
using DwordValue = LongFamily<std::uint32_t>;

// --- int: two bytes on disk in format 4 ----------------------------------------------------------------------------
// Always compared by the signed loader: unsigned values of two bytes compare sign-extended.
template <class Memory, bool kUnsignedStorage>
struct IntFamily : ScalarCompare<IntFamily<Memory, false>, Memory> {
  static constexpr const char* kFormat = std::is_signed_v<Memory> ? "%d" : "%u";
  static unsigned long elementSize(unsigned char code) {
    return code == kMemoryForm ? sizeof(Memory) : IntSizeGet(nullptr, kMemoryForm, code, 1);
  }
  static constexpr bool direct(unsigned char code) { return code != kShortInts && isHostLayout(code); }
  static double number(unsigned char code, const unsigned char* p) { return loadValue<IntFamily>(code, p); }
  static unsigned long store(void* dst, const void* src, unsigned char f, unsigned long n) {
    return kUnsignedStorage ? UnsignedStore(dst, src, f, n) : IntStore(dst, src, f, n);
  }
  static unsigned long load(void* dst, const void* src, unsigned char f, unsigned long n) {
    return kUnsignedStorage ? UnsignedLoad(dst, src, f, n) : IntLoad(dst, src, f, n);
  }
  static unsigned long fileSize(unsigned char f, unsigned long count) {
    return IntSizeGet(nullptr, kMemoryForm, f, count);
  }
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
    if (elementSize(code) == 2) {
      const std::uint16_t disk = xor16(p, n);  // extension and exclusive or may change places
      std::uint32_t word;
      load(&word, &disk, code, 1);
      return word;
    }
    const std::uint32_t words = xor32(p, n);
    return isHostLayout(code) ? words : swapBytes(words);
  }
  static KtString toText(Memory v) { return KtString(static_cast<int>(v)); }
  static Memory fromText(const KtString& s) { return static_cast<Memory>(static_cast<int>(s)); }
  static void print(KtString& out, void* value, const char* format) { printLong(out, value, format, 1); }
  static bool scan(void* value, const KtString& in, const char* format) { return scanLongValue(value, in, format); }
};
using IntValue = IntFamily<std::int32_t, false>;
using UnsignedValue = IntFamily<std::uint32_t, true>;
struct EnumValue : IntValue {};

// --- IEEE numbers: -0 equals 0, NaN everything ----------------------------------------------------------------------
// The width of a range of fractions says little about the number of keys in it: an estimate of next to nothing would
// pass for certainty. It stops at the step between 1 and the next float.
constexpr double kLeastRealShare = 1.1920928955078125e-7;

template <class Memory>
struct RealFamily : ScalarCompare<RealFamily<Memory>, Memory> {
  static constexpr bool kIsFloat = std::is_same_v<Memory, float>;
  static constexpr const char* kFormat = kIsFloat ? "%f" : "%lf";
  static constexpr double kLeastShare = kLeastRealShare;
  static unsigned long store(void* dst, const void* src, unsigned char f, unsigned long n) {
    return kIsFloat ? FloatStore(dst, src, f, n) : DoubleStore(dst, src, f, n);
  }
  static unsigned long load(void* dst, const void* src, unsigned char f, unsigned long n) {
    return store(dst, src, f, n);
  }
  static unsigned long fileSize(unsigned char, unsigned long count) { return sizeof(Memory) * count; }
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
    return kIsFloat ? xorFloats(p, n, !isHostLayout(code)) : xorDoubles(p, n, !isHostLayout(code));
  }
  static KtString toText(Memory v) { return KtString(static_cast<double>(v)); }
  static Memory fromText(const KtString& s) { return static_cast<Memory>(static_cast<double>(s)); }
  static void print(KtString& out, void* value, const char* format) {
    kIsFloat ? printFloat(out, value, format, 1) : printDouble(out, value, format, 1);
  }
  static bool scan(void* value, const KtString& in, const char* format) {
    return kIsFloat ? scanFloatValue(value, in, format) : scanDoubleValue(value, in, format);
  }
};
using FloatValue = RealFamily<float>;
using DoubleValue = RealFamily<double>;

}  // namespace kt

#endif
