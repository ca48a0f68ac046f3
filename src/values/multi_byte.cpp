// multi_byte.cpp - strings to and from UTF-8.
#include "ktmbs.h"
#include "string_edit.h"
#include "text/string_block.h"
#include "text/text_units.h"
#include "text/utf8_kernel.h"

#include <ktbs.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr unsigned char kUnicode = 253;
constexpr unsigned char kLastPlainSet = 5;  // texts of sets 0 to 5 are their own UTF-8 while below 128
constexpr long kBadSequence = -1;
constexpr long kOutOfMemory = -1;
constexpr long kTooLong = -2;
constexpr unsigned long kMaxBytes = 32768;
constexpr unsigned long kLongestSequence = 6;
constexpr unsigned long kChunk = 256;  // characters; of a text that overflows the last chunk is the one that is lost
constexpr unsigned long kMaxUnits = kt::kMaxTextBytes / 2 - 1;
constexpr unsigned long kSpareUnits = 16;  // that the kernel may scribble over

// --- decoding -------------------------------------------------------------------------------------------------------

// Bytes in front of the first zero. memchr looks at nothing behind that, so that n may exceed the caller's memory.
unsigned long visibleBytes(const char* in, long n) {
  const unsigned long most = std::min(static_cast<unsigned long>(n), kMaxBytes + kLongestSequence - 1);
  return kt::unitLength(in, 1, most);
}

long resultOf(const kt::Utf8Decoded& decoded) {
  if (decoded.end == kt::Utf8End::kBad) return kBadSequence;
  return decoded.bytes >= kMaxBytes ? kTooLong : static_cast<long>(decoded.bytes);
}

unsigned long textBytes(unsigned long units) { return 2 * units + 2; }

// out as an empty text, whose language stays; its old block now belongs to the caller.
char* surrender(KtString& out) {
  char* block = out.buffer;
  out.buffer = nullptr;
  out.bufferSize = 0;
  out.codeSet = kUnicode;
  return block;
}

// Makes block, which begins with that many characters, the buffer of out, which has none.
void adopt(KtString& out, char* block, unsigned long units) {
  const unsigned long bytes = textBytes(units);
  std::memset(block + bytes - 2, 0, 2);
  kt::noteMayHoldZero(block, bytes, false);
  out.buffer = block;
  out.bufferSize = static_cast<std::uint16_t>(bytes);
}

char* newBlock(unsigned long bytes) {
  char* block = static_cast<char*>(std::malloc(bytes));
  if (block == nullptr) KtCallMemoryHandler(bytes);
  return block;
}

// A block of oldBytes for that many characters, which it holds.
char* trimmed(char* block, unsigned long oldBytes, unsigned long units) {
  const unsigned long bytes = kt::blockSize(textBytes(units));
  void* smaller = bytes == oldBytes ? block : std::realloc(block, bytes);
  return smaller == nullptr ? block : static_cast<char*>(smaller);
}

// More characters than a string holds: appending the last chunk is what overflows.
void adoptOverflowing(KtString& out, char* block, unsigned long blockBytes, unsigned long units) {
  const unsigned long whole = (units - 1) / kChunk * kChunk;
  char rest[2 * kChunk];
  std::memcpy(rest, block + 2 * whole, 2 * (units - whole));
  adopt(out, trimmed(block, blockBytes, whole), whole);
  kt::append(out, rest, kUnicode, units - whole);
}

bool overlap(const KtString& s, const char* in, unsigned long n) {
  const auto text = reinterpret_cast<std::uintptr_t>(s.buffer);
  const auto other = reinterpret_cast<std::uintptr_t>(in);
  return other < text + s.bufferSize && text < other + n;
}

