// The nullable scalar rows: memory and disk forms, null rules, compare, hash, text.
#include <kttm.h>

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

namespace {

KtTypeMgr mgr(12);

using Bytes = std::vector<unsigned char>;
using Codes = std::initializer_list<unsigned char>;

struct LongElement {  // KtNull_long as an application declares it
  std::int32_t value;
  unsigned char mark;
};

// Each row with the plain scalar beneath, whose own row tells how a value is stored, ordered and hashed.
struct Row {
  int id, plain;
  unsigned long width, memLen;
};

const Row kRows[] = {{KT_ID_KtNull_char, KT_ID_char, 1, 2},       {KT_ID_KtNull_uchar, KT_ID_KtByte, 1, 2},
                     {KT_ID_KtNull_short, KT_ID_short, 2, 4},     {KT_ID_KtNull_ushort, KT_ID_KtWord, 2, 4},
                     {KT_ID_KtNull_int, KT_ID_int, 4, 8},         {KT_ID_KtNull_unsigned, KT_ID_unsigned, 4, 8},
                     {KT_ID_KtNull_long, KT_ID_long, 4, 8},       {KT_ID_KtNull_ulong, KT_ID_KtDWord, 4, 8},
                     {KT_ID_KtNull_float, KT_ID_float, 4, 8},     {KT_ID_KtNull_double, KT_ID_double, 8, 16},
                     {KT_ID_KtNull_KtInt64, KT_ID_KtInt64, 8, 12}};

char idOf(const Row& row) { return static_cast<char>(row.id); }
char plainOf(const Row& row) { return static_cast<char>(row.plain); }

// `count` values of the plain scalar with distinct small numbers in them, as the scalar's row scans them.
Bytes plainValues(const Row& row, unsigned long count) {
  Bytes values(row.width * count);
  for (unsigned long i = 0; i < count; ++i) {
    KtString text(static_cast<int>(i * 37 % 90 + 33));
    KtTypeConvertData holder(KT_ID_KtString, 1, &text, nullptr);
    void* one = mgr.ConvertFrom(plainOf(row), &holder, 1);
    holder.typeManager = nullptr;
    std::memcpy(values.data() + i * row.width, one, row.width);
    mgr.Delete(plainOf(row), one, 1);
  }
  return values;
}

bool isNullAt(unsigned long i) { return i % 3 == 1; }

// The same values in memory form, every third one null.
Bytes elements(const Row& row, const Bytes& plain) {
  const unsigned long count = plain.size() / row.width;
  Bytes memory(count * row.memLen, 0xEE);  // padding never matters
  for (unsigned long i = 0; i < count; ++i) {
    std::memset(memory.data() + i * row.memLen, 0, row.width);
    if (!isNullAt(i)) std::memcpy(memory.data() + i * row.memLen, plain.data() + i * row.width, row.width);
    memory[i * row.memLen + row.width] = isNullAt(i);
  }
  return memory;
}

// A slow twin of Store: mark and value, or in the memory form value and mark.
Bytes slowStore(const Row& row, const Bytes& memory, unsigned char format) {
  Bytes disk;
  for (unsigned long at = 0; at < memory.size(); at += row.memLen) {
    Bytes value(row.width), stored(8);
    std::memcpy(value.data(), memory.data() + at, row.width);
    stored.resize(mgr.Store(plainOf(row), stored.data(), value.data(), format, 1));
    const unsigned char mark = memory[at + row.width];
    if ((format & 8) == 0) disk.push_back(mark);
    disk.insert(disk.end(), stored.begin(), stored.end());
    if ((format & 8) != 0) disk.push_back(mark);
  }
  return disk;
}

bool sameElements(const Row& row, const Bytes& a, const Bytes& b) {
  for (unsigned long at = 0; at < a.size(); at += row.memLen) {
    if (std::memcmp(a.data() + at, b.data() + at, row.width + 1) != 0) return false;
  }
  return true;
}

TEST(Nullable, every_row_stores_and_loads_marks_and_values_in_runs) {
  for (const Row& row : kRows) {
    for (unsigned long count : {1ul, 2ul, 63ul, 64ul, 65ul, 200ul}) {
      Bytes memory = elements(row, plainValues(row, count));
      for (const unsigned char format : Codes{0, 1, 2, 4, 8, 9, 0xF2}) {
        SCOPED_TRACE(testing::Message() << mgr.NameGet(idOf(row), nullptr) << " x " << count << " code "
                                        << int(format));
        const Bytes expected = slowStore(row, memory, format);
        Bytes disk(expected.size());
        ASSERT_EQ(mgr.Store(idOf(row), disk.data(), memory.data(), format, count), expected.size());
        ASSERT_EQ(disk, expected);
        ASSERT_EQ(mgr.DiskLenGet(idOf(row), nullptr, format, count, 8), expected.size());
        ASSERT_EQ(mgr.DiskLenGetFromMemFile(idOf(row), nullptr, format, count), expected.size());
        Bytes back(memory.size(), 0xAA);
        ASSERT_EQ(mgr.Load(idOf(row), back.data(), disk.data(), format, count), expected.size());
        ASSERT_TRUE(sameElements(row, back, memory));
      }
    }
  }
}

TEST(Nullable, marks_are_stored_as_1_and_load_as_null_only_from_1) {
  LongElement in{-2, 7};  // the bytes beneath a mark of one's own are kept
  Bytes disk(5);
  EXPECT_EQ(mgr.Store(KT_ID_KtNull_long, disk.data(), &in, 2, 1), 5u);
  EXPECT_EQ(disk, (Bytes{1, 0xFF, 0xFF, 0xFF, 0xFE}));
  // Only a mark of exactly 1 loads as null, and a null keeps no value.
  const unsigned char marks[] = {2, 5, 0, 0, 0, 1, 9, 0, 0, 0, 255, 7, 0, 0, 0};
  LongElement out[3];
  EXPECT_EQ(mgr.Load(KT_ID_KtNull_long, out, const_cast<unsigned char*>(marks), 0, 3), 15u);
  const LongElement loaded[3] = {{5, 0}, {0, 1}, {7, 0}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(out[i].value, loaded[i].value);
    EXPECT_EQ(out[i].mark, loaded[i].mark);
  }
}

TEST(Nullable, new_elements_are_null_and_arrays_stand_behind_their_count) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(mgr.NameGet(idOf(row), nullptr));
    for (unsigned long count : {0ul, 1ul, 2ul, 7ul}) {
      for (const bool byDefault : {false, true}) {
        void* made = byDefault ? mgr.DefaultValue(idOf(row), count, 0) : mgr.Create(idOf(row), count);
        const auto* bytes = static_cast<const unsigned char*>(made);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(made) % (row.memLen - row.width > 4 ? 8 : 2), 0u);
        for (unsigned long i = 0; i < std::max(count, 1ul); ++i) {
          EXPECT_EQ(bytes[i * row.memLen + row.width], 1);
          for (unsigned long k = 0; k < row.width; ++k) EXPECT_EQ(bytes[i * row.memLen + k], 0);
        }
        std::uint32_t word = 0;
        if (count >= 2) std::memcpy(&word, bytes - 4, 4);
        EXPECT_EQ(word, count >= 2 ? count : 0);
        EXPECT_EQ(mgr.Delete(idOf(row), made, count), nullptr);
      }
    }
  }
}

