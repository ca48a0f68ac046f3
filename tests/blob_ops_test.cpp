// The row of KtBlob: runs on disk, damaged ones included, order, hash, text, conversion.
#include <kttm.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

KtTypeMgr mgr(12);

struct Null {};
KtBlob blobOf(Null) {
  KtBlob blob;
  blob.SetNullValue();
  return blob;
}
KtBlob blobOf(const char* text) { return KtBlob(text, static_cast<long>(std::strlen(text))); }

std::string textOf(const KtBlob& blob) {
  if (blob.IsNullValue()) return "null";
  const char* bytes = blob.Seek(0, 1);
  return bytes == nullptr ? std::string() : std::string(bytes, static_cast<std::size_t>(blob.Length()));
}

// A run in a block of exactly its size: reads behind it are seen by the address sanitizer.
struct DiskRun {
  explicit DiskRun(const Bytes& content) : bytes(new unsigned char[content.size()]), size(content.size()) {
    std::copy(content.begin(), content.end(), bytes.get());
  }
  std::unique_ptr<unsigned char[]> bytes;
  unsigned long size;
};

long compared(const Bytes& a, const Bytes& b, unsigned long count, int& status, unsigned char format = 0) {
  const DiskRun runA(a), runB(b);
  return mgr.Cmp(KT_ID_KtBlob, runA.size, runA.bytes.get(), runB.size, runB.bytes.get(), 0, count, format, status);
}

TEST(BlobOps, loading_replaces_blobs_and_nulls) {
  KtBlob blobs[] = {blobOf(Null{}), blobOf("ab")};
  for (const unsigned char format : Bytes{0, 1, 2, 0x12}) {
    Bytes disk(14);
    EXPECT_EQ(mgr.Store(KT_ID_KtBlob, disk.data(), blobs, format, 2), 14u);
    KtBlob back[] = {blobOf("old"), blobOf(Null{})};
    EXPECT_EQ(mgr.Load(KT_ID_KtBlob, back, disk.data(), format, 2), 14u);
    EXPECT_EQ(textOf(back[0]), "null");
    EXPECT_EQ(textOf(back[1]), "ab");
  }
}

TEST(BlobOps, damaged_runs_give_what_is_there) {
  struct Case {
    Bytes run;
    const char* first;
    const char* second;
    unsigned long read;
  };
  const Case cases[] = {{{255, 255, 255, 255}, "null", "null", 4},                       // no elements
                        {{6, 0, 0, 0, 9, 0, 0, 0, 'a', 'b'}, "ab", "null", 10},          // a length beyond
                        {{6, 0, 0, 0, 254, 255, 255, 255, 'a', 'b'}, "ab", "null", 10},  // a negative one
                        {{5, 0, 0, 0, 1, 0, 0, 0, 'a'}, "a", "null", 9},                 // an element missing
                        {{8, 0, 0, 0, 1, 0, 0, 0, 'a', 7, 0, 0}, "a", "null", 12},       // half a length
                        {{2, 0, 0, 0, 1, 0}, "null", "null", 6},                         // less than a length
                        {{4, 0, 0, 0, 0, 0, 0, 0}, "", "null", 8}};
  for (const Case& c : cases) {
    const DiskRun run(c.run);
    KtBlob blobs[] = {blobOf("old"), blobOf("old")};
    EXPECT_EQ(mgr.Load(KT_ID_KtBlob, blobs, run.bytes.get(), 0, 2), c.read);
    EXPECT_EQ(textOf(blobs[0]), c.first);
    EXPECT_EQ(textOf(blobs[1]), c.second);
    int status;
    mgr.Hash(KT_ID_KtBlob, 0, run.bytes.get(), 2, 0, status);
    EXPECT_EQ(status, KtERR_OVERRUN);
    EXPECT_EQ(compared(c.run, c.run, 2, status), 0);
    EXPECT_EQ(status, KtERR_OVERRUN);
  }
}

