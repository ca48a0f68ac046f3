// ktobjid.h - object ids, plain and qualified by a database number.
#ifndef KTOBJID_H
#define KTOBJID_H

#include "ktapi.h"

#include <ktbs.h>

#include <cstddef>

class KtDBOId;
class KtString;

// KtObjId: a 48-bit object number and the storage block that holds the object.
//
// Range:  high * 2^32 + low; steps wrap. The block is carried along: it is neither compared nor hashed.
// Null:   low and high 0, whatever the block. A new id is all zero, hence null.
// Order:  high, then low, both unsigned.
// Size:   12 bytes.
// Disk:   docs/formats/identities.md: 10 bytes: block, low (4 each), high (2), big-endian under code 2, little-endian
//         under every other.
// Text:   "(%H-%L#%B)"; see ScanFromKtString. Null prints as the null print string.
// Status: scanning cannot fail: what a text does not give is 0. Where memory runs out a value that is scanned
//         stays; ktstring.h tells what becomes of a string.
// Owner:  a plain value, trivially copyable.
// Threads: pure.
class KTTM_API KtObjId {
public:
  BlockId block;
  KtDWord low;
  KtWord high;

  constexpr KtObjId() : block(0), low(0), high(0) {}
  constexpr KtObjId(BlockId inBlock, KtDWord lowPart, KtWord highPart) : block(inBlock), low(lowPart), high(highPart) {}
  constexpr KtObjId(const KtObjId&) = default;
  constexpr KtObjId& operator=(const KtObjId&) = default;
  constexpr KtObjId& operator=(const KtDBOId& id);  // drops the database number

  constexpr int IsNullValue() const { return low == 0 && high == 0; }
  constexpr int SetNullValue() {  // zeroes the block as well; 0
    block = low = high = 0;
    return 0;
  }
  // The greatest object number, in block 0.
  constexpr void SetHighestValue() {
    block = 0;
    low = 0xFFFFFFFFu;
    high = 0xFFFF;
  }

  constexpr KtObjId& operator++() {
    if (++low == 0) ++high;
    return *this;
  }
  constexpr KtObjId& operator--() {
    if (low-- == 0) --high;
    return *this;
  }
  constexpr KtObjId& operator+=(short n) {
    const KtDWord old = low;
    low += static_cast<KtDWord>(n);
    if (n > 0 && low < old) ++high;
    if (n < 0 && low > old) --high;
    return *this;
  }

  // 1 or 0. A database number is ignored here, unlike in KtDBOId's operators.
  constexpr int operator==(const KtObjId& other) const { return (*this != other) == 0; }
  constexpr int operator==(const KtDBOId& other) const;
  // The order, not only the inequality: 0 equal, 1 this is greater, -1 this is smaller.
  constexpr int operator!=(const KtObjId& other) const {
    if (high != other.high) return high > other.high ? 1 : -1;
    return low == other.low ? 0 : low > other.low ? 1 : -1;
  }
  constexpr int operator!=(const KtDBOId& other) const;

  // Replaces out by the id's text under a format; null stands for "(%H-%L#%B)". Returns out.
  //   %B %L %H  block, low, high         %h %l    the next field in the order high, low, block: %h one of 16 bits, %l
  //   %%        a percent sign                    one of 32 bits, 0 where the width differs; the character that follows
  //                                               is dropped, so that "%hu" and "%lu" may be written
  // % and another character print that character.
  KtString& PrintToKtString(KtString& out, const char* format = nullptr) const;
  // Becomes the id in a text by a format; null stands for "(%H-%L#%B)". A text that begins with the null print string
  // gives null. Each directive of a field reads a decimal number, at most 2^32 - 1 and possibly behind blanks and a
  // sign, of which 16-bit fields keep the low bits; without a number the field stays. Every other character and
  // directive skips one character unchecked. Fields that get no number become 0.
  void ScanFromKtString(const KtString& in, const char* format = nullptr);
};

// KtDBOId: an object id in one of several databases.
//
// Range:  as KtObjId, and the database number 0 to 65535.
// Null:   low and high 0 print as null; there is no test of its own.
// Order:  the database, then high, then low; a KtObjId counts as one of database 0.
// Size:   12 bytes.
// Disk:   none: lives in memory only.
// Text:   that of its KtObjId. The database number is not printed, and 0 after a scan.
// Status: as KtObjId.
// Owner:  a plain value, trivially copyable.
// Threads: pure.
class KTTM_API KtDBOId {
public:
  BlockId block;
  KtDWord low;
  KtWord high;
  KtWord database;

  constexpr KtDBOId() : block(0), low(0), high(0), database(0) {}
  constexpr KtDBOId(const KtDBOId&) = default;
  constexpr KtDBOId& operator=(const KtDBOId&) = default;
  constexpr KtDBOId& operator=(const KtObjId& id) {  // of database 0
    block = id.block;
    low = id.low;
    high = id.high;
    database = 0;
    return *this;
  }

  // 1 or 0; and the order, as for KtObjId.
  constexpr int operator==(const KtDBOId& other) const { return (*this != other) == 0; }
  constexpr int operator==(const KtObjId& other) const { return (*this != other) == 0; }
  constexpr int operator!=(const KtDBOId& other) const {
    if (database != other.database) return database > other.database ? 1 : -1;
    return KtObjId(block, low, high) != KtObjId(other.block, other.low, other.high);
  }
  constexpr int operator!=(const KtObjId& other) const { return database > 0 ? 1 : KtObjId(block, low, high) != other; }

  // As KtObjId.
  KtString& PrintToKtString(KtString& out, const char* format = nullptr) const;
  void ScanFromKtString(const KtString& in, const char* format = nullptr);
};

constexpr KtObjId& KtObjId::operator=(const KtDBOId& id) { return *this = KtObjId(id.block, id.low, id.high); }
constexpr int KtObjId::operator==(const KtDBOId& other) const { return (*this != other) == 0; }
constexpr int KtObjId::operator!=(const KtDBOId& other) const {
  return *this != KtObjId(other.block, other.low, other.high);
}

static_assert(sizeof(KtObjId) == 12 && offsetof(KtObjId, low) == 4 && offsetof(KtObjId, high) == 8);
static_assert(sizeof(KtDBOId) == 12 && offsetof(KtDBOId, high) == 8 && offsetof(KtDBOId, database) == 10);

#endif
