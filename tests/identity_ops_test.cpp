// The rows of object ids, class ids and references: disk layouts, order, hash, conversion, null.
#include <kttm.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

KtTypeMgr mgr(12);
constexpr char kIds[] = {KT_ID_KtObjId, KT_ID_KtClassId, KT_ID_KtRef};
constexpr unsigned long kDiskSize[] = {10, 4, 14};

KtRef sampleRef() {
  KtRef object;
  object = KtObjId(0x01020304, 0x05060708, 0x090A);
  object = KtClassId(0x0D0E, 0x0F10);
  object.database = 0x0B0C;
  return object;
}

template <class Identity>
Bytes stored(char id, Identity value, unsigned char format) {
  Bytes disk(mgr.DiskLenGet(id, nullptr, format, 1, 8));
  EXPECT_EQ(mgr.Store(id, disk.data(), &value, format, 1), disk.size());
  return disk;
}

long compared(char id, unsigned char format, void* a, void* b, unsigned long count = 1, unsigned long lengthA = 0,
              int expectedStatus = 0) {
  int status = 99;
  const long result = mgr.Cmp(id, lengthA, a, 0, b, 0, count, format, status);
  EXPECT_EQ(status, expectedStatus);
  return result;
}

TEST(IdentityOps, runs_come_back_from_unaligned_disk_forms) {
  for (const unsigned char format : Bytes{0, 2}) {
    KtRef refs[3];
    for (KtRef& object : refs) object = sampleRef();
    refs[1].low = 77;
    unsigned char disk[1 + 3 * 14];
    EXPECT_EQ(mgr.Store(KT_ID_KtRef, disk + 1, refs, format, 3), 42u);
    KtRef back[3];
    EXPECT_EQ(mgr.Load(KT_ID_KtRef, back, disk + 1, format, 3), 42u);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(back[i] != refs[i], 0);
      EXPECT_EQ(back[i].block, refs[i].block);
      EXPECT_EQ(back[i].classNumber, refs[i].classNumber);
      EXPECT_EQ(back[i].version, 0);  // not stored
    }
    KtObjId ids[2] = {{1, 2, 3}, {4, 5, 6}};
    KtObjId idsBack[2];
    EXPECT_EQ(mgr.Translate(KT_ID_KtObjId, disk + 1, format, 20, ids, 8, 24, 2), 20u);
    EXPECT_EQ(mgr.Translate(KT_ID_KtObjId, idsBack, 8, 24, disk + 1, format, 20, 2), 20u);
    EXPECT_EQ(idsBack[1] != ids[1], 0);
    EXPECT_EQ(idsBack[1].block, 4u);
  }
}

TEST(IdentityOps, sizes_and_translation_between_forms) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(mgr.DiskLenGet(kIds[i], nullptr, 2, 5, 8), 5 * kDiskSize[i]);
    EXPECT_EQ(mgr.DiskLenGetFromMemFile(kIds[i], nullptr, 0, 5), 5 * kDiskSize[i]);
  }
  KtObjId ids[2] = {{1, 2, 3}, {4, 5, 6}};
  KtObjId copies[2];
  EXPECT_EQ(mgr.Translate(KT_ID_KtObjId, copies, 8, 24, ids, 8, 24, 2), 24u);
  EXPECT_EQ(copies[1] == ids[1], 1);
  // Between disk forms bytes are cut or filled up with zeros, never swapped.
  unsigned char target[12];
  std::memset(target, 9, sizeof target);
  unsigned char source[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  EXPECT_EQ(mgr.Translate(KT_ID_KtObjId, target, 2, 12, source, 0, 10, 1), 10u);
  EXPECT_EQ(target[9], 10);
  EXPECT_EQ(target[11], 0);
  EXPECT_EQ(mgr.Translate(KT_ID_KtObjId, target, 2, 4, source, 0, 10, 1), 4u);
}

TEST(IdentityOps, memory_order_is_that_of_the_classes_for_format_8_alone) {
  KtRef a, b;
  a = KtObjId(0, 5, 0);
  b = KtObjId(0, 4, 0);
  b.database = 2;
  EXPECT_EQ(compared(KT_ID_KtRef, 8, &a, &b), 1);  // high, low, then the database
  // The same bytes as disk forms: bytes 11 to 4. In a's memory low lies there, and nothing of the database.
  EXPECT_EQ(compared(KT_ID_KtRef, 0x18, &a, &b), 1);
  Bytes diskA = stored(KT_ID_KtRef, a, 0);
  Bytes diskB = stored(KT_ID_KtRef, b, 0);
  EXPECT_EQ(compared(KT_ID_KtRef, 0, diskA.data(), diskB.data()), -2);  // the database first: 0 - 2
  EXPECT_EQ(compared(KT_ID_KtRef, 1, diskA.data(), diskB.data()), -2);
}

