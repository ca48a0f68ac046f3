// identity_text.h - the text forms of object ids, class ids and references: one engine over the fields that a type has.
#ifndef KT_IDENTITY_TEXT_H
#define KT_IDENTITY_TEXT_H

#include "ktclassid.h"
#include "ktobjid.h"
#include "ktref.h"
#include "values/narrow_text.h"

#include <array>
#include <cstdint>

namespace kt {

// The fields of all identities, in the order of their letters.
constexpr char kIdentityLetters[] = "BLHDCV";
enum IdentityField : unsigned { kBlock, kLow, kHigh, kDatabase, kClassNumber, kVersion, kIdentityFieldCount };

// A type's directives: the letters of its fields, and the fields that %h and %l go through.
struct IdentityForm {
  const char* letters;
  const char* positions;
};
constexpr IdentityForm kObjIdForm{"BLH", "HLB"};
constexpr IdentityForm kClassIdForm{"CV", "CV"};
constexpr IdentityForm kRefForm{"BLHDCV", "DHLBC"};

constexpr char kObjIdFormat[] = "(%H-%L#%B)";
constexpr char kClassIdFormat[] = "(%Cv%V)";
constexpr char kRefFormat[] = "(%D:%H-%L#%B, %C)";
constexpr char kLocalRefFormat[] = "(%H-%L#%B,%C)";
constexpr char kVersionedRefFormat[] = "(%D:%H-%L#%B,%Cv%V)";  // of the row's print and scan when none is given

using IdentityFields = std::array<std::uint32_t, kIdentityFieldCount>;

// Replaces out. The format is read up to its terminator, whatever it ends with.
KtString& printIdentity(KtString& out, const IdentityForm& form, const IdentityFields& fields, const char* format);

// Sets every field, to 0 where the text does not name it, stands for null or could not be read.
Found scanIdentity(const KtString& in, const IdentityForm& form, const char* format, IdentityFields& fields);

}  // namespace kt

#endif
