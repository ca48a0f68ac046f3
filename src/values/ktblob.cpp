#include "ktblob.h"

#include "values/blob_search.h"

#include <ktbs.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr unsigned long kLargest = 0x7FFFFFFF;
constexpr unsigned long kReusable = 128;  // bytes that a buffer may be too large for its content
constexpr long kNotFound = 65535;

unsigned long countOf(long n) { return n < 0 ? 0 : static_cast<unsigned long>(n); }

unsigned long lengthOf(const KtBlobData* record) {
  return record == nullptr ? 0 : static_cast<unsigned long>(record->length);
}

void copyBytes(char* dst, const void* src, unsigned long n) {
  if (n != 0) std::memmove(dst, src, n);
}

// Null for no bytes, and when there is no memory for them.
char* allocateBytes(unsigned long n) {
  if (n == 0) return nullptr;
  void* bytes = n > kLargest ? nullptr : std::malloc(n);
  if (bytes == nullptr) KtCallMemoryHandler(n);
  return static_cast<char*>(bytes);
}

void adopt(KtBlobData& record, char* bytes, unsigned long n) {
  std::free(record.data);
  record.data = bytes;
  record.length = bytes == nullptr ? 0 : static_cast<std::int32_t>(n);
}

KtBlobData* newRecord(unsigned long n) {
  auto* record = new (std::nothrow) KtBlobData{nullptr, 0};
  if (record == nullptr) {
    KtCallMemoryHandler(sizeof(KtBlobData));
    return nullptr;
  }
  adopt(*record, allocateBytes(n), n);
  return record;
}

void freeRecord(KtBlobData* record) {
  if (record == nullptr) return;
  std::free(record->data);
  delete record;
}

KtBlobData* newCopy(const void* bytes, unsigned long n) {
  KtBlobData* record = newRecord(n);
  if (lengthOf(record) != 0) copyBytes(record->data, bytes, n);
  return record;
}

// The bytes may lie in the record's own buffer.
void replaceBytes(KtBlobData& record, const void* bytes, unsigned long n) {
  const unsigned long held = lengthOf(&record);
  if (record.data != nullptr && held >= n && held - n <= kReusable) {
    copyBytes(record.data, bytes, n);
    record.length = static_cast<std::int32_t>(n);
    return;
  }
  char* fresh = allocateBytes(n);
  if (fresh != nullptr) copyBytes(fresh, bytes, n);
  adopt(record, fresh, n);
}

// A new buffer of `size` bytes that begins with the old ones, as far as it goes.
void rebuildBytes(KtBlobData& record, unsigned long size) {
  char* fresh = allocateBytes(size);
  const unsigned long held = lengthOf(&record);
  if (fresh != nullptr) copyBytes(fresh, record.data, held < size ? held : size);
  adopt(record, fresh, size);
}

// What remains behind offset of so many bytes, at most n; 0 where nothing does.
unsigned long reach(unsigned long length, long offset, long n) {
  if (offset < 0 || n < 1 || static_cast<unsigned long>(offset) >= length) return 0;
  const unsigned long rest = length - static_cast<unsigned long>(offset);
  return static_cast<unsigned long>(n) < rest ? static_cast<unsigned long>(n) : rest;
}

}  // namespace

// --- make -------------------------------------------------------------------------------------------------------------

KtBlob::KtBlob() : record_(newRecord(0)) {}
KtBlob::KtBlob(long size) : record_(newRecord(countOf(size))) {}
KtBlob::KtBlob(const void* bytes, long n) : record_(newCopy(bytes, bytes == nullptr ? 0 : countOf(n))) {}

KtBlob::KtBlob(const KtBlob& other)
    : record_(other.record_ == nullptr ? nullptr : newCopy(other.record_->data, lengthOf(other.record_))) {}

KtBlob::~KtBlob() { SetNullValue(); }

KtBlob& KtBlob::operator=(const KtBlob& other) {
  if (this == &other) return *this;
  SetNullValue();
  if (other.record_ != nullptr) record_ = newCopy(other.record_->data, lengthOf(other.record_));
  return *this;
}

KtBlob& KtBlob::Destroy(KtBlob& other) {
  if (this == &other) return *this;
  SetNullValue();
  if (other.record_ != nullptr) record_ = std::exchange(other.record_, newRecord(0));
  return *this;
}

KtBlobData* KtBlob::AllocData(long n) { return newRecord(countOf(n) + 1); }

