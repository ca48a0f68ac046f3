#include "name_data.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <numeric>
#include <random>
#include <set>

namespace kt::bench {
namespace {

// The first field of every line but the header; quoted where it holds a comma.
std::set<std::string> readNames() {
  std::ifstream file(KTTM_BENCH_DATA "/cities.csv");
  std::set<std::string> names;
  std::string line;
  for (std::getline(file, line); std::getline(file, line);)
    names.insert(line.front() == '"' ? line.substr(1, line.find('"', 1) - 1) : line.substr(0, line.find(',')));
  if (names.size() < 10000) {
    std::fprintf(stderr, "cannot read %s\n", KTTM_BENCH_DATA "/cities.csv");
    std::exit(1);
  }
  return names;
}

bool fits(const std::u16string& text, unsigned char codeSet) {
  const KtCodeSet& set = KtCodeSet::Get(codeSet);
  return std::all_of(text.begin(), text.end(), [&](char16_t unit) {
    return set.FromUnicode(static_cast<unsigned short>(unit)) != KtCodeSet::kSubstitute;
  });
}

KtString textOf(const std::u16string& utf16, unsigned char codeSet) {
  KtString text(units(utf16), static_cast<unsigned short>(utf16.size()));
  if (codeSet != kUnicode) text.MapToCodeSet(codeSet);
  text.SetLanguage(kLanguage);
  return text;
}

// New copies, so that texts that are used one after the other lie one behind the other.
Names makeNames(const std::vector<std::string>& utf8, unsigned char codeSet) {
  Names names;
  names.utf8 = utf8;
  for (const std::string& name : utf8) names.utf16.push_back(decoded(name));
  names.texts.reserve(utf8.size());
  for (const std::u16string& name : names.utf16) names.texts.push_back(textOf(name, codeSet));
  return names;
}

const std::vector<std::string>& shuffledNames(unsigned char codeSet) {
  static std::map<unsigned char, std::vector<std::string>> made;
  std::vector<std::string>& names = made[codeSet];
  if (!names.empty()) return names;
  for (const std::string& name : readNames()) {
    if (fits(decoded(name), codeSet)) names.push_back(name);
  }
  std::shuffle(names.begin(), names.end(), std::mt19937(7));
  return names;
}

}  // namespace

std::u16string decoded(const std::string& utf8) {
  std::u16string utf16;
  for (std::size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i++]);
    const int more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    unsigned int ch = more == 0 ? lead : lead & (0x3Fu >> more);
    for (int k = 0; k < more; ++k) ch = ch << 6 | (static_cast<unsigned char>(utf8[i++]) & 0x3F);
    if (ch >= 0x10000) {
      utf16 += static_cast<char16_t>(0xD7C0 + (ch >> 10));
      ch = 0xDC00 | (ch & 0x3FF);
    }
    utf16 += static_cast<char16_t>(ch);
  }
  return utf16;
}

Names cityNames(unsigned char codeSet, std::size_t count) {
  const std::vector<std::string>& all = shuffledNames(codeSet);
  const auto end = count == 0 || count > all.size() ? all.end() : all.begin() + static_cast<std::ptrdiff_t>(count);
  return makeNames({all.begin(), end}, codeSet);
}

Names nearPairs(unsigned char codeSet, std::size_t count) {
  const Names all = cityNames(codeSet);
  std::vector<std::size_t> sorted(all.size());
  std::iota(sorted.begin(), sorted.end(), std::size_t{0});
  std::sort(sorted.begin(), sorted.end(), [&](std::size_t a, std::size_t b) { return all.texts[a] < all.texts[b]; });
  std::mt19937 random(11);
  std::vector<std::string> pairs;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = random() % (sorted.size() - 1);
    const std::size_t swap = random() % 2;
    pairs.push_back(all.utf8[sorted[at + swap]]);
    pairs.push_back(all.utf8[sorted[at + 1 - swap]]);
  }
  return makeNames(pairs, codeSet);
}

Names randomPairs(unsigned char codeSet, std::size_t count) { return cityNames(codeSet, 2 * count); }

}  // namespace kt::bench
