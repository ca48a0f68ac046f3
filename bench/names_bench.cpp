// Comparing and hashing names by collation, beside ICU.
#include "bench_job.h"
#include "name_data.h"

#include <bit>
#include <cstring>
#include <set>

#if defined(KT_HAVE_ICU)
#include <unicode/ucol.h>
#endif
#if defined(KT_HAVE_ICU) && defined(KT_HAVE_XXHASH)
#define XXH_INLINE_ALL
#include <xxhash.h>
#endif

namespace kt::bench {
namespace {

#if defined(KT_HAVE_ICU)
UCollator* collator() {
  static UErrorCode status = U_ZERO_ERROR;
  static UCollator* const opened = ucol_open("en", &status);
  return opened;
}

const UChar* icuText(const std::u16string& name) { return reinterpret_cast<const UChar*>(name.data()); }
int icuLength(const std::u16string& name) { return static_cast<int>(name.size()); }

long icuCompareUtf8(const Names& names, std::size_t a, std::size_t b) {
  UErrorCode status = U_ZERO_ERROR;
  const std::string &x = names.utf8[a], &y = names.utf8[b];
  return ucol_strcollUTF8(collator(), x.data(), static_cast<int>(x.size()), y.data(), static_cast<int>(y.size()),
                          &status);
}

long icuCompareUtf16(const Names& names, std::size_t a, std::size_t b) {
  const std::u16string &x = names.utf16[a], &y = names.utf16[b];
  return ucol_strcoll(collator(), icuText(x), icuLength(x), icuText(y), icuLength(y));
}
#endif

using CompareNames = long (*)(const Names&, std::size_t, std::size_t);

// The two ways in: by string, and by text, as a comparator gets at names that lie in records.
long compareStrings(const Names& names, std::size_t a, std::size_t b) {
  return names.texts[a].Compare(names.texts[b], -1, KtCMP_NO_WILDCARDS);
}

long compareTexts(const Names& names, std::size_t a, std::size_t b) {
  const KtString &x = names.texts[a], &y = names.texts[b];
  return KtStrCmp(x.codeSet, x.language, x.buffer, y.codeSet, y.language, y.buffer, KtCMP_NO_WILDCARDS, -1);
}

// The floor: what every comparison of such pairs has to do, its arguments taken as the contract has them. It finds the first
// difference and asks one table for the weights there: right for most pairs, and without a look at what else is asked.
std::vector<std::int32_t> floorWeights;

// Of a Latin letter the case and the diacritic do not count: docs/collation.md.
std::int32_t firstLevel(unsigned order) { return static_cast<std::int32_t>(order >> 14 == 1 ? order & 0x407F : order); }

void fillFloorWeights() {
  if (!floorWeights.empty()) return;
  for (unsigned unit = 0; unit < 65536; ++unit)
    floorWeights.push_back(firstLevel(KtUnicodeProps::Order(static_cast<unsigned short>(unit), 1)));
}

// Of such texts the length is not known: one may end where its page ends, nothing behind its end may be read, and so it
// cannot be read by words.
template <class Unit>
long textsFloor(unsigned char, unsigned char, const char* s1, unsigned char, unsigned char, const char* s2,
                unsigned short, short, unsigned char, int*) {
  const Unit* a = reinterpret_cast<const Unit*>(s1);
  const Unit* b = reinterpret_cast<const Unit*>(s2);
  for (; *a == *b && *a != 0; ++a) ++b;
  return floorWeights[*a] - floorWeights[*b];
}

// The strings' blocks hold 16 bytes or more: two words each.
template <class Unit>
long stringsFloor(const KtString& a, const KtString& b, short, unsigned short) {
  std::uint64_t x[2], y[2];
  std::memcpy(x, a.buffer, sizeof x);
  std::memcpy(y, b.buffer, sizeof y);
  const unsigned word = x[0] == y[0] ? 1 : 0;
  const unsigned bit =
      static_cast<unsigned>(std::countr_zero((x[word] ^ y[word]) | std::uint64_t{1} << 63)) & (64 - 8 * sizeof(Unit));
  return floorWeights[static_cast<Unit>(x[word] >> bit)] - floorWeights[static_cast<Unit>(y[word] >> bit)];
}

// Called by their addresses, as functions of another library are: with all arguments.
template <class Unit>
long floorOfTexts(const Names& names, std::size_t a, std::size_t b) {
  const KtString &x = names.texts[a], &y = names.texts[b];
  return opaque(&textsFloor<Unit>)(x.codeSet, x.language, x.buffer, y.codeSet, y.language, y.buffer, KtCMP_NO_WILDCARDS,
                                   -1, 255, nullptr);
}

template <class Unit>
long floorOfStrings(const Names& names, std::size_t a, std::size_t b) {
  return opaque(&stringsFloor<Unit>)(names.texts[a], names.texts[b], -1, KtCMP_NO_WILDCARDS);
}

template <CompareNames compare>
void comparePairs(Names& names) {
  long sum = 0;
  for (std::size_t i = 0; i < names.size(); i += 2) sum += sign(compare(names, i, i + 1));
  keep(sum);
}

// Every pair answers the opposite the other way round and distinct names never compare equal. The contestants' rules
// differ for blanks and punctuation, which decide last here and first in the peer: a tenth of the pairs may answer apart.
// The floor decides most pairs right.
template <CompareNames peer, CompareNames floor>
bool ordersAgree(Names& names) {
  std::size_t equal = 0, apart = 0, floorApart = 0;
  for (std::size_t i = 0; i < names.size(); i += 2) {
    const int order = sign(compareTexts(names, i, i + 1));
    if (order != sign(compareStrings(names, i, i + 1))) return false;
    if (order != -sign(compareTexts(names, i + 1, i))) return false;
    equal += order == 0;
    apart += order != sign(peer(names, i, i + 1));
    floorApart += order != sign(floor(names, i, i + 1));
  }
  const std::size_t pairs = names.size() / 2;
  return equal == 0 && apart * 10 < pairs && floorApart * 10 < pairs * 3;
}

unsigned long hashText(const KtString& text) { return HashString(text.codeSet, text.language, text.buffer, -1, 255); }

void hashTexts(Names& names) {
  unsigned long sum = 0;
  for (const KtString& text : names.texts) sum ^= hashText(text);
  keep(sum);
}

#if defined(KT_HAVE_ICU) && defined(KT_HAVE_XXHASH)
std::uint64_t icuHash(const std::u16string& name) {
  std::uint8_t key[512];
  const int length = ucol_getSortKey(collator(), icuText(name), icuLength(name), key, sizeof key);
  return XXH3_64bits(key, static_cast<std::size_t>(length));
}

void hashIcuKeys(Names& names) {
  std::uint64_t sum = 0;
  for (const std::u16string& name : names.utf16) sum ^= icuHash(name);
  keep(sum);
}
#endif

// Copies of a name hash alike, and different names nearly always apart, those of the peer too.
bool hashesTellNamesApart(Names& names) {
  std::set<unsigned long> hashes;
  for (const KtString& text : names.texts) {
    const KtString copy = text;
    if (hashText(copy) != hashText(text)) return false;
    hashes.insert(hashText(text));
  }
#if defined(KT_HAVE_ICU) && defined(KT_HAVE_XXHASH)
  std::set<std::uint64_t> peer;
  for (const std::u16string& name : names.utf16) peer.insert(icuHash(name));
  if (peer.size() * 100 <= names.size() * 98) return false;
#endif
  return hashes.size() * 100 > names.size() * 98;
}

#if defined(KT_HAVE_ICU)
template <CompareNames ours, CompareNames peer, CompareNames floor>
void addCompare(const std::string& name, unsigned char codeSet, const char* peerName) {
  using Pairs = Names (*)(unsigned char, std::size_t);
  for (const auto& [kind, pairs] : {std::pair<const char*, Pairs>{"near", nearPairs}, {"random", randomPairs}}) {
    const auto make = [codeSet, pairs = pairs] {
      fillFloorWeights();
      return std::make_unique<Names>(pairs(codeSet, kBatch));
    };
    Job<Names>(name + kind, 0, kBatch, 0, make, ordersAgree<peer, floor>)
        .contestant("kttm", comparePairs<ours>)
        .contestant(peerName, comparePairs<peer>)
        .contestant("floor", comparePairs<floor>);
  }
}
#endif

void addHash(const std::string& name, unsigned char codeSet) {
  const auto make = [codeSet] { return std::make_unique<Names>(cityNames(codeSet, kBatch)); };
  Job<Names> job(name, 0, kBatch, 0, make, hashesTellNamesApart);
  job.contestant("kttm", hashTexts);
#if defined(KT_HAVE_ICU) && defined(KT_HAVE_XXHASH)
  job.contestant("icu_key_xxh3", hashIcuKeys);
#endif
}

void addJobs() {
#if defined(KT_HAVE_ICU)
  using Byte = unsigned char;
  using Wide = char16_t;
  addCompare<compareTexts, icuCompareUtf8, floorOfTexts<Byte>>("compare_names_8_", kLatin1, "icu_utf8");
  addCompare<compareTexts, icuCompareUtf16, floorOfTexts<Wide>>("compare_names_16_", kUnicode, "icu");
  addCompare<compareStrings, icuCompareUtf8, floorOfStrings<Byte>>("compare_strings_8_", kLatin1, "icu_utf8");
  addCompare<compareStrings, icuCompareUtf16, floorOfStrings<Wide>>("compare_strings_16_", kUnicode, "icu");
#endif
  addHash("hash_names_8", kLatin1);
  addHash("hash_names_16", kUnicode);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
