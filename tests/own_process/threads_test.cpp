// What may run in any thread at any time does: threads meet in a process in which nothing has been built yet, use for the
// first time what is built then, go through all rows and texts again and again, each time in another order, and must get
// what one thread alone gets afterwards.
#include "laws/values.h"
#include "string_bytes.h"

#include <kttm.h>

#include <ktbs.h>
#include <ktin.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <barrier>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace kt_laws;

constexpr unsigned kThreads = 8;
// How often everything is done: about a second's worth, or some ten where accesses to memory are watched.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr unsigned kRowRounds = 8, kTextRounds = 3;
#else
constexpr unsigned kRowRounds = 24, kTextRounds = 16;
#endif
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

// --- first uses -------------------------------------------------------------------------------------------------------

KtString shortTextIn(unsigned char codeSet, unsigned char language, const char* text) {
  KtString s(codeSet, language);
  return s += text;
}

// Orders of a code set and language, and their tables.
Transcript comparing(unsigned char codeSet, unsigned char language) {
  const KtString a = shortTextIn(codeSet, language, "Zebra"), b = shortTextIn(codeSet, language, "apple");
  Transcript seen;
  note(seen, a.Compare(b, -1, KtCMP_NO_WILDCARDS));
  note(seen, HashString(codeSet, language, a.buffer, -1, 255));
  return seen;
}

Transcript mapping(unsigned char from, unsigned char to) {
  KtString s = shortTextIn(from, 1, "mapped");
  s += static_cast<unsigned short>(0xE4);
  Transcript seen;
  note(seen, s.MapToCodeSet(to));
  note(seen, s);
  return seen;
}

Transcript matching(unsigned char codeSet, unsigned char language) {
  const KtString text = shortTextIn(codeSet, language, "a*b"), pattern = shortTextIn(codeSet, language, "?\\**");
  Transcript seen;
  note(seen, text.Compare(pattern, -1, 0));
  return seen;
}

// The texts that stand for null and nothing, the configuration, the order that keys are made by, the zone of the clock.
Transcript standing() {
  Transcript seen;
  note(seen, KtTypeMgr::GetNullPrintString());
  note(seen, KtString::EmptyString());
  note(seen, DefaultConfig()->GetShort("no such key", nullptr, 7));
  KtTypeMgr mgr(12);
  KtString text = shortTextIn(253, 1, "a key");
  char key[KtINDEX_MAX_KEYLEN] = {};
  note(seen, mgr.Translate(KT_ID_KtString, key, 0x82, sizeof key, &text, kMemory, 0, 1));
  seen.append(key, sizeof key);
  std::int32_t number = 5;
  note(seen, mgr.SetNullValue(KT_ID_long, &number));
  note(seen, number);
  note(seen, KtDate().IsDate());
  note(seen, bksgettimezone());
  return seen;
}

Works firstUses() {
  Works works;
  works.push_back({"standing", standing});
  for (const unsigned char language : kLanguages) {
    for (const unsigned char codeSet : kCodeSets) {
      const std::string name = std::to_string(codeSet) + "_" + std::to_string(language);
      works.push_back({"matching_" + name, [=] { return matching(codeSet, language); }});
      works.push_back({"comparing_" + name, [=] { return comparing(codeSet, language); }});
    }
  }
  for (const unsigned char from : kCodeSets) {
    for (const unsigned char to : kCodeSets) {
      const std::string name = "mapping_" + std::to_string(from) + "_" + std::to_string(to);
      works.push_back({name, [=] { return mapping(from, to); }});
    }
  }
  return works;
}

// --- threads ----------------------------------------------------------------------------------------------------------

Works rowWorks() {
  Works works;
  for (const Row& row : rows()) works.push_back({row.stem, [&row] { return throughRow(row); }});
  return works;
}

Works textWorks() {
  Works works;
  for (const unsigned char language : kt_test::Codes{0, 1, 4, 5, 6, 20, 99})  // one of each kind
    works.push_back({"texts_" + std::to_string(language), [language] { return throughTexts(language); }});
  works.push_back({"orders", throughOrders});
  works.push_back({"number_formats", throughNumberFormats});
  return works;
}

using Transcripts = std::vector<std::vector<Transcript>>;  // by thread and work

// Runs all threads at once; then one alone, which must see what each of them has seen.
void expectAlikeInAllThreads(const Works& works, const std::function<void(unsigned thread, Transcripts& seen)>& run) {
  Transcripts seen(kThreads, std::vector<Transcript>(works.size()));
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < kThreads; ++i) threads.emplace_back([&, i] { run(i, seen); });
  for (std::thread& thread : threads) thread.join();
  for (std::size_t w = 0; w < works.size(); ++w) {
    const Transcript alone = works[w].run();
    for (unsigned i = 0; i < kThreads; ++i) EXPECT_TRUE(seen[i][w] == alone) << works[w].name << " in thread " << i;
  }
}

// Two threads each take the same way, so that they meet in the same piece of work; the others mix all of them.
std::vector<std::size_t> wayThrough(const Works& works, unsigned thread, unsigned round) {
  std::vector<std::size_t> way(works.size());
  std::iota(way.begin(), way.end(), 0u);
  std::shuffle(way.begin(), way.end(), std::mt19937(round * kThreads + thread / 2));
  return way;
}

void expectAlikeInAllRounds(const Works& works, unsigned rounds) {
  std::barrier meeting(kThreads);
  expectAlikeInAllThreads(works, [&](unsigned thread, Transcripts& seen) {
    for (unsigned round = 0; round < rounds; ++round) {
      meeting.arrive_and_wait();
      for (const std::size_t w : wayThrough(works, thread, round)) {
        const Transcript now = works[w].run();
        Transcript& first = seen[thread][w];
        if (round == 0) first = now;
        if (now != first) first = "changed in round " + std::to_string(round);
      }
    }
  });
}

// The first test of its process: what is built on first use is built by threads that race for it, all in the same place.
TEST(Threads, a_first_use_by_many_threads_gives_what_one_thread_gets) {
  const Works works = firstUses();
  std::barrier meeting(kThreads);
  expectAlikeInAllThreads(works, [&](unsigned thread, Transcripts& seen) {
    for (std::size_t w = 0; w < works.size(); ++w) {
      meeting.arrive_and_wait();
      seen[thread][w] = works[w].run();
    }
  });
}

// In a process of its own the first round builds what is built on first use, here in all places at once.
TEST(Threads, rows_are_worked_on_by_many_threads) { expectAlikeInAllRounds(rowWorks(), kRowRounds); }

TEST(Threads, texts_are_worked_on_by_many_threads) { expectAlikeInAllRounds(textWorks(), kTextRounds); }

TEST(Threads, shared_values_are_read_by_many_threads) {
  std::vector<Values> runs;
  Works works;
  for (const Row& row : rows()) runs.push_back(makeRun(row, row.samples.size()));
  for (std::size_t i = 0; i < rows().size(); ++i)
    works.push_back({rows()[i].stem, [i, &runs] { return throughRun(rows()[i], runs[i]); }});
  expectAlikeInAllRounds(works, kRowRounds);
}

}  // namespace
