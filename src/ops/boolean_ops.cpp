#include "ops/boolean_ops.h"

#include <algorithm>

namespace kt {

// 0 for false, 1 for every true byte, 255 for null.
std::uint32_t BooleanValue::hashWords(unsigned char, const unsigned char* p, unsigned long n) {
  unsigned char trues = 0;
  unsigned char nulls = 0;
  for (unsigned long i = 0; i < n; ++i) {
    nulls = static_cast<unsigned char>(nulls ^ (p[i] == 255));
    trues = static_cast<unsigned char>(trues ^ (p[i] != 0 && p[i] != 255));
  }
  return trues ^ (nulls * 255u);
}

void* BooleanOps::defaultValue(unsigned long count, int asNull) {
  if (asNull == 0) return ScalarOps::defaultValue(count, 0);
  auto* values = static_cast<KtBoolean*>(create(count));
  if (values == nullptr) return nullptr;
  std::for_each_n(values, count == 0 ? 1 : count, [](KtBoolean& value) { value.SetNullValue(); });
  return values;
}

float BooleanOps::evalAndBound(KtIdxBounds* range, unsigned short& flags, void* key, unsigned char, unsigned long count,
                               KtIdxBounds* result) {
  constexpr float kOneOfThree = 1.0F / 3;
  recordBounds(result, key, flags, count);
  return isKnown(range, 1) ? kOneOfThree : 0;
}

}  // namespace kt
