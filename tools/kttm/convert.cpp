// convert: text from one code set to another.
#include "cli.h"
#include "error.h"

#include <cstddef>
#include <cstdio>

namespace tool {
namespace {

using Characters = std::vector<unsigned short>;

// 16-bit characters stand most significant byte first, as their numbers are written.
Characters unpacked(const Bytes& bytes, const KtCodeSet& set) {
  const std::size_t size = set.CharSize();
  if (bytes.size() % size != 0) throw Error("an odd number of bytes: the last 16-bit character is cut in half");
  Characters characters;
  for (std::size_t i = 0; i < bytes.size(); i += size) {
    const unsigned high = size == 2 ? bytes[i] * 256U : 0U;
    characters.push_back(static_cast<unsigned short>(high + bytes[i + size - 1]));
  }
  return characters;
}

Bytes packed(const Characters& characters, const KtCodeSet& set) {
  Bytes bytes;
  for (const unsigned short character : characters) {
    if (set.CharSize() == 2) bytes.push_back(static_cast<unsigned char>(character >> 8U));
    bytes.push_back(static_cast<unsigned char>(character & 0xFFU));
  }
  return bytes;
}

struct Convert {
  ByteInput input;
  CLI::Option* from;
  CLI::Option* to;
  CLI::Option* fromText;
  CLI::Option* toText;
  CLI::Option* lossy;
  ByteOutput output;

  explicit Convert(CLI::App& command)
      : input(command, "DATA", "the characters, in hexadecimal (default: such text from standard input)"),
        from(addOption(command, "--from SET",
                       "code set of the input, by name or number (unicode: 16 bits, most significant byte first)")),
        to(addOption(command, "--to SET", "code set of the output")),
        fromText(addFlag(command, "--text",
                         "DATA, standard input or the file of --in is terminal text, put into the --from set first")),
        toText(
            addFlag(command, "--print",
                    "print terminal text instead of hexadecimal; with --raw or --out without a line end of its own")),
        lossy(addFlag(command, "--lossy", "replace characters that a set lacks by 1a and tell how many they were")),
        output(command) {
    from->required();
    to->required();
    fromText->excludes(input.hexFile());
  }

  // Unicode characters to `target`; counts what it lacks, or throws where nothing may be lost.
  Characters mapped(const Characters& unicode, const KtCodeSet& target, unsigned long& lost) const {
    Characters result;
    for (std::size_t i = 0; i < unicode.size(); ++i) {
      result.push_back(target.FromUnicode(unicode[i]));
      if (result.back() != KtCodeSet::kSubstitute || unicode[i] == KtCodeSet::kSubstitute) continue;
      ++lost;
      if (lossy->count() > 0) continue;
      throw Error(codePoint(unicode[i]) + ", character " + std::to_string(i + 1) + ", is not in the code set " +
                  codeSetTitle(target.Code()) + " (--lossy replaces it)");
    }
    return result;
  }

  static Characters toUnicode(Characters characters, const KtCodeSet& set) {
    for (unsigned short& character : characters) character = set.ToUnicode(character);
    return characters;
  }

  void print(const std::string& result) const {
    if (output.isRaw()) return output.writeRaw({result.begin(), result.end()});
    printLine(result);
  }

  void run() const {
    const KtCodeSet& source = KtCodeSet::Get(parseCodeSet(text(*from, "")));
    const KtCodeSet& target = KtCodeSet::Get(parseCodeSet(text(*to, "")));
    unsigned long lost = 0;
    const Characters read =
        fromText->count() > 0 ? mapped(charactersOf(input.text()), source, lost) : unpacked(input.bytes(), source);
    const Characters written = mapped(toUnicode(read, source), target, lost);
    if (toText->count() > 0) {
      print(toTerminal(toUnicode(written, target)));
    } else {
      output.write(packed(written, target));
    }
    if (lossy->count() > 0) std::fprintf(stderr, "kttm: %lu characters replaced\n", lost);
  }
};

const char kConvertExamples[] =
    "Examples:\n"
    "  kttm convert --from windows-1252 --to unicode 80e9\n"
    "                                           # 20ac00e9\n"
    "  kttm convert --from unicode --to iso-8859-5 --text Мир\n"
    "                                           # bcd8e0\n"
    "A file:\n"
    "  kttm convert --from iso-8859-1 --to unicode --in FILE --out FILE";

}  // namespace

void addConvert(CLI::App& app) {
  addCommand<Convert>(app, "convert", "Converts characters from one code set to another", kConvertExamples);
}

}  // namespace tool
