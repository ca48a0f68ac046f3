// Hashes runs of any disk form: nothing outside them is read, and equal strings hash alike under every kind.
#include "string_input.h"

using namespace kt_fuzz;

namespace {

template <class Ops>
void requireEqualHashes(KtString a, KtString b, unsigned short options) {
  int status = 0;
  if (Ops::compare(8, 0, &a, 0, &b, options, 1, status) != 0) return;
  require(Ops::hash(8, 0, &a, 1, status) == Ops::hash(8, 0, &b, 1, status));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const unsigned char format = diskFormat(input.byte());
  const Block run(input.rest());
  if (run.size == 0) return 0;
  for (const KtHashFunc hash :
       {kt::StringOps::hash, kt::LegacyStringOps::hash, kt::IStringOps::hash, kt::CaseIStringOps::hash}) {
    int status = 0;
    hash(format, run.size, run.get(), 8, status);
    require(status == 0 || status == KtERR_OVERRUN);
  }
  const std::vector<KtString> strings = loadHeld(Bytes(run.get(), run.get() + run.size), format, 2);
  if (strings.size() < 2) return 0;
  requireEqualHashes<kt::IStringOps>(strings[0], strings[1], KtCMP_NO_WILDCARDS);
  requireEqualHashes<kt::CaseIStringOps>(strings[0], strings[1], KtCMP_NO_WILDCARDS);
  return 0;
}
