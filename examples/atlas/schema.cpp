#include "schema.h"

#include "error.h"
#include "value.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <sstream>

namespace atlas {
namespace {

constexpr unsigned long kTableVersion = 12;
constexpr unsigned kGreatestNumber = 65534;
// The trees of a database are named after classes and fields.
constexpr std::size_t kLongestName = 200;  // bytes
constexpr std::size_t kMostIndexes = 250;

using Words = std::vector<std::string>;

// The words of a line; "#" begins a comment, quotes hold a word together.
Words wordsOf(const std::string& line) {
  Words words;
  for (std::size_t at = 0; at < line.size();) {
    if (line[at] == '#') break;
    if (line[at] == ' ' || line[at] == '\t' || line[at] == '\r') {
      ++at;
      continue;
    }
    const bool isQuoted = line[at] == '"';
    const std::size_t first = isQuoted ? at + 1 : at;
    const std::size_t end = line.find_first_of(isQuoted ? "\"" : " \t\r#", first);
    if (isQuoted && end == std::string::npos) throw Mistake("a quote is not closed");
    words.push_back(line.substr(first, end - first));
    at = end == std::string::npos ? line.size() : end + (isQuoted ? 1 : 0);
  }
  return words;
}

// Reads the options of a field from the words behind its type.
class FieldReader {
public:
  FieldReader(const std::vector<ClassSchema>& classes, const Words& words) : classes_(classes), words_(words) {}

  Field read() {
    if (words_.size() < 3) throw Mistake("a field needs a name and a type");
    Field field;
    field.name = field.column = words_[1];
    field.typeName = words_[2];
    if (manager().Name2KtTypeId(field.typeName.c_str(), field.type) != 0) {
      throw Mistake("there is no type \"" + field.typeName + "\"");
    }
    const Value any(field.type);
    if (manager().IsFixed(field.type) != 0) field.fixedSize = any.storedSize();
    for (at_ = 3; at_ < words_.size();) readOption(field);
    return field;
  }

private:
  void readOption(Field& field) {
    const std::string& option = words_[at_++];
    if (option == "column") {
      field.column = argument(option);
    } else if (option == "format") {
      field.format = argument(option);
    } else if (option == "converted") {
      field.converted = true;
    } else if (option == "index") {
      field.indexed = true;
    } else if (option == "references") {
      readReference(field);
    } else {
      throw Mistake("\"" + option + "\" is no option of a field");
    }
  }

  void readReference(Field& field) {
    const std::string className = argument("references");
    if (argument("references") != "by") throw Mistake("\"by\" and a field are missing behind the class");
    const std::string fieldName = argument("by");
    if (field.typeName != "KtRef") throw Mistake("a reference is of the type KtRef");
    for (const ClassSchema& cls : classes_) {
      const Field* target = cls.name == className ? cls.find(fieldName) : nullptr;
      if (target == nullptr || !target->indexed) continue;
      field.references = FieldPlace{cls.place, cls.placeOf(*target)};
      return;
    }
    throw Mistake("no class above is named " + className + " and has an index of " + fieldName);
  }

  const std::string& argument(const std::string& option) {
    if (at_ == words_.size()) throw Mistake("\"" + option + "\" needs a word behind it");
    return words_[at_++];
  }

  const std::vector<ClassSchema>& classes_;
  const Words& words_;
  std::size_t at_ = 0;
};

const std::string& checkedName(const std::string& name) {
  if (name.empty() || name.size() > kLongestName || name.find('.') != std::string::npos) {
    throw Mistake("a name has 1 to " + std::to_string(kLongestName) + " bytes and no dot");
  }
  return name;
}

ClassSchema readClass(const Words& words, std::size_t place) {
  if (words.size() != 3) throw Mistake("a class has a name and a number");
  ClassSchema cls;
  cls.name = checkedName(words[1]);
  cls.place = place;
  const char* end = words[2].data() + words[2].size();
  const auto result = std::from_chars(words[2].data(), end, cls.number);
  if (result.ec != std::errc() || result.ptr != end || cls.number == 0 || cls.number > kGreatestNumber) {
    throw Mistake("the number of a class is 1 to " + std::to_string(kGreatestNumber));
  }
  return cls;
}

std::size_t indexesIn(const std::vector<ClassSchema>& classes) {
  std::size_t indexes = 0;
  for (const ClassSchema& cls : classes) {
    for (const Field& field : cls.fields) indexes += field.indexed ? 1 : 0;
  }
  return indexes;
}

void readLine(std::vector<ClassSchema>& classes, const Words& words) {
  if (words.empty()) return;
  if (words[0] == "class") {
    const ClassSchema cls = readClass(words, classes.size());
    for (const ClassSchema& other : classes) {
      if (other.name == cls.name || other.number == cls.number) throw Mistake("the class is there already");
    }
    classes.push_back(cls);
  } else if (words[0] == "field") {
    if (classes.empty()) throw Mistake("a field stands before the first class");
    const Field field = FieldReader(classes, words).read();
    checkedName(field.name);
    if (classes.back().find(field.name) != nullptr) throw Mistake("the field is there already");
    if (field.indexed && indexesIn(classes) == kMostIndexes) {
      throw Mistake("a database has at most " + std::to_string(kMostIndexes) + " indexes");
    }
    classes.back().fields.push_back(field);
  } else {
    throw Mistake("a line begins with \"class\" or \"field\"");
  }
}

}  // namespace

KtTypeMgr theManager(kTableVersion);

const Field* ClassSchema::find(const std::string& fieldName) const {
  const auto found = std::find_if(fields.begin(), fields.end(), [&](const Field& f) { return f.name == fieldName; });
  return found == fields.end() ? nullptr : &*found;
}

Schema Schema::parse(const std::string& text, const std::string& origin) {
  Schema schema;
  schema.text_ = text;
  std::istringstream in(text);
  std::string line;
  for (unsigned long number = 1; std::getline(in, line); ++number) {
    try {
      readLine(schema.classes_, wordsOf(line));
    } catch (const Mistake& mistake) {
      throw Mistake(origin + ": line " + std::to_string(number) + ": " + mistake.what());
    }
  }
  const auto isEmpty = [](const ClassSchema& cls) { return cls.fields.empty(); };
  const auto& classes = schema.classes_;
  if (classes.empty() || std::any_of(classes.begin(), classes.end(), isEmpty)) {
    throw Mistake(origin + ": a schema has classes, and a class has fields");
  }
  return schema;
}

const ClassSchema* Schema::find(const std::string& className) const {
  const auto found =
      std::find_if(classes_.begin(), classes_.end(), [&](const ClassSchema& c) { return c.name == className; });
  return found == classes_.end() ? nullptr : &*found;
}

const ClassSchema* Schema::byNumber(unsigned number) const {
  const auto found =
      std::find_if(classes_.begin(), classes_.end(), [&](const ClassSchema& c) { return c.number == number; });
  return found == classes_.end() ? nullptr : &*found;
}

const ClassSchema* Schema::byHeader(const std::vector<std::string>& header) const {
  const std::set<std::string> columns(header.begin(), header.end());
  const ClassSchema* best = nullptr;
  for (const ClassSchema& cls : classes_) {
    const bool fits = std::all_of(cls.fields.begin(), cls.fields.end(),
                                  [&](const Field& field) { return columns.count(field.column) != 0; });
    if (fits && (best == nullptr || cls.fields.size() > best->fields.size())) best = &cls;
  }
  return best;
}

}  // namespace atlas
