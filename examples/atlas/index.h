// index.h - the index of a field: its keys in the order of the field's type, under each the ids of the objects.
#ifndef EXAMPLES_ATLAS_INDEX_H
#define EXAMPLES_ATLAS_INDEX_H

#include "lmdb.h"
#include "record.h"

#include <string>
#include <unordered_set>

namespace atlas {

// What an index was made with; stored beside it, and never changed.
struct IndexSettings {
  unsigned char language = 0;                   // of the texts that are indexed and looked for
  unsigned short options = KtCMP_NO_WILDCARDS;  // the order of the values, as of KtTypeMgr::Cmp
  unsigned short keyOptions = 0;                // that of the keys: coarser where keys are cut
  unsigned long longestKey = 0;                 // bytes

  bool operator==(const IndexSettings&) const = default;
};

// The first and the last key of an index; both empty while the index is.
struct IndexRange {
  Buffer first;
  Buffer last;

  bool empty() const { return first.empty(); }
  // For EvalAndBound; valid while this range is.
  KtIdxBounds bounds() const;
};

// The key of a stored value, for bounds and EvalAndBound: whole as far as KtINDEX_MAX_KEYLEN goes, in code kStoredKey.
Buffer indexKey(char type, Bytes stored);
// The key as an index holds it: a text's is cut to kLongestKey bytes, so that objects with one key are in the order of
// their ids, and what a scan finds is to be compared again.
Buffer storedKey(char type, Bytes stored);
// The same into room for kLongestKey bytes; the bytes taken.
unsigned long storedKeyAt(unsigned char* room, char type, Bytes stored);

class Index;
class Database;

// Walks the entries of an index between two keys, in the order of the keys and, under one key, of the object ids. Every
// object whose value lies between the bounds, both included, is found, and others may be: keys may be cut, so that values
// are for the caller to compare again, and so is a bound that excludes its key. Nothing may be written meanwhile.
class IndexScan {
public:
  // False at the end. The id, and its key, are valid until the next call.
  bool next();
  ObjId id() const { return id_; }
  Bytes key() const { return key_; }
  // Whether the key tells that the value lies between the bounds and is equal to neither: no need to compare it again.
  bool isBetween();

private:
  friend class Index;
  IndexScan(const Index& index, const KtIdxBounds& bounds);
  bool first(MDB_val& key, MDB_val& data);
  bool firstBefore(MDB_val& key, MDB_val& data);
  bool nextBetween(MDB_val& key, MDB_val& data);
  bool nextCut(MDB_val& key, MDB_val& data);
  bool shorten();
  bool findCut(MDB_val& key, MDB_val& data);
  bool isBeyond(Bytes key);

  const Index* index_;
  Cursor cursor_;
  Buffer low_;   // empty: none
  Buffer high_;  // empty: none
  bool started_ = false;
  bool ended_ = false;
  bool behind_ = false;  // past the upper bound, among keys that are beginnings of it
  bool atCut_ = false;   // on an entry of such a key
  Bytes behindHigh_;     // the key behind all that was found or looked for; null: there is none
  Buffer cut_;           // the beginning that was looked for last
  ObjId id_;
  Bytes key_;
  bool isBelowHigh_ = false;  // the key, certainly
  bool isJudged_ = false;     // isBetween_ is of the key
  bool isBetween_ = false;
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

  // Whether it is known that the index has no such key. Short beginnings of bounds are looked for again and again.
  bool isMissing(const Buffer& key) const;
  void noteMissing(const Buffer& key) const;

  const Database* database_ = nullptr;
  const ClassSchema* class_ = nullptr;
  std::size_t field_ = 0;
  IndexSettings settings_;
  const Txn* txn_ = nullptr;
  Tree tree_ = 0;
  mutable std::unordered_set<std::string> missing_;  // only while nothing can change
};

}  // namespace atlas

#endif
