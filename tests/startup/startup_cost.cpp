// startup_cost library: what it costs a process to load kttm, with ktbs and ktin, and to attach to it.
//
// Prints the time, the least and the median of fresh processes, and the private memory of this process; fails above the limit
// of memory, or when the least time, which other work on the machine disturbs least, is above the limit of time.
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

namespace {

constexpr long kMostMemory = 1024;  // KiB
#ifdef __OPTIMIZE__
constexpr double kMostTime = 1000;  // microseconds
#else
constexpr double kMostTime = 10000;  // of libraries that the compiler did not optimise: only a gross loss shows
#endif
constexpr int kProcesses = 101;

// KiB of this process that no other shares: all of them, and those that stand in no file.
struct Memory {
  long all = 0;
  long anonymous = 0;
};

Memory privateMemory() {
  std::ifstream sums("/proc/self/smaps_rollup");
  Memory memory;
  std::string heading, unit;
  long size;
  std::getline(sums, heading);  // the range of addresses
  while (sums >> heading >> size >> unit) {
    if (heading == "Private_Clean:" || heading == "Private_Dirty:") memory.all += size;
    if (heading == "Anonymous:") memory.anonymous = size;
  }
  return memory;
}

// Null when the library cannot be loaded.
void* attach(const char* library) {
  void* const handle = dlopen(library, RTLD_NOW);
  void* const context = handle == nullptr ? nullptr : dlsym(handle, "_Z19___KtTypemgrContexti");
  if (context == nullptr) return nullptr;
  int (*call)(int);
  std::memcpy(&call, &context, sizeof call);
  return call(1) != 0 ? handle : nullptr;
}

// Microseconds that a process of its own takes; below 0 when it fails.
double timeInProcess(const char* library) {
  int ends[2];
  if (pipe(ends) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    const auto begin = std::chrono::steady_clock::now();
    const bool isAttached = attach(library) != nullptr;
    const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - begin;
    const double answer = isAttached ? taken.count() : -1;
    _exit(write(ends[1], &answer, sizeof answer) == sizeof answer ? 0 : 1);
  }
  double answer = -1;
  close(ends[1]);
  if (read(ends[0], &answer, sizeof answer) != sizeof answer) answer = -1;
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return answer;
}

// Of that many processes, in ascending order.
std::array<double, kProcesses> times(const char* library) {
  std::array<double, kProcesses> all;
  for (double& time : all) time = timeInProcess(library);
  std::sort(all.begin(), all.end());
  return all;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("startup_cost library\n", stderr);
    return 2;
  }
  const auto all = times(argv[1]);
  privateMemory();  // so that reading is paid for
  const Memory before = privateMemory();
  if (attach(argv[1]) == nullptr) {
    std::fprintf(stderr, "cannot attach: %s\n", dlerror());
    return 1;
  }
  const Memory after = privateMemory();
  const long taken = after.all - before.all;
  std::printf("time    %6.0f us   (limit %.0f; median %.0f)\n", all.front(), kMostTime, all[kProcesses / 2]);
  std::printf("memory  %6ld KiB  (limit %ld; %ld KiB of it in no file)\n", taken, kMostMemory,
              after.anonymous - before.anonymous);
  const bool isSoon = all.front() > 0 && all.front() <= kMostTime;
  return isSoon && before.all > 0 && taken <= kMostMemory ? 0 : 1;
}
