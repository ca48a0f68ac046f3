// bench_job.h - how a question about speed is put: one job, its data, and the contestants that answer it.
#ifndef BENCH_JOB_H
#define BENCH_JOB_H

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kt::bench {

// The value, in a way that the compiler cannot see through: constants become run-time values.
template <class T>
T opaque(T value) {
  asm volatile("" : "+r"(value));
  return value;
}

// The value is computed and counts as read, and memory as changed.
template <class T>
void keep(const T& value) {
  benchmark::DoNotOptimize(value);
}

// job/contestant[/size]; a size of 0 is left out.
std::string rowName(const std::string& job, const std::string& contestant, long size);

// A job is named `job/contestant[/size]`; scripts/bench_table.py sets the contestant "kttm" against each other one, but for
// "floor": the least that any contestant would have to do, a limit instead of a peer; its results may be less than asked.
//
// Data is made when the first row of the job runs, outside the clock; the contestants share it, so that caches and
// alignment are alike. Every contestant works through one batch a call. Before the first row is timed, the check answers
// whether kttm's results are right, and whether peers that answer the same question get the same; peers that compute
// something else (another hash, another kind of estimate, a copy) are held to what both promise. A job whose check fails
// reports an error instead of times.
template <class Data>
class Job {
public:
  // size 0: the name has none. items: values a batch. bytes: bytes a batch, 0 where they say nothing.
  Job(std::string name, long size, long items, long bytes, std::function<std::unique_ptr<Data>()> make,
      bool (*check)(Data&))
      : name_(std::move(name)), size_(size), items_(items), bytes_(bytes), shared_(std::make_shared<Shared>()) {
    shared_->make = std::move(make);
    shared_->check = check;
  }

  template <class Run>
  Job& contestant(const std::string& who, Run run) {
    benchmark::RegisterBenchmark(rowName(name_, who, size_).c_str(), timedRow(run));
    return *this;
  }

private:
  struct Shared {
    std::function<std::unique_ptr<Data>()> make;
    bool (*check)(Data&);
    std::unique_ptr<Data> data;
    bool passed = false;

    Data* ready() {
      if (!data) {
        data = make();
        passed = check(*data);
      }
      return passed ? data.get() : nullptr;
    }
  };

  template <class Run>
  auto timedRow(Run run) const {
    return [shared = shared_, run, items = items_, bytes = bytes_](benchmark::State& state) {
      Data* data = shared->ready();
      if (data == nullptr) {
        state.SkipWithError("a result is wrong, or the contestants disagree");
        return;
      }
      for (auto _ : state) {
        run(*data);
        benchmark::ClobberMemory();
      }
      state.SetItemsProcessed(state.iterations() * items);
      if (bytes != 0) state.SetBytesProcessed(state.iterations() * bytes);
    };
  }

  std::string name_;
  long size_, items_, bytes_;
  std::shared_ptr<Shared> shared_;
};

// A file of jobs registers them by one of these at namespace scope.
struct Registration {
  explicit Registration(void (*addJobs)()) { addJobs(); }
};

inline int sign(long value) { return (value > 0) - (value < 0); }

// Operations a batch where one is too short for the clock: more than a branch predictor learns by heart.
constexpr int kBatch = 8000;

}  // namespace kt::bench

#endif
