#include "bench_job.h"

namespace kt::bench {

std::string rowName(const std::string& job, const std::string& contestant, long size) {
  std::string name = job;
  name += '/';
  name += contestant;
  if (size == 0) return name;
  name += '/';
  name += std::to_string(size);
  return name;
}

}  // namespace kt::bench
