// order_cursor.cpp - the weight tables: built on first use into static storage, so that building cannot fail.
#include "order_cursor.h"

#include <array>
#include <mutex>

namespace kt {

namespace {

constexpr unsigned kCodeSets = 16;  // codes that 8-bit code sets resolve to are below this

std::mutex buildMutex;
ByteWeights byteStorage[kCodeSets][kKindSlots];
WideWeights wideStorage[kKindSlots];
Weight pageStorage[kKindSlots][256][256];  // only pages that are not rising are ever touched

// The orders 0, 1, 2 ... as weights. The kinds share it, so that it is there before any of them is built.
constexpr std::array<Weight, 256> kRisingPage = [] {
  std::array<Weight, 256> page{};
  for (unsigned i = 0; i < 256; ++i) page[i] = i << 8;
  return page;
}();

unsigned pageOrder(const KtUnicodeProps::Page& page, unsigned index) {
  return (page.orders[index] + page.offset) & 0xFFFFu;
}

// Whether all weights of the page are plain and rise by one order a character: then it needs no table of its own.
bool isRising(const KtUnicodeProps::Page& page, unsigned kind) {
  const unsigned first = pageOrder(page, 0);
  const bool ideographic = kind >= KtUnicodeProps::kIdeographicKind;
  if (first == 0 || (!ideographic && (first < 0x8000u || first + 255 >= 0xFFFFu))) return false;
  for (unsigned i = 1; i < 256; ++i)
    if (pageOrder(page, i) != first + i) return false;
  return true;
}

WideWeights::Page buildPage(const KtUnicodeProps::Page& page, unsigned kind, Weight (&weights)[256]) {
  if (isRising(page, kind)) return {kRisingPage.data(), kind << 24 | pageOrder(page, 0) << 8};
  for (unsigned i = 0; i < 256; ++i) {
    const unsigned order = pageOrder(page, i);
    const bool several = kind < KtUnicodeProps::kIdeographicKind && order == 0xFFFFu;
    weights[i] = several ? kSeveralOrders : collationKey(order, kind);
  }
  return {weights, 0};
}

Weight primaryOf(Weight weight, Weight significant) {
  if (weight == kSeveralOrders) return kSeveral;
  return weight == 0 || weight >= significant ? weight & ~kLevelMask : kIgnorable;
}

}  // namespace

// Language 254, and code set 254, make nulls.
void noteUsualTables(unsigned char codeSet, unsigned char language) {
  if (language >= 254) return;
  const unsigned char kind = collationKind(language);
  if (codeSet - 1u < 224u)
    usualByteTables[language * 256u + codeSet].store(byteWeights(codeSet, kind), std::memory_order_release);
  if (codeSet - 225u < 29u) usualWideTables[language].store(wideWeights(kind), std::memory_order_release);
}

unsigned char findCollationKind(unsigned char language) {
  const unsigned char kind = KtUnicodeProps::CollationKind(language);
  kindOfLanguage[language].store(kind, std::memory_order_relaxed);
  return kind;
}

// Texts under code sets 0 and 255 consist of bytes, whatever the defaults are set to: a 16-bit default counts as 1.
unsigned char standInCodeSet(unsigned char codeSet) {
  if (codeSet == 255) codeSet = KtLanguageContext::GetDefault8CodeSet();
  if (codeSet == 0) codeSet = KtLanguageContext::GetNativeCodeSet();
  return codeSet != 0 && KtCodeSet::CharSizeOf(codeSet) == 1 ? codeSet : 1;
}

const ByteWeights* buildByteWeights(unsigned char codeSet, unsigned char kind) {
  const KtCodeSet& set = KtCodeSet::Get(codeSet);
  const unsigned short* orders = set.Orders(kind);
  const unsigned slot = kindSlot(kind);
  const std::lock_guard<std::mutex> lock(buildMutex);
  // Codes that stand for the same set share its table: that is how cursors see that two texts have one form.
  std::atomic<const ByteWeights*>& resolved = byteWeightTables[set.Code()][slot];
  const ByteWeights* ready = resolved.load(std::memory_order_relaxed);
  if (ready == nullptr) {
    ByteWeights& table = byteStorage[set.Code() % kCodeSets][slot];
    for (unsigned i = 0; i < 256; ++i) table.of[i] = collationKey(orders[i], kind);
    table.significant = firstSignificant(kind);
    table.kind = kind;
    for (unsigned i = 0; i < 256; ++i) table.primary[i] = primaryOf(table.of[i], table.significant);
    ready = &table;
    resolved.store(ready, std::memory_order_release);
  }
  byteWeightTables[codeSet][slot].store(ready, std::memory_order_release);
  return ready;
}

const WideWeights* buildWideWeights(unsigned char kind) {
  const unsigned slot = kindSlot(kind);
  const KtUnicodeProps::Page* source = KtUnicodeProps::OrderPages(kind);
  const std::lock_guard<std::mutex> lock(buildMutex);
  if (const WideWeights* ready = wideWeightTables[slot].load(std::memory_order_relaxed)) return ready;
  WideWeights& table = wideStorage[slot];
  for (unsigned i = 0; i < 256; ++i) table.page[i] = buildPage(source[i], kind, pageStorage[slot][i]);
  table.significant = firstSignificant(kind);
  table.kind = kind;
  for (unsigned i = 0; i < kNearUnits; ++i) table.primary[i] = primaryOf(weightOf(table, i), table.significant);
  wideWeightTables[slot].store(&table, std::memory_order_release);
  return &table;
}

static_assert(KtUnicodeProps::kMaxOrders == 3);

SeveralWeights severalWeights(unsigned unicode, unsigned char kind) {
  unsigned short orders[KtUnicodeProps::kMaxOrders] = {};
  const unsigned count = KtUnicodeProps::Orders(static_cast<unsigned short>(unicode), kind, orders);
  return {collationKey(orders[0], kind), count > 1 ? collationKey(orders[1], kind) : 0,
          count > 2 ? collationKey(orders[2], kind) : 0};
}

}  // namespace kt
