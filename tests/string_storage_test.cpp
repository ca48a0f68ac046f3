// Storing, loading and sizing strings: extremes, older and damaged records. tests/golden has the bytes.
#include "ops/string_storage.h"
#include "kttypops.h"
#include "ops/string_ops.h"
#include "string_bytes.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>

namespace {

using namespace kt_test;

std::string textOf(const KtString& s) { return s.StrGet(); }

// --- the current form ---------------------------------------------------------------------------------------------

TEST(StringStorage, loading_gives_the_string_that_was_stored) {
  const KtString cases[] = {makeString(u"", 5, 3), makeString(u"abcdefghijklmnopq", 1, 2),
                            makeString(u"a\u00E9", 253, 0), makeString(u"", 0, 254)};
  for (const KtString& s : cases) {
    for (const unsigned char format : Codes{0, 2, 4}) {
      Block target(Bytes(StringSizeGet(&s, 8, format, 1), 0xEE));
      StringStore(target.get(), &s, format, 1);
      KtString loaded("what was there before, long enough to have a block of some size");
      EXPECT_EQ(StringLoad(&loaded, target.get(), format, 1), target.size);
      EXPECT_EQ(loaded.codeSet, s.codeSet);
      EXPECT_EQ(loaded.language, s.language);
      EXPECT_EQ(loaded.bufferSize, s.bufferSize);
      EXPECT_EQ(loaded.buffer == nullptr, s.buffer == nullptr);
      if (s.buffer != nullptr) {
        EXPECT_EQ(std::memcmp(loaded.buffer, s.buffer, s.bufferSize), 0);
      }
    }
  }
  EXPECT_EQ(StringStore(nullptr, cases, 2, 0), 0u);
  EXPECT_EQ(StringSizeGet(cases, 8, 2, 0), 0u);
}

TEST(StringStorage, a_zero_inside_a_text_is_kept) {
  const Bytes record = hex("07 00 01 01 61 00 62 00 FF");
  KtString s;
  StringLoad(&s, Block(record).get(), 0, 1);
  EXPECT_EQ(s.bufferSize, 4);
  EXPECT_EQ(s.Len(), 1);
  Block back(Bytes(record.size(), 0));
  StringStore(back.get(), &s, 0, 1);
  EXPECT_EQ(Bytes(back.get(), back.get() + back.size), record);
}

TEST(StringStorage, half_a_character_is_stored_as_it_lies_whatever_the_order_and_what_was_stored_before) {
  KtString strings[12] = {"abcdefghijk", "a", "wxyz", "b", "b", "b"};  // the first ones have many records behind them
  strings[2].codeSet = 253;
  strings[2].language = 1;
  constexpr bool kBigHost = std::endian::native == std::endian::big;
  const char* const littleHost[] = {"07 00 FD 01 77 78 79 00 FF", "00 07 FD 01 78 77 79 00 FF"};
  const char* const bigHost[] = {"07 00 FD 01 78 77 79 00 FF", "00 07 FD 01 77 78 79 00 FF"};
  for (const unsigned char code : Codes{0, 2}) {
    const unsigned long before = StringSizeGet(strings, 8, code, 2);
    Block target(Bytes(StringSizeGet(strings, 8, code, 12), 0xEE));
    StringStore(target.get(), strings, code, 12);
    const char* const expected = (kBigHost ? bigHost : littleHost)[code / 2];
    EXPECT_EQ(Bytes(target.get() + before, target.get() + before + 9), hex(expected)) << int{code};
  }
}

// Short texts are moved whole, with what lies behind them, where other records follow.
TEST(StringStorage, a_run_is_stored_as_its_strings_are_one_by_one) {
  for (const unsigned char codeSet : Codes{1, 253}) {
    for (unsigned long length = 0; length <= 36; ++length) {
      for (unsigned long others = 0; others <= 8; ++others) {
        std::vector<KtString> strings(others + 1);
        strings[0] = makeString(std::u16string(length, u'x'), codeSet, 3);
        for (const unsigned char code : Codes{0, 1, 2}) {
          Bytes expected;
          for (const KtString& s : strings) {
            Block one(Bytes(StringSizeGet(&s, 8, code, 1), 0xEE));
            StringStore(one.get(), &s, code, 1);
            expected.insert(expected.end(), one.get(), one.get() + one.size);
          }
          const std::size_t size = expected.size();
          expected.resize(size + 40, 0xEE);  // nothing is written behind the run
          Block run(Bytes(expected.size(), 0xEE));
          EXPECT_EQ(StringStore(run.get(), strings.data(), code, strings.size()), size);
          EXPECT_EQ(Bytes(run.get(), run.get() + run.size), expected) << length << " and " << others;
        }
      }
    }
  }
}

TEST(StringStorage, a_text_of_65532_characters_is_clipped_with_an_assertion) {
  const CaughtAssertions caught;
  for (const unsigned n : {65531u, 65532u}) {
    const std::string text(n, 'x');
    const KtString s(text.c_str(), static_cast<unsigned short>(n));
    ASSERT_EQ(s.bufferSize, n + 1);
    EXPECT_EQ(StringSizeGet(&s, 8, 0, 1), 65537u);
    Block target(Bytes(65537, 0));
    EXPECT_EQ(StringStore(target.get(), &s, 0, 1), 1u);
    EXPECT_EQ(target.get()[0] + 256 * target.get()[1], 65535);
    EXPECT_EQ(target.get()[65536], 0xFF);
  }
  EXPECT_EQ(CaughtAssertions::count(), 1);
  EXPECT_EQ(CaughtAssertions::last(), "\"String overflow\" && 0 src\\ktstring 1361");
}

TEST(StringStorage, loading_reuses_a_block_that_fits) {
  KtString s("a text of middling length, in a block of its own");
  const char* block = s.buffer;
  StringLoad(&s, Block(hex("06 00 01 02 61 62 00 FF")).get(), 0, 1);
  EXPECT_EQ(s.buffer, block);
  EXPECT_EQ(textOf(s += "c"), "abc");
}

// --- sizes of index keys ------------------------------------------------------------------------------------------

struct SizeCase {
  std::u16string text;
  unsigned char codeSet;
  unsigned char language;
  unsigned char format;
  unsigned long fromMemory;  // D * growth + 4
  unsigned long fromDisk;    // L * growth + 2
};

const SizeCase kSizes[] = {
    {u"abc", 1, 0, 0x80, 5 * 4 + 4, 7 * 4 + 2}, {u"abc", 253, 0, 0x80, 8 * 2 + 4, 10 * 2 + 2},
    {u"abc", 0, 0, 0x80, 5 + 4, 7 + 2},         {u"abc", 0, 0, 0xC0, 5 * 4 + 4, 7 * 4 + 2},
    {u"abc", 1, 0, 0xA0, 5 + 4, 7 + 2},         {u"abc", 253, 0, 0xE0, 8 * 4 + 4, 10 * 4 + 2},
    {u"", 254, 0, 0x80, 2 + 4, 4 + 2},          {u"", 254, 0, 0xE0, 2 + 4, 4 + 2},
    {u"abc", 1, 0, 0x60, 5 + 4, 7 + 2},         {u"", 1, 0, 0x80, 2 * 4 + 4, 4 * 4 + 2},
};

TEST(StringStorage, sizes_of_keys_grow_by_the_code_set_that_counts) {
  for (const SizeCase& c : kSizes) {
    const KtString s = makeString(c.text, c.codeSet, c.language);
    Block record(Bytes(s.bufferSize + 8u, 0));
    StringStore(record.get(), &s, 0, 1);
    EXPECT_EQ(StringSizeGet(&s, 8, c.format, 1), c.fromMemory) << int{c.codeSet} << " " << int{c.format};
    EXPECT_EQ(StringSizeGet(record.get(), 0, c.format, 1), c.fromDisk) << int{c.codeSet} << " " << int{c.format};
  }
}

// An older record has no code set at offset 2, but a character. Its keys, of 4 + characters + 2 bytes each, have room.
TEST(StringStorage, sizes_of_the_keys_of_older_records_hold_the_keys) {
  const struct {
    const char* bytes;
    unsigned long count;
    unsigned long size;  // L * 4 + 2 (L + 2 where the character is 0), or the keys' where that is more
    unsigned long keys;
  } cases[] = {
      {"00 06 61 62 00 63 64 00", 2, 26, 16},
      {"00 06 61 62 00 63 64 00", 9, 26, 16},
      {"00 02 61 00", 1, 10, 7},
      {"00 01 00", 1, 6, 6},
      {"00 04 00 61 62 00", 2, 14, 14},
      {"00 00", 1, 6, 6},
  };
  for (const auto& c : cases) {
    const Block record{hex(c.bytes)};
    MemFile file(record.get(), record.size);
    EXPECT_EQ(StringSizeGet(record.get(), 0, 0x82, c.count), c.size) << c.bytes;
    EXPECT_EQ(kt::stringSizeGetFromMemFile(&file, 0x82, c.count), c.size) << c.bytes;
    const Block keys(Bytes(c.size, 0xEE));
    EXPECT_EQ(kt::StringOps::translate(keys.get(), 0x82, c.size, record.get(), 2, record.size, c.count), c.keys);
    EXPECT_EQ(keys.get()[c.keys - 2], 0x00) << c.bytes;  // not cut
  }
}

// --- the older form -----------------------------------------------------------------------------------------------

TEST(StringStorage, older_records_load_text_by_text) {
  struct {
    const char* bytes;
    std::vector<std::string> texts;
  } const cases[] = {
      {"00 06 61 62 00 63 64 00", {"ab", "cd"}},
      {"00 06 61 62 00 63 64 00", {"ab", "cd", "", ""}},  // fewer texts than strings
      {"00 04 00 61 62 00", {"", "ab"}},
      {"00 01 00", {""}},
      {"00 00", {"", ""}},  // no length at all
      {"00 02 61 00", {"a"}},
      {"00 03 61 62 63", {"abc"}},  // too short for the current form, and no terminator
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.bytes);
    const Block record{hex(c.bytes)};
    std::vector<KtString> loaded(c.texts.size(), makeString(u"old \u0416", 253, 8));
    EXPECT_EQ(StringLoad(loaded.data(), record.get(), 2, loaded.size()), record.size);
    for (std::size_t i = 0; i < loaded.size(); ++i) {
      EXPECT_EQ(textOf(loaded[i]), c.texts[i]);
      EXPECT_EQ(loaded[i].codeSet, 1);
      EXPECT_EQ(loaded[i].language, 1);
    }
    if (record.get()[record.size - 1] == 0) {
      EXPECT_EQ(StringSizeGet(record.get(), 0, 2, 1), record.size);
    }
  }
}

