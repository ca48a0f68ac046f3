// laws.h - what holds for every row of the type table.
#ifndef KT_TESTS_LAWS_LAWS_H
#define KT_TESTS_LAWS_LAWS_H

#include "laws/samples.h"

#include <string>
#include <vector>

namespace kt_laws {

struct Finding {
  std::string text;
  const char* other = "";  // the second and third sample of a finding on more than one
  const char* third = "";
};
using Findings = std::vector<Finding>;

// Looks at one sample among those of its row, or (sample null) at the row as a whole.
struct Law {
  const char* name;
  void (*check)(const Row& row, const Sample* sample, Findings& findings);
};

extern const Law kStoreLoad, kSizes, kTranslate, kOrder, kTotalOrder, kHash, kHashSpreads, kEstimate, kConvert,
    kPrintScan;
extern const Law kNull, kRuns, kOverrun;  // of rows

}  // namespace kt_laws

#endif
