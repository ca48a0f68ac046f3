// block.h - storage blocks: objects of one class with consecutive numbers, stored together.
//
//   0   2  class number                                    All numbers little-endian.
//   2   6  number of the first object
//   8   2  count, 1 and more
//  10   1  bytes of a size in the table that follows: 1 or 2
//  11   -  the size of each object but the last
//       -  the objects, each its fields back to back
#ifndef EXAMPLES_ATLAS_BLOCK_H
#define EXAMPLES_ATLAS_BLOCK_H

#include "record.h"

#include <cstdint>

namespace atlas {

using ObjectNumber = std::uint64_t;  // high * 2^32 + low

constexpr unsigned long kStoredObjId = 10;  // DISK: bytes of a stored object id

inline ObjectNumber numberOf(ObjId id) { return ObjectNumber{id.high} << 32 | id.low; }
ObjId objIdOf(ObjectNumber number, unsigned long block);
void storeObjId(void* where, ObjId id);
ObjId loadObjId(Bytes stored);

// A stored block. Reading is safe whatever the bytes are.
class Block {
public:
  Block() = default;
  Block(unsigned long id, Bytes bytes);  // throws Error(kExitBroken) when the bytes are no block

  unsigned classNumber() const { return class_; }
  unsigned count() const { return count_; }
  ObjectNumber first() const { return first_; }
  bool holds(ObjectNumber number) const { return number >= first_ && number - first_ < count_; }
  ObjId id(unsigned i) const { return objIdOf(first_ + i, id_); }
  Bytes object(unsigned i) const;  // throws Error(kExitBroken) where the table leads outside

private:
  unsigned long size(unsigned i) const;
  unsigned long sizesBefore(unsigned i) const;

  unsigned long id_ = 0;
  Bytes bytes_;
  unsigned class_ = 0;
  ObjectNumber first_ = 0;
  unsigned count_ = 0;
  unsigned long width_ = 1;  // of a size
};

// A block in the making.
class BlockBuilder {
public:
  // Begins an empty block.
  void begin(const ClassSchema& cls, ObjectNumber first);
  bool isEmpty() const { return sizes_.empty(); }
  const ClassSchema* cls() const { return class_; }
  ObjectNumber next() const { return first_ + sizes_.size(); }
  // Whether an object of so many bytes may be added; an empty block takes any.
  bool fits(unsigned long size) const;
  // Room for an object of `size` bytes; added when accept() is called.
  unsigned char* room(unsigned long size);
  void accept(unsigned long size);

  unsigned long storedSize() const;
  void storeAt(unsigned char* where) const;

private:
  const ClassSchema* class_ = nullptr;
  ObjectNumber first_ = 0;
  std::vector<unsigned long> sizes_;
  unsigned long width_ = 1;
  Buffer bytes_;  // of which used_ are taken
  unsigned long used_ = 0;
};

}  // namespace atlas

#endif
