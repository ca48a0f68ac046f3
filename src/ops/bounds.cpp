#include "ops/bounds.h"

#include <ktbs.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

void setBound(unsigned char*& bound, unsigned char& boundLength, const void* key, unsigned long length) {
  if (bound != nullptr) return;
  auto* copy = static_cast<unsigned char*>(std::malloc(std::max(length, 1ul)));
  if (copy == nullptr) {
    KtCallMemoryHandler(length);
    return;
  }
  if (length != 0) std::memcpy(copy, key, length);
  bound = copy;
  boundLength = static_cast<unsigned char>(length);
}

}  // namespace

namespace kt {

void recordBounds(KtIdxBounds* result, const void* key, unsigned short& flags, unsigned long length) {
  if (result == nullptr) return;
  flags &= kBoundFlags;
  const unsigned long kept = std::min<unsigned long>(length, KtINDEX_MAX_KEYLEN);
  if ((flags & KtBOUND_LESS) == 0) setBound(result->lowKey, result->lowKeyLength, key, kept);
  if ((flags & KtBOUND_GREATER) == 0) setBound(result->highKey, result->highKeyLength, key, kept);
}

}  // namespace kt

void KtFreeIdxBounds(KtIdxBounds* bounds) {
  if (bounds == nullptr) return;
  std::free(bounds->lowKey);
  std::free(bounds->highKey);
  *bounds = {};
}
