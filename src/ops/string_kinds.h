// string_kinds.h - what the string types do differently. Their operations are written once, over these descriptions.
//
//   kHasNull            whether language 254, or code set 254 with language 0, makes a null
//   kHashesPrimaryOnly  whether texts may be equal that differ in case, diacritics or symbols
//   see(text)           the text as the type reads it
//   seeOlder(text)      a text of an older record, which names neither code set nor language
//   cmpOp(op)           the compare operator that acts where op is asked for
//   kStore, kSizeGet, kSizeGetFromMemFile   its storage operations
#ifndef KT_OPS_STRING_KINDS_H
#define KT_OPS_STRING_KINDS_H

#include "kttypops.h"
#include "ops/string_record.h"
#include "ops/string_storage.h"
#include "text/str_compare.h"

namespace kt {

// For types without null: what marks a null elsewhere is a language without rules of its own, or Unicode.
inline void clearNullMarks(TextRef& text) {
  if (text.language == 254) text.language = 0;
  if (text.codeSet == kNullCodeSet) text.codeSet = 253;
}

struct PlainStrings {
  static constexpr bool kHasNull = true;
  static constexpr bool kHashesPrimaryOnly = false;
  static constexpr KtStoreFunc kStore = StringStore;
  static constexpr KtSizeGetFunc kSizeGet = StringSizeGet;
  static constexpr KtSizeGetFromMemFileFunc kSizeGetFromMemFile = stringSizeGetFromMemFile;
  static void see(TextRef&) {}
  static void seeOlder(TextRef& text, unsigned char format) {
    text.codeSet = seenCodeSet(0, format);
    text.language = 0;
  }
  static unsigned cmpOp(unsigned op) { return op; }
};

// The string type of the legacy table. An older text counts as what it becomes when it is loaded, so that records
// and the strings made of them sort alike.
struct LegacyStrings {
  static constexpr bool kHasNull = false;
  static constexpr bool kHashesPrimaryOnly = false;
  static constexpr KtStoreFunc kStore = legacyStringStore;
  static constexpr KtSizeGetFunc kSizeGet = legacyStringSizeGet;
  static constexpr KtSizeGetFromMemFileFunc kSizeGetFromMemFile = legacyStringSizeGetFromMemFile;
  static void see(TextRef& text) { clearNullMarks(text); }
  static void seeOlder(TextRef& text, unsigned char format) {
    text.codeSet = seenCodeSet(narrowSet(), format);
    text.language = KtLanguageContext::GetDefaultLanguage();
  }
  static unsigned cmpOp(unsigned op) { return op; }
};

// Sizes of strings whose index keys hold words under code set 0 too.
inline unsigned long wordKeySizeGet(const void* data, unsigned char givenFormat, unsigned char format,
                                    unsigned long count) {
  return StringSizeGet(data, givenFormat, format | kNativeForZero, count);
}
inline unsigned long wordKeySizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long count) {
  return stringSizeGetFromMemFile(file, format | kNativeForZero, count);
}

// Strings that always sort by the collation of their language: code set 0 counts as the native one.
struct InternationalStrings {
  static constexpr bool kHasNull = false;
  static constexpr bool kHashesPrimaryOnly = true;
  static constexpr KtStoreFunc kStore = StringStore;
  static constexpr KtSizeGetFunc kSizeGet = wordKeySizeGet;
  static constexpr KtSizeGetFromMemFileFunc kSizeGetFromMemFile = wordKeySizeGetFromMemFile;
  static void see(TextRef& text) {
    clearNullMarks(text);
    if (text.codeSet == 0) text.codeSet = storedCodeSet(0);
  }
  static void seeOlder(TextRef& text, unsigned char format) {
    LegacyStrings::seeOlder(text, format);
    see(text);
  }
  static unsigned cmpOp(unsigned op) { return op | kNoWildcards; }
};

struct CaselessStrings : InternationalStrings {
  // Binary order would tell the cases apart.
  static unsigned cmpOp(unsigned op) { return (op & ~kBinaryOrder) | kNoWildcards | kIgnoreCase; }
};

// Applies to all of them: instantiations stand in the files of the operations.
#define KT_FOR_STRING_KINDS(instantiate) \
  instantiate(PlainStrings) instantiate(LegacyStrings) instantiate(InternationalStrings) instantiate(CaselessStrings)

}  // namespace kt

#endif
