#include "failing_allocations/failing_allocations.h"

#include <ktbs.h>

#include <cstddef>
#include <new>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
}

namespace {

struct {
  bool isCounting = false;
  kt_test::Fail mode = kt_test::Fail::kOne;
  unsigned long number = 0;
  unsigned long counted = 0;
  bool hasFailed = false;
  unsigned long handlerCalls = 0;
  long live = 0;
} state;

bool fails() {
  if (!state.isCounting) return false;
  ++state.counted;
  const bool now = state.mode == kt_test::Fail::kOne ? state.counted == state.number : state.counted >= state.number;
  state.hasFailed = state.hasFailed || now;
  return now;
}

void* counted(void* block) {
  if (block != nullptr) ++state.live;
  return block;
}

KtMemoryHandler oldHandler;

void noteHandlerCall(unsigned long) { ++state.handlerCalls; }

}  // namespace

extern "C" {

void* __wrap_malloc(std::size_t size) { return fails() ? nullptr : counted(__real_malloc(size)); }

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return fails() ? nullptr : counted(__real_calloc(count, size));
}

void* __wrap_realloc(void* block, std::size_t size) {
  if (fails()) return nullptr;
  void* moved = __real_realloc(block, size);
  return block == nullptr ? counted(moved) : moved;
}

void __wrap_free(void* block) {
  if (block != nullptr) --state.live;
  __real_free(block);
}

}  // extern "C"

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return fails() ? nullptr : counted(__real_malloc(size == 0 ? 1 : size));
}
void* operator new(std::size_t size) {
  void* block = operator new(size, std::nothrow);
  return block != nullptr ? block : throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, std::size_t) noexcept { __wrap_free(block); }
void operator delete[](void* block) noexcept { __wrap_free(block); }
void operator delete[](void* block, std::size_t) noexcept { __wrap_free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { __wrap_free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { __wrap_free(block); }

namespace kt_test {

FailingAllocations::FailingAllocations(unsigned long number, Fail mode) {
  oldHandler = KtSetMemoryHandler(noteHandlerCall);
  state.mode = mode;
  state.number = number;
  state.counted = 0;
  state.hasFailed = false;
  state.handlerCalls = 0;
  state.isCounting = true;
}

void FailingAllocations::stop() {
  if (!state.isCounting) return;
  state.isCounting = false;
  KtSetMemoryHandler(oldHandler);
}

bool FailingAllocations::hasFailed() const { return state.hasFailed; }
unsigned long FailingAllocations::handlerCalls() const { return state.handlerCalls; }
long liveBlocks() { return state.live; }

}  // namespace kt_test
