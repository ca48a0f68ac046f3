#include "table.h"

#include "../common/csv.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

namespace {

constexpr unsigned char kEnglish = 1;

// A date before year 0 has a character more than "%Y" takes. Such texts go by the day number that dates convert from.
bool isDayBeforeYear0(const Column& column, const std::string& text) {
  return std::string(column.type) == "KtDate" && !text.empty() && text.front() == '-';
}

std::string dayNumberOf(const std::string& text) {
  int year = 0, month = 1, day = 1;
  if (std::sscanf(text.c_str(), "%d-%d-%d", &year, &month, &day) != 3) throw std::runtime_error("no date: " + text);
  return std::to_string(KtDate(year, month, day).dayabs());
}

// Where each column of the schema stands in the file.
std::vector<std::size_t> findColumns(const std::vector<std::string>& header, const std::vector<Column>& schema,
                                     const std::string& file) {
  std::vector<std::size_t> positions;
  for (const Column& column : schema) {
    const auto found = std::find(header.begin(), header.end(), column.name);
    if (found == header.end()) throw std::runtime_error(file + ": no column named " + column.name);
    positions.push_back(static_cast<std::size_t>(found - header.begin()));
  }
  return positions;
}

}  // namespace

Table::Table(KtTypeMgr& mgr, const std::string& file, const std::vector<Column>& schema) : schema_(schema) {
  const auto records = examples::readCsvFile(file);
  const auto positions = findColumns(records.front(), schema, file);
  const unsigned long rows = records.size() - 1;
  for (std::size_t c = 0; c < schema.size(); ++c) {
    char id;
    if (mgr.Name2KtTypeId(schema[c].type, id) != 0) throw std::runtime_error(std::string("no type ") + schema[c].type);
    columns_.push_back(std::make_unique<Run>(mgr, id, rows));
    for (unsigned long r = 0; r < rows; ++r) {
      const auto& record = records[r + 1];
      if (positions[c] >= record.size())
        throw std::runtime_error(file + ": record " + std::to_string(r + 2) + " is short");
      const std::string& text = record[positions[c]];
      if (isDayBeforeYear0(schema[c], text)) {
        columns_.back()->convert(r, dayNumberOf(text));
      } else {
        columns_.back()->set(r, text, kEnglish, schema[c].format);
      }
    }
  }
}

Run& Table::run(const std::string& name) const {
  const auto found = std::find_if(schema_.begin(), schema_.end(), [&](const Column& c) { return name == c.name; });
  if (found == schema_.end()) throw std::runtime_error("no column named " + name);
  return *columns_[static_cast<std::size_t>(found - schema_.begin())];
}

std::vector<unsigned long> sortedBy(KtTypeMgr& mgr, const Run& run, bool descending) {
  std::vector<unsigned long> order(run.count());
  std::iota(order.begin(), order.end(), 0ul);
  std::stable_sort(order.begin(), order.end(), [&](unsigned long a, unsigned long b) {
    const long result = mgr.Cmp(run.id(), run.at(a), run.at(b), KtCMP_NO_WILDCARDS, 1, 8);
    return descending ? result > 0 : result < 0;
  });
  return order;
}