TEST(IdentityOps, disk_order_is_the_difference_of_little_endian_bytes) {
  struct Case {
    char id;
    Bytes a, b;
    long result;
  };
  const Case cases[] = {
      {KT_ID_KtObjId, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {9, 9, 9, 9, 5, 6, 7, 8, 9, 10}, 0},  // blocks only
      {KT_ID_KtObjId, {0, 0, 0, 0, 255, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 255},
      {KT_ID_KtObjId, {0, 0, 0, 0, 255, 0, 0, 0, 1, 0}, {0, 0, 0, 0, 0, 0, 0, 0, 4, 0}, -3},
      {KT_ID_KtRef, {0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 7, 7}, {0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 8, 8}, 0},
      {KT_ID_KtRef, {0, 0, 0, 0, 9, 9, 9, 9, 9, 9, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0}, -1},
      {KT_ID_KtClassId, {1, 0, 0, 9}, {2, 0, 0, 0}, -1},
      {KT_ID_KtClassId, {1, 0, 0, 9}, {1, 0, 5, 4}, 5},
      {KT_ID_KtClassId, {255, 255, 255, 255}, {0, 0, 0, 0}, -1},
      {KT_ID_KtClassId, {0, 0, 0, 0}, {255, 255, 255, 255}, 1},
      {KT_ID_KtClassId, {255, 255, 255, 255}, {255, 255, 255, 255}, 0},
      {KT_ID_KtClassId, {255, 255, 254, 255}, {3, 255, 0, 0}, 252}};
  for (const Case& c : cases) {
    Bytes a = c.a, b = c.b;
    for (const unsigned char format : Bytes{0, 2, 9}) {
      EXPECT_EQ(compared(c.id, format, a.data(), b.data()), c.result);
      EXPECT_EQ(compared(c.id, format, b.data(), a.data()), -c.result);
    }
  }
}

TEST(IdentityOps, short_runs_end_with_a_status_unless_a_difference_came_first) {
  KtObjId same[3] = {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}};
  KtObjId other[3] = {{1, 1, 1}, {1, 2, 1}, {1, 1, 1}};
  unsigned char disk[30], otherDisk[30];
  mgr.Store(KT_ID_KtObjId, disk, same, 0, 3);
  mgr.Store(KT_ID_KtObjId, otherDisk, other, 0, 3);
  EXPECT_EQ(compared(KT_ID_KtObjId, 0, disk, disk, 3, 10, KtERR_OVERRUN), 0);
  EXPECT_EQ(compared(KT_ID_KtObjId, 0, disk, disk, 3, 30), 0);
  EXPECT_EQ(compared(KT_ID_KtObjId, 0, disk, disk, 3, 9, KtERR_OVERRUN), 0);
  EXPECT_EQ(compared(KT_ID_KtObjId, 0, disk, otherDisk, 3, 10, KtERR_OVERRUN), 0);
  EXPECT_EQ(compared(KT_ID_KtObjId, 0, disk, otherDisk, 3, 20), -1);  // the third element does not matter any more
  EXPECT_EQ(compared(KT_ID_KtObjId, 8, same, same, 3, 24, KtERR_OVERRUN), 0);
  EXPECT_EQ(compared(KT_ID_KtObjId, 8, same, other, 3, 24), -1);
}

