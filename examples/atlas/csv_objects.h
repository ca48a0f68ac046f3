// csv_objects.h - the rows of a CSV file as objects of a class.
#ifndef EXAMPLES_ATLAS_CSV_OBJECTS_H
#define EXAMPLES_ATLAS_CSV_OBJECTS_H

#include "../common/csv.h"
#include "database.h"

#include <fstream>
#include <string>
#include <unordered_map>
#include <vector>

namespace atlas {

// Reads a file row by row. All functions throw Mistake with file, line and column.
class CsvObjects {
public:
  // className: empty for the class that the header tells.
  CsvObjects(const Database& database, const std::string& file, const std::string& className);

  const ClassSchema& cls() const { return draft_.cls(); }
  bool next();  // false behind the last row
  // The values of the row; references are looked up. What next() left out is never looked at.
  const Draft& draft();
  unsigned long row() const { return row_; }  // of the last next(), from 1, the header not counted

private:
  const ClassSchema& classOf(const std::string& className);
  void findColumns();
  void fill(std::size_t field, const std::string& text);
  void refer(std::size_t field, const std::string& text);

  const Database* database_;
  std::string file_;
  unsigned long line_ = 1;      // where the row begins
  unsigned long nextLine_ = 1;  // and the next one; the header is read before the members below are made
  std::ifstream in_;
  examples::CsvReader reader_;
  std::vector<std::string> cells_;
  std::vector<std::string> header_;
  Draft draft_;
  std::vector<std::size_t> columns_;                            // of each field
  std::vector<std::unordered_map<std::string, Buffer>> known_;  // references by their texts, of each field
  unsigned long row_ = 0;
};

}  // namespace atlas

#endif
