#include "contestant.h"

#include <sqlite3.h>
#ifdef KT_HAVE_ICU
#include <unicode/ucol.h>
#endif

#include <cstdint>
#include <stdexcept>

namespace atlas::bench {
namespace {

class Connection {
public:
  explicit Connection(const std::string& file) {
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    require(sqlite3_open_v2(file.c_str(), &connection_, kFlags, nullptr) == SQLITE_OK);
    // As LMDB does it: on the disk before commit returns, and pages read through a map of the file.
    run("PRAGMA synchronous = FULL");
    run("PRAGMA journal_mode = DELETE");
    run("PRAGMA mmap_size = 4294967296");
    run("PRAGMA cache_size = -200000");
    run("PRAGMA locking_mode = EXCLUSIVE");
  }
  ~Connection() { sqlite3_close(connection_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  sqlite3* get() const { return connection_; }
  void run(const std::string& sql) {
    require(sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
  }
  void require(bool done) const {
    if (!done) throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(connection_));
  }

private:
  sqlite3* connection_ = nullptr;
};

class Statement {
public:
  Statement(const Connection& connection, const std::string& sql) : connection_(connection) {
    connection.require(sqlite3_prepare_v3(connection.get(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement_,
                                          nullptr) == SQLITE_OK);
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  void bind(int at, std::int64_t number) { sqlite3_bind_int64(statement_, at, number); }
  void bind(int at, double number) { sqlite3_bind_double(statement_, at, number); }
  void bind(int at, const std::string& text) {
    sqlite3_bind_text(statement_, at, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }
  bool step() {
    const int result = sqlite3_step(statement_);
    connection_.require(result == SQLITE_ROW || result == SQLITE_DONE);
    return result == SQLITE_ROW;
  }
  void reset() { sqlite3_reset(statement_); }
  sqlite3_stmt* get() const { return statement_; }

private:
  const Connection& connection_;
  sqlite3_stmt* statement_ = nullptr;
};

#ifdef KT_HAVE_ICU
int compareByIcu(void* collator, int sizeA, const void* a, int sizeB, const void* b) {
  UErrorCode status = U_ZERO_ERROR;
  return ucol_strcollUTF8(static_cast<UCollator*>(collator), static_cast<const char*>(a), sizeA,
                          static_cast<const char*>(b), sizeB, &status);
}

// Blanks and symbols decide last, as with us.
UCollator* openCollator() {
  UErrorCode status = U_ZERO_ERROR;
  UCollator* opened = ucol_open("en", &status);
  if (U_FAILURE(status)) throw std::runtime_error("ICU has no English collation");
  ucol_setAttribute(opened, UCOL_ALTERNATE_HANDLING, UCOL_SHIFTED, &status);
  ucol_setAttribute(opened, UCOL_STRENGTH, UCOL_QUATERNARY, &status);
  return opened;
}

void useIcu(const Connection& connection) {
  connection.require(
      sqlite3_create_collation_v2(connection.get(), "ICU", SQLITE_UTF8, openCollator(), compareByIcu,
                                  [](void* collator) { ucol_close(static_cast<UCollator*>(collator)); }) == SQLITE_OK);
}
#else
void useIcu(const Connection&) {}
#endif

constexpr char kFields[] = "SELECT id, name, population, founded, latitude FROM place WHERE ";

// Prepared once for each kind of query.
struct Statements {
  explicit Statements(const Connection& connection)
      : population(connection, std::string(kFields) + "population BETWEEN ? AND ?"),
        founded(connection, std::string(kFields) + "founded BETWEEN ? AND ?"),
        name(connection, std::string(kFields) + "name >= ? AND name < ?"),
        country(connection, std::string(kFields) + "country = ?") {}

  // The statement of the query, bound.
  Statement& of(const Query& query) {
    switch (query.kind) {
      case Kind::kPopulation: return bound(population, std::int64_t{query.least}, std::int64_t{query.greatest});
      case Kind::kFounded: return bound(founded, std::int64_t{query.first.number()}, std::int64_t{query.last.number()});
      case Kind::kName: return bound(name, query.from, query.to);
      case Kind::kCountry: break;
    }
    country.reset();
    country.bind(1, std::int64_t{query.country} + 1);
    return country;
  }

  Statement population, founded, name, country;

private:
  template <class Value>
  static Statement& bound(Statement& statement, const Value& from, const Value& to) {
    statement.reset();
    statement.bind(1, from);
    statement.bind(2, to);
    return statement;
  }
};

class Sqlite : public Contestant {
public:
  Sqlite(std::string title, std::string collation) : title_(std::move(title)), collation_(std::move(collation)) {}

  std::string name() const override { return title_; }
  void load(const Places& places, const std::string& file) override;
  void open(const std::string& file) override;
  unsigned long run(const Query& query) override;
  std::vector<Hit> hits(const Query& query) override;

private:
  std::unique_ptr<Connection> connect(const std::string& file) const {
    auto connection = std::make_unique<Connection>(file);
    if (collation_ == "ICU") useIcu(*connection);
    return connection;
  }

  std::string title_;
  std::string collation_;
  std::unique_ptr<Connection> connection_;
  std::unique_ptr<Statements> statements_;
};

void insertAll(const Connection& connection, const Places& places) {
  Statement country(connection, "INSERT INTO country VALUES (NULL, ?)");
  for (const std::string& code : places.countries) {
    country.reset();
    country.bind(1, code);
    country.step();
  }
  Statement place(connection, "INSERT INTO place VALUES (NULL, ?, ?, ?, ?, ?, ?)");
  for (const Place& each : places.places) {
    place.reset();
    place.bind(1, each.name);
    place.bind(2, std::int64_t{each.country} + 1);
    place.bind(3, std::int64_t{each.population});
    place.bind(4, std::int64_t{each.founded.number()});
    place.bind(5, each.latitude);
    place.bind(6, static_cast<double>(each.longitude));
    place.step();
  }
}

// Indexes are made behind the rows: SQLite sorts them then, which is its fastest way.
void Sqlite::load(const Places& places, const std::string& file) {
  statements_.reset();
  connection_.reset();
  const auto connection = connect(file);
  connection->run("BEGIN");
  connection->run("CREATE TABLE country (id INTEGER PRIMARY KEY, code TEXT COLLATE NOCASE)");
  connection->run("CREATE TABLE place (id INTEGER PRIMARY KEY, name TEXT COLLATE " + collation_ +
                  ", country INTEGER, population INTEGER, founded INTEGER, latitude REAL, longitude REAL)");
  insertAll(*connection, places);
  connection->run("CREATE INDEX country_code ON country (code)");
  for (const char* field : {"name", "country", "population", "founded"}) {
    connection->run(std::string("CREATE INDEX place_") + field + " ON place (" + field + ")");
  }
  connection->run("COMMIT");
}

void Sqlite::open(const std::string& file) {
  statements_.reset();
  connection_ = connect(file);
  connection_->run("BEGIN");  // one transaction, as on the other side
  statements_ = std::make_unique<Statements>(*connection_);
}

unsigned long Sqlite::run(const Query& query) {
  Statement& statement = statements_->of(query);
  unsigned long sum = 0;
  while (statement.step()) {
    const auto* name = sqlite3_column_text(statement.get(), 1);
    sum += static_cast<unsigned long>(sqlite3_column_bytes(statement.get(), 1)) + name[0];
    sum += static_cast<unsigned long>(sqlite3_column_int64(statement.get(), 2));
    sum += static_cast<unsigned long>(sqlite3_column_int64(statement.get(), 3));
    sum += sqlite3_column_double(statement.get(), 4) > 0 ? 1 : 0;
  }
  return sum;
}

std::vector<Hit> Sqlite::hits(const Query& query) {
  Statement& statement = statements_->of(query);
  std::vector<Hit> hits;
  while (statement.step()) {
    sqlite3_stmt* row = statement.get();
    hits.push_back({static_cast<unsigned long>(sqlite3_column_int64(row, 0) - 1),
                    reinterpret_cast<const char*>(sqlite3_column_text(row, 1)),
                    static_cast<unsigned>(sqlite3_column_int64(row, 2)),
                    static_cast<long>(sqlite3_column_int64(row, 3)), sqlite3_column_double(row, 4)});
  }
  return hits;
}

}  // namespace

std::unique_ptr<Contestant> makeSqlite() { return std::make_unique<Sqlite>("SQLite NOCASE", "NOCASE"); }

std::unique_ptr<Contestant> makeSqliteIcu() {
#ifdef KT_HAVE_ICU
  return std::make_unique<Sqlite>("SQLite ICU", "ICU");
#else
  return nullptr;
#endif
}

}  // namespace atlas::bench
