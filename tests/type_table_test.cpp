// The type table: facts of the rows, resolution of ids, audits that must find no guilty row.
#include "table/type_table.h"

#include <kttm.h>

#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {

struct Row {
  const char* name;
  unsigned memLen;
  int isFixed;
  const char* format;
  int hasNull;
};

constexpr unsigned kPointer = sizeof(void*);

// The ids in order, as stored schemas know them.
const Row kRows[] = {
    {"char", 1, 1, "%c", 0},
    {"short", 2, 1, "%hd", 0},
    {"long", 4, 1, "%ld", 0},
    {"double", 8, 1, "%lf", 0},
    {"float", 4, 1, "%f", 0},
    {"KtWord", 2, 1, "%hu", 0},
    {"KtDWord", 4, 1, "%lu", 0},
    {"int", 4, 1, "%d", 0},
    {"unsigned", 4, 1, "%u", 0},
    {"enum", 4, 1, "%d", 0},
    {"KtByte", 1, 1, "%c", 0},
    {"KtString", 2 * kPointer, 0, "%s", 1},
    {"KtDate", 4, 1, "%a %e.%b %Y", 1},
    {"KtTime", 3, 1, "%I:%M:%S %p", 1},
    {"BlockId", 4, 1, "#%lu", 0},
    {"KtObjId", 12, 1, "(%H-%L#%B)", 1},
    {"KtClassId", 4, 1, "(%Cv%V)", 1},
    {"KtRef", 20, 1, "(%D:%H-%L#%B, %C)", 1},
    {"KtBlob", kPointer, 0, "[BLOB,len=%L]", 1},
    {"KtDateTime", 8, 1, "%a %e.%b %Y %I:%M:%S %p", 1},
    {"KtIString", 2 * kPointer, 0, "%s", 0},
    {"KtCaseIString", 2 * kPointer, 0, "%s", 0},
    {"d_Date", 4, 1, "%a %b %e", 0},
    {"d_Time", 6, 1, "%I:%M:%S %p", 0},
    {"d_Timestamp", 10, 1, "%a %b %e %I:%M:%S %p", 0},
    {"d_Interval", 4, 1, "%e days, %I hours, %M minutes, %S seconds", 0},
    {"KtInt64", 8, 1, "%S", 0},
    {"KtBoolean", 1, 1, "noop", 1},
    {"KtNull_char", 2, 1, "%c", 1},
    {"KtNull_uchar", 2, 1, "%c", 1},
    {"KtNull_short", 4, 1, "%hd", 1},
    {"KtNull_ushort", 4, 1, "%hu", 1},
    {"KtNull_int", 8, 1, "%d", 1},
    {"KtNull_unsigned", 8, 1, "%u", 1},
    {"KtNull_long", 8, 1, "%ld", 1},
    {"KtNull_ulong", 8, 1, "%lu", 1},
    {"KtNull_float", 8, 1, "%f", 1},
    {"KtNull_double", 16, 1, "%lf", 1},
    {"KtNull_KtInt64", 12, 1, "%S", 1},
    {"KtSeal", 6, 1, "noop", 0},
    {"illegal", 0, 1, "illegal", 0},
};
static_assert(std::size(kRows) == KtTYPE_COUNT, "a type of the table is missing here");

TEST(TypeTable, rows_have_their_names_lengths_formats_and_null_values) {
  KtTypeMgr mgr(12);
  for (int i = 0; i < KtTYPE_COUNT; ++i) {
    const char id = static_cast<char>(i);
    const Row& row = kRows[i];
    SCOPED_TRACE(row.name);
    EXPECT_STREQ(mgr.NameGet(id, nullptr), row.name);
    EXPECT_EQ(mgr.MemLenGet(id, 1), row.memLen);
    EXPECT_EQ(mgr.IsFixed(id), row.isFixed);
    EXPECT_STREQ(mgr.ExchangeFormat(id, nullptr), row.format);
    EXPECT_EQ(mgr.SupportsNullValue(id), row.hasNull);
    char found = 99;
    EXPECT_EQ(mgr.Name2KtTypeId(row.name, found), 0);
    EXPECT_EQ(found, id);
  }
}

TEST(TypeTable, names_are_found_exactly_or_not_at_all) {
  KtTypeMgr current(12);
  KtTypeMgr legacy(11);
  char id = 0;
  EXPECT_EQ(current.Name2KtTypeId("word", id), 1);
  EXPECT_EQ(id, KtTYPE_COUNT);
  EXPECT_EQ(current.Name2KtTypeId("ktword", id), 1);
  EXPECT_EQ(current.Name2KtTypeId("", id), 1);
  EXPECT_EQ(legacy.Name2KtTypeId("KtBoolean", id), 0);
  EXPECT_EQ(id, 27);
  for (const char* beyond : {"KtNull_char", "KtSeal", "illegal"}) {
    EXPECT_EQ(legacy.Name2KtTypeId(beyond, id), 1) << beyond;
    EXPECT_EQ(id, KtTYPE_COUNT);
  }
}

