// One compare by type id through the manager, beside a bare pointer to a function of two arguments.
#include "bench_job.h"

#include <kttm.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <random>

namespace kt::bench {
namespace {

using BareCompare = long (*)(const void*, const void*);

template <class T>
long bareCompare(const void* a, const void* b) {
  T x, y;
  std::memcpy(&x, a, sizeof x);
  std::memcpy(&y, b, sizeof y);
  return (x > y) - (x < y);
}

struct TypeCase {
  char typeId;
  BareCompare compare;
};

// Types of which any eight random bytes hold a value.
constexpr TypeCase kTypes[] = {
    {KT_ID_char, bareCompare<signed char>},      {KT_ID_short, bareCompare<std::int16_t>},
    {KT_ID_long, bareCompare<std::int32_t>},     {KT_ID_KtWord, bareCompare<std::uint16_t>},
    {KT_ID_KtDWord, bareCompare<std::uint32_t>}, {KT_ID_int, bareCompare<std::int32_t>},
    {KT_ID_KtByte, bareCompare<std::uint8_t>},   {KT_ID_BlockId, bareCompare<std::uint32_t>}};

struct Pair {
  TypeCase type;
  std::uint64_t a, b;
};

struct ManagerData {
  std::vector<Pair> pairs;
  KtTypeMgr manager{12};
};

long compareByManager(ManagerData& data) {
  long sum = 0;
  for (Pair& pair : data.pairs) sum += data.manager.Cmp(pair.type.typeId, &pair.a, &pair.b, 0, opaque(1ul), 8);
  keep(sum);
  return sum;
}

long compareByPointer(ManagerData& data) {
  long sum = 0;
  for (Pair& pair : data.pairs) sum += pair.type.compare(&pair.a, &pair.b);
  keep(sum);
  return sum;
}

// Pair by pair the same result.
bool comparesAlike(ManagerData& data) {
  for (Pair& pair : data.pairs)
    if (data.manager.Cmp(pair.type.typeId, &pair.a, &pair.b, 0, 1, 8) != pair.type.compare(&pair.a, &pair.b))
      return false;
  return true;
}

std::unique_ptr<ManagerData> pairsOf(bool mixed) {
  auto data = std::make_unique<ManagerData>();
  std::mt19937_64 random(3);
  for (int i = 0; i < kBatch; ++i) {
    const TypeCase type = mixed ? kTypes[random() % std::size(kTypes)] : kTypes[2];
    const std::uint64_t a = random(), b = random();
    data->pairs.push_back({type, a, b});
  }
  return data;
}

void addJob(const char* name, bool mixed) {
  Job<ManagerData>(
      name, 0, kBatch, 0, [mixed] { return pairsOf(mixed); }, comparesAlike)
      .contestant("kttm", compareByManager)
      .contestant("bare_pointer", compareByPointer);
}

void addJobs() {
  addJob("manager_compare_one_type", false);
  addJob("manager_compare_mixed", true);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
