// str_hash.h - hashing texts where they lie. All hashes are h = h * 9 + v over the characters, modulo 2^32.
#ifndef KT_STR_HASH_H
#define KT_STR_HASH_H

#include "order_cursor.h"

namespace kt {

constexpr std::uint32_t kNullTextHash = 0xFEFE7575u;

// By collation keys. length -1: the whole text; positive: exactly that many orders, those past the end count 0; 0 and
// other negative lengths: 0. Null: kNullTextHash, whatever the length. Code set 0: by bytes, at most length of them.
std::uint32_t hashText(const TextRef& ref, short length);

// hashText of a whole text with a terminator, not null, by the table of its code set and language; 16-bit characters are
// in the host's order.
std::uint32_t hashTerminated(const char* text, const ByteWeights& table);
std::uint32_t hashTerminated(const char* text, const WideWeights& table);

// By bytes up to the terminator: as signed 8-bit values, or their low seven bits.
std::uint32_t hashSignedBytes(const char* text, unsigned long limit);
std::uint32_t hashLowBytes(const char* text, unsigned long limit);

// The same by 16-bit units in host order.
std::uint32_t hashUnits(const char* text, unsigned long limit);
std::uint32_t hashLowUnits(const char* text, unsigned long limit);

}  // namespace kt

#endif
