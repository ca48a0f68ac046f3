// ktblob_convert.cpp - the private conversions of blobs: decimal text, strings, length-prefixed images.
#include "ktblob.h"

#include "ktstring.h"
#include "text/number_format.h"

#include <cstring>

namespace {

void setToText(KtBlob& blob, const char* text) { blob.SetTo(text, static_cast<long>(std::strlen(text)) + 1); }

// A number that fits 32 bits, and so a format that the number printer takes.
void setToNumber(KtBlob& blob, const char* format, std::int32_t number) {
  kt::NumberText text;
  kt::printInteger(text, format, number);
  setToText(blob, text.text);
}

std::int32_t numberIn(const KtBlob& blob) {
  std::uint32_t number = 0;
  const char* text = blob.Seek(0, 1);
  if (text != nullptr) kt::scanInteger(text, static_cast<unsigned long>(blob.Length()), "%d", number);
  return static_cast<std::int32_t>(number);
}

}  // namespace

KtBlob::KtBlob(Converted, const char* text) : KtBlob() { setToText(*this, text); }
KtBlob::KtBlob(Converted, int number) : KtBlob() { setToNumber(*this, "%d", number); }
KtBlob::KtBlob(Converted, short number) : KtBlob() { setToNumber(*this, "%hd", number); }
// The low 32 bits: what a stored long holds.
KtBlob::KtBlob(Converted, unsigned long number) : KtBlob() {
  setToNumber(*this, "%lu", static_cast<std::int32_t>(static_cast<std::uint32_t>(number)));
}
KtBlob::KtBlob(Converted, double number) : KtBlob() {
  kt::NumberText text;
  kt::printDouble(text, "%lf", number);
  setToText(*this, text.text);
}
KtBlob::KtBlob(Converted, const KtString& text) : KtBlob() {
  if (text.IsNullValue()) {
    SetNullValue();
  } else {
    SetTo(text.buffer, text.bufferSize);
  }
}

KtBlob::operator int() const { return numberIn(*this); }
KtBlob::operator short() const { return static_cast<short>(numberIn(*this)); }
KtBlob::operator long() const { return numberIn(*this); }
KtBlob::operator double() const {
  double number = 0;
  const char* text = Seek(0, 1);
  if (text != nullptr) kt::scanDouble(text, static_cast<unsigned long>(Length()), "%lf", number);
  return number;
}

KtBlob& KtBlob::operator=(char* image) {
  std::int32_t length;
  std::memcpy(&length, image, sizeof length);
  return SetTo(image + sizeof length, length);
}
