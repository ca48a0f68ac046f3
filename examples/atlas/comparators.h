// comparators.h - LMDB's comparison functions, one for each type id.
#ifndef EXAMPLES_ATLAS_COMPARATORS_H
#define EXAMPLES_ATLAS_COMPARATORS_H

#include "value.h"

#include <lmdb.h>

namespace atlas {

// Keys above this length may have been cut, and what was cut cannot be ordered under every operator. They stand behind
// all others, in the order of their bytes.
constexpr unsigned long kLongestWholeKey = 250;  // DISK

// The operator of every index.
constexpr unsigned short kIndexOptions = KtCMP_NO_WILDCARDS;  // DISK: stored with the index

// LMDB calls a comparator without a context, so there is one for each type. The order is total: wildcards are off, and
// values without a place (hasPlace) are never stored.
MDB_cmp_func* comparatorOf(char type);

}  // namespace atlas

#endif
