// Hashes runs of every type in every form: nothing outside them is read, equal values hash alike where they promise to,
// and a value hashes on disk as in memory.
#include "row_case.h"

#include <cmath>

using namespace kt_fuzz;

namespace {

bool isNaN(const RowCase& c, void* value) {
  double number = 0;
  float single = 0;
  switch (c.id) {
    case KT_ID_float:
    case KT_ID_d_Interval:
    case KT_ID_KtNull_float: std::memcpy(&single, value, sizeof single); return std::isnan(single);
    case KT_ID_double:
    case KT_ID_KtNull_double: std::memcpy(&number, value, sizeof number); return std::isnan(number);
    default: return false;
  }
}

// Types with values that are equal and hash apart, or the other way round; docs/decisions.md tells which and why.
bool mayHashApart(const RowCase& c) {
  switch (c.id) {
    case KT_ID_KtString:
    case KT_ID_KtDate:
    case KT_ID_KtDateTime:
    case KT_ID_d_Date:
    case KT_ID_d_Time:
    case KT_ID_d_Timestamp:
    case KT_ID_KtBoolean: return true;
    default: return false;
  }
}

// Hashes on disk that are those of other values, by design: of ids in big-endian order, of seals in the host's, of an
// unsigned that code 4 has cut, of an older record, of code sets that bits of the format hide.
bool isOwnHashOnDisk(const RowCase& c, unsigned char form) {
  const unsigned char code = form & 15;
  switch (c.id) {
    case KT_ID_KtObjId:
    case KT_ID_KtClassId:
    case KT_ID_KtRef: return code == 2;
    case KT_ID_KtSeal: return code == 1;
    case KT_ID_unsigned:
    case KT_ID_KtNull_unsigned: return code == 4;
    case KT_ID_d_Date:
    case KT_ID_d_Time:
    case KT_ID_d_Timestamp:
    case KT_ID_KtBlob: return true;
    default: return c.isString() && ((form & 0xE0) != 0 || !isReadAsLoaded(c, c.second, form));
  }
}

void requireEqualHashes(const RowCase& c, const Values& values) {
  for (unsigned long i = 1; i < values.count(); ++i) {
    void* const a = values.at(0);
    void* const b = values.at(i);
    if (isNaN(c, a) || isNaN(c, b) || c.manager->Cmp(c.id, a, b, KtCMP_NO_WILDCARDS, 1, kMemory) != 0) continue;
    int status = 0;
    require(c.manager->Hash(c.id, 0, a, 1, kMemory, status) == c.manager->Hash(c.id, 0, b, 1, kMemory, status));
  }
}

void requireHashOfMemory(const RowCase& c, unsigned char form) {
  const Run run = storedRun(c, c.second, form);
  if (run.count == 0) return;
  const Values values = load(c, run, form);
  int status = 0;
  const unsigned long inMemory = c.manager->Hash(c.id, 0, values.get(), run.count, kMemory, status);
  // An older record may hold fewer texts than were loaded.
  const unsigned long onDisk = c.manager->Hash(c.id, run.bytes.size, run.bytes.get(), run.count, form, status);
  require(status != 0 ? c.isString() : onDisk == inMemory);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const RowCase c(data, size);
  const unsigned char form = c.diskForm();
  const Block run(c.second);
  if (run.size != 0) {
    int status = -1;
    const unsigned long hash = c.manager->Hash(c.id, run.size, run.get(), c.count, form, status);
    require((status == 0 || status == KtERR_OVERRUN) && hash <= 0xFFFFFFFF);
  }
  if (!mayHashApart(c)) requireEqualHashes(c, valuesOf(c, c.second));
  if ((form & kMemory) == 0 && !isOwnHashOnDisk(c, form)) requireHashOfMemory(c, form);
  return 0;
}
