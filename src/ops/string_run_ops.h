// string_run_ops.h - compare, hash and translate of string runs, written once over what the string types do differently
// (string_kinds.h). StringCompare is compareStrings of the plain kind.
#ifndef KT_OPS_STRING_RUN_OPS_H
#define KT_OPS_STRING_RUN_OPS_H

#include "kttypdsc.h"

namespace kt {

// -1, 0, +1 of the first pair that differs under the compare operator `options`, as KtStrCmp takes it.
// Format: bit 8 arrays of KtString, 0x80 index keys, else disk records of either form, compared where they lie; the bits
// 0x20 and 0x40 change the code sets that records count as. Nothing is copied or allocated.
// Status: KtERR_OVERRUN when a run ends before `count` strings, or when the outcome lies in the cut part of a key; a cut
// key then counts as the greater one unless the other ends there too.
// Keys hold no characters: wildcards act in those of code set 0 only.
template <class Kind>
long compareStrings(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b,
                    unsigned short options, unsigned long count, int& status);

// The exclusive or of the hashes of the strings; memory, records and whole keys of equal strings hash alike.
// Status: KtERR_OVERRUN when the run ends before `count` strings, or a key is cut: the result is that of what there is.
template <class Kind>
unsigned long hashStrings(unsigned char format, unsigned long length, void* values, unsigned long count, int& status);

// Memory to disk, disk to memory (one string), anything to index keys; the same form is copied. Other combinations
// assert and give 0. dstLength is never exceeded, and zeros fill what is left of it. Returns the bytes produced.
template <class Kind>
unsigned long translateStrings(void* dst, unsigned char dstFormat, unsigned long dstLength, void* src,
                               unsigned char srcFormat, unsigned long srcLength, unsigned long count);

}  // namespace kt

#endif
