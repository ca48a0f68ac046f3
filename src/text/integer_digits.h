// integer_digits.h - digits of 64-bit magnitudes in base 8, 10 and 16, eight at a time.
//
// Eight digits travel in one 64-bit word, the first in the least significant byte, whatever the host's byte order.
#ifndef KT_INTEGER_DIGITS_H
#define KT_INTEGER_DIGITS_H

#include "text/digit_vectors.h"
#include "text/hex_vectors.h"
#include "text/powers.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace kt {

constexpr std::uint64_t everyByte(std::uint64_t byte) { return byte * 0x0101010101010101u; }

inline std::uint32_t reverseBytes(std::uint32_t word) {
  return word >> 24 | (word >> 8 & 0xFF00u) | (word << 8 & 0xFF0000u) | word << 24;
}
inline std::uint64_t reverseBytes(std::uint64_t word) {
  const std::uint64_t low = reverseBytes(static_cast<std::uint32_t>(word));
  return low << 32 | reverseBytes(static_cast<std::uint32_t>(word >> 32));
}

template <class Word>
inline Word readWord(const char* p) {
  Word word;
  std::memcpy(&word, p, sizeof word);
  return std::endian::native == std::endian::big ? reverseBytes(word) : word;
}

inline void writeWord(char* at, std::uint64_t characters) {
  if constexpr (std::endian::native == std::endian::big) characters = reverseBytes(characters);
  std::memcpy(at, &characters, sizeof characters);
}

// --- numbers to digits ---------------------------------------------------------------------------------------------

// base^8: what eight digits count up to.
template <unsigned kBase>
constexpr std::uint64_t kEightDigits = kBase == 10  ? 100000000u
                                       : kBase == 8 ? 1u << 24
                                                    : std::uint64_t{1} << 32;

// The digits of a number below kEightDigits, as numbers. Halves, then quarters, then single digits move apart.
template <unsigned kBase>
inline std::uint64_t splitDigits(std::uint64_t number) {
  if constexpr (kBase == 16) {
    number = number >> 16 | (number & 0xFFFFu) << 32;
    number = (number >> 8 & 0x000000FF000000FFu) | (number & 0x000000FF000000FFu) << 16;
    return (number >> 4 & 0x000F000F000F000Fu) | (number & 0x000F000F000F000Fu) << 8;
  } else if constexpr (kBase == 8) {
    number = number >> 12 | (number & 0xFFFu) << 32;
    number = (number >> 6 & 0x0000003F0000003Fu) | (number & 0x0000003F0000003Fu) << 16;
    return (number >> 3 & 0x0007000700070007u) | (number & 0x0007000700070007u) << 8;
  } else {
    // Quotients by multiplication: exact below 10,000 and below 100. A quotient q of n stays where it is, and the remainder
    // n - 100q moves up: together (n << 16) - 100q * 65536 + q.
    const auto narrow = static_cast<std::uint32_t>(number);
    const std::uint64_t halves = narrow / 10000 | std::uint64_t{narrow % 10000} << 32;
    const std::uint64_t hundreds = (halves * 10486 >> 20) & 0x0000007F0000007Fu;
    const std::uint64_t pairs = (halves << 16) - hundreds * ((100u << 16) - 1);
    const std::uint64_t tens = (pairs * 103 >> 10) & 0x000F000F000F000Fu;
    return (pairs << 8) - tens * ((10u << 8) - 1);
  }
}

// What lies between '9' + 1 and the first letter of hexadecimal digits.
constexpr unsigned kLowerCaseGap = 'a' - '9' - 1;
constexpr unsigned kUpperCaseGap = 'A' - '9' - 1;

// '0' to '9', then letters.
template <unsigned kBase>
inline std::uint64_t digitCharacters(std::uint64_t digits, unsigned letterGap) {
  if constexpr (kBase <= 10) return digits + everyByte('0');
  const std::uint64_t isLetter = (digits + everyByte(6)) >> 4 & everyByte(1);
  return digits + everyByte('0') + isLetter * letterGap;
}

// Room for the digits below, and for what lies behind them.
constexpr unsigned kDigitRoom = 24;

// The zeros that digits begin with, the last digit not counted, in bits.
inline unsigned zeroBits(std::uint64_t digits) {
  return static_cast<unsigned>(std::countr_zero(digits | std::uint64_t{1} << 63)) & 56u;
}

// Writes the last eight digits of a number, but for zeros at the front of which `least` (1 to 8) digits must remain;
// returns their end.
template <unsigned kBase>
inline char* writeLastDigits(char* at, std::uint64_t number, unsigned letterGap, unsigned least) {
  const std::uint64_t digits = splitDigits<kBase>(number);
  const unsigned drop = std::min(zeroBits(digits) / 8, 8 - least);
  writeWord(at, digitCharacters<kBase>(digits, letterGap) >> 8 * drop);
  return at + (8 - drop);
}

