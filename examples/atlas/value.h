// value.h - values that are known by a type id alone: owned ones in memory form, and views of stored ones.
#ifndef EXAMPLES_ATLAS_VALUE_H
#define EXAMPLES_ATLAS_VALUE_H

#include "../common/utf8.h"
#include "schema.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace atlas {

using Buffer = std::vector<unsigned char>;

// Stored bytes that belong to somebody else: a database page or a Buffer.
struct Bytes {
  const unsigned char* data = nullptr;
  unsigned long size = 0;

  Bytes() = default;
  Bytes(const void* bytes, unsigned long count) : data(static_cast<const unsigned char*>(bytes)), size(count) {}
  Bytes(const Buffer& buffer) : data(buffer.data()), size(buffer.size()) {}  // NOLINT: a view, wanted implicitly
  // The type manager takes addresses of const data as void*.
  void* address() const { return const_cast<unsigned char*>(data); }
};

// One value of a type in memory form. Made once and used again: scanning, loading and storing allocate nothing.
class Value {
public:
  explicit Value(char type);
  Value(Value&& other) noexcept;
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;
  ~Value();

  char type() const { return type_; }
  void* data() const { return data_; }

  // Becomes what a UTF-8 text says in a field (its format or conversion count); an empty text makes it null, or what the
  // type takes for null. Throws Mistake with the reason, without a place, when the type cannot read the text: scanning
  // itself is quiet about that.
  void scan(std::string_view utf8, const Field& field, unsigned char language);
  // Becomes null, or what the type takes for null.
  void clear();
  bool isNull() const;
  // In UTF-8, as a field of its type prints.
  std::string text(const Field& field) const;
  std::string print(const char* format) const;  // under any format, null: the type's own

  unsigned long storedSize() const;          // bytes in code kStored
  unsigned long storeAt(void* where) const;  // writes storedSize() bytes; how many
  Buffer stored() const;
  void load(Bytes bytes);  // of one stored value

private:
  char type_;
  void* data_;
};

// How stored values are compared.
struct Order {
  unsigned short options = KtCMP_NO_WILDCARDS;  // as of KtTypeMgr::Cmp
  unsigned char form = kStored;                 // kStored, or kStoredKey for index keys
};

// -1, 0 or 1: the order of two stored values of a type.
int compare(char type, Bytes a, Bytes b, Order order = {});

// The bytes of the stored value that a run begins with; more than the run has where it is damaged.
unsigned long storedLength(char type, Bytes run, unsigned char form = kStored);

// Whether a stored value has a place in the order of its type. What is equal to two values that differ has none: a NaN.
// (A date with a field of -1 has one: wildcards are off in every order here, and stored values are what is compared.)
bool hasPlace(char type, Bytes stored);

using examples::utf8Of;

// The reverse: an 8-bit string where all characters are in code set 1, else Unicode. Throws Mistake for what is not
// UTF-8 of 16-bit characters.
KtString stringOf(std::string_view utf8, unsigned char language);

// Languages of texts by name, e.g. "swedish". Throws Mistake with the names there are.
unsigned char languageOf(const std::string& name);
std::string languageName(unsigned char language);

}  // namespace atlas

#endif
