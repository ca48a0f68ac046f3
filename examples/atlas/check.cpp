// check: objects, indexes and references tell the same.
#include "cli.h"
#include "progress.h"

#include <algorithm>
#include <cstdio>

namespace atlas {
namespace {

class Check {
public:
  explicit Check(const Database& database) : database_(database) {
    for (const ClassSchema& cls : database.schema().classes()) drafts_.emplace_back(cls);
  }

  // The number of differences; each is printed.
  unsigned long long run() {
    std::vector<unsigned long long> counts(database_.schema().classes().size());
    ObjectScan scan = database_.objects();
    while (next(scan)) {
      const Record& record = scan.record();
      ++counts[record.cls().place];
      guarded(nameOf(record), [&] { checkObject(record); });
    }
    for (const ClassSchema& cls : database_.schema().classes()) checkCount(cls, counts[cls.place]);
    for (const auto& index : database_.indexes()) {
      guarded("the index " + index->name(), [&] { checkIndex(*index); });
    }
    return damages_;
  }

private:
  void report(const std::string& what) {
    ++damages_;
    std::printf("damaged: %s\n", what.c_str());
  }

  // What cannot be read any further is one damage, not the end of the check.
  template <class Work>
  void guarded(const std::string& what, Work work) {
    try {
      work();
    } catch (const Error& error) {
      report(what + ": " + error.what());
    }
  }

  // Reports and leaves out what cannot be read.
  bool next(ObjectScan& scan) {
    for (;;) {
      try {
        return scan.next();
      } catch (const Error& error) {
        report(error.what());
      }
    }
  }

  static std::string nameOf(const Record& record) {
    return record.cls().name + " " + std::to_string(numberOf(record.id()));
  }

  void checkCount(const ClassSchema& cls, unsigned long long found) {
    if (found == database_.count(cls)) return;
    report("there are " + grouped(found) + " objects of class " + cls.name + ", counted were " +
           grouped(database_.count(cls)));
  }

  void checkObject(const Record& record) {
    if (numberOf(record.id()) <= last_) report(nameOf(record) + " is out of order");
    last_ = numberOf(record.id());
    for (std::size_t i = 0; i < record.cls().fields.size(); ++i) {
      const Field& field = record.cls().fields[i];
      checkField(record, i);
      const Index* index = database_.index(record.cls(), field);
      if (index != nullptr && !index->has(storedKey(field.type, record.fieldBytes(i)), record.id())) {
        report(nameOf(record) + " is not in the index " + index->name());
      }
    }
  }

  // A value must be stored again as it was, and a reference lead to an object.
  void checkField(const Record& record, std::size_t i) {
    const Field& field = record.cls().fields[i];
    const Bytes stored = record.fieldBytes(i);
    Value& value = drafts_[record.cls().place][i];
    value.load(stored);
    const Buffer again = value.stored();
    if (!std::equal(again.begin(), again.end(), stored.data, stored.data + stored.size)) {
      report(nameOf(record) + ": its " + field.name + " is no value of " + field.typeName);
    }
    if (field.references && !value.isNull() && !database_.follow(field, stored)) {
      report(nameOf(record) + ": its " + field.name + " leads nowhere");
    }
  }

  void checkIndex(const Index& index) {
    IndexScan scan = index.scan();
    Buffer before;
    while (scan.next()) {
      const Bytes key = scan.key();
      if (!before.empty() && index.compareKeys(before, key) > 0) report(index.name() + " is out of order");
      before.assign(key.data, key.data + key.size);
      guarded("the index " + index.name(), [&] { checkEntry(index, scan); });
    }
    if (index.entries() != database_.count(index.cls())) {
      report(index.name() + " has " + grouped(index.entries()) + " entries for " +
             counted(database_.count(index.cls()), "object"));
    }
  }

  void checkEntry(const Index& index, const IndexScan& scan) {
    const std::string object = "object " + std::to_string(numberOf(scan.id()));
    const std::optional<Record> record = database_.find(scan.id());
    if (!record || &record->cls() != &index.cls()) {
      report(index.name() + " leads to " + object + ", which is not there");
      return;
    }
    const std::size_t field = record->cls().placeOf(index.field());
    const Buffer key = storedKey(index.field().type, record->fieldBytes(field));
    if (index.compareKeys(scan.key(), key) != 0) report(index.name() + " has another value than " + object);
  }

  const Database& database_;
  std::vector<Draft> drafts_;  // one for each class
  ObjectNumber last_ = 0;
  unsigned long long damages_ = 0;
};

void run(const Globals& globals) {
  const auto database = Database::openForReading(globals.open());
  const unsigned long long damages = Check(*database).run();
  if (damages != 0) throw Error(kExitDamage, "the database is damaged in " + counted(damages, "place"));
  unsigned long long objects = 0, entries = 0;
  for (const ClassSchema& cls : database->schema().classes()) objects += database->count(cls);
  for (const auto& index : database->indexes()) entries += index->entries();
  std::printf("sound: %s, %s index entries\n", counted(objects, "object").c_str(), grouped(entries).c_str());
}

}  // namespace

void addCheck(CLI::App& app, const Globals& globals) {
  CLI::App* command =
      app.add_subcommand("check", "Checks that objects, indexes and references fit; exit code 1 if not");
  command->callback([&globals] { run(globals); });
}

}  // namespace atlas
