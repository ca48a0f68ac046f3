#include "ops/string_array.h"

#include <ktbs.h>

#include <cstdlib>
#include <memory>
#include <new>

namespace kt {

KtString* createStrings(unsigned long count) {
  const unsigned long elements = count == 0 ? 1 : count;
  const bool overflow = elements > ~0ul / sizeof(KtString);
  void* block = overflow ? nullptr : std::malloc(elements * sizeof(KtString));
  if (block == nullptr) {
    KtCallMemoryHandler(elements * sizeof(KtString));
    return nullptr;
  }
  auto* strings = static_cast<KtString*>(block);
  std::uninitialized_default_construct_n(strings, elements);
  return strings;
}

void deleteStrings(KtString* strings, unsigned long count) {
  if (strings == nullptr) return;
  std::destroy_n(strings, count == 0 ? 1 : count);
  std::free(strings);
}

const KtString* stringAt(const KtTypeConvertData* data, unsigned long index) {
  if (data == nullptr || index > 0x7FFFFFFFul) return nullptr;
  const KtString* text = data->GetString(static_cast<int>(index));
  return text == nullptr || text->IsNullValue() ? nullptr : text;
}

void* convertEmptyStrings(KtConvertFromFunc convertFrom, unsigned long count) {
  KtString* strings = createStrings(count);
  if (strings == nullptr) return nullptr;
  void* values = nullptr;
  {
    KtTypeConvertData holder(KT_ID_KtString, count, strings, nullptr);
    values = convertFrom(&holder, count);
  }
  deleteStrings(strings, count);
  return values;
}

}  // namespace kt
