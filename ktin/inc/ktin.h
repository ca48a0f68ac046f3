// ktin.h - internationalisation: code sets, case, languages, collation kinds and collation orders.
#ifndef KTIN_H
#define KTIN_H

#include <cstdint>

#if defined(_WIN32)
#if defined(KTIN_BUILD)
#define KTIN_API __declspec(dllexport)
#else
#define KTIN_API __declspec(dllimport)
#endif
#else
#define KTIN_API __attribute__((visibility("default")))
#endif

// Attaches (non-zero) or detaches (0) the library; returns 1. Nothing needs it: tables are built on first use.
KTIN_API int ___KtI18NContext(int attach);

// KtLanguageContext: process-wide defaults, each independent of the others; at load as given in brackets.
//
// Range:  the setters take every value: codes without a meaning count as KtCodeSet and KtUnicodeProps say. Strings take
//         a default 8-bit set of 16-bit units as 1, and a default 16-bit set of 8-bit characters as 253.
// Status: nothing here fails.
// Threads: unguarded: set them before concurrent use begins.
class KTIN_API KtLanguageContext {
public:
  static unsigned char GetDefaultCodeSet() { return codeSet_; }      // [1] of an empty KtString
  static unsigned char GetDefault8CodeSet() { return codeSet8_; }    // [1] of a KtString made from char text
  static unsigned char GetDefault16CodeSet() { return codeSet16_; }  // [253] of a KtString made from 16-bit text
  static unsigned char GetNativeCodeSet() { return native_; }        // [1] stands in for code set 0
  static unsigned char GetDefaultLanguage() { return language_; }    // [1]
  static unsigned short GetDefaultCmpOp() { return cmpOp_; }         // [0x10] wildcards off

  static void SetDefaultCodeSet(unsigned char codeSet) { codeSet_ = codeSet; }
  static void SetDefault8CodeSet(unsigned char codeSet) { codeSet8_ = codeSet; }
  static void SetDefault16CodeSet(unsigned char codeSet) { codeSet16_ = codeSet; }
  static void SetNativeCodeSet(unsigned char codeSet) { native_ = codeSet; }
  static void SetDefaultLanguage(unsigned char language) { language_ = language; }
  static void SetDefaultCmpOp(unsigned short cmpOp) { cmpOp_ = cmpOp; }

private:
  static unsigned char codeSet_, codeSet8_, codeSet16_, native_, language_;
  static unsigned short cmpOp_;
};

// KtCodeSet: which character a number stands for in a text, and its case.
//
// Range:  1 ISO 8859-1, 2 ISO 8859-2, 3 ISO 8859-5, 4 ISO 8859-7, 5 ISO 8859-15, 10 Windows-1252, 11 Windows-1250,
//         12 Windows-1251, 253 Unicode in 16-bit units. Code 0 is the native set of the language context, every other
//         code below 225 is like 1, from 225 on like 253.
// Order:  Orders, under a collation kind.
// Size:   characters of one byte below code 225, else of two.
// Disk:   docs/formats/strings.md: stored texts carry the code.
// Status: nothing here fails: a character that the set lacks becomes kSubstitute.
// Owner:  sets and tables live as long as the process.
// Threads: pure; tables are built once, safely from any thread. Code 0 reads the language context.
class KTIN_API KtCodeSet {
public:
  static constexpr unsigned short kSubstitute = 0x1A;  // what a character becomes that the target set lacks

  // The set that `code` stands for; never fails. The reference is valid for the life of the process. Code 0 has one byte
  // a character: a native set of 16-bit units does not stand in for it, code set 1 does then.
  static const KtCodeSet& Get(unsigned char code);
  // 1 for codes below 225, else 2.
  static constexpr unsigned short CharSizeOf(unsigned char code) { return code < 225 ? 1 : 2; }

