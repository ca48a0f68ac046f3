// ktstring_compare.cpp - comparison and hashing of strings: covers over the text core.
#include "string_compare.h"
#include "text/str_hash.h"
#include "text/str_pattern.h"

static_assert(KtCMP_NO_WILDCARDS == kt::kNoWildcards && KtCMP_IGNORE_CASE == kt::kIgnoreCase);
static_assert(KtCMP_IGNORE_DIACRITICS == kt::kIgnoreDiacritics && KtCMP_DROP_SPACES == kt::kDropSpaces);
static_assert(KtCMP_BINARY == kt::kBinaryOrder && KtCMP_DROP_SYMBOLS == kt::kDropSymbols);

namespace {

// bufferSize covers the text with its terminator.
unsigned long charactersOf(const KtString& s, unsigned charSize) {
  return s.buffer != nullptr && s.bufferSize >= charSize ? s.bufferSize / charSize - 1ul : 0;
}

kt::TextRef refOf(const KtString& s, unsigned char language) {
  return {s.buffer, charactersOf(s, s.codeSet == 255 ? 1 : s.CharSize()), s.codeSet, language, 1};
}

kt::TextBlock blockOf(const KtString& s) { return {s.buffer, s.bufferSize}; }

template <class Table>
[[gnu::always_inline]] inline long compareBlocks(const KtString& a, const KtString& b, const Table& table,
                                                 unsigned cmpOp) {
  if (const std::int32_t difference = kt::laterDifferenceInBlocks(a.buffer, b.buffer, table)) return difference;
  return kt::compareInBlocks(blockOf(a), blockOf(b), table, cmpOp);
}

[[gnu::always_inline]] inline long compareWhole(const KtString& a, const KtString& b, unsigned cmpOp) {
  return kt::compareWholeOr(a, b, cmpOp, [&] { return kt::compareInFull(a, b, -1, cmpOp); });
}

[[gnu::always_inline]] inline long compareByDefault(const KtString& a, const KtString& b) {
  const unsigned cmpOp = KtLanguageContext::GetDefaultCmpOp();
  return kt::isPlainOperator(cmpOp) ? compareWhole(a, b, cmpOp) : kt::compareInFull(a, b, -1, cmpOp);
}

// The stand-in for the default operator is none of isPlainOperator.
[[gnu::noinline]] long compareUnusual(const KtString& a, const KtString& b, short length, unsigned short cmpOp) {
  if (cmpOp != KtCMP_DEFAULT) return kt::compareInFull(a, b, length, cmpOp);
  return length == -1 ? compareByDefault(a, b) : kt::compareInFull(a, b, length, KtLanguageContext::GetDefaultCmpOp());
}
static_assert(!kt::isPlainOperator(KtCMP_DEFAULT));

template <class Table>
[[gnu::always_inline]] inline long compareTerminated(const char* a, const char* b, const Table& table, unsigned cmpOp) {
  const unsigned long start = kt::equalStart<Table::kCharSize>(a, b);
  if (const std::int32_t difference =
          kt::nextDifference(a + start * Table::kCharSize, b + start * Table::kCharSize, table))
    return difference;
  return kt::compareFrom(start, a, b, table, cmpOp);
}

// The same arguments again, so that KtStrCmp jumps here and needs no stack frame on its short way.
[[gnu::noinline]] long compareInFull(unsigned char codeSet1, unsigned char language1, const char* s1,
                                     unsigned char codeSet2, unsigned char language2, const char* s2,
                                     unsigned short cmpOp, short length, unsigned char flag, int* report) {
  const kt::TextRef a{s1, kt::TextRef::kToTerminator, codeSet1, language1, flag};
  const kt::TextRef b{s2, kt::TextRef::kToTerminator, codeSet2, language2, flag};
  return kt::compareTexts(a, b, cmpOp, length, report);
}

[[gnu::noinline]] unsigned long hashInFull(unsigned char codeSet, unsigned char language, const char* data,
                                           short length, unsigned char flag) {
  kt::noteUsualTables(codeSet, language);
  return kt::hashText({data, kt::TextRef::kToTerminator, codeSet, language, flag}, length);
}

int setWildcard(kt::Wildcard wildcard, const KtChar& ch) {
  const unsigned short unicode = ch.Unicode();
  const unsigned char kind = kt::collationKind(ch.language);
  const unsigned char alphabetic = kind < KtUnicodeProps::kIdeographicKind ? kind : static_cast<unsigned char>(1);
  kt::setWildcardOrders(wildcard, KtUnicodeProps::Order(unicode, alphabetic),
                        KtUnicodeProps::Order(unicode, KtUnicodeProps::kIdeographicKind));
  return 0;
}

}  // namespace

