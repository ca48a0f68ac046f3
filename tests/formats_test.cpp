// The golden files against the code, and against the pages of docs/formats. tests/golden/<type>.txt holds values of a type,
// each with the format codes that it is stored under and its bytes, worked by hand from the layout; KtString.older.txt has
// strings of the legacy table, KtString.key.txt their index keys. The README there says how to read a line.
#include <kttm.h>

#include <gtest/gtest.h>

#include "string_bytes.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace kt_test;
using Strings = std::vector<std::string>;

const std::filesystem::path kGolden = KT_TESTS_DIR "/golden";
const std::string kPages = "docs/formats/";
const std::filesystem::path kPagesFolder = KT_TESTS_DIR "/../" + kPages;

Strings split(const std::string& text, const std::string& separator) {
  Strings parts;
  for (std::size_t at = 0, end = 0; at < text.size(); at = end + separator.size()) {
    end = std::min(text.find(separator, at), text.size());
    if (end != at) parts.push_back(text.substr(at, end - at));
  }
  return parts;
}

// section: "dates.md, KtDate"; of a page without sections its name alone.
struct Example {
  std::string file, section, value, codes, bytes, hashWord;

  std::string text() const {
    return section + ": " + file + "  " + value + "  " + codes + "  " + bytes + "  " + hashWord;
  }
};

// Columns are two blanks apart or more, as are parts of the bytes.
Strings columnsOf(const std::string& line) {
  Strings columns;
  for (const std::string& part : split(line, "  "))
    if (part != " ") columns.push_back(part.substr(part[0] == ' ' ? 1 : 0));
  return columns;
}

// What follows the folder of the pages in a text; nothing if the text does not name it.
std::string behindFolder(const std::string& text) {
  const std::size_t at = text.find(kPages);
  return at == std::string::npos ? "" : text.substr(at + kPages.size());
}

// One line of a golden file.
Example exampleOf(const std::string& file, const std::string& section, Strings columns) {
  const std::string hashMark = "hash word ";
  columns.resize(std::max<std::size_t>(columns.size(), 3));
  Example example{file, section, columns[0], columns[1], "", ""};
  for (std::size_t i = 2; i < columns.size(); ++i) {
    const std::string& column = columns[i];
    if (column.compare(0, hashMark.size(), hashMark) == 0) {
      example.hashWord = column.substr(hashMark.size());
    } else {
      example.bytes += (example.bytes.empty() ? "" : " ") + column;
    }
  }
  return example;
}

std::vector<Example> goldenExamples() {
  std::vector<Example> examples;
  for (const auto& entry : std::filesystem::directory_iterator(kGolden)) {
    std::ifstream file(entry.path());
    std::string line, section;
    while (std::getline(file, line)) {
      if (line[0] == '#') section = behindFolder(line);
      if (line[0] != '#') examples.push_back(exampleOf(entry.path().stem().string(), section, columnsOf(line)));
    }
  }
  return examples;
}

struct Documented {
  std::set<std::string> examples, sections;
};

// The examples of a page have one column more than those of the files: the files that hold the line.
void readPage(const std::filesystem::path& path, Documented& documented) {
  std::ifstream page(path);
  std::string line, section;
  for (bool isBlock = false; std::getline(page, line);) {
    if (line.compare(0, 3, "```") == 0) {
      isBlock = !isBlock;
    } else if (isBlock && !line.empty()) {
      const Strings columns = columnsOf(line);
      for (const std::string& file : split(columns.front(), ", "))
        documented.examples.insert(exampleOf(file, section, {columns.begin() + 1, columns.end()}).text());
    } else if (line[0] == '#') {
      section = path.filename().string();
      if (line[1] == '#') section += ", " + line.substr(line.find(' ') + 1);
      documented.sections.insert(section);
    }
  }
}

Documented readPages() {
  Documented documented;
  for (const auto& entry : std::filesystem::directory_iterator(kPagesFolder)) readPage(entry.path(), documented);
  return documented;
}

