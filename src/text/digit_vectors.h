// digit_vectors.h - up to 24 digits of base 8 or 10 at once, where the processor has vectors of 32 bytes: the last sixteen
// in one half of a vector, the others in the other half.
#ifndef KT_DIGIT_VECTORS_H
#define KT_DIGIT_VECTORS_H

#include "clones.h"

#include <cstdint>

namespace kt {

// A number modulo 2^64, and whether its text was one.
struct ReadNumber {
  std::uint64_t value;
  bool isNumber;
};

#if defined(KT_FOR_AVX2)

constexpr unsigned long kMostVectorDigits = 24;

// The number that n (0 to kMostVectorDigits) characters stand for, none where one of them is no digit of the base. Sixteen
// bytes are readable at p, whatever lies behind the characters.
ReadNumber readOctalVector(const char* p, unsigned long n);
ReadNumber readDecimalVector(const char* p, unsigned long n);

// Writes the digits of a number and returns their end; zero has one digit. 20 bytes may be written.
char* writeDecimalVector(char* at, std::uint64_t number);

#endif

}  // namespace kt

#endif
