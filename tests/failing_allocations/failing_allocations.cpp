#include "failing_allocations/failing_allocations.h"

#include <ktbs.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>
#include <unordered_map>
#include <utility>

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
  unsigned long losses = 0;
  unsigned long handlerCalls = 0;
} state;

// Allocates without being counted.
template <class T>
struct Uncounted {
  using value_type = T;
  Uncounted() = default;
  template <class Other>
  Uncounted(const Uncounted<Other>&) {}
  bool operator==(const Uncounted&) const = default;
  T* allocate(std::size_t n) { return static_cast<T*>(__real_malloc(n * sizeof(T))); }
  void deallocate(T* block, std::size_t) { __real_free(block); }
};

using Blocks = std::unordered_map<void*, std::size_t, std::hash<void*>, std::equal_to<void*>,
                                  Uncounted<std::pair<void* const, std::size_t>>>;

// All blocks with their sizes, from the first to the last one of the process.
Blocks& blocks() {
  alignas(Blocks) static unsigned char room[sizeof(Blocks)];
  static Blocks* const all = new (room) Blocks;
  return *all;
}

bool fails(bool losesSomething = true) {
  if (!state.isCounting) return false;
  ++state.counted;
  const bool now = state.mode == kt_test::Fail::kOne ? state.counted == state.number : state.counted >= state.number;
  state.hasFailed = state.hasFailed || now;
  if (now && losesSomething) ++state.losses;
  return now;
}

bool isGrowth(void* block, std::size_t size) {
  const auto found = blocks().find(block);
  return found == blocks().end() || size > found->second;
}

void* counted(void* block, std::size_t size) {
  if (block != nullptr) blocks()[block] = size;
  return block;
}

KtMemoryHandler oldHandler;

void noteHandlerCall(unsigned long) { ++state.handlerCalls; }

}  // namespace

extern "C" {

void* __wrap_malloc(std::size_t size) { return fails() ? nullptr : counted(__real_malloc(size), size); }

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return fails() ? nullptr : counted(__real_calloc(count, size), count * size);
}

void* __wrap_realloc(void* block, std::size_t size) {
  if (fails(isGrowth(block, size))) return nullptr;
  void* moved = __real_realloc(block, size);
  if (moved != nullptr) blocks().erase(block);
  return counted(moved, size);
}

void __wrap_free(void* block) {
  blocks().erase(block);
  __real_free(block);
}

}  // extern "C"

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return fails() ? nullptr : counted(__real_malloc(size == 0 ? 1 : size), size);
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
  state.losses = 0;
  state.handlerCalls = 0;
  state.isCounting = true;
}

void FailingAllocations::stop() {
  if (!state.isCounting) return;
  state.isCounting = false;
  KtSetMemoryHandler(oldHandler);
}

bool FailingAllocations::hasFailed() const { return state.hasFailed; }
unsigned long FailingAllocations::losses() const { return state.losses; }
unsigned long FailingAllocations::handlerCalls() const { return state.handlerCalls; }
long liveBlocks() { return static_cast<long>(blocks().size()); }

}  // namespace kt_test
