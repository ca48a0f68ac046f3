// order_diagnostics.cpp - takes collation orders apart and describes them.
#include "character_names.h"
#include "ktorder.h"

#include <cstdio>

namespace {

constexpr unsigned kFirstSymbol = 80;
constexpr unsigned kFirstDigit = 16128;
constexpr unsigned kFirstLetter = 16384;
constexpr unsigned kOtherScript = 0x8000;
constexpr unsigned kUndefinedOrder = 13;
constexpr unsigned kOrdersPerDigit = 10;

constexpr unsigned char kKindMask = 0x7F;
constexpr unsigned char kUnknownChar = 7;
constexpr unsigned char kHanChar = 127;
constexpr char kLetterOrigin = '>';  // the character of letter index 0
constexpr char kToLower = 'a' - 'A';

struct Symbol {
  const char* name = nullptr;
  char character = static_cast<char>(kUnknownChar);
};

constexpr unsigned kFirstNamed = 32;
constexpr unsigned kLastNamed = 139;

// Which symbols have names; the indexes are those that the collation tables give to these symbols.
struct SymbolRow {
  unsigned char index;
  Symbol symbol;
};
constexpr SymbolRow kSymbolRows[] = {
    {32, {"_", '_'}},
    {34, {"macron sign", '.'}},
    {35, {"soft hyphen", '.'}},
    {36, {"-", '-'}},
    {37, {",", ','}},
    {38, {";", ';'}},
    {39, {":", ':'}},
    {40, {"!", '!'}},
    {41, {"inverted exclamation mark", '.'}},
    {42, {"?", '?'}},
    {44, {"solidus", '/'}},
    {46, {"full stop", '.'}},
    {49, {"middle dot", '.'}},
    {50, {"cedilla", '.'}},
    {52, {"apostrophe", '\''}},
    {55, {"\"", '"'}},
    {58, {"left pointing double angle quotation mark", '.'}},
    {59, {"right pointing double angle quotation mark", '.'}},
    {60, {"(", '('}},
    {62, {")", ')'}},
    {64, {"[", '['}},
    {65, {"]", ']'}},
    {66, {"{", '{'}},
    {67, {"}", '}'}},
    {68, {"section sign", '.'}},
    {69, {"pilcrow sign", '.'}},
    {70, {"copyright sign", '.'}},
    {71, {"registered sign", '.'}},
    {73, {"@", '@'}},
    {74, {"currency sign", '.'}},
    {75, {"cent sign", '.'}},
    {76, {"$", '$'}},
    {77, {"pound sign", '.'}},
    {78, {"yen sign", '.'}},
    {79, {"*", '*'}},
    {80, {"reverse solidus", '.'}},
    {81, {"&", '&'}},
    {82, {"#", '#'}},
    {83, {"%", '%'}},
    {85, {"+", '+'}},
    {87, {"plus minus sign", '.'}},
    {88, {"'", '\''}},
    {89, {"`", '`'}},
    {91, {"^", '^'}},
    {94, {"diaeresis", '.'}},
    {96, {"~", '~'}},
    {98, {"division sign", '.'}},
    {99, {"multiplication sign", '.'}},
    {101, {"<", '<'}},
    {103, {"=", '='}},
    {105, {">", '>'}},
    {106, {"not sign", '.'}},
    {107, {"|", '|'}},
    {108, {"broken bar", '.'}},
    {109, {"degree sign", '.'}},
    {110, {"micron sign", '.'}},
    {kLastNamed, {"inverted question mark", '.'}},
};

struct SymbolTable {
  Symbol symbols[kLastNamed + 1 - kFirstNamed];
  constexpr SymbolTable() {
    for (const SymbolRow& row : kSymbolRows) symbols[row.index - kFirstNamed] = row.symbol;
  }
};
constexpr SymbolTable kSymbols;

constexpr const char* kDiacriticNames[] = {"",
                                           "cedilla",
                                           "accent acute",
                                           "accent grave",
                                           "accent circumflex",
                                           "tilde",
                                           "diaeresis",
                                           "ring above",
                                           "stroke",
                                           "accent caron",
                                           "accent macron",
                                           "accent breve",
                                           "dot above",
                                           "ogonek",
                                           "accent double acute"};
constexpr unsigned kNamedDiacritics = sizeof kDiacriticNames / sizeof *kDiacriticNames;

enum class OrderClass { kSpace, kSymbol, kDigit, kLetter, kHan };

OrderClass classOf(unsigned order, unsigned char kind) {
  if (order >= kOtherScript || (kind & kKindMask) >= KtUnicodeProps::kIdeographicKind) return OrderClass::kHan;
  if (order < kFirstSymbol) return OrderClass::kSpace;
  if (order < kFirstDigit) return OrderClass::kSymbol;
  return order < kFirstLetter ? OrderClass::kDigit : OrderClass::kLetter;
}

const Symbol& symbolOf(unsigned order) {
  static constexpr Symbol kNameless;
  const unsigned index = order - kFirstSymbol;
  return index >= kFirstNamed && index <= kLastNamed ? kSymbols.symbols[index - kFirstNamed] : kNameless;
}

struct Digit {
  unsigned short value;
  unsigned short expand;
};

Digit digitOf(unsigned order) {
  return {static_cast<unsigned short>(((order & ~1u) - kFirstDigit) / kOrdersPerDigit),
          static_cast<unsigned short>(order & 1)};
}

struct Letter {
  bool lower;
  unsigned diacritic;
  char character;
  unsigned extension;
};

Letter letterOf(unsigned order) {
  const bool lower = ((order >> 12) & 3) != 0;
  const int character = kLetterOrigin + static_cast<int>((order >> 2) & 31) + (lower ? kToLower : 0);
  return {lower, (order >> 7) & 31, static_cast<char>(character), order & 3};
}

using Description = char[96];  // the longest is a letter's

void describeSpace(unsigned order, Description& text) {
  std::snprintf(text, sizeof text, "%s", order == kUndefinedOrder ? "undefined ordering indicator" : "space");
}

void describeSymbol(unsigned order, Description& text) {
  const char* name = symbolOf(order).name;
  std::snprintf(text, sizeof text, "symbol %s", name == nullptr ? "" : name);
}

void describeDigit(unsigned order, Description& text) {
  const Digit digit = digitOf(order);
  std::snprintf(text, sizeof text, "digit %d%s", static_cast<int>(digit.value),
                digit.expand != 0 ? " with expand" : "");
}

void describeLetter(unsigned order, Description& text) {
  const Letter letter = letterOf(order);
  std::snprintf(text, sizeof text, "%s letter %c%s%s%s", letter.lower ? "lower" : "upper", letter.character,
                letter.diacritic != 0 ? " with " : "",
                letter.diacritic < kNamedDiacritics ? kDiacriticNames[letter.diacritic] : "",
                letter.extension != 0 ? " with extension" : "");
}

// The character from 128 on of code set 1 with that order, or the one given.
unsigned char accentedOr(unsigned char plain, unsigned order) {
  constexpr unsigned char kEnglish = 1;
  const unsigned short* orders = KtCodeSet::Get(1).Orders(KtUnicodeProps::CollationKind(kEnglish));
  for (unsigned ch = 128; ch < 256; ++ch) {
    if (orders[ch] == order) return static_cast<unsigned char>(ch);
  }
  return plain;
}

unsigned char letterChar(unsigned order, bool search) {
  const Letter letter = letterOf(order);
  const auto plain = static_cast<unsigned char>(letter.character);
  return search && letter.diacritic != 0 ? accentedOr(plain, order) : plain;
}

}  // namespace

