// string_storage.h - storage of string runs beside the exported StringStore, StringLoad and StringSizeGet.
#ifndef KT_OPS_STRING_STORAGE_H
#define KT_OPS_STRING_STORAGE_H

#include "kttypdsc.h"

namespace kt {

struct Record;

// A null string's record has no characters.
unsigned long stringNullSizeGet(unsigned long count);

// What the index keys of the texts of an older record take, at most `count` of them, under the code set that these count
// as.
unsigned long olderKeySize(const Record& record, unsigned char codeSet, unsigned long count);

// As StringSizeGet for the records at the file's position, which stays. Records that do not lie wholly in the file do
// not count, and end the walk.
unsigned long stringSizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long count);

// --- the legacy table: one record of the older form a run -------------------------------------------------------------

// 8-bit texts go as they lie, 16-bit ones in the default 8-bit code set, each up to its first zero. What does not fit
// into the one length word is cut: texts behind it load as empty ones. Returns L + 2, or 0 for a count of 0.
unsigned long legacyStringStore(void* dst, const void* src, unsigned char format, unsigned long count);
// The bytes that it writes, or those of the run at data.
unsigned long legacyStringSizeGet(const void* data, unsigned char givenFormat, unsigned char format,
                                  unsigned long count);
unsigned long legacyStringSizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long count);

}  // namespace kt

#endif
