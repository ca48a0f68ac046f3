#include "value.h"

#include "error.h"
#include "reading.h"

#include <array>
#include <optional>
#include <utility>

namespace atlas {
namespace {

constexpr unsigned char kMemoryForm = 8;

struct Probes {
  Buffer low, high;
  bool differ = false;
};

// Two values that differ, unless all values of the type are alike: what "0" and "1" convert to.
Probes makeProbes(char type) {
  Probes probes;
  for (Buffer* probe : {&probes.low, &probes.high}) {
    Value value(type);
    convertText(value, probe == &probes.low ? "0" : "1");
    *probe = value.stored();
  }
  probes.differ = compare(type, probes.low, probes.high) != 0;
  return probes;
}

const Probes& probesOf(char type) {
  static std::array<std::optional<Probes>, 256> all;
  std::optional<Probes>& probes = all[static_cast<unsigned char>(type)];
  if (!probes) probes = makeProbes(type);
  return *probes;
}

}  // namespace

Value::Value(char type) : type_(type), data_(manager().DefaultValue(type, 1, 0)) {
  if (data_ == nullptr) throw Mistake(std::string("the type ") + manager().NameGet(type, nullptr) + " has no values");
}

Value::Value(Value&& other) noexcept : type_(other.type_), data_(std::exchange(other.data_, nullptr)) {}

Value::~Value() {
  if (data_ != nullptr) manager().Delete(type_, data_, 1);
}

void Value::scan(std::string_view utf8, const Field& field, unsigned char language) {
  if (utf8.empty()) {
    clear();
  } else if (field.converted) {
    readConverted(*this, utf8, field);
  } else {
    readScanned(*this, utf8, field, language);
  }
}

void Value::clear() { manager().SetNullValue(type_, data_); }

bool Value::isNull() const { return manager().IsNullValue(type_, data_) > 0; }

std::string Value::text(const Field& field) const {
  if (!field.converted) return print(field.formatOrNull());
  return isNull() ? utf8Of(KtTypeMgr::GetNullPrintString()) : conversionOf(*this).value_or("");
}

std::string Value::print(const char* format) const {
  constexpr unsigned char kUnicode = 253;
  KtString out(kUnicode, static_cast<unsigned char>(0));  // an 8-bit string would lose what its code set lacks
  return utf8Of(manager().PrintToKtString(type_, out, data_, format, 1));
}

unsigned long Value::storedSize() const { return manager().DiskLenGet(type_, data_, kStored, 1, kMemoryForm); }

unsigned long Value::storeAt(void* where) const {
  const unsigned long size = storedSize();
  manager().Store(type_, where, data_, kStored, 1);
  return size;
}

Buffer Value::stored() const {
  Buffer bytes(storedSize());
  manager().Store(type_, bytes.data(), data_, kStored, 1);
  return bytes;
}

void Value::load(Bytes bytes) { manager().Load(type_, data_, bytes.address(), kStored, 1); }

int compare(char type, Bytes a, Bytes b, Order order) {
  int status = 0;
  const long result =
      manager().Cmp(type, a.size, a.address(), b.size, b.address(), order.options, 1, order.form, status);
  return (result > 0) - (result < 0);
}

// A value that ends behind its run may be sized as what is there of it, which is not what would be loaded.
unsigned long storedLength(char type, Bytes run, unsigned char form) {
  const unsigned long damaged = run.size + 1;
  MemFile file(run.data, run.size);  // never read beyond
  const unsigned long size = manager().DiskLenGetFromMemFile(type, &file, form, 1);
  if (size == 0 || size > run.size) return damaged;
  return manager().DiskLenGet(type, run.address(), form, 1, form) == size ? size : damaged;
}

bool hasPlace(char type, Bytes stored) {
  const Probes& probes = probesOf(type);
  return !probes.differ || compare(type, stored, probes.low) != 0 || compare(type, stored, probes.high) != 0;
}

}  // namespace atlas
