// KtTypeMgr: every operation is the row's, with the arguments in the row's order.
#include "kttypmgr.h"

#include "table/type_table.h"

#include <cstring>

namespace {

int numberOf(char id) { return static_cast<signed char>(id); }

// Replaces a field of the shared row unless `value` is null; the old value.
template <class Field>
Field exchange(Field& field, Field value) {
  const Field old = field;
  if (value != nullptr) field = value;
  return old;
}

// Their addresses make the compiler emit the functions that the header has in line: older programs import them.
using CompareRun = long (KtTypeMgr::*)(char, void*, void*, unsigned short, unsigned long, unsigned char) const;
using CompareWithin = long (KtTypeMgr::*)(char, unsigned long, void*, unsigned long, void*, unsigned short,
                                          unsigned long, unsigned char, int&) const;
[[gnu::used]] const CompareRun kCompareRun = &KtTypeMgr::Cmp;
[[gnu::used]] const CompareWithin kCompareWithin = &KtTypeMgr::Cmp;

}  // namespace

KtTypeMgr::KtTypeMgr(unsigned long version) { SetFactory(version); }

void KtTypeMgr::SetFactory(unsigned long version) {
  const bool current = version >= 12 || (version >= 4 && version <= 10);
  table_ = current ? kt::currentTypeTable() : kt::legacyTypeTable();
  compares_ = kt::comparesOf(table_);
  if (version >= 12) {
    formatLevel_ = 4;
  } else {
    formatLevel_ = version == 11 ? 3 : static_cast<unsigned short>(version);
  }
}

// --- types ----------------------------------------------------------------------------------------------------------

int KtTypeMgr::IsValidType(char id) const { return numberOf(id) < KtTYPE_COUNT || numberOf(id) > 99; }

int KtTypeMgr::Name2KtTypeId(const char* name, char& id) const {
  const int count = name == nullptr ? 0 : kt::typeCount(table_);
  for (int candidate = 0; candidate < count; ++candidate) {
    id = static_cast<char>(candidate);
    if (std::strcmp(name, Row(id).Name) == 0) return 0;
  }
  id = KtTYPE_COUNT;
  return 1;
}

char* KtTypeMgr::NameGet(char id, char* buffer) const {
  const char* name = Row(id).Name;
  return buffer == nullptr ? const_cast<char*>(name) : std::strcpy(buffer, name);
}

unsigned short KtTypeMgr::MemLenGet(char id, unsigned long count) const {
  return static_cast<unsigned short>(Row(id).MemLen * count);
}

unsigned short KtTypeMgr::IsFixed(char id) const { return Row(id).IsFixed; }

void* KtTypeMgr::GetArrayElement(char id, void* base, unsigned long index, unsigned long count) const {
  const int number = numberOf(id);
  const int rows = kt::typeCount(table_);
  const bool present = number >= 0 && (number < rows || (number >= KtNO_TYPE && rows == KtTYPE_COUNT));
  if (!present || (count != 0 && index >= count)) return nullptr;
  return static_cast<char*>(base) + Row(id).MemLen * index;
}

// --- life -----------------------------------------------------------------------------------------------------------

void* KtTypeMgr::Create(char id, unsigned long count) const { return Row(id).Create(count); }

void* KtTypeMgr::Delete(char id, void* values, unsigned long count) const { return Row(id).Delete(values, count); }

void* KtTypeMgr::DefaultValue(char id, unsigned long count, int asNull) const {
  return Row(id).DefaultValue(count, asNull);
}

// --- storage --------------------------------------------------------------------------------------------------------

unsigned long KtTypeMgr::Store(char id, void* dst, void* src, unsigned char format, unsigned long count) const {
  return Row(id).Store(dst, src, format, count);
}

unsigned long KtTypeMgr::Load(char id, void* dst, void* src, unsigned char format, unsigned long count) const {
  return Row(id).Load(dst, src, format, count);
}

unsigned long KtTypeMgr::DiskLenGet(char id, void* values, unsigned char format, unsigned long count,
                                    unsigned char mode) const {
  return Row(id).SizeGet(values, mode, format, count);
}

unsigned long KtTypeMgr::DiskLenGetFromMemFile(char id, MemFile* file, unsigned char format,
                                               unsigned long count) const {
  return Row(id).SizeGetFromMemFile(file, format, count);
}

unsigned long KtTypeMgr::Translate(char id, void* dst, unsigned char dstFormat, unsigned long dstLength, void* src,
                                   unsigned char srcFormat, unsigned long srcLength, unsigned long count) const {
  return Row(id).Translate(dst, dstFormat, dstLength, src, srcFormat, srcLength, count);
}

// --- compare, bounds, hash ------------------------------------------------------------------------------------------

float KtTypeMgr::EvalAndBound(char id, KtIdxBounds* range, unsigned short& flags, void* key, unsigned char format,
                              unsigned long count, KtIdxBounds* result, KtEvalData*) const {
  return Row(id).EvalAndBound(range, flags, key, format, count, result);
}

unsigned long KtTypeMgr::Hash(char id, unsigned long length, void* values, unsigned long count, unsigned char format,
                              int& status) const {
  return Row(id).Hash(format, length, values, count, status);
}

// --- the row itself -------------------------------------------------------------------------------------------------

KtConstructorFunc KtTypeMgr::ConstructorPtrGet(char id) const { return Row(id).Constructor; }
KtDestructorFunc KtTypeMgr::DestructorPtrGet(char id) const { return Row(id).Destructor; }
KtAssignmentFunc KtTypeMgr::AssignmentPtrGet(char id) const { return Row(id).Assignment; }
KtCopyFunc KtTypeMgr::CopyPtrGet(char id) const { return Row(id).Copy; }
KtLoadFunc KtTypeMgr::LoadPtrGet(char id) const { return Row(id).Load; }
KtStoreFunc KtTypeMgr::StorePtrGet(char id) const { return Row(id).Store; }
KtIsNullFunc KtTypeMgr::IsNullPtrGet(char id) const { return Row(id).IsNull; }
KtSetNullFunc KtTypeMgr::SetNullPtrGet(char id) const { return Row(id).SetNull; }
KtTypeCmpFunc KtTypeMgr::CmpFuncPtrGet(char id) const { return Row(id).Compare; }
int (*KtTypeMgr::ComparePtrGet(char) const)(void*, void*) { return nullptr; }

const char* KtTypeMgr::ExchangeFormat(char id, const char* format) { return exchange(Row(id).Format, format); }

KtTypeCmpFunc KtTypeMgr::ExchangeKtTypeCmpFunc(char id, KtTypeCmpFunc func) {
  const KtTypeCmpFunc old = Row(id).Compare;
  if (func != nullptr) kt::setCompare(Row(id), func);
  return old;
}

KtPrintToKtStringFunc KtTypeMgr::ExchangePrintToKtStringFunc(char id, KtPrintToKtStringFunc func) {
  return exchange(Row(id).PrintToKtString, func);
}

KtScanFromKtStringFunc KtTypeMgr::ExchangeScanFromKtStringFunc(char id, KtScanFromKtStringFunc func) {
  return exchange(Row(id).ScanFromKtString, func);
}

// --- null -----------------------------------------------------------------------------------------------------------

unsigned short KtTypeMgr::SupportsNullValue(char id) const { return Row(id).SetNull != nullptr; }

int KtTypeMgr::IsNullValue(char id, void* value) const { return Row(id).IsNull(value); }

int KtTypeMgr::DiskIsNullValue(char, void*) const { return KtERR_NOT_APPLICABLE; }
