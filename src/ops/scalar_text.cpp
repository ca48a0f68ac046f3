#include "ops/scalar_text.h"

#include "ktstring.h"
#include "ops/scalar_values.h"
#include "text/number_format.h"

#include <cstring>

namespace kt {
namespace {

// The text of `in` in 8-bit characters; `copy` holds it when it has to be converted.
const char* narrowText(const KtString& in, KtString& copy, unsigned long& length) {
  const KtString* source = &in;
  if (in.CharSize() != 1) {
    copy += in;
    source = &copy;
  }
  length = source->Len();
  return source->StrGet();
}

// 7-bit printable characters: what every locale agrees on.
bool isPrintable(unsigned char ch) { return ch >= 0x20 && ch < 0x7F; }

// Scans `in` by scan(text, length) into a value of another width and keeps the bits that are stored.
template <class Stored, class Number, class Scan>
void* scanValue(void* values, const KtString& in, Number number, Scan scan) {
  if (values == nullptr) return nullptr;
  KtString copy;
  unsigned long length;
  const char* text = narrowText(in, copy, length);
  if (scan(text, length, number)) {
    const auto stored = static_cast<Stored>(number);
    std::memcpy(values, &stored, sizeof stored);
  }
  return values;
}

template <class Stored>
void* scanStoredInteger(void* values, const KtString& in, const char* format) {
  return scanValue<Stored>(values, in, std::uint32_t{0},
                           [format](const char* text, unsigned long length, auto& number) {
                             return scanInteger(text, length, format, number);
                           });
}

template <class Stored>
KtString& printStoredInteger(KtString& out, const void* values, const char* format) {
  if (values == nullptr) return out;
  NumberText text;
  printInteger(text, format, readValue<Stored>(values));
  return out = text.text;
}

}  // namespace

KtString& printChars(KtString& out, void* values, const char* format, unsigned long count) {
  out = "";
  if (values == nullptr) return out;
  const auto* chars = static_cast<const unsigned char*>(values);
  NumberText text;
  for (unsigned long i = 0; i < count; ++i) {
    if (isPrintable(chars[i])) {
      printInteger(text, format, chars[i]);
    } else {
      printInteger(text, "0x%02x", chars[i]);
    }
    out += text.text;
  }
  return out;
}

void* scanChars(void* values, KtString& in, const char* format, unsigned long count) {
  if (values == nullptr) return nullptr;
  KtString copy;
  unsigned long length;
  const char* text = narrowText(in, copy, length);
  auto* chars = static_cast<unsigned char*>(values);
  // One character of text an element, even behind a number of several digits.
  for (unsigned long i = 0; i < count && i < length; ++i) {
    std::uint32_t code;
    if (scanHexCode(text + i, length - i, code) || scanInteger(text + i, length - i, format, code)) {
      chars[i] = static_cast<unsigned char>(code);
    }
  }
  return values;
}

KtString& printShort(KtString& out, void* values, const char* format, unsigned long) {
  return printStoredInteger<std::int16_t>(out, values, format);
}

void* scanShort(void* values, KtString& in, const char* format, unsigned long) {
  return scanStoredInteger<std::uint16_t>(values, in, format);
}

KtString& printLong(KtString& out, void* values, const char* format, unsigned long) {
  return printStoredInteger<std::int32_t>(out, values, format);
}

void* scanLong(void* values, KtString& in, const char* format, unsigned long) {
  return scanStoredInteger<std::uint32_t>(values, in, format);
}

KtString& printFloat(KtString& out, void* values, const char* format, unsigned long) {
  if (values == nullptr) return out;
  NumberText text;
  kt::printFloat(text, format, readValue<float>(values));
  return out = text.text;
}

void* scanFloat(void* values, KtString& in, const char* format, unsigned long) {
  return scanValue<float>(values, in, 0.0F, [format](const char* text, unsigned long length, float& number) {
    return kt::scanFloat(text, length, format, number);
  });
}

KtString& printDouble(KtString& out, void* values, const char* format, unsigned long) {
  if (values == nullptr) return out;
  NumberText text;
  kt::printDouble(text, format, readValue<double>(values));
  return out = text.text;
}

void* scanDouble(void* values, KtString& in, const char* format, unsigned long) {
  return scanValue<double>(values, in, 0.0, [format](const char* text, unsigned long length, double& number) {
    return kt::scanDouble(text, length, format, number);
  });
}

}  // namespace kt
