// What may run in any thread at any time does: threads start at once in a process in which nothing has been built yet,
// go through all rows and texts, and must get what one thread alone gets afterwards.
#include "laws/values.h"
#include "string_bytes.h"

#include <kttm.h>

#include <ktbs.h>
#include <ktin.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace kt_laws;

constexpr unsigned kThreads = 8;
constexpr unsigned char kMemory = 8;
constexpr unsigned char kForms[] = {kMemory, 0, 1, 2, 4};

// What a piece of work saw, in bytes.
using Transcript = std::string;

template <class Number>
void note(Transcript& seen, Number number) {
  seen += std::to_string(number) + ' ';
}

void note(Transcript& seen, const KtString& text) {
  seen.append(text.StrGet(), static_cast<unsigned long>(text.Len()) * text.CharSize());
  seen += ' ';
  note(seen, text.IsNullValue());
}

struct Work {
  std::string name;
  std::function<Transcript()> run;
};
using Works = std::vector<Work>;

// --- rows -----------------------------------------------------------------------------------------------------------

std::string store(const Row& row, const Values& run, unsigned char format) {
  const KtTypeMgr& mgr = managerOf(row);
  std::string bytes(mgr.DiskLenGet(row.id, run.get(), format, run.count(), kMemory), '\0');
  mgr.Store(row.id, bytes.data(), run.get(), format, run.count());
  return bytes;
}

void noteCompares(Transcript& seen, const Row& row, const Values& run) {
  constexpr unsigned short kOperators[] = {0, 0x10, 0x30, 0x50, 0x70, 0x90, 0x110, 0x210, KtCMP_DEFAULT};
  for (const unsigned short op : kOperators) {
    for (unsigned long i = 0; i + 1 < run.count(); ++i)
      note(seen, managerOf(row).Cmp(row.id, run.at(i), run.at(i + 1), op, 1, kMemory));
  }
}

void noteForms(Transcript& seen, const Row& row, const Values& run) {
  const KtTypeMgr& mgr = managerOf(row);
  for (const unsigned char format : kForms) {
    std::string disk = store(row, run, format);
    int status = 0;
    void* values = format == kMemory ? run.get() : disk.data();
    note(seen, mgr.Hash(row.id, 0, values, run.count(), format, status));
    note(seen, mgr.Cmp(row.id, 0, values, 0, values, 0x10, run.count(), format, status));
    MemFile file(disk.data(), disk.size());
    note(seen, mgr.DiskLenGetFromMemFile(row.id, &file, format, run.count()));
    const Values back(row, run.count());
    note(seen, mgr.Load(row.id, back.get(), disk.data(), format, run.count()));
    note(seen, mgr.Hash(row.id, 0, back.get(), run.count(), kMemory, status));
    seen += disk;
  }
}

// Index keys, and what an index scan makes of them.
void noteKeys(Transcript& seen, const Row& row, const Values& run) {
  const KtTypeMgr& mgr = managerOf(row);
  const unsigned char format = mgr.IsFixed(row.id) != 0 ? 2 : 0x82;
  std::string low(mgr.DiskLenGet(row.id, run.at(0), format, 1, kMemory), '\0');
  low.resize(mgr.Translate(row.id, low.data(), format, low.size(), run.at(0), kMemory, 0, 1));
  seen += low;
  for (unsigned long i = 0; i < run.count(); ++i) {
    std::string key = low;
    KtIdxBounds range{reinterpret_cast<unsigned char*>(key.data()), nullptr, static_cast<unsigned char>(key.size()), 0};
    KtIdxBounds bounds;
    for (unsigned short flags = 1; flags < 8; ++flags) {
      unsigned short asked = flags;
      note(seen, mgr.EvalAndBound(row.id, &range, asked, run.at(i), kMemory, 1, &bounds, nullptr));
      KtFreeIdxBounds(&bounds);
    }
  }
}

