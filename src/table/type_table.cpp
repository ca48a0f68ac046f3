// The type table: one row a type, in the order of the ids. The only place that knows all types.
//
// A family function fills what the rows of a family share; a row states what deviates. To add a type: an id in
// kttypdsc.h, a description of one value in src/ops, a row here, samples in tests (docs/adding-a-type.md).
#include "table/type_table.h"

#include "ktstring.h"
#include "kttypops.h"
#include "ops/blob_ops.h"
#include "ops/boolean_ops.h"
#include "ops/date_ops.h"
#include "ops/identity_ops.h"
#include "ops/illegal_ops.h"
#include "ops/int64_ops.h"
#include "ops/nullable_ops.h"
#include "ops/odmg_ops.h"
#include "ops/scalar_ops.h"
#include "ops/scalar_text.h"
#include "ops/seal_ops.h"
#include "ops/string_ops.h"

#include <ktbs.h>

#include <array>
#include <iterator>

// The rows are complete as soon as the library is loaded, before any code runs; where the loader does not resolve
// addresses in data, they are filled first thing at start.
#if defined(_WIN32)
#define KT_LOADED
#define KT_KNOWN const
#else
#define KT_LOADED constinit
#define KT_KNOWN constexpr
#endif

namespace kt {
namespace {

// A type whose operations are all of one family, Ops, which names them as the fields.
template <class Ops>
constexpr KtTypeDescriptor rowOf(const char* name, unsigned short memLen, const char* format) {
  return {.Name = name,
          .Create = Ops::create,
          .Delete = Ops::destroy,
          .Store = Ops::store,
          .Load = Ops::load,
          .NullSizeGet = Ops::nullSizeGet,
          .SizeGet = Ops::sizeGet,
          .SizeGetFromMemFile = Ops::sizeGetFromMemFile,
          .Compare = Ops::compare,
          .EvalAndBound = Ops::evalAndBound,
          .Hash = Ops::hash,
          .ConvertTo = Ops::convertTo,
          .ConvertFrom = Ops::convertFrom,
          .Constructor = Ops::construct,
          .Destructor = Ops::destruct,
          .Assignment = Ops::assign,
          .Copy = Ops::copy,
          .Translate = Ops::translate,
          .IsNull = Ops::isNull,
          .SetNull = Ops::kSetNull,
          .Format = format,
          .PrintToKtString = Ops::print,
          .ScanFromKtString = Ops::scan,
          .MemLen = memLen,
          .IsFixed = 1,
          .DefaultValue = Ops::defaultValue,
          .Reserved = nullptr};
}

// The base library's helpers of one width. Functions, because the addresses of another library's functions are known to
// the compiler on some platforms and only to the loader on others.
struct Helpers {
  KtStoreFunc store;
  KtLoadFunc load;
  KtNullSizeGetFunc nullSizeGet;
  KtSizeGetFunc sizeGet;
};

struct TextForm {
  KtPrintToKtStringFunc print;
  KtScanFromKtStringFunc scan;
};

// A plain scalar. V describes one value; the other descriptions that differ are given beside it.
template <class V>
constexpr KtTypeDescriptor scalarRow(const char* name, const TextForm& text, KtTypeCmpFunc compare,
                                     const Helpers& helpers) {
  KtTypeDescriptor row = rowOf<ScalarOps<V>>(name, sizeof(typename V::Memory), V::kFormat);
  row.Store = helpers.store;
  row.Load = helpers.load;
  row.NullSizeGet = helpers.nullSizeGet;
  row.SizeGet = helpers.sizeGet;
  row.Compare = compare;
  row.PrintToKtString = text.print;
  row.ScanFromKtString = text.scan;
  return row;
}

// A row that shares all operations of `base` but for its unsigned order, estimate and hash, those of V.
template <class V>
constexpr KtTypeDescriptor unsignedTwin(KtTypeDescriptor base, const char* name, KtTypeCmpFunc compare) {
  base.Name = name;
  base.Format = V::kFormat;
  base.Compare = compare;
  base.EvalAndBound = ScalarOps<V>::evalAndBound;
  base.Hash = ScalarOps<V>::hash;
  return base;
}

constexpr Helpers charHelpers() { return {CharStore, CharStore, CharNullSizeGet, CharSizeGet}; }
constexpr Helpers shortHelpers() { return {ShortStore, ShortStore, ShortNullSizeGet, ShortSizeGet}; }
constexpr Helpers longHelpers() { return {LongStore, LongStore, LongNullSizeGet, LongSizeGet}; }
constexpr Helpers doubleHelpers() { return {DoubleStore, DoubleStore, DoubleNullSizeGet, DoubleSizeGet}; }
constexpr Helpers floatHelpers() { return {FloatStore, FloatStore, FloatNullSizeGet, FloatSizeGet}; }
constexpr Helpers intHelpers() { return {IntStore, IntLoad, IntNullSizeGet, IntSizeGet}; }
constexpr Helpers unsignedHelpers() { return {UnsignedStore, UnsignedLoad, IntNullSizeGet, IntSizeGet}; }

constexpr KtTypeDescriptor charRow() {
  return scalarRow<CharValue>("char", {printChars, scanChars}, CharCompare, charHelpers());
}
constexpr KtTypeDescriptor shortRow() {
  return scalarRow<ShortValue>("short", {printShort, scanShort}, ShortCompare, shortHelpers());
}
constexpr KtTypeDescriptor longRow() {
  return scalarRow<LongValue>("long", {printLong, scanLong}, LongCompare, longHelpers());
}
constexpr KtTypeDescriptor dwordRow(const char* name) {
  return unsignedTwin<DwordValue>(longRow(), name, DwordCompare);
}
constexpr KtTypeDescriptor blockIdRow() {
  KtTypeDescriptor row = dwordRow("BlockId");
  row.Format = "#%lu";
  return row;
}
constexpr KtTypeDescriptor intRow() {
  return scalarRow<IntValue>("int", {printLong, scanLong}, IntCompare, intHelpers());
}

constexpr KtTypeDescriptor unsignedRow() {
  KtTypeDescriptor row = unsignedTwin<UnsignedValue>(intRow(), "unsigned", UnsignedCompare);
  row.Store = unsignedHelpers().store;
  row.Load = unsignedHelpers().load;
  row.Translate = ScalarOps<UnsignedValue>::translate;
  return row;
}

constexpr KtTypeDescriptor enumRow() {
  KtTypeDescriptor row = intRow();
  row.Name = "enum";
  row.Translate = ScalarOps<EnumValue>::translate;
  return row;
}

template <class Ops>
constexpr KtTypeDescriptor variableRow(const char* name, unsigned short memLen, const char* format) {
  KtTypeDescriptor row = rowOf<Ops>(name, memLen, format);
  row.IsFixed = 0;
  return row;
}

template <class Ops>
constexpr KtTypeDescriptor stringRow(const char* name) {
  return variableRow<Ops>(name, sizeof(KtString), "%s");
}

// The nullable form of the scalar that V describes.
template <class V>
constexpr KtTypeDescriptor nullableRow(const char* name) {
  return rowOf<NullableOps<V>>(name, sizeof(typename NullableValue<V>::Memory), V::kFormat);
}

constexpr KtTypeDescriptor floatRow() {
  return scalarRow<FloatValue>("float", {printFloat, scanFloat}, FloatCompare, floatHelpers());
}

// A number of seconds: sizes, order, hash and translation are those of floats.
constexpr KtTypeDescriptor intervalRow() {
  const KtTypeDescriptor base = floatRow();
  KtTypeDescriptor row = rowOf<OdmgIntervalOps>("d_Interval", sizeof(d_Interval), OdmgIntervalValue::kFormat);
  row.NullSizeGet = base.NullSizeGet;
  row.SizeGet = base.SizeGet;
  row.SizeGetFromMemFile = base.SizeGetFromMemFile;
  row.Compare = base.Compare;
  row.EvalAndBound = base.EvalAndBound;
  row.Hash = base.Hash;
  row.Translate = base.Translate;
  return row;
}

// The rows by id.
KT_KNOWN KtTypeDescriptor kRows[] = {
    /*  0 */ charRow(),
    /*  1 */ shortRow(),
    /*  2 */ longRow(),
    /*  3 */ scalarRow<DoubleValue>("double", {printDouble, scanDouble}, DoubleCompare, doubleHelpers()),
    /*  4 */ floatRow(),
    /*  5 */ unsignedTwin<WordValue>(shortRow(), "KtWord", WordCompare),
    /*  6 */ dwordRow("KtDWord"),
    /*  7 */ intRow(),
    /*  8 */ unsignedRow(),
    /*  9 */ enumRow(),
    /* 10 */ unsignedTwin<ByteValue>(charRow(), "KtByte", ByteCompare),
    /* 11 */ stringRow<StringOps>("KtString"),
    /* 12 */ rowOf<KtDateOps>("KtDate", sizeof(KtDate), "%a %e.%b %Y"),
    /* 13 */ rowOf<KtTimeOps>("KtTime", sizeof(KtTime), "%I:%M:%S %p"),
    /* 14 */ blockIdRow(),
    /* 15 */ rowOf<ObjIdOps>("KtObjId", sizeof(KtObjId), kObjIdFormat),
    /* 16 */ rowOf<ClassIdOps>("KtClassId", sizeof(KtClassId), kClassIdFormat),
    /* 17 */ rowOf<RefOps>("KtRef", sizeof(KtRef), kRefFormat),
    /* 18 */ variableRow<BlobOps>("KtBlob", sizeof(KtBlob), kBlobFormat),
    /* 19 */ rowOf<KtDateTimeOps>("KtDateTime", sizeof(KtDateTime), "%a %e.%b %Y %I:%M:%S %p"),
    /* 20 */ stringRow<IStringOps>("KtIString"),
    /* 21 */ stringRow<CaseIStringOps>("KtCaseIString"),
    /* 22 */ rowOf<OdmgDateOps>("d_Date", sizeof(d_Date), OdmgDateValue::kFormat),
    /* 23 */ rowOf<OdmgTimeOps>("d_Time", sizeof(d_Time), OdmgTimeValue::kFormat),
    /* 24 */ rowOf<OdmgTimestampOps>("d_Timestamp", sizeof(d_Timestamp), OdmgTimestampValue::kFormat),
    /* 25 */ intervalRow(),
    /* 26 */ rowOf<Int64Ops>("KtInt64", sizeof(KtInt64), Int64Value::kFormat),
    /* 27 */ rowOf<BooleanOps>("KtBoolean", sizeof(KtBoolean), "noop"),
    /* 28 */ nullableRow<CharValue>("KtNull_char"),
    /* 29 */ nullableRow<ByteValue>("KtNull_uchar"),
    /* 30 */ nullableRow<ShortValue>("KtNull_short"),
    /* 31 */ nullableRow<WordValue>("KtNull_ushort"),
    /* 32 */ nullableRow<IntValue>("KtNull_int"),
    /* 33 */ nullableRow<UnsignedValue>("KtNull_unsigned"),
    /* 34 */ nullableRow<LongValue>("KtNull_long"),
    /* 35 */ nullableRow<DwordValue>("KtNull_ulong"),
    /* 36 */ nullableRow<FloatValue>("KtNull_float"),
    /* 37 */ nullableRow<DoubleValue>("KtNull_double"),
    /* 38 */ nullableRow<Int64Value>("KtNull_KtInt64"),
    /* 39 */ rowOf<SealOps>("KtSeal", sizeof(KtSeal), "noop"),
    /* 40 */ rowOf<IllegalOps>("illegal", 0, "illegal"),
};
static_assert(std::size(kRows) == KtTYPE_COUNT, "each id of KtTypeId has one row, at its place");

// The legacy table's own string row: the older disk form, and no null value.
KT_KNOWN KtTypeDescriptor kLegacyStringRow = stringRow<LegacyStringOps>("KtString");

// As they are at first: Compare, Format, PrintToKtString and ScanFromKtString can be exchanged at run time.
KT_LOADED auto rows = std::to_array(kRows);
KT_LOADED auto legacyStringRow = kLegacyStringRow;

// Every value of an id byte leads to a row: no check stands between an id and its operation.
template <class Entry>
using IdMap = std::array<Entry, 256>;

constexpr std::size_t rowOfId(std::size_t id, int count) {
  return id < static_cast<std::size_t>(count) ? id : std::size_t{KT_ID_illegal};
}

constexpr IdMap<KtTypeDescriptor*> mapIds(int count, KtTypeDescriptor* stringRow) {
  IdMap<KtTypeDescriptor*> map{};
  for (std::size_t id = 0; id < map.size(); ++id) map[id] = &rows[rowOfId(id, count)];
  map[KT_ID_KtString] = stringRow;
  return map;
}

constexpr IdMap<KtTypeDescriptor*> kCurrentTable = mapIds(KtTYPE_COUNT, &rows[KT_ID_KtString]);
constexpr IdMap<KtTypeDescriptor*> kLegacyTable = mapIds(KtLEGACY_TYPE_COUNT, &legacyStringRow);

// The rows' Compare once more.
constexpr IdMap<KtTypeCmpFunc> mapCompares(int count, const KtTypeDescriptor& stringRow) {
  IdMap<KtTypeCmpFunc> map{};
  for (std::size_t id = 0; id < map.size(); ++id) map[id] = kRows[rowOfId(id, count)].Compare;
  map[KT_ID_KtString] = stringRow.Compare;
  return map;
}

KT_LOADED IdMap<KtTypeCmpFunc> currentCompares = mapCompares(KtTYPE_COUNT, kRows[KT_ID_KtString]);
KT_LOADED IdMap<KtTypeCmpFunc> legacyCompares = mapCompares(KtLEGACY_TYPE_COUNT, kLegacyStringRow);

void noteCompare(IdMap<KtTypeCmpFunc>& compares, const IdMap<KtTypeDescriptor*>& table, const KtTypeDescriptor& row) {
  for (std::size_t id = 0; id < table.size(); ++id)
    if (table[id] == &row) compares[id] = row.Compare;
}

}  // namespace

TypeTable currentTypeTable() { return kCurrentTable.data(); }
TypeTable legacyTypeTable() { return kLegacyTable.data(); }
CompareTable comparesOf(TypeTable table) {
  return table == kCurrentTable.data() ? currentCompares.data() : legacyCompares.data();
}
void setCompare(KtTypeDescriptor& row, KtTypeCmpFunc compare) {
  row.Compare = compare;
  noteCompare(currentCompares, kCurrentTable, row);
  noteCompare(legacyCompares, kLegacyTable, row);
}
int typeCount(TypeTable table) { return table == kCurrentTable.data() ? KtTYPE_COUNT : KtLEGACY_TYPE_COUNT; }

}  // namespace kt
