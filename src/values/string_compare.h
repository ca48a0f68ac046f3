// string_compare.h - the short way to compare two whole strings.
#ifndef KT_STRING_COMPARE_H
#define KT_STRING_COMPARE_H

#include "ktstring.h"
#include "text/str_compare.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace kt {

// bufferSize, code set and language as one number: a narrower access would wait longer for the one before.
struct StringFields {
  std::uint32_t bits;

  explicit StringFields(const KtString& s) {
    std::memcpy(&bits, reinterpret_cast<const char*>(&s) + sizeof s.buffer, sizeof bits);
  }
  static constexpr bool kLittle = std::endian::native == std::endian::little;
  unsigned long size() const { return kLittle ? bits & 0xFFFFu : bits >> 16; }
  static bool sameCodes(const StringFields& x, const StringFields& y) {
    return kLittle ? (x.bits ^ y.bits) < 0x10000u : ((x.bits ^ y.bits) & 0xFFFFu) == 0;
  }
  unsigned codes() const {  // language * 256 + code set
    return kLittle ? bits >> 16 : (bits & 255u) << 8 | (bits >> 8 & 255u);
  }
};

// Both of one code set and language, not empty, so that they have buffers.
inline bool areAlike(const StringFields& x, const StringFields& y) {
  return StringFields::sameCodes(x, y) && x.size() > 1 && y.size() > 1;
}

// Whether texts of 16-bit characters end where their sizes say; not so when a code set was changed by assigning the field.
[[gnu::always_inline]] inline bool endBySize(const KtString& a, unsigned long sizeA, const KtString& b,
                                             unsigned long sizeB) {
  std::uint16_t lastA, lastB;
  std::memcpy(&lastA, a.buffer + (sizeA & ~1ul) - 2, sizeof lastA);
  std::memcpy(&lastB, b.buffer + (sizeB & ~1ul) - 2, sizeof lastB);
  return (lastA | lastB) == 0;
}

// Apart and with the same arguments, so that the short ways need no stack frame: the comparison of any two strings, and of
// two that end as their sizes say, which begins anew.
long compareInFull(const KtString& a, const KtString& b, short length, unsigned cmpOp);
long compareFurther(const KtString& a, const KtString& b, const ByteWeights& table, unsigned cmpOp);
long compareFurther(const KtString& a, const KtString& b, const WideWeights& table, unsigned cmpOp);

template <class Table>
[[gnu::always_inline]] inline long compareUsual(const KtString& a, const KtString& b, const Table& table,
                                                unsigned cmpOp) {
  const std::int32_t difference = differenceInBlocks<Table::kCharSize>(a.buffer, b.buffer, table);
  return difference != 0 ? difference : compareFurther(a, b, table, cmpOp);
}

// The comparison of two whole strings under an operator of isPlainOperator; otherwise(), where they are not of one form.
template <class Otherwise>
[[gnu::always_inline]] inline long compareWholeOr(const KtString& a, const KtString& b, unsigned cmpOp,
                                                  Otherwise otherwise) {
  const StringFields x(a), y(b);
  if (!areAlike(x, y)) return otherwise();
  if (const ByteWeights* table = usualByteWeights(x.codes())) return compareUsual(a, b, *table, cmpOp);
  const WideWeights* table = usualWideWeights(x.codes());
  if (table == nullptr || !endBySize(a, x.size(), b, y.size())) return otherwise();
  return compareUsual(a, b, *table, cmpOp);
}

}  // namespace kt

#endif
