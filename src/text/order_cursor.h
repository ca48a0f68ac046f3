// order_cursor.h - the characters of a text as collation keys, the way every comparison, hash and index key reads them.
//
// A weight is the 32-bit collation key of one character: the kind in the top byte, then the order; a letter's case
// (bits 5-6) and diacritic (bits 0-4) stand in the low byte, so that masks select the level of a comparison. Weights
// come from tables that are built once per code set and kind, in static storage, and read without locks.
#ifndef KT_ORDER_CURSOR_H
#define KT_ORDER_CURSOR_H

#include "text_units.h"

#include <ktin.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>

namespace kt {

// A text that somebody else owns: in memory up to its terminator, or in a disk record, which has none.
struct TextRef {
  static constexpr unsigned long kToTerminator = 0xFFFFFFFFul;

  const char* text = nullptr;           // may be unaligned; null is an empty text
  unsigned long limit = kToTerminator;  // characters that are readable; a zero character ends the text before
  unsigned char codeSet = 1;            // 0 the native set, 255 the default 8-bit set
  unsigned char language = 0;
  unsigned char flag = 1;  // order of 16-bit characters: 1, 8, 255 host; 2 big-endian; else little

  // Language 254 makes a null value, and so does code set 254 with language 0.
  bool isNull() const { return language == 254 || (codeSet == 254 && language == 0); }
};

using Weight = std::uint32_t;

constexpr Weight kSeveralOrders = 1;      // stands in a page for a character with more than one order; no key is 1
constexpr unsigned kFirstTextOrder = 80;  // ignorable orders: spaces and controls below, symbols from here
constexpr unsigned kFirstSignificantOrder = 16128;  // digits, then letters

// DISK: index keys consist of these numbers.
constexpr Weight collationKey(unsigned order, unsigned kind) {
  if (order == 0) return 0;
  const bool plain = kind == KtUnicodeProps::kIdeographicKind || (order & 0xC000u) != 0x4000u;
  return kind << 24 | (plain ? order << 8 : (order & 0x407Fu) << 8 | (order >> 7 & 127u));
}

// Weights below this are ignorable, or 0, the end of the text.
constexpr Weight firstSignificant(unsigned kind) {
  return kind < KtUnicodeProps::kIdeographicKind ? kind << 24 | kFirstSignificantOrder << 8 : 1;
}

// The order of an ignorable weight.
constexpr int ignorableOrder(Weight weight) { return static_cast<int>(weight >> 8 & 0xFFFFu); }

constexpr Weight kLevelMask = 127;  // case and diacritic
constexpr Weight kDiacriticMask = 31;
constexpr Weight kCaseMask = 96;

// Keys stay below 2^31, so that their difference is a signed 32-bit number.
constexpr std::int32_t keyDifference(Weight a, Weight b) { return static_cast<std::int32_t>(a - b); }

// --- tables -------------------------------------------------------------------------------------------------------

// The weights of an 8-bit code set under one kind.
struct ByteWeights {
  static constexpr unsigned long kCharSize = 1;

  Weight of[256];
  Weight primary[256];  // without the lower levels; 0 for the end, kIgnorable for what is ignorable
  Weight significant;   // firstSignificant(kind)
  unsigned char kind;
};

constexpr Weight kIgnorable = 1;  // no primary weight has these bits
constexpr Weight kSeveral = 2;    // of a character with several orders

// The weights of the 16-bit characters under one kind: of character c, page[c >> 8].weights[c & 255] +
// page[c >> 8].offset.
constexpr unsigned kNearUnits = 0x4000;          // the scripts of letters, kana among them, and the marks of all texts
static_assert(std::has_single_bit(kNearUnits));  // so that areNear takes two in one comparison
constexpr bool areNear(unsigned unit1, unsigned unit2) { return (unit1 | unit2) < kNearUnits; }

struct WideWeights {
  static constexpr unsigned long kCharSize = 2;

