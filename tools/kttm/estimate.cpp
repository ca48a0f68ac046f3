// estimate: the share of an index that a comparison selects, and the keys that bound the scan.
#include "cli.h"
#include "error.h"
#include "offers.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace tool {
namespace {

struct Comparison {
  const char* text;
  unsigned short flags;
};
constexpr Comparison kComparisons[] = {
    {"=", KtBOUND_EQUAL},
    {"<", KtBOUND_LESS},
    {"<=", KtBOUND_LESS | KtBOUND_EQUAL},
    {">", KtBOUND_GREATER},
    {">=", KtBOUND_GREATER | KtBOUND_EQUAL},
    {"!=", KtBOUND_LESS | KtBOUND_GREATER},
};

unsigned short parseComparison(const std::string& text) {
  for (const Comparison& comparison : kComparisons) {
    if (text == comparison.text) return comparison.flags;
  }
  throw Error("unknown comparison " + quoted(text) + "; known are =, <, <=, >, >= and !=");
}

void requireEstimate(const Type& type) {
  for (const Offer& offer : offersOf(type)) {
    if (offer.offered || offer.operation != std::string("EvalAndBound")) continue;
    throw Error(type.name + " offers no estimate: " + offer.reason);
  }
}

// The value's bytes in an index, at most as many as a key has there.
Bytes indexKey(const Values& value, unsigned char form) {
  const auto keyForm = static_cast<unsigned char>(form | kIndexKey);
  const unsigned long size = storedSize(value.id(), value.at(0), keyForm, 1);
  Bytes key(std::min<unsigned long>(size, KtINDEX_MAX_KEYLEN));
  key.resize(manager().Translate(value.id(), key.data(), keyForm, key.size(), value.at(0), kMemoryForm,
                                 manager().MemLenGet(value.id(), 1), 1));
  return key;
}

// The bounds that an estimate set.
struct Bounds : KtIdxBounds {
  Bounds() = default;
  Bounds(const Bounds&) = delete;
  Bounds& operator=(const Bounds&) = delete;
  ~Bounds() { KtFreeIdxBounds(this); }
};

std::string shortest(float number) {
  char digits[32];
  return std::string(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

struct Estimate {
  CLI::Option* type;
  CLI::Option* key;
  CLI::Option* comparison;
  CLI::Option* low;
  CLI::Option* high;
  CLI::Option* format;
  ReadFlags read;

  explicit Estimate(CLI::App& command)
      : type(addType(command)),
        key(addList(command, "KEY", "value to compare with; several are one key of as many elements")->required()),
        comparison(addOption(command, "--op OP", "how keys of the index compare: =, <, <=, >, >= or != (default: =)")),
        low(addOption(command, "--low VALUE", "lowest key of the index")),
        high(addOption(command, "--high VALUE", "highest key of the index")),
        format(addFormat(command)),
        read(command) {}

  // Empty unless both ends are given.
  std::vector<Bytes> range(const Type& which, const Reader& reader, unsigned char form) const {
    if (low->count() != high->count()) throw Error("a range has a lowest and a highest key");
    std::vector<Bytes> ends;
    if (low->count() == 0) return ends;
    for (const CLI::Option* end : {low, high}) {
      ends.push_back(indexKey(readKept(which, reader, {text(*end, "")}, form), form));
    }
    return ends;
  }

  Values readKept(const Type& which, const Reader& reader, const std::vector<std::string>& from,
                  unsigned char form) const {
    Values values = reader.readAll(from);
    if (!read.options().lenient) requireKept(which, values, form);
    return values;
  }

  // A key of fixed size is stored values, as many as it holds whole; others only the index can read.
  static std::string shown(const Type& which, const Reader& reader, Bytes bytes, unsigned char form) {
    std::string line = toHex(bytes);
    if (!which.fixed) return line;
    const unsigned long size = manager().DiskLenGet(which.id, nullptr, form, 1, kMemoryForm);
    const Values values(which, bytes.size() / size);
    manager().Load(which.id, values.at(0), bytes.data(), form, values.count());
    for (unsigned long i = 0; i < values.count(); ++i) line += ' ' + visible(reader.shown(values.at(i)));
    return line;
  }

  // Without a range most types answer 0, which then says nothing.
  static void printShare(float share, bool known) {
    printLine("selects " + (known || share > 0 ? shortest(share) : "unknown without --low and --high"));
  }

  void run() const {
    const Type which = parseType(text(*type, ""));
    const unsigned char form = parseFormat(text(*format, "little"));
    const Reader reader(which, read.options());
    requireEstimate(which);
    const Values keys = readKept(which, reader, texts(*key), form);
    Bytes stored = tool::stored(which.id, keys.at(0), form, keys.count());
    std::vector<Bytes> ends = range(which, reader, form);
    KtIdxBounds known;
    if (!ends.empty()) {
      known = {ends[0].data(), ends[1].data(), static_cast<unsigned char>(ends[0].size()),
               static_cast<unsigned char>(ends[1].size())};
    }
    unsigned short flags = parseComparison(text(*comparison, "="));
    Bounds bounds;
    const float share = manager().EvalAndBound(which.id, ends.empty() ? nullptr : &known, flags, stored.data(), form,
                                               keys.count(), &bounds, nullptr);
    const auto printBound = [&](const char* name, const unsigned char* bytes, std::size_t length) {
      printLine(name + (bytes == nullptr ? "none" : shown(which, reader, Bytes(bytes, bytes + length), form)));
    };
    printShare(share, !ends.empty());
    printBound("from    ", bounds.lowKey, bounds.lowKeyLength);
    printBound("to      ", bounds.highKey, bounds.highKeyLength);
  }
};

const char kEstimateExamples[] =
    "Examples: a scan that is bounded on one side, and a key of two elements\n"
    "  kttm estimate long 10 --op '<' --low 0 --high 99 --format big\n"
    "                                           # selects 0.1\n"
    "                                           # from    none\n"
    "                                           # to      0000000a 10\n"
    "  kttm estimate char A B --low A --high Z  # selects 0.03846154\n"
    "                                           # from    4142 A B\n"
    "                                           # to      4142 A B";

}  // namespace

void addEstimate(CLI::App& app) {
  addCommand<Estimate>(app, "estimate",
                       "Estimates the share of an index that a comparison selects, and bounds the scan",
                       kEstimateExamples);
}

}  // namespace tool
