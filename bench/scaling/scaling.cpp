// kttm_scaling [type...]: nanoseconds a value of every operation of every type (or of those named) over runs of 1, 16, 4,096
// and 1,048,576 values. A value may cost less in a longer run, not more: from 16 to 4,096 and from there to 1,048,576 values at
// most three times as much, and what memory that no cache holds takes for its bytes (0.06 ns each). Either step is 256 times
// the length, so that a cost of n^1.5 would grow sixteenfold. A line above that in three measurements is NOT LINEAR, and the
// exit status 1.
#include <kttm.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr unsigned long kSizes[] = {1, 16, 4096, 1048576};
constexpr int kSizeCount = 4;
constexpr int kFirstJudged = 2;  // against the size before
constexpr double kMostGrowth = 3;
constexpr double kSlowestMemory = 0.06;     // ns a byte of runs that no cache holds
constexpr double kBytesOfBlocks = 64;       // of a value that owns memory, and of the heap's beside it
constexpr unsigned long kTextSize = 65000;  // characters that a text can hold, separators behind all
constexpr double kLeastTime = 2e6;          // ns of one measurement
constexpr int kMeasurements = 3;
constexpr double kLongTime = 2e7;  // of which two are enough
constexpr int kTries = 3;          // of a line that seems not linear
constexpr unsigned char kMemory = 8;
constexpr unsigned char kDisk = 2;
constexpr unsigned char kKey = 0x82;  // strings in indexes are keys; other types do not read the bit

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
    keys.resize(manager.DiskLenGet(id, a, kKey, count, kMemory));
    oneKey.resize(manager.DiskLenGet(id, a, kKey, 1, kMemory));
    manager.Translate(id, oneKey.data(), kKey, oneKey.size(), a, kMemory, 0, 1);
    texts = manager.ConvertTo(id, a, count);
    raw = std::malloc(memorySize());
  }
  Runs(const Runs&) = delete;
  Runs& operator=(const Runs&) = delete;
  ~Runs() {
    delete texts;
    std::free(raw);
    for (void* run : {a, b, target}) manager_.Delete(id_, run, count_);
  }
  unsigned long count() const { return count_; }
  unsigned long memorySize() const { return count_ * manager_.MemLenGet(id_, 1); }
  void* at(unsigned long i) const { return static_cast<char*>(a) + i * manager_.MemLenGet(id_, 1); }

private:
  void* create() const { return manager_.Create(id_, count_); }

  KtTypeMgr& manager_;
  char id_;
  unsigned long count_;

public:
  void* a;
  void* b;
  void* target;
  void* raw;  // room without values
  std::vector<char> disk, otherDisk, room, keys, oneKey;
  KtTypeConvertData* texts;
};

// How many values an operation takes of a run, and what to say of it.
struct Limit {
  unsigned long (*of)(KtTypeMgr& manager, char id);
  const char* note;
};

bool isString(char id) { return id == KT_ID_KtString || id == KT_ID_KtIString || id == KT_ID_KtCaseIString; }

constexpr Limit kWholeRun = {[](KtTypeMgr&, char) { return ~0ul; }, ""};
constexpr Limit kOneValue = {[](KtTypeMgr&, char) { return 1ul; }, "value a call"};
constexpr Limit kOneString = {[](KtTypeMgr&, char id) { return isString(id) ? 1 : ~0ul; }, "value a call"};
constexpr Limit kOneText = {[](KtTypeMgr& m, char id) {
                              Runs one(m, id, 1);
                              KtString text;
                              return kTextSize / (m.PrintToKtString(id, text, one.a, nullptr, 1).Len() + 1ul);
                            },
                            "values fill a text"};

struct Operation {
  const char* name;
  void (*run)(KtTypeMgr& manager, char id, Runs& runs);
  const Limit* limit = &kWholeRun;
};

void estimate(KtTypeMgr& m, char id, Runs& r) {
  auto* const key = reinterpret_cast<unsigned char*>(r.oneKey.data());
  const auto length = static_cast<unsigned char>(r.oneKey.size());
  KtIdxBounds range{key, key, length, length}, bounds;
  unsigned short flags = KtBOUND_EQUAL;
  m.EvalAndBound(id, &range, flags, r.disk.data(), kDisk, r.count(), &bounds, nullptr);
  KtFreeIdxBounds(&bounds);
}

