// Dates and times as text: what each directive prints and scans, and what becomes of text that does not fit.
#include <kttm.h>

#include "date_plans.h"
#include "fixed_clock.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <string>

namespace {

KtDateTime at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
  return {KtDate(year, month, day), KtTime(hour, minute, second)};
}

template <class Value>
std::string printed(const Value& value, const char* format) {
  KtString out;
  return value.PrintToKtString(out, format).StrGet();
}

template <class Value = KtDateTime>
std::string scanned(const KtString& text, const char* format) {
  Value value = KtDateTime::Null();
  value.ScanFromKtString(text, format);
  return value.IsNullValue() ? "null" : printed(value, "%Y-%m-%d %H:%M:%S");
}

TEST(DateText, directives_print) {
  struct Case {
    KtDateTime value;
    const char *format, *expected;
  };
  const Case cases[] = {
      {at(2005, 6, 28), "%a %e.%b %Y", "Tue 28.Jun 2005"},
      {at(2005, 1, 5), "%a %e.%b %Y", "Wed 05.Jan 2005"},
      {at(2005, 1, 5), "%A, %B %B", "Wednesday, Januar Januar"},
      {at(2005, 2, 5), "%B", "Februar"},
      {at(2005, 9, 5), "%b%B", "SepSeptember"},
      {at(2005, 0, 5), "%b|%B", "000|000"},
      {at(2005, -3, -7), "%B %m %d", "-003 -03 -07"},
      {at(2005, 127, 100), "%b %e", "127 100"},
      {at(-660, 2, 11), "%Y-%m-%d %y", "-0660-02-11 -60"},
      {at(7, 1, 1), "%Y %y", "0007 07"},
      {at(32767, 1, 1), "%Y", "32767"},
      {at(4600, 3, 1), "%a|%A", "no |no day"},
      {at(0, 1, 1, 0, 30), "%I:%M:%S %p", "12:30:00 am"},
      {at(0, 1, 1, 12, 0), "%I:%M:%S %p", "12:00:00 pm"},
      {at(0, 1, 1, 13, 5, 9), "%I:%M:%S %P", "01:05:09 PM"},
      {at(0, 1, 1, 11, 0), "%P%p", "AMam"},
      {at(0, 1, 1, 0, 30), "%I:%M", "00:30"},
      {at(0, 1, 1, 13, 0), "%I:%M", "01:00"},
      {at(0, 1, 1, 0, 0), "%I %%p", "12 %p"},  // "%p" anywhere counts
      {at(0, 1, 1, 100, -1), "%H %I %M", "100 88 -01"},
      {at(2005, 6, 28), "%%%D%h%i%", "%Dhi"},
      {at(2005, 6, 28), "", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(printed(c.value, c.format), c.expected) << c.format;
}

// For whatever both know alike.
TEST(DateText, agrees_with_the_c_library) {
  const char* format = "%a %A %d %H %M %m %S %y %Y%% %b";
  for (int day = 0; day < 366 * 3; day += 5) {
    const KtDate date = KtDate(1999, 12, 30) + day;
    std::tm tm = {};
    tm.tm_year = date.year - 1900;
    tm.tm_mon = date.month - 1;
    tm.tm_mday = date.day;
    tm.tm_hour = day % 24;
    tm.tm_min = day % 60;
    tm.tm_sec = day % 59;
    tm.tm_wday = (4 + day) % 7;  // 1999-12-30 was a Thursday
    char expected[80];
    std::strftime(expected, sizeof expected, format, &tm);
    EXPECT_EQ(printed(KtDateTime(date, KtTime(tm.tm_hour, tm.tm_min, tm.tm_sec)), format), expected);
  }
}

TEST(DateText, printing_appends_and_null_replaces) {
  KtString out("on ");
  KtDate(2005, 6, 28).PrintToKtString(out);
  EXPECT_STREQ(out.StrGet(), "on 2005-06-28");
  KtTime(1, 2, 3).PrintToKtString(out);
  at(2005, 6, 28, 1, 2, 3).PrintToKtString(out);
  EXPECT_STREQ(out.StrGet(), "on 2005-06-2801:02:032005-06-28T01:02:03");
  KtDate null(0, 0, 0);
  null.SetNullValue();
  EXPECT_STREQ(null.PrintToKtString(out).StrGet(), "{NULL}");
  KtDateTime half(null, KtTime(1, 2, 3));
  EXPECT_EQ(printed(half, "%Y %H"), "-32768 01");  // null in both parts only
  KtString wide(static_cast<unsigned char>(253), static_cast<unsigned char>(1));
  KtDate(2005, 6, 28).PrintToKtString(wide, "%d");
  EXPECT_EQ(wide.CharSize(), 2);
  EXPECT_EQ(wide.Len(), 2);
}

TEST(DateText, long_formats_print_in_full) {
  std::string format, expected;
  for (int i = 0; i < 500; ++i) {
    format += "%A.";
    expected += "Wednesday.";
  }
  EXPECT_EQ(printed(KtDate(2005, 6, 29), format.c_str()), expected);
}

TEST(DateText, the_clock_fills_in_what_a_type_lacks_and_is_read_for_nothing_else) {
  FixedClock clock;
  EXPECT_EQ(printed(KtDate(1999, 1, 2), "%a %e.%b %Y %%H"), "Sat 02.Jan 1999 %H");
  EXPECT_EQ(printed(KtTime(1, 2, 3), "%I:%M:%S %p"), "01:02:03 am");
  EXPECT_EQ(scanned("1999-01-02", "%Y-%m-%d"), "1999-01-02 00:00:00");
  EXPECT_EQ(clock.readings, 0);
  EXPECT_EQ(printed(KtDate(1999, 1, 2), "%d %H:%M:%S"), "02 12:34:56");
  EXPECT_EQ(printed(KtTime(1, 2, 3), "%H on %A"), "01 on Tuesday");
  EXPECT_EQ(clock.readings, 2);
}

TEST(DateText, directives_scan) {
  struct Case {
    const char *text, *format, *expected;
  };
  const Case cases[] = {
      {"2005-06-28 12:34:56", "%Y-%m-%d %H:%M:%S", "2005-06-28 12:34:56"},
      {"2005x06x28", "%Y-%m-%d", "2005-06-28 00:00:00"},  // other characters are skipped unseen
      {"12:15:00 AM", "%I:%M:%S %p", "0000-01-01 00:15:00"},
      {"11:15:00 pm", "%I:%M:%S %P", "0000-01-01 23:15:00"},
      {"12:15:00 pm", "%I:%M:%S %P", "0000-01-01 12:15:00"},
      {"12:15:00 xm", "%I:%M:%S %P", "0000-01-01 12:15:00"},
      {"12 am pm", "%H %p %p", "0000-01-01 00:00:00"},
      {"Tue 28.Jun 2005", "%a %e.%b %Y", "2005-06-28 00:00:00"},
      {"Wednesday 05.Sep 2005", "%a %e.%b %Y", "2005-09-05 00:00:00"},
      {"February 2005", "%B_ %Y", "2005-02-01 00:00:00"},  // the y is left over
      {"Junk 2005", "%B_ %Y", "2005-06-01 00:00:00"},
      {"jun 2005", "%B %Y", "2005-01-01 00:00:00"},  // case counts: no name, and no number in three characters
      {"009 2005", "%B %Y", "2005-09-01 00:00:00"},
      {"05-06-28", "%y-%m-%d", "1905-06-28 00:00:00"},
      {"xx", "%y", "1900-01-01 00:00:00"},
      {"2005-02-30", "%Y-%m-%d", "0000-01-01 00:00:00"},
      {"2005-02-28 24", "%Y-%m-%d %H", "0000-01-01 00:00:00"},
      {"2000-02-29", "%Y-%m-%d", "2000-02-29 00:00:00"},
      {"1900-02-29", "%Y-%m-%d", "0000-01-01 00:00:00"},
      {"-004-02-29", "%Y-%m-%d", "-0004-02-29 00:00:00"},
      {"2005-04-31", "%Y-%m-%d", "0000-01-01 00:00:00"},
      {"2005-12-31", "%Y-%m-%d", "2005-12-31 00:00:00"},
      {"2005-13-01", "%Y-%m-%d", "0000-01-01 00:00:00"},
      {"2005-01-01 23:59:60", "%Y-%m-%d %H:%M:%S", "0000-01-01 00:00:00"},
      {"2005-06-07 08", "%Y-%m-%d %H %d", "2005-06-07 08:00:00"},  // nothing is left for the second day
      {"06 07 2005", "%m %m %Y", "2005-07-01 00:00:00"},           // the last one counts
      {"0000-00-00", "%Y-%m-%d", "0000-00-00 00:00:00"},
      {"00000000 1", "%Y%m%d%M", "0000-01-01 00:00:00"},
      {"-660-02-11", "%Y-%m-%d", "-0660-02-11 00:00:00"},
      {"   5x7", "%d%m%Y", "0000-05-05 00:00:00"},  // blanks do not count for the width, nor for the steps
      {"+5 7", "%d %m", "0000-07-05 00:00:00"},
      {"2005", "%Y-%m-%d", "2005-01-01 00:00:00"},
      {"200", "%Y%", "0200-01-01 00:00:00"},
      {"", "%Y-%p%a%b%%%x", "0000-01-01 00:00:00"},
      {"%2005%06", "%%%Y%%%m", "2005-06-01 00:00:00"},
      {"{NULL} and more", "%Y", "null"},
      {"{NUL", "%Y", "0000-01-01 00:00:00"},
  };
  for (const Case& c : cases) EXPECT_EQ(scanned(KtString(c.text), c.format), c.expected) << c.text;
}

TEST(DateText, parts_are_taken_from_the_whole) {
  KtDate date(1, 1, 1);
  date.ScanFromKtString(KtString("2005-06-28"));
  EXPECT_TRUE(date == KtDate(2005, 6, 28));
  date.ScanFromKtString(KtString("2005-06-28 99"), "%Y-%m-%d %H");  // no such hour, no such date
  EXPECT_TRUE(date == KtDate(0, 1, 1));
  KtTime time(1, 1, 1);
  time.ScanFromKtString(KtString("12:34:56"));
  EXPECT_TRUE(time == KtTime(12, 34, 56));
  time.ScanFromKtString(KtString("{NULL}"));
  EXPECT_EQ(time.IsNullValue(), 1);
}

TEST(DateText, wide_texts_scan_as_narrow_ones_do) {
  KtString wide(static_cast<unsigned char>(253), static_cast<unsigned char>(1));
  wide += "2005-06-28";
  EXPECT_EQ(scanned(wide, "%Y-%m-%d"), "2005-06-28 00:00:00");
  KtString null(static_cast<unsigned char>(253), static_cast<unsigned char>(1));
  null += "{NULL}";
  EXPECT_EQ(scanned(null, "%Y"), "null");
}

// Two texts in code sets that differ, or that lack the other's characters.
TEST(DateText, null_is_recognised_by_characters) {
  const auto in = [](unsigned char codeSet, const char16_t* text) {
    KtString s(codeSet, static_cast<unsigned char>(1));
    return s += reinterpret_cast<const unsigned short*>(text);
  };
  struct Case {
    unsigned char nullSet;
    const char16_t* null;
    unsigned char set;
    const char16_t* text;
    const char *format, *expected;
  };
  const Case cases[] = {
      {253, u"なし", 253, u"火曜 2005-06-28", "xx %Y-%m-%d", "2005-06-28 00:00:00"},
      {253, u"なし", 253, u"なし", "%Y", "null"},
      {253, u"∅", 253, u"∆", "%Y", "0000-01-01 00:00:00"},
      {253, u"∅", 1, u"\x1A", "%Y", "0000-01-01 00:00:00"},
      {10, u"€", 253, u"€ 5", "%Y", "null"},
      {253, u"€", 10, u"€ 5", "%Y", "null"},
      {10, u"€", 5, u"€", "%Y", "null"},  // bytes 0x80 and 0xA4
      {10, u"€", 5, u"¥2005", "x%Y", "2005-01-01 00:00:00"},
      {1, u"ä", 3, u"ф2005", "x%Y", "2005-01-01 00:00:00"},  // both are byte 0xE4
      {3, u"нет", 12, u"нет", "%Y", "null"},
      {1, u"null", 253, u"nul", "%Y", "0000-01-01 00:00:00"},
      {1, u"null", 253, u"", "%Y", "0000-01-01 00:00:00"},
      {1, u"null", 253, u"nullx", "%Y", "null"},
      {1, u"", 253, u"2005", "%Y", "null"},  // every text begins with an empty one
  };
  const KtString old = KtTypeMgr::GetNullPrintString();
  for (const Case& c : cases) {
    KtTypeMgr::SetNullPrintString(in(c.nullSet, c.null));
    EXPECT_EQ(scanned(in(c.set, c.text), c.format), c.expected) << &c - cases;
  }
  KtTypeMgr::SetNullPrintString(old);
}

// Every directive that keeps its part of the value, alone beside what the others need.
TEST(DateText, what_is_printed_scans_back) {
  const char* formats[] = {"%Y-%m-%d %H:%M:%S",     "%a %e.%b %Y %I:%M:%S %p",
                           "%A, %d %B %Y %S:%M:%H", "%p %I %M %S %B %Y %A %e",
                           "%Y%m%d%H%M%S",          "%%%Y%m%d%%%H%M%S"};
  for (const char* format : formats) {
    for (long day = KtDate(0, 3, 1).dayabs(); day < KtDate(4600, 2, 28).dayabs(); day += 997) {
      const KtDateTime value(KtDate(day), KtTime(day % 86400));
      KtString text;
      value.PrintToKtString(text, format);
      KtDateTime back = KtDateTime::Null();
      back.ScanFromKtString(text, format);
      ASSERT_TRUE(back == value) << text.StrGet();
    }
  }
}

// What is read at once is what is read one by one: targets and texts of 16-bit characters are not taken by the quick way.
TEST(DateText, formats_of_digits_alone_read_and_print_as_others_do) {
  const char* formats[] = {"%Y",
                           "%d",
                           "%m%d",
                           "%H:%M",
                           "%S.%M.%H %d.%m.%Y",
                           "%Y-%m-%d",
                           "%d/%m",
                           "-%e-",
                           "%Y%m%d%H%M%S",
                           "<%Y-%m-%dT%H:%M:%SZ>",
                           "%H%M%Y%S%d%m",
                           "year: %Y, month: %m, day: %d",
                           "%M of %H, %S",
                           "%d %d",
                           "%d %H:%M:%S, on day %d",
                           "%Y and twenty-six more: to 32.",
                           "%Y and twenty-seven more: to 33",
                           "%Y%y"};
  const KtDateTime values[] = {
      at(2005, 6, 28, 23, 59, 8), at(0, 1, 1),     at(9999, 12, 31, 1, 2, 3),     at(10000, 1, 1), at(-5, 1, 1),
      at(2005, 100, 28),          at(2005, 6, -1), at(2005, 6, 28, 99, 100, -128)};
  for (const char* format : formats) {
    forgetPlans();
    for (const KtDateTime& value : values) {
      for (const unsigned before : {0u, 5u, 14u, 16u, 30u, 40u, 128u}) {
        KtString narrow(std::string(before, '.').c_str());
        KtString wide(static_cast<unsigned char>(253), static_cast<unsigned char>(1));
        wide += narrow;
        value.PrintToKtString(narrow, format);
        value.PrintToKtString(wide, format);
        ASSERT_TRUE(wide == narrow) << format << ": " << narrow.StrGet();
      }
    }
    const std::string text = printed(values[0], format) + "9";
    for (std::size_t length = 0; length <= text.size(); ++length) {
      for (const char wrong : {'0', '9', '/', ':', ' ', '-', '\xB0'}) {
        for (const std::size_t rest : {length % 7, text.size()}) {
          std::string changed = text.substr(0, length);
          if (length != 0) changed[length - 1] = wrong;
          changed += text.substr(length, rest);
          const KtString narrow(changed.c_str());
          KtString wide(static_cast<unsigned char>(253), static_cast<unsigned char>(1));
          wide += narrow;
          ASSERT_EQ(scanned(narrow, format), scanned(wide, format)) << format << ": " << changed;
        }
      }
    }
  }
}

// Digits that stand in the block behind the text are none of it.
TEST(DateText, what_a_text_held_before_is_not_scanned) {
  forgetPlans();
  KtString text("2005-06-28 23:59:08");
  text.Cut(10, 65535);
  EXPECT_EQ(scanned(text, "%Y-%m-%d %H:%M:%S"), "2005-06-28 00:00:00");
  text.Cut(4, 65535);
  EXPECT_EQ(scanned(text, "%Y-%m-%d"), "2005-01-01 00:00:00");
}

// A format is known by its characters, not by where it stands.
TEST(DateText, formats_may_change_where_they_stand) {
  forgetPlans();
  char format[32] = "%Y-%m-%d";
  EXPECT_EQ(printed(at(2005, 6, 28), format), "2005-06-28");
  EXPECT_EQ(scanned("2005-06-28", format), "2005-06-28 00:00:00");
  std::strcpy(format, "%d.%m.%Y");
  EXPECT_EQ(printed(at(2005, 6, 28), format), "28.06.2005");
  EXPECT_EQ(scanned("28.06.2005", format), "2005-06-28 00:00:00");
  std::strcpy(format, "%Y-%m-%d %b");
  EXPECT_EQ(printed(at(2005, 6, 28), format), "2005-06-28 Jun");
}

// Also where the text that is there ends near the end of its block.
TEST(DateText, printing_appends_to_texts_of_every_length) {
  for (unsigned length = 0; length <= 200; ++length) {
    const std::string front(length, '-');
    KtString text(front.c_str());
    at(2005, 9, 28, 13, 5, 9).PrintToKtString(text, "%Y%A%B%I %p");
    ASSERT_EQ(text.StrGet(), front + "2005WednesdaySeptember01 pm");
    text += "!";
    ASSERT_EQ(text.StrGet(), front + "2005WednesdaySeptember01 pm!");
  }
}

TEST(DateText, format_may_be_the_text_that_grows) {
  forgetPlans();
  KtString text("%d/%p%");
  at(2005, 9, 28, 13).PrintToKtString(text, text.buffer);
  EXPECT_STREQ(text.StrGet(), "%d/%p%28/pm");
  text = "%d.%m ";
  at(2005, 9, 28).PrintToKtString(text, text.buffer);
  EXPECT_STREQ(text.StrGet(), "%d.%m 28.09 ");
  std::string format, expected;
  for (int i = 0; i < 500; ++i) {
    format += "%d/%B ";
    expected += "28/September ";
  }
  text = format.c_str();
  at(2005, 9, 28).PrintToKtString(text, text.buffer);
  EXPECT_EQ(text.StrGet(), format + expected);
}

}  // namespace
