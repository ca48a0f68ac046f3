// KtTypeMgr's own rules: arrays, exchanges, conversions through text, null fallbacks, the module functions.
#include <kttm.h>

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <memory>
#include <string>

namespace {

// The older conversions are there for derived classes.
class OldManager : public KtTypeMgr {
public:
  OldManager() : KtTypeMgr(12) {}
  using KtTypeMgr::ConvertFromKtStringOld;
  using KtTypeMgr::ConvertToKtStringOld;
};

TEST(TypeManager, elements_are_found_by_index_below_the_count) {
  KtTypeMgr mgr(12);
  std::int32_t values[6];
  EXPECT_EQ(mgr.GetArrayElement(KT_ID_long, values, 4, 5), &values[4]);
  EXPECT_EQ(mgr.GetArrayElement(KT_ID_long, values, 5, 5), nullptr);
  EXPECT_EQ(mgr.GetArrayElement(KT_ID_long, values, 5, 0), &values[5]);  // count 0: unbounded
  EXPECT_EQ(mgr.MemLenGet(KT_ID_KtDate, 3), 12);
  EXPECT_EQ(mgr.MemLenGet(KT_ID_long, 20000), 80000 - 65536);
  EXPECT_EQ(mgr.DiskIsNullValue(KT_ID_KtString, nullptr), -2999);
}

// The functions handed out one by one are those of the row, of the table that the manager uses.
TEST(TypeManager, hands_out_what_stands_in_the_row) {
  for (const unsigned long version : {11ul, 12ul}) {
    const KtTypeMgr mgr(version);
    for (char id = 0; id < KtLEGACY_TYPE_COUNT; ++id) {
      const KtTypeDescriptor& row = mgr.DescriptorGet(id);
      EXPECT_STREQ(row.Name, mgr.NameGet(id, nullptr));
      EXPECT_EQ(mgr.ConstructorPtrGet(id), row.Constructor);
      EXPECT_EQ(mgr.DestructorPtrGet(id), row.Destructor);
      EXPECT_EQ(mgr.AssignmentPtrGet(id), row.Assignment);
      EXPECT_EQ(mgr.CopyPtrGet(id), row.Copy);
      EXPECT_EQ(mgr.LoadPtrGet(id), row.Load);
      EXPECT_EQ(mgr.StorePtrGet(id), row.Store);
      EXPECT_EQ(mgr.IsNullPtrGet(id), row.IsNull);
      EXPECT_EQ(mgr.SetNullPtrGet(id), row.SetNull);
      EXPECT_EQ(mgr.CmpFuncPtrGet(id), row.Compare);
      EXPECT_EQ(mgr.ComparePtrGet(id), nullptr);
    }
  }
  EXPECT_NE(KtTypeMgr(11).StorePtrGet(KT_ID_KtString), KtTypeMgr(12).StorePtrGet(KT_ID_KtString));
}

KtString& printNothing(KtString& out, void*, const char*, unsigned long) { return out += 'x'; }
void* scanNothing(void* values, KtString&, const char*, unsigned long) { return values; }
long alwaysLess(unsigned char, unsigned long, void*, unsigned long, void*, unsigned short, unsigned long, int& status) {
  status = 3;
  return -1;
}

TEST(TypeManager, operations_can_be_exchanged_for_every_manager) {
  KtTypeMgr one(12);
  KtTypeMgr two(4);
  std::int32_t value = 5;
  const auto compare = one.ExchangeKtTypeCmpFunc(KT_ID_long, alwaysLess);
  const auto print = one.ExchangePrintToKtStringFunc(KT_ID_long, printNothing);
  const auto scan = one.ExchangeScanFromKtStringFunc(KT_ID_long, scanNothing);
  KtString out;
  KtString in("9");
  EXPECT_EQ(two.Cmp(KT_ID_long, &value, &value, 0, 1, 8), -1);
  EXPECT_STREQ(two.PrintToKtString(KT_ID_long, out, &value, nullptr, 2).StrGet(), "x,x");
  two.ScanFromKtString(KT_ID_long, &value, in, nullptr, 1);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(one.ExchangeKtTypeCmpFunc(KT_ID_long, compare), &alwaysLess);
  EXPECT_EQ(one.ExchangePrintToKtStringFunc(KT_ID_long, print), &printNothing);
  EXPECT_EQ(one.ExchangeScanFromKtStringFunc(KT_ID_long, scan), &scanNothing);
  EXPECT_EQ(one.ExchangeKtTypeCmpFunc(KT_ID_long, nullptr), &LongCompare);
}

// A row that both tables share, the row of all other ids, and the two tables' own rows of strings.
TEST(TypeManager, an_exchanged_comparison_is_that_of_all_ids_of_its_row) {
  KtTypeMgr current(12), legacy(11);
  const char other = 77, negative = -3;
  KtString text("a");
  std::int32_t number = 5;
  void* const values[] = {&number, &number, &number, &text};
  const char ids[] = {KT_ID_long, KT_ID_illegal, KT_ID_illegal, KT_ID_KtString};
  const char asked[] = {KT_ID_long, other, negative, KT_ID_KtString};
  for (std::size_t i = 0; i < std::size(ids); ++i) {
    const auto compare = legacy.ExchangeKtTypeCmpFunc(ids[i], alwaysLess);
    const bool isShared = ids[i] != KT_ID_KtString;
    EXPECT_EQ(legacy.Cmp(asked[i], values[i], values[i], 0, 1, 8), -1) << i;
    EXPECT_EQ(current.Cmp(asked[i], values[i], values[i], 0, 1, 8), isShared ? -1 : 0) << i;
    int status = 0;
    current.Cmp(asked[i], 0, values[i], 0, values[i], 0, 1, 8, status);
    EXPECT_EQ(status, isShared ? 3 : 0) << i;
    EXPECT_EQ(legacy.CmpFuncPtrGet(asked[i]), &alwaysLess) << i;
    legacy.ExchangeKtTypeCmpFunc(ids[i], compare);
    EXPECT_EQ(legacy.Cmp(asked[i], values[i], values[i], 0, 1, 8), 0) << i;
  }
}

TEST(TypeManager, bytes_stay_one_text_while_char_prints_otherwise) {
  KtTypeMgr mgr(12);
  char values[] = {'a', 'b', 'c'};
  KtString bytes;
  const auto print = mgr.ExchangePrintToKtStringFunc(KT_ID_char, printNothing);
  mgr.PrintToKtString(KT_ID_KtByte, bytes, values, nullptr, 3);
  mgr.ExchangePrintToKtStringFunc(KT_ID_char, print);
  EXPECT_STREQ(bytes.StrGet(), "abc");
}

TEST(TypeManager, the_null_print_string_may_have_characters_that_other_code_sets_lack) {
  const auto wide = [](const char16_t* text) { return KtString(reinterpret_cast<const unsigned short*>(text)); };
  KtTypeMgr mgr(12);
  KtTypeMgr::SetNullPrintString(wide(u"なし"));
  for (const auto id :
       {KT_ID_KtBoolean, KT_ID_KtNull_int, KT_ID_KtObjId, KT_ID_KtClassId, KT_ID_KtBlob, KT_ID_KtTime}) {
    const auto isNullAfter = [&](KtString text) {
      void* value = mgr.DefaultValue(id, 1, 0);
      KtString number("15-6#7v8");
      mgr.ScanFromKtString(id, value, number, nullptr, 1);
      mgr.ScanFromKtString(id, value, text, nullptr, 1);
      const bool isNull = mgr.IsNullValue(id, value) != 0;
      mgr.Delete(id, value, 1);
      return isNull;
    };
    EXPECT_TRUE(isNullAfter(wide(u"なし"))) << int{id};
    EXPECT_FALSE(isNullAfter(wide(u"火5-6#7v8"))) << int{id};
  }
  KtTypeMgr::SetNullPrintString("{NULL}");
}

TEST(TypeManager, lists_keep_the_characters_that_their_text_can_hold) {
  KtTypeMgr mgr(12);
  const KtString euro(reinterpret_cast<const unsigned short*>(u"\u20AC"));
  KtString values[] = {euro, KtString("\xE9"), euro};
  KtString out(253, 1);
  mgr.PrintToKtString(KT_ID_KtString, out, values, nullptr, 3);
  EXPECT_EQ(out.codeSet, 253);
  EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t*>(out.StrGet())), u"\u20AC,\u00E9,\u20AC");
}

