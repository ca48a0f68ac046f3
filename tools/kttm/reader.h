// reader.h - terminal text to a value, with an answer to "could the type read this?" that scanning itself never gives.
#ifndef KTTM_TOOL_READER_H
#define KTTM_TOOL_READER_H

#include "terminal.h"
#include "values.h"

#include <optional>
#include <string>

namespace tool {

struct ReadOptions {
  std::optional<std::string> format;  // as people write it; none: the type's own
  bool converted = false;             // read the text of the type's string conversion instead
  bool lenient = false;               // take whatever a text becomes
  TextOptions text;
};

// Reads texts as values of one type.
//
// Scanning is quiet: a text that does not fit leaves the value as it was, or makes some value of it. So a text is
// scanned into two values that start out differently: whatever it does not set shows. The value is then printed under
// the same format and has to say what the text says: the same text but for case, blanks and leading zeros, or the same
// number (which "1e3" and "0x3e8" are) as that print, the one under the type's own format, or the type's string
// conversion tells. Where the format names no field at all ("noop") and the value prints as a word, the type has words
// of its own: there a text is refused when it becomes what nonsense becomes, unless it prints back; "0", the text that
// the library itself scans for a zero value, is always taken.
class Reader {
public:
  Reader(const Type& type, ReadOptions options);

  // Throws Error with the reason. The value at `target` is replaced.
  void read(const std::string& text, void* target) const;
  Values readAll(const std::vector<std::string>& texts) const;

  // A value in the form that texts are read in.
  std::string shown(void* value) const { return printed(type_, value, format(), options_.converted); }

private:
  const char* format() const { return format_.c_str(); }
  void convert(const std::string& text, void* target) const;
  void scan(const std::string& text, void* target) const;
  bool scanDecides(const std::string& text) const;
  bool tellsTheSame(const std::string& text, void* value) const;
  bool saysNumber(const std::string& text, void* value) const;
  bool isOwnWord(const std::string& text, void* value) const;
  [[noreturn]] void refuse(const std::string& text, const std::string& becomes) const;

  Type type_;
  ReadOptions options_;
  std::string format_;  // as the library takes it
  Bytes nonsense_;      // what a text becomes that nothing can be read from
};

}  // namespace tool

#endif