// --- ask --------------------------------------------------------------------------------------------------------------

int KtBlob::SetNullValue() {
  freeRecord(std::exchange(record_, nullptr));
  return 0;
}

long KtBlob::Length() const { return static_cast<long>(lengthOf(record_)); }

char* KtBlob::Seek(long offset, long n) const {
  const unsigned long held = reach(lengthOf(record_), offset, n);
  return held == 0 || held != countOf(n) ? nullptr : record_->data + offset;
}

long KtBlob::Search(const KtBlob& pattern) const {
  if (IsNullValue()) return kNotFound;
  const auto bytesOf = [](const KtBlob& blob) { return reinterpret_cast<const unsigned char*>(blob.Seek(0, 1)); };
  const unsigned long found =
      kt::findBytes(bytesOf(*this), lengthOf(record_), bytesOf(pattern), lengthOf(pattern.record_));
  return found == kt::kBytesNotFound ? kNotFound : static_cast<long>(found);
}

// --- change -----------------------------------------------------------------------------------------------------------

KtBlob& KtBlob::SetTo(const void* bytes, long n) {
  const unsigned long count = bytes == nullptr ? 0 : countOf(n);
  if (record_ == nullptr) {
    record_ = newCopy(bytes, count);
  } else {
    replaceBytes(*record_, bytes, count);
  }
  return *this;
}

KtBlob& KtBlob::Expand(long size) {
  if (record_ == nullptr) {
    record_ = newRecord(countOf(size));
  } else {
    rebuildBytes(*record_, countOf(size));
  }
  return *this;
}

KtBlob& KtBlob::Resize(unsigned long size) {
  if (record_ == nullptr) {
    record_ = newRecord(size > kLargest ? 0 : size);
  } else if (size == 0) {
    adopt(*record_, nullptr, 0);
  } else if (size > lengthOf(record_)) {
    rebuildBytes(*record_, size);
  } else {
    record_->length = static_cast<std::int32_t>(size);
  }
  return *this;
}

KtBlob& KtBlob::Append(const void* bytes, long n) {
  if (n < 1 || bytes == nullptr) return *this;
  if (record_ == nullptr) return SetTo(bytes, n);
  const unsigned long held = lengthOf(record_);
  const unsigned long size = held + static_cast<unsigned long>(n);
  char* fresh = allocateBytes(size);
  if (fresh != nullptr) {
    copyBytes(fresh, record_->data, held);
    copyBytes(fresh + held, bytes, static_cast<unsigned long>(n));
  }
  adopt(*record_, fresh, size);
  return *this;
}

KtBlob& KtBlob::Append(const KtBlob& other) { return Append(other.Seek(0, 1), other.Length()); }

KtBlob& KtBlob::CopyTo(const KtBlob& other, long offset, long n) {
  const unsigned long room = reach(lengthOf(record_), offset, n);
  const unsigned long count = room < lengthOf(other.record_) ? room : lengthOf(other.record_);
  if (count != 0) std::memmove(record_->data + offset, other.record_->data, count);
  return *this;
}

KtBlob KtBlob::CopyFrom(long offset, long n) const {
  const unsigned long count = reach(lengthOf(record_), offset, n);
  return count == 0 ? KtBlob() : KtBlob(record_->data + offset, static_cast<long>(count));
}

KtBlob& KtBlob::Cut(long offset, long n) {
  const unsigned long count = reach(lengthOf(record_), offset, n);
  if (count == 0) return *this;
  const unsigned long left = lengthOf(record_) - count;
  if (left == 0) return Resize(0);
  char* at = record_->data + offset;
  copyBytes(at, at + count, left - static_cast<unsigned long>(offset));
  record_->length = static_cast<std::int32_t>(left);
  return *this;
}

// --- compare ----------------------------------------------------------------------------------------------------------

int KtBlob::operator!=(const KtBlob& other) const {
  if (IsNullValue() || other.IsNullValue()) return other.IsNullValue() ? 2 * !IsNullValue() : -2;
  const unsigned long mine = lengthOf(record_);
  const unsigned long others = lengthOf(other.record_);
  const unsigned long common = mine < others ? mine : others;
  const int difference = common == 0 ? 0 : std::memcmp(record_->data, other.record_->data, common);
  if (difference != 0) return difference < 0 ? -1 : 1;
  return mine == others ? 0 : mine < others ? -1 : 1;
}
