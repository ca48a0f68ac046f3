// integer_digits.h - digits of 64-bit magnitudes in base 8, 10 and 16, eight at a time.
//
// Eight digits travel in one 64-bit word, the first in the most significant byte, so that nothing depends on the host's
// byte order.
#ifndef KT_INTEGER_DIGITS_H
#define KT_INTEGER_DIGITS_H

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kt {

constexpr std::uint64_t everyByte(std::uint64_t byte) { return byte * 0x0101010101010101u; }

inline std::uint32_t bigEndian(std::uint32_t word) {
  if constexpr (std::endian::native == std::endian::big) return word;
  return word >> 24 | (word >> 8 & 0xFF00u) | (word << 8 & 0xFF0000u) | word << 24;
}
inline std::uint64_t bigEndian(std::uint64_t word) {
  if constexpr (std::endian::native == std::endian::big) return word;
  const std::uint64_t low = bigEndian(static_cast<std::uint32_t>(word));
  return low << 32 | bigEndian(static_cast<std::uint32_t>(word >> 32));
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
    number = (number & 0xFFFF0000u) << 16 | (number & 0xFFFFu);
    number = (number & 0x0000FF000000FF00u) << 8 | (number & 0x000000FF000000FFu);
    return (number & 0x00F000F000F000F0u) << 4 | (number & 0x000F000F000F000Fu);
  } else if constexpr (kBase == 8) {
    number = (number & 0xFFF000u) << 20 | (number & 0xFFFu);
    number = (number & 0x00000FC000000FC0u) << 10 | (number & 0x0000003F0000003Fu);
    return (number & 0x0038003800380038u) << 5 | (number & 0x0007000700070007u);
  } else {
    // Quotients by multiplication: exact below 10,000 and below 100.
    const auto narrow = static_cast<std::uint32_t>(number);
    const std::uint64_t halves = std::uint64_t{narrow / 10000} << 32 | narrow % 10000;
    const std::uint64_t hundreds = (halves * 10486 >> 20) & 0x0000007F0000007Fu;
    const std::uint64_t pairs = hundreds << 16 | (halves - 100 * hundreds);
    const std::uint64_t tens = (pairs * 103 >> 10) & 0x000F000F000F000Fu;
    return tens << 8 | (pairs - 10 * tens);
  }
}

// What lies between '9' + 1 and the first letter of hexadecimal digits.
constexpr unsigned kLowerCaseGap = 'a' - '9' - 1;
constexpr unsigned kUpperCaseGap = 'A' - '9' - 1;

// '0' to '9', then letters.
inline std::uint64_t digitCharacters(std::uint64_t digits, unsigned letterGap) {
  const std::uint64_t isLetter = (digits + everyByte(6)) >> 4 & everyByte(1);
  return digits + everyByte('0') + isLetter * letterGap;
}

// Room for the digits below, and for what lies behind a last word that holds a single one.
constexpr unsigned kDigitRoom = 32;

inline void writeWord(char* at, std::uint64_t characters) {
  characters = bigEndian(characters);
  std::memcpy(at, &characters, 8);
}

// Writes two words of characters but for `drop` (0 to 15) at the front; returns their end. Nothing depends on a branch:
// how many digits numbers have cannot be predicted.
inline char* writeWords(char* at, std::uint64_t high, std::uint64_t low, unsigned drop) {
  const unsigned bits = drop % 8 * 8;
  const std::uint64_t joined = high << bits | (low >> 1) >> (63 - bits);
  writeWord(at, drop < 8 ? joined : low << bits);
  writeWord(at + 8, low << bits);  // behind the end where eight are dropped
  return at + (16 - drop);
}

// Word by word, without the work for words that are not there: splitting is dear in base 10.
template <unsigned kBase>
inline char* writeDigitsInTurn(char* at, std::uint64_t number) {
  constexpr std::uint64_t kWord = kEightDigits<kBase>;
  std::uint64_t rest[2];
  unsigned more = 0;
  while (number >= kWord) {
    rest[more++] = number % kWord;
    number /= kWord;
  }
  const std::uint64_t first = splitDigits<kBase>(number);
  const int zeros = std::countl_zero(first | 1) / 8;
  writeWord(at, digitCharacters(first, 0) << 8 * zeros);
  at += 8 - zeros;
  for (; more != 0; at += 8) writeWord(at, digitCharacters(splitDigits<kBase>(rest[--more]), 0));
  return at;
}

