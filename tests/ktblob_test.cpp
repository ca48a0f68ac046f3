// KtBlob: life, every edit against a vector of bytes, hostile offsets, search, order, the private conversions.
#include <kttm.h>

#include <gtest/gtest.h>

#include "values/blob_search.h"
#include "values/two_way_search.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <random>
#include <string>
#include <vector>

// What the class keeps to itself.
struct kt::BlobPrivate {
  template <class From>
  static KtBlob from(From value) {
    return KtBlob(KtBlob::kConverted, value);
  }
  template <class To>
  static To to(const KtBlob& blob) {
    return static_cast<To>(blob);
  }
  static void assignImage(KtBlob& blob, char* image) { blob = image; }
  static long allocated(long n) {
    KtBlob blob;
    KtBlobData* record = blob.AllocData(n);
    const long length = record->length;
    std::free(record->data);
    delete record;
    return length;
  }
};

namespace {

using Bytes = std::vector<unsigned char>;

KtBlob blobOf(const std::string& text) { return KtBlob(text.data(), static_cast<long>(text.size())); }

std::string textOf(const KtBlob& blob) {
  if (blob.IsNullValue()) return "null";
  const char* bytes = blob.Seek(0, 1);
  return bytes == nullptr ? std::string() : std::string(bytes, static_cast<std::size_t>(blob.Length()));
}

KtBlob nullBlob() {
  KtBlob blob;
  blob.SetNullValue();
  return blob;
}

// Counts the calls of the memory handler while it lives.
struct MemoryHandlerCalls {
  static inline int calls;
  KtMemoryHandler old = KtSetMemoryHandler([](unsigned long) { ++calls; });
  MemoryHandlerCalls() { calls = 0; }
  ~MemoryHandlerCalls() { KtSetMemoryHandler(old); }
};

TEST(KtBlob, null_empty_and_sized) {
  EXPECT_EQ(KtBlob().IsNullValue(), 0);
  EXPECT_EQ(KtBlob().Length(), 0);
  EXPECT_EQ(KtBlob(100).Length(), 100);
  EXPECT_EQ(KtBlob(std::size_t{7}).Length(), 7);
  EXPECT_EQ(KtBlob(static_cast<short>(3)).Length(), 3);
  EXPECT_EQ(KtBlob(-5L).Length(), 0);
  KtBlob blob = blobOf("abc");
  EXPECT_EQ(blob.SetNullValue(), 0);
  EXPECT_EQ(blob.IsNullValue(), 1);
  EXPECT_EQ(blob.Length(), 0);
  EXPECT_EQ(blob.Seek(0, 1), nullptr);
  EXPECT_EQ(KtBlob(blob).IsNullValue(), 1);
  KtBlob other = blobOf("x");
  other = blob;
  EXPECT_EQ(other.IsNullValue(), 1);
}

TEST(KtBlob, destroy_moves) {
  KtBlob from = blobOf("abc");
  KtBlob to = blobOf("old");
  const char* bytes = from.Seek(0, 1);
  to.Destroy(from);
  EXPECT_EQ(to.Seek(0, 1), bytes);
  EXPECT_EQ(textOf(from), "");
  to.Destroy(to);
  EXPECT_EQ(textOf(to), "abc");
  from.SetNullValue();
  to.Destroy(from);
  EXPECT_TRUE(to.IsNullValue() && from.IsNullValue());
}

TEST(KtBlob, a_buffer_up_to_128_bytes_too_large_is_used_again) {
  const Bytes source(300, 7);
  for (const long length : {99L, 100L, 200L, 228L, 229L, 300L}) {
    KtBlob blob(length);
    const char* before = blob.Seek(0, 1);
    blob.SetTo(source.data(), 100);
    EXPECT_EQ(blob.Seek(0, 1) == before, length >= 100 && length <= 228) << length;
    EXPECT_EQ(blob.Length(), 100);
  }
}

TEST(KtBlob, an_operand_may_be_the_blob_itself) {
  KtBlob blob = blobOf("0123456789");
  const KtBlob& same = blob;
  blob = same;
  EXPECT_EQ(textOf(blob), "0123456789");
  blob += blob;
  EXPECT_EQ(textOf(blob), "01234567890123456789");
  blob.SetTo(blob.Seek(5, 10), 10);
  EXPECT_EQ(textOf(blob), "5678901234");
  blob.CopyTo(blob, 3, 7);
  EXPECT_EQ(textOf(blob), "5675678901");
  blob.Append(blob.Seek(8, 2), 2);
  EXPECT_EQ(textOf(blob), "567567890101");
  KtBlob large(1000);
  std::memset(large.Seek(0, 1000), 'x', 1000);
  large.SetTo(large.Seek(990, 10), 10);  // too large a buffer to keep
  EXPECT_EQ(textOf(large), "xxxxxxxxxx");
}

// What the edits do, on a vector.
struct Twin {
  Bytes bytes;

