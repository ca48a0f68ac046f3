// Scans and converts texts from outside into every type, under formats from outside, the first part of the input: nothing
// is read past either, and the value depends on them alone.
#include "date_plans.h"
#include "fixed_clock.h"
#include "row_case.h"

using namespace kt_fuzz;

namespace {

struct OpenManager : KtTypeMgr {
  using KtTypeMgr::ConvertFromKtStringOld;
  using KtTypeMgr::ConvertToKtStringOld;
};

// The text in the code set of the options' low byte.
KtString textOf(const RowCase& c) {
  const auto codeSet = static_cast<std::uint8_t>(c.options);
  const Bytes bytes = prefix(c.second, 2000);
  const std::size_t length = bytes.size() + 4;
  Bytes record{static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(length >> 8), codeSet, 0};
  record.insert(record.end(), bytes.begin(), bytes.end());
  record.insert(record.end(), {0x00, 0xFF});
  const Block block(record);
  KtString text;
  StringLoad(&text, block.get(), 4, 1);
  return text;
}

Bytes stored(const RowCase& c, const Values& values) {
  Bytes disk(c.manager->DiskLenGet(c.id, values.get(), 2, values.count(), kMemory));
  c.manager->Store(c.id, disk.data(), values.get(), 2, values.count());
  return disk;
}

Bytes scanned(const RowCase& c, KtString text, const char* format) {
  const Values values(c, c.count);
  void* const answer = c.manager->ScanFromKtString(c.id, values.get(), text, format, c.count);
  require(answer == values.get() || answer == nullptr);
  return stored(c, values);
}

Values converted(const RowCase& c, const KtString& text) {
  KtTypeMgr& strings = managerOf(false);
  auto* holder = KtTypeConvertData::Make(KT_ID_KtString, 1, strings.Create(KT_ID_KtString, 1), &strings);
  *holder->GetString(0) = text;
  Values values(c, c.count, c.manager->ConvertFrom(c.id, holder, c.count));
  delete holder;
  return values;
}

void convertJoined(const RowCase& c, KtString text) {
  auto& manager = static_cast<OpenManager&>(*c.manager);
  const Values values(c, c.count, manager.ConvertFromKtStringOld(&text, c.id, c.count));
  if (values.get() != nullptr)
    managerOf(false).Delete(KT_ID_KtString, manager.ConvertToKtStringOld(values.get(), c.id, c.count), 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const RowCase c(data, size);
  if (c.count == 0) return 0;
  const FixedClock clock;
  const KtString text = textOf(c);
  const Block format = textBlock(c.first);
  closePlans();
  const Bytes walked = scanned(c, text, textIn(format));
  forgetPlans();
  require(scanned(c, text, textIn(format)) == walked);
  scanned(c, text, nullptr);
  const Values values = converted(c, text);
  stored(c, values);
  convertJoined(c, text);
  return 0;
}
