// narrow_text.h - the text of a string in 8-bit characters, for the scanners.
#ifndef KT_NARROW_TEXT_H
#define KT_NARROW_TEXT_H

#include "ktstring.h"
#include "text/string_block.h"
#include "text/text_units.h"

#include <cstring>
#include <optional>

namespace kt {

constexpr unsigned kLongestShort = 25;                                      // size of a short text, terminator included
static_assert(kLongestShort < kSmallestBlock && 3 + 16 <= kSmallestBlock);  // readable: a sign, 0x, sixteen digits

// Whether a string holds something in 8-bit characters, in the smallest of blocks.
inline bool isShortText(const KtString& in) {
  if (in.CharSize() != 1 || in.bufferSize < 2 || in.bufferSize > kLongestShort) return false;
  return !mayHoldZero(in.buffer, in.bufferSize);
}

// What a scanner found in a text. Without memory the value stays as it was.
enum class Found { kFields, kNull, kNoMemory };

// A view of a string's text, converted where it has 16-bit characters, with a terminator. Lives no longer than the string.
//
// Only a long text of 16-bit characters takes memory. Without it the text is an empty one that is not there: who changes
// a value by the text leaves it as it was.
class NarrowText {
public:
  explicit NarrowText(const KtString& in) {
    const KtString* source = &in;
    if (in.CharSize() != 1) {
      length_ = in.Len();
      if (length_ < sizeof local_) {
        narrow(in);
        return;
      }
      source = &(copy_.emplace(narrowSet(), in.language) += in);
    }
    const bool isPlain = source->buffer != nullptr && !mayHoldZero(source->buffer, source->bufferSize);
    length_ = isPlain ? source->bufferSize - 1u : source->Len();
    text_ = isPlain ? source->buffer : source->StrGet();
  }
  NarrowText(const NarrowText&) = delete;
  NarrowText& operator=(const NarrowText&) = delete;

  bool isThere() const { return !copy_ || copy_->buffer != nullptr; }
  const char* begin() const { return text_; }
  const char* end() const { return text_ + length_; }
  unsigned long length() const { return length_; }

  bool equals(const char* text) const { return std::strlen(text) == length_ && std::memcmp(text_, text, length_) == 0; }

private:
  void narrow(const KtString& in) {
    if (length_ != 0) mapUnits(local_, narrowSet(), in.buffer, in.codeSet, length_);
    local_[length_] = '\0';
    text_ = local_;
  }

  std::optional<KtString> copy_;
  char local_[128];
  const char* text_;
  unsigned long length_;
};

}  // namespace kt

#endif
