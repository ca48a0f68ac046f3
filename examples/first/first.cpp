// first - a run of values whose type is known by name only: scanned, stored, loaded, compared, printed.
#include <kttm.h>

#include <cstdio>

int main() {
  ___KtTypemgrContext(1);
  KtTypeMgr& mgr = *DefaultTypeMgr();
  char id = 0;
  if (mgr.Name2KtTypeId("short", id) != 0) return 1;

  void* values = mgr.Create(id, 2);
  KtString first("12"), second("-7"), out;
  mgr.ScanFromKtString(id, mgr.GetArrayElement(id, values, 0, 2), first, nullptr, 1);
  mgr.ScanFromKtString(id, mgr.GetArrayElement(id, values, 1, 2), second, nullptr, 1);

  unsigned char disk[4];
  const unsigned long bytes = mgr.Store(id, disk, values, 2, 2);  // format 2: big-endian
  mgr.Load(id, values, disk, 2, 2);
  const long order = mgr.Cmp(id, disk, disk + 2, 0, 1, 2);  // straight from the disk form
  std::printf("%s: %lu bytes, compared: %ld\n", mgr.PrintToKtString(id, out, values, nullptr, 2).StrGet(), bytes,
              order);

  mgr.Delete(id, values, 2);
  ___KtTypemgrContext(0);
}
