// fill: makes many more objects like those of a class.
#include "cli.h"
#include "progress.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <random>

namespace atlas {
namespace {

constexpr unsigned long kDefaultEvery = 5000;

// Composes names and mixes fields of the objects of a class. The same seed gives the same objects.
class Mixer {
public:
  Mixer(const Database& database, const ClassSchema& cls, std::uint64_t seed)
      : class_(&cls), language_(database.language()), name_(cls.fields[0].type), random_(seed) {
    for (ObjectScan scan = database.objects(&cls); scan.next();) remember(scan.record());
    if (names_.empty()) throw Mistake("there is no object of the class " + cls.name + " yet; load some first");
  }

  // The fields of the next object; valid until the next call.
  const std::vector<Bytes>& next() {
    const std::size_t width = class_->fields.size();
    fields_.clear();
    name_.scan(composed(pick(), pick()), class_->fields[0], language_);
    nameBytes_.resize(name_.storedSize());
    name_.storeAt(nameBytes_.data());
    fields_.emplace_back(nameBytes_);
    for (std::size_t i = 1; i < width; ++i) fields_.emplace_back(parts_[pick() * width + i]);
    return fields_;
  }

private:
  void remember(const Record& record) {
    names_.push_back(record.text(0));
    for (std::size_t i = 0; i < class_->fields.size(); ++i) {
      const Bytes bytes = record.fieldBytes(i);
      parts_.emplace_back(bytes.data, bytes.data + bytes.size);
    }
  }

  std::size_t pick() { return static_cast<std::size_t>(random_() % names_.size()); }

  // The beginning of one name and the end of another, both cut between characters near the middle.
  std::string composed(std::size_t a, std::size_t b) const {
    const std::string& head = names_[a];
    const std::string& tail = names_[b];
    return head.substr(0, cutOf(head)) + tail.substr(cutOf(tail));
  }

  static std::size_t cutOf(const std::string& text) {
    std::size_t at = (text.size() + 1) / 2;
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U) ++at;
    return at;
  }

  const ClassSchema* class_;
  unsigned char language_;
  Value name_;
  Buffer nameBytes_;
  std::mt19937_64 random_;
  std::vector<std::string> names_;
  std::vector<Buffer> parts_;  // the fields of all objects
  std::vector<Bytes> fields_;
};

struct Options {
  unsigned long long count = 0;
  std::uint64_t seed = 1;
  std::string className = "city";
  unsigned long every = kDefaultEvery;
};

void run(const Options& options, const Globals& globals) {
  const auto database = Database::openForWriting(globals.open());
  const ClassSchema* cls = database->schema().find(options.className);
  if (cls == nullptr) throw Mistake("there is no class \"" + options.className + "\"");
  Mixer mixer(*database, *cls, options.seed);
  Progress progress(cls->name, options.count);
  for (unsigned long long i = 1; i <= options.count; ++i) {
    database->add(*cls, mixer.next());
    if (options.every != 0 && i % options.every == 0) database->commit();
    progress.step(i);
  }
  database->commit();
  const double seconds = progress.seconds();
  std::printf(
      "%s of class %s in %.2f s, %s a second; the database has %s\n", counted(options.count, "object").c_str(),
      cls->name.c_str(), seconds,
      grouped(static_cast<unsigned long long>(static_cast<double>(options.count) / std::max(seconds, 1e-9))).c_str(),
      grouped(database->count(*cls)).c_str());
}

}  // namespace

void addFill(CLI::App& app, const Globals& globals) {
  CLI::App* command =
      app.add_subcommand("fill", "Makes more objects: names composed of those there are, other fields mixed");
  const auto options = std::make_shared<Options>();
  command->add_option("N", options->count, "how many")->required()->check(notNegative());
  command->add_option("--seed", options->seed, "the same seed makes the same objects")
      ->check(notNegative())
      ->capture_default_str();
  command->add_option("--class", options->className, "class of the objects")->capture_default_str();
  command->add_option("--every", options->every, "objects in a transaction, 0: all in one")
      ->check(notNegative())
      ->capture_default_str();
  command->callback([options, &globals] { run(*options, globals); });
}

}  // namespace atlas
