// order_number.cpp - the slots of orders, and the numbers made of them.
#include "ops/order_number.h"

#include <cstdint>

namespace kt {
namespace {

// What one key measures, and so all that "equal" selects: next to nothing of a wide range, since how often a value occurs
// is not known here. A share is a quotient: the unit cancels out of it.
constexpr double kByteUnit = 128;
constexpr double kOrderUnit = 1048576;

constexpr int kSlotBits = 20;  // slots are told in parts of 2^20
constexpr int kSpanBits = 43;  // a span times a slot fits 64 bits, and a kind before it the mantissa of a double
constexpr unsigned kMostKinds = 31;

struct Slot {
  std::uint32_t from;
  std::uint32_t size;
};

// The end of a key: before all orders.
constexpr std::uint32_t kEndSize = 40960;

// --- slots of bytes -----------------------------------------------------------------------------------------------

struct ByteZone {
  unsigned first;
  std::uint32_t size;  // of one byte's slot
};

constexpr std::uint32_t kWide = 24576;

// Names are capitalised: where a word begins a capital is expected, within it a small letter.
struct ByteSlots {
  Slot of[256] = {};
  constexpr ByteSlots(std::uint32_t digit, std::uint32_t capital, std::uint32_t small) {
    const ByteZone zones[] = {{0x01, 512},     {0x20, 2048}, {'0', digit}, {0x3A, 1024}, {'A', capital},
                              {'Z' + 1, 1024}, {'a', small}, {0x7B, 1024}, {0x80, 512},  {0x100, 0}};
    std::uint32_t from = kEndSize;
    for (const ByteZone* zone = zones; zone->size != 0; ++zone)
      for (unsigned byte = zone->first; byte < zone[1].first; ++byte, from += zone->size) of[byte] = {from, zone->size};
  }
  constexpr bool isWithin() const { return of[255].from + of[255].size <= 1u << kSlotBits; }
};

constexpr ByteSlots kWordBegins(5120, kWide, 4096);
constexpr ByteSlots kInWord(5120, 4096, kWide);
constexpr ByteSlots kInNumber(57344, 4096, 4096);
static_assert(kWordBegins.isWithin() && kInWord.isWithin() && kInNumber.isWithin());

const ByteSlots& slotsAfter(Weight byte) {
  if (byte >= '0' && byte <= '9') return kInNumber;
  const Weight letter = byte | 0x20;
  return byte >= 0x80 || (letter >= 'a' && letter <= 'z') ? kInWord : kWordBegins;
}

// --- slots of orders ----------------------------------------------------------------------------------------------

constexpr unsigned kFirstLetter = 0x4000;
constexpr unsigned kFirstPlainLetter = 0x4000 + 3 * 4;  // A
constexpr unsigned kPlainLetters = 26;
constexpr std::uint32_t kBehindZSize = 4096;  // of letters that few languages have
constexpr unsigned kBehindLetters = 0x4080;
constexpr unsigned kFirstOther = 0x8000;   // letters of other scripts, 0x8000 + code
constexpr unsigned kFirstScript = 0x8370;  // alphabets: each has a page, or lies in one
constexpr unsigned kBehindScripts = 0xA000;
constexpr unsigned kBehindDigits = kFirstSignificantOrder + 100;

// One of several forms of a character: the usual first one has nearly all of the room.
constexpr Slot formSlot(std::uint32_t from, std::uint32_t size, unsigned form, unsigned forms) {
  const std::uint32_t rare = size / 32;
  const std::uint32_t usual = size - (forms - 1) * rare;
  return form == 0 ? Slot{from, usual} : Slot{from + usual + (form - 1) * rare, rare};
}

// Slots where letters and digits are expected. Zones in rising order: digits, damaged ones, letters, damaged ones, all else.
constexpr Slot latinSlot(unsigned order, std::uint32_t digitSize, std::uint32_t letterSize) {
  std::uint32_t from = kEndSize;
  if (order < kBehindDigits) {
    const unsigned form = order - kFirstSignificantOrder;
    return formSlot(from + form / 10 * digitSize, digitSize, form % 10, 10);
  }
  from += 10 * digitSize;
  if (order < kFirstPlainLetter) return {from + order - kBehindDigits, 1};
  from += kFirstPlainLetter - kBehindDigits;
  if (order < kBehindLetters) {
    const unsigned letter = (order - kFirstPlainLetter) / 4;
    const bool isBehindZ = letter >= kPlainLetters;
    from += std::min(letter, kPlainLetters) * letterSize + (isBehindZ ? letter - kPlainLetters : 0) * kBehindZSize;
    return formSlot(from, isBehindZ ? kBehindZSize : letterSize, order % 4, 4);
  }
  from += kPlainLetters * letterSize + 3 * kBehindZSize;
  if (order < kFirstOther) return {from + order - kBehindLetters, 1};
  from += kFirstOther - kBehindLetters;
  return {from + (order - kFirstOther) * 4, 4};
}

constexpr Slot afterLetter(unsigned order) { return latinSlot(order, 6144, 28672); }
constexpr Slot afterDigit(unsigned order) { return latinSlot(order, 60000, 8000); }

// Slots where the next character is expected to be of one page.
constexpr Slot afterScript(unsigned order, unsigned page) {
  constexpr std::uint32_t kExpected = 2560;
  const unsigned first = page << 8;
  std::uint32_t from = kEndSize;
  if (order < first) return {from + (order - kFirstSignificantOrder) * 4, 4};
  from += (kBehindScripts - kFirstSignificantOrder) * 4;
  if (order < first + 256) return {from + (order - first) * kExpected, kExpected};
  from += 256 * kExpected;
  return {from + (order - first - 256) * 2, 2};
}

// Slots where one of a large script is expected.
constexpr Slot afterIdeograph(unsigned order) {
  std::uint32_t from = kEndSize;
  if (order < kBehindScripts) return {from + (order - kFirstSignificantOrder) * 4, 4};
  from += (kBehindScripts - kFirstSignificantOrder) * 4;
  return {from + (order - kBehindScripts) * 36, 36};
}

constexpr Slot codeSlot(unsigned order) { return {kEndSize + order * 15, 15}; }

constexpr bool isWithin(Slot slot) { return slot.from + slot.size <= 1u << kSlotBits; }
static_assert(isWithin(afterLetter(0xFFFF)) && isWithin(afterDigit(0xFFFF)) && isWithin(afterIdeograph(0xFFFF)));
static_assert(isWithin(afterScript(0xFFFF, kFirstScript >> 8)) && isWithin(codeSlot(0xFFFF)));

constexpr unsigned orderOf(Weight weight) { return weight >> 8 & 0xFFFFu; }
constexpr unsigned kindOf(Weight weight) { return std::min(weight >> 24, kMostKinds); }

// Slots of alphabetic orders, by the order before.
Slot alphabeticSlot(Weight weight, Weight before) {
  const unsigned order = std::max(orderOf(weight), kFirstSignificantOrder);  // only damaged ones are below
  const unsigned last = orderOf(before);
  if (last >= kBehindScripts) return afterIdeograph(order);
  if (last >= kFirstScript) return afterScript(order, last >> 8);
  return last >= kFirstSignificantOrder && last < kFirstLetter ? afterDigit(order) : afterLetter(order);
}

Slot slotOf(Weight weight, Weight before) {
  return kindOf(weight) < KtUnicodeProps::kIdeographicKind ? alphabeticSlot(weight, before) : codeSlot(orderOf(weight));
}

// --- the orders of a key ------------------------------------------------------------------------------------------

// What a comparison of code set 0 with itself looks at.
class RawBytes {
public:
  explicit RawBytes(const IndexKey& key) : at_(key.body), end_(key.body + key.bytes) {}
  // 0 at the end, which a zero byte is too.
  Weight next() { return at_ != end_ ? *at_++ : 0; }
  static Slot slot(Weight byte, Weight before) { return slotsAfter(before).of[byte & 255]; }
  static unsigned kind(Weight) { return 0; }

private:
  const unsigned char* at_;
  const unsigned char* end_;
};

// The primary weights that order a key.
class PrimaryOrders {
public:
  explicit PrimaryOrders(const IndexKey& key)
      : words_(key), text_(bytesOf(key), key.bytes, collationKind(key.language)), isRaw_(key.isRaw()) {}
  Weight next() {
    Weight weight;
    do {
      weight = isRaw_ ? text_.next() : words_.next();
    } while (weight != 0 && weight < words_.significant());
    return weight & ~kLevelMask;
  }
  static Slot slot(Weight weight, Weight before) { return slotOf(weight, before); }
  static unsigned kind(Weight weight) { return kindOf(weight); }

private:
  // Words are no bytes of a text.
  static TextRef bytesOf(const IndexKey& key) { return key.isRaw() ? key.rawText() : TextRef{nullptr, 0, 0, 0, 1}; }