// What is printed, or how, may stand in the very text that is printed to.
TEST(TypeManager, printing_reads_what_lies_in_its_target) {
  KtTypeMgr mgr(12);
  std::int32_t numbers[] = {1, 22, 333};
  KtString word("word");
  const struct {
    char id;
    void* values;        // null: the target's own characters
    bool formatsItself;  // its text is the format
    unsigned long count;
    const char* text;
    const char* printed;
  } cases[] = {
      {KT_ID_char, nullptr, false, 5, "hello", "hello"},
      {KT_ID_KtByte, nullptr, true, 1, "%d, and a text that needs more room", "37, and a text that needs more room"},
      {KT_ID_KtString, &word, true, 1, "%s, and a text that needs more room",
       "%s, and a text that needs more roomword, and a text that needs more room"},
      {KT_ID_long, numbers, true, 3, "%30ld",
       "%30ld                             1,                            22,                           333"},
  };
  for (const auto& c : cases) {
    KtString out(c.text);
    void* values = c.values == nullptr ? out.buffer : c.values;
    mgr.PrintToKtString(c.id, out, values, c.formatsItself ? out.buffer : nullptr, c.count);
    EXPECT_STREQ(out.StrGet(), c.printed) << c.text;
  }
}

TEST(TypeManager, values_of_all_rows_may_lie_in_the_text_that_they_print_to) {
  KtTypeMgr mgr(12);
  const std::string text = "A long text, of which the first bytes are values in any form";
  for (int number = 0; number < KtTYPE_COUNT; ++number) {
    const auto id = static_cast<char>(number);
    if (number == KT_ID_illegal || mgr.IsFixed(id) == 0) continue;
    for (unsigned long count : {1ul, 2ul}) {
      double apart[5];  // two values of the longest
      ASSERT_LE(count * mgr.MemLenGet(id, 1), sizeof apart);
      std::memcpy(apart, text.c_str(), sizeof apart);
      KtString expected(text.c_str());
      mgr.PrintToKtString(id, expected, apart, nullptr, count);
      KtString out(text.c_str());
      mgr.PrintToKtString(id, out, out.buffer, nullptr, count);
      EXPECT_STREQ(out.StrGet(), expected.StrGet()) << number << " " << count;
    }
  }
}

