#include "ops/date_kernels.h"

#include "clones.h"

#include <type_traits>

namespace kt {
namespace {

// Helpers are always inlined, into clones too: each is compiled with the instructions of the clone it stands in.
[[gnu::always_inline]] inline void swapYearsLoop(unsigned char* dst, const unsigned char* src, unsigned long count) {
  for (unsigned long i = 0; i < count; ++i) {
    const std::uint32_t date = swapYear(readValue<std::uint32_t>(src + 4 * i));
    std::memcpy(dst + 4 * i, &date, sizeof date);
  }
}

KT_CLONES void swapYearsCopy(unsigned char* dst, const unsigned char* src, unsigned long count) {
  swapYearsLoop(dst, src, count);
}
// The compiler vectorises this one because it knows that both are one run.
KT_CLONES void swapYearsInPlace(unsigned char* run, unsigned long count) { swapYearsLoop(run, run, count); }

// Vectors that both machines have: in two registers where there are 16-byte ones only.
using Vector [[gnu::vector_size(32)]] = std::uint64_t;
using UnalignedVector [[gnu::vector_size(32), gnu::aligned(1), gnu::may_alias]] = std::uint64_t;

// Vectors and the rest of the run, where vectors hold whole records: each record is one word.
template <unsigned kSize>
[[gnu::always_inline]] inline void foldWhole(const Vector (&sums)[kSize], const Vector (&anys)[kSize],
                                             const unsigned char* rest, unsigned long count, Fold<kSize>& fold) {
  using Word = std::conditional_t<kSize == 4, std::uint32_t, std::uint64_t>;
  static_assert(sizeof(Word) == kSize);
  Vector sum = sums[0];
  Vector any = anys[0];
  for (unsigned v = 1; v < kSize; ++v) {
    sum ^= sums[v];
    any |= anys[v];
  }
  const std::uint64_t sum8 = sum[0] ^ sum[1] ^ sum[2] ^ sum[3];
  const std::uint64_t any8 = any[0] | any[1] | any[2] | any[3];
  auto sumWord = static_cast<Word>(kSize == 4 ? sum8 ^ sum8 >> 32 : sum8);
  auto anyWord = static_cast<Word>(kSize == 4 ? any8 | any8 >> 32 : any8);
  for (; count != 0; --count, rest += kSize) {
    const auto word = readValue<Word>(rest);
    sumWord ^= word;
    anyWord |= word;
  }
  std::memcpy(fold.sum, &sumWord, kSize);
  std::memcpy(fold.any, &anyWord, kSize);
}

template <unsigned kSize>
[[gnu::always_inline]] inline void foldBytes(const Vector (&sums)[kSize], const Vector (&anys)[kSize],
                                             const unsigned char* rest, unsigned long count, Fold<kSize>& fold) {
  unsigned char sumBytes[sizeof sums];
  unsigned char anyBytes[sizeof anys];
  std::memcpy(sumBytes, sums, sizeof sums);
  std::memcpy(anyBytes, anys, sizeof anys);
  fold = {};
  for (unsigned b = 0; b < sizeof sums; ++b) {
    fold.sum[b % kSize] ^= sumBytes[b];
    fold.any[b % kSize] |= anyBytes[b];
  }
  for (; count != 0; --count, rest += kSize) {
    for (unsigned b = 0; b < kSize; ++b) {
      fold.sum[b] ^= rest[b];
      fold.any[b] |= rest[b];
    }
  }
}

// 32 records are kSize vectors; the same bytes of each vector are the same places of records.
template <unsigned kSize>
[[gnu::always_inline]] inline void foldRun(const unsigned char* run, unsigned long count, Fold<kSize>& fold) {
  Vector sums[kSize];
  Vector anys[kSize];
  for (unsigned v = 0; v < kSize; ++v) sums[v] = anys[v] = Vector{};  // in registers, as an initialiser would not be
  unsigned long i = 0;
  for (; i + sizeof(Vector) <= count; i += sizeof(Vector)) {
    for (unsigned v = 0; v < kSize; ++v) {
      // Reading is the bottleneck, and compilers would read the vector once for each use.
      const Vector vector = *reinterpret_cast<const volatile UnalignedVector*>(run + i * kSize + v * sizeof(Vector));
      sums[v] ^= vector;
      anys[v] |= vector;
    }
  }
  if constexpr (sizeof(Vector) % kSize == 0) {
    foldWhole(sums, anys, run + i * kSize, count - i, fold);
  } else {
    foldBytes(sums, anys, run + i * kSize, count - i, fold);
  }
}

KT_CLONES void foldRun3(const unsigned char* run, unsigned long count, Fold<3>& fold) { foldRun(run, count, fold); }
KT_CLONES void foldRun4(const unsigned char* run, unsigned long count, Fold<4>& fold) { foldRun(run, count, fold); }
KT_CLONES void foldRun6(const unsigned char* run, unsigned long count, Fold<6>& fold) { foldRun(run, count, fold); }
KT_CLONES void foldRun7(const unsigned char* run, unsigned long count, Fold<7>& fold) { foldRun(run, count, fold); }
KT_CLONES void foldRun8(const unsigned char* run, unsigned long count, Fold<8>& fold) { foldRun(run, count, fold); }
KT_CLONES void foldRun10(const unsigned char* run, unsigned long count, Fold<10>& fold) { foldRun(run, count, fold); }

}  // namespace

void swapYears(unsigned char* dst, const unsigned char* src, unsigned long count) {
  if (dst == src) {
    swapYearsInPlace(dst, count);
  } else {
    swapYearsCopy(dst, src, count);
  }
}

void foldRecords(const unsigned char* run, unsigned long count, Fold<3>& fold) { foldRun3(run, count, fold); }
void foldRecords(const unsigned char* run, unsigned long count, Fold<4>& fold) { foldRun4(run, count, fold); }
void foldRecords(const unsigned char* run, unsigned long count, Fold<6>& fold) { foldRun6(run, count, fold); }
void foldRecords(const unsigned char* run, unsigned long count, Fold<7>& fold) { foldRun7(run, count, fold); }
void foldRecords(const unsigned char* run, unsigned long count, Fold<8>& fold) { foldRun8(run, count, fold); }
void foldRecords(const unsigned char* run, unsigned long count, Fold<10>& fold) { foldRun10(run, count, fold); }

}  // namespace kt
