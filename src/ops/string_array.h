// string_array.h - arrays of KtString, the form in which values travel to and from text.
#ifndef KT_OPS_STRING_ARRAY_H
#define KT_OPS_STRING_ARRAY_H

#include "ktstring.h"
#include "kttypcvd.h"
#include "kttypdsc.h"
#include "text/allocation_watch.h"

namespace kt {

// `count` empty strings; null when memory is exhausted (the memory handler is called). Freed by deleteStrings with the
// same count.
KtString* createStrings(unsigned long count);
void deleteStrings(KtString* strings, unsigned long count);

// String `index` of the holder, or null where there is none ...
const KtString* stringAt(const KtTypeConvertData* data, unsigned long index);
// ... or it is a null string.
const KtString* textAt(const KtTypeConvertData* data, unsigned long index);

// What `count` empty strings convert to: the default values of a type without (or not asked for) null.
void* convertEmptyStrings(KtConvertFromFunc convertFrom, unsigned long count);

// Makes a holder of `count` strings, string i being textOf(i). Null when memory is exhausted, also that of one string.
template <class TextOf>
KtTypeConvertData* convertToStrings(unsigned long count, TextOf textOf) {
  KtString* strings = createStrings(count);
  if (strings == nullptr) return nullptr;
  const AllocationWatch watch;
  for (unsigned long i = 0; i < count; ++i) {
    KtString text = textOf(i);
    strings[i].Destruct(text);
  }
  KtTypeConvertData* holder =
      watch.hasFailed() ? nullptr : KtTypeConvertData::Make(KT_ID_KtString, count, strings, nullptr);
  if (holder == nullptr) deleteStrings(strings, count);
  return holder;
}

// Makes `count` values by Ops::create, value i being what fill(values, i) makes of it. Null when memory is
// exhausted, also that of one value.
template <class Ops, class Fill>
[[gnu::always_inline]] inline void* makeFilled(unsigned long count, Fill fill) {
  void* values = Ops::create(count);
  if (values == nullptr) return nullptr;
  const AllocationWatch watch;
  for (unsigned long i = 0; i < count; ++i) fill(values, i);
  return watch.hasFailed() ? Ops::destroy(values, count) : values;
}

}  // namespace kt

#endif
