// Translates runs of every type between all pairs of forms: a target on disk is never left, and what goes to disk and
// back is the same. The low byte of the options is the target's format, the first part as long as its room.
#include "row_case.h"

using namespace kt_fuzz;

namespace {

bool isMemory(unsigned char form) { return (form & kMemory) != 0; }
// An index key of a string is on disk, whatever the other bits say.
bool isMemoryTarget(const RowCase& c, unsigned char form) {
  return isMemory(form) && !(c.isString() && (form & 0x80) != 0);
}

// Types of fixed size go by the count where memory takes part: such runs must be whole. No room is a room unknown to blobs.
unsigned long roomFor(const RowCase& c, unsigned char form) {
  if (isMemory(c.format) && c.isFixed()) return c.storedLen(form & 0xF7) * c.count;
  return c.id == KT_ID_KtBlob ? std::max<unsigned long>(c.first.size(), 1) : c.first.size();
}

void toDisk(const RowCase& c, unsigned char to, void* src, unsigned long srcLength, unsigned long count) {
  const Block target(Bytes(roomFor(c, to), 0xEE));
  const unsigned long done = c.manager->Translate(c.id, target.get(), to, target.size, src, c.format, srcLength, count);
  require(done <= target.size);
}

// Of values that compare as equal to themselves: code 4 keeps two bytes of an int, the legacy table no code sets.
bool comesBackEqual(const RowCase& c, unsigned char to) {
  switch (c.id) {
    case KT_ID_int:
    case KT_ID_unsigned:
    case KT_ID_enum:
    case KT_ID_KtNull_int:
    case KT_ID_KtNull_unsigned: return (to & 15) != 4;
    case KT_ID_KtBoolean: return false;  // bytes beyond 0 and 1 have lopsided relations
    default: return !c.isLegacyString();
  }
}

// A null that the application marked may hide a number, which is stored, and comes back as 0.
bool mayHideBytes(const RowCase& c) { return c.id >= KT_ID_KtNull_char && c.id <= KT_ID_KtNull_KtInt64; }

Bytes onDisk(const RowCase& c, unsigned char to, void* values, unsigned long count) {
  const Block disk(Bytes(c.manager->DiskLenGet(c.id, values, to, count, kMemory), 0xEE));
  const unsigned long done =
      c.manager->Translate(c.id, disk.get(), to, disk.size, values, kMemory, count * c.memLen(), count);
  require(done == disk.size);
  return Bytes(disk.get(), disk.get() + disk.size);
}

// What goes to disk and back is the same, and goes there again as the same bytes. Strings come back one by one.
void roundTrip(const RowCase& c, unsigned char to, void* values, unsigned long count) {
  const Bytes bytes = onDisk(c, to, values, count);
  const Block disk(bytes);
  const Values back(c, count);
  const unsigned long read =
      c.manager->Translate(c.id, back.get(), kMemory, count * c.memLen(), disk.get(), to, disk.size, count);
  require(read == disk.size && (mayHideBytes(c) || onDisk(c, to, back.get(), count) == bytes));
  require(!comesBackEqual(c, to) || c.manager->Cmp(c.id, values, back.get(), KtCMP_NO_WILDCARDS, count, kMemory) == 0);
}

void roundTrips(const RowCase& c, unsigned char to, const Values& values) {
  if (isMemory(to) || (c.isString() && (to & 0x80) != 0)) return;  // index keys do not come back
  if (!c.isString()) return roundTrip(c, to, values.get(), values.count());
  for (unsigned long i = 0; i < values.count(); ++i) roundTrip(c, to, values.at(i), 1);
}

void toMemory(const RowCase& c, unsigned char to, void* src, unsigned long srcLength, unsigned long count) {
  const Values target(c, count);
  c.manager->Translate(c.id, target.get(), to, count * c.memLen(), src, c.format, srcLength, count);
  for (unsigned long i = 0; i < count; ++i) c.manager->IsNullValue(c.id, target.at(i));
  // Strings go from memory to memory under one format only.
  if (!isMemory(c.format) || count == 0 || (c.isString() && to != c.format)) return;
  require(c.manager->Cmp(c.id, target.get(), src, KtCMP_NO_WILDCARDS, count, kMemory) == 0);
}

void fromMemory(const RowCase& c, unsigned char to) {
  const Run run = c.isFixed() ? fixedRun(c, c.second, c.memLen()) : storedRun(c, c.second, c.diskForm());
  const Values values(c, c.count);
  if (c.isFixed() && run.bytes.size != 0) std::memcpy(values.get(), run.bytes.get(), run.bytes.size);
  if (!c.isFixed() && run.count != 0) c.manager->Load(c.id, values.get(), run.bytes.get(), c.diskForm(), run.count);
  const unsigned long length = c.count * c.memLen();
  roundTrips(c, to, values);
  isMemoryTarget(c, to) ? toMemory(c, to, values.get(), length, c.count) : toDisk(c, to, values.get(), length, c.count);
}

void fromDisk(const RowCase& c, unsigned char to) {
  if (!isMemoryTarget(c, to)) {
    const Block source(c.second);
    toDisk(c, to, source.get(), source.size, c.count);
  } else if (c.isFixed()) {
    const Run run = fixedRun(c, c.second, c.storedLen(c.format));
    toMemory(c, to, run.bytes.get(), run.bytes.size, run.count);
  } else {
    const Block source(c.second);
    if (source.size != 0) toMemory(c, to, source.get(), source.size, c.count);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const RowCase c(data, size);
  const auto to = static_cast<unsigned char>(c.options);
  isMemory(c.format) ? fromMemory(c, to) : fromDisk(c, to);
  return 0;
}
