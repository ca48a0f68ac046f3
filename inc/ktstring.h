// ktstring.h - the string value class: text with a code set and a language.
#ifndef KTSTRING_H
#define KTSTRING_H

#include "ktchar.h"
#include "ktstrcmp.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

class KtString;

// What stands for the string that its constructor makes.
template <class Text>
concept KtTextOperand = std::is_same_v<Text, char> || std::is_same_v<Text, unsigned short> ||
    std::is_same_v<Text, char*> || std::is_same_v<Text, const char*> || std::is_same_v<Text, unsigned short*> ||
    std::is_same_v<Text, const unsigned short*>;

namespace kt {
template <KtTextOperand Text>
bool isMade(const KtString& made, Text from);
}

// Result codes of string operations.
constexpr int KtERR_NOT_FOUND = -1;
constexpr int KtERR_BAD_CODESET = -2002;
constexpr int KtERR_END_OF_LIST = -2005;

// The bytes of the longest text of a string, its terminator included.
constexpr unsigned long KtMAX_TEXT_BYTES = 65533;

// KtString: a text in one code set and language.
//
// Range:  up to KtMAX_TEXT_BYTES. A longer result raises the assertion "String overflow" && 0 (source
//         src\ktstring) unless the default configuration holds "stringOverflow" (qualifier "debug") as 0; the size is
//         then taken modulo 65,536 and the text clipped to it.
// Null:   language 254, or code set 254 with language 0, whatever the text. SetNullValue gives the text up; a null made by
//         its marks alone keeps its text, and every operation sees that, but for comparison, hash, index keys, printing
//         and conversion, which know the null.
// Order:  Compare and the relational operators: KtStrCmp under an operator of the KtCMP_ bits (ktstrcmp.h). Texts of two
//         languages that collate differently have no letter or digit in common: see there.
// Size:   16 bytes on 64-bit platforms, 8 on 32-bit ones. The block behind buffer is a size class larger than bufferSize,
//         so that appending one by one costs time in proportion to the text; it is the string's own: characters may be
//         changed in place, but buffer and bufferSize are never assigned, nor a terminator moved.
// Disk:   docs/formats/strings.md: a record by StringStore, an index key by Translate.
// Text:   one byte a character in code sets below 225, one 16-bit unit in host order from 225 on. Comparison, hash and
//         index keys take code set 255 for the default 8-bit set: they see the bytes of its units, up to the first that
//         is zero, and memory and disk may differ. Name 16-bit texts 253.
// Status: operations that can fail answer one of the KtERR_ codes; the others leave the string unchanged.
// Owner:  the string owns its buffer (malloc); a failed allocation calls the memory handler and leaves the string as it
//         was (an empty one when it had to give up its old text first).
// Threads: a string belongs to one thread at a time; const operations may run concurrently.
//
// Lengths and positions are in characters. A count of 65535 (or -1) means "to the end"; other negative counts count as 0.
class KTTM_API KtString {
public:
  char* buffer;              // the characters and a terminator; null for the empty string
  std::uint16_t bufferSize;  // bytes that the text takes in buffer, terminator included; 0 when buffer is null
  unsigned char codeSet;
  unsigned char language;

  // --- make -----------------------------------------------------------------------------------------------------
  KtString();                                               // empty, default code set and language
  KtString(unsigned char codeSet, unsigned char language);  // empty
  template <class CodeSet, class Language>
    requires(std::is_integral_v<CodeSet>&& std::is_integral_v<Language>)
  KtString(CodeSet set, Language lang)  // the same, so that KtString(0, 1) has one meaning
      : KtString(static_cast<unsigned char>(set), static_cast<unsigned char>(lang)) {}
  KtString(const KtString& other);
  KtString(KtString&& other) noexcept;  // as Destruct
  KtString(char ch);                    // default 8-bit code set; empty for 0
  KtString(unsigned short ch);          // default 16-bit code set; empty for 0
  // Texts of char are in the default 8-bit code set, texts of 16-bit units in the default 16-bit one; null is an empty
  // text. n: exactly n characters, zeros included, which must be there; 65535: up to the terminator.
  KtString(const char* text);
  KtString(const unsigned short* text);
  KtString(const char* text, unsigned short n);
  KtString(const unsigned short* text, unsigned short n);
  KtString(short number);  // decimal
  KtString(int number);
  KtString(unsigned int number);  // as "%d": above 2,147,483,647 prints negative
  KtString(long number);
  KtString(unsigned long number);
  KtString(double number);  // as "%.15g"
  ~KtString();

