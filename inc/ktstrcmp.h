// ktstrcmp.h - comparing and hashing texts where they lie; strings compare and hash by these.
#ifndef KTSTRCMP_H
#define KTSTRCMP_H

#include "ktapi.h"

class KtString;

// Compare operator bits; 65535 stands for the language context's default operator.
constexpr unsigned short KtCMP_NO_WILDCARDS = 0x10;       // "*" and "?" are ordinary characters
constexpr unsigned short KtCMP_IGNORE_CASE = 0x20;        // differences in bits 5-6 of the keys are ignored
constexpr unsigned short KtCMP_IGNORE_DIACRITICS = 0x40;  // differences in bits 0-4 of the keys are ignored
constexpr unsigned short KtCMP_DROP_SPACES = 0x80;        // ignorable orders below 80 never decide
constexpr unsigned short KtCMP_BINARY = 0x100;            // order by order, no levels, nothing ignorable
constexpr unsigned short KtCMP_DROP_SYMBOLS = 0x200;      // ignorable orders from 80 up never decide
constexpr unsigned short KtCMP_DEFAULT = 65535;

// Compares two texts. Negative when s1 sorts before s2, 0, or positive.
//   s1, s2: terminated texts; a null pointer is an empty one.
//   s2 is the pattern side: only its wildcards act, and only without bit 0x10 and 0x100. "*" takes any characters, none
//   too; "?" takes one whole character, a blank or symbol included unless 0x80 or 0x200 drops it; "\" before "*", "?" or
//   itself makes that an ordinary character, elsewhere it is one. SetAsterisk and its kin exchange the three.
//   cmpOp: bits as above; 65535 is no default here, but all bits.
//   length: at most that many characters (-1: the whole texts; 0 and other negative values: equal).
//   flag: byte order of 16-bit characters, see KtStringIterator.
//   report: may be null; receives the last primary difference under bit 0x80. Untouched under 0x100, with code set 0 on
//   both sides, and where nulls or the length 0 decide.
// Languages of two collation kinds (docs/collation.md): no letter or digit of one text equals one of the other (under
// 0x100, or kind 20, no character does), and those of the lower kind come first. Within a kind language does not matter.
// Null texts come first, and before each length; under wildcards a null s1 is compared as the text that it holds. Both
// with code set 0: byte order, or a match with a pattern of "*" and "?" alone, without escape. Pure.
KTTM_API long KtStrCmp(unsigned char codeSet1, unsigned char language1, const char* s1, unsigned char codeSet2,
                       unsigned char language2, const char* s2, unsigned short cmpOp, short length,
                       unsigned char flag = 255, int* report = nullptr);

// Hashes, modulo 2^32; pure. HashKtString: the characters as stored; HashKtString7: their low seven bits.
KTTM_API unsigned long HashKtString(const KtString& s);
KTTM_API unsigned long HashKtString7(const KtString& s);
// By collation orders: texts that are equal under their orders hash alike. 0xFEFE7575 for a null text, whatever the length.
//   data: a terminated text; a null pointer is an empty one. flag: as for KtStrCmp.
//   length: -1 the whole text; positive: exactly that many orders, those behind the end counting as 0; else the hash is 0.
// With code set 0: by bytes, at most `length`, and those behind the end do not count.
KTTM_API unsigned long HashString(unsigned char codeSet, unsigned char language, char* data, short length,
                                  unsigned char flag);

#endif
