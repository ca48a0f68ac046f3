#include "cli.h"

#include "files.h"

#include <algorithm>
#include <cstddef>
#include <iostream>

namespace tool {
namespace {

constexpr char kGuard = '\x01';

// What the parser would take for something else than a text. It knows "-5" for a number, but not "-.5".
bool needsGuard(const std::string& argument) {
  const bool listLike = argument.size() > 1 && argument.front() == '[' && argument.back() == ']';
  const bool fraction = argument.size() > 2 && argument.compare(0, 2, "-.") == 0;
  return listLike || fraction || (!argument.empty() && argument[0] == kGuard);
}

}  // namespace

std::vector<std::string> guarded(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  bool plain = false;  // behind "--" nothing is an option
  for (const std::string& argument : arguments) {
    if (!plain && argument == "--") {
      plain = true;
    } else {
      result.push_back(plain || needsGuard(argument) ? kGuard + argument : argument);
    }
  }
  return result;
}

std::string unguarded(const std::string& argument) {
  return !argument.empty() && argument[0] == kGuard ? argument.substr(1) : argument;
}

std::vector<std::string> texts(const CLI::Option& option) {
  std::vector<std::string> result = option.results();
  for (std::string& item : result) item = unguarded(item);
  return result;
}

std::string text(const CLI::Option& option, const char* fallback) {
  return option.count() == 0 ? fallback : unguarded(option.results().back());
}

CLI::Option* addOption(CLI::App& command, const char* name, const char* description) {
  const std::string words(name);
  const std::size_t blank = std::min(words.find(' '), words.size());
  CLI::Option* option = command.add_option(words.substr(0, blank))->description(description);
  if (blank < words.size()) option->type_name(words.substr(blank + 1));
  return option;
}

CLI::Option* addList(CLI::App& command, const char* name, const char* description) {
  return addOption(command, name, description)->expected(0, -1)->allow_extra_args();
}

CLI::Option* addFlag(CLI::App& command, const char* name, const char* description) {
  return command.add_flag(name)->description(description);
}

TextFlags::TextFlags(CLI::App& command)
    : language_(addOption(command, "--language NAME", "language of texts, by name or number (default: english)")),
      codeSet_(
          addOption(command, "--codeset NAME",
                    "code set of texts, by name or number (default: iso-8859-1 where the text fits, else unicode)")) {}

TextOptions TextFlags::options() const {
  TextOptions options;
  if (codeSet_->count() > 0) options.codeSet = parseCodeSet(text(*codeSet_, ""));
  if (language_->count() > 0) options.language = parseLanguage(text(*language_, ""));
  return options;
}

ReadFlags::ReadFlags(CLI::App& command)
    : format_(addOption(command, "--scan-format FORMAT", "format of the texts (default: the type's own)")),
      convert_(addFlag(command, "--convert", "read the type's conversion text instead (see kttm decode --help)")),
      lenient_(
          addFlag(command, "--lenient", "take whatever the type and the disk format make of a text, sense or not")),
      text_(command) {}

ReadOptions ReadFlags::options() const {
  std::optional<std::string> format;
  if (format_->count() > 0) format = text(*format_, "");
  return {
      .format = format, .converted = convert_->count() > 0, .lenient = lenient_->count() > 0, .text = text_.options()};
}

CLI::Option* addType(CLI::App& command) {
  return addOption(command, "TYPE", "type, by name or id (kttm types lists them)")->required();
}

CLI::Option* addFormat(CLI::App& command) {
  return addOption(command, "--format CODE",
                   "disk format: 0 to 15, or little, big, short-int, memory, host (default: little)");
}

CLI::Option* addOperator(CLI::App& command, const char* words) {
  const std::string about("how texts compare: a number, or words joined by commas out of ");
  return addOption(command, "--operator WORDS", (about + words).c_str());
}

ByteInput::ByteInput(CLI::App& command, const char* name, const char* description)
    : given_(addList(command, name, description)),
      hex_(addOption(command, "--hex FILE", "file of hexadecimal text; - is standard input")),
      in_(addOption(command, "--in FILE", "file of raw bytes; - is standard input")) {
  hex_->excludes(given_);
  in_->excludes(given_)->excludes(hex_);
}

std::string ByteInput::joined(const char* between) const {
  std::string all;
  for (const std::string& part : texts(*given_)) all += (all.empty() ? "" : between) + part;
  return all;
}

Bytes ByteInput::bytes() const {
  if (in_->count() > 0) return readBytes(tool::text(*in_, ""));
  return fromHex(given_->count() > 0 ? joined("") : readFile(tool::text(*hex_, "-")));
}

std::string ByteInput::text() const { return given_->count() > 0 ? joined(" ") : readFile(tool::text(*in_, "-")); }

ByteOutput::ByteOutput(CLI::App& command)
    : raw_(addFlag(command, "--raw", "write bytes instead of hexadecimal text")),
      out_(addOption(command, "--out FILE", "write the bytes to this file")) {}

void ByteOutput::writeRaw(const Bytes& bytes) const {
  if (out_->count() > 0) return writeFile(text(*out_, ""), bytes);
  writeOutput(bytes);
}

void ByteOutput::write(const Bytes& bytes) const {
  if (isRaw()) return writeRaw(bytes);
  printLine(toHex(bytes));
}

void printLine(const std::string& line) { std::cout << line << '\n'; }

}  // namespace tool
