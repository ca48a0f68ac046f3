// The rows of the string types: print, scan, conversion, defaults, null, assignment.
#include "ops/string_ops.h"
#include "kttypcvd.h"
#include "string_bytes.h"

#include <gtest/gtest.h>

namespace {

using namespace kt_test;
using Ops = kt::StringOps;

std::string printed(KtString out, KtString value, const char* format) {
  return Ops::print(out, &value, format, 1).StrGet();
}

KtString nullString() {
  KtString s;
  s.SetNullValue();
  return s;
}

TEST(StringOps, printing_appends_and_a_null_replaces) {
  const struct {
    const char* format;
    const char* expected;
  } cases[] = {
      {"%s", ">abc"},       {"[%s]", ">[abc]"}, {"", ">"},     {"text", ">text"},
      {"%%%s%%", ">%abc%"}, {"%s%s", ">abc%s"}, {"%d", ">%d"}, {"%n%10s", ">%n%10s"},
      {"100%", ">100%"},    {"%%s", ">%s"},
  };
  for (const auto& c : cases) EXPECT_EQ(printed(">", "abc", c.format), c.expected) << c.format;
  EXPECT_EQ(printed(">", "", "%s"), ">");
  EXPECT_EQ(printed(">", nullString(), "[%s]"), "{NULL}");
  EXPECT_EQ(printed(">", makeString(u"\u00E9", 253, 1), "%s"), ">\xE9");

  KtString self("ab");
  EXPECT_STREQ(Ops::print(self, &self, "%s", 1).StrGet(), "abab");
  KtString out(">");
  EXPECT_STREQ(Ops::print(out, nullptr, "%s", 0).StrGet(), ">");
  KtString marked("x");
  marked.language = 254;
  EXPECT_STREQ(kt::IStringOps::print(out, &marked, "%s", 1).StrGet(), ">x");
}

TEST(StringOps, scanning_takes_the_whole_text_and_knows_the_null_text) {
  KtString value("old");
  KtString text = makeString(u"a \u0416", 253, 8);
  EXPECT_EQ(Ops::scan(&value, text, "%s", 1), &value);
  EXPECT_EQ(value.codeSet, 253);
  EXPECT_EQ(value.Len(), 3);
  for (KtString null : {KtString("{NULL}"), makeString(u"{NULL}", 253, 20), nullString()}) {
    Ops::scan(&value, null, "%s", 1);
    EXPECT_EQ(value.IsNullValue(), 1);
    value = "old";
  }
  KtString almost("{NULL} ");
  Ops::scan(&value, almost, "%s", 1);
  EXPECT_STREQ(value.StrGet(), "{NULL} ");
  KtString null("{NULL}");
  kt::LegacyStringOps::scan(&value, null, "%s", 1);
  EXPECT_EQ(value.IsNullValue(), 1);
  kt::IStringOps::scan(&value, null, "%s", 1);
  EXPECT_STREQ(value.StrGet(), "{NULL}");
  EXPECT_EQ(Ops::scan(nullptr, null, "%s", 1), nullptr);
}

TEST(StringOps, defaults_are_empty_or_null_where_there_is_null) {
  const struct {
    KtDefaultValueFunc make;
    int asNull;
    int isNull;
  } cases[] = {{Ops::defaultValue, 0, 0},
               {Ops::defaultValue, 1, 1},
               {kt::LegacyStringOps::defaultValue, 1, 0},
               {kt::CaseIStringOps::defaultValue, 1, 0}};
  for (const auto& c : cases) {
    auto* values = static_cast<KtString*>(c.make(2, c.asNull));
    ASSERT_NE(values, nullptr);
    EXPECT_EQ(values[1].IsNullValue(), c.isNull);
    EXPECT_EQ(values[1].IsEmpty(), 1);
    EXPECT_EQ(Ops::destroy(values, 2), nullptr);
  }
  EXPECT_EQ(kt::IStringOps::kSetNull, nullptr);
  EXPECT_EQ(kt::LegacyStringOps::kSetNull, nullptr);
  KtString null = nullString();
  EXPECT_EQ(Ops::isNull(&null), 1);
  EXPECT_EQ(kt::LegacyStringOps::isNull(&null), 0);
  EXPECT_EQ(Ops::nullSizeGet(3), 18u);
  EXPECT_EQ(Ops::sizeGet(&null, 8, 0, 1), 6u);
}

TEST(StringOps, assignment_copies_fills_and_moves_within_a_run) {
  const auto joined = [](const KtString* run, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += run[i].StrGet();
    return text;
  };
  KtString run[] = {"a", "b", "c", "d"};
  Ops::assign(run + 1, run, 3, 0);
  EXPECT_EQ(joined(run, 4), "aabc");
  Ops::assign(run, run + 1, 3, 0);
  EXPECT_EQ(joined(run, 4), "abcc");
  Ops::assign(run, run + 1, 4, 1);
  EXPECT_EQ(joined(run, 4), "bbbb");

  alignas(KtString) unsigned char raw[2 * sizeof(KtString)];
  Ops::copy(raw, run, 2, 1);
  EXPECT_EQ(joined(reinterpret_cast<KtString*>(raw), 2), "bb");
  Ops::destruct(raw, 2, 0);
  Ops::construct(raw, 2, 0);
  EXPECT_EQ(joined(reinterpret_cast<KtString*>(raw), 2), "");
  Ops::destruct(raw, 2, 0);
}

TEST(StringOps, conversions_keep_code_set_language_and_null) {
  KtString values[] = {makeString(u"\u0416", 253, 8), nullString()};
  KtTypeConvertData* holder = Ops::convertTo(values, 2);
  ASSERT_NE(holder, nullptr);
  EXPECT_EQ(holder->GetString(0)->codeSet, 253);
  EXPECT_EQ(holder->GetString(0)->language, 8);

  auto* back = static_cast<KtString*>(Ops::convertFrom(holder, 3));
  EXPECT_EQ(back[0][0].code, 0x416);
  EXPECT_EQ(back[1].IsNullValue(), 1);
  EXPECT_EQ(back[2].IsNullValue(), 1);  // missing
  Ops::destroy(back, 3);
  back = static_cast<KtString*>(kt::IStringOps::convertFrom(holder, 3));
  EXPECT_EQ(back[1].IsNullValue(), 0);
  EXPECT_EQ(back[2].IsNullValue(), 0);
  Ops::destroy(back, 3);
  Ops::destroy(holder->data, 2);
  delete holder;
}

}  // namespace
