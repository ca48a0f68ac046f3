#include "offers.h"

#include <algorithm>
#include <iterator>

namespace tool {
namespace {

// --- fields -----------------------------------------------------------------------------------------------------------

using Function = void (*)();  // of any operation, to be compared only

struct Field {
  const char* name;
  Function (*of)(const KtTypeDescriptor&);
};

template <auto kField>
Function functionAt(const KtTypeDescriptor& row) {
  return reinterpret_cast<Function>(row.*kField);
}

template <auto kField>
constexpr Field fieldOf(const char* name) {
  return {name, functionAt<kField>};
}

#define KT_FIELD(name) fieldOf<&KtTypeDescriptor::name>(#name)
constexpr Field kFields[] = {
    KT_FIELD(Create),
    KT_FIELD(Delete),
    KT_FIELD(Store),
    KT_FIELD(Load),
    KT_FIELD(NullSizeGet),
    KT_FIELD(SizeGet),
    KT_FIELD(SizeGetFromMemFile),
    KT_FIELD(Compare),
    KT_FIELD(EvalAndBound),
    KT_FIELD(Hash),
    KT_FIELD(ConvertTo),
    KT_FIELD(ConvertFrom),
    KT_FIELD(Constructor),
    KT_FIELD(Destructor),
    KT_FIELD(Assignment),
    KT_FIELD(Copy),
    KT_FIELD(Translate),
    KT_FIELD(IsNull),
    KT_FIELD(SetNull),
    KT_FIELD(PrintToKtString),
    KT_FIELD(ScanFromKtString),
    KT_FIELD(DefaultValue),
};
#undef KT_FIELD

// --- names ------------------------------------------------------------------------------------------------------------

struct Named {
  const char* name;
  Function function;
};

template <class Operation>
Named named(const char* name, Operation* operation) {
  return {name, reinterpret_cast<Function>(operation)};
}

#define KT_NAMED(name) named(#name, &name)
// What kttypops.h declares, and the typed disk conversion of ktbs.h; a test holds the list to both.
const Named kNamed[] = {
    KT_NAMED(CharCompare),      KT_NAMED(ByteCompare),       KT_NAMED(ShortCompare),       KT_NAMED(WordCompare),
    KT_NAMED(IntCompare),       KT_NAMED(UnsignedCompare),   KT_NAMED(LongCompare),        KT_NAMED(DwordCompare),
    KT_NAMED(FloatCompare),     KT_NAMED(DoubleCompare),     KT_NAMED(Int64Compare),       KT_NAMED(BooleanCompare),
    KT_NAMED(StringCompare),    KT_NAMED(DateCompare),       KT_NAMED(TimeCompare),        KT_NAMED(DaTimeCompare),
    KT_NAMED(d_DateCompare),    KT_NAMED(d_TimeCompare),     KT_NAMED(d_TimestampCompare), KT_NAMED(ObjIdCompare),
    KT_NAMED(ClassIdCompare),   KT_NAMED(RefCompare),        KT_NAMED(BlobCompare),        KT_NAMED(StringStore),
    KT_NAMED(StringLoad),       KT_NAMED(StringSizeGet),     KT_NAMED(CharStore),          KT_NAMED(ShortStore),
    KT_NAMED(LongStore),        KT_NAMED(FloatStore),        KT_NAMED(DoubleStore),        KT_NAMED(IntStore),
    KT_NAMED(IntLoad),          KT_NAMED(UnsignedStore),     KT_NAMED(UnsignedLoad),       KT_NAMED(CharSizeGet),
    KT_NAMED(ShortSizeGet),     KT_NAMED(LongSizeGet),       KT_NAMED(FloatSizeGet),       KT_NAMED(DoubleSizeGet),
    KT_NAMED(IntSizeGet),       KT_NAMED(CharNullSizeGet),   KT_NAMED(ShortNullSizeGet),   KT_NAMED(LongNullSizeGet),
    KT_NAMED(FloatNullSizeGet), KT_NAMED(DoubleNullSizeGet), KT_NAMED(IntNullSizeGet),
};
#undef KT_NAMED

const char* nameOf(Function function) {
  const auto* found = std::find_if(std::begin(kNamed), std::end(kNamed),
                                   [&](const Named& named) { return named.function == function; });
  return found == std::end(kNamed) ? nullptr : found->name;
}

// --- families ---------------------------------------------------------------------------------------------------------

constexpr char kNumbers[] = "all its values are numbers";
constexpr char kNoNullClass[] = "its class has no null";
constexpr char kCollated[] = "it sorts by the collation of a language, and the mark of a null is a language";
constexpr char kNoOrderOfRanges[] = "its order is that of bytes, which tells nothing about a range";
constexpr char kNoType[] = "it stands for every id that is no type";
constexpr char kUnexplained[] = "for no reason that is known";  // a test finds none

// Neighbours in the table whose operations are described in one source, and why they have no null.
struct Family {
  KtTypeId first, last;
  const char* source;
  const char* whyNoNull;
};

constexpr Family kFamilies[] = {
    {KT_ID_char, KT_ID_KtByte, "src/ops/scalar_ops.h", kNumbers},
    {KT_ID_KtString, KT_ID_KtString, "src/ops/string_ops.h", nullptr},
    {KT_ID_KtDate, KT_ID_KtTime, "src/ops/date_ops.h", nullptr},
    {KT_ID_BlockId, KT_ID_BlockId, "src/ops/scalar_ops.h", kNumbers},
    {KT_ID_KtObjId, KT_ID_KtRef, "src/ops/identity_ops.h", nullptr},
    {KT_ID_KtBlob, KT_ID_KtBlob, "src/ops/blob_ops.h", nullptr},
    {KT_ID_KtDateTime, KT_ID_KtDateTime, "src/ops/date_ops.h", nullptr},
    {KT_ID_KtIString, KT_ID_KtCaseIString, "src/ops/string_ops.h", kCollated},
    {KT_ID_d_Date, KT_ID_d_Timestamp, "src/ops/odmg_ops.h", kNoNullClass},
    {KT_ID_d_Interval, KT_ID_d_Interval, "src/ops/odmg_ops.h", kNumbers},
    {KT_ID_KtInt64, KT_ID_KtInt64, "src/ops/int64_ops.h", kNumbers},
    {KT_ID_KtBoolean, KT_ID_KtBoolean, "src/ops/boolean_ops.h", nullptr},
    {KT_ID_KtNull_char, KT_ID_KtNull_KtInt64, "src/ops/nullable_ops.h", nullptr},
    {KT_ID_KtSeal, KT_ID_KtSeal, "src/ops/seal_ops.h", kNumbers},
    {KT_ID_illegal, KT_ID_illegal, "src/ops/illegal_ops.h", nullptr},
};

constexpr Family kUnknown{KT_ID_illegal, KT_ID_illegal, "src/table/type_table.cpp", nullptr};

const Family& familyOf(char id) {
  const auto* found = std::find_if(std::begin(kFamilies), std::end(kFamilies),
                                   [&](const Family& family) { return id >= family.first && id <= family.last; });
  return found == std::end(kFamilies) ? kUnknown : *found;
}

const char* reasonFor(char id, const std::string& operation) {
  if (id == KT_ID_illegal) return kNoType;
  if (operation == "EvalAndBound" && id == KT_ID_KtBlob) return kNoOrderOfRanges;
  const char* whyNoNull = operation == "SetNull" ? familyOf(id).whyNoNull : nullptr;
  return whyNoNull == nullptr ? kUnexplained : whyNoNull;
}

}  // namespace

std::vector<Offer> offersOf(const Type& type) {
  std::vector<Offer> offers;
  for (const Field& field : kFields) {
    const Function function = field.of(manager().DescriptorGet(type.id));
    const bool offered = function != nullptr && function != field.of(manager().DescriptorGet(KT_ID_illegal));
    offers.push_back({.operation = field.name,
                      .offered = offered,
                      .function = offered ? nameOf(function) : nullptr,
                      .reason = offered ? nullptr : reasonFor(type.id, field.name)});
  }
  return offers;
}

const char* sourceOf(const Type& type) { return familyOf(type.id).source; }

}  // namespace tool
