// kttypmgr.h - KtTypeMgr, the entry point through which an engine handles values by type id, and the module functions.
#ifndef KTTYPMGR_H
#define KTTYPMGR_H

#include "ktoption.h"
#include "ktstring.h"
#include "kttypcvd.h"
#include "kttypdsc.h"

struct KtEvalData;

// KtTypeMgr: generic operations on runs of values whose type is known as an id.
//
// Range:  ids below KtTYPE_COUNT (legacy table: KtLEGACY_TYPE_COUNT); every other id acts as the illegal type: 0, null,
//         0.0 or the unchanged output. Its IsFixed is 1 and its name "illegal".
// Null:   SupportsNullValue tells whether a type has a null value; SetNullValue works on every type.
// Status: nothing throws. Results and status are those that kttypdsc.h and kttypops.h tell of the row's operation;
//         where a type does not offer it, and where memory is exhausted: 0, null, or what is told beside it. Assertions
//         are those of strings: "String overflow", "format combination not supported" (Translate of a run of records to
//         memory), and two that guard the estimates.
// Owner:  a manager holds no resources. What Create, DefaultValue and ConvertFrom return belongs to the caller: Delete
//         with the same id and count. What ConvertTo returns: delete the holder.
// Threads: a manager may be used by several threads; SetFactory changes it, and ConvertFrom its holder. The Exchange
//         functions, SetNullPrintString and DefaultTypeMgr change process-wide state: use those before concurrent use
//         begins.
//
// Format codes are those of ktbs.h; docs/formats/README.md tells which operations take 8 for values in memory.
// Lengths are bytes; those of Cmp and Hash are 0 where a run holds exactly count values.
class KTTM_API KtTypeMgr {
public:
  // version 12 and above: the current table, level 4; 11: the legacy table, level 3; 4 to 10: the current table, level
  // as the version; below 4: the legacy table, level as the version. No operation looks at the level.
  explicit KtTypeMgr(unsigned long version);
  void SetFactory(unsigned long version);

  // --- types ----------------------------------------------------------------------------------------------------
  int IsValidType(char id) const;                       // 0 only for ids KtTYPE_COUNT to 99
  int Name2KtTypeId(const char* name, char& id) const;  // 0: found, id set. 1: not found or null, id KtTYPE_COUNT
  char* NameGet(char id, char* buffer) const;  // into buffer (16 characters suffice); null: the name itself, a constant
  unsigned short MemLenGet(char id, unsigned long count) const;  // memory bytes of count values, modulo 65,536
  unsigned short IsFixed(char id) const;
  // The address of value `index`. Null when count is not 0 and index is not below it, and for ids outside the table;
  // but base for the ids from 100 on in the current table, which are the illegal type itself.
  void* GetArrayElement(char id, void* base, unsigned long index, unsigned long count) const;

  // --- life -----------------------------------------------------------------------------------------------------
  void* Create(char id, unsigned long count) const;
  void* Delete(char id, void* values, unsigned long count) const;  // null
  // What empty strings convert to, or nulls when asNull is not 0 and the type has them; nullable scalars are always
  // null. Null when memory is exhausted.
  void* DefaultValue(char id, unsigned long count, int asNull) const;

  // --- storage --------------------------------------------------------------------------------------------------
  unsigned long Store(char id, void* dst, void* src, unsigned char format, unsigned long count) const;
  unsigned long Load(char id, void* dst, void* src, unsigned char format, unsigned long count) const;
  // Disk bytes in `format` of values held in the form `mode`: 8 for those in memory. Of a run on disk give its code as
  // both: blobs read the one, strings the other, records that shall become index keys (0x80) included, so that those can
  // be measured in their own order of bytes only. Types of fixed size look at neither values nor mode.
  unsigned long DiskLenGet(char id, void* values, unsigned char format, unsigned long count, unsigned char mode) const;
  // The same at the file's position. Strings and blobs: 0 for a null file; others look at none.
  unsigned long DiskLenGetFromMemFile(char id, MemFile* file, unsigned char format, unsigned long count) const;
  // Between memory and disk as Load and Store, with their results; between memory forms as assignment: the memory
  // bytes; between disk forms the bytes are copied as they are, at most dstLength, a larger target is filled up with
  // zeros, and the result is the bytes copied. dstLength and srcLength are the rooms in bytes; where a side is memory
  // only strings and blobs look at them. A code with the bit of value 8 is memory, whatever its other bits. Strings go
  // from disk to memory one a call, whose record lies within srcLength, and between disk forms of different codes only
  // into index keys (0x80): all else, unless it is to load 0 strings, asserts and gives 0.
  unsigned long Translate(char id, void* dst, unsigned char dstFormat, unsigned long dstLength, void* src,
                          unsigned char srcFormat, unsigned long srcLength, unsigned long count) const;

