#include "record.h"

#include "error.h"

namespace atlas {

Record::Record(const ClassSchema& cls, ObjId id, Bytes bytes) : class_(&cls), id_(id), bytes_(bytes) {
  ends_.reserve(cls.fields.size() + 1);
  unsigned long at = 0;
  ends_.push_back(0);
  for (const Field& field : cls.fields) {
    if (at >= bytes.size) break;
    at += storedLength(field.type, {bytes.data + at, bytes.size - at});
    ends_.push_back(static_cast<unsigned>(at));
  }
  if (at != bytes.size || ends_.size() != cls.fields.size() + 1) {
    throw Error(kExitBroken, "an object of the class " + cls.name + " is damaged: its fields do not fill it");
  }
}

std::string Record::text(std::size_t field) const {
  Value value(class_->fields[field].type);
  value.load(fieldBytes(field));
  return value.text(class_->fields[field]);
}

Draft::Draft(const ClassSchema& cls) : class_(&cls) {
  values_.reserve(cls.fields.size());
  for (const Field& field : cls.fields) values_.emplace_back(field.type);
}

unsigned long Draft::storedSize() const {
  unsigned long size = 0;
  for (const Value& value : values_) size += value.storedSize();
  return size;
}

unsigned long Draft::storeAt(void* where) const {
  auto* at = static_cast<unsigned char*>(where);
  for (const Value& value : values_) at += value.storeAt(at);
  return static_cast<unsigned long>(at - static_cast<unsigned char*>(where));
}

void Draft::load(const Record& record) {
  for (std::size_t i = 0; i < values_.size(); ++i) values_[i].load(record.fieldBytes(i));
}

}  // namespace atlas
