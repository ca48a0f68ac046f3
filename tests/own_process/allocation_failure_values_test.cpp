// Values printed and scanned, and what the libraries keep for themselves, with each of their allocations failing in turn.
#include "failing_allocations/failing_allocations.h"
#include "failing_allocations/string_images.h"

#include <kttm.h>

#include <ktbs.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using kt_test::expectValid;
using kt_test::Fail;
using kt_test::FailingAllocations;
using kt_test::forEachFailure;
using kt_test::Image;
using kt_test::strings;

// --- dates and times ------------------------------------------------------------------------------------------------------

// Behind texts that leave little room in their blocks, no room, none of the kind, or have none.
TEST(AllocationFailure, prints_dates_as_a_whole_or_not_at_all) {
  const KtDateTime value(KtDate(2005, 6, 28), KtTime(12, 34, 56));
  std::string longFormat;
  while (longFormat.size() < 900) longFormat += "%A, %d ";
  const std::string formats[] = {"%Y-%m-%d %H:%M:%S", "%a %e.%b %Y", "%Y-%m-%d on a %A", longFormat};
  std::vector<KtString> texts = strings();
  for (unsigned short length = 0; length < 70; ++length) texts.emplace_back().Fill(length, 't');
  for (const std::string& format : formats) {
    for (const KtString& text : texts) {
      KtString part, whole(text);
      whole += value.PrintToKtString(part, format.c_str());
      forEachFailure(format, [&](unsigned long number, Fail mode) {
        KtString out(text);
        FailingAllocations failing(number, mode);
        value.PrintToKtString(out, format.c_str());
        failing.stop();
        EXPECT_EQ(Image(out), Image(failing.losses() != 0 ? text : whole))
            << format << " behind '" << text.StrGet() << "'";
        EXPECT_EQ(failing.handlerCalls(), failing.losses()) << format << " behind '" << text.StrGet() << "'";
        expectValid(out, format);
        return failing.hasFailed();
      });
    }
  }
}

TEST(AllocationFailure, prints_a_weekday_or_nothing) {
  const KtDate date(2005, 6, 28);
  FailingAllocations failing(1, Fail::kOne);
  EXPECT_TRUE(date.PrintDayOfTheDate().IsEmpty());
  EXPECT_EQ(failing.handlerCalls(), 1u);
  EXPECT_STREQ(date.PrintDayOfTheDate().StrGet(), "Tuesday");
}

// --- identities -----------------------------------------------------------------------------------------------------------

KtDBOId idOfDatabase() {
  KtDBOId id;
  id = KtObjId(7, 3, 2);
  id.database = 9;
  return id;
}

KtLocalRef localRef() {
  KtLocalRef ref;
  ref = KtObjId(7, 3, 2);
  ref = KtClassId(5, 4);
  return ref;
}

// The two that have no row in the type table.
TEST(AllocationFailure, prints_identities_as_a_whole_or_not_at_all) {
  const std::string part(300, '-');
  const std::string longFormat = part + "%H" + part + "%L";
  const struct {
    const char* name;
    void (*print)(KtString& out, const char* format);
    const char* format;
    std::string expected;
  } cases[] = {
      {"KtDBOId", [](KtString& out, const char* format) { idOfDatabase().PrintToKtString(out, format); }, nullptr,
       "(2-3#7)"},
      {"KtLocalRef", [](KtString& out, const char* format) { localRef().PrintToKtString(out, format); }, nullptr,
       "(2-3#7,5)"},
      {"KtDBOId by a format", [](KtString& out, const char* format) { idOfDatabase().PrintToKtString(out, format); },
       longFormat.c_str(), part + "2" + part + "3"},
      {"KtLocalRef by a format", [](KtString& out, const char* format) { localRef().PrintToKtString(out, format); },
       longFormat.c_str(), part + "2" + part + "3"},
      {"null KtDBOId", [](KtString& out, const char* format) { KtDBOId().PrintToKtString(out, format); }, nullptr,
       "{NULL}"},
      {"null KtLocalRef", [](KtString& out, const char* format) { KtLocalRef().PrintToKtString(out, format); }, nullptr,
       "{NULL}"},
  };
  for (const auto& c : cases) {
    for (const KtString& text : strings()) {
      forEachFailure(c.name, [&](unsigned long number, Fail mode) {
        KtString out(text);
        FailingAllocations failing(number, mode);
        c.print(out, c.format);
        failing.stop();
        const Image expected = failing.losses() != 0 ? Image(text) : Image(KtString(c.expected.c_str()));
        EXPECT_EQ(Image(out), expected) << c.name << " over '" << text.StrGet() << "'";
        EXPECT_EQ(failing.handlerCalls(), failing.losses()) << c.name;
        expectValid(out, c.name);
        return failing.hasFailed();
      });
    }
  }
}

