// run_data.h - runs of fixed-width values: equal pairs, and pairs that differ in their last value only.
#ifndef BENCH_RUN_DATA_H
#define BENCH_RUN_DATA_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <random>
#include <type_traits>
#include <vector>

namespace kt::bench {

constexpr long kRunSizes[] = {1, 16, 4096, 1 << 20};
constexpr int kShortRuns = 1000;  // short runs a batch: their values stay in the first-level cache

template <class T>
struct Runs {
  std::vector<T> values, same, lastDiffers;

  explicit Runs(long count) : values(static_cast<std::size_t>(count)), targetBlock_(values.size() + kHalfPage) {
    std::mt19937_64 random(20240229);
    for (T& value : values) {
      if constexpr (std::is_floating_point_v<T>)
        value = static_cast<T>(static_cast<std::int64_t>(random()) >> 20) / 1024;
      else
        value = static_cast<T>(random());
    }
    same = lastDiffers = values;
    if constexpr (std::is_floating_point_v<T>)
      lastDiffers.back() += 1;
    else
      lastDiffers.back() = static_cast<T>(lastDiffers.back() ^ 1);
  }

  // Room for the values. Half a page off: stores right before a load, whole pages apart, would make the processor wait.
  T* target() { return targetBlock_.data() + kHalfPage; }

  long count() const { return static_cast<long>(values.size()); }
  std::size_t bytes() const { return values.size() * sizeof(T); }

private:
  static constexpr std::size_t kHalfPage = 2048 / sizeof(T);
  std::vector<T> targetBlock_;
};

// The floor of what looks at every byte: the sum of the words, read in the widest vectors. bytes is a multiple of 128.
std::uint64_t readBytes(const void* run, std::size_t bytes);

// One set a type and size for all jobs.
template <class T>
Runs<T>& runsOf(long count) {
  static std::map<long, Runs<T>> made;
  return made.try_emplace(count, count).first->second;
}

}  // namespace kt::bench

#endif
