// error.h - what the tool says when it gives up: "kttm: " and this text on stderr, exit code 2.
#ifndef KTTM_TOOL_ERROR_H
#define KTTM_TOOL_ERROR_H

#include <stdexcept>

namespace tool {

class Error : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

}  // namespace tool

#endif