// Writes the digits of a number that has at most 24, and returns their end; zero has one digit. Words leave the registers
// where they belong: copying them once more would wait for the stores.
template <unsigned kBase>
inline char* writeDigits(char* at, std::uint64_t number, unsigned letterGap = 0) {
  if constexpr (kBase == 10) return writeDigitsInTurn<10>(at, number);
  constexpr std::uint64_t kWord = kEightDigits<kBase>;
  constexpr std::uint64_t kSixteenDigits = kWord * kWord;  // 0: no number has more
  const bool isLonger = kSixteenDigits != 0 && number >= kSixteenDigits;
  if (isLonger) at = writeDigitsInTurn<kBase>(at, number / kWord / kWord);
  const std::uint64_t high = splitDigits<kBase>(number / kWord % kWord);
  const std::uint64_t low = splitDigits<kBase>(number % kWord);
  const auto zerosIn = [](std::uint64_t digits) { return static_cast<unsigned>(std::countl_zero(digits)) / 8; };
  const unsigned zeros = high != 0 ? zerosIn(high) : 8 + zerosIn(low | 1);
  return writeWords(at, digitCharacters(high, letterGap), digitCharacters(low, letterGap), isLonger ? 0 : zeros);
}

// Writes the last eight digits of a number, but for `drop` (0 to 7) of them at the front; returns their end.
inline char* writeLastDigits(char* at, std::uint64_t digits, unsigned letterGap, unsigned drop) {
  writeWord(at, digitCharacters(digits, letterGap) << 8 * drop);
  return at + (8 - drop);
}

// Writes at least `least` digits (1 to 16) of a number that has no more than 16; returns their end.
template <unsigned kBase>
inline char* writeAtLeast(char* at, std::uint64_t number, unsigned letterGap, unsigned least) {
  constexpr std::uint64_t kWord = kEightDigits<kBase>;
  const auto zerosIn = [](std::uint64_t digits) { return static_cast<unsigned>(std::countl_zero(digits | 1)) / 8; };
  unsigned wanted = least;
  if (number >= kWord || least > 8) {
    const std::uint64_t high = splitDigits<kBase>(number / kWord);
    wanted = least > 8 ? least - 8 : 1;
    at = writeLastDigits(at, high, letterGap, std::min(zerosIn(high), 8 - wanted));
    number %= kWord;
    wanted = 8;
  }
  const std::uint64_t low = splitDigits<kBase>(number);
  return writeLastDigits(at, low, letterGap, std::min(zerosIn(low), 8 - wanted));
}

// --- digits to numbers ---------------------------------------------------------------------------------------------

inline std::uint64_t readByte(const char* p) { return static_cast<unsigned char>(*p); }

// The first n (1 to 8) of `available` characters at p, right-aligned, in front of them zeros.
inline std::uint64_t readCharacters(const char* p, unsigned long n, unsigned long available) {
  std::uint64_t word;
  if (available >= 8) {
    std::memcpy(&word, p, 8);
    word = bigEndian(word) >> (64 - 8 * n);
  } else if (n >= 4) {
    std::uint32_t head, tail;  // may overlap
    std::memcpy(&head, p, 4);
    std::memcpy(&tail, p + n - 4, 4);
    word = static_cast<std::uint64_t>(bigEndian(head)) << 8 * (n - 4) | bigEndian(tail);
  } else {
    const unsigned long middle = n / 2;
    word = readByte(p) << 8 * (n - 1) | readByte(p + middle) << 8 * (n - 1 - middle) | readByte(p + n - 1);
  }
  return n == 8 ? word : word | everyByte('0') << 8 * n;
}

// The values of eight digit characters. The result has bits set in the bytes that are no digits of the base.
template <unsigned kBase>
inline std::uint64_t digitValues(std::uint64_t characters, std::uint64_t& digits) {
  // Without the highest bits, which no digit has, nothing below carries from a byte into the next.
  const std::uint64_t ascii = characters & everyByte(0x7F);
  const std::uint64_t isLetter = kBase == 16 ? ascii >> 6 & everyByte(1) : 0;
  // Below: what must be 0 to 9 for a digit, 1 to 6 for a letter of either case.
  const std::uint64_t rank = (ascii | isLetter << 5) ^ (everyByte(0x30) + isLetter * 0x30);
  digits = rank + isLetter * 9;
  constexpr unsigned kDecimals = kBase < 10 ? kBase : 10;
  const std::uint64_t tooLarge = rank + (everyByte(1) - isLetter) * (16 - kDecimals);
  const std::uint64_t zeroLetter = (rank + isLetter * 15) ^ isLetter << 4;
  return (rank | digits | tooLarge | zeroLetter | (characters & everyByte(0x80))) & everyByte(0xF0);
}

