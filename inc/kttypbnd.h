// kttypbnd.h - KtIdxBounds, the bounds of an index scan, and the flags of the comparison that it answers.
#ifndef KTTYPBND_H
#define KTTYPBND_H

#include "ktapi.h"

constexpr unsigned short KtINDEX_MAX_KEYLEN = 254;  // DISK: bytes of the longest index key

// Comparison flags of EvalAndBound: which keys are selected, told by where they stand to the comparison value. Any
// combination may be set; 3 is "less or equal", 6 "not equal". Recording bounds clears all flags but 0x800F: of these 8
// and 0x8000 are reserved, kept as they are and without effect.
constexpr unsigned short KtBOUND_EQUAL = 1;
constexpr unsigned short KtBOUND_LESS = 2;
constexpr unsigned short KtBOUND_GREATER = 4;

// KtIdxBounds: two keys, the known range of an index or the bounds of a scan.
//
// Null:   a key that is null is not set: the range is not known there, or the scan has no bound.
// Status: EvalAndBound sets only what is not set: a result must be empty, else it keeps the bounds of an earlier
//         call. Call KtFreeIdxBounds before it is used again.
// Disk:   keys are in the disk form of their type, those of strings in the index key form (docs/formats/index-keys.md).
//         Their byte order is that of EvalAndBound's `format`, for range, key and result alike: the host's under 1 and
//         8, where the type's page says no other. So a KtString in memory gives bounds for an index of keys under 0x81;
//         where they are under 0x82 give the string's record, stored under 2.
// Owner:  a plain record without a destructor. Keys that EvalAndBound sets come from malloc; whoever destroys the record
//         frees them, by KtFreeIdxBounds. A range that is only read may point at memory of any kind.
// Threads: none of its own.
struct KtIdxBounds {
  unsigned char* lowKey = nullptr;
  unsigned char* highKey = nullptr;
  unsigned char lowKeyLength = 0;  // bytes
  unsigned char highKeyLength = 0;
};

// Frees the keys that EvalAndBound has set and empties the record, which may then be used again. Null does nothing.
KTTM_API void KtFreeIdxBounds(KtIdxBounds* bounds);

#endif