TEST(TypeManager, missing_arguments_get_the_quiet_answer) {
  KtTypeMgr mgr(12);
  KtTypeMgr legacy(11);
  char id = 7;
  EXPECT_EQ(mgr.Name2KtTypeId(nullptr, id), 1);
  EXPECT_EQ(id, KtTYPE_COUNT);
  for (const KtTypeId variable : {KT_ID_KtString, KT_ID_KtBlob, KT_ID_KtIString, KT_ID_KtCaseIString}) {
    EXPECT_EQ(mgr.DiskLenGetFromMemFile(variable, nullptr, 2, 1), 0u) << int(variable);
    EXPECT_EQ(legacy.DiskLenGetFromMemFile(variable, nullptr, 2, 1), 0u) << int(variable);
  }
  EXPECT_EQ(mgr.DiskLenGetFromMemFile(KT_ID_KtRef, nullptr, 2, 3), 42u);  // looks at no file
  EXPECT_EQ(KtTypeConvertData::Make(KT_ID_KtString, 0x80000000ul, nullptr, nullptr), nullptr);
}

TEST(TypeManager, null_for_values_prints_nothing_and_scans_into_nothing) {
  for (const unsigned long version : {11ul, 12ul}) {
    const KtTypeMgr mgr(version);
    for (int number = 0; number < (version == 11 ? KtLEGACY_TYPE_COUNT : KtTYPE_COUNT); ++number) {
      const auto id = static_cast<char>(number);
      const bool isText = id == KT_ID_char || id == KT_ID_KtByte;  // made empty before the first character
      for (unsigned long count : {0ul, 1ul, 3ul}) {
        KtString out("kept"), in("12");
        mgr.PrintToKtString(id, out, nullptr, nullptr, count);
        EXPECT_STREQ(out.StrGet(), isText ? "" : "kept") << number << " " << count;
        EXPECT_EQ(mgr.ScanFromKtString(id, nullptr, in, nullptr, count), nullptr) << number << " " << count;
      }
    }
  }
}

