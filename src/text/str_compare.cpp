// str_compare.cpp - byte order, binary order and the three-level order without wildcards.
#include "str_compare.h"

#include "byte_order.h"
#include "str_levels.h"
#include "str_pattern.h"
#include "string_block.h"

namespace kt {

namespace {

// Whether any byte (kCharSize 1) or any 16-bit unit (kCharSize 2) of the word is zero.
template <unsigned long kCharSize>
bool hasZero(std::uint64_t word) {
  constexpr std::uint64_t kOnes = kCharSize == 1 ? 0x0101010101010101u : 0x0001000100010001u;
  constexpr std::uint64_t kTops = kOnes << (kCharSize * 8 - 1);
  return ((word - kOnes) & ~word & kTops) != 0;
}

// Compares one word from character i on: the index of the first difference, kEqual, or kEnds where a zero character
// lies in the word.
constexpr unsigned long kEqual = ~0ul;
constexpr unsigned long kEnds = kEqual - 1;

template <unsigned long kCharSize>
unsigned long compareWord(const char* a, const char* b, unsigned long i) {
  std::uint64_t x, y;
  std::memcpy(&x, a + i * kCharSize, sizeof x);
  std::memcpy(&y, b + i * kCharSize, sizeof y);
  if (hasZero<kCharSize>(x)) return kEnds;
  return x == y ? kEqual : i + firstDifferentByte(x ^ y) / kCharSize;
}

// Leading characters, up to `count`, that are the same on both sides; count characters must be readable. It may stop
// early, at a word that holds a zero character or when there are fewer characters than in a word.
template <unsigned long kCharSize>
unsigned long equalByWords(const char* a, const char* b, unsigned long count) {
  constexpr unsigned long kPerWord = 8 / kCharSize;
  if (count < kPerWord) return 0;
  for (unsigned long i = 0;; i += kPerWord) {
    const bool last = count - i <= kPerWord;
    const unsigned long difference =
        compareWord<kCharSize>(a, b, last ? count - kPerWord : i);  // the last one overlaps
    if (difference == kEnds) return i;
    if (difference != kEqual) return difference;
    if (last) return count;
  }
}

// The number of leading characters that are the same. Whole words are read only where both texts are known to be
// readable: a terminated text may end at the end of a page.
template <unsigned long kCharSize>
unsigned long equalPrefix(const char* a, const char* b, unsigned long count, bool readable) {
  unsigned long i = readable ? equalByWords<kCharSize>(a, b, count) : 0;
  if (i < count && !isSameCharacter<kCharSize>(a, b, i)) return i;
  for (; count - i >= 4; i += 4) {  // by fours, without a loop condition in between
    if (!isSameCharacter<kCharSize>(a, b, i)) return i;
    if (!isSameCharacter<kCharSize>(a, b, i + 1)) return i + 1;
    if (!isSameCharacter<kCharSize>(a, b, i + 2)) return i + 2;
    if (!isSameCharacter<kCharSize>(a, b, i + 3)) return i + 3;
  }
  while (i < count && isSameCharacter<kCharSize>(a, b, i)) ++i;
  return i;
}

// The number of equal leading characters; 0 for texts of different form.
template <class A, class B>
unsigned long commonPrefix(const A&, const B&, bool) {
  return 0;
}

template <class Cursor>
unsigned long commonPrefix(const Cursor& a, const Cursor& b, bool readable) {
  if (!a.sharesForm(b)) return 0;
  return equalPrefix<Cursor::kCharSize>(a.data(), b.data(), std::min(a.limit(), b.limit()), readable);
}

// Ignorable characters directly before the first difference belong to its step: of several, the last one counts.
template <class Cursor>
unsigned long stepBefore(unsigned long difference, const Cursor& cursor) {
  while (difference > 0 && cursor.weightAt(difference - 1) < cursor.significant()) --difference;
  return difference;
}

// In line wherever it is called: passing cursors by value through memory costs more than comparing a short name.
// The characters before `start`, where a step begins, are the same on both sides.
template <class A, class B>
[[gnu::always_inline]] inline long compareSteps(A a, B b, unsigned cmpOp, unsigned long start) {
  a.moveTo(start);
  b.moveTo(start);
  LevelDifferences differences;
  for (;;) {
    Weight k1 = a.next();
    Weight k2 = b.next();
    if (k1 < a.significant() || k2 < b.significant()) {
      const int ignorable1 = skipIgnorables(a, k1, cmpOp);
      const int ignorable2 = skipIgnorables(b, k2, cmpOp);
      differences.noteIgnorable(ignorable1 - ignorable2);
      if ((k1 | k2) == 0) return differences.result(cmpOp);
    }
    if (k1 == k2) continue;
    if (const std::int32_t primary = primaryDifference(k1, k2)) return primary;
    differences.note(k1, k2);
  }
}

template <class A, class B>
[[gnu::always_inline]] inline long compareLevels(const A& a, const B& b, unsigned cmpOp, bool readable) {
  return compareSteps(a, b, cmpOp, stepBefore(commonPrefix(a, b, readable), a));
}

// --- two texts of one form in host order, whole ---------------------------------------------------------------------

// What a primary difference decides between texts that are in step at x and y, or 0. Characters that differ in case or
// diacritics only are passed over on both sides, an ignorable one on its own side; behind it the texts are compared anew.
// toDifference(x, y) goes on to the next difference or end, or answers false. Bytes behind the end of a text do not
// matter: the end itself differs, or ends both.
template <class Table, class ToDifference>
[[gnu::always_inline]] inline std::int32_t walkToPrimary(const char* x, const char* y, const Table& table,
                                                         ToDifference toDifference) {
  constexpr unsigned long kSize = Table::kCharSize;
  while (toDifference(x, y)) {
    const Weight k1 = primaryAt(table, x, 0);
    const Weight k2 = primaryAt(table, y, 0);
    if (const std::int32_t difference = decidedDifference(k1, k2)) return difference;
    if (((k1 | k2) & kSeveral) != 0 || (k1 | k2) == 0) return 0;
    const bool inStep = k1 == k2;
    x += kSize * (inStep | (k1 & kIgnorable));
    y += kSize * (inStep | (k2 & kIgnorable));
  }
  return 0;
}

ByteCursor cursorOf(const char* text, unsigned long limit, const ByteWeights& table) { return {text, limit, &table}; }
WideCursor cursorOf(const char* text, unsigned long limit, const WideWeights& table) {
  return {text, limit, &table, 0};
}

// Where no primary difference was found so. The texts are alike before character `start`.
template <class Cursor>
[[gnu::always_inline]] inline long compareRest(unsigned long start, const Cursor& a, const Cursor& b, unsigned cmpOp) {
  return compareSteps(a, b, cmpOp, stepBefore(start, a));
}

template <class Table>
[[gnu::always_inline]] inline long walkBlocks(TextBlock a, TextBlock b, const Table& table, unsigned cmpOp) {
  constexpr unsigned long kSize = Table::kCharSize;
  const char* const lastX = a.text + blockSize(a.size) - kFirstBytes;
  const char* const lastY = b.text + blockSize(b.size) - kFirstBytes;
  unsigned long first = ~0ul;
  const auto toDifference = [&](const char*& x, const char*& y) {
    for (; x <= lastX && y <= lastY; x += kFirstBytes, y += kFirstBytes) {
      const std::uint32_t mask = differences16<kSize>(x, y);
      if (mask == 0) continue;
      const unsigned at = lowestBit(mask) & ~(static_cast<unsigned>(kSize) - 1);
      x += at;
      y += at;
      first = std::min(first, static_cast<unsigned long>(x - a.text));
      return true;
    }
    first = std::min(first, static_cast<unsigned long>(x - a.text));
    return false;
  };
  if (const std::int32_t primary = walkToPrimary(a.text, b.text, table, toDifference)) return primary;
  return compareRest(first / kSize, cursorOf(a.text, a.size / kSize - 1, table),
                     cursorOf(b.text, b.size / kSize - 1, table), cmpOp);
}

template <class Table>
[[gnu::always_inline]] inline long compareBehind(unsigned long start, const char* a, const char* b, const Table& table,
                                                 unsigned cmpOp) {
  constexpr unsigned long kSize = Table::kCharSize;
  const auto toDifference = [](const char*& x, const char*& y) {
    for (; isSameCharacter<kSize>(x, y, 0); x += kSize) y += kSize;
    return true;
  };
  const unsigned long bytes = start * kSize;
  if (const std::int32_t primary = walkToPrimary(a + bytes, b + bytes, table, toDifference)) return primary;
  return compareRest(start, cursorOf(a, TextRef::kToTerminator, table), cursorOf(b, TextRef::kToTerminator, table),
                     cmpOp);
}

template <class A, class B>
[[gnu::always_inline]] inline long compareOrders(A a, B b, bool readable) {
  const unsigned long start = commonPrefix(a, b, readable);
  a.moveTo(start);
  b.moveTo(start);
  for (;;) {
    const Weight k1 = a.next();
    const Weight k2 = b.next();
    if (k1 != k2) return keyDifference(k1, k2);
    if (k1 == 0) return 0;
  }
}

bool isReadable(unsigned long limit) { return limit != TextRef::kToTerminator; }
bool bothReadable(const TextRef& a, const TextRef& b) { return isReadable(a.limit) && isReadable(b.limit); }

int byteAt(const TextRef& ref, unsigned long index) {
  return index < ref.limit ? static_cast<unsigned char>(ref.text[index]) : 0;
}

long compareBytes(const TextRef& a, const TextRef& b, unsigned long length) {
  const unsigned long count = std::min({a.limit, b.limit, length});
  const unsigned long equal = equalPrefix<1>(a.text, b.text, count, bothReadable(a, b));
  return equal < length ? byteAt(a, equal) - byteAt(b, equal) : 0;
}

TextRef withoutNullPointer(const TextRef& ref) {
  TextRef safe = ref;
  if (safe.text != nullptr) return safe;
  safe.text = "\0";
  safe.limit = 0;
  return safe;
}

// Both code sets are 0: nothing is known of the characters but their bytes.
long compareRaw(const TextRef& a, const TextRef& b, unsigned cmpOp, unsigned long length) {
  const TextRef x = withoutNullPointer(a);
  const TextRef y = withoutNullPointer(b);
  if ((cmpOp & (kNoWildcards | kBinaryOrder)) == 0) return matchBytePattern(x, y, length);
  return compareBytes(x, y, length);
}

}  // namespace

long compareInBlocks(TextBlock a, TextBlock b, const ByteWeights& table, unsigned cmpOp) {
  return walkBlocks(a, b, table, cmpOp);
}
long compareInBlocks(TextBlock a, TextBlock b, const WideWeights& table, unsigned cmpOp) {
  return walkBlocks(a, b, table, cmpOp);
}

long compareFrom(unsigned long start, const char* a, const char* b, const ByteWeights& table, unsigned cmpOp) {
  return compareBehind(start, a, b, table, cmpOp);
}
long compareFrom(unsigned long start, const char* a, const char* b, const WideWeights& table, unsigned cmpOp) {
  return compareBehind(start, a, b, table, cmpOp);
}

long compareTexts(const TextRef& a, const TextRef& b, unsigned cmpOp, short length, int* report) {
  if (a.isNull() || b.isNull()) {
    if (b.isNull()) return a.isNull() ? 0 : 1;
    if ((cmpOp & (kNoWildcards | kBinaryOrder)) != 0) return -1;
  }
  noteUsualTables(a.codeSet, a.language);
  if (length == 0 || length < -1) return 0;
  const unsigned long limit = lengthLimit(length);
  if ((a.codeSet | b.codeSet) == 0) return compareRaw(a, b, cmpOp, limit);

  const bool binary = (cmpOp & kBinaryOrder) != 0;
  const bool wantsReport = report != nullptr && (cmpOp & kDropSpaces) != 0;
  if (!binary && ((cmpOp & kNoWildcards) == 0 || wantsReport))
    return comparePattern(a, b, cmpOp, limit, wantsReport ? report : nullptr);
  const bool readable = bothReadable(a, b);
  return withCursors(a, b, limit, [&](const auto& x, const auto& y) -> long {
    return binary ? compareOrders(x, y, readable) : compareLevels(x, y, cmpOp, readable);
  });
}

}  // namespace kt