TEST(StringStorage, an_older_text_beyond_the_longest_string_loads_as_its_assignment_would) {
  const CaughtAssertions caught;
  for (const unsigned long length : {65533ul, 65534ul}) {
    const std::string text(length, 'x');
    Bytes bytes{static_cast<unsigned char>((length + 1) >> 8), static_cast<unsigned char>(length + 1)};
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(0);
    KtString loaded, assigned;
    StringLoad(&loaded, Block(bytes).get(), 2, 1);
    assigned = text.c_str();
    EXPECT_EQ(loaded.bufferSize, assigned.bufferSize);
    EXPECT_EQ(textOf(loaded), textOf(assigned));
  }
}

TEST(StringStorage, a_later_record_without_room_for_a_code_set_loads_as_an_empty_string) {
  const Block run(hex("00 06 01 02 61 62 00 FF 00 03 63 64 65"));
  KtString loaded[2] = {KtString("old"), KtString("old")};
  EXPECT_EQ(StringLoad(loaded, run.get(), 2, 2), run.size);
  EXPECT_EQ(textOf(loaded[0]), "ab");
  EXPECT_EQ(loaded[1].IsEmpty(), 1);
}

TEST(StringStorage, the_legacy_table_stores_one_record_a_run) {
  const KtString run[] = {KtString("ab"), makeString(u"\u00E9!", 253, 1), KtString()};
  const Bytes expected = hex("00 07 61 62 00 E9 21 00 00");
  Block target(Bytes(expected.size(), 0xEE));
  EXPECT_EQ(kt::legacyStringSizeGet(run, 8, 2, 3), 9u);
  EXPECT_EQ(kt::legacyStringStore(target.get(), run, 2, 3), 9u);
  EXPECT_EQ(Bytes(target.get(), target.get() + target.size), expected);
  EXPECT_EQ(kt::legacyStringSizeGet(target.get(), 0, 2, 3), 9u);
  EXPECT_EQ(kt::legacyStringStore(nullptr, run, 2, 0), 0u);

  MemFile file(target.get(), target.size);
  EXPECT_EQ(kt::legacyStringSizeGetFromMemFile(&file, 2, 3), 9u);
  MemFile shortFile(target.get(), target.size - 1);
  EXPECT_EQ(kt::legacyStringSizeGetFromMemFile(&shortFile, 2, 3), 0u);
}

