// Estimates and bounds comparisons with keys of every type against ranges from outside: nothing is read past a key or a
// side of the range, the estimate is a share, and the recorded keys are such as an index has. The first part of the input
// is the range, the second the key; options: the flags, and in the bits 0x70 which arguments are missing.
#include "row_case.h"

using namespace kt_fuzz;

namespace {

constexpr unsigned short kNoRange = 0x10, kNoResult = 0x20, kHalfRange = 0x40;

// A key of at most `count` values: as compared, so that memory form is the padded array.
struct Key {
  Key(const RowCase& c, const Bytes& bytes)
      : isArray(!c.isFixed() && (c.format & kMemory) != 0),
        run(c.isFixed() ? fixedRun(c, bytes, c.runLen(c.format)) : storedRun(c, bytes, c.diskForm())),
        array(isArray ? load(c, run, c.diskForm()) : Values(c, 0, nullptr)) {}
  void* get() const { return isArray ? array.get() : run.bytes.get(); }

  bool isArray;
  Run run;
  Values array;
};

void requireKey(const unsigned char* key, unsigned char length) {
  require(length <= KtINDEX_MAX_KEYLEN && (key != nullptr || length == 0));
  const Bytes read(key, key + length);  // that many bytes are there
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const RowCase c(data, size);
  const Key key(c, c.second);
  if (key.run.count == 0) return 0;
  const std::size_t half = c.first.size() / 2;
  const Block low(prefix(c.first, half));
  const Block high(Bytes(c.first.begin() + static_cast<std::ptrdiff_t>(half), c.first.end()));
  KtIdxBounds range;
  range.lowKey = (c.options & kHalfRange) != 0 ? nullptr : low.get();
  range.lowKeyLength = static_cast<unsigned char>(low.size);
  range.highKey = high.get();
  range.highKeyLength = static_cast<unsigned char>(high.size);
  KtIdxBounds result;
  unsigned short flags = c.options;
  const float share =
      c.manager->EvalAndBound(c.id, (c.options & kNoRange) != 0 ? nullptr : &range, flags, key.get(), c.format,
                              key.run.count, (c.options & kNoResult) != 0 ? nullptr : &result, nullptr);
  require(share >= 0.0F && share <= 1.0F && (flags & ~c.options) == 0);
  requireKey(result.lowKey, result.lowKeyLength);
  requireKey(result.highKey, result.highKeyLength);
  KtFreeIdxBounds(&result);
  return 0;
}