TEST(Nullable, marks_are_told_as_they_are_and_set_to_one) {
  LongElement e = {5, 200};
  EXPECT_EQ(mgr.IsNullValue(KT_ID_KtNull_long, &e), 200 - 256);
  EXPECT_EQ(mgr.SetNullValue(KT_ID_KtNull_long, &e), 0);
  EXPECT_EQ(e.value, 0);
  EXPECT_EQ(e.mark, 1);
  LongElement run[3];
  mgr.ConstructorPtrGet(KT_ID_KtNull_long)(run, 3, 0);
  for (const LongElement& r : run) EXPECT_TRUE(r.value == 0 && r.mark == 1);
  LongElement seven = {7, 0};
  mgr.AssignmentPtrGet(KT_ID_KtNull_long)(run, &seven, 3, 1);
  for (const LongElement& r : run) EXPECT_TRUE(r.value == 7 && r.mark == 0);
}

struct CompareCase {
  LongElement a, b;
  long result;
};

TEST(Nullable, null_sorts_before_every_value_in_memory_and_on_disk) {
  const std::int32_t least = std::numeric_limits<std::int32_t>::min();
  const CompareCase cases[] = {{{0, 1}, {0, 1}, 0},      {{0, 1}, {0, 0}, -1}, {{0, 0}, {0, 1}, 1},
                               {{0, 1}, {least, 0}, -1}, {{1, 0}, {2, 0}, -1}, {{-1, 0}, {1, 0}, -1},
                               {{3, 0}, {3, 0}, 0},      {{9, 5}, {3, 1}, 0},  {{9, 5}, {3, 0}, -1}};
  for (const CompareCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.a.value << '/' << int(c.a.mark) << " and " << c.b.value << '/'
                                    << int(c.b.mark));
    for (unsigned long before : {0ul, 1ul, 30ul}) {
      std::vector<LongElement> a(before, LongElement{4, 0});
      std::vector<LongElement> b = a;
      a.push_back(c.a);
      b.push_back(c.b);
      EXPECT_EQ(mgr.Cmp(KT_ID_KtNull_long, a.data(), b.data(), 0, before + 1, 8), c.result);
      for (const unsigned char format : Codes{0, 1, 2, 9}) {
        Bytes diskA(5 * before + 5), diskB(5 * before + 5);
        mgr.Store(KT_ID_KtNull_long, diskA.data(), a.data(), format, before + 1);
        mgr.Store(KT_ID_KtNull_long, diskB.data(), b.data(), format, before + 1);
        int status = 1;
        EXPECT_EQ(mgr.Cmp(KT_ID_KtNull_long, diskA.size(), diskA.data(), diskB.size(), diskB.data(), 0, before + 1,
                          format, status),
                  c.result)
            << "code " << int(format);
        EXPECT_EQ(status, 0);
      }
    }
  }
  // On disk a mark other than 1 is no null.
  unsigned char odd[] = {2, 5, 0, 0, 0};
  unsigned char five[] = {0, 5, 0, 0, 0};
  EXPECT_EQ(mgr.Cmp(KT_ID_KtNull_long, odd, five, 0, 1, 0), 0);
  int status = 0;
  EXPECT_EQ(mgr.Cmp(KT_ID_KtNull_long, 5, odd, 5, five, 0, 2, 0, status), 0);
  EXPECT_EQ(status, 2101);
}

