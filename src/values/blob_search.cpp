// Looks for two bytes of the needle at their distance, many places at a time, and compares the whole needle only there.
// Where such candidates often fail, the three bytes that are rarest in the hay take their place. Two kinds of input need
// more: long needles, most of whose places can be skipped by looking at few bytes, and hays made so that candidates keep
// failing, which get a search that is linear in the worst case.
#include "values/blob_search.h"

#include "clones.h"
#include "values/two_way_search.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace kt {
namespace {

using Bytes = const unsigned char*;

using Piece [[gnu::vector_size(32)]] = std::uint8_t;
using PieceWords [[gnu::vector_size(32)]] = std::uint64_t;
constexpr unsigned kPieces = 4;
constexpr unsigned long kPlaces = kPieces * sizeof(Piece);

// Where the bytes at p are those of `wanted`. By reference: vectors wider than the plain machine's are no results.
[[gnu::always_inline]] inline void findEqual(Piece& isEqual, Bytes p, const Piece& wanted) {
  Piece piece;
  std::memcpy(&piece, p, sizeof piece);
  isEqual = reinterpret_cast<Piece>(piece == wanted);
}

// The first byte of a match mask that is not 0, in the order of memory.
inline unsigned long firstMatch(const unsigned char* mask) {
  unsigned long at = 0;
  std::uint64_t word;
  for (;; at += sizeof word) {
    std::memcpy(&word, mask + at, sizeof word);
    if (word != 0) break;
  }
  const int bits = std::endian::native == std::endian::big ? std::countl_zero(word) : std::countr_zero(word);
  return at + static_cast<unsigned long>(bits) / 8;
}

// A byte of the needle, and where it stands in the hay for a match at the hay's first place.
struct Probe {
  Bytes at;
  unsigned char byte;
};

// The first place i from `from` on, below `stop`, where every probe finds its byte i further on; else stop.
template <unsigned kProbes>
[[gnu::always_inline]] inline unsigned long nextCandidate(const Probe* probes, unsigned long from, unsigned long stop) {
  Piece wanted[kProbes];
  for (unsigned i = 0; i < kProbes; ++i) wanted[i] = probes[i].byte - Piece{};
  for (; stop - from >= kPlaces; from += kPlaces) {
    Piece found[kPieces];
    Piece any{};
    for (unsigned piece = 0; piece < kPieces; ++piece) {
      const unsigned long at = from + piece * sizeof(Piece);
      findEqual(found[piece], probes[0].at + at, wanted[0]);
      for (unsigned i = 1; i < kProbes; ++i) {
        Piece isEqual;
        findEqual(isEqual, probes[i].at + at, wanted[i]);
        found[piece] &= isEqual;
      }
      any |= found[piece];
    }
    const auto words = reinterpret_cast<PieceWords>(any);
    if ((words[0] | words[1] | words[2] | words[3]) == 0) continue;
    unsigned char mask[kPlaces];
    std::memcpy(mask, found, sizeof found);
    return from + firstMatch(mask);
  }
  const auto isCandidate = [&](unsigned long i) {
    return std::all_of(probes, probes + kProbes, [i](const Probe& probe) { return probe.at[i] == probe.byte; });
  };
  while (from < stop && !isCandidate(from)) ++from;
  return from;
}

KT_CLONES unsigned long blobNextOfTwo(const Probe* probes, unsigned long from, unsigned long stop) {
  return nextCandidate<2>(probes, from, stop);
}
KT_CLONES unsigned long blobNextOfThree(const Probe* probes, unsigned long from, unsigned long stop) {
  return nextCandidate<3>(probes, from, stop);
}

// How often each byte occurs among some 256 bytes spread over the hay.
class Sample {
public:
  Sample(Bytes hay, unsigned long length) {
    const unsigned long step = length / 256 + 1;
    for (unsigned long i = 0; i < length; i += step) ++counts_[hay[i]];
  }
  std::uint16_t& operator[](unsigned char byte) { return counts_[byte]; }

private:
  std::array<std::uint16_t, 256> counts_{};
};

class ProbeSearch {
public:
  ProbeSearch(Bytes hay, unsigned long hayLength, Bytes needle, unsigned long n)
      : hay_(hay), needle_(needle), n_(n), places_(hayLength - n + 1), probes_{} {
    setProbe(0, 0);
    setProbe(1, n - 1);
  }

  unsigned long places() const { return places_; }

  // The first match from `from` on that begins below `stop`, else kBytesNotFound. Once candidates have failed too often
  // any match from `from` on; then the search is over.
  unsigned long find(unsigned long from, unsigned long stop) {
    while (from < stop) {
      from = stage_ == 0 ? blobNextOfTwo(probes_, from, stop) : blobNextOfThree(probes_, from, stop);
      if (from == stop) break;
      if (matches(from)) return from;
      ++from;
      const bool failsOften = spent_ > allowance() + (from - began_) / kShare[stage_];
      if (failsOften && !chooseProbes(from)) return findLinear(from);
    }
    return kBytesNotFound;
  }
  bool isOver() const { return isOver_; }

private:
  // The probes tried one after another: the needle's ends, its rarest bytes, then what told candidates from matches.
  static constexpr unsigned kStages = 4;
  // What a failed candidate costs, and what all of a stage may cost beside a share of the places passed, in bytes that
  // the linear search reads in that time. The first stage
  // ends when it has cost as much as finding the rarest bytes does.
  static constexpr unsigned long kFailure = 16;
  static constexpr unsigned long kAllowance = 512;
  static constexpr unsigned long kChoice = 512;
  static constexpr unsigned long kShare[kStages] = {64, 1, 1, 1};

