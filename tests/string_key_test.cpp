// Index keys (tests/golden has their bytes): the law that memcmp sorts them, keys cut short, and the other translations.
#include "kttypops.h"
#include "ops/string_ops.h"
#include "string_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

namespace {

using namespace kt_test;
using Ops = kt::StringOps;

constexpr unsigned char kMemory = 8;

int signOf(long value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

Bytes keyOf(const KtString& s, unsigned char format = 0x82, unsigned long room = 70000) {
  Block target(Bytes(room, 0xEE));
  KtString copy = s;
  const unsigned long size = Ops::translate(target.get(), format, room, &copy, kMemory, 0, 1);
  EXPECT_LE(size, room);
  for (unsigned long i = size; i < room; ++i) EXPECT_EQ(target.get()[i], 0);
  return Bytes(target.get(), target.get() + size);
}

Bytes recordOf(const KtString& s, unsigned char format) {
  Bytes record(StringSizeGet(&s, kMemory, format, 1));
  StringStore(record.data(), &s, format, 1);
  return record;
}

int compareMemory(KtString a, KtString b, unsigned short op) {
  int status = 0;
  return static_cast<int>(StringCompare(kMemory, 0, &a, 0, &b, op, 1, status));
}

struct Outcome {
  int result;
  int status;
  bool operator==(const Outcome&) const = default;
};

Outcome compareKeyBytes(const Bytes& a, const Bytes& b, unsigned short op, unsigned char format = 0x82) {
  const Block x(a), y(b);
  Outcome outcome{0, 0};
  outcome.result = static_cast<int>(StringCompare(format, x.size, x.get(), y.size, y.get(), op, 1, outcome.status));
  return outcome;
}

int sortByMemcmp(const Bytes& a, const Bytes& b) {
  return signOf(std::memcmp(a.data() + 4, b.data() + 4, std::min(a.size(), b.size()) - 4));
}

// --- bytes --------------------------------------------------------------------------------------------------------

TEST(StringKey, key_words_are_big_endian_under_every_format) {
  const KtString s = makeString(u"Na\u00EFve \uAC00", 253, 1);
  const Bytes big = keyOf(s, 0x82);
  for (int code = 0; code < 16; ++code) {
    const Bytes key = keyOf(s, static_cast<unsigned char>(0x80 | code));
    EXPECT_TRUE(std::equal(key.begin() + 2, key.end(), big.begin() + 2, big.end())) << code;
  }
}

// --- the law ------------------------------------------------------------------------------------------------------

class Names {
public:
  KtString next() {
    static const unsigned char sets[] = {1, 5, 10, 253};
    static const std::u16string letters = u"abAB \u00E4\u00C4\u00F1\u00E5-1zZ";
    static const std::u16string wide = u"\u0416\u0151\u1EBF\uAC00\uFFFF\u7FFE\u7FFF";
    const unsigned char set = sets[random_() % 4];
    std::u16string text;
    for (std::size_t n = random_() % 5; n != 0; --n) {
      const bool isWide = set == 253 && random_() % 4 == 0;
      const std::u16string& pool = isWide ? wide : letters;
      text += pool[random_() % pool.size()];
    }
    return makeString(text, set, language);
  }
  unsigned char language = 1;

private:
  std::mt19937 random_{20240229};
};

constexpr unsigned char kLanguageOfKind[] = {1, 4, 5, 6, 20};

TEST(StringKey, memcmp_sorts_keys_as_binary_order_sorts_strings) {
  Names names;
  for (const unsigned char language : kLanguageOfKind) {
    names.language = language;
    for (int i = 0; i < 4000; ++i) {
      const KtString a = names.next();
      const KtString b = names.next();
      const Bytes keyA = keyOf(a, 0x82, 64);
      const Bytes keyB = keyOf(b, 0x82, 64);
      const int expected = compareMemory(a, b, KtCMP_BINARY);
      ASSERT_EQ(sortByMemcmp(keyA, keyB), expected) << a.StrGet() << " " << b.StrGet();
      for (const unsigned short op : Operators{0x100, 0x10, 0x30, 0x50, 0x2D0})
        ASSERT_EQ(compareKeyBytes(keyA, keyB, op), (Outcome{compareMemory(a, b, op), 0})) << op;
    }
  }
}

TEST(StringKey, a_null_sorts_before_the_empty_string_and_that_before_all_else) {
  KtString null;
  null.SetNullValue();
  const KtString rising[] = {null, KtString(), KtString("\x01"), KtString("a")};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      EXPECT_EQ(sortByMemcmp(keyOf(rising[i]), keyOf(rising[j])), signOf(i - j));
      EXPECT_EQ(compareKeyBytes(keyOf(rising[i]), keyOf(rising[j]), 0x100), (Outcome{signOf(i - j), 0}));
    }
}

TEST(StringKey, raw_keys_sort_as_bytes_do_and_next_to_others_by_the_native_set) {
  const KtString texts[] = {makeString(u"", 0, 1), makeString(u"A", 0, 1), makeString(u"AB", 0, 1),
                            makeString(u"a", 0, 1), makeString(u"A*", 0, 1)};
  for (const KtString& a : texts)
    for (const KtString& b : texts) {
      EXPECT_EQ(sortByMemcmp(keyOf(a), keyOf(b)), compareMemory(a, b, 0x100));
      const KtString other = makeString(u"AB", 1, 1);
      EXPECT_EQ(compareKeyBytes(keyOf(a), keyOf(other), 0x100).result, compareMemory(a, other, 0x100));
      for (const unsigned short op : Operators{0, 0x10, 0x20, 0x100})
        EXPECT_EQ(compareKeyBytes(keyOf(a), keyOf(b), op), (Outcome{compareMemory(a, b, op), 0})) << op;
    }
}

TEST(StringKey, memory_and_records_give_the_same_key_within_the_sizes_told) {
  Names names;
  for (int i = 0; i < 500; ++i) {
    KtString s = names.next();
    const Bytes key = keyOf(s, 0x84);
    EXPECT_LE(key.size(), StringSizeGet(&s, kMemory, 0x84, 1));
    for (const unsigned char format : Codes{0, 1, 2, 4}) {
      const Block record(recordOf(s, format));
      Block target(Bytes(StringSizeGet(record.get(), 0, static_cast<unsigned char>(format | 0x80), 1), 0xEE));
      const unsigned long size = Ops::translate(target.get(), 0x84, target.size, record.get(), format, record.size, 1);
      EXPECT_EQ(Bytes(target.get(), target.get() + size), key);
    }
    int status = 0;
    Block block(key);
    EXPECT_EQ(Ops::hash(0x84, block.size, block.get(), 1, status), Ops::hash(kMemory, 0, &s, 1, status));
    EXPECT_EQ(status, 0);
  }
}

TEST(StringKey, an_older_record_counts_as_code_set_0) {
  const Block record(hex("00 06 61 62 00 63 64 00"));
  Block target(Bytes(20, 0xEE));
  EXPECT_EQ(Ops::translate(target.get(), 0x82, 20, record.get(), 2, record.size, 2), 16u);
  EXPECT_EQ(Bytes(target.get(), target.get() + 20), hex("00 06 00 00 61 62 00 FF 00 06 00 00 63 64 00 FF 00 00 00 00"));
}

// --- cut keys -----------------------------------------------------------------------------------------------------

TEST(StringKey, keys_are_cut_between_characters_and_never_exceed_the_room) {
  const KtString s = makeString(u"abc", 1, 1);
  const Bytes whole = keyOf(s);
  ASSERT_EQ(whole.size(), 18u);
  for (unsigned long room = 0; room < 18; ++room) {
    const Bytes key = keyOf(s, 0x82, room);
    const unsigned long characters = room < 6 ? 0 : (room - 6) / 4;
    ASSERT_EQ(key.size(), room < 6 ? 0 : 6 + 4 * characters) << room;
    if (room < 6) continue;
    EXPECT_EQ(key[1], 4 + 4 * characters);
    EXPECT_TRUE(std::equal(key.begin() + 4, key.end() - 2, whole.begin() + 4));
    EXPECT_EQ(key[key.size() - 1], 0xFF);
    EXPECT_EQ(key[key.size() - 2], 0xFF);
  }
}

Bytes keyOfRecord(const KtString& s, unsigned char code, unsigned long room) {
  const Block record(recordOf(s, code));
  Block target(Bytes(room, 0xEE));
  return Bytes(target.get(),
               target.get() + Ops::translate(target.get(), 0x82, room, record.get(), code, record.size, 1));
}

// Which code set a cut key names is up to the whole text, what lies behind the cut included.
TEST(StringKey, a_cut_key_of_a_unicode_text_below_256_is_that_of_the_narrow_text) {
  const std::u16string text = u"abcdefghi\u00FFkl";
  for (unsigned long room = 6; room <= 6 + 4 * text.size(); ++room) {
    const KtString wide = makeString(text, 253, 1);
    EXPECT_EQ(keyOf(wide, 0x82, room), keyOf(makeString(text, 1, 1), 0x82, room)) << room;
    for (std::size_t at = 0; at < text.size(); ++at) {
      std::u16string far = text, ends = text + u'\u0100';
      far[at] = u'\u0100';
      ends[at] = 0;  // the text ends here
      const KtString beyond = makeString(far, 253, 1), ended = makeString(ends, 253, 1);
      EXPECT_EQ(keyOf(beyond, 0x82, room)[2], 253) << room << ' ' << at;
      EXPECT_EQ(keyOf(ended, 0x82, room)[2], 1) << room << ' ' << at;
      for (const unsigned char code : Codes{0, 2})
        for (const KtString& s : {wide, beyond, ended})
          EXPECT_EQ(keyOfRecord(s, code, room), keyOf(s, 0x82, room)) << room << ' ' << at;
    }
  }
}

// The outcome on whole texts, or 2101: never a wrong result that claims to be right.
TEST(StringKey, cut_keys_never_decide_wrongly) {
  Names names;
  for (const unsigned char language : Codes{1, 5, 20}) {
    names.language = language;
    for (int i = 0; i < 2000; ++i) {
      const KtString a = names.next();
      const KtString b = names.next();
      const unsigned long room = 6 + 4 * (static_cast<unsigned long>(i) % 3);
      const Bytes keyA = keyOf(a, 0x82, room);
      const Bytes keyB = keyOf(b, 0x82, i % 2 == 0 ? room : 64);
      for (const unsigned short op : Operators{0x100, 0x10, 0x30, 0x290}) {
        const Outcome outcome = compareKeyBytes(keyA, keyB, op);
        if (outcome.status == 0) {
          ASSERT_EQ(outcome.result, compareMemory(a, b, op)) << a.StrGet() << " " << b.StrGet() << " " << op;
          if (op == 0x100) {
            ASSERT_EQ(sortByMemcmp(keyA, keyB), outcome.result);
          }
        }
        ASSERT_EQ(compareKeyBytes(keyB, keyA, op), (Outcome{-outcome.result, outcome.status}));
      }
    }
  }
}

TEST(StringKey, cut_keys_say_when_they_cannot_decide) {
  const auto cut = [](const char16_t* text, unsigned long characters) {
    return keyOf(makeString(text, 1, 1), 0x82, 6 + 4 * characters);
  };
  struct {
    Bytes a, b;
    Outcome binary, levels;
  } const cases[] = {
      {cut(u"abcd", 2), cut(u"abx", 9), {1, 2101}, {1, 2101}},  // equal as far as it goes, the other is longer
      {cut(u"abcd", 2), cut(u"ab", 9), {1, 0}, {1, 2101}},      // what goes on comes after what ends
      {cut(u"abcd", 2), cut(u"ax", 9), {-1, 0}, {-1, 0}},
      {cut(u"abcd", 2), cut(u"abcd", 2), {0, 2101}, {0, 2101}},
      {cut(u"abcd", 2), cut(u"abcd", 3), {1, 2101}, {1, 2101}},
      {cut(u"abcd", 2), cut(u"ABx", 9), {1, 0}, {-1, 2101}},  // case comes second by levels, within the key first
      {cut(u"abcd", 4), cut(u"abcd", 4), {0, 0}, {0, 0}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(compareKeyBytes(c.a, c.b, 0x100), c.binary);
    EXPECT_EQ(compareKeyBytes(c.a, c.b, 0x10), c.levels);
  }
  int status = 0;
  Block block(cut(u"abcd", 2));
  Ops::hash(0x82, block.size, block.get(), 1, status);
  EXPECT_EQ(status, KtERR_OVERRUN);
}

// One key against one takes a short way; the first of a run of two takes none.
TEST(StringKey, single_keys_compare_as_the_first_of_a_run_does) {
  std::mt19937 random(11);
  const std::u16string pool = u"aaaaabAB -\u00E4\u00C4\u00E6\u0103";  // a blank, a sign, accents, several orders
  constexpr unsigned char kLanguages[] = {1, 1, 1, 2, 5, 20, 254};
  const auto made = [&](const std::u16string& text, unsigned char format) {
    const unsigned char set = random() % 8 == 0 ? 0 : random() % 2 == 0 ? 1 : 253;
    const KtString s = makeString(text, set, kLanguages[random() % std::size(kLanguages)]);
    Bytes key = keyOf(s, format, 6 + random() % 60);
    if (random() % 8 == 0) key[2 + random() % (key.size() - 2)] = static_cast<unsigned char>(random());
    return key;
  };
  const auto twice = [](Bytes key) {
    const Bytes copy = key;
    key.insert(key.end(), copy.begin(), copy.end());
    return Block(key);
  };
  for (int i = 0; i < 40000; ++i) {
    std::u16string a;
    for (std::size_t n = random() % 12; n != 0; --n) a += pool[random() % pool.size()];
    std::u16string b = a.substr(0, random() % 14);
    for (std::size_t n = random() % 3; n != 0; --n)
      b.insert(random() % (b.size() + 1), 1, pool[random() % pool.size()]);
    const unsigned char format = static_cast<unsigned char>(0x80 + random() % 3);
    const Bytes x = made(a, format), y = made(b, format);
    const Block xx = twice(x), yy = twice(y);
    for (const unsigned short op : Operators{0x10, 0x30, 0x70, 0x290, 0x2F0, 0x100, 0}) {
      Outcome ofRun{0, 0};
      ofRun.result = static_cast<int>(StringCompare(format, xx.size, xx.get(), yy.size, yy.get(), op, 2, ofRun.status));
      ASSERT_EQ(compareKeyBytes(x, y, op, format), ofRun) << i << " " << op;
    }
  }
}

// A key whose bytes somebody cut off counts as cut, at whatever byte.
TEST(StringKey, a_key_longer_than_its_run_counts_as_cut) {
  const Bytes whole = keyOf(makeString(u"abc", 1, 1));
  const Bytes larger = keyOf(makeString(u"abd", 1, 1));
  for (unsigned long size = 1; size < whole.size(); ++size) {
    const Block a(whole, size);
    const Block b(larger);
    int status = 0;
    const long result = StringCompare(0x82, size, a.get(), b.size, b.get(), 0x100, 1, status);
    const bool isDecided = size >= 16;  // the third word is whole
    EXPECT_EQ(status, isDecided ? 0 : KtERR_OVERRUN) << size;
    EXPECT_EQ(result, isDecided ? -1 : size < 5 ? 0 : 1) << size;
  }
}

TEST(StringKey, a_text_too_long_for_one_length_word_is_cut) {
  const std::string text(20000, 'a');
  const Bytes key = keyOf(KtString(text.c_str()), 0x82);
  EXPECT_EQ(key.size(), 6u + 4 * 16382);
  EXPECT_EQ(key[key.size() - 2], 0xFF);
}

// --- other translations -------------------------------------------------------------------------------------------

TEST(StringTranslate, memory_and_disk_convert_one_string_and_keys_copy) {
  KtString s = makeString(u"ab", 1, 2);
  Block record(Bytes(10, 0xEE));
  EXPECT_EQ(Ops::translate(record.get(), 2, 10, &s, 8, 16, 1), 8u);
  EXPECT_EQ(Bytes(record.get(), record.get() + 10), hex("00 06 01 02 61 62 00 FF 00 00"));
  EXPECT_EQ(Ops::translate(record.get(), 2, 7, &s, 8, 16, 1), 0u);  // no room
  EXPECT_EQ(Bytes(record.get(), record.get() + 7), Bytes(7, 0));

  const Block stored(recordOf(s, 2));
  KtString loaded;
  EXPECT_EQ(Ops::translate(&loaded, 8, 16, stored.get(), 2, 8, 1), 8u);
  EXPECT_EQ(compareMemory(loaded, s, 0x10), 0);
  EXPECT_EQ(loaded.language, 2);

  Block copy(Bytes(10, 0xEE));
  EXPECT_EQ(Ops::translate(copy.get(), 2, 10, stored.get(), 2, 8, 1), 8u);
  EXPECT_EQ(Bytes(copy.get(), copy.get() + 10), hex("00 06 01 02 61 62 00 FF 00 00"));

  const Block key(keyOf(s, 0x82));
  EXPECT_EQ(Ops::translate(copy.get(), 0x84, 10, key.get(), 0x82, key.size, 1), 10u);
  EXPECT_EQ(Bytes(copy.get(), copy.get() + 10), hex("08 00 01 02 01 40 0C 20 FF FF"));
}

TEST(StringTranslate, other_combinations_assert_and_give_nothing) {
  const CaughtAssertions caught;
  KtString s[2];
  Block record(hex("00 06 01 02 61 62 00 FF 00 04 00 FE 00 FF"));
  Block target(Bytes(40, 0));
  const struct {
    void* dst;
    unsigned char to;
    void* src;
    unsigned char from;
    unsigned long length;
    unsigned long count;
  } cases[] = {
      {target.get(), 4, record.get(), 2, 14, 1},  // between two byte orders
      {s, 8, record.get(), 2, 14, 2},             // two strings at once
      {s, 8, record.get(), 2, 7, 1},              // a record that the source does not hold
      {s, 8, record.get(), 0x82, 14, 1},          // out of a key
      {target.get(), 2, record.get(), 0x82, 14, 1},
      {s, 8, s + 1, 9, 16, 1},
  };
  for (const auto& c : cases) EXPECT_EQ(Ops::translate(c.dst, c.to, 40, c.src, c.from, c.length, c.count), 0u);
  EXPECT_EQ(CaughtAssertions::count(), 6);
  EXPECT_EQ(CaughtAssertions::last(), "\"format combination not supported\" && 0 src\\kttypes 1509");
}

TEST(StringTranslate, no_strings_from_disk_take_no_record) {
  const CaughtAssertions caught;
  KtString s("kept");
  Block record(hex("00 06 01 02 61 62 00 FF"));
  for (const unsigned long length : {0ul, 7ul, 8ul})
    EXPECT_EQ(Ops::translate(&s, 8, 16, record.get(), 2, length, 0), 0u);
  EXPECT_STREQ(s.StrGet(), "kept");
  EXPECT_EQ(CaughtAssertions::count(), 0);
}

}  // namespace
