// ktref.h - references to objects, across databases and inside the current one.
#ifndef KTREF_H
#define KTREF_H

#include "ktapi.h"
#include "ktclassid.h"
#include "ktobjid.h"

#include <cstddef>

class KtLocalRef;

// KtRef: an object id, its database and the class of the object.
//
// Range:  as KtObjId and KtClassId. The database number 65535 means "not assigned yet".
// Null:   low and high 0, whatever the other fields. A new reference is all zero, hence null.
// Order:  high, then low, then the database; block and class id are not compared. On disk the database comes first.
// Size:   20 bytes.
// Disk:   docs/formats/identities.md: 14 bytes: block, low (4 each), high, database, class number (2 each),
//         big-endian under code 2, little-endian under every other. The version is not stored: it is 0 after a load.
// Text:   "(%D:%H-%L#%B, %C)"; see ScanFromKtString. Null prints as the null print string.
// Status: as KtObjId.
// Owner:  a plain value, trivially copyable.
// Threads: pure.
class KTTM_API KtRef {
public:
  BlockId block;
  KtDWord low;
  KtWord high;
  KtWord idPadding;  // fills the object id part up to 12 bytes
  KtWord database;
  KtWord classNumber;
  KtWord version;
  KtWord padding;

  constexpr KtRef() : block(0), low(0), high(0), idPadding(0), database(0), classNumber(0), version(0), padding(0) {}
  constexpr KtRef(const KtRef&) = default;

  // Each sets the fields that its operand has and leaves the others; of a KtLocalRef the database is 0.
  constexpr KtRef& operator=(const KtRef&) = default;
  constexpr KtRef& operator=(const KtObjId& id) {
    block = id.block;
    low = id.low;
    high = id.high;
    return *this;
  }
  constexpr KtRef& operator=(const KtDBOId& id) {
    database = id.database;
    return *this = KtObjId(id.block, id.low, id.high);
  }
  constexpr KtRef& operator=(const KtClassId& id) {
    classNumber = id.classNumber;
    version = id.version;
    return *this;
  }
  constexpr KtRef& operator=(unsigned short databaseNumber) {
    database = databaseNumber;
    return *this;
  }
  constexpr KtRef& operator=(const KtLocalRef& ref);

  constexpr int IsNullValue() const { return low == 0 && high == 0; }
  constexpr int SetNullValue() {  // zeroes the block as well and leaves database and class; 0
    block = low = high = 0;
    return 0;
  }

  // 1 or 0: same object and database.
  constexpr int operator==(const KtRef& other) const { return (*this != other) == 0; }
  // The order, not only the inequality: 0 equal, 1 this is greater, -1 this is smaller.
  constexpr int operator!=(const KtRef& other) const {
    const int ids = KtObjId(block, low, high) != KtObjId(other.block, other.low, other.high);
    return ids != 0 || database == other.database ? ids : database > other.database ? 1 : -1;
  }

  // 1 or 0. A reference is valid with an object, a class and an assigned database; an origin id with an object and,
  // once the database is assigned, a class.
  constexpr unsigned short IsInvalid() const { return IsNullValue() || classNumber == 0 || database == 0xFFFF; }
  constexpr unsigned short IsValid() const { return !IsInvalid(); }
  constexpr unsigned short IsInvalidOriginId() const {
    return IsNullValue() || (database < 0xFFFF && classNumber == 0);
  }
  constexpr unsigned short IsValidOriginId() const { return !IsInvalidOriginId(); }

  // As KtObjId prints and scans; null stands for "(%D:%H-%L#%B, %C)".
  //   %D %B %L %H %C %V  database, block, low, high, class number, version
  //   %h %l              the next field in the order database, high, low, block, class number
  KtString& PrintToKtString(KtString& out, const char* format = nullptr) const;
  void ScanFromKtString(const KtString& in, const char* format = nullptr);  // sets every field
};

// KtLocalRef: a reference inside the current database.
//
// Range:  as KtObjId and KtClassId.
// Null:   prints as null with low and high 0.
// Order:  high, then low. Against a KtRef: that of another database comes after the same object here.
// Size:   16 bytes.
// Disk:   none: lives in memory only.
// Text:   that of the KtRef with database 0, by default "(%H-%L#%B,%C)". A database number in a text is dropped.
// Status: as KtObjId.
// Owner:  a plain value, trivially copyable.
// Threads: pure.
class KTTM_API KtLocalRef {
public:
  BlockId block;
  KtDWord low;
  KtWord high;
  KtWord classNumber;
  KtWord version;
  KtWord padding;

  constexpr KtLocalRef() : block(0), low(0), high(0), classNumber(0), version(0), padding(0) {}
  constexpr KtLocalRef(const KtLocalRef&) = default;

  // Each sets the fields that its operand has and leaves the others; a database number is dropped.
  constexpr KtLocalRef& operator=(const KtLocalRef&) = default;
  constexpr KtLocalRef& operator=(const KtObjId& id) {
    block = id.block;
    low = id.low;
    high = id.high;
    return *this;
  }
  constexpr KtLocalRef& operator=(const KtClassId& id) {
    classNumber = id.classNumber;
    version = id.version;
    return *this;
  }
  constexpr KtLocalRef& operator=(const KtRef& ref) {
    *this = KtObjId(ref.block, ref.low, ref.high);
    return *this = KtClassId(ref.classNumber, ref.version);
  }

  // 1 or 0; and the order: 0 equal, 1 this is greater, -1 this is smaller. A KtRef equals only in database 0.
  constexpr int operator==(const KtLocalRef& other) const { return (*this != other) == 0; }
  constexpr int operator==(const KtRef& other) const { return (*this != other) == 0; }
  constexpr int operator!=(const KtLocalRef& other) const {
    return KtObjId(block, low, high) != KtObjId(other.block, other.low, other.high);
  }
  constexpr int operator!=(const KtRef& other) const {
    const int ids = KtObjId(block, low, high) != KtObjId(other.block, other.low, other.high);
    return ids != 0 || other.database == 0 ? ids : -1;
  }

  // As KtRef; null stands for "(%H-%L#%B,%C)".
  KtString& PrintToKtString(KtString& out, const char* format = nullptr) const;
  void ScanFromKtString(const KtString& in, const char* format = nullptr);
};

constexpr KtRef& KtRef::operator=(const KtLocalRef& ref) {
  *this = KtObjId(ref.block, ref.low, ref.high);
  *this = KtClassId(ref.classNumber, ref.version);
  return *this = static_cast<unsigned short>(0);
}

static_assert(sizeof(KtRef) == 20 && offsetof(KtRef, high) == 8 && offsetof(KtRef, database) == 12);
static_assert(offsetof(KtRef, classNumber) == 14 && offsetof(KtRef, version) == 16);
static_assert(sizeof(KtLocalRef) == 16 && offsetof(KtLocalRef, classNumber) == 10);

#endif