  unsigned char Code() const { return code_; }  // the resolved code, one of those listed above
  unsigned short CharSize() const { return CharSizeOf(code_); }
  const char* Name() const { return name_; }  // "ISO 8859-1", ... "Unicode"

  // Characters are numbers: 0 to 255 in an 8-bit set (bits above are ignored), 0 to 65,535 in a 16-bit one.
  // No two bytes of a set give the same character: a byte that its code page leaves undefined gives the character of its
  // own number. Of those, only the C1 controls (128 to 159) map back.
  unsigned short ToUnicode(unsigned short ch) const;
  unsigned short FromUnicode(unsigned short unicode) const;  // kSubstitute where the set lacks it
  unsigned short ToLower(unsigned short ch) const;           // unchanged where there is no partner in the set
  unsigned short ToUpper(unsigned short ch) const;

  // 8-bit sets: the whole set as one table of 256 entries; null for Unicode.
  const unsigned short* ToUnicodeTable() const { return toUnicode_; }
  const unsigned char* ToLowerTable() const { return toLower_; }
  const unsigned char* ToUpperTable() const { return toUpper_; }
  // 8-bit to 8-bit: 256 entries, this set to `target`; built once per pair, null where either is Unicode.
  const unsigned char* MapTable(const KtCodeSet& target) const;

  // 8-bit sets: the collation orders of the 256 characters under a kind, one order each (entry 0 is 0); built once per
  // set and kind. Null for Unicode (see KtUnicodeProps::OrderPages).
  const unsigned short* Orders(unsigned char kind) const;

private:
  friend struct KtCodeSetRegistry;
  constexpr KtCodeSet() = default;
  unsigned char code_ = 0;
  const char* name_ = nullptr;
  const unsigned short* toUnicode_ = nullptr;
  const unsigned char* toLower_ = nullptr;
  const unsigned char* toUpper_ = nullptr;
};

// KtUnicodeProps: collation and case of Unicode characters.
//
// Range:  characters of 16 bits; languages and kinds of every number, as told below.
// Null:   character 0 has no order.
// Order:  docs/collation.md has the kinds and what an order is made of.
// Disk:   a kind is a promise to stored indexes: its orders never change; a changed order takes a new kind number.
// Status: nothing here fails.
// Owner:  the pages live as long as the process.
// Threads: pure; the pages are built once, safely from any thread.
class KTIN_API KtUnicodeProps {
public:
  static constexpr unsigned char kIdeographicKind = 20;  // kinds from here on order by Unicode code
  static constexpr unsigned short kMaxOrders = 3;        // of one character

  // The collation kind of a language. docs/collation.md lists the languages by number, 0 to 8 and 20 to 22; every other
  // number counts as 0.
  static unsigned char CollationKind(unsigned char language);

  // Orders of one page of 256 characters: character c of page p has the order
  //   (orders[c & 255] + offset) modulo 65,536
  // Under the kinds below 20 the order 0xFFFF says that more orders follow: call Orders.
  struct Page {
    const unsigned short* orders;
    unsigned short offset;
  };
  // 256 pages, by the high byte of the character. Kinds other than 1, 2, 3, 4, 20: those of kind 1 below 20, of 20 above.
  static const Page* OrderPages(unsigned char kind);

  // All orders of one character (1 to kMaxOrders of them; 0 for character 0, which has none); returns their number. Under
  // the kinds below 20 a character from 0x7FFF up that has no order of its own has two, 0xFFFF and 0x8000 + (code -
  // 0x7FFF); 0xFFFF itself, for which that overflows, has three: 0xFFFF, 0xFFFF, 0x8000.
  static unsigned short Orders(unsigned short unicode, unsigned char kind, unsigned short orders[kMaxOrders]);
  // The first order; 0 for character 0.
  static unsigned short Order(unsigned short unicode, unsigned char kind);

  static unsigned short ToLower(unsigned short unicode);  // simple (one to one) case mapping
  static unsigned short ToUpper(unsigned short unicode);
};

#endif
