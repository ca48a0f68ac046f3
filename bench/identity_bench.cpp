// Storing and loading object ids in the other byte order, beside the loop that swaps field by field.
#include "bench_job.h"

#include <kttm.h>

#include <bit>
#include <cstring>
#include <random>

namespace kt::bench {
namespace {

constexpr unsigned char kSwapped = std::endian::native == std::endian::little ? 2 : 0;
constexpr unsigned long kDiskSize = 10;

struct IdData {
  explicit IdData(long count)
      : ids(static_cast<std::size_t>(count)), loaded(ids.size()), disk(ids.size() * kDiskSize), plain(disk.size()) {
    std::mt19937 engine(7);
    const auto random = [&engine] { return static_cast<KtDWord>(engine()); };
    for (KtObjId& id : ids) id = KtObjId(random(), random(), static_cast<KtWord>(random()));
    const KtTypeMgr manager(12);
    store = manager.StorePtrGet(KT_ID_KtObjId);
    load = manager.LoadPtrGet(KT_ID_KtObjId);
  }

  std::vector<KtObjId> ids, loaded;
  std::vector<unsigned char> disk, plain;
  KtStoreFunc store;
  KtLoadFunc load;
};

void storeIds(IdData& data) {
  opaque(data.store)(data.disk.data(), data.ids.data(), opaque(kSwapped), opaque(data.ids.size()));
}
void loadIds(IdData& data) {
  opaque(data.load)(data.loaded.data(), data.disk.data(), opaque(kSwapped), opaque(data.ids.size()));
}

template <class Field>
void moveSwapped(unsigned char*& out, Field field) {
  for (unsigned i = 0; i < sizeof field; ++i) out[i] = static_cast<unsigned char>(field >> 8 * (sizeof field - 1 - i));
  out += sizeof field;
}

template <class Field>
void takeSwapped(const unsigned char*& in, Field& field) {
  field = 0;
  for (unsigned i = 0; i < sizeof field; ++i) field = static_cast<Field>(field << 8 | in[i]);
  in += sizeof field;
}

// What one writes for a record: every field by itself.
void storeFields(IdData& data) {
  unsigned char* out = data.plain.data();
  for (const KtObjId& id : data.ids) {
    moveSwapped(out, id.block);
    moveSwapped(out, id.low);
    moveSwapped(out, id.high);
  }
}

void loadFields(IdData& data) {
  const unsigned char* in = data.plain.data();
  for (KtObjId& id : data.loaded) {
    takeSwapped(in, id.block);
    takeSwapped(in, id.low);
    takeSwapped(in, id.high);
  }
}

bool agree(IdData& data) {
  storeIds(data), storeFields(data);
  if (kSwapped == 2 && data.disk != data.plain) return false;
  loadIds(data);
  for (std::size_t i = 0; i < data.ids.size(); ++i)
    if ((data.ids[i] != data.loaded[i]) != 0 || data.ids[i].block != data.loaded[i].block) return false;
  return true;
}

void addJobs() {
  static constexpr long kCount = 4096;
  const auto make = [] { return std::make_unique<IdData>(kCount); };
  const long bytes = kCount * static_cast<long>(kDiskSize);
  Job<IdData>("store_object_ids_swapped", kCount, kCount, bytes, make, agree)
      .contestant("kttm", storeIds)
      .contestant("field_by_field", storeFields);
  Job<IdData>("load_object_ids_swapped", kCount, kCount, bytes, make, agree)
      .contestant("kttm", loadIds)
      .contestant("field_by_field", loadFields);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
