// string_compare_op.cpp - the compare function of the string types.
#include "kttypops.h"
#include "ops/string_key_compare.h"
#include "ops/string_run.h"
#include "ops/string_run_ops.h"
#include "values/string_compare.h"

#include <_ktnulty.h>

namespace kt {
namespace {

constexpr char kSourceFile[] = "src\\kttypcmp";
constexpr int kFirstSizeLine = 835;
constexpr int kSecondSizeLine = 836;

constexpr long signOf(long value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

// The code sets of ktin have characters of one or two bytes; one that had others could not be walked.
void checkSizes(const TextRef& a, const TextRef& b) {
  const unsigned size1 = KtCodeSet::CharSizeOf(a.codeSet);
  const unsigned size2 = KtCodeSet::CharSizeOf(b.codeSet);
  if (size1 != 1 && size1 != 2) KATO_assert("(CSSize1 == 1) || (CSSize1 == 2)", kSourceFile, kFirstSizeLine);
  if (size2 != 1 && size2 != 2) KATO_assert("(CSSize2 == 1) || (CSSize2 == 2)", kSourceFile, kSecondSizeLine);
}

struct CompareSized {
  unsigned cmpOp;

  long operator()(const TextRef& a, const TextRef& b) const {
    checkSizes(a, b);
    return compareTexts(a, b, cmpOp, -1);
  }
};

// Both runs step for step. compareOne(x, y) compares a pair and may set the status, which ends the walk.
template <class Run, class CompareOne>
long compareStringRuns(Run a, Run b, unsigned long count, int& status, CompareOne compareOne) {
  typename Run::Item x, y;
  for (unsigned long i = 0; i < count; ++i) {
    if (!a.next(x) || !b.next(y)) {
      status = KtERR_OVERRUN;
      return 0;
    }
    const long result = compareOne(x, y);
    if (i + 1 < count && (!a.more() || !b.more())) status = KtERR_OVERRUN;
    if (result != 0 || status != 0) return signOf(result);
  }
  return 0;
}

// What has a quick way in every form: one pair, under an operator of which the first differing letters decide.
constexpr bool isOnePlain(unsigned cmpOp, unsigned long count) { return count == 1 && isPlainOperator(cmpOp); }

// Records that are seen as they lie.
constexpr bool isPlainRecordForm(unsigned char format) {
  return (format & (kMemoryForm | kIndexKeyForm | kCodeSetBits)) == 0;
}

// Whether runs of these lengths (0: not known) can have a string of the least size.
constexpr bool holdBoth(unsigned long lengthA, unsigned long lengthB, unsigned long least) {
  return knownLength(lengthA) >= least && knownLength(lengthB) >= least;
}

// --- index keys -----------------------------------------------------------------------------------------------------

// What a cut off part decides is not known.
long resultOf(const KeyOrder& order, int& status) {
  if (!order.isDecided) status = KtERR_OVERRUN;
  return order.result;
}

// A null second key is before everything; a null first one too, where no wildcard can match it.
template <class Kind>
long compareKeyPair(const IndexKey& a, const IndexKey& b, unsigned cmpOp, int& status) {
  if (Kind::kHasNull && b.isNull()) return a.isNull() ? 0 : 1;
  if (Kind::kHasNull && a.isNull() && (cmpOp & (kNoWildcards | kBinaryOrder)) != 0) return -1;
  return resultOf(compareKeys(a, b, cmpOp), status);
}

template <class Kind>
[[gnu::noinline]] long compareKeyRuns(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB,
                                      void* b, unsigned cmpOp, unsigned long count, int& status) {
  return compareStringRuns(
      KeyRun(a, lengthA, format), KeyRun(b, lengthB, format), count, status,
      [&](const IndexKey& x, const IndexKey& y) { return compareKeyPair<Kind>(x, y, cmpOp, status); });
}

// One key against one, as an index asks for, is mostly decided by letters.
template <class Kind>
long compareKeyForms(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b,
                     unsigned cmpOp, unsigned long count, int& status) {
  if (isOnePlain(cmpOp, count))
    if (const auto order = orderByLetters(a, lengthA, b, lengthB, format, cmpOp)) return resultOf(*order, status);
  return compareKeyRuns<Kind>(format, lengthA, a, lengthB, b, cmpOp, count, status);
}

// --- strings in memory, under their own code sets -------------------------------------------------------------------

template <class Kind>
[[gnu::noinline]] long compareMemoryRuns(unsigned long lengthA, void* a, unsigned long lengthB, void* b, unsigned cmpOp,
                                         unsigned long count, int& status) {
  return compareStringRuns(MemoryRun<Kind>(a, lengthA), MemoryRun<Kind>(b, lengthB), count, status,
                           CompareSized{cmpOp});
}

template <class Kind>
long compareMemoryForms(unsigned long lengthA, void* a, unsigned long lengthB, void* b, unsigned cmpOp,
                        unsigned long count, int& status) {
  if (isOnePlain(cmpOp, count) && holdBoth(lengthA, lengthB, sizeof(KtString))) {
    const auto& x = *static_cast<const KtString*>(a);
    const auto& y = *static_cast<const KtString*>(b);
    return signOf(compareWholeOr(
        x, y, cmpOp, [&] { return compareMemoryRuns<Kind>(lengthA, a, lengthB, b, cmpOp, count, status); }));
  }
  return compareMemoryRuns<Kind>(lengthA, a, lengthB, b, cmpOp, count, status);
}

// --- records --------------------------------------------------------------------------------------------------------

template <class Kind>
[[gnu::noinline]] long compareRecordRuns(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB,
                                         void* b, unsigned cmpOp, unsigned long count, int& status) {
  return compareStringRuns(RecordRun<Kind>(a, lengthA, format), RecordRun<Kind>(b, lengthB, format), count, status,
                           CompareSized{cmpOp});
}

bool holdsCurrent(const Record& record, unsigned long length) {
  return record.size() <= knownLength(length) && !record.isOlder();
}

// Of two records in the current form, alike in code set and language. 0 where that does not decide.
std::int32_t recordDifference(const Record& a, const Record& b, unsigned char format) {
  if (a.codeSet() != b.codeSet() || a.language() != b.language()) return 0;
  const unsigned codes = a.language() * 256u + a.codeSet();
  const unsigned long bytesA = a.textBytes(), bytesB = b.textBytes();
  if (const ByteWeights* table = usualByteWeights(codes))
    return differenceInRecords<1>(a.text(), b.text(), bytesA, bytesB, *table);
  const WideWeights* table = usualWideWeights(codes);
  if (table == nullptr || unitsAreSwapped(lowCode(format))) return 0;
  return differenceInRecords<2>(a.text(), b.text(), bytesA / 2, bytesB / 2, *table);
}

template <class Kind>
long compareRecordForms(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b,
                        unsigned cmpOp, unsigned long count, int& status) {
  if (isOnePlain(cmpOp, count) && isPlainRecordForm(format) && holdBoth(lengthA, lengthB, kEmptyRecord)) {
    const Record x = recordAt(a, format);
    const Record y = recordAt(b, format);
    if (holdsCurrent(x, lengthA) && holdsCurrent(y, lengthB)) {
      // The pair at which every look-up ends.
      if (x.length == y.length && std::memcmp(x.bytes, y.bytes, x.size()) == 0) return 0;
      if (const std::int32_t difference = recordDifference(x, y, format)) return signOf(difference);
    }
  }
  return compareRecordRuns<Kind>(format, lengthA, a, lengthB, b, cmpOp, count, status);
}

// Everything but what the first characters of two records decide. Apart and with the same arguments, so that the
// look-ups of a B-tree need no stack frame.
template <class Kind>
[[gnu::noinline]] long compareInFull(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB,
                                     void* b, unsigned short options, unsigned long count, int& status) {
  const unsigned cmpOp = Kind::cmpOp(options);
  status = 0;
  if (isMemoryForm(format)) return compareMemoryForms<Kind>(lengthA, a, lengthB, b, cmpOp, count, status);
  if ((format & kIndexKeyForm) != 0) return compareKeyForms<Kind>(format, lengthA, a, lengthB, b, cmpOp, count, status);
  return compareRecordForms<Kind>(format, lengthA, a, lengthB, b, cmpOp, count, status);
}

// --- what a B-tree asks for: one record against one, decided by the first characters ---------------------------------

constexpr unsigned long kHeadRecord = kCodeSetAt + 8;  // the least record of which a word can be read from there
constexpr unsigned long kHeadUnits = 3;                // 16-bit characters in such a word
constexpr unsigned long kLengthOfHeadUnits = kEmptyLength + 2 * kHeadUnits;  // L of a record that has as many
constexpr unsigned long kLongHeadUnits = 7;                                  // and in two
constexpr std::uint64_t kCodes = 0xFFFF;                                     // of a head: language * 256 + code set
constexpr unsigned kTextEndAndMark = std::endian::native == std::endian::little ? kCurrentMark << 8 : kCurrentMark;
static_assert(kTextEnd == 0);

inline unsigned loadWord(const unsigned char* at) {
  std::uint16_t word;
  std::memcpy(&word, at, sizeof word);
  return word;
}

// Where the bytes hold one record in the current form that is no shorter than that: its L; else 0.
[[gnu::always_inline]] inline unsigned long headLength(const unsigned char* bytes, unsigned long length,
                                                       unsigned char format) {
  if (length < kHeadRecord) return 0;
  const unsigned long own = readLength(bytes, lowCode(format));
  const bool isWhole = own - (kHeadRecord - kLengthBytes) <= length - kHeadRecord;
  return isWhole && loadWord(bytes + own) == kTextEndAndMark ? own : 0;
}

// The first characters of such records of 16-bit characters, in either order. 0: not decided.
[[gnu::always_inline]] inline std::int32_t wideHeadDifference(const Record& a, const Record& b, int rotation,
                                                              const WideWeights& table) {
  const unsigned long unitsA = a.textBytes() / 2, unitsB = b.textBytes() / 2;
  const unsigned long shorter = std::min(unitsA, unitsB);
  const char* const codesA = a.text() - 2;
  const char* const codesB = b.text() - 2;
  const std::uint32_t mask = shorter < kLongHeadUnits - 1
                                 ? differences8<2>(codesA, codesB) >> 2 | 1u << 2 * kHeadUnits
                                 : differences16<2>(codesA, codesB) >> 2 | 1u << 2 * kLongHeadUnits;
  const unsigned long at = std::min<unsigned long>(lowestBit(mask) / 2, shorter);
  const unsigned unitA = at < unitsA ? loadUnit(a.text(), at, rotation) : 0;
  const unsigned unitB = at < unitsB ? loadUnit(b.text(), at, rotation) : 0;
  if (!areNear(unitA, unitB)) [[unlikely]]
    return 0;
  return decidedDifference(table.primary[unitA], table.primary[unitB]);
}

template <class Kind>
[[gnu::noinline]] long compareWideHeads(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB,
                                        void* b, unsigned short options, unsigned long count, int& status) {
  const Record x = recordAt(a, format), y = recordAt(b, format);
  const WideWeights* table = usualWideWeights(x.language() * 256u + x.codeSet());
  const int rotation = unitsAreSwapped(lowCode(format)) ? 8 : 0;
  const std::int32_t difference = table != nullptr ? wideHeadDifference(x, y, rotation, *table) : 0;
  if (difference == 0) return compareInFull<Kind>(format, lengthA, a, lengthB, b, options, count, status);
  status = 0;
  return signOf(difference);
}

}  // namespace

// Usual texts are seen alike by every kind.
template <class Kind>
long compareStrings(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b,
                    unsigned short options, unsigned long count, int& status) {
  const auto* const recordA = static_cast<const unsigned char*>(a);
  const auto* const recordB = static_cast<const unsigned char*>(b);
  if (!isOnePlain(Kind::cmpOp(options), count) || !isPlainRecordForm(format))
    return compareInFull<Kind>(format, lengthA, a, lengthB, b, options, count, status);
  const unsigned long shorter = std::min(headLength(recordA, lengthA, format), headLength(recordB, lengthB, format));
  if (shorter == 0) return compareInFull<Kind>(format, lengthA, a, lengthB, b, options, count, status);
  const std::uint64_t headA = loadLowFirst(recordA + kCodeSetAt);
  const std::uint64_t headB = loadLowFirst(recordB + kCodeSetAt);
  if (((headA ^ headB) & kCodes) != 0)
    return compareInFull<Kind>(format, lengthA, a, lengthB, b, options, count, status);
  const auto codes = static_cast<unsigned>(headA & kCodes);
  const ByteWeights* bytes = usualByteWeights(codes);
  const bool hasUnits = bytes == nullptr && lowCode(format) != kBigEndian && shorter >= kLengthOfHeadUnits;
  const WideWeights* units = hasUnits ? usualWideWeights(codes) : nullptr;
  std::int32_t difference = 0;
  if (bytes != nullptr) {
    difference = differenceInHeads(headA >> 16, headB >> 16, *bytes);
  } else if (units != nullptr) {
    difference = differenceInHeads(headA >> 16, headB >> 16, *units);
  }
  if (difference != 0) {
    status = 0;
    return signOf(difference);
  }
  if (bytes == nullptr) return compareWideHeads<Kind>(format, lengthA, a, lengthB, b, options, count, status);
  return compareInFull<Kind>(format, lengthA, a, lengthB, b, options, count, status);
}

#define KT_INSTANTIATE(Kind)                                                                                    \
  template long compareStrings<Kind>(unsigned char, unsigned long, void*, unsigned long, void*, unsigned short, \
                                     unsigned long, int&);
KT_FOR_STRING_KINDS(KT_INSTANTIATE)

}  // namespace kt

long StringCompare(unsigned char format, unsigned long lengthA, void* a, unsigned long lengthB, void* b,
                   unsigned short options, unsigned long count, int& status) {
  return kt::compareStrings<kt::PlainStrings>(format, lengthA, a, lengthB, b, options, count, status);
}
