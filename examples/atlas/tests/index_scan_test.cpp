// Scans of an index against a walk through all objects: whatever the bounds, nothing that lies between them is missed,
// though keys are cut, blanks and signs do not count in them, and bounds may be cut themselves.
#include "../csv_objects.h"
#include "../database.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <set>

namespace {

using namespace atlas;

const char kSchema[] =
    "class thing 1\n"
    "field text   KtString      index\n"
    "field icase  KtCaseIString index\n"
    "field number KtNull_double index\n"
    "field day    KtDate        format \"%Y-%m-%d\" index\n";

// Short words over few letters, so that beginnings, accents, cases, blanks and signs meet.
std::string randomText(std::mt19937& random) {
  static const char* const kParts[] = {"a", "A", "á", "b", "B", " ", "-", "'", "z", "a", "b", "ж"};
  std::string text;
  for (auto length = random() % 12 + 1; length > 0; --length) text += kParts[random() % std::size(kParts)];
  if (random() % 40 == 0) text += std::string(70, 'b');
  return text;
}

class IndexScanTest : public ::testing::Test {
protected:
  void SetUp() override {
    char name[] = "/tmp/atlas_test_XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    folder_ = name;
    database_ = Database::create({.file = file(), .mapSize = 64 << 20, .language = std::nullopt},
                                 Schema::parse(kSchema, "test"));
    cls_ = database_->schema().find("thing");
  }
  void TearDown() override {
    database_.reset();
    for (const std::string& name : {file(), file() + "-lock"}) std::remove(name.c_str());
    ASSERT_EQ(std::remove(folder_.c_str()), 0);
  }
  std::string file() const { return folder_ + "/test.atlas"; }

  void addThings(unsigned count) {
    Draft draft(*cls_);
    for (unsigned i = 0; i < count; ++i) {
      scan(draft, 0, randomText(random_));
      scan(draft, 1, randomText(random_));
      scan(draft, 2, random_() % 10 == 0 ? "" : std::to_string(static_cast<int>(random_() % 200) - 100));
      scan(draft, 3, random_() % 10 == 0 ? "" : "19" + std::to_string(random_() % 90 + 10) + "-02-11");
      database_->add(draft);
      if (i % 97 == 0) database_->commit();
    }
    database_->commit();
  }
  void reopenForReading() {
    database_.reset();
    database_ = Database::openForReading({.file = file(), .mapSize = 0, .language = std::nullopt});
    cls_ = database_->schema().find("thing");
  }
  void scan(Draft& draft, std::size_t field, const std::string& text) {
    draft[field].scan(text, cls_->fields[field], database_->language());
  }

  Buffer randomStored(std::size_t field) {
    std::vector<Buffer> all;
    for (ObjectScan objects = database_->objects(); objects.next();) {
      const Bytes bytes = objects.record().fieldBytes(field);
      all.emplace_back(bytes.data, bytes.data + bytes.size);
    }
    return all[random_() % all.size()];
  }

  std::string folder_;
  std::unique_ptr<Database> database_;
  const ClassSchema* cls_ = nullptr;
  std::mt19937 random_{17};
};

// One of: no bound, a whole key, a key as it is stored, a key cut to few characters.
Buffer randomBound(std::mt19937& random, char type, const Buffer& stored) {
  switch (random() % 4) {
    case 0: return {};
    case 1: return indexKey(type, stored);
    default: return storedKey(type, stored);
  }
}

TEST_F(IndexScanTest, finds_all_that_lies_between_its_bounds_once) {
  addThings(600);
  reopenForReading();
  for (const auto& index : database_->indexes()) {
    const char type = index->field().type;
    const std::size_t field = cls_->placeOf(index->field());
    for (int round = 0; round < 100; ++round) {
      const Buffer low = randomStored(field), high = randomStored(field);
      const IndexRange range{randomBound(random_, type, low), randomBound(random_, type, high)};
      KtIdxBounds bounds = range.bounds();
      if (range.first.empty()) bounds.lowKey = nullptr;
      if (range.last.empty()) bounds.highKey = nullptr;
      std::set<std::uint64_t> found;
      for (IndexScan entries = index->scan(bounds); entries.next();) {
        EXPECT_TRUE(found.insert(numberOf(entries.id())).second) << index->name();
        if (!entries.isBetween()) continue;
        const Record record = database_->get(entries.id());
        const Bytes value = record.fieldBytes(field);
        EXPECT_TRUE(range.first.empty() || compare(type, value, low) > 0)
            << index->name() << ": " << record.text(field);
        EXPECT_TRUE(range.last.empty() || compare(type, value, high) < 0)
            << index->name() << ": " << record.text(field);
      }
      for (ObjectScan objects = database_->objects(); objects.next();) {
        const Record& record = objects.record();
        const bool isInside = (range.first.empty() || compare(type, record.fieldBytes(field), low) >= 0) &&
                              (range.last.empty() || compare(type, record.fieldBytes(field), high) <= 0);
        if (isInside) {
          EXPECT_EQ(found.count(numberOf(record.id())), 1U) << index->name() << ": " << record.text(field);
        }
      }
    }
  }
}

TEST_F(IndexScanTest, finds_the_first_object_of_a_value) {
  addThings(300);
  const Index& index = *database_->index(*cls_, cls_->fields[0]);
  for (ObjectScan objects = database_->objects(); objects.next();) {
    const Record& record = objects.record();
    const ObjId found = index.find(record.fieldBytes(0));
    ASSERT_EQ(found.IsNullValue(), 0);
    EXPECT_EQ(compare(KT_ID_KtString, database_->get(found).fieldBytes(0), record.fieldBytes(0)), 0);
    EXPECT_LE(numberOf(found), numberOf(record.id()));
  }
  Value missing(KT_ID_KtString);
  missing.scan("zzzz", cls_->fields[0], database_->language());
  EXPECT_NE(index.find(missing.stored()).IsNullValue(), 0);
}

}  // namespace
