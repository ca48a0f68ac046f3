// Queries against a slow obvious twin: every object is judged with plain C++ values, without plan, index or type manager
// (only the order of texts is asked of KtString itself).
#include "../query.h"

#include "../error.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <set>

namespace {

using atlas::Database;
using atlas::Operator;
using atlas::Predicate;

constexpr char kSchema[] = R"(
class thing 1
  field code   KtDWord        index
  field name   KtString       index
  field plain  KtString
  field size   KtNull_double  index
  field count  long           index
  field born   KtDate         format "%Y-%m-%d"  index
  field big    KtInt64        index
  field twin   KtRef          index  references thing by code
)";

constexpr unsigned char kSwedish = 5;
constexpr unsigned long kObjects = 300;

// A row as texts; an empty one is null.
using Row = std::map<std::string, std::string>;

std::vector<Row> makeRows() {
  const char* const kNames[] = {"Aarau",    "Paris", "paris", "Pärnu",    "Zürich", "Ängelholm", "Åre",
                                "Østby",    "P",     "Par",   "Pa*is",    "Pa?is",  "Pa\\is",    "San José",
                                "San Juan", "東京",  "Łódź",  "St. Ives", "Past",   "Pást",      "Pasu",
                                "Pas",      "Pāsz",  "",      ""};
  const std::string longName = std::string(80, 'x');
  std::mt19937 random;  // NOLINT: the same rows in every run are wanted
  std::vector<Row> rows;
  for (unsigned long i = 0; i < kObjects; ++i) {
    Row row;
    row["code"] = std::to_string(1000 + i);
    row["name"] = i % 50 == 7 ? longName + std::to_string(i) : kNames[random() % std::size(kNames)];
    row["plain"] = kNames[random() % std::size(kNames)];
    row["size"] = random() % 4 == 0 ? "" : std::to_string(static_cast<int>(random() % 200) - 100) + ".5";
    row["count"] = std::to_string(static_cast<int>(random() % 40) - 20);
    char date[16];
    std::snprintf(date, sizeof date, "%04u-%02u-%02u", static_cast<unsigned>(1200 + random() % 800),
                  static_cast<unsigned>(1 + random() % 12), static_cast<unsigned>(1 + random() % 28));
    row["born"] = random() % 3 == 0 ? "" : date;
    row["big"] = std::to_string(static_cast<long long>(random() % 50) * 4000000000LL - 90000000000LL);
    row["twin"] = i < 5 ? "" : std::to_string(1000 + random() % 5);
    rows.push_back(row);
  }
  return rows;
}

std::filesystem::path scratchFile(const char* name) {
  return std::filesystem::path(testing::TempDir()) / ("atlas_query_" + std::to_string(::getpid()) + name);
}

class Query : public testing::Test {
protected:
  static void SetUpTestSuite() {
    rows_ = makeRows();
    const auto file = scratchFile(".db");
    std::filesystem::remove(file);
    {
      const auto database = Database::create({.file = file, .mapSize = 64 << 20, .language = kSwedish},
                                             atlas::Schema::parse(kSchema, "test"));
      const atlas::ClassSchema& cls = database->schema().classes()[0];
      for (const Row& row : rows_) database->add(draftOf(*database, cls, row));
      database->commit();
    }
    database_ = Database::openForReading({.file = file, .mapSize = 0, .language = std::nullopt});
  }

  static void TearDownTestSuite() {
    database_.reset();
    std::filesystem::remove(scratchFile(".db"));
    std::filesystem::remove(scratchFile(".db-lock"));
  }

  static atlas::Draft draftOf(Database& database, const atlas::ClassSchema& cls, const Row& row) {
    atlas::Draft draft(cls);
    for (std::size_t i = 0; i < cls.fields.size(); ++i) {
      const atlas::Field& field = cls.fields[i];
      const std::string& text = row.at(field.name);
      if (!field.references) {
        draft[i].scan(text, field, kSwedish);
        continue;
      }
      draft[i].clear();
      if (text.empty()) continue;
      database.flush();
      atlas::Value key(cls.fields[0].type);
      key.scan(text, cls.fields[0], kSwedish);
      KtRef reference;
      reference = database.index(cls, cls.fields[0])->find(key.stored());
      reference.database = atlas::kThisDatabase;
      reference.classNumber = cls.number;
      *static_cast<KtRef*>(draft[i].data()) = reference;
    }
    return draft;
  }

