// lmdb.h - LMDB's environment, transactions, trees and cursors as owning objects; every failure is an Error.
#ifndef EXAMPLES_ATLAS_LMDB_H
#define EXAMPLES_ATLAS_LMDB_H

#include "error.h"
#include "value.h"

#include <lmdb.h>

#include <memory>
#include <string>

namespace atlas {

// Throws the Error for a result of LMDB other than success.
void checkLmdb(int result, const char* action);

inline MDB_val valOf(Bytes bytes) { return {bytes.size, bytes.address()}; }
inline Bytes bytesOf(const MDB_val& val) { return {val.mv_data, val.mv_size}; }

class Env {
public:
  struct Options {
    std::string file;
    unsigned long long mapSize = 0;  // bytes; 0: as large as needed to read
    bool readOnly = false;
  };
  // Throws Error when the file is no LMDB file, or shorter than its pages reach. A file that is missing or empty is made
  // unless readOnly.
  explicit Env(const Options& options);
  MDB_env* get() const { return env_.get(); }
  const std::string& file() const { return file_; }

private:
  struct Close {
    void operator()(MDB_env* env) const { mdb_env_close(env); }
  };
  std::string file_;
  std::unique_ptr<MDB_env, Close> env_;
};

using Tree = MDB_dbi;

class Txn {
public:
  Txn(const Env& env, bool readOnly) : env_(&env), readOnly_(readOnly) { begin(); }
  Txn(const Txn&) = delete;
  Txn& operator=(const Txn&) = delete;
  ~Txn() { abort(); }
  MDB_txn* get() const { return txn_; }
  bool readOnly() const { return readOnly_; }
  void commit();  // and begins the next one
  void abort();   // nothing of the transaction stays; no further use
  // A named tree; comparators are LMDB's own where null. Without `create` the tree must be there.
  Tree open(const char* name, unsigned flags, MDB_cmp_func* keys, MDB_cmp_func* duplicates, bool create);
  unsigned long entries(Tree tree) const;

private:
  void begin();

  const Env* env_;
  bool readOnly_;
  MDB_txn* txn_ = nullptr;
};

class Cursor {
public:
  Cursor(const Txn& txn, Tree tree);
  // False when there is no such entry. key and data are read, set, or both, as the operation asks.
  bool move(MDB_cursor_op op, MDB_val& key, MDB_val& data);
  // False when the entry stands there already.
  bool put(Bytes key, Bytes data, unsigned flags);
  // Makes room for the data of a key and returns it.
  void* reserve(Bytes key, unsigned long size, unsigned flags);
  // Adds `count` data of `size` bytes each under one key.
  void putMany(Bytes key, const void* data, unsigned long size, unsigned long count, unsigned flags);

private:
  struct Close {
    void operator()(MDB_cursor* cursor) const { mdb_cursor_close(cursor); }
  };
  std::unique_ptr<MDB_cursor, Close> cursor_;
};

}  // namespace atlas

#endif