// "dates.md, ODMG types" as the target of a link: dates.md#odmg-types.
std::string linkTo(std::string section) {
  const std::size_t comma = section.find(", ");
  if (comma == std::string::npos) return section;
  section.replace(comma, 2, "#");
  std::transform(section.begin(), section.end(), section.begin(), [](char c) {
    return c == ' ' ? '-' : c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return section;
}

// The codes that a line is about on this host: "0 L1 B0x82" are 0, on a little-endian host 1, on a big-endian one 0x82.
std::vector<unsigned char> codesOf(const Example& example) {
  const char otherHost = std::endian::native == std::endian::big ? 'L' : 'B';
  std::vector<unsigned char> codes;
  for (const std::string& word : split(example.codes, " "))
    if (word[0] != otherHost)
      codes.push_back(static_cast<unsigned char>(std::stoi(word.substr(word.find_first_of("0123456789")), nullptr, 0)));
  return codes;
}

// --- values from their texts ------------------------------------------------------------------------------------------

// Fields may be negative, which no format scans.
void setDate(void* value, const std::string& text) {
  int year = 0, month = 0, day = 0;
  std::sscanf(text.c_str(), "%d-%d-%d", &year, &month, &day);
  *static_cast<KtDate*>(value) = KtDate(year, month, day);
}

void setTime(void* value, const std::string& text) {
  int hour = 0, minute = 0, second = 0;
  std::sscanf(text.c_str(), "%d:%d:%d", &hour, &minute, &second);
  *static_cast<KtTime*>(value) = KtTime(hour, minute, second);
}

void setDateTime(void* value, const std::string& text) {
  setDate(&static_cast<KtDateTime*>(value)->date, text.substr(0, text.find(' ')));
  setTime(&static_cast<KtDateTime*>(value)->time, text.substr(text.find(' ') + 1));
}

void setBlob(void* value, const std::string& quoted) {
  static_cast<KtBlob*>(value)->SetTo(quoted.data() + 1, static_cast<long>(quoted.size() - 2));
}

// "a\u20AC" 253/1: the text, its code set and its language.
void setString(void* value, const std::string& text) {
  const std::size_t end = text.rfind('"');
  std::u16string units;
  for (std::size_t i = 1; i < end; ++i) {
    const bool isEscape = text[i] == '\\';
    units += static_cast<char16_t>(isEscape ? std::stoi(text.substr(i + 2, 4), nullptr, 16) : text[i]);
    if (isEscape) i += 5;
  }
  unsigned codeSet = 0, language = 0;
  std::sscanf(text.c_str() + end, "\" %u/%u", &codeSet, &language);
  *static_cast<KtString*>(value) =
      makeString(units, static_cast<unsigned char>(codeSet), static_cast<unsigned char>(language));
}

const std::map<int, void (*)(void*, const std::string&)> kSetters = {
    {KT_ID_KtDate, setDate},     {KT_ID_KtTime, setTime},      {KT_ID_KtDateTime, setDateTime}, {KT_ID_KtBlob, setBlob},
    {KT_ID_KtString, setString}, {KT_ID_KtIString, setString}, {KT_ID_KtCaseIString, setString}};

// All others read their text as strings convert to them.
void setConverted(KtTypeMgr& mgr, char id, void* value, const std::string& text) {
  KtString string(text.c_str());
  KtTypeConvertData holder(KT_ID_KtString, 1, &string, nullptr);
  void* converted = mgr.ConvertFrom(id, &holder, 1);
  holder.typeManager = nullptr;  // the string stays ours
  std::memcpy(value, converted, mgr.MemLenGet(id, 1));
  mgr.Delete(id, converted, 1);
}

// The values of a line.
class LineValues {
public:
  LineValues(KtTypeMgr& mgr, char id, unsigned long n) : count(n), first(mgr.Create(id, n)), mgr_(mgr), id_(id) {}
  LineValues(KtTypeMgr& mgr, char id, const Strings& texts) : LineValues(mgr, id, texts.size()) {
    for (unsigned long i = 0; i < count; ++i) set(mgr.GetArrayElement(id, first, i, count), texts[i]);
  }
  ~LineValues() { mgr_.Delete(id_, first, count); }

  const unsigned long count;
  void* const first;

private:
  void set(void* value, const std::string& text) {
    if (text == "{NULL}") {
      mgr_.SetNullValue(id_, value);
    } else if (const auto setter = kSetters.find(id_); setter != kSetters.end()) {
      setter->second(value, text);
    } else {
      setConverted(mgr_, id_, value, text);
    }
  }

  KtTypeMgr& mgr_;
  const char id_;
};

// --- storing and loading ----------------------------------------------------------------------------------------------

Bytes stored(KtTypeMgr& mgr, char id, const LineValues& run, unsigned char code) {
  const Block target(Bytes(mgr.DiskLenGet(id, run.first, code, run.count, 8), 0xEE));
  EXPECT_EQ(mgr.Store(id, target.get(), run.first, code, run.count), target.size);
  return Bytes(target.get(), target.get() + target.size);
}

void checkStorage(KtTypeMgr& mgr, char id, const LineValues& run, const Bytes& expected, unsigned char code) {
  EXPECT_EQ(stored(mgr, id, run, code), expected);
  EXPECT_EQ(stored(mgr, id, run, static_cast<unsigned char>(code | 0x70)), expected);  // only 0x80 has a meaning here

  const Block disk(expected);
  const LineValues loaded(mgr, id, run.count);
  EXPECT_EQ(mgr.Load(id, loaded.first, disk.get(), code, run.count), expected.size());
  EXPECT_EQ(mgr.Cmp(id, loaded.first, run.first, 0, run.count, 8), 0);
  EXPECT_EQ(stored(mgr, id, loaded, code), expected);

  MemFile file(disk.get(), disk.size);
  EXPECT_EQ(mgr.DiskLenGetFromMemFile(id, &file, code, run.count), expected.size());
  if (code == 8) return;  // from here on 8 would tell that the values lie in memory
  EXPECT_EQ(mgr.DiskLenGet(id, disk.get(), code, run.count, code), expected.size());
}

// Keys are made of strings in memory and of records in both byte orders, in as much room as the example has bytes.
void checkKey(KtTypeMgr& mgr, char id, const LineValues& run, const Bytes& expected, unsigned char code) {
  const Block target(Bytes(expected.size(), 0xEE));
  const auto translated = [&](void* source, unsigned char form, unsigned long length) {
    EXPECT_EQ(mgr.Translate(id, target.get(), code, target.size, source, form, length, run.count), expected.size());
    return Bytes(target.get(), target.get() + target.size);
  };
  EXPECT_EQ(translated(run.first, 8, sizeof(KtString)), expected);
  for (const unsigned char form : Codes{0, 2}) {
    const Block record(stored(mgr, id, run, form));
    EXPECT_EQ(translated(record.get(), form, record.size), expected);
    const auto keyOfForm = static_cast<unsigned char>((code & 0xF0) | form);  // records are read in the order asked for
    EXPECT_GE(mgr.DiskLenGet(id, record.get(), keyOfForm, run.count, form), expected.size());
  }
}

void checkHash(KtTypeMgr& mgr, char id, const Bytes& disk, unsigned char code, const std::string& word) {
  const auto expected = static_cast<std::uint32_t>(std::stoul(word, nullptr, 16) * 1103515245u);
  int status = 1;
  EXPECT_EQ(mgr.Hash(id, disk.size(), Block(disk).get(), 1, code, status), expected);
  EXPECT_EQ(status, 0);
}

TEST(Formats, golden_examples_are_what_is_stored_loaded_and_sized) {
  KtTypeMgr current(12), legacy(11);
  for (const Example& example : goldenExamples()) {
    SCOPED_TRACE(example.text());
    ASSERT_FALSE(example.codes.empty() || example.bytes.empty());
    const Strings name = split(example.file, ".");  // the type, and which of its formats
    KtTypeMgr& mgr = name.back() == "older" ? legacy : current;
    char id;
    ASSERT_EQ(mgr.Name2KtTypeId(name[0].c_str(), id), 0);
    const LineValues run(mgr, id, example.value == "none" ? Strings{} : split(example.value, "; "));
    const Bytes expected = hex(example.bytes);
    for (const unsigned char code : codesOf(example)) {
      SCOPED_TRACE(int{code});
      (name.back() == "key" ? checkKey : checkStorage)(mgr, id, run, expected, code);
      if (!example.hashWord.empty() && code != 8) checkHash(mgr, id, expected, code, example.hashWord);
    }
  }
}

TEST(Formats, every_type_has_golden_examples_under_every_byte_order) {
  std::map<std::string, std::set<int>> codes;
  for (const Example& example : goldenExamples())
    for (const unsigned char code : codesOf(example)) codes[example.file].insert(code & 15);
  std::set<std::string> missing;
  const KtTypeMgr mgr(12);
  for (int id = 0; id < KtTYPE_COUNT; ++id)
    if (id != KT_ID_illegal) codes[mgr.NameGet(static_cast<char>(id), nullptr)];
  for (const auto& [file, present] : codes)
    for (const int code : {0, 1, 2, 4, 8})
      if (present.count(code) == 0) missing.insert(file + " " + std::to_string(code));
  EXPECT_EQ(missing, std::set<std::string>{});
}

TEST(Formats, the_pages_show_the_golden_examples_in_their_sections_and_no_others) {
  const std::set<std::string> documented = readPages().examples;
  std::set<std::string> golden, differing;
  for (const Example& example : goldenExamples()) golden.insert(example.text());
  std::set_symmetric_difference(golden.begin(), golden.end(), documented.begin(), documented.end(),
                                std::inserter(differing, differing.end()));
  EXPECT_EQ(differing, std::set<std::string>{});
}

// Rows of the entry page: | [KtDate](dates.md#ktdate) | `KtDate` |
TEST(Formats, the_entry_page_leads_from_each_type_to_its_sections) {
  std::set<std::string> targets, missing;
  std::map<std::string, Strings> typesOf;  // by target; split at back quotes
  for (const std::string& section : readPages().sections) targets.insert(linkTo(section));
  std::ifstream page(kPagesFolder / "README.md");
  for (std::string line; std::getline(page, line);) {
    const Strings parts = split(line, "](");
    if (line.compare(0, 3, "| [") != 0 || parts.size() != 2) continue;
    const std::string target = parts[1].substr(0, parts[1].find(')'));
    if (targets.count(target) == 0) missing.insert("section " + target);
    typesOf[target] = split(parts[1], "`");
  }
  for (const Example& example : goldenExamples()) {
    const std::string type = split(example.file, ".")[0];
    const Strings& types = typesOf[linkTo(example.section)];
    if (std::find(types.begin(), types.end(), type) == types.end()) missing.insert(type + " in " + example.section);
  }
  EXPECT_EQ(missing, std::set<std::string>{});
}

TEST(Formats, public_headers_lead_to_sections_of_the_pages) {
  const std::set<std::string> sections = readPages().sections;
  std::set<std::string> astray;
  for (const auto& entry : std::filesystem::directory_iterator(KT_TESTS_DIR "/../inc")) {
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) {
      if (line.find("// Disk:") != 0 || line.find("none: lives in memory only") != std::string::npos) continue;
      const std::string section = behindFolder(line);
      if (sections.count(section.substr(0, section.find_first_of(":)"))) == 0) astray.insert(line);
    }
  }
  EXPECT_EQ(astray, std::set<std::string>{});
}

}  // namespace