  static const atlas::ClassSchema& cls() { return database_->schema().classes()[0]; }

  // The codes of the objects that the database finds, and how it did.
  static std::set<std::string> found(const std::string& text, bool byIndex = true, bool* usedIndex = nullptr) {
    const Predicate predicate = atlas::parsePredicate(text);
    const atlas::BoundPredicate bound = atlas::bindPredicate(*database_, cls(), text, predicate);
    atlas::Plan plan = atlas::plan(*database_, cls(), bound);
    if (usedIndex != nullptr) *usedIndex = plan.usesIndex;
    plan.usesIndex = plan.usesIndex && byIndex;
    std::set<std::string> codes;
    atlas::run(*database_, cls(), plan, bound, [&](const atlas::Record& record) {
      EXPECT_TRUE(codes.insert(record.text(0)).second) << "found twice by " << text;
      return true;
    });
    return codes;
  }

  static std::unique_ptr<Database> database_;
  static std::vector<Row> rows_;
};

std::unique_ptr<Database> Query::database_;
std::vector<Row> Query::rows_;

// --- the twin -----------------------------------------------------------------------------------------------------

// -1, 0, 1 of two texts as values of a field.
int order(const std::string& field, const std::string& a, const std::string& b) {
  if (field == "name" || field == "plain") {
    const long sign = atlas::stringOf(a, kSwedish).Compare(atlas::stringOf(b, kSwedish), -1, KtCMP_NO_WILDCARDS);
    return (sign > 0) - (sign < 0);
  }
  if (field == "born") return (a > b) - (a < b);  // as ISO texts sort
  const double x = std::strtod(a.c_str(), nullptr), y = std::strtod(b.c_str(), nullptr);
  return (x > y) - (x < y);
}

bool globMatches(const char* pattern, const char* text) {
  if (*pattern == '\0') return *text == '\0';
  if (*pattern == '*') return globMatches(pattern + 1, text) || (*text != '\0' && globMatches(pattern, text + 1));
  if (*text == '\0') return false;
  const auto step = [](const char* at) {
    ++at;
    while ((static_cast<unsigned char>(*at) & 0xC0u) == 0x80) ++at;
    return at;
  };
  if (*pattern == '?') return globMatches(pattern + 1, step(text));
  if (*pattern == '\\' && (pattern[1] == '*' || pattern[1] == '?' || pattern[1] == '\\')) ++pattern;
  return *pattern == *text && globMatches(pattern + 1, text + 1);
}

using Maybe = std::optional<bool>;

Maybe judged(const atlas::Comparison& comparison, const Row& row) {
  const std::string& field = comparison.field.text;
  const std::string& value = row.at(field);
  if (comparison.op == Operator::kIsNull) return value.empty();
  if (value.empty()) return std::nullopt;
  const std::string& wanted = comparison.values[0].text;
  if (comparison.op == Operator::kLike && (field == "name" || field == "plain")) {
    return globMatches(wanted.c_str(), value.c_str());
  }
  const int sign = order(field, value, wanted);
  switch (comparison.op) {
    case Operator::kNotEqual: return sign != 0;
    case Operator::kLess: return sign < 0;
    case Operator::kLessEqual: return sign <= 0;
    case Operator::kGreater: return sign > 0;
    case Operator::kGreaterEqual: return sign >= 0;
    case Operator::kBetween: return sign >= 0 && order(field, value, comparison.values[1].text) <= 0;
    default: return sign == 0;
  }
}

Maybe judged(const Predicate& predicate, const Row& row) {
  if (predicate.kind == Predicate::Kind::kComparison) return judged(predicate.comparison, row);
  std::vector<Maybe> parts;
  for (const Predicate& part : predicate.parts) parts.push_back(judged(part, row));
  if (predicate.kind == Predicate::Kind::kNot) return parts[0] ? Maybe(!*parts[0]) : std::nullopt;
  const bool decisive = predicate.kind == Predicate::Kind::kOr;
  bool isUnknown = false;
  for (const Maybe& part : parts) {
    if (part == decisive) return decisive;
    isUnknown = isUnknown || !part;
  }
  return isUnknown ? std::nullopt : Maybe(!decisive);
}