// Of 16-bit units, and too long for the stack.
TEST(AllocationFailure, scans_identities_as_a_whole_or_not_at_all) {
  KtString text(253, 1);
  ((text += "(").Expand(200, '0')) += "12-13#17,15)";
  forEachFailure("scan", [&](unsigned long number, Fail mode) {
    KtDBOId id = idOfDatabase();
    KtLocalRef ref = localRef();
    FailingAllocations failing(number, mode);
    id.ScanFromKtString(text);
    const bool idFails = failing.hasFailed();
    ref.ScanFromKtString(text);
    failing.stop();
    const bool refFails = failing.hasFailed() && (!idFails || mode == Fail::kAllFrom);
    EXPECT_EQ(id.low, idFails ? 3u : 13u);
    EXPECT_EQ(id.high, idFails ? 2 : 12);
    EXPECT_EQ(id.block, idFails ? 7u : 17u);
    EXPECT_EQ(id.database, idFails ? 9 : 0);
    EXPECT_EQ(ref.low, refFails ? 3u : 13u);
    EXPECT_EQ(ref.high, refFails ? 2 : 12);
    EXPECT_EQ(ref.block, refFails ? 7u : 17u);
    EXPECT_EQ(ref.classNumber, refFails ? 5 : 15);
    EXPECT_EQ(failing.handlerCalls(), failing.losses());
    return failing.hasFailed();
  });
}

// --- what the libraries keep for themselves -----------------------------------------------------------------------------

TEST(AllocationFailure, leaves_the_null_print_string_as_it_is) {
  const KtString longer("a null print string that is longer than the smallest block");
  const KtString& null = KtTypeMgr::GetNullPrintString();
  FailingAllocations failing(1, Fail::kAllFrom);
  EXPECT_STREQ(KtTypeMgr::GetNullPrintString().StrGet(), "{NULL}");
  KtTypeMgr::SetNullPrintString(longer);
  EXPECT_EQ(failing.handlerCalls(), 1u);
  EXPECT_STREQ(null.StrGet(), "{NULL}");
  failing.stop();
  KtTypeMgr::SetNullPrintString(longer);
  EXPECT_EQ(null, longer);
  KtTypeMgr::SetNullPrintString("{NULL}");
}

TEST(AllocationFailure, leaves_a_configuration_without_the_new_entry) {
  forEachFailure("SetShort", [](unsigned long number, Fail mode) {
    KtConfig config;
    config.SetShort("old", nullptr, 1);
    FailingAllocations failing(number, mode);
    config.SetShort("new", "qualifier", 2);
    const bool hasFailed = failing.hasFailed();
    EXPECT_EQ(config.GetShort("new", "qualifier", 7), hasFailed ? 7 : 2);
    EXPECT_EQ(config.GetShort("old", nullptr, 7), 1);
    EXPECT_EQ(failing.handlerCalls(), failing.losses());
    return hasFailed;
  });
}

// What the holder would own still belongs to the caller.
TEST(AllocationFailure, makes_no_holder) {
  KtTypeMgr mgr(12);
  void* texts = mgr.Create(KT_ID_KtString, 2);
  FailingAllocations failing(1, Fail::kOne);
  EXPECT_EQ(KtTypeConvertData::Make(KT_ID_KtString, 2, texts, &mgr), nullptr);
  EXPECT_EQ(failing.handlerCalls(), 1u);
  KtTypeConvertData* holder = KtTypeConvertData::Make(KT_ID_KtString, 2, texts, &mgr);
  failing.stop();
  ASSERT_NE(holder, nullptr);
  EXPECT_EQ(holder->GetString(1), static_cast<KtString*>(texts) + 1);
  delete holder;
}

TEST(AllocationFailure, leaves_no_default_manager) {
  {
    FailingAllocations failing(1, Fail::kAllFrom);
    ___KtTypemgrContext(1);
    EXPECT_EQ(failing.handlerCalls(), 1u);
  }
  EXPECT_EQ(DefaultTypeMgr(nullptr), nullptr);
  ___KtTypemgrContext(0);
}

}  // namespace
