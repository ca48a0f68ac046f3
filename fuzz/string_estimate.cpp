// Estimates with any bytes as the range and as the comparison string: nothing outside the keys is read, the result is a
// share, selecting more never lowers it, and no lower bound lies above the upper one.
#include "string_input.h"

#include "kttypbnd.h"

using namespace kt_fuzz;

namespace {

struct Row {
  KtEvalAndBoundFunc evalAndBound;
  KtTypeCmpFunc compare;
};

constexpr Row kRows[] = {{kt::StringOps::evalAndBound, kt::StringOps::compare},
                         {kt::LegacyStringOps::evalAndBound, kt::LegacyStringOps::compare},
                         {kt::IStringOps::evalAndBound, kt::IStringOps::compare},
                         {kt::CaseIStringOps::evalAndBound, kt::CaseIStringOps::compare}};

KtIdxBounds rangeOf(const Block& low, const Block& high) {
  return {low.get(), high.get(), static_cast<unsigned char>(low.size), static_cast<unsigned char>(high.size)};
}

float estimate(const Row& row, KtIdxBounds range, unsigned short flags, const Block& key, unsigned char format) {
  KtIdxBounds result;
  const float share = row.evalAndBound(&range, flags, key.get(), format, 1, &result);
  require(share >= 0 && share <= 1);
  require((result.lowKey == nullptr) == ((flags & KtBOUND_LESS) != 0));
  require((result.highKey == nullptr) == ((flags & KtBOUND_GREATER) != 0));
  require(result.lowKeyLength <= KtINDEX_MAX_KEYLEN && result.highKeyLength <= KtINDEX_MAX_KEYLEN);
  if (result.lowKey != nullptr && result.highKey != nullptr) {
    int status;
    require(row.compare(static_cast<unsigned char>((format & 15) | 0x80), result.lowKeyLength, result.lowKey,
                        result.highKeyLength, result.highKey, KtCMP_NO_WILDCARDS, 1, status) <= 0);
  }
  KtFreeIdxBounds(&result);
  return share;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const unsigned char format = diskFormat(input.byte());
  const Block low(input.take(input.byte()));
  const Block high(input.take(input.byte()));
  Bytes bytes = input.rest();
  // A comparison string has no length beside its own.
  if (bytes.size() < 5 || kt::recordAt(bytes.data(), format).size() > bytes.size()) return 0;
  const Block key(bytes);
  for (const Row& row : kRows) {
    float share[8];
    for (unsigned short flags = 0; flags < 8; ++flags) {
      share[flags] = estimate(row, rangeOf(low, high), flags, key, format);
      for (const unsigned bit : {1u, 2u, 4u}) require((flags & bit) == 0 || share[flags] >= share[flags & ~bit]);
    }
  }
  return 0;
}
