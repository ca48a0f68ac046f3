// sort: lines in the order of a type.
#include "cli.h"
#include "error.h"
#include "files.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace tool {
namespace {

using Indexes = std::vector<unsigned long>;

// Stable, and well-behaved whatever the comparison answers: every merge only ever moves forward through its two halves.
template <class Less>
void mergeSort(Indexes& items, Less less) {
  Indexes merged(items.size());
  const auto at = [&](std::size_t i) { return items.begin() + static_cast<std::ptrdiff_t>(std::min(i, items.size())); };
  for (std::size_t width = 1; width < items.size(); width *= 2) {
    for (std::size_t i = 0; i < items.size(); i += 2 * width) {
      std::merge(at(i), at(i + width), at(i + width), at(i + 2 * width),
                 merged.begin() + static_cast<std::ptrdiff_t>(i), less);
    }
    items.swap(merged);
  }
}

constexpr unsigned char kDisk = 2;

// Whether a field of -1 equals any other in memory, as in dates; as they are stored, such values have one order.
bool hasWildFields(const Type& type, unsigned short op) {
  if (!type.fixed) return false;
  const Values values(type, 2);
  Bytes wild(storedSize(type.id, values.at(0), kDisk, 1), 0xFF);
  manager().Load(type.id, values.at(0), wild.data(), kDisk, 1);
  for (std::size_t i = 0; i < wild.size(); ++i) {
    Bytes other = wild;
    other[i] = 0;
    manager().Load(type.id, values.at(1), other.data(), kDisk, 1);
    const bool isSame = compared(type.id, values.at(0), values.at(1), op) == 0;
    if (isSame && compared(type.id, wild.data(), other.data(), op, kDisk) != 0) return true;
  }
  return false;
}

// -1, 0 or 1, of values in memory.
class ValueOrder {
public:
  ValueOrder(const Type& type, unsigned short op) : id_(type.id), op_(op), asStored_(hasWildFields(type, op)) {}
  int operator()(void* a, void* b) const {
    if (!asStored_) return compared(id_, a, b, op_);
    Bytes first = stored(id_, a, kDisk, 1);
    Bytes second = stored(id_, b, kDisk, 1);
    return compared(id_, first.data(), second.data(), op_, kDisk);
  }

private:
  char id_;
  unsigned short op_;
  bool asStored_;
};

// Values that have no place in an order (a NaN) are equal to everything, also to two values that differ.
class Placeable {
public:
  Placeable(const Type& type, const ValueOrder& order)
      : order_(order), low_(Values::converted(type, KtString("0"))), high_(Values::converted(type, KtString("1"))) {}
  bool operator()(void* value) const {
    return order_(low_.at(0), high_.at(0)) == 0 || order_(value, low_.at(0)) != 0 || order_(value, high_.at(0)) != 0;
  }

private:
  ValueOrder order_;
  Values low_;
  Values high_;
};

struct Sort {
  CLI::Option* type;
  CLI::Option* file;
  CLI::Option* op;
  CLI::Option* reverse;
  CLI::Option* unique;
  ReadFlags read;

  explicit Sort(CLI::App& command)
      : type(addType(command)),
        file(addOption(command, "FILE", "file of lines; - is standard input, which is the default")),
        op(addOperator(command)),
        reverse(addFlag(command, "--reverse", "greatest first; lines that are equal keep their order")),
        unique(addFlag(command, "--unique", "of lines that are equal, print the first only")),
        read(command) {}

  // Patterns have no place in an order: wildcards are off.
  unsigned short orderOperator() const {
    const unsigned bits = parseOperator(text(*op, "default"));
    if (text(*op, "").find("wildcards") != std::string::npos) throw Error("an order has no wildcards");
    return static_cast<unsigned short>(bits == KtCMP_DEFAULT ? KtCMP_NO_WILDCARDS : bits | KtCMP_NO_WILDCARDS);
  }

  static Values readLines(const Type& which, const std::vector<std::string>& lines, const Reader& reader,
                          const ValueOrder& order) {
    const Placeable placeable(which, order);
    Values values(which, lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const std::string where = "line " + std::to_string(i + 1) + ": ";
      try {
        reader.read(lines[i], values.at(i));
      } catch (const Error& error) {
        throw Error(where + error.what());
      }
      if (!placeable(values.at(i)))
        throw Error(where + quoted(lines[i]) + " has no place in the order of " + which.name);
    }
    return values;
  }

  void run() const {
    const Type which = parseType(text(*type, ""));
    const Reader reader(which, read.options());
    const ValueOrder compare(which, orderOperator());
    const std::vector<std::string> lines = splitLines(readFile(text(*file, "-")));
    if (lines.empty()) return;
    const Values values = readLines(which, lines, reader, compare);
    const int before = reverse->count() > 0 ? 1 : -1;
    const auto order = [&](unsigned long a, unsigned long b) { return compare(values.at(a), values.at(b)); };
    Indexes indexes(lines.size());
    std::iota(indexes.begin(), indexes.end(), 0UL);
    mergeSort(indexes, [&](unsigned long a, unsigned long b) { return order(a, b) == before; });
    const auto same = [&](unsigned long a, unsigned long b) { return order(a, b) == 0; };
    if (unique->count() > 0) indexes.erase(std::unique(indexes.begin(), indexes.end(), same), indexes.end());
    for (const unsigned long i : indexes) printLine(lines[i]);
  }
};

const char kSortExamples[] =
    "Examples:\n"
    "  printf '10\\n9\\n' | kttm sort int       # 9\n"
    "                                           # 10\n"
    "  printf 'ä\\nz\\n' | kttm sort KtString --language swedish\n"
    "                                           # z\n"
    "                                           # ä";

}  // namespace

void addSort(CLI::App& app) { addCommand<Sort>(app, "sort", "Sorts lines in the order of a type", kSortExamples); }

}  // namespace tool
