// KtTypeConvertData, but for its destructor, which needs the type manager.
#include "kttypcvd.h"

#include "ktstring.h"

#include <ktbs.h>

#include <new>

namespace {

constexpr unsigned long kMost = 0x7FFFFFFF;  // values that a holder counts

}  // namespace

KtTypeConvertData::KtTypeConvertData(char id, unsigned long valueCount, void* values, KtTypeMgr* manager)
    : typeManager(manager),
      data(valueCount <= kMost ? values : nullptr),
      count(valueCount <= kMost ? static_cast<std::int32_t>(valueCount) : 0),
      typeId(id) {}

KtTypeConvertData* KtTypeConvertData::Make(char typeId, unsigned long count, void* data, KtTypeMgr* typeManager) {
  if (count > kMost) return nullptr;
  auto* holder = new (std::nothrow) KtTypeConvertData(typeId, count, data, typeManager);
  if (holder == nullptr) KtCallMemoryHandler(sizeof(KtTypeConvertData));
  return holder;
}

KtString* KtTypeConvertData::GetString(int index) const {
  if (index < 0 || index >= count || typeId != KT_ID_KtString || data == nullptr) return nullptr;
  return static_cast<KtString*>(data) + index;
}
