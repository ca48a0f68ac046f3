// order_diagnostics_test.cpp - descriptions of collation orders, and orders of characters described and mapped back.
#include "ktorder.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string described(unsigned order, unsigned char kind = 1) {
  KtString text("old");
  EXPECT_EQ(KtConvertOrderToString(static_cast<unsigned short>(order), kind, text), 0);
  return text.StrGet();
}

unsigned char mapped(unsigned order, int search, const char** entry = nullptr, unsigned char kind = 1) {
  unsigned char ch = 0;
  EXPECT_EQ(KtConvertOrderToChar(static_cast<unsigned short>(order), kind, ch, search, entry), 0);
  return ch;
}

constexpr unsigned letter(unsigned index, unsigned lower, unsigned diacritic, unsigned extension) {
  return 0x4000 + lower * 0x1000 + diacritic * 0x80 + index * 4 + extension;
}

unsigned orderOf(unsigned char ch) { return KtChar(ch, 1, 1).Order(); }

TEST(OrderDiagnostics, orders_are_described_and_mapped_by_class) {
  const struct {
    unsigned order;
    unsigned char kind;
    const char* text;
    unsigned char ch;
  } cases[] = {
      {0, 1, "space", ' '},
      {12, 1, "space", ' '},
      {13, 1, "undefined ordering indicator", ' '},
      {79, 19, "space", ' '},
      {80, 1, "symbol ", 7},
      {80 + 31, 1, "symbol ", 7},
      {80 + 32, 1, "symbol _", '_'},
      {80 + 33, 1, "symbol ", 7},
      {80 + 44, 1, "symbol solidus", '/'},
      {80 + 52, 1, "symbol apostrophe", '\''},
      {80 + 55, 1, "symbol \"", '"'},
      {80 + 80, 1, "symbol reverse solidus", '.'},
      {80 + 88, 1, "symbol '", '\''},
      {80 + 89, 1, "symbol `", '`'},
      {80 + 107, 1, "symbol |", '|'},
      {80 + 139, 1, "symbol inverted question mark", '.'},
      {80 + 140, 1, "symbol ", 7},
      {16127, 1, "symbol ", 7},
      {16128, 1, "digit 0", '0'},
      {16128 + 70, 1, "digit 7", '7'},
      {16128 + 71, 1, "digit 7 with expand", '7'},
      {16128 + 79, 129, "digit 7 with expand", '7'},  // bit 7 of the kind does not count
      {16383, 1, "digit 25 with expand", '0' + 25},
      {letter(3, 0, 0, 0), 1, "upper letter A", 'A'},
      {letter(3, 0, 2, 0), 1, "upper letter A with accent acute", 'A'},
      {letter(28, 1, 14, 3), 4, "lower letter z with accent double acute with extension", 'z'},
      {letter(16, 1, 15, 1), 1, "lower letter n with  with extension", 'n'},
      {letter(3, 2, 31, 0), 1, "lower letter a with ", 'a'},
      {letter(0, 0, 0, 0), 1, "upper letter >", '>'},
      {0x8000, 1, "HAN character 0x8000\n", 127},
      {0xFFFF, 20, "HAN character 0xffff\n", 127},
      {13, 20, "HAN character 0x000d\n", 127},
      {letter(3, 0, 0, 0), 0x80 + 20, "HAN character 0x400c\n", 127},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(described(c.order, c.kind), c.text);
    EXPECT_EQ(mapped(c.order, 0, nullptr, c.kind), c.ch) << c.text;
  }
}

TEST(OrderDiagnostics, extraction_refuses_orders_of_other_classes) {
  static constexpr unsigned short kOrders[] = {0, 79, 80, 16127, 16128, 16383, 16384, 65535};
  for (const unsigned short order : kOrders) {
    unsigned short index = 7, digit = 7, expand = 7;
    const bool symbol = order >= 80 && order < 16128, number = order >= 16128 && order < 16384;
    EXPECT_EQ(KtExtractSymbolFromOrder(order, index), symbol ? 0 : -2002);
    EXPECT_EQ(index, symbol ? order - 80 : 7);
    EXPECT_EQ(KtExtractDigitFromOrder(order, digit, expand), number ? 0 : -2002);
    EXPECT_EQ(digit, !number ? 7 : order == 16128 ? 0 : 25);
    EXPECT_EQ(expand, !number ? 7 : order == 16128 ? 0 : 1);
  }
}

