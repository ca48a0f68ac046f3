// ktseal.h - the seal: a 48-bit number made from an object number.
#ifndef KTSEAL_H
#define KTSEAL_H

#include "ktapi.h"
#include "ktint64.h"

#include <cstddef>
#include <cstdint>

class KtObjId;
class KtString;

// KtSeal: an unsigned 48-bit number in three 16-bit words.
//
// Range:  0 to 2^48 - 1.
// Null:   none. A new seal is 0.
// Order:  that of the numbers; results are differences of words (in memory) or of bytes (on disk), not reduced to 1.
// Size:   6 bytes.
// Disk:   docs/formats/numbers.md, Seals: 6 bytes, most significant first, whatever the format code, so that seals order
//         by their bytes.
// Text:   the decimal number, as KtInt64 prints and scans it under "%S". Printing appends.
// Status: a text that cannot be scanned gives 2^48 - 1, the low 48 bits of -1.
// Owner:  a plain value, trivially copyable.
// Threads: pure.
class KTTM_API KtSeal {
public:
  std::uint16_t highWord;    // bits 47 to 32
  std::uint16_t middleWord;  // bits 31 to 16
  std::uint16_t lowWord;     // bits 15 to 0

  constexpr KtSeal() : highWord(0), middleWord(0), lowWord(0) {}

  void ConvertFrom(const KtObjId& id);      // its high and low fields; the block is dropped
  void ConvertFrom(const KtInt64& number);  // the low 48 bits
  void ConvertTo(KtInt64& number) const;    // 0 to 2^48 - 1

  constexpr int operator==(const KtSeal& other) const { return !(*this != other); }
  // 0 when equal, else this seal's first differing word minus the other's.
  constexpr int operator!=(const KtSeal& other) const {
    if (highWord != other.highWord) return highWord - other.highWord;
    if (middleWord != other.middleWord) return middleWord - other.middleWord;
    return lowWord - other.lowWord;
  }

  KtString& PrintToKtString(KtString& out) const;  // appends; returns out
  void ScanFromKtString(const KtString& in);       // an empty text gives 0
};

static_assert(sizeof(KtSeal) == 6 && offsetof(KtSeal, middleWord) == 2 && offsetof(KtSeal, lowWord) == 4);

#endif
