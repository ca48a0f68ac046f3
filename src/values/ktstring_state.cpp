// ktstring_state.cpp - giving up a text, and the strings that the process shares.
#include "null_text.h"
#include "string_edit.h"
#include "text/string_block.h"
#include "text/text_units.h"

#include <cstring>

// Out of the destructor's sight: the zeros must reach memory, a string may be destroyed twice.
void KtString::Destroy() {
  kt::release(*this);
  codeSet = 0;
  language = 0;
}

const KtString& KtString::EmptyString() {
  static const KtString empty;
  return empty;
}

namespace kt {

namespace {

// A string whose first text lies in itself, so that it is there when memory is exhausted, too: a null print string that
// came out empty would make a null of every text that is scanned.
class StandingText {
public:
  explicit StandingText(const char* text) : string_(narrowSet(), KtLanguageContext::GetDefaultLanguage()) {
    const std::size_t length = std::strlen(text);
    std::memcpy(block_, text, length);
    string_.buffer = block_;
    string_.bufferSize = static_cast<std::uint16_t>(length + 1);
  }
  StandingText(const StandingText&) = delete;
  StandingText& operator=(const StandingText&) = delete;
  ~StandingText() { forgetFirst(); }

  const KtString& get() const { return string_; }

  void replace(const KtString& text) {
    KtString copy(text);
    if (copy.buffer == nullptr && text.Len() != 0) return;  // memory ran out
    forgetFirst();
    string_.Destruct(copy);
  }

private:
  // Before what would free the text.
  void forgetFirst() {
    if (string_.buffer == block_) string_.buffer = nullptr;
  }

  char block_[kSmallestBlock] = {};
  KtString string_;
};

StandingText& standingNullText() {
  static StandingText text("{NULL}");
  return text;
}

}  // namespace

const KtString& nullPrintString() { return standingNullText().get(); }

void setNullPrintString(const KtString& text) { standingNullText().replace(text); }

const KtString& zeroText() {
  static const StandingText text("0");
  return text.get();
}

}  // namespace kt