  long size() const { return static_cast<long>(bytes.size()); }
  long reach(long offset, long n) const {
    return offset < 0 || offset >= size() || n < 1 ? 0 : std::min(n, size() - offset);
  }
  void cut(long offset, long n) {
    const long count = reach(offset, n);
    if (count != 0) bytes.erase(bytes.begin() + offset, bytes.begin() + offset + count);
  }
  void copyTo(const Bytes& other, long offset, long n) {
    const long count = std::min(reach(offset, n), static_cast<long>(other.size()));
    if (count != 0) std::copy_n(other.begin(), count, bytes.begin() + offset);
  }
  Bytes copyFrom(long offset, long n) const {
    const long count = reach(offset, n);
    return count == 0 ? Bytes() : Bytes(bytes.begin() + offset, bytes.begin() + offset + count);
  }
};

Bytes contentOf(const KtBlob& blob) {
  const char* bytes = blob.Seek(0, 1);
  return bytes == nullptr ? Bytes() : Bytes(bytes, bytes + blob.Length());
}

// Fills what an edit left uninitialised, in both.
void fillGrowth(KtBlob& blob, Twin& twin, std::size_t size) {
  const std::size_t old = twin.bytes.size();
  twin.bytes.resize(size, 0xEE);
  if (size > old) std::memset(blob.Seek(static_cast<long>(old), 1), 0xEE, size - old);
}

TEST(KtBlob, random_edits_agree_with_a_vector_at_hostile_offsets) {
  std::mt19937 random(4);
  const auto below = [&](long n) { return static_cast<long>(random() % static_cast<unsigned long>(n)); };
  const long hostile[] = {-1, LONG_MIN, LONG_MAX, LONG_MAX - 3, INT_MAX, INT_MIN, 0x7FFFFFF0, 65535};
  const auto offset = [&] { return below(8) == 0 ? hostile[below(8)] : below(300); };
  KtBlob blob;
  Twin twin;
  for (int step = 0; step < 20000; ++step) {
    Bytes source(static_cast<std::size_t>(below(200)));
    for (auto& byte : source) byte = static_cast<unsigned char>(random());
    const auto length = static_cast<long>(source.size());
    const long at = offset(), n = offset();
    switch (below(9)) {
      case 0: blob.SetTo(source.data(), length), twin.bytes = source; break;
      case 1:
        blob.Append(source.data(), length), twin.bytes.insert(twin.bytes.end(), source.begin(), source.end());
        break;
      case 2: blob.Cut(at, n), twin.cut(at, n); break;
      case 3: blob.CopyTo(KtBlob(source.data(), length), at, n), twin.copyTo(source, at, n); break;
      case 4: EXPECT_EQ(contentOf(blob.CopyFrom(at, n)), twin.copyFrom(at, n)); break;
      case 5: blob.Resize(source.size()), fillGrowth(blob, twin, source.size()); break;
      case 6: blob.Expand(length), fillGrowth(blob, twin, source.size()); break;
      case 7: EXPECT_EQ(blob.Seek(at, n) != nullptr, n > 0 && twin.reach(at, n) == n); break;
      default: blob.Append(source.data(), std::min(n, 0L)); break;
    }
    if (twin.bytes.size() > 2000) blob.Resize(10), twin.bytes.resize(10);
    ASSERT_EQ(contentOf(blob), twin.bytes) << step;
  }
}

TEST(KtBlob, edits_of_null_blobs) {
  KtBlob blob = nullBlob();
  EXPECT_TRUE(blob.Cut(0, 1).IsNullValue());
  EXPECT_TRUE(blob.CopyTo(blobOf("x"), 0, 1).IsNullValue());
  EXPECT_TRUE(blob.Append(nullBlob()).IsNullValue());
  EXPECT_EQ(textOf(blob.CopyFrom(0, 0)), "");
  EXPECT_EQ(textOf(blob.Append("ab", 2)), "ab");
  EXPECT_EQ(textOf(blob.Append(nullBlob())), "ab");
  blob.SetNullValue();
  EXPECT_EQ(textOf(blob.SetTo("cd", 2)), "cd");
  blob.SetNullValue();
  EXPECT_EQ(blob.Expand(5).Length(), 5);
  blob.SetNullValue();
  EXPECT_EQ(textOf(blob.Resize(static_cast<unsigned long>(-1))), "");
}

TEST(KtBlob, sizes_beyond_the_range_report_and_leave_a_blob_without_bytes) {
  if (sizeof(long) == 4) GTEST_SKIP() << "no such sizes in a 32-bit long";
  const auto tooLarge = static_cast<long>(0x80000000u);
  const MemoryHandlerCalls counter;
  EXPECT_EQ(textOf(KtBlob(tooLarge)), "");
  KtBlob blob = blobOf("abc");
  EXPECT_EQ(textOf(blob.Expand(tooLarge)), "");
  EXPECT_EQ(textOf(blobOf("abc").Resize(static_cast<unsigned long>(tooLarge))), "");
  EXPECT_EQ(textOf(blobOf("abc").Append("abc", 0x7FFFFFFF)), "");
  EXPECT_EQ(MemoryHandlerCalls::calls, 4);
}

TEST(KtBlob, order_is_by_bytes_then_length_and_null_first) {
  const KtBlob blobs[] = {nullBlob(), KtBlob(), blobOf("a"), blobOf("ab"), blobOf("b"), blobOf("\xFF")};
  const int count = 6;
  for (int i = 0; i < count; ++i) {
    for (int j = 0; j < count; ++j) {
      const int nulls = (i == 0) != (j == 0) ? 2 : 1;
      EXPECT_EQ(blobs[i] != blobs[j], nulls * ((i > j) - (i < j))) << i << j;
      EXPECT_EQ(blobs[i] == blobs[j], i == j) << i << j;
    }
  }
}

TEST(KtBlob, search_answers_65535_for_what_is_not_there) {
  EXPECT_EQ(blobOf("abcabd").Search(blobOf("abd")), 3);
  EXPECT_EQ(blobOf("abc").Search(blobOf("abcd")), 65535);
  EXPECT_EQ(blobOf("abc").Search(blobOf("x")), 65535);
  EXPECT_EQ(blobOf("abc").Search(KtBlob()), 0);
  EXPECT_EQ(blobOf("abc").Search(nullBlob()), 0);
  EXPECT_EQ(KtBlob().Search(KtBlob()), 0);
  EXPECT_EQ(KtBlob().Search(blobOf("a")), 65535);
  EXPECT_EQ(nullBlob().Search(KtBlob()), 65535);
}

// Both searches in blocks of exactly their size.
void expectFound(const Bytes& hay, const Bytes& needle) {
  const auto found = std::search(hay.begin(), hay.end(), needle.begin(), needle.end());
  const bool isThere = needle.empty() || found != hay.end();
  const unsigned long expected = isThere ? static_cast<unsigned long>(found - hay.begin()) : kt::kBytesNotFound;
  ASSERT_EQ(kt::findBytes(hay.data(), hay.size(), needle.data(), needle.size()), expected);
  if (needle.empty()) return;
  ASSERT_EQ(kt::findTwoWay(hay.data(), hay.size(), needle.data(), needle.size()), expected);
}

TEST(KtBlob, search_agrees_with_the_plain_loop) {
  std::mt19937 random(1);
  for (int round = 0; round < 20000; ++round) {
    const unsigned letters = 1 + random() % 4;
    Bytes hay(random() % 300);
    for (auto& byte : hay) byte = static_cast<unsigned char>('a' + random() % letters);
    Bytes needle(random() % (round % 3 == 0 ? 120 : 12));
    for (auto& byte : needle) byte = static_cast<unsigned char>('a' + random() % letters);
    if (round % 2 == 0 && !hay.empty()) {
      const std::size_t at = random() % hay.size();
      needle.assign(hay.begin() + static_cast<long>(at),
                    hay.begin() + static_cast<long>(std::min(hay.size(), at + needle.size())));
    }
    expectFound(hay, needle);
  }
}

TEST(KtBlob, search_of_long_needles_and_of_hays_where_candidates_fail) {
  std::mt19937 random(2);
  for (const std::size_t period : {1u, 2u, 7u, 8u, 63u, 400u}) {
    Bytes hay(40000);
    for (std::size_t i = 0; i < hay.size(); ++i)
      hay[i] = i < period ? static_cast<unsigned char>(random() % 3) : hay[i - period];
    for (const long length : {2L, 5L, 47L, 48L, 200L, 600L, 3000L}) {
      Bytes needle(hay.end() - length, hay.end());
      expectFound(hay, needle);
      needle[static_cast<std::size_t>(length) / 2] = 3;  // occurs nowhere, then at the end only
      expectFound(hay, needle);
      Bytes ending = hay;
      std::copy(needle.begin(), needle.end(), ending.end() - length);
      expectFound(ending, needle);
      needle[static_cast<std::size_t>(length) / 2] = 0;
      expectFound(hay, needle);
    }
  }
}

TEST(KtBlob, search_of_hays_of_few_different_bytes) {
  std::mt19937 random(3);
  for (const unsigned letters : {2u, 3u, 5u}) {
    Bytes hay(60000);
    for (auto& byte : hay) byte = static_cast<unsigned char>(random() % letters);
    for (const long length : {11L, 12L, 13L, 20L, 47L, 48L, 64L, 511L, 513L, 900L}) {
      for (const long before : {0L, 1L, 7L, 30000L, 58000L, 59000L}) {
        const auto begin = hay.end() - length - before;
        Bytes needle(begin, begin + length);
        expectFound(hay, needle);
        needle[random() % needle.size()] ^= 1;
        expectFound(hay, needle);
      }
    }
  }
}

TEST(KtBlob, private_conversions_hold_decimal_text_with_its_terminator) {
  using Private = kt::BlobPrivate;
  EXPECT_EQ(textOf(Private::from("abc")), std::string("abc", 4));
  EXPECT_EQ(textOf(Private::from(-12)), std::string("-12", 4));
  EXPECT_EQ(textOf(Private::from(static_cast<short>(7))), std::string("7", 2));
  EXPECT_EQ(textOf(Private::from(4294967295ul)), std::string("4294967295", 11));
  EXPECT_EQ(textOf(Private::from(0.5)), std::string("0.500000", 9));
  EXPECT_EQ(textOf(Private::from(KtString("text"))), std::string("text", 5));
  KtString null;
  null.SetNullValue();
  EXPECT_TRUE(Private::from(null).IsNullValue());
  EXPECT_EQ(Private::to<int>(blobOf(" -12x")), -12);
  EXPECT_EQ(Private::to<long>(blobOf("123")), 123);
  EXPECT_EQ(Private::to<short>(blobOf("65537")), 1);
  EXPECT_EQ(Private::to<double>(blobOf("2.5")), 2.5);
  EXPECT_EQ(Private::to<int>(nullBlob()), 0);
  EXPECT_EQ(Private::to<double>(KtBlob()), 0.0);
  char image[6] = {0, 0, 0, 0, 'h', 'i'};
  const std::int32_t length = 2;
  std::memcpy(image, &length, sizeof length);
  KtBlob blob;
  Private::assignImage(blob, image);
  EXPECT_EQ(textOf(blob), "hi");
  EXPECT_EQ(Private::allocated(9), 10);
}

}  // namespace
