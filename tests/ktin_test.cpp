// Code sets, case mapping, collation orders and the language context.
#include "ktin.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#if defined(__GLIBC__)
#include <iconv.h>
#endif

namespace {

constexpr unsigned char kCodeSets[] = {1, 2, 3, 4, 5, 10, 11, 12};
constexpr unsigned char kKinds[] = {1, 2, 3, 4, 20};

// Of a signed type: on big-endian hosts some standard libraries order vectors of unsigned words by too few bytes.
using Orders = std::vector<int>;

Orders ordersOf(unsigned ch, unsigned char kind) {
  unsigned short orders[KtUnicodeProps::kMaxOrders];
  const unsigned short count = KtUnicodeProps::Orders(static_cast<unsigned short>(ch), kind, orders);
  return {orders, orders + count};
}

unsigned orderOf(unsigned ch, unsigned char kind = 1) {
  return KtUnicodeProps::Order(static_cast<unsigned short>(ch), kind);
}

// The parts of a letter's order; `primary`, letter and extension, decides before marks and case do.
unsigned primary(unsigned order) { return order & 0x407F; }
unsigned diacritic(unsigned order) { return order >> 7 & 31; }
unsigned letterCase(unsigned order) { return order >> 12 & 3; }
unsigned extension(unsigned order) { return order & 3; }
char letter(unsigned order) { return static_cast<char>('>' + (order >> 2 & 31)); }

// ---- code sets -----------------------------------------------------------------------------------------------------

TEST(CodeSets, codes_stand_for_the_listed_sets) {
  for (int code = 1; code < 256; ++code) {
    const bool listed = code <= 5 || (code >= 10 && code <= 12) || code == 253;
    const int expected = listed ? code : code < 225 ? 1 : 253;
    const KtCodeSet& set = KtCodeSet::Get(static_cast<unsigned char>(code));
    EXPECT_EQ(set.Code(), expected) << code;
    EXPECT_EQ(set.CharSize(), code < 225 ? 1 : 2) << code;
  }
}

TEST(CodeSets, code_0_is_the_native_set_if_that_has_one_byte_a_character) {
  const struct { unsigned char native, expected; } cases[] = {{11, 11}, {7, 1}, {0, 1}, {253, 1}, {1, 1}};
  for (const auto& c : cases) {
    KtLanguageContext::SetNativeCodeSet(c.native);
    EXPECT_EQ(KtCodeSet::Get(0).Code(), c.expected) << int{c.native};
  }
}

#if defined(__GLIBC__)
// One character through the C library's converter, or -1 where the target lacks it.
int convert(iconv_t converter, unsigned value, bool fromByte) {
  char in[2] = {static_cast<char>(fromByte ? value : value >> 8), static_cast<char>(value)};
  unsigned char out[4] = {};
  char* from = in;
  char* to = reinterpret_cast<char*>(out);
  std::size_t left = fromByte ? 1 : 2;
  std::size_t room = sizeof out;
  iconv(converter, nullptr, nullptr, nullptr, nullptr);
  if (iconv(converter, &from, &left, &to, &room) == static_cast<std::size_t>(-1)) return -1;
  return fromByte ? out[0] << 8 | out[1] : out[0];
}

TEST(CodeSets, code_pages_are_those_of_the_c_library) {
  const char* names[] = {"ISO-8859-1",  "ISO-8859-2", "ISO-8859-5", "ISO-8859-7",
                         "ISO-8859-15", "CP1252",     "CP1250",     "CP1251"};
  for (int i = 0; i < 8; ++i) {
    const iconv_t toUnicode = iconv_open("UTF-16BE", names[i]);
    const iconv_t fromUnicode = iconv_open(names[i], "UTF-16BE");
    const auto failed = [](iconv_t converter) { return reinterpret_cast<std::intptr_t>(converter) == -1; };
    if (failed(toUnicode) || failed(fromUnicode)) GTEST_SKIP() << "no converter for " << names[i];
    const KtCodeSet& set = KtCodeSet::Get(kCodeSets[i]);
    for (unsigned byte = 0; byte < 256; ++byte) {
      const int expected = convert(toUnicode, byte, true);
      EXPECT_EQ(set.ToUnicode(static_cast<unsigned short>(byte)), expected < 0 ? static_cast<int>(byte) : expected)
          << names[i] << " byte " << byte;
    }
    for (unsigned ch = 0; ch < 65536; ++ch) {
      int expected = convert(fromUnicode, ch, false);
      const bool undefinedControl = ch >= 0x80 && ch < 0xA0 && convert(toUnicode, ch, true) < 0;
      if (expected < 0) expected = undefinedControl ? static_cast<int>(ch) : KtCodeSet::kSubstitute;
      ASSERT_EQ(set.FromUnicode(static_cast<unsigned short>(ch)), expected) << names[i] << " character " << ch;
    }
    iconv_close(toUnicode);
    iconv_close(fromUnicode);
  }
}
#endif

TEST(CodeSets, map_tables_go_from_set_to_set) {
  const struct {
    unsigned char from, to, ch, expected;
  } cases[] = {
      {3, 12, 0xB6, 0xC6},  // Zhe
      {5, 10, 0xA4, 0x80},  // the euro sign
      {5, 1, 0xA4, 0x1A},   // which Latin-1 lacks
      {10, 1, 0x81, 0x81},  // a control, although the page leaves it undefined
      {2, 11, 0xA9, 0x8A},  // S with caron
      {4, 4, 0xFF, 0xFF},   // undefined, but within one set nothing changes
      {4, 1, 0xFF, 0xFF},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(KtCodeSet::Get(c.from).MapTable(KtCodeSet::Get(c.to))[c.ch], c.expected) << int{c.from} << int{c.to};
  }
  EXPECT_EQ(KtCodeSet::Get(1).MapTable(KtCodeSet::Get(253)), nullptr);
  EXPECT_EQ(KtCodeSet::Get(253).MapTable(KtCodeSet::Get(1)), nullptr);
}

TEST(CodeSets, tables_are_built_once_from_any_thread) {
  std::set<const void*> seen[4];
  std::vector<std::thread> threads;
  for (auto& tables : seen) {
    threads.emplace_back([&tables] {
      tables = {KtCodeSet::Get(2).MapTable(KtCodeSet::Get(11)), KtCodeSet::Get(4).Orders(3),
                KtUnicodeProps::OrderPages(4)};
    });
  }
  for (auto& thread : threads) thread.join();
  for (const auto& tables : seen) EXPECT_EQ(tables, seen[0]);
}

// ---- case ----------------------------------------------------------------------------------------------------------

// Character, its lower and its upper partner; unchanged where the set lacks the partner.
TEST(CaseMapping, partners_lie_in_the_same_set) {
  using Row = std::array<unsigned short, 3>;
  const struct {
    unsigned char code;
    std::vector<Row> rows;
  } cases[] = {
      {1, {{'A', 'a', 'A'}, {'z', 'z', 'Z'}, {'[', '[', '['}, {0xC4, 0xE4, 0xC4}, {0xD7, 0xD7, 0xD7}}},
      {1, {{0xF7, 0xF7, 0xF7}, {0xDF, 0xDF, 0xDF}, {0xFF, 0xFF, 0xFF}, {0xB5, 0xB5, 0xB5}}},
      {2, {{0xA3, 0xB3, 0xA3}}},
      {3, {{0xF1, 0xF1, 0xA1}}},
      {4, {{0xF2, 0xF2, 0xD3}, {0xD3, 0xF3, 0xD3}}},  // both sigmas have one capital
      {5, {{0xFF, 0xFF, 0xBE}}},
      {10, {{0xFF, 0xFF, 0x9F}}},
      {12, {{0xFF, 0xFF, 0xDF}}},
      {253, {{0x130, 'i', 0x130}, {0x131, 0x131, 'I'}, {0x3C2, 0x3C2, 0x3A3}, {0x1C5, 0x1C6, 0x1C4}}},
      {253, {{0x1E9E, 0xDF, 0x1E9E}, {0x10A0, 0x2D00, 0x10A0}, {0xFF21, 0xFF41, 0xFF21}, {0xFB01, 0xFB01, 0xFB01}}},
  };
  for (const auto& c : cases) {
    const KtCodeSet& set = KtCodeSet::Get(c.code);
    for (const auto& [ch, lower, upper] : c.rows) {
      EXPECT_EQ(set.ToLower(ch), lower) << set.Name() << " " << ch;
      EXPECT_EQ(set.ToUpper(ch), upper) << set.Name() << " " << ch;
    }
  }
}

// ---- collation orders ----------------------------------------------------------------------------------------------

// These numbers are a promise: indexes that users have stored are sorted by these orders, and would no longer find
// their entries under others. If a value here changes, the change is wrong: give the new orders a new kind number and
// leave these kinds as they are.
TEST(Collation, orders_of_a_kind_never_change) {
  const struct {
    unsigned char kind;
    std::uint64_t fingerprint;
  } cases[] = {{1, 0x68CA6195FCBB0F83},
               {2, 0x778B48FE4CE2E7E6},
               {3, 0x8FA6B2378BA56CE8},
               {4, 0xC27CF1BA7CF9F111},
               {20, 0x5461FCF0B9AB0D8B}};
  for (const auto& c : cases) {
    std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a over kind, characters and orders, the low byte first
    const auto add = [&hash](unsigned byte) { hash = (hash ^ (byte & 0xFF)) * 0x100000001B3; };
    add(c.kind);
    for (unsigned ch = 0; ch < 65536; ++ch) {
      Orders words = ordersOf(ch, c.kind);
      words.insert(words.begin(), static_cast<int>(ch));
      for (const int word : words) add(static_cast<unsigned>(word)), add(static_cast<unsigned>(word) >> 8);
    }
    EXPECT_EQ(hash, c.fingerprint) << "kind " << int{c.kind} << std::hex << " 0x" << hash;
  }
}

TEST(Collation, no_two_characters_share_their_orders) {
  for (const unsigned char kind : kKinds) {
    std::set<Orders> seen;
    for (unsigned ch = 1; ch < 65536; ++ch) {
      EXPECT_TRUE(seen.insert(ordersOf(ch, kind)).second) << "kind " << int{kind} << " character " << ch;
    }
  }
}

TEST(Collation, text_sorts_alike_in_all_code_sets) {
  for (const unsigned char code : kCodeSets) {
    const KtCodeSet& set = KtCodeSet::Get(code);
    for (const unsigned char kind : kKinds) {
      const unsigned short* orders = set.Orders(kind);
      EXPECT_EQ(orders[0], 0);
      for (unsigned short ch = 1; ch < 256; ++ch) {
        EXPECT_EQ(Orders{orders[ch]}, ordersOf(set.ToUnicode(ch), kind)) << int{code} << " " << ch;
      }
    }
  }
  EXPECT_EQ(KtCodeSet::Get(253).Orders(1), nullptr);
}

TEST(Collation, symbols_with_a_fixed_index_have_it_under_every_alphabetic_kind) {
  const struct {
    unsigned index, ch;
  } symbols[] = {
      {32, '_'},   {34, 0xAF},  {35, 0xAD},  {36, '-'},  {37, ','},  {38, ';'},  {39, ':'},   {40, '!'},  {41, 0xA1},
      {42, '?'},   {44, '/'},   {46, '.'},   {49, 0xB7}, {50, 0xB8}, {52, '\''}, {55, '"'},   {58, 0xAB}, {59, 0xBB},
      {60, '('},   {62, ')'},   {64, '['},   {65, ']'},  {66, '{'},  {67, '}'},  {68, 0xA7},  {69, 0xB6}, {70, 0xA9},
      {71, 0xAE},  {73, '@'},   {74, 0xA4},  {75, 0xA2}, {76, '$'},  {77, 0xA3}, {78, 0xA5},  {79, '*'},  {80, '\\'},
      {81, '&'},   {82, '#'},   {83, '%'},   {85, '+'},  {87, 0xB1}, {88, 0xB4}, {89, '`'},   {91, '^'},  {94, 0xA8},
      {96, '~'},   {98, 0xF7},  {99, 0xD7},  {101, '<'}, {103, '='}, {105, '>'}, {106, 0xAC}, {107, '|'}, {108, 0xA6},
      {109, 0xB0}, {110, 0xB5}, {139, 0xBF},
  };
  for (unsigned char kind = 1; kind <= 4; ++kind) {
    for (const auto& symbol : symbols) EXPECT_EQ(orderOf(symbol.ch, kind), 80 + symbol.index) << symbol.ch;
  }
}

TEST(Collation, characters_fall_into_the_ranges_of_their_class) {
  const struct {
    unsigned lowest, highest;
    std::vector<std::pair<unsigned, unsigned>> characters;
  } classes[] = {
      {1, 79, {{0x01, 0x20}, {0xA0, 0xA0}, {0x2000, 0x200A}, {0x3000, 0x3000}}},
      {80, 16127, {{0x80, 0x9F}, {0xBC, 0xBE}, {0x300, 0x36F}, {0x5B0, 0x5B9}, {0x2018, 0x201F}, {0x20AC, 0x20AC}}},
      {16128, 16383, {{'0', '9'}, {0x2080, 0x2089}, {0xFF10, 0xFF19}}},
      {0x4000, 0x7FFF, {{'A', 'Z'}, {0xC0, 0xD6}, {0x100, 0x2AF}, {0x1E00, 0x1EFF}, {0xFB00, 0xFB06}}},
      {0x8000, 0xFFFF, {{0x3B1, 0x3C9}, {0x410, 0x44F}, {0x660, 0x669}, {0x904, 0x94D}, {0x4E00, 0x9FFF}}},
      {0x8000, 0xFFFF, {{0xD800, 0xF8FF}, {0xFFFE, 0xFFFF}}},
  };
  for (const auto& c : classes) {
    for (const auto& [first, last] : c.characters) {
      for (unsigned ch = first; ch <= last; ++ch) {
        EXPECT_TRUE(orderOf(ch) >= c.lowest && orderOf(ch) <= c.highest) << ch << " has " << orderOf(ch);
      }
    }
  }
  for (unsigned ch = 0; ch < 65536; ++ch) EXPECT_NE(orderOf(ch), 13u) << ch;  // the mark of what has no order
}

TEST(Collation, digits_of_other_forms_stand_beside_their_digit) {
  const unsigned superscripts[] = {0x2070, 0xB9, 0xB2, 0xB3, 0x2074, 0x2075, 0x2076, 0x2077, 0x2078, 0x2079};
  for (unsigned digit = 0; digit < 10; ++digit) {
    EXPECT_EQ(orderOf('0' + digit), 16128 + 10 * digit);
    for (const unsigned other : {superscripts[digit], 0x2080 + digit, 0xFF10 + digit}) {
      EXPECT_EQ(((orderOf(other) & ~1u) - 16128) / 10, digit);
      EXPECT_EQ(orderOf(other) & 1, 1u);
    }
  }
}

TEST(Collation, letters_are_composed_of_base_case_and_mark) {
  const struct {
    unsigned ch;
    char base;
    unsigned letterCase, lowestMark, highestMark;
    bool extended;
  } letters[] = {
      {'A', 'A', 0, 0, 0, false},      {'z', 'Z', 1, 0, 0, false},      {0xC7, 'C', 0, 1, 1, false},
      {0xE1, 'A', 1, 2, 2, false},     {0xC8, 'E', 0, 3, 3, false},     {0xEE, 'I', 1, 4, 4, false},
      {0xD5, 'O', 0, 5, 5, false},     {0xC4, 'A', 0, 6, 6, false},     {0xE5, 'A', 1, 7, 7, false},
      {0xF8, 'O', 1, 8, 8, false},     {0x142, 'L', 1, 8, 8, false},    {0x110, 'D', 0, 8, 8, false},
      {0x10D, 'C', 1, 9, 9, false},    {0x100, 'A', 0, 10, 10, false},  {0x103, 'A', 1, 11, 11, false},
      {0x17C, 'Z', 1, 12, 12, false},  {0x104, 'A', 0, 13, 13, false},  {0x151, 'O', 1, 14, 14, false},
      {0x1EBF, 'E', 1, 15, 31, false}, {0x1EF0, 'U', 0, 15, 31, false}, {0x219, 'S', 1, 15, 31, false},
      {0xFF21, 'A', 0, 15, 31, false}, {0xE6, 'A', 1, 0, 0, true},      {0x152, 'O', 0, 0, 0, true},
      {0xDF, 'S', 1, 0, 0, true},      {0xD0, 'D', 0, 0, 0, true},      {0xFE, 'T', 1, 0, 0, true},
      {0x131, 'I', 1, 0, 0, true},     {0x14A, 'N', 0, 0, 0, true},     {0x1FD, 'A', 1, 2, 2, true},
      {0x1C6, 'D', 1, 0, 31, true},    {0xFB01, 'F', 1, 0, 31, true},   {0x283, 'S', 1, 0, 31, true},
  };
  for (const auto& l : letters) {
    const unsigned order = orderOf(l.ch);
    EXPECT_EQ(letter(order), l.base) << l.ch;
    EXPECT_EQ(letterCase(order), l.letterCase) << l.ch;
    EXPECT_TRUE(diacritic(order) >= l.lowestMark && diacritic(order) <= l.highestMark) << l.ch;
    EXPECT_EQ(extension(order) != 0, l.extended) << l.ch;
  }
}

TEST(Collation, a_letter_and_its_capital_differ_in_case_alone) {
  constexpr unsigned kCaseBits = 0x3000;
  for (const unsigned ch : {0x41u, 0xC4u, 0xC6u, 0xD8u, 0x110u, 0x1C4u, 0x1EA4u, 0xFF21u}) {
    const unsigned small = KtUnicodeProps::ToLower(static_cast<unsigned short>(ch));
    for (unsigned char kind = 1; kind <= 4; ++kind) {
      EXPECT_EQ(orderOf(ch, kind) | kCaseBits, orderOf(small, kind) | kCaseBits) << ch;
    }
  }
  EXPECT_EQ(primary(orderOf(0xC4)), primary(orderOf('A')));
  EXPECT_EQ(primary(orderOf(0x1EA5)), primary(orderOf('a')));
}

TEST(Collation, alphabets_rise_in_their_order) {
  const struct {
    unsigned char language;
    const char16_t* alphabet;
  } cases[] = {
      {1, u"0123456789abcdefghijklmnopqrstuvwxyz"},
      {1, u"09ABCDEFGHIJKLMNOPQRSTUVWXYZ"},
      {4, u"abcdefghijklmn\u00F1opqrstuvwxyz"},
      {4, u"MN\u014A\u00D1OP"},
      {5, u"xyz\u00E5\u00E4\u00F6"},
      {5, u"9AOXYZ\u00C5\u00C4\u00D6"},
      {6, u"xyz\u00E6\u00F8\u00E5"},
      {6, u"9AOXYZ\u00C6\u00D8\u00C5"},
      {7, u"az\u03B1\u03B2\u03C9"},
      {8, u"az\u0430\u0431\u044F"},
      {21, u"09AZaz\u00E4\u4E00\u4E8C"},
  };
  for (const auto& c : cases) {
    const unsigned char kind = KtUnicodeProps::CollationKind(c.language);
    for (const char16_t* at = c.alphabet; at[1] != 0; ++at) {
      const unsigned left = orderOf(at[0], kind);
      const unsigned right = orderOf(at[1], kind);
      const bool letters = kind < 20 && left < 0x8000 && right < 0x8000 && left >= 0x4000 && right >= 0x4000;
      EXPECT_TRUE(letters ? primary(left) < primary(right) : left < right)
          << "language " << int{c.language} << " at " << unsigned{at[0]};
    }
  }
}

TEST(Collation, spanish_n_with_tilde_is_above_every_other_n) {
  const unsigned own = primary(orderOf(0xF1, 2));
  for (unsigned ch = 1; ch < 65536; ++ch) {
    const unsigned order = orderOf(ch, 2);
    if (order < 0x4000 || order >= 0x8000 || letter(order) != 'N' || ch == 0xF1 || ch == 0xD1) continue;
    EXPECT_LT(primary(order), own) << ch;
  }
}

TEST(Collation, characters_of_other_scripts_rise_with_their_codes) {
  EXPECT_EQ(ordersOf(0x7FFE, 1), (Orders{0xFFFE}));
  EXPECT_EQ(ordersOf(0x7FFF, 1), (Orders{0xFFFF, 0x8000}));
  EXPECT_EQ(ordersOf(0xFFFE, 1), (Orders{0xFFFF, 0xFFFF}));
  EXPECT_EQ(ordersOf(0xFFFF, 1), (Orders{0xFFFF, 0xFFFF, 0x8000}));
  EXPECT_EQ(ordersOf(0xFFFF, 20), (Orders{0xFFFF}));
  EXPECT_EQ(ordersOf(0, 1), (Orders{}));
  Orders last;
  for (unsigned ch = 1; ch < 65536; ++ch) {
    const Orders orders = ordersOf(ch, 1);
    if (orders[0] < 0x8000) continue;
    EXPECT_LT(last, orders) << ch;
    last = orders;
  }
}

TEST(Collation, the_kind_depends_on_the_language_only) {
  const std::vector<unsigned char> kinds = {1, 1, 1, 1, 2, 3, 4, 1, 1};
  for (unsigned language = 0; language < 256; ++language) {
    const unsigned char expected = language < kinds.size()            ? kinds[language]
                                   : language >= 20 && language <= 22 ? 20
                                                                      : 1;
    EXPECT_EQ(KtUnicodeProps::CollationKind(static_cast<unsigned char>(language)), expected) << language;
  }
}

TEST(Collation, the_page_lists_the_languages_with_their_kinds) {
  std::ifstream page(KT_TESTS_DIR "/../docs/collation.md");
  std::vector<int> listed;
  for (std::string line; std::getline(page, line);) {
    int language = 0, kind = 0;
    if (std::sscanf(line.c_str(), "| %d | %*[^|] | %d |", &language, &kind) != 2) continue;
    listed.push_back(language);
    EXPECT_EQ(KtUnicodeProps::CollationKind(static_cast<unsigned char>(language)), kind) << line;
  }
  EXPECT_EQ(listed, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 20, 21, 22}));
}

