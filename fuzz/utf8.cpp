// UTF-8 both ways: arbitrary bytes decode within them, what was decoded comes back, and no room is exceeded. The first
// byte of the input is a room for characters or bytes, the second a code set.
#include "string_input.h"

#include <kttm.h>

#include <cstring>

using namespace kt_fuzz;

namespace {

char* charsOf(const Block& block) { return reinterpret_cast<char*>(block.get()); }

// Every character of its own, as a slow twin of decoding the whole.
void requireSteps(const Block& in) {
  unsigned long at = 0;
  while (at < in.size) {
    unsigned short ch = 0;
    const int used = KtMultiByte2WChar(&ch, charsOf(in) + at, static_cast<unsigned>(in.size - at));
    require(used == -1 || (used >= 1 && used <= 6 && static_cast<unsigned long>(used) <= in.size - at));
    if (used < 1) return;
    char encoded[3];
    unsigned short back = 0;
    const int bytes = KtWChar2MultiByte(encoded, ch);
    require(KtMultiByte2WChar(&back, encoded, static_cast<unsigned>(bytes)) == bytes && back == ch);
    at += static_cast<unsigned long>(used);
  }
}

void requireRoom(const Block& in, int room) {
  const std::unique_ptr<unsigned short[]> out(new unsigned short[static_cast<std::size_t>(room)]);
  const int decoded = KtMultiByteStr2WCharStr(out.get(), room, charsOf(in), static_cast<int>(in.size));
  require(decoded >= -1 && decoded <= room);
}

// Encoded into exactly the bytes that it takes, and into less.
void requireEncoding(const KtString& s, long room) {
  const long size = KtMBSLength(s, 65535);
  const Block out{Bytes(static_cast<std::size_t>(size) + 1)};
  require(KtString2KtMBS(s, charsOf(out), size + 1) == size);
  const Block less{Bytes(static_cast<std::size_t>(room))};
  const long written = KtString2KtMBS(s, charsOf(less), room);
  require(written <= room && written >= -room);
  char* made = nullptr;
  long madeSize = 0;
  require(KtString2MultiByteString(s, made, madeSize) == size && madeSize == size + 1);
  require(std::memcmp(made, out.get(), static_cast<std::size_t>(size)) == 0);
  std::free(made);
}

void requireWayBack(const KtString& s) {
  const long size = KtMBSLength(s, 65535);
  const Block out{Bytes(static_cast<std::size_t>(size) + 1)};
  KtString2KtMBS(s, charsOf(out), size + 1);
  KtString back;
  require(KtMBS2KtString(charsOf(out), back, size) == size);
  require(back.Compare(s, -1, KtCMP_BINARY | KtCMP_NO_WILDCARDS) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const int room = input.byte() % 64 + 1;
  const std::uint8_t codeSet = input.byte();
  const Block in(input.rest());
  requireSteps(in);
  requireRoom(in, room);

  KtString decoded("old");
  const long used = KtMBS2KtString(charsOf(in), decoded, static_cast<long>(in.size));
  require(used >= -2 && used <= static_cast<long>(in.size));
  requireEncoding(decoded, room);
  requireWayBack(decoded);

  KtString bytes(codeSet, 0);
  if (in.size != 0)
    bytes.Rebuild(charsOf(in), codeSet, 0, 0, in.size / static_cast<unsigned long>(bytes.CharSize()), 1,
                  KtString::RebuildMode::kRebuild);
  requireEncoding(bytes, room);
  KtMultiByteString2KtString(bytes, bytes);
  return 0;
}