TEST(TypeTable, validity_looks_at_the_number_only) {
  KtTypeMgr legacy(11);
  for (int id : {0, 27, 28, 40, 100, 127, -1, -128}) EXPECT_EQ(legacy.IsValidType(static_cast<char>(id)), 1) << id;
  for (int id : {KtTYPE_COUNT, 60, 99}) EXPECT_EQ(legacy.IsValidType(static_cast<char>(id)), 0) << id;
}

TEST(TypeTable, versions_choose_the_table) {
  char id = 0;
  for (unsigned long version : {0ul, 3ul, 11ul})
    EXPECT_EQ(KtTypeMgr(version).Name2KtTypeId("KtSeal", id), 1) << version;
  for (unsigned long version : {4ul, 10ul, 12ul, 99ul}) {
    EXPECT_EQ(KtTypeMgr(version).Name2KtTypeId("KtSeal", id), 0) << version;
  }
  KtTypeMgr mgr(12);
  mgr.SetFactory(11);
  EXPECT_EQ(mgr.SupportsNullValue(KT_ID_KtString), 0);
  mgr.SetFactory(4);
  EXPECT_EQ(mgr.SupportsNullValue(KT_ID_KtString), 1);
}

TEST(TypeTable, ids_outside_the_table_do_nothing_and_say_nothing) {
  struct Outside {
    unsigned long version;
    int id;
  };
  const Outside outside[] = {{12, KtTYPE_COUNT}, {12, 99}, {12, 100}, {12, 127}, {12, -1},
                             {12, -128},         {11, 28}, {11, 40},  {11, 100}};
  for (const Outside& o : outside) {
    SCOPED_TRACE(testing::Message() << "version " << o.version << " id " << o.id);
    KtTypeMgr mgr(o.version);
    const char id = static_cast<char>(o.id);
    long value = 5;
    int status = 7;
    unsigned short flags = 7;
    KtString out("kept");
    EXPECT_STREQ(mgr.NameGet(id, nullptr), "illegal");
    EXPECT_EQ(mgr.MemLenGet(id, 9), 0);
    EXPECT_EQ(mgr.IsFixed(id), 1);
    EXPECT_EQ(mgr.Create(id, 3), nullptr);
    EXPECT_EQ(mgr.Delete(id, nullptr, 3), nullptr);
    EXPECT_EQ(mgr.DefaultValue(id, 3, 1), nullptr);
    EXPECT_EQ(mgr.Store(id, &value, &value, 2, 1), 0u);
    EXPECT_EQ(mgr.Load(id, &value, &value, 2, 1), 0u);
    EXPECT_EQ(mgr.DiskLenGet(id, &value, 2, 1, 8), 0u);
    EXPECT_EQ(mgr.DiskLenGetFromMemFile(id, nullptr, 2, 1), 0u);
    EXPECT_EQ(mgr.Cmp(id, &value, &value, 0, 1, 8), 0);
    EXPECT_EQ(mgr.Cmp(id, 4, &value, 4, &value, 0, 9, 8, status), 0);
    EXPECT_EQ(mgr.EvalAndBound(id, nullptr, flags, &value, 8, 1, nullptr, nullptr), 0.0F);
    EXPECT_EQ(mgr.Hash(id, 0, &value, 1, 8, status), 0u);
    EXPECT_EQ(mgr.ConvertTo(id, &value, 1), nullptr);
    EXPECT_EQ(mgr.ConvertFrom(id, nullptr, 1), nullptr);
    EXPECT_EQ(mgr.Translate(id, &value, 8, 4, &value, 2, 4, 1), 0u);
    EXPECT_EQ(mgr.IsNullValue(id, &value), 0);
    EXPECT_EQ(mgr.SetNullValue(id, &value), 0);
    EXPECT_EQ(&mgr.PrintToKtString(id, out, &value, nullptr, 3), &out);
    EXPECT_STREQ(out.StrGet(), "kept");
    EXPECT_EQ(mgr.ScanFromKtString(id, &value, out, nullptr, 1), nullptr);
    mgr.ConstructorPtrGet(id)(&value, 1, 0);
    mgr.AssignmentPtrGet(id)(&value, &status, 1, 1);
    mgr.DestructorPtrGet(id)(&value, 1, 0);
    EXPECT_EQ(value, 5);
    const bool illegalIsThere = o.version == 12 && o.id >= 100;
    EXPECT_EQ(mgr.GetArrayElement(id, &value, 0, 0), illegalIsThere ? &value : nullptr);
  }
}

TEST(TypeTable, only_the_illegal_row_has_operations_that_do_nothing) {
  KtTypeMgr mgr(12);
  std::set<std::string> idle;
  for (int i = 0; i < KtTYPE_COUNT; ++i) {
    const char id = static_cast<char>(i);
    if (i != KT_ID_illegal && mgr.StorePtrGet(id) == mgr.StorePtrGet(KT_ID_illegal))
      idle.insert(mgr.NameGet(id, nullptr));
  }
  EXPECT_EQ(idle, std::set<std::string>{});
}

