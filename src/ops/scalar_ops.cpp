#include "ops/scalar_ops.h"

namespace kt {

void* allocateValues(unsigned long count, unsigned long size, bool cleared) {
  const bool overflow = count > std::numeric_limits<unsigned long>::max() / size;
  const unsigned long bytes = count == 0 ? size : count * size;
  void* values = overflow ? nullptr : (cleared ? std::calloc(1, bytes) : std::malloc(bytes));
  if (values == nullptr) KtCallMemoryHandler(bytes);
  return values;
}

namespace {

constexpr unsigned long prefixOf(unsigned long alignment) { return alignment < 4 ? 4 : alignment; }

}  // namespace

void* allocateCounted(unsigned long count, unsigned long size, unsigned long alignment) {
  if (count < 2) return allocateValues(1, size, true);
  const unsigned long prefix = prefixOf(alignment);
  const bool overflow = count > (std::numeric_limits<unsigned long>::max() - prefix) / size;
  auto* block = static_cast<unsigned char*>(overflow ? nullptr : std::calloc(1, prefix + count * size));
  if (block == nullptr) {
    KtCallMemoryHandler(prefix + count * size);
    return nullptr;
  }
  const auto word = static_cast<std::uint32_t>(count);
  std::memcpy(block + prefix - sizeof word, &word, sizeof word);
  return block + prefix;
}

void freeCounted(void* values, unsigned long count, unsigned long alignment) {
  const bool counted = values != nullptr && count >= 2;
  std::free(counted ? static_cast<unsigned char*>(values) - prefixOf(alignment) : values);
}

int neverNull(void*) { return 0; }

}  // namespace kt
