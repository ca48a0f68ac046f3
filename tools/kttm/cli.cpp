#include "cli.h"

#include <algorithm>
#include <cstddef>
#include <iostream>

namespace tool {
namespace {

constexpr char kGuard = '\x01';

std::string unguarded(const std::string& argument) {
  return !argument.empty() && argument[0] == kGuard ? argument.substr(1) : argument;
}

}  // namespace

std::vector<std::string> guarded(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  bool plain = false;  // behind "--" nothing is an option
  for (const std::string& argument : arguments) {
    const bool listLike = argument.size() > 1 && argument.front() == '[' && argument.back() == ']';
    const bool special = plain || listLike || (!argument.empty() && argument[0] == kGuard);
    if (!plain && argument == "--") {
      plain = true;
    } else {
      result.push_back(special ? kGuard + argument : argument);
    }
  }
  return result;
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
      convert_(addFlag(command, "--convert", "read the type's lossless conversion text (dates: day numbers) instead")),
      lenient_(addFlag(command, "--lenient", "take whatever the type makes of a text, sense or not")),
      text_(command) {}

ReadOptions ReadFlags::options() const {
  return {.format = text(*format_, ""),
          .converted = convert_->count() > 0,
          .lenient = lenient_->count() > 0,
          .text = text_.options()};
}

CLI::Option* addType(CLI::App& command) {
  return addOption(command, "TYPE", "type, by name or id (kttm types lists them)")->required();
}

CLI::Option* addFormat(CLI::App& command) {
  return addOption(command, "--format CODE",
                   "disk format: 0 to 15, or little, big, short-int, memory, host (default: little)");
}

CLI::Option* addOperator(CLI::App& command) {
  return addOption(command, "--operator WORDS",
                   "how texts compare: a number, or words joined by commas out of nocase, nodiacritics, nospaces, "
                   "nosymbols, binary, wildcards");
}

void printLine(const std::string& line) { std::cout << line << '\n'; }

}  // namespace tool