std::set<std::string> wanted(const std::vector<Row>& rows, const std::string& text) {
  const Predicate predicate = atlas::parsePredicate(text);
  std::set<std::string> codes;
  for (const Row& row : rows) {
    if (judged(predicate, row) == true) codes.insert(row.at("code"));
  }
  return codes;
}

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char ch : text) result += (ch == '"' || ch == '\\') ? std::string("\\") + ch : std::string(1, ch);
  return result + "\"";
}

// --- tests --------------------------------------------------------------------------------------------------------

const std::map<std::string, std::vector<std::string>> kValues = {
    {"code", {"0", "1000", "1001", "1150", "1299", "4294967295"}},
    {"name", {"A", "Paris", "Pa*is", "Pa?is", "Pa\\is", "Pärnu", "Ö", "zzz", "東京", std::string(80, 'x') + "7"}},
    {"plain", {"Paris", "Pärnu", "San"}},
    {"size", {"-1000", "-50.5", "0", "12.5", "99.5", "1000"}},
    {"count", {"-21", "-20", "0", "7", "19", "20"}},
    {"born", {"1200-01-01", "1500-06-15", "1999-12-31", "2100-01-01"}},
    {"big", {"-90000000000", "-2000000000", "30000000000", "900000000000"}},
};

std::vector<std::string> comparisons() {
  std::vector<std::string> all;
  for (const auto& [field, values] : kValues) {
    for (const std::string& value : values) {
      for (const char* sign : {" = ", " != ", " < ", " <= ", " > ", " >= "}) {
        all.push_back(field + sign + quoted(value));
      }
      for (const std::string& upper : values) {
        all.push_back(field + " between " + quoted(value) + " and " + quoted(upper));
      }
    }
    all.push_back(field + " is null");
    all.push_back(field + " is not null");
  }
  for (const char* twin : {"1000", "1004", "1299"}) {
    all.push_back(std::string("twin = ") + twin);
    all.push_back(std::string("twin != ") + twin);
  }
  all.push_back("twin is null");
  return all;
}

TEST_F(Query, finds_what_plain_values_say_by_every_operator) {
  unsigned long matches = 0, byIndex = 0;
  for (const std::string& text : comparisons()) {
    const std::set<std::string> codes = wanted(rows_, text);
    bool usedIndex = false;
    EXPECT_EQ(found(text, true, &usedIndex), codes) << text;
    EXPECT_EQ(found(text, false), codes) << text;
    matches += codes.size();
    byIndex += usedIndex ? 1 : 0;
  }
  EXPECT_GT(matches, 10000u);
  EXPECT_GT(byIndex, 100u);
}

TEST_F(Query, matches_patterns_with_wildcards_at_every_position) {
  for (const char* field : {"name", "plain"}) {
    for (const std::string word : {"Paris", "Pärnu", "San José", "東京", "P", "Past"}) {
      for (std::size_t at = 0; at <= word.size(); ++at) {
        if (at < word.size() && (static_cast<unsigned char>(word[at]) & 0xC0u) == 0x80) continue;
        for (const char* wildcard : {"*", "?", "*?", "?*", "\\*"}) {
          // Of symbols and spaces in a row only the last counts, which the plain matcher does not know.
          if (wildcard[0] == '\\' && word.find(' ') != std::string::npos) continue;
          const std::string cut = word.substr(0, at) + wildcard;
          const std::size_t next = word.find_first_of("PariSnJo ", at + 1);
          std::vector<std::string> patterns = {cut, cut + word.substr(at)};
          if (next != std::string::npos) patterns.push_back(cut + word.substr(next));
          for (const std::string& pattern : patterns) {
            const std::string text = std::string(field) + " like " + quoted(pattern);
            EXPECT_EQ(found(text), wanted(rows_, text)) << text;
          }
        }
      }
    }
  }
}

