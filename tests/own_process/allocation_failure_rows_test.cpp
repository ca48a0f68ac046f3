// Every operation of every row, with each of its allocations failing in turn: what the caller gets is the whole result, an
// unchanged value or the quiet answer; the memory handler was called, nothing leaks, and the next try succeeds.
#include "failing_allocations/failing_allocations.h"
#include "laws/values.h"

#include <ktbs.h>
#include <kttm.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace kt_laws;
using kt_test::Fail;
using kt_test::FailingAllocations;

constexpr unsigned char kMemory = 8;
constexpr unsigned char kDisk = 2;
constexpr unsigned char kSwapped = 4;
constexpr unsigned char kKey = 0x82;  // strings in indexes are keys; other types do not read the bit
constexpr unsigned short kAllFlags = 8;

// Reaches the older conversions.
class Manager : public KtTypeMgr {
public:
  explicit Manager(unsigned long version) : KtTypeMgr(version) {}
  using KtTypeMgr::ConvertFromKtStringOld;
  using KtTypeMgr::ConvertToKtStringOld;
};

std::string store(const Row& row, void* values, unsigned char format, unsigned long count) {
  const KtTypeMgr& mgr = managerOf(row);
  std::string bytes(mgr.DiskLenGet(row.id, values, format, count, kMemory), '\0');
  mgr.Store(row.id, bytes.data(), values, format, count);
  return bytes;
}

std::string keyOf(const Row& row, void* value) {
  const KtTypeMgr& mgr = managerOf(row);
  std::string key(mgr.DiskLenGet(row.id, value, kKey, 1, kMemory), '\0');
  mgr.Translate(row.id, key.data(), kKey, key.size(), value, kMemory, 0, 1);
  return key;
}

using Images = std::vector<std::string>;

// Each value by itself, as it stores. Goes through what a value must bear: hash, compare, test for null.
Images imagesOf(const Row& row, void* values, unsigned long count) {
  const KtTypeMgr& mgr = managerOf(row);
  Images images;
  for (unsigned long i = 0; i < count; ++i) {
    void* value = static_cast<char*>(values) + i * mgr.MemLenGet(row.id, 1);
    int status = 0;
    mgr.Hash(row.id, 0, value, 1, kMemory, status);
    mgr.Cmp(row.id, value, value, 0, 1, kMemory);
    images.push_back(store(row, value, kDisk, 1) + (mgr.IsNullValue(row.id, value) != 0 ? "null" : ""));
  }
  return images;
}

// What operations work on, made anew for every try, and what they give.
struct Scene {
  explicit Scene(const Row& of, unsigned long values)
      : row(of),
        mgr(of.version),
        count(values),
        source(makeRun(of, values)),
        target(of, values),
        disk(store(of, source.get(), kDisk, values)),
        swapped(store(of, source.get(), kSwapped, values)),
        last(store(of, source.at(values - 1), kDisk, 1)),
        lowKey(keyOf(of, source.at(0))),
        highKey(keyOf(of, source.at(values - 1))),
        stored(std::max(disk.size(), highKey.size()), '\0') {
    const Values other = make(row, row.samples.back());
    mgr.AssignmentPtrGet(row.id)(target.get(), other.get(), count, 1);
    range.lowKey = reinterpret_cast<unsigned char*>(lowKey.data());
    range.highKey = reinterpret_cast<unsigned char*>(highKey.data());
    range.lowKeyLength = static_cast<unsigned char>(lowKey.size());
    range.highKeyLength = static_cast<unsigned char>(highKey.size());
    texts = mgr.ConvertTo(row.id, source.get(), count);
    mgr.PrintToKtString(row.id, text, source.at(count - 1), nullptr, 1);
    wideText = text;
    wideText.SetCodeSet(253);
    KtString* all = mgr.ConvertToKtStringOld(source.get(), row.id, count);
    joined = *all;
    mgr.Delete(KT_ID_KtString, all, 1);
    for (const int length : {16, 20, 25, 30, 40})
      filled.emplace_back().Fill(static_cast<unsigned short>(length), 'f').Replace("%d%S%L%Y", 0);
    filled.back().SetCodeSet(253);
    raw.resize((count * mgr.MemLenGet(row.id, 1) + sizeof(double) - 1) / sizeof(double));
  }
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;
  ~Scene() {
    dropResults();
    delete texts;
  }

