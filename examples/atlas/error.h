// error.h - what atlas says when it gives up: "atlas: " and the text on stderr, and the exit code.
#ifndef EXAMPLES_ATLAS_ERROR_H
#define EXAMPLES_ATLAS_ERROR_H

#include <stdexcept>
#include <string>

namespace atlas {

enum ExitCode {
  kExitDone = 0,
  kExitDamage = 1,    // check found differences
  kExitMistake = 2,   // in the arguments, or in the data that was to be read
  kExitDatabase = 3,  // the file is no atlas database, has another format, schema or language
  kExitFull = 4,      // the map or the disk is full; the open transaction was rolled back
  kExitBroken = 5,    // the file is truncated, or cannot be read or written
};

class Error : public std::runtime_error {
public:
  Error(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  ExitCode code() const { return code_; }

private:
  ExitCode code_;
};

// A mistake of the user's.
class Mistake : public Error {
public:
  explicit Mistake(const std::string& message) : Error(kExitMistake, message) {}
};

}  // namespace atlas

#endif
