// options.cpp - the options word of the process.
#include "ktoption.h"

int& ___KtTypeMgrOptions() {
  static constinit int options = 0;
  return options;
}