void noteTexts(Transcript& seen, const Row& row, const Values& run) {
  KtTypeMgr& mgr = managerOf(row);
  for (const char* const format : {row.format, static_cast<const char*>(nullptr)}) {
    KtString list;
    note(seen, mgr.PrintToKtString(row.id, list, run.get(), format, run.count()));
    for (unsigned long i = 0; i < run.count(); ++i) {
      KtString text;
      note(seen, mgr.PrintToKtString(row.id, text, run.at(i), format, 1));
      const Values scanned(row, 1, mgr.DefaultValue(row.id, 1, 0));
      mgr.ScanFromKtString(row.id, scanned.get(), text, format, 1);
      seen += store(row, scanned, 2);
    }
  }
  KtTypeConvertData* texts = mgr.ConvertTo(row.id, run.get(), run.count());
  for (int i = 0; i < texts->count; ++i) note(seen, *texts->GetString(i));
  const Values converted(row, run.count(), mgr.ConvertFrom(row.id, texts, run.count()));
  seen += store(row, converted, 2);
  delete texts;
}

Transcript throughRun(const Row& row, const Values& run) {
  Transcript seen;
  noteForms(seen, row, run);
  noteCompares(seen, row, run);
  noteKeys(seen, row, run);
  noteTexts(seen, row, run);
  return seen;
}

// The run belongs to the thread.
Transcript throughRow(const Row& row) { return throughRun(row, makeRun(row, row.samples.size())); }

// --- texts ----------------------------------------------------------------------------------------------------------

constexpr unsigned char kCodeSets[] = {0, 1, 2, 3, 4, 5, 10, 11, 12, 100, 253, 255};
constexpr unsigned char kLanguages[] = {0, 1, 2, 4, 5, 6, 7, 8, 20, 21, 22, 99};

// Letters, marks, digits and symbols of the upper half of every set.
KtString textIn(unsigned char codeSet, unsigned char language) {
  KtString s(codeSet, language);
  for (unsigned short ch = 0x20; ch < 0x180; ch = static_cast<unsigned short>(ch + 7))
    s.Rebuild(reinterpret_cast<const char*>(&ch), 253, s.Len(), 0, 1, 1, KtString::RebuildMode::kRebuild);
  return s;
}

Transcript throughTexts(unsigned char language) {
  Transcript seen;
  for (const unsigned char codeSet : kCodeSets) {
    const KtString text = textIn(codeSet, language);
    for (const unsigned char other : kCodeSets) {
      KtString mapped = text;
      note(seen, mapped.MapToCodeSet(other));
      note(seen, mapped);
      for (const unsigned short op : kt_test::Operators{0x00, 0x10, 0x30, 0x110}) {
        note(seen, text.Compare(mapped, -1, op));
        note(seen, mapped.Find(KtString("4"), 0, op));
      }
      note(seen, HashString(mapped.codeSet, mapped.language, mapped.buffer, -1, 255));
    }
    KtString changed = text;
    note(seen, changed.ToUpper());
    note(seen, changed.ToLower().Trim());
    char* bytes = nullptr;
    long size = 0;
    note(seen, KtString2MultiByteString(text, bytes, size));
    KtString decoded;
    note(seen, KtMBS2KtString(bytes, decoded, size));
    note(seen, decoded);
    std::free(bytes);
  }
  return seen;
}

