// string_ops.h - the operations of the string rows, written once over what the types do differently (string_kinds.h).
#ifndef KT_OPS_STRING_OPS_H
#define KT_OPS_STRING_OPS_H

#include "kttypops.h"
#include "ops/handle_arrays.h"
#include "ops/string_estimate.h"
#include "ops/string_kinds.h"
#include "ops/string_run_ops.h"

namespace kt {

// The rows of the string types share the form in memory, an array of KtString.
struct StringArrayOps : HandleArrays<KtString> {
  static KtTypeConvertData* convertTo(void* values, unsigned long count);
};

// Printing appends the text where the format holds "%s", the first time; "%%" is a percent sign, and all else stands for
// itself; a null format is "%s". Looks at the first value only, and does nothing without one.
KtString& printString(KtString& out, const KtString* value, const char* format);

template <class Kind>
struct StringRowOps : StringArrayOps {
  static constexpr KtStoreFunc store = Kind::kStore;
  static constexpr KtLoadFunc load = StringLoad;
  static constexpr KtNullSizeGetFunc nullSizeGet = stringNullSizeGet;
  static constexpr KtSizeGetFunc sizeGet = Kind::kSizeGet;
  static constexpr KtSizeGetFromMemFileFunc sizeGetFromMemFile = Kind::kSizeGetFromMemFile;
  static constexpr KtTypeCmpFunc compare = compareStrings<Kind>;
  static constexpr KtEvalAndBoundFunc evalAndBound = evalAndBoundStrings<Kind>;
  static constexpr KtHashFunc hash = hashStrings<Kind>;
  static constexpr KtTranslateFunc translate = translateStrings<Kind>;

  // Missing strings become nulls, or empty strings where the type has no null.
  static void* convertFrom(KtTypeConvertData* data, unsigned long count);
  static int isNull(void* value);
  static int setNull(void* value);
  static constexpr KtSetNullFunc kSetNull = Kind::kHasNull ? setNull : nullptr;
  // A null replaces out by the null print string.
  static KtString& print(KtString& out, void* values, const char* format, unsigned long count);
  // The first value becomes the whole text; the null print string makes it null.
  static void* scan(void* values, KtString& in, const char* format, unsigned long count);
  static void* defaultValue(unsigned long count, int asNull);
};

struct StringOps : StringRowOps<PlainStrings> {
  static constexpr KtTypeCmpFunc compare = StringCompare;
};
// What knows the older records, and that the row has no null, is its own. Strings can be null all the same: printing,
// scanning and conversion are those of the other row.
struct LegacyStringOps : StringRowOps<LegacyStrings> {
  static constexpr KtConvertFromFunc convertFrom = StringOps::convertFrom;
  static constexpr KtPrintToKtStringFunc print = StringOps::print;
  static constexpr KtScanFromKtStringFunc scan = StringOps::scan;
};
using IStringOps = StringRowOps<InternationalStrings>;
using CaseIStringOps = StringRowOps<CaselessStrings>;

}  // namespace kt

#endif
