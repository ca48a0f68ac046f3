// Loads records and stores them again: sizes are kept, nothing outside a record is read or written.
#include "string_input.h"

using namespace kt_fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const unsigned char format = diskFormat(input.byte());
  const Bytes run = input.rest();
  const std::vector<KtString> strings = loadHeld(run, format, 8);

  const Block block(run);
  MemFile file(block.get(), block.size);
  kt::stringSizeGetFromMemFile(&file, format, 8);
  kt::legacyStringSizeGetFromMemFile(&file, format, 8);
  require(file.Tell() == 0);

  const Block stored(Bytes(StringSizeGet(strings.data(), 8, format & 15, strings.size())));
  StringStore(stored.get(), strings.data(), format, strings.size());
  require(strings.empty() || StringSizeGet(stored.get(), 0, format & 15, strings.size()) == stored.size);
  const Block legacy(Bytes(kt::legacyStringSizeGet(strings.data(), 8, format & 15, strings.size())));
  require(kt::legacyStringStore(legacy.get(), strings.data(), format, strings.size()) == legacy.size);
  return 0;
}
