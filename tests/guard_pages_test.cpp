// Values, texts and records that end where a page ends behind which nothing may be read, or begin where one begins: vectors
// and words that reach beyond them are found in every build.
#if !defined(_WIN32)

#include "guarded_page.h"
#include "kttypops.h"
#include "slow_hash.h"

#include <kttm.h>

#include <gtest/gtest.h>

#include <bit>
#include <random>

namespace {

using kt_test::Bytes, kt_test::GuardedPage, kt_test::Place;

constexpr Place kPlaces[][2] = {
    {Place::kEnd, Place::kEnd}, {Place::kBegin, Place::kBegin}, {Place::kEnd, Place::kBegin}};

GuardedPage first, second;

// --- numbers ------------------------------------------------------------------------------------------------------

struct Number {
  char id;
  std::size_t width, word;  // bytes of a value, and of its words, the low one first, that have an order
  bool isSigned, isDouble;
};
constexpr Number kNumbers[] = {{KT_ID_KtByte, 1, 1, false, false},  {KT_ID_short, 2, 2, true, false},
                               {KT_ID_KtWord, 2, 2, false, false},  {KT_ID_long, 4, 4, true, false},
                               {KT_ID_KtDWord, 4, 4, false, false}, {KT_ID_KtInt64, 8, 4, true, false},
                               {KT_ID_double, 8, 8, true, true}};
constexpr unsigned char kMemory = 8, kLayout = 1, kBigEndian = 2, kLittleEndian = 0;

bool isBigEndian(unsigned char format) {
  return format == kBigEndian || (format != kLittleEndian && std::endian::native == std::endian::big);
}

Bytes swapped(Bytes run, std::size_t word) {
  const auto step = static_cast<std::ptrdiff_t>(word);
  for (auto at = run.begin(); at != run.end(); at += step) std::reverse(at, at + step);
  return run;
}

// The number whose bytes begin there, sign- or zero-extended; of a double its bits.
std::int64_t bitsAt(const Bytes& run, std::size_t i, const Number& type, unsigned char format) {
  std::uint64_t bits = 0;
  for (std::size_t k = 0; k < type.width; ++k) {
    const std::size_t lowFirst = isBigEndian(format) ? k ^ (type.word - 1) : k;
    bits |= std::uint64_t{run[i * type.width + lowFirst]} << 8 * k;
  }
  const std::size_t unused = 64 - 8 * type.width;
  return type.isSigned ? static_cast<std::int64_t>(bits << unused) >> unused : static_cast<std::int64_t>(bits);
}

long slowCompare(const Bytes& a, const Bytes& b, const Number& type, unsigned char format) {
  for (std::size_t i = 0; i < a.size() / type.width; ++i) {
    const std::int64_t x = bitsAt(a, i, type, format), y = bitsAt(b, i, type, format);
    const double p = std::bit_cast<double>(x), q = std::bit_cast<double>(y);
    if (type.isDouble ? p != q : x != y) return (type.isDouble ? p < q : x < y) ? -1 : 1;
  }
  return 0;
}

std::uint32_t slowHash(const Bytes& run, const Number& type, unsigned char format) {
  std::uint32_t words = 0;
  for (std::size_t i = 0; i < run.size() / type.width; ++i) {
    const std::int64_t bits = bitsAt(run, i, type, format);
    if (type.isDouble && std::bit_cast<double>(bits) == 0) continue;
    words ^= static_cast<std::uint32_t>(bits) ^ (type.width == 8 ? static_cast<std::uint32_t>(bits >> 32) : 0u);
  }
  return words * 1103515245u;
}

// Values of any bits; the doubles are finite, and of every exponent but the least: no NaN, which equals all.
Bytes someValues(const Number& type, std::size_t count, unsigned char format) {
  static std::mt19937 random(11);
  Bytes run(count * type.width);
  for (unsigned char& byte : run) byte = static_cast<unsigned char>(random());
  for (std::size_t i = 0; type.isDouble && i < count; ++i) run[i * 8 + (isBigEndian(format) ? 0 : 7)] &= 0xBF;
  return run;
}

template <class Use>
void forNumbers(std::initializer_list<unsigned char> formats, Use use) {
  for (const Number& type : kNumbers)
    for (const std::size_t bytes : {128u, 256u, 384u, 2048u})
      for (const std::size_t count : {bytes / type.width - 1, bytes / type.width, bytes / type.width + 1})
        for (const unsigned char format : formats) {
          SCOPED_TRACE(testing::Message()
                       << "type " << int{type.id} << " count " << count << " format " << int{format});
          use(type, someValues(type, count, format), count, format);
        }
}

TEST(GuardPages, numbers_compare_within_their_runs) {
  const KtTypeMgr mgr(12);
  forNumbers({kMemory, kBigEndian, kLittleEndian}, [&](const Number& type, const Bytes& a, std::size_t count,
                                                       auto format) {
    for (const std::size_t at : {count, std::size_t{0}, count / 2, count - 1})  // of the difference
      for (const auto& [placeA, placeB] : kPlaces) {
        Bytes b = a;
        if (at < count) b[at * type.width + at % type.width] ^= 0x10;
        void *x = first.put(a, placeA), *y = second.put(b, placeB);
        for (const unsigned long length : {std::size_t{0}, a.size()}) {
          int status = 1;
          EXPECT_EQ(mgr.Cmp(type.id, length, x, length, y, 0, count, format, status), slowCompare(a, b, type, format));
          EXPECT_EQ(status, 0);
        }
      }
  });
}

TEST(GuardPages, numbers_hash_within_their_runs) {
  const KtTypeMgr mgr(12);
  forNumbers({kMemory, kBigEndian, kLittleEndian}, [&](const Number& type, Bytes run, std::size_t count, auto format) {
    for (const Place place : {Place::kEnd, Place::kBegin})
      for (const bool hasZero : {false, true}) {  // of a double -0: an exception among the blocks
        if (hasZero) std::fill_n(run.end() - std::ssize(run) / 2, type.width, static_cast<unsigned char>(0));
        if (hasZero) run[run.size() - run.size() / 2 + (isBigEndian(format) ? 0 : type.width - 1)] = 0x80;
        int status = 1;
        EXPECT_EQ(mgr.Hash(type.id, run.size(), first.put(run, place), count, format, status),
                  slowHash(run, type, format));
        EXPECT_EQ(status, 0);
      }
  });
}

TEST(GuardPages, numbers_load_and_store_within_their_runs) {
  const KtTypeMgr mgr(12);
  forNumbers({kLayout, kBigEndian, kLittleEndian},
             [&](const Number& type, const Bytes& disk, std::size_t count, auto format) {
               const Bytes memory = isBigEndian(format) == isBigEndian(kMemory) ? disk : swapped(disk, type.word);
               for (const auto& [placeA, placeB] : kPlaces) {
                 void *dst = second.room(disk.size(), placeB), *src = first.put(disk, placeA);
                 EXPECT_EQ(mgr.Load(type.id, dst, src, format, count), disk.size());
                 EXPECT_TRUE(second.holds(memory, placeB));
                 dst = second.room(disk.size(), placeB), src = first.put(memory, placeA);
                 EXPECT_EQ(mgr.Store(type.id, dst, src, format, count), disk.size());
                 EXPECT_TRUE(second.holds(disk, placeB));
               }
             });
}

// --- texts --------------------------------------------------------------------------------------------------------

// What follows on a common beginning. sign: kApart where it is one or the other.
constexpr int kApart = 2;
struct Tails {
  const char16_t *a, *b;
  unsigned short cmpOp;
  int sign;
};
const Tails kTails[] = {
    {u"", u"", 0x10, 0},         {u"", u"", 0, 0},
    {u"x", u"x", 0x100, 0},      {u"x", u"", 0x10, 1},
    {u"x", u"y", 0x10, -1},      {u"x", u"y", 0, -1},
    {u"x", u"y", 0x110, -1},     {u"x", u"X", 0x10, kApart},
    {u"x", u"X", 0x30, 0},       {u"e", u"\u00E9", 0x10, kApart},
    {u"e", u"\u00E9", 0x50, 0},  {u"E", u"\u00E9", 0x70, 0},
    {u"x-", u"x", 0x10, kApart}, {u"x-", u"x", 0x210, 0},
    {u"-", u"", 0x210, 0},       {u"x ", u"x", 0x90, 0},
    {u"xy", u"x", 0x290, 1},     {u"-x", u"y", 0x10, -1},
    {u"xyz", u"*", 0, 0},        {u"x", u"?", 0, 0},
};

struct Form {
  unsigned char codeSet, format;
};
constexpr Form kForms[] = {
    {1, kBigEndian}, {1, kLittleEndian}, {253, kLayout}, {253, kBigEndian}, {253, kLittleEndian}};

Bytes terminated(const std::u16string& text, const Form& form) {
  const KtString s = kt_test::makeString(text, form.codeSet, 0);
  const Bytes bytes(s.StrGet(), s.StrGet() + (text.size() + 1) * s.CharSize());
  return swapped(bytes, isBigEndian(form.format) == isBigEndian(kMemory) ? 1 : s.CharSize());
}

template <class Use>
void forTexts(Use use) {
  const std::u16string beginning = u"The five b\u00F6xing wizards: jump qu\u00EDckly, twice";
  for (const Form& form : kForms)
    for (std::size_t n = 0; n <= 40; ++n)
      for (const Tails& tails : kTails) {
        const std::u16string a = beginning.substr(0, n) + tails.a, b = beginning.substr(0, n) + tails.b;
        SCOPED_TRACE(testing::Message() << n << " characters, code set " << int{form.codeSet} << " format "
                                        << int{form.format} << " case " << &tails - kTails);
        use(form, a, b, tails);
      }
}

void expectSign(long result, int sign) {
  EXPECT_TRUE(sign == kApart ? result != 0 : sign == (result > 0) - (result < 0)) << result;
}

TEST(GuardPages, terminated_texts_are_read_to_their_ends) {
  forTexts([](const Form& form, const std::u16string& a, const std::u16string& b, const Tails& tails) {
    const Bytes bytesA = terminated(a, form), bytesB = terminated(b, form);
    for (const auto& [placeA, placeB] : kPlaces) {
      char* const x = reinterpret_cast<char*>(first.put(bytesA, placeA));
      char* const y = reinterpret_cast<char*>(second.put(bytesB, placeB));
      int report = 0;
      for (int* wanted : {static_cast<int*>(nullptr), &report})
        for (const short length : std::initializer_list<short>{-1, 99})
          expectSign(KtStrCmp(form.codeSet, 0, x, form.codeSet, 0, y, tails.cmpOp, length, form.format, wanted),
                     tails.sign);
      EXPECT_EQ(HashString(form.codeSet, 0, x, -1, form.format), kt_test::slowHash(a, 0, 0));
      EXPECT_EQ(HashString(form.codeSet, 0, y, 2, form.format), kt_test::slowHash(b, 0, 2));
    }
  });
}

Bytes recordOf(const std::u16string& text, const Form& form) {
  const KtString s = kt_test::makeString(text, form.codeSet, 0);
  Bytes record(StringSizeGet(&s, kMemory, form.format, 1));
  StringStore(record.data(), &s, form.format, 1);
  return record;
}

TEST(GuardPages, records_are_read_to_their_ends) {
  forTexts([](const Form& form, const std::u16string& a, const std::u16string& b, const Tails& tails) {
    const Bytes recordA = recordOf(a, form), recordB = recordOf(b, form);
    for (const auto& [placeA, placeB] : kPlaces) {
      void *x = first.put(recordA, placeA), *y = second.put(recordB, placeB);
      for (const bool isTold : {false, true}) {
        int status = 1;
        const unsigned long lengthA = isTold ? recordA.size() : 0, lengthB = isTold ? recordB.size() : 0;
        expectSign(StringCompare(form.format, lengthA, x, lengthB, y, tails.cmpOp, 1, status), tails.sign);
        EXPECT_EQ(status, 0);
      }
      KtString loaded;
      EXPECT_EQ(StringLoad(&loaded, x, form.format, 1), recordA.size());
      EXPECT_EQ(loaded.Len(), a.size());
      EXPECT_EQ(loaded.Compare(kt_test::makeString(a, form.codeSet, 0), -1, KtCMP_BINARY), 0);
      EXPECT_EQ(StringSizeGet(y, form.format, form.format, 1), recordB.size());
    }
  });
}

TEST(GuardPages, of_a_cut_record_no_more_is_read_than_the_run_has) {
  for (const Form& form : kForms) {
    const Bytes whole = recordOf(u"twelve or more", form);
    void* const y = second.put(whole, Place::kEnd);
    for (std::size_t cut = 1; cut < whole.size(); ++cut) {
      void* const x = first.put(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut)), Place::kEnd);
      int status = 0;
      EXPECT_EQ(StringCompare(form.format, cut, x, whole.size(), y, KtCMP_NO_WILDCARDS, 1, status), 0) << cut;
      EXPECT_EQ(status, KtERR_OVERRUN);
      EXPECT_EQ(StringCompare(form.format, whole.size(), y, cut, x, KtCMP_NO_WILDCARDS, 1, status), 0) << cut;
      EXPECT_EQ(status, KtERR_OVERRUN);
    }
  }
}

// Zeros behind the length word: no room for a code set, or an older record of empty texts.
TEST(GuardPages, the_shortest_records_load_as_empty_strings) {
  for (unsigned char length = 0; length <= 5; ++length) {
    Bytes record(length + 2u);
    record[1] = length;
    KtString loaded[] = {KtString("old"), KtString("old")};
    EXPECT_EQ(StringLoad(loaded, first.put(record, Place::kEnd), kBigEndian, 2), record.size()) << int{length};
    EXPECT_TRUE(loaded[0].IsEmpty() && loaded[1].IsEmpty()) << int{length};
  }
}

}  // namespace

#endif
