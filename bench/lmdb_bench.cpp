// Look-ups in an LMDB tree of city names under a collation: stored records compared where they lie, against names in
// UTF-8, and for records of 16-bit characters in UTF-16 too, compared by ICU. Every name is looked up once a batch, in
// shuffled order.
#include "bench_job.h"
#include "name_data.h"

#include <kttm.h>

#if defined(KT_HAVE_LMDB) && defined(KT_HAVE_ICU)
#include "lmdb_tree.h"

#include <unicode/ucol.h>

namespace kt::bench {
namespace {

// Blanks and symbols decide last, as with us; equal names are told apart by their bytes.
UCollator* collator() {
  static UCollator* const instance = [] {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* opened = ucol_open("en", &status);
    ucol_setAttribute(opened, UCOL_ALTERNATE_HANDLING, UCOL_SHIFTED, &status);
    ucol_setAttribute(opened, UCOL_STRENGTH, UCOL_QUATERNARY, &status);
    return opened;
  }();
  return instance;
}

int compareByIcu(const MDB_val* a, const MDB_val* b) {
  UErrorCode status = U_ZERO_ERROR;
  return ucol_strcollUTF8(collator(), static_cast<const char*>(a->mv_data), static_cast<std::int32_t>(a->mv_size),
                          static_cast<const char*>(b->mv_data), static_cast<std::int32_t>(b->mv_size), &status);
}

// LMDB aligns keys of an even size to two bytes, and so are they looked up.
int compareUtf16ByIcu(const MDB_val* a, const MDB_val* b) {
  return ucol_strcoll(collator(), static_cast<const UChar*>(a->mv_data), static_cast<std::int32_t>(a->mv_size / 2),
                      static_cast<const UChar*>(b->mv_data), static_cast<std::int32_t>(b->mv_size / 2));
}

std::vector<std::string> recordsOf(const Names& names) {
  std::vector<std::string> records;
  for (const KtString& text : names.texts) {
    std::string record(StringSizeGet(&text, 8, kLittleEndian, 1), '\0');
    StringStore(record.data(), &text, kLittleEndian, 1);
    records.push_back(record);
  }
  return records;
}

std::vector<std::string> utf16Of(const Names& names) {
  std::vector<std::string> texts;
  for (const std::u16string& name : names.utf16)
    texts.emplace_back(reinterpret_cast<const char*>(name.data()), name.size() * sizeof(char16_t));
  return texts;
}

struct TreeData {
  explicit TreeData(const Names& names)
      : records(compareByType<KT_ID_KtString>, recordsOf(names)),
        bytes(nullptr, recordsOf(names)),
        utf8(compareByIcu, names.utf8),
        utf16(compareUtf16ByIcu, utf16Of(names)) {}

  Tree records;
  Tree bytes;  // the same in the order of their bytes: the floor, LMDB with hardly a comparison
  Tree utf8, utf16;
};

// Every name is found in every tree.
bool allAreFound(TreeData& data) {
  return data.records.findAll() == kBatch && data.bytes.findAll() == kBatch && data.utf8.findAll() == kBatch &&
         data.utf16.findAll() == kBatch;
}

Job<TreeData> addJob(const char* name, unsigned char codeSet) {
  Job<TreeData> job(
      name, 0, kBatch, 0, [codeSet] { return std::make_unique<TreeData>(cityNames(codeSet, kBatch)); }, allAreFound);
  job.contestant("kttm", [](TreeData& data) { keep(data.records.findAll()); });
  job.contestant("floor", [](TreeData& data) { keep(data.bytes.findAll()); });
  job.contestant("icu", [](TreeData& data) { keep(data.utf8.findAll()); });
  return job;
}

void addJobs() {
  addJob("lmdb_find_names_8", kLatin1);
  addJob("lmdb_find_names_16", kUnicode).contestant("icu_utf16", [](TreeData& data) { keep(data.utf16.findAll()); });
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench

#endif
