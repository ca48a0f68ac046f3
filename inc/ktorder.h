// ktorder.h - what a collation order stands for: diagnostics.
#ifndef KTORDER_H
#define KTORDER_H

#include "ktstring.h"

// A collation order is read under a collation kind, 0 to 127 (bit 7 is ignored): KtUnicodeProps::CollationKind gives the
// kind of a language. Below kind 20, and with bit 15 of the order clear, orders are alphabetic:
//   0 to 79           space; 13 is what has no order
//   80 to 16,127      symbol, with the index order - 80
//   16,128 to 16,383  digit: ten orders each, in pairs; bit 0 is the expand flag
//   16,384 and above  letter: bits 12-13 case (0 upper), 7-11 diacritic, 2-6 letter (3 is "A"), 0-1 extension
// All other orders stand for HAN characters.
//
// Nothing else depends on the texts and characters given here: they are for people.
// Threads: pure but for their output; may run concurrently. Nothing is owned by the caller.

// The symbol index of an order from 80 to 16,127: 0 to 16,047. Returns 0, or -2002 (index unchanged) for other orders.
KTTM_API int KtExtractSymbolFromOrder(unsigned short order, unsigned short& index);

// The digit (0 to 25; real digits are 0 to 9) and the expand flag (0 or 1) of an order from 16,128 to 16,383. Returns 0,
// or -2002 (both unchanged) for other orders.
KTTM_API int KtExtractDigitFromOrder(unsigned short order, unsigned short& digit, unsigned short& expand);

// Describes the order in words: text is assigned (default 8-bit code set, default language), a HAN character's with a
// line feed at the end. Returns 0.
//   "space"  "undefined ordering indicator"  "symbol solidus"  "symbol " (no name)  "digit 7 with expand"
//   "upper letter A with accent acute"  "lower letter n with extension"  "HAN character 0x9abc\n"
KTTM_API int KtConvertOrderToString(unsigned short order, unsigned char kind, KtString& text);

// Gives a representative 8-bit character: the space, a symbol's character ("." for most that are not ASCII), the digit,
// the letter; 127 for a HAN character, 7 for a symbol without a name. Returns 0.
//   search: non-zero: a letter with a diacritic becomes the first of the characters 128 to 255 of code set 1 that has
//           this order under language 1; where there is none, it stays the plain letter.
//   entry:  may be null. For a letter, searched or not, *entry becomes the description of ch as a character of code set
//           1: its Unicode name in lower case, such as "latin small letter e with acute". The text lives as long as the
//           library. Orders that are not letters leave *entry unchanged.
KTTM_API int KtConvertOrderToChar(unsigned short order, unsigned char kind, unsigned char& ch, int search,
                                  const char** entry);

#endif
