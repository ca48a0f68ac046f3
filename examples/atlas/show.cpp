// show, dump, stats: what is in a database.
#include "cli.h"
#include "progress.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>
#include <string_view>

namespace atlas {
namespace {

// Reads what stands before the end, if it is a number of the type, and steps behind both.
template <class Number>
bool readNumber(std::string_view& text, std::string_view end, Number& number) {
  const std::size_t digits = text.find(end);
  if (digits == std::string_view::npos) return false;
  const auto result = std::from_chars(text.data(), text.data() + digits, number);
  if (digits == 0 || result.ec != std::errc() || result.ptr != text.data() + digits) return false;
  text.remove_prefix(digits + end.size());
  return true;
}

// "42", or "(0-42#7)" as objects show their ids: the number, the block is found.
ObjectNumber parseNumber(const std::string& text) {
  ObjectNumber number = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (!text.empty() && result.ec == std::errc() && result.ptr == end) return number;
  KtWord high = 0;
  KtDWord low = 0;
  BlockId block = 0;
  std::string_view left = text;
  const bool isOpen = left.substr(0, 1) == "(";
  if (isOpen) left.remove_prefix(1);
  if (!isOpen || !readNumber(left, "-", high) || !readNumber(left, "#", low) || !readNumber(left, ")", block) ||
      !left.empty()) {
    throw Mistake("\"" + text + "\" is no object id: a number, or like (0-42#7)");
  }
  return ObjectNumber{high} << 32 | low;
}

std::string idText(ObjId id) {
  KtString out;
  return utf8Of(id.PrintToKtString(out));
}

// A reference is followed: its text says the referenced object's key, too.
std::string fieldText(const Database& database, const Record& record, std::size_t field) {
  const Field& schema = record.cls().fields[field];
  const std::string text = record.text(field);
  const std::optional<Record> target = database.follow(schema, record.fieldBytes(field));
  return target ? target->text(schema.references->field).append(1, ' ').append(text) : text;
}

void showObject(const Database& database, const Record& record) {
  std::printf("%s %s\n", record.cls().name.c_str(), idText(record.id()).c_str());
  for (std::size_t i = 0; i < record.cls().fields.size(); ++i) {
    std::printf("  %-12s %s\n", record.cls().fields[i].name.c_str(), fieldText(database, record, i).c_str());
  }
}

void show(const std::string& id, const Globals& globals) {
  const auto database = Database::openForReading(globals.open());
  const ObjId found = database->idOf(parseNumber(id));
  if (found.IsNullValue() != 0) throw Mistake("there is no object " + id);
  showObject(*database, database->get(found));
}

// One line an object.
void printRow(const Database& database, const Record& record) {
  std::string line = std::to_string(numberOf(record.id()));
  line.append(1, '\t').append(record.cls().name);
  for (std::size_t i = 0; i < record.cls().fields.size(); ++i)
    line.append(1, '\t').append(fieldText(database, record, i));
  std::printf("%s\n", line.c_str());
}

void dump(const std::string& className, unsigned long long limit, const Globals& globals) {
  const auto database = Database::openForReading(globals.open());
  const ClassSchema* cls = className.empty() ? nullptr : database->schema().find(className);
  if (!className.empty() && cls == nullptr) throw Mistake("there is no class \"" + className + "\"");
  ObjectScan scan = database->objects(cls);
  for (unsigned long long i = 0; i < limit && scan.next(); ++i) printRow(*database, scan.record());
}

void stats(const Globals& globals) {
  const auto database = Database::openForReading(globals.open());
  std::printf("language %s\n", languageName(database->language()).c_str());
  for (const ClassSchema& cls : database->schema().classes()) {
    std::printf("class %-12s %12s objects\n", cls.name.c_str(), grouped(database->count(cls)).c_str());
  }
  for (const auto& index : database->indexes()) {
    std::printf("index %-20s %-14s %12s entries\n", index->name().c_str(), index->field().typeName.c_str(),
                grouped(index->entries()).c_str());
  }
}

}  // namespace

void addShow(CLI::App& app, const Globals& globals) {
  CLI::App* command = app.add_subcommand("show", "Prints one object");
  const auto id = std::make_shared<std::string>();
  command->add_option("OBJID", *id, "its number, or the id as `show` prints it")->required();
  command->callback([id, &globals] { show(*id, globals); });
}

void addDump(CLI::App& app, const Globals& globals) {
  CLI::App* command = app.add_subcommand("dump", "Prints objects, one a line, fields parted by tabulators");
  const auto className = std::make_shared<std::string>();
  const auto limit = std::make_shared<unsigned long long>(~0ULL);
  command->add_option("--class", *className, "only objects of this class");
  command->add_option("--limit", *limit, "at most so many objects")->check(notNegative());
  command->callback([className, limit, &globals] { dump(*className, *limit, globals); });
}

void addStats(CLI::App& app, const Globals& globals) {
  CLI::App* command = app.add_subcommand("stats", "Counts objects and index entries");
  command->callback([&globals] { stats(globals); });
}

}  // namespace atlas
