// decode_run.h - values out of bytes that nobody vouches for.
#ifndef KTTM_TOOL_DECODE_RUN_H
#define KTTM_TOOL_DECODE_RUN_H

#include "values.h"

#include <functional>

namespace tool {

// Reads runs of one type in one disk format. All functions throw Error, with the position, for bytes that are not whole
// records.
class RunDecoder {
public:
  RunDecoder(const Type& type, unsigned char format);

  // Hands out all values, run by run.
  void decodeAll(const Bytes& bytes, const std::function<void(const Values&)>& take) const;
  // The first `count` values as one run; what follows is not looked at.
  Values decodeFirst(const Bytes& bytes, unsigned long count) const;

private:
  unsigned long valueSize() const;
  unsigned long runSize(const Bytes& bytes, unsigned long at, unsigned long count) const;
  Values loadRun(const Bytes& bytes, unsigned long at, unsigned long size) const;
  Values load(const unsigned char* bytes, unsigned long count) const;

  const Type type_;
  const unsigned char format_;
};

}  // namespace tool

#endif
