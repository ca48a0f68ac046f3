// ktblob.h - the binary large object value class.
#ifndef KTBLOB_H
#define KTBLOB_H

#include "ktapi.h"

#include <cstdint>
#include <type_traits>

class KtString;
struct KtBlobData;
namespace kt {
struct BlobPrivate;
}

// KtBlob: a run of bytes, or null.
//
// Range:  0 to 2,147,483,647 bytes. Negative sizes and counts count as 0; offsets and counts that lead outside a blob
//         are cut at its end or do nothing, as each edit says, however large they are.
// Null:   a blob without record. A new blob is empty, which is not null.
// Order:  byte by byte, unsigned, then by length; null before all others.
// Size:   one pointer.
// Disk:   docs/formats/blobs.md: a run has a header of 4 bytes, the size of what follows; then for each blob its
//         length in 4 bytes, 0xFFFFFFFF for null, and its bytes. Numbers are big-endian under code 2, little-endian
//         under every other.
// Text:   "[BLOB,len=%L]", where %L is the length. Scanning knows null only.
// Status: a failed allocation, and a size beyond the range, calls the memory handler and leaves the blob without bytes:
//         empty, or null when there is no memory for the record either.
// Owner:  the blob owns its record (operator new) and the record its bytes (malloc).
// Threads: a blob belongs to one thread at a time; const operations may run concurrently.
//
// Bytes given to an edit may lie in the blob itself, and a blob may be its own operand. Null bytes count as none; so
// does a null blob as an operand, but = and Destroy make null of it. Edits return the blob. They leave a null blob
// null, but for SetTo, Expand, Resize, and Append of a byte or more, be they a blob's or not.
class KTTM_API KtBlob {
public:
  // --- make -----------------------------------------------------------------------------------------------------
  KtBlob();                    // empty
  explicit KtBlob(long size);  // so many bytes, uninitialised
  template <class Size>
    requires(std::is_integral_v<Size>)
  explicit KtBlob(Size size) : KtBlob(static_cast<long>(size)) {}  // the same, whatever integers are called
  KtBlob(const void* bytes, long n);                               // a copy
  KtBlob(const KtBlob& other);                                     // null for a null one
  ~KtBlob();
  KtBlob& operator=(const KtBlob& other);
  // Moves: takes over other's record; other is left empty, or null if it was null.
  KtBlob& Destroy(KtBlob& other);

  // --- ask ------------------------------------------------------------------------------------------------------
  int IsNullValue() const { return record_ == nullptr; }
  int SetNullValue();   // frees the bytes; returns 0
  long Length() const;  // 0 for null
  // The address of byte `offset`; null unless the blob holds n bytes there and n > 0. Valid until the next edit.
  char* Seek(long offset, long n) const;
  // The first offset at which the pattern's bytes occur; 65535 when there is none (or by chance), and for a null blob.
  // An empty or null pattern occurs at 0. Time in proportion to both lengths, whatever the bytes.
  long Search(const KtBlob& pattern) const;

  // --- change ---------------------------------------------------------------------------------------------------
  // Becomes a copy of n bytes. A buffer that holds n to n + 128 bytes is used again, else one of n bytes is allocated;
  // so in every copy into a blob that is not null.
  KtBlob& SetTo(const void* bytes, long n);
  KtBlob& Expand(long size);  // exactly so many bytes in a new buffer; those behind the old ones uninitialised
  // The same, but shrinking keeps the buffer, and 0 frees it. Beyond the range a null blob becomes an empty one,
  // without a call of the memory handler.
  KtBlob& Resize(unsigned long size);
  KtBlob& Append(const void* bytes, long n);  // a null blob: as SetTo, unless n < 1
  KtBlob& Append(const KtBlob& other);        // the same with other's bytes
  KtBlob& operator+=(const KtBlob& other) { return Append(other); }
  // Overwrites bytes from offset on by the first n of other; n is cut to what this blob, and other, holds.
  KtBlob& CopyTo(const KtBlob& other, long offset, long n);
  // n bytes from offset on, fewer at the end; empty where there are none, and for a null blob.
  KtBlob CopyFrom(long offset, long n) const;
  KtBlob& Cut(long offset, long n);  // removes n bytes, fewer at the end

  // --- compare --------------------------------------------------------------------------------------------------
  int operator==(const KtBlob& other) const { return (*this != other) == 0; }  // 1 or 0
  // The order: 0 equal, -1 and 1 by bytes and length, -2 only this one is null, 2 only the other.
  int operator!=(const KtBlob& other) const;

private:
  friend struct kt::BlobPrivate;

  // Conversions, told apart from sizes by a first argument: numbers as decimal text, texts with their terminating 0.
  enum Converted { kConverted };
  KtBlob(Converted, const char* text);
  KtBlob(Converted, int number);
  KtBlob(Converted, short number);
  KtBlob(Converted, unsigned long number);
  KtBlob(Converted, double number);
  KtBlob(Converted, const KtString& text);  // its stored bytes; null for a null string
  // The decimal number that the bytes begin with; 0 for null or other bytes. Saturates at 32 bits.
  explicit operator int() const;
  explicit operator short() const;
  explicit operator long() const;
  explicit operator double() const;
  KtBlob& operator=(char* image);  // a 32-bit length in host order, and so many bytes
  KtBlobData* AllocData(long n);   // a record of n + 1 bytes, uninitialised; the caller's

  KtBlobData* record_;
};

struct KtBlobData {
  char* data;           // from malloc; may be null when length is 0
  std::int32_t length;  // bytes; the buffer may be larger
};

static_assert(sizeof(KtBlob) == sizeof(void*));

#endif
