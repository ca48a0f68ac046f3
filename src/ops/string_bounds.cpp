// string_bounds.cpp - finding the literal text of a comparison string, and making keys below and above all that it selects.
#include "ops/string_bounds.h"

#include "ops/string_run.h"
#include "text/str_pattern.h"

namespace kt {
namespace {

constexpr unsigned long kMostWords = (KtINDEX_MAX_KEYLEN - kEmptyRecord) / kKeyWord;

// Longer texts have open bounds. The key of a shorter one decides as the texts do, unless the other key is cut and has no
// more significant orders than this: of its 62 characters half would be ignorable.
constexpr unsigned long kMostExactWords = kMostWords / 2;

constexpr unsigned kLetterBits = 0xC000;
constexpr unsigned kLetterOrder = 0x4000;

bool isSeveral(Weight word) { return word >= kSeveralOrdersMark; }
unsigned orderOf(Weight word) { return word >> 8 & 0xFFFFu; }

// --- wildcards ----------------------------------------------------------------------------------------------------

// The wildcards of a kind as key words.
struct Wildcards {
  explicit Wildcards(unsigned char kind)
      : asterisk(word(Wildcard::kAsterisk, kind)),
        question(word(Wildcard::kQuestion, kind)),
        escape(word(Wildcard::kEscape, kind)),
        ofSeveral(collationKey(0xFFFF, kind)) {}

  static Weight word(Wildcard wildcard, unsigned char kind) {
    return collationKey(wildcardOrder(wildcard, kind), kind);
  }
  // Characters with several orders act by their first one.
  Weight first(Weight word) const { return isSeveral(word) ? ofSeveral : word; }
  bool acts(Weight word) const { return first(word) == asterisk || first(word) == question; }
  bool canBeEscaped(Weight word) const { return acts(word) || first(word) == escape; }

  Weight asterisk, question, escape, ofSeveral;
};

// Takes the escape characters out of the words before the first wildcard. Returns the bytes of those.
unsigned long unescape(unsigned char* body, unsigned long bytes, const Wildcards& wildcards, bool& isPattern) {
  unsigned long to = 0;
  for (unsigned long at = 0; at < bytes; at += kKeyWord, to += kKeyWord) {
    Weight word = loadKeyWord(body + at);
    const bool hasNext = at + kKeyWord < bytes;
    if (wildcards.first(word) == wildcards.escape && hasNext &&
        wildcards.canBeEscaped(loadKeyWord(body + at + kKeyWord))) {
      at += kKeyWord;
      word = loadKeyWord(body + at);
    } else if (wildcards.acts(word)) {
      isPattern = true;
      return to;
    }
    storeKeyWord(body + to, word);
  }
  return to;
}

// Under code set 0 nothing escapes.
unsigned long literalBytes(const unsigned char* body, unsigned long bytes, bool& isPattern) {
  const unsigned char* end = body + bytes;
  const unsigned char* found = std::find_if(body, end, [](unsigned char c) { return c == '*' || c == '?' || c == 0; });
  isPattern = found != end && *found != 0;
  return isPattern ? static_cast<unsigned long>(found - body) : bytes;
}

void keepLiteral(Comparison& comparison, unsigned char code) {
  IndexKey& literal = comparison.literal;
  unsigned char* body = comparison.key.bytes + kTextAt;
  if (literal.isRaw()) {
    literal.bytes = literalBytes(body, literal.bytes, comparison.isPattern);
  } else {
    literal.bytes = unescape(body, literal.bytes, Wildcards(collationKind(literal.language)), comparison.isPattern);
  }
  comparison.startsWithWildcard = comparison.isPattern && literal.bytes == 0;
  literal.isCut = literal.isCut && !comparison.isPattern;
  comparison.key.size = copyIndexKey(comparison.key.bytes, sizeof comparison.key.bytes, literal, code);
}

template <class Kind>
unsigned long writeKey(KeyBytes& to, const void* key, unsigned char format) {
  const unsigned char code = keyCode(format);
  TextRef text;
  if (isMemoryForm(format)) {
    MemoryRun<Kind>(key, 0, format & kCodeSetBits).next(text);
  } else if ((format & kIndexKeyForm) != 0) {
    IndexKey given;
    KeyRun(key, 0, format).next(given);
    return copyIndexKey(to.bytes, sizeof to.bytes, given, code);
  } else if (!RecordRun<Kind>(key, 0, format).next(text)) {
    return 0;
  }
  return writeIndexKey(to.bytes, sizeof to.bytes, text, false, code);
}

// --- bounds -------------------------------------------------------------------------------------------------------

bool hasLevels(const IndexKey& key) {
  return !key.isRaw() && collationKind(key.language) < KtUnicodeProps::kIdeographicKind;
}

bool isIgnorable(const IndexKey& key, Weight word) {
  return !isSeveral(word) && word < firstSignificant(collationKind(key.language));
}

bool isOpen(const Comparison& comparison, unsigned flags) {
  const IndexKey& key = comparison.literal;
  const bool isOrder = (flags & (KtBOUND_LESS | KtBOUND_GREATER)) != 0;
  const bool isLong = key.bytes > kMostExactWords * kKeyWord;
  return hasLevels(key) && (comparison.isPattern ? isOrder || isLong : key.isCut || (isOrder && isLong));
}

// The words of a bound. What is made of them has the marks of the comparison string.
class BoundWords {
public:
  explicit BoundWords(const IndexKey& key) : key_(key) {}

