#include "block.h"

#include "error.h"

#include <cstring>

namespace atlas {
namespace {

// DISK: the layout of block.h.
constexpr unsigned long kClassAt = 0, kClassBytes = 2;
constexpr unsigned long kFirstAt = 2, kFirstBytes = 6;
constexpr unsigned long kCountAt = 8, kCountBytes = 2;
constexpr unsigned long kHeader = 10;
constexpr unsigned long kEntry = 2;

// Two of them, with their keys and what LMDB keeps beside them, fill a page of 4,096 bytes.
constexpr unsigned long kMostBytes = 2020;

void put(unsigned char* at, std::uint64_t number, unsigned long bytes) {
  for (unsigned long i = 0; i < bytes; ++i) at[i] = static_cast<unsigned char>(number >> 8 * i);
}

std::uint64_t take(const unsigned char* at, unsigned long bytes) {
  std::uint64_t number = 0;
  for (unsigned long i = bytes; i-- > 0;) number = number << 8 | at[i];
  return number;
}

[[noreturn]] void throwDamaged(unsigned long id) {
  throw Error(kExitBroken, "block " + std::to_string(id) + " is damaged");
}

unsigned long headerSize(unsigned long count) { return kHeader + kEntry * (count - 1); }

}  // namespace

ObjId objIdOf(ObjectNumber number, unsigned long block) {
  return {static_cast<BlockId>(block), static_cast<KtDWord>(number), static_cast<KtWord>(number >> 32)};
}

void storeObjId(void* where, ObjId id) { manager().Store(KT_ID_KtObjId, where, &id, kStored, 1); }

ObjId loadObjId(Bytes stored) {
  ObjId id;
  if (stored.size != kStoredObjId) throw Error(kExitBroken, "an object id in an index is damaged");
  manager().Load(KT_ID_KtObjId, &id, stored.address(), kStored, 1);
  return id;
}

Block::Block(unsigned long id, Bytes bytes) : id_(id), bytes_(bytes) {
  if (bytes.size < kHeader) throwDamaged(id);
  first_ = take(bytes.data + kFirstAt, kFirstBytes);
  count_ = static_cast<unsigned>(take(bytes.data + kCountAt, kCountBytes));
  if (count_ == 0 || headerSize(count_) > bytes.size) throwDamaged(id);
}

unsigned Block::classNumber() const { return static_cast<unsigned>(take(bytes_.data + kClassAt, kClassBytes)); }

unsigned long Block::begin(unsigned i) const {
  if (i == count_) return bytes_.size;
  const unsigned long offset = i == 0 ? 0 : static_cast<unsigned long>(take(bytes_.data + headerSize(i), kEntry));
  return headerSize(count_) + offset;
}

Bytes Block::object(unsigned i) const {
  const unsigned long from = begin(i), to = begin(i + 1);
  if (i >= count_ || from > to || to > bytes_.size) throwDamaged(id_);
  return {bytes_.data + from, to - from};
}

void BlockBuilder::begin(const ClassSchema& cls, ObjectNumber first) {
  class_ = &cls;
  first_ = first;
  begins_.clear();
  used_ = 0;
}

bool BlockBuilder::fits(unsigned long size) const {
  return isEmpty() || headerSize(begins_.size() + 1) + used_ + size <= kMostBytes;
}

unsigned char* BlockBuilder::room(unsigned long size) {
  if (bytes_.size() < used_ + size) bytes_.resize(used_ + size);
  return bytes_.data() + used_;
}

void BlockBuilder::accept(unsigned long size) {
  begins_.push_back(used_);
  used_ += size;
}

unsigned long BlockBuilder::storedSize() const { return headerSize(begins_.size()) + used_; }

void BlockBuilder::storeAt(unsigned char* where) const {
  put(where + kClassAt, class_->number, kClassBytes);
  put(where + kFirstAt, first_, kFirstBytes);
  put(where + kCountAt, begins_.size(), kCountBytes);
  for (std::size_t i = 1; i < begins_.size(); ++i) put(where + headerSize(i), begins_[i], kEntry);
  std::memcpy(where + headerSize(begins_.size()), bytes_.data(), used_);
}

}  // namespace atlas
