// Loads runs of every type, sizes them and stores them again: what comes back is equal, and every byte is accounted for.
#include "row_case.h"

using namespace kt_fuzz;

namespace {

// Twice, over different bytes: one that is not written shows.
Bytes store(const RowCase& c, const Values& values, unsigned char form) {
  const unsigned long size = c.manager->DiskLenGet(c.id, values.get(), form, values.count(), kMemory);
  const Block disk(Bytes(size, 0xEE));
  const Block twin(Bytes(size, 0x11));
  require(c.manager->Store(c.id, disk.get(), values.get(), form, values.count()) == size);
  c.manager->Store(c.id, twin.get(), values.get(), form, values.count());
  require(size == 0 || std::memcmp(disk.get(), twin.get(), size) == 0);
  return Bytes(disk.get(), disk.get() + size);
}

// All that a file holds, whatever its bytes say.
void requireSizeInside(const RowCase& c, const Bytes& bytes, unsigned char form) {
  const Block block(bytes);
  MemFile file(block.get(), block.size);
  const unsigned long size = c.manager->DiskLenGetFromMemFile(c.id, &file, form, c.count);
  require(file.Tell() == 0 && (c.isFixed() ? size == c.storedLen(form) * c.count : size <= block.size));
}

void requireSizes(const RowCase& c, const Run& run, unsigned char form, unsigned long read) {
  MemFile file(run.bytes.get(), run.bytes.size);
  require(c.manager->DiskLenGet(c.id, run.bytes.get(), form, run.count, form) == read);
  require(c.manager->DiskLenGetFromMemFile(c.id, &file, form, run.count) == read);
}

void requireSame(const RowCase& c, const Values& a, const Values& b) {
  int status = 0;
  require(c.manager->Cmp(c.id, a.get(), b.get(), KtCMP_NO_WILDCARDS, a.count(), kMemory) == 0);
  const unsigned long hash = c.manager->Hash(c.id, 0, a.get(), a.count(), kMemory, status);
  require(c.manager->Hash(c.id, 0, b.get(), b.count(), kMemory, status) == hash);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const RowCase c(data, size);
  const unsigned char form = c.diskForm() & 0x7F;  // records, not keys
  requireSizeInside(c, c.second, form);
  const Run run = storedRun(c, c.second, form);
  if (run.count == 0) return 0;

  const Values values(c, run.count);
  const unsigned long read = c.manager->Load(c.id, values.get(), run.bytes.get(), form, run.count);
  require(read == run.bytes.size);
  requireSizes(c, run, form, read);
  const Bytes stored = store(c, values, form);
  const Run again{Block(stored), run.count};
  const Values back = load(c, again, form);
  if (!c.isLegacyString()) requireSame(c, values, back);
  require(store(c, back, form) == stored);
  return 0;
}