  unsigned long count() const { return bytes_ / kKeyWord; }
  void add(Weight word) {
    storeKeyWord(body_ + bytes_, word);
    bytes_ += kKeyWord;
  }
  // Above all ignorable orders there are, and not significant.
  void addHighestIgnorable() { add(firstSignificant(collationKind(key_.language)) - 256); }

  void write(KeyBytes& to, bool isCut, unsigned char code) const {
    const IndexKey bound{body_, bytes_, key_.codeSet, key_.language, isCut};
    to.size = copyIndexKey(to.bytes, sizeof to.bytes, bound, code);
  }

private:
  IndexKey key_;
  unsigned char body_[kMostWords * kKeyWord];
  unsigned long bytes_ = 0;
};

template <class Use>
void forEachWord(const IndexKey& key, Use use) {
  for (unsigned long at = 0; at + kKeyWord <= key.bytes; at += kKeyWord) use(loadKeyWord(key.body + at));
}

// The literal text up to its last significant order.
IndexKey withoutIgnorableEnd(IndexKey key) {
  if (!hasLevels(key)) return key;
  while (key.bytes != 0 && isIgnorable(key, loadKeyWord(key.body + key.bytes - kKeyWord))) key.bytes -= kKeyWord;
  return key;
}

bool isLetter(Weight word) { return !isSeveral(word) && (orderOf(word) & kLetterBits) == kLetterOrder; }
// Case sorts backwards.
Weight leastOfLevels(Weight word) { return isLetter(word) ? (word & ~kLevelMask) | kCaseMask : word; }
Weight greatestOfLevels(Weight word) { return isLetter(word) ? (word & ~kLevelMask) | kDiacriticMask : word; }

void writeLeast(KeyBytes& to, const IndexKey& key, unsigned char code) {
  BoundWords words(key);
  forEachWord(key, [&](Weight word) {
    if (!isIgnorable(key, word)) words.add(leastOfLevels(word));
  });
  words.write(to, false, code);
}

// Ignorable orders decide last, by the last step at which they differ: here every step has the highest one.
void writeGreatest(KeyBytes& to, const IndexKey& key, unsigned char code) {
  BoundWords words(key);
  forEachWord(key, [&](Weight word) {
    if (isIgnorable(key, word) || words.count() + 3 > kMostWords) return;
    words.addHighestIgnorable();
    words.add(greatestOfLevels(word));
  });
  words.addHighestIgnorable();
  words.write(to, true, code);
}

void copyKey(KeyBytes& to, IndexKey key, bool isCut, unsigned char code) {
  key.isCut = isCut;
  to.size = copyIndexKey(to.bytes, sizeof to.bytes, key, code);
}

// Every key begins so. Under the language of a text others may sort outside.
IndexKey emptyPrefix(const IndexKey& key) {
  constexpr unsigned char kLatin1 = 1;
  return {key.body, 0, key.isRaw() ? key.codeSet : kLatin1, 0, false};
}

IndexKey prefixOf(const Comparison& comparison) {
  const IndexKey prefix = withoutIgnorableEnd(comparison.literal);
  return prefix.bytes != 0 ? prefix : emptyPrefix(prefix);
}

constexpr unsigned char kNullLanguage = 254;
constexpr IndexKey kNullKey{nullptr, 0, 0, kNullLanguage, false};

}  // namespace

template <class Kind>
bool readComparison(Comparison& to, const void* key, unsigned char format) {
  const unsigned char code = keyCode(format);
  to.key.size = writeKey<Kind>(to.key, key, format);
  if (to.key.size == 0 || !KeyRun(to.key.bytes, to.key.size, code).next(to.literal)) return false;
  const bool isText = isMemoryForm(format) || (format & kIndexKeyForm) == 0;
  const bool hasWildcards = (Kind::cmpOp(0) & kNoWildcards) == 0 && (isText || to.literal.isRaw());
  if (hasWildcards && !to.literal.isNull()) keepLiteral(to, code);
  return true;
}

void writeLowBound(KeyBytes& to, const Comparison& comparison, unsigned flags, bool knowsNull, unsigned char code) {
  if (isOpen(comparison, flags)) {
    writeLeast(to, comparison.literal, code);
  } else if (comparison.isPattern) {
    copyKey(to, prefixOf(comparison), false, code);
  } else {
    copyKey(to, comparison.literal, comparison.literal.isCut, code);
  }
  // Where wildcards act a null equals the empty string.
  const bool startsAll = to.size == kEmptyRecord && (comparison.isPattern || (flags & KtBOUND_EQUAL) != 0);
  if (knowsNull && startsAll && !comparison.literal.isNull()) copyKey(to, kNullKey, false, code);
}

void writeHighBound(KeyBytes& to, const Comparison& comparison, unsigned flags, unsigned char code) {
  const IndexKey& literal = comparison.literal;
  if (!comparison.isPattern && !isOpen(comparison, flags)) return copyKey(to, literal, literal.isCut, code);
  const IndexKey prefix = comparison.isPattern ? prefixOf(comparison) : literal;
  if (!hasLevels(prefix)) return copyKey(to, prefix, true, code);
  writeGreatest(to, prefix, code);
}

#define KT_INSTANTIATE(Kind) template bool readComparison<Kind>(Comparison&, const void*, unsigned char);
KT_FOR_STRING_KINDS(KT_INSTANTIATE)

}  // namespace kt
