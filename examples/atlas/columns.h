// columns.h - rows of UTF-8 texts as aligned columns.
#ifndef EXAMPLES_ATLAS_COLUMNS_H
#define EXAMPLES_ATLAS_COLUMNS_H

#include <string>
#include <vector>

namespace atlas {

// A column whose texts are all numbers, or the text for no value, stands to the right. The header comes once; widths only
// grow, so that a long table can be taken in parts.
class Columns {
public:
  explicit Columns(const std::vector<std::string>& header, std::string noValue = {});

  void add(std::vector<std::string> row);
  std::size_t rows() const { return rows_.size(); }
  // The header, if it was not given yet, and the rows added since.
  std::string text();

private:
  struct Column {
    std::string name;
    std::size_t width;
    bool isNumeric = true;
  };
  std::string line(const std::vector<std::string>& cells) const;

  std::string noValue_;
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
  bool hasHeader_ = false;
};

}  // namespace atlas

#endif
