// text_units.cpp - lengths of texts, and conversion between code sets: one table access a character.
#include "text_units.h"

#include <atomic>

namespace kt {

namespace {

constexpr unsigned char kDefault8 = 255;  // of an iterator
constexpr std::uint16_t kFirstBeyondAscii = 0x80;

// Does any of the four 16-bit lanes hold zero?
constexpr bool hasZeroLane(std::uint64_t lanes) {
  constexpr std::uint64_t kOnes = 0x0001000100010001u;
  return ((lanes - kOnes) & ~lanes & (kOnes << 15)) != 0;
}

unsigned long wideLength(const char* text, unsigned long limit) {
  unsigned long length = 0;
  for (; length + 4 <= limit; length += 4) {
    std::uint64_t lanes;
    std::memcpy(&lanes, text + 2 * length, sizeof lanes);
    if (hasZeroLane(lanes)) {
      break;
    }
  }
  while (length < limit && unitAt(text, length, 2) != 0) {
    ++length;
  }
  return length;
}

// The table from one 8-bit set into another, kept where it is found at once: every code in use is a small one. 0 stands for
// a set that may be exchanged.
const unsigned char* mapTable(unsigned char to, unsigned char from) {
  constexpr unsigned kKept = 16;
  static constinit std::atomic<const unsigned char*> kept[kKept][kKept];
  const bool isKept = to - 1u < kKept - 1 && from - 1u < kKept - 1;
  const unsigned char* table = isKept ? kept[to][from].load(std::memory_order_acquire) : nullptr;
  if (table != nullptr) return table;
  table = KtCodeSet::Get(from).MapTable(KtCodeSet::Get(to));
  if (isKept) kept[to][from].store(table, std::memory_order_release);
  return table;
}

// Eight characters at a time: most text is ASCII, which every 8-bit set holds at its own place.
void mapNarrow(char* target, const char* source, const unsigned char* table, unsigned long count) {
  constexpr std::uint64_t kBeyondAscii = 0x8080808080808080u;
  unsigned long i = 0;
  for (; i + 8 <= count; i += 8) {
    std::uint64_t eight;
    std::memcpy(&eight, source + i, sizeof eight);
    if ((eight & kBeyondAscii) != 0) {
      unsigned char mapped[8];
      for (unsigned long k = 0; k < 8; ++k) mapped[k] = table[static_cast<unsigned char>(source[i + k])];
      std::memcpy(&eight, mapped, sizeof eight);
    }
    std::memcpy(target + i, &eight, sizeof eight);
  }
  for (; i < count; ++i) target[i] = static_cast<char>(table[static_cast<unsigned char>(source[i])]);
}

void widen(char* target, const char* source, const KtCodeSet& from, unsigned long count) {
  const unsigned short* table = from.ToUnicodeTable();
  for (unsigned long i = 0; i < count; ++i) {
    putUnit(target, i, 2, table[static_cast<unsigned char>(source[i])]);
  }
}

void narrow(char* target, const KtCodeSet& to, const char* source, unsigned long count, bool swap) {
  for (unsigned long i = 0; i < count; ++i) {
    const std::uint16_t stored = unitAt(source, i, 2);
    const std::uint16_t unit = swap ? swapped(stored) : stored;
    putUnit(target, i, 1, unit < kFirstBeyondAscii ? unit : to.FromUnicode(unit));
  }
}

void copyWide(char* target, const char* source, unsigned long count, bool swap) {
  if (!swap) {
    std::memmove(target, source, 2 * count);
    return;
  }
  for (unsigned long i = 0; i < count; ++i) {
    putUnit(target, i, 2, swapped(unitAt(source, i, 2)));
  }
}

}  // namespace

unsigned long unitLength(const char* text, unsigned long width, unsigned long limit) {
  if (width == 2) {
    return wideLength(text, limit);
  }
  const void* zero = std::memchr(text, 0, limit);
  return zero == nullptr ? limit : static_cast<unsigned long>(static_cast<const char*>(zero) - text);
}

unsigned long unitLength(const unsigned short* text) {
  unsigned long length = 0;
  while (text[length] != 0) {
    ++length;
  }
  return length;
}

const KtCodeSet& characterSet(unsigned char code) { return KtCodeSet::Get(code == kDefault8 ? narrowSet() : code); }

void mapUnits(char* target, unsigned char targetCode, const char* source, unsigned char sourceCode, unsigned long count,
              bool swap) {
  const bool isWide = KtCodeSet::CharSizeOf(sourceCode) == 2;
  if (KtCodeSet::CharSizeOf(targetCode) == 2) {
    isWide ? copyWide(target, source, count, swap) : widen(target, source, KtCodeSet::Get(sourceCode), count);
  } else if (isWide) {
    narrow(target, KtCodeSet::Get(targetCode), source, count, swap);
  } else if (sourceCode == targetCode) {
    std::memmove(target, source, count);
  } else {
    mapNarrow(target, source, mapTable(targetCode, sourceCode), count);
  }
}

}  // namespace kt