const Operation kOperations[] = {
    {"create", [](KtTypeMgr& m, char id, Runs& r) { m.Delete(id, m.Create(id, r.count()), r.count()); }},
    {"default", [](KtTypeMgr& m, char id, Runs& r) { m.Delete(id, m.DefaultValue(id, r.count(), 0), r.count()); }},
    {"construct",
     [](KtTypeMgr& m, char id, Runs& r) {
       m.ConstructorPtrGet(id)(r.raw, r.count(), 0);
       m.DestructorPtrGet(id)(r.raw, r.count(), 0);
     }},
    {"copy",
     [](KtTypeMgr& m, char id, Runs& r) {
       m.CopyPtrGet(id)(r.raw, r.a, r.count(), 0);
       m.DestructorPtrGet(id)(r.raw, r.count(), 0);
     }},
    {"is_null",
     [](KtTypeMgr& m, char id, Runs& r) {
       for (unsigned long i = 0; i < r.count(); ++i) m.IsNullValue(id, r.at(i));
     }},
    {"assign", [](KtTypeMgr& m, char id, Runs& r) { m.AssignmentPtrGet(id)(r.target, r.a, r.count(), 0); }},
    {"size", [](KtTypeMgr& m, char id, Runs& r) { m.DiskLenGet(id, r.a, kDisk, r.count(), kMemory); }},
    {"size_disk", [](KtTypeMgr& m, char id, Runs& r) { m.DiskLenGet(id, r.disk.data(), kDisk, r.count(), kDisk); }},
    {"size_file",
     [](KtTypeMgr& m, char id, Runs& r) {
       MemFile file(r.disk.data(), r.disk.size());
       m.DiskLenGetFromMemFile(id, &file, kDisk, r.count());
     }},
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
    {"estimate", estimate},
    {"to_disk", [](KtTypeMgr& m, char id,
                   Runs& r) { m.Translate(id, r.room.data(), kDisk, r.room.size(), r.a, kMemory, 0, r.count()); }},
    {"to_memory",
     [](KtTypeMgr& m, char id, Runs& r) {
       m.Translate(id, r.target, kMemory, r.memorySize(), r.disk.data(), kDisk, r.disk.size(), r.count());
     },
     &kOneString},
    {"to_keys", [](KtTypeMgr& m, char id,
                   Runs& r) { m.Translate(id, r.keys.data(), kKey, r.keys.size(), r.a, kMemory, 0, r.count()); }},
    {"convert_to", [](KtTypeMgr& m, char id, Runs& r) { delete m.ConvertTo(id, r.a, r.count()); }},
    {"convert_from",
     [](KtTypeMgr& m, char id, Runs& r) { m.Delete(id, m.ConvertFrom(id, r.texts, r.count()), r.count()); }},
    {"print",
     [](KtTypeMgr& m, char id, Runs& r) {
       KtString out;
       m.PrintToKtString(id, out, r.a, nullptr, r.count());
     },
     &kOneText},
    {"scan",
     [](KtTypeMgr& m, char id, Runs& r) {
       m.ScanFromKtString(id, r.target, *r.texts->GetString(0), nullptr, r.count());
     },
     &kOneValue},
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
  const int measurements = time < kLongTime ? kMeasurements : 2;
  for (int i = 1; i < measurements; ++i) time = std::min(time, nanosecondsOf(run, times));
  return time / static_cast<double>(times);
}

struct Line {
  double perValue[kSizeCount];
  unsigned long counts[kSizeCount];
  double bytes;  // of a value, in memory and on disk

  bool isFlagged() const {
    for (int i = kFirstJudged; i < kSizeCount; ++i) {
      const bool isLonger = counts[i] > counts[i - 1];
      if (isLonger && perValue[i] > kMostGrowth * perValue[i - 1] + kSlowestMemory * bytes) return true;
    }
    return false;
  }
};

using Lines = std::vector<Line>;

bool isFlagged(const Lines& lines) { return std::any_of(lines.begin(), lines.end(), std::mem_fn(&Line::isFlagged)); }

void measureLine(KtTypeMgr& manager, char id, const Operation& operation, Runs& runs, int size, Line& line) {
  const double time = timeOf([&] { operation.run(manager, id, runs); }) / static_cast<double>(runs.count());
  line.counts[size] = runs.count();
  line.perValue[size] = line.perValue[size] == 0 ? time : std::min(time, line.perValue[size]);
}

// Of lines that were measured before the shorter times stay.
void measureType(KtTypeMgr& manager, char id, Lines& lines) {
  for (int size = 0; size < kSizeCount; ++size) {
    Runs runs(manager, id, kSizes[size]);
    const double bytesOnDisk = static_cast<double>(runs.disk.size()) / static_cast<double>(runs.count());
    const double bytesOfBlocks = manager.IsFixed(id) != 0 ? 0 : kBytesOfBlocks;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const Operation& operation = kOperations[i];
      lines[i].bytes = manager.MemLenGet(id, 1) + bytesOnDisk + bytesOfBlocks;
      const unsigned long most = operation.limit->of(manager, id);
      if (most < runs.count()) {
        Runs part(manager, id, most);
        measureLine(manager, id, operation, part, size, lines[i]);
      } else {
        measureLine(manager, id, operation, runs, size, lines[i]);
      }
    }
  }
}

// Whether a line is flagged.
bool printType(KtTypeMgr& manager, char id) {
  Lines lines(std::size(kOperations), Line{});
  measureType(manager, id, lines);
  for (int i = 1; i < kTries && isFlagged(lines); ++i) measureType(manager, id, lines);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Line& line = lines[i];
    std::printf("%-16s %-13s", manager.NameGet(id, nullptr), kOperations[i].name);
    for (const double time : line.perValue) std::printf(" %9.2f", time);
    const bool isWhole = line.counts[kSizeCount - 1] == kSizes[kSizeCount - 1];
    if (!isWhole) std::printf("  %lu %s", line.counts[kSizeCount - 1], kOperations[i].limit->note);
    std::printf("%s\n", line.isFlagged() ? "  NOT LINEAR" : "");
  }
  std::fflush(stdout);
  return isFlagged(lines);
}

}  // namespace

int main(int argc, char** argv) {
  ___KtTypemgrContext(1);
  KtTypeMgr manager(12);
  std::printf("%-16s %-13s", "type", "operation");
  for (const unsigned long size : kSizes) std::printf(" %9lu", size);
  std::printf("   ns a value\n");
  bool isFlagged = false;
  for (int id = 0; id < KtTYPE_COUNT; ++id) {
    const char* const name = manager.NameGet(static_cast<char>(id), nullptr);
    const auto isNamed = [name](const char* argument) { return std::strcmp(argument, name) == 0; };
    const bool isAsked = argc == 1 || std::any_of(argv + 1, argv + argc, isNamed);
    if (id != KT_ID_illegal && isAsked) isFlagged |= printType(manager, static_cast<char>(id));
  }
  ___KtTypemgrContext(0);
  return isFlagged ? 1 : 0;
}
