// The needle is split in two where no repetition reaches across: a mismatch right of the split then tells how far to
// step, and the left half is compared only once the right one matches.
#include "values/two_way_search.h"

#include "values/blob_search.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace kt {
namespace {

using Bytes = const unsigned char*;

struct Split {
  unsigned long at;      // bytes left of it
  unsigned long period;  // of what is right of it
};

// The greatest suffix in the order of bytes, or in the reverse order, and its period.
Split greatestSuffix(Bytes needle, unsigned long n, bool reverse) {
  unsigned long suffix = 0, candidate = 1, same = 0, period = 1;
  while (candidate + same < n) {
    const unsigned char a = needle[suffix + same];
    const unsigned char b = needle[candidate + same];
    if (a == b) {
      ++same;
      if (same == period) {
        candidate += period;
        same = 0;
      }
    } else if ((b < a) != reverse) {
      candidate += same + 1;
      same = 0;
      period = candidate - suffix;
    } else {
      suffix = candidate++;
      same = 0;
      period = 1;
    }
  }
  return {suffix, period};
}

Split splitOf(Bytes needle, unsigned long n) {
  const Split up = greatestSuffix(needle, n, false);
  const Split down = greatestSuffix(needle, n, true);
  return up.at > down.at ? up : down;
}

// How many bytes of the two are equal from `from` on, up to n.
unsigned long equalUpTo(Bytes a, Bytes b, unsigned long from, unsigned long n) {
  for (; n - from >= 8; from += 8) {
    std::uint64_t wordA, wordB;
    std::memcpy(&wordA, a + from, sizeof wordA);
    std::memcpy(&wordB, b + from, sizeof wordB);
    const std::uint64_t differs = wordA ^ wordB;
    if (differs == 0) continue;
    const int bits = std::endian::native == std::endian::big ? std::countl_zero(differs) : std::countr_zero(differs);
    return from + static_cast<unsigned long>(bits) / 8;
  }
  while (from < n && a[from] == b[from]) ++from;
  return from;
}

// Finds the next place whose byte behind the split is right, once enough places in a row have failed there.
class SplitByte {
public:
  SplitByte(Bytes hay, unsigned long places, Bytes needle, unsigned long split)
      : hay_(hay + split), places_(places), byte_(needle[split]) {}

  // The place behind `at`, which failed there, or one further on.
  unsigned long after(unsigned long at) {
    if (++at >= places_ || ++inARow_ < kPatience) return at;
    const void* found = std::memchr(hay_ + at, byte_, places_ - at);
    return found == nullptr ? places_ : static_cast<unsigned long>(static_cast<Bytes>(found) - hay_);
  }
  void reset() { inARow_ = 0; }

private:
  static constexpr unsigned kPatience = 16;
  Bytes hay_;
  unsigned long places_;
  unsigned char byte_;
  unsigned inARow_ = 0;
};

// The needle repeats itself: what matched of the next place is remembered, never compared twice.
unsigned long findPeriodic(Bytes hay, unsigned long places, Bytes needle, unsigned long n, const Split& split) {
  unsigned long remembered = 0;
  for (unsigned long at = 0; at < places;) {
    const unsigned long from = split.at > remembered ? split.at : remembered;
    const unsigned long equal = equalUpTo(hay + at, needle, from, n);
    if (equal < n) {
      at += equal - split.at + 1;
      remembered = 0;
      continue;
    }
    unsigned long left = split.at;
    while (left > remembered && hay[at + left - 1] == needle[left - 1]) --left;
    if (left <= remembered) return at;
    at += split.period;
    remembered = n - split.period;
  }
  return kBytesNotFound;
}

unsigned long findAperiodic(Bytes hay, unsigned long places, Bytes needle, unsigned long n, unsigned long split) {
  const unsigned long step = (split > n - split ? split : n - split) + 1;
  SplitByte splitByte(hay, places, needle, split);
  for (unsigned long at = 0; at < places;) {
    const unsigned long equal = equalUpTo(hay + at, needle, split, n);
    if (equal == split) {
      at = splitByte.after(at);
      continue;
    }
    splitByte.reset();
    if (equal < n) {
      at += equal - split + 1;
    } else if (std::memcmp(hay + at, needle, split) == 0) {
      return at;
    } else {
      at += step;
    }
  }
  return kBytesNotFound;
}

}  // namespace

unsigned long findTwoWay(const unsigned char* hay, unsigned long hayLength, const unsigned char* needle,
                         unsigned long needleLength) {
  if (needleLength > hayLength) return kBytesNotFound;
  const unsigned long places = hayLength - needleLength + 1;
  const Split split = splitOf(needle, needleLength);
  const bool repeats =
      split.at + split.period <= needleLength && std::memcmp(needle, needle + split.period, split.at) == 0;
  return repeats ? findPeriodic(hay, places, needle, needleLength, split)
                 : findAperiodic(hay, places, needle, needleLength, split.at);
}

}  // namespace kt
