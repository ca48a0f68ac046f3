// translate.h - what Translate does alike for all types of fixed size.
#ifndef KT_OPS_TRANSLATE_H
#define KT_OPS_TRANSLATE_H

#include "ops/format_code.h"

#include <cstring>

namespace kt {

// Between two disk forms nothing is converted: the bytes that fit are copied, and a larger target is cleared first.
// Returns the bytes copied.
inline unsigned long copyDiskForm(void* dst, unsigned long dstLength, const void* src, unsigned long srcLength) {
  const unsigned long bytes = srcLength < dstLength ? srcLength : dstLength;
  if (bytes != 0) std::memmove(dst, src, bytes);
  if (bytes < dstLength) std::memset(static_cast<char*>(dst) + bytes, 0, dstLength - bytes);
  return bytes;
}

// load and store return the disk bytes that they read or wrote, assign those in memory.
template <class Load, class Store, class Assign>
unsigned long translateRun(void* dst, unsigned char dstFormat, unsigned long dstLength, const void* src,
                           unsigned char srcFormat, unsigned long srcLength, Load load, Store store, Assign assign) {
  if (isMemoryForm(dstFormat)) return isMemoryForm(srcFormat) ? assign() : load();
  if (isMemoryForm(srcFormat)) return store();
  return copyDiskForm(dst, dstLength, src, srcLength);
}

}  // namespace kt

#endif
