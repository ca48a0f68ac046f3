// failing_allocations.h - lets allocations of the libraries fail, one after the other.
//
// A program that includes this is linked with the objects of the libraries, whose calls of malloc and its kin the linker
// leads here (--wrap); operator new is replaced. What the C library allocates for itself is not seen.
#ifndef KT_TESTS_FAILING_ALLOCATIONS_H
#define KT_TESTS_FAILING_ALLOCATIONS_H

#include <gtest/gtest.h>

#include <string>

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
  // How many of the failures lost something: all but those that would have made a block smaller. Such a block stays as it
  // is and serves as well, so that nobody needs to be told.
  unsigned long losses() const;
  unsigned long handlerCalls() const;  // of the memory handler, in the meantime: one for each loss
};

long liveBlocks();  // of the whole process

// Calls attempt(number, mode), which tells whether an allocation failed, until none does; and that nothing leaks.
template <class Attempt>
void forEachFailure(const std::string& name, Attempt attempt) {
  for (const Fail mode : {Fail::kOne, Fail::kAllFrom}) {
    bool hasFailed = true;
    for (unsigned long number = 1; hasFailed; ++number) {
      const long live = liveBlocks();
      hasFailed = attempt(number, mode);
      EXPECT_EQ(liveBlocks(), live) << name << " leaks, allocation " << number;
    }
  }
}

}  // namespace kt_test

#endif
