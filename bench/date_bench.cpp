// Dates: day numbers, text by a format, storing swapped, and hashing.
#include "bench_job.h"
#include "run_data.h"

#include <kttm.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#if defined(KT_HAVE_DATE)
#include <date/date.h>
#endif
#if defined(KT_HAVE_XXHASH)
#define XXH_INLINE_ALL
#include <xxhash.h>
#endif

namespace kt::bench {
namespace {

constexpr unsigned char kSwapped = std::endian::native == std::endian::little ? 2 : 0;
constexpr char kFormat[] = "%Y-%m-%d %H:%M:%S";
constexpr long kFirstDay = 2415021;  // 1900-01-01
constexpr int kDays = 73000;

// Moments of two centuries, as each contestant holds them.
struct DateData {
  explicit DateData(long count = kBatch) {
    std::mt19937 random(8);
    for (long i = 0; i < count; ++i) {
      numbers.push_back(kFirstDay + static_cast<long>(random() % kDays));
      dates.emplace_back(numbers.back());
      moments.emplace_back(dates.back(), KtTime(static_cast<long>(random() % 86400)));
      const KtDateTime& m = moments.back();
      std::tm tm = {};
      tm.tm_year = m.date.year - 1900;
      tm.tm_mon = m.date.month - 1;
      tm.tm_mday = m.date.day;
      tm.tm_hour = m.time.hour;
      tm.tm_min = m.time.minute;
      tm.tm_sec = m.time.second;
      tms.push_back(tm);
    }
  }

