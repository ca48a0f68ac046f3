#include "ops/identity_ops.h"

#include "ops/run_compare.h"

#include <bit>
#include <cstddef>

namespace kt {
namespace {

constexpr bool kBigHost = std::endian::native == std::endian::big;

// Stores and loads read the byte order only: memory layout is not a disk form of identities.
bool isSwapped(unsigned char format) { return (lowCode(format) == kBigEndian) != kBigHost; }

constexpr std::uint64_t swapAll(std::uint64_t v) {
  return std::uint64_t{swapBytes(static_cast<std::uint32_t>(v))} << 32 | swapBytes(static_cast<std::uint32_t>(v >> 32));
}

// Each 32-bit half, or 16-bit quarter, of a word by itself: the words may be read and written in host order.
constexpr std::uint64_t swapHalves(std::uint64_t v) { return std::rotl(swapAll(v), 32); }
constexpr std::uint32_t swapQuarters(std::uint32_t v) { return (v >> 8 & 0x00FF00FFu) | (v & 0x00FF00FFu) << 8; }

template <class Word>
void write(unsigned char* p, Word word) {
  std::memcpy(p, &word, sizeof word);
}

// The places of an object id's fields: those of block and low are alike in memory and on disk, and high follows them.
constexpr unsigned long kHighAt = 8;
static_assert(offsetof(KtObjId, low) == 4 && offsetof(KtObjId, high) == kHighAt);
static_assert(offsetof(KtRef, low) == 4 && offsetof(KtRef, high) == kHighAt);

// The fields that object ids and references have in common. Two stores an id.
template <bool kSwap>
[[gnu::always_inline]] inline void moveId(unsigned char* dst, const unsigned char* src) {
  const auto blockAndLow = readValue<std::uint64_t>(src);
  const auto high = readValue<std::uint16_t>(src + kHighAt);
  write(dst, kSwap ? swapHalves(blockAndLow) : blockAndLow);
  write(dst + kHighAt, kSwap ? swapBytes(high) : high);
}

constexpr unsigned long kDatabaseInMemory = offsetof(KtRef, database);
constexpr unsigned long kDatabaseOnDisk = 10;  // the class number follows the database in both
static_assert(offsetof(KtRef, classNumber) == kDatabaseInMemory + 2);

template <bool kSwap>
[[gnu::always_inline]] inline void moveDatabaseAndClass(unsigned char* dst, const unsigned char* src) {
  const auto both = readValue<std::uint32_t>(src);
  write(dst, kSwap ? swapQuarters(both) : both);
}

template <bool kSwap>
void storeObjIds(unsigned char* dst, const unsigned char* src, unsigned long count) {
  for (; count != 0; --count, dst += ObjIdDisk::kSize, src += sizeof(KtObjId)) moveId<kSwap>(dst, src);
}

template <bool kSwap>
void loadObjIds(unsigned char* dst, const unsigned char* src, unsigned long count) {
  for (; count != 0; --count, dst += sizeof(KtObjId), src += ObjIdDisk::kSize) moveId<kSwap>(dst, src);
}

template <bool kSwap>
void storeRefs(unsigned char* dst, const unsigned char* src, unsigned long count) {
  for (; count != 0; --count, dst += RefDisk::kSize, src += sizeof(KtRef)) {
    moveId<kSwap>(dst, src);
    moveDatabaseAndClass<kSwap>(dst + kDatabaseOnDisk, src + kDatabaseInMemory);
  }
}

template <bool kSwap>
void loadRefs(unsigned char* dst, const unsigned char* src, unsigned long count) {
  for (; count != 0; --count, dst += sizeof(KtRef), src += RefDisk::kSize) {
    moveId<kSwap>(dst, src);
    moveDatabaseAndClass<kSwap>(dst + kDatabaseInMemory, src + kDatabaseOnDisk);
    write(dst + offsetof(KtRef, version), std::uint32_t{0});  // and the padding behind it
  }
}

using MoveRun = void (*)(unsigned char* dst, const unsigned char* src, unsigned long count);

// Returns the disk bytes of the run.
unsigned long moveRun(MoveRun move, void* dst, const void* src, unsigned long count, unsigned long diskSize) {
  move(static_cast<unsigned char*>(dst), static_cast<const unsigned char*>(src), count);
  return count * diskSize;
}

std::uint64_t littleEndian(std::uint64_t v) { return kBigHost ? swapAll(v) : v; }

// Eight bytes at the same place of each element, exclusive-ored: every byte stays in its place, so that fields may be
// taken from the sum of all elements.
std::uint64_t xorWindows(const unsigned char* p, unsigned long count, unsigned long step) {
  std::uint64_t sum = 0;
  for (; count != 0; --count, p += step) sum ^= readValue<std::uint64_t>(p);
  return sum;
}

// The fields of such a sum: in memory form in host order, else little-endian.
class Window {
public:
  Window(std::uint64_t sum, unsigned char code) : isSwapped_(kBigHost && code != kMemoryForm) { write(bytes_, sum); }

  std::uint32_t word(unsigned long at) const { return ordered(readValue<std::uint32_t>(bytes_ + at)); }
  std::uint32_t half(unsigned long at) const { return ordered(readValue<std::uint16_t>(bytes_ + at)); }

private:
  template <class Word>
  Word ordered(Word word) const {
    return isSwapped_ ? swapBytes(word) : word;
  }

