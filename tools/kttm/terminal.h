// terminal.h - text of the terminal, which is UTF-8, and strings of the library.
#ifndef KTTM_TOOL_TERMINAL_H
#define KTTM_TOOL_TERMINAL_H

#include <kttm.h>

#include <optional>
#include <string>
#include <vector>

namespace tool {

constexpr unsigned char kUnicode = 253;  // the code set of 16-bit characters

// How a text becomes a string.
struct TextOptions {
  std::optional<unsigned char> codeSet;  // not given: ISO 8859-1 where all characters fit, else Unicode
  unsigned char language = KtString::GetDefaultLanguage();
};

// Throws Error for invalid UTF-8, characters beyond 16 bits or missing in the code set, zero characters, and texts that
// are longer than the library converts.
KtString fromTerminal(const std::string& text, const TextOptions& options);
std::string toTerminal(const KtString& text);

// The same as 16-bit character codes, in texts of any length; zero characters pass.
std::vector<unsigned short> charactersOf(const std::string& text);
std::string toTerminal(const std::vector<unsigned short>& characters);

// A print or scan format as the library takes it: 8-bit characters of the default code set. Throws Error as above.
std::string formatFrom(const std::string& text);

std::string codePoint(char32_t character);  // "U+00E9"

// A text with nothing in it that a terminal would act on, but for tabs: a line end becomes \n, other control characters
// and bytes that are no UTF-8 become \x1b, control characters of two bytes \u009b.
std::string visible(const std::string& text);

// "..." around a visible text for a message, cut when it is long.
std::string quoted(const std::string& text);

}  // namespace tool

#endif
