// order: the collation orders of a text, which is what comparisons, hashes and index keys see of it.
#include "cli.h"
#include "terminal.h"

#include <cstdio>

namespace tool {
namespace {

// The character itself where a terminal can show it, else a blank.
std::string shown(unsigned short character) {
  const bool control = character < 0x20 || (character >= 0x7F && character < 0xA0);
  const bool surrogate = character >= 0xD800 && character < 0xE000;
  return control || surrogate ? " " : toTerminal(std::vector<unsigned short>{character});
}

std::string inWords(unsigned short order, unsigned char kind) {
  KtString description;
  KtConvertOrderToString(order, kind, description);
  const std::string words = toTerminal(description);
  return words.substr(0, words.find_last_not_of(" \n") + 1);
}

std::string inHex(unsigned short order) {
  char text[8];
  std::snprintf(text, sizeof text, "%04x", static_cast<unsigned>(order));
  return text;
}

struct Order {
  CLI::Option* given;
  TextFlags flags;

  explicit Order(CLI::App& command) : given(addOption(command, "TEXT", "the text")->required()), flags(command) {}

  void run() const {
    const KtString string = fromTerminal(text(*given, ""), flags.options());
    KtStringIterator iterator(string.StrGet(), string.GetCodeSet(), string.GetLanguage());
    bool first = true;  // of its character
    for (;;) {
      const unsigned long position = iterator.Position();
      const unsigned short character = iterator.Get().Unicode();
      const unsigned short order = iterator.GetNextOrder();
      if (order == 0) return;
      printLine((first ? codePoint(character) : "      ") + "  " + inHex(order) + "  " +
                (first ? shown(character) : " ") + "  " + inWords(order, iterator.CollationKind()));
      first = iterator.Position() != position;
    }
  }
};

const char kOrderExamples[] =
    "Examples: character, order, and what the order says; a character may have more orders than one\n"
    "  kttm order Äb7                           # U+00C4  430c  Ä  upper letter A with diaeresis\n"
    "                                           # U+0062  5010  b  lower letter b\n"
    "                                           # U+0037  3f46  7  digit 7\n"
    "  kttm order ñ --language spanish          # U+00F1  52c3  ñ  lower letter n with tilde with extension";

}  // namespace

void addOrder(CLI::App& app) {
  addCommand<Order>(app, "order", "Shows the collation orders of a text, in hexadecimal and in words", kOrderExamples);
}

}  // namespace tool
