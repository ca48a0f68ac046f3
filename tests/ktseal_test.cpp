// KtSeal: conversions, order, texts and row.
#include <kttm.h>

#include <ktobjid.h>

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>

namespace {

KtTypeMgr mgr(12);

using Codes = std::initializer_list<unsigned char>;

KtSeal seal(unsigned short high, unsigned short middle, unsigned short low) {
  KtSeal s;
  s.highWord = high;
  s.middleWord = middle;
  s.lowWord = low;
  return s;
}

TEST(KtSeal, takes_object_numbers_and_48_bits_of_integers) {
  KtSeal s;
  EXPECT_TRUE(s == seal(0, 0, 0));
  s.ConvertFrom(KtObjId(9, 0x12345678, 0xABCD));
  EXPECT_TRUE(s == seal(0xABCD, 0x1234, 0x5678));
  KtInt64 number;
  s.ConvertTo(number);
  EXPECT_EQ(number.Value(), 0xABCD12345678LL);
  s.ConvertFrom(KtInt64(0x7777FFFE00010002LL));
  EXPECT_TRUE(s == seal(0xFFFE, 1, 2));
  s.ConvertFrom(KtInt64(-1));
  s.ConvertTo(number);
  EXPECT_EQ(number.Value(), 0xFFFFFFFFFFFFLL);
}

struct OrderCase {
  KtSeal a, b;
  int words;  // difference in memory
  int bytes;  // on disk
};

const OrderCase kOrder[] = {
    {seal(1, 0, 0), seal(0, 0xFFFF, 0xFFFF), 1, 1},
    {seal(0, 0, 0), seal(0xFFFF, 0, 0), -0xFFFF, -0xFF},
    {seal(5, 0x0200, 9), seal(5, 0x00FF, 9), 0x101, 2},
    {seal(5, 6, 7), seal(5, 6, 0x107), -0x100, -1},
    {seal(5, 6, 7), seal(5, 6, 9), -2, -2},
    {seal(5, 6, 7), seal(5, 6, 7), 0, 0},
};

TEST(KtSeal, order_is_the_difference_of_words_in_memory_and_of_bytes_on_disk) {
  for (const OrderCase& c : kOrder) {
    EXPECT_EQ(c.a != c.b, c.words);
    EXPECT_EQ(c.a == c.b, c.words == 0);
    KtSeal a[3] = {seal(1, 1, 1), c.a, seal(0, 0, 0)};
    KtSeal b[3] = {seal(1, 1, 1), c.b, c.words == 0 ? seal(0, 0, 0) : seal(9, 9, 9)};
    EXPECT_EQ(mgr.Cmp(KT_ID_KtSeal, a, b, 0, 3, 0x18), c.words);
    unsigned char diskA[18], diskB[18];
    mgr.Store(KT_ID_KtSeal, diskA, a, 0, 3);
    mgr.Store(KT_ID_KtSeal, diskB, b, 0, 3);
    for (const unsigned char format : Codes{0, 1, 2, 9}) {
      int status = 7;
      // Lengths are not checked.
      EXPECT_EQ(mgr.Cmp(KT_ID_KtSeal, 6, diskA, 1, diskB, 0, 3, format, status), c.bytes) << int(format);
      EXPECT_EQ(status, 0);
    }
  }
}

TEST(KtSeal, hash_folds_the_words_natively_in_codes_8_and_1) {
  const KtSeal s[2] = {seal(1, 1, 1), seal(0x0100, 0, 0)};
  KtSeal memory[2] = {s[0], s[1]};
  unsigned char disk[12];
  mgr.Store(KT_ID_KtSeal, disk, memory, 0, 2);
  int status = 1;
  for (const unsigned char format : Codes{8, 1})
    EXPECT_EQ(mgr.Hash(KT_ID_KtSeal, 0, memory, 1, format, status), 1103515245u);
  for (const unsigned char format : Codes{0, 2, 4, 9}) {
    EXPECT_EQ(mgr.Hash(KT_ID_KtSeal, 0, disk, 2, format, status), std::uint32_t(0x101u * 1103515245u));
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(mgr.Hash(KT_ID_KtSeal, 6, disk, 2, 0, status), 1103515245u);
  EXPECT_EQ(status, 2101);
}

TEST(KtSeal, text_is_that_of_its_number) {
  KtSeal s = seal(0xFFFF, 0xFFFF, 0xFFFF);
  KtString out("#");
  EXPECT_STREQ(s.PrintToKtString(out).StrGet(), "#281474976710655");
  struct Case {
    const char* in;
    KtSeal value;
  };
  const Case cases[] = {{"", seal(0, 0, 0)},
                        {"65537", seal(0, 1, 1)},
                        {"0xABCD12345678", seal(0xABCD, 0x1234, 0x5678)},
                        {"none", seal(0xFFFF, 0xFFFF, 0xFFFF)},
                        {"-2", seal(0xFFFF, 0xFFFF, 0xFFFE)}};
  for (const Case& c : cases) {
    KtString in(c.in);
    s.ScanFromKtString(in);
    EXPECT_TRUE(s == c.value) << c.in;
    in.SetCodeSet(253);
    EXPECT_EQ(mgr.ScanFromKtString(KT_ID_KtSeal, &s, in, nullptr, 1), &s);
    EXPECT_TRUE(s == c.value) << c.in;
  }
}

TEST(KtSeal, row_creates_zeros_and_has_no_null) {
  auto* many = static_cast<KtSeal*>(mgr.Create(KT_ID_KtSeal, 3));
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(many[i] == KtSeal());
  mgr.Delete(KT_ID_KtSeal, many, 3);
  KtSeal s = seal(1, 2, 3);
  EXPECT_EQ(mgr.IsNullValue(KT_ID_KtSeal, &s), 0);
  KtTypeConvertData* texts = mgr.ConvertTo(KT_ID_KtSeal, &s, 1);
  auto* back = static_cast<KtSeal*>(mgr.ConvertFrom(KT_ID_KtSeal, texts, 2));
  EXPECT_TRUE(back[0] == s && back[1] == KtSeal());
  delete texts;
  mgr.Delete(KT_ID_KtSeal, back, 2);
  EXPECT_EQ(mgr.SetNullValue(KT_ID_KtSeal, &s), 0);
  EXPECT_TRUE(s == KtSeal());
}

}  // namespace