  // --- compare, bounds, hash ------------------------------------------------------------------------------------
  long Cmp(char id, void* a, void* b, unsigned short options, unsigned long count, unsigned char format) const;
  long Cmp(char id, unsigned long lengthA, void* a, unsigned long lengthB, void* b, unsigned short options,
           unsigned long count, unsigned char format, int& status) const;
  // Selectivity, 0 to 1; without a range (null, or a side not set) 0, but for identities. flags (KtBOUND_...) may be
  // masked in place, to 0x800F; a null result records no bounds, and a bound that it holds already stays. key is what
  // Store writes under format, for strings also a KtString (8) or an index key (0x80), and not null unless count is 0;
  // of a run the first value counts. range, key and bounds share the byte order of format: see kttypbnd.h.
  float EvalAndBound(char id, KtIdxBounds* range, unsigned short& flags, void* key, unsigned char format,
                     unsigned long count, KtIdxBounds* result, KtEvalData* data) const;  // data is not used
  unsigned long Hash(char id, unsigned long length, void* values, unsigned long count, unsigned char format,
                     int& status) const;

  // --- text -----------------------------------------------------------------------------------------------------
  // Null where not offered. Unsigned numbers of the upper half convert as negative ones: see kttypdsc.h.
  KtTypeConvertData* ConvertTo(char id, void* values, unsigned long count);
  // A new array. Makes this the holder's manager, so that from then on the holder owns data->data.
  void* ConvertFrom(char id, KtTypeConvertData* data, unsigned long count);
  // A null format stands for the type's own; docs/types.md has the directives. Strings, dates and times, seals,
  // KtInt64 and KtNull_KtInt64 append to out, all others replace it, and so does every null; of a scalar 511 characters
  // are kept. Runs of two and more are appended with "," between them (but for char and KtByte, which print as one
  // text). A character that out's code set lacks becomes 0x1A; a new KtString has code set 1, so print Unicode texts
  // into a KtString(253, 0). values and format may lie in out. Without memory for all of a text out has no part of it.
  // Where not offered: out unchanged.
  KtString& PrintToKtString(char id, KtString& out, void* values, const char* format, unsigned long count) const;
  // Sets the first value only, but of char and KtByte count ones. A text that begins with the null print string makes a
  // value null; for KtString and KtBlob it must be the whole text. Text that does not match leaves a value, or its
  // field, as it was; but it makes a KtInt64 or a seal -1, a boolean false, and fields of identities 0. Returns
  // `values`, which may be null; where not offered, too.
  void* ScanFromKtString(char id, void* values, KtString& in, const char* format, unsigned long count) const;
  static const KtString& GetNullPrintString();  // "{NULL}" until set
  static void SetNullPrintString(const KtString& text);

  // --- null -----------------------------------------------------------------------------------------------------
  unsigned short SupportsNullValue(char id) const;  // 1 or 0
  int IsNullValue(char id, void* value) const;      // not 0 for null; of nullable scalars the mark as a signed byte
  int DiskIsNullValue(char id, void* value) const;  // always -2999
  // Makes the value null; a type without a null value gets what an empty string converts to, or else 0. Returns 0, also
  // where memory for that conversion is exhausted: the value is then unchanged.
  int SetNullValue(char id, void* value);