// Writes the digits of a number below kEightDigits squared and returns their end; zero has one digit. Nothing depends on
// a branch: how many digits numbers have cannot be predicted. Words leave the registers where they belong: copying them
// once more would wait for the stores.
template <unsigned kBase>
inline char* writeUpToSixteen(char* at, std::uint64_t number, unsigned letterGap) {
#if defined(KT_HEX_VECTORS)
  if constexpr (kBase == 16) return writeHexVector(at, number, letterGap, 1);
#endif
  const std::uint64_t back = splitDigits<kBase>(number % kEightDigits<kBase>);
  const std::uint64_t head = splitDigits<kBase>(number / kEightDigits<kBase>);
  const unsigned isShort = head == 0 ? 1 : 0;
  const std::uint64_t front = head | (back & (0 - std::uint64_t{isShort}));
  const unsigned bits = zeroBits(front);
  writeWord(at, digitCharacters<kBase>(front >> bits | back << 1 << (63 - bits), letterGap));
  writeWord(at + 8, digitCharacters<kBase>(back >> bits, letterGap));  // behind the end of a short number
  return at + (16 - 8 * isShort - bits / 8);
}

// The same for every number.
template <unsigned kBase>
inline char* writeDigits(char* at, std::uint64_t number, unsigned letterGap = 0) {
  constexpr std::uint64_t kWord = kEightDigits<kBase>;
  constexpr std::uint64_t kSixteenDigits = kWord * kWord;  // 0: no number has more
  if (kSixteenDigits == 0 || number < kSixteenDigits) return writeUpToSixteen<kBase>(at, number, letterGap);
  const std::uint64_t head = number / kWord / kWord;
  at = writeLastDigits<kBase>(at, head, letterGap, 1);
  at = writeLastDigits<kBase>(at, number / kWord - head * kWord, letterGap, 8);
  return writeLastDigits<kBase>(at, number % kWord, letterGap, 8);
}

// Apart, as readPaddedWords below.
[[gnu::noinline]] inline char* writeDecimalWords(char* at, std::uint64_t number) { return writeDigits<10>(at, number); }

// As writeDigits<10>, for digits that nobody reads at once: reading what two wide stores wrote waits for both.
inline char* writeDecimal(char* at, std::uint64_t number) {
#if defined(KT_FOR_AVX2)
  if (hasAvx2()) return writeDecimalVector(at, number);
#endif
  return writeDecimalWords(at, number);
}

// Writes at least `least` digits (1 to 16) of a number that has no more than 16; returns their end. 16 bytes may be written.
template <unsigned kBase>
inline char* writeAtLeast(char* at, std::uint64_t number, unsigned letterGap, unsigned least) {
#if defined(KT_HEX_VECTORS)
  if constexpr (kBase == 16) return writeHexVector(at, number, letterGap, least);
#endif
  constexpr std::uint64_t kWord = kEightDigits<kBase>;
  if (number >= kWord || least > 8) {
    at = writeLastDigits<kBase>(at, number / kWord, letterGap, least > 8 ? least - 8 : 1);
    number %= kWord;
    least = 8;
  }
  return writeLastDigits<kBase>(at, number, letterGap, least);
}

// --- digits to numbers ---------------------------------------------------------------------------------------------

inline std::uint64_t readByte(const char* p) { return static_cast<unsigned char>(*p); }

// Characters combined with '0' by exclusive or: decimal digits are their values then, and zeros fill up.
inline std::uint64_t fromZero(std::uint64_t characters) { return characters ^ everyByte('0'); }

// The first n (1 to 8) of `available` characters at p, from '0', at the end of a word that begins with zeros.
inline std::uint64_t readCharacters(const char* p, unsigned long n, unsigned long available) {
  std::uint64_t word;
  if (available >= 8) {
    word = readWord<std::uint64_t>(p);
  } else if (n >= 4) {  // in two parts, which may overlap
    word = readWord<std::uint32_t>(p) | static_cast<std::uint64_t>(readWord<std::uint32_t>(p + n - 4)) << 8 * (n - 4);
  } else {
    const unsigned long middle = n / 2;
    word = readByte(p) | readByte(p + middle) << 8 * middle | readByte(p + n - 1) << 8 * (n - 1);
  }
  return fromZero(word) << 8 * (8 - n);
}

// The values of eight digits, from their characters. The result has bits set in the byte of the first that is no digit of
// the base; what stands behind that byte, here and in the values, means nothing: it may have taken a carry.
template <unsigned kBase>
inline std::uint64_t digitValues(std::uint64_t characters, std::uint64_t& digits) {
  constexpr std::uint64_t kHighHalves = everyByte(0xF0);
  if constexpr (kBase == 16) {
    // Letters of both cases become 1 to 6, then 10 to 15. Letters, and no others, must become 10 or more.
    const std::uint64_t letters = characters >> 2 & everyByte(0x10);
    digits = ((characters & ~(letters * 6)) ^ letters) + (letters >> 1) + (letters >> 4);
    return (digits | ((digits + everyByte(6)) ^ letters)) & kHighHalves;
  } else {
    digits = characters;
    return (digits | (digits + everyByte(16 - kBase))) & kHighHalves;
  }
}

