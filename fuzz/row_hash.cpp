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

template <class Value>
Value valueAt(const void* at) {
  Value value;
  std::memcpy(static_cast<void*>(&value), at, sizeof value);
  return value;
}

// A field of -1 equals every other.
bool hasAnyField(const KtDate& date) { return date.year == -1 || date.month == -1 || date.day == -1; }

// One instant, told by other hours and minutes.
bool differsByZone(const d_Time& a, const d_Time& b) {
  return a.hour - a.tz_hour != b.hour - b.tz_hour || a.minute - a.tz_minute != b.minute - b.tz_minute;
}

// Two sets of fields may be one day.
bool areDates(const d_Date& a, const d_Date& b) { return a.is_valid() != 0 && b.is_valid() != 0; }

bool isNullOrTruth(unsigned char byte) { return byte < 2 || byte == 0xFF; }

// Nulls are equal whatever text they hold; code set 255 is hashed by its bytes, and compared by its units.
bool isOwnString(const KtString& s) { return s.IsNullValue() != 0 || s.codeSet == 255; }

// Code set 0 is hashed by its bytes; beside another one it is compared as the native set.
bool mayStringsHashApart(const KtString& a, const KtString& b) {
  return isOwnString(a) || isOwnString(b) || (a.codeSet == 0) != (b.codeSet == 0);
}

// Values that are equal and hash apart, or the other way round; docs/decisions tells which and why.
bool mayHashApart(const RowCase& c, const void* a, const void* b) {
  switch (c.id) {
    case KT_ID_KtString: return mayStringsHashApart(*static_cast<const KtString*>(a), *static_cast<const KtString*>(b));
    case KT_ID_KtDate: return hasAnyField(valueAt<KtDate>(a)) || hasAnyField(valueAt<KtDate>(b));
    case KT_ID_KtDateTime: return hasAnyField(valueAt<KtDateTime>(a).date) || hasAnyField(valueAt<KtDateTime>(b).date);
    case KT_ID_d_Date: return !areDates(valueAt<d_Date>(a), valueAt<d_Date>(b));
    case KT_ID_d_Time: return differsByZone(valueAt<d_Time>(a), valueAt<d_Time>(b));
    case KT_ID_d_Timestamp: {
      const auto x = valueAt<d_Timestamp>(a), y = valueAt<d_Timestamp>(b);
      return !areDates(x.date, y.date) || differsByZone(x.time, y.time);
    }
    case KT_ID_KtBoolean: return !isNullOrTruth(valueAt<unsigned char>(a)) || !isNullOrTruth(valueAt<unsigned char>(b));
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

// A KtString hashes all of its orders, and other operators leave some out.
unsigned short equality(const RowCase& c) {
  return static_cast<unsigned short>(KtCMP_NO_WILDCARDS | (c.id == KT_ID_KtString ? KtCMP_BINARY : 0));
}

void requireEqualHashes(const RowCase& c, const Values& values) {
  const unsigned long count = values.count();
  for (unsigned long pair = 0; pair < count * count; ++pair) {
    if (pair / count >= pair % count) continue;
    void* const a = values.at(pair / count);
    void* const b = values.at(pair % count);
    if (isNaN(c, a) || isNaN(c, b) || mayHashApart(c, a, b)) continue;
    if (c.manager->Cmp(c.id, a, b, equality(c), 1, kMemory) != 0) continue;
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
  requireEqualHashes(c, valuesOf(c, c.second));
  if ((form & kMemory) == 0 && !isOwnHashOnDisk(c, form)) requireHashOfMemory(c, form);
  return 0;
}
