// bounds.h - recording the keys that bound an index scan.
#ifndef KT_OPS_BOUNDS_H
#define KT_OPS_BOUNDS_H

#include "kttypbnd.h"

namespace kt {

constexpr unsigned short kBoundFlags = 0x800F;  // all others are cleared from the flags of a recorded comparison

// A copy of the key, `length` of `room` bytes, becomes the bound. Exhausted memory calls the memory handler and leaves the
// bound as it is.
void setBound(unsigned char*& bound, unsigned char& boundLength, const void* key, unsigned long length,
              unsigned long room);

// Without "less" the key becomes the lower bound, without "greater" the upper one; a bound that is set stays. A key
// longer than an index key may be is cut. The flags are masked, unless result is null: then nothing happens. Exhausted
// memory calls the memory handler and leaves the bound unset.
void recordBounds(KtIdxBounds* result, const void* key, unsigned short& flags, unsigned long length);

}  // namespace kt

#endif
