// progress.h - a line on a terminal that tells how far a long job is; elsewhere nothing.
#ifndef EXAMPLES_ATLAS_PROGRESS_H
#define EXAMPLES_ATLAS_PROGRESS_H

#include <chrono>
#include <string>

namespace atlas {

class Progress {
public:
  // total: 0 when it is not known.
  Progress(std::string title, unsigned long long total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void step(unsigned long long done);  // shows at most some ten times a second
  double seconds() const;

private:
  void show(unsigned long long done);

  std::string title_;
  unsigned long long total_;
  bool isShown_;
  std::chrono::steady_clock::time_point began_;
  std::chrono::steady_clock::time_point shown_;
};

// "25,000".
std::string grouped(unsigned long long number);
// "1 object", "25,000 objects".
std::string counted(unsigned long long number, const std::string& noun);

}  // namespace atlas

#endif
