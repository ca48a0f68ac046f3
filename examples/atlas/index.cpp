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

struct KeyOrder {
  long result;
  bool isDecided;  // false: it lies in what was cut off
};

KeyOrder orderOf(char type, Bytes a, Bytes b) {
  int status = 0;
  const long result = manager().Cmp(type, a.size, a.address(), b.size, b.address(), kKeyOptions, 1, kStoredKey, status);
  return {result, status != KtERR_OVERRUN};
}

bool isUndecided(char type, Bytes a, Bytes b) { return !orderOf(type, a, b).isDecided; }

// Whether a key, and all that it may have been cut from, comes before another.
bool isBefore(char type, Bytes a, Bytes b) {
  const KeyOrder order = orderOf(type, a, b);
  return order.result < 0 && order.isDecided;
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

namespace {
// Of beginnings this short there are few, so that most searches for them are repeated.
constexpr std::size_t kLongestNoted = 14;  // bytes
constexpr std::size_t kMostNoted = 4096;

std::string textOf(const Buffer& key) { return {key.begin(), key.end()}; }
}  // namespace

bool Index::isMissing(const Buffer& key) const {
  return key.size() <= kLongestNoted && !missing_.empty() && missing_.count(textOf(key)) != 0;
}

void Index::noteMissing(const Buffer& key) const {
  if (key.size() <= kLongestNoted && txn_->readOnly() && missing_.size() < kMostNoted) missing_.insert(textOf(key));
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

// Makes cut_ the next shorter beginning of the upper bound, as a key that was cut; false: there is none. A key without its
// last byte counts as cut behind its last character.
bool IndexScan::shorten() {
  const char type = index_->field().type;
  const bool isFirst = cut_.empty();
  if (isFirst && (manager().IsFixed(type) != 0 || high_.empty())) return false;
  unsigned char shorter[KtINDEX_MAX_KEYLEN];
  const Bytes last = isFirst ? Bytes(high_.data(), high_.size() - 1) : Bytes(cut_);
  const unsigned long room = isFirst ? high_.size() : cut_.size() - 1;
  const unsigned long size = keyAt(shorter, room, type, last, kStoredKey);
  cut_.assign(shorter, shorter + size);
  return size != 0;
}

// Goes to the key that is equal to cut_, if there is one. What stands behind earlier beginnings may tell without a search.
bool IndexScan::findCut(MDB_val& key, MDB_val& data) {
  const int order = index_->compareKeys(cut_, behindHigh_);
  if (order < 0 || (order > 0 && index_->isMissing(cut_))) return false;
  key = valOf(cut_);
  const bool found = cursor_.move(MDB_SET_RANGE, key, data);
  behindHigh_ = found ? bytesOf(key) : Bytes();
  const bool isThere = found && index_->compareKeys(cut_, behindHigh_) == 0;
  if (!isThere) index_->noteMissing(cut_);
  return isThere;
}

// Keys that are the beginning of the upper bound, cut short of it, stand behind it; values between the bounds may have
// them. They are looked for one by one, the longest first, which is the order of the keys.
bool IndexScan::nextCut(MDB_val& key, MDB_val& data) {
  if (atCut_) {
    if (cursor_.move(MDB_NEXT_DUP, key, data)) return true;
    behindHigh_ = cursor_.move(MDB_NEXT_NODUP, key, data) ? bytesOf(key) : Bytes();
    atCut_ = false;
  }
  while (!atCut_ && behindHigh_.data != nullptr && shorten()) atCut_ = findCut(key, data);
  return atCut_;
}

// The next entry up to the upper bound.
bool IndexScan::nextBetween(MDB_val& key, MDB_val& data) {
  const bool found = started_ ? cursor_.move(MDB_NEXT, key, data) : first(key, data);
  if (!found || !isBeyond(bytesOf(key))) return found;
  behindHigh_ = bytesOf(key);
  return false;
}

// Values under one key are judged once.
bool IndexScan::isBetween() {
  if (isJudged_) return isBetween_;
  isJudged_ = true;
  const char type = index_->field().type;
  isBetween_ = isBelowHigh_ && (low_.empty() || isBefore(type, low_, key_));
  return isBetween_;
}

// The next id under the key that was compared last is not compared again.
bool IndexScan::isBeyond(Bytes key) {
  if (index_->txn_->readOnly() && key.data == key_.data && key.size == key_.size) return false;
  isJudged_ = false;
  isBelowHigh_ = high_.empty();
  if (isBelowHigh_) return false;
  const KeyOrder order = orderOf(index_->field().type, key, high_);
  isBelowHigh_ = order.result < 0 && order.isDecided;
  return order.result > 0;
}

bool IndexScan::next() {
  MDB_val key, data;
  if (ended_) return false;
  bool found = !behind_ && nextBetween(key, data);
  if (!found) {
    behind_ = true;
    found = nextCut(key, data);
    isBelowHigh_ = isJudged_ = false;
  }
  ended_ = !found;
  if (!found) return false;
  key_ = bytesOf(key);
  id_ = loadObjId(bytesOf(data));
  return true;
}

}  // namespace atlas
