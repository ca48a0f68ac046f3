#include "columns.h"

#include "utf8_width.h"

#include <algorithm>
#include <utility>

namespace atlas {

namespace {

bool isNumber(const std::string& text) {
  const bool hasDigit = text.find_first_of("0123456789") != std::string::npos;
  return hasDigit && text.find_first_not_of("0123456789+-.eE") == std::string::npos;
}

}  // namespace

Columns::Columns(const std::vector<std::string>& header, std::string noValue) : noValue_(std::move(noValue)) {
  for (const std::string& name : header) columns_.push_back({name, displayWidth(name)});
}

void Columns::add(std::vector<std::string> row) {
  for (std::string& cell : row) cell = printable(cell);
  rows_.push_back(std::move(row));
}

std::string Columns::line(const std::vector<std::string>& cells) const {
  std::string text;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::size_t used = displayWidth(cells[i]);
    const std::string blanks(columns_[i].width > used ? columns_[i].width - used : 0, ' ');
    if (i != 0) text += "  ";
    text += columns_[i].isNumeric ? blanks + cells[i] : cells[i] + blanks;
  }
  return text.erase(text.find_last_not_of(' ') + 1) + "\n";
}

std::string Columns::text() {
  for (const std::vector<std::string>& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      columns_[i].width = std::max(columns_[i].width, displayWidth(row[i]));
      columns_[i].isNumeric = columns_[i].isNumeric && (isNumber(row[i]) || row[i] == noValue_);
    }
  }
  std::string text;
  std::vector<std::string> header;
  for (const Column& column : columns_) header.push_back(column.name);
  if (!std::exchange(hasHeader_, true)) text = line(header);
  for (const std::vector<std::string>& row : rows_) text += line(row);
  rows_.clear();
  return text;
}

}  // namespace atlas
