// Look-ups in an LMDB tree of 8-byte keys: numbers compared by type id through the manager, against LMDB's own comparator,
// which compares bytes and needs the same numbers as big-endian keys. Every key is looked up once a batch, in shuffled order.
#include "bench_job.h"

#include <kttm.h>

#ifdef KT_HAVE_LMDB
#include "lmdb_tree.h"

#include <random>

namespace kt::bench {
namespace {

std::vector<unsigned long long> numbers(int count) {
  std::mt19937_64 random(2005);
  std::vector<unsigned long long> values(static_cast<std::size_t>(count));
  for (auto& value : values) value = random() >> 1;
  return values;
}

std::string bigEndian(unsigned long long value) {
  std::string bytes(8, '\0');
  for (std::size_t i = 0; i < 8; ++i) bytes[i] = static_cast<char>(value >> (8 * (7 - i)) & 0xFF);
  return bytes;
}

std::string storedByKttm(unsigned long long value) {
  KtInt64 number(value);
  std::string bytes(8, '\0');
  manager.Store(KT_ID_KtInt64, bytes.data(), &number, kLittleEndian, 1);
  return bytes;
}

template <class Stored>
std::vector<std::string> keysOf(Stored stored) {
  std::vector<std::string> keys;
  for (unsigned long long value : numbers(kBatch)) keys.push_back(stored(value));
  return keys;
}

struct NumberTrees {
  Tree typed{compareByType<KT_ID_KtInt64>, keysOf(storedByKttm)};
  Tree plain{nullptr, keysOf(bigEndian)};
};

bool allNumbersAreFound(NumberTrees& trees) {
  return trees.typed.findAll() == kBatch && trees.plain.findAll() == kBatch;
}

void addJobs() {
  Job<NumberTrees> job(
      "lmdb_find_int64", 0, kBatch, 0, [] { return std::make_unique<NumberTrees>(); }, allNumbersAreFound);
  job.contestant("kttm", [](NumberTrees& trees) { keep(trees.typed.findAll()); });
  job.contestant("memcmp", [](NumberTrees& trees) { keep(trees.plain.findAll()); });
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench

#endif
