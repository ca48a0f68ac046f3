#include "index.h"

#include "block.h"
#include "comparators.h"
#include "database.h"

namespace atlas {
namespace {

// The least key of those that may have been cut.
const Buffer& firstOfTail() {
  static const Buffer key(kLongestWholeKey + 1, 0);
  return key;
}

// What was cut cannot be placed among whole keys: as a bound it is none.
Buffer bound(const unsigned char* key, unsigned char length) {
  if (key == nullptr || length > kLongestWholeKey) return {};
  return {key, key + length};
}

}  // namespace

KtIdxBounds IndexRange::bounds() const {
  KtIdxBounds range;
  range.lowKey = const_cast<unsigned char*>(first.data());
  range.highKey = const_cast<unsigned char*>(last.data());
  range.lowKeyLength = static_cast<unsigned char>(first.size());
  range.highKeyLength = static_cast<unsigned char>(last.size());
  return range;
}

unsigned long indexKeyAt(unsigned char* room, char type, Bytes stored) {
  const unsigned long size =
      manager().Translate(type, room, kStoredKey, KtINDEX_MAX_KEYLEN, stored.address(), kStored, stored.size, 1);
  if (size == 0) throw Mistake("a value is too long for an index key");
  return size;
}

Buffer indexKey(char type, Bytes stored) {
  Buffer key(KtINDEX_MAX_KEYLEN);
  key.resize(indexKeyAt(key.data(), type, stored));
  return key;
}

unsigned long Index::entries() const { return txn_->entries(tree_); }

IndexRange Index::range() const {
  IndexRange range;
  Cursor cursor(*txn_, tree_);
  MDB_val key, data;
  if (!cursor.move(MDB_FIRST, key, data)) return range;
  const auto* first = static_cast<const unsigned char*>(key.mv_data);
  range.first.assign(first, first + key.mv_size);
  cursor.move(MDB_LAST, key, data);
  const auto* last = static_cast<const unsigned char*>(key.mv_data);
  range.last.assign(last, last + key.mv_size);
  return range;
}

int Index::compareKeys(Bytes a, Bytes b) const {
  const MDB_val x = valOf(a), y = valOf(b);
  const int result = comparatorOf(field().type)(&x, &y);
  return (result > 0) - (result < 0);
}

IndexScan Index::scan(const KtIdxBounds& bounds) const { return {*this, bounds}; }

ObjId Index::find(Bytes stored) const {
  const Buffer key = indexKey(field().type, stored);
  Cursor cursor(*txn_, tree_);
  MDB_val at = valOf(key), data;
  if (!cursor.move(MDB_SET_KEY, at, data)) return {};
  if (key.size() <= kLongestWholeKey) return loadObjId(bytesOf(data));
  do {
    const ObjId id = loadObjId(bytesOf(data));
    if (compare(field().type, database_->get(id).fieldBytes(field_), stored) == 0) return id;
  } while (cursor.move(MDB_NEXT_DUP, at, data));
  return {};
}

bool Index::has(Bytes key, ObjId id) const {
  unsigned char stored[kStoredObjId];
  storeObjId(stored, id);
  Cursor cursor(*txn_, tree_);
  MDB_val keyVal = valOf(key), data = valOf(Bytes(stored, sizeof stored));
  return cursor.move(MDB_GET_BOTH, keyVal, data);
}

IndexScan::IndexScan(const Index& index, const KtIdxBounds& bounds)
    : index_(&index),
      cursor_(*index.txn_, index.tree_),
      low_(bound(bounds.lowKey, bounds.lowKeyLength)),
      high_(bound(bounds.highKey, bounds.highKeyLength)) {}

bool IndexScan::first(MDB_val& key, MDB_val& data) {
  started_ = true;
  if (low_.empty()) return cursor_.move(MDB_FIRST, key, data);
  key = valOf(low_);
  return cursor_.move(MDB_SET_RANGE, key, data);
}

bool IndexScan::toTail(MDB_val& key, MDB_val& data) {
  inTail_ = true;
  key = valOf(firstOfTail());
  return cursor_.move(MDB_SET_RANGE, key, data);
}

bool IndexScan::isBeyond(Bytes key) const { return !inTail_ && !high_.empty() && index_->compareKeys(key, high_) > 0; }

bool IndexScan::next() {
  MDB_val key, data;
  if (ended_) return false;
  bool found = started_ ? cursor_.move(MDB_NEXT, key, data) : first(key, data);
  if (found && isBeyond(bytesOf(key))) found = toTail(key, data);
  ended_ = !found;
  if (!found) return false;
  inTail_ = inTail_ || key.mv_size > kLongestWholeKey;
  key_ = bytesOf(key);
  id_ = loadObjId(bytesOf(data));
  return true;
}

}  // namespace atlas
