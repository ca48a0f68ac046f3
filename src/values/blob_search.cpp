// Looks for two bytes of the needle at their distance, many places at a time, and compares the whole needle only there.
// Where such candidates often fail, the three bytes that are rarest in the hay take their place. Long needles, and hays of
// few different bytes, are searched by skipping most of the places instead. Each of these knows what it costs, and gives
// up where it gets on too slowly: hays made so that all fail get a search that is linear in the worst case.
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

// A search under way: a needle of n bytes may begin at so many places of the hay.
struct Task {
  Bytes hay, needle;
  unsigned long n, places;
};

// What a failed candidate costs, in bytes that the linear search reads in that time; so many bytes are compared in the
// time of one.
constexpr unsigned long kFailure = 16;
constexpr unsigned long kComparedForOne = 16;

// Compares the needle with candidates. Where the last one failed the next is likely to fail, too.
class Candidates {
public:
  explicit Candidates(const Task& task) : task_(task) {}

  // Whether the needle is at this place. Compares ever longer pieces, so that what it adds to `spent` is what it took.
  bool match(unsigned long at, unsigned long& spent) {
    const Bytes hay = task_.hay + at;
    spent += kFailure;
    if (hay[failedAt_] != task_.needle[failedAt_]) return false;
    unsigned long piece = std::min(task_.n, 8ul);
    for (unsigned long done = 0; done < task_.n; done += piece) {
      piece = std::min(task_.n - done, std::max(piece, done));
      if (std::memcmp(hay + done, task_.needle + done, piece) != 0) {
        const Bytes begin = task_.needle + done;
        failedAt_ = static_cast<unsigned long>(std::mismatch(begin, begin + piece, hay + done).first - task_.needle);
        spent += (failedAt_ - done) / 2;
        return false;
      }
      spent += piece / kComparedForOne;
    }
    return true;
  }
  // The first byte that told the last candidate from a match, or one that did so before.
  unsigned long failedAt() const { return failedAt_; }

private:
  const Task& task_;
  unsigned long failedAt_ = 0;
};

unsigned long findLinear(const Task& task, unsigned long from) {
  const unsigned long found = findTwoWay(task.hay + from, task.places - from + task.n - 1, task.needle, task.n);
  return found == kBytesNotFound ? found : from + found;
}

// --- skipping -------------------------------------------------------------------------------------------------------

// Where groups of eight bytes stand in the beginning of a needle: of equal ones, and of some that are taken for equal,
// the last.
class Grams {
public:
  static constexpr unsigned long kSize = 8;

  // `last` counts up from 1: 0 is no place.
  Grams(Bytes needle, unsigned long head) : last_(head - kSize + 1) {
    for (unsigned long i = 0; i < last_; ++i) {
      std::uint16_t& place = places_[hash(needle + i)];
      if (i + 1 == last_) repeatsAfter_ = last_ - place;
      place = static_cast<std::uint16_t>(i + 1);
    }
  }
  unsigned long placeOf(Bytes p) const { return places_[hash(p)]; }
  unsigned long last() const { return last_; }
  // From the last gram back to the one that is taken for equal, or in front of the first.
  unsigned long repeatsAfter() const { return repeatsAfter_; }

private:
  static unsigned hash(Bytes p) {
    std::uint64_t gram;
    std::memcpy(&gram, p, sizeof gram);
    return static_cast<unsigned>(gram * 0x9E3779B97F4A7C15u >> 52);
  }
  unsigned long last_;
  unsigned long repeatsAfter_ = 0;
  std::array<std::uint16_t, 4096> places_{};
};

constexpr unsigned long kLongestHead = 512;  // what of a needle goes into the table
constexpr unsigned long kShortestHead = 12;

// Looks at the gram that the head of a match would end with: the next match begins where the needle has that gram, and
// behind it where the needle lacks it, which is most of the time and a step of fixed length. Gives up, with `from` below
// task.places, where that costs more than a share of the places passed.
unsigned long findBySkipping(const Task& task, unsigned long& from, unsigned long share) {
  constexpr unsigned long kAllowance = 1024;
  const unsigned long head = std::min(task.n, kLongestHead);
  const Grams grams(task.needle, head);
  const unsigned long last = grams.last();
  const Bytes end = task.hay + last - 1;
  const unsigned long began = from;
  Candidates candidates(task);
  for (unsigned long spent = 0; spent <= kAllowance + (from - began) / share;) {
    unsigned long place = 0;
    while (from < task.places && (place = grams.placeOf(end + from)) == 0) from += last;
    if (from >= task.places) break;
    if (place != last) {
      from += last - place;
      spent += kFailure / 2;
      continue;
    }
    if (candidates.match(from, spent)) return from;
    from += grams.repeatsAfter();
  }
  return kBytesNotFound;
}

