#include "block.h"

#include "error.h"

#include <algorithm>
#include <cstring>

namespace atlas {
namespace {

// DISK: the layout of block.h.
constexpr unsigned long kClassAt = 0, kClassBytes = 2;
constexpr unsigned long kFirstAt = 2, kFirstBytes = 6;
constexpr unsigned long kCountAt = 8, kCountBytes = 2;
constexpr unsigned long kWidthAt = 10, kWidthBytes = 1;
constexpr unsigned long kHeader = 11;

// DISK: decides which objects share a block. With LMDB's header these bytes fill four pages of 4,096 bytes.
constexpr unsigned long kMostBytes = 16368;

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

unsigned long headerSize(unsigned long count, unsigned long width) { return kHeader + width * (count - 1); }

// Of a size in the table; the largest that fits a block needs two bytes.
unsigned long widthOf(unsigned long size) { return size > 0xFF ? 2 : 1; }

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
  class_ = static_cast<unsigned>(take(bytes.data + kClassAt, kClassBytes));
  first_ = take(bytes.data + kFirstAt, kFirstBytes);
  count_ = static_cast<unsigned>(take(bytes.data + kCountAt, kCountBytes));
  width_ = bytes.data[kWidthAt];
  const bool isWidth = width_ == 1 || width_ == 2;
  if (count_ == 0 || !isWidth || headerSize(count_, width_) > bytes.size) throwDamaged(id);
}

unsigned long Block::size(unsigned i) const {
  const unsigned char* const sizes = bytes_.data + kHeader;
  return width_ == 1 ? sizes[i] : static_cast<unsigned long>(take(sizes + width_ * i, width_));
}

// A short run of bytes, added up many at a time.
unsigned long Block::sizesBefore(unsigned i) const {
  unsigned sum = 0;
  const unsigned char* const sizes = bytes_.data + kHeader;
  if (width_ == 1) {
    for (unsigned before = 0; before < i; ++before) sum += sizes[before];
  } else {
    for (unsigned before = 0; before < i; ++before) sum += static_cast<unsigned>(size(before));
  }
  return sum;
}

Bytes Block::object(unsigned i) const {
  if (i >= count_) throwDamaged(id_);
  unsigned long from = headerSize(count_, width_);
  from += sizesBefore(i);
  if (from > bytes_.size) throwDamaged(id_);
  const unsigned long size = i + 1 < count_ ? this->size(i) : bytes_.size - from;
  if (size > bytes_.size - from) throwDamaged(id_);
  return {bytes_.data + from, size};
}

void BlockBuilder::begin(const ClassSchema& cls, ObjectNumber first) {
  class_ = &cls;
  first_ = first;
  sizes_.clear();
  width_ = 1;
  used_ = 0;
}

bool BlockBuilder::fits(unsigned long size) const {
  const unsigned long width = std::max(width_, widthOf(size));
  return isEmpty() || headerSize(sizes_.size() + 1, width) + used_ + size <= kMostBytes;
}

unsigned char* BlockBuilder::room(unsigned long size) {
  if (bytes_.size() < used_ + size) bytes_.resize(used_ + size);
  return bytes_.data() + used_;
}

void BlockBuilder::accept(unsigned long size) {
  sizes_.push_back(size);
  width_ = std::max(width_, widthOf(size));
  used_ += size;
}

unsigned long BlockBuilder::storedSize() const { return headerSize(sizes_.size(), width_) + used_; }

void BlockBuilder::storeAt(unsigned char* where) const {
  put(where + kClassAt, class_->number, kClassBytes);
  put(where + kFirstAt, first_, kFirstBytes);
  put(where + kCountAt, sizes_.size(), kCountBytes);
  put(where + kWidthAt, width_, kWidthBytes);
  for (std::size_t i = 0; i + 1 < sizes_.size(); ++i) put(where + headerSize(i + 1, width_), sizes_[i], width_);
  std::memcpy(where + headerSize(sizes_.size(), width_), bytes_.data(), used_);
}

}  // namespace atlas
