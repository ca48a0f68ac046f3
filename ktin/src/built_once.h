// A table in static storage that is filled on first use, safely from any thread.
#ifndef KTIN_BUILT_ONCE_H
#define KTIN_BUILT_ONCE_H

#include <atomic>
#include <mutex>

namespace kt {

// Constant-initialised, so that loading the library does nothing. Readers of a filled table take no lock, and there is
// no allocation that could fail.
template <typename T, int kSize>
class BuiltOnce {
public:
  // `fill` is called with the table, once a process; all callers must hand in the same filling.
  template <typename Fill>
  const T* get(Fill fill) {
    if (!ready_.load(std::memory_order_acquire)) build(fill);
    return table_;
  }

private:
  template <typename Fill>
  void build(Fill fill) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (ready_.load(std::memory_order_relaxed)) return;
    fill(table_);
    ready_.store(true, std::memory_order_release);
  }

  static inline std::mutex mutex_;  // shared by all tables of one shape
  std::atomic<bool> ready_{false};
  T table_[kSize]{};
};

}  // namespace kt

#endif
