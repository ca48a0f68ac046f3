#include "decode_run.h"

#include "error.h"

#include <algorithm>

namespace tool {
namespace {

// Where a record's own length word is wrong, loading it may look as far as that word reaches: 65,535 bytes. Zeros behind
// the bytes make sure that this is inside.
constexpr unsigned long kPadding = 65536 + 8;

Bytes padded(const Bytes& bytes, unsigned long at, unsigned long size) {
  Bytes copy(size + kPadding);
  std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size, copy.begin());
  return copy;
}

std::string position(unsigned long at) { return " at byte " + std::to_string(at); }

}  // namespace

RunDecoder::RunDecoder(const Type& type, unsigned char format) : type_(type), format_(format) { requireValues(type_); }

Values RunDecoder::load(const unsigned char* bytes, unsigned long count) const {
  Values values(type_, count);
  // Loading reads only, whatever its signature says.
  manager().Load(type_.id, values.at(0), const_cast<unsigned char*>(bytes), format_, count);
  return values;
}

unsigned long RunDecoder::valueSize() const {
  const Values sample(type_, 1);
  return std::max(storedSize(type_.id, sample.at(0), format_, 1), 1UL);
}

void RunDecoder::decodeAll(const Bytes& bytes, const std::function<void(const Values&)>& take) const {
  if (type_.fixed) {
    const unsigned long size = valueSize();
    if (bytes.size() % size != 0) {
      throw Error(std::to_string(bytes.size()) + " bytes are no whole number of " + type_.name + " values of " +
                  std::to_string(size) + " bytes");
    }
    if (!bytes.empty()) take(load(bytes.data(), bytes.size() / size));
    return;
  }
  for (unsigned long at = 0; at < bytes.size();) {
    const unsigned long size = runSize(bytes, at, 1);
    take(loadRun(bytes, at, size));
    at += size;
  }
}

Values RunDecoder::decodeFirst(const Bytes& bytes, unsigned long count) const {
  if (!type_.fixed) return load(padded(bytes, 0, runSize(bytes, 0, count)).data(), count);
  const unsigned long held = bytes.size() / valueSize();
  if (held < count) {
    throw Error("the " + std::to_string(bytes.size()) + " bytes hold " + std::to_string(held) + " values of " +
                type_.name + ", not " + std::to_string(count));
  }
  return load(bytes.data(), count);
}

// The bytes that the run at `at` takes, told in two ways that must agree: the walk that knows the end of the bytes, and
// the size operation on a padded copy.
unsigned long RunDecoder::runSize(const Bytes& bytes, unsigned long at, unsigned long count) const {
  const unsigned long left = bytes.size() - at;
  // Every value takes at least a byte, so that an absurd count stops here.
  MemFile file(bytes.data() + at, left);
  const unsigned long size = count > left ? 0 : manager().DiskLenGetFromMemFile(type_.id, &file, format_, count);
  if (size > 0 && size <= left) {
    Bytes copy = padded(bytes, at, size);
    if (manager().DiskLenGet(type_.id, copy.data(), format_, count, format_) == size) return size;
  }
  throw Error("no whole " + type_.name + (count == 1 ? " record" : " run of " + std::to_string(count) + " values") +
              position(at) + ", with " + std::to_string(left) + " bytes left");
}

// The values of a run whose count is not told: as many as take exactly its bytes when they are stored again. More values
// never take fewer bytes, so the count is found by halving.
Values RunDecoder::loadRun(const Bytes& bytes, unsigned long at, unsigned long size) const {
  const Bytes copy = padded(bytes, at, size);
  const auto storedAgain = [&](unsigned long count) {
    const Values values = load(copy.data(), count);
    return storedSize(type_.id, values.at(0), format_, count);
  };
  unsigned long high = 1;
  while (storedAgain(high) < size && high < size) high *= 2;
  unsigned long low = high / 2;  // takes too few bytes
  while (high - low > 1) {
    const unsigned long middle = low + (high - low) / 2;
    (storedAgain(middle) < size ? low : high) = middle;
  }
  if (storedAgain(high) == size) return load(copy.data(), high);
  throw Error("the record" + position(at) + " does not hold the values that its length tells; try --count");
}

}  // namespace tool
