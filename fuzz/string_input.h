// string_input.h - how the string harnesses read their input: a few chosen bytes first, runs behind them.
#ifndef KT_FUZZ_STRING_INPUT_H
#define KT_FUZZ_STRING_INPUT_H

#include "kttypops.h"
#include "ops/string_ops.h"

#include <ktbs.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace kt_fuzz {

using Bytes = std::vector<std::uint8_t>;

// A block of exactly the bytes: what is read behind them is found.
struct Block {
  // Not inlined: g++ 12 warns of writes into blocks that it knows to be empty.
  [[gnu::noinline]] explicit Block(const Bytes& bytes) : size(bytes.size()), data(new std::uint8_t[bytes.size()]) {
    std::copy(bytes.begin(), bytes.end(), data.get());
  }
  std::uint8_t* get() const { return data.get(); }

  unsigned long size;
  std::unique_ptr<std::uint8_t[]> data;
};

class Input {
public:
  Input(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

  std::uint8_t byte() { return at_ != end_ ? *at_++ : 0; }
  Bytes take(std::size_t count) {
    Bytes bytes;
    while (count-- != 0 && at_ != end_) bytes.push_back(*at_++);
    return bytes;
  }
  Bytes rest() { return take(static_cast<std::size_t>(end_ - at_)); }

private:
  const std::uint8_t* at_;
  const std::uint8_t* end_;
};

// A format without the memory bit: the input is no array of strings.
inline unsigned char diskFormat(std::uint8_t byte) { return byte & 0xF7; }

inline void require(bool holds) {
  if (!holds) std::abort();
}

// Strings loaded from what there is of a run: at most `count`, none behind a record that the run does not hold.
inline std::vector<KtString> loadHeld(const Bytes& run, unsigned char format, unsigned long count) {
  std::vector<KtString> strings;
  std::size_t from = 0;
  while (strings.size() < count && run.size() - from >= 2) {
    const kt::Record record = kt::recordAt(run.data() + from, format);
    if (record.size() > run.size() - from) break;
    const Block held(Bytes(run.begin() + static_cast<std::ptrdiff_t>(from),
                           run.begin() + static_cast<std::ptrdiff_t>(from + record.size())));
    strings.emplace_back();
    StringLoad(&strings.back(), held.get(), format, 1);
    from += record.size();
  }
  return strings;
}

}  // namespace kt_fuzz

#endif
