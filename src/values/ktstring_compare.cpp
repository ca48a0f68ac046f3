// ktstring_compare.cpp - comparison and hashing of strings: covers over the text core.
#include "ktstring.h"

#include "text/str_compare.h"
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

unsigned operatorBits(unsigned short cmpOp) {
  return cmpOp != KtCMP_DEFAULT ? cmpOp : KtLanguageContext::GetDefaultCmpOp();
}

long compareByDefault(const KtString& a, const KtString& b) { return a.Compare(b); }

// The same arguments again, so that KtStrCmp jumps here and needs no stack frame on its short way.
[[gnu::noinline]] long compareInFull(unsigned char codeSet1, unsigned char language1, const char* s1,
                                     unsigned char codeSet2, unsigned char language2, const char* s2,
                                     unsigned short cmpOp, short length, unsigned char flag, int* report) {
  const kt::TextRef a{s1, kt::TextRef::kToTerminator, codeSet1, language1, flag};
  const kt::TextRef b{s2, kt::TextRef::kToTerminator, codeSet2, language2, flag};
  return kt::compareTextsInFull(a, b, cmpOp, length, report);
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

int KtString::SetAsterisk(const KtChar& ch) { return setWildcard(kt::Wildcard::kAsterisk, ch); }
int KtString::SetQuestion(const KtChar& ch) { return setWildcard(kt::Wildcard::kQuestion, ch); }
int KtString::SetEscape(const KtChar& ch) { return setWildcard(kt::Wildcard::kEscape, ch); }

long KtString::Compare(const KtString& other, short length, unsigned short cmpOp) const {
  return kt::compareTexts(refOf(*this, language), refOf(other, other.language), operatorBits(cmpOp), length);
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
  const kt::TextRef a{s1, kt::TextRef::kToTerminator, codeSet1, language1, flag};
  const kt::TextRef b{s2, kt::TextRef::kToTerminator, codeSet2, language2, flag};
  if (kt::isPlainComparison(a, b, cmpOp, length, report)) return kt::comparePlain(a, b, cmpOp);
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
  return kt::hashText({data, kt::TextRef::kToTerminator, codeSet, language, flag}, length);
}
