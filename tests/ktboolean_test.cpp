// KtBoolean: its lopsided order, null, texts and row.
#include <kttm.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

KtTypeMgr mgr(12);

using Codes = std::initializer_list<unsigned char>;

KtBoolean ofByte(int byte) {
  KtBoolean b;
  b.value = static_cast<unsigned char>(byte);
  return b;
}

struct Relations {
  int a, b;
  bool equal, less, greater;
};

// 255 is null. Bytes beyond 1 come from foreign copies only.
const Relations kRelations[] = {
    {0, 0, true, false, false},   {1, 1, true, false, false},     {0, 1, false, true, false},
    {1, 0, false, false, true},   {255, 255, true, false, false}, {255, 0, false, true, false},
    {255, 1, false, true, false}, {0, 255, false, false, true},   {1, 255, false, false, true},
    {2, 5, true, false, false},   {5, 2, true, false, true},      {0, 127, false, true, false},
    {0, 128, false, false, true}, {128, 0, false, false, false},  {128, 1, true, false, false},
    {1, 254, true, false, true},  {254, 255, false, false, true},
};

TEST(KtBoolean, equality_is_of_truth_and_the_order_is_not_symmetric) {
  for (const Relations& r : kRelations) {
    SCOPED_TRACE(testing::Message() << r.a << " and " << r.b);
    const KtBoolean a = ofByte(r.a);
    const KtBoolean b = ofByte(r.b);
    EXPECT_EQ(a == b, r.equal);
    EXPECT_EQ(a != b, !r.equal);
    EXPECT_EQ(a < b, r.less);
    EXPECT_EQ(a > b, r.greater);
    if (r.b > 1) continue;  // a number is 0 or 1
    for (long n : {r.b * 1L, r.b * -7L, r.b * 256L}) {
      EXPECT_EQ(a == n, r.equal);
      EXPECT_EQ(a != n, !r.equal);
      EXPECT_EQ(a < n, r.less);
      EXPECT_EQ(a > n, r.greater);
    }
  }
}

template <class T>
void expectAllOrders(T one) {
  const KtBoolean yes(one);
  const KtBoolean no(T{});
  KtBoolean assigned;
  assigned = one;
  EXPECT_EQ(assigned.value, 1);
  EXPECT_TRUE(yes == one && one == yes && no != one && one != no);
  EXPECT_TRUE(no < one && one > no && yes > T{} && T{} < yes);
  EXPECT_FALSE(yes < one || one > yes);
}

TEST(KtBoolean, numbers_stand_on_either_side_and_count_as_their_truth) {
  expectAllOrders(true);
  expectAllOrders(1);
  expectAllOrders(7u);
  expectAllOrders(255L);
  expectAllOrders(1ul);
  static_assert(std::is_same_v<decltype(KtBoolean(1L) == 1), int>);
  KtBoolean null(1);
  EXPECT_EQ(null.SetNullValue(), 0);
  EXPECT_TRUE(null.IsNullValue() && null.value == 255);
  EXPECT_FALSE(null == 0 || null == 255 || 0 == null || null > 0 || null > 1);
  EXPECT_TRUE(null < 0 && null < 1 && 0 > null && null != 0);
}

struct TextCase {
  const char* in;
  int byte;
};

const TextCase kTexts[] = {{"T", 1},     {"t", 1},     {"TRUE", 1}, {"true", 1},     {"1", 1},
                           {"True", 0},  {"TRUEX", 0}, {"TR", 0},   {" T", 0},       {"yes", 0},
                           {"", 0},      {"0", 0},     {"11", 0},   {"{NULL}", 255}, {"{NULL} and more", 255},
                           {"{NULL", 0}, {"null", 0}};

TEST(KtBoolean, scans_few_texts_as_true_and_the_null_text_as_null) {
  for (const TextCase& c : kTexts) {
    for (const bool wide : {false, true}) {
      KtString in(c.in);
      if (wide) in.SetCodeSet(253);
      KtBoolean b(1);
      b.ScanFromKtString(in, "%d");
      EXPECT_EQ(b.value, c.byte) << c.in;
    }
  }
}

