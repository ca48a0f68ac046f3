// compare and hash: what the type makes of values in memory form.
#include "cli.h"
#include "error.h"

#include <cstdio>

namespace tool {
namespace {

struct Compare {
  CLI::Option* type;
  CLI::Option* first;
  CLI::Option* second;
  CLI::Option* op;
  ReadFlags read;

  explicit Compare(CLI::App& command)
      : type(addType(command)),
        first(addOption(command, "A", "first value")->required()),
        second(addOption(command, "B", "second value; the pattern, when the operator says wildcards")->required()),
        op(addOperator(command, "nocase, nodiacritics, nospaces, nosymbols, binary or wildcards")),
        read(command) {}

  void run() const {
    static const char* const words[] = {"less (-1)", "equal (0)", "greater (1)"};
    const Reader reader(parseType(text(*type, "")), read.options());
    const unsigned short bits = parseOperator(text(*op, "default"));
    const Values pair = reader.readAll({text(*first, ""), text(*second, "")});
    printLine(words[1 + compared(pair.id(), pair.at(0), pair.at(1), bits)]);
  }
};

const char kCompareExamples[] =
    "Examples:\n"
    "  kttm compare KtDWord 4294967295 1        # greater (1)\n"
    "  kttm compare KtString Ähre ahre --operator nocase,nodiacritics\n"
    "                                           # equal (0)";

struct Hash {
  CLI::Option* type;
  CLI::Option* values;
  CLI::Option* asRun;
  ReadFlags read;

  explicit Hash(CLI::App& command)
      : type(addType(command)),
        values(addList(command, "VALUE", "texts of the values")->required()),
        asRun(addFlag(command, "--run", "one hash of all values as a run")),
        read(command) {}

  static void print(const Values& values, unsigned long index, unsigned long count) {
    int status = 0;
    const unsigned long hash = manager().Hash(values.id(), 0, values.at(index), count, kMemoryForm, status);
    char line[16];
    std::snprintf(line, sizeof line, "%08lx", hash & 0xFFFFFFFFUL);
    printLine(line);
  }

  void run() const {
    const Reader reader(parseType(text(*type, "")), read.options());
    const Values all = reader.readAll(texts(*values));
    if (asRun->count() > 0) return print(all, 0, all.count());
    for (unsigned long i = 0; i < all.count(); ++i) print(all, i, 1);
  }
};

const char kHashExamples[] =
    "Examples:\n"
    "  kttm hash long 1 0                       # 41c64e6d\n"
    "                                           # 00000000\n"
    "  kttm hash long 1 1 --run                 # 00000000";

}  // namespace

void addCompare(CLI::App& app) {
  addCommand<Compare>(app, "compare", "Tells which of two values comes first", kCompareExamples);
}

void addHash(CLI::App& app) {
  addCommand<Hash>(app, "hash", "Prints the 32-bit hash of each value, in hexadecimal", kHashExamples);
}

}  // namespace tool
