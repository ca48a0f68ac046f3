// string_estimate.cpp - how much of an index of strings a comparison selects. What "equal" selects is the unit of
// order_number.cpp; docs/estimates.md has the rules, and what they give on real names.
#include "ops/string_estimate.h"

#include "ops/bounds.h"
#include "ops/order_number.h"
#include "ops/range_measure.h"
#include "ops/string_bounds.h"
#include "ops/string_kinds.h"
#include "ops/string_run_ops.h"

#include <ktbs.h>

namespace kt {
namespace {

// What assertion handlers are told: programs recognise a broken rule by source and line, so these stay when the code moves.
constexpr char kSourceFile[] = "src\\kttypevl";
constexpr int kLengthLine = 612;
constexpr int kWildcardLine = 748;

// A text that begins with a wildcard has no place in the order: whichever side is asked for, all of the range is.
constexpr unsigned kAnySide = KtBOUND_EQUAL | KtBOUND_LESS | KtBOUND_GREATER;

// --- the estimate -------------------------------------------------------------------------------------------------

// No operator has a share of its own; what it selects is measured between the numbers of the keys (order_number.h):
//
//   equal          one unit, the least that two texts are apart. How often a text occurs is not known, so it counts as one
//                  key: next to nothing of a wide range, and all of a range that holds one key
//   less, greater  what lies on that side, and a unit for a bound there whose number ties with that of the text
//   a pattern      the span of all that goes on as its literal text; the whole range where a wildcard comes first
//   no range       0: nothing is known of the index that a share could be taken of

struct BoundKey {
  unsigned char* bytes;
  unsigned long size;
  IndexKey key;
};

bool readBound(BoundKey& to, unsigned char* bytes, unsigned long size, unsigned char code) {
  to.bytes = bytes;
  to.size = size;
  return bytes != nullptr && size >= kEmptyRecord && KeyRun(bytes, size, code).next(to.key);
}

// Where the numbers of a bound and of the comparison value tie, the keys decide: one unit for a bound that satisfies the
// flags. Equality has it in the measure already.
template <class Kind>
double tieOf(const BoundKey& bound, Comparison& comparison, unsigned flags, unsigned char code, double unit) {
  int status;
  const long order = compareStrings<Kind>(code | kIndexKeyForm, bound.size, bound.bytes, comparison.key.size,
                                          comparison.key.bytes, kNoWildcards, 1, status);
  const unsigned side = order < 0 ? KtBOUND_LESS : order > 0 ? KtBOUND_GREATER : 0;
  return (flags & side) != 0 ? unit : 0;
}

template <class Kind>
double selectedArea(const OrderSpans& spans, const BoundKey& low, const BoundKey& high, Comparison& comparison,
                    unsigned short flags, unsigned char code) {
  const double first = spans.key.first;
  const double last = comparison.isPattern ? spans.key.last : first;
  double area = rangeMeasure(flags, {first, last}, {spans.low.first, spans.high.first}, spans.unit);
  if (comparison.isPattern) return area;
  if (spans.low.first == first) area += tieOf<Kind>(low, comparison, flags, code, spans.unit);
  if (spans.high.first == first) area += tieOf<Kind>(high, comparison, flags, code, spans.unit);
  return area;
}

// Equality, which every side stands for there, selects the whole range.
void checkWildcard(const Comparison& comparison, unsigned flags, double area, double totalArea) {
  if (comparison.startsWithWildcard && (flags & kAnySide) != 0 && !(area >= totalArea))
    KATO_assert("charWildPos != 0 || valueRange >= valueTotalArea", kSourceFile, kWildcardLine);
}

template <class Kind>
float estimateShare(const KtIdxBounds& range, Comparison& comparison, unsigned short flags, unsigned char code) {
  BoundKey low, high;
  if (!readBound(low, range.lowKey, range.lowKeyLength, code)) return 0;
  if (!readBound(high, range.highKey, range.highKeyLength, code)) return 0;
  if (comparison.startsWithWildcard && (flags & kAnySide) != 0) flags |= KtBOUND_EQUAL;
  const OrderSpans spans = numberKeys(comparison.literal, low.key, high.key);
  const double totalArea = rangeWidth({spans.low.first, spans.high.first}, spans.unit);
  const double area = selectedArea<Kind>(spans, low, high, comparison, flags, code);
  checkWildcard(comparison, flags, area, totalArea);
  return shareOf(area, totalArea);
}

// --- the bounds ---------------------------------------------------------------------------------------------------

void setStringBound(unsigned char*& bound, unsigned char& boundLength, const KeyBytes& key) {
  if (key.size > KtINDEX_MAX_KEYLEN) {
    KATO_assert("actualLen <= KtINDEX_MAX_KEYLEN", kSourceFile, kLengthLine);
    return;
  }
  setBound(bound, boundLength, key.bytes, key.size, key.size + key.size % 2);
}

void recordStringBounds(KtIdxBounds& result, const Comparison& comparison, unsigned short& flags, bool knowsNull,
                        unsigned char code) {
  flags &= kBoundFlags;
  KeyBytes key;
  if (result.lowKey == nullptr && (flags & KtBOUND_LESS) == 0) {
    writeLowBound(key, comparison, flags, knowsNull, code);
    setStringBound(result.lowKey, result.lowKeyLength, key);
  }
  if (result.highKey == nullptr && (flags & KtBOUND_GREATER) == 0) {
    writeHighBound(key, comparison, flags, code);
    setStringBound(result.highKey, result.highKeyLength, key);
  }
}

}  // namespace

template <class Kind>
float evalAndBoundStrings(KtIdxBounds* range, unsigned short& flags, void* key, unsigned char format,
                          unsigned long count, KtIdxBounds* result) {
  Comparison comparison;
  if (count == 0 || key == nullptr || !readComparison<Kind>(comparison, key, format)) return 0;
  const unsigned char code = keyCode(format);
  const float share = range != nullptr ? estimateShare<Kind>(*range, comparison, flags, code) : 0;
  if (result != nullptr) recordStringBounds(*result, comparison, flags, Kind::kHasNull, code);
  return share;
}

#define KT_INSTANTIATE(Kind)                                                                                   \
  template float evalAndBoundStrings<Kind>(KtIdxBounds*, unsigned short&, void*, unsigned char, unsigned long, \
                                           KtIdxBounds*);
KT_FOR_STRING_KINDS(KT_INSTANTIATE)

}  // namespace kt
