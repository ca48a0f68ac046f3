// ktclassid.h - class ids: a class number and the version of the class.
#ifndef KTCLASSID_H
#define KTCLASSID_H

#include "_ktnulty.h"
#include "ktapi.h"

#include <ktbs.h>

#include <cstddef>

class KtString;

// KtClassId: a class of the schema, in one of its versions.
//
// Range:  0 to 65535 each.
// Null:   both 65535. A new class id is 0 and 0, which is not null; the type's default value is null.
// Order:  null first, then the class number, then the version, both unsigned.
// Size:   4 bytes.
// Disk:   docs/formats/identities.md: 4 bytes: class number, version (2 each), big-endian under code 2, little-endian
//         under every other.
// Text:   "(%Cv%V)"; see ScanFromKtString. Null prints as the null print string.
// Status: as KtObjId (ktobjid.h).
// Owner:  a plain value, trivially copyable.
// Threads: pure.
class KTTM_API KtClassId {
public:
  KtWord classNumber;
  KtWord version;

  constexpr KtClassId() : classNumber(0), version(0) {}
  constexpr KtClassId(KtWord number, KtWord itsVersion) : classNumber(number), version(itsVersion) {}
  constexpr KtClassId(const KtClassId&) = default;
  constexpr KtClassId& operator=(const KtClassId&) = default;

  constexpr int IsNullValue() const { return classNumber == 0xFFFF && version == 0xFFFF; }
  constexpr int SetNullValue() {  // 0
    classNumber = version = 0xFFFF;
    return 0;
  }

  // The order, not only the inequality: 0 equal, 1 this is greater, -1 this is smaller.
  int operator!=(const KtClassId& other) const {
    const KtNullRelation nulls = KtNullRelationOf(IsNullValue() != 0, other.IsNullValue() != 0);
    if (nulls != KtNULL_UNKNOWN) return KtNullRelationResult(nulls);
    if (classNumber != other.classNumber) return classNumber > other.classNumber ? 1 : -1;
    return version == other.version ? 0 : version > other.version ? 1 : -1;
  }
  int operator>(const KtClassId& other) const { return (*this != other) > 0; }

  // As KtObjId prints and scans; null stands for "(%Cv%V)".
  //   %C %V  class number, version       %h %l  the next field in this order; both are of 16 bits
  KtString& PrintToKtString(KtString& out, const char* format = nullptr) const;
  void ScanFromKtString(const KtString& in, const char* format = nullptr);
};

static_assert(sizeof(KtClassId) == 4 && offsetof(KtClassId, version) == 2);

#endif