  // What an operation made is gone; what it worked on stays as it is.
  void dropResults() {
    delete std::exchange(holder, nullptr);
    for (KtIdxBounds& of : bounds) KtFreeIdxBounds(&of);
    if (std::exchange(rawIsUsed, false)) mgr.DestructorPtrGet(row.id)(raw.data(), count, 0);
    if (made != nullptr) mgr.Delete(row.id, std::exchange(made, nullptr), count);
    if (list != nullptr) mgr.Delete(KT_ID_KtString, std::exchange(list, nullptr), 1);
    out = KtString();
  }

  const Row& row;
  Manager mgr;
  unsigned long count;
  Values source, target;
  std::string disk, swapped;
  std::string last, lowKey, highKey;
  KtIdxBounds range;
  KtTypeConvertData* texts = nullptr;
  KtString text, wideText, joined;
  std::vector<KtString> filled;  // little room is left in their blocks
  std::vector<double> raw;       // room without values

  void* made = nullptr;
  bool rawIsUsed = false;
  KtTypeConvertData* holder = nullptr;
  KtString* list = nullptr;
  KtString out;
  std::string stored;
  KtIdxBounds bounds[kAllFlags];
  float shares[kAllFlags] = {};
};

std::string imageOf(const KtString& s) {
  return std::string(s.StrGet(), static_cast<unsigned long>(s.Len()) * s.CharSize()) + char(s.codeSet) +
         char(s.language);
}

std::string imageOf(const unsigned char* key, unsigned char length) {
  return key == nullptr ? "" : std::string(reinterpret_cast<const char*>(key), length) + "set";
}

// All that an operation gave, value by value; empty where it gave nothing.
Images resultOf(Scene& scene) {
  Images images = imagesOf(scene.row, scene.target.get(), scene.count);
  const auto add = [&](void* values) {
    const Images more = values == nullptr ? Images(scene.count) : imagesOf(scene.row, values, scene.count);
    images.insert(images.end(), more.begin(), more.end());
  };
  add(scene.made);
  add(scene.rawIsUsed ? scene.raw.data() : nullptr);
  for (unsigned long i = 0; i < scene.count; ++i) {
    const KtString* text = scene.holder == nullptr ? nullptr : scene.holder->GetString(static_cast<int>(i));
    images.push_back(text == nullptr ? "" : imageOf(*text));
  }
  images.push_back(scene.list == nullptr ? "" : imageOf(*scene.list));
  images.push_back(imageOf(scene.out));
  for (const KtString& text : scene.filled) images.push_back(imageOf(text));
  images.push_back(imageOf(scene.joined));
  images.push_back(scene.stored);
  for (unsigned short flags = 0; flags < kAllFlags; ++flags) {
    const KtIdxBounds& bounds = scene.bounds[flags];
    images.push_back(imageOf(bounds.lowKey, bounds.lowKeyLength));
    images.push_back(imageOf(bounds.highKey, bounds.highKeyLength));
    images.push_back(std::to_string(scene.shares[flags]));
  }
  return images;
}

enum Kind {
  kWhole,   // all is the result, or nothing has changed
  kValues,  // each value is the result, the old one, or one without content
};

struct Operation {
  const char* name;
  Kind kind;
  void (*run)(Scene& s);
};

void store(Scene& s, unsigned char format) { s.mgr.Store(s.row.id, s.stored.data(), s.source.get(), format, s.count); }

void evaluate(Scene& s, KtIdxBounds* range, void* key, unsigned char format) {
  for (unsigned short i = 0; i < kAllFlags; ++i) {
    unsigned short flags = i;
    s.shares[i] = s.mgr.EvalAndBound(s.row.id, range, flags, key, format, 1, &s.bounds[i], nullptr);
  }
}

