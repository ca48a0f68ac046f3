// kttm_bench: how fast kttm is, called from its shared libraries as a user calls it, beside what one would use instead.
#include <kttm.h>

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
  ___KtTypemgrContext(1);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  ___KtTypemgrContext(0);
}
