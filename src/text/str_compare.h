// str_compare.h - comparing two texts where they lie, in memory or in disk records.
#ifndef KT_STR_COMPARE_H
#define KT_STR_COMPARE_H

#include "order_cursor.h"

namespace kt {

// Compare operator bits, as the public constants of the string class name them.
constexpr unsigned kNoWildcards = 0x10;
constexpr unsigned kIgnoreCase = 0x20;
constexpr unsigned kIgnoreDiacritics = 0x40;
constexpr unsigned kDropSpaces = 0x80;
constexpr unsigned kBinaryOrder = 0x100;
constexpr unsigned kDropSymbols = 0x200;

// Compares a with b; only b's wildcards act. Negative, 0, positive: the exact difference of the level that decides.
//   cmpOp: the bits above. length: at most that many characters of each side, -1 for the whole texts, 0 and other
//   negative values compare equal. report: may be null; under 0x80 receives the last primary difference.
// Null texts: equal to each other; a null before every other text under 0x10 or 0x100; a null b always before a.
// Both with code set 0: bytes, or a byte pattern without 0x10 and 0x100. Pure.
long compareTexts(const TextRef& a, const TextRef& b, unsigned cmpOp, short length, int* report = nullptr);

}  // namespace kt

#endif