  int Init();                           // fields of a new empty string, the old ones forgotten (no buffer is freed); 0
  void Destroy();                       // frees the buffer and zeroes all four fields
  void d_deactivate();                  // the same
  KtString& Destruct(KtString& other);  // moves: takes over other's fields; other is left without buffer

  // --- code sets ------------------------------------------------------------------------------------------------
  int SetCodeSetCode(unsigned char code);  // relabels; 0, or -2002 across character sizes
  void SetCodeSet(unsigned char code);     // converts when the character size changes, else relabels
  int MapToCodeSet(unsigned char code);    // converts; 0 (also, unchanged, without memory), or -2002 for code 0
  // Becomes a copy of at most count characters of source in code set `code`, with source's language. Returns the
  // characters copied, -2002 when source is this string, or 0, and nothing is changed, without memory. count as above.
  int CopyMapped(const KtString& source, unsigned char code, int count);

  // The defaults are those of the process's language context. Set them while no other thread uses strings.
  static unsigned char GetDefaultCodeSet() { return KtLanguageContext::GetDefaultCodeSet(); }
  static unsigned char GetDefault8CodeSet() { return KtLanguageContext::GetDefault8CodeSet(); }
  static unsigned char GetDefault16CodeSet() { return KtLanguageContext::GetDefault16CodeSet(); }
  static unsigned char GetDefaultLanguage() { return KtLanguageContext::GetDefaultLanguage(); }
  static unsigned short GetDefaultCmpOp() { return KtLanguageContext::GetDefaultCmpOp(); }
  static void SetDefaultCodeSet(unsigned char code) { KtLanguageContext::SetDefaultCodeSet(code); }
  static void SetDefaultLanguage(unsigned char language) { KtLanguageContext::SetDefaultLanguage(language); }
  static void SetDefaultCmpOp(unsigned short cmpOp) { KtLanguageContext::SetDefaultCmpOp(cmpOp); }

  // The wildcard characters of pattern comparison: process-wide, kept as collation orders (one for the alphabetic kinds of
  // languages, one for the ideographic kind), "*", "?" and "\" until set; the character 0 restores these. What is set
  // replaces the old character, but not in Find's added "*" nor in patterns of code set 0. Any thread may call them. 0.
  static int SetAsterisk(const KtChar& ch);
  static int SetQuestion(const KtChar& ch);
  static int SetEscape(const KtChar& ch);

  unsigned char GetLanguage() const { return language; }
  void SetLanguage(unsigned char code) { language = code; }
  unsigned char GetCodeSet() const { return codeSet; }

  // --- ask ------------------------------------------------------------------------------------------------------
  static const KtString& EmptyString();
  const char* StrGet() const;  // never null; two zero bytes without a buffer
  unsigned short CharSize() const { return KtCodeSet::CharSizeOf(codeSet); }
  unsigned short Len() const;  // characters up to the terminator
  int IsEmpty() const;         // 1 or 0, like the next two
  int operator!() const { return IsEmpty(); }
  int IsNullValue() const;
  int SetNullValue();  // frees the text; code set 0, language 254; returns 0
  // i up to the length (the terminator), else character 0, code set and language 255. A string's code set 255 is 253 here.
  KtChar operator[](int i) const;
  operator int() const;           // as strtol with base 0, or decimal under option bit 0; saturates at 32 bits
  operator short() const;         // the same, the low 16 bits
  operator long() const;          // decimal
  operator double() const;        // as atof, whatever the process locale
  int Atol(long& value) const;    // 0, or -1 (value 0) unless the text starts with a digit or "-"
  int Strtol(long& value) const;  // the same with base detection

  // --- change ---------------------------------------------------------------------------------------------------
  // Every operation returns the string. A character or text is taken in the default code set of its width and, but for =,
  // converted into the string's own; a null pointer is an empty text.

