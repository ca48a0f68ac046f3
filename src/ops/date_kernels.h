// date_kernels.h - loops over runs of dates and times as raw bytes. None needs alignment; all are pure.
#ifndef KT_OPS_DATE_KERNELS_H
#define KT_OPS_DATE_KERNELS_H

#include "ops/format_code.h"
#include "ops/scalar_values.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace kt {

// A date is one 32-bit word; the half that the year takes has its two bytes exchanged.
constexpr std::uint32_t swapYear(std::uint32_t date) {
  constexpr int kShift = std::endian::native == std::endian::big ? 16 : 0;
  const std::uint32_t year = date >> kShift & 0xFFFFu;
  const std::uint32_t rest = date & ~(0xFFFFu << kShift);
  return rest | (year >> 8 | (year << 8 & 0xFF00u)) << kShift;
}

// The year of a date in the form of the code.
inline std::uint16_t yearOf(unsigned char code, const unsigned char* date) {
  const auto year = readValue<std::uint16_t>(date);
  return isHostLayout(code) ? year : swapBytes(year);
}

// Copies `count` dates with their years swapped. dst and src are equal or do not overlap.
void swapYears(unsigned char* dst, const unsigned char* src, unsigned long count);

// The bytes of a run of records, exclusive-ored place by place (sum) and or-ed (any).
template <unsigned kSize>
struct Fold {
  unsigned char sum[kSize];
  unsigned char any[kSize];
};
void foldRecords(const unsigned char* run, unsigned long count, Fold<3>& fold);
void foldRecords(const unsigned char* run, unsigned long count, Fold<4>& fold);
void foldRecords(const unsigned char* run, unsigned long count, Fold<6>& fold);
void foldRecords(const unsigned char* run, unsigned long count, Fold<7>& fold);
void foldRecords(const unsigned char* run, unsigned long count, Fold<8>& fold);
void foldRecords(const unsigned char* run, unsigned long count, Fold<10>& fold);

// The exclusive or of word(record) over a run. While no byte from kFirstSmall up to kLastSmall of a record has its top
// bit set, the sums in words never carry: then the word of all records is that of their exclusive or.
template <unsigned kSize, unsigned kFirstSmall, unsigned kLastSmall, class Word>
std::uint32_t xorWords(const unsigned char* run, unsigned long count, Word word) {
  constexpr unsigned long kBlock = 4096;
  constexpr unsigned long kFew = 8;  // not worth folding
  std::uint32_t words = 0;
  if (count <= kFew) {
    for (; count != 0; --count, run += kSize) words ^= word(run);
    return words;
  }
  for (unsigned long n; count != 0; count -= n, run += n * kSize) {
    n = count < kBlock ? count : kBlock;
    Fold<kSize> fold;
    foldRecords(run, n, fold);
    unsigned char small = 0;
    for (unsigned i = kFirstSmall; i <= kLastSmall; ++i) small |= fold.any[i];
    if (small < 0x80) {
      words ^= word(fold.sum);
    } else {
      for (unsigned long i = 0; i < n; ++i) words ^= word(run + i * kSize);
    }
  }
  return words;
}

}  // namespace kt

#endif
