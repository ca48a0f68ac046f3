// decode: the bytes of runs to texts.
#include "cli.h"
#include "decode_run.h"
#include "error.h"
#include "files.h"

#include <limits>

namespace tool {
namespace {

struct Decode {
  CLI::Option* type;
  CLI::Option* given;
  CLI::Option* hex;
  CLI::Option* in;
  CLI::Option* format;
  CLI::Option* count;
  CLI::Option* printFormat;
  CLI::Option* convert;

  explicit Decode(CLI::App& command)
      : type(addType(command)),
        given(addList(command, "HEX", "the bytes, in hexadecimal (default: such text from standard input)")),
        hex(addOption(command, "--hex FILE", "file of hexadecimal text; - is standard input")),
        in(addOption(command, "--in FILE", "file of raw bytes; - is standard input")),
        format(addFormat(command)),
        count(addOption(command, "--count N",
                        "decode that many values as one run and leave what follows (default: all there are)")),
        printFormat(addOption(command, "--print-format FORMAT", "format of the texts (default: the type's own)")),
        convert(addFlag(command, "--convert", "print the type's lossless conversion text (dates: day numbers)")) {
    hex->excludes(given);
    in->excludes(given)->excludes(hex);
  }

  Bytes bytes() const {
    if (in->count() > 0) return readBytes(text(*in, ""));
    if (given->count() == 0) return fromHex(readFile(text(*hex, "-")));
    std::string all;
    for (const std::string& part : texts(*given)) all += part;
    return fromHex(all);
  }

  void run() const {
    const Type which = parseType(text(*type, ""));
    const RunDecoder decoder(which, parseFormat(text(*format, "little")));
    const std::string form = text(*printFormat, "");
    const char* const printForm = printFormat->count() > 0 ? form.c_str() : nullptr;
    const auto print = [&](const Values& values) {
      for (unsigned long i = 0; i < values.count(); ++i) {
        printLine(printed(which, values.at(i), printForm, convert->count() > 0));
      }
    };
    const Bytes input = bytes();
    if (count->count() == 0) return decoder.decodeAll(input, print);
    const unsigned long wanted =
        parseNumber(text(*count, ""), std::numeric_limits<std::uint32_t>::max(), "count of values");
    if (wanted > 0) print(decoder.decodeFirst(input, wanted));
  }
};

const char kDecodeExamples[] =
    "Examples:\n"
    "  kttm decode KtWord 0100ffff              # 1\n"
    "                                           # 65535\n"
    "  kttm decode KtString 06000101616200ff    # ab\n"
    "Three values from the start of a file:\n"
    "  kttm decode long --in FILE --format big --count 3";

}  // namespace

void addDecode(CLI::App& app) {
  addCommand<Decode>(app, "decode", "Turns stored bytes into texts, one line a value", kDecodeExamples);
}

}  // namespace tool
