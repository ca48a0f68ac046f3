// _ktnulty.h - how null orders: before every value, and equal to null. What it is in each type, and how it hashes and
// prints: docs/types.md, Null.
#ifndef KTNULTY_H
#define KTNULTY_H

#include <ktbs.h>

// The null class of a pair.
enum KtNullRelation {
  KtNULL_EQUAL = 0,    // both null
  KtNULL_LESS = 1,     // only the first is null
  KtNULL_GREATER = 2,  // only the second is null
  KtNULL_UNKNOWN = 3,  // neither is null: the values decide
};

constexpr KtNullRelation KtNullRelationOf(bool firstIsNull, bool secondIsNull) {
  return firstIsNull ? (secondIsNull ? KtNULL_EQUAL : KtNULL_LESS) : (secondIsNull ? KtNULL_GREATER : KtNULL_UNKNOWN);
}

// The result of a decided pair: 0, -1 or 1. Asked for an undecided one it asserts and answers -2, as for any value
// outside the enumeration.
inline int KtNullRelationResult(KtNullRelation nr) {
  switch (nr) {
    case KtNULL_EQUAL: return 0;
    case KtNULL_LESS: return -1;
    case KtNULL_GREATER: return 1;
    case KtNULL_UNKNOWN: KATO_assert("nr != unknown", "inc\\_ktnulty", 165); return -2;
  }
  return -2;
}

#endif
