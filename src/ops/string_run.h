// string_run.h - walks the strings of a run of known or unknown length, in any form but that of index keys, without ever
// leaving the run.
//
// next(text) gives the next string and false where the run holds no further one in full; more() tells whether the run
// goes on behind the strings taken. Kind: see string_kinds.h.
#ifndef KT_OPS_STRING_RUN_H
#define KT_OPS_STRING_RUN_H

#include "ops/string_kinds.h"

namespace kt {

template <class Kind>
class MemoryRun {
public:
  using Item = TextRef;

  // bits: of a format, under which the code sets are seen; 0 for their own.
  MemoryRun(const void* strings, unsigned long length, unsigned char bits = 0)
      : at_(static_cast<const KtString*>(strings)), left_(knownLength(length)), bits_(bits) {}

  bool next(TextRef& text) {
    if (left_ < sizeof(KtString)) return false;
    text = textOf(*at_, bits_);
    Kind::see(text);
    ++at_;
    left_ -= sizeof(KtString);
    return true;
  }
  bool more() const { return left_ != 0; }

private:
  const KtString* at_;
  unsigned long left_;
  unsigned char bits_;
};

template <class Kind>
class RecordRun {
public:
  using Item = TextRef;

  // format: byte order, and the bits under which stored code sets are seen.
  RecordRun(const void* records, unsigned long length, unsigned char format)
      : at_(static_cast<const unsigned char*>(records)), left_(knownLength(length)), format_(format) {}

  bool next(TextRef& text) {
    if (inOlder_) return !older_.atEnd() && takeOlder(text);
    if (left_ < kLengthBytes) return false;
    const Record record = recordAt(at_, format_);
    if (record.size() > left_) return false;
    at_ += record.size();
    left_ -= record.size();
    if (record.isOlder()) {
      inOlder_ = true;
      older_ = OlderTexts(record);
      return takeOlder(text);
    }
    text = textOf(record, record.textBytes(), format_);
    Kind::see(text);
    return true;
  }

  // What is there of a last record that the run does not hold in full.
  bool takeRest(TextRef& text) {
    if (inOlder_ || left_ < kTextAt) return false;
    const Record record = recordAt(at_, format_);
    text = textOf(record, std::min(record.textBytes(), left_ - kTextAt), format_);
    Kind::see(text);
    left_ = 0;
    return true;
  }

  bool more() const { return inOlder_ ? !older_.atEnd() : left_ >= kLeastRest; }

private:
  bool takeOlder(TextRef& text) {
    unsigned long bytes;
    text.text = older_.take(bytes);
    text.limit = bytes;
    text.flag = 1;
    Kind::seeOlder(text, format_);
    return true;
  }

  const unsigned char* at_;
  unsigned long left_;
  OlderTexts older_{nullptr, nullptr};
  unsigned char format_;
  bool inOlder_ = false;
};

// Calls use(run) with the run that the format describes.
template <class Kind, class Use>
decltype(auto) withStringRun(const void* values, unsigned long length, unsigned char format, Use&& use) {
  if (isMemoryForm(format)) return use(MemoryRun<Kind>(values, length));
  return use(RecordRun<Kind>(values, length, format));
}

}  // namespace kt

#endif
