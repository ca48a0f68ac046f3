// hex.h - bytes as hexadecimal text.
#ifndef KTTM_TOOL_HEX_H
#define KTTM_TOOL_HEX_H

#include <string>
#include <vector>

namespace tool {

using Bytes = std::vector<unsigned char>;

inline bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string toHex(const Bytes& bytes);  // lower case, no blanks

// Blanks and line ends between digits are skipped. Throws Error for anything else and for an odd number of digits.
Bytes fromHex(const std::string& text);

}  // namespace tool

#endif
