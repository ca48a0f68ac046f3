// Look-ups in an LMDB tree of city names under a collation: stored records compared where they lie, against UTF-8 names
// compared by ICU. Every name is looked up once a batch, in shuffled order.
#include "bench_job.h"
#include "name_data.h"

#include <kttm.h>

#if defined(KT_HAVE_LMDB) && defined(KT_HAVE_ICU)
#include <lmdb.h>
#include <unicode/ucol.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace kt::bench {
namespace {

constexpr unsigned char kLittleEndian = 0;
constexpr std::size_t kMapSize = 64ul << 20;

void require(int result) {
  if (result != 0) throw std::runtime_error(mdb_strerror(result));
}

KtTypeMgr& manager() {
  static KtTypeMgr instance(12);
  return instance;
}

int compareRecords(const MDB_val* a, const MDB_val* b) {
  int status;
  return sign(manager().Cmp(KT_ID_KtString, a->mv_size, a->mv_data, b->mv_size, b->mv_data, KtCMP_NO_WILDCARDS, 1,
                            kLittleEndian, status));
}

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

// A tree in a file of its own that is gone with the object.
class Tree {
public:
  Tree(MDB_cmp_func* compare, const std::vector<std::string>& keys) : folder_(makeFolder()), keys_(keys) {
    require(mdb_env_create(&environment_));
    require(mdb_env_set_mapsize(environment_, kMapSize));
    require(mdb_env_open(environment_, folder_.c_str(), MDB_NOSYNC, 0600));
    MDB_txn* transaction;
    require(mdb_txn_begin(environment_, nullptr, 0, &transaction));
    require(mdb_dbi_open(transaction, nullptr, 0, &tree_));
    require(mdb_set_compare(transaction, tree_, compare));
    for (const std::string& key : keys_) put(transaction, key);
    require(mdb_txn_commit(transaction));
    require(mdb_txn_begin(environment_, nullptr, MDB_RDONLY, &reader_));
    require(mdb_set_compare(reader_, tree_, compare));
  }
  ~Tree() {
    mdb_txn_abort(reader_);
    mdb_env_close(environment_);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;

  // Looks every key up; the number found.
  unsigned long findAll() const {
    unsigned long found = 0;
    for (const std::string& key : keys_) {
      MDB_val name = valueOf(key);
      MDB_val data;
      found += mdb_get(reader_, tree_, &name, &data) == 0 ? 1 : 0;
    }
    return found;
  }

private:
  static std::string makeFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kttm_bench_XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return pattern;
  }
  static MDB_val valueOf(const std::string& bytes) { return {bytes.size(), const_cast<char*>(bytes.data())}; }
  void put(MDB_txn* transaction, const std::string& key) {
    MDB_val name = valueOf(key);
    MDB_val data = valueOf(key);
    const int result = mdb_put(transaction, tree_, &name, &data, MDB_NOOVERWRITE);
    if (result != MDB_KEYEXIST) require(result);
  }

  std::string folder_;
  std::vector<std::string> keys_;
  MDB_env* environment_ = nullptr;
  MDB_dbi tree_ = 0;
  MDB_txn* reader_ = nullptr;
};

struct TreeData {
  explicit TreeData(const Names& names) : records(compareRecords, recordsOf(names)), texts(compareByIcu, names.utf8) {}

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
