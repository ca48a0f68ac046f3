// values.h - the sample values of the rows, made by the type manager.
#ifndef KT_TESTS_LAWS_VALUES_H
#define KT_TESTS_LAWS_VALUES_H

#include "laws/samples.h"

#include <utility>

namespace kt_laws {

KtTypeMgr& managerOf(const Row& row);

// An array that the manager made.
class Values {
public:
  Values(const Row& row, unsigned long count) : Values(row, count, managerOf(row).Create(row.id, count)) {}
  Values(const Row& row, unsigned long count, void* made) : row_(&row), count_(count), made_(made) {}
  Values(Values&& other) noexcept
      : row_(other.row_), count_(other.count_), made_(std::exchange(other.made_, nullptr)) {}
  Values& operator=(Values&& other) noexcept {
    std::swap(row_, other.row_);
    std::swap(count_, other.count_);
    std::swap(made_, other.made_);
    return *this;
  }
  ~Values() {
    if (made_ != nullptr) managerOf(*row_).Delete(row_->id, made_, count_);
  }
  void* at(unsigned long i) const { return static_cast<char*>(made_) + i * managerOf(*row_).MemLenGet(row_->id, 1); }
  void* get() const { return made_; }
  unsigned long count() const { return count_; }

private:
  const Row* row_;
  unsigned long count_;
  void* made_;
};

Values convertFrom(const Row& row, KtString text);
Values make(const Row& row, const Sample& sample);
Values makeRun(const Row& row, unsigned long count);  // the samples in turn

}  // namespace kt_laws

#endif