TEST(BlobOps, a_known_length_bounds_a_header_that_lies) {
  const DiskRun lying({200, 0, 0, 0, 100, 0, 0, 0, 'a', 'b'});
  KtBlob blob;
  EXPECT_EQ(mgr.Translate(KT_ID_KtBlob, &blob, 8, 0, lying.bytes.get(), 0, lying.size, 1), 10u);
  EXPECT_EQ(textOf(blob), "ab");
  MemFile file(lying.bytes.get(), lying.size);
  EXPECT_EQ(mgr.DiskLenGetFromMemFile(KT_ID_KtBlob, &file, 0, 1), 10u);
  MemFile tiny(lying.bytes.get(), 3);
  EXPECT_EQ(mgr.DiskLenGetFromMemFile(KT_ID_KtBlob, &tiny, 0, 1), 0u);
  for (unsigned long length = 1; length <= lying.size; ++length) {
    const DiskRun part(Bytes(lying.bytes.get(), lying.bytes.get() + length));
    int status;
    mgr.Cmp(KT_ID_KtBlob, length, part.bytes.get(), length, part.bytes.get(), 0, 1, 0, status);
    EXPECT_EQ(status, KtERR_OVERRUN) << length;
    mgr.Hash(KT_ID_KtBlob, length, part.bytes.get(), 1, 0, status);
    EXPECT_EQ(status, KtERR_OVERRUN) << length;
    EXPECT_EQ(mgr.Translate(KT_ID_KtBlob, &blob, 8, 0, part.bytes.get(), 0, length, 1), length < 4 ? 0 : length);
  }
}

TEST(BlobOps, translation_between_forms) {
  KtBlob blobs[] = {blobOf("abc"), blobOf(Null{})};
  KtBlob copies[2];
  EXPECT_EQ(mgr.Translate(KT_ID_KtBlob, copies, 8, 0, blobs, 8, 0, 2), 2 * sizeof(KtBlob));
  EXPECT_EQ(textOf(copies[0]), "abc");
  EXPECT_EQ(textOf(copies[1]), "null");
  Bytes disk(20, 9);
  EXPECT_EQ(mgr.Translate(KT_ID_KtBlob, disk.data(), 2, 15, blobs, 8, 0, 2), 15u);
  EXPECT_EQ(disk[3], 11);
  EXPECT_EQ(mgr.Translate(KT_ID_KtBlob, disk.data(), 2, 14, blobs, 8, 0, 2), 0u);  // does not fit
  Bytes wider(20, 9);
  EXPECT_EQ(mgr.Translate(KT_ID_KtBlob, wider.data(), 0, 20, disk.data(), 2, 15, 2), 15u);
  EXPECT_EQ(wider[3], 11);
  EXPECT_EQ(wider[19], 0);
}

TEST(BlobOps, disk_order_is_that_of_the_class) {
  const char* const texts[] = {nullptr, "", "a", "ab", "b", "\xFF"};
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) {
      KtBlob a = texts[i] == nullptr ? blobOf(Null{}) : blobOf(texts[i]);
      KtBlob b = texts[j] == nullptr ? blobOf(Null{}) : blobOf(texts[j]);
      const int expected = ((i == 0) != (j == 0) ? 2 : 1) * ((i > j) - (i < j));
      int status;
      EXPECT_EQ(mgr.Cmp(KT_ID_KtBlob, 0, &a, 0, &b, 0, 1, 0x18, status), expected);
      for (const unsigned char format : Bytes{0, 1, 2}) {
        Bytes diskA(mgr.DiskLenGet(KT_ID_KtBlob, &a, format, 1, 8)),
            diskB(mgr.DiskLenGet(KT_ID_KtBlob, &b, format, 1, 8));
        mgr.Store(KT_ID_KtBlob, diskA.data(), &a, format, 1);
        mgr.Store(KT_ID_KtBlob, diskB.data(), &b, format, 1);
        EXPECT_EQ(compared(diskA, diskB, 1, status, format), expected);
        EXPECT_EQ(status, 0);
      }
    }
  }
}

TEST(BlobOps, runs_that_end_early_are_reported_unless_a_difference_came_first) {
  KtBlob blobs[] = {blobOf("a"), blobOf("b")};
  KtBlob others[] = {blobOf("a"), blobOf("c")};
  int status;
  EXPECT_EQ(mgr.Cmp(KT_ID_KtBlob, sizeof(KtBlob), blobs, 0, others, 0, 2, 8, status), 0);
  EXPECT_EQ(status, KtERR_OVERRUN);
  EXPECT_EQ(mgr.Cmp(KT_ID_KtBlob, 0, blobs, 0, others, 0, 2, 8, status), -1);
  EXPECT_EQ(status, 0);
  const Bytes one = {7, 0, 0, 0, 9, 0, 0, 0, 'a', 'b', 'c'};  // six bytes are missing
  const Bytes two = {7, 0, 0, 0, 9, 0, 0, 0, 'a', 'c', 'c'};
  const Bytes shorter = {6, 0, 0, 0, 2, 0, 0, 0, 'a', 'b'};
  EXPECT_EQ(compared(one, two, 1, status), -1);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(compared(one, shorter, 1, status), 1);  // by the lengths, as far as they can be trusted
  EXPECT_EQ(status, KtERR_OVERRUN);
}

