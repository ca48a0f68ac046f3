// allocation_watch.h - whether one of many steps lacked memory, where the steps themselves do not tell.
#ifndef KT_TEXT_ALLOCATION_WATCH_H
#define KT_TEXT_ALLOCATION_WATCH_H

#include <ktbs.h>

namespace kt {

// A string that could not be made is an empty one, which may be right as well: only the memory handler knows.
class AllocationWatch {
public:
  // Whether an allocation of this thread has failed since the watch was made.
  bool hasFailed() const { return KtFailedAllocations() != before_; }

private:
  unsigned long before_ = KtFailedAllocations();
};

}  // namespace kt

#endif
