// blob_ops.h - the row of KtBlob.
#ifndef KT_OPS_BLOB_OPS_H
#define KT_OPS_BLOB_OPS_H

#include "ktblob.h"
#include "kttypops.h"
#include "ops/handle_arrays.h"
#include "ops/illegal_ops.h"

namespace kt {

constexpr char kBlobFormat[] = "[BLOB,len=%L]";

struct BlobOps : HandleArrays<KtBlob> {
  static unsigned long store(void* dst, const void* src, unsigned char format, unsigned long count);
  // Elements that the run does not hold become null.
  static unsigned long load(void* dst, const void* src, unsigned char format, unsigned long count);
  static unsigned long nullSizeGet(unsigned long count);
  static unsigned long sizeGet(const void* values, unsigned char givenFormat, unsigned char format,
                               unsigned long count);
  static unsigned long sizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long count);
  static constexpr KtTypeCmpFunc compare = &BlobCompare;
  // Not offered: the order of bytes tells nothing about a range. Nothing is estimated, nothing bounds a scan.
  static constexpr KtEvalAndBoundFunc evalAndBound = &IllegalOps::evalAndBound;
  // By lengths only, as they are announced; 2101 when the run ends early.
  static unsigned long hash(unsigned char format, unsigned long length, void* values, unsigned long count, int& status);
  // A length of 0 is not known, and not checked.
  static unsigned long translate(void* dst, unsigned char dstFormat, unsigned long dstLength, void* src,
                                 unsigned char srcFormat, unsigned long srcLength, unsigned long count);

  // A string's stored bytes, terminator included, are a blob's content, and back up to the first 0.
  static KtTypeConvertData* convertTo(void* values, unsigned long count);
  static void* convertFrom(KtTypeConvertData* data, unsigned long count);
  static int isNull(void* value) { return at(value)->IsNullValue(); }
  static int setNull(void* value) { return at(value)->SetNullValue(); }
  static constexpr KtSetNullFunc kSetNull = &setNull;
  static KtString& print(KtString& out, void* values, const char* format, unsigned long count);
  // Only null is recognised; any other text changes nothing.
  static void* scan(void* values, KtString& in, const char* format, unsigned long count);
  static void* defaultValue(unsigned long count, int asNull);  // null or empty blobs
};

}  // namespace kt

#endif
