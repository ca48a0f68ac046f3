// Prints and scans identities under formats from outside: nothing is read past the format or the text, printing replaces,
// and the named directives of the default formats give a value back.
#include <kttm.h>

#include "string_input.h"

#include <cstring>
#include <string>

using kt_fuzz::require;

namespace {

// Fields from the input's first bytes; zeros where there are fewer.
KtRef takeRef(const std::uint8_t*& data, std::size_t& size) {
  std::uint16_t words[8] = {};
  const std::size_t taken = size < sizeof words ? size : sizeof words;
  if (taken != 0) std::memcpy(words, data, taken);
  data += taken;
  size -= taken;
  KtRef ref;
  ref = KtObjId(words[0] * 65537u, words[1] * 65521u, words[2]);
  ref = KtClassId(words[3], words[4]);
  ref.database = words[5];
  return ref;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const KtRef ref = takeRef(data, size);
  // In blocks of exactly their size; a text may hold a zero byte, which ends it.
  const std::size_t half = size / 2;
  const std::string format(reinterpret_cast<const char*>(data), half);
  const std::string rest(reinterpret_cast<const char*>(data) + half, size - half);
  const KtString text(rest.c_str());

  KtString out("old");
  KtString again;
  ref.PrintToKtString(out, format.c_str());
  ref.PrintToKtString(again, format.c_str());
  require(std::strcmp(out.StrGet(), again.StrGet()) == 0);
  KtLocalRef local;
  local = ref;
  local.PrintToKtString(out, format.c_str());
  KtObjId id;
  id.ScanFromKtString(text, format.c_str());
  KtClassId classId;
  classId.ScanFromKtString(text, format.c_str());
  classId.PrintToKtString(out, format.c_str());

  constexpr char kAllFields[] = "(%D:%H-%L#%B,%Cv%V)";
  ref.PrintToKtString(out, kAllFields);
  KtRef back;
  back.ScanFromKtString(out, kAllFields);
  require((back != ref) == 0 || ref.IsNullValue());
  require(ref.IsNullValue() || (back.block == ref.block && back.version == ref.version));
  KtRef scanned;
  scanned.ScanFromKtString(text, format.c_str());
  return 0;
}
