// ktchar.cpp - one character: code set mapping, order, case.
#include "ktchar.h"

#include "text_units.h"

namespace {

constexpr unsigned char kAlphabeticKind = 1;
constexpr unsigned short kFirstVisibleOrder = 80;  // below: spaces, separators, controls, the end of a text

}  // namespace

KtChar::KtChar() : KtChar(0, kt::narrowSet(), KtLanguageContext::GetDefaultLanguage()) {}

KtChar::KtChar(char ch)
    : KtChar(static_cast<unsigned char>(ch), kt::narrowSet(), KtLanguageContext::GetDefaultLanguage()) {}

KtChar::KtChar(unsigned short ch) : KtChar(ch, kt::wideSet(), KtLanguageContext::GetDefaultLanguage()) {}

KtChar::KtChar(unsigned short ch, unsigned char set, unsigned char lang) : code(ch), codeSet(set), language(lang) {}

KtChar& KtChar::operator=(const KtChar& other) {
  const KtCodeSet& to = kt::characterSet(codeSet);
  const KtCodeSet& from = kt::characterSet(other.codeSet);
  code = to.Code() == from.Code() ? other.code : to.FromUnicode(from.ToUnicode(other.code));
  return *this;
}

unsigned short KtChar::Unicode() const { return kt::characterSet(codeSet).ToUnicode(code); }

unsigned short KtChar::Order() const {
  return KtUnicodeProps::Order(Unicode(), KtUnicodeProps::CollationKind(language));
}

int KtChar::IsSpace() const {
  const unsigned char kind = KtUnicodeProps::CollationKind(language);
  const bool alphabetic = kind < KtUnicodeProps::kIdeographicKind;
  return KtUnicodeProps::Order(Unicode(), alphabetic ? kind : kAlphabeticKind) < kFirstVisibleOrder;
}

KtChar KtChar::ToLower() const { return {kt::characterSet(codeSet).ToLower(code), codeSet, language}; }

KtChar KtChar::ToUpper() const { return {kt::characterSet(codeSet).ToUpper(code), codeSet, language}; }

KtCharOperation::~KtCharOperation() = default;

int KtLowerCaseOperation::Apply(const KtChar& in, KtChar out[kMaxCharacters]) {
  out[0] = in.ToLower();
  return 1;
}

int KtUpperCaseOperation::Apply(const KtChar& in, KtChar out[kMaxCharacters]) {
  out[0] = in.ToUpper();
  return 1;
}
