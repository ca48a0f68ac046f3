// Printing and scanning 64-bit integers in base 8, 10 and 16.
#include "bench_job.h"

#include <kttm.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <random>

namespace kt::bench {
namespace {

// A base, and how kttm names it.
struct Base {
  int base;
  const char* format;
  unsigned prefix;  // characters in front of the digits
};

constexpr Base kBases[] = {{8, "%o", 1}, {10, "%S", 0}, {16, "%x", 2}};

constexpr unsigned kLongLine = 60000;  // bytes after which the line of numbers starts anew

// Positive numbers of 1 to 63 bits. Printing goes on behind what the line holds, as `PrintToKtString` does.
struct Int64Data {
  explicit Int64Data(const Base& inBase) : base(inBase) {
    std::mt19937_64 random(11);
    for (int i = 0; i < kBatch; ++i) {
      values.emplace_back(static_cast<unsigned long long>(random() >> (1 + random() % 63)));
      KtString text;
      values.back().PrintToKtString(text, base.format);
      texts.push_back(text);
    }
    line.Fill(65000, 'x');
  }

  Base base;
  std::vector<KtInt64> values;
  std::vector<KtString> texts;
  KtString line;
  char room[80];
};

void printKttm(Int64Data& data) {
  const char* const format = opaque(data.base.format);
  for (const KtInt64& value : data.values) {
    if (data.line.bufferSize > kLongLine) data.line.Cut(0, 65535);
    value.PrintToKtString(data.line, format);
    keep(data.line.buffer);
  }
}

void printToChars(Int64Data& data) {
  const int base = opaque(data.base.base);
  for (const KtInt64& value : data.values) {
    std::to_chars(data.room, data.room + sizeof data.room, value.Value(), base);
    keep(data.room);
  }
}

void scanKttm(Int64Data& data) {
  const char* const format = opaque(data.base.format);
  for (const KtString& text : data.texts) {
    KtInt64 value;
    value.ScanFromKtString(text, format);
    keep(value);
  }
}

void scanStrtol(Int64Data& data) {
  const int base = opaque(data.base.base);
  for (const KtString& text : data.texts) keep(std::strtoll(text.buffer, nullptr, base));
}

// The digits alone: it knows neither prefixes nor what a base is called.
long long fromChars(const KtString& text, unsigned prefix, int base) {
  long long value = 0;
  std::from_chars(text.buffer + prefix, text.buffer + text.bufferSize - 1, value, base);
  return value;
}

void scanFromChars(Int64Data& data) {
  const int base = opaque(data.base.base);
  for (const KtString& text : data.texts) keep(fromChars(text, data.base.prefix, base));
}

bool printsAlike(Int64Data& data) {
  for (std::size_t i = 0; i < data.values.size(); ++i) {
    *std::to_chars(data.room, data.room + sizeof data.room, data.values[i].Value(), data.base.base).ptr = '\0';
    if (std::strcmp(data.texts[i].StrGet() + data.base.prefix, data.room) != 0) return false;
  }
  return true;
}

bool scansAlike(Int64Data& data) {
  for (std::size_t i = 0; i < data.values.size(); ++i) {
    KtInt64 value;
    value.ScanFromKtString(data.texts[i], data.base.format);
    const long long expected = std::strtoll(data.texts[i].buffer, nullptr, data.base.base);
    if (value != data.values[i] || value != expected) return false;
    if (fromChars(data.texts[i], data.base.prefix, data.base.base) != expected) return false;
  }
  return true;
}

void addJobs() {
  for (const Base& base : kBases) {
    const auto make = [base] { return std::make_unique<Int64Data>(base); };
    const std::string suffix = "int64_base" + std::to_string(base.base);
    Job<Int64Data>("print_" + suffix, 0, kBatch, 0, make, printsAlike)
        .contestant("kttm", printKttm)
        .contestant("to_chars", printToChars);
    Job<Int64Data>("scan_" + suffix, 0, kBatch, 0, make, scansAlike)
        .contestant("kttm", scanKttm)
        .contestant("strtol", scanStrtol)
        .contestant("from_chars", scanFromChars);
  }
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
