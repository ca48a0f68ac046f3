#include "run_data.h"

#include "../common/clones.h"

namespace kt::bench {
namespace {

using Vector [[gnu::vector_size(32), gnu::aligned(1), gnu::may_alias]] = std::uint64_t;

// Four sums side by side, so that none waits for another.
KT_CLONES std::uint64_t sumWordsOfRun(const unsigned char* run, std::size_t bytes) {
  const Vector* words = reinterpret_cast<const Vector*>(run);
  Vector a{}, b{}, c{}, d{};
  for (const Vector* const end = words + bytes / sizeof a; words != end; words += 4)
    a += words[0], b += words[1], c += words[2], d += words[3];
  a += b + c + d;
  return a[0] + a[1] + a[2] + a[3];
}

}  // namespace

std::uint64_t readBytes(const void* run, std::size_t bytes) {
  return sumWordsOfRun(static_cast<const unsigned char*>(run), bytes);
}

}  // namespace kt::bench
