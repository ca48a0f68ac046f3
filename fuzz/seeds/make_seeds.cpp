// make_seeds folder: writes what the harnesses over all rows start from, one file a row and harness, made of the samples of
// the law suite. folder is fuzz/corpus; files of other names in it stay.
#include "laws/samples.h"
#include "string_bytes.h"

#include <ktbs.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

using kt_laws::Row;
using kt_laws::Sample;
using kt_test::Bytes;

constexpr unsigned char kMemory = 8;
constexpr unsigned char kBigEndian = 2;
constexpr unsigned char kIndexKey = 0x82;
constexpr std::size_t kMostValues = 8;
constexpr std::size_t kMostFirst = 255;

// An array of the samples from `first` on.
class Run {
public:
  Run(KtTypeMgr& manager, const Row& row, std::size_t first, std::size_t count)
      : manager_(manager), id_(row.id), count_(count), values_(manager.Create(row.id, count)) {
    for (std::size_t i = 0; i < count; ++i) make(row.samples[first + i], at(i));
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;
  ~Run() { manager_.Delete(id_, values_, count_); }

  void* at(std::size_t i) const { return static_cast<char*>(values_) + i * manager_.MemLenGet(id_, 1); }

  Bytes stored(unsigned char format) const {
    Bytes bytes(manager_.DiskLenGet(id_, values_, format & 15, count_, kMemory));
    manager_.Store(id_, bytes.data(), values_, format & 15, count_);
    return bytes;
  }
  // As a range of an index has it.
  Bytes key() const {
    const bool isString = manager_.IsFixed(id_) == 0 && id_ != KT_ID_KtBlob;
    if (!isString) return stored(kBigEndian);
    Bytes bytes(manager_.DiskLenGet(id_, values_, kIndexKey, count_, kMemory));
    bytes.resize(manager_.Translate(id_, bytes.data(), kIndexKey, bytes.size(), values_, kMemory, 0, count_));
    return bytes;
  }

private:
  void make(const Sample& sample, void* value) const {
    KtString text(sample.content.c_str());
    if (sample.source == Sample::kNull) manager_.SetNullValue(id_, value);
    if (sample.source == Sample::kBytes) manager_.Load(id_, value, kt_test::hex(sample.content).data(), kBigEndian, 1);
    if (sample.source == Sample::kScan) manager_.ScanFromKtString(id_, value, text, sample.format, 1);
    if (sample.source == Sample::kText) convert(text, value);
  }
  void convert(KtString& text, void* value) const {
    KtTypeConvertData holder(KT_ID_KtString, 1, &text, nullptr);
    void* converted = manager_.ConvertFrom(id_, &holder, 1);
    holder.typeManager = nullptr;
    manager_.AssignmentPtrGet(id_)(value, converted, 1, 0);
    manager_.Delete(id_, converted, 1);
  }

  KtTypeMgr& manager_;
  char id_;
  std::size_t count_;
  void* values_;
};

Bytes bytesOf(const char* text) { return Bytes(text, text + std::char_traits<char>::length(text)); }

Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// The seeds of one row, in the layout of row_case.h.
class Seeds {
public:
  Seeds(const std::filesystem::path& folder, const Row& row) : folder_(folder), row_(row), manager_(row.version) {}

  void write() const {
    const std::size_t count = std::min(row_.samples.size(), kMostValues);
    const Run run(manager_, row_, 0, count);
    const Run tail(manager_, row_, 1, count - 1);
    const Bytes stored = run.stored(kBigEndian);
    const Bytes format = bytesOf(row_.format != nullptr ? row_.format : "%L");
    put("row_load", "", kBigEndian, count, 0, {}, stored);
    put("row_compare", "", kBigEndian, count, KtCMP_NO_WILDCARDS, stored, tail.stored(kBigEndian));
    put("row_hash", "", kBigEndian, count, 0, {}, stored);
    put("row_translate", "_to_memory", kBigEndian, 1, kMemory, {}, stored);
    put("row_translate", "_to_disk", kMemory, count, kIndexKey, Bytes(kMostFirst), stored);
    put("row_print", "", kBigEndian, count, 0, format, stored);
    put("row_scan", "", kBigEndian, 1, 1, format, textOf(run.at(count - 1)));
    writeEstimate(stored);
  }

private:
  // Between the first sample and the last.
  void writeEstimate(const Bytes& stored) const {
    const Run low(manager_, row_, 0, 1);
    const Run high(manager_, row_, row_.samples.size() - 1, 1);
    Bytes range = low.key();
    range.resize(std::max(range.size(), high.key().size()));
    put("row_estimate", "", kBigEndian, 1, KtBOUND_EQUAL | KtBOUND_LESS, range + high.key(), stored);
  }

  Bytes textOf(void* value) const {
    KtString text;
    manager_.PrintToKtString(row_.id, text, value, row_.format, 1);
    return bytesOf(text.StrGet());
  }

  void put(const char* harness, const char* suffix, unsigned char format, std::size_t count, unsigned short options,
           Bytes first, const Bytes& second) const {
    first.resize(std::min(first.size(), kMostFirst));
    const auto row = static_cast<unsigned char>(row_.id | (row_.version == 12 ? 0 : 0x80));
    const Bytes head{row,
                     format,
                     static_cast<unsigned char>(count),
                     static_cast<unsigned char>(options),
                     static_cast<unsigned char>(options >> 8),
                     static_cast<unsigned char>(first.size())};
    const Bytes all = head + first + second;
    std::filesystem::create_directories(folder_ / harness);
    std::ofstream file(folder_ / harness / (std::string(row_.stem) + suffix), std::ios::binary);
    file.write(reinterpret_cast<const char*>(all.data()), static_cast<std::streamsize>(all.size()));
  }

  const std::filesystem::path& folder_;
  const Row& row_;
  mutable KtTypeMgr manager_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("make_seeds folder\n", stderr);
    return 2;
  }
  const std::filesystem::path folder(argv[1]);
  for (const Row& row : kt_laws::rows()) Seeds(folder, row).write();
}
