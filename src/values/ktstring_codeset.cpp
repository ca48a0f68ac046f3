// ktstring_codeset.cpp - relabelling and converting strings between code sets.
#include "string_edit.h"
#include "text/string_block.h"
#include "text/text_units.h"
#include "values/string_take.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace {

bool sizesDiffer(unsigned char a, unsigned char b) { return KtCodeSet::CharSizeOf(a) != KtCodeSet::CharSizeOf(b); }

// The text in the smallest of blocks, as much of it as asked for, and zeros behind.
struct ShortText {
  using Half [[gnu::vector_size(16)]] = unsigned char;

  ShortText(const char* block, unsigned long characters) {
    static constexpr auto kKeep = [] {
      std::array<unsigned char, 2 * kt::kSmallestBlock> keep{};
      std::fill_n(keep.begin(), kt::kSmallestBlock, static_cast<unsigned char>(255));
      return keep;
    }();
    const unsigned char* const keep = kKeep.data() + kt::kSmallestBlock - characters;
    first = halfAt(block) & halfAt(keep);
    second = halfAt(block + sizeof first) & halfAt(keep + sizeof first);
  }

  static Half halfAt(const void* p) {
    Half half;
    std::memcpy(&half, p, sizeof half);
    return half;
  }

  bool isAscii() const {
    const auto words = std::bit_cast<std::array<std::uint64_t, 2>>(first | second);
    return ((words[0] | words[1]) & 0x8080808080808080u) == 0;
  }

  void storeTo(char* block) const {
    std::memcpy(block, &first, sizeof first);
    std::memcpy(block + sizeof first, &second, sizeof second);
  }

  Half first, second;
};
static_assert(kt::kSmallestBlock == 2 * sizeof(ShortText::Half));

// A text of 8-bit characters whose count is that of its bytes.
inline bool isPlain(const KtString& s) {
  return s.CharSize() == 1 && s.bufferSize != 0 && !kt::mayHoldZero(s.buffer, s.bufferSize);
}

inline int setMapped(KtString& target, const KtString& source, unsigned char code, unsigned long length) {
  target.buffer[length] = '\0';
  kt::noteMayHoldZero(target.buffer, length + 1, false);
  target.bufferSize = static_cast<std::uint16_t>(length + 1);
  target.codeSet = code;
  target.language = source.language;
  return static_cast<int>(length);
}

constexpr int kNotMapped = -1;

// What most conversions are: a name, in ASCII characters, which stand at their own places in every 8-bit set.
inline int copyShortAscii(KtString& target, const KtString& source, unsigned char code, int count) {
  const bool fits =
      target.buffer != nullptr && target.bufferSize < kt::kKeptBlock && source.bufferSize < kt::kSmallestBlock;
  if (!fits || KtCodeSet::CharSizeOf(code) != 1 || !isPlain(source)) return kNotMapped;
  const unsigned long length = kt::countOf(count, source.bufferSize - 1ul);
  const ShortText text(source.buffer, length);
  if (!text.isAscii()) return kNotMapped;
  text.storeTo(target.buffer);
  return setMapped(target, source, code, length);
}

// Any text of 8-bit characters, for a block that fits.
int copyNarrow(KtString& target, const KtString& source, unsigned char code, int count) {
  if (KtCodeSet::CharSizeOf(code) != 1 || !isPlain(source) || target.buffer == nullptr) return kNotMapped;
  const unsigned long length = kt::countOf(count, source.bufferSize - 1ul);
  const unsigned long owned = kt::blockSize(target.bufferSize);
  const unsigned long wanted = kt::blockSize(length + 1);
  const bool fits = wanted == owned || (wanted < owned && owned <= kt::kKeptBlock);
  if (!fits || length >= kt::kMaxTextBytes) return kNotMapped;
  kt::mapUnits(target.buffer, code, source.buffer, source.codeSet, length);
  return setMapped(target, source, code, length);
}

// Makes target the first count characters of source in code set `code`; false when memory ran out.
bool mapInto(KtString& target, const KtString& source, unsigned char code, unsigned long count, int overflowLine) {
  const unsigned char oldSet = target.codeSet;
  target.codeSet = code;
  // A source of code set 0 would be taken as it stands: it is named by the set that stands in for it.
  const unsigned char sourceSet = source.codeSet == 0 ? KtCodeSet::Get(0).Code() : source.codeSet;
  if (kt::rebuild(target,
                  {.source = source.buffer, .sourceSet = sourceSet, .count = count, .overflowLine = overflowLine})) {
    return true;
  }
  target.codeSet = oldSet;
  return false;
}

[[gnu::noinline]] int copyAny(KtString& target, const KtString& source, unsigned char code, int count) {
  const int mapped = copyNarrow(target, source, code, count);
  if (mapped != kNotMapped) return mapped;
  if (!mapInto(target, source, code, kt::countOf(count, source.Len()), kt::kCopyOverflowLine)) return 0;
  target.language = source.language;
  return target.buffer == nullptr ? 0 : target.bufferSize / target.CharSize() - 1;
}

// The text in code set `code`, through a new block.
void convert(KtString& s, unsigned char code) {
  KtString converted(code, s.language);
  if (mapInto(converted, s, code, s.Len(), kt::kOverflowLine)) s.Destruct(converted);
}

}  // namespace

int KtString::SetCodeSetCode(unsigned char code) {
  if (sizesDiffer(code, codeSet)) return KtERR_BAD_CODESET;
  codeSet = code;
  return 0;
}

void KtString::SetCodeSet(unsigned char code) {
  if (buffer != nullptr && sizesDiffer(code, codeSet)) {
    convert(*this, code);
  } else {
    codeSet = code;
  }
}

int KtString::MapToCodeSet(unsigned char code) {
  if (code == 0) return KtERR_BAD_CODESET;
  if (code == codeSet) return 0;
  if (buffer != nullptr && !sizesDiffer(code, codeSet)) {
    kt::mapUnits(buffer, code, buffer, codeSet, bufferSize / CharSize());
  }
  SetCodeSet(code);
  return 0;
}

int KtString::CopyMapped(const KtString& source, unsigned char code, int count) {
  if (this == &source) return KtERR_BAD_CODESET;
  const int mapped = copyShortAscii(*this, source, code, count);
  return mapped != kNotMapped ? mapped : copyAny(*this, source, code, count);
}
