// blob_storage.cpp - runs of blobs on disk: storing, loading, sizes, translation.
#include "ops/blob_ops.h"
#include "ops/blob_run.h"
#include "ops/translate.h"

#include <cstring>

namespace kt {
namespace {

unsigned long elementsSize(const KtBlob* blobs, unsigned long count) {
  unsigned long total = 0;
  for (unsigned long i = 0; i < count; ++i) total += kBlobNumber + static_cast<unsigned long>(blobs[i].Length());
  return total;
}

unsigned char* writeNumber(unsigned char* out, unsigned long number, unsigned char format) {
  const bool isBig = lowCode(format) == kBigEndian;
  for (unsigned i = 0; i < kBlobNumber; ++i)
    out[i] = static_cast<unsigned char>(number >> 8 * (isBig ? kBlobNumber - 1 - i : i));
  return out + kBlobNumber;
}

unsigned char* writeBlob(unsigned char* out, const KtBlob& blob, unsigned char format) {
  if (blob.IsNullValue()) return writeNumber(out, kNullBlobLength, format);
  const auto length = static_cast<unsigned long>(blob.Length());
  out = writeNumber(out, length, format);
  if (length != 0) std::memcpy(out, blob.Seek(0, 1), length);
  return out + length;
}

// length: of the run, 0 where it is not known. Returns what the run says that it takes.
unsigned long loadRun(void* dst, const void* src, unsigned long length, unsigned char format, unsigned long count) {
  BlobRun run(src, length, format);
  BlobElement element;
  KtBlob* blobs = BlobOps::at(dst);
  for (unsigned long i = 0; i < count; ++i) {
    if (run.next(element) && !element.isNull()) {
      blobs[i].SetTo(element.bytes, static_cast<long>(element.length));
    } else {
      blobs[i].SetNullValue();
    }
  }
  if (length != 0 && length < kBlobNumber) return 0;
  const unsigned long said = kBlobNumber + readBlobHeader(static_cast<const unsigned char*>(src), format);
  return length != 0 && said > length ? length : said;
}

}  // namespace

unsigned long BlobOps::store(void* dst, const void* src, unsigned char format, unsigned long count) {
  auto* const begin = static_cast<unsigned char*>(dst);
  unsigned char* out = writeNumber(begin, elementsSize(at(src), count), format);
  for (unsigned long i = 0; i < count; ++i) out = writeBlob(out, at(src)[i], format);
  return static_cast<unsigned long>(out - begin);
}

unsigned long BlobOps::load(void* dst, const void* src, unsigned char format, unsigned long count) {
  return loadRun(dst, src, 0, format, count);
}

unsigned long BlobOps::nullSizeGet(unsigned long) { return kBlobNumber; }

unsigned long BlobOps::sizeGet(const void* values, unsigned char givenFormat, unsigned char, unsigned long count) {
  if (isMemoryForm(givenFormat)) return kBlobNumber + elementsSize(at(values), count);
  return kBlobNumber + readBlobHeader(static_cast<const unsigned char*>(values), givenFormat);
}

unsigned long BlobOps::sizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long) {
  const char* here = file == nullptr ? nullptr : file->Seek(0, MemFile::Current);
  const unsigned long left = here == nullptr ? 0 : file->Remaining();
  if (left < kBlobNumber) return 0;
  const unsigned long said = kBlobNumber + readBlobHeader(reinterpret_cast<const unsigned char*>(here), format);
  return said < left ? said : left;
}

unsigned long BlobOps::translate(void* dst, unsigned char dstFormat, unsigned long dstLength, void* src,
                                 unsigned char srcFormat, unsigned long srcLength, unsigned long count) {
  return translateRun(
      dst, dstFormat, dstLength, src, srcFormat, srcLength,
      [&] { return loadRun(dst, src, srcLength, srcFormat, count); },
      [&] {
        const bool fits = dstLength == 0 || kBlobNumber + elementsSize(at(src), count) <= dstLength;
        return fits ? store(dst, src, lowCode(dstFormat), count) : 0;
      },
      [&] {
        assign(dst, src, count, 0);
        return count * sizeof(KtBlob);
      });
}

}  // namespace kt
