#include "ops/scalar_ops.h"

namespace kt {

void* allocateValues(unsigned long count, unsigned long size, bool cleared) {
  const bool overflow = count > std::numeric_limits<unsigned long>::max() / size;
  const unsigned long bytes = count == 0 ? size : count * size;
  void* values = overflow ? nullptr : (cleared ? std::calloc(1, bytes) : std::malloc(bytes));
  if (values == nullptr) KtCallMemoryHandler(bytes);
  return values;
}

int neverNull(void*) { return 0; }

}  // namespace kt
