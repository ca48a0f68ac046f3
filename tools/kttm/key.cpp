// key: the index keys of texts, which sort as bytes from offset 4 on.
#include "cli.h"

namespace tool {
namespace {

constexpr unsigned long kSmallestKey = 6;
constexpr unsigned long kLargestKey = 65537;

struct Key {
  CLI::Option* given;
  CLI::Option* size;
  CLI::Option* format;
  TextFlags flags;

  explicit Key(CLI::App& command)
      : given(addList(command, "TEXT", "the texts; {NULL} is the null value")->required()),
        size(addOption(command, "--size BYTES", "cut keys that are longer (default: as long as the texts need)")),
        format(addFormat(command)),
        flags(command) {}

  unsigned long roomOf(void* value, unsigned char form) const {
    if (size->count() == 0) return storedSize(KT_ID_KtString, value, form, 1);
    return parseNumber(text(*size, ""), kSmallestKey, kLargestKey, "size of a key");
  }

  void run() const {
    const Reader reader(typeOf(KT_ID_KtString),
                        {.format = std::nullopt, .converted = false, .lenient = false, .text = flags.options()});
    const Values values = reader.readAll(texts(*given));
    const auto form = static_cast<unsigned char>(kIndexKey | parseFormat(text(*format, "little")));
    for (unsigned long i = 0; i < values.count(); ++i) {
      Bytes bytes(roomOf(values.at(i), form));
      bytes.resize(manager().Translate(KT_ID_KtString, bytes.data(), form, bytes.size(), values.at(i), kMemoryForm,
                                       sizeof(KtString), 1));
      printLine(toHex(bytes));
    }
  }
};

const char kKeyExamples[] =
    "Examples: whole keys, and a key that is cut between two characters\n"
    "  kttm key aB --format big                 # 000c010101400c200140100000ff\n"
    "  kttm key aB --format big --size 10       # 0008010101400c20ffff";

}  // namespace

void addKey(CLI::App& app) {
  addCommand<Key>(app, "key", "Prints the index key of each text, in hexadecimal", kKeyExamples);
}

}  // namespace tool
