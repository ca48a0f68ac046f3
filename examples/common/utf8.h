// utf8.h - strings as UTF-8, for terminals and files.
#ifndef EXAMPLES_COMMON_UTF8_H
#define EXAMPLES_COMMON_UTF8_H

#include <kttm.h>

#include <string>

namespace examples {

// UTF-8 of a string of any code set.
inline std::string utf8Of(const KtString& text) {
  std::string utf8(static_cast<std::size_t>(text.Len()) * 3 + 1, '\0');
  const long bytes = KtString2KtMBS(text, utf8.data(), static_cast<long>(utf8.size()));
  utf8.resize(bytes < 0 ? 0 : static_cast<std::size_t>(bytes));
  return utf8;
}

}  // namespace examples

#endif