TEST(TypeTable, slots_hold_the_exported_functions_themselves) {
  KtTypeMgr mgr(12);
  EXPECT_EQ(mgr.StorePtrGet(KT_ID_int), &IntStore);
  EXPECT_EQ(mgr.LoadPtrGet(KT_ID_int), &IntLoad);
  EXPECT_EQ(mgr.LoadPtrGet(KT_ID_unsigned), &UnsignedLoad);
  EXPECT_EQ(mgr.LoadPtrGet(KT_ID_double), &DoubleStore);
  EXPECT_EQ(mgr.StorePtrGet(KT_ID_KtByte), &CharStore);
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_enum), &IntCompare);
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_BlockId), &DwordCompare);
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_KtString), &StringCompare);
  EXPECT_EQ(mgr.StorePtrGet(KT_ID_KtString), &StringStore);
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_KtInt64), &Int64Compare);
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_KtBoolean), &BooleanCompare);
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_KtObjId), &ObjIdCompare);
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_KtClassId), &ClassIdCompare);
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_KtRef), &RefCompare);
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_KtBlob), &BlobCompare);
  EXPECT_EQ(mgr.ComparePtrGet(KT_ID_long), nullptr);
  EXPECT_EQ(mgr.SetNullPtrGet(KT_ID_long), nullptr);
}

// Pairs of rows that are one type under two names.
TEST(TypeTable, twins_share_what_they_share) {
  KtTypeMgr mgr(12);
  const int twins[][2] = {{KT_ID_char, KT_ID_KtByte},     {KT_ID_short, KT_ID_KtWord}, {KT_ID_long, KT_ID_KtDWord},
                          {KT_ID_KtDWord, KT_ID_BlockId}, {KT_ID_int, KT_ID_unsigned}, {KT_ID_int, KT_ID_enum}};
  for (const auto& [a, b] : twins) {
    const char idA = static_cast<char>(a);
    const char idB = static_cast<char>(b);
    SCOPED_TRACE(mgr.NameGet(idB, nullptr));
    EXPECT_EQ(mgr.AssignmentPtrGet(idA), mgr.AssignmentPtrGet(idB));
    EXPECT_EQ(mgr.ConstructorPtrGet(idA), mgr.ConstructorPtrGet(idB));
    EXPECT_EQ(mgr.ExchangePrintToKtStringFunc(idA, nullptr), mgr.ExchangePrintToKtStringFunc(idB, nullptr));
    EXPECT_EQ(mgr.ExchangeScanFromKtStringFunc(idA, nullptr), mgr.ExchangeScanFromKtStringFunc(idB, nullptr));
  }
  EXPECT_EQ(mgr.CmpFuncPtrGet(KT_ID_KtDWord), mgr.CmpFuncPtrGet(KT_ID_BlockId));
  EXPECT_NE(mgr.CmpFuncPtrGet(KT_ID_long), mgr.CmpFuncPtrGet(KT_ID_KtDWord));
}

// The manager always hands a format to the functions of a row; who calls them directly need not. Dates and times then
// print as their classes do.
TEST(TypeTable, operations_called_without_a_format_take_that_of_the_row_that_lends_them) {
  for (int id = 0; id < KtTYPE_COUNT; ++id) {
    const KtTypeDescriptor& row = *kt::currentTypeTable()[id];
    int lender = 0;
    while (kt::currentTypeTable()[lender]->PrintToKtString != row.PrintToKtString) ++lender;
    const char* format = kt::currentTypeTable()[lender]->Format;
    if (id == KT_ID_KtDate) format = "%Y-%m-%d";
    if (id == KT_ID_KtTime) format = "%H:%M:%S";
    if (id == KT_ID_KtDateTime) format = "%Y-%m-%dT%H:%M:%S";
    void* value = row.DefaultValue(1, 0);
    void* scanned[] = {row.DefaultValue(1, 0), row.DefaultValue(1, 0)};
    KtString printed, expected;
    row.PrintToKtString(printed, value, nullptr, 1);
    row.PrintToKtString(expected, value, format, 1);
    EXPECT_TRUE(printed == expected) << row.Name << ": " << printed.StrGet();
    KtString text("2005-06-28 14:05:09");
    row.ScanFromKtString(scanned[0], text, nullptr, 1);
    row.ScanFromKtString(scanned[1], text, format, 1);
    int status = 0;
    EXPECT_EQ(row.Compare(8, 0, scanned[0], 0, scanned[1], 0x10, 1, status), 0) << row.Name;
    for (void* made : {value, scanned[0], scanned[1]}) row.Delete(made, 1);
  }
}

TEST(TypeTable, both_tables_share_their_rows_but_for_the_string) {
  KtTypeMgr current(12);
  KtTypeMgr legacy(11);
  const char* old = current.ExchangeFormat(KT_ID_short, "<%hd>");
  EXPECT_STREQ(legacy.ExchangeFormat(KT_ID_short, old), "<%hd>");
  EXPECT_STREQ(current.ExchangeFormat(KT_ID_short, nullptr), "%hd");
  current.ExchangeFormat(KT_ID_KtString, "(%s)");
  EXPECT_STREQ(legacy.ExchangeFormat(KT_ID_KtString, nullptr), "%s");
  current.ExchangeFormat(KT_ID_KtString, "%s");
}

}  // namespace
