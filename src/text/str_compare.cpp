// str_compare.cpp - byte order, binary order and the three-level order without wildcards.
#include "str_compare.h"

#include "str_levels.h"
#include "str_pattern.h"

#include <bit>

namespace kt {

namespace {

// Whether any byte (charSize 1) or any 16-bit unit (charSize 2) of the word is zero.
template <unsigned long charSize>
bool hasZero(std::uint64_t word) {
  constexpr std::uint64_t ones = charSize == 1 ? 0x0101010101010101u : 0x0001000100010001u;
  constexpr std::uint64_t tops = ones << (charSize * 8 - 1);
  return ((word - ones) & ~word & tops) != 0;
}

// The index of the first byte, in memory order, in which two words differ.
unsigned long firstDifferentByte(std::uint64_t difference) {
  const int bits = std::endian::native == std::endian::little ? std::countr_zero(difference) : std::countl_zero(difference);
  return static_cast<unsigned long>(bits) / 8;
}

// Leading characters, up to `count`, that are the same on both sides and not 0; count characters must be readable.
template <unsigned long charSize>
unsigned long equalByWords(const char* a, const char* b, unsigned long count) {
  constexpr unsigned long perWord = 8 / charSize;
  unsigned long i = 0;
  for (; count - i >= perWord; i += perWord) {
    std::uint64_t x, y;
    std::memcpy(&x, a + i * charSize, sizeof x);
    std::memcpy(&y, b + i * charSize, sizeof y);
    if (hasZero<charSize>(x)) break;
    if (x != y) return i + firstDifferentByte(x ^ y) / charSize;
  }
  return i;
}

template <unsigned long charSize>
bool sameCharacter(const char* a, const char* b, unsigned long i) {
  if constexpr (charSize == 1) return a[i] == b[i] && a[i] != 0;
  const unsigned unit = loadUnit(a, i, 0);
  return unit == loadUnit(b, i, 0) && unit != 0;
}

// The number of leading characters that are the same. Whole words are read only where both texts are known to be
// readable: a terminated text may end at the end of a page.
template <unsigned long charSize>
unsigned long equalPrefix(const char* a, const char* b, unsigned long count, bool readable) {
  unsigned long i = readable ? equalByWords<charSize>(a, b, count) : 0;
  while (i < count && sameCharacter<charSize>(a, b, i)) ++i;
  return i;
}

bool bothReadable(const TextRef& a, const TextRef& b) {
  return a.limit != TextRef::kToTerminator && b.limit != TextRef::kToTerminator;
}

// Moves both cursors past their equal beginning. Nothing is done for texts of different form.
template <class A, class B>
void skipEqualPrefix(A&, B&, bool) {}

template <class Cursor>
void skipEqualPrefix(Cursor& a, Cursor& b, bool readable) {
  if (!a.sharesForm(b)) return;
  const unsigned long count = std::min(a.limit(), b.limit());
  const unsigned long equal = equalPrefix<Cursor::kCharSize>(a.data(), b.data(), count, readable);
  a.moveTo(equal);
  b.moveTo(equal);
}

// Ignorable characters directly before the first difference belong to its step: of several, the last one counts.
template <class A, class B>
void backOverIgnorables(A&, B&) {}

template <class Cursor>
void backOverIgnorables(Cursor& a, Cursor& b) {
  unsigned long i = a.position();
  while (i > 0 && a.weightAt(i - 1) < a.significant()) --i;
  a.moveTo(i);
  b.moveTo(i);
}

template <class A, class B>
long compareLevels(A& a, B& b, unsigned cmpOp) {
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
long compareOrders(A& a, B& b) {
  for (;;) {
    const Weight k1 = a.next();
    const Weight k2 = b.next();
    if (k1 != k2) return keyDifference(k1, k2);
    if (k1 == 0) return 0;
  }
}

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

long compareTexts(const TextRef& a, const TextRef& b, unsigned cmpOp, short length, int* report) {
  if (a.isNull() || b.isNull()) {
    if (b.isNull()) return a.isNull() ? 0 : 1;
    if ((cmpOp & (kNoWildcards | kBinaryOrder)) != 0) return -1;
  }
  if (length == 0 || length < -1) return 0;
  const unsigned long limit = lengthLimit(length);
  if ((a.codeSet | b.codeSet) == 0) return compareRaw(a, b, cmpOp, limit);

  const bool binary = (cmpOp & kBinaryOrder) != 0;
  const bool wantsReport = report != nullptr && (cmpOp & kDropSpaces) != 0;
  if (!binary && ((cmpOp & kNoWildcards) == 0 || wantsReport))
    return comparePattern(a, b, cmpOp, limit, wantsReport ? report : nullptr);
  return withCursors(a, b, limit, [&](auto& x, auto& y) -> long {
    skipEqualPrefix(x, y, bothReadable(a, b));
    if (binary) return compareOrders(x, y);
    backOverIgnorables(x, y);
    return compareLevels(x, y, cmpOp);
  });
}

}  // namespace kt
