#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace atlas {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBarWidth = 30;
constexpr unsigned kStepMask = 0xFF;  // looking at the clock costs time, too
constexpr auto kPause = std::chrono::milliseconds(80);

}  // namespace

Progress::Progress(std::string title, unsigned long long total)
    : title_(std::move(title)), total_(total), isShown_(isatty(STDERR_FILENO) == 1), began_(Clock::now()) {}

Progress::~Progress() {
  if (isShown_) std::fprintf(stderr, "\r\033[K");
}

double Progress::seconds() const { return std::chrono::duration<double>(Clock::now() - began_).count(); }

void Progress::step(unsigned long long done) {
  if (!isShown_ || (done & kStepMask) != 0) return;
  if (Clock::now() - shown_ < kPause) return;
  shown_ = Clock::now();
  show(done);
}

void Progress::show(unsigned long long done) {
  const double rate = static_cast<double>(done) / std::max(seconds(), 1e-9);
  std::fprintf(stderr, "\r\033[K%s ", title_.c_str());
  if (total_ != 0) {
    const int filled = static_cast<int>(std::min(done, total_) * kBarWidth / total_);
    std::fprintf(stderr, "[%-*s] ", kBarWidth, std::string(static_cast<std::size_t>(filled), '#').c_str());
  }
  std::fprintf(stderr, "%s objects, %s a second", grouped(done).c_str(),
               grouped(static_cast<unsigned long long>(rate)).c_str());
  std::fflush(stderr);
}

std::string grouped(unsigned long long number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3; at -= 3) text.insert(at - 3, 1, ',');
  return text;
}

std::string counted(unsigned long long number, const std::string& noun) {
  return grouped(number) + " " + noun + (number == 1 ? "" : "s");
}

}  // namespace atlas
