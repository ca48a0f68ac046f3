// utf8_kernel.cpp - runs of ASCII move by blocks, all else character by character.
//
// Blocks are tested through 64-bit words: a word of small characters has no bit in the high part of any lane. Texts that
// are no multiple of a block end in one that overlaps what is done already.
#include "utf8_kernel.h"

#include "text_units.h"

#include <clones.h>
#include <algorithm>
#include <bit>
#include <cstring>

namespace kt {

namespace {

// Sequences by length, ended by a row of zeros.
struct Row {
  unsigned char mask;   // of the first byte
  unsigned char value;  // of the first byte under the mask
  std::uint32_t largest;
  std::uint32_t smallest;
};
constexpr Row kRows[] = {{0x80, 0x00, 0x7F, 0},
                         {0xE0, 0xC0, 0x7FF, 0x80},
                         {0xF0, 0xE0, 0xFFFF, 0x800},
                         {0xF8, 0xF0, 0x1FFFFF, 0x10000},
                         {0xFC, 0xF8, 0x3FFFFFF, 0x200000},
                         {0xFE, 0xFC, 0x7FFFFFFF, 0x4000000},
                         {}};

constexpr unsigned kContinuation = 0x80;
constexpr unsigned kPayload = 63;

constexpr unsigned long kBlock = 64;  // characters
constexpr unsigned long kSmallBlock = 16;

using Byte = std::uint8_t;
using Unit = std::uint16_t;

template <class T>
constexpr std::uint64_t kLanes = ~std::uint64_t{0} / static_cast<T>(~T{0});  // 1 in every lane of type T
template <class T>
constexpr std::uint64_t kBeyondAscii = kLanes<T>*(static_cast<T>(~T{0}) - 0x7F);

// Vectors, because compilers turn short loops into scalar code before they look for vectors.
template <class T, unsigned long kCount>
struct VectorOf {
  using Type [[gnu::vector_size(sizeof(T) * kCount)]] = T;
};
template <class T, unsigned long kCount>
using Vector = typename VectorOf<T, kCount>::Type;

std::uint64_t wordAt(const void* p) {
  std::uint64_t word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

// Bits beyond ASCII of `count` characters, a multiple of a word's. Zero bytes are ASCII for a reader, but end what is
// written: taking 1 from the lanes gives them high bits too (and, by the borrow, none to a word that has no zero).
template <class In, unsigned long kCount, bool kZeroStops>
[[gnu::always_inline]] inline bool isPlain(const char* in) {
  constexpr unsigned long kWords = kCount * sizeof(In) / sizeof(std::uint64_t);
  constexpr unsigned long kWidth = kWords < 4 || !kZeroStops ? 1 : 4;
  Vector<std::uint64_t, kWidth> high{};
  for (unsigned long i = 0; i < kWords; i += kWidth) {
    Vector<std::uint64_t, kWidth> words;
    std::memcpy(&words, in + i * sizeof(std::uint64_t), sizeof words);
    high |= kZeroStops ? words | (words - kLanes<In>) : words;
  }
  std::uint64_t all = 0;
  for (unsigned long lane = 0; lane < kWidth; ++lane) all |= high[lane];
  return (all & kBeyondAscii<In>) == 0;
}

template <class In, class Out, unsigned long kCount>
[[gnu::always_inline]] inline void moveBlock(char* __restrict out, const char* __restrict in) {
  if constexpr (sizeof(In) < sizeof(Out) && kCount == kBlock) {  // widening is the one long loop they do well
    for (unsigned long i = 0; i < kCount; ++i) putUnit(out, i, sizeof(Out), unitAt(in, i, sizeof(In)));
    return;
  }
  constexpr unsigned long kLaneCount = kCount < kSmallBlock ? kCount : kSmallBlock;
  for (unsigned long i = 0; i < kCount; i += kLaneCount) {
    Vector<In, kLaneCount> from;
    std::memcpy(&from, in + i * sizeof(In), sizeof from);
    const auto to = __builtin_convertvector(from, Vector<Out, kLaneCount>);
    std::memcpy(out + i * sizeof(Out), &to, sizeof to);
  }
}

template <class In, class Out, unsigned long kCount, bool kZeroStops>
[[gnu::always_inline]] inline bool movePlain(char* out, const char* in) {
  if (!isPlain<In, kCount, kZeroStops>(in)) return false;
  moveBlock<In, Out, kCount>(out, in);
  return true;
}

template <class In, class Out, bool kZeroStops>
[[gnu::always_inline]] inline unsigned long moveBlocks(char* out, const char* in, unsigned long n) {
  unsigned long i = 0;
  while (i + kBlock <= n && movePlain<In, Out, kBlock, kZeroStops>(out + i * sizeof(Out), in + i * sizeof(In))) {
    i += kBlock;
  }
  return i;
}

// The loops of whole blocks; with KT_CLONES these are worth two versions.
KT_CLONES unsigned long widenBlocks(char* out, const char* in, unsigned long n) {
  return moveBlocks<Byte, Unit, false>(out, in, n);
}
KT_CLONES unsigned long narrowBlocks(char* out, const char* in, unsigned long n) {
  return moveBlocks<Unit, Byte, true>(out, in, n);
}
KT_CLONES unsigned long copyBlocks(char* out, const char* in, unsigned long n) {
  return moveBlocks<Byte, Byte, true>(out, in, n);
}

template <class In, class Out, bool kZeroStops>
unsigned long movedBlocks(char* out, const char* in, unsigned long n) {
  if (n < kBlock) return 0;
  if constexpr (sizeof(In) == sizeof(Out)) return copyBlocks(out, in, n);
  return sizeof(In) < sizeof(Out) ? widenBlocks(out, in, n) : narrowBlocks(out, in, n);
}

// Two blocks that overlap as far as n is short of both: all of the n characters (count to 2 * count), or none.
template <class In, class Out, unsigned long kCount, bool kZeroStops>
bool movePair(char* out, const char* in, unsigned long n) {
  const unsigned long last = n - kCount;
  if (!isPlain<In, kCount, kZeroStops>(in) || !isPlain<In, kCount, kZeroStops>(in + last * sizeof(In))) return false;
  moveBlock<In, Out, kCount>(out, in);
  moveBlock<In, Out, kCount>(out + last * sizeof(Out), in + last * sizeof(In));
  return true;
}

template <class In, class Out, bool kZeroStops>
unsigned long moveSingly(char* out, const char* in, unsigned long n) {
  unsigned long i = 0;
  for (; i < n; ++i) {
    const Unit unit = unitAt(in, i, sizeof(In));
    if (unit > 0x7F || (kZeroStops && unit == 0)) break;
    putUnit(out, i, sizeof(Out), unit);
  }
  return i;
}

// Moves the leading ASCII characters of n; returns their number, or fewer where what follows them is not ASCII.
template <class In, class Out, bool kZeroStops>
unsigned long movePlainLead(char* out, const char* in, unsigned long n) {
  if (n < kSmallBlock) {
    if (n >= 8 && movePair<In, Out, 8, kZeroStops>(out, in, n)) return n;
    return moveSingly<In, Out, kZeroStops>(out, in, n);
  }
  unsigned long i = movedBlocks<In, Out, kZeroStops>(out, in, n);
  while (i + kSmallBlock <= n &&
         movePlain<In, Out, kSmallBlock, kZeroStops>(out + i * sizeof(Out), in + i * sizeof(In))) {
    i += kSmallBlock;
  }
  const unsigned long last = n - kSmallBlock;
  if (i <= last || i == n) return i;
  return movePlain<In, Out, kSmallBlock, kZeroStops>(out + last * sizeof(Out), in + last * sizeof(In)) ? n : i;
}

// ASCII bytes in front of the first other of 16, which are all widened.
unsigned long widenSixteen(char* out, const char* in) {
  moveBlock<Byte, Unit, kSmallBlock>(out, in);
  const std::uint64_t words[2] = {wordAt(in) & kBeyondAscii<Byte>, wordAt(in + 8) & kBeyondAscii<Byte>};
  const std::uint64_t word = words[0] != 0 ? words[0] : words[1];
  const int bits = kHostIsBig ? std::countl_zero(word) : std::countr_zero(word);
  return static_cast<unsigned long>(bits) / 8 + (words[0] != 0 ? 0 : 8);
}

Byte byteAt(const char* in, unsigned long i) { return static_cast<Byte>(in[i]); }

// The common lengths without the table: 2 or 3 for a good sequence, else 0. The caller tests for each of them, so that
// the processor goes on with the next sequence by prediction, before the bytes of this one are there.
[[gnu::always_inline]] inline unsigned shortSequence(const char* in, unsigned long n, Unit& unit) {
  const unsigned first = byteAt(in, 0);
  if (first - 0xC2 < 0xE0 - 0xC2 && n >= 2) {
    const unsigned second = byteAt(in, 1) ^ kContinuation;
    unit = static_cast<Unit>(((first & 31) << 6) | second);
    if (second <= kPayload) return 2;
  } else if (first - 0xE0 < 16 && n >= 3) {
    const unsigned second = byteAt(in, 1) ^ kContinuation;
    const unsigned third = byteAt(in, 2) ^ kContinuation;
    unit = static_cast<Unit>(((first & 15) << 12) | (second << 6) | third);
    if ((second | third) <= kPayload && unit >= 0x800) return 3;
  }
  return 0;
}

// Decodes from a point on up to which all is ASCII. The counts stay in registers: a store through out could alias them
// anywhere else.
Utf8Decoded decodeMixed(char* out, unsigned long room, const char* in, unsigned long n, unsigned long limit,
                        bool zeroEnds, unsigned long start) {
  unsigned long pos = start;
  unsigned long units = start;
  while (pos < limit && units < room) {
    if (limit - pos >= kSmallBlock && room - units >= kSmallBlock) {
      const unsigned long plain = widenSixteen(out + 2 * units, in + pos);
      pos += plain;
      units += plain;
      if (plain == kSmallBlock) continue;
    }
    // What is not ASCII comes in groups: in most scripts whole words.
    do {
      Unit unit = byteAt(in, pos);
      if (unit < kContinuation) {
        pos += 1;
      } else if (const unsigned used = shortSequence(in + pos, n - pos, unit); used == 2) {
        pos += 2;
      } else if (used == 3) {
        pos += 3;
      } else {
        const int any = decodeUtf8Character(in + pos, n - pos, unit);
        if (any < 0) return {pos, units, Utf8End::kBad};
        if (unit == 0 && zeroEnds) return {pos, units, Utf8End::kZero};
        pos += static_cast<unsigned long>(any);
      }
      putUnit(out, units++, 2, unit);
    } while (pos < limit && units < room && byteAt(in, pos) >= kContinuation);
  }
  return {pos, units, Utf8End::kDone};
}

char continuation(unsigned payload) { return static_cast<char>(kContinuation | (payload & kPayload)); }

int utf8Bytes(Unit unit) { return 1 + (unit > 0x7F ? 1 : 0) + (unit > 0x7FF ? 1 : 0); }

[[gnu::always_inline]] inline int encodeUnit(char* out, unsigned unit) {
  if (unit <= kRows[0].largest) {
    out[0] = static_cast<char>(unit);
    return 1;
  }
  if (unit <= kRows[1].largest) {
    out[0] = static_cast<char>(kRows[1].value | (unit >> 6));
    out[1] = continuation(unit);
    return 2;
  }
  out[0] = static_cast<char>(kRows[2].value | (unit >> 12));
  out[1] = continuation(unit >> 6);
  out[2] = continuation(unit);
  return 3;
}

bool hasZero(const char* eightUnits) {
  const std::uint64_t first = wordAt(eightUnits);
  const std::uint64_t second = wordAt(eightUnits + 8);
  constexpr std::uint64_t kTops = kLanes<Unit> << 15;
  return ((((first - kLanes<Unit>)&~first) | ((second - kLanes<Unit>)&~second)) & kTops) != 0;
}

constexpr std::uint32_t lowByteFirst(std::uint32_t word) {
  return kHostIsBig ? (word << 24) | ((word & 0xFF00) << 8) | ((word >> 8) & 0xFF00) | (word >> 24) : word;
}

// Eight units at once without a branch on what they are: all sequences side by side (first byte lowest), then one store
// each, of which the next one overwrites what is too much.
[[gnu::always_inline]] inline unsigned long encodeEight(char* out, const char* in) {
  using Words = Vector<std::uint32_t, 8>;
  Vector<Unit, 8> units;
  std::memcpy(&units, in, sizeof units);
  const Words one = __builtin_convertvector(units, Words);
  const Words two = 0x80C0u | (one >> 6) | ((one & kPayload) << 8);
  const Words three = 0x8080E0u | (one >> 12) | ((one << 2) & (kPayload << 8)) | ((one & kPayload) << 16);
  const Words beyondOne = __builtin_convertvector(one > 0x7Fu, Words);  // all bits of a lane, or none
  const Words beyondTwo = __builtin_convertvector(one > 0x7FFu, Words);
  const Words words = (one & ~beyondOne) | (two & beyondOne & ~beyondTwo) | (three & beyondTwo);
  const Words sizes = 1u - beyondOne - beyondTwo;
  unsigned long bytes = 0;
  for (unsigned long i = 0; i < 8; ++i) {
    const std::uint32_t word = lowByteFirst(words[i]);
    std::memcpy(out + bytes, &word, sizeof word);
    bytes += sizes[i];
  }
  return bytes;
}

// Encodes eights of units as long as at least three other than zero follow them, whatever they are with room: these
// overwrite what the last of the eight wrote too much.
KT_CLONES Utf8Encoded encodeEights(char* out, unsigned long size, const char* in, unsigned long n,
                                   unsigned long first) {
  constexpr unsigned long kAhead = 3;
  constexpr unsigned long kMost = 3;  // bytes of a unit
  unsigned long i = first;
  unsigned long bytes = first;
  while (n - i >= 8 + kAhead && size - bytes >= (8 + kAhead) * kMost) {
    const char* units = in + 2 * i;
    if (movePlain<Unit, Byte, 8, true>(out + bytes, units)) {
      bytes += 8;
    } else if (!hasZero(units) && !hasZero(units + 2 * kAhead)) {
      bytes += encodeEight(out + bytes, units);
    } else {
      break;
    }
    i += 8;
  }
  return {i, bytes};
}

}  // namespace

int decodeUtf8Character(const char* in, unsigned long n, Unit& unit) {
  if (n == 0) return -1;
  const unsigned first = byteAt(in, 0);
  std::uint32_t value = first;
  unsigned long used = 1;
  for (const Row* row = kRows; row->mask != 0; ++row) {
    if ((first & row->mask) == row->value) {
      value &= row->largest;
      unit = static_cast<Unit>(value);
      return value < row->smallest ? -1 : static_cast<int>(used);
    }
    const unsigned next = used < n ? byteAt(in, used) ^ kContinuation : kContinuation;
    if (next > kPayload) return -1;
    value = (value << 6) | next;
    ++used;
  }
  return -1;
}

int encodeUtf8Character(char* out, Unit unit) { return encodeUnit(out, unit); }

Utf8Decoded decodeUtf8(char* out, unsigned long room, const char* in, unsigned long n, unsigned long limit,
                       bool zeroEnds) {
  const unsigned long end = std::min(limit, n);
  const unsigned long plain = movePlainLead<Byte, Unit, false>(out, in, std::min(end, room));
  if (plain == end) return {plain, plain, Utf8End::kDone};
  return decodeMixed(out, room, in, n, end, zeroEnds, plain);
}

Utf8Encoded encodeUtf8(char* out, unsigned long size, const char* in, unsigned long n) {
  const unsigned long plain = movePlainLead<Unit, Byte, true>(out, in, std::min(n, size));
  if (plain == n) return {n, n};
  Utf8Encoded done = encodeEights(out, size, in, n, plain);
  while (done.units < n) {
    const Unit unit = unitAt(in, done.units, 2);
    if (unit == 0 || static_cast<unsigned long>(utf8Bytes(unit)) > size - done.bytes) break;
    done.bytes += static_cast<unsigned long>(encodeUnit(out + done.bytes, unit));
    ++done.units;
  }
  return done;
}

unsigned long copyPlain(char* out, const char* in, unsigned long n) {
  unsigned long i = movePlainLead<Byte, Byte, true>(out, in, n);
  i += moveSingly<Byte, Byte, true>(out + i, in + i, std::min(n - i, kSmallBlock));
  return i;
}

unsigned long utf8Length(const char* units, unsigned long n) {
  unsigned long bytes = n;
  for (unsigned long i = 0; i < n; ++i) {
    const Unit unit = unitAt(units, i, 2);
    bytes += (unit > 0x7F ? 1u : 0u) + (unit > 0x7FF ? 1u : 0u);
  }
  return bytes;
}

}  // namespace kt
