// str_pattern.h - comparison with wildcards, and the three wildcard characters themselves.
#ifndef KT_STR_PATTERN_H
#define KT_STR_PATTERN_H

#include "order_cursor.h"

namespace kt {

enum class Wildcard { kAsterisk, kQuestion, kEscape };

// The order that acts as the wildcard in patterns of a kind: one is kept for the alphabetic kinds and one for the
// ideographic kind. "*", "?" and "\" until set; an order of 0 sets these again.
unsigned wildcardOrder(Wildcard wildcard, unsigned char kind);
void setWildcardOrders(Wildcard wildcard, unsigned short alphabetic, unsigned short ideographic);

// Both code sets 0: b is a pattern of bytes. At most `length` characters of a are taken; reaching it gives 0.
long matchBytePattern(const TextRef& a, const TextRef& b, unsigned long length);

// The three-level comparison with the wildcards of b, unless cmpOp turns them off. 0 when any way of matching gives 0.
// report: may be null; receives the primary difference of each step within length.
long comparePattern(const TextRef& a, const TextRef& b, unsigned cmpOp, unsigned long length, int* report);

}  // namespace kt

#endif
