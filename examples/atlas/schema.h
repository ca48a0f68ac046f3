// schema.h - the classes of a database: fields as (name, type id) pairs, read from a small text.
//
//   # a comment
//   class NAME NUMBER
//   field NAME TYPE [column NAME] [format "..."] [converted] [index] [references CLASS by FIELD]
//
// A NAME has 1 to 200 bytes and no dot; at most 250 fields have an index. TYPE is a name of the type table. column: that of
// the CSV file, without it the field's name. format: of the texts that are scanned and printed, without it the type's own.
// converted: texts are not scanned and printed but go through the type's conversion from and to strings. index: the field
// has an index. references: the text is looked up in the index of that field of that class, declared above, and the object
// found becomes the value, a KtRef. Words that hold blanks stand in double quotes.
#ifndef EXAMPLES_ATLAS_SCHEMA_H
#define EXAMPLES_ATLAS_SCHEMA_H

#include <kttm.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace atlas {

// The manager of all that atlas does. Asked for every comparison, so there is no "was it made already?" in it; it is not
// for the constructors of other global objects.
extern KtTypeMgr theManager;
inline KtTypeMgr& manager() { return theManager; }

// DISK: the format code of every stored value. Little-endian, because identities are ordered rightly only so.
constexpr unsigned char kStored = 0;
// DISK: that of index keys.
constexpr unsigned char kStoredKey = 0x80 | kStored;

// A field by the places of its class and of itself in the schema.
struct FieldPlace {
  std::size_t cls;
  std::size_t field;
};

struct Field {
  std::string name;
  std::string column;
  std::string typeName;
  char type = 0;                // id in the type table
  unsigned long fixedSize = 0;  // bytes of every stored value of the type; 0: they vary
  std::string format;           // empty: the type's own
  bool converted = false;
  bool indexed = false;
  std::optional<FieldPlace> references;  // the indexed field that the texts name

  // For PrintToKtString and ScanFromKtString.
  const char* formatOrNull() const { return format.empty() ? nullptr : format.c_str(); }
};

struct ClassSchema {
  std::string name;
  unsigned short number = 0;  // DISK: in references and records; 1 to 65534
  std::size_t place = 0;      // in Schema::classes()
  std::vector<Field> fields;

  const Field* find(const std::string& fieldName) const;  // null: no such field
  std::size_t placeOf(const Field& field) const { return static_cast<std::size_t>(&field - fields.data()); }
};

class Schema {
public:
  // Throws Mistake with `origin`, the line and the reason.
  static Schema parse(const std::string& text, const std::string& origin);

  const std::vector<ClassSchema>& classes() const { return classes_; }
  const ClassSchema* find(const std::string& className) const;  // null: no such class
  const ClassSchema* byNumber(unsigned number) const;
  // The class whose columns the header of a CSV file holds; of several the one with most columns. Null: none.
  const ClassSchema* byHeader(const std::vector<std::string>& header) const;
  const std::string& text() const { return text_; }  // as it was parsed

private:
  std::vector<ClassSchema> classes_;
  std::string text_;
};

}  // namespace atlas

#endif
