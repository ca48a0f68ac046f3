// The compare functions of the plain scalars, of KtInt64 and of KtBoolean.
#include "kttypops.h"
#include "ops/boolean_ops.h"
#include "ops/int64_ops.h"
#include "ops/run_compare.h"
#include "ops/scalar_values.h"

// One cover a function: the value's description is all that differs.
#define KT_COMPARE_COVER(name, value)                                                                             \
  long name(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b, unsigned short, \
            unsigned long count, int& status) {                                                                   \
    return kt::compareOperation<kt::value>(format, lengthA, a, lengthB, b, count, status);                        \
  }

KT_COMPARE_COVER(CharCompare, CharValue)
KT_COMPARE_COVER(ByteCompare, ByteValue)
KT_COMPARE_COVER(ShortCompare, ShortValue)
KT_COMPARE_COVER(WordCompare, WordValue)
KT_COMPARE_COVER(IntCompare, IntValue)
KT_COMPARE_COVER(UnsignedCompare, UnsignedValue)
KT_COMPARE_COVER(LongCompare, LongValue)
KT_COMPARE_COVER(DwordCompare, DwordValue)
KT_COMPARE_COVER(FloatCompare, FloatValue)
KT_COMPARE_COVER(DoubleCompare, DoubleValue)
KT_COMPARE_COVER(Int64Compare, Int64Value)
KT_COMPARE_COVER(BooleanCompare, BooleanValue)
