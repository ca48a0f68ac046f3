// atlas - a small object database of the world: objects of typed fields in one LMDB file, indexed and compared through
// the type manager alone.
#include "cli.h"
#include "utf8_width.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <string_view>

namespace {

const char kAbout[] = "A small object database of the world, in one file.";
const char kExits[] =
    "Exit codes: 0 done, 1 check found damage, 2 a mistake in the arguments or the data, 3 no such atlas database (or "
    "of\n"
    "another format, schema or language), 4 the map or the disk is full, 5 the file is broken or cannot be used.";

template <std::size_t kSize>
[[noreturn]] void stop(const char (&message)[kSize]) {
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, message, kSize - 1);
  _exit(atlas::kExitBroken);
}

// Pages that the file has lost, and disks that fail, show when they are read through the map.
void answerBusError(int) {
  stop("atlas: the database cannot be read: its file is truncated, or the disk has failed\n");
}

#if defined(__has_feature)  // clang
#if __has_feature(address_sanitizer)
#define ATLAS_SANITIZED
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)  // g++
#define ATLAS_SANITIZED
#endif

// LMDB goes where the numbers in its pages lead.
[[maybe_unused]] void answerSegmentationFault(int) {
  stop("atlas: memory was used that is not there: the database is damaged, or atlas has an error\n");
}

void setSignals() {
  std::signal(SIGBUS, answerBusError);
#ifndef ATLAS_SANITIZED  // its report says more
  std::signal(SIGSEGV, answerSegmentationFault);
#endif
  std::signal(SIGXFSZ, SIG_IGN);  // a limit of the file size is an error of writing
}

void addCommands(CLI::App& app, const atlas::Globals& globals) {
  app.require_subcommand(1, 1);
  app.footer(kExits);
  atlas::addLoad(app, globals);
  atlas::addFill(app, globals);
  atlas::addShow(app, globals);
  atlas::addDump(app, globals);
  atlas::addQuery(app, globals);
  atlas::addPlot(app, globals);
  atlas::addStats(app, globals);
  atlas::addCheck(app, globals);
  atlas::addExport(app, globals);
  atlas::addImport(app, globals);
}

// Messages quote what was read, which may be any bytes.
int fail(int code, const std::string& message) {
  std::fflush(stdout);
  std::string shown;
  for (std::size_t at = 0; at <= message.size();) {
    const std::size_t end = std::min(message.find('\n', at), message.size());
    shown += atlas::printable(std::string_view(message).substr(at, end - at)) + "\n";
    at = end + 1;
  }
  std::fprintf(stderr, "atlas: %s", shown.c_str());
  return code;
}

int run(int argc, char** argv) {
  CLI::App app(kAbout, "atlas");
  atlas::Globals globals;
  app.add_option("--db", globals.file, "the database file")
      ->envname("ATLAS_DB")
      ->default_val("world.atlas")
      ->type_name("FILE");
  app.add_option("--map-size", globals.mapSize, "room that the database may grow to, e.g. 8GB (default: 4GB)")
      ->transform(CLI::AsSizeValue(false))
      ->transform(atlas::notNegative())  // what is added last transforms first
      ->check(atlas::isMapSize());
  addCommands(app, globals);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // help
    return fail(atlas::kExitMistake, error.what());
  }
  const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  return isWritten ? atlas::kExitDone : fail(atlas::kExitBroken, "cannot write to standard output");
}

}  // namespace

int main(int argc, char** argv) {
  setSignals();
  try {
    return run(argc, argv);
  } catch (const atlas::Error& error) {
    return fail(error.code(), error.what());
  } catch (const std::exception& error) {
    return fail(atlas::kExitBroken, error.what());
  }
}