TEST(Nullable, runs_hash_alike_in_every_form_and_unlike_zero_when_null) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(mgr.NameGet(idOf(row), nullptr));
    for (unsigned long count : {1ul, 2ul, 3ul, 65ul, 200ul}) {
      const Bytes plain = plainValues(row, count);
      Bytes memory = elements(row, plain);
      int status = 1;
      const unsigned long hash = mgr.Hash(idOf(row), 0, memory.data(), count, 8, status);
      EXPECT_EQ(status, 0);
      for (const unsigned char format : Codes{0, 1, 2, 4, 9}) {
        Bytes disk = slowStore(row, memory, format);
        EXPECT_EQ(mgr.Hash(idOf(row), disk.size(), disk.data(), count, format, status), hash) << int(format);
        EXPECT_EQ(status, 0);
      }
      if (count != 1) continue;
      EXPECT_EQ(hash, mgr.Hash(plainOf(row), 0, const_cast<unsigned char*>(plain.data()), 1, 8, status));
    }
    Bytes null(row.memLen, 3);  // any mark, any value beneath: one null equals another
    Bytes clean(row.memLen);
    mgr.SetNullValue(idOf(row), clean.data());
    int status;
    const unsigned long hash = mgr.Hash(idOf(row), 0, null.data(), 1, 8, status);
    EXPECT_EQ(hash, mgr.Hash(idOf(row), 0, clean.data(), 1, 8, status));
    EXPECT_NE(hash, 0u);
  }
}

TEST(Nullable, translate_uses_padded_elements_in_memory_and_packed_ones_on_disk) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(mgr.NameGet(idOf(row), nullptr));
    Bytes memory = elements(row, plainValues(row, 5));
    const unsigned long padded = 5 * row.memLen;
    const unsigned long packed = 5 * (row.width + 1);
    Bytes disk(packed), copy(padded), back(padded);
    EXPECT_EQ(mgr.Translate(idOf(row), copy.data(), 8, padded, memory.data(), 9, padded, 5), padded);
    EXPECT_TRUE(sameElements(row, copy, memory));
    EXPECT_EQ(mgr.Translate(idOf(row), disk.data(), 2, packed, memory.data(), 8, padded, 5), packed);
    EXPECT_EQ(mgr.Translate(idOf(row), back.data(), 8, padded, disk.data(), 2, packed, 5), packed);
    EXPECT_TRUE(sameElements(row, back, memory));
  }
}

