// The two ways in which a run of the tool fails; its exit status says which.
#pragma once

#include <stdexcept>
#include <string>

namespace qpx::tool {

constexpr int kExitDone = 0;
constexpr int kExitFailed = 1;
constexpr int kExitWrongCall = 2;

// The call itself is wrong: an unknown name, a value out of range. Nothing has been read or
// written.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A run that was called properly and failed: a file, memory, the engine.
class RunError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace qpx::tool