  void setProbe(unsigned probe, unsigned long place) { probes_[probe] = {hay_ + place, needle_[place]}; }

  bool matches(unsigned long at) {
    spent_ += kFailure;
    if (n_ >= 8) {
      if (std::memcmp(hay_ + at, needle_, 8) != 0) return false;
      spent_ += n_;
    }
    return std::memcmp(hay_ + at, needle_, n_) == 0;
  }

  // The next probes, after the candidate in front of `from` failed; false when there are none.
  bool chooseProbes(unsigned long from) {
    if (++stage_ == kStages) return false;
    began_ = from;
    spent_ = 0;
    if (stage_ == 1) {
      chooseRarest(Sample(hay_, places_ + n_ - 1));
    } else {
      const Bytes failed = hay_ + from - 1;
      setProbe(stage_ - 1, static_cast<unsigned long>(std::mismatch(needle_, needle_ + n_, failed).first - needle_));
    }
    return true;
  }

  // Bytes of the needle among which the rarest are chosen.
  unsigned long choice() const { return n_ < kChoice ? n_ : kChoice; }

  unsigned long allowance() const { return kAllowance + (stage_ == 0 ? 4 * choice() : 0); }

  // A byte that is rare in the hay counts as common once it is chosen.
  void chooseRarest(Sample sample) {
    for (unsigned probe = 0; probe < kProbes; ++probe) {
      unsigned long rarest = 0;
      for (unsigned long i = 1; i < choice(); ++i)
        if (sample[needle_[i]] < sample[needle_[rarest]]) rarest = i;
      setProbe(probe, rarest);
      sample[needle_[rarest]] += kCommon;
    }
  }

  unsigned long findLinear(unsigned long from) {
    isOver_ = true;
    const unsigned long found = findTwoWay(hay_ + from, places_ - from + n_ - 1, needle_, n_);
    return found == kBytesNotFound ? found : from + found;
  }

  static constexpr unsigned kProbes = 3;
  static constexpr std::uint16_t kCommon = 1024;

  Bytes hay_, needle_;
  unsigned long n_, places_;
  Probe probes_[kProbes];
  unsigned stage_ = 0;
  unsigned long began_ = 0;
  unsigned long spent_ = 0;
  bool isOver_ = false;
};

// The groups of four bytes in the beginning of a needle, as a set that may hold a few more.
class Grams {
public:
  static constexpr unsigned long kSize = 4;

  Grams(Bytes needle, unsigned long n) {
    for (unsigned long i = 0; i + kSize <= n; ++i) isHeld_[hash(needle + i)] = 1;
  }
  // Two groups, one behind the other.
  bool mayHoldBoth(Bytes p) const { return isHeld_[hash(p)] != 0 && isHeld_[hash(p + kSize)] != 0; }

private:
  static std::uint32_t hash(Bytes p) {
    std::uint32_t gram;
    std::memcpy(&gram, p, sizeof gram);
    return gram * 2654435761u >> 20;
  }
  std::array<unsigned char, 4096> isHeld_{};
};

constexpr unsigned long kShortestToSkip = 48;
constexpr unsigned long kLongestHead = 512;      // what of a needle goes into the set
constexpr unsigned long kWorthSkipping = 16384;  // places that pay for making the set
constexpr unsigned long kFirstPlaces = 1024;     // a match near the beginning comes without it

// A needle that begins in a stretch of places as long as its head, less two grams, covers the grams at the end of the
// stretch: where these are none of the head's, the stretch holds no match.
unsigned long findBySkipping(ProbeSearch& search, Bytes hay, Bytes needle, unsigned long head, unsigned long from) {
  const Grams grams(needle, head);
  const unsigned long stretch = head - 2 * Grams::kSize + 1;
  unsigned long held = 0, steps = 0;
  for (; search.places() - from >= stretch; from += stretch) {
    ++steps;
    if (!grams.mayHoldBoth(hay + from + stretch - 1)) continue;
    const unsigned long found = search.find(from, from + stretch);
    if (found != kBytesNotFound || search.isOver()) return found;
    if (++held >= 8 && held > steps / 4) return search.find(from + stretch, search.places());
  }
  return search.find(from, search.places());
}

}  // namespace

unsigned long findBytes(const unsigned char* hay, unsigned long hayLength, const unsigned char* needle,
                        unsigned long needleLength) {
  if (needleLength == 0) return 0;
  if (needleLength > hayLength) return kBytesNotFound;
  if (needleLength == 1) {
    const void* found = std::memchr(hay, needle[0], hayLength);
    return found == nullptr ? kBytesNotFound : static_cast<unsigned long>(static_cast<Bytes>(found) - hay);
  }
  ProbeSearch search(hay, hayLength, needle, needleLength);
  const unsigned long head = needleLength < kLongestHead ? needleLength : kLongestHead;
  if (head < kShortestToSkip || search.places() < kWorthSkipping) return search.find(0, search.places());
  const unsigned long found = search.find(0, kFirstPlaces);
  if (found != kBytesNotFound || search.isOver()) return found;
  return findBySkipping(search, hay, needle, head, kFirstPlaces);
}

}  // namespace kt
