// null_text.cpp - recognising the text that stands for null.
#include "values/null_text.h"

#include "text/text_units.h"

namespace kt {
namespace {

// The characters of a string by their Unicode numbers, 0 from its end on: one that another code set lacks is like no
// character of that set.
class Characters {
public:
  explicit Characters(const KtString& s)
      : text_(s.buffer),
        width_(s.CharSize()),
        limit_(s.bufferSize / width_),
        table_(KtCodeSet::Get(s.codeSet).ToUnicodeTable()) {}

  std::uint16_t at(unsigned long index) const {
    if (index >= limit_) return 0;
    const std::uint16_t unit = unitAt(text_, index, width_);
    return table_ == nullptr ? unit : table_[unit];
  }

private:
  const char* text_;
  unsigned long width_;
  unsigned long limit_;
  const unsigned short* table_;  // null: they are Unicode
};

}  // namespace

bool beginsWithNullText(const KtString& text) {
  if (differAtOnce(text, nullPrintString())) return false;
  const Characters null(nullPrintString());
  const Characters given(text);
  for (unsigned long i = 0; null.at(i) != 0; ++i) {
    if (given.at(i) != null.at(i)) return false;
  }
  return true;
}

}  // namespace kt
