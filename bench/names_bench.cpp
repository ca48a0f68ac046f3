// Comparing and hashing names by collation, beside ICU.
#include "bench_job.h"
#include "name_data.h"

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

template <CompareNames compare>
void comparePairs(Names& names) {
  long sum = 0;
  for (std::size_t i = 0; i < names.size(); i += 2) sum += sign(compare(names, i, i + 1));
  keep(sum);
}

// Every pair answers the opposite the other way round and distinct names never compare equal. The contestants' rules
// differ for blanks and punctuation, which decide last here and first in the peer: a tenth of the pairs may answer apart.
template <CompareNames peer>
bool ordersAgree(Names& names) {
  std::size_t equal = 0, apart = 0;
  for (std::size_t i = 0; i < names.size(); i += 2) {
    const int order = sign(compareTexts(names, i, i + 1));
    if (order != sign(compareStrings(names, i, i + 1))) return false;
    if (order != -sign(compareTexts(names, i + 1, i))) return false;
    equal += order == 0;
    apart += order != sign(peer(names, i, i + 1));
  }
  return equal == 0 && apart * 20 < names.size();
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

// Copies of a name hash alike, and different names nearly always apart.
bool hashesTellNamesApart(Names& names) {
  std::set<unsigned long> hashes;
  for (const KtString& text : names.texts) {
    const KtString copy = text;
    if (hashText(copy) != hashText(text)) return false;
    hashes.insert(hashText(text));
  }
  return hashes.size() * 100 > names.size() * 98;
}

#if defined(KT_HAVE_ICU)
template <CompareNames ours, CompareNames peer>
void addCompare(const std::string& name, unsigned char codeSet, const char* peerName) {
  using Pairs = Names (*)(unsigned char, std::size_t);
  for (const auto& [kind, pairs] : {std::pair<const char*, Pairs>{"near", nearPairs}, {"random", randomPairs}}) {
    const auto make = [codeSet, pairs = pairs] { return std::make_unique<Names>(pairs(codeSet, kBatch)); };
    Job<Names>(name + kind, 0, kBatch, 0, make, ordersAgree<peer>)
        .contestant("kttm", comparePairs<ours>)
        .contestant(peerName, comparePairs<peer>);
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
  addCompare<compareTexts, icuCompareUtf8>("compare_names_8_", kLatin1, "icu_utf8");
  addCompare<compareTexts, icuCompareUtf16>("compare_names_16_", kUnicode, "icu");
  addCompare<compareStrings, icuCompareUtf8>("compare_strings_8_", kLatin1, "icu_utf8");
  addCompare<compareStrings, icuCompareUtf16>("compare_strings_16_", kUnicode, "icu");
#endif
  addHash("hash_names_8", kLatin1);
  addHash("hash_names_16", kUnicode);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
