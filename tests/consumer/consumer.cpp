// Calls all three installed libraries: what a link line forgets, or an export macro, fails here.
#include <kttm.h>

#include <ktbs.h>
#include <ktin.h>

#include <cstdio>

int main() {
  KtTypeMgr mgr(12);
  KtDate date(2024, 2, 29);
  KtString text;
  mgr.PrintToKtString(KT_ID_KtDate, text, &date, "%Y-%m-%d", 1);
  unsigned char disk[4];
  const unsigned long stored = LongStore(disk, &date, 2, 1);
  std::printf("%s %s %lu %s\n", text.StrGet(), (KtString("b") + "c").StrGet(), stored, KtCodeSet::Get(2).Name());
  return ___KtTypemgrContext(1) == 1 && KtString("a") < KtString("b") ? 0 : 1;
}