constexpr Operation kOperations[] = {
    {"Create and assignment", kValues,  // new memory has no values
     [](Scene& s) {
       s.made = s.mgr.Create(s.row.id, s.count);
       if (s.made != nullptr) s.mgr.AssignmentPtrGet(s.row.id)(s.made, s.source.get(), s.count, 0);
     }},
    {"DefaultValue", kWhole, [](Scene& s) { s.made = s.mgr.DefaultValue(s.row.id, s.count, 0); }},
    {"DefaultValue as null", kWhole, [](Scene& s) { s.made = s.mgr.DefaultValue(s.row.id, s.count, 1); }},
    {"Constructor", kValues,
     [](Scene& s) {
       s.mgr.ConstructorPtrGet(s.row.id)(s.raw.data(), s.count, 0);
       s.rawIsUsed = true;
     }},
    {"Copy", kValues,
     [](Scene& s) {
       s.mgr.CopyPtrGet(s.row.id)(s.raw.data(), s.source.get(), s.count, 0);
       s.rawIsUsed = true;
     }},
    {"Assignment", kValues,
     [](Scene& s) { s.mgr.AssignmentPtrGet(s.row.id)(s.target.get(), s.source.get(), s.count, 0); }},
    {"Assignment with fill", kValues,
     [](Scene& s) { s.mgr.AssignmentPtrGet(s.row.id)(s.target.get(), s.source.get(), s.count, 1); }},
    {"Load", kValues, [](Scene& s) { s.mgr.Load(s.row.id, s.target.get(), s.disk.data(), kDisk, s.count); }},
    {"Load in code 4", kValues,
     [](Scene& s) { s.mgr.Load(s.row.id, s.target.get(), s.swapped.data(), kSwapped, s.count); }},
    {"Translate to memory", kValues,
     [](Scene& s) {
       const unsigned long size = s.count * s.mgr.MemLenGet(s.row.id, 1);
       s.mgr.Translate(s.row.id, s.target.get(), kMemory, size, s.disk.data(), kDisk, s.disk.size(), s.count);
     }},
    {"Translate in memory", kValues,
     [](Scene& s) {
       const unsigned long size = s.count * s.mgr.MemLenGet(s.row.id, 1);
       s.mgr.Translate(s.row.id, s.target.get(), kMemory, size, s.source.get(), kMemory, size, s.count);
     }},
    {"Translate to disk", kWhole,
     [](Scene& s) {
       const unsigned long size = s.count * s.mgr.MemLenGet(s.row.id, 1);
       s.mgr.Translate(s.row.id, s.stored.data(), kDisk, s.disk.size(), s.source.get(), kMemory, size, s.count);
     }},
    {"Translate to a key", kWhole,
     [](Scene& s) {
       s.mgr.Translate(s.row.id, s.stored.data(), kKey, s.highKey.size(), s.source.at(s.count - 1), kMemory, 0, 1);
     }},
    {"Store", kWhole, [](Scene& s) { store(s, kDisk); }},
    {"Store in code 4", kWhole, [](Scene& s) { store(s, kSwapped); }},
    {"Store in code 0", kWhole, [](Scene& s) { store(s, 0); }},
    {"SetNullValue", kValues, [](Scene& s) { s.mgr.SetNullValue(s.row.id, s.target.get()); }},
    {"ConvertTo", kWhole, [](Scene& s) { s.holder = s.mgr.ConvertTo(s.row.id, s.source.get(), s.count); }},
    {"ConvertFrom", kWhole, [](Scene& s) { s.made = s.mgr.ConvertFrom(s.row.id, s.texts, s.count); }},
    {"ConvertTo, older", kWhole,
     [](Scene& s) { s.list = s.mgr.ConvertToKtStringOld(s.source.get(), s.row.id, s.count); }},
    {"ConvertFrom, older", kWhole,
     [](Scene& s) { s.made = s.mgr.ConvertFromKtStringOld(&s.joined, s.row.id, s.count); }},
    {"PrintToKtString", kValues, [](Scene& s) { s.mgr.PrintToKtString(s.row.id, s.out, s.source.get(), nullptr, 1); }},
    {"PrintToKtString behind a text", kValues,
     [](Scene& s) {
       for (KtString& text : s.filled) s.mgr.PrintToKtString(s.row.id, text, s.source.get(), nullptr, 1);
     }},
    {"PrintToKtString by a format in the text", kValues,
     [](Scene& s) {
       for (KtString& text : s.filled) s.mgr.PrintToKtString(s.row.id, text, s.source.get(), text.StrGet(), 1);
     }},
    {"PrintToKtString of a run", kWhole,
     [](Scene& s) { s.mgr.PrintToKtString(s.row.id, s.out, s.source.get(), nullptr, s.count); }},
    {"PrintToKtString of long text", kWhole,
     [](Scene& s) {
       constexpr char kFormat[] = "a format that is longer than the smallest block of a text: %Y %d %s %L %S %lf %c";
       s.mgr.PrintToKtString(s.row.id, s.out, s.source.get(), kFormat, 1);
     }},
    {"ScanFromKtString", kValues,
     [](Scene& s) { s.mgr.ScanFromKtString(s.row.id, s.target.get(), s.text, nullptr, 1); }},
    {"ScanFromKtString of wide text", kValues,
     [](Scene& s) { s.mgr.ScanFromKtString(s.row.id, s.target.get(), s.wideText, nullptr, 1); }},
    {"Cmp", kValues, [](Scene& s) { s.mgr.Cmp(s.row.id, s.source.get(), s.target.get(), 0, s.count, kMemory); }},
    {"EvalAndBound", kValues, [](Scene& s) { evaluate(s, nullptr, s.source.at(s.count - 1), kMemory); }},
    {"EvalAndBound in a range", kValues, [](Scene& s) { evaluate(s, &s.range, s.last.data(), kDisk); }},
};