  std::vector<long> numbers;
  std::vector<KtDate> dates;
  std::vector<KtDateTime> moments;
  std::vector<std::tm> tms;
  std::vector<KtString> texts;
  KtString target{"0123456789012345678901234567890"};
  KtTypeMgr manager{12};
  char room[64];
  std::vector<unsigned char> disk;
};

// --- day numbers ------------------------------------------------------------------------------------------------------

void numbersKttm(DateData& data) {
  for (const KtDate& date : data.dates) {
    long number = date.dayabs();
    benchmark::DoNotOptimize(number);
  }
}

void datesKttm(DateData& data) {
  for (const long number : data.numbers) {
    KtDate date(number);
    benchmark::DoNotOptimize(date);
  }
}

#if defined(KT_HAVE_DATE)
date::year_month_day civil(const KtDate& d) {
  return date::year(d.year) / static_cast<unsigned>(d.month) / static_cast<unsigned>(d.day);
}

constexpr long kEpoch = 2440588;  // 1970-01-01

// The dates lie in memory alike: year in 16 bits, month and day in 8.
void numbersDate(DateData& data) {
  for (const KtDate& d : data.dates) {
    long number = date::sys_days(civil(d)).time_since_epoch().count();
    benchmark::DoNotOptimize(number);
  }
}

void datesDate(DateData& data) {
  for (const long number : data.numbers) {
    date::year_month_day ymd(date::sys_days(date::days(static_cast<int>(number - kEpoch))));
    benchmark::DoNotOptimize(ymd);
  }
}
#endif

bool countsAlike(DateData& data) {
  for (std::size_t i = 0; i < data.dates.size(); ++i) {
    if (data.dates[i].dayabs() != data.numbers[i]) return false;
#if defined(KT_HAVE_DATE)
    if (date::sys_days(civil(data.dates[i])).time_since_epoch().count() + kEpoch != data.numbers[i]) return false;
#endif
  }
  return true;
}

// --- text -------------------------------------------------------------------------------------------------------------

void printKttm(DateData& data) {
  const char* const format = opaque(&kFormat[0]);
  const char typeId = opaque(KT_ID_KtDateTime);
  for (KtDateTime& moment : data.moments) {
    data.target = "";
    data.manager.PrintToKtString(typeId, data.target, &moment, format, 1);
    benchmark::DoNotOptimize(data.target.buffer);
  }
}

void printStrftime(DateData& data) {
  const char* const format = opaque(&kFormat[0]);
  for (const std::tm& tm : data.tms) {
    std::strftime(data.room, sizeof data.room, format, &tm);
    benchmark::DoNotOptimize(data.room);
  }
}

void scanKttm(DateData& data) {
  const char* const format = opaque(&kFormat[0]);
  const char typeId = opaque(KT_ID_KtDateTime);
  KtDateTime moment = KtDateTime::Null();
  for (KtString& text : data.texts) {
    data.manager.ScanFromKtString(typeId, &moment, text, format, 1);
    benchmark::DoNotOptimize(moment);
  }
}

void scanStrptime(DateData& data) {
  const char* const format = opaque(&kFormat[0]);
  std::tm tm = {};
  for (const KtString& text : data.texts) {
    strptime(text.buffer, format, &tm);
    benchmark::DoNotOptimize(tm);
  }
}

bool printsAlike(DateData& data) {
  for (std::size_t i = 0; i < data.moments.size(); ++i) {
    std::strftime(data.room, sizeof data.room, kFormat, &data.tms[i]);
    data.target = "";
    data.manager.PrintToKtString(KT_ID_KtDateTime, data.target, &data.moments[i], kFormat, 1);
    if (std::strcmp(data.target.StrGet(), data.room) != 0) return false;
    data.texts.emplace_back(data.room);
  }
  return true;
}

bool scansAlike(DateData& data) {
  if (!printsAlike(data)) return false;
  for (std::size_t i = 0; i < data.moments.size(); ++i) {
    KtDateTime moment = KtDateTime::Null();
    data.manager.ScanFromKtString(KT_ID_KtDateTime, &moment, data.texts[i], kFormat, 1);
    std::tm tm = {};
    strptime(data.texts[i].buffer, kFormat, &tm);
    if (!(moment == data.moments[i]) || tm.tm_sec != moment.time.second || tm.tm_mon + 1 != moment.date.month)
      return false;
  }
  return true;
}

// --- runs -------------------------------------------------------------------------------------------------------------

void storeKttm(DateData& data) {
  const char typeId = opaque(KT_ID_KtDate);
  data.manager.Store(typeId, data.disk.data(), data.dates.data(), opaque(kSwapped), opaque(data.dates.size()));
}

// As one writes it: each field by its own conversion.
void storeFieldByField(DateData& data) {
  unsigned char* to = data.disk.data();
  const unsigned char format = opaque(kSwapped);
  for (const KtDate& date : data.dates) {
    to += ShortStore(to, &date.year, format, 1);
    *to++ = static_cast<unsigned char>(date.month);
    *to++ = static_cast<unsigned char>(date.day);
  }
}

bool storesAlike(DateData& data) {
  data.disk.resize(4 * data.dates.size());
  storeFieldByField(data);
  const std::vector<unsigned char> expected = data.disk;
  storeKttm(data);
  return data.disk == expected;
}

void hashKttm(DateData& data) {
  int status;
  benchmark::DoNotOptimize(
      data.manager.Hash(opaque(KT_ID_KtDate), 0, opaque(data.dates.data()), data.dates.size(), 8, status));
}

#if defined(KT_HAVE_XXHASH)
void hashXxh3(DateData& data) {
  benchmark::DoNotOptimize(XXH3_64bits(opaque(data.dates.data()), opaque(data.dates.size() * sizeof(KtDate))));
}
#endif

void readDates(DateData& data) {
  std::uint32_t sum = 0;
  const KtDate* dates = opaque(data.dates.data());
  for (std::size_t i = 0, n = opaque(data.dates.size()); i < n; ++i) {
    std::uint32_t word;
    std::memcpy(&word, &dates[i], sizeof word);
    sum += word;
  }
  benchmark::DoNotOptimize(sum);
}

bool hashesTellApart(DateData& data) {
  int status;
  const unsigned long all = data.manager.Hash(KT_ID_KtDate, 0, data.dates.data(), data.dates.size(), 8, status);
  return all != data.manager.Hash(KT_ID_KtDate, 0, data.dates.data(), data.dates.size() - 1, 8, status);
}

void readWords(DateData& data) {
  benchmark::DoNotOptimize(readBytes(opaque(data.dates.data()), opaque(data.dates.size() * sizeof(KtDate))));
}

Job<DateData> job(const char* name, bool (*check)(DateData&)) {
  return {name, 0, kBatch, 0, [] { return std::make_unique<DateData>(); }, check};
}

Job<DateData> runJob(const char* name, long size, bool (*check)(DateData&)) {
  return {
      name, size, size, size * static_cast<long>(sizeof(KtDate)), [size] { return std::make_unique<DateData>(size); },
      check};
}

void addJobs() {
  job("print_date", printsAlike).contestant("kttm", printKttm).contestant("strftime", printStrftime);
  job("scan_date", scansAlike).contestant("kttm", scanKttm).contestant("strptime", scanStrptime);
  Job<DateData> number = job("day_number_of_date", countsAlike);
  Job<DateData> date = job("date_of_day_number", countsAlike);
  number.contestant("kttm", numbersKttm);
  date.contestant("kttm", datesKttm);
#if defined(KT_HAVE_DATE)
  number.contestant("date", numbersDate);
  date.contestant("date", datesDate);
#endif
  runJob("store_dates_swapped", 4096, storesAlike)
      .contestant("kttm", storeKttm)
      .contestant("field_by_field", storeFieldByField);
  for (const long size : {4096L, 1L << 20}) {
    Job<DateData> hash = runJob("hash_dates", size, hashesTellApart);
    hash.contestant("kttm", hashKttm).contestant("plain_read", readDates).contestant("floor", readWords);
#if defined(KT_HAVE_XXHASH)
    hash.contestant("xxh3", hashXxh3);
#endif
  }
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
