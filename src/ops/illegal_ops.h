// illegal_ops.h - the operations of the illegal row: they do nothing and answer 0, null or the output unchanged.
#ifndef KT_OPS_ILLEGAL_OPS_H
#define KT_OPS_ILLEGAL_OPS_H

#include "kttypdsc.h"

namespace kt {

struct IllegalOps {
  static void* create(unsigned long) { return nullptr; }
  static void* destroy(void*, unsigned long) { return nullptr; }
  static unsigned long store(void*, const void*, unsigned char, unsigned long) { return 0; }
  static constexpr KtLoadFunc load = &store;
  static unsigned long nullSizeGet(unsigned long) { return 0; }
  static unsigned long sizeGet(const void*, unsigned char, unsigned char, unsigned long) { return 0; }
  static unsigned long sizeGetFromMemFile(MemFile*, unsigned char, unsigned long) { return 0; }
  static long compare(unsigned char, unsigned long, void*, unsigned long, void*, unsigned short, unsigned long,
                      int& status) {
    status = 0;
    return 0;
  }
  static float evalAndBound(KtIdxBounds*, unsigned short&, void*, unsigned char, unsigned long, KtIdxBounds*) {
    return 0.0F;
  }
  static unsigned long hash(unsigned char, unsigned long, void*, unsigned long, int& status) {
    status = 0;
    return 0;
  }
  static KtTypeConvertData* convertTo(void*, unsigned long) { return nullptr; }
  static void* convertFrom(KtTypeConvertData*, unsigned long) { return nullptr; }
  static void construct(void*, unsigned long, unsigned long) {}
  static constexpr KtDestructorFunc destruct = &construct;
  static void assign(void*, void*, unsigned long, int) {}
  static constexpr KtCopyFunc copy = &assign;
  static unsigned long translate(void*, unsigned char, unsigned long, void*, unsigned char, unsigned long,
                                 unsigned long) {
    return 0;
  }
  static int isNull(void*) { return 0; }
  static constexpr KtSetNullFunc kSetNull = nullptr;
  static KtString& print(KtString& out, void*, const char*, unsigned long) { return out; }
  static void* scan(void*, KtString&, const char*, unsigned long) { return nullptr; }
  static void* defaultValue(unsigned long, int) { return nullptr; }
};

}  // namespace kt

#endif
