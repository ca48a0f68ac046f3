// string_key_compare.cpp - index keys are compared by their words, under the operator that the strings would be.
#include "ops/string_key_compare.h"

#include "text/str_compare.h"
#include "text/str_levels.h"

namespace kt {
namespace {

constexpr int signOf(long value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

// Both keys are equal as far as they go; aGoesOn, bGoesOn: one of them has words left.
KeyOrder orderOfEnds(const IndexKey& a, const IndexKey& b, bool aGoesOn, bool bGoesOn) {
  if (aGoesOn) return {b.isCut ? -1 : 1, !b.isCut};
  if (bGoesOn) return {a.isCut ? 1 : -1, !a.isCut};
  if (a.isCut && b.isCut) return {0, false};
  // A key was cut because its text goes on.
  return {a.isCut ? 1 : b.isCut ? -1 : 0, true};
}

KeyOrder compareBodies(const IndexKey& a, const IndexKey& b) {
  const unsigned long common = std::min(a.bytes, b.bytes);
  const int difference = common != 0 ? std::memcmp(a.body, b.body, common) : 0;
  if (difference != 0) return {signOf(difference), true};
  return orderOfEnds(a, b, a.bytes > common, b.bytes > common);
}

bool differAboveLevels(Weight k1, Weight k2) { return ((k1 ^ k2) & ~kLevelMask) != 0; }

struct KeyPair {
  const IndexKey& a;
  const IndexKey& b;
};

template <class A, class B>
KeyOrder compareOrders(const KeyPair& keys, A x, B y) {
  for (;;) {
    const Weight k1 = x.next();
    const Weight k2 = y.next();
    if (k1 == 0 || k2 == 0) return orderOfEnds(keys.a, keys.b, k1 != 0, k2 != 0);
    if (k1 != k2) return {k1 < k2 ? -1 : 1, true};
  }
}

// A side has ended and there was no primary difference before. k1, k2: what the sides go on with.
KeyOrder levelsAtEnd(const KeyPair& keys, const LevelDifferences& differences, unsigned cmpOp, Weight k1, Weight k2) {
  const bool atCut = (k1 == 0 && keys.a.isCut) || (k2 == 0 && keys.b.isCut);
  if (!atCut && k1 != k2) return {k1 == 0 ? -1 : 1, true};
  const int byLevels = signOf(differences.result(cmpOp));
  if (!atCut) return {byLevels, true};
  return {byLevels != 0 ? byLevels : orderOfEnds(keys.a, keys.b, k1 != 0, k2 != 0).result, false};
}

template <class A, class B>
KeyOrder compareLevels(const KeyPair& keys, unsigned cmpOp, A x, B y) {
  LevelDifferences differences;
  for (;;) {
    Weight k1 = x.next();
    Weight k2 = y.next();
    const int ignorable1 = skipIgnorables(x, k1, cmpOp);
    const int ignorable2 = skipIgnorables(y, k2, cmpOp);
    differences.noteIgnorable(ignorable1 - ignorable2);
    if (k1 == 0 || k2 == 0) return levelsAtEnd(keys, differences, cmpOp, k1, k2);
    if (k1 == k2) continue;
    // Damaged words may lie further apart than a difference can tell.
    if (differAboveLevels(k1, k2)) return {k1 < k2 ? -1 : 1, true};
    differences.note(k1, k2);
  }
}

// Bytes under code set 0, of which a pattern may be asked for.
KeyOrder compareRaw(const IndexKey& a, const IndexKey& b, unsigned cmpOp) {
  if ((cmpOp & (kNoWildcards | kBinaryOrder)) != 0) return compareBodies(a, b);
  return {signOf(compareTexts(a.rawText(), b.rawText(), cmpOp, -1)), !a.isCut && !b.isCut};
}

// A key of words that lies within its bytes and is no null.
struct UsualKey {
  UsualKey(const void* key, unsigned long room, unsigned char code) : bytes(static_cast<const unsigned char*>(key)) {
    if (room < kEmptyRecord) return;
    length = readLength(bytes, code);
    isUsual = length >= kEmptyLength && length <= room - kLengthBytes && bytes[kCodeSetAt] != 0 &&
              bytes[kCodeSetAt] != kNullCodeSet && language() != 254;
  }
  unsigned char language() const { return bytes[kLanguageAt]; }
  unsigned long end() const { return kTextAt + ((length - kEmptyLength) & ~(kKeyWord - 1)); }  // of the words
  bool isCut() const { return bytes[length] != kTextEnd; }
  Weight word(unsigned long at) const { return loadKeyWord(bytes + at); }

  const unsigned char* bytes;
  unsigned long length = 0;
  bool isUsual = false;
};

constexpr unsigned kIgnoreLevels = kIgnoreCase | kIgnoreDiacritics;

bool isLetter(Weight word, Weight significant) { return word >= significant && word < kSeveralOrdersMark; }

// Both keys are alike as far as the shorter one goes.
std::optional<KeyOrder> orderAtEnd(const UsualKey& a, const UsualKey& b, Weight significant) {
  const unsigned long endA = a.end(), endB = b.end();
  if (endA == endB) return KeyOrder{int{a.isCut()} - int{b.isCut()}, !a.isCut() && !b.isCut()};
  const UsualKey& shorter = endA < endB ? a : b;
  const UsualKey& longer = endA < endB ? b : a;
  if (!isLetter(longer.word(shorter.end()), significant)) return std::nullopt;
  const bool shorterIsLess = !shorter.isCut();
  return KeyOrder{shorterIsLess == (endA < endB) ? -1 : 1, !shorter.isCut()};
}

}  // namespace

// Words that are equal on both sides change nothing, whatever they are: so the first ones that differ decide, if they
// are letters and differ in more than case and accents.
std::optional<KeyOrder> orderByLetters(const void* keyA, unsigned long roomA, const void* keyB, unsigned long roomB,
                                       unsigned char format, unsigned cmpOp) {
  const UsualKey a(keyA, knownLength(roomA), lowCode(format)), b(keyB, knownLength(roomB), lowCode(format));
  if (!a.isUsual || !b.isUsual || a.language() != b.language()) return std::nullopt;
  const Weight significant = firstSignificant(collationKind(a.language()));
  const unsigned long end = std::min(a.end(), b.end());
  for (unsigned long at = kTextAt; at < end; at += kKeyWord) {
    const Weight k1 = a.word(at), k2 = b.word(at);
    if (k1 == k2) continue;
    if (!isLetter(k1, significant) || !isLetter(k2, significant)) return std::nullopt;
    if (differAboveLevels(k1, k2)) return KeyOrder{k1 < k2 ? -1 : 1, true};
    if ((cmpOp & kIgnoreLevels) != kIgnoreLevels) return std::nullopt;
  }
  return orderAtEnd(a, b, significant);
}

KeyOrder compareKeys(const IndexKey& a, const IndexKey& b, unsigned cmpOp) {
  if (a.isRaw() && b.isRaw()) return compareRaw(a, b, cmpOp);
  const bool isBinary = (cmpOp & kBinaryOrder) != 0;
  const bool sameWords = a.isRaw() == b.isRaw() && collationKind(a.language) == collationKind(b.language);
  if (isBinary && sameWords) return compareBodies(a, b);
  return withKeyCursor(a, [&](auto x) {
    return withKeyCursor(b, [&](auto y) {
      return isBinary ? compareOrders(KeyPair{a, b}, x, y) : compareLevels(KeyPair{a, b}, cmpOp, x, y);
    });
  });
}

}  // namespace kt
