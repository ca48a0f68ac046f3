#include "ops/scalar_text.h"

#include "ktstring.h"
#include "ops/scalar_values.h"
#include "text/format_or.h"
#include "text/number_format.h"
#include "text/short_integer.h"
#include "values/append_short.h"
#include "values/narrow_text.h"
#include "values/string_edit.h"

#include <cstring>

namespace kt {
namespace {

// The formats of the rows that lend these functions to others (BlockId's print is that of long): what a caller without a
// format gets.
constexpr char kCharFormat[] = "%c";
constexpr char kShortFormat[] = "%hd";
constexpr char kLongFormat[] = "%ld";
constexpr char kFloatFormat[] = "%f";
constexpr char kDoubleFormat[] = "%lf";

// 7-bit printable characters: what every locale agrees on.
bool isPrintable(unsigned char ch) { return ch >= 0x20 && ch < 0x7F; }

// Scans `in` by scan(text, length, number).
template <class Number, class Scan>
bool scanValue(void* value, const KtString& in, Scan scan) {
  const NarrowText text(in);
  Number number;
  if (!scan(text.begin(), text.length(), number)) return false;
  std::memcpy(value, &number, sizeof number);
  return true;
}

[[gnu::noinline]] bool scanAnyInteger(const KtString& in, const char* format, std::uint32_t& number) {
  const NarrowText text(in);
  return scanInteger(text.begin(), text.length(), format, number);
}

// Keeps the bits that are stored.
template <class Stored>
bool scanStoredInteger(void* value, const KtString& in, const char* format) {
  std::uint32_t number;
  const bool matches = isShortText(in) ? scanPaddedInteger(in.buffer, in.bufferSize - 1u, format, number)
                                       : scanAnyInteger(in, format, number);
  if (!matches) return false;
  const auto stored = static_cast<Stored>(number);
  std::memcpy(value, &stored, sizeof stored);
  return true;
}

bool scanCharacter(unsigned char& value, const char* text, unsigned long length, const char* format) {
  std::uint32_t code;
  if (!scanHexCode(text, length, code) && !scanInteger(text, length, format, code)) return false;
  value = static_cast<unsigned char>(code);
  return true;
}

// The body of a row's scan.
template <bool (*kScan)(void*, const KtString&, const char*), const char* kOwn>
void* scanFirst(void* values, const KtString& in, const char* format) {
  if (values != nullptr) kScan(values, in, formatOr(format, kOwn));
  return values;
}

KtString& assignNumber(KtString& out, const NumberText& text) {
  assignText(out, text.text, text.length);
  return out;
}

[[gnu::noinline]] KtString& printLongInteger(KtString& out, const char* format, std::int32_t value) {
  NumberText text;
  printInteger(text, format, value);
  return assignNumber(out, text);
}

static_assert(kShortBlock >= kShortNumberRoom && kShortBlock > kShortNumber + 2);

KtString& printNumber(KtString& out, const char* format, std::int32_t value) {
  char* const block = shortBlock(out);
  if (block == nullptr) return printLongInteger(out, format, value);
  const char* const end = printShortInteger(block, format, value);
  if (end == nullptr) return printLongInteger(out, format, value);
  setShort(out, static_cast<unsigned long>(end - block));
  return out;
}

template <class Stored>
KtString& printStoredInteger(KtString& out, const void* values, const char* format) {
  if (values == nullptr) return out;
  return printNumber(out, formatOr(format, sizeof(Stored) == 2 ? kShortFormat : kLongFormat),
                     readValue<Stored>(values));
}

}  // namespace

namespace {

// Text that lacks a part for want of memory is none: out becomes empty.
void replaceByChars(KtString& out, const unsigned char* chars, const char* format, unsigned long count) {
  out = "";
  NumberText text;
  for (unsigned long i = 0; i < count; ++i) {
    printInteger(text, isPrintable(chars[i]) ? format : "0x%02x", chars[i]);
    if (!append(out, text.text, narrowSet(), text.length)) return release(out);
  }
}

// Emptying out would overwrite what lies in it.
[[gnu::noinline]] KtString& replaceByOwnChars(KtString& out, const unsigned char* chars, const char* format,
                                              unsigned long count) {
  KtString text;
  replaceByChars(text, chars, format, count);
  return out.Destruct(text);
}

}  // namespace

KtString& printChars(KtString& out, void* values, const char* format, unsigned long count) {
  const auto* chars = static_cast<const unsigned char*>(values);
  if (chars == nullptr) return out = "";
  format = formatOr(format, kCharFormat);
  const bool readsOwn = liesIn(out, static_cast<const char*>(values)) || liesIn(out, format);
  if (readsOwn) return replaceByOwnChars(out, chars, format, count);
  replaceByChars(out, chars, format, count);
  return out;
}

void* scanChars(void* values, KtString& in, const char* format, unsigned long count) {
  if (values == nullptr) return nullptr;
  format = formatOr(format, kCharFormat);
  const NarrowText text(in);
  auto* chars = static_cast<unsigned char*>(values);
  // One character of text an element, even behind a number of several digits.
  for (unsigned long i = 0; i < count && i < text.length(); ++i) {
    scanCharacter(chars[i], text.begin() + i, text.length() - i, format);
  }
  return values;
}

bool scanCharValue(void* value, const KtString& in, const char* format) {
  const NarrowText text(in);
  return text.length() != 0 && scanCharacter(*static_cast<unsigned char*>(value), text.begin(), text.length(), format);
}

KtString& printShort(KtString& out, void* values, const char* format, unsigned long) {
  return printStoredInteger<std::int16_t>(out, values, format);
}

bool scanShortValue(void* value, const KtString& in, const char* format) {
  return scanStoredInteger<std::uint16_t>(value, in, format);
}

void* scanShort(void* values, KtString& in, const char* format, unsigned long) {
  return scanFirst<scanShortValue, kShortFormat>(values, in, format);
}

KtString& printLong(KtString& out, void* values, const char* format, unsigned long) {
  return printStoredInteger<std::int32_t>(out, values, format);
}

bool scanLongValue(void* value, const KtString& in, const char* format) {
  return scanStoredInteger<std::uint32_t>(value, in, format);
}

void* scanLong(void* values, KtString& in, const char* format, unsigned long) {
  return scanFirst<scanLongValue, kLongFormat>(values, in, format);
}

KtString& printFloat(KtString& out, void* values, const char* format, unsigned long) {
  if (values == nullptr) return out;
  NumberText text;
  kt::printFloat(text, formatOr(format, kFloatFormat), readValue<float>(values));
  return assignNumber(out, text);
}

bool scanFloatValue(void* value, const KtString& in, const char* format) {
  return scanValue<float>(value, in, [format](const char* text, unsigned long length, float& number) {
    return kt::scanFloat(text, length, format, number);
  });
}

void* scanFloat(void* values, KtString& in, const char* format, unsigned long) {
  return scanFirst<scanFloatValue, kFloatFormat>(values, in, format);
}

KtString& printDouble(KtString& out, void* values, const char* format, unsigned long) {
  if (values == nullptr) return out;
  NumberText text;
  kt::printDouble(text, formatOr(format, kDoubleFormat), readValue<double>(values));
  return assignNumber(out, text);
}

bool scanDoubleValue(void* value, const KtString& in, const char* format) {
  return scanValue<double>(value, in, [format](const char* text, unsigned long length, double& number) {
    return kt::scanDouble(text, length, format, number);
  });
}

void* scanDouble(void* values, KtString& in, const char* format, unsigned long) {
  return scanFirst<scanDoubleValue, kDoubleFormat>(values, in, format);
}

}  // namespace kt
