// string_key_compare.h - comparing two index keys.
#ifndef KT_OPS_STRING_KEY_COMPARE_H
#define KT_OPS_STRING_KEY_COMPARE_H

#include "ops/string_key.h"

namespace kt {

struct KeyOrder {
  long result;     // -1, 0, 1
  bool isDecided;  // false: it lies in what was cut off
};

// cmpOp: as of compareTexts. Nulls are the caller's business.
KeyOrder compareKeys(const IndexKey& a, const IndexKey& b, unsigned cmpOp);

}  // namespace kt

#endif
