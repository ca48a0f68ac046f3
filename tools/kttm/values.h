// values.h - arrays of values of a type that is known by id only, and their disk form.
#ifndef KTTM_TOOL_VALUES_H
#define KTTM_TOOL_VALUES_H

#include "hex.h"
#include "names.h"

#include <optional>
#include <string>

namespace tool {

constexpr unsigned char kMemoryForm = 8;   // the format code of values in memory
constexpr unsigned char kAnyDiskForm = 2;  // one of disk, where it does not matter which
constexpr unsigned char kIndexKey = 0x80;  // asks for the form that a value has in an index

// Owns an array in memory form.
class Values {
public:
  Values(const Type& type, unsigned long count);  // default values; throws Error where the type has none
  // The one value that the type's string conversion makes of `text`.
  static Values converted(const Type& type, const KtString& text);
  Values(Values&& other) noexcept;
  Values(const Values&) = delete;
  Values& operator=(const Values&) = delete;
  ~Values();

  unsigned long count() const { return count_; }
  void* at(unsigned long index) const;
  char id() const { return id_; }

private:
  Values(char id, void* data, unsigned long count) : id_(id), data_(data), count_(count) {}

  char id_;
  void* data_;
  unsigned long count_;
};

// Throws Error where the type has no operations.
void requireValues(const Type& type);

// The disk form of `count` values in memory form.
unsigned long storedSize(char id, void* values, unsigned char format, unsigned long count);
Bytes stored(char id, void* values, unsigned char format, unsigned long count);

// Throws Error for the first value that would not come back as it is from that disk format.
void requireKept(const Type& type, const Values& values, unsigned char format);

// The text of the type's string conversion, where it offers one.
std::optional<std::string> conversionOf(const Type& type, void* value);

// One value as terminal text. The format is one that the library takes (formatFrom()), null stands for the type's own;
// converted: the text of its string conversion.
std::string printed(const Type& type, void* value, const char* format, bool converted);

// Narrows the result of the type's compare function to -1, 0, 1; both values in that format.
int compared(char id, void* a, void* b, unsigned short op, unsigned char format = kMemoryForm);

}  // namespace tool

#endif
