// order_cursor.cpp - the weight tables: built on first use into static storage, so that building cannot fail.
#include "order_cursor.h"

#include <bit>
#include <mutex>

namespace kt {

std::atomic<unsigned char> kindOfLanguage[256];
std::atomic<const Weight*> byteWeightTables[225][kKindSlots];
std::atomic<const WeightPage*> weightPageTables[kKindSlots];

namespace {

constexpr unsigned kCodeSets = 16;  // codes that 8-bit code sets resolve to are below this

std::mutex buildMutex;
Weight byteStorage[kCodeSets][kKindSlots][256];
Weight pageStorage[kKindSlots][256][256];  // only pages that are not rising are ever touched
WeightPage pageTables[kKindSlots][256];
Weight risingPage[256];                    // the orders 0, 1, 2 ... as weights

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

WeightPage buildPage(const KtUnicodeProps::Page& page, unsigned kind, Weight (&weights)[256]) {
  if (isRising(page, kind)) return {risingPage, kind << 24 | pageOrder(page, 0) << 8};
  for (unsigned i = 0; i < 256; ++i) {
    const unsigned order = pageOrder(page, i);
    const bool several = kind < KtUnicodeProps::kIdeographicKind && order == 0xFFFFu;
    weights[i] = several ? kSeveralOrders : collationKey(order, kind);
  }
  return {weights, 0};
}

}  // namespace

unsigned char findCollationKind(unsigned char language) {
  // 255 is not remembered: the default language may change.
  if (language == 255) return KtUnicodeProps::CollationKind(KtLanguageContext::GetDefaultLanguage());
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

const Weight* buildByteWeights(unsigned char codeSet, unsigned char kind) {
  const KtCodeSet& set = KtCodeSet::Get(codeSet);
  const unsigned slot = kindSlot(kind);
  const std::lock_guard<std::mutex> lock(buildMutex);
  std::atomic<const Weight*>& resolved = byteWeightTables[set.Code()][slot];
  const Weight* table = resolved.load(std::memory_order_relaxed);
  if (table == nullptr) {
    Weight* weights = byteStorage[set.Code() % kCodeSets][slot];
    const unsigned short* orders = set.Orders(kind);
    for (unsigned i = 0; i < 256; ++i) weights[i] = collationKey(orders[i], kind);
    table = weights;
    resolved.store(table, std::memory_order_release);
  }
  byteWeightTables[codeSet][slot].store(table, std::memory_order_release);
  return table;
}

const WeightPage* buildWeightPages(unsigned char kind) {
  const unsigned slot = kindSlot(kind);
  const KtUnicodeProps::Page* source = KtUnicodeProps::OrderPages(kind);
  const std::lock_guard<std::mutex> lock(buildMutex);
  if (const WeightPage* ready = weightPageTables[slot].load(std::memory_order_relaxed)) return ready;
  for (unsigned i = 0; i < 256; ++i) risingPage[i] = i << 8;
  WeightPage* table = pageTables[slot];
  for (unsigned i = 0; i < 256; ++i) table[i] = buildPage(source[i], kind, pageStorage[slot][i]);
  weightPageTables[slot].store(table, std::memory_order_release);
  return table;
}

int unitRotation(unsigned char flag) {
  if (flag == 1 || flag == 8 || flag == 255) return 0;
  const bool bigHost = std::endian::native == std::endian::big;
  return (flag == 2) == bigHost ? 0 : 8;
}

Weight WideCursor::firstOfSeveral() {
  unsigned short orders[KtUnicodeProps::kMaxOrders];
  const auto unit = static_cast<unsigned short>(loadUnit(text_, position_ - 1, rotation_));
  const unsigned count = KtUnicodeProps::Orders(unit, kind_, orders);
  for (unsigned i = 1; i < count; ++i) pending_[count - 1 - i] = collationKey(orders[i], kind_);
  pendingCount_ = static_cast<unsigned char>(count - 1);
  return collationKey(orders[0], kind_);
}

}  // namespace kt
