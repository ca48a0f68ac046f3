// batch.h - objects that are written together: their block fills up, their index entries are sorted and then appended.
#ifndef EXAMPLES_ATLAS_BATCH_H
#define EXAMPLES_ATLAS_BATCH_H

#include "block.h"
#include "index.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace atlas {

// The new entries of one index. Values repeat and comparing them is dear, so entries are first brought together by the
// bytes of their keys, and then only the different keys are compared.
class EntryBatch {
public:
  // Adds the key of a stored value, and the id. Ids rise.
  void add(char type, Bytes stored, ObjId id);
  bool isEmpty() const { return entries_.empty(); }
  unsigned long bytes() const { return used_; }
  // Writes all entries in the order of their keys, and forgets them.
  void write(const Txn& txn, Tree tree, MDB_cmp_func* order);

private:
  // A key in bytes_, with the stored object id behind it.
  struct Entry {
    std::uint64_t rank;  // equal for keys of equal bytes; of short keys nearly in the order of the type
    std::uint32_t at;    // in bytes_, in the order of the ids
    std::uint32_t keySize;
  };
  // Entries whose keys are equal.
  struct Group {
    std::size_t first;  // in entries_
    std::size_t end;
  };
  MDB_val keyOf(const Entry& entry) { return {entry.keySize, bytes_.data() + entry.at}; }
  MDB_val keyOf(const Group& group) { return keyOf(entries_[group.first]); }
  Bytes idOf(const Entry& entry) const { return {bytes_.data() + entry.at + entry.keySize, kStoredObjId}; }
  bool hasSameBytes(const Entry& a, const Entry& b) const;
  void sortByRank();
  void group();
  void sortGroups(MDB_cmp_func* order);
  void put(Cursor& cursor, const Entry* first, const Entry* end, bool append);

  std::vector<Entry> entries_;
  std::vector<Group> groups_;
  Buffer bytes_;
  std::size_t used_ = 0;
  Buffer ids_;  // of a group, side by side
};

// Where objects were numbered last.
struct Counters {
  ObjectNumber nextObject = 1;  // 0 is null
  unsigned long nextBlock = 1;
  std::vector<unsigned long long> objects;  // of each class, by its place
};

class Batch {
public:
  Batch(const Txn& txn, Tree objects, const std::vector<std::unique_ptr<Index>>& indexes)
      : txn_(&txn), objects_(objects), indexes_(&indexes), entries_(indexes.size()) {}

  // Store writes field i at an address and returns its bytes; size is that of all fields.
  template <class Store>
  ObjId add(const ClassSchema& cls, unsigned long size, Store store, Counters& counters) {
    unsigned char* const room = prepare(cls, size, counters);
    ends_.assign(1, room);
    for (std::size_t i = 0; i < cls.fields.size(); ++i) ends_.push_back(ends_.back() + store(i, ends_.back()));
    return accept(cls, size, counters);
  }

  void write(Counters& counters);
  // What is added next begins a new block.
  void endBlock(Counters& counters);

private:
  void writeEntries();
  unsigned char* prepare(const ClassSchema& cls, unsigned long size, Counters& counters);
  ObjId accept(const ClassSchema& cls, unsigned long size, Counters& counters);
  Bytes stored(std::size_t field) const {
    return {ends_[field], static_cast<unsigned long>(ends_[field + 1] - ends_[field])};
  }

  const Txn* txn_;
  Tree objects_;
  const std::vector<std::unique_ptr<Index>>* indexes_;
  BlockBuilder block_;
  std::vector<EntryBatch> entries_;   // of each index
  std::vector<unsigned char*> ends_;  // of the fields that are being added
};

}  // namespace atlas

#endif
