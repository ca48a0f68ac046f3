#include "values/identity_text.h"

#include "ktstring.h"
#include "text/number_format.h"
#include "values/narrow_text.h"
#include "values/null_text.h"
#include "values/text_builder.h"

#include <cstring>

namespace kt {
namespace {

constexpr char kWideLetters[] = "BL";  // the fields of 32 bits

unsigned fieldOf(char letter) {
  return static_cast<unsigned>(std::strchr(kIdentityLetters, letter) - kIdentityLetters);
}

bool isWide(char letter) { return std::strchr(kWideLetters, letter) != nullptr; }

// What a directive stands for.
struct Directive {
  enum Kind { kLetter, kField, kNoField } kind;  // kNoField: a positional one without a field of its width
  char letter;                                   // itself, or the field's
};

// Walks a format, directive by directive, and never past its terminator.
class FormatReader {
public:
  FormatReader(const IdentityForm& form, const char* format) : form_(form), at_(format), position_(form.positions) {}

  bool atEnd() const { return *at_ == '\0'; }
  bool atDirective() const { return *at_ == '%'; }
  char takeCharacter() { return *at_++; }

  // At a "%". One that ends the format stands for the character 0.
  Directive takeDirective() {
    const char letter = *++at_;
    skip();
    if (letter == 'h' || letter == 'l') {
      skip();  // "%hu" and "%lu" may be written
      return takePosition(letter == 'l');
    }
    const bool isField = letter != '\0' && std::strchr(form_.letters, letter) != nullptr;
    return {isField ? Directive::kField : Directive::kLetter, letter};
  }

private:
  void skip() { at_ += atEnd() ? 0 : 1; }

  Directive takePosition(bool wantsWide) {
    if (*position_ == '\0') return {Directive::kNoField, '\0'};
    const char letter = *position_++;
    return {isWide(letter) == wantsWide ? Directive::kField : Directive::kNoField, letter};
  }

  const IdentityForm& form_;
  const char* at_;
  const char* position_;
};

// Walks a text by the rules of scanning.
class TextReader {
public:
  explicit TextReader(const NarrowText& text) : at_(text.begin()), end_(text.end()) {}

  bool atEnd() const { return at_ == end_; }
  void skipCharacter() { ++at_; }

  // The number here; false, and nothing is set, without one. Then behind the digits that stand here.
  bool takeNumber(std::uint32_t& number) {
    const bool isNumber = scanInteger(at_, static_cast<unsigned long>(end_ - at_), "%u", number);
    while (!atEnd() && *at_ >= '0' && *at_ <= '9') ++at_;
    return isNumber;
  }

private:
  const char* at_;
  const char* end_;
};

void scanDirective(const Directive& directive, TextReader& text, IdentityFields& fields) {
  if (directive.kind == Directive::kLetter) {
    text.skipCharacter();
    return;
  }
  std::uint32_t number;
  if (!text.takeNumber(number) || directive.kind == Directive::kNoField) return;
  fields[fieldOf(directive.letter)] = isWide(directive.letter) ? number : static_cast<std::uint16_t>(number);
}

}  // namespace

KtString& printIdentity(KtString& out, const IdentityForm& form, const IdentityFields& fields, const char* format) {
  TextBuilder text;
  FormatReader reader(form, format);
  while (!reader.atEnd()) {
    if (!reader.atDirective()) {
      text.put(reader.takeCharacter());
      continue;
    }
    const Directive directive = reader.takeDirective();
    if (directive.kind != Directive::kLetter) {
      text.putNumber(directive.kind == Directive::kField ? fields[fieldOf(directive.letter)] : 0);
    } else if (directive.letter != '\0') {
      text.put(directive.letter);
    }
  }
  return text.moveTo(out);
}

Found scanIdentity(const KtString& in, const IdentityForm& form, const char* format, IdentityFields& fields) {
  fields = {};
  if (beginsWithNullText(in)) return Found::kNull;
  const NarrowText narrow(in);
  if (!narrow.isThere()) return Found::kNoMemory;
  TextReader text(narrow);
  FormatReader reader(form, format);
  while (!reader.atEnd() && !text.atEnd()) {
    if (reader.atDirective()) {
      scanDirective(reader.takeDirective(), text, fields);
    } else {
      reader.takeCharacter();
      text.skipCharacter();
    }
  }
  return Found::kFields;
}

}  // namespace kt
