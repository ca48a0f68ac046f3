#include "ops/date_kernels.h"

#include "clones.h"

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

// 32 records are kSize vectors; the same bytes of each vector are the same places of records.
template <unsigned kSize>
[[gnu::always_inline]] inline void foldRun(const unsigned char* run, unsigned long count, Fold<kSize>& fold) {
  Vector sums[kSize] = {};
  Vector anys[kSize] = {};
  unsigned long i = 0;
  for (; i + sizeof(Vector) <= count; i += sizeof(Vector)) {
    for (unsigned v = 0; v < kSize; ++v) {
      Vector vector;
      std::memcpy(&vector, run + i * kSize + v * sizeof vector, sizeof vector);
      sums[v] ^= vector;
      anys[v] |= vector;
    }
  }
  // Where vectors hold whole records, one vector's worth of bytes is left.
  constexpr bool kWhole = sizeof(Vector) % kSize == 0;
  for (unsigned v = 1; kWhole && v < kSize; ++v) {
    sums[0] ^= sums[v];
    anys[0] |= anys[v];
  }
  constexpr unsigned kBytes = kWhole ? sizeof(Vector) : sizeof sums;
  unsigned char sumBytes[kBytes];
  unsigned char anyBytes[kBytes];
  std::memcpy(sumBytes, sums, kBytes);
  std::memcpy(anyBytes, anys, kBytes);
  fold = {};
  for (unsigned b = 0; b < kBytes; ++b) {
    fold.sum[b % kSize] ^= sumBytes[b];
    fold.any[b % kSize] |= anyBytes[b];
  }
  for (; i < count; ++i) {
    for (unsigned b = 0; b < kSize; ++b) {
      fold.sum[b] ^= run[i * kSize + b];
      fold.any[b] |= run[i * kSize + b];
    }
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
