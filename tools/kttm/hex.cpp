#include "hex.h"

#include "error.h"

#include <cstddef>

namespace tool {
namespace {

int digitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string toHex(const Bytes& bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const unsigned char byte : bytes) {
    text += digits[byte >> 4U];
    text += digits[byte & 15U];
  }
  return text;
}

Bytes fromHex(const std::string& text) {
  Bytes bytes;
  int high = -1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isBlank(text[i])) continue;
    const int digit = digitValue(text[i]);
    if (digit < 0) throw Error("not a hexadecimal digit at position " + std::to_string(i + 1) + " of the hex text");
    if (high >= 0) bytes.push_back(static_cast<unsigned char>(high * 16 + digit));
    high = high >= 0 ? -1 : digit;
  }
  if (high >= 0) throw Error("an odd number of hexadecimal digits: the last byte is cut in half");
  return bytes;
}

}  // namespace tool
