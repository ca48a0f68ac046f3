// Compares two runs of every type in every form: nothing outside them is read, turned round the outcome turns round where
// no wildcards act, and numbers, strings and
// blobs order on disk as in memory.
#include "row_case.h"

using namespace kt_fuzz;

namespace {

struct Outcome {
  int sign;
  int status;
};

Outcome compare(const RowCase& c, const Block& a, const Block& b, unsigned char form) {
  int status = -1;
  const long result = c.manager->Cmp(c.id, a.size, a.get(), b.size, b.get(), c.options, c.count, form, status);
  require(status == 0 || status == KtERR_OVERRUN);
  return {signOf(result), status};
}

// Seals are compared whatever lengths are told.
Bytes filled(const RowCase& c, Bytes bytes, unsigned char form) {
  if (c.id == KT_ID_KtSeal) bytes.resize(std::max<std::size_t>(bytes.size(), c.count * c.runLen(form)));
  return bytes;
}

// Booleans beyond 0 and 1 have lopsided relations.
bool isOrder(const RowCase& c) { return (c.options & KtCMP_NO_WILDCARDS) != 0 && c.id != KT_ID_KtBoolean; }

// Code 4 keeps two bytes of an int, from which compare and Load make different numbers.
bool isNumber(const RowCase& c, unsigned char form) {
  const bool isScalar = c.id <= KT_ID_KtByte || c.id == KT_ID_BlockId || c.id == KT_ID_KtInt64;
  return (form & 15) != 4 && (isScalar || (c.id >= KT_ID_KtNull_char && c.id <= KT_ID_KtNull_KtInt64));
}

bool isPlainString(const RowCase& c, unsigned char form) {
  if (c.isFixed() || (form & 0xE0) != 0) return false;
  return !c.isString() || (isReadAsLoaded(c, c.first, form) && isReadAsLoaded(c, c.second, form));
}

void requireOrderInMemory(const RowCase& c, unsigned char form) {
  const Run a = storedRun(c, c.first, form);
  const Run b = storedRun(c, c.second, form);
  const unsigned long count = std::min(a.count, b.count);
  const Values x = load(c, a, form);
  const Values y = load(c, b, form);
  int status = 0;
  const long onDisk =
      c.manager->Cmp(c.id, a.bytes.size, a.bytes.get(), b.bytes.size, b.bytes.get(), c.options, count, form, status);
  if (count == 0 || status != 0) return;
  const long inMemory = c.manager->Cmp(c.id, x.get(), y.get(), c.options, count, kMemory);
  require(signOf(inMemory) == signOf(onDisk));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const RowCase c(data, size);
  const unsigned char form = c.diskForm();
  const Block a(filled(c, c.first, form));
  const Block b(filled(c, c.second, form));
  if (a.size == 0 || b.size == 0) return 0;

  const Outcome forth = compare(c, a, b, form);
  const Outcome back = compare(c, b, a, form);
  require(!isOrder(c) || (forth.sign == -back.sign && forth.status == back.status));
  require(!isOrder(c) || compare(c, a, Block(filled(c, c.first, form)), form).sign == 0);
  if ((form & kMemory) == 0 && (isNumber(c, form) || isPlainString(c, form))) requireOrderInMemory(c, form);
  return 0;
}