// Decodes straight into the block of the new text: the old text's, where it has the right size and is not being read.
long decodeInto(const char* in, unsigned long n, KtString& out) {
  const unsigned long limit = std::min(n, kMaxBytes);  // bytes, and so the most characters
  const unsigned long blockBytes = kt::blockSize(std::min(textBytes(limit), kt::kTextSizeMask));
  const bool reused = out.buffer != nullptr && kt::blockSize(out.bufferSize) == blockBytes && !overlap(out, in, n);
  char* block = reused ? out.buffer : newBlock(blockBytes);
  kt::Utf8Decoded decoded{0, 0, kt::Utf8End::kDone};
  if (block != nullptr) decoded = kt::decodeUtf8(block, blockBytes / 2, in, n, limit, true);
  char* old = surrender(out);
  if (!reused) std::free(old);
  if (block == nullptr) return kOutOfMemory;
  if (decoded.units == 0) {
    std::free(block);
  } else if (decoded.units > kMaxUnits) {
    adoptOverflowing(out, block, blockBytes, decoded.units);
  } else {
    adopt(out, trimmed(block, blockBytes, decoded.units), decoded.units);
  }
  return resultOf(decoded);
}

// --- encoding -------------------------------------------------------------------------------------------------------

bool isPlainSet(const KtString& s) { return s.codeSet <= kLastPlainSet; }

// Characters, or more where the text holds a zero; a bound that needs no search.
unsigned long unitBound(const KtString& s) {
  const unsigned long units = s.buffer == nullptr ? 0 : s.bufferSize / KtCodeSet::CharSizeOf(s.codeSet);
  return units == 0 ? 0 : units - 1;
}

// Calls use(units, count) with the characters of s, a text of bytes, from `first` on, in Unicode, at most n; until use
// answers false.
template <class Use>
void forUnicodeChunks(const KtString& s, unsigned long first, unsigned long n, Use use) {
  const unsigned long length = kt::unitLength(s.StrGet(), 1, std::min(unitBound(s), n));
  char units[2 * kChunk];
  bool more = true;
  for (unsigned long done = first; more && done < length; done += kChunk) {
    const unsigned long count = std::min(kChunk, length - done);
    kt::mapUnits(units, kUnicode, s.buffer + done, s.codeSet, count);
    more = use(units, count);
  }
}

long terminated(char* out, unsigned long size, unsigned long bytes) {
  if (bytes < size) out[bytes] = 0;
  return static_cast<long>(bytes);
}

long encodeWide(const KtString& s, char* out, unsigned long size) {
  const unsigned long bound = unitBound(s);
  const kt::Utf8Encoded encoded = kt::encodeUtf8(out, size, s.buffer, bound);
  const bool all = encoded.units == bound || kt::unitAt(s.buffer, encoded.units, 2) == 0;
  return all ? terminated(out, size, encoded.bytes) : -static_cast<long>(encoded.bytes);
}

// Goes on at character `first`, which stands at out + first: what precedes is ASCII.
long encodeNarrow(const KtString& s, unsigned long first, char* out, unsigned long size) {
  unsigned long bytes = first;
  bool fits = true;
  forUnicodeChunks(s, first, unitBound(s), [&](const char* units, unsigned long count) {
    const kt::Utf8Encoded encoded = kt::encodeUtf8(out + bytes, size - bytes, units, count);
    bytes += encoded.bytes;
    fits = encoded.units == count;
    return fits;
  });
  return fits ? terminated(out, size, bytes) : -static_cast<long>(bytes);
}

bool isWide(const KtString& s) { return KtCodeSet::CharSizeOf(s.codeSet) == 2; }

bool isPlainText(const char* text, unsigned long n) {
  unsigned char high = 0;
  for (unsigned long i = 0; i < n; ++i) high = static_cast<unsigned char>(high | static_cast<unsigned char>(text[i]));
  return high < 0x80;
}

long encodedLength(const KtString& s, unsigned long n) {
  if (isPlainSet(s)) {
    const unsigned long length = kt::unitLength(s.StrGet(), 1, unitBound(s));
    if (isPlainText(s.StrGet(), length)) return static_cast<long>(length);
  }
  if (isWide(s))
    return static_cast<long>(kt::utf8Length(s.buffer, kt::unitLength(s.StrGet(), 2, std::min(unitBound(s), n))));
  unsigned long bytes = 0;
  forUnicodeChunks(s, 0, n, [&](const char* units, unsigned long count) {
    bytes += kt::utf8Length(units, count);
    return true;
  });
  return static_cast<long>(bytes);
}

