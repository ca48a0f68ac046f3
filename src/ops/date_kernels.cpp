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

// Eight records are kSize words. kRows times as many keep the loads busy; a column of words is the same places of
// records in every row.
template <unsigned kSize>
[[gnu::always_inline]] inline void foldRun(const unsigned char* run, unsigned long count, Fold<kSize>& fold) {
  constexpr unsigned kRows = kSize <= 4 ? 4 : 1;
  constexpr unsigned kWords = kRows * kSize;
  constexpr unsigned long kRecords = 8 * kRows;
  std::uint64_t sums[kWords] = {};
  std::uint64_t anys[kWords] = {};
  unsigned long i = 0;
  for (; i + kRecords <= count; i += kRecords) {
    for (unsigned w = 0; w < kWords; ++w) {
      const auto word = readValue<std::uint64_t>(run + i * kSize + 8 * w);
      sums[w] ^= word;
      anys[w] |= word;
    }
  }
  // Words that hold whole records are all alike; else only those of one column are.
  constexpr unsigned kColumns = 8 % kSize == 0 ? 1 : kSize;
  for (unsigned w = kColumns; w < kWords; ++w) {
    sums[w % kColumns] ^= sums[w];
    anys[w % kColumns] |= anys[w];
  }
  unsigned char sumBytes[8 * kColumns];
  unsigned char anyBytes[8 * kColumns];
  std::memcpy(sumBytes, sums, sizeof sumBytes);
  std::memcpy(anyBytes, anys, sizeof anyBytes);
  fold = {};
  for (unsigned b = 0; b < 8 * kColumns; ++b) {
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