TEST(Nullable, nulls_and_values_survive_text) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(mgr.NameGet(idOf(row), nullptr));
    Bytes memory = elements(row, plainValues(row, 4));
    KtTypeConvertData* texts = mgr.ConvertTo(idOf(row), memory.data(), 4);
    EXPECT_STREQ(texts->GetString(1)->StrGet(), "{NULL}");
    void* back = mgr.ConvertFrom(idOf(row), texts, 5);
    Bytes converted(4 * row.memLen);
    std::memcpy(converted.data(), back, converted.size());
    EXPECT_TRUE(sameElements(row, converted, memory));
    void* last = mgr.GetArrayElement(idOf(row), back, 4, 5);
    EXPECT_EQ(mgr.IsNullValue(idOf(row), last), 1);  // no text, no value
    mgr.Delete(idOf(row), back, 5);
    delete texts;
    for (unsigned long i = 0; i < 4; ++i) {
      KtString out(isNullAt(i) ? "old" : "");
      Bytes scanned(row.memLen, 0x11);
      mgr.PrintToKtString(idOf(row), out, memory.data() + i * row.memLen, nullptr, 1);
      EXPECT_TRUE(!isNullAt(i) || out == "{NULL}");  // replaced
      mgr.ScanFromKtString(idOf(row), scanned.data(), out, nullptr, 1);
      EXPECT_EQ(std::memcmp(scanned.data(), memory.data() + i * row.memLen, row.width + 1), 0) << out.StrGet();
    }
  }
}

TEST(Nullable, printing_and_scanning_follow_the_scalar) {
  LongElement run[3] = {{5, 0}, {0, 1}, {-7, 0}};
  KtString out("old");
  mgr.PrintToKtString(KT_ID_KtNull_long, out, run, "<%ld>", 3);
  EXPECT_STREQ(out.StrGet(), "old<5>,{NULL},<-7>");
  mgr.PrintToKtString(KT_ID_KtNull_long, out, run, "<%ld>", 1);
  EXPECT_STREQ(out.StrGet(), "<5>");
  // Text that does not match leaves the element alone, null or not.
  KtString none("none");
  for (LongElement& e : run) {
    const LongElement before = e;
    EXPECT_EQ(mgr.ScanFromKtString(KT_ID_KtNull_long, &e, none, nullptr, 1), &e);
    EXPECT_TRUE(e.value == before.value && e.mark == before.mark);
  }
  KtString number("12");
  mgr.ScanFromKtString(KT_ID_KtNull_long, run + 1, number, nullptr, 1);
  EXPECT_TRUE(run[1].value == 12 && run[1].mark == 0);
  KtInt64 wide[2];  // value and mark of one element, padded
  Bytes element(12);
  mgr.ScanFromKtString(KT_ID_KtNull_KtInt64, element.data(), number, nullptr, 1);
  std::memcpy(wide, element.data(), 8);
  EXPECT_EQ(wide[0].Value(), 12);
  KtString appended("n=");
  mgr.PrintToKtString(KT_ID_KtNull_KtInt64, appended, element.data(), nullptr, 1);
  EXPECT_STREQ(appended.StrGet(), "n=12");
}

TEST(Nullable, functions_called_without_a_format_use_that_of_the_row) {
  KtTypeMgr table(12);
  LongElement least = {std::numeric_limits<std::int32_t>::min(), 0};
  const auto print = table.ExchangePrintToKtStringFunc(KT_ID_KtNull_ulong, nullptr);
  const auto scan = table.ExchangeScanFromKtStringFunc(KT_ID_KtNull_ulong, nullptr);
  KtString out;
  EXPECT_STREQ(print(out, &least, nullptr, 1).StrGet(), "2147483648");
  LongElement back = {1, 1};
  EXPECT_EQ(scan(&back, out, nullptr, 1), &back);
  EXPECT_TRUE(back.value == least.value && back.mark == 0);
}

TEST(Nullable, an_empty_null_text_stands_for_null_only_where_the_text_is_empty) {
  const KtString old = KtTypeMgr::GetNullPrintString();
  KtTypeMgr::SetNullPrintString("");
  LongElement run[2] = {{5, 0}, {0, 1}};
  LongElement back[2] = {{9, 9}, {9, 9}};
  for (int i = 0; i < 2; ++i) {
    KtString text;
    mgr.PrintToKtString(KT_ID_KtNull_long, text, run + i, nullptr, 1);
    mgr.ScanFromKtString(KT_ID_KtNull_long, back + i, text, nullptr, 1);
    EXPECT_TRUE(back[i].value == run[i].value && back[i].mark == run[i].mark) << i;
  }
  KtTypeMgr::SetNullPrintString(old);
}

}  // namespace