// ---- language context ----------------------------------------------------------------------------------------------

template <typename T>
void expectIndependent(T (*get)(), void (*set)(T), T atLoad) {
  EXPECT_EQ(get(), atLoad);
  set(7);
  EXPECT_EQ(get(), 7);
}

TEST(LanguageContext, values_are_independent_of_one_another) {
  using Context = KtLanguageContext;
  expectIndependent<unsigned char>(Context::GetDefaultCodeSet, Context::SetDefaultCodeSet, 1);
  expectIndependent<unsigned char>(Context::GetDefault8CodeSet, Context::SetDefault8CodeSet, 1);
  expectIndependent<unsigned char>(Context::GetDefault16CodeSet, Context::SetDefault16CodeSet, 253);
  expectIndependent<unsigned char>(Context::GetNativeCodeSet, Context::SetNativeCodeSet, 1);
  expectIndependent<unsigned char>(Context::GetDefaultLanguage, Context::SetDefaultLanguage, 1);
  expectIndependent<unsigned short>(Context::GetDefaultCmpOp, Context::SetDefaultCmpOp, 0x10);
  Context::SetDefaultCodeSet(1);
  Context::SetDefault8CodeSet(1);
  Context::SetDefault16CodeSet(253);
  Context::SetNativeCodeSet(1);
  Context::SetDefaultLanguage(1);
  Context::SetDefaultCmpOp(0x10);
  EXPECT_EQ(___KtI18NContext(1), 1);
}

}  // namespace
