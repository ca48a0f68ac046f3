// string_estimates.h - the string rows, index keys, ranges and bounds, and names of cities, for the tests of string estimates.
#ifndef KT_TESTS_STRING_ESTIMATES_H
#define KT_TESTS_STRING_ESTIMATES_H

#include "ktmbs.h"
#include "kttypops.h"
#include "ops/string_ops.h"
#include "string_bytes.h"

#include <algorithm>
#include <fstream>
#include <random>

namespace kt_test {

constexpr unsigned char kMemory = 8;
constexpr unsigned char kKeys = 0x82;  // index keys with big-endian lengths
constexpr unsigned short kEqual = KtBOUND_EQUAL, kLess = KtBOUND_LESS, kGreater = KtBOUND_GREATER;

struct Row {
  const char* name;
  KtTypeCmpFunc compare;
  KtEvalAndBoundFunc evalAndBound;
  KtTranslateFunc translate;
  bool hasWildcards;
};

template <class Ops>
constexpr Row rowOf(const char* name, bool hasWildcards) {
  return {name, Ops::compare, Ops::evalAndBound, Ops::translate, hasWildcards};
}

constexpr Row kString = rowOf<kt::StringOps>("KtString", true);
constexpr Row kLegacy = rowOf<kt::LegacyStringOps>("legacy string", true);
constexpr Row kIString = rowOf<kt::IStringOps>("KtIString", false);
constexpr Row kCaseIString = rowOf<kt::CaseIStringOps>("KtCaseIString", false);
constexpr Row kRows[] = {kString, kLegacy, kIString, kCaseIString};

struct Bounds : KtIdxBounds {
  Bounds() = default;
  Bounds(const Bounds&) = delete;
  ~Bounds() { KtFreeIdxBounds(this); }
  Bytes low() const { return lowKey != nullptr ? Bytes(lowKey, lowKey + lowKeyLength) : Bytes(); }
  Bytes high() const { return highKey != nullptr ? Bytes(highKey, highKey + highKeyLength) : Bytes(); }
};

inline Bytes keyOf(const Row& row, KtString s, unsigned char format = kKeys) {
  Bytes key(KtINDEX_MAX_KEYLEN);
  key.resize(row.translate(key.data(), format, key.size(), &s, kMemory, 0, 1));
  return key;
}

// A range over exact blocks, so that a read behind a key is found.
struct Range : KtIdxBounds {
  Range(const Bytes& low, const Bytes& high) : lowBlock(low), highBlock(high) {
    lowKey = lowBlock.get();
    highKey = highBlock.get();
    lowKeyLength = static_cast<unsigned char>(low.size());
    highKeyLength = static_cast<unsigned char>(high.size());
  }
  Block lowBlock, highBlock;
};

inline Bytes recordOf(const KtString& s, unsigned char format) {
  Bytes record(StringSizeGet(&s, kMemory, format, 1));
  StringStore(record.data(), &s, format, 1);
  return record;
}

// By way of a record, so that keys are big-endian on every host.
inline float estimateRecord(const Row& row, KtIdxBounds* range, unsigned short flags, const KtString& key,
                            KtIdxBounds* result = nullptr, unsigned char format = 2) {
  Block record(recordOf(key, format));
  return row.evalAndBound(range, flags, record.get(), format, 1, result);
}

inline KtString text(const char* latin1, unsigned char codeSet = 1, unsigned char language = 1) {
  std::u16string units;
  for (const char* at = latin1; *at != 0; ++at) units += static_cast<unsigned char>(*at);
  return makeString(units, codeSet, language);
}

// --- names of cities ----------------------------------------------------------------------------------------------

inline std::u16string unitsOf(const KtString& s) {
  std::u16string units;
  const unsigned long width = KtCodeSet::CharSizeOf(s.codeSet);
  for (unsigned long i = 0; s.buffer != nullptr && i + 1 < s.bufferSize / width; ++i)
    units += static_cast<char16_t>(KtCodeSet::Get(s.codeSet).ToUnicode(kt::unitAt(s.buffer, i, width)));
  return units;
}

// The names of the largest cities, as 16-bit units.
inline const std::vector<std::u16string>& cityNames() {
  static const std::vector<std::u16string> names = [] {
    std::vector<std::u16string> read;
    std::ifstream file(KT_TESTS_DIR "/../examples/data/cities.csv");
    std::string line;
    for (std::getline(file, line); std::getline(file, line);) {
      const bool quoted = line.front() == '"';
      const std::string name = quoted ? line.substr(1, line.find('"', 1) - 1) : line.substr(0, line.find(','));
      KtString s;
      KtMBS2KtString(name.c_str(), s, static_cast<long>(name.size()));
      read.push_back(unitsOf(s));
    }
    return read;
  }();
  return names;
}

inline bool fits(const std::u16string& units, unsigned char codeSet) {
  if (codeSet == 253) return true;
  return std::all_of(units.begin(), units.end(), [codeSet](char16_t unit) {
    const bool isPlain = unit < 0x80;
    return isPlain || (codeSet != 0 && KtCodeSet::Get(codeSet).FromUnicode(unit) != KtCodeSet::kSubstitute);
  });
}

struct Texts {
  unsigned char codeSet;
  unsigned char language;
};
constexpr Texts kTexts[] = {{0, 1}, {1, 1}, {1, 5}, {253, 6}, {253, 20}};

// Names, the same in capitals, long, and with spaces and signs put in; the empty string, and a null.
inline std::vector<KtString> sampleOf(const Texts& texts, std::size_t count) {
  std::vector<KtString> sample;
  std::mt19937 random(20240229);
  while (sample.size() < count) {
    std::u16string units = cityNames()[random() % cityNames().size()];
    if (!fits(units, texts.codeSet)) continue;
    if (random() % 4 == 0)
      for (char16_t& unit : units) unit = unit >= 'a' && unit <= 'z' ? static_cast<char16_t>(unit - 32) : unit;
    if (random() % 4 == 0) units.insert(random() % (units.size() + 1), random() % 2 == 0 ? u" -" : u"- ");
    if (texts.codeSet == 253 && random() % 6 == 0)  // characters with several orders, of other scripts, ideographs
      units.insert(random() % (units.size() + 1), 1, u"\uAC00\uFFFE\u7FFF\u0416\u4E2D\u1EBF"[random() % 6]);
    if (texts.codeSet == 253 && random() % 8 == 0) units += u"\u0416\u4E2D";  // an ideograph behind an alphabet
    if (random() % 6 == 0) {
      // Alike in far more than an index key holds, but for what tells them apart by case or at the very end.
      std::u16string beginning = random() % 2 == 0 ? u"Saint Thomas " : u"SAINT Thomas- ";
      for (int i = 0; i < 5; ++i) beginning += u"upon the Lake, ";
      units = random() % 3 == 0 ? beginning : beginning + units;
    }
    sample.push_back(makeString(units, texts.codeSet, texts.language));
  }
  sample.emplace_back(texts.codeSet, texts.language);
  sample.emplace_back().SetNullValue();
  return sample;
}

inline int compareMemory(const Row& row, const KtString& a, const KtString& b) {
  int status = 0;
  return static_cast<int>(
      row.compare(kMemory, 0, const_cast<KtString*>(&a), 0, const_cast<KtString*>(&b), 0, 1, status));
}

// Sorted as the row sorts, with the keys of the first and the last.
struct Index {
  Index(const Row& row, std::vector<KtString> given) : texts(std::move(given)) {
    std::stable_sort(texts.begin(), texts.end(), [&row](const KtString& a, const KtString& b) {
      int status = 0;
      return row.compare(kMemory, 0, const_cast<KtString*>(&a), 0, const_cast<KtString*>(&b), KtCMP_NO_WILDCARDS, 1,
                         status) < 0;
    });
    range = std::make_unique<Range>(keyOf(row, texts.front()), keyOf(row, texts.back()));
  }
  std::vector<KtString> texts;
  std::unique_ptr<Range> range;
};

}  // namespace kt_test

#endif
