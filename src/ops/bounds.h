// bounds.h - recording the keys that bound an index scan.
#ifndef KT_OPS_BOUNDS_H
#define KT_OPS_BOUNDS_H

#include "kttypbnd.h"

namespace kt {

constexpr unsigned short kBoundFlags = 0x800F;  // all others are cleared from the flags of a recorded comparison

// Without "less" the key becomes the lower bound, without "greater" the upper one; a bound that is set stays. A key
// longer than an index key may be is cut. The flags are masked, unless result is null: then nothing happens. Exhausted
// memory calls the memory handler and leaves the bound unset.
void recordBounds(KtIdxBounds* result, const void* key, unsigned short& flags, unsigned long length);

}  // namespace kt

#endif
