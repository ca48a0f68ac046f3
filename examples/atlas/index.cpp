#include "index.h"

#include "block.h"
#include "comparators.h"
#include "database.h"

#include <cstring>

namespace atlas {
namespace {

Buffer bound(const unsigned char* key, unsigned char length) {
  if (key == nullptr) return {};
  return {key, key + length};
}

unsigned long keyAt(unsigned char* room, unsigned long most, char type, Bytes bytes, unsigned char form) {
  return manager().Translate(type, room, kStoredKey, most, bytes.address(), form, bytes.size, 1);
}

// Whether the order of two keys lies in what was cut off.
bool isUndecided(char type, Bytes a, Bytes b) {
  int status = 0;
  manager().Cmp(type, a.size, a.address(), b.size, b.address(), kKeyOptions, 1, kStoredKey, status);
  return status == KtERR_OVERRUN;
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

unsigned long storedKeyAt(unsigned char* room, char type, Bytes stored) {
  const unsigned long size = keyAt(room, kLongestKey, type, stored, kStored);
  if (size == 0) throw Mistake(std::string("values of ") + manager().NameGet(type, nullptr) + " cannot be indexed");
  return size;
}

Buffer storedKey(char type, Bytes stored) {
  Buffer key(kLongestKey);
  key.resize(storedKeyAt(key.data(), type, stored));
  return key;
}

Buffer indexKey(char type, Bytes stored) {
  Buffer key(KtINDEX_MAX_KEYLEN);
  key.resize(keyAt(key.data(), key.size(), type, stored, kStored));
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
  const IndexRange equal{indexKey(field().type, stored), indexKey(field().type, stored)};
  for (IndexScan candidates = scan(equal.bounds()); candidates.next();) {
    const Record record = database_->get(candidates.id());
    if (compare(field().type, record.fieldBytes(field_), stored, {settings_.options, kStored}) == 0) return record.id();
  }
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
  if (isUndecided(index_->field().type, low_, low_)) return firstBefore(key, data);
  key = valOf(low_);
  return cursor_.move(MDB_SET_RANGE, key, data);
}

// A bound that was cut stands behind all that begin like it. So the scan goes back over what cannot be told from it, and
// over one key more: that may be what is left of the bound, as a whole.
bool IndexScan::firstBefore(MDB_val& key, MDB_val& data) {
  key = valOf(low_);
  bool found = cursor_.move(MDB_SET_RANGE, key, data);
  found = cursor_.move(found ? MDB_PREV_NODUP : MDB_LAST, key, data);
  while (found && isUndecided(index_->field().type, bytesOf(key), low_))
    found = cursor_.move(MDB_PREV_NODUP, key, data);
  if (!found) return cursor_.move(MDB_FIRST, key, data);
  const Buffer from(static_cast<unsigned char*>(key.mv_data), static_cast<unsigned char*>(key.mv_data) + key.mv_size);
  key = valOf(from);
  return cursor_.move(MDB_SET_RANGE, key, data);
}

// The next beginning of the upper bound, as a key that was cut; empty: there is none. A key without its last byte counts
// as cut behind its last character.
Buffer IndexScan::nextBeginning() {
  const char type = index_->field().type;
  if (manager().IsFixed(type) != 0 || room_ == 0) return {};
  Buffer key(--room_);
  if (room_ + 1 == high_.size()) {
    std::memcpy(key.data(), high_.data(), key.size());
  } else {
    key.resize(keyAt(key.data(), key.size(), type, high_, kStoredKey));
    room_ = key.size();
  }
  return key;
}

// Keys that are the beginning of the upper bound, cut short of it, stand behind it; values between the bounds may have
// them. They are looked for one by one, the longest first, which is the order of the keys.
bool IndexScan::nextCut(MDB_val& key, MDB_val& data) {
  if (!cut_.empty() && cursor_.move(MDB_NEXT_DUP, key, data)) return true;
  if (!behind_) room_ = high_.size();
  behind_ = true;
  for (Buffer beginning = nextBeginning(); !beginning.empty(); beginning = nextBeginning()) {
    const bool isNew = cut_.empty() || index_->compareKeys(beginning, cut_) != 0;
    const bool isAbove = index_->compareKeys(beginning, high_) > 0;
    const bool isBelow = !low_.empty() && index_->compareKeys(beginning, low_) < 0;
    if (!isNew || !isAbove || isBelow) continue;
    cut_ = beginning;
    key = valOf(cut_);
    if (cursor_.move(MDB_SET_KEY, key, data)) return true;
  }
  cut_.clear();
  return false;
}

// The next id under the key that was compared last is not compared again.
bool IndexScan::isBeyond(Bytes key) const {
  if (high_.empty()) return false;
  const bool isSameKey = index_->txn_->readOnly() && key.data == key_.data && key.size == key_.size;
  return !isSameKey && index_->compareKeys(key, high_) > 0;
}

bool IndexScan::next() {
  MDB_val key, data;
  if (ended_) return false;
  bool found = false;
  if (!behind_) {
    found = started_ ? cursor_.move(MDB_NEXT, key, data) : first(key, data);
    if (found && isBeyond(bytesOf(key))) found = false;
    if (!found && !high_.empty()) found = nextCut(key, data);
  } else {
    found = nextCut(key, data);
  }
  ended_ = !found;
  if (!found) return false;
  key_ = bytesOf(key);
  id_ = loadObjId(bytesOf(data));
  return true;
}

}  // namespace atlas
