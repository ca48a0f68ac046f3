// The compare functions of the plain scalars, of KtInt64 and of KtBoolean.
#include "kttypops.h"
#include "ops/boolean_ops.h"
#include "ops/int64_ops.h"
#include "ops/scalar_ops.h"
#include "ops/scalar_values.h"

KT_COMPARE_COVER(CharCompare, kt::ScalarOps<kt::CharValue>::compare)
KT_COMPARE_COVER(ByteCompare, kt::ScalarOps<kt::ByteValue>::compare)
KT_COMPARE_COVER(ShortCompare, kt::ScalarOps<kt::ShortValue>::compare)
KT_COMPARE_COVER(WordCompare, kt::ScalarOps<kt::WordValue>::compare)
KT_COMPARE_COVER(IntCompare, kt::ScalarOps<kt::IntValue>::compare)
KT_COMPARE_COVER(UnsignedCompare, kt::ScalarOps<kt::UnsignedValue>::compare)
KT_COMPARE_COVER(LongCompare, kt::ScalarOps<kt::LongValue>::compare)
KT_COMPARE_COVER(DwordCompare, kt::ScalarOps<kt::DwordValue>::compare)
KT_COMPARE_COVER(FloatCompare, kt::ScalarOps<kt::FloatValue>::compare)
KT_COMPARE_COVER(DoubleCompare, kt::ScalarOps<kt::DoubleValue>::compare)
KT_COMPARE_COVER(Int64Compare, kt::ScalarOps<kt::Int64Value>::compare)
KT_COMPARE_COVER(BooleanCompare, kt::ScalarOps<kt::BooleanValue>::compare)