TEST(KtBoolean, prints_true_for_the_byte_1_only_and_replaces) {
  for (const TextCase& c : {TextCase{"TRUE", 1}, {"FALSE", 0}, {"FALSE", 2}, {"FALSE", 254}, {"{NULL}", 255}}) {
    KtString out("old");
    EXPECT_EQ(&ofByte(c.byte).PrintToKtString(out, "%d"), &out);
    EXPECT_STREQ(out.StrGet(), c.in);
  }
}

TEST(KtBoolean, an_empty_null_text_makes_every_text_null) {
  const KtString old = KtTypeMgr::GetNullPrintString();
  KtTypeMgr::SetNullPrintString("");
  KtBoolean b(1);
  b.ScanFromKtString("TRUE");
  KtTypeMgr::SetNullPrintString(old);
  EXPECT_TRUE(b.IsNullValue());
}

TEST(KtBoolean, arrays_stand_behind_their_count) {
  auto* one = static_cast<unsigned char*>(mgr.Create(KT_ID_KtBoolean, 0));
  EXPECT_EQ(*one, 0);
  mgr.Delete(KT_ID_KtBoolean, one, 0);
  auto* many = static_cast<unsigned char*>(mgr.DefaultValue(KT_ID_KtBoolean, 5, 0));
  std::uint32_t count;
  std::memcpy(&count, many - 4, 4);
  EXPECT_EQ(count, 5u);
  EXPECT_EQ(std::memcmp(many, "\0\0\0\0\0", 5), 0);
  mgr.Delete(KT_ID_KtBoolean, many, 5);
  for (unsigned long n : {0ul, 1ul, 3ul}) {
    auto* nulls = static_cast<unsigned char*>(mgr.DefaultValue(KT_ID_KtBoolean, n, 1));
    for (unsigned long i = 0; i < n; ++i) EXPECT_EQ(nulls[i], 255);
    mgr.Delete(KT_ID_KtBoolean, nulls, n);
  }
}

TEST(KtBoolean, row_moves_bytes_hashes_truth_and_keeps_nulls_through_text) {
  KtBoolean values[4] = {KtBoolean(1), KtBoolean(0L), ofByte(7), ofByte(255)};
  unsigned char disk[4];
  for (const unsigned char format : Codes{0, 1, 2, 8}) {
    EXPECT_EQ(mgr.Store(KT_ID_KtBoolean, disk, values, format, 4), 4u);
    EXPECT_EQ(std::memcmp(disk, "\1\0\7\377", 4), 0);
    int status;
    const auto hash = [&](unsigned long from, unsigned long n) {
      return mgr.Hash(KT_ID_KtBoolean, 0, disk + from, n, format, status);
    };
    EXPECT_EQ(hash(0, 1), 1103515245u);
    EXPECT_EQ(hash(1, 1), 0u);
    EXPECT_EQ(hash(2, 1), 1103515245u);
    EXPECT_EQ(hash(3, 1), std::uint32_t(255u * 1103515245u));
    EXPECT_EQ(hash(0, 4), std::uint32_t(255u * 1103515245u));
  }
  EXPECT_EQ(mgr.IsNullValue(KT_ID_KtBoolean, values + 3), 1);
  EXPECT_EQ(mgr.IsNullValue(KT_ID_KtBoolean, values), 0);
  KtString out("old");
  mgr.PrintToKtString(KT_ID_KtBoolean, out, values, nullptr, 4);
  EXPECT_STREQ(out.StrGet(), "oldTRUE,FALSE,FALSE,{NULL}");
  values[2] = values[0];
  KtTypeConvertData* texts = mgr.ConvertTo(KT_ID_KtBoolean, values, 4);
  auto* back = static_cast<unsigned char*>(mgr.ConvertFrom(KT_ID_KtBoolean, texts, 4));
  EXPECT_EQ(std::memcmp(back, "\1\0\1\377", 4), 0);
  delete texts;
  EXPECT_EQ(mgr.SetNullValue(KT_ID_KtBoolean, back), 0);
  EXPECT_EQ(back[0], 255);
  mgr.Delete(KT_ID_KtBoolean, back, 4);
}

}  // namespace
