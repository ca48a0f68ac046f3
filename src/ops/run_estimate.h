// run_estimate.h - the estimate contract, once for all types whose keys are numbers.
//
// A description V of one value supplies:
//   number(code, bytes)     one value in the disk form of the code, as a double or a NullableNumber
//   fileSize(code, count)   bytes of values in the disk form of the code
//   kLeastShare             if anything is selected, that much at least (may be missing: no least share)
//   kUnknownRange           what counts as the range when none is known (may be missing: the estimate is 0)
#ifndef KT_OPS_RUN_ESTIMATE_H
#define KT_OPS_RUN_ESTIMATE_H

#include "kttypbnd.h"
#include "ops/bounds.h"
#include "ops/format_code.h"
#include "ops/range_measure.h"

#include <optional>
#include <utility>

namespace kt {

template <class V>
using NumberOf = decltype(V::number(std::declval<unsigned char>(), std::declval<const unsigned char*>()));

// Whether both keys hold a value of `size` bytes. Of a longer key the first value counts.
inline bool isKnown(const KtIdxBounds* range, unsigned long size) {
  return range != nullptr && range->lowKey != nullptr && range->highKey != nullptr && range->lowKeyLength >= size &&
         range->highKeyLength >= size;
}

template <class V>
std::optional<KeyRange<NumberOf<V>>> rangeOf(const KtIdxBounds* range, unsigned char code) {
  if (isKnown(range, V::fileSize(code, 1)))
    return KeyRange<NumberOf<V>>{V::number(code, range->lowKey), V::number(code, range->highKey)};
  if constexpr (requires { V::kUnknownRange; }) {
    return V::kUnknownRange;
  } else {
    return std::nullopt;
  }
}

template <class V>
constexpr double leastShare() {
  if constexpr (requires { V::kLeastShare; }) {
    return V::kLeastShare;
  } else {
    return 0;
  }
}

// Of a run the first value is estimated, and the whole run bounds the scan.
template <class V>
float evalAndBoundOperation(const KtIdxBounds* range, unsigned short& flags, const void* key, unsigned char format,
                            unsigned long count, KtIdxBounds* result) {
  const unsigned char code = lowCode(format);
  float share = 0;
  if (const auto known = rangeOf<V>(range, code); known && count != 0) {
    const auto number = V::number(code, static_cast<const unsigned char*>(key));
    share = shareOf(rangeMeasure(flags, number, *known), rangeWidth(*known), leastShare<V>());
  }
  recordBounds(result, key, flags, V::fileSize(code, count));
  return share;
}

}  // namespace kt

#endif
