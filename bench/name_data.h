// name_data.h - names of cities: in UTF-8, in UTF-16 and as strings, and pairs of them.
#ifndef BENCH_NAME_DATA_H
#define BENCH_NAME_DATA_H

#include <ktstring.h>

#include <string>
#include <vector>

namespace kt::bench {

constexpr unsigned char kLatin1 = 1;
constexpr unsigned char kUnicode = 253;
constexpr unsigned char kLanguage = 1;

// Names in every form that a contestant may want them in, each form in memory of its own, in the same order.
struct Names {
  std::vector<std::string> utf8;
  std::vector<std::u16string> utf16;
  std::vector<KtString> texts;

  std::size_t size() const { return texts.size(); }
};

// The names of examples/data/cities.csv that code set `codeSet` has all characters for, each once, in an order shuffled
// by a fixed seed: the first `count` of them (0: all).
Names cityNames(unsigned char codeSet, std::size_t count = 0);

// Pairs, as names 0 and 1, 2 and 3, ...: neighbours in sorted order, as a search in an index compares them, in random
// order and either way round; and random pairs.
Names nearPairs(unsigned char codeSet, std::size_t count);
Names randomPairs(unsigned char codeSet, std::size_t count);

// UTF-8, well formed, as UTF-16: slow and obvious.
std::u16string decoded(const std::string& utf8);

inline const unsigned short* units(const std::u16string& text) {
  return reinterpret_cast<const unsigned short*>(text.c_str());
}

}  // namespace kt::bench

#endif