template <unsigned kBase>
inline std::uint64_t joinDigits(std::uint64_t digits) {
  constexpr std::uint64_t kBytes = 0x00FF00FF00FF00FFu;
  constexpr std::uint64_t kPairs = 0x0000FFFF0000FFFFu;
  const std::uint64_t pairs = (digits >> 8 & kBytes) * kBase + (digits & kBytes);
  const std::uint64_t fours = (pairs >> 16 & kPairs) * (kBase * kBase) + (pairs & kPairs);
  return (fours >> 32) * (kBase * kBase * kBase * kBase) + (fours & 0xFFFFFFFFu);
}

// The value of every hexadecimal digit, 255 for other characters.
constexpr auto kHexValues = [] {
  std::array<unsigned char, 256> values{};
  for (unsigned i = 0; i < values.size(); ++i) {
    const unsigned letter = i | 0x20;
    const unsigned value = i >= '0' && i <= '9' ? i - '0' : letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : 255;
    values[i] = static_cast<unsigned char>(value);
  }
  return values;
}();

// The number that n digit characters stand for, modulo 2^64; false when one of them is no digit of the base. No digits
// are 0.
template <unsigned kBase>
inline bool readDigits(const char* p, unsigned long n, std::uint64_t& number) {
  number = 0;
  if constexpr (kBase == 16) {
    // Letters make the words below dear.
    unsigned all = 0;
    for (const char* const end = p + n; p != end; ++p) {
      const unsigned digit = kHexValues[static_cast<unsigned char>(*p)];
      all |= digit;
      number = number << 4 | (digit & 15);
    }
    return all < 16;
  }
  unsigned long part = n % 8 == 0 ? 8 : n % 8;
  while (n != 0) {
    std::uint64_t digits;
    if (digitValues<kBase>(readCharacters(p, part, n), digits) != 0) return false;
    number = number * kEightDigits<kBase> + joinDigits<kBase>(digits);
    p += part;
    n -= part;
    part = 8;
  }
  return true;
}

// As readDigits, of 1 to 24 characters whose first may be followed by fifteen more bytes, readable though without meaning.
// Where there are at most sixteen characters nothing depends on a branch: how many they are cannot be predicted.
template <unsigned kBase>
inline bool readPaddedDigits(const char* p, unsigned long n, std::uint64_t& number) {
  constexpr std::uint64_t kWord = kEightDigits<kBase>;
  std::uint64_t first = 0;
  if (n > 16) {
    if (!readDigits<kBase>(p, n - 16, first)) return false;
    p += n - 16;
    n = 16;
  }
  std::uint64_t words[2], digits[2], bad[2];
  std::memcpy(words, p, sizeof words);
  for (int i = 0; i < 2; ++i) bad[i] = digitValues<kBase>(bigEndian(words[i]), digits[i]);
  // Right-aligned, without what lies behind the text.
  const unsigned bits = static_cast<unsigned>(16 - n) % 8 * 8;
  const bool isLong = n > 8;
  const std::uint64_t front = digits[0] >> bits;
  const std::uint64_t joined = (digits[0] << 1) << (63 - bits) | digits[1] >> bits;
  const std::uint64_t badBehind = isLong ? bad[0] | bad[1] >> bits : bad[0] >> bits;
  const std::uint64_t high = isLong ? front : 0;
  const std::uint64_t low = isLong ? joined : front;
  number = (first * kWord + joinDigits<kBase>(high)) * kWord + joinDigits<kBase>(low);
  return badBehind == 0;
}

// Reads the digits that n characters (at least one) begin with, at most eight of them: `number` is continued by them,
// modulo 2^64. Returns how many they are.
template <unsigned kBase>
inline unsigned continueNumber(const char* p, unsigned long n, std::uint64_t& number) {
  static constexpr auto kPowers = [] {
    std::array<std::uint64_t, 9> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * kBase;
    return powers;
  }();
  const auto part = static_cast<unsigned>(n < 8 ? n : 8);
  std::uint64_t digits;
  const std::uint64_t bad = digitValues<kBase>(readCharacters(p, part, n), digits);
  const unsigned cut = bad == 0 ? 0 : 8 - static_cast<unsigned>(std::countl_zero(bad)) / 8;
  if (cut == part) return 0;
  number = number * kPowers[part - cut] + joinDigits<kBase>(digits >> 8 * cut);
  return part - cut;
}

}  // namespace kt

#endif
