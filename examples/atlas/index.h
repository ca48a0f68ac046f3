// index.h - the index of a field: its keys in the order of the field's type, under each the ids of the objects.
#ifndef EXAMPLES_ATLAS_INDEX_H
#define EXAMPLES_ATLAS_INDEX_H

#include "lmdb.h"
#include "record.h"

#include <string>

namespace atlas {

// What an index was made with; stored beside it, and never changed.
struct IndexSettings {
  unsigned char language = 0;                   // of the texts that are indexed and looked for
  unsigned short options = KtCMP_NO_WILDCARDS;  // as of KtTypeMgr::Cmp
};

// The first and the last key of an index; both empty while the index is.
struct IndexRange {
  Buffer first;
  Buffer last;

  bool empty() const { return first.empty(); }
  // For EvalAndBound; valid while this range is.
  KtIdxBounds bounds() const;
};

// The key of a stored value: at most KtINDEX_MAX_KEYLEN bytes, in code kStoredKey; a longer one is cut, so the objects
// that a scan finds are to be compared again.
Buffer indexKey(char type, Bytes stored);
// The same into room for KtINDEX_MAX_KEYLEN bytes; the bytes taken.
unsigned long indexKeyAt(unsigned char* room, char type, Bytes stored);

class Index;
class Database;

// Walks the entries of an index between two keys, both included, in the order of the keys and, under one key, of the
// object ids. Entries whose keys were cut cannot always be placed: those come last, whatever the bounds, and are for
// the caller to judge by the object's own value, as is every bound that excludes its key.
class IndexScan {
public:
  // False at the end. The id, and its key, are valid until the next call.
  bool next();
  ObjId id() const { return id_; }
  Bytes key() const { return key_; }

private:
  friend class Index;
  IndexScan(const Index& index, const KtIdxBounds& bounds);
  bool first(MDB_val& key, MDB_val& data);
  bool toTail(MDB_val& key, MDB_val& data);
  bool isBeyond(Bytes key) const;

  const Index* index_;
  Cursor cursor_;
  Buffer low_;   // empty: none
  Buffer high_;  // empty: none
  bool started_ = false;
  bool inTail_ = false;  // among the keys that were cut
  bool ended_ = false;
  ObjId id_;
  Bytes key_;
};

class Index {
public:
  const ClassSchema& cls() const { return *class_; }
  const Field& field() const { return class_->fields[field_]; }
  const IndexSettings& settings() const { return settings_; }
  std::string name() const { return class_->name + "." + field().name; }

  unsigned long entries() const;
  IndexRange range() const;
  // Bounds as EvalAndBound records them; a key that is null is no bound. They are copied.
  IndexScan scan(const KtIdxBounds& bounds = {}) const;
  // The first object whose field is equal to a stored value of its type; null id: none.
  ObjId find(Bytes stored) const;
  // Whether the index has an entry of this key and object.
  bool has(Bytes key, ObjId id) const;
  // How keys of this index compare, -1, 0 or 1.
  int compareKeys(Bytes a, Bytes b) const;

private:
  friend class IndexScan;
  friend class Database;
  friend class Batch;
  Index() = default;

  const Database* database_ = nullptr;
  const ClassSchema* class_ = nullptr;
  std::size_t field_ = 0;
  IndexSettings settings_;
  const Txn* txn_ = nullptr;
  Tree tree_ = 0;
};

}  // namespace atlas

#endif
