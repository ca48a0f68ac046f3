// export: all objects go to a portable file.
#include "cli.h"
#include "portable.h"
#include "progress.h"

#include <fcntl.h>
#include <sys/file.h>
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

// The file while it is written; behind the name of the file that it becomes.
constexpr char kUnfinished[] = ".unfinished";

// A file that gets its name when all of it is on the disk; until then it has another. That one is the same every time and
// goes with the object: what a killed export has left, the next one to the same file writes anew.
class NewFile {
public:
  explicit NewFile(const std::string& name) : name_(name), temporary_(name + kUnfinished) {
    checkOrdinary(name_);
    checkOrdinary(temporary_);
    lockTemporary();
    out_.open(temporary_, std::ios::binary | std::ios::trunc);
  }
  ~NewFile() {
    if (!isFinished_) unlink(temporary_.c_str());
    close(file_);
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
    if (fsync(file_) != 0 || std::rename(temporary_.c_str(), name_.c_str()) != 0) fail();
    isFinished_ = true;
  }

private:
  static void checkOrdinary(const std::string& name) {
    struct stat there;
    if (stat(name.c_str(), &there) != 0 || S_ISREG(there.st_mode)) return;
    throw Error(kExitBroken, "cannot write \"" + name + "\": it is there, and no ordinary file");
  }

  // Two exports to one file would write into each other. A file whose lock came free when another export renamed or
  // removed it is not the temporary one any more. Where files cannot be locked, nobody is kept out.
  void lockTemporary() {
    for (;;) {
      file_ = ::open(temporary_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
      if (file_ < 0) fail();
      const bool isTaken = flock(file_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
      if (!isTaken && holdsTemporary()) return;
      close(file_);
      if (isTaken) throw Error(kExitBroken, "cannot write \"" + name_ + "\": another export does");
    }
  }

  bool holdsTemporary() const {
    struct stat held, there;
    return fstat(file_, &held) == 0 && stat(temporary_.c_str(), &there) == 0 && held.st_dev == there.st_dev &&
           held.st_ino == there.st_ino;
  }

  [[noreturn]] void fail() const {
    const int error = errno;
    const bool isFull = error == ENOSPC || error == EDQUOT || error == EFBIG;
    throw Error(isFull ? kExitFull : kExitBroken, "cannot write \"" + name_ + "\": " + std::strerror(error));
  }

  std::string name_;
  std::string temporary_;
  int file_ = -1;  // the temporary file: its lock, and what no stream can do
  std::ofstream out_;
  bool isFinished_ = false;
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
