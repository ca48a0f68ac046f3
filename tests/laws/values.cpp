#include "laws/values.h"

#include "string_bytes.h"

namespace kt_laws {

KtTypeMgr& managerOf(const Row& row) {
  static KtTypeMgr current(12);
  static KtTypeMgr legacy(11);
  return row.version == 12 ? current : legacy;
}

Values convertFrom(const Row& row, KtString text) {
  KtTypeConvertData* holder = KtTypeConvertData::Make(KT_ID_KtString, 1, &text, nullptr);
  Values values(row, 1, managerOf(row).ConvertFrom(row.id, holder, 1));
  holder->typeManager = nullptr;
  delete holder;
  return values;
}

Values make(const Row& row, const Sample& sample) {
  if (sample.source == Sample::kText) return convertFrom(row, KtString(sample.content.c_str()));
  Values values(row, 1);
  if (sample.source == Sample::kNull) managerOf(row).SetNullValue(row.id, values.get());
  if (sample.source == Sample::kBytes)
    managerOf(row).Load(row.id, values.get(), kt_test::hex(sample.content).data(), 2, 1);
  if (sample.source == Sample::kScan) {
    KtString text(sample.content.c_str());
    managerOf(row).ScanFromKtString(row.id, values.get(), text, sample.format, 1);
  }
  return values;
}

Values makeRun(const Row& row, unsigned long count) {
  Values run(row, count);
  for (unsigned long i = 0; i < count; ++i) {
    const Values value = make(row, row.samples[i % row.samples.size()]);
    managerOf(row).AssignmentPtrGet(row.id)(run.at(i), value.get(), 1, 0);
  }
  return run;
}

}  // namespace kt_laws
