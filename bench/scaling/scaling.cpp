// kttm_scaling [type...]: nanoseconds a value of every operation of every type (or of those named) over runs of 1 to
// 1,048,576 values. A line is flagged, and the exit status 1, where a value of the longest run costs more than three times
// one of the run an eighth as long, and what main memory takes more for its bytes: were the cost quadratic, it would be
// eight times. (Both overflow a text where they are printed, so that 4,096 values would not compare.)
#include <kttm.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr unsigned long kSizes[] = {1, 16, 4096, 131072, 1048576};
constexpr int kSizeCount = 5;
constexpr double kMostGrowth = 3;
constexpr double kSlowestMemory = 0.1;  // ns a byte of runs that no cache holds
constexpr double kLeastTime = 3e6;      // ns of one measurement
constexpr int kMeasurements = 3;
constexpr unsigned char kMemory = 8;
constexpr unsigned char kDisk = 2;

// A text that the type converts to a value of usual length.
const char* textFor(char id) {
  switch (id) {
    case KT_ID_KtString:
    case KT_ID_KtIString:
    case KT_ID_KtCaseIString:
    case KT_ID_KtBlob: return "Abenberg, Mittelfranken";
    case KT_ID_KtObjId: return "(1-42#7)";
    case KT_ID_KtClassId: return "(9v1)";
    case KT_ID_KtRef: return "(5:1-42#7, 9)";
    case KT_ID_KtDateTime: return "2453550:45296";
    case KT_ID_d_Date: return "2005-06-28";
    case KT_ID_d_Time: return "14:05:09.25+02:00";
    case KT_ID_d_Timestamp: return "2005-06-28 14:05:09.25+02:00";
    default: return "1234";
  }
}

// Two equal runs, in memory and on disk, and room for a third.
class Runs {
public:
  Runs(KtTypeMgr& manager, char id, unsigned long count)
      : manager_(manager), id_(id), count_(count), a(create()), b(create()), target(create()) {
    KtString text(textFor(id));
    KtTypeConvertData holder(KT_ID_KtString, 1, &text, nullptr);
    void* value = manager.ConvertFrom(id, &holder, 1);
    holder.typeManager = nullptr;
    manager.AssignmentPtrGet(id)(a, value, count, 1);
    manager.AssignmentPtrGet(id)(b, value, count, 1);
    manager.Delete(id, value, 1);
    disk.resize(manager.DiskLenGet(id, a, kDisk, count, kMemory));
    manager.Store(id, disk.data(), a, kDisk, count);
    otherDisk = room = disk;
    texts = manager.ConvertTo(id, a, count);
  }
  Runs(const Runs&) = delete;
  Runs& operator=(const Runs&) = delete;
  ~Runs() {
    delete texts;
    for (void* run : {a, b, target}) manager_.Delete(id_, run, count_);
  }
  unsigned long count() const { return count_; }

private:
  void* create() const { return manager_.Create(id_, count_); }

  KtTypeMgr& manager_;
  char id_;
  unsigned long count_;

public:
  void* a;
  void* b;
  void* target;
  std::vector<char> disk, otherDisk, room;
  KtTypeConvertData* texts;
};

struct Operation {
  const char* name;
  void (*run)(KtTypeMgr& manager, char id, Runs& runs);
};