int KtExtractSymbolFromOrder(unsigned short order, unsigned short& index) {
  if (order < kFirstSymbol || order >= kFirstDigit) return KtERR_BAD_CODESET;
  index = static_cast<unsigned short>(order - kFirstSymbol);
  return 0;
}

int KtExtractDigitFromOrder(unsigned short order, unsigned short& digit, unsigned short& expand) {
  if (order < kFirstDigit || order >= kFirstLetter) return KtERR_BAD_CODESET;
  const Digit parts = digitOf(order);
  digit = parts.value;
  expand = parts.expand;
  return 0;
}

int KtConvertOrderToString(unsigned short order, unsigned char kind, KtString& text) {
  Description words = "unknown";
  switch (classOf(order, kind)) {
    case OrderClass::kSpace: describeSpace(order, words); break;
    case OrderClass::kSymbol: describeSymbol(order, words); break;
    case OrderClass::kDigit: describeDigit(order, words); break;
    case OrderClass::kLetter: describeLetter(order, words); break;
    case OrderClass::kHan:
      std::snprintf(words, sizeof words, "HAN character 0x%04x\n", static_cast<unsigned>(order));
      break;
  }
  text = words;
  return 0;
}

int KtConvertOrderToChar(unsigned short order, unsigned char kind, unsigned char& ch, int search, const char** entry) {
  ch = kUnknownChar;
  switch (classOf(order, kind)) {
    case OrderClass::kSpace: ch = ' '; break;
    case OrderClass::kSymbol: ch = static_cast<unsigned char>(symbolOf(order).character); break;
    case OrderClass::kDigit: ch = static_cast<unsigned char>('0' + digitOf(order).value); break;
    case OrderClass::kLetter:
      ch = letterChar(order, search != 0);
      if (entry != nullptr) *entry = kt::kCharacterNames[ch];
      break;
    case OrderClass::kHan: ch = kHanChar; break;
  }
  return 0;
}
