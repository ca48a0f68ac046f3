// text_builder.h - a text that grows character by character and then replaces a string.
#ifndef KT_TEXT_BUILDER_H
#define KT_TEXT_BUILDER_H

#include "ktstring.h"
#include "values/string_edit.h"

#include <charconv>
#include <cstdint>

namespace kt {

// Keeps its own characters, so that a format in the target string's buffer stays readable to its end.
class TextBuilder {
public:
  void put(char ch) {
    if (used_ == sizeof text_) flush();
    text_[used_++] = ch;
  }
  void putNumber(std::uint32_t number) {
    if (sizeof text_ - used_ < kMaxDecimals) flush();
    used_ = static_cast<unsigned long>(std::to_chars(text_ + used_, text_ + sizeof text_, number).ptr - text_);
  }
  // The text becomes that of `out`, in the default 8-bit code set and language. Without memory for all of it out stays.
  KtString& moveTo(KtString& out) {
    if (!flushed_) {
      assignText(out, text_, used_);
      return out;
    }
    flush();
    return isWhole_ ? out.Destruct(front_) : out;
  }

private:
  static constexpr unsigned long kMaxDecimals = 10;

  void flush() {
    isWhole_ = appendAscii(front_, text_, used_) && isWhole_;
    used_ = 0;
    flushed_ = true;
  }

  char text_[240];
  unsigned long used_ = 0;
  bool flushed_ = false;
  bool isWhole_ = true;
  KtString front_{KtString::GetDefault8CodeSet(), KtString::GetDefaultLanguage()};
};

}  // namespace kt

#endif
