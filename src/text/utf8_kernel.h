// utf8_kernel.h - UTF-8 to 16-bit characters and back, whole texts at a time.
//
// 16-bit characters are handed over as bytes, in host order at any address. Nothing is read outside the given counts.
#ifndef KT_UTF8_KERNEL_H
#define KT_UTF8_KERNEL_H

#include <cstdint>

namespace kt {

// One character: the bytes used (1 to 6), or -1 for a bad or over-long sequence or one longer than n.
int decodeUtf8Character(const char* in, unsigned long n, std::uint16_t& unit);

// One character: the bytes written (1 to 3).
int encodeUtf8Character(char* out, std::uint16_t unit);

enum class Utf8End { kDone, kZero, kBad };

struct Utf8Decoded {
  unsigned long bytes;  // consumed
  unsigned long units;  // written to out
  Utf8End end;
};

// Decodes n bytes, as long as there is room for a character and fewer than `limit` bytes are consumed; the last
// character may reach beyond limit. zeroEnds: the text has no zero byte, and a longer sequence that stands for the
// character 0 is not consumed and ends it.
// Units of out behind the result may be overwritten, up to `room`.
Utf8Decoded decodeUtf8(char* out, unsigned long room, const char* in, unsigned long n, unsigned long limit,
                       bool zeroEnds);

struct Utf8Encoded {
  unsigned long units;  // consumed
  unsigned long bytes;  // written to out
};

// Encodes at most n units, up to a zero unit or to the first that does not fit into `size` bytes. Nothing is written
// behind the result.
Utf8Encoded encodeUtf8(char* out, unsigned long size, const char* in, unsigned long n);

// Copies bytes from 1 to 127, at most n; returns their number.
unsigned long copyPlain(char* out, const char* in, unsigned long n);

// Bytes that n units take; a zero unit is a character like any other.
unsigned long utf8Length(const char* units, unsigned long n);

}  // namespace kt

#endif