TEST(TypeManager, the_null_print_string_is_process_wide) {
  EXPECT_STREQ(KtTypeMgr::GetNullPrintString().StrGet(), "{NULL}");
  KtTypeMgr::SetNullPrintString("nil");
  KtTypeMgr mgr(12);
  KtString null;
  KtString out("kept?");
  null.SetNullValue();
  EXPECT_STREQ(mgr.PrintToKtString(KT_ID_KtString, out, &null, nullptr, 1).StrGet(), "nil");
  KtString emptied("x");
  KtTypeMgr::SetNullPrintString(emptied = "");
  EXPECT_EQ(KtTypeMgr::GetNullPrintString().Len(), 0);
  KtTypeMgr::SetNullPrintString("{NULL}");
}

TEST(TypeManager, a_holder_owns_its_data_only_with_a_manager) {
  KtTypeMgr mgr(12);
  auto* strings = static_cast<KtString*>(mgr.Create(KT_ID_KtString, 2));
  {
    KtTypeConvertData holder(KT_ID_KtString, 2, strings, nullptr);
    EXPECT_EQ(holder.GetString(1), &strings[1]);
    holder.typeId = KT_ID_long;
    EXPECT_EQ(holder.GetString(1), nullptr);
  }
  KtTypeConvertData* owner = KtTypeConvertData::Make(KT_ID_KtString, 2, strings, &mgr);
  delete owner;  // and the strings with it: the leak checker would tell
}

TEST(TypeManager, older_conversion_joins_with_a_separator_that_no_value_holds) {
  OldManager mgr;
  KtString values[2] = {KtString("a,b"), KtString("c")};
  KtString* joined = mgr.ConvertToKtStringOld(values, KT_ID_KtString, 2);
  EXPECT_STREQ(joined->StrGet(), "a,b\001c\001");
  auto* back = static_cast<KtString*>(mgr.ConvertFromKtStringOld(joined, KT_ID_KtString, 3));
  EXPECT_STREQ(back[0].StrGet(), "a,b");
  EXPECT_STREQ(back[1].StrGet(), "c");
  EXPECT_EQ(back[2].IsEmpty(), 1);
  mgr.Delete(KT_ID_KtString, back, 3);
  mgr.Delete(KT_ID_KtString, joined, 1);

  values[1] = "x\001y";
  joined = mgr.ConvertToKtStringOld(values, KT_ID_KtString, 2);
  EXPECT_STREQ(joined->StrGet(), "a,b\002x\001y\002");
  mgr.Delete(KT_ID_KtString, joined, 1);
  EXPECT_EQ(mgr.ConvertToKtStringOld(values, 100, 1), nullptr);

  std::string all;
  for (int code = 1; code < 255; ++code) all += static_cast<char>(code);
  values[0] = all.c_str();
  joined = mgr.ConvertToKtStringOld(values, KT_ID_KtString, 1);
  EXPECT_STREQ(joined->StrGet(), (all + ',').c_str());  // there is none: a comma
  mgr.Delete(KT_ID_KtString, joined, 1);
}

