// Hashing runs of fixed-width values.
#include "bench_job.h"
#include "run_data.h"

#include <kttm.h>

#include <cstdint>
#include <numeric>

#if defined(KT_HAVE_XXHASH)
#define XXH_INLINE_ALL
#include <xxhash.h>
#endif

namespace kt::bench {
namespace {

// Runs are hashed through the manager, by type id.
template <class T>
struct HashData {
  Runs<T>& runs;
  char typeId;
  KtTypeMgr manager{12};

  unsigned long hash(std::vector<T>& values) const {
    int status;
    return manager.Hash(typeId, 0, values.data(), values.size(), 8, status);
  }
};

template <class T>
void hashRun(HashData<T>& data) {
  keep(data.hash(data.runs.values));
}

// Reading the run as one writes it: the sum of its values.
template <class T>
void readRun(HashData<T>& data) {
  const T* const values = opaque(data.runs.values.data());
  keep(std::accumulate(values, values + opaque(data.runs.values.size()), T{}));
}

template <class T>
void readWords(HashData<T>& data) {
  keep(readBytes(opaque(data.runs.values.data()), opaque(data.runs.bytes())));
}

#if defined(KT_HAVE_XXHASH)
template <class T>
std::uint64_t xxh3(const std::vector<T>& values) {
  return XXH3_64bits(opaque(values.data()), opaque(values.size() * sizeof(T)));
}

template <class T>
void xxh3Run(HashData<T>& data) {
  keep(xxh3(data.runs.values));
}
#endif

template <class T, class Hash>
bool tellsApart(Runs<T>& runs, Hash hash) {
  return hash(runs.values) == hash(runs.same) && hash(runs.values) != hash(runs.lastDiffers);
}

// The contestants compute different numbers; equal runs hash alike, and a run that differs hashes apart.
template <class T>
bool hashesTellApart(HashData<T>& data) {
#if defined(KT_HAVE_XXHASH)
  if (!tellsApart(data.runs, xxh3<T>)) return false;
#endif
  return tellsApart(data.runs, [&data](std::vector<T>& values) { return data.hash(values); });
}

template <class T>
void addType(const std::string& name, char typeId) {
  for (const long size : {4096L, 1L << 20}) {
    const auto make = [=] { return std::make_unique<HashData<T>>(HashData<T>{runsOf<T>(size), typeId}); };
    Job<HashData<T>> job("hash_" + name, size, size, size * static_cast<long>(sizeof(T)), make, hashesTellApart<T>);
    job.contestant("kttm", hashRun<T>).contestant("plain_read", readRun<T>).contestant("floor", readWords<T>);
#if defined(KT_HAVE_XXHASH)
    job.contestant("xxh3", xxh3Run<T>);
#endif
  }
}

void addJobs() {
  addType<std::uint16_t>("16", KT_ID_KtWord);
  addType<std::uint32_t>("32", KT_ID_KtDWord);
  addType<std::int64_t>("int64", KT_ID_KtInt64);
  addType<double>("double", KT_ID_double);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
