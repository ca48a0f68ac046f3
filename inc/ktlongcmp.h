// ktlongcmp.h - dates and times against numbers.
//
// A KtDate converts to its day number, a KtTime to its seconds, and numbers convert to both. Compared with a number of
// an integer type a value counts as that number; these operators say so for both orders of operands, where two implicit
// conversions would leave the compiler without a choice.
#ifndef KTLONGCMP_H
#define KTLONGCMP_H

#include <type_traits>

class KtDate;
class KtTime;

namespace kt {

template <class Value>
inline constexpr bool kCountsAsLong = std::is_same_v<Value, KtDate> || std::is_same_v<Value, KtTime>;

}  // namespace kt

// clang-format off: one operator a line
#define KT_COMPARE_WITH_NUMBER(op)                                   \
  template <class Value, class Number>                               \
    requires(kt::kCountsAsLong<Value> && std::is_integral_v<Number>) \
  constexpr int operator op(const Value& value, Number number) {     \
    return value.operator long() op static_cast<long>(number);       \
  }                                                                  \
  template <class Value, class Number>                               \
    requires(kt::kCountsAsLong<Value> && std::is_integral_v<Number>) \
  constexpr int operator op(Number number, const Value& value) {     \
    return static_cast<long>(number) op value.operator long();       \
  }
KT_COMPARE_WITH_NUMBER(==)
KT_COMPARE_WITH_NUMBER(!=)
KT_COMPARE_WITH_NUMBER(<)
KT_COMPARE_WITH_NUMBER(>)
KT_COMPARE_WITH_NUMBER(<=)
KT_COMPARE_WITH_NUMBER(>=)
#undef KT_COMPARE_WITH_NUMBER
// clang-format on

#endif
