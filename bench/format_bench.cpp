// Printing and scanning numbers by a format that is known at run time only.
#include "bench_job.h"

#include <kttm.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>

#if defined(KT_HAVE_FMT)
#include <fmt/format.h>
#endif

namespace kt::bench {
namespace {

// The format in each contestant's notation, and the type that takes it.
struct Format {
  const char* job;
  char typeId;
  const char* printf;
  const char* fmt;
  const char* scanf;
};

constexpr Format kDecimal = {"integer", KT_ID_int, "%d", "{:d}", "%d"};
constexpr Format kHex = {"integer_hex", KT_ID_unsigned, "%08x", "{:08x}", "%x"};
constexpr Format kShortest = {"double", KT_ID_double, "%.15g", "{:.15g}", "%lf"};
constexpr Format kFixed = {"double_fixed", KT_ID_double, "%.2f", "{:.2f}", "%lf"};

// Strings that own their blocks before the clock runs; texts are what the peers print.
template <class T>
struct FormatData {
  explicit FormatData(const Format& notation) : format(notation), target("0123456789012345678901234567890") {
    std::mt19937_64 random(5);
    for (int i = 0; i < kBatch; ++i) {
      if constexpr (std::is_integral_v<T>)
        values.push_back(static_cast<T>(static_cast<std::int64_t>(random()) >> (32 + random() % 30)));
      else
        values.push_back(static_cast<double>(static_cast<std::int64_t>(random()) >> 16) /
                         static_cast<double>(1 + random() % 1000000));
      char text[400];
      std::snprintf(text, sizeof text, format.printf, values.back());
      texts.emplace_back(text);
    }
  }

  Format format;
  KtString target;
  std::vector<T> values;
  std::vector<KtString> texts;
  KtTypeMgr manager{12};
  char room[400];
};

template <class T>
void printKttm(FormatData<T>& data) {
  const char* const format = opaque(data.format.printf);
  const char typeId = opaque(data.format.typeId);
  for (T& value : data.values) {
    data.manager.PrintToKtString(typeId, data.target, &value, format, 1);
    keep(data.target.buffer);
  }
}

template <class T>
void printSnprintf(FormatData<T>& data) {
  const char* const format = opaque(data.format.printf);
  for (const T value : data.values) {
    std::snprintf(data.room, sizeof data.room, format, value);
    keep(data.room);
  }
}

#if defined(KT_HAVE_FMT)
template <class T>
void printFmt(FormatData<T>& data) {
  const char* const format = opaque(data.format.fmt);
  for (const T value : data.values) {
    *fmt::format_to(data.room, fmt::runtime(format), value) = 0;
    keep(data.room);
  }
}
#endif

template <class T>
void scanKttm(FormatData<T>& data) {
  const char* const format = opaque(data.format.scanf);
  const char typeId = opaque(data.format.typeId);
  for (KtString& text : data.texts) {
    T value;
    data.manager.ScanFromKtString(typeId, &value, text, format, 1);
    keep(value);
  }
}

template <class T>
void scanSscanf(FormatData<T>& data) {
  const char* const format = opaque(data.format.scanf);
  for (KtString& text : data.texts) {
    T value;
    std::sscanf(text.buffer, format, &value);
    keep(value);
  }
}

// The same texts; the same values back.
template <class T>
bool printsAlike(FormatData<T>& data) {
  for (std::size_t i = 0; i < data.values.size(); ++i) {
    data.manager.PrintToKtString(data.format.typeId, data.target, &data.values[i], data.format.printf, 1);
    if (std::strcmp(data.target.StrGet(), data.texts[i].StrGet()) != 0) return false;
  }
#if defined(KT_HAVE_FMT)
  printFmt(data);  // leaves the last value's text
  if (std::strcmp(data.room, data.texts.back().StrGet()) != 0) return false;
#endif
  return true;
}

template <class T>
bool scansAlike(FormatData<T>& data) {
  for (KtString& text : data.texts) {
    T value{}, expected{};
    data.manager.ScanFromKtString(data.format.typeId, &value, text, data.format.scanf, 1);
    std::sscanf(text.buffer, data.format.scanf, &expected);
    if (std::memcmp(&value, &expected, sizeof value) != 0) return false;
  }
  return true;
}

template <class T>
void addFormat(const Format& format) {
  const auto make = [format] { return std::make_unique<FormatData<T>>(format); };
  Job<FormatData<T>> print(std::string("print_") + format.job, 0, kBatch, 0, make, printsAlike<T>);
  print.contestant("kttm", printKttm<T>).contestant("snprintf", printSnprintf<T>);
#if defined(KT_HAVE_FMT)
  print.contestant("fmt", printFmt<T>);
#endif
  Job<FormatData<T>>(std::string("scan_") + format.job, 0, kBatch, 0, make, scansAlike<T>)
      .contestant("kttm", scanKttm<T>)
      .contestant("sscanf", scanSscanf<T>);
}

void addJobs() {
  addFormat<std::int32_t>(kDecimal);
  addFormat<std::uint32_t>(kHex);
  addFormat<double>(kShortest);
  addFormat<double>(kFixed);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
