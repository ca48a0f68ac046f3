// Appending one character a million times, in rounds that stay within the largest size of a string.
#include "bench_job.h"

#include <ktstring.h>

#include <cstring>

namespace kt::bench {
namespace {

constexpr int kRounds = 16, kRoundLength = 62500;

struct NoData {};

template <class Text, class Append>
void appendRounds(Append append) {
  for (int round = 0; round < kRounds; ++round) {
    Text text;
    for (int i = 0; i < kRoundLength; ++i) append(text, static_cast<char>('a' + i % 26));
    keep(text);
    benchmark::ClobberMemory();
  }
}

void appendKttm(NoData&) {
  appendRounds<KtString>([](KtString& text, char ch) { text += ch; });
}

void appendStandard(NoData&) {
  appendRounds<std::string>([](std::string& text, char ch) { text.push_back(ch); });
}

// One round makes the same text.
bool appendsAlike(NoData&) {
  KtString text;
  std::string expected;
  for (int i = 0; i < kRoundLength; ++i) {
    text += static_cast<char>('a' + i % 26);
    expected.push_back(static_cast<char>('a' + i % 26));
  }
  return expected == text.StrGet();
}

void addJobs() {
  Job<NoData>(
      "append_character", 0, kRounds * kRoundLength, 0, [] { return std::make_unique<NoData>(); }, appendsAlike)
      .contestant("kttm", appendKttm)
      .contestant("std_string", appendStandard);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
