// lmdb_tree.h - an index in a file of its own: an LMDB tree of keys, each with an object's id, and look-ups in it.
#ifndef LMDB_TREE_H
#define LMDB_TREE_H

#include "bench_job.h"

#include <kttm.h>
#include <lmdb.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace kt::bench {

constexpr unsigned char kLittleEndian = 0;

// At namespace scope: a comparator is called too often to ask each time whether its manager is made.
inline const KtTypeMgr manager(12);

// Keys are stored values of a type.
template <char kId>
int compareByType(const MDB_val* a, const MDB_val* b) {
  int status;
  return sign(
      manager.Cmp(kId, a->mv_size, a->mv_data, b->mv_size, b->mv_data, KtCMP_NO_WILDCARDS, 1, kLittleEndian, status));
}

// The file is gone with the object. A null comparator stands for LMDB's own, by bytes.
class Tree {
public:
  Tree(MDB_cmp_func* compare, const std::vector<std::string>& keys) : folder_(makeFolder()), keys_(keys) {
    require(mdb_env_create(&environment_));
    require(mdb_env_set_mapsize(environment_, kMapSize));
    require(mdb_env_open(environment_, folder_.c_str(), MDB_NOSYNC, 0600));
    MDB_txn* transaction;
    require(mdb_txn_begin(environment_, nullptr, 0, &transaction));
    require(mdb_dbi_open(transaction, nullptr, 0, &tree_));
    useComparator(transaction, compare);
    for (std::size_t i = 0; i < keys_.size(); ++i) put(transaction, keys_[i], i);
    require(mdb_txn_commit(transaction));
    require(mdb_txn_begin(environment_, nullptr, MDB_RDONLY, &reader_));
    useComparator(reader_, compare);
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
  static constexpr std::size_t kMapSize = 64ul << 20;

  static void require(int result) {
    if (result != 0) throw std::runtime_error(mdb_strerror(result));
  }
  static std::string makeFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kttm_bench_XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return pattern;
  }
  static MDB_val valueOf(const std::string& bytes) { return {bytes.size(), const_cast<char*>(bytes.data())}; }
  void useComparator(MDB_txn* transaction, MDB_cmp_func* compare) const {
    if (compare != nullptr) require(mdb_set_compare(transaction, tree_, compare));
  }
  void put(MDB_txn* transaction, const std::string& key, std::uint64_t objectId) {
    MDB_val name = valueOf(key);
    MDB_val data = {sizeof objectId, &objectId};
    const int result = mdb_put(transaction, tree_, &name, &data, MDB_NOOVERWRITE);
    if (result != MDB_KEYEXIST) require(result);
  }

  std::string folder_;
  std::vector<std::string> keys_;
  MDB_env* environment_ = nullptr;
  MDB_dbi tree_ = 0;
  MDB_txn* reader_ = nullptr;
};

}  // namespace kt::bench

#endif
