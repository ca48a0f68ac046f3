// kttypdsc.h - type ids and the type descriptor: one record of per-type operations for each type id.
//
// A type id is a signed byte. The current table holds the ids below KtTYPE_COUNT, the legacy table those below
// KtLEGACY_TYPE_COUNT. Ids of 100 and more, and every other id outside the table in use, act as the illegal descriptor
// (id 40).
#ifndef KTTYPDSC_H
#define KTTYPDSC_H

#include "ktapi.h"
#include "kttypbnd.h"

class KtString;
class KtTypeConvertData;
class MemFile;

// DISK: type ids are stored in schemas; a number never changes its meaning and is never used again.
enum KtTypeId : signed char {
  KT_ID_char = 0,
  KT_ID_short = 1,
  KT_ID_long = 2,
  KT_ID_double = 3,
  KT_ID_float = 4,
  KT_ID_KtWord = 5,
  KT_ID_KtDWord = 6,
  KT_ID_int = 7,
  KT_ID_unsigned = 8,
  KT_ID_enum = 9,
  KT_ID_KtByte = 10,
  KT_ID_KtString = 11,
  KT_ID_KtDate = 12,
  KT_ID_KtTime = 13,
  KT_ID_BlockId = 14,
  KT_ID_KtObjId = 15,
  KT_ID_KtClassId = 16,
  KT_ID_KtRef = 17,
  KT_ID_KtBlob = 18,
  KT_ID_KtDateTime = 19,
  KT_ID_KtIString = 20,
  KT_ID_KtCaseIString = 21,
  KT_ID_d_Date = 22,
  KT_ID_d_Time = 23,
  KT_ID_d_Timestamp = 24,
  KT_ID_d_Interval = 25,
  KT_ID_KtInt64 = 26,
  KT_ID_KtBoolean = 27,
  KT_ID_KtNull_char = 28,
  KT_ID_KtNull_uchar = 29,
  KT_ID_KtNull_short = 30,
  KT_ID_KtNull_ushort = 31,
  KT_ID_KtNull_int = 32,
  KT_ID_KtNull_unsigned = 33,
  KT_ID_KtNull_long = 34,
  KT_ID_KtNull_ulong = 35,
  KT_ID_KtNull_float = 36,
  KT_ID_KtNull_double = 37,
  KT_ID_KtNull_KtInt64 = 38,
  KT_ID_KtSeal = 39,
  KT_ID_illegal = 40,
};
constexpr int KtTYPE_COUNT = 41;         // of the current table
constexpr int KtLEGACY_TYPE_COUNT = 28;  // of the legacy table
constexpr char KtNO_TYPE = 100;          // "no type": a released KtTypeConvertData carries it

constexpr int KtERR_NOT_APPLICABLE = -2999;  // of the null operations: no such operation for this type
constexpr int KtERR_OVERRUN = 2101;          // status: a run ended before `count` values, or rests on a truncated key

// The operations. Every one works on a run of `count` values; a count of 0 does nothing and answers 0, with exceptions:
// Create and what builds on it make an array of no values, which Delete takes back; print and scan of other types than
// char and KtByte look at the first value whatever the count is; a run of 0 blobs has a header of 4 bytes on disk; the
// estimate of KtClassId is always 1. Disk runs may be unaligned. Null pointers to values are the caller's error where
// count is not 0; but SizeGet of fixed sizes looks at none, and print and scan do nothing with one, whatever count is,
// except that char and KtByte print an empty text.
// Lengths are in bytes; those of Compare and Hash are 0 where a run holds exactly count values.
// format: a code of ktbs.h in the low four bits; which operations take 8 for values in memory, and which for one more
// disk form: docs/formats/README.md. status: 0, or KtERR_OVERRUN.
// Owner: arrays that an operation returns belong to the caller, who frees them by Delete with the same count. They, and
// holders, are null when memory is exhausted.
// Threads: any thread may call any operation; runs that an operation writes belong to one thread at a time.
using KtCreateFunc = void* (*)(unsigned long count);
using KtDeleteFunc = void* (*)(void* values, unsigned long count);
using KtStoreFunc = unsigned long (*)(void* dst, const void* src, unsigned char format, unsigned long count);
using KtLoadFunc = KtStoreFunc;
using KtNullSizeGetFunc = unsigned long (*)(unsigned long count);
using KtSizeGetFunc = unsigned long (*)(const void* values, unsigned char givenFormat, unsigned char format,
                                        unsigned long count);