namespace kt {

long compareInFull(const KtString& a, const KtString& b, short length, unsigned cmpOp) {
  return compareTexts(refOf(a, a.language), refOf(b, b.language), cmpOp, length);
}

[[gnu::noinline]] long compareFurther(const KtString& a, const KtString& b, const ByteWeights& table, unsigned cmpOp) {
  return compareBlocks(a, b, table, cmpOp);
}
[[gnu::noinline]] long compareFurther(const KtString& a, const KtString& b, const WideWeights& table, unsigned cmpOp) {
  return compareBlocks(a, b, table, cmpOp);
}

}  // namespace kt

int KtString::SetAsterisk(const KtChar& ch) { return setWildcard(kt::Wildcard::kAsterisk, ch); }
int KtString::SetQuestion(const KtChar& ch) { return setWildcard(kt::Wildcard::kQuestion, ch); }
int KtString::SetEscape(const KtChar& ch) { return setWildcard(kt::Wildcard::kEscape, ch); }

long KtString::Compare(const KtString& other, short length, unsigned short cmpOp) const {
  const bool isUsual = length == -1 && kt::isPlainOperator(cmpOp);
  return isUsual ? compareWhole(*this, other, cmpOp) : compareUnusual(*this, other, length, cmpOp);
}

int KtString::EqualsIgnoreLanguage(const KtString& other) const {
  const unsigned char common = language == other.language ? language : static_cast<unsigned char>(0);
  return kt::compareTexts(refOf(*this, common), refOf(other, common), KtCMP_BINARY, -1) == 0;
}

int operator==(const KtString& a, const KtString& b) { return &a == &b || compareByDefault(a, b) == 0; }
int operator!=(const KtString& a, const KtString& b) { return !(a == b); }
int operator<(const KtString& a, const KtString& b) { return compareByDefault(a, b) < 0; }
int operator>(const KtString& a, const KtString& b) { return compareByDefault(a, b) > 0; }
int operator<=(const KtString& a, const KtString& b) { return compareByDefault(a, b) <= 0; }
int operator>=(const KtString& a, const KtString& b) { return compareByDefault(a, b) >= 0; }

long KtStrCmp(unsigned char codeSet1, unsigned char language1, const char* s1, unsigned char codeSet2,
              unsigned char language2, const char* s2, unsigned short cmpOp, short length, unsigned char flag,
              int* report) {
  if (length == -1 && report == nullptr && kt::isPlainOperator(cmpOp) && codeSet1 == codeSet2 &&
      language1 == language2 && s1 != nullptr && s2 != nullptr) {
    const unsigned codes = language1 * 256u + codeSet1;
    if (const kt::ByteWeights* table = kt::usualByteWeights(codes)) return compareTerminated(s1, s2, *table, cmpOp);
    const kt::WideWeights* table = kt::unitRotation(flag) == 0 ? kt::usualWideWeights(codes) : nullptr;
    if (table != nullptr) return compareTerminated(s1, s2, *table, cmpOp);
  }
  return compareInFull(codeSet1, language1, s1, codeSet2, language2, s2, cmpOp, length, flag, report);
}

// Only code set 253 is walked by units; in the other 16-bit sets a zero byte ends the text.
unsigned long HashKtString(const KtString& s) {
  if (s.codeSet == 253) return kt::hashUnits(s.buffer, charactersOf(s, 2));
  return kt::hashSignedBytes(s.buffer, charactersOf(s, 1));
}

unsigned long HashKtString7(const KtString& s) {
  if (s.codeSet == 253) return kt::hashLowUnits(s.buffer, charactersOf(s, 2));
  return kt::hashLowBytes(s.buffer, charactersOf(s, 1));
}

unsigned long HashString(unsigned char codeSet, unsigned char language, char* data, short length, unsigned char flag) {
  if (length == -1 && data != nullptr) {
    const unsigned codes = language * 256u + codeSet;
    if (const kt::ByteWeights* table = kt::usualByteWeights(codes)) return kt::hashTerminated(data, *table);
    const kt::WideWeights* table = kt::unitRotation(flag) == 0 ? kt::usualWideWeights(codes) : nullptr;
    if (table != nullptr) return kt::hashTerminated(data, *table);
  }
  return hashInFull(codeSet, language, data, length, flag);
}