// Texts that a language makes equal, that the default code set lacks, or that count as null.
TEST(TypeManager, older_conversion_brings_all_characters_back) {
  OldManager mgr;
  const auto text = [](const char16_t* units, int codeSet, int language) {
    KtString s(reinterpret_cast<const unsigned short*>(units));
    s.SetCodeSet(static_cast<unsigned char>(codeSet));
    s.language = static_cast<unsigned char>(language);
    return s;
  };
  const auto unicode = [](KtString s) {
    s.SetCodeSet(253);
    return std::u16string(reinterpret_cast<const char16_t*>(s.StrGet()));
  };
  const struct {
    const char* name;
    KtString values[2];
    unsigned char codeSet;  // of the joined text
  } cases[] = {
      {"the first separator under another language", {text(u"Espa\1a", 1, 4), text(u"dos", 1, 1)}, 1},
      {"the first separator in a null string", {text(u"a\1b", 1, 254), text(u"c", 1, 1)}, 1},
      {"the first separator in 16 bits", {text(u"a\1b", 253, 1), text(u"\2", 1, 1)}, 1},
      {"what the default code set has", {text(u"\u00E9t\u00E9", 253, 1), text(u"x", 10, 1)}, 1},
      {"what it has not", {text(u"\u20AC \u0416", 253, 1), text(u"\u00E9", 1, 1)}, 253},
  };
  for (const auto& c : cases) {
    KtString values[2] = {c.values[0], c.values[1]};
    KtString* joined = mgr.ConvertToKtStringOld(values, KT_ID_KtString, 2);
    ASSERT_NE(joined, nullptr) << c.name;
    EXPECT_EQ(joined->codeSet, c.codeSet) << c.name;
    auto* back = static_cast<KtString*>(mgr.ConvertFromKtStringOld(joined, KT_ID_KtString, 2));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(unicode(back[i]), unicode(values[i])) << c.name;
    mgr.Delete(KT_ID_KtString, back, 2);
    mgr.Delete(KT_ID_KtString, joined, 1);
  }
}

TEST(TypeManager, older_conversion_gives_nothing_where_one_string_has_no_room) {
  OldManager mgr;
  KtString values[2];
  const KtAssertHandler old =
      KtSetAssertHandler([](const char* message, const char*, int) { ADD_FAILURE() << message; });
  values[0].Fill(40000, 'a');
  values[1].Fill(40000, 'b');
  EXPECT_EQ(mgr.ConvertToKtStringOld(values, KT_ID_KtString, 2), nullptr);
  values[1].Cut(25530, -1);  // 65,530 characters, two separators and the terminator: the longest of all strings
  KtString* joined = mgr.ConvertToKtStringOld(values, KT_ID_KtString, 2);
  ASSERT_NE(joined, nullptr);
  EXPECT_EQ(joined->Len(), 65532);
  mgr.Delete(KT_ID_KtString, joined, 1);
  KtSetAssertHandler(old);
}

TEST(TypeManager, older_conversion_takes_the_last_character_as_separator) {
  OldManager mgr;
  KtString text("12;34;");
  auto* numbers = static_cast<std::int32_t*>(mgr.ConvertFromKtStringOld(&text, KT_ID_long, 2));
  EXPECT_EQ(numbers[0], 12);
  EXPECT_EQ(numbers[1], 34);
  EXPECT_EQ(text.IsEmpty(), 1);
  mgr.Delete(KT_ID_long, numbers, 2);
  KtString odd("12");  // separator "2": the pieces are "1" and ""
  numbers = static_cast<std::int32_t*>(mgr.ConvertFromKtStringOld(&odd, KT_ID_long, 2));
  EXPECT_EQ(numbers[0], 1);
  EXPECT_EQ(numbers[1], 0);
  mgr.Delete(KT_ID_long, numbers, 2);
}

