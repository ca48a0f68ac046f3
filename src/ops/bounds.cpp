#include "ops/bounds.h"

#include <ktbs.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace kt {

void setBound(unsigned char*& bound, unsigned char& boundLength, const void* key, unsigned long length,
              unsigned long room) {
  auto* copy = static_cast<unsigned char*>(std::calloc(std::max(room, 1ul), 1));
  if (copy == nullptr) {
    KtCallMemoryHandler(room);
    return;
  }
  if (length != 0) std::memcpy(copy, key, length);
  bound = copy;
  boundLength = static_cast<unsigned char>(length);
}

void recordBounds(KtIdxBounds* result, const void* key, unsigned short& flags, unsigned long length) {
  if (result == nullptr) return;
  flags &= kBoundFlags;
  const unsigned long kept = std::min<unsigned long>(length, KtINDEX_MAX_KEYLEN);
  if (result->lowKey == nullptr && (flags & KtBOUND_LESS) == 0)
    setBound(result->lowKey, result->lowKeyLength, key, kept, kept);
  if (result->highKey == nullptr && (flags & KtBOUND_GREATER) == 0)
    setBound(result->highKey, result->highKeyLength, key, kept, kept);
}

}  // namespace kt

void KtFreeIdxBounds(KtIdxBounds* bounds) {
  if (bounds == nullptr) return;
  std::free(bounds->lowKey);
  std::free(bounds->highKey);
  *bounds = {};
}
