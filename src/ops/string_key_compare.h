// string_key_compare.h - comparing two index keys.
#ifndef KT_OPS_STRING_KEY_COMPARE_H
#define KT_OPS_STRING_KEY_COMPARE_H

#include "ops/string_key.h"

#include <optional>

namespace kt {

struct KeyOrder {
  int result;      // -1, 0, 1
  bool isDecided;  // false: it lies in what was cut off
};

// cmpOp: as of compareTexts. Nulls are the caller's business.
KeyOrder compareKeys(const IndexKey& a, const IndexKey& b, unsigned cmpOp);

// The quick way for what a B-tree asks: one key against one, under an operator of isPlainOperator. None where the first
// difference above case and accents, or the end of a key, does not decide, and for keys that are null, raw, damaged or of
// two languages. room: bytes of the key, 0: unknown.
std::optional<KeyOrder> orderByLetters(const void* keyA, unsigned long roomA, const void* keyB, unsigned long roomB,
                                       unsigned char format, unsigned cmpOp);

}  // namespace kt

#endif
