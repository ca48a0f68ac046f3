// Compares two runs of any disk form: nothing outside them is read, and turned round the outcome turns round where no
// wildcards act.
#include "string_input.h"

using namespace kt_fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const unsigned char format = diskFormat(input.byte());
  const auto options = static_cast<unsigned short>(input.byte() | (input.byte() & 3) << 8);
  const unsigned long count = input.byte() % 8u + 1;
  const Block a(input.take(input.byte()));
  const Block b(input.rest());
  if (a.size == 0 || b.size == 0) return 0;

  for (const KtTypeCmpFunc compare :
       {kt::StringOps::compare, kt::LegacyStringOps::compare, kt::IStringOps::compare, kt::CaseIStringOps::compare}) {
    int status = 0;
    const long result = compare(format, a.size, a.get(), b.size, b.get(), options, count, status);
    require(result >= -1 && result <= 1 && (status == 0 || status == KtERR_OVERRUN));
    int turnedStatus = 0;
    const long turned = compare(format, b.size, b.get(), a.size, a.get(), options, count, turnedStatus);
    const bool isOrder = (options & (KtCMP_NO_WILDCARDS | KtCMP_BINARY)) != 0;
    require(!isOrder || (turned == -result && turnedStatus == status));
  }
  return 0;
}
