// kttm_scaling [type...]: nanoseconds a value of every operation of every type (or of those named) over runs of 1, 16, 4,096
// and 1,048,576 values. A line that growth.h does not take for linear is measured again some times, and then marked NOT
// LINEAR; the exit status is 1.
#include "growth.h"
#include "operations.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

using kt::scaling::Costs;
using kt::scaling::kSizeCount;
using kt::scaling::kSizes;
using kt::scaling::Manager;
using kt::scaling::Operation;
using kt::scaling::Runs;

namespace {

// Of a value that owns memory: its block, and what the heap reads and writes to find one when its short list of blocks that
// were just freed is used up.
constexpr double kBytesOfBlocks = 160;
constexpr double kLeastTime = 2e6;  // ns of one measurement
constexpr int kMeasurements = 3;
constexpr double kLongTime = 2e7;  // of which two are enough
constexpr int kTries = 10;         // of a line that seems not linear: some machines change their speed meanwhile

// Of this process, which other work on the machine disturbs less than the clock's.
double processorTime() {
  timespec now;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

double nanosecondsOf(const std::function<void()>& run, unsigned long times) {
  const double begin = processorTime();
  for (unsigned long i = 0; i < times; ++i) run();
  return processorTime() - begin;
}

// Of one call: the shortest of some measurements, which other work on the machine disturbed least.
double timeOf(const std::function<void()>& run) {
  unsigned long times = 1;
  double time = nanosecondsOf(run, times);
  while (time < kLeastTime) {
    times *= 2;
    time = nanosecondsOf(run, times);
  }
  const int measurements = time < kLongTime ? kMeasurements : 2;
  for (int i = 1; i < measurements; ++i) time = std::min(time, nanosecondsOf(run, times));
  return time / static_cast<double>(times);
}

// Memory that was freed stays with the process: what the system takes for new pages is not the operation's cost.
void keepMemory() {
#if defined(__GLIBC__)
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, -1);
#endif
}

struct Line {
  const Operation* operation;
  Costs costs;
};

using Lines = std::vector<Line>;

bool isLinear(const Line& line) { return line.costs.isLinear(); }

void measureLine(Manager& manager, char id, Runs& runs, int size, Line& line) {
  const double time = timeOf([&] { line.operation->run(manager, id, runs); });
  line.costs.add(size, runs.count(), time / static_cast<double>(runs.count()));
}

// Lines that were measured before and are linear stay as they are.
void measureType(Manager& manager, char id, Lines& lines, bool again) {
  for (int size = 0; size < kSizeCount; ++size) {
    Runs runs(manager, id, kSizes[size]);
    const double bytesOnDisk = static_cast<double>(runs.disk[0].size()) / static_cast<double>(runs.count());
    const double bytesOfBlocks = manager.IsFixed(id) != 0 ? 0 : kBytesOfBlocks;
    for (Line& line : lines) {
      if (again && isLinear(line)) continue;
      line.costs.bytes = manager.MemLenGet(id, 1) + bytesOnDisk + bytesOfBlocks;
      const unsigned long most = line.operation->limit->of(manager, id);
      if (most < runs.count()) {
        Runs part(manager, id, most);
        measureLine(manager, id, part, size, line);
      } else {
        measureLine(manager, id, runs, size, line);
      }
    }
  }
}

void printLine(const char* type, const Line& line) {
  std::printf("%-16s %-16s", type, line.operation->name);
  for (const double time : line.costs.perValue) std::printf(" %9.2f", time);
  const unsigned long most = line.costs.counts[kSizeCount - 1];
  if (most != kSizes[kSizeCount - 1]) std::printf("  %lu %s", most, line.operation->limit->note);
  std::printf("%s\n", isLinear(line) ? "" : "  NOT LINEAR");
}

// Whether all lines are linear.
bool printType(Manager& manager, char id) {
  Lines lines;
  for (const Operation& operation : kt::scaling::operations()) lines.push_back({&operation, Costs{}});
  const auto areLinear = [&lines] { return std::all_of(lines.begin(), lines.end(), isLinear); };
  measureType(manager, id, lines, false);
  for (int i = 1; i < kTries && !areLinear(); ++i) measureType(manager, id, lines, true);
  for (const Line& line : lines) printLine(manager.NameGet(id, nullptr), line);
  std::fflush(stdout);
  return areLinear();
}

// The types with these names, or all. A name that is none is told and answers an empty list.
std::vector<char> typesOf(const Manager& manager, int nameCount, char** names) {
  std::vector<char> types;
  for (char id = 0; nameCount == 0 && id < KtTYPE_COUNT; ++id)
    if (id != KT_ID_illegal) types.push_back(id);
  for (int i = 0; i < nameCount; ++i) {
    char id;
    if (manager.Name2KtTypeId(names[i], id) != 0 || id == KT_ID_illegal) {
      std::fprintf(stderr, "kttm_scaling: no type %s\n", names[i]);
      return {};
    }
    types.push_back(id);
  }
  return types;
}

}  // namespace

int main(int argc, char** argv) {
  keepMemory();
  ___KtTypemgrContext(1);
  Manager manager(12);
  const std::vector<char> types = typesOf(manager, argc - 1, argv + 1);
  if (types.empty()) return 2;
  std::printf("%-16s %-16s", "type", "operation");
  for (const unsigned long size : kSizes) std::printf(" %9lu", size);
  std::printf("   ns a value\n");
  bool areLinear = true;
  for (const char id : types) areLinear &= printType(manager, id);
  ___KtTypemgrContext(0);
  return areLinear ? 0 : 1;
}
