// ktint64.cpp - what KtInt64 does beyond the one-line operators of its header.
#include "ktint64.h"

#include <ktbs.h>

#include <limits>

KtInt64::KtInt64(double number) : KtInt64() {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (number >= kLimit) {
    *this = KtInt64(std::numeric_limits<long long>::max());
  } else if (number >= -kLimit) {
    *this = KtInt64(static_cast<long long>(number));
  } else if (number < -kLimit) {
    *this = KtInt64(std::numeric_limits<long long>::min());
  }
}

KtInt64 KtInt64::Division(const KtInt64& divisor, int wantRemainder) const {
  const long long by = divisor.Value();
  if (by == 0) {
    KATO_assert("0 && \"KtInt64 divide by zero\"", "src\\ktint64", 737);
    return KtInt64();
  }
  // By -1 apart: the quotient of -2^63 does not fit and wraps.
  if (wantRemainder != 0) return KtInt64(by == -1 ? 0 : Value() % by);
  return by == -1 ? -*this : KtInt64(Value() / by);
}