  struct Page {
    const Weight* weights;
    Weight offset;
  };
  Page page[256];
  Weight primary[kNearUnits];  // as in ByteWeights; or kSeveral
  Weight significant;
  unsigned char kind;
};

constexpr unsigned kKindSlots = 5;  // kinds 1 to 4, and kind 20 in slot 0
constexpr unsigned kindSlot(unsigned kind) { return kind < kKindSlots ? kind : 0; }

// Defined here so that they are known to be this library's own: others are found by one more load.
inline std::atomic<unsigned char> kindOfLanguage[256];  // 0: not asked for yet
inline std::atomic<const ByteWeights*> byteWeightTables[225][kKindSlots];
inline std::atomic<const WideWeights*> wideWeightTables[kKindSlots];

// The tables of texts that are no null, under a code set and a language that stand for themselves; by language * 256 +
// code set, and by language. Null as long as noteUsualTables was not called. Most of it is never touched.
inline std::atomic<const ByteWeights*> usualByteTables[65536];
inline std::atomic<const WideWeights*> usualWideTables[256];

unsigned char findCollationKind(unsigned char language);
const ByteWeights* buildByteWeights(unsigned char codeSet, unsigned char kind);
const WideWeights* buildWideWeights(unsigned char kind);
unsigned char standInCodeSet(unsigned char codeSet);

inline unsigned char collationKind(unsigned char language) {
  const unsigned char kind = kindOfLanguage[language].load(std::memory_order_relaxed);
  return kind != 0 ? kind : findCollationKind(language);
}

// The code set whose characters a text holds: 0 and 255 are replaced by an 8-bit set, every other code stays.
inline unsigned char storedCodeSet(unsigned char codeSet) {
  return codeSet != 0 && codeSet != 255 ? codeSet : standInCodeSet(codeSet);
}

// codeSet: 1 to 224.
inline const ByteWeights* byteWeights(unsigned char codeSet, unsigned char kind) {
  const ByteWeights* table = byteWeightTables[codeSet][kindSlot(kind)].load(std::memory_order_acquire);
  return table != nullptr ? table : buildByteWeights(codeSet, kind);
}

inline const WideWeights* wideWeights(unsigned char kind) {
  const WideWeights* table = wideWeightTables[kindSlot(kind)].load(std::memory_order_acquire);
  return table != nullptr ? table : buildWideWeights(kind);
}

void noteUsualTables(unsigned char codeSet, unsigned char language);

// codes: language * 256 + code set. Null for texts that are not usual, too, and for those of the other form.
inline const ByteWeights* usualByteWeights(unsigned codes) {
  return usualByteTables[codes].load(std::memory_order_acquire);
}
inline const WideWeights* usualWideWeights(unsigned codes) {
  return (codes & 255) - 225 < 29 ? usualWideTables[codes >> 8].load(std::memory_order_acquire) : nullptr;
}

// How far to rotate a 16-bit character as loaded from memory to get its number: 0 or 8 bits.
constexpr int unitRotation(unsigned char flag) { return isSwappedText(flag) ? 8 : 0; }

// The weights of a character with more than one order; 0 where there are fewer than three.
struct SeveralWeights {
  Weight first = 0, second = 0, third = 0;
};
SeveralWeights severalWeights(unsigned unicode, unsigned char kind);

inline unsigned loadUnit(const char* text, unsigned long index, int rotation) {
  std::uint16_t unit;
  std::memcpy(&unit, text + index * 2, sizeof unit);
  return static_cast<std::uint16_t>(unit << rotation | unit >> rotation);
}

inline Weight weightOf(const WideWeights& table, unsigned unit) {
  const WideWeights::Page& page = table.page[unit >> 8];
  return page.weights[unit & 255] + page.offset;
}
// --- cursors ------------------------------------------------------------------------------------------------------
//
// next() gives the weight of the next order, and 0, again and again, at the end of the text: a zero character, the end
// of what is readable, or the `length` given. Cursors are values: a copy is a saved position.

class ByteCursor {
public:
  using Table = ByteWeights;
  static constexpr unsigned long kCharSize = Table::kCharSize;

  ByteCursor(const char* text, unsigned long limit, const ByteWeights* table)
      : text_(reinterpret_cast<const unsigned char*>(text)), limit_(text != nullptr ? limit : 0), table_(table) {}
  ByteCursor(const TextRef& ref, unsigned long length, unsigned char kind)
      : ByteCursor(ref.text, std::min(ref.limit, length), byteWeights(storedCodeSet(ref.codeSet), kind)) {}

