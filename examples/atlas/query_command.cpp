// query_command.cpp - atlas query: the objects that match a predicate, as a table.
#include "cli.h"
#include "columns.h"
#include "explain.h"

#include <cstdio>
#include <memory>

namespace atlas {

namespace {

struct QueryArguments {
  std::string predicate;
  std::string className;
  std::vector<std::string> fields;
  unsigned long long limit = 0;  // 0: none
  bool explain = false;
  bool count = false;
};

void print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

Predicate parsed(const std::string& text) {
  try {
    return parsePredicate(text);
  } catch (const PredicateError& error) {
    throw Mistake(std::string("in the predicate, ") + error.what());
  }
}

// The fields to show: those that are named, or all.
std::vector<std::size_t> shownFields(const ClassSchema& cls, const std::vector<std::string>& names) {
  std::vector<std::size_t> fields;
  for (const std::string& name : names) {
    const Field* field = cls.find(name);
    if (field == nullptr) throw Mistake("--fields: class " + cls.name + " has no field \"" + name + "\"");
    fields.push_back(cls.placeOf(*field));
  }
  for (std::size_t i = 0; names.empty() && i < cls.fields.size(); ++i) fields.push_back(i);
  return fields;
}

// Prints rows in parts, so that the longest answer takes no more memory than a part.
class RowPrinter {
public:
  RowPrinter(const Database& database, const ClassSchema& cls, std::vector<std::size_t> fields)
      : database_(database),
        fields_(std::move(fields)),
        columns_(names(cls, fields_), utf8Of(KtTypeMgr::GetNullPrintString())) {}

  void add(const Record& record) {
    std::vector<std::string> row;
    for (const std::size_t field : fields_) row.push_back(fieldText(database_, record, field));
    columns_.add(std::move(row));
    if (columns_.rows() == kPart) print(columns_.text());
  }
  void finish() { print(columns_.text()); }

private:
  static constexpr std::size_t kPart = 1000;
  static std::vector<std::string> names(const ClassSchema& cls, const std::vector<std::size_t>& fields) {
    std::vector<std::string> names;
    names.reserve(fields.size());
    for (const std::size_t field : fields) names.push_back(cls.fields[field].name);
    return names;
  }

  const Database& database_;
  std::vector<std::size_t> fields_;
  Columns columns_;
};

void query(const QueryArguments& arguments, const Globals& globals) {
  const Predicate predicate = parsed(arguments.predicate);
  const std::unique_ptr<Database> database = Database::openForReading(globals.open());
  const ClassSchema& cls = classOf(*database, arguments.predicate, predicate, arguments.className);
  const BoundPredicate bound = bindPredicate(*database, cls, arguments.predicate, predicate);
  RowPrinter rows(*database, cls, shownFields(cls, arguments.fields));
  const Plan chosen = plan(*database, cls, bound);
  const unsigned long long limit = arguments.limit == 0 ? ~0ull : arguments.limit;
  if (arguments.explain) {
    const Work work = run(*database, cls, chosen, bound, [](const Record&) { return true; });
    print(explanation(*database, cls, canonicalText(predicate), chosen, work) + "\n");
  }
  unsigned long long shown = 0;
  const auto show = [&](const Record& record) {
    if (!arguments.count) rows.add(record);
    return ++shown < limit;
  };
  run(*database, cls, chosen, bound, show);
  if (arguments.count)
    print(std::to_string(shown) + "\n");
  else
    rows.finish();
}

constexpr const char* kAbout =
    "A predicate compares fields with values by = != < <= > >=, like (with the wildcards * and ?), is null and between "
    "... and ..., joined by and, or, not and parentheses. A comparison with null holds never, not even behind not.";

}  // namespace

void addQuery(CLI::App& app, const Globals& globals) {
  const auto arguments = std::make_shared<QueryArguments>();
  CLI::App* command = app.add_subcommand("query", "Show the objects that match a predicate");
  command->footer(kAbout);
  command->add_option("predicate", arguments->predicate, "e.g. 'population > 1000000 and name like \"San*\"'")
      ->required();
  command->add_option("--class", arguments->className,
                      "The class of the objects; without it the only one with all "
                      "fields of the predicate");
  command->add_option("--fields", arguments->fields, "Fields to show, without it all")->delimiter(',');
  command->add_option("--limit", arguments->limit, "Show at most so many objects")->check(CLI::PositiveNumber);
  command->add_flag("--explain", arguments->explain, "Tell how the objects are found, and how well that was estimated");
  command->add_flag("--count", arguments->count, "Show only how many there are");
  command->callback([arguments, &globals] { query(*arguments, globals); });
}

}  // namespace atlas