TEST(StringStorage, a_legacy_record_holds_the_longest_string) {
  const CaughtAssertions caught;
  const std::string text(65532, 'x');
  const KtString s(text.c_str());
  Block target(Bytes(65535, 0xEE));  // L is 65,532 characters and a terminator
  EXPECT_EQ(kt::legacyStringSizeGet(&s, 8, 0, 1), 65535u);
  EXPECT_EQ(kt::legacyStringStore(target.get(), &s, 0, 1), 65535u);
  KtString loaded;
  EXPECT_EQ(StringLoad(&loaded, target.get(), 0, 1), 65535u);
  EXPECT_EQ(textOf(loaded), text);
  EXPECT_EQ(CaughtAssertions::count(), 0);
}

TEST(StringStorage, a_legacy_run_beyond_one_length_word_is_cut) {
  const std::string text(40000, 'x');
  const KtString run[] = {KtString(text.c_str()), KtString(text.c_str()), KtString("y")};
  Block target(Bytes(65537, 0xEE));
  EXPECT_EQ(kt::legacyStringSizeGet(run, 8, 0, 3), 65537u);
  EXPECT_EQ(kt::legacyStringStore(target.get(), run, 0, 3), 65537u);
  KtString loaded[3];
  StringLoad(loaded, target.get(), 0, 3);
  EXPECT_EQ(loaded[0].Len(), 40000);
  EXPECT_EQ(loaded[1].Len(), 65535 - 40001 - 1);
  EXPECT_EQ(loaded[2].Len(), 0);
}

