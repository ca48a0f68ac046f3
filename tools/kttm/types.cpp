// types: the type table, as a list, as the matrix of what each type offers, or one type in words and functions.
#include "cli.h"
#include "error.h"
#include "offers.h"

#include <algorithm>
#include <cstring>

namespace tool {
namespace {

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

std::string rightAligned(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

constexpr std::size_t kIdWidth = 2;
constexpr std::size_t kNameWidth = 15;

std::string idAndName(const Type& type) {
  return rightAligned(std::to_string(type.id), kIdWidth) + "  " + padded(type.name, kNameWidth);
}

unsigned memLenOf(const Type& type) { return manager().MemLenGet(type.id, 1); }

void printList() {
  printLine("id  name             bytes  length    null  format");
  for (int id = 0; id < KtTYPE_COUNT; ++id) {
    const Type type = typeOf(id);
    printLine(idAndName(type) + "  " + rightAligned(std::to_string(memLenOf(type)), 5) + "  " +
              (type.fixed ? "fixed   " : "variable") + "  " + (type.hasNull ? "yes " : "-   ") + "  \"" + type.format +
              '"');
  }
}

void printMatrix() {
  for (int id = 0; id < KtTYPE_COUNT; ++id) {
    const Type type = typeOf(id);
    const std::vector<Offer> offers = offersOf(type);
    std::string head = "id  " + padded("name", kNameWidth);
    std::string line = idAndName(type);
    for (const Offer& offer : offers) {
      head += "  " + std::string(offer.operation);
      line += "  " + padded(offer.offered ? "yes" : "-", std::strlen(offer.operation));
    }
    if (id == 0) printLine(head);
    printLine(line.substr(0, line.find_last_not_of(' ') + 1));
  }
}

std::string counted(unsigned long n, const std::string& thing) {
  return std::to_string(n) + " " + thing + (n == 1 ? "" : "s");
}

std::string diskSize(const Type& type) {
  if (!type.hasValues) return "nothing";
  if (!type.fixed) return "depends on the value";
  constexpr unsigned char kShortIntFormat = 4;
  const Values value(type, 1);
  const unsigned long usual = storedSize(type.id, value.at(0), 0, 1);
  const unsigned long narrow = storedSize(type.id, value.at(0), kShortIntFormat, 1);
  return counted(usual, "byte") + (narrow == usual ? "" : ", " + std::to_string(narrow) + " in the short-int format");
}

std::string nullText(const Type& type) {
  if (!type.hasNull) return "none";
  return "yes, written " + toTerminal(KtTypeMgr::GetNullPrintString());
}

std::string answerOf(const Offer& offer) {
  if (!offer.offered) return std::string("not offered: ") + offer.reason;
  return offer.function == nullptr ? "inside" : offer.function;
}

void printFunctions(const Type& type) {
  constexpr std::size_t kOperationWidth = 20;
  printLine(std::string("  source        ") + sourceOf(type));
  printLine("  functions     programs can call those that have a name; the others are inside the library");
  for (const Offer& offer : offersOf(type))
    printLine("    " + padded(offer.operation, kOperationWidth) + answerOf(offer));
}

void printWords(const Type& type) {
  printLine(type.name + ", type id " + std::to_string(type.id));
  printLine("  in memory     " + counted(memLenOf(type), "byte") +
            (type.fixed ? ", fixed length" : ": a handle, the length varies"));
  printLine("  on disk       " + diskSize(type));
  printLine("  null value    " + nullText(type));
  printLine("  format        \"" + type.format + '"');
  printFunctions(type);
}

struct Types {
  CLI::Option* type;
  CLI::Option* matrix;

  explicit Types(CLI::App& command)
      : type(addOption(command, "TYPE", "tell about this type only, by name or id")),
        matrix(addFlag(command, "--matrix", "which operations each type offers; - is not offered")) {
    matrix->excludes(type);
  }

  void run() const {
    if (type->count() > 0) return printWords(parseType(text(*type, "")));
    if (matrix->count() > 0) return printMatrix();
    printList();
  }
};

const char kTypesExamples[] =
    "Examples: one type in words and the functions of its row, by name and by id; and which operations each type "
    "offers\n"
    "  kttm types KtDate\n"
    "  kttm types 12\n"
    "  kttm types --matrix";

}  // namespace

void addTypes(CLI::App& app) { addCommand<Types>(app, "types", "Lists the types and what they offer", kTypesExamples); }

}  // namespace tool
