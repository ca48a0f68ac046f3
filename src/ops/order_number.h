// order_number.h - index keys as numbers that rise with their order, for estimating how much lies between two keys.
//
// A number is built order by order, the way an arithmetic coder does it: each order takes a slot of the interval that the
// orders before it have left. Letters and digits have wide slots, rare orders narrow ones, and behind a letter of another
// script that script has the most room. Slots never overlap, so numbers rise with the primary order of the keys, whatever
// the slots' widths; those only decide how near the differences come to the truth.
#ifndef KT_OPS_ORDER_NUMBER_H
#define KT_OPS_ORDER_NUMBER_H

#include "ops/string_key.h"

namespace kt {

// All keys that go on as this one does have numbers from `first` to `last`; the key itself has `first`. Whole multiples of
// the unit, exact in double, and so are their differences.
struct OrderSpan {
  double first;
  double last;
};

struct OrderSpans {
  OrderSpan key, low, high;
  double unit;  // the least difference of two numbers
};

// Without what all three have in common at the beginning. Keys that have no orders, nulls among them, have number 0.
// Ignorable orders, case and diacritics do not count: keys that differ in nothing else have one number.
OrderSpans numberKeys(const IndexKey& key, const IndexKey& low, const IndexKey& high);

}  // namespace kt

#endif
