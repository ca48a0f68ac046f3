// growth.h - what an operation costs in runs of several lengths, and whether that is in proportion to the run.
#ifndef BENCH_SCALING_GROWTH_H
#define BENCH_SCALING_GROWTH_H

#include <algorithm>

namespace kt::scaling {

constexpr unsigned long kSizes[] = {1, 16, 4096, 1048576};
constexpr int kSizeCount = 4;

// A value may cost less in a longer run, not more: from 16 to 4,096 and from there to 1,048,576 values at most twice as much,
// and what memory that no cache holds takes for its bytes. The logarithm of the length grows threefold in the first step:
// that is where n log n exceeds the limit (from there to 1,048,576 it grows by two thirds, as much as caches may make of a
// linear cost), unless what a call costs whatever the length is more than 32 times the factor of n log n, or memory's
// allowance more than four times. Either step is 256 times the length, so that n^1.2 would cost three times as much.
constexpr int kFirstJudged = 2;  // against the size before
constexpr double kMostGrowth = 2;
constexpr double kSlowestMemory = 0.06;  // ns a byte

struct Costs {
  double perValue[kSizeCount];       // ns; 0: not yet measured
  unsigned long counts[kSizeCount];  // values that were measured: the sizes, or what the operation takes at most
  double bytes;                      // of a value, in memory and on disk

  // Of several measurements the least counts, which other work on the machine disturbed least.
  void add(int size, unsigned long count, double nanoseconds) {
    counts[size] = count;
    perValue[size] = perValue[size] == 0 ? nanoseconds : std::min(nanoseconds, perValue[size]);
  }

  bool isLinear() const {
    for (int i = kFirstJudged; i < kSizeCount; ++i) {
      const bool isLonger = counts[i] > counts[i - 1];
      if (isLonger && perValue[i] > kMostGrowth * perValue[i - 1] + kSlowestMemory * bytes) return false;
    }
    return true;
  }
};

}  // namespace kt::scaling

#endif