TEST_F(Query, joins_by_three_valued_logic) {
  const std::vector<std::string> leaves = comparisons();
  std::mt19937 random(7);  // NOLINT: the same predicates in every run are wanted
  const auto leaf = [&] { return leaves[random() % leaves.size()]; };
  for (int i = 0; i < 1000; ++i) {
    std::string text = leaf();
    for (unsigned joins = 1 + random() % 4; joins != 0; --joins) {
      const char* const kJoints[] = {" and ", " and ", " or ", " and not "};
      std::string joined = random() % 3 == 0 ? "not (" : "(";
      joined.append(text).append(")").append(kJoints[random() % 4]).append(leaf());
      text = joined;
    }
    EXPECT_EQ(found(text), wanted(rows_, text)) << text;
  }
}

TEST_F(Query, takes_the_longest_text_and_the_longest_pattern) {
  EXPECT_TRUE(found("name = " + std::string(32000, 'a')).empty());
  EXPECT_TRUE(found("name like \"" + std::string(31999, '*') + "b\"").empty());
  EXPECT_EQ(found("code > 0" +
                  [] {
                    std::string all;
                    for (int i = 0; i < 5000; ++i) all += " and code > 0";
                    return all;
                  }())
                .size(),
            kObjects);
}

TEST_F(Query, narrows_one_index_by_several_parts) {
  const std::string text = "count > -5 and count <= 3 and count != 0";
  const Predicate predicate = atlas::parsePredicate(text);
  const atlas::BoundPredicate bound = atlas::bindPredicate(*database_, cls(), text, predicate);
  const atlas::Plan plan = atlas::plan(*database_, cls(), bound);
  ASSERT_EQ(plan.candidates.size(), 1u);
  ASSERT_TRUE(plan.usesIndex);
  // Of the 40 numbers from -20 to 19: 8 are above -5 and at most 3, 7 of them are not 0. What is left of the range holds
  // the -5 too.
  EXPECT_NEAR(plan.candidates[0].estimate, 7 / 40.0, 0.02);
  EXPECT_NE((*plan.candidates[0].bounds).lowKey, nullptr);
  EXPECT_NE((*plan.candidates[0].bounds).highKey, nullptr);
}

TEST_F(Query, orders_texts_by_the_language_of_the_database) {
  EXPECT_EQ(found("name > \"Zürich\" and name < \"Öa\" and name like \"Ä*\""), wanted(rows_, "name = \"Ängelholm\""));
  EXPECT_TRUE(found("name < \"Zürich\" and name = \"Ängelholm\"").empty());
}

struct Refused {
  const char* text;
  const char* reason;
};

TEST_F(Query, refuses_what_cannot_be_bound) {
  const std::string nines = "code = " + std::string(30000, '9'), endless = "name = " + std::string(32001, 'a');
  const std::string cutNines = "column 8: \"code\": KtDWord cannot read \"" + std::string(60, '9') + "...\"";
  const Refused kCases[] = {
      {"nothing = 1", "has no field \"nothing\"; it has code, name, plain, size, count, born, big, twin"},
      {"count = twelve", "column 9: \"count\""},
      {"count = 99999999999", "column 9: \"count\""},
      {"count = 0x10", "column 9: \"count\""},
      {"count = 1e400", "column 9: \"count\""},
      {"big = -9223372036854775809", "column 7: \"big\""},
      {"size = 1e400", "column 8: \"size\""},
      {"size = nan", "this value has no place in the order of KtNull_double"},
      {nines.c_str(), cutNines.c_str()},
      {endless.c_str(), "the text is longer than 32,000 bytes"},
      {"born = -99999999999-01-01", "column 8: \"born\""},
      {"born = 1999-13-01", "column 8: \"born\""},
      {"born between 1999-01-01 and soon", "column 29: \"born\""},
      {"name = ''", "only \"is null\" finds"},
      {"twin < 1000", "only by =, != and"},
      {"twin = 77", "there is no thing with this code"},
      {"twin = x", "column 8: \"code\": KtDWord cannot read"},
      {"count like 1*", "\"count\" is of the type long, which has no patterns"},
  };
  for (const Refused& wanted : kCases) {
    const Predicate predicate = atlas::parsePredicate(wanted.text);
    try {
      atlas::bindPredicate(*database_, cls(), wanted.text, predicate);
      ADD_FAILURE() << "bound: " << wanted.text;
    } catch (const atlas::Mistake& mistake) {
      EXPECT_NE(std::string(mistake.what()).find(wanted.reason), std::string::npos) << mistake.what();
    }
  }
}

}  // namespace
