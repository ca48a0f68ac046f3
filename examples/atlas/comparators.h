// comparators.h - LMDB's comparison functions, one for each type id.
#ifndef EXAMPLES_ATLAS_COMPARATORS_H
#define EXAMPLES_ATLAS_COMPARATORS_H

#include "value.h"

#include <lmdb.h>

namespace atlas {

// Index keys of texts are cut, and what was cut off cannot tell by case or accents. So keys compare by their letters and
// digits alone, and a cut key comes behind all that begin like it: an order that is total, and that the order of the
// values never contradicts. (A cut by characters may leave fewer letters of a text that has blanks or signs; IndexScan
// looks for such keys.)
constexpr unsigned short kKeyOptions = KtCMP_NO_WILDCARDS | KtCMP_IGNORE_CASE | KtCMP_IGNORE_DIACRITICS |
                                       KtCMP_DROP_SPACES | KtCMP_DROP_SYMBOLS;  // DISK: stored with the index

// DISK: bytes of the longest key in an index, five characters of a text. Four bytes a character are dear, and objects
// that share a key share its room.
constexpr unsigned long kLongestKey = 26;

// LMDB calls a comparator without a context, so there is one for each type. The order is total: wildcards are off, and
// values without a place (hasPlace) are never stored.
MDB_cmp_func* comparatorOf(char type);

}  // namespace atlas

#endif