long encodeIntoNew(const KtString& s, char*& out, long& size) {
  const long total = encodedLength(s, unitBound(s));
  size = 0;
  out = newBlock(static_cast<unsigned long>(total) + 1);
  if (out == nullptr) return kOutOfMemory;
  size = total + 1;
  return KtString2KtMBS(s, out, size);
}

}  // namespace

int KtMultiByte2WChar(unsigned short* out, char* in, unsigned int n) {
  if (in == nullptr) return 0;
  std::uint16_t unit = 0;
  const int used = kt::decodeUtf8Character(in, n, unit);
  if (used > 0 && out != nullptr) *out = unit;
  return used;
}

int KtWChar2MultiByte(char* out, unsigned short ch) { return out == nullptr ? 0 : kt::encodeUtf8Character(out, ch); }

int KtMultiByteStr2WCharStr(unsigned short* out, int outCount, char* in, int inBytes) {
  if (out == nullptr || in == nullptr || outCount <= 0 || inBytes <= 0) return 0;
  // The kernel may scribble over 16 characters behind its result: the last bytes, which are worth at least as many, go
  // by way of the stack.
  constexpr unsigned long kTail = kSpareUnits * kLongestSequence;
  const auto room = static_cast<unsigned long>(outCount);
  const auto n = static_cast<unsigned long>(inBytes);
  kt::Utf8Decoded head{0, 0, kt::Utf8End::kDone};
  if (n > kTail) head = kt::decodeUtf8(reinterpret_cast<char*>(out), room, in, n, n - kTail, false);
  if (head.end == kt::Utf8End::kBad) return static_cast<int>(kBadSequence);
  char units[2 * (kTail + kSpareUnits)];
  const unsigned long rest = n - head.bytes;
  const unsigned long tailRoom = std::min(room - head.units, kTail + kSpareUnits);
  const kt::Utf8Decoded tail = kt::decodeUtf8(units, tailRoom, in + head.bytes, rest, rest, false);
  if (tail.end == kt::Utf8End::kBad) return static_cast<int>(kBadSequence);
  std::memcpy(out + head.units, units, 2 * tail.units);
  return static_cast<int>(head.units + tail.units);
}

long KtMBS2KtString(const char* in, KtString& out, long n) {
  if (in == nullptr || n < 1) {
    std::free(surrender(out));
    return 0;
  }
  return decodeInto(in, visibleBytes(in, n), out);
}

long KtString2KtMBS(const KtString& s, char* out, long size) {
  if (out == nullptr || size < 1) return 0;
  const auto room = static_cast<unsigned long>(size);
  if (isWide(s)) return encodeWide(s, out, room);
  if (!isPlainSet(s)) return encodeNarrow(s, 0, out, room);
  const unsigned long bound = unitBound(s);
  const unsigned long plain = kt::copyPlain(out, s.StrGet(), std::min(bound, room));
  if (plain == room) return size;
  if (plain < bound && s.buffer[plain] != 0) return encodeNarrow(s, plain, out, room);
  std::memset(out + plain, 0, room - plain);
  return static_cast<long>(plain);
}

long KtMBSLength(const KtString& s, unsigned short n) { return n == 0 ? 0 : encodedLength(s, n); }

long KtMultiByteString2KtString(const KtString& s, KtString& out) { return KtMBS2KtString(s.StrGet(), out, s.Len()); }

long KtMultiByteString2KtString(const char* in, KtString& out, long n) { return KtMBS2KtString(in, out, n); }

long KtString2MultiByteString(const KtString& s, char*& out, long& size) {
  if (size <= 0 || out == nullptr) return encodeIntoNew(s, out, size);
  const long written = KtString2KtMBS(s, out, size);
  if (written > 0) return written;
  const long total = encodedLength(s, unitBound(s));
  if (size > total) {
    out[total] = 0;
    return total;
  }
  size = total;
  return -1;
}