TEST(BlobOps, hash_is_by_lengths_in_memory_and_on_disk) {
  KtBlob blobs[] = {blobOf("abc"), blobOf(Null{}), blobOf("de"), blobOf("")};
  int status;
  EXPECT_EQ(mgr.Hash(KT_ID_KtBlob, 0, blobs, 4, 8, status), 1103515245u);  // 3 ^ 2
  EXPECT_EQ(mgr.Hash(KT_ID_KtBlob, sizeof(KtBlob), blobs, 4, 8, status), (3 * 1103515245ul) & 0xFFFFFFFFu);
  EXPECT_EQ(status, KtERR_OVERRUN);
  for (const unsigned char format : Bytes{0, 2}) {
    Bytes disk(mgr.DiskLenGet(KT_ID_KtBlob, blobs, format, 4, 8));
    mgr.Store(KT_ID_KtBlob, disk.data(), blobs, format, 4);
    EXPECT_EQ(mgr.Hash(KT_ID_KtBlob, disk.size(), disk.data(), 4, format, status), 1103515245u);
    EXPECT_EQ(status, 0);
  }
}

TEST(BlobOps, prints_the_length_and_scans_null_only) {
  KtBlob blob(10);
  KtString out("old");
  EXPECT_STREQ(mgr.PrintToKtString(KT_ID_KtBlob, out, &blob, nullptr, 1).StrGet(), "[BLOB,len=10]");
  EXPECT_STREQ(mgr.PrintToKtString(KT_ID_KtBlob, out, &blob, "%%%x%L%", 1).StrGet(), "%x10");
  KtString in("{NULL}?");
  mgr.ScanFromKtString(KT_ID_KtBlob, &blob, in, nullptr, 1);
  EXPECT_EQ(blob.Length(), 10);
  in = "{NULL}";
  mgr.ScanFromKtString(KT_ID_KtBlob, &blob, in, nullptr, 1);
  EXPECT_EQ(blob.IsNullValue(), 1);
  EXPECT_STREQ(mgr.PrintToKtString(KT_ID_KtBlob, out, &blob, nullptr, 1).StrGet(), "{NULL}");
}

TEST(BlobOps, arrays_conversion_and_defaults) {
  for (const unsigned long count : {0ul, 1ul, 3ul}) {
    void* blobs = mgr.Create(KT_ID_KtBlob, count);
    for (unsigned long i = 0; i < count; ++i) EXPECT_EQ(textOf(static_cast<KtBlob*>(blobs)[i]), "");
    EXPECT_EQ(mgr.Delete(KT_ID_KtBlob, blobs, count), nullptr);
  }
  KtString strings[] = {KtString("text"), KtString(""), KtString("")};
  strings[2].SetNullValue();
  KtTypeConvertData holder(KT_ID_KtString, 3, strings, nullptr);
  auto* blobs = static_cast<KtBlob*>(mgr.ConvertFrom(KT_ID_KtBlob, &holder, 4));
  holder.typeManager = nullptr;  // the strings stay ours
  EXPECT_EQ(textOf(blobs[0]), std::string("text", 5));
  EXPECT_TRUE(blobs[2].IsNullValue() && blobs[3].IsNullValue() && !blobs[1].IsNullValue());
  const std::unique_ptr<KtTypeConvertData> texts(mgr.ConvertTo(KT_ID_KtBlob, blobs, 4));
  EXPECT_STREQ(texts->GetString(0)->StrGet(), "text");
  EXPECT_TRUE(texts->GetString(3)->IsNullValue());
  mgr.AssignmentPtrGet(KT_ID_KtBlob)(blobs, blobs + 2, 2, 1);
  EXPECT_TRUE(blobs[0].IsNullValue() && blobs[1].IsNullValue());
  mgr.Delete(KT_ID_KtBlob, blobs, 4);
  for (const int asNull : {0, 1}) {
    auto* made = static_cast<KtBlob*>(mgr.DefaultValue(KT_ID_KtBlob, 2, asNull));
    EXPECT_EQ(textOf(made[1]), asNull != 0 ? "null" : "");
    mgr.Delete(KT_ID_KtBlob, made, 2);
  }
}

}  // namespace