// Digits become pairs, and four pairs the number: the upper half of a product sums every second of them.
template <unsigned kBase>
inline std::uint64_t joinDigits(std::uint64_t digits) {
  constexpr std::uint64_t kEverySecond = 0x000000FF000000FFu;
  constexpr std::uint64_t kPair = kBase * kBase;
  const std::uint64_t pairs = digits * kBase + (digits >> 8);
  const std::uint64_t odd = (pairs & kEverySecond) * (kPair * kPair * kPair << 32 | kPair);
  const std::uint64_t even = (pairs >> 16 & kEverySecond) * (kPair * kPair << 32 | 1);
  return (odd + even) >> 32;
}

// The number that n characters stand for, none where one of them is no digit of the base. No digits are 0.
template <unsigned kBase>
[[gnu::noinline]] ReadNumber readDigits(const char* p, unsigned long n) {
  ReadNumber number = {0, true};
  unsigned long part = n % 8 == 0 ? 8 : n % 8;
  while (n != 0) {
    std::uint64_t digits;
    if (digitValues<kBase>(readCharacters(p, part, n), digits) != 0) return {0, false};
    number.value = number.value * kEightDigits<kBase> + joinDigits<kBase>(digits);
    p += part;
    n -= part;
    part = 8;
  }
  return number;
}

// As readDigits, of 17 to 24 characters.
template <unsigned kBase>
inline ReadNumber readThreeWords(const char* p, unsigned long n) {
  const unsigned long first = n - 16;
  const std::uint64_t front = fromZero(readWord<std::uint64_t>(p)) << (64 - 8 * first);
  std::uint64_t high, middle, low;
  const std::uint64_t bad = digitValues<kBase>(front, high) |
                            digitValues<kBase>(fromZero(readWord<std::uint64_t>(p + first)), middle) |
                            digitValues<kBase>(fromZero(readWord<std::uint64_t>(p + first + 8)), low);
  const std::uint64_t head = joinDigits<kBase>(high) * kEightDigits<kBase> + joinDigits<kBase>(middle);
  return {head * kEightDigits<kBase> + joinDigits<kBase>(low), bad == 0};
}

// As readDigits; sixteen bytes are readable at p, whatever lies behind the characters. Where there are one to sixteen of
// them nothing depends on a branch: how many they are cannot be predicted. Apart, so that whoever has vectors needs no
// stack frame.
template <unsigned kBase>
[[gnu::noinline]] ReadNumber readPaddedWords(const char* p, unsigned long n) {
  if (n - 1 > 15) return n - 17 < 8 ? readThreeWords<kBase>(p, n) : readDigits<kBase>(p, n);
  const unsigned long hasTwoWords = (n - 1) / 8;
  const unsigned long first = (n - 8) & (0 - hasTwoWords);  // characters of the first of two words
  // Each moves to the end of its word; what lies behind the text falls out.
  const std::uint64_t front = fromZero(readWord<std::uint64_t>(p)) << (64 - 8 * first) % 64;
  const std::uint64_t back = fromZero(readWord<std::uint64_t>(p + first)) << (64 - 8 * (n - first));
  std::uint64_t high, low;
  const std::uint64_t bad =
      digitValues<kBase>(front & (0 - std::uint64_t{hasTwoWords}), high) | digitValues<kBase>(back, low);
  return {joinDigits<kBase>(high) * kEightDigits<kBase> + joinDigits<kBase>(low), bad == 0};
}

// The same by what this processor is best at.
template <unsigned kBase>
inline ReadNumber readPaddedDigits(const char* p, unsigned long n) {
#if defined(KT_HEX_VECTORS)
  if (kBase == 16 && n - 1 < 16) {
    ReadNumber number;
    number.isNumber = readHexVector(p, n, number.value);
    return number;
  }
#endif
#if defined(KT_FOR_AVX2)
  if (kBase != 16 && n <= kMostVectorDigits && hasAvx2())
    return kBase == 8 ? readOctalVector(p, n) : readDecimalVector(p, n);
#endif
  return readPaddedWords<kBase>(p, n);
}

template <unsigned kBase>
constexpr auto kPowers = powers<kBase, 9>();

// Reads the digits that n characters (at least one) begin with, at most eight of them: `number` is continued by them,
// modulo 2^64. Returns how many they are.
template <unsigned kBase>
inline unsigned continueNumber(const char* p, unsigned long n, std::uint64_t& number) {
  const auto part = static_cast<unsigned>(n < 8 ? n : 8);
  std::uint64_t digits;
  const std::uint64_t bad = digitValues<kBase>(readCharacters(p, part, n), digits);
  const unsigned cut = bad == 0 ? 0 : 8 - static_cast<unsigned>(std::countr_zero(bad)) / 8;
  if (cut == part) return 0;
  number = number * kPowers<kBase>[part - cut] + joinDigits<kBase>(digits << 8 * cut);
  return part - cut;
}

}  // namespace kt

#endif
