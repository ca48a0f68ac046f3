// Look-ups in an LMDB tree of city names under a collation: stored records compared where they lie, against UTF-8 names
// compared by ICU. Every name is looked up once a batch, in shuffled order.
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

struct TreeData {
  explicit TreeData(const Names& names)
      : records(compareByType<KT_ID_KtString>, recordsOf(names)), texts(compareByIcu, names.utf8) {}

  static std::vector<std::string> recordsOf(const Names& names) {
    std::vector<std::string> records;
    for (const KtString& text : names.texts) {
      std::string record(StringSizeGet(&text, 8, kLittleEndian, 1), '\0');
      StringStore(record.data(), &text, kLittleEndian, 1);
      records.push_back(record);
    }
    return records;
  }

  Tree records;
  Tree texts;
};

// Every name is found in both trees.
bool allAreFound(TreeData& data) { return data.records.findAll() == kBatch && data.texts.findAll() == kBatch; }

void addJob(const char* name, unsigned char codeSet) {
  Job<TreeData> job(
      name, 0, kBatch, 0, [codeSet] { return std::make_unique<TreeData>(cityNames(codeSet, kBatch)); }, allAreFound);
  job.contestant("kttm", [](TreeData& data) { keep(data.records.findAll()); });
  job.contestant("icu", [](TreeData& data) { keep(data.texts.findAll()); });
}

void addJobs() {
  addJob("lmdb_find_names_8", kLatin1);
  addJob("lmdb_find_names_16", kUnicode);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench

#endif
