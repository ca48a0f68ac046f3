// blob_run.h - reading a run of blobs as it lies on disk.
#ifndef KT_OPS_BLOB_RUN_H
#define KT_OPS_BLOB_RUN_H

#include "ops/format_code.h"

#include <cstdint>

namespace kt {

// DISK: a header with the bytes of all elements; an element is its length, then so many bytes. Numbers of 4 bytes in the
// order of the format code: big-endian in code 2, else little-endian.
constexpr unsigned long kBlobNumber = 4;
constexpr std::uint32_t kNullBlobLength = 0xFFFFFFFFu;

inline std::uint32_t readBlobNumber(const unsigned char* p, unsigned char format) {
  const std::uint32_t little = p[0] | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 | std::uint32_t{p[3]} << 24;
  const std::uint32_t big = p[3] | std::uint32_t{p[2]} << 8 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[0]} << 24;
  return lowCode(format) == kBigEndian ? big : little;
}

// The bytes that a header announces; the mark of null counts as 0.
inline std::uint32_t readBlobHeader(const unsigned char* p, unsigned char format) {
  const std::uint32_t size = readBlobNumber(p, format);
  return size == kNullBlobLength ? 0 : size;
}

struct BlobElement {
  const unsigned char* bytes;
  std::uint32_t announced;  // its length as it stands; kNullBlobLength for null
  std::uint32_t length;     // how many of the bytes the run holds

  bool isNull() const { return announced == kNullBlobLength; }
  bool isCut() const { return length < announced && !isNull(); }
};

// Walks the elements. Nothing is read beyond what the header announces and, where it is known, the run's length holds;
// an element that does not fit has the bytes that are there.
class BlobRun {
public:
  // length: of the run with its header; 0 when only the header knows.
  BlobRun(const void* run, unsigned long length, unsigned char format)
      : at_(static_cast<const unsigned char*>(run)), left_(0), format_(format) {
    if (length != 0 && length < kBlobNumber) return;
    left_ = readBlobHeader(at_, format);
    at_ += kBlobNumber;
    if (length != 0 && left_ > length - kBlobNumber) left_ = length - kBlobNumber;
  }

  // False when no whole length is left.
  bool next(BlobElement& element) {
    if (left_ < kBlobNumber) return false;
    element.announced = readBlobNumber(at_, format_);
    take(kBlobNumber);
    element.bytes = at_;
    const unsigned long wanted = element.isNull() ? 0 : element.announced;
    element.length = static_cast<std::uint32_t>(wanted < left_ ? wanted : left_);
    take(element.length);
    return true;
  }

private:
  void take(unsigned long bytes) {
    at_ += bytes;
    left_ -= bytes;
  }

  const unsigned char* at_;
  unsigned long left_;
  unsigned char format_;
};

}  // namespace kt

#endif
