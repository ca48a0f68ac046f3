#include "text/decimal_text.h"

#include "text/integer_digits.h"
#include "text/powers.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>

namespace kt {
namespace {

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<double>::digits == 53);

constexpr int kMaxScale = 27;  // 5^27 has 63 bits
constexpr auto kPowersOf5 = powers<5, kMaxScale + 1>();
constexpr int kMaxDigits = 17;
constexpr auto kPowersOf10 = powers<10, kMaxDigits + 2>();

// A double's magnitude: significand * 2^exponent.
struct Binary {
  explicit Binary(double magnitude) {
    constexpr std::uint64_t kHidden = std::uint64_t{1} << 52;
    const auto bits = std::bit_cast<std::uint64_t>(magnitude);
    const auto biased = static_cast<int>(bits >> 52);
    significand = (bits & (kHidden - 1)) | (biased != 0 ? kHidden : 0);
    exponent = (biased != 0 ? biased : 1) - 1075;
  }
  std::uint64_t significand;
  int exponent;
};

struct Product {
  Product(std::uint64_t a, std::uint64_t b) {
    constexpr std::uint64_t kLow = 0xFFFFFFFFu;
    const std::uint64_t lows = (a & kLow) * (b & kLow);
    const std::uint64_t cross = (a >> 32) * (b & kLow) + (lows >> 32);
    const std::uint64_t middle = (a & kLow) * (b >> 32) + (cross & kLow);
    high = (a >> 32) * (b >> 32) + (cross >> 32) + (middle >> 32);
    low = middle << 32 | (lows & kLow);
  }
  std::uint64_t high, low;
};

// number / 2^shift, rounded half to even; false beyond 63 bits. `number` is below 2^117.
bool shiftedRight(const Product& number, int shift, std::uint64_t& result) {
  if (shift >= 120) {
    result = 0;
    return true;
  }
  std::uint64_t half, rest;  // the bit below the last one, and whether anything is behind it
  if (shift > 64) {
    const int more = shift - 64;
    result = number.high >> more;
    half = number.high >> (more - 1) & 1;
    rest = (number.high & ((std::uint64_t{1} << (more - 1)) - 1)) | number.low;
  } else {
    if (number.high >> (shift - 1) >> 1 != 0) return false;
    result = shift == 64 ? number.high : (number.high << 1 << (63 - shift)) | number.low >> shift;
    half = number.low >> (shift - 1) & 1;
    rest = number.low & ((std::uint64_t{1} << (shift - 1)) - 1);
  }
  if (result >> 63 != 0) return false;
  result += half & static_cast<std::uint64_t>(rest != 0 || (result & 1) != 0);
  return true;
}

// magnitude * 10^scale, rounded half to even; false where that has more than 63 bits.
bool scaled(const Binary& magnitude, int scale, std::uint64_t& result) {
  if (scale < 0 || scale > kMaxScale) return false;
  const Product number(magnitude.significand, kPowersOf5[static_cast<unsigned>(scale)]);
  const int shift = magnitude.exponent + scale;
  if (shift < 0) return shiftedRight(number, -shift, result);
  if (number.high != 0 || shift > 63 || number.low >> (63 - shift) != 0) return false;
  result = number.low << shift;
  return true;
}

// Moves what stands at `point` to `end` by one, for the point. Up to 24 bytes are moved, as that is quicker.
char* insertPoint(char* point, char* end) {
  char tail[24];
  std::memcpy(tail, point, sizeof tail);
  std::memcpy(point + 1, tail, sizeof tail);
  *point = '.';
  return end + 1;
}

// A number of `digits` significant digits: its first one stands for 10^exponent.
struct Decimal {
  std::uint64_t number;
  int exponent;
};

bool roundToDigits(double magnitude, int digits, Decimal& decimal) {
  const Binary binary(magnitude);
  const int log2 = binary.exponent + 52;
  if (digits > kMaxDigits || log2 < -60 || log2 > 56) return false;
  // The logarithm of a power of 2: right or one too low.
  int exponent = (log2 * 315653) >> 20;
  if (log2 >= 0 &&
      magnitude >= static_cast<double>(static_cast<std::int64_t>(kPowersOf10[static_cast<unsigned>(exponent + 1)])))
    ++exponent;
  // Rounding up may give another digit.
  for (;; ++exponent) {
    if (!scaled(binary, digits - 1 - exponent, decimal.number)) return false;
    if (decimal.number < kPowersOf10[static_cast<unsigned>(digits)]) break;
  }
  decimal.exponent = exponent;
  return true;
}

// Puts the point behind the first of the digits from `at` to `end`, and the exponent behind them.
char* makeScientific(char* at, char* end, int exponent) {
  if (end - at > 1) end = insertPoint(at + 1, end);
  const int magnitude = exponent < 0 ? -exponent : exponent;
  end[0] = 'e';
  end[1] = exponent < 0 ? '-' : '+';
  end[2] = static_cast<char>('0' + magnitude / 10);
  end[3] = static_cast<char>('0' + magnitude % 10);
  return end + 4;
}

}  // namespace

char* writeFixed(char* at, double magnitude, int precision) {
  std::uint64_t number;
  if (precision > kMaxDigits || !scaled(Binary(magnitude), precision, number)) return nullptr;
  // Digits that are sure to be there: one in front of the point.
  const std::uint64_t least = kPowersOf10[static_cast<unsigned>(precision)];
  const bool startsWithZero = number < least;
  char* const end = writeDigits<10>(at, startsWithZero ? number + least : number);
  if (startsWithZero) *at = '0';
  return precision == 0 ? end : insertPoint(end - precision, end);
}

char* writeScientific(char* at, double magnitude, int precision) {
  Decimal decimal;
  if (precision >= kMaxDigits || !roundToDigits(magnitude, precision + 1, decimal)) return nullptr;
  return makeScientific(at, writeDigits<10>(at, decimal.number), decimal.exponent);
}

char* writeGeneral(char* at, double magnitude, int precision) {
  const int digits = precision == 0 ? 1 : precision;
  Decimal decimal;
  if (!roundToDigits(magnitude, digits, decimal)) return nullptr;
  const int exponent = decimal.exponent;
  if (exponent < 0 && exponent >= -4) {
    std::memcpy(at, "0.0000", 6);
    char* end = writeDigits<10>(at + 1 - exponent, decimal.number);
    while (end[-1] == '0') --end;
    return end;
  }
  char* end = writeDigits<10>(at, decimal.number);
  const bool isFixed = exponent >= 0 && exponent < digits;
  char* const point = at + 1 + (isFixed ? exponent : 0);
  while (end > point && end[-1] == '0') --end;
  if (!isFixed) return makeScientific(at, end, exponent);
  return end > point ? insertPoint(point, end) : end;
}

}  // namespace kt