using KtSizeGetFromMemFileFunc = unsigned long (*)(MemFile* file, unsigned char format, unsigned long count);
using KtTypeCmpFunc = long (*)(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b,
                               unsigned short options, unsigned long count, int& status);
using KtEvalAndBoundFunc = float (*)(KtIdxBounds* range, unsigned short& flags, void* key, unsigned char format,
                                     unsigned long count, KtIdxBounds* result);
using KtHashFunc = unsigned long (*)(unsigned char format, unsigned long length, void* values, unsigned long count,
                                     int& status);
using KtConvertToFunc = KtTypeConvertData* (*)(void* values, unsigned long count);
using KtConvertFromFunc = void* (*)(KtTypeConvertData* data, unsigned long count);
using KtConstructorFunc = void (*)(void* values, unsigned long count, unsigned long unused);
using KtDestructorFunc = KtConstructorFunc;
using KtAssignmentFunc = void (*)(void* dst, void* src, unsigned long count, int fill);
using KtCopyFunc = KtAssignmentFunc;
using KtTranslateFunc = unsigned long (*)(void* dst, unsigned char dstFormat, unsigned long dstLength, void* src,
                                          unsigned char srcFormat, unsigned long srcLength, unsigned long count);
using KtIsNullFunc = int (*)(void* value);
using KtSetNullFunc = int (*)(void* value);
using KtPrintToKtStringFunc = KtString& (*)(KtString& out, void* values, const char* format, unsigned long count);
using KtScanFromKtStringFunc = void* (*)(void* values, KtString& in, const char* format, unsigned long count);
using KtDefaultValueFunc = void* (*)(unsigned long count, int asNull);

// One type. ConvertTo, ConvertFrom, SetNull, PrintToKtString and ScanFromKtString may be null: not offered. A type
// supports null values exactly when SetNull is not null. All other operations are present in every row.
// ConvertTo and ConvertFrom see unsigned numbers as signed ones: 4294967295 is "-1" and comes back, but texts above
// 2147483647 give that (docs/decisions/numbers.md). Printing and scanning know all unsigned numbers.
struct KtTypeDescriptor {
  const char* Name;                             // as listed in docs/types.md; compared byte for byte
  KtCreateFunc Create;                          // room for `count` values in memory form; null when memory is exhausted
  KtDeleteFunc Delete;                          // destroys and frees what Create made; returns null
  KtStoreFunc Store;                            // memory form to disk form; the bytes written
  KtLoadFunc Load;                              // disk form to memory form; the bytes read
  KtNullSizeGetFunc NullSizeGet;                // disk bytes of `count` null values
  KtSizeGetFunc SizeGet;                        // disk bytes, in format, of values held in givenFormat
  KtSizeGetFromMemFileFunc SizeGetFromMemFile;  // the same at the file's position, which stays
  KtTypeCmpFunc Compare;                        // below 0, 0, above 0: of the first pair that differs
  KtEvalAndBoundFunc EvalAndBound;              // selectivity 0 to 1, and bounds of an index scan: kttypbnd.h
  KtHashFunc Hash;                              // 32 bits; equal values hash alike (docs/decisions: exceptions)
  KtConvertToFunc ConvertTo;                    // one KtString a value, see above; the caller owns the holder
  KtConvertFromFunc ConvertFrom;                // a new array, made by Create; missing strings count as null ones
  KtConstructorFunc Constructor;                // constructs in place
  KtDestructorFunc Destructor;                  // destroys in place
  KtAssignmentFunc Assignment;                  // fill non-zero: the one value at src goes to all elements
  KtCopyFunc Copy;                              // as Assignment, for uninitialised destinations
  KtTranslateFunc Translate;                    // between two forms; disk bytes read or written, or bytes copied
  KtIsNullFunc IsNull;                          // non-zero for null; 0 for types without null
  KtSetNullFunc SetNull;                        // makes the value null; 0, or KtERR_NOT_APPLICABLE
  const char* Format;                           // default print and scan format
  KtPrintToKtStringFunc PrintToKtString;        // returns out
  KtScanFromKtStringFunc ScanFromKtString;      // returns values (the illegal row: null)
  unsigned short MemLen;                        // bytes of one value in memory form
  unsigned short IsFixed;                       // 1 fixed length, 0 variable
  KtDefaultValueFunc DefaultValue;              // a new array of default values, of null ones on request
  void* Reserved;                               // always null
};
static_assert(sizeof(KtTypeDescriptor) == 26 * sizeof(void*));

#endif