const Operation kOperations[] = {
    {"create", [](KtTypeMgr& m, char id, Runs& r) { m.Delete(id, m.Create(id, r.count()), r.count()); }},
    {"assign", [](KtTypeMgr& m, char id, Runs& r) { m.AssignmentPtrGet(id)(r.target, r.a, r.count(), 0); }},
    {"size", [](KtTypeMgr& m, char id, Runs& r) { m.DiskLenGet(id, r.a, kDisk, r.count(), kMemory); }},
    {"size_disk", [](KtTypeMgr& m, char id, Runs& r) { m.DiskLenGet(id, r.disk.data(), kDisk, r.count(), kDisk); }},
    {"store", [](KtTypeMgr& m, char id, Runs& r) { m.Store(id, r.room.data(), r.a, kDisk, r.count()); }},
    {"load", [](KtTypeMgr& m, char id, Runs& r) { m.Load(id, r.target, r.disk.data(), kDisk, r.count()); }},
    {"compare", [](KtTypeMgr& m, char id, Runs& r) { m.Cmp(id, r.a, r.b, KtCMP_NO_WILDCARDS, r.count(), kMemory); }},
    {"compare_disk",
     [](KtTypeMgr& m, char id, Runs& r) {
       int status;
       m.Cmp(id, r.disk.size(), r.disk.data(), r.otherDisk.size(), r.otherDisk.data(), KtCMP_NO_WILDCARDS, r.count(),
             kDisk, status);
     }},
    {"hash",
     [](KtTypeMgr& m, char id, Runs& r) {
       int status;
       m.Hash(id, 0, r.a, r.count(), kMemory, status);
     }},
    {"hash_disk",
     [](KtTypeMgr& m, char id, Runs& r) {
       int status;
       m.Hash(id, r.disk.size(), r.disk.data(), r.count(), kDisk, status);
     }},
    {"translate", [](KtTypeMgr& m, char id,
                     Runs& r) { m.Translate(id, r.room.data(), kDisk, r.room.size(), r.a, kMemory, 0, r.count()); }},
    {"convert_to", [](KtTypeMgr& m, char id, Runs& r) { delete m.ConvertTo(id, r.a, r.count()); }},
    {"convert_from",
     [](KtTypeMgr& m, char id, Runs& r) { m.Delete(id, m.ConvertFrom(id, r.texts, r.count()), r.count()); }},
    {"print",
     [](KtTypeMgr& m, char id, Runs& r) {
       KtString out;
       m.PrintToKtString(id, out, r.a, nullptr, r.count());
     }},
    {"scan", [](KtTypeMgr& m, char id,
                Runs& r) { m.ScanFromKtString(id, r.target, *r.texts->GetString(0), nullptr, r.count()); }},
};

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
  for (int i = 1; i < kMeasurements; ++i) time = std::min(time, nanosecondsOf(run, times));
  return time / static_cast<double>(times);
}

struct Line {
  double perValue[kSizeCount];
  double bytes;  // of a value, in memory and on disk

  bool isFlagged() const {
    return perValue[kSizeCount - 1] > kMostGrowth * perValue[kSizeCount - 2] + kSlowestMemory * bytes;
  }
};

// Whether a line was flagged.
bool measureType(KtTypeMgr& manager, char id) {
  Line lines[std::size(kOperations)] = {};
  for (int size = 0; size < kSizeCount; ++size) {
    Runs runs(manager, id, kSizes[size]);
    const auto count = static_cast<double>(runs.count());
    for (std::size_t i = 0; i < std::size(kOperations); ++i) {
      lines[i].perValue[size] = timeOf([&] { kOperations[i].run(manager, id, runs); }) / count;
      lines[i].bytes = manager.MemLenGet(id, 1) + static_cast<double>(runs.disk.size()) / count;
    }
  }
  bool isFlagged = false;
  for (std::size_t i = 0; i < std::size(kOperations); ++i) {
    std::printf("%-16s %-13s", manager.NameGet(id, nullptr), kOperations[i].name);
    for (const double time : lines[i].perValue) std::printf(" %9.2f", time);
    std::printf("%s\n", lines[i].isFlagged() ? "  NOT LINEAR" : "");
    isFlagged |= lines[i].isFlagged();
  }
  std::fflush(stdout);
  return isFlagged;
}

}  // namespace

int main(int argc, char** argv) {
  ___KtTypemgrContext(1);
  KtSetAssertHandler([](const char*, const char*, int) {});  // printing a million values overflows a text
  KtTypeMgr manager(12);
  std::printf("%-16s %-13s", "type", "operation");
  for (const unsigned long size : kSizes) std::printf(" %9lu", size);
  std::printf("   ns a value\n");
  bool isFlagged = false;
  for (int id = 0; id < KT_ID_illegal; ++id) {
    const char* const name = manager.NameGet(static_cast<char>(id), nullptr);
    const auto isNamed = [name](const char* argument) { return std::strcmp(argument, name) == 0; };
    if (argc > 1 && std::none_of(argv + 1, argv + argc, isNamed)) continue;
    isFlagged |= measureType(manager, static_cast<char>(id));
  }
  ___KtTypemgrContext(0);
  return isFlagged ? 1 : 0;
}
