// offers.h - which operations a type offers.
#ifndef KTTM_TOOL_OFFERS_H
#define KTTM_TOOL_OFFERS_H

#include "names.h"

#include <string>
#include <vector>

namespace tool {

struct Offer {
  const char* operation;  // the descriptor's field
  bool offered;
};

// In the order of the descriptor's fields; all types answer with the same fields. Not among them is NullSizeGet, which
// no operation of the type manager leads to.
//
// Offered means: present, and not the do-nothing function of the illegal row. Where the manager hands out the function
// itself, it is compared with the illegal row's; the other operations are tried on values of the type.
std::vector<Offer> offersOf(const Type& type);

}  // namespace tool

#endif
