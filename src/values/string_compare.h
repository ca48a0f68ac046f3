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

// Whether the text ends where its size says; not so when the code set was changed by assigning the field.
inline bool endsBySize(const KtString& s, unsigned long units) {
  std::uint16_t last;
  std::memcpy(&last, s.buffer + units * 2 - 2, sizeof last);
  return last == 0;
}

// Both of one code set and language, not empty, so that they have buffers.
inline bool areAlike(const StringFields& x, const StringFields& y) {
  return StringFields::sameCodes(x, y) && x.size() > 1 && y.size() > 1;
}

// Both of 16-bit characters.
[[gnu::always_inline]] inline std::int32_t wideDifference(const KtString& a, const KtString& b, const StringFields& x,
                                                          const StringFields& y) {
  const WideWeights* table = usualWideWeights(x.codes());
  if (table == nullptr || !endsBySize(a, x.size() / 2) || !endsBySize(b, y.size() / 2)) return 0;
  return differenceInBlocks<2>(a.buffer, b.buffer, *table);
}

// What decides between two strings under an operator of isPlainOperator, whichever it is; 0: not known yet.
[[gnu::always_inline]] inline std::int32_t stringDifference(const KtString& a, const KtString& b) {
  const StringFields x(a), y(b);
  if (!areAlike(x, y)) return 0;
  const ByteWeights* table = usualByteWeights(x.codes());
  return table != nullptr ? differenceInBlocks<1>(a.buffer, b.buffer, *table) : wideDifference(a, b, x, y);
}

// The whole comparison under such an operator. False where the strings are not of one form.
bool compareAlike(const KtString& a, const KtString& b, unsigned cmpOp, long& result);

}  // namespace kt

#endif
