// The five identity classes: fields, steps, the deliberately lopsided comparisons, validity, text.
#include <kttm.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace {

KtDBOId dboId(KtDWord low, KtWord high, KtWord database) {
  KtDBOId id;
  id = KtObjId(0, low, high);
  id.database = database;
  return id;
}

KtRef ref(KtDWord low, KtWord high, KtWord database, KtWord classNumber = 0) {
  KtRef made;
  made = dboId(low, high, database);
  made.classNumber = classNumber;
  return made;
}

KtLocalRef localRef(KtDWord low, KtWord high) {
  KtLocalRef made;
  made = KtObjId(0, low, high);
  return made;
}

template <class Identity>
std::string printed(const Identity& id, const char* format = nullptr) {
  KtString out("old");
  return id.PrintToKtString(out, format).StrGet();
}

template <class Identity>
Identity scanned(const char* text, const char* format = nullptr) {
  Identity id;
  id.ScanFromKtString(KtString(text), format);
  return id;
}

TEST(Identity, new_and_null_values) {
  EXPECT_TRUE(KtObjId().IsNullValue() && KtRef().IsNullValue());
  EXPECT_FALSE(KtClassId().IsNullValue());
  KtClassId classId;
  EXPECT_EQ(classId.SetNullValue(), 0);
  EXPECT_TRUE(classId.IsNullValue());
  EXPECT_TRUE(KtObjId(7, 0, 0).IsNullValue());
  KtRef object = ref(1, 2, 3, 4);
  object.block = 5;
  object.SetNullValue();
  EXPECT_EQ(object.block, 0u);
  EXPECT_EQ(object.database, 3);  // a null reference keeps database and class
  EXPECT_EQ(object.classNumber, 4);
}

TEST(Identity, object_numbers_carry_and_borrow_across_48_bits) {
  struct Step {
    KtObjId from;
    int n;  // +1 and -1 through the operators, too
    KtDWord low;
    KtWord high;
  };
  const Step steps[] = {
      {{9, 0xFFFFFFFF, 5}, 1, 0, 6},         {{9, 0, 6}, -1, 0xFFFFFFFF, 5}, {{9, 0, 0}, -1, 0xFFFFFFFF, 0xFFFF},
      {{9, 0xFFFFFFFF, 0xFFFF}, 1, 0, 0},    {{9, 7, 1}, 0, 7, 1},           {{9, 0xFFFFFF00, 1}, 32767, 32511, 2},
      {{9, 32767, 2}, -32768, 0xFFFFFFFF, 1}};
  for (const Step& s : steps) {
    KtObjId id = s.from;
    KtObjId stepped = s.from;
    id += static_cast<short>(s.n);
    if (s.n == 1) ++stepped;
    if (s.n == -1) --stepped;
    EXPECT_EQ(id.low, s.low);
    EXPECT_EQ(id.high, s.high);
    EXPECT_EQ(id.block, 9u);
    EXPECT_TRUE((s.n != 1 && s.n != -1) || stepped == id);
  }
  KtObjId highest(3, 0, 0);
  highest.SetHighestValue();
  EXPECT_EQ(++highest != KtObjId(), 0);
}

TEST(Identity, unequal_is_an_order_within_a_type) {
  const KtObjId ids[] = {{9, 0, 0}, {8, 5, 0}, {7, 0xFFFFFFFF, 0}, {6, 0, 1}, {5, 1, 0xFFFF}};
  const KtDBOId dboIds[] = {dboId(0, 0, 0), dboId(5, 9, 0), dboId(0, 0, 1), dboId(1, 0, 1), dboId(0, 0, 65535)};
  const KtClassId classIds[] = {{0xFFFF, 0xFFFF}, {0, 0}, {0, 0xFFFF}, {1, 0}, {0xFFFF, 0xFFFE}};
  const KtRef refs[] = {ref(0, 0, 9), ref(5, 0, 0), ref(5, 0, 1), ref(6, 0, 0), ref(0, 1, 0)};
  for (int i = 0; i < 5; ++i) {
    for (int j = 0; j < 5; ++j) {
      const int expected = (i > j) - (i < j);
      EXPECT_EQ(ids[i] != ids[j], expected) << i << j;
      EXPECT_EQ(dboIds[i] != dboIds[j], expected) << i << j;
      EXPECT_EQ(classIds[i] != classIds[j], expected) << i << j;
      EXPECT_EQ(refs[i] != refs[j], expected) << i << j;
      EXPECT_EQ(classIds[i] > classIds[j], i > j) << i << j;
      EXPECT_EQ(ids[i] == ids[j], i == j) << i << j;
      EXPECT_EQ(dboIds[i] == dboIds[j], i == j) << i << j;
      EXPECT_EQ(refs[i] == refs[j], i == j) << i << j;
    }
  }
  EXPECT_EQ(KtObjId(1, 5, 0) != KtObjId(2, 5, 0), 0);  // the block never counts
  EXPECT_EQ(ref(5, 0, 1, 1) != ref(5, 0, 1, 2), 0);    // nor does the class
}

