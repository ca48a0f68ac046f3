// Comparing runs of integers and doubles: equal ones, and ones that differ in the last value.
#include "bench_job.h"
#include "run_data.h"

#include <kttm.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kt::bench {
namespace {

constexpr unsigned char kMemory = 8;
constexpr unsigned char kBigEndian = 2;

template <class T>
struct CompareData {
  CompareData(KtTypeCmpFunc function, unsigned char formatCode, long runLength, bool differ)
      : runs(runsOf<T>(runLength == 1 ? kShortRuns : runLength)),
        other(differ ? runs.lastDiffers : runs.same),
        compare(function),
        format(formatCode),
        length(static_cast<unsigned long>(runLength)),
        rounds(runLength == 1 ? kShortRuns : 1) {
    if (runLength != 1) return;
    single = runs.values;  // single values: every pair is a pair of its own
    if (differ) std::rotate(single.begin(), single.begin() + 1, single.end());
  }
  const T* second() const { return rounds == 1 ? other.data() : single.data(); }

  Runs<T>& runs;
  std::vector<T>& other;
  std::vector<T> single;
  KtTypeCmpFunc compare;
  unsigned char format;
  unsigned long length;
  int rounds;
};

template <class T>
long compareRuns(CompareData<T>& data) {
  const KtTypeCmpFunc compare = opaque(data.compare);
  const unsigned char format = opaque(data.format);
  const unsigned long length = opaque(data.length);
  T* const a = data.runs.values.data();
  T* const b = const_cast<T*>(data.second());
  long sum = 0;
  for (int i = 0; i < data.rounds; ++i) {
    int status;
    sum += compare(format, 0, a + i, 0, b + i, 0, length, status);
  }
  keep(sum);
  return sum;
}

template <class T>
long memcmpRuns(CompareData<T>& data) {
  const std::size_t bytes = opaque(data.length) * sizeof(T);
  const T* const a = data.runs.values.data();
  const T* const b = data.second();
  long sum = 0;
  for (int i = 0; i < data.rounds; ++i) sum += sign(std::memcmp(a + i, b + i, bytes));
  keep(sum);
  return sum;
}

template <class T>
long mismatchRuns(CompareData<T>& data) {
  const std::size_t length = opaque(data.length);
  const T* const a = data.runs.values.data();
  const T* const b = data.second();
  long sum = 0;
  for (int i = 0; i < data.rounds; ++i) {
    const auto [first, second] = std::mismatch(a + i, a + i + length, b + i);
    if (first != a + i + length) sum += *first < *second ? -1 : 1;
  }
  keep(sum);
  return sum;
}

// A disk value in big-endian order; 64-bit integers lie there as two words, the low one first.
template <class T>
T fromBigEndian(T value) {
  if constexpr (std::is_floating_point_v<T>) {
    return value;  // doubles are compared in memory only
  } else {
    unsigned char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof value);
    if constexpr (sizeof(T) == 8) std::rotate(bytes, bytes + 4, bytes + 8);
    std::make_unsigned_t<T> result = 0;
    for (const unsigned char byte : bytes) result = static_cast<std::make_unsigned_t<T>>(result << 8 | byte);
    return static_cast<T>(result);
  }
}

// kttm's results add up to those of a value-by-value comparison, and those of std::mismatch where values are in memory. In
// runs on disk it finds the difference and orders it as memory, as memcmp orders bytes.
template <class T>
bool comparesRight(CompareData<T>& data) {
  long sum = 0;
  for (int i = 0; i < data.rounds; ++i) {
    for (unsigned long k = 0; k < data.length; ++k) {
      T a = data.runs.values[static_cast<unsigned long>(i) + k], b = data.second()[static_cast<unsigned long>(i) + k];
      if (data.format == kBigEndian) a = fromBigEndian(a), b = fromBigEndian(b);
      if (a == b) continue;
      sum += a < b ? -1 : 1;
      break;
    }
  }
  const bool peersAgree = (data.format != kMemory || mismatchRuns(data) == sum) &&
                          (data.rounds != 1 || (memcmpRuns(data) != 0) == (sum != 0));
  return peersAgree && compareRuns(data) == sum;
}

template <class T>
void addRun(const std::string& name, KtTypeCmpFunc compare, unsigned char format, bool differ) {
  for (const long size : {1L, 4096L, 1L << 20}) {
    const auto make = [=] { return std::make_unique<CompareData<T>>(compare, format, size, differ); };
    const long items = size == 1 ? kShortRuns : size;
    Job<CompareData<T>> job(name + (differ ? "_end" : "_equal"), size, items, items * static_cast<long>(sizeof(T)),
                            make, comparesRight<T>);
    job.contestant("kttm", compareRuns<T>).contestant("memcmp", memcmpRuns<T>);
    if (size > 1) job.contestant("std_mismatch", mismatchRuns<T>);
  }
}

template <class T>
void addInteger(KtTypeCmpFunc compare) {
  const std::string width = std::to_string(8 * sizeof(T));
  for (const bool differ : {false, true}) {
    addRun<T>("compare_memory_" + width, compare, kMemory, differ);
    addRun<T>("compare_disk_" + width, compare, kBigEndian, differ);
  }
}

void addJobs() {
  addInteger<std::int16_t>(ShortCompare);
  addInteger<std::int32_t>(LongCompare);
  addInteger<std::int64_t>(Int64Compare);
  for (const bool differ : {false, true}) addRun<double>("compare_double", DoubleCompare, kMemory, differ);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
