// Storing and loading runs of scalars, in memory order and swapped.
#include "bench_job.h"
#include "run_data.h"

#include <ktbs.h>
#include <kttm.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace kt::bench {
namespace {

constexpr unsigned char kMemoryOrder = std::endian::native == std::endian::little ? 0 : 2;
constexpr unsigned char kSwapped = std::endian::native == std::endian::little ? 2 : 0;

using Convert = unsigned long (*)(void*, const void*, unsigned char, unsigned long);

// Short runs are converted kShortRuns times at changing places of a block that stays in the first-level cache.
template <class T>
struct StoreData {
  StoreData(Convert convertRun, unsigned char formatCode, long runLength)
      : runs(runsOf<T>(runLength < 1000 ? 1024 : runLength)),
        convert(convertRun),
        format(formatCode),
        length(static_cast<unsigned long>(runLength)),
        rounds(runLength < 1000 ? kShortRuns : 1),
        places(runs.values.size() / length) {}

  Runs<T>& runs;
  Convert convert;
  unsigned char format;
  unsigned long length;
  int rounds;
  std::size_t places;
};

template <class T, class Each>
void eachPlace(StoreData<T>& data, Each each) {
  const std::size_t mask = data.places - 1;
  for (int i = 0; i < data.rounds; ++i) {
    const std::size_t at = (static_cast<std::size_t>(i) & mask) * data.length;
    each(data.runs.target() + at, data.runs.values.data() + at);
  }
}

template <class T>
void convertRuns(StoreData<T>& data) {
  const Convert convert = opaque(data.convert);
  const unsigned char format = opaque(data.format);
  const unsigned long length = opaque(data.length);
  eachPlace(data, [&](T* target, const T* source) { convert(target, source, format, length); });
}

template <class T>
void copyRuns(StoreData<T>& data) {
  const std::size_t bytes = opaque(data.length) * sizeof(T);
  eachPlace(data, [&](T* target, const T* source) { std::memcpy(target, source, bytes); });
}

std::uint16_t swapped(std::uint16_t x) { return static_cast<std::uint16_t>(x << 8 | x >> 8); }
std::uint32_t swapped(std::uint32_t x) { return x << 24 | (x & 0xFF00) << 8 | (x >> 8 & 0xFF00) | x >> 24; }
std::uint64_t swapped(std::uint64_t x) {
  return std::uint64_t{swapped(static_cast<std::uint32_t>(x))} << 32 | swapped(static_cast<std::uint32_t>(x >> 32));
}

// The loop that people write: one value at a time, wherever it stands.
template <class T>
[[gnu::noinline]] void swapLoop(unsigned char* target, const unsigned char* source, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    T value;
    std::memcpy(&value, source + i * sizeof value, sizeof value);
    value = swapped(value);
    std::memcpy(target + i * sizeof value, &value, sizeof value);
  }
}

template <class T>
void swapLoops(StoreData<T>& data) {
  const std::size_t length = opaque(data.length);
  eachPlace(data, [&](T* target, const T* source) {
    swapLoop<T>(reinterpret_cast<unsigned char*>(target), reinterpret_cast<const unsigned char*>(source), length);
  });
}

// The target holds the source's values, each swapped where the format asks for it.
template <class T>
bool storesRight(StoreData<T>& data, void (*run)(StoreData<T>&)) {
  std::fill_n(data.runs.target(), data.runs.values.size(), T{});
  run(data);
  const std::size_t filled = std::min(static_cast<std::size_t>(data.rounds), data.places) * data.length;
  for (std::size_t i = 0; i < filled; ++i) {
    const T value = data.runs.values[i];
    if (data.runs.target()[i] != (data.format == kSwapped ? swapped(value) : value)) return false;
  }
  return true;
}

// Of the peers the one that does what the format asks for.
template <class T>
bool allStoreRight(StoreData<T>& data) {
  return storesRight(data, convertRuns<T>) && storesRight(data, data.format == kSwapped ? swapLoops<T> : copyRuns<T>);
}

template <class T>
Job<StoreData<T>> storeJob(const std::string& name, Convert convert, unsigned char format, long size) {
  const long rounds = size < 1000 ? kShortRuns : 1;
  const auto make = [=] { return std::make_unique<StoreData<T>>(convert, format, size); };
  return Job<StoreData<T>>(name + std::to_string(8 * sizeof(T)), size, rounds * size,
                           rounds * size * static_cast<long>(sizeof(T)), make, allStoreRight<T>);
}

template <class T>
void addWidth(Convert store, Convert load) {
  for (const long size : kRunSizes) {
    storeJob<T>("store_memory_order_", store, kMemoryOrder, size)
        .contestant("kttm", convertRuns<T>)
        .contestant("memcpy", copyRuns<T>);
    storeJob<T>("load_memory_order_", load, kMemoryOrder, size)
        .contestant("kttm", convertRuns<T>)
        .contestant("memcpy", copyRuns<T>);
    storeJob<T>("store_swapped_", store, kSwapped, size)
        .contestant("kttm", convertRuns<T>)
        .contestant("memcpy", copyRuns<T>)
        .contestant("swap_loop", swapLoops<T>);
    storeJob<T>("load_swapped_", load, kSwapped, size)
        .contestant("kttm", convertRuns<T>)
        .contestant("memcpy", copyRuns<T>)
        .contestant("swap_loop", swapLoops<T>);
  }
}

// Stores are called by name; loads through the row of a type, as an engine gets at them.
void addJobs() {
  const KtTypeMgr manager(12);
  addWidth<std::uint16_t>(ShortStore, manager.LoadPtrGet(KT_ID_short));
  addWidth<std::uint32_t>(LongStore, manager.LoadPtrGet(KT_ID_long));
  addWidth<std::uint64_t>(DoubleStore, manager.LoadPtrGet(KT_ID_double));
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
