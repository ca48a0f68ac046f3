// run_compare.h - the compare contract, once for all types of fixed size.
//
// A description V of one value supplies:
//   kEqualBytes                          whether equal bytes always compare as 0 (then they are skipped)
//   elementSize(code)                    bytes of one value in the format code
//   direct(code)                         whether compareDirect applies to the code
//   compareDirect(a, b)                  compares two values in memory layout
//   compareDisk(code, a, b)              compares two values in the disk form of the code
#ifndef KT_OPS_RUN_COMPARE_H
#define KT_OPS_RUN_COMPARE_H

#include "kttypdsc.h"
#include "ops/format_code.h"
#include "ops/kernels.h"

namespace kt {

// The two runs of a compare. A length of 0 stands for exactly count values.
struct RunPair {
  const unsigned char* a;
  const unsigned char* b;
  unsigned long lengthA;
  unsigned long lengthB;
  unsigned long count;
  unsigned long size;  // of one value

  unsigned long readable(unsigned long length) const {
    return length == 0 || length / size > count ? count : length / size;
  }
  // Pairs that both runs hold in full.
  unsigned long readablePairs() const {
    const unsigned long inA = readable(lengthA);
    const unsigned long inB = readable(lengthB);
    return inA < inB ? inA : inB;
  }
  static bool startsInside(unsigned long offset, unsigned long length) { return length == 0 || offset < length; }
  // 2101 when there is a value behind the readable pairs that is asked for and begins at or after the end of a run.
  int statusBehind(unsigned long pairs) const {
    const unsigned long offset = pairs * size;
    return pairs < count && !(startsInside(offset, lengthA) && startsInside(offset, lengthB)) ? KtERR_OVERRUN : 0;
  }
  // A count that no memory can hold, in runs without lengths, stands for all memory.
  unsigned long bytesOf(unsigned long pairs) const {
    unsigned long bytes;
    return __builtin_mul_overflow(pairs, size, &bytes) ? ~0ul - size : bytes;
  }
};

// Where the value begins that byte `offset` of a run belongs to.
inline unsigned long valueStart(unsigned long offset, unsigned long size) {
  const bool isPowerOfTwo = (size & (size - 1)) == 0;  // a division takes as long as comparing many values
  return isPowerOfTwo ? offset & (0 - size) : offset - offset % size;
}

// Compares pair by pair and stops at the first difference. compareOne(a, b) compares one pair.
template <bool kSkipEqualBytes, class CompareOne>
long compareRuns(const RunPair& runs, int& status, CompareOne compareOne) {
  const unsigned long pairs = runs.readablePairs();
  const unsigned long size = runs.size, bytes = runs.bytesOf(pairs);
  for (unsigned long at = 0; at < bytes; at += size) {
    if constexpr (kSkipEqualBytes) {
      at += equalBytes(runs.a + at, runs.b + at, bytes - at);
      if (at >= bytes) break;
      at = valueStart(at, size);
    }
    const long result = compareOne(runs.a + at, runs.b + at);
    if (result != 0) {
      status = at + size < bytes ? 0 : runs.statusBehind(pairs);
      return result;
    }
  }
  if (pairs < runs.count) status = KtERR_OVERRUN;
  return 0;
}

// Whether a run of that length (0: exactly what is asked for) holds a value of the size in full.
constexpr bool holdsOne(unsigned long length, unsigned long size) { return length - 1 >= size - 1; }

// Everything but one value in memory layout. Apart, so that the common case needs no stack frame.
template <class V>
[[gnu::noinline]] long compareMany(unsigned char code, unsigned long lengthA, const unsigned char* a,
                                   unsigned long lengthB, const unsigned char* b, unsigned long count, int& status) {
  if (count == 0) return 0;
  const unsigned long size = V::elementSize(code);
  if (count == 1 && !V::direct(code) && holdsOne(lengthA, size) && holdsOne(lengthB, size)) {
    return V::compareDisk(code, a, b);
  }
  const RunPair runs{a, b, lengthA, lengthB, count, size};
  if (V::direct(code)) {
    return compareRuns<V::kEqualBytes>(
        runs, status, [](const unsigned char* x, const unsigned char* y) { return V::compareDirect(x, y); });
  }
  return compareRuns<V::kEqualBytes>(
      runs, status, [code](const unsigned char* x, const unsigned char* y) { return V::compareDisk(code, x, y); });
}

// The body of a type's compare function.
template <class V>
inline long compareOperation(unsigned char format, unsigned long lengthA, const void* a, unsigned long lengthB,
                             const void* b, unsigned long count, int& status) {
  const auto* bytesA = static_cast<const unsigned char*>(a);
  const auto* bytesB = static_cast<const unsigned char*>(b);
  const unsigned char code = lowCode(format);
  status = 0;
  // What an index asks for millions of times: one value, in memory layout.
  if (count == 1 && V::direct(code)) {
    const unsigned long size = V::elementSize(code);
    if (holdsOne(lengthA, size) && holdsOne(lengthB, size)) return V::compareDirect(bytesA, bytesB);
  }
  return compareMany<V>(code, lengthA, bytesA, lengthB, bytesB, count, status);
}

}  // namespace kt

// The exported compare function of a row: it does what `operation` does, which takes the same parameters.
#define KT_COMPARE_COVER(name, operation)                                                         \
  long name(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b, \
            unsigned short options, unsigned long count, int& status) {                           \
    return operation(format, lengthA, a, lengthB, b, options, count, status);                     \
  }

#endif