  KeyCursor words_;
  ByteCursor text_;
  bool isRaw_;
};

// --- numbers ------------------------------------------------------------------------------------------------------

OrderSpan spanOf(std::uint64_t first, std::uint64_t size, double unit) {
  const std::uint64_t last = first + (size != 0 ? size - 1 : 0);
  return {static_cast<double>(first) * unit, static_cast<double>(last) * unit};
}

// weight: the first one; before: the last one that all keys have in common, or 0.
template <class Orders>
OrderSpan spanOfOrders(Orders orders, Weight weight, Weight before, double unit) {
  if (weight == 0) return spanOf(0, std::uint64_t{kMostKinds + 1} << kSpanBits, unit);
  std::uint64_t first = std::uint64_t{Orders::kind(weight)} << kSpanBits;
  std::uint64_t size = std::uint64_t{1} << kSpanBits;
  while (weight != 0 && size > 1) {
    const Slot slot = Orders::slot(weight, before);
    const std::uint64_t from = size * slot.from >> kSlotBits;
    size = (size * (slot.from + slot.size) >> kSlotBits) - from;
    first += from;
    before = weight;
    weight = orders.next();
  }
  return spanOf(first, size, unit);
}

template <class Orders>
OrderSpans numberOrders(Orders key, Orders low, Orders high, double unit) {
  Weight before = 0;
  for (;;) {
    const Weight k = key.next(), l = low.next(), h = high.next();
    if (k == 0 || k != l || k != h) {
      return {spanOfOrders(key, k, before, unit), spanOfOrders(low, l, before, unit),
              spanOfOrders(high, h, before, unit), unit};
    }
    before = k;
  }
}

}  // namespace

OrderSpans numberKeys(const IndexKey& key, const IndexKey& low, const IndexKey& high) {
  if (key.isRaw() && low.isRaw() && high.isRaw())
    return numberOrders(RawBytes(key), RawBytes(low), RawBytes(high), kByteUnit);
  return numberOrders(PrimaryOrders(key), PrimaryOrders(low), PrimaryOrders(high), kOrderUnit);
}

}  // namespace kt
