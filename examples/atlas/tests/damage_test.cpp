// Databases that are damaged in known places: `check` names each place and goes on behind it, and every other command
// gives up with a message. Damages are done through LMDB alone, as a program with an error would.
#include "../cli.h"
#include "../comparators.h"
#include "../meta.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string_view>

namespace {

using namespace atlas;

constexpr char kSchema[] =
    "class country 1\n"
    "field code KtCaseIString index\n"
    "class city 2\n"
    "field name    KtString  index\n"
    "field country KtRef     index references country by code\n"
    "field people  KtDWord   index\n"
    "field rank    KtNull_short\n";

constexpr unsigned long long kMapSize = 16 << 20;

// Objects 1 and 2 are countries in block 1, 3 to 6 cities in block 2.
constexpr BlockId kCountries = 1, kCities = 2;
const char* const kCodes[] = {"SE", "JP"};
struct City {
  const char* name;
  KtDWord country;  // its object
  const char* people;
};
constexpr City kCitiesLoaded[] = {
    {"Tokyo", 2, "8336599"}, {"Malmo", 1, "301706"}, {"Lund", 1, "87244"}, {"Kyoto", 2, "1459640"}};

Buffer stored(char type, const std::string& text) {
  Field any;
  Value value(type);
  value.scan(text, any, 1);
  return value.stored();
}

Buffer storedBlockNumber(BlockId block) {
  Buffer bytes(sizeof block);
  manager().Store(KT_ID_BlockId, bytes.data(), &block, kStored, 1);
  return bytes;
}

Buffer storedId(KtDWord number, BlockId block) {
  Buffer bytes(kStoredObjId);
  storeObjId(bytes.data(), objIdOf(number, block));
  return bytes;
}

// One change of a database behind its back.
class Change {
public:
  explicit Change(const std::string& file)
      : env_({.file = file, .mapSize = kMapSize, .readOnly = false}), txn_(env_, false) {}
  void commit() { txn_.commit(); }

  void addEntry(const char* index, char type, const Buffer& key, const Buffer& id) {
    Cursor(txn_, tree(index, type)).put(key, id, 0);
  }
  void removeEntry(const char* index, char type, const Buffer& key, const Buffer& id) {
    MDB_val keyVal = valOf(key), data = valOf(id);
    checkLmdb(mdb_del(txn_.get(), tree(index, type), &keyVal, &data), "remove an entry");
  }
  void removeBlock(BlockId block) {
    const Buffer key = storedBlockNumber(block);
    MDB_val keyVal = valOf(key);
    checkLmdb(mdb_del(txn_.get(), objects(), &keyVal, nullptr), "remove a block");
  }
  void bendBlock(BlockId block, const std::function<void(Buffer&)>& bend) {
    const Buffer key = storedBlockNumber(block);
    Cursor cursor(txn_, objects());
    MDB_val keyVal = valOf(key), data;
    ASSERT_TRUE(cursor.move(MDB_SET, keyVal, data));
    const auto* bytes = static_cast<const unsigned char*>(data.mv_data);
    Buffer bent(bytes, bytes + data.mv_size);
    bend(bent);
    cursor.put(key, bent, 0);
  }
  void setMeta(const char* name, const std::string& text) {
    Meta(txn_, txn_.open(kMetaTree, 0, nullptr, nullptr, false)).set(name, text);
  }

private:
  Tree objects() { return txn_.open("objects", 0, comparatorOf(KT_ID_BlockId), nullptr, false); }
  Tree tree(const char* index, char type) {
    return txn_.open(index, MDB_DUPSORT | MDB_DUPFIXED, comparatorOf(type), comparatorOf(KT_ID_KtObjId), false);
  }

  Env env_;
  Txn txn_;
};

// An entry of city.people that leads to that object.
void addPeople(Change& change, const char* people, KtDWord object, BlockId block) {
  change.addEntry("city.people", KT_ID_KtDWord, storedKey(KT_ID_KtDWord, stored(KT_ID_KtDWord, people)),
                  storedId(object, block));
}
void removePeople(Change& change, const char* people, KtDWord object, BlockId block) {
  change.removeEntry("city.people", KT_ID_KtDWord, storedKey(KT_ID_KtDWord, stored(KT_ID_KtDWord, people)),
                     storedId(object, block));
}

// The country of the last city becomes object 3.
void referToTokyo(Buffer& block) {
  constexpr std::size_t kFromEnd = 14 + 4 + 3;
  block[block.size() - kFromEnd] = kCities;
  block[block.size() - kFromEnd + 4] = 3;
}

struct Outcome {
  int code = kExitDone;
  std::string said;  // standard output, and then the message
};

class Damage : public testing::Test {
protected:
  void SetUp() override {
    char name[] = "/tmp/atlas_damage_XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    folder_ = name;
    makeDatabase();
  }
  void TearDown() override {
    removeDatabase();
    ASSERT_EQ(std::remove(folder_.c_str()), 0);
  }
  std::string file() const { return folder_ + "/test.atlas"; }
  void removeDatabase() const {
    for (const std::string& name : {file(), file() + "-lock"}) std::remove(name.c_str());
  }