  // Code set and language become those of the source, or the defaults.
  KtString& operator=(const KtString& other);
  KtString& operator=(KtString&& other) noexcept;  // as Destruct
  KtString& operator=(const char* text);
  KtString& operator=(const unsigned short* text);
  // Code set and language stay. The character 0 adds nothing.
  KtString& operator+=(const KtString& other);
  inline KtString& operator+=(char ch);
  KtString& operator+=(unsigned short ch);  // one character, in 8-bit strings too, unlike <<
  KtString& operator+=(const char* text);
  KtString& operator+=(const unsigned short* text);
  template <class Number>
    requires(std::is_arithmetic_v<Number> && !std::is_same_v<Number, char> && !std::is_same_v<Number, unsigned short>)
  KtString& operator+=(Number number)  // its text, as the constructor makes it
  {
    return *this += KtString(number);
  }

  // As += of the string that x's constructor makes.
  KtString& operator<<(char x);
  KtString& operator<<(const char* x);
  KtString& operator<<(const unsigned short* x);
  KtString& operator<<(const KtString& x);
  KtString& operator<<(short x);
  KtString& operator<<(unsigned short x);  // 16-bit string: one character; 8-bit string: its decimal number
  KtString& operator<<(int x);
  KtString& operator<<(unsigned int x);
  KtString& operator<<(long x);
  KtString& operator<<(unsigned long x);
  KtString& operator<<(float x);
  KtString& operator<<(double x);

  KtString& Insert(const KtString& s, unsigned short pos);   // nothing when pos > Len()
  KtString& Replace(const KtString& s, unsigned short pos);  // overwrites; the length never changes
  KtString& Cut(unsigned short pos, int n);                  // nothing when pos >= Len(); n as above
  KtString& Fill(unsigned short n, char ch);                 // the whole text becomes n times ch; n 0 empties
  KtString& Fill(unsigned short n, unsigned short ch);
  KtString& Expand(unsigned short n, char ch);  // adds ch up to the length n; nothing when n <= Len()
  KtString& Expand(unsigned short n, unsigned short ch);
  // Take away the characters at the ends that are KtChar::IsSpace: blanks, separators, controls.
  KtString& LeftTrim();
  KtString& RightTrim();
  KtString& Trim();
  // Rewrite every character up to the first zero; a zero that op writes is dropped. ToLower, ToUpper: within the code set.
  KtString& Transform(KtCharOperation& op);
  KtString& ToLower();
  KtString& ToUpper();
  // Replaces what Find, under the default operator, finds from pos on, as many characters as `from` has; what was put in
  // is not searched again. Nothing when `from` is empty or pos > Len().
  KtString& ReplaceAll(const KtString& from, const KtString& to, unsigned short pos = 0);
  template <KtTextOperand Text>
  KtString& ReplaceAll(const KtString& from, Text to, unsigned short pos = 0)  // nothing without memory for `to`
  {
    const KtString made(to);
    return kt::isMade(made, to) ? ReplaceAll(from, made, pos) : *this;
  }
  KtString& ReplaceAll(char from, char to, unsigned short pos = 0);
  KtString& ReplaceAll(unsigned short from, unsigned short to, unsigned short pos = 0);
  // Parts, in this code set and language: empty when pos >= Len(); n is clipped to what is there.
  KtString Copy(unsigned short pos, int n = 65535) const;
  KtString Left(unsigned short n) const;
  KtString Right(unsigned short n) const;

  // --- search ---------------------------------------------------------------------------------------------------
  // The first position from pos on at which the pattern matches, or -1; also -1 when either has no buffer or pos is beyond
  // the length. Under 0x10 as many characters as the pattern has are compared; without it the pattern, with "*" put behind
  // it, is compared to the end of the text. The "*" is put there always, also where it is no wildcard: under 0x100, behind
  // an escape character, or after SetAsterisk of another character. There the pattern does not match as a beginning.
  // A character is a pattern in the default language: of another collation kind than the text's it is found nowhere.
  int Find(const KtString& pattern, unsigned short pos = 0, unsigned short cmpOp = KtCMP_DEFAULT) const;
  int Find(char ch, unsigned short pos = 0, unsigned short cmpOp = KtCMP_DEFAULT) const;
  int Find(unsigned short ch, unsigned short pos = 0, unsigned short cmpOp = KtCMP_DEFAULT) const;
  int SubStringPos(const KtString& s, unsigned short pos = 0) const { return Find(s, pos); }

