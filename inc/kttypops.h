// kttypops.h - the named per-type operations that the rows of the type table point at.
//
// Compares and sizes are pure, Store and Load change nothing but dst: any thread may call them at any time. Runs may be
// unaligned, but for arrays of KtString and KtBlob. A null pointer with a count above 0 is the caller's error.
#ifndef KTTYPOPS_H
#define KTTYPOPS_H

#include "kttypdsc.h"

// --- compare -----------------------------------------------------------------------------------------------------
// Compares `count` values of a with those of b, both in `format`.
//   Result: -1, 0 or +1 for the first pair that differs (some types: any value of that sign).
//   lengthA, lengthB: bytes of the runs; 0 means exactly `count` values. options: a compare operator; read by the string
//   compares and, bit 0x10 alone, by those of dates that know -1.
//   Status: 0; KtERR_OVERRUN when a run ends before `count` values were compared, which is checked after a difference
//   too: the result is that of the pairs read so far.
#define KT_COMPARE_ARGUMENTS                                                                                    \
  unsigned char format, unsigned long lengthA, void *a, unsigned long lengthB, void *b, unsigned short options, \
      unsigned long count, int &status
KTTM_API long CharCompare(KT_COMPARE_ARGUMENTS);      // signed bytes, whatever the format
KTTM_API long ByteCompare(KT_COMPARE_ARGUMENTS);      // unsigned bytes, whatever the format
KTTM_API long ShortCompare(KT_COMPARE_ARGUMENTS);     // signed 16 bits
KTTM_API long WordCompare(KT_COMPARE_ARGUMENTS);      // unsigned 16 bits
KTTM_API long IntCompare(KT_COMPARE_ARGUMENTS);       // signed 32 bits; two bytes on disk in format 4
KTTM_API long UnsignedCompare(KT_COMPARE_ARGUMENTS);  // unsigned 32 bits; two-byte disk values are sign-extended first
KTTM_API long LongCompare(KT_COMPARE_ARGUMENTS);      // signed 32 bits
KTTM_API long DwordCompare(KT_COMPARE_ARGUMENTS);     // unsigned 32 bits
KTTM_API long FloatCompare(KT_COMPARE_ARGUMENTS);     // NaN is equal to everything
KTTM_API long DoubleCompare(KT_COMPARE_ARGUMENTS);    // NaN is equal to everything
KTTM_API long Int64Compare(KT_COMPARE_ARGUMENTS);     // signed 64 bits
KTTM_API long BooleanCompare(KT_COMPARE_ARGUMENTS);   // null (255), then the order of KtBoolean's < and >
// KtStrCmp of each pair under `options`, reduced to -1, 0, +1. Index keys (0x80) are compared by their words, without
// wildcards, code set 0 apart. Where the outcome lies behind the end of a cut key, that key counts as the greater one, and
// the status is KtERR_OVERRUN.
KTTM_API long StringCompare(KT_COMPARE_ARGUMENTS);

// Dates and times. Every code but 8 is a disk form. A result is what the class's != gives in memory form (for dates the
// difference of fields or of days); on disk -1, 0 or +1, and the bytes are signed.
// DateCompare, d_DateCompare: on disk a year, month or day of -1 in b matches any in a, unless options holds bit 0x10
// (in memory form -1 matches on either side in DateCompare, whatever the options, and never in d_DateCompare).
KTTM_API long DateCompare(KT_COMPARE_ARGUMENTS);
KTTM_API long TimeCompare(KT_COMPARE_ARGUMENTS);
KTTM_API long DaTimeCompare(KT_COMPARE_ARGUMENTS);       // no wildcards on disk
KTTM_API long d_DateCompare(KT_COMPARE_ARGUMENTS);       // years on disk are unsigned
KTTM_API long d_TimeCompare(KT_COMPARE_ARGUMENTS);       // by the instant in memory, zone first on disk
KTTM_API long d_TimestampCompare(KT_COMPARE_ARGUMENTS);  // on disk as d_DateCompare, then as d_TimeCompare

// Identities and blobs. Here a difference ends the compare with status 0, whether the runs go on or not.
// Object ids, class ids, references: memory form is exactly the format 8. Every other format is a disk form, whose bytes
// are compared from the most significant end of the little-endian layout down; the result is the difference of the first
// bytes that differ. Blocks do not count, nor does the class of a reference, whose database comes first on disk.
KTTM_API long ObjIdCompare(KT_COMPARE_ARGUMENTS);
KTTM_API long ClassIdCompare(KT_COMPARE_ARGUMENTS);  // null first
KTTM_API long RefCompare(KT_COMPARE_ARGUMENTS);
// Byte by byte, then by length; -2 or +2 when only the first or only the second blob is null. Lengths of disk runs
// include the header, and no element is read beyond what they, or the header, announce.
KTTM_API long BlobCompare(KT_COMPARE_ARGUMENTS);
#undef KT_COMPARE_ARGUMENTS

// --- strings -----------------------------------------------------------------------------------------------------
// Format bits for strings: low four bits byte order, 8 memory, 0x20 stored code sets count as 0, 0x40 a stored code set 0
// counts as the native one, 0x80 index key form.

// Writes `count` disk records of the KtString array at src. Result: bytes written, modulo 65,536 (use the sizes to step).
// The one text that a record cannot hold raises the assertion "String overflow" && 0 and is clipped to 65,531 bytes.
KTTM_API unsigned long StringStore(void* dst, const void* src, unsigned char format, unsigned long count);
// Reads `count` disk records, of the current or the older form, into the KtString array at dst, whose texts are replaced.
// Where an older record has fewer than `count` texts, empty strings follow them. A string whose text finds no memory stays
// as it was. Result: bytes consumed, modulo 65,536. Never reads past a record, whatever its length word says.
KTTM_API unsigned long StringLoad(void* dst, const void* src, unsigned char format, unsigned long count);
// Disk bytes of `count` strings; data is disk records, or a KtString array when givenFormat has bit 8. A record of the older
// form ends the walk, and its own size (L + 2) is the result, whatever `count` says. Under 0x80: room enough for the index
// keys.
KTTM_API unsigned long StringSizeGet(const void* data, unsigned char givenFormat, unsigned char format,
                                     unsigned long count);

#endif
