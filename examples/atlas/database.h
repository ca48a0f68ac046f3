// database.h - a database of objects in one file: schema, objects under their ids, and indexes.
//
// A Database works in one transaction at a time. Opened for reading it sees the state at that moment for its whole
// life; opened for writing, commit() ends one transaction and begins the next, and what was not committed is dropped.
#ifndef EXAMPLES_ATLAS_DATABASE_H
#define EXAMPLES_ATLAS_DATABASE_H

#include "block.h"
#include "index.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace atlas {

struct OpenOptions {
  std::string file;
  unsigned long long mapSize = 0;         // bytes, 0: the default
  std::optional<unsigned char> language;  // of names: of a new database, or the one that the database must have
};

// Walks the objects of a class, or all, in the order of their ids.
class ObjectScan {
public:
  // False at the end. Throws Error at a block or an object that is damaged, and goes on behind it when called again.
  bool next();
  // Valid until the next call.
  const Record& record() const { return *record_; }

private:
  friend class Database;
  ObjectScan(const class Database& database, const ClassSchema* cls);
  bool nextBlock();

  const class Database* database_;
  const ClassSchema* class_;  // null: all
  const ClassSchema* blockClass_ = nullptr;
  Cursor cursor_;
  Block block_;
  unsigned at_ = 0;      // of the next object in the block
  bool isOver_ = false;  // there is no other block
  std::optional<Record> record_;
};

class Database {
public:
  // Opens an existing database. Throws Error when the file is no atlas database or damaged.
  static std::unique_ptr<Database> openForReading(const OpenOptions& options);
  static std::unique_ptr<Database> openForWriting(const OpenOptions& options);
  // Opens for writing; a file that does not exist, or is empty, becomes a database of the schema. One that exists must
  // have this schema.
  static std::unique_ptr<Database> create(const OpenOptions& options, const Schema& schema);
  ~Database();

  const Schema& schema() const;
  const std::string& file() const;
  unsigned char language() const;  // of texts

  // --- objects ----------------------------------------------------------------------------------------------------
  unsigned long long count(const ClassSchema& cls) const;
  // Valid while the transaction is. Throws Error when there is no such object.
  Record get(ObjId id) const;
  std::optional<Record> find(ObjId id) const;
  // The object that a stored value of a field refers to; nothing where the field is no reference, the value is null, or
  // no object of the right class is there.
  std::optional<Record> follow(const Field& field, Bytes stored) const;
  // The id of an object by its number alone, with the block that holds it; null: none.
  ObjId idOf(unsigned long long number) const;
  ObjectScan objects(const ClassSchema* cls = nullptr) const;

  // --- indexes ----------------------------------------------------------------------------------------------------
  const Index* index(const ClassSchema& cls, const Field& field) const;  // null: the field has none
  const std::vector<std::unique_ptr<Index>>& indexes() const;

  // --- change -----------------------------------------------------------------------------------------------------
  // Adds an object; it gets its id, and is written and indexed together with others: at the latest by commit(), and
  // before anything is read through flush(). Throws Error for values that an index refuses.
  ObjId add(const Draft& draft);
  ObjId add(const ClassSchema& cls, const std::vector<Bytes>& fields);  // of stored fields, each of one value
  // As add, but for the id that the object had in another database of the schema. Objects come as they were added there,
  // the first of all included; throws Mistake otherwise.
  void restore(ObjId id, const Draft& draft);
  void flush();
  void commit();
  // A small note that is kept with the data of the transaction; empty: none.
  std::string note(const std::string& key) const;
  void setNote(const std::string& key, const std::string& text);

private:
  friend class ObjectScan;
  struct Parts;
  explicit Database(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

}  // namespace atlas

#endif
