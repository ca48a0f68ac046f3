// str_compare.h - comparing two texts where they lie, in memory or in disk records.
#ifndef KT_STR_COMPARE_H
#define KT_STR_COMPARE_H

#include "order_cursor.h"

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

// The general case; the parameters are those of compareTexts.
long compareTextsInFull(const TextRef& a, const TextRef& b, unsigned cmpOp, short length, int* report);

// Three levels without wildcards. The parts of the cursors travel one by one, in registers.
long compareNarrow(const char* a, const char* b, unsigned long limitA, unsigned long limitB, const ByteWeights* tableA,
                   const ByteWeights* tableB, unsigned cmpOp);
long compareWide(const char* a, const char* b, unsigned long limitA, unsigned long limitB, const WideWeights* tableA,
                 const WideWeights* tableB, unsigned cmpOp, int rotationA, int rotationB);

inline long compareCursors(const ByteCursor& a, const ByteCursor& b, unsigned cmpOp) {
  return compareNarrow(a.data(), b.data(), a.limit(), b.limit(), a.table(), b.table(), cmpOp);
}

inline long compareCursors(const WideCursor& a, const WideCursor& b, unsigned cmpOp) {
  return compareWide(a.data(), b.data(), a.limit(), b.limit(), a.table(), b.table(), cmpOp, a.rotation(), b.rotation());
}

// The primary difference of the characters at an index of both texts, which decides whatever stands before them is
// equal or ignorable; 0 where there is none or either is ignorable. The texts must be longer.
template <class A, class B>
inline std::int32_t significantDifference(const A& a, const B& b, unsigned long index) {
  const Weight k1 = a.weightAt(index);
  const Weight k2 = b.weightAt(index);
  return k1 >= a.significant() && k2 >= b.significant() ? primaryDifference(k1, k2) : 0;
}

// The commonest comparison, in line up to the first character: there most pairs that are no neighbours differ.
template <class Cursor>
[[gnu::always_inline]] inline long compareFromFirst(const TextRef& a, const TextRef& b, unsigned cmpOp) {
  const Cursor x(a, TextRef::kToTerminator, collationKind(a.language));
  const Cursor y(b, TextRef::kToTerminator, collationKind(b.language));
  if (x.limit() != 0 && y.limit() != 0)
    if (const std::int32_t primary = significantDifference(x, y, 0)) return primary;
  return compareCursors(x, y, cmpOp);
}

// Neither null nor under a stand-in for a code set.
constexpr bool isPlainNarrow(const TextRef& t) { return t.codeSet - 1u < 224u && t.language != 254; }
constexpr bool isPlainWide(const TextRef& t) { return t.codeSet - 225u < 29u && t.language != 254; }

// Whether comparePlain may do the work of compareTexts.
constexpr bool isPlainComparison(const TextRef& a, const TextRef& b, unsigned cmpOp, short length, const int* report) {
  if ((cmpOp & (kNoWildcards | kBinaryOrder)) != kNoWildcards || length != -1 || report != nullptr) return false;
  return (isPlainNarrow(a) && isPlainNarrow(b)) || (isPlainWide(a) && isPlainWide(b));
}

// In line: through memory the parts of a TextRef would cost more than the rest.
[[gnu::always_inline]] inline long comparePlain(const TextRef& a, const TextRef& b, unsigned cmpOp) {
  return isPlainNarrow(a) ? compareFromFirst<ByteCursor>(a, b, cmpOp) : compareFromFirst<WideCursor>(a, b, cmpOp);
}

// Compares a with b; only b's wildcards act. Negative, 0, positive: the exact difference of the level that decides.
//   cmpOp: the bits above. length: at most that many characters of each side, -1 for the whole texts, 0 and other
//   negative values compare equal. report: may be null; under 0x80 receives the last primary difference.
// Null texts: equal to each other; a null before every other text under 0x10 or 0x100; a null b always before a.
// Both with code set 0: bytes, or a byte pattern without 0x10 and 0x100. Pure.
inline long compareTexts(const TextRef& a, const TextRef& b, unsigned cmpOp, short length, int* report = nullptr) {
  if (isPlainComparison(a, b, cmpOp, length, report)) return comparePlain(a, b, cmpOp);
  return compareTextsInFull(a, b, cmpOp, length, report);
}

}  // namespace kt

#endif