// --- memory files -------------------------------------------------------------------------------------------------

TEST(StringStorage, a_memory_file_is_sized_where_it_stands_and_stays_there) {
  const Bytes records = hex("EE 00 06 01 02 61 62 00 FF 00 04 00 FE 00 FF");
  struct {
    unsigned char format;
    unsigned long count;
    unsigned long length;
    unsigned long size;
  } const cases[] = {
      {2, 0, 15, 0}, {2, 1, 15, 8},     {2, 2, 15, 14}, {2, 3, 15, 14}, {2, 2, 14, 8},
      {2, 1, 8, 0},  {0x82, 1, 15, 26}, {2, 1, 2, 0},   {2, 1, 1, 0},
  };
  for (const auto& c : cases) {
    const Block block(records, c.length);
    MemFile file(block.get(), c.length);
    file.Seek(1, MemFile::Begin);
    EXPECT_EQ(kt::stringSizeGetFromMemFile(&file, c.format, c.count), c.size) << c.count << " of " << c.length;
    EXPECT_EQ(file.Tell(), 1u);
  }
}

// --- damage -------------------------------------------------------------------------------------------------------

// Whatever a record's length word says, nothing behind the record, or the run, is read: the address sanitizer watches.
TEST(StringStorage, damaged_records_lead_nowhere) {
  const Bytes whole[] = {hex("00 06 01 02 61 62 00 FF 00 04 00 FE 00 FF"), hex("00 09 FD 02 00 61 62 63 64 00 FF"),
                         hex("00 06 61 62 00 63 64 00"), hex("00 04 FE 00 00 FF")};
  for (Bytes record : whole) {
    for (std::size_t length = 0; length <= record.size(); ++length) {
      for (int patched = -1; patched < 12; ++patched) {
        if (patched >= 0) record[1] = static_cast<unsigned char>(patched);
        const Block a(record, length);
        const Block b(record, length);
        if (length == 0) continue;
        int status = 0;
        for (const int bits : {0, 0x20, 0x40, 0x80}) {
          const auto format = static_cast<unsigned char>(bits | 2);
          const auto keyFormat = static_cast<unsigned char>(format | 0x80);
          StringCompare(format, length, a.get(), length, b.get(), 0x10, 100, status);
          EXPECT_EQ(status, KtERR_OVERRUN);
          kt::StringOps::hash(format, length, a.get(), 3, status);
          Block key(Bytes(40, 0));
          kt::StringOps::translate(key.get(), keyFormat, 40, a.get(), format, length, 2);
        }
        MemFile file(a.get(), length);
        kt::stringSizeGetFromMemFile(&file, 2, 3);
        const unsigned long size = length >= 2 ? a.get()[0] * 256ul + a.get()[1] + 2 : 0;
        if (size < 2 || size > length) continue;
        KtString loaded("before");
        StringLoad(&loaded, Block(record, size).get(), 2, 1);
        StringSizeGet(Block(record, size).get(), 0, 0xE2, 1);
      }
    }
  }
}

}  // namespace
