// kttm - looks into stored values: prints, encodes, decodes, compares, hashes, sorts, estimates and converts them, and
// shows how texts sort.
//
// Exit codes: 0 done, 2 a mistake in the arguments or the data, told on stderr as "kttm: ...".
#include "cli.h"
#include "error.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

namespace {

constexpr int kFailed = 2;

const char kAbout[] =
    "Looks into stored values of an object database, type by type.\n"
    "Types, formats, languages and code sets go by name or number. Texts are UTF-8. A value that begins with \"-\" and "
    "is "
    "no number stands behind \"--\".";

const char kExamples[] =
    "Examples:\n"
    "  kttm encode long 1 -2 --format big    # 00000001fffffffe\n"
    "  kttm decode long 2a000000             # 42\n"
    "`kttm COMMAND --help` shows more of each.";

std::string version() {
  const char* description = nullptr;
  GetKtTypeMgrInfo(nullptr, nullptr, &description, nullptr, nullptr);
  return description;
}

void addCommands(CLI::App& app) {
  app.footer(kExamples);
  app.require_subcommand(1, 1);
  app.set_version_flag("--version", version());
  tool::addTypes(app);
  tool::addEncode(app);
  tool::addDecode(app);
  tool::addCompare(app);
  tool::addHash(app);
  tool::addSort(app);
  tool::addEstimate(app);
  tool::addConvert(app);
  tool::addOrder(app);
  tool::addKey(app);
}

int fail(const char* message) {
  std::cout.flush();
  std::fprintf(stderr, "kttm: %s\n", message);
  return kFailed;
}

// "help" and "help COMMAND" are the options of that name.
std::vector<std::string> withoutHelp(std::vector<std::string> arguments) {
  if (arguments.empty() || arguments[0] != "help" || arguments.size() > 2) return arguments;
  arguments.erase(arguments.begin());
  arguments.push_back("--help");
  return arguments;
}

// The parser has one message for all that stands in the place of a command.
void requireCommand(const CLI::App& app, const std::vector<std::string>& arguments) {
  if (arguments.empty()) throw tool::Error("a command is wanted; `kttm --help` lists them");
  const std::string& first = arguments[0];
  const bool isOption = !first.empty() && first[0] == '-';
  const auto isMeant = [&](const CLI::App* command) { return command->get_name() == first; };
  if (first == "-h" || first == "--help" || first == "--version" || !app.get_subcommands(isMeant).empty()) return;
  throw tool::Error((isOption ? "unknown option " : "unknown command ") + tool::quoted(first) +
                    "; `kttm --help` lists " + (isOption ? "those that there are" : "the commands"));
}

// Arguments that are left over are told first: what is missing may be among them.
std::string messageFor(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> left = app.remaining(true);
  const auto isOption = [](const std::string& argument) { return !argument.empty() && argument[0] == '-'; };
  const auto option = std::find_if(left.begin(), left.end(), isOption);
  if (option != left.end()) {
    return "unknown option " + tool::quoted(*option) + "; a value that begins with - stands behind --";
  }
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError) && !left.empty()) {
    return "one argument too many: " + tool::quoted(tool::unguarded(left.front()));
  }
  return tool::visible(error.what());
}

int run(int argc, char** argv) {
  CLI::App app(kAbout, "kttm");
  addCommands(app);
  const std::vector<std::string> given = withoutHelp({argv + std::min(argc, 1), argv + argc});
  requireCommand(app, given);
  std::vector<std::string> arguments = tool::guarded(given);
  std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
  try {
    app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) return fail(messageFor(app, error).c_str());
    app.exit(error);  // prints help or version
  }
  return std::cout.flush() ? 0 : fail("cannot write to standard output");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    return fail(error.what());
  } catch (...) {
    return fail("an unknown error");
  }
}