// --- one try ----------------------------------------------------------------------------------------------------------

struct Expected {
  Images before, after, withoutContent;
};

bool isStringRow(const Row& row) { return managerOf(row).IsFixed(row.id) == 0 && row.format != nullptr; }

// A text that could not be copied has the code set and the language already.
void addEmptyStrings(const Row& row, Images& images) {
  for (const int codeSet : {0, 1, 253}) {
    for (const int language : {0, 1, 254}) {
      KtString s(codeSet, language);
      images.push_back(imageOf(s));
      if (isStringRow(row)) images.push_back(imagesOf(row, &s, 1)[0]);
    }
  }
  images.push_back("");
}

Expected expectedOf(const Row& row, const Operation& operation, unsigned long count) {
  Scene scene(row, count);
  Expected expected;
  expected.before = resultOf(scene);
  operation.run(scene);
  expected.after = resultOf(scene);
  const KtTypeMgr& mgr = managerOf(row);
  const Values made(row, 1, mgr.DefaultValue(row.id, 1, 0));
  const Values null(row, 1, mgr.DefaultValue(row.id, 1, 1));
  const Values constructed(row, 1);
  mgr.DestructorPtrGet(row.id)(constructed.get(), 1, 0);
  mgr.ConstructorPtrGet(row.id)(constructed.get(), 1, 0);
  for (const Values* values : {&made, &null, &constructed})
    expected.withoutContent.push_back(imagesOf(row, values->get(), 1)[0]);
  addEmptyStrings(row, expected.withoutContent);
  return expected;
}

bool isWithin(const Images& found, const Expected& expected) {
  for (std::size_t i = 0; i < found.size(); ++i) {
    const auto& quiet = expected.withoutContent;
    if (found[i] != expected.before[i] && found[i] != expected.after[i] &&
        std::find(quiet.begin(), quiet.end(), found[i]) == quiet.end())
      return false;
  }
  return true;
}

struct Outcome {
  bool hasFailed = false;
  const char* problem = nullptr;
};

const char* problemOf(Kind kind, const Images& found, const Expected& expected, const FailingAllocations& failing) {
  const bool isWhole = found == expected.after;
  if (kind == kWhole && !isWhole && found != expected.before) return "is a part";
  if (kind == kValues && !isWithin(found, expected)) return "is neither old, new nor empty";
  if (!isWhole && failing.losses() == 0) return "differs without a loss";
  if (failing.handlerCalls() != failing.losses()) return "the handler was not called once for each loss";
  return nullptr;
}

// The same values, without a failure, after one.
bool goesInTheNextTry(Scene& scene, const Scene& fresh, const Operation& operation, const Expected& expected) {
  scene.dropResults();
  scene.filled = fresh.filled;  // some had the room
  scene.joined = fresh.joined;
  operation.run(scene);
  return resultOf(scene) == expected.after;
}

Outcome tryTwice(const Scene& fresh, const Operation& operation, const Expected& expected, unsigned long number,
                 Fail mode) {
  Scene scene(fresh.row, fresh.count);
  FailingAllocations failing(number, mode);
  operation.run(scene);
  failing.stop();
  Outcome outcome{failing.hasFailed(), problemOf(operation.kind, resultOf(scene), expected, failing)};
  if (outcome.problem == nullptr && !goesInTheNextTry(scene, fresh, operation, expected))
    outcome.problem = "differs in the next try";
  return outcome;
}

void check(const Row& row, const Operation& operation, unsigned long count) {
  const Scene fresh(row, count);
  const Expected expected = expectedOf(row, operation, count);
  const auto fail = [&](const char* problem, unsigned long number, Fail mode) {
    ADD_FAILURE() << row.stem << " " << operation.name << " of " << count << ", allocation " << number
                  << (mode == Fail::kOne ? "" : " and all behind it") << ": " << problem;
  };
  for (const Fail mode : {Fail::kOne, Fail::kAllFrom}) {
    bool isDone = false;
    for (unsigned long number = 1; !isDone; ++number) {
      const long live = kt_test::liveBlocks();
      const Outcome outcome = tryTwice(fresh, operation, expected, number, mode);
      if (kt_test::liveBlocks() != live) fail("leaks", number, mode);
      if (outcome.problem != nullptr) fail(outcome.problem, number, mode);
      isDone = !outcome.hasFailed;
    }
  }
}