TEST(TypeManager, older_conversion_takes_pieces_of_any_length) {
  OldManager mgr;
  for (unsigned long length : {32766ul, 32767ul, 40000ul, 65000ul}) {
    const std::string piece(length, 'x');
    KtString text((piece + ";5;").c_str());
    auto* back = static_cast<KtString*>(mgr.ConvertFromKtStringOld(&text, KT_ID_KtString, 2));
    EXPECT_STREQ(back[0].StrGet(), piece.c_str());
    EXPECT_STREQ(back[1].StrGet(), "5");
    EXPECT_EQ(text.IsEmpty(), 1);
    mgr.Delete(KT_ID_KtString, back, 2);
  }
}

TEST(TypeManager, setting_null_falls_back_to_what_an_empty_string_converts_to) {
  KtTypeMgr mgr(12);
  KtTypeMgr legacy(11);
  double number = 5.5;
  EXPECT_EQ(mgr.SetNullValue(KT_ID_double, &number), 0);
  EXPECT_EQ(number, 0.0);
  KtString text("abc");
  EXPECT_EQ(mgr.SetNullValue(KT_ID_KtString, &text), 0);
  EXPECT_EQ(mgr.IsNullValue(KT_ID_KtString, &text), 1);
  text = "abc";
  EXPECT_EQ(legacy.SetNullValue(KT_ID_KtString, &text), 0);
  EXPECT_EQ(text.IsEmpty(), 1);
  EXPECT_EQ(text.IsNullValue(), 0);
}

TEST(TypeManager, the_module_attaches_describes_itself_and_checks_versions) {
  EXPECT_EQ(DefaultTypeMgr(), nullptr);
  EXPECT_EQ(___KtTypemgrContext(1), 1);
  KtTypeMgr* first = DefaultTypeMgr();
  ASSERT_NE(first, nullptr);
  char id;
  EXPECT_EQ(first->Name2KtTypeId("KtSeal", id), 0);
  auto* second = new KtTypeMgr(11);
  EXPECT_EQ(DefaultTypeMgr(second), first);
  EXPECT_EQ(DefaultTypeMgr(), second);
  delete first;
  ___KtTypemgrContext(0);
  EXPECT_EQ(DefaultTypeMgr(), nullptr);

  EXPECT_EQ(KtCheckDll(0), 1);
  EXPECT_EQ(CheckKtVersionNumber(10, 0, 0, 0, 0, 3), 0);
  int version[6];
  const char* texts[5];
  EXPECT_STREQ(KtDescribeDll(&version[0], &version[1], &version[2], &version[3], &version[4], &texts[0], &texts[1],
                             &texts[2], &version[5], &texts[3], &texts[4]),
               "Kato Typemanager");
  const int expected[] = {9, 5, 23, 262, 0};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(version[i], expected[i]);
  EXPECT_STREQ(texts[0], "kttms");
  EXPECT_STREQ(texts[2], "unknown");
  EXPECT_STREQ(texts[4], "");
  const char* description = nullptr;
  GetKtTypeMgrInfo(nullptr, nullptr, &description, nullptr, nullptr);
  EXPECT_STREQ(description, "Kato Typemanager 9.5.23.262.0 ");
}

TEST(TypeManager, the_options_word_is_one_word) {
  EXPECT_EQ(___KtTypeMgrOptions(), 0);
  ___KtTypeMgrOptions() = 1;
  EXPECT_EQ(static_cast<int>(KtString("010")), 10);
  ___KtTypeMgrOptions() = 0;
  EXPECT_EQ(static_cast<int>(KtString("010")), 8);
}

}  // namespace
