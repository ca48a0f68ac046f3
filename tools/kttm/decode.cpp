// decode: the bytes of runs to texts.
#include "cli.h"
#include "decode_run.h"

#include <cstdint>
#include <limits>
#include <optional>

namespace tool {
namespace {

struct Decode {
  CLI::Option* type;
  ByteInput input;
  CLI::Option* format;
  CLI::Option* count;
  CLI::Option* printFormat;
  CLI::Option* convert;
  CLI::Option* raw;

  explicit Decode(CLI::App& command)
      : type(addType(command)),
        input(command, "HEX", "the bytes, in hexadecimal (default: such text from standard input)"),
        format(addFormat(command)),
        count(addOption(command, "--count N",
                        "decode that many values as one run and leave what follows (default: all there are)")),
        printFormat(addOption(command, "--print-format FORMAT", "format of the texts (default: the type's own)")),
        convert(addFlag(
            command, "--convert",
            "print the type's conversion text: of KtDate, KtTime and KtDateTime numbers of days and seconds, of "
            "unsigned numbers the signed ones of their bits, of a double 15 digits, which may not be all "
            "(--print-format 'ldexp(%.17g,%d)' prints all)")),
        raw(addFlag(command, "--raw", "print control characters as they are, not as \\n, \\x1b or \\u009b")) {}

  // The most values that are decoded; none: all.
  std::optional<unsigned long> wanted() const {
    if (count->count() == 0) return std::nullopt;
    return parseNumber(text(*count, ""), 0, std::numeric_limits<std::uint32_t>::max(), "count of values");
  }

  void run() const {
    const Type which = parseType(text(*type, ""));
    const RunDecoder decoder(which, parseFormat(text(*format, "little")));
    const std::string form = formatFrom(text(*printFormat, ""));
    const char* const printForm = printFormat->count() > 0 ? form.c_str() : nullptr;
    const auto print = [&](const Values& values) {
      for (unsigned long i = 0; i < values.count(); ++i) {
        const std::string line = printed(which, values.at(i), printForm, convert->count() > 0);
        printLine(raw->count() > 0 ? line : visible(line));
      }
    };
    const std::optional<unsigned long> most = wanted();
    const Bytes bytes = input.bytes();
    if (!most) return decoder.decodeAll(bytes, print);
    if (*most > 0) print(decoder.decodeFirst(bytes, *most));
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
