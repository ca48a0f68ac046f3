#include "database.h"

#include "block_cache.h"
#include "comparators.h"
#include "meta.h"

#include <unistd.h>

namespace atlas {

namespace {

constexpr unsigned long long kDefaultMapSize = 4ULL << 30;
constexpr char kObjectsTree[] = "objects";  // DISK

unsigned long blockNumber(const MDB_val& key) {
  BlockId block = 0;
  if (key.mv_size != sizeof block) throw Error(kExitBroken, "the number of a block is damaged");
  manager().Load(KT_ID_BlockId, &block, key.mv_data, kStored, 1);
  return block;
}

[[noreturn]] void refuse(const Env& env, const std::string& why) {
  throw Error(kExitDatabase, "\"" + env.file() + "\" " + why);
}

// What was parsed when the database was made is damaged when it can no longer be.
Schema schemaIn(const Env& env, const Meta& meta) {
  try {
    return Schema::parse(meta.get("schema"), "the schema in \"" + env.file() + "\" is damaged");
  } catch (const Mistake& mistake) {
    throw Error(kExitBroken, mistake.what());
  }
}

}  // namespace

struct Database::Parts {
  Parts(const OpenOptions& options, bool readOnly)
      : env({options.file, options.mapSize == 0 && !readOnly ? kDefaultMapSize : options.mapSize, readOnly}),
        txn(env, readOnly),
        isNew(!readOnly && txn.entries(txn.open(nullptr, 0, nullptr, nullptr, false)) == 0) {}

  Env env;
  Txn txn;
  bool isNew;
  std::optional<Meta> meta;
  Tree objects = 0;
  Schema schema;
  unsigned char language = 0;
  std::vector<std::unique_ptr<Index>> indexes;
  Counters counters;
  std::optional<Batch> batch;
  std::optional<BlockCache> cache;  // where nothing can change a block

