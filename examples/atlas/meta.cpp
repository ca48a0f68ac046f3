#include "meta.h"

#include <charconv>
#include <limits>
#include <sstream>

namespace atlas {
namespace {

constexpr unsigned long long kMostObjects = 0xFFFFFFFFFFFF;  // a number has 48 bits
constexpr unsigned long long kMostBlocks = std::numeric_limits<BlockId>::max();

Bytes bytesOfText(const std::string& text) { return {text.data(), text.size()}; }

}  // namespace

std::optional<std::string> Meta::find(const std::string& name) const {
  Cursor cursor(*txn_, tree_);
  MDB_val key = valOf(bytesOfText(name)), data;
  if (!cursor.move(MDB_SET, key, data)) return std::nullopt;
  return std::string(static_cast<const char*>(data.mv_data), data.mv_size);
}

std::string Meta::get(const std::string& name) const {
  const std::optional<std::string> text = find(name);
  if (!text) throw Error(kExitBroken, "the database does not say its \"" + name + "\"");
  return *text;
}

void Meta::set(const std::string& name, const std::string& text) {
  Cursor(*txn_, tree_).put(bytesOfText(name), bytesOfText(text), 0);
}

unsigned long long Meta::number(const std::string& name, unsigned long long most) const {
  const std::string text = get(name);
  unsigned long long value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size() || value > most) {
    throw Error(kExitBroken, "\"" + name + "\" of the database is no number that it can be");
  }
  return value;
}

Counters Meta::counters(const Schema& schema) const {
  Counters counters;
  counters.nextObject = number("next object", kMostObjects);
  counters.nextBlock = static_cast<unsigned long>(number("next block", kMostBlocks));
  for (const ClassSchema& cls : schema.classes()) {
    counters.objects.push_back(number("count " + cls.name, kMostObjects));
  }
  return counters;
}

void Meta::setCounters(const Counters& counters, const Schema& schema) {
  set("next object", std::to_string(counters.nextObject));
  set("next block", std::to_string(counters.nextBlock));
  for (const ClassSchema& cls : schema.classes()) set("count " + cls.name, std::to_string(counters.objects[cls.place]));
}

std::optional<IndexSettings> Meta::settings(const std::string& index) const {
  const std::optional<std::string> text = find("index " + index);
  if (!text) return std::nullopt;
  std::istringstream in(*text);
  unsigned language = 0;
  IndexSettings settings;
  if (!(in >> language >> settings.options >> settings.keyOptions >> settings.longestKey)) {
    throw Error(kExitBroken, "the settings of the index " + index + " are damaged");
  }
  settings.language = static_cast<unsigned char>(language);
  return settings;
}

void Meta::setSettings(const std::string& index, const IndexSettings& settings) {
  std::ostringstream out;
  out << unsigned{settings.language} << ' ' << settings.options << ' ' << settings.keyOptions << ' '
      << settings.longestKey;
  set("index " + index, out.str());
}

}  // namespace atlas
