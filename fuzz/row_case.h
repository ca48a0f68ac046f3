// row_case.h - how the harnesses over all rows of the type table read their input, which is laid out alike for all:
//
//   0  1  row: bit 7 the legacy table, else the current one; the other bits modulo KtTYPE_COUNT the type id
//   1  1  format code
//   2  1  count of values, modulo 9
//   3  2  options, the low byte first
//   5  1  bytes of the first part; the second part is the rest
//
// Runs whose length an operation is not told are blocks of exactly the bytes that their values take.
#ifndef KT_FUZZ_ROW_CASE_H
#define KT_FUZZ_ROW_CASE_H

#include "string_input.h"

#include <kttm.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace kt_fuzz {

constexpr unsigned char kMemory = 8;

inline KtTypeMgr& managerOf(bool isLegacy) {
  static KtTypeMgr current(12);
  static KtTypeMgr legacy(11);
  return isLegacy ? legacy : current;
}

struct RowCase {
  RowCase(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::uint8_t row = input.byte();
    manager = &managerOf(row >= 128);
    id = static_cast<char>((row & 127) % KtTYPE_COUNT);
    if (row >= 128 && id >= KtLEGACY_TYPE_COUNT) id = KT_ID_illegal;
    format = input.byte();
    count = input.byte() % 9u;
    options = input.byte();
    options = static_cast<unsigned short>(options | input.byte() << 8);
    first = input.take(input.byte());
    second = input.rest();
    KtSetAssertHandler([](const char*, const char*, int) {});  // clipped texts and refused translations are expected
  }

  bool isFixed() const { return manager->IsFixed(id) != 0; }
  // The legacy table's own row, whose disk form knows neither code sets nor languages.
  bool isLegacyString() const { return id == KT_ID_KtString && manager == &managerOf(true); }
  bool isString() const { return !isFixed() && id != KT_ID_KtBlob; }
  unsigned long memLen() const { return manager->MemLenGet(id, 1); }
  // Bytes of one value of a type of fixed size: as stored, and as compared and hashed, where code 8 is the padded array.
  unsigned long storedLen(unsigned char form) const { return manager->DiskLenGet(id, nullptr, form, 1, form); }
  unsigned long runLen(unsigned char form) const { return (form & 15) == kMemory ? memLen() : storedLen(form); }
  // The format, for a type whose memory form is no bytes a disk form.
  unsigned char diskForm() const { return isFixed() ? format : diskFormat(format); }

  KtTypeMgr* manager;
  char id;
  unsigned char format;
  unsigned long count;
  unsigned short options;
  Bytes first, second;
};

// The values that the bytes hold whole, `count` of them at most.
struct Run {
  Block bytes;
  unsigned long count;
};

inline Bytes prefix(const Bytes& bytes, std::size_t size) {
  return Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(std::min(size, bytes.size())));
}

inline Run fixedRun(const RowCase& c, const Bytes& bytes, unsigned long size) {
  const unsigned long count = size == 0 ? c.count : std::min<unsigned long>(c.count, bytes.size() / size);
  return {Block(prefix(bytes, count * size)), count};
}

// Records up to one of another form than the first: an older record holds the whole run. Keys are all of one form.
inline Run stringRun(const RowCase& c, const Bytes& bytes, unsigned char form) {
  std::size_t held = 0;
  unsigned long count = 0;
  while (count < c.count && bytes.size() - held >= 2) {
    const kt::Record record = kt::recordAt(bytes.data() + held, form);
    if (record.size() > bytes.size() - held) break;
    const bool isOlder = (form & 0x80) == 0 && record.isOlder();
    if (isOlder && count != 0) break;
    held += record.size();
    count = isOlder ? c.count : count + 1;
    if (isOlder) break;
  }
  return {Block(prefix(bytes, held)), count};
}

// The header announces what is there at most.
inline Run blobRun(const RowCase& c, const Bytes& bytes, unsigned char form) {
  if (bytes.size() < 4) return {Block({}), 0};
  Bytes run = bytes;
  const bool isBig = (form & 15) == 2;
  std::uint32_t said = 0;
  for (unsigned i = 0; i < 4; ++i) said |= std::uint32_t{run[i]} << 8 * (isBig ? 3 - i : i);
  if (said != 0xFFFFFFFF && said > run.size() - 4) said = static_cast<std::uint32_t>(run.size() - 4);
  for (unsigned i = 0; i < 4; ++i) run[i] = static_cast<std::uint8_t>(said >> 8 * (isBig ? 3 - i : i));
  return {Block(prefix(run, said == 0xFFFFFFFF ? 4 : 4 + std::size_t{said})), c.count};
}

// Whether records are compared and hashed as what they load as: older texts count as code set 0 until they are loaded (but
// under the legacy table), and code set 255 has 8 bits for comparing and 16 for loading.
inline bool isReadAsLoaded(const RowCase& c, const Bytes& bytes, unsigned char form) {
  const Run run = stringRun(c, bytes, form);
  const std::uint8_t* at = run.bytes.get();
  if (run.count != 0 && kt::recordAt(at, form).isOlder()) return c.isLegacyString();
  for (unsigned long i = 0; i < run.count; ++i) {
    const kt::Record record = kt::recordAt(at, form);
    if (record.codeSet() == 255) return false;
    at += record.size();
  }
  return true;
}

// A run as Load takes it.
inline Run storedRun(const RowCase& c, const Bytes& bytes, unsigned char form) {
  if (c.isFixed()) return fixedRun(c, bytes, c.storedLen(form));
  return c.isString() ? stringRun(c, bytes, form) : blobRun(c, bytes, form);
}

// An array that the manager made.
class Values {
public:
  Values(const RowCase& c, unsigned long count) : Values(c, count, c.manager->DefaultValue(c.id, count, 0)) {}
  Values(const RowCase& c, unsigned long count, void* made) : case_(&c), count_(count), made_(made) {}
  Values(Values&& other) noexcept
      : case_(other.case_), count_(other.count_), made_(std::exchange(other.made_, nullptr)) {}
  Values& operator=(Values&&) = delete;
  ~Values() {
    if (made_ != nullptr) case_->manager->Delete(case_->id, made_, count_);
  }
  void* get() const { return made_; }
  void* at(unsigned long i) const { return static_cast<char*>(made_) + i * case_->memLen(); }
  unsigned long count() const { return count_; }

private:
  const RowCase* case_;
  unsigned long count_;
  void* made_;
};

inline Values load(const RowCase& c, const Run& run, unsigned char form) {
  Values values(c, run.count);
  if (run.count != 0) c.manager->Load(c.id, values.get(), run.bytes.get(), form, run.count);
  return values;
}

// Values of the bytes: under option 0x8000, where a type allows it, they are those in memory, else they are loaded.
inline Values valuesOf(const RowCase& c, const Bytes& bytes) {
  if (!c.isFixed() || (c.options & 0x8000) == 0) return load(c, storedRun(c, bytes, c.diskForm()), c.diskForm());
  const Run run = fixedRun(c, bytes, c.memLen());
  Values values(c, run.count);
  if (run.bytes.size != 0) std::memcpy(values.get(), run.bytes.get(), run.bytes.size);
  return values;
}

inline int signOf(long value) { return (value > 0) - (value < 0); }

// A zero-terminated text in a block of its own.
inline Block textBlock(Bytes bytes) {
  bytes.push_back(0);
  return Block(bytes);
}
inline const char* textIn(const Block& block) { return reinterpret_cast<const char*>(block.get()); }

}  // namespace kt_fuzz

#endif
