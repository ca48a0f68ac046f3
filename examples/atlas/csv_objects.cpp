#include "csv_objects.h"

#include <algorithm>

namespace atlas {
namespace {

// A cell may hold line breaks.
unsigned long linesOf(const std::vector<std::string>& cells) {
  unsigned long lines = 1;
  for (const std::string& cell : cells) lines += static_cast<unsigned long>(std::count(cell.begin(), cell.end(), '\n'));
  return lines;
}

bool readCells(examples::CsvReader& reader, const std::string& file, unsigned long line,
               std::vector<std::string>& cells) {
  try {
    return reader.next(cells);
  } catch (const std::runtime_error& damage) {
    throw Mistake(file + ":" + std::to_string(line) + ": " + damage.what());
  }
}

}  // namespace

CsvObjects::CsvObjects(const Database& database, const std::string& file, const std::string& className)
    : database_(&database), file_(file), in_(file, std::ios::binary), reader_(in_), draft_(classOf(className)) {
  known_.resize(cls().fields.size());
  findColumns();
}

const ClassSchema& CsvObjects::classOf(const std::string& className) {
  if (!in_) throw Mistake(file_ + ": cannot be read");
  if (!readCells(reader_, file_, line_, header_)) throw Mistake(file_ + ": is empty");
  nextLine_ += linesOf(header_);
  const Schema& schema = database_->schema();
  const ClassSchema* cls = className.empty() ? schema.byHeader(header_) : schema.find(className);
  if (cls != nullptr) return *cls;
  if (!className.empty()) throw Mistake("there is no class \"" + className + "\"");
  throw Mistake(file_ + ":1: no class has these columns");
}

void CsvObjects::findColumns() {
  for (const Field& field : cls().fields) {
    const auto found = std::find(header_.begin(), header_.end(), field.column);
    if (found == header_.end()) {
      throw Mistake(file_ + ":1: there is no column \"" + field.column + "\" for the class " + cls().name);
    }
    columns_.push_back(static_cast<std::size_t>(found - header_.begin()));
  }
}

bool CsvObjects::next() {
  line_ = nextLine_;
  if (!readCells(reader_, file_, line_, cells_)) return false;
  nextLine_ += linesOf(cells_);
  ++row_;
  if (cells_.size() != header_.size()) {
    throw Mistake(file_ + ":" + std::to_string(line_) + ": the row has " + std::to_string(cells_.size()) +
                  " columns, the header " + std::to_string(header_.size()));
  }
  return true;
}

const Draft& CsvObjects::draft() {
  for (std::size_t field = 0; field < columns_.size(); ++field) {
    try {
      fill(field, cells_[columns_[field]]);
    } catch (const Mistake& mistake) {
      throw Mistake(file_ + ":" + std::to_string(line_) + ": column " + cls().fields[field].column + ": " +
                    mistake.what());
    }
  }
  return draft_;
}

void CsvObjects::fill(std::size_t field, const std::string& text) {
  const Field& schema = cls().fields[field];
  if (schema.references && !text.empty()) {
    refer(field, text);
  } else {
    draft_[field].scan(text, schema, database_->language());
  }
  if (schema.indexed && !hasPlace(schema.type, draft_[field].stored()))
    throw Mistake("\"" + text + "\" has no place in an index");
}

void CsvObjects::refer(std::size_t field, const std::string& text) {
  const auto known = known_[field].find(text);
  if (known != known_[field].end()) {
    draft_[field].load(known->second);
    return;
  }
  const FieldPlace& target = *cls().fields[field].references;
  const ClassSchema& targetClass = database_->schema().classes()[target.cls];
  const Field& key = targetClass.fields[target.field];
  Value wanted(key.type);
  wanted.scan(text, key, database_->language());
  const ObjId found = database_->index(targetClass, key)->find(wanted.stored());
  if (found.IsNullValue() != 0) {
    throw Mistake("no " + targetClass.name + " has the " + key.name + " \"" + text + "\"");
  }
  KtRef ref;
  ref = found;
  ref.database = kThisDatabase;
  ref.classNumber = targetClass.number;
  manager().AssignmentPtrGet(KT_ID_KtRef)(draft_[field].data(), &ref, 1, 0);
  known_[field][text] = draft_[field].stored();
}

}  // namespace atlas
