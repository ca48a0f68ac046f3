// What makes and changes blobs, with each of the allocations failing in turn.
#include "failing_allocations/failing_allocations.h"

#include <kttm.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

// What the class keeps to itself.
struct kt::BlobPrivate {
  template <class From>
  static KtBlob* make(void* room, From value) {
    return new (room) KtBlob(KtBlob::kConverted, value);
  }
  static KtBlob* makeOfString(void* room, const KtString& text) { return new (room) KtBlob(KtBlob::kConverted, text); }
  static void assignImage(KtBlob& blob, char* image) { blob = image; }
  static KtBlobData* allocate(KtBlob& blob, long n) { return blob.AllocData(n); }
};

namespace {

using kt_test::Fail;
using kt_test::FailingAllocations;
using Private = kt::BlobPrivate;

struct Subject {
  Subject(const KtBlob& of, const KtBlob& operand) : blob(of), other(operand) {}
  Subject(const Subject&) = delete;
  Subject& operator=(const Subject&) = delete;
  ~Subject() {
    if (made != nullptr) made->~KtBlob();
    if (record != nullptr) std::free(record->data);
    delete record;
  }

  KtBlob blob;   // under test
  KtBlob other;  // an operand
  alignas(KtBlob) unsigned char room[sizeof(KtBlob)];
  KtBlob* made = nullptr;  // in room
  KtBlobData* record = nullptr;
};

struct BlobEdit {
  const char* name;
  void (*run)(Subject& x);
};

void fill(KtBlob& blob) {
  if (blob.Length() != 0) std::memset(blob.Seek(0, 1), 'f', static_cast<unsigned long>(blob.Length()));
}

// A length in host order, and so many bytes.
char* image() {
  static char bytes[sizeof(std::int32_t) + 5];
  const std::int32_t length = 5;
  std::memcpy(bytes, &length, sizeof length);
  std::memcpy(bytes + sizeof length, "image", 5);
  return bytes;
}

const KtString kNullText(1, 254), kSomeText("a text");

constexpr BlobEdit kBlobEdits[] = {
    {"empty", [](Subject& x) { x.made = new (x.room) KtBlob(); }},
    {"of a size",
     [](Subject& x) {
       x.made = new (x.room) KtBlob(300);
       fill(*x.made);
     }},
    {"of bytes", [](Subject& x) { x.made = new (x.room) KtBlob("bytes", 5); }},
    {"of text", [](Subject& x) { x.made = Private::make(x.room, "text"); }},
    {"of an int", [](Subject& x) { x.made = Private::make(x.room, -12); }},
    {"of a short", [](Subject& x) { x.made = Private::make(x.room, static_cast<short>(-12)); }},
    {"of a long", [](Subject& x) { x.made = Private::make(x.room, 12ul); }},
    {"of a real", [](Subject& x) { x.made = Private::make(x.room, 0.25); }},
    {"of a string", [](Subject& x) { x.made = Private::makeOfString(x.room, kSomeText); }},
    {"of a null string", [](Subject& x) { x.made = Private::makeOfString(x.room, kNullText); }},
    {"= image", [](Subject& x) { Private::assignImage(x.blob, image()); }},
    {"AllocData",
     [](Subject& x) {
       x.record = Private::allocate(x.blob, 30);
       if (x.record != nullptr && x.record->length != 0) std::memset(x.record->data, 'r', 31);
     }},
    {"=", [](Subject& x) { x.blob = x.other; }},
    {"copy", [](Subject& x) { x.made = new (x.room) KtBlob(x.blob); }},
    {"Destroy", [](Subject& x) { x.blob.Destroy(x.other); }},
    {"SetTo", [](Subject& x) { x.blob.SetTo("bytes", 5); }},
    {"SetTo own bytes", [](Subject& x) { x.blob.SetTo(x.blob.Seek(1, 1), 1); }},
    {"Expand",
     [](Subject& x) {
       x.blob.Expand(300);
       fill(x.blob);
     }},
    {"Resize",
     [](Subject& x) {
       x.blob.Resize(300);
       fill(x.blob);
     }},
    {"Append", [](Subject& x) { x.blob.Append(x.other); }},
    {"Append bytes", [](Subject& x) { x.blob.Append("bytes", 5); }},
    {"Append itself", [](Subject& x) { x.blob.Append(x.blob); }},
    {"CopyFrom", [](Subject& x) { x.made = new (x.room) KtBlob(x.blob.CopyFrom(1, 2)); }},
    {"CopyTo", [](Subject& x) { x.blob.CopyTo(x.other, 0, 3); }},
    {"Cut", [](Subject& x) { x.blob.Cut(1, 2); }},
};

std::string imageOf(const KtBlob& blob) {
  if (blob.IsNullValue()) return "null";
  return "=" + std::string(blob.Seek(0, 1), static_cast<unsigned long>(blob.Length()));
}

// The blobs and the record of a subject, in text.
using Images = std::vector<std::string>;

Images imagesOf(const Subject& x) {
  const KtBlobData* record = x.record;
  return {imageOf(x.blob), imageOf(x.other), x.made == nullptr ? "" : imageOf(*x.made),
          record == nullptr ? "null" : "=" + std::string(record->data, static_cast<unsigned long>(record->length))};
}

bool areWholeOrWithoutBytes(const Images& found, const Images& before, const Images& after) {
  for (std::size_t i = 0; i < found.size(); ++i) {
    const bool hasBytes = found[i] != "=" && found[i] != "null";
    if (hasBytes && found[i] != before[i] && found[i] != after[i]) return false;
  }
  return true;
}

void expectUsable(KtBlob& blob, const std::string& name) {
  blob.Append("x", 1);
  EXPECT_TRUE(blob.Length() >= 1 && *blob.Seek(blob.Length() - 1, 1) == 'x') << name;
}

bool attempt(const BlobEdit& edit, const std::string& name, const KtBlob& b, const KtBlob& with, unsigned long number,
             Fail mode) {
  Subject whole(b, with), x(b, with);
  const Images before = imagesOf(x);
  edit.run(whole);
  FailingAllocations failing(number, mode);
  edit.run(x);
  failing.stop();
  const Images found = imagesOf(x), after = imagesOf(whole);
  EXPECT_TRUE(areWholeOrWithoutBytes(found, before, after)) << name << ", allocation " << number;
  EXPECT_TRUE(failing.losses() != 0 || found == after) << name << " differs without a loss";
  EXPECT_EQ(failing.handlerCalls(), failing.losses()) << name << ", allocation " << number;
  for (KtBlob* blob : {&x.blob, &x.other, x.made}) {
    if (blob != nullptr) expectUsable(*blob, name);
  }
  return failing.hasFailed();
}

std::vector<KtBlob> blobs() {
  KtBlob large(500L), null;
  fill(large);
  null.SetNullValue();
  return {KtBlob(), null, KtBlob("abc", 3), large};
}

TEST(AllocationFailure, leaves_blobs_as_they_were_or_without_bytes) {
  for (const KtBlob& b : blobs()) {
    for (const KtBlob& with : blobs()) {
      for (const BlobEdit& edit : kBlobEdits) {
        const std::string name = std::string(edit.name) + " of " + imageOf(b) + ", " + imageOf(with);
        kt_test::forEachFailure(
            name, [&](unsigned long number, Fail mode) { return attempt(edit, name, b, with, number, mode); });
      }
    }
  }
}

}  // namespace
