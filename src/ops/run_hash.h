// run_hash.h - the hash contract, once for all types of fixed size.
//
// A description V of one value supplies:
//   elementSize(code)               bytes of one value in the format code
//   hashWords(code, values, count)  the exclusive or of one 32-bit word a value; values that compare equal give the
//                                   same word in every form (but for the exceptions in docs/decisions, d_Time and
//                                   d_Timestamp among them)
#ifndef KT_OPS_RUN_HASH_H
#define KT_OPS_RUN_HASH_H

#include "kttypdsc.h"
#include "ops/format_code.h"

#include <cstdint>

namespace kt {

// DISK: hashes may be stored in hash indexes; the factor never changes.
constexpr std::uint32_t kHashFactor = 1103515245u;

constexpr unsigned long finishHash(std::uint32_t words) { return static_cast<std::uint32_t>(words * kHashFactor); }

// A run that ends early is hashed as far as whole values go, with status 2101.
template <class V>
unsigned long hashOperation(unsigned char format, unsigned long length, const void* values, unsigned long count,
                            int& status) {
  const unsigned char code = lowCode(format);
  const unsigned long whole = length == 0 ? count : length / V::elementSize(code);
  const unsigned long readable = whole < count ? whole : count;
  status = readable < count ? KtERR_OVERRUN : 0;
  if (readable == 0) return 0;
  return finishHash(V::hashWords(code, static_cast<const unsigned char*>(values), readable));
}

}  // namespace kt

#endif
