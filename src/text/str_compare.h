// str_compare.h - comparing two texts where they lie, in memory or in disk records.
#ifndef KT_STR_COMPARE_H
#define KT_STR_COMPARE_H

#include "first_difference.h"

namespace kt {

// Compare operator bits, as the public constants of the string class name them.
constexpr unsigned kNoWildcards = 0x10;
constexpr unsigned kIgnoreCase = 0x20;
constexpr unsigned kIgnoreDiacritics = 0x40;
constexpr unsigned kDropSpaces = 0x80;
constexpr unsigned kBinaryOrder = 0x100;
constexpr unsigned kDropSymbols = 0x200;

constexpr std::int32_t primaryDifference(Weight k1, Weight k2) {
  return keyDifference(k1 & ~kLevelMask, k2 & ~kLevelMask);
}

// --- the usual comparison: two texts of one form, whole, without wildcards ------------------------------------------
//
// Most pairs are decided by the primary weights of their first difference, whatever the operator and whatever the two
// characters' case and diacritics. That much is in line in every function that compares strings; 0 leaves the rest to
// functions that begin anew.

constexpr bool isPlainOperator(unsigned cmpOp) { return (cmpOp & (kNoWildcards | kBinaryOrder)) == kNoWildcards; }

// As WideWeights::primary, of the characters behind.
inline Weight farPrimary(const WideWeights& table, unsigned unit) {
  const Weight weight = weightOf(table, unit);
  return weight >= table.significant && weight != kSeveralOrders ? weight & ~kLevelMask : kSeveral;
}

// Primary weights of single characters, with the marks of those that do not decide.
[[gnu::always_inline]] inline Weight primaryOf(const ByteWeights& table, unsigned byte) { return table.primary[byte]; }
[[gnu::always_inline]] inline Weight primaryOf(const WideWeights& table, unsigned unit) {
  if (unit < kNearUnits) [[likely]]
    return table.primary[unit];
  return farPrimary(table, unit);
}
[[gnu::always_inline]] inline Weight primaryAt(const ByteWeights& table, const char* text, unsigned long index) {
  return primaryOf(table, static_cast<unsigned char>(text[index]));
}
[[gnu::always_inline]] inline Weight primaryAt(const WideWeights& table, const char* text, unsigned long index) {
  return primaryOf(table, loadUnit(text, index, 0));
}

// Whether two texts go on with the same character.
template <unsigned long kCharSize>
[[gnu::always_inline]] inline bool isSameCharacter(const char* a, const char* b, unsigned long index) {
  if constexpr (kCharSize == 1) return a[index] == b[index] && a[index] != 0;
  const unsigned unit = loadUnit(a, index, 0);
  return unit == loadUnit(b, index, 0) && unit != 0;
}

// A primary difference, or 0 where either character decides nothing.
[[gnu::always_inline]] inline std::int32_t decidedDifference(Weight k1, Weight k2) {
  return ((k1 | k2) & kLevelMask) == 0 ? keyDifference(k1, k2) : 0;
}

// Of the characters that two texts go on with: whether the table has their primary weights at hand, and these.
[[gnu::always_inline]] inline bool areNear(const ByteWeights&, const char*, const char*) { return true; }
[[gnu::always_inline]] inline bool areNear(const WideWeights&, const char* a, const char* b) {
  return areNear(loadUnit(a, 0, 0), loadUnit(b, 0, 0));
}
[[gnu::always_inline]] inline Weight nearPrimary(const ByteWeights& table, const char* text) {
  return primaryAt(table, text, 0);
}
[[gnu::always_inline]] inline Weight nearPrimary(const WideWeights& table, const char* text) {
  return table.primary[loadUnit(text, 0, 0)];
}

// The primary difference of the characters that two texts go on with; 0 where they do not decide, or are not near.
template <class Table>
[[gnu::always_inline]] inline std::int32_t nextDifference(const char* a, const char* b, const Table& table) {
  return areNear(table, a, b) ? decidedDifference(nearPrimary(table, a), nearPrimary(table, b)) : 0;
}

// Of texts at the beginning of blocks of 16 bytes or more, with a terminator. 0: not decided.
template <unsigned long kCharSize, class Table>
[[gnu::always_inline]] inline std::int32_t differenceInBlocks(const char* a, const char* b, const Table& table) {
  const std::uint32_t mask = differences16<kCharSize>(a, b);
  if (mask == 0) return 0;
  const unsigned long byte = lowestBit(mask) & ~(static_cast<unsigned>(kCharSize) - 1);
  return nextDifference(a + byte, b + byte, table);
}

// The same where the first difference does not decide: characters that differ in case or diacritics only are passed
// over, then an ignorable one on either side. Far characters are left to others.
template <class Table>
[[gnu::always_inline]] inline std::int32_t laterDifferenceInBlocks(const char* a, const char* b, const Table& table) {
  constexpr unsigned long kCharSize = Table::kCharSize;
  constexpr std::uint64_t kCharacter = (1u << kCharSize) - 1, kEnd = std::uint64_t{1} << 2 * kFirstBytes;
  const std::uint64_t high = differences16<kCharSize>(a + kFirstBytes, b + kFirstBytes);
  std::uint64_t mask = kEnd | high << kFirstBytes | differences16<kCharSize>(a, b);
  unsigned long at = lowestBit(mask) & ~(kCharSize - 1);
  if (!areNear(table, a + at, b + at)) return 0;
  Weight k1 = nearPrimary(table, a + at), k2 = nearPrimary(table, b + at);
  if (k1 == k2) {
    if (k1 == 0 || k1 == kSeveral) return 0;
    mask = kEnd | (mask & ~(kCharacter << at));
    at = lowestBit(mask) & ~(kCharSize - 1);
    if (!areNear(table, a + at, b + at)) return 0;
    k1 = nearPrimary(table, a + at), k2 = nearPrimary(table, b + at);
  }
  return nextDifference(a + at + kCharSize * (k1 & kIgnorable), b + at + kCharSize * (k2 & kIgnorable), table);
}

// A text of that many bytes, with its terminator, in a block of blockSize() bytes.
struct TextBlock {
  const char* text;
  unsigned long size;
};

// The whole comparison of such texts.
long compareInBlocks(TextBlock a, TextBlock b, const ByteWeights& table, unsigned cmpOp);
long compareInBlocks(TextBlock a, TextBlock b, const WideWeights& table, unsigned cmpOp);

// Leading characters that terminated texts have in common, wherever they lie. They are read one by one: a text may end
// at the end of a page.
template <unsigned long kCharSize>
[[gnu::always_inline]] inline unsigned long equalStart(const char* a, const char* b) {
  for (unsigned long i = 0;; ++i)
    if (!isSameCharacter<kCharSize>(a, b, i)) return i;
}

// The whole comparison of terminated texts of one form in host order, of which it is known that they are alike before
// character `start`.
long compareFrom(unsigned long start, const char* a, const char* b, const ByteWeights& table, unsigned cmpOp);
long compareFrom(unsigned long start, const char* a, const char* b, const WideWeights& table, unsigned cmpOp);

// Of texts that begin in words, the first character lowest, and go on above or have a terminator there.
template <class Table>
[[gnu::always_inline]] inline std::int32_t differenceInHeads(std::uint64_t a, std::uint64_t b, const Table& table) {
  constexpr unsigned kBits = 8 * static_cast<unsigned>(Table::kCharSize);
  constexpr std::uint64_t kCharacter = (1u << kBits) - 1, kOnes = ~std::uint64_t{0} / kCharacter;
  const std::uint64_t zeros = (a - kOnes) & ~a & kOnes << (kBits - 1);  // the lowest one is right
  const unsigned bit = static_cast<unsigned>(std::countr_zero((a ^ b) | zeros)) & (64 - kBits);
  return decidedDifference(primaryOf(table, static_cast<unsigned>(a >> bit & kCharacter)),
                           primaryOf(table, static_cast<unsigned>(b >> bit & kCharacter)));
}

// Of texts that have kBytesBefore readable bytes before them and two behind, and no terminator. 0: not decided.
template <unsigned long kCharSize, class Table>
[[gnu::always_inline]] inline std::int32_t differenceInRecords(const char* a, const char* b, unsigned long limitA,
                                                               unsigned long limitB, const Table& table) {
  constexpr std::uint32_t kCharacter = (1u << kCharSize) - 1;
  const auto primary = [&table](const char* text, unsigned long at, unsigned long limit) {
    const Weight weight = primaryAt(table, text, at);
    return at < limit ? weight : 0;
  };
  const unsigned long end = std::min(std::min(limitA, limitB) * kCharSize, kFirstBytes);
  if (end < kBytesBefore) return 0;
  if (const std::int32_t difference = nextDifference(a, b, table)) return difference;  // far apart
  std::uint32_t mask = differencesBefore<kCharSize>(a, b, end) | 1u << end;
  do {  // as long as the texts stay in step: they differ in case or diacritics only
    const unsigned bit = lowestBit(mask) & ~(static_cast<unsigned>(kCharSize) - 1);
    const unsigned long at = bit / kCharSize;
    const Weight k1 = primary(a, at, limitA);
    const Weight k2 = primary(b, at, limitB);
    if (k1 != k2) {
      if (((k1 | k2) & kLevelMask) == 0) return keyDifference(k1, k2);
      const unsigned long i = at + (k1 & kIgnorable), j = at + (k2 & kIgnorable);
      return i <= limitA && j <= limitB ? decidedDifference(primary(a, i, limitA), primary(b, j, limitB)) : 0;
    }
    if (k1 == 0 || (k1 & kLevelMask) != 0) return 0;
    mask &= ~(kCharacter << bit);
  } while (mask != 0);
  return 0;
}

// --- every comparison -----------------------------------------------------------------------------------------------

// Compares a with b; only b's wildcards act. Negative, 0, positive: the exact difference of the level that decides.
//   cmpOp: the bits above. length: at most that many characters of each side, -1 for the whole texts, 0 and other
//   negative values compare equal. report: may be null; under 0x80 receives the last primary difference.
// Null texts: equal to each other; a null before every other text under 0x10 or 0x100; a null b always before a.
// Both with code set 0: bytes, or a byte pattern without 0x10 and 0x100. Pure.
long compareTexts(const TextRef& a, const TextRef& b, unsigned cmpOp, short length, int* report = nullptr);

}  // namespace kt

#endif
