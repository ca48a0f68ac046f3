// handle_arrays.h - arrays of values that own memory: how the rows of such types make, free and copy them.
#ifndef KT_OPS_HANDLE_ARRAYS_H
#define KT_OPS_HANDLE_ARRAYS_H

#include <ktbs.h>

#include <cstdlib>
#include <memory>
#include <new>

namespace kt {

// Handle: a class whose copies do not throw. A run of 0 values has room for one.
template <class Handle>
struct HandleArrays {
  static Handle* at(void* values) { return static_cast<Handle*>(values); }
  static const Handle* at(const void* values) { return static_cast<const Handle*>(values); }

  // Null when memory is exhausted (the memory handler is called).
  static void* create(unsigned long count) {
    const unsigned long elements = count == 0 ? 1 : count;
    const bool overflow = elements > ~0ul / sizeof(Handle);
    void* block = overflow ? nullptr : std::malloc(elements * sizeof(Handle));
    if (block == nullptr) {
      KtCallMemoryHandler(elements * sizeof(Handle));
      return nullptr;
    }
    construct(block, elements, 0);
    return block;
  }

  static void* destroy(void* values, unsigned long count) {
    if (values == nullptr) return nullptr;
    destruct(values, count == 0 ? 1 : count, 0);
    std::free(values);
    return nullptr;
  }

  static void construct(void* values, unsigned long count, unsigned long) {
    std::uninitialized_default_construct_n(at(values), count);
  }

  static void destruct(void* values, unsigned long count, unsigned long) { std::destroy_n(at(values), count); }

  // Runs may overlap: as in memmove, what is still to be read is never overwritten.
  static void assign(void* dst, void* src, unsigned long count, int fill) {
    Handle* to = at(dst);
    const Handle* from = at(src);
    const bool backwards = fill == 0 && to > from && to < from + count;
    for (unsigned long i = 0; i < count; ++i) {
      const unsigned long place = backwards ? count - 1 - i : i;
      to[place] = from[fill != 0 ? 0 : place];
    }
  }

  static void copy(void* dst, void* src, unsigned long count, int fill) {
    const Handle* from = at(src);
    for (unsigned long i = 0; i < count; ++i) new (at(dst) + i) Handle(from[fill != 0 ? 0 : i]);
  }
};

}  // namespace kt

#endif