  // --- the row itself: the function as it stands, possibly null ---------------------------------------------------
  KtConstructorFunc ConstructorPtrGet(char id) const;
  KtDestructorFunc DestructorPtrGet(char id) const;
  KtAssignmentFunc AssignmentPtrGet(char id) const;
  KtCopyFunc CopyPtrGet(char id) const;
  KtLoadFunc LoadPtrGet(char id) const;
  KtStoreFunc StorePtrGet(char id) const;
  KtIsNullFunc IsNullPtrGet(char id) const;
  KtSetNullFunc SetNullPtrGet(char id) const;
  KtTypeCmpFunc CmpFuncPtrGet(char id) const;
  int (*ComparePtrGet(char id) const)(void*, void*);  // always null: there is no two-argument compare
  const KtTypeDescriptor& DescriptorGet(char id) const { return Row(id); }  // the whole row, which outlives the manager

  // --- replace: in the shared row, for every manager and thread; null only reads. Result: the old one ----------------
  const char* ExchangeFormat(char id, const char* format);  // the caller keeps the text alive
  KtTypeCmpFunc ExchangeKtTypeCmpFunc(char id, KtTypeCmpFunc func);
  KtPrintToKtStringFunc ExchangePrintToKtStringFunc(char id, KtPrintToKtStringFunc func);
  KtScanFromKtStringFunc ExchangeScanFromKtStringFunc(char id, KtScanFromKtStringFunc func);

protected:
  // The older single-string conversion: every value's text followed by a separator, the first of the codes 1 to 254
  // that none of them contains, else ",". In the default code set, or the default 16-bit one where that lacks a
  // character. The caller owns the string (Delete as KtString). Null where not offered, when the text would be longer
  // than a string can be, and when memory is exhausted.
  KtString* ConvertToKtStringOld(void* values, char id, unsigned long count);
  // The reverse: a new array of count values, to be deleted as one of ConvertFrom. The last character of text, whatever
  // it is, is the separator. text is left empty; when memory is exhausted it stays, and the result is null.
  void* ConvertFromKtStringOld(KtString* text, char id, unsigned long count);

private:
  KtTypeDescriptor& Row(char id) const { return *table_[static_cast<unsigned char>(id)]; }

  KtTypeDescriptor* const* table_;  // 256 rows
  const KtTypeCmpFunc* compares_;   // and their compare functions
  unsigned short formatLevel_;
};

// In line, and past the row: an index compares millions of times, and the function's own call is the only one needed.
KTTM_INLINE long KtTypeMgr::Cmp(char id, void* a, void* b, unsigned short options, unsigned long count,
                                unsigned char format) const {
  int status;
  return compares_[static_cast<unsigned char>(id)](format, 0, a, 0, b, options, count, status);
}

KTTM_INLINE long KtTypeMgr::Cmp(char id, unsigned long lengthA, void* a, unsigned long lengthB, void* b,
                                unsigned short options, unsigned long count, unsigned char format, int& status) const {
  return compares_[static_cast<unsigned char>(id)](format, lengthA, a, lengthB, b, options, count, status);
}

// --- module ---------------------------------------------------------------------------------------------------------
// Attaches the library (non-zero): ktin first, then a default manager of version 5, none when memory is exhausted; one
// that was the default before belongs to the caller. 0 deletes the default manager. Nothing else needs attaching.
// Result: that of ktin's context function, 1. Not to be called while other threads use the default manager.
KTTM_API int ___KtTypemgrContext(int attach);
// The default manager as it was, null until attached; mgr, unless null, becomes the new one. Owner: detaching deletes the
// manager that is the default then, so mgr must come from new; one that mgr replaced belongs to the caller.
KTTM_API KtTypeMgr* DefaultTypeMgr(KtTypeMgr* mgr = nullptr);
// 1 when the base library serves this library's release, else 0. flags are reserved.
KTTM_API int KtCheckDll(int flags);
// Describes the library; returns "Kato Typemanager". Null pointers are skipped. All texts are static.
KTTM_API const char* KtDescribeDll(int* major, int* minor, int* build, int* revision, int* patch,
                                   const char** internalName, const char** buildDate, const char** unknown,
                                   int* compilerVersion, const char** compiler, const char** extra);
// The same in five optional out-parameters; description is "Kato Typemanager 9.5.23.262.0 ". Static texts.
KTTM_API void GetKtTypeMgrInfo(const char** compiler, int* compilerVersion, const char** description, const char** date,
                               const char** internalName);

#endif
