// guarded_page.h - memory of which not one byte too many can be read or written: it begins or ends where a page does.
#ifndef KT_TESTS_GUARDED_PAGE_H
#define KT_TESTS_GUARDED_PAGE_H

#include "string_bytes.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

namespace kt_test {

enum class Place { kBegin, kEnd };
// A page between two that nobody may touch.
class GuardedPage {
public:
  GuardedPage() : size_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
    void* const pages = mmap(nullptr, 3 * size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) std::abort();
    page_ = static_cast<unsigned char*>(pages) + size_;
    if (mprotect(page_, size_, PROT_READ | PROT_WRITE) != 0) std::abort();
  }
  GuardedPage(const GuardedPage&) = delete;
  GuardedPage& operator=(const GuardedPage&) = delete;
  ~GuardedPage() { munmap(page_ - size_, 3 * size_); }

  unsigned char* put(const Bytes& bytes, Place place) {
    unsigned char* const at = room(bytes.size(), place);
    std::copy(bytes.begin(), bytes.end(), at);
    return at;
  }
  unsigned char* room(std::size_t bytes, Place place) {
    std::memset(page_, kFill, size_);
    return place == Place::kBegin ? page_ : page_ + size_ - bytes;
  }
  // Whether the bytes of a room are these and those beside it are as they were.
  bool holds(const Bytes& bytes, Place place) const {
    Bytes all(size_, kFill);
    std::copy(bytes.begin(), bytes.end(), place == Place::kBegin ? all.begin() : all.end() - std::ssize(bytes));
    return std::equal(all.begin(), all.end(), page_);
  }

private:
  static constexpr unsigned char kFill = 0xA5;
  std::size_t size_;
  unsigned char* page_;
};

}  // namespace kt_test

#endif
