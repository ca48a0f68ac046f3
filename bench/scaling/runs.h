// runs.h - the runs that operations are measured with.
#ifndef BENCH_SCALING_RUNS_H
#define BENCH_SCALING_RUNS_H

#include <kttm.h>

#include <cstddef>
#include <iterator>
#include <memory>

namespace kt::scaling {

// The manager, its older conversions included.
class Manager : public KtTypeMgr {
public:
  using KtTypeMgr::ConvertFromKtStringOld;
  using KtTypeMgr::ConvertToKtStringOld;
  using KtTypeMgr::KtTypeMgr;
};

constexpr unsigned char kMemory = 8;
constexpr unsigned char kForms[] = {2, 0, 1, 4};  // on disk: big-endian, little-endian, as in memory, with short `int`s
constexpr unsigned char kDisk = kForms[0];
constexpr unsigned char kKey = 0x82;        // strings in indexes are keys; other types do not read the bit
constexpr unsigned long kTextSize = 65000;  // characters that a text can hold, separators behind all

// Zeroed bytes at a chosen place of a page. What an operation reads and what it writes lie at different ones: stores right
// before a load, whole pages apart, would make the processor wait.
class Block {
public:
  enum Place { kValues = 0, kRecords = 1024, kValueRoom = 2048, kRecordRoom = 3072 };

  Block() = default;
  Block(std::size_t size, Place place);
  char* data() const { return data_; }
  std::size_t size() const { return size_; }

private:
  std::unique_ptr<char[]> bytes_;
  char* data_ = nullptr;
  std::size_t size_ = 0;
};

// Equal runs in memory and on disk, one that differs in its last value, and room for results.
class Runs {
public:
  Runs(Manager& manager, char id, unsigned long count);
  Runs(const Runs&) = delete;
  Runs& operator=(const Runs&) = delete;
  ~Runs();

  unsigned long count() const { return count_; }

private:
  void assign(const Block& run, void* value) const;
  void makeValues();
  Block stored(const Block& run, unsigned char form) const;

  Manager& manager_;
  char id_;
  unsigned long count_;

public:
  Block a, b, end, target, raw;  // end: its last value is another; raw: room without values
  Block disk[std::size(kForms)], otherDisk, endDisk, room, keys, oneKey;
  std::unique_ptr<KtTypeConvertData> texts;
  KtString* oldText;  // the texts in one; null where they do not fit
  KtString line;      // a character a value, as many as fit
};

}  // namespace kt::scaling

#endif
