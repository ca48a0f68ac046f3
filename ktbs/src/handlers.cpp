// handlers.cpp - where broken rules and failed allocations are reported.
#include <cstdio>
#include <utility>

#include "ktbs.h"

namespace {

void writeAssertion(const char* message, const char* source, int line) {
  std::fprintf(stderr, "%s:%d: assertion failed: %s\n", source ? source : "?", line, message ? message : "?");
}

void ignoreFailedAllocation(unsigned long) {}

// Constant-initialised: other libraries may report while they are being loaded.
constinit KtAssertHandler assertHandler = writeAssertion;
constinit KtMemoryHandler memoryHandler = ignoreFailedAllocation;
constinit thread_local unsigned long failedAllocations = 0;

}  // namespace

void KATO_assert(const char* message, const char* source, int line) { assertHandler(message, source, line); }

KtAssertHandler KtSetAssertHandler(KtAssertHandler handler) {
  return std::exchange(assertHandler, handler ? handler : writeAssertion);
}

void KtCallMemoryHandler(unsigned long size) {
  ++failedAllocations;
  memoryHandler(size);
}

unsigned long KtFailedAllocations() { return failedAllocations; }

KtMemoryHandler KtSetMemoryHandler(KtMemoryHandler handler) {
  return std::exchange(memoryHandler, handler ? handler : ignoreFailedAllocation);
}
