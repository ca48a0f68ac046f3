#include "ops/string_array.h"

#include "ops/handle_arrays.h"

namespace kt {

KtString* createStrings(unsigned long count) { return static_cast<KtString*>(HandleArrays<KtString>::create(count)); }

void deleteStrings(KtString* strings, unsigned long count) { HandleArrays<KtString>::destroy(strings, count); }

const KtString* stringAt(const KtTypeConvertData* data, unsigned long index) {
  return data == nullptr || index > 0x7FFFFFFFul ? nullptr : data->GetString(static_cast<int>(index));
}

const KtString* textAt(const KtTypeConvertData* data, unsigned long index) {
  const KtString* text = stringAt(data, index);
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