  unsigned char bytes_[8];
  bool isSwapped_;
};

}  // namespace

long byteDifference(std::uint64_t a, std::uint64_t b) {
  if (a == b) return 0;
  const int shift = (63 - std::countl_zero(a ^ b)) & ~7;
  return static_cast<long>(a >> shift & 0xFF) - static_cast<long>(b >> shift & 0xFF);
}

// --- object ids -------------------------------------------------------------------------------------------------------

unsigned long ObjIdDisk::store(void* dst, const void* src, unsigned char format, unsigned long count) {
  return moveRun(isSwapped(format) ? storeObjIds<true> : storeObjIds<false>, dst, src, count, kSize);
}

unsigned long ObjIdDisk::load(void* dst, const void* src, unsigned char format, unsigned long count) {
  return moveRun(isSwapped(format) ? loadObjIds<true> : loadObjIds<false>, dst, src, count, kSize);
}

// high, then low.
std::uint64_t ObjIdDisk::key(const unsigned char* p) { return littleEndian(readValue<std::uint64_t>(p + 2)) >> 16; }

std::uint32_t ObjIdDisk::hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
  if (code == kMemoryForm) {
    const Window memory(xorWindows(p + offsetof(KtObjId, low), n, sizeof(KtObjId)), code);
    return memory.word(0) ^ memory.half(4);
  }
  const Window disk(xorWindows(p + 2, n, kSize), code);
  return disk.word(2) ^ disk.half(6);
}

// 65535, not 65536: the factors here and below are one short of powers of two by rule.
double ObjIdValue::number(unsigned char code, const unsigned char* p) {
  const auto id = loadValue<ObjIdValue>(code, p);
  return id.high * 65535.0 + id.low;
}

// --- class ids --------------------------------------------------------------------------------------------------------

unsigned long ClassIdDisk::store(void* dst, const void* src, unsigned char format, unsigned long count) {
  // Code 1 is host order for the base library's types, and an ordinary disk form here.
  const unsigned char code = lowCode(format) == kBigEndian ? kBigEndian : kOrdinaryDiskForm;
  return ShortStore(dst, src, code, 2 * count);
}

unsigned long ClassIdDisk::load(void* dst, const void* src, unsigned char format, unsigned long count) {
  return store(dst, src, format, count);
}

// The class number, then the version.
std::uint64_t ClassIdDisk::key(const unsigned char* p) {
  return std::uint64_t{p[1]} << 24 | std::uint64_t{p[0]} << 16 | std::uint64_t{p[3]} << 8 | p[2];
}

std::uint32_t ClassIdDisk::hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
  const unsigned char order = code == kMemoryForm ? kMemoryForm : kOrdinaryDiskForm;
  const std::uint32_t sum = DwordValue::hashWords(order, p, n);
  return (sum >> 16) ^ (sum & 0xFFFFu);
}

// --- references -------------------------------------------------------------------------------------------------------

unsigned long RefDisk::store(void* dst, const void* src, unsigned char format, unsigned long count) {
  return moveRun(isSwapped(format) ? storeRefs<true> : storeRefs<false>, dst, src, count, kSize);
}

unsigned long RefDisk::load(void* dst, const void* src, unsigned char format, unsigned long count) {
  return moveRun(isSwapped(format) ? loadRefs<true> : loadRefs<false>, dst, src, count, kSize);
}

// The database, then high, then low.
std::uint64_t RefDisk::key(const unsigned char* p) { return littleEndian(readValue<std::uint64_t>(p + 4)); }

std::uint32_t RefDisk::hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
  const Window id(xorWindows(p + 4, n, code == kMemoryForm ? sizeof(KtRef) : kSize), code);
  if (code != kMemoryForm) return id.word(0) ^ id.half(4) ^ id.half(6);
  const Window rest(xorWindows(p + kDatabaseInMemory, n, sizeof(KtRef)), code);
  return id.word(0) ^ id.half(4) ^ rest.half(0);
}

float RefOps::evalAndBound(KtIdxBounds*, unsigned short& flags, void* key, unsigned char format, unsigned long count,
                           KtIdxBounds* result) {
  constexpr double kAll = 18446744065119617024.0;  // references, a little more than there are numbers below
  flags &= kBoundFlags;
  double measure = 0;
  if (count != 0) {
    const auto ref = loadValue<RefValue>(lowCode(format), key);
    const double number = (ref.database * 65535.0 + ref.high) * 4294967295.0 + ref.low;
    if ((flags & KtBOUND_LESS) != 0) measure = number;
    if ((flags & KtBOUND_GREATER) != 0) measure += kAll - (number + 1);
    if ((flags & KtBOUND_EQUAL) != 0) measure += 1;
  }
  recordBounds(result, key, flags, RefDisk::kSize * count);
  return shareOf(measure, kAll);
}

}  // namespace kt

KT_COMPARE_COVER(ObjIdCompare, kt::ObjIdOps::IdentityOps::compare)
KT_COMPARE_COVER(ClassIdCompare, kt::ClassIdOps::IdentityOps::compare)
KT_COMPARE_COVER(RefCompare, kt::RefOps::IdentityOps::compare)
