// The generated fact tables of ktin (generate_tables.py), all constant data without pointers.
#ifndef KTIN_TABLES_H
#define KTIN_TABLES_H

namespace kt {

inline constexpr int kEightBitSets = 8;     // code sets 1, 2, 3, 4, 5, 10, 11, 12, in this order
inline constexpr int kAlphabeticKinds = 4;  // collation kinds 1 to 4
inline constexpr int kIdentityPage = 0;     // of kOrderPages: 0 to 255, to which an offset is added

extern const unsigned short kToUnicode[kEightBitSets][256];
// Entries kFromUnicodeStart[set] up to kFromUnicodeStart[set + 1]: the characters from 0x80 up, rising, and their bytes.
extern const unsigned short kFromUnicodeStart[kEightBitSets + 1];
extern const unsigned short kFromUnicodeChars[];
extern const unsigned char kFromUnicodeBytes[];
extern const unsigned char kSetToLower[kEightBitSets][256];
extern const unsigned char kSetToUpper[kEightBitSets][256];

// Simple case mapping: page of the high byte, then what to add modulo 65,536 by the low byte.
extern const unsigned char kLowerPages[256];
extern const unsigned char kUpperPages[256];
extern const unsigned short kCaseDeltas[][256];

// First collation orders of kinds 1 to 4: page of the high byte, then the order by the low byte. On the identity page
// the order is 0x8000 + the character.
extern const unsigned char kOrderPageIndexes[kAlphabeticKinds][256];
extern const unsigned short kOrderPages[][256];

}  // namespace kt

#endif