TEST(Identity, comparisons_across_types_are_lopsided) {
  const KtObjId id(0, 5, 0);
  EXPECT_EQ(id == dboId(5, 0, 3), 1);
  EXPECT_EQ(dboId(5, 0, 3) == id, 0);
  EXPECT_EQ(id != dboId(5, 0, 3), 0);
  EXPECT_EQ(dboId(5, 0, 3) != id, 1);
  EXPECT_EQ(dboId(0, 0, 1) != KtObjId(0, 9, 9), 1);  // another database comes after every local object
  EXPECT_EQ(dboId(4, 0, 0) != id, -1);
  EXPECT_EQ(localRef(5, 0) == ref(5, 0, 0), 1);
  EXPECT_EQ(localRef(5, 0) == ref(5, 0, 2), 0);
  EXPECT_EQ(localRef(5, 0) != ref(5, 0, 2), -1);
  EXPECT_EQ(localRef(6, 0) != ref(5, 0, 2), 1);
  EXPECT_EQ(localRef(5, 0) != localRef(5, 1), -1);
}

TEST(Identity, assignment_sets_the_fields_that_the_operand_has) {
  KtRef object = ref(1, 2, 3, 4);
  object = KtObjId(7, 8, 9);
  EXPECT_EQ(printed(object), "(3:9-8#7, 4)");
  object = static_cast<unsigned short>(6);
  object = KtClassId(5, 2);
  EXPECT_EQ(printed(object, "%D:%H-%L#%B,%C %V"), "6:9-8#7,5 2");
  KtLocalRef local;
  local = object;
  EXPECT_EQ(printed(local), "(9-8#7,5)");
  object = dboId(1, 1, 8);
  object = local;
  EXPECT_EQ(printed(object, "%D:%H-%L#%B,%C %V"), "0:9-8#7,5 2");
  KtDBOId dbo = dboId(1, 1, 8);
  dbo = KtObjId(7, 8, 9);
  EXPECT_EQ(dbo.database, 0);
  KtObjId id;
  id = dbo;
  EXPECT_EQ(printed(id), "(9-8#7)");
}

TEST(Identity, validity_of_references_and_origins) {
  struct Case {
    KtDWord low;
    KtWord classNumber, database;
    int valid, validOrigin;
  };
  const Case cases[] = {{0, 1, 0, 0, 0}, {1, 1, 0, 1, 1},      {1, 0, 0, 0, 0},
                        {1, 1, 9, 1, 1}, {1, 1, 0xFFFF, 0, 1}, {1, 0, 0xFFFF, 0, 1}};
  for (const Case& c : cases) {
    const KtRef object = ref(c.low, 0, c.database, c.classNumber);
    EXPECT_EQ(object.IsValid(), c.valid);
    EXPECT_EQ(object.IsInvalid(), !c.valid);
    EXPECT_EQ(object.IsValidOriginId(), c.validOrigin);
    EXPECT_EQ(object.IsInvalidOriginId(), !c.validOrigin);
  }
}

TEST(Identity, prints_named_and_positional_directives) {
  struct Case {
    const char* format;
    const char* text;
  };
  const Case idCases[] = {{nullptr, "(1-42#7)"},
                          {"%hu:%lu:%lu", "1:42:7"},
                          {"100%% %D%B", "100% D7"},
                          {"%l", "0"},
                          {"%hu%hu%hu%hu", "1000"},  // the second and third field have 32 bits, there is no fourth
                          {"%", ""},
                          {"x%", "x"},
                          {"", ""}};
  for (const Case& c : idCases) EXPECT_EQ(printed(KtObjId(7, 42, 1), c.format), c.text) << c.text;
  KtRef object = ref(2, 0, 5, 9);
  object.block = 3;
  object.version = 1;
  const Case refCases[] = {{nullptr, "(5:0-2#3, 9)"}, {"%hu:%hu-%lu#%lu,%hu%hu", "5:0-2#3,90"}, {"%V", "1"}};
  for (const Case& c : refCases) EXPECT_EQ(printed(object, c.format), c.text) << c.text;
  EXPECT_EQ(printed(KtClassId(9, 1)), "(9v1)");
  EXPECT_EQ(printed(KtClassId(9, 1), "%hu.%hu %L"), "9.1 L");
  EXPECT_EQ(printed(dboId(42, 1, 8)), "(1-42#0)");
  EXPECT_EQ(printed(KtObjId(4294967295u, 4294967295u, 65535)), "(65535-4294967295#4294967295)");
}