TEST(AllocationFailure, leaves_the_values_of_all_rows_valid) {
  // Strings are translated to memory one by one: runs of them are refused, and the assertion handler told.
  const KtAssertHandler old = KtSetAssertHandler([](const char*, const char*, int) {});
  for (const Row& row : rows()) {
    for (const Operation& operation : kOperations) {
      for (const unsigned long count : {std::size_t{1}, row.samples.size()}) check(row, operation, count);
    }
  }
  KtSetAssertHandler(old);
}

KtString longWideText(const KtString& end) {
  KtString text(253, 1);
  text.Fill(190, ' ') += end;
  return text;
}

// It cannot be converted; the null print string need not be.
TEST(AllocationFailure, scanning_a_long_wide_text_leaves_the_value) {
  for (const Row& row : rows()) {
    KtString text = longWideText(Scene(row, 1).text);
    for (const Sample& sample : row.samples) {
      const Values value = make(row, sample);
      const Images before = imagesOf(row, value.get(), 1);
      FailingAllocations failing(1, Fail::kAllFrom);
      managerOf(row).ScanFromKtString(row.id, value.get(), text, nullptr, 1);
      failing.stop();
      EXPECT_EQ(imagesOf(row, value.get(), 1), before) << row.stem;
    }
  }
}

// Nor can it be converted from: what it begins with, or an empty text, would be other values.
TEST(AllocationFailure, converting_from_a_long_wide_text_gives_the_values_or_nothing) {
  for (const Row& row : rows()) {
    Scene scene(row, row.samples.size());
    for (unsigned long i = 0; i < scene.count; ++i) {
      KtString& text = *scene.texts->GetString(static_cast<int>(i));
      if (!text.IsNullValue()) (text += longWideText("")).SetCodeSet(253);
    }
    const Values whole(row, scene.count, scene.mgr.ConvertFrom(row.id, scene.texts, scene.count));
    const Images expected = imagesOf(row, whole.get(), scene.count);
    bool isDone = false;
    for (unsigned long number = 1; !isDone; ++number) {
      FailingAllocations failing(number, Fail::kOne);
      const Values made(row, scene.count, scene.mgr.ConvertFrom(row.id, scene.texts, scene.count));
      failing.stop();
      isDone = !failing.hasFailed();
      EXPECT_TRUE(made.get() != nullptr || failing.hasFailed()) << row.stem << ", allocation " << number;
      if (made.get() == nullptr) continue;
      EXPECT_EQ(imagesOf(row, made.get(), scene.count), expected) << row.stem << ", allocation " << number;
    }
  }
}

TEST(AllocationFailure, scanning_beside_a_long_wide_null_print_string_takes_no_memory) {
  const KtString old = KtTypeMgr::GetNullPrintString();
  for (const Row& row : rows()) {
    if (isStringRow(row)) continue;
    Scene with(row, 1), without(row, 1);
    KtTypeMgr::SetNullPrintString(longWideText(""));
    with.mgr.ScanFromKtString(row.id, with.target.get(), with.text, nullptr, 1);
    FailingAllocations failing(1, Fail::kAllFrom);
    without.mgr.ScanFromKtString(row.id, without.target.get(), without.text, nullptr, 1);
    failing.stop();
    KtTypeMgr::SetNullPrintString(old);
    EXPECT_FALSE(failing.hasFailed()) << row.stem;
    EXPECT_EQ(resultOf(without), resultOf(with)) << row.stem;
  }
}

// The operations that are pure need no memory at all: they cannot fail.
TEST(AllocationFailure, comparing_hashing_sizing_storing_take_no_memory) {
  for (const Row& row : rows()) {
    Scene s(row, row.samples.size());
    const KtTypeMgr& mgr = s.mgr;
    int status = 0;
    FailingAllocations failing(1, Fail::kAllFrom);
    for (const unsigned char format : {kMemory, kDisk, kSwapped}) {
      std::string& disk = format == kSwapped ? s.swapped : s.disk;
      void* values = format == kMemory ? s.source.get() : disk.data();
      mgr.Cmp(row.id, 0, values, 0, values, 0x10, s.count, format, status);
      mgr.Hash(row.id, 0, values, s.count, format, status);
      mgr.DiskLenGet(row.id, values, format, s.count, format);
      if (format != kMemory) mgr.Store(row.id, disk.data(), s.source.get(), format, s.count);
    }
    mgr.Cmp(row.id, s.source.get(), s.target.get(), 0, s.count, kMemory);
    EXPECT_FALSE(failing.hasFailed()) << row.stem;
  }
}

}  // namespace