  bool findBlock(unsigned long id, Block& block);
  bool readBlock(unsigned long id, Block& block) const;
  void describe(const Schema& wanted, const OpenOptions& options);
  void recognise(const OpenOptions& options);
  void openTrees(const Database& database);
  IndexSettings settingsOf(const std::string& index);
};

// A new database says what it is.
void Database::Parts::describe(const Schema& wanted, const OpenOptions& options) {
  meta.emplace(txn, txn.open(kMetaTree, 0, nullptr, nullptr, true));
  meta->set("format", kFormatVersion);
  meta->set("schema", wanted.text());
  meta->set("language", std::to_string(options.language.value_or(languageOf("english"))));
  Counters none;
  none.objects.resize(wanted.classes().size());
  meta->setCounters(none, wanted);
}

void Database::Parts::recognise(const OpenOptions& options) {
  if (!meta) meta.emplace(txn, txn.open(kMetaTree, 0, nullptr, nullptr, false));
  const std::string format = meta->find("format").value_or("");
  if (format.rfind("atlas ", 0) != 0) refuse(env, "is no atlas database");
  if (format != kFormatVersion) refuse(env, "has the format \"" + format + "\"; this program knows " + kFormatVersion);
  schema = schemaIn(env, *meta);
  counters = meta->counters(schema);
  language = static_cast<unsigned char>(meta->number("language", 0xFF));
  if (options.language && *options.language != language) {
    refuse(env, "was made in the language " + languageName(language) + ", not " + languageName(*options.language));
  }
}

IndexSettings Database::Parts::settingsOf(const std::string& index) {
  const std::optional<IndexSettings> found = meta->settings(index);
  const IndexSettings wanted{language, KtCMP_NO_WILDCARDS, kKeyOptions, kLongestKey};
  if (!found && isNew) meta->setSettings(index, wanted);
  const IndexSettings settings = found.value_or(wanted);
  if (!(settings == wanted)) refuse(env, "orders the index " + index + " by other rules");
  return settings;
}

void Database::Parts::openTrees(const Database& database) {
  const bool create = isNew;
  objects = txn.open(kObjectsTree, 0, comparatorOf(KT_ID_BlockId), nullptr, create);
  for (const ClassSchema& cls : schema.classes()) {
    for (const Field& field : cls.fields) {
      if (!field.indexed) continue;
      std::unique_ptr<Index> index(new Index);
      index->database_ = &database;
      index->class_ = &cls;
      index->field_ = cls.placeOf(field);
      index->txn_ = &txn;
      index->settings_ = settingsOf(index->name());
      index->tree_ = txn.open(index->name().c_str(), MDB_DUPSORT | MDB_DUPFIXED, comparatorOf(field.type),
                              comparatorOf(KT_ID_KtObjId), create);
      indexes.push_back(std::move(index));
    }
  }
  batch.emplace(txn, objects, indexes);
  if (txn.readOnly()) cache.emplace();
}

Database::Database(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
Database::~Database() = default;

std::unique_ptr<Database> Database::openForReading(const OpenOptions& options) {
  std::unique_ptr<Database> database(new Database(std::make_unique<Parts>(options, true)));
  database->parts_->recognise(options);
  database->parts_->openTrees(*database);
  return database;
}

std::unique_ptr<Database> Database::openForWriting(const OpenOptions& options) {
  if (access(options.file.c_str(), F_OK) != 0) {
    throw Error(kExitDatabase, "there is no database \"" + options.file + "\"");
  }
  std::unique_ptr<Database> database(new Database(std::make_unique<Parts>(options, false)));
  if (database->parts_->isNew) refuse(database->parts_->env, "is empty");
  database->parts_->recognise(options);
  database->parts_->openTrees(*database);
  return database;
}

std::unique_ptr<Database> Database::create(const OpenOptions& options, const Schema& schema) {
  std::unique_ptr<Database> database(new Database(std::make_unique<Parts>(options, false)));
  Parts& parts = *database->parts_;
  if (parts.isNew) parts.describe(schema, options);
  parts.recognise(options);
  if (parts.schema.text() != schema.text()) refuse(parts.env, "has another schema");
  parts.openTrees(*database);
  return database;
}

const Schema& Database::schema() const { return parts_->schema; }
unsigned char Database::language() const { return parts_->language; }
const std::string& Database::file() const { return parts_->env.file(); }
const std::vector<std::unique_ptr<Index>>& Database::indexes() const { return parts_->indexes; }

unsigned long long Database::count(const ClassSchema& cls) const { return parts_->counters.objects[cls.place]; }

bool Database::Parts::findBlock(unsigned long id, Block& block) {
  if (!cache) return readBlock(id, block);
  if (const Block* known = cache->find(id)) {
    block = *known;
    return true;
  }
  if (!readBlock(id, block)) return false;
  cache->keep(id, block);
  return true;
}

bool Database::Parts::readBlock(unsigned long id, Block& block) const {
  unsigned char key[sizeof(BlockId)];
  auto number = static_cast<BlockId>(id);
  manager().Store(KT_ID_BlockId, key, &number, kStored, 1);
  MDB_val keyVal = valOf(Bytes(key, sizeof key)), data;
  const int result = mdb_get(txn.get(), objects, &keyVal, &data);
  if (result == MDB_NOTFOUND) return false;
  checkLmdb(result, "read a block");
  block = Block(id, bytesOf(data));
  return true;
}

std::optional<Record> Database::find(ObjId id) const {
  Block block;
  if (!parts_->findBlock(id.block, block)) return std::nullopt;
  const ClassSchema* cls = schema().byNumber(block.classNumber());
  if (!block.holds(numberOf(id)) || cls == nullptr) return std::nullopt;
  return Record(*cls, id, block.object(static_cast<unsigned>(numberOf(id) - block.first())));
}

std::optional<Record> Database::follow(const Field& field, Bytes stored) const {
  if (!field.references) return std::nullopt;
  KtRef reference;
  manager().Load(field.type, &reference, stored.address(), kStored, 1);
  if (reference.IsNullValue() != 0) return std::nullopt;
  std::optional<Record> target = find({reference.block, reference.low, reference.high});
  if (target && target->cls().place != field.references->cls) target.reset();
  return target;
}

Record Database::get(ObjId id) const {
  std::optional<Record> record = find(id);
  if (!record) {
    throw Error(kExitBroken, "the database is damaged: there is no object " + std::to_string(numberOf(id)));
  }
  return *record;
}

// Blocks rise with the numbers of their objects.
ObjId Database::idOf(unsigned long long number) const {
  unsigned long low = 1, high = parts_->counters.nextBlock;
  while (low < high) {
    const unsigned long middle = low + (high - low) / 2;
    Block block;
    if (!parts_->readBlock(middle, block)) return {};
    if (block.holds(number)) return objIdOf(number, middle);
    (number < block.first() ? high : low) = number < block.first() ? middle : middle + 1;
  }
  return {};
}

const Index* Database::index(const ClassSchema& cls, const Field& field) const {
  for (const auto& index : parts_->indexes) {
    if (index->class_ == &cls && &index->field() == &field) return index.get();
  }
  return nullptr;
}

ObjId Database::add(const Draft& draft) {
  const auto store = [&](std::size_t field, unsigned char* where) { return draft[field].storeAt(where); };
  return parts_->batch->add(draft.cls(), draft.storedSize(), store, parts_->counters);
}

ObjId Database::add(const ClassSchema& cls, const std::vector<Bytes>& fields) {
  unsigned long size = 0;
  for (const Bytes& field : fields) size += field.size;
  const auto store = [&](std::size_t field, unsigned char* where) {
    std::memcpy(where, fields[field].data, fields[field].size);
    return fields[field].size;
  };
  return parts_->batch->add(cls, size, store, parts_->counters);
}

// A block ends where it did before: ids name their blocks.
void Database::restore(ObjId id, const Draft& draft) {
  Counters& counters = parts_->counters;
  if (id.block != counters.nextBlock) parts_->batch->endBlock(counters);
  const bool follows = numberOf(id) == counters.nextObject && id.block == counters.nextBlock;
  if (!follows || add(draft).block != id.block) {
    throw Mistake("it cannot have its id again, which does not follow the one before");
  }
}

void Database::flush() {
  parts_->batch->write(parts_->counters);
  parts_->meta->setCounters(parts_->counters, schema());
}

void Database::commit() {
  flush();
  parts_->txn.commit();
}

std::string Database::note(const std::string& key) const { return parts_->meta->find("note " + key).value_or(""); }

void Database::setNote(const std::string& key, const std::string& text) { parts_->meta->set("note " + key, text); }

ObjectScan Database::objects(const ClassSchema* cls) const { return {*this, cls}; }

ObjectScan::ObjectScan(const Database& database, const ClassSchema* cls)
    : database_(&database), class_(cls), cursor_(database.parts_->txn, database.parts_->objects) {}

bool ObjectScan::nextBlock() {
  while (!isOver_) {
    MDB_val key, data;
    isOver_ = true;  // when the cursor throws, too
    if (!cursor_.move(MDB_NEXT, key, data)) break;
    isOver_ = false;
    const Block block(blockNumber(key), bytesOf(data));
    blockClass_ = database_->schema().byNumber(block.classNumber());
    if (blockClass_ == nullptr) {
      throw Error(kExitBroken, "block " + std::to_string(blockNumber(key)) + " is of no class");
    }
    if (class_ != nullptr && class_ != blockClass_) continue;
    block_ = block;
    at_ = 0;
    return true;
  }
  return false;
}

bool ObjectScan::next() {
  if (at_ == block_.count() && !nextBlock()) return false;
  const unsigned at = at_++;
  record_.emplace(*blockClass_, block_.id(at), block_.object(at));
  return true;
}

}  // namespace atlas
