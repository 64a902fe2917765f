// The two ways in which a run of the tool fails; its exit status says which.
#pragma once

#include <cstdint>
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

// A run in which the engine refused an effect, with the engine's result code.
class EngineError : public RunError {
 public:
  EngineError(int32_t code, const std::string& text) : RunError(text), code_(code) {}

  int32_t code() const { return code_; }

 private:
  int32_t code_;
};

}  // namespace qpx::tool
