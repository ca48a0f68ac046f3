#include "values.h"

#include "error.h"
#include "terminal.h"

#include <memory>
#include <utility>

namespace tool {

void requireValues(const Type& type) {
  if (!type.hasValues) throw Error(type.name + " offers no operations, so it has no values to work on");
}

Values::Values(const Type& type, unsigned long count) : id_(type.id), data_(nullptr), count_(count) {
  requireValues(type);
  data_ = manager().DefaultValue(id_, count, 0);
  if (data_ == nullptr) throw Error("no memory for " + std::to_string(count) + " values of " + type.name);
}

Values Values::converted(const Type& type, const KtString& text) {
  requireValues(type);
  KtString copy(text);
  KtTypeConvertData holder(KT_ID_KtString, 1, &copy, nullptr);
  void* data = manager().ConvertFrom(type.id, &holder, 1);
  holder.data = nullptr;  // the manager made itself its owner, but the string is ours
  if (data == nullptr) throw Error(type.name + " offers no conversion from text");
  return {type.id, data, 1};
}

Values::Values(Values&& other) noexcept
    : id_(other.id_), data_(std::exchange(other.data_, nullptr)), count_(std::exchange(other.count_, 0)) {}

Values::~Values() {
  if (data_ != nullptr) manager().Delete(id_, data_, count_);
}

void* Values::at(unsigned long index) const { return manager().GetArrayElement(id_, data_, index, 0); }

unsigned long storedSize(char id, void* values, unsigned char format, unsigned long count) {
  return manager().DiskLenGet(id, values, format, count, kMemoryForm);
}

Bytes stored(char id, void* values, unsigned char format, unsigned long count) {
  Bytes bytes(storedSize(id, values, format, count));
  if (!bytes.empty()) manager().Store(id, bytes.data(), values, format, count);
  return bytes;
}

void requireKept(const Type& type, const Values& values, unsigned char format) {
  if (!type.fixed || values.count() == 0) return;  // handles are stored whole in every format
  Bytes bytes = stored(type.id, values.at(0), format, values.count());
  const Values back(type, values.count());
  manager().Load(type.id, back.at(0), bytes.data(), format, values.count());
  const auto widest = [&](const Values& of, unsigned long i) { return stored(type.id, of.at(i), kAnyDiskForm, 1); };
  const auto isNull = [&](const Values& of, unsigned long i) { return manager().IsNullValue(type.id, of.at(i)) != 0; };
  for (unsigned long i = 0; i < values.count(); ++i) {
    if (widest(values, i) == widest(back, i) || (isNull(values, i) && isNull(back, i))) continue;
    throw Error(type.name + " " + quoted(printed(type, values.at(i), nullptr, false)) + " does not fit in format " +
                formatTitle(format) + ": it would come back as " + quoted(printed(type, back.at(i), nullptr, false)) +
                " (--lenient takes that)");
  }
}

std::optional<std::string> conversionOf(const Type& type, void* value) {
  const std::unique_ptr<KtTypeConvertData> holder(manager().ConvertTo(type.id, value, 1));
  const KtString* text = holder == nullptr ? nullptr : holder->GetString(0);
  if (text == nullptr) return std::nullopt;
  return toTerminal(text->IsNullValue() ? KtTypeMgr::GetNullPrintString() : *text);
}

std::string printed(const Type& type, void* value, const char* format, bool converted) {
  if (converted) {
    const std::optional<std::string> text = conversionOf(type, value);
    if (!text) throw Error(type.name + " offers no conversion to text");
    return *text;
  }
  // Unicode, so that texts of every code set can be appended to it without loss.
  KtString out(kUnicode, KtString::GetDefaultLanguage());
  return toTerminal(manager().PrintToKtString(type.id, out, value, format, 1));
}

int compared(char id, void* a, void* b, unsigned short op, unsigned char format) {
  const long result = manager().Cmp(id, a, b, op, 1, format);
  return (result > 0) - (result < 0);
}

}  // namespace tool
