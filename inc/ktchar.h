// ktchar.h - one character with its code set and language, and operations that rewrite characters.
#ifndef KTCHAR_H
#define KTCHAR_H

#include "ktapi.h"

#include <ktin.h>

// KtChar: one character.
//
// Range:  code 0 to 255 in an 8-bit code set (below 225), 0 to 65,535 in a 16-bit one.
// Null:   none; the character 0 is the end of a text. Outside a text KtString::operator[] answers the character 0 with
//         code set 255 and language 255.
// Order:  == compares the characters that the codes stand for, so that the same letter of two code sets is equal.
// Size:   4 bytes.
// Disk:   none: lives in memory only. What is stored are the texts of strings.
// Text:   has no printed form. KtString::operator[] gives the characters of a text.
// Status: nothing here fails: a character that a code set lacks becomes 0x1A there.
// Owner:  a plain value. Construction copies; assignment maps into the code set that is there.
// Threads: pure, but for what reads the defaults of the language context (ktin.h).
//
// Code sets 0 and 255 stand for the native and the default 8-bit set where a real one is needed.
class KTTM_API KtChar {
public:
  unsigned short code;
  unsigned char codeSet;
  unsigned char language;

  KtChar();                   // character 0, default 8-bit code set, default language
  KtChar(char ch);            // default 8-bit code set, default language
  KtChar(unsigned short ch);  // default 16-bit code set, default language
  KtChar(unsigned short ch, unsigned char codeSet, unsigned char language);
  KtChar(const KtChar&) = default;  // a copy, code set included

  // Maps `other` into this character's code set; code set and language stay. A character that the set lacks becomes 0x1A.
  KtChar& operator=(const KtChar& other);

  unsigned short Unicode() const;  // the character in code set 253
  unsigned short CharSize() const { return KtCodeSet::CharSizeOf(codeSet); }
  unsigned short Order() const;  // its first collation order under its language; 0 for character 0
  // 1 when the collation order is below 80 under the alphabetic kind of its language (kind 1 for the ideographic
  // ones): spaces, separators, controls, and the character 0.
  int IsSpace() const;
  int IsNull() const { return code == 0; }
  KtChar ToLower() const;  // in the same code set; unchanged where that has no partner
  KtChar ToUpper() const;
};

inline int operator==(const KtChar& a, const KtChar& b) { return a.Unicode() == b.Unicode(); }
inline int operator!=(const KtChar& a, const KtChar& b) { return a.Unicode() != b.Unicode(); }
inline int operator==(const KtChar& a, char b) { return a == KtChar(b); }
inline int operator==(char a, const KtChar& b) { return KtChar(a) == b; }
inline int operator!=(const KtChar& a, char b) { return a != KtChar(b); }
inline int operator!=(char a, const KtChar& b) { return KtChar(a) != b; }
inline int operator==(const KtChar& a, unsigned short b) { return a == KtChar(b); }
inline int operator==(unsigned short a, const KtChar& b) { return KtChar(a) == b; }
inline int operator!=(const KtChar& a, unsigned short b) { return a != KtChar(b); }
inline int operator!=(unsigned short a, const KtChar& b) { return KtChar(a) != b; }

static_assert(sizeof(KtChar) == 4);

// An operation that rewrites a text character by character (KtString::Transform).
class KTTM_API KtCharOperation {
public:
  static constexpr int kMaxCharacters = 2;  // that one character may become

  virtual ~KtCharOperation();
  // Writes what `in` becomes to out (already in the code set and language of the text) and returns the number of
  // characters, 0 (dropped) to kMaxCharacters; any other answer counts as the nearest of these.
  virtual int Apply(const KtChar& in, KtChar out[kMaxCharacters]) = 0;
};

class KTTM_API KtLowerCaseOperation : public KtCharOperation {
public:
  int Apply(const KtChar& in, KtChar out[kMaxCharacters]) override;
};

class KTTM_API KtUpperCaseOperation : public KtCharOperation {
public:
  int Apply(const KtChar& in, KtChar out[kMaxCharacters]) override;
};

#endif