TEST(Identity, null_prints_as_null_whatever_the_format) {
  KtClassId classId;
  classId.SetNullValue();
  EXPECT_EQ(printed(KtObjId(7, 0, 0), "%B"), "{NULL}");
  EXPECT_EQ(printed(classId, "%C"), "{NULL}");
  EXPECT_EQ(printed(ref(0, 0, 5, 6), "%D"), "{NULL}");
  EXPECT_EQ(printed(localRef(0, 0)), "{NULL}");
}

TEST(Identity, a_format_may_lie_in_the_output_and_exceed_every_buffer) {
  KtString out("id %L.");
  KtObjId(0, 42, 1).PrintToKtString(out, out.StrGet());
  EXPECT_STREQ(out.StrGet(), "id 42.");
  std::string format, text;
  for (int i = 0; i < 500; ++i) format += "%L and ", text += "4294967295 and ";
  EXPECT_EQ(printed(KtObjId(0, 0xFFFFFFFF, 1), format.c_str()), text);
}

TEST(Identity, scans_what_it_prints_and_forgives_the_rest) {
  struct Case {
    const char* text;
    const char* format;
    KtObjId id;
  };
  const Case cases[] = {{"(1-42#7)", nullptr, {7, 42, 1}},
                        {"[1/42=7]", nullptr, {7, 42, 1}},  // what is no directive is not checked
                        {"(1-42", nullptr, {0, 42, 1}},
                        {"", nullptr, {}},
                        {"(", nullptr, {}},
                        {"(x-42#7)", nullptr, {42, 4294967254u, 0}},  // %L reads -42 behind the "x"; the "-" is skipped
                        {"1:42:7", "%hu:%lu:%lu", {7, 42, 1}},
                        {"12", "%h", {0, 0, 12}},
                        {"12", "%", {}},
                        {"5,x", "%L,%L", {0, 5, 0}},  // without digits the field stays
                        {"5,x", "%h,%h", {0, 0, 5}},
                        {"5 6", "%B%%%L", {5, 6, 0}},
                        {"65537", "%H", {0, 0, 1}},
                        {"99999999999", "%L", {0, 0xFFFFFFFF, 0}},
                        {"{NULL} 1", nullptr, {}}};
  for (const Case& c : cases) {
    KtObjId id(9, 9, 9);
    id.ScanFromKtString(KtString(c.text), c.format);
    EXPECT_EQ(id.block, c.id.block) << c.text;
    EXPECT_EQ(id != c.id, 0) << c.text;
  }
}

TEST(Identity, scanning_sets_the_fields_that_the_format_leaves_out_to_zero) {
  const auto object = scanned<KtRef>("(5:0-2#3, 9)");
  EXPECT_EQ(printed(object, "%D:%H-%L#%B,%Cv%V"), "5:0-2#3,9v0");
  KtRef used = ref(1, 1, 1, 1);
  used.version = 7;
  used.ScanFromKtString(KtString("8"), "%L");
  EXPECT_EQ(printed(used, "%D:%H-%L#%B,%Cv%V"), "0:0-8#0,0v0");
  EXPECT_EQ(printed(scanned<KtClassId>("(9v1)")), "(9v1)");
  EXPECT_EQ(scanned<KtClassId>("") != KtClassId(0, 0), 0);
  EXPECT_TRUE(scanned<KtClassId>("{NULL}").IsNullValue());
  EXPECT_EQ(scanned<KtDBOId>("(1-42#7)") != dboId(42, 1, 0), 0);
  EXPECT_EQ(printed(scanned<KtLocalRef>("(9-8#7,5)")), "(9-8#7,5)");
  EXPECT_EQ(printed(scanned<KtLocalRef>("3:9-8", "%D:%H-%L")), "(9-8#0,0)");
}

TEST(Identity, scans_texts_of_16_bit_characters) {
  KtString wide("(1-42#7)");
  wide.SetCodeSet(KtString::GetDefault16CodeSet());
  ASSERT_EQ(wide.CharSize(), 2);
  KtObjId id;
  id.ScanFromKtString(wide);
  EXPECT_EQ(printed(id), "(1-42#7)");
}

}  // namespace
