// table.h - a table of columns read from a CSV file by a schema of (column, type id) pairs.
#ifndef EXAMPLES_COLUMNS_TABLE_H
#define EXAMPLES_COLUMNS_TABLE_H

#include "run.h"

#include <string>
#include <vector>

struct Column {
  const char* name;              // as in the header line of the file
  const char* type;              // name of a type in the type table
  const char* format = nullptr;  // of the texts in the file; null: the type's own
};

class Table {
public:
  // Reads the columns of the schema from the file. Throws std::runtime_error with a message for people.
  Table(KtTypeMgr& mgr, const std::string& file, const std::vector<Column>& schema);

  unsigned long rows() const { return columns_.front()->count(); }
  std::size_t width() const { return columns_.size(); }
  const Column& column(std::size_t i) const { return schema_[i]; }
  Run& run(std::size_t i) const { return *columns_[i]; }
  Run& run(const std::string& name) const;

private:
  std::vector<Column> schema_;
  std::vector<std::unique_ptr<Run>> columns_;
};

// The row numbers in the order of a column: stable, and wildcards off, so that every text is just a text.
std::vector<unsigned long> sortedBy(KtTypeMgr& mgr, const Run& run, bool descending = false);

#endif