TEST(IdentityOps, hash_words_are_the_same_in_memory_and_little_endian_form) {
  struct Case {
    KtDWord low;
    KtWord high, database;
    unsigned long idHash, refHash;
  };
  const Case cases[] = {{1, 1, 0, 0, 0}, {1, 0, 0, 1103515245u, 1103515245u}, {1, 0, 1, 1103515245u, 0}};
  for (const Case& c : cases) {
    KtRef object;
    object = KtObjId(77, c.low, c.high);
    object = KtClassId(5, 6);
    object.database = c.database;
    object.idPadding = object.padding = 0xAAAA;
    KtObjId id(77, c.low, c.high);
    Bytes disk = stored(KT_ID_KtRef, object, 0);
    int status;
    EXPECT_EQ(mgr.Hash(KT_ID_KtObjId, 0, &id, 1, 8, status), c.idHash);
    EXPECT_EQ(mgr.Hash(KT_ID_KtObjId, 0, disk.data(), 1, 0, status), c.idHash);
    EXPECT_EQ(mgr.Hash(KT_ID_KtRef, 0, &object, 1, 8, status), c.refHash);
    EXPECT_EQ(mgr.Hash(KT_ID_KtRef, 0, disk.data(), 1, 2, status), c.refHash);  // the code does not matter
  }
  KtClassId classIds[2] = {{0x0F00, 0x00F0}, {0x1000, 0x0001}};
  unsigned char disk[8];
  mgr.Store(KT_ID_KtClassId, disk, classIds, 0, 2);
  int status;
  const unsigned long expected = (0x1FF1u * 1103515245u) & 0xFFFFFFFFu;
  EXPECT_EQ(mgr.Hash(KT_ID_KtClassId, 0, classIds, 2, 8, status), expected);
  EXPECT_EQ(mgr.Hash(KT_ID_KtClassId, 8, disk, 2, 0, status), expected);
  EXPECT_EQ(status, 0);
  mgr.Hash(KT_ID_KtClassId, 7, disk, 2, 0, status);
  EXPECT_EQ(status, KtERR_OVERRUN);
  EXPECT_EQ(mgr.Hash(KT_ID_KtRef, 0, nullptr, 0, 8, status), 0u);
}

TEST(IdentityOps, null_and_empty_strings_and_defaults_are_null) {
  for (char id : kIds) {
    KtString strings[3] = {KtString(""), KtString("{NULL}"), KtString("")};
    strings[2].SetNullValue();
    KtTypeConvertData holder(KT_ID_KtString, 3, strings, nullptr);
    void* arrays[] = {mgr.ConvertFrom(id, &holder, 4), mgr.DefaultValue(id, 4, 0), mgr.DefaultValue(id, 4, 1)};
    holder.typeManager = nullptr;  // the strings stay ours
    for (void* values : arrays) {
      for (unsigned long i = 0; i < 4; ++i) EXPECT_EQ(mgr.IsNullValue(id, mgr.GetArrayElement(id, values, i, 4)), 1);
      const std::unique_ptr<KtTypeConvertData> texts(mgr.ConvertTo(id, values, 4));
      EXPECT_TRUE(texts->GetString(3)->IsNullValue());
      mgr.Delete(id, values, 4);
    }
    void* created = mgr.Create(id, 2);
    EXPECT_EQ(mgr.IsNullValue(id, created), id != KT_ID_KtClassId);
    EXPECT_EQ(mgr.SetNullValue(id, created), 0);
    EXPECT_EQ(mgr.IsNullValue(id, created), 1);
    mgr.Delete(id, created, 2);
  }
}

TEST(IdentityOps, conversion_to_text_and_back_uses_the_format_of_the_row) {
  KtRef object = sampleRef();
  const std::unique_ptr<KtTypeConvertData> texts(mgr.ConvertTo(KT_ID_KtRef, &object, 1));
  EXPECT_STREQ(texts->GetString(0)->StrGet(), "(2828:2314-84281096#16909060, 3342)");
  auto* back = static_cast<KtRef*>(mgr.ConvertFrom(KT_ID_KtRef, texts.get(), 1));
  EXPECT_EQ(*back == object, 1);
  EXPECT_EQ(back->classNumber, object.classNumber);
  mgr.Delete(KT_ID_KtRef, back, 1);
  // The row's own print names the version when it is asked without a format.
  KtTypeMgr other(12);
  const KtPrintToKtStringFunc print = other.ExchangePrintToKtStringFunc(KT_ID_KtRef, nullptr);
  KtString out;
  EXPECT_STREQ(print(out, &object, nullptr, 1).StrGet(), "(2828:2314-84281096#16909060,3342v3856)");
  EXPECT_STREQ(mgr.PrintToKtString(KT_ID_KtRef, out, &object, nullptr, 1).StrGet(),
               "(2828:2314-84281096#16909060, 3342)");
  KtString in("(1v2)");
  KtClassId classId;
  mgr.ScanFromKtString(KT_ID_KtClassId, &classId, in, nullptr, 1);
  EXPECT_EQ(classId != KtClassId(1, 2), 0);
}

}  // namespace