// Symbols of code set 1 and what their orders are to be called.
TEST(OrderDiagnostics, symbols_of_code_set_1_go_by_their_names) {
  const struct {
    unsigned char ch;
    const char* name;
  } cases[] = {{'.', "full stop"},
               {'\\', "reverse solidus"},
               {'\'', "apostrophe"},
               {'"', "\""},
               {'`', "`"},
               {'|', "|"},
               {'*', "*"},
               {'@', "@"},
               {0xA1, "inverted exclamation mark"},
               {0xA2, "cent sign"},
               {0xA3, "pound sign"},
               {0xA4, "currency sign"},
               {0xA5, "yen sign"},
               {0xA6, "broken bar"},
               {0xA7, "section sign"},
               {0xA8, "diaeresis"},
               {0xA9, "copyright sign"},
               {0xAC, "not sign"},
               {0xAD, "soft hyphen"},
               {0xAB, "left pointing double angle quotation mark"},
               {0xAE, "registered sign"},
               {0xAF, "macron sign"},
               {0xB0, "degree sign"},
               {0xB1, "plus minus sign"},
               {0xB5, "micron sign"},
               {0xB6, "pilcrow sign"},
               {0xB7, "middle dot"},
               {0xB8, "cedilla"},
               {0xBB, "right pointing double angle quotation mark"},
               {0xBF, "inverted question mark"},
               {0xD7, "multiplication sign"},
               {0xF7, "division sign"}};
  for (const auto& c : cases) EXPECT_EQ(described(orderOf(c.ch)), std::string("symbol ") + c.name);
}

// Letters that are variants of a plain letter, told apart by the extension only.
bool isVariant(unsigned ch) {
  for (const unsigned variant : {0xAAu, 0xBAu, 0xC6u, 0xD0u, 0xDEu, 0xDFu, 0xE6u, 0xF0u, 0xFEu}) {
    if (ch == variant) return true;
  }
  return false;
}

TEST(OrderDiagnostics, characters_come_back_from_their_orders) {
  for (unsigned ch = 1; ch < 256; ++ch) {
    const unsigned order = orderOf(static_cast<unsigned char>(ch));
    const unsigned char back = mapped(order, 1);
    const std::string text = described(order);
    const bool alphanumeric = (ch >= '0' && ch <= '9') || (ch | 32) - 'a' < 26u;
    if (alphanumeric || (ch >= 0xC0 && text.rfind("symbol", 0) != 0 && !isVariant(ch))) {
      EXPECT_EQ(back, ch) << text;
    } else if (ch >= 0xBC && ch <= 0xBE) {  // fractions: symbols without a name
      EXPECT_EQ(back, 7) << text;
    } else if (ch >= 0xA1 || (ch > ' ' && ch < 127)) {
      EXPECT_NE(text, "symbol ") << ch;
      EXPECT_TRUE(back == ch || back == '.' || back == '\'' || text.rfind("symbol", 0) != 0) << text;
    } else {
      EXPECT_EQ(back, text == "space" ? ' ' : 7) << ch;  // controls
    }
  }
  EXPECT_EQ(described(orderOf(0xE9)), "lower letter e with accent acute");
  EXPECT_EQ(described(orderOf(0xD8)), "upper letter O with stroke");
  EXPECT_EQ(described(orderOf(0xDF)), "lower letter s with extension");
  EXPECT_EQ(described(orderOf(0xB2)), "digit 2 with expand");
}

TEST(OrderDiagnostics, the_entry_describes_the_letter_that_was_found) {
  const struct {
    unsigned order;
    int search;
    unsigned char ch;
    const char* entry;
  } cases[] = {
      {letter(7, 1, 2, 0), 1, 0xE9, "latin small letter e with acute"},
      {letter(7, 1, 2, 0), 0, 'e', "latin small letter e"},
      {letter(7, 1, 13, 0), 1, 'e', "latin small letter e"},  // ogonek: not in code set 1
      {letter(3, 0, 0, 0), 1, 'A', "latin capital letter a"},
      {letter(0, 0, 0, 0), 0, '>', "greater-than sign"},
      {letter(31, 1, 0, 0), 0, '}', "right curly bracket"},
      {80 + 44, 1, '/', nullptr},  // no letter
      {0x9000, 1, 127, nullptr},
  };
  for (const auto& c : cases) {
    const char* entry = nullptr;
    EXPECT_EQ(mapped(c.order, c.search, &entry), c.ch);
    EXPECT_STREQ(entry, c.entry);
  }
}

}  // namespace
