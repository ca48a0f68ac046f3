// string_bounds.h - the comparison string of an index scan, and the index keys that bound the scan.
//
// A scan from the lower to the upper key, both included, meets the key of every string that satisfies the comparison:
//
//   exact     a short text (or one looked for by "equal" that is not cut): its own key on both sides
//   pattern   "equal" with wildcards, the literal text before the first of them being short: below, the key of that text
//             without the ignorable orders at its end, since others may follow and only the last one counts; above, the
//             open bound. A tighter one would stop a scan too early: by its marks "Pást" comes after all of "Pas*" that
//             is compared as far as the prefix goes, and yet its key stands before that of "Pasu"
//   open      all else: the primary orders alone, with the least and the greatest that case, diacritics and ignorable
//             orders can be. Where a key is cut, or a wildcard acts, these decide differently than in the whole texts
//
// Under code set 0, and in ideographic collation, keys have one level and are cut in order: there the text itself is enough.
#ifndef KT_OPS_STRING_BOUNDS_H
#define KT_OPS_STRING_BOUNDS_H

#include "kttypbnd.h"
#include "ops/string_key.h"

namespace kt {

struct KeyBytes {
  unsigned char bytes[KtINDEX_MAX_KEYLEN];
  unsigned long size = 0;
};

// The comparison string, as far as a key of it goes.
struct Comparison {
  KeyBytes key;      // of the literal text before the first wildcard; of all of it without one
  IndexKey literal;  // lies in `key`
  bool isPattern = false;
  bool startsWithWildcard = false;

  Comparison() = default;
  Comparison(const Comparison&) = delete;
  Comparison& operator=(const Comparison&) = delete;
};

// The first string at `key`, as the type reads it. False where there is none.
template <class Kind>
bool readComparison(Comparison& to, const void* key, unsigned char format);

// knowsNull: whether the lowest key of all is that of a null.
void writeLowBound(KeyBytes& to, const Comparison& comparison, unsigned flags, bool knowsNull, unsigned char code);
void writeHighBound(KeyBytes& to, const Comparison& comparison, unsigned flags, unsigned char code);

}  // namespace kt

#endif
