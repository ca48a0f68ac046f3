// string_record.h - the disk records of strings: the one place that knows their layout.
//
// Current form, one record a string:
//   0    2  L, the bytes that follow this field, in the byte order of the format code
//   2    1  code set
//   3    1  language
//   4  L-4  characters, without terminator; 16-bit ones big-endian under code 2, else little-endian
//   L    1  0x00
//   L+1  1  0xFF, the mark of this form
// Older form, one record a run:
//   0    2  L
//   2    L  texts of bytes, each with a terminator; hence the last byte, at L+1, is 0x00
// docs/formats/strings.md shows both, byte by byte.
#ifndef KT_OPS_STRING_RECORD_H
#define KT_OPS_STRING_RECORD_H

#include "ktstring.h"
#include "ops/format_code.h"
#include "text/order_cursor.h"
#include "text/text_units.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace kt {

// --- format bits of strings ---------------------------------------------------------------------------------------
constexpr unsigned char kDropCodeSets = 0x20;   // a stored code set counts as 0
constexpr unsigned char kNativeForZero = 0x40;  // a stored code set 0 counts as the native one
constexpr unsigned char kIndexKeyForm = 0x80;
constexpr unsigned char kCodeSetBits = kDropCodeSets | kNativeForZero;

// --- layout -------------------------------------------------------------------------------------------------------
constexpr unsigned long kLengthBytes = 2;     // DISK: the length word
constexpr unsigned long kCodeSetAt = 2;       // DISK
constexpr unsigned long kLanguageAt = 3;      // DISK
constexpr unsigned long kTextAt = 4;          // DISK: of the current form
constexpr unsigned long kEmptyLength = 4;     // DISK: L of a record without characters
constexpr unsigned long kEmptyRecord = 6;     // DISK: all bytes of such a record, a null string's too
constexpr unsigned char kTextEnd = 0x00;      // DISK: the byte before the mark
constexpr unsigned char kCurrentMark = 0xFF;  // DISK: the last byte of the current form
constexpr unsigned char kOlderEnd = 0x00;     // DISK: the last byte of the older form
constexpr unsigned long kLongestLength = 65535;
constexpr unsigned char kNullCodeSet = 254;

// Fewer bytes hold no further record of a run.
constexpr unsigned long kLeastRest = 5;

constexpr unsigned long kUnknownLength = ~0ul;
constexpr unsigned long knownLength(unsigned long length) { return length != 0 ? length : kUnknownLength; }

// Length words follow the host under the codes 1 and 8.
constexpr bool isBigEndianWord(unsigned char code) {
  const bool host = code == kMemoryForm || code == kMemoryLayout;
  return host ? std::endian::native == std::endian::big : code == kBigEndian;
}

constexpr bool wordsAreSwapped(unsigned char code) {
  return isBigEndianWord(code) != (std::endian::native == std::endian::big);
}

inline unsigned long readLength(const unsigned char* at, unsigned char code) {
  std::uint16_t word;
  std::memcpy(&word, at, sizeof word);
  return wordsAreSwapped(code) ? swapped(word) : word;
}

inline void writeLength(unsigned char* at, unsigned long length, unsigned char code) {
  const auto word = static_cast<std::uint16_t>(length);
  const std::uint16_t stored = wordsAreSwapped(code) ? swapped(word) : word;
  std::memcpy(at, &stored, sizeof stored);
}

// Characters of 16 bits never follow the host: this is the order of those in a record, as text cursors and the rebuild
// of a string take it.
constexpr unsigned char unitOrder(unsigned char code) { return code == kBigEndian ? kBigEndian : 0; }
constexpr bool unitsAreSwapped(unsigned char code) {
  return (code == kBigEndian) != (std::endian::native == std::endian::big);
}

// --- code sets ----------------------------------------------------------------------------------------------------

// The code set that a record counts as. Null's own is no code set. The native set stands in as far as it has 8 bits.
inline unsigned char seenCodeSet(unsigned char stored, unsigned char format) {
  if ((format & kCodeSetBits) == 0 || stored == kNullCodeSet) return stored;
  const unsigned char kept = (format & kDropCodeSets) != 0 ? 0 : stored;
  return kept == 0 && (format & kNativeForZero) != 0 ? storedCodeSet(0) : kept;
}

// Code set 255 is a set of 16 bits to storage; comparisons take it as the default 8-bit set.
constexpr unsigned long comparedCharSize(unsigned char codeSet) { return codeSet < 225 || codeSet == 255 ? 1 : 2; }

// --- strings in memory --------------------------------------------------------------------------------------------

// Bytes of the text as a record holds it. The longest sizes of a string leave no room in a record: clipped.
inline unsigned long storedTextBytes(const KtString& s) {
  const unsigned long charSize = s.CharSize();
  if (s.buffer == nullptr || s.bufferSize < charSize) return 0;
  const unsigned long bytes = s.bufferSize - charSize;
  return std::min(bytes, (kLongestLength - kEmptyLength) & ~(charSize - 1));
}

// format: the bits under which the code set is seen.
inline TextRef textOf(const KtString& s, unsigned char format) {
  const unsigned char codeSet = seenCodeSet(s.codeSet, format);
  const unsigned long bytes = s.buffer != nullptr ? s.bufferSize : 0;
  return {s.buffer, bytes / comparedCharSize(codeSet), codeSet, s.language, 1};
}

// --- one record ---------------------------------------------------------------------------------------------------

// What a record of either form says, for bytes that lie within the record.
struct Record {
  const unsigned char* bytes;
  unsigned long length;  // L

  unsigned long size() const { return length + kLengthBytes; }
  // Lengths that leave no room for code set and language are no current form either.
  bool isOlder() const { return length < kEmptyLength || bytes[length + 1] == kOlderEnd; }

  unsigned char codeSet() const { return bytes[kCodeSetAt]; }
  unsigned char language() const { return bytes[kLanguageAt]; }
  const char* text() const { return reinterpret_cast<const char*>(bytes + kTextAt); }
  unsigned long textBytes() const { return length - kEmptyLength; }
};

inline Record recordAt(const void* data, unsigned char format) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  return {bytes, readLength(bytes, lowCode(format))};
}

// Of a record in the current form; textBytes may be less than the record says.
inline TextRef textOf(const Record& record, unsigned long textBytes, unsigned char format) {
  const unsigned char codeSet = seenCodeSet(record.codeSet(), format);
  return {record.text(), textBytes / comparedCharSize(codeSet), codeSet, record.language(), unitOrder(lowCode(format))};
}

// --- the texts of an older record ---------------------------------------------------------------------------------

struct OlderTexts {
  const char* at;
  const char* end;

  explicit OlderTexts(const Record& record)
      : at(reinterpret_cast<const char*>(record.bytes) + kLengthBytes), end(at + record.length) {}
  OlderTexts(const char* first, const char* last) : at(first), end(last) {}

  bool atEnd() const { return at == end; }
  // Takes the next text, an empty one where there is none, and gives its bytes; a missing terminator is no reason to
  // go on behind the record.
  const char* take(unsigned long& bytes) {
    const char* text = at;
    const auto rest = static_cast<unsigned long>(end - at);
    const void* zero = rest != 0 ? std::memchr(text, 0, rest) : nullptr;
    bytes = zero != nullptr ? static_cast<unsigned long>(static_cast<const char*>(zero) - text) : rest;
    at = zero != nullptr ? text + bytes + 1 : end;
    return text;
  }
};

}  // namespace kt

#endif
