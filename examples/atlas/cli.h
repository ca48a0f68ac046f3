// cli.h - the subcommands; each stands in a file of its own and is registered in main.cpp by one line.
#ifndef EXAMPLES_ATLAS_CLI_H
#define EXAMPLES_ATLAS_CLI_H

#include "database.h"

#include <CLI/CLI.hpp>

#include <string>

namespace atlas {

// The options that stand before the command.
struct Globals {
  std::string file;
  unsigned long long mapSize = 0;

  OpenOptions open() const { return {.file = file, .mapSize = mapSize, .language = std::nullopt}; }
};

// For options of unsigned types, where CLI11 takes "-1" for the largest number.
inline CLI::Validator notNegative() {
  const auto reason = [](const std::string& text) {
    return text.rfind('-', 0) == 0 ? "\"" + text + "\" is less than 0" : std::string();
  };
  return {reason, ""};
}

// For sizes of maps in bytes. Smaller ones hold no database, and no address space has room for larger ones.
inline CLI::Validator isMapSize() {
  const auto reason = [](const std::string& bytes) -> std::string {
    constexpr unsigned long long kLeast = 1ULL << 16;
    constexpr unsigned long long kGreatest = 1ULL << 46;
    unsigned long long size = 0;  // the largest number stands for all that are larger
    const bool fits = CLI::detail::lexical_cast(bytes, size) && size >= kLeast && size <= kGreatest;
    return fits ? "" : bytes + " bytes are no size of a database: 64KB to 64TB are";
  };
  return {reason, ""};
}

// Each adds its subcommand, whose work is done after all arguments are parsed.
void addLoad(CLI::App& app, const Globals& globals);
void addFill(CLI::App& app, const Globals& globals);
void addShow(CLI::App& app, const Globals& globals);
void addDump(CLI::App& app, const Globals& globals);
void addCheck(CLI::App& app, const Globals& globals);
void addStats(CLI::App& app, const Globals& globals);
void addQuery(CLI::App& app, const Globals& globals);
void addPlot(CLI::App& app, const Globals& globals);
void addExport(CLI::App& app, const Globals& globals);
void addImport(CLI::App& app, const Globals& globals);

}  // namespace atlas

#endif
