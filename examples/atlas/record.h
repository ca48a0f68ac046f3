// record.h - stored objects: the fields of a class back to back, in the order of the schema, each as its type stores it.
#ifndef EXAMPLES_ATLAS_RECORD_H
#define EXAMPLES_ATLAS_RECORD_H

#include "value.h"

#include <array>
#include <string>
#include <vector>

namespace atlas {

using ObjId = KtObjId;

constexpr KtWord kThisDatabase = 1;  // DISK: in references

// A view of one stored object; valid while its bytes are.
class Record {
public:
  // Throws Error(kExitBroken) when the fields do not fill the bytes exactly.
  Record(const ClassSchema& cls, ObjId id, Bytes bytes);

  const ClassSchema& cls() const { return *class_; }
  ObjId id() const { return id_; }
  Bytes bytes() const { return bytes_; }
  // The stored form of a field, in code kStored.
  Bytes fieldBytes(std::size_t field) const {
    return {bytes_.data + ends()[field], static_cast<unsigned long>(ends()[field + 1] - ends()[field])};
  }
  // A field in UTF-8, as its schema says.
  std::string text(std::size_t field) const;

private:
  const ClassSchema* class_;
  ObjId id_;
  Bytes bytes_;
  const unsigned* ends() const { return many_.empty() ? few_.data() : many_.data(); }

  // Where field i begins, and where the last one ends. Records are made by the million: few fields need no allocation.
  std::array<unsigned, 17> few_;
  std::vector<unsigned> many_;
};

// The values of one object in memory, one for each field: filled, stored, and filled again.
class Draft {
public:
  explicit Draft(const ClassSchema& cls);

  const ClassSchema& cls() const { return *class_; }
  Value& operator[](std::size_t field) { return values_[field]; }
  const Value& operator[](std::size_t field) const { return values_[field]; }
  std::size_t size() const { return values_.size(); }

  unsigned long storedSize() const;
  unsigned long storeAt(void* where) const;  // writes storedSize() bytes; how many
  void load(const Record& record);
  void swap(Draft& other) { values_.swap(other.values_); }  // with one of a class of the same fields

private:
  const ClassSchema* class_;
  std::vector<Value> values_;
};

}  // namespace atlas

#endif
