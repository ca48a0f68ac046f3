// encode: texts to the bytes of a run in a disk format.
#include "cli.h"
#include "error.h"

namespace tool {
namespace {

struct Encode {
  CLI::Option* type;
  CLI::Option* values;
  CLI::Option* format;
  CLI::Option* each;
  ByteOutput output;
  ReadFlags read;

  explicit Encode(CLI::App& command)
      : type(addType(command)),
        values(addList(command, "VALUE", "texts of the values")->required()),
        format(addFormat(command)),
        each(addFlag(command, "--each", "one line a value, each as a run of its own")),
        output(command),
        read(command) {}

  void run() const {
    const Type which = parseType(text(*type, ""));
    const ReadOptions options = read.options();
    const unsigned char code = parseFormat(text(*format, "little"));
    const Values run = Reader(which, options).readAll(texts(*values));
    if (!options.lenient) requireKept(which, run, code);
    if (each->count() > 0) return printEach(run, code);
    output.write(stored(run.id(), run.at(0), code, run.count()));
  }

  void printEach(const Values& run, unsigned char code) const {
    if (output.isRaw()) throw Error("--each prints lines of hexadecimal text: not --raw or --out");
    for (unsigned long i = 0; i < run.count(); ++i) printLine(toHex(stored(run.id(), run.at(i), code, 1)));
  }
};

const char kEncodeExamples[] =
    "Examples:\n"
    "  kttm encode short 1 -2                   # 0100feff\n"
    "  kttm encode int 258 -1 --format big --each\n"
    "                                           # 00000102\n"
    "                                           # ffffffff\n"
    "  kttm encode KtString ab --language german\n"
    "                                           # 06000102616200ff";

}  // namespace

void addEncode(CLI::App& app) {
  addCommand<Encode>(app, "encode", "Turns texts into the bytes that are stored", kEncodeExamples);
}

}  // namespace tool
