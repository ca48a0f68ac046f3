// A small export as every host must read it: tests/data/atlas_small holds the CSV files, the export of the database that
// `atlas load` made of them, and what its objects say, worked out from the CSV files and docs/formats without the
// code under test. LMDB is not needed, so big-endian and 32-bit hosts read it too.
#include "../../examples/atlas/portable.h"
#include "../../examples/atlas/error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <numeric>
#include <sstream>

namespace {

using atlas::Draft;
using atlas::manager;
using atlas::PortableReader;

constexpr unsigned char kMemoryForm = 8;

std::string contentOf(const std::string& name) {
  std::ifstream file(std::string(KT_TESTS_DIR) + "/data/atlas_small/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

const std::string& smallExport() {
  static const std::string bytes = contentOf("small.export");
  return bytes;
}

std::string textOf(atlas::ObjId id) {
  KtString text;
  return manager().PrintToKtString(KT_ID_KtObjId, text, &id, nullptr, 1).StrGet();
}

// One line a field: what `expected.txt` holds.
std::string printed(const PortableReader& reader) {
  std::string lines;
  const Draft& values = reader.values();
  for (std::size_t i = 0; i < values.size(); ++i) {
    const atlas::Field& field = values.cls().fields[i];
    lines += textOf(reader.id()) + " " + values.cls().name + "." + field.name + " " + values[i].text(field) + "\n";
  }
  return lines;
}

TEST(AtlasPortable, a_small_export_says_the_same_on_every_host) {
  std::istringstream in(smallExport());
  PortableReader reader(in, "small.export");
  EXPECT_EQ(reader.language(), 1);
  std::string text;
  while (reader.next()) text += printed(reader);
  EXPECT_EQ(text, contentOf("expected.txt"));
}

TEST(AtlasPortable, writing_what_was_read_gives_the_same_bytes) {
  std::istringstream in(smallExport());
  PortableReader reader(in, "small.export");
  std::vector<unsigned long long> counts;
  for (const atlas::ClassSchema& cls : reader.schema().classes()) counts.push_back(reader.count(cls));
  EXPECT_EQ(counts, (std::vector<unsigned long long>{12, 13, 8}));
  std::ostringstream out;
  atlas::PortableWriter writer(out, reader.schema(), reader.language(), counts);
  while (reader.next()) writer.add(reader.id(), reader.values());
  writer.end();
  EXPECT_TRUE(out.str() == smallExport());
}

// --- order and hash -----------------------------------------------------------------------------------------------------

// Every stored value of one field, object by object.
struct Column {
  char type = 0;
  std::vector<atlas::Buffer> stored;
  std::vector<unsigned long> hashes;  // of the values in memory
  std::vector<std::string> texts;
};

std::map<std::string, Column> readColumns() {
  std::istringstream in(smallExport());
  PortableReader reader(in, "small.export");
  std::map<std::string, Column> columns;
  while (reader.next()) {
    const Draft& values = reader.values();
    for (std::size_t i = 0; i < values.size(); ++i) {
      const atlas::Field& field = values.cls().fields[i];
      Column& column = columns[values.cls().name + "." + field.name];
      int status = 0;
      column.type = field.type;
      column.stored.push_back(values[i].stored());
      column.hashes.push_back(manager().Hash(field.type, 0, values[i].data(), 1, kMemoryForm, status));
      column.texts.push_back(values[i].text(field));
    }
  }
  return columns;
}

std::string sortedTexts(const Column& column) {
  std::vector<std::size_t> order(column.stored.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return atlas::compare(column.type, column.stored[a], column.stored[b]) < 0;
  });
  std::string texts;
  for (std::size_t i : order) texts += column.texts[i] + "\n";
  return texts;
}

// Nulls come first, letters with marks beside those without, years before 0 before all others.
TEST(AtlasPortable, stored_values_are_in_the_order_of_their_types) {
  const auto columns = readColumns();
  EXPECT_EQ(sortedTexts(columns.at("city.name")),
            "Addis Ababa\nAthens\nGöteborg\nHirosaki\nKabul\nMalmö\nÖrebro\nPristina\nSeoul\nShanghai\nTbilisi\n"
            "Thessaloníki\nTokyo\n");
  EXPECT_EQ(sortedTexts(columns.at("country.founded")),
            "{NULL}\n{NULL}\n{NULL}\n{NULL}\n-2333-10-03\n-0660-02-11\n0301-09-03\n1523-06-06\n1830-02-03\n1919-08-19\n"
            "1949-10-01\n1991-04-09\n");
  EXPECT_EQ(sortedTexts(columns.at("country.area_km2")),
            "{NULL}\n61.000000\n10908.000000\n69700.000000\n100210.000000\n131990.000000\n377930.000000\n"
            "450295.000000\n652230.000000\n1104300.000000\n9706961.000000\n14000000.000000\n");
}

TEST(AtlasPortable, stored_values_hash_as_in_memory) {
  for (const auto& [name, column] : readColumns()) {
    for (std::size_t i = 0; i < column.stored.size(); ++i) {
      int status = 0;
      const atlas::Bytes stored = column.stored[i];
      EXPECT_EQ(manager().Hash(column.type, stored.size, stored.address(), 1, atlas::kStored, status), column.hashes[i])
          << name << " " << column.texts[i];
    }
  }
}

// (1919 * 256 + 8) * 256 + 19 and 22,315,474, both times 1,103,515,245 modulo 2^32.
TEST(AtlasPortable, hashes_are_those_of_every_host) {
  const auto columns = readColumns();
  EXPECT_EQ(columns.at("country.founded").hashes[0], 0xF73E3A17U);
  EXPECT_EQ(columns.at("city.population").hashes[0], 0x0AF5426AU);
}

// --- damage -------------------------------------------------------------------------------------------------------------

// The message; empty when the whole stream was read.
std::string refusalOf(const std::string& bytes) {
  std::istringstream in(bytes);
  try {
    PortableReader reader(in, "x");
    while (reader.next()) {}
  } catch (const atlas::Mistake& mistake) {
    return mistake.what();
  }
  return "";
}

constexpr std::size_t kStride = 7;  // every length and every byte would take an emulator minutes

TEST(AtlasPortable, refuses_a_stream_that_is_cut_short) {
  ASSERT_EQ(refusalOf(smallExport()), "");
  for (std::size_t size = 0; size < smallExport().size(); size += size < 64 ? 1 : kStride) {
    EXPECT_NE(refusalOf(smallExport().substr(0, size)), "") << size;
  }
  for (std::size_t less = 1; less < 16; ++less) {
    EXPECT_NE(refusalOf(smallExport().substr(0, smallExport().size() - less)), "") << less;
  }
}

TEST(AtlasPortable, refuses_a_stream_with_one_bit_changed) {
  for (std::size_t at = 0; at < smallExport().size(); at += at < 64 ? 1 : kStride) {
    std::string bytes = smallExport();
    bytes[at] = static_cast<char>(bytes[at] ^ (1 << at % 8));
    EXPECT_NE(refusalOf(bytes), "") << at;
  }
}

TEST(AtlasPortable, says_what_is_wrong) {
  std::string newer = smallExport();
  newer[9] = 2;
  std::string changed = smallExport();
  changed[changed.size() - 1] = static_cast<char>(changed.back() ^ 1);
  EXPECT_EQ(refusalOf(newer), "x: the export has version 2, and this atlas reads version 1");
  EXPECT_EQ(refusalOf("name,country\n"), "x: this is no export of atlas");
  EXPECT_NE(refusalOf(changed).find("the checksum is wrong"), std::string::npos);
  EXPECT_NE(refusalOf(smallExport() + "x").find("there is more behind the end"), std::string::npos);
  EXPECT_NE(refusalOf(smallExport().substr(0, 2000)).find("at byte 2000: it is cut short"), std::string::npos);
}

TEST(AtlasPortable, the_checksum_is_the_standard_one) {
  atlas::Crc32 crc;
  crc.add("12345", 5);
  crc.add("6789", 4);
  EXPECT_EQ(crc.value(), 0xCBF43926U);
}

}  // namespace
