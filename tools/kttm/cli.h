// cli.h - the subcommands, and how they declare their options.
#ifndef KTTM_TOOL_CLI_H
#define KTTM_TOOL_CLI_H

#include "hex.h"
#include "reader.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace tool {

// Each adds its subcommand, whose work is done while the arguments are parsed.
void addTypes(CLI::App& app);
void addEncode(CLI::App& app);
void addDecode(CLI::App& app);
void addCompare(CLI::App& app);
void addHash(CLI::App& app);
void addSort(CLI::App& app);
void addEstimate(CLI::App& app);
void addConvert(CLI::App& app);
void addOrder(CLI::App& app);
void addKey(CLI::App& app);

// Adds a subcommand: Command declares its options when it is made of it, and works in run().
template <class Command>
void addCommand(CLI::App& app, const char* name, const char* description, const char* examples) {
  CLI::App* command = app.add_subcommand(name, description);
  command->footer(examples);
  command->callback([work = std::make_shared<Command>(*command)] { work->run(); });
}

// The parser takes "[a,b]" apart into two values, and forgets "--" where a list has begun. So arguments go through
// guarded() before they are parsed and come back through the functions below: every text arrives as it was typed.
std::vector<std::string> guarded(const std::vector<std::string>& arguments);
std::string unguarded(const std::string& argument);
std::vector<std::string> texts(const CLI::Option& option);          // what was given, one string each
std::string text(const CLI::Option& option, const char* fallback);  // the only or last one

// The options that say how texts become strings.
class TextFlags {
public:
  explicit TextFlags(CLI::App& command);
  TextOptions options() const;

private:
  CLI::Option* language_;
  CLI::Option* codeSet_;
};

// The options that say how texts become values.
class ReadFlags {
public:
  explicit ReadFlags(CLI::App& command);
  ReadOptions options() const;

private:
  CLI::Option* format_;
  CLI::Option* convert_;
  CLI::Option* lenient_;
  TextFlags text_;
};

// name: "--format CODE" for an option with its value, "TYPE" for a positional.
CLI::Option* addOption(CLI::App& command, const char* name, const char* description);
CLI::Option* addList(CLI::App& command, const char* name, const char* description);  // takes any number of texts
CLI::Option* addFlag(CLI::App& command, const char* name, const char* description);
CLI::Option* addType(CLI::App& command);
CLI::Option* addFormat(CLI::App& command);
CLI::Option* addOperator(CLI::App& command, const char* words = "nocase, nodiacritics, nospaces, nosymbols or binary");

// Where a command takes bytes from: arguments or files of hexadecimal text, or files of raw bytes.
class ByteInput {
public:
  ByteInput(CLI::App& command, const char* name, const char* description);
  Bytes bytes() const;
  // The same but for --hex, taken as text: arguments with blanks between them.
  std::string text() const;
  CLI::Option* hexFile() const { return hex_; }

private:
  std::string joined(const char* between) const;  // the arguments

  CLI::Option* given_;
  CLI::Option* hex_;
  CLI::Option* in_;
};

// Where a command writes bytes to: standard output, as hexadecimal text or raw, or a file.
class ByteOutput {
public:
  explicit ByteOutput(CLI::App& command);
  bool isRaw() const { return raw_->count() > 0 || out_->count() > 0; }
  void writeRaw(const Bytes& bytes) const;
  void write(const Bytes& bytes) const;  // raw where that is asked for

private:
  CLI::Option* raw_;
  CLI::Option* out_;
};

// Prints a line to standard output.
void printLine(const std::string& line);

}  // namespace tool

#endif
