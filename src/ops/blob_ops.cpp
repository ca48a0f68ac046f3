// blob_ops.cpp - comparing and hashing runs of blobs, and their text forms.
#include "ops/blob_ops.h"

#include "ktstring.h"
#include "ops/blob_run.h"
#include "ops/run_compare.h"
#include "ops/run_hash.h"
#include "ops/string_array.h"
#include "text/format_or.h"
#include "values/null_text.h"
#include "values/text_builder.h"

#include <cstring>

namespace kt {
namespace {

// -2, -1, 0, 1 or 2. isSure: whether all bytes that decide were there.
long compareElements(const BlobElement& a, const BlobElement& b, bool& isSure) {
  isSure = true;
  if (a.isNull() || b.isNull()) return 2 * (static_cast<long>(b.isNull()) - static_cast<long>(a.isNull()));
  const std::uint32_t common = a.length < b.length ? a.length : b.length;
  const int difference = common == 0 ? 0 : std::memcmp(a.bytes, b.bytes, common);
  if (difference != 0) return difference < 0 ? -1 : 1;
  isSure = !a.isCut() && !b.isCut();
  return static_cast<long>(a.announced > b.announced) - static_cast<long>(a.announced < b.announced);
}

long compareDiskRuns(BlobRun a, BlobRun b, unsigned long count, int& status) {
  for (unsigned long i = 0; i < count; ++i) {
    BlobElement elementA, elementB;
    bool isSure = false;
    long result = 0;
    if (a.next(elementA) && b.next(elementB)) result = compareElements(elementA, elementB, isSure);
    if (!isSure) status = KtERR_OVERRUN;
    if (result != 0 || !isSure) return result;
  }
  return 0;
}

// The exclusive or of the lengths of as many elements as the run holds; reads that many.
std::uint32_t hashDiskRun(BlobRun run, unsigned long count, unsigned long& read) {
  std::uint32_t word = 0;
  BlobElement element;
  for (read = 0; read < count && run.next(element); ++read) {
    if (!element.isNull()) word ^= element.announced;
    if (element.isCut()) break;
  }
  return word;
}

std::uint32_t hashBlobs(const KtBlob* blobs, unsigned long count) {
  std::uint32_t word = 0;
  for (unsigned long i = 0; i < count; ++i) word ^= static_cast<std::uint32_t>(blobs[i].Length());
  return word;
}

KtString textOf(const KtBlob& blob) {
  KtString text;
  if (blob.IsNullValue()) {
    text.SetNullValue();
    return text;
  }
  constexpr unsigned long kMostBytes = 65533;
  const auto length = static_cast<unsigned long>(blob.Length());
  const unsigned long available = length < kMostBytes ? length : kMostBytes;
  const char* bytes = blob.Seek(0, 1);
  const void* zero = bytes == nullptr ? nullptr : std::memchr(bytes, 0, available);
  if (bytes == nullptr) return text;
  assignText(text, bytes,
             zero == nullptr ? available : static_cast<unsigned long>(static_cast<const char*>(zero) - bytes));
  return text;
}

}  // namespace

unsigned long BlobOps::hash(unsigned char format, unsigned long length, void* values, unsigned long count,
                            int& status) {
  unsigned long read = count;
  std::uint32_t word = 0;
  if (lowCode(format) == kMemoryForm) {
    if (length != 0 && length / sizeof(KtBlob) < count) read = length / sizeof(KtBlob);
    word = hashBlobs(at(values), read);
  } else if (count != 0) {
    word = hashDiskRun(BlobRun(values, length, format), count, read);
  }
  status = read < count ? KtERR_OVERRUN : 0;
  return finishHash(word);
}

KtTypeConvertData* BlobOps::convertTo(void* values, unsigned long count) {
  return convertToStrings(count, [blobs = at(values)](unsigned long i) { return textOf(blobs[i]); });
}

void* BlobOps::convertFrom(KtTypeConvertData* data, unsigned long count) {
  return makeFilled<BlobOps>(count, [data](void* values, unsigned long i) {
    if (const KtString* text = textAt(data, i)) {
      at(values)[i].SetTo(text->buffer, text->bufferSize);
    } else {
      at(values)[i].SetNullValue();
    }
  });
}

KtString& BlobOps::print(KtString& out, void* values, const char* format, unsigned long) {
  if (values == nullptr) return out;
  const KtBlob& blob = *at(values);
  if (blob.IsNullValue()) return out = nullPrintString();
  TextBuilder text;
  for (const char* next = formatOr(format, kBlobFormat); *next != '\0'; ++next) {
    const bool isDirective = *next == '%';
    if (isDirective && *++next == '\0') break;
    if (isDirective && *next == 'L') {
      text.putNumber(static_cast<std::uint32_t>(blob.Length()));
    } else {
      text.put(*next);
    }
  }
  return text.moveTo(out);
}

void* BlobOps::scan(void* values, KtString& in, const char*, unsigned long) {
  if (values == nullptr) return nullptr;
  if (beginsWithNullText(in) && in.Len() == nullPrintString().Len()) at(values)->SetNullValue();
  return values;
}

void* BlobOps::defaultValue(unsigned long count, int asNull) {
  if (asNull == 0) return convertEmptyStrings(&convertFrom, count);
  void* values = create(count);
  for (unsigned long i = 0; values != nullptr && i < count; ++i) at(values)[i].SetNullValue();
  return values;
}

}  // namespace kt

long BlobCompare(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b, unsigned short,
                 unsigned long count, int& status) {
  status = 0;
  if (count == 0) return 0;
  if (kt::lowCode(format) != kt::kMemoryForm) {
    return kt::compareDiskRuns({a, lengthA, format}, {b, lengthB, format}, count, status);
  }
  const kt::RunPair runs{
      static_cast<unsigned char*>(a), static_cast<unsigned char*>(b), lengthA, lengthB, count, sizeof(KtBlob)};
  const auto compareBlobs = [](const unsigned char* x, const unsigned char* y) -> long {
    return *reinterpret_cast<const KtBlob*>(x) != *reinterpret_cast<const KtBlob*>(y);
  };
  const long result = kt::compareRuns<false>(runs, status, compareBlobs);
  if (result != 0) status = 0;
  return result;
}
