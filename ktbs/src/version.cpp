#include <tuple>

#include "ktbs.h"

namespace {
constexpr int kMajor = 9;
constexpr auto kRelease = std::make_tuple(5, 23, 262, 0);  // minor, build, revision, patch
}  // namespace

int CheckKtVersionNumber(int major, int minor, int build, int revision, int patch, int) {
  return major == kMajor && std::make_tuple(minor, build, revision, patch) <= kRelease;
}
