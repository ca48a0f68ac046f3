// import: a portable file becomes the content of a database that is new or empty.
#include "cli.h"
#include "portable.h"
#include "progress.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <memory>

namespace atlas {
namespace {

std::ifstream openFile(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  if (!in) throw Mistake(name + ": cannot be read");
  return in;
}

// Reads all of it: a damaged file is noticed before a database is touched. The number of its objects.
unsigned long long verified(const std::string& name) {
  std::ifstream in = openFile(name);
  PortableReader reader(in, name);
  unsigned long long objects = 0;
  while (reader.next()) ++objects;
  return objects;
}

// Removes a database that was made here and got nothing.
class Leftover {
public:
  explicit Leftover(const std::string& file) : file_(access(file.c_str(), F_OK) == 0 ? "" : file) {}
  ~Leftover() {
    if (file_.empty()) return;
    unlink(file_.c_str());
    unlink((file_ + "-lock").c_str());
  }
  Leftover(const Leftover&) = delete;
  Leftover& operator=(const Leftover&) = delete;
  void keep() { file_.clear(); }

private:
  std::string file_;
};

void requireEmpty(const Database& database) {
  for (const ClassSchema& cls : database.schema().classes()) {
    if (database.count(cls) == 0) continue;
    throw Error(kExitDatabase, "\"" + database.file() + "\" has objects already; import into a new database");
  }
}

// In one transaction.
void restoreAll(PortableReader& reader, const std::string& source, const Globals& globals, unsigned long long objects) {
  OpenOptions open = globals.open();
  open.language = reader.language();
  const auto database = Database::create(open, reader.schema());
  requireEmpty(*database);
  Progress bar("import", objects);
  std::vector<Draft> drafts;  // of the database's classes
  for (const ClassSchema& cls : database->schema().classes()) drafts.emplace_back(cls);
  for (unsigned long long done = 0; reader.next(); bar.step(++done)) {
    Draft& draft = drafts[reader.values().cls().place];
    draft.swap(reader.values());
    try {
      database->restore(reader.id(), draft);
    } catch (const Mistake& mistake) {
      throw Mistake(source + ": object " + std::to_string(numberOf(reader.id())) + ": " + mistake.what());
    }
  }
  database->commit();
}

void run(const std::string& source, const Globals& globals) {
  const unsigned long long objects = verified(source);
  std::ifstream in = openFile(source);
  PortableReader reader(in, source);
  Leftover leftover(globals.file);
  restoreAll(reader, source, globals, objects);
  leftover.keep();
  std::printf("%s: %s\n", source.c_str(), counted(objects, "object").c_str());
}

}  // namespace

void addImport(CLI::App& app, const Globals& globals) {
  CLI::App* command = app.add_subcommand("import", "Makes a database of an exported file; objects keep their ids");
  const auto file = std::make_shared<std::string>();
  command->add_option("FILE", *file, "what `atlas export` wrote")->required();
  command->callback([file, &globals] { run(*file, globals); });
}

}  // namespace atlas
