// append_whole.h - texts that are appended in many steps: as a whole, or not at all where memory ran out.
#ifndef KT_APPEND_WHOLE_H
#define KT_APPEND_WHOLE_H

#include "ktstring.h"
#include "text/allocation_watch.h"
#include "values/string_edit.h"

#include <optional>

namespace kt {

// While it lives, all steps are taken; at its end, out is cut back to what it had if one of them lacked memory: a part is
// none.
class AppendWhole {
public:
  explicit AppendWhole(KtString& out) : out_(out), before_(out.Len()) {}
  AppendWhole(const AppendWhole&) = delete;
  AppendWhole& operator=(const AppendWhole&) = delete;
  ~AppendWhole() {
    if (watch_.hasFailed()) out_.Cut(before_, -1);
  }

private:
  const AllocationWatch watch_;
  KtString& out_;
  const unsigned short before_;
};

// A format that stays while out grows: a copy where it lies in the text of out, empty where memory for one ran out.
class LastingFormat {
public:
  LastingFormat(const KtString& out, const char* format) : text_(format) {
    if (liesIn(out, format)) [[unlikely]]
      text_ = copy_.emplace(format).StrGet();
  }
  LastingFormat(const LastingFormat&) = delete;
  LastingFormat& operator=(const LastingFormat&) = delete;

  const char* text() const { return text_; }

private:
  std::optional<KtString> copy_;
  const char* text_;
};

}  // namespace kt

#endif
