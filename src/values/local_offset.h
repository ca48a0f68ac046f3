// local_offset.h - the local offset from universal time, as the clock in use tells it.
#ifndef KT_LOCAL_OFFSET_H
#define KT_LOCAL_OFFSET_H

#include <ktbs.h>

namespace kt {

constexpr int kUnknownOffset = -2171;
constexpr int kDayMinutes = 1440;

// In minutes, to add to universal time: from -1440 to 1440, or kUnknownOffset. No zone has more than a day.
inline int localOffset() {
  const int minutes = bksgettimezone();
  return minutes >= -kDayMinutes && minutes <= kDayMinutes ? minutes : kUnknownOffset;
}

}  // namespace kt

#endif
