// typed_size.cpp - the disk sizes of the typed values: products that wrap, as the stores' do.
#include "format_code.h"
#include "ktbs.h"

unsigned long CharSizeGet(const void*, unsigned char, unsigned char, unsigned long count) { return count; }
unsigned long ShortSizeGet(const void*, unsigned char, unsigned char, unsigned long count) { return count * 2; }
unsigned long LongSizeGet(const void*, unsigned char, unsigned char, unsigned long count) { return count * 4; }
unsigned long FloatSizeGet(const void*, unsigned char, unsigned char, unsigned long count) { return count * 4; }
unsigned long DoubleSizeGet(const void*, unsigned char, unsigned char, unsigned long count) { return count * 8; }
unsigned long IntSizeGet(const void*, unsigned char, unsigned char format, unsigned long count) {
  return count * (kt::isShortInt(format) ? kt::kShortIntWidth : kt::kIntWidth);
}

unsigned long CharNullSizeGet(unsigned long count) { return count; }
unsigned long ShortNullSizeGet(unsigned long count) { return count * 2; }
unsigned long LongNullSizeGet(unsigned long count) { return count * 4; }
unsigned long FloatNullSizeGet(unsigned long count) { return count * 4; }
unsigned long DoubleNullSizeGet(unsigned long count) { return count * 8; }
unsigned long IntNullSizeGet(unsigned long count) { return count * kt::kIntWidth; }