  // --- compare --------------------------------------------------------------------------------------------------
  // Negative, 0, positive, as KtStrCmp; at most `length` characters, -1 for whole strings. Under length 0, or below -1,
  // all are equal but nulls.
  long Compare(const KtString& other, short length = -1, unsigned short cmpOp = KtCMP_DEFAULT) const;
  // 1 when equal under 0x100 and the common language: that of both strings where they have one, else 0.
  int EqualsIgnoreLanguage(const KtString& other) const;

  // --- the rebuild behind every edit ------------------------------------------------------------------------------
  enum class RebuildMode { kOverwrite = 1, kInsert = 2, kRebuild = 3 };
  // source: characters in sourceCodeSet, `count` of them from srcPos on (code set 0: as they stand in an 8-bit string,
  // the native set in a 16-bit one); positions and counts in characters; repeat > 1 writes the source's first character
  // that often. The source may lie in this string's own buffer. storeFlag: the byte order of 16-bit
  // source characters, as the flag of KtStringIterator; 255 is ordinary use.
  void Rebuild(const char* source, unsigned char sourceCodeSet, unsigned long pos, unsigned long srcPos,
               unsigned long count, unsigned long repeat, RebuildMode mode, unsigned char storeFlag = 255);

private:
  KtString& Append(char ch);  // += for every case
};

static_assert(sizeof(KtString) == 2 * sizeof(void*));

// Most characters are ASCII, which is alike in all code sets, and most leave the end of the text within the same 16 bytes
// of its block; the last of these bytes is 0 when the text ends nowhere before its end. The three small fields are read
// and written as one: a narrower access would wait longer for the one before.
inline KtString& KtString::operator+=(char ch) {
  struct Fields {
    std::uint16_t size;
    unsigned char set, language;
  } fields;
  char* stored = reinterpret_cast<char*>(this) + sizeof buffer;
  std::memcpy(&fields, stored, sizeof fields);
  const unsigned size = fields.size;
  const bool isPlain = static_cast<signed char>(ch) > 0 && fields.set < 225;
  if (!isPlain || size - 1u >= 65532u || (size & 15u) == 15u || buffer[size | 15u] != 0) return Append(ch);
  buffer[size - 1u] = ch;
  buffer[size] = 0;
  fields.size = static_cast<std::uint16_t>(size + 1u);
  std::memcpy(stored, &fields, sizeof fields);
  return *this;
}

// Takes the next item of a separated list: the characters from pos up to the separator, trimmed, become item, and pos is
// set one past the separator's position, whatever its length. Separators that are found at position 0 of the list are
// skipped. Returns 0, or -2005 at the end: item is unchanged then, but pos may have gone on.
//   separator: found as by Find under the default operator; an empty one makes the rest of the list one item.
//   item may be the list, which then is replaced. When memory is exhausted it may be empty, or not trimmed, and the result
//   is 0 all the same; but -2005 where there was none to look for the separator.
KTTM_API int KtSplitList(KtString& list, KtString& item, const KtString& separator, unsigned short& pos);
template <KtTextOperand Text>
int KtSplitList(KtString& list, KtString& item, Text separator, unsigned short& pos) {
  const KtString made(separator);
  return kt::isMade(made, separator) ? KtSplitList(list, item, made, pos) : KtERR_END_OF_LIST;
}

// Whether there was memory for the string that was made of a text or character: one without characters, though they have
// some, was clipped to none, or could not be made.
template <KtTextOperand Text>
bool kt::isMade(const KtString& made, Text from) {
  if (made.buffer != nullptr) return true;
  if constexpr (std::is_pointer_v<Text>) {
    unsigned long bytes = 0;
    while (from != nullptr && from[bytes / sizeof *from] != 0) bytes += sizeof *from;
    return bytes == 0 || bytes + sizeof *from > KtMAX_TEXT_BYTES;
  } else {
    return from == 0;
  }
}

// Sums and relations of strings, also with texts and characters.
#include "ktstrops.h"

#endif
