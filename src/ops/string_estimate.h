// string_estimate.h - EvalAndBound of the string types.
#ifndef KT_OPS_STRING_ESTIMATE_H
#define KT_OPS_STRING_ESTIMATE_H

#include "kttypbnd.h"

namespace kt {

// The share of an index that the comparison selects, 0 to 1, and the index keys that bound its scan. Both ends of the scan
// belong to it. key: the comparison value in the form that `format` names; only its first string counts. In types with
// wildcards those of the value act, unless it is an index key. range, result: index keys in the byte order of `format`.
// 0 without a key, and where a key of the range is missing or shorter than any index key.
template <class Kind>
float evalAndBoundStrings(KtIdxBounds* range, unsigned short& flags, void* key, unsigned char format,
                          unsigned long count, KtIdxBounds* result);

}  // namespace kt

#endif
