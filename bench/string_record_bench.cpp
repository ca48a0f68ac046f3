// Storing and loading records of names, beside standard strings behind a length prefix.
#include "bench_job.h"
#include "name_data.h"

#include <kttypops.h>

#include <cstdint>
#include <cstring>

namespace kt::bench {
namespace {

constexpr unsigned char kLittleEndian = 0;

struct RecordData {
  std::vector<KtString> texts, loaded;
  std::vector<std::string> standard, standardLoaded;
  std::vector<char> records, prefixed;
};

void storeRecords(RecordData& data) {
  StringStore(data.records.data(), data.texts.data(), opaque(kLittleEndian), opaque(data.texts.size()));
}

void storePrefixed(RecordData& data) {
  char* out = data.prefixed.data();
  for (const std::string& text : data.standard) {
    const auto length = static_cast<std::uint16_t>(text.size());
    std::memcpy(out, &length, sizeof length);
    std::memcpy(out + sizeof length, text.data(), length);
    out += sizeof length + length;
  }
}

void loadRecords(RecordData& data) {
  StringLoad(data.loaded.data(), data.records.data(), opaque(kLittleEndian), opaque(data.loaded.size()));
}

void loadPrefixed(RecordData& data) {
  const char* in = data.prefixed.data();
  for (std::string& text : data.standardLoaded) {
    std::uint16_t length;
    std::memcpy(&length, in, sizeof length);
    text.assign(in + sizeof length, length);
    in += sizeof length + length;
  }
}

// Both sides get every text back.
bool roundTrips(RecordData& data) {
  storeRecords(data), storePrefixed(data), loadRecords(data), loadPrefixed(data);
  if (data.standardLoaded != data.standard) return false;
  for (std::size_t i = 0; i < data.texts.size(); ++i)
    if (data.standard[i] != data.loaded[i].StrGet()) return false;
  return true;
}

std::unique_ptr<RecordData> records() {
  auto data = std::make_unique<RecordData>();
  data->texts = cityNames(kLatin1, kBatch).texts;
  for (const KtString& text : data->texts) data->standard.emplace_back(text.StrGet());
  data->loaded.resize(kBatch);
  data->standardLoaded.resize(kBatch);
  data->records.resize(StringSizeGet(data->texts.data(), 8, kLittleEndian, kBatch));
  data->prefixed.resize(data->records.size());
  return data;
}

void addJobs() {
  Job<RecordData>("store_strings", 0, kBatch, 0, records, roundTrips)
      .contestant("kttm", storeRecords)
      .contestant("std_string", storePrefixed);
  Job<RecordData>("load_strings", 0, kBatch, 0, records, roundTrips)
      .contestant("kttm", loadRecords)
      .contestant("std_string", loadPrefixed);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
