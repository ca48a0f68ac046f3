#include "record.h"

#include "block.h"
#include "error.h"

namespace atlas {

Record::Record(const ClassSchema& cls, ObjId id, Bytes bytes) : class_(&cls), id_(id), bytes_(bytes) {
  const std::size_t fields = cls.fields.size();
  if (fields >= few_.size()) many_.resize(fields + 1);
  unsigned* const ends = many_.empty() ? few_.data() : many_.data();
  unsigned long at = 0;
  std::size_t i = 0;
  ends[0] = 0;
  for (; i < fields && at < bytes.size; ++i) {
    const Field& field = cls.fields[i];
    at += field.fixedSize != 0 ? field.fixedSize : storedLength(field.type, {bytes.data + at, bytes.size - at});
    ends[i + 1] = static_cast<unsigned>(at);
  }
  if (at != bytes.size || i != fields) {
    throw Error(kExitBroken, cls.name + " " + std::to_string(numberOf(id)) + " is damaged: its fields do not fill it");
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
