// csv.h - reads comma-separated files as RFC 4180 has them: quoted fields, doubled quotes, line breaks inside quotes.
#ifndef EXAMPLES_COMMON_CSV_H
#define EXAMPLES_COMMON_CSV_H

#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

namespace examples {

class CsvReader {
public:
  explicit CsvReader(std::istream& in) : in_(in) {}

  // The next record; false at the end of the file. Throws std::runtime_error when a quote is never closed.
  bool next(std::vector<std::string>& fields) {
    fields.clear();
    if (in_.peek() == std::istream::traits_type::eof()) return false;
    ++record_;
    do {
      fields.push_back(in_.peek() == '"' ? quoted() : plain());
    } while (endOfField());
    return true;
  }

  unsigned long record() const { return record_; }  // of the last next(), from 1

private:
  std::string plain() {
    std::string field;
    for (int ch = in_.peek(); ch != ',' && ch != '\n' && ch != '\r' && ch >= 0; ch = in_.peek()) {
      field.push_back(static_cast<char>(in_.get()));
    }
    return field;
  }

  std::string quoted() {
    std::string field;
    in_.get();
    for (int ch = in_.get(); ch >= 0; ch = in_.get()) {
      if (ch == '"' && in_.peek() != '"') return field;
      if (ch == '"') in_.get();
      field.push_back(static_cast<char>(ch));
    }
    throw std::runtime_error("record " + std::to_string(record_) + ": a quote is not closed");
  }

  // Consumes what ends a field; true when another one follows in the record.
  bool endOfField() {
    int ch = in_.get();
    if (ch == '\r' && in_.peek() == '\n') ch = in_.get();
    return ch == ',';
  }

  std::istream& in_;
  unsigned long record_ = 0;
};

}  // namespace examples

#endif
