// failing_allocations.h - lets allocations of the libraries fail, one after the other.
//
// A program that includes this is linked with the objects of the libraries, whose calls of malloc and its kin the linker
// leads here (--wrap); operator new is replaced. What the C library allocates for itself is not seen.
#ifndef KT_TESTS_FAILING_ALLOCATIONS_H
#define KT_TESTS_FAILING_ALLOCATIONS_H

namespace kt_test {

enum class Fail { kOne, kAllFrom };

// While it lives, allocations are counted from 1; allocation `number`, or all from there on, fail.
class FailingAllocations {
public:
  FailingAllocations(unsigned long number, Fail mode);
  ~FailingAllocations() { stop(); }
  void stop();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
  bool hasFailed() const;
  unsigned long handlerCalls() const;  // of the memory handler, in the meantime
};

long liveBlocks();  // of the whole process

}  // namespace kt_test

#endif
