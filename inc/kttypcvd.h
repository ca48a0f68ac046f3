// kttypcvd.h - KtTypeConvertData, the holder through which values travel to and from text.
#ifndef KTTYPCVD_H
#define KTTYPCVD_H

#include "kttypdsc.h"

#include <cstdint>

class KtTypeMgr;

// KtTypeConvertData: an array of texts on its way from or to values.
//
// Range:  count of 0 to 2,147,483,647; the type id is 11 (KtString) in every use of this library, 100 after release.
// Null:   data may be null: a holder of nothing.
// Status: null, or a holder of nothing, is what cannot be made or is not there.
// Owner:  the holder owns data exactly when typeManager is set: its destructor then deletes data through that manager.
//         A holder without manager does not free data.
// Threads: a holder belongs to one thread.
class KTTM_API KtTypeConvertData {
public:
  KtTypeMgr* typeManager;
  void* data;
  std::int32_t count;
  char typeId;

  // A new holder with these fields, which the caller deletes; null when memory is exhausted (the memory handler is
  // called), and for a count beyond the range.
  static KtTypeConvertData* Make(char typeId, unsigned long count, void* data, KtTypeMgr* typeManager);
  ~KtTypeConvertData();
  KtTypeConvertData(const KtTypeConvertData&) = delete;
  KtTypeConvertData& operator=(const KtTypeConvertData&) = delete;
  // The same in place; a holder of nothing for a count beyond the range.
  KtTypeConvertData(char typeId, unsigned long count, void* data, KtTypeMgr* typeManager);

  // The string at index, or null: index negative or not below count, another type id, or no data.
  KtString* GetString(int index) const;
};

#endif
