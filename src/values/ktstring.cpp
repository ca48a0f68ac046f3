// ktstring.cpp - making, assigning and giving up strings; what they answer about themselves.
#include "ktstring.h"

#include "string_edit.h"
#include "text/string_block.h"
#include "text/text_units.h"
#include "values/append_short.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

static_assert(offsetof(KtString, buffer) == 0 && offsetof(KtString, bufferSize) == sizeof(char*));
static_assert(offsetof(KtString, codeSet) == sizeof(char*) + 2 && offsetof(KtString, language) == sizeof(char*) + 3);

static_assert(kt::kMaxTextBytes == KtMAX_TEXT_BYTES);

namespace {

constexpr unsigned char kNullLanguage = 254;
constexpr unsigned char kNullCodeSet = 254;
constexpr unsigned short kToTerminator = 65535;

const char* bytesOf(const unsigned short* text) { return reinterpret_cast<const char*>(text); }

unsigned char defaultLanguage() { return KtLanguageContext::GetDefaultLanguage(); }

[[gnu::noinline]] KtString& assignAnyText(KtString& s, const char* text) {
  kt::assignText(s, text, text == nullptr ? 0 : std::strlen(text));
  return s;
}

}  // namespace

KtString::KtString() : KtString(KtLanguageContext::GetDefaultCodeSet(), defaultLanguage()) {}

KtString::KtString(unsigned char set, unsigned char lang)
    : buffer(nullptr), bufferSize(0), codeSet(set), language(lang) {}

KtString::KtString(const KtString& other) : KtString(other.codeSet, other.language) { *this = other; }

KtString::KtString(KtString&& other) noexcept : KtString(other.codeSet, other.language) { Destruct(other); }

KtString::KtString(char ch) : KtString(kt::narrowSet(), defaultLanguage()) { *this += ch; }

KtString::KtString(unsigned short ch) : KtString(kt::wideSet(), defaultLanguage()) { *this += ch; }

KtString::KtString(const char* text) : KtString(kt::narrowSet(), defaultLanguage()) { *this = text; }

KtString::KtString(const unsigned short* text) : KtString(kt::wideSet(), defaultLanguage()) { *this = text; }

KtString::KtString(const char* text, unsigned short n) : KtString(kt::narrowSet(), defaultLanguage()) {
  if (n == kToTerminator) {
    *this = text;
  } else {
    Rebuild(text, codeSet, 0, 0, n, 1, RebuildMode::kRebuild);
  }
}

KtString::KtString(const unsigned short* text, unsigned short n) : KtString(kt::wideSet(), defaultLanguage()) {
  if (n == kToTerminator) {
    *this = text;
  } else {
    Rebuild(bytesOf(text), codeSet, 0, 0, n, 1, RebuildMode::kRebuild);
  }
}

KtString::~KtString() { Destroy(); }

int KtString::Init() {
  buffer = nullptr;
  bufferSize = 0;
  codeSet = KtLanguageContext::GetDefaultCodeSet();
  language = defaultLanguage();
  return 0;
}

void KtString::d_deactivate() { Destroy(); }

KtString& KtString::Destruct(KtString& other) {
  if (this == &other) return *this;
  std::free(buffer);
  buffer = other.buffer;
  bufferSize = other.bufferSize;
  codeSet = other.codeSet;
  language = other.language;
  other.buffer = nullptr;
  other.bufferSize = 0;
  return *this;
}

// The copy has what the text holds behind an inner zero, too: it stores as the original does.
KtString& KtString::operator=(const KtString& other) {
  if (this == &other) return *this;
  if (other.buffer == nullptr) {
    kt::release(*this);
    codeSet = other.codeSet;
    language = other.language;
    return *this;
  }
  const unsigned long units = other.bufferSize / other.CharSize();
  kt::assign(*this, other.buffer, other.codeSet, other.language, units == 0 ? 0 : units - 1,
             kt::mayHoldZero(other.buffer, other.bufferSize));
  return *this;
}

KtString& KtString::operator=(KtString&& other) noexcept { return Destruct(other); }

KtString& KtString::operator=(const char* text) {
  if (text == nullptr || *text != '\0' || kt::shortBlock(*this) == nullptr) return assignAnyText(*this, text);
  kt::setShort(*this, 0);  // what a text is emptied with before it is printed to
  return *this;
}

KtString& KtString::operator=(const unsigned short* text) {
  kt::assign(*this, bytesOf(text), kt::wideSet(), defaultLanguage(), text == nullptr ? 0 : kt::unitLength(text));
  return *this;
}

const char* KtString::StrGet() const {
  alignas(unsigned short) static constexpr char kEmpty[2] = {};
  return buffer == nullptr ? kEmpty : buffer;
}

unsigned short KtString::Len() const {
  if (buffer == nullptr) return 0;
  const unsigned long width = CharSize();
  return static_cast<unsigned short>(kt::unitLength(buffer, width, bufferSize / width));
}

int KtString::IsEmpty() const { return buffer == nullptr || kt::unitLength(buffer, CharSize(), 1) == 0; }

int KtString::IsNullValue() const { return language == kNullLanguage || (codeSet == kNullCodeSet && language == 0); }

int KtString::SetNullValue() {
  kt::release(*this);
  codeSet = 0;
  language = kNullLanguage;
  return 0;
}

KtChar KtString::operator[](int i) const {
  if (i < 0 || i > Len()) return {0, 255, 255};
  const bool isTerminator = buffer == nullptr;
  return {isTerminator ? static_cast<unsigned short>(0) : kt::unitAt(buffer, static_cast<unsigned long>(i), CharSize()),
          kt::characterLabel(*this), language};
}