  void makeDatabase() const {
    removeDatabase();
    const auto database = Database::create({.file = file(), .mapSize = kMapSize, .language = std::nullopt},
                                           Schema::parse(kSchema, "test"));
    const auto& classes = database->schema().classes();
    Draft country(classes[0]), city(classes[1]);
    for (const char* code : kCodes) {
      country[0].scan(code, classes[0].fields[0], 1);
      database->add(country);
    }
    for (const City& loaded : kCitiesLoaded) {
      city[0].scan(loaded.name, classes[1].fields[0], 1);
      KtRef& reference = *static_cast<KtRef*>(city[1].data());
      reference = objIdOf(loaded.country, kCountries);
      reference.database = kThisDatabase;
      reference.classNumber = classes[0].number;
      city[2].scan(loaded.people, classes[1].fields[2], 1);
      database->add(city);
    }
    database->commit();
  }
  void damage(const std::function<void(Change&)>& how) const {
    Change change(file());
    how(change);
    change.commit();
  }

  Outcome run(const std::string& arguments) const {
    CLI::App app;
    Globals globals;
    globals.file = file();
    for (const auto add : {addCheck, addDump, addShow, addStats, addQuery}) add(app, globals);
    Outcome outcome;
    testing::internal::CaptureStdout();
    try {
      app.parse(arguments);
    } catch (const Error& error) {
      outcome = {error.code(), error.what()};
    }
    outcome.said = testing::internal::GetCapturedStdout() + outcome.said;
    return outcome;
  }

private:
  std::string folder_;
};

constexpr struct {
  const char* what;
  void (*damage)(Change&);
  std::string_view said;  // by check, at least this
} kCheckCases[] = {
    {"an entry that leads to no object", [](Change& change) { addPeople(change, "5", 9, kCities); },
     "damaged: city.people leads to object 9, which is not there\n"
     "damaged: city.people has 5 entries for 4 objects\n"
     "the database is damaged in 2 places"},
    {"an entry that leads to an object of another class", [](Change& change) { addPeople(change, "5", 1, kCountries); },
     "damaged: city.people leads to object 1, which is not there\n"
     "damaged: city.people has 5 entries for 4 objects\n"
     "the database is damaged in 2 places"},
    {"an object without its entry",
     [](Change& change) {
       change.removeEntry("city.name", KT_ID_KtString, storedKey(KT_ID_KtString, stored(KT_ID_KtString, "Lund")),
                          storedId(5, kCities));
     },
     "damaged: city 5 is not in the index city.name\n"
     "damaged: city.name has 3 entries for 4 objects\n"
     "the database is damaged in 2 places"},
    {"an entry under another value",
     [](Change& change) {
       removePeople(change, "87244", 5, kCities);
       addPeople(change, "7", 5, kCities);
     },
     "damaged: city 5 is not in the index city.people\n"
     "damaged: city.people has another value than object 5\n"
     "the database is damaged in 2 places"},
    // The last object ends with the block: four bytes of people, little-endian, and its rank, a mark and two bytes.
    {"a byte of an indexed field bent",
     [](Change& change) { change.bendBlock(kCities, [](Buffer& block) { ++block[block.size() - 7]; }); },
     "damaged: city 6 is not in the index city.people\n"
     "damaged: city.people has another value than object 6\n"
     "the database is damaged in 2 places"},
    {"a byte that no value of the type has",
     [](Change& change) { change.bendBlock(kCities, [](Buffer& block) { block[block.size() - 3] = 2; }); },
     "damaged: city 6: its rank is no value of KtNull_short\n"
     "the database is damaged in 1 place"},
    // The reference before them, 14 bytes, begins with block and number.
    {"a reference to an object of another class", [](Change& change) { change.bendBlock(kCities, referToTokyo); },
     "damaged: city 6: its country leads nowhere\n"
     "damaged: city 6 is not in the index city.country\n"
     "damaged: city.country has another value than object 6\n"
     "the database is damaged in 3 places"},
    {"fields that end before their object",
     [](Change& change) { change.bendBlock(kCities, [](Buffer& block) { block.push_back(0); }); },
     "damaged: city 6 is damaged: its fields do not fill it\n"
     "damaged: there are 3 objects of class city, counted were 4\n"
     "damaged: the index city.name: city 6 is damaged: its fields do not fill it\n"
     "damaged: the index city.country: city 6 is damaged: its fields do not fill it\n"
     "damaged: the index city.people: city 6 is damaged: its fields do not fill it\n"
     "the database is damaged in 5 places"},
    {"a block that is not there", [](Change& change) { change.removeBlock(kCountries); },
     "damaged: city 3: its country leads nowhere\n"
     "damaged: city 4: its country leads nowhere\n"
     "damaged: city 5: its country leads nowhere\n"
     "damaged: city 6: its country leads nowhere\n"
     "damaged: there are 0 objects of class country, counted were 2\n"
     "damaged: country.code leads to object 2, which is not there\n"
     "damaged: country.code leads to object 1, which is not there\n"
     "the database is damaged in 7 places"},
    {"a block of no class", [](Change& change) { change.bendBlock(kCountries, [](Buffer& block) { block[0] = 77; }); },
     "damaged: block 1 is of no class\n"
     "damaged: city 3: its country leads nowhere\n"},
    {"a block cut in its head",
     [](Change& change) { change.bendBlock(kCountries, [](Buffer& block) { block.resize(10); }); },
     "damaged: block 1 is damaged\n"
     "damaged: city 3: block 1 is damaged\n"},
    {"a size that leads behind its block",
     [](Change& change) { change.bendBlock(kCities, [](Buffer& block) { block[11] = 0xFF; }); },
     "damaged: block 2 is damaged\n"},
    {"a counter that is wrong", [](Change& change) { change.setMeta("count city", "40"); },
     "damaged: there are 4 objects of class city, counted were 40\n"},
};

TEST_F(Damage, check_names_every_place_and_goes_on) {
  ASSERT_EQ(run("check").said, "sound: 6 objects, 14 index entries\n");
  for (const auto& wanted : kCheckCases) {
    makeDatabase();
    damage(wanted.damage);
    const Outcome outcome = run("check");
    EXPECT_EQ(outcome.code, kExitDamage) << wanted.what;
    EXPECT_EQ(outcome.said.substr(0, wanted.said.size()), wanted.said) << wanted.what;
  }
}

TEST_F(Damage, what_the_database_says_of_itself_must_be_right) {
  const struct {
    const char* name;
    const char* text;
    int code;
    const char* said;
  } kCases[] = {
      {"format", "atlas 1", kExitDatabase, "has the format \"atlas 1\"; this program knows atlas 2"},
      {"format", "atlas 20", kExitDatabase, "has the format \"atlas 20\"; this program knows atlas 2"},
      {"format", "something else", kExitDatabase, "is no atlas database"},
      {"schema", "class country 1\nfield code KtNothing\n", kExitBroken, "is damaged: line 2: there is no type"},
      {"schema", "", kExitBroken, "is damaged: a schema has classes"},
      {"language", "english", kExitBroken, "\"language\" of the database is no number"},
      {"language", "256", kExitBroken, "\"language\" of the database is no number"},
      {"next block", "4294967296", kExitBroken, "\"next block\" of the database is no number"},
      {"next object", "-1", kExitBroken, "\"next object\" of the database is no number"},
      {"count city", "4x", kExitBroken, "\"count city\" of the database is no number"},
      {"index city.name", "1 1", kExitBroken, "the settings of the index city.name are damaged"},
      {"index city.name", "1 0 0 26", kExitDatabase, "orders the index city.name by other rules"},
  };
  for (const auto& wanted : kCases) {
    makeDatabase();
    damage([&](Change& change) { change.setMeta(wanted.name, wanted.text); });
    for (const char* command : {"check", "stats", "dump", "show 3", "query 'people > 1'"}) {
      const Outcome outcome = run(command);
      EXPECT_EQ(outcome.code, wanted.code) << command << " of " << wanted.name << " " << wanted.text;
      EXPECT_NE(outcome.said.find(wanted.said), std::string::npos) << command << ": " << outcome.said;
    }
  }
}

TEST_F(Damage, other_commands_end_with_a_message_where_they_meet_it) {
  const struct {
    const char* command;
    std::function<void(Change&)> damage;
    int code;
    const char* said;
  } kCases[] = {
      {"query 'people = 5'", [](Change& change) { addPeople(change, "5", 9, kCities); }, kExitBroken,
       "the database is damaged: there is no object 9"},
      {"query 'country = SE'", [](Change& change) { change.removeBlock(kCountries); }, kExitBroken,
       "the database is damaged: there is no object 1"},
      {"dump", [](Change& change) { change.bendBlock(kCities, [](Buffer& block) { block.push_back(0); }); },
       kExitBroken, "city 6 is damaged: its fields do not fill it"},
      {"show 6", [](Change& change) { change.bendBlock(kCities, [](Buffer& block) { block.resize(11); }); },
       kExitBroken, "block 2 is damaged"},
      // What a reference does not lead to is not followed.
      {"show 6", [](Change& change) { change.removeBlock(kCountries); }, kExitDone, "country      (1:0-2#1, 1)\n"},
      {"show 6", [](Change& change) { change.bendBlock(kCities, referToTokyo); }, kExitDone,
       "country      (1:0-3#2, 1)\n"},
      {"query 'people > 1'", [](Change& change) { change.bendBlock(kCities, referToTokyo); }, kExitDone,
       "(1:0-3#2, 1)"},
  };
  for (const auto& wanted : kCases) {
    makeDatabase();
    damage(wanted.damage);
    const Outcome outcome = run(wanted.command);
    EXPECT_EQ(outcome.code, wanted.code) << wanted.command;
    EXPECT_NE(outcome.said.find(wanted.said), std::string::npos) << wanted.command << ": " << outcome.said;
  }
}

}  // namespace
