// load: the rows of a CSV file become objects.
#include "cli.h"
#include "csv_objects.h"
#include "progress.h"
#include "world_schema.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>

namespace atlas {
namespace {

constexpr unsigned long kDefaultEvery = 5000;

std::string contentOf(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw Mistake(file + ": cannot be read");
  return {std::istreambuf_iterator<char>(in), {}};
}

// What a file is known by, wherever it lies: its length and a hash (FNV-1a) of its content.
std::string fingerprint(const std::string& content) {
  std::uint64_t hash = 14695981039346656037ULL;
  for (const char c : content) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
  char text[48];
  std::snprintf(text, sizeof text, "%zu %016llx", content.size(), static_cast<unsigned long long>(hash));
  return text;
}

// What a load has noted; nothing: 0.
unsigned long rowsIn(const std::string& note) {
  unsigned long rows = 0;
  const char* end = note.data() + note.size();
  const auto result = std::from_chars(note.data(), end, rows);
  if (note.empty() || (result.ec == std::errc() && result.ptr == end)) return rows;
  throw Error(kExitBroken, "the database is damaged: it has loaded \"" + note + "\" rows");
}

class Load {
public:
  Load(Database& database, std::string file, std::string className, unsigned long every)
      : database_(database), file_(std::move(file)), className_(std::move(className)), every_(every) {
    const std::string content = contentOf(file_);
    rows_ = static_cast<unsigned long>(std::count(content.begin(), content.end(), '\n'));
    note_ = "loaded " + fingerprint(content);
  }

  void run() {
    CsvObjects rows(database_, file_, className_);
    note_ += " " + rows.cls().name;
    before_ = rowsIn(database_.note(note_));
    // Without transactions in between, a row that cannot be read takes back all the others.
    if (every_ != 0) checkAll();
    load(rows);
  }

private:
  void checkAll() {
    CsvObjects rows(database_, file_, className_);
    while (rows.next()) {
      if (rows.row() > before_) rows.draft();
    }
  }

  void load(CsvObjects& rows) {
    Progress bar(rows.cls().name, rows_);
    while (rows.next()) {
      if (rows.row() <= before_) continue;
      database_.add(rows.draft());
      ++added_;
      if (every_ != 0 && added_ % every_ == 0) commit(rows.row());
      bar.step(added_);
    }
    if (added_ != 0) commit(rows.row());
    report(rows, bar.seconds());
  }

  // The number of the row goes with its objects: whatever happens, both are there or neither.
  void commit(unsigned long row) {
    database_.setNote(note_, std::to_string(row));
    database_.commit();
  }

  void report(const CsvObjects& rows, double seconds) const {
    const std::string name = rows.cls().name;
    if (before_ != 0 && added_ != 0) {
      std::printf("%s: %s rows were there already, going on behind them\n", file_.c_str(), grouped(before_).c_str());
    }
    if (before_ != 0 && added_ == 0) {
      std::printf("%s: all %s rows are there already\n", file_.c_str(), grouped(before_).c_str());
      return;
    }
    std::printf("%s: %s of class %s in %.2f s; the database has %s\n", file_.c_str(), counted(added_, "object").c_str(),
                name.c_str(), seconds, grouped(database_.count(rows.cls())).c_str());
  }

  Database& database_;
  std::string file_;
  std::string className_;
  unsigned long every_;
  unsigned long rows_ = 0;    // about
  unsigned long before_ = 0;  // rows that an earlier load has committed
  unsigned long added_ = 0;
  std::string note_;
};

struct Options {
  std::vector<std::string> files;
  std::string className;
  std::string language;
  std::string schema;
  unsigned long every = kDefaultEvery;
};

Schema schemaOf(const Options& options) {
  if (options.schema.empty()) return Schema::parse(kWorldSchema, "world.schema");
  return Schema::parse(contentOf(options.schema), options.schema);
}

void run(const Options& options, const Globals& globals) {
  OpenOptions open = globals.open();
  if (!options.language.empty()) open.language = languageOf(options.language);
  for (const std::string& file : options.files) contentOf(file);  // before a database is made
  const auto database = Database::create(open, schemaOf(options));
  for (const std::string& file : options.files) Load(*database, file, options.className, options.every).run();
}

}  // namespace

void addLoad(CLI::App& app, const Globals& globals) {
  CLI::App* command = app.add_subcommand("load", "Reads CSV files into a database, which is made when it is not there");
  const auto options = std::make_shared<Options>();
  command->add_option("FILE", options->files, "the files, those that others refer to first")->required();
  command->add_option("--class", options->className, "class of the objects (default: what the columns tell)");
  command->add_option("--language", options->language, "of the texts, of a new database (default: english)");
  command->add_option("--schema", options->schema, "schema file of a new database (default: the world)");
  command->add_option("--every", options->every, "objects in a transaction, 0: all of a file in one")
      ->check(notNegative())
      ->capture_default_str();
  command->callback([options, &globals] { run(*options, globals); });
}

}  // namespace atlas
