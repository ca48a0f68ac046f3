#include "batch.h"

#include "comparators.h"

#include <algorithm>
#include <cstring>

namespace atlas {
namespace {

constexpr unsigned long kMostEntryBytes = 256UL << 20;  // of one index, before they are written

}  // namespace

void EntryBatch::add(char type, Bytes stored, ObjId id) {
  constexpr std::size_t kMostPerEntry = kLongestKey + kStoredObjId;
  if (bytes_.size() < used_ + kMostPerEntry) bytes_.resize(std::max(2 * bytes_.size(), used_ + kMostPerEntry));
  const unsigned long keySize = storedKeyAt(bytes_.data() + used_, type, stored);
  storeObjId(bytes_.data() + used_ + keySize, id);
  entries_.push_back({used_, keySize});
  used_ += keySize + kStoredObjId;
}

// A merge sort, which needs no more than an order: equal keys keep the order of their objects.
void EntryBatch::sort(MDB_cmp_func* order) {
  std::stable_sort(entries_.begin(), entries_.end(), [&](const Entry& a, const Entry& b) {
    const MDB_val x = keyOf(a), y = keyOf(b);
    return order(&x, &y) < 0;
  });
}

void EntryBatch::putGroup(Cursor& cursor, std::size_t first, std::size_t end, bool append) {
  const MDB_val keyVal = keyOf(entries_[first]);
  const Bytes key = bytesOf(keyVal);
  cursor.put(key, idOf(entries_[first]), append ? MDB_APPEND : MDB_NODUPDATA);
  if (end == first + 1) return;
  ids_.clear();
  for (std::size_t i = first + 1; i < end; ++i) {
    const Bytes id = idOf(entries_[i]);
    ids_.insert(ids_.end(), id.data, id.data + id.size);
  }
  // New ids follow all that are there.
  cursor.putMany(key, ids_.data(), kStoredObjId, end - first - 1, MDB_APPENDDUP);
}

void EntryBatch::write(const Txn& txn, Tree tree, MDB_cmp_func* order) {
  sort(order);
  Cursor cursor(txn, tree);
  MDB_val last, data;
  bool append = !cursor.move(MDB_LAST, last, data);
  const Buffer lastKey = append ? Buffer()
                                : Buffer(static_cast<unsigned char*>(last.mv_data),
                                         static_cast<unsigned char*>(last.mv_data) + last.mv_size);
  for (std::size_t i = 0; i < entries_.size();) {
    const MDB_val key = keyOf(entries_[i]);
    const MDB_val end = valOf(lastKey);
    append = append || order(&key, &end) > 0;
    std::size_t next = i + 1;
    for (; next < entries_.size(); ++next) {
      const MDB_val other = keyOf(entries_[next]);
      if (order(&key, &other) != 0) break;
    }
    putGroup(cursor, i, next, append);
    i = next;
  }
  entries_.clear();
  used_ = 0;
}

unsigned char* Batch::prepare(const ClassSchema& cls, unsigned long size, Counters& counters) {
  if (block_.cls() != &cls || !block_.fits(size)) endBlock(counters);
  if (block_.isEmpty()) block_.begin(cls, counters.nextObject);
  return block_.room(size);
}

ObjId Batch::accept(const ClassSchema& cls, unsigned long size, Counters& counters) {
  for (const auto& index : *indexes_) {
    if (index->class_ == &cls && !hasPlace(index->field().type, stored(index->field_))) {
      throw Mistake("the value of " + index->name() + " has no place in an index");
    }
  }
  const ObjId id = objIdOf(counters.nextObject, counters.nextBlock);
  bool isFull = false;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const Index& index = *(*indexes_)[i];
    if (index.class_ != &cls) continue;
    entries_[i].add(index.field().type, stored(index.field_), id);
    isFull = isFull || entries_[i].bytes() > kMostEntryBytes;
  }
  block_.accept(size);
  ++counters.nextObject;
  ++counters.objects[cls.place];
  if (isFull) writeEntries();
  return id;
}

void Batch::endBlock(Counters& counters) {
  if (block_.isEmpty()) return;
  unsigned char key[sizeof(BlockId)];
  BlockId number = static_cast<BlockId>(counters.nextBlock);
  manager().Store(KT_ID_BlockId, key, &number, kStored, 1);
  Cursor cursor(*txn_, objects_);
  block_.storeAt(static_cast<unsigned char*>(cursor.reserve(Bytes(key, sizeof key), block_.storedSize(), MDB_APPEND)));
  ++counters.nextBlock;
  block_.begin(*block_.cls(), counters.nextObject);
}

void Batch::write(Counters& counters) {
  endBlock(counters);
  writeEntries();
}

void Batch::writeEntries() {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const Index& index = *(*indexes_)[i];
    if (!entries_[i].isEmpty()) entries_[i].write(*txn_, index.tree_, comparatorOf(index.field().type));
  }
}

}  // namespace atlas
