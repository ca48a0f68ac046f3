// offers.h - which operations a type offers, and by which functions.
#ifndef KTTM_TOOL_OFFERS_H
#define KTTM_TOOL_OFFERS_H

#include "names.h"

#include <vector>

namespace tool {

// One field of the type's row. Offered means: present, and not the do-nothing function of the illegal row.
struct Offer {
  const char* operation;  // the descriptor's field
  bool offered;
  const char* function;  // its name where programs can call it (kttypops.h, ktbs.h), else null
  const char* reason;    // why it is not offered; null where it is
};

// In the order of the descriptor's fields; all types answer with the same fields.
std::vector<Offer> offersOf(const Type& type);

// The source that describes the row's operations.
const char* sourceOf(const Type& type);

}  // namespace tool

#endif
