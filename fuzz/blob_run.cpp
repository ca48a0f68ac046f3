// Runs of blobs from outside: compare, hash, sizes, load and translate stay inside the run; what was loaded stores and
// loads again; searches agree with the plain loop.
#include <kttm.h>

#include "string_input.h"

#include <algorithm>

using namespace kt_fuzz;

namespace {

void searchEach(const KtBlob* blobs, unsigned long count) {
  for (unsigned long i = 1; i < count; ++i) {
    const char* hay = blobs[0].Seek(0, 1);
    const char* needle = blobs[i].Seek(0, 1);
    if (hay == nullptr || needle == nullptr) continue;
    const char* end = hay + blobs[0].Length();
    const char* found = std::search(hay, end, needle, needle + blobs[i].Length());
    require(blobs[0].Search(blobs[i]) == (found == end ? 65535 : found - hay));
  }
}

void storeAndLoad(const KtTypeMgr& manager, KtBlob* blobs, unsigned long count, unsigned char format) {
  std::vector<std::uint8_t> disk(manager.DiskLenGet(KT_ID_KtBlob, blobs, format, count, 8));
  require(manager.Store(KT_ID_KtBlob, disk.data(), blobs, format, count) == disk.size());
  void* back = manager.Create(KT_ID_KtBlob, count);
  require(manager.Load(KT_ID_KtBlob, back, disk.data(), format, count) == disk.size());
  require(manager.Cmp(KT_ID_KtBlob, back, blobs, 0, count, 8) == 0);
  int status;
  const unsigned long hash = manager.Hash(KT_ID_KtBlob, 0, blobs, count, 8, status);
  require(manager.Hash(KT_ID_KtBlob, disk.size(), disk.data(), count, format, status) == hash && status == 0);
  manager.Delete(KT_ID_KtBlob, back, count);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3) return 0;
  const KtTypeMgr manager(12);
  const unsigned char format = data[0] & 0xF7;  // a disk form
  const unsigned long count = data[1] % 5 + 1u;
  const std::size_t cut = 3 + std::min<std::size_t>(data[2], size - 3);
  const Block a(Bytes(data + 3, data + cut));
  const Block b(Bytes(data + cut, data + size));
  int status;
  if (a.size != 0 && b.size != 0) {
    const long forth = manager.Cmp(KT_ID_KtBlob, a.size, a.get(), b.size, b.get(), 0, count, format, status);
    const long back = manager.Cmp(KT_ID_KtBlob, b.size, b.get(), a.size, a.get(), 0, count, format, status);
    require(forth == -back);
  }
  if (b.size == 0) return 0;
  manager.Hash(KT_ID_KtBlob, b.size, b.get(), count, format, status);
  MemFile file(b.get(), b.size);
  require(manager.DiskLenGetFromMemFile(KT_ID_KtBlob, &file, format, count) <= b.size);
  auto* blobs = static_cast<KtBlob*>(manager.Create(KT_ID_KtBlob, count));
  require(manager.Translate(KT_ID_KtBlob, blobs, 8, 0, b.get(), format, b.size, count) <= b.size);
  searchEach(blobs, count);
  storeAndLoad(manager, blobs, count, format);
  manager.Delete(KT_ID_KtBlob, blobs, count);
  return 0;
}
