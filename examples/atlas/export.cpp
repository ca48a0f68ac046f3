// export: all objects go to a portable file.
#include "cli.h"
#include "portable.h"
#include "progress.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>

namespace atlas {
namespace {

// A file that gets its name when all of it is on the disk; until then, and without finish(), it is not there for others.
class NewFile {
public:
  explicit NewFile(const std::string& name) : name_(name), temporary_(name + ".XXXXXX") {
    struct stat there;
    if (stat(name.c_str(), &there) == 0 && !S_ISREG(there.st_mode)) {
      throw Error(kExitBroken, "cannot write \"" + name + "\": it is there, and no ordinary file");
    }
    const int file = mkstemp(temporary_.data());
    if (file < 0) fail();
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(file, 0666 & ~mask);
    close(file);
    out_.open(temporary_, std::ios::binary | std::ios::trunc);
    isThere_ = true;
  }
  ~NewFile() {
    if (isThere_) unlink(temporary_.c_str());
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  std::ostream& out() { return out_; }

  // Throws Error when writing fails, as soon as the stream knows.
  void check() const {
    if (!out_) fail();
  }

  void finish() {
    out_.close();
    check();
    const int file = ::open(temporary_.c_str(), O_RDONLY | O_CLOEXEC);
    const bool isSynced = file >= 0 && fsync(file) == 0;
    const int error = errno;
    if (file >= 0) close(file);
    errno = error;
    if (!isSynced || std::rename(temporary_.c_str(), name_.c_str()) != 0) fail();
    isThere_ = false;
  }

private:
  [[noreturn]] void fail() const {
    const int error = errno;
    const bool isFull = error == ENOSPC || error == EDQUOT || error == EFBIG;
    throw Error(isFull ? kExitFull : kExitBroken, "cannot write \"" + name_ + "\": " + std::strerror(error));
  }

  std::string name_;
  std::string temporary_;
  std::ofstream out_;
  bool isThere_ = false;
};

unsigned long long writeAll(const Database& database, NewFile& file) {
  std::vector<unsigned long long> counts;
  unsigned long long total = 0;
  for (const ClassSchema& cls : database.schema().classes()) total += counts.emplace_back(database.count(cls));
  std::vector<Draft> drafts;
  for (const ClassSchema& cls : database.schema().classes()) drafts.emplace_back(cls);
  PortableWriter writer(file.out(), database.schema(), database.language(), counts);
  Progress bar("export", total);
  unsigned long long done = 0;
  for (ObjectScan scan = database.objects(); scan.next(); bar.step(++done)) {
    Draft& draft = drafts[scan.record().cls().place];
    draft.load(scan.record());
    writer.add(scan.record().id(), draft);
    file.check();
  }
  writer.end();
  if (done == total) return total;
  throw Error(kExitBroken, "the database counts " + counted(total, "object") + " and has " + grouped(done));
}

void run(const std::string& target, const Globals& globals) {
  const auto database = Database::openForReading(globals.open());
  NewFile file(target);
  const unsigned long long objects = writeAll(*database, file);
  file.finish();
  std::printf("%s: %s\n", target.c_str(), counted(objects, "object").c_str());
}

}  // namespace

void addExport(CLI::App& app, const Globals& globals) {
  CLI::App* command = app.add_subcommand("export", "Writes all objects to a file that every host can import");
  const auto file = std::make_shared<std::string>();
  command->add_option("FILE", *file, "the file; one that is there is replaced when all is written")->required();
  command->callback([file, &globals] { run(*file, globals); });
}

}  // namespace atlas