Transcript throughOrders() {
  Transcript seen;
  for (const unsigned char kind : kt_test::Codes{1, 2, 3, 4, 20}) {
    for (unsigned ch = 1; ch < 0x10000; ch += 97)
      note(seen, KtUnicodeProps::Order(static_cast<unsigned short>(ch), kind));
    for (const unsigned char from : kCodeSets) {
      const unsigned short* orders = KtCodeSet::Get(from).Orders(kind);
      note(seen, orders == nullptr ? 0u : orders[0xE4]);
      for (const unsigned char to : kCodeSets) {
        const unsigned char* map = KtCodeSet::Get(from).MapTable(KtCodeSet::Get(to));
        note(seen, map == nullptr ? 0u : map[0xE4]);
      }
    }
  }
  for (unsigned order = 1; order < 0x10000; order += 61) {
    KtString text;
    unsigned char ch = 0;
    const char* entry = nullptr;
    KtConvertOrderToString(static_cast<unsigned short>(order), 1, text);
    note(seen, text);
    note(seen, KtConvertOrderToChar(static_cast<unsigned short>(order), 1, ch, 1, &entry));
    note(seen, ch);
    if (entry != nullptr) seen += entry;
  }
  return seen;
}

Transcript throughNumberFormats() {
  constexpr const char* kIntegers[] = {"%d", "%-12ld|", "%+08d", "%x", "%#o", "%hu", "%c", "no number"};
  constexpr const char* kReals[] = {"%f", "%.17g", "%12.3e|", "%a", "ldexp(%.17g,%d)", "%%"};
  KtTypeMgr mgr(12);
  Transcript seen;
  for (std::int32_t number : {0, 65, -1, 2147483647}) {
    for (const char* format : kIntegers) {
      KtString text;
      note(seen, mgr.PrintToKtString(KT_ID_long, text, &number, format, 1));
      std::int32_t back = 0;
      mgr.ScanFromKtString(KT_ID_long, &back, text, format, 1);
      note(seen, back);
    }
  }
  for (double number : {0.0, -0.1, 1e300, 4.9e-324}) {
    note(seen, KtString(number));
    for (const char* format : kReals) {
      KtString text;
      note(seen, mgr.PrintToKtString(KT_ID_double, text, &number, format, 1));
      note(seen, static_cast<double>(text));
    }
  }
  return seen;
}

// --- threads ----------------------------------------------------------------------------------------------------------

Works allWorks() {
  Works works;
  for (const Row& row : rows()) works.push_back({row.stem, [&row] { return throughRow(row); }});
  for (const unsigned char language : kLanguages)
    works.push_back({"texts_" + std::to_string(language), [language] { return throughTexts(language); }});
  works.push_back({"orders", throughOrders});
  works.push_back({"number_formats", throughNumberFormats});
  return works;
}

// Every second thread begins elsewhere, so that some meet in the same piece of work and others mix all of them.
std::vector<Transcript> transcribe(const Works& works, unsigned thread) {
  const std::size_t first = thread % 2 == 0 ? 0 : thread * works.size() / kThreads;
  std::vector<Transcript> seen(works.size());
  for (std::size_t i = 0; i < works.size(); ++i) {
    const std::size_t place = (first + i) % works.size();
    seen[place] = works[place].run();
  }
  return seen;
}

void expectAlikeInAllThreads(const Works& works) {
  std::vector<std::vector<Transcript>> seen(kThreads);
  std::latch start(kThreads);
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      seen[i] = transcribe(works, i);
    });
  }
  for (std::thread& thread : threads) thread.join();
  const std::vector<Transcript> alone = transcribe(works, 0);
  for (unsigned i = 0; i < kThreads; ++i) {
    for (std::size_t w = 0; w < works.size(); ++w)
      EXPECT_TRUE(seen[i][w] == alone[w]) << works[w].name << " in thread " << i;
  }
}

// The first test of its process: what is built on first use is built by threads that race for it.
TEST(Threads, a_first_use_by_many_threads_gives_what_one_thread_gets) { expectAlikeInAllThreads(allWorks()); }

TEST(Threads, shared_values_are_read_by_many_threads) {
  std::vector<Values> runs;
  Works works;
  for (const Row& row : rows()) runs.push_back(makeRun(row, row.samples.size()));
  for (std::size_t i = 0; i < rows().size(); ++i)
    works.push_back({rows()[i].stem, [i, &runs] { return throughRun(rows()[i], runs[i]); }});
  expectAlikeInAllThreads(works);
}

}  // namespace
