#include "trials.h"

#include "explain.h"
#include "utf8_width.h"

#include <algorithm>
#include <random>

namespace atlas {

namespace {

// The stored values of one field that are not null.
struct Column {
  const Index* index;
  std::vector<Buffer> values;
  unsigned long objects = 0;  // of the class, with and without a value
};

std::vector<Column> columnsOf(const Database& database, const ClassSchema& cls) {
  std::vector<Column> columns;
  std::vector<Value> readers;
  for (const Field& field : cls.fields) {
    const Index* index = database.index(cls, field);
    if (index == nullptr) continue;
    columns.push_back({index, {}});
    readers.emplace_back(field.type);
  }
  ObjectScan scan = database.objects(columns.empty() ? nullptr : &cls);
  while (!columns.empty() && scan.next()) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const Bytes stored = scan.record().fieldBytes(cls.placeOf(columns[i].index->field()));
      readers[i].load(stored);
      if (!readers[i].isNull()) columns[i].values.emplace_back(stored.data, stored.data + stored.size);
      ++columns[i].objects;
    }
  }
  return columns;
}

class Trials {
public:
  Trials(const Database& database, const Column& column, std::mt19937& random)
      : database_(database), column_(column), field_(column.index->field()), random_(random) {}

  Sample next(std::size_t series) {
    const BoundComparison comparison = make();
    unsigned long matches = 0;
    for (const Buffer& value : column_.values) {
      matches += answer(comparison, field_.type, value, false) == Answer::kTrue ? 1 : 0;
    }
    return {series, evaluate(*column_.index, {&comparison}).estimate,
            static_cast<double>(matches) / static_cast<double>(column_.objects), label(comparison)};
  }

private:
  const Buffer& anyValue() { return column_.values[random_() % column_.values.size()]; }

  BoundComparison make() {
    static constexpr Operator kOperators[] = {Operator::kLess,         Operator::kLessEqual, Operator::kGreater,
                                              Operator::kGreaterEqual, Operator::kBetween,   Operator::kEqual,
                                              Operator::kLike};
    const std::size_t operators = std::size(kOperators) - (hasPatterns(field_.type) ? 0 : 1);
    BoundComparison comparison;
    comparison.field = column_.index->cls().placeOf(field_);
    comparison.op = field_.references ? Operator::kEqual : kOperators[made_++ % operators];
    comparison.order = {column_.index->settings().options, kStored};
    comparison.values.push_back(comparison.op == Operator::kLike ? anyPattern() : anyValue());
    if (comparison.op == Operator::kBetween) addUpper(comparison);
    return comparison;
  }

  void addUpper(BoundComparison& comparison) {
    comparison.values.push_back(anyValue());
    std::vector<Buffer>& values = comparison.values;
    if (compare(field_.type, values[0], values[1], comparison.order) > 0) std::swap(values[0], values[1]);
  }

  // The first one to three characters of a text, and "*".
  Buffer anyPattern() {
    const std::string whole = storedText(database_, field_, anyValue());
    std::string_view text = whole;
    std::string pattern;
    for (std::size_t length = 1 + random_() % 3; length != 0 && !text.empty(); --length) {
      const std::size_t bytes = firstCharacter(text).bytes;
      const bool isSpecial = std::string_view("*?\\").find(text[0]) != std::string_view::npos;
      if (isSpecial) pattern += '\\';
      pattern += text.substr(0, bytes);
      text.remove_prefix(bytes);
    }
    Value value(field_.type);
    value.scan(pattern + "*", field_, database_.language());
    return value.stored();
  }

  std::string label(const BoundComparison& comparison) const {
    std::string text = field_.name + " " + operatorText(comparison.op);
    for (std::size_t i = 0; i < comparison.values.size(); ++i) {
      text += i == 0 ? " \"" : "\" and \"";
      text += storedText(database_, field_, comparison.values[i]);
    }
    return text + "\"";
  }

  const Database& database_;
  const Column& column_;
  const Field& field_;
  std::mt19937& random_;
  std::size_t made_ = 0;
};

}  // namespace

Scatter runTrials(const Database& database, std::size_t count) {
  std::vector<Column> columns;
  for (const ClassSchema& cls : database.schema().classes()) {
    for (Column& column : columnsOf(database, cls)) {
      if (!column.values.empty()) columns.push_back(std::move(column));
    }
  }
  std::mt19937 random;  // NOLINT: seeded alike in every run, which is wanted
  Scatter scatter;
  for (const Column& column : columns) {
    const std::size_t series = scatter.series.size(), share = (count + series) / columns.size();
    Trials trials(database, column, random);
    scatter.series.push_back(column.index->name());
    for (std::size_t i = 0; i < share; ++i) scatter.samples.push_back(trials.next(series));
  }
  return scatter;
}

}  // namespace atlas
