// ktobjid.cpp - the text forms of the five identity classes.
#include "ktobjid.h"

#include "ktref.h"
#include "ktstring.h"
#include "text/format_or.h"
#include "values/identity_text.h"
#include "values/null_text.h"

namespace {

using kt::formatOr;

constexpr KtWord narrow(std::uint32_t number) { return static_cast<KtWord>(number); }

KtString& printNull(KtString& out) { return out = kt::nullPrintString(); }

}  // namespace

// --- KtObjId ----------------------------------------------------------------------------------------------------------

KtString& KtObjId::PrintToKtString(KtString& out, const char* format) const {
  if (IsNullValue()) return printNull(out);
  return kt::printIdentity(out, kt::kObjIdForm, {block, low, high}, formatOr(format, kt::kObjIdFormat));
}

void KtObjId::ScanFromKtString(const KtString& in, const char* format) {
  kt::IdentityFields fields;
  if (kt::scanIdentity(in, kt::kObjIdForm, formatOr(format, kt::kObjIdFormat), fields) == kt::Found::kNoMemory) return;
  *this = KtObjId(fields[kt::kBlock], fields[kt::kLow], narrow(fields[kt::kHigh]));
}

// --- KtDBOId ----------------------------------------------------------------------------------------------------------

KtString& KtDBOId::PrintToKtString(KtString& out, const char* format) const {
  return KtObjId(block, low, high).PrintToKtString(out, format);
}

void KtDBOId::ScanFromKtString(const KtString& in, const char* format) {
  kt::IdentityFields fields;
  if (kt::scanIdentity(in, kt::kObjIdForm, formatOr(format, kt::kObjIdFormat), fields) == kt::Found::kNoMemory) return;
  *this = KtObjId(fields[kt::kBlock], fields[kt::kLow], narrow(fields[kt::kHigh]));
}

// --- KtClassId --------------------------------------------------------------------------------------------------------

KtString& KtClassId::PrintToKtString(KtString& out, const char* format) const {
  if (IsNullValue()) return printNull(out);
  const kt::IdentityFields fields{0, 0, 0, 0, classNumber, version};
  return kt::printIdentity(out, kt::kClassIdForm, fields, formatOr(format, kt::kClassIdFormat));
}

void KtClassId::ScanFromKtString(const KtString& in, const char* format) {
  kt::IdentityFields fields;
  switch (kt::scanIdentity(in, kt::kClassIdForm, formatOr(format, kt::kClassIdFormat), fields)) {
    case kt::Found::kFields: *this = KtClassId(narrow(fields[kt::kClassNumber]), narrow(fields[kt::kVersion])); return;
    case kt::Found::kNull: SetNullValue(); return;
    case kt::Found::kNoMemory: return;
  }
}

// --- KtRef ------------------------------------------------------------------------------------------------------------

KtString& KtRef::PrintToKtString(KtString& out, const char* format) const {
  if (IsNullValue()) return printNull(out);
  const kt::IdentityFields fields{block, low, high, database, classNumber, version};
  return kt::printIdentity(out, kt::kRefForm, fields, formatOr(format, kt::kRefFormat));
}

void KtRef::ScanFromKtString(const KtString& in, const char* format) {
  kt::IdentityFields fields;
  if (kt::scanIdentity(in, kt::kRefForm, formatOr(format, kt::kRefFormat), fields) == kt::Found::kNoMemory) return;
  *this = KtObjId(fields[kt::kBlock], fields[kt::kLow], narrow(fields[kt::kHigh]));
  *this = KtClassId(narrow(fields[kt::kClassNumber]), narrow(fields[kt::kVersion]));
  database = narrow(fields[kt::kDatabase]);
}

// --- KtLocalRef -------------------------------------------------------------------------------------------------------

KtString& KtLocalRef::PrintToKtString(KtString& out, const char* format) const {
  KtRef ref;
  ref = *this;
  return ref.PrintToKtString(out, formatOr(format, kt::kLocalRefFormat));
}

void KtLocalRef::ScanFromKtString(const KtString& in, const char* format) {
  KtRef ref;
  ref = *this;
  ref.ScanFromKtString(in, formatOr(format, kt::kLocalRefFormat));
  *this = ref;
}
