// csv.h - reads comma-separated files as RFC 4180 has them: quoted fields, doubled quotes, line breaks inside quotes.
// What is read may be any bytes; a record ends at a line feed, a carriage return, or both.
#ifndef EXAMPLES_COMMON_CSV_H
#define EXAMPLES_COMMON_CSV_H

#include <fstream>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

namespace examples {

class CsvReader {
public:
  explicit CsvReader(std::istream& in) : in_(in) {}

  // The next record; false at the end of the file. Throws std::runtime_error with the reason when a quote is never closed,
  // or when something else than the end of the field follows one that is.
  bool next(std::vector<std::string>& fields) {
    fields.clear();
    if (in_.peek() == std::istream::traits_type::eof()) return false;
    ++record_;
    do {
      fields.push_back(in_.peek() == '"' ? quoted() : plain());
    } while (anotherFollows());
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
    throw std::runtime_error("a quote is not closed");
  }

  // Consumes what ends a field; true when another one follows in the record.
  bool anotherFollows() {
    const int ch = in_.get();
    if (ch == '\r' && in_.peek() == '\n') in_.get();
    if (ch >= 0 && ch != ',' && ch != '\n' && ch != '\r') throw std::runtime_error("text stands behind a closed quote");
    return ch == ',';
  }

  std::istream& in_;
  unsigned long record_ = 0;
};

// All records of a file, the header first. Throws std::runtime_error with the name of the file when it cannot be read, is
// damaged, or holds no more than a header.
inline std::vector<std::vector<std::string>> readCsvFile(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error(file + ": cannot be read");
  CsvReader reader(in);
  std::vector<std::vector<std::string>> records;
  try {
    for (std::vector<std::string> fields; reader.next(fields);) records.push_back(fields);
  } catch (const std::runtime_error& damage) {
    throw std::runtime_error(file + ": record " + std::to_string(reader.record()) + ": " + damage.what());
  }
  if (records.size() < 2) throw std::runtime_error(file + ": holds no rows");
  return records;
}

}  // namespace examples

#endif
