// Makes index keys of records: never longer than the room, alike from memory, and sorting as the strings do.
#include "string_input.h"

#include <algorithm>
#include <cstring>

using namespace kt_fuzz;

namespace {

constexpr unsigned char kKeyFormat = 0x82;

Bytes keyOf(const KtString& s, unsigned long room) {
  const Block target{Bytes(room)};
  KtString copy = s;
  const unsigned long size = kt::StringOps::translate(target.get(), kKeyFormat, room, &copy, 8, 0, 1);
  require(size <= room);
  return Bytes(target.get(), target.get() + size);
}

int signOf(long value) { return value < 0 ? -1 : value > 0; }

// U+FFFF has three orders, of which its key shows two: behind U+FFFE the next character may tell another story.
bool hasLastCharacter(const KtString& s) {
  for (int i = 0; i < s.Len(); ++i)
    if (s[i].code == 0xFFFF) return true;
  return false;
}

void requireOrder(KtString a, KtString b, unsigned long room) {
  if (hasLastCharacter(a) || hasLastCharacter(b)) return;
  const Bytes x = keyOf(a, room);
  const Bytes y = keyOf(b, room);
  int status = 0;
  const long inMemory = StringCompare(8, 0, &a, 0, &b, KtCMP_BINARY, 1, status);
  const Block keyA(x), keyB(y);
  const long byKey = StringCompare(kKeyFormat, x.size(), keyA.get(), y.size(), keyB.get(), KtCMP_BINARY, 1, status);
  require(status != 0 || byKey == inMemory);
  // memcmp sorts keys of one form only.
  const bool alike = (a.codeSet == 0) == (b.codeSet == 0) && a.language == b.language;
  if (status == 0 && alike && !a.IsNullValue() && !b.IsNullValue())
    require(signOf(std::memcmp(x.data() + 4, y.data() + 4, std::min(x.size(), y.size()) - 4)) == byKey);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const unsigned char format = diskFormat(input.byte());
  const auto keyFormat = static_cast<unsigned char>(input.byte() | 0x80);
  const unsigned long room = input.byte();
  const Block run(input.rest());
  for (const KtTranslateFunc translate :
       {kt::StringOps::translate, kt::LegacyStringOps::translate, kt::IStringOps::translate}) {
    const Block target{Bytes(room)};
    require(translate(target.get(), keyFormat, room, run.get(), format, run.size, 4) <= room);
  }
  const std::vector<KtString> strings = loadHeld(Bytes(run.get(), run.get() + run.size), format, 2);
  if (strings.size() == 2) requireOrder(strings[0], strings[1], room < 6 ? 6 : room);
  return 0;
}
