#include "built_once.h"
#include "ktin.h"
#include "tables.h"

namespace {

using Page = KtUnicodeProps::Page;

constexpr int kKinds = kt::kAlphabeticKinds + 1;  // the last row is the ideographic kind's
constexpr unsigned short kSeveralOrders = 0xFFFF;
constexpr unsigned kOtherScript = 0x8000;
constexpr unsigned kFirstWithSeveral = 0x7FFF;

// The generated tables hold page numbers instead of addresses, which the loader would have to relocate.
constinit kt::BuiltOnce<Page, kKinds * 256> pageTable;

int rowOf(unsigned char kind) {
  if (kind >= KtUnicodeProps::kIdeographicKind) return kt::kAlphabeticKinds;
  return kind >= 1 && kind <= kt::kAlphabeticKinds ? kind - 1 : 0;
}

Page pageOf(int row, int high) {
  const unsigned firstChar = static_cast<unsigned>(high) * 256;
  const int index = row < kt::kAlphabeticKinds ? kt::kOrderPageIndexes[row][high] : kt::kIdentityPage;
  unsigned offset = 0;
  if (index == kt::kIdentityPage) offset = row < kt::kAlphabeticKinds ? kOtherScript + firstChar : firstChar;
  return {kt::kOrderPages[index], static_cast<unsigned short>(offset)};
}

void fillPages(Page* pages) {
  for (int row = 0; row < kKinds; ++row) {
    for (int high = 0; high < 256; ++high) pages[row * 256 + high] = pageOf(row, high);
  }
}

}  // namespace

unsigned char KtUnicodeProps::CollationKind(unsigned char language) {
  switch (language) {
    case 4: return 2;
    case 5: return 3;
    case 6: return 4;
    case 20:
    case 21:
    case 22: return kIdeographicKind;
    default: return 1;
  }
}

const KtUnicodeProps::Page* KtUnicodeProps::OrderPages(unsigned char kind) {
  return pageTable.get(fillPages) + rowOf(kind) * 256;
}

unsigned short KtUnicodeProps::Order(unsigned short unicode, unsigned char kind) {
  const Page page = OrderPages(kind)[unicode >> 8];
  return static_cast<unsigned short>(page.orders[unicode & 0xFF] + page.offset);
}

unsigned short KtUnicodeProps::Orders(unsigned short unicode, unsigned char kind, unsigned short orders[kMaxOrders]) {
  if (unicode == 0) return 0;
  orders[0] = Order(unicode, kind);
  if (kind >= kIdeographicKind || orders[0] != kSeveralOrders) return 1;
  const unsigned rest = kOtherScript + (unicode - kFirstWithSeveral);
  if (rest <= 0xFFFF) {
    orders[1] = static_cast<unsigned short>(rest);
    return 2;
  }
  // The last character of all: one past what the second order can hold, so the second is full and a third begins.
  orders[1] = kSeveralOrders;
  orders[2] = static_cast<unsigned short>(rest - kOtherScript);
  return 3;
}

unsigned short KtUnicodeProps::ToLower(unsigned short unicode) {
  return static_cast<unsigned short>(unicode + kt::kCaseDeltas[kt::kLowerPages[unicode >> 8]][unicode & 0xFF]);
}

unsigned short KtUnicodeProps::ToUpper(unsigned short unicode) {
  return static_cast<unsigned short>(unicode + kt::kCaseDeltas[kt::kUpperPages[unicode >> 8]][unicode & 0xFF]);
}