// --- probing --------------------------------------------------------------------------------------------------------

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
  explicit ProbeSearch(const Task& task) : task_(task), candidates_(task), probes_{} {
    setProbe(0, 0);
    setProbe(1, task.n - 1);
  }

  // The first match that begins below `stop`, else kBytesNotFound; goes on where it stopped, which is below `stop`
  // where candidates have cost more than a share of the places passed, whatever the probes.
  unsigned long find(unsigned long& from, unsigned long stop, unsigned long share) {
    began_ = from;
    spent_ = 0;
    while (from < stop) {
      from = stage_ == 0 ? blobNextOfTwo(probes_, from, stop) : blobNextOfThree(probes_, from, stop);
      if (from == stop) break;
      if (candidates_.match(from, spent_)) return from;
      ++from;
      const unsigned long part = stage_ + 1 < kStages ? kShare : share;
      const bool failsOften = spent_ > allowance() + (from - began_) / part;
      if (failsOften && !chooseProbes(from)) break;
    }
    return kBytesNotFound;
  }

private:
  // The probes tried one after another: the needle's ends, its rarest bytes, then what told candidates from matches.
  static constexpr unsigned kStages = 4;
  // What all candidates of a stage may cost beside a share of the places passed. The first stage ends when it has cost as
  // much as finding the rarest bytes does.
  static constexpr unsigned long kAllowance = 512;
  static constexpr unsigned long kChoice = 512;
  static constexpr unsigned long kShare = 64;  // other probes come at little cost

  void setProbe(unsigned probe, unsigned long place) { probes_[probe] = {task_.hay + place, task_.needle[place]}; }

  // The next probes, after the candidate in front of `from` failed; false when there are none.
  bool chooseProbes(unsigned long from) {
    if (stage_ + 1 == kStages) return false;
    ++stage_;
    began_ = from;
    spent_ = 0;
    if (stage_ == 1) {
      chooseRarest(Sample(task_.hay, task_.places + task_.n - 1));
    } else {
      setProbe(stage_ - 1, candidates_.failedAt());
    }
    return true;
  }

  // Bytes of the needle among which the rarest are chosen.
  unsigned long choice() const { return std::min(task_.n, kChoice); }

  unsigned long allowance() const { return kAllowance + (stage_ == 0 ? 4 * choice() : 0); }

  // A byte that is rare in the hay counts as common once it is chosen.
  void chooseRarest(Sample sample) {
    for (unsigned probe = 0; probe < kProbes; ++probe) {
      unsigned long rarest = 0;
      for (unsigned long i = 1; i < choice(); ++i)
        if (sample[task_.needle[i]] < sample[task_.needle[rarest]]) rarest = i;
      setProbe(probe, rarest);
      sample[task_.needle[rarest]] += kCommon;
    }
  }

  static constexpr unsigned kProbes = 3;
  static constexpr std::uint16_t kCommon = 1024;

  const Task& task_;
  Candidates candidates_;
  Probe probes_[kProbes];
  unsigned stage_ = 0;
  unsigned long began_ = 0;
  unsigned long spent_ = 0;
};

constexpr unsigned long kLongNeedle = 48;
constexpr unsigned long kWorthSkipping = 16384;  // places that pay for making the table
constexpr unsigned long kFirstPlaces = 1024;     // a match near the beginning comes without it

// By turns, first with little patience for what gets on slowly, then with more.
unsigned long findByTurns(const Task& task) {
  const bool maySkip = task.n >= kShortestHead;
  const bool skipsFirst = task.n >= kLongNeedle && task.places >= kWorthSkipping;
  ProbeSearch probes(task);
  unsigned long from = 0;
  unsigned long stop = skipsFirst ? kFirstPlaces : task.places;
  for (const unsigned long share : {16ul, maySkip ? 4ul : 1ul}) {
    unsigned long found = probes.find(from, stop, share);
    if (found == kBytesNotFound && maySkip && from + kFirstPlaces < task.places)
      found = findBySkipping(task, from, share);
    if (found != kBytesNotFound || from >= task.places) return found;
    stop = task.places;
  }
  return findLinear(task, from);
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
  return findByTurns({hay, needle, needleLength, hayLength - needleLength + 1});
}

}  // namespace kt