  Weight next() {
    if (position_ == limit_) return 0;
    const Weight weight = weightAt(position_);
    if (weight == 0) return end();
    ++position_;
    return weight;
  }
  void dropPending() {}

  Weight significant() const { return table_->significant; }
  unsigned char kind() const { return table_->kind; }
  const ByteWeights* table() const { return table_; }
  unsigned long position() const { return position_; }  // characters taken
  unsigned long limit() const { return limit_; }
  const char* data() const { return reinterpret_cast<const char*>(text_); }
  Weight weightAt(unsigned long index) const { return table_->of[text_[index]]; }
  void moveTo(unsigned long position) { position_ = position; }
  // True when equal bytes on both sides are equal characters with equal weights.
  bool sharesForm(const ByteCursor& other) const { return table_ == other.table_; }

private:
  // A branch of its own: the next character must not wait for this one's weight.
  Weight end() {
    limit_ = position_;
    return 0;
  }

  const unsigned char* text_;
  unsigned long position_ = 0;
  unsigned long limit_;
  const ByteWeights* table_;
};

class WideCursor {
public:
  using Table = WideWeights;
  static constexpr unsigned long kCharSize = Table::kCharSize;

  WideCursor(const char* text, unsigned long limit, const WideWeights* table, int rotation)
      : text_(text), limit_(text != nullptr ? limit : 0), table_(table), rotation_(rotation) {}
  WideCursor(const TextRef& ref, unsigned long length, unsigned char kind)
      : WideCursor(ref.text, std::min(ref.limit, length), wideWeights(kind), unitRotation(ref.flag)) {}

  Weight next() {
    if (pending_.second != 0) return nextPending();
    if (position_ == limit_) return 0;
    const Weight weight = weightAt(position_);
    if (weight == 0) return end();
    ++position_;
    if (weight != kSeveralOrders) return weight;
    pending_ = severalWeights(unitAt(position_ - 1), kind());
    return pending_.first;
  }
  // Leaves a character behind of which only some orders were taken.
  void dropPending() { pending_ = {}; }

  Weight significant() const { return table_->significant; }
  unsigned char kind() const { return table_->kind; }
  const WideWeights* table() const { return table_; }
  int rotation() const { return rotation_; }
  unsigned long position() const { return position_; }
  unsigned long limit() const { return limit_; }
  const char* data() const { return text_; }
  Weight weightAt(unsigned long index) const { return weightOf(*table_, unitAt(index)); }
  void moveTo(unsigned long position) { position_ = position; }
  bool sharesForm(const WideCursor& other) const { return table_ == other.table_ && rotation_ == other.rotation_; }

private:
  Weight end() {
    limit_ = position_;
    return 0;
  }
  unsigned unitAt(unsigned long index) const { return loadUnit(text_, index, rotation_); }
  Weight nextPending() {
    pending_ = {pending_.second, pending_.third, 0};
    return pending_.first;
  }

  const char* text_;
  unsigned long position_ = 0;
  unsigned long limit_;
  const WideWeights* table_;
  int rotation_;
  SeveralWeights pending_;  // first: the one given last
};

// Calls use(cursor) with the cursor type that the text's code set asks for. length: at most that many characters.
template <class Use>
decltype(auto) withCursor(const TextRef& ref, unsigned long length, Use&& use) {
  const unsigned char kind = collationKind(ref.language);
  if (KtCodeSet::CharSizeOf(ref.codeSet) == 1 || ref.codeSet == 255) return use(ByteCursor(ref, length, kind));
  return use(WideCursor(ref, length, kind));
}

// The same for two texts: use(cursor of a, cursor of b).
template <class Use>
decltype(auto) withCursors(const TextRef& a, const TextRef& b, unsigned long length, Use&& use) {
  return withCursor(a, length, [&](auto first) -> decltype(auto) {
    return withCursor(b, length, [&](auto second) -> decltype(auto) { return use(first, second); });
  });
}

// A `length` argument as a number of characters; only -1 and positive lengths get here.
constexpr unsigned long lengthLimit(short length) {
  return length < 0 ? TextRef::kToTerminator : static_cast<unsigned long>(length);
}

}  // namespace kt

#endif
