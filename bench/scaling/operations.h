// operations.h - every operation that works on a run of values, as it is measured.
#ifndef BENCH_SCALING_OPERATIONS_H
#define BENCH_SCALING_OPERATIONS_H

#include "runs.h"

#include <vector>

namespace kt::scaling {

// How many values an operation takes of a run, and what to say of it.
struct Limit {
  unsigned long (*of)(Manager& manager, char id);
  const char* note;
};

struct Operation {
  const char* name;
  void (*run)(Manager& manager, char id, Runs& runs);
  const Limit* limit;
};

const std::vector<Operation>& operations();

}  // namespace kt::scaling

#endif
