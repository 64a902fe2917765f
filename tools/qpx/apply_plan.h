// What a call of qpx apply asks for, checked as far as it can be before a picture is read.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "conversion.h"
#include "effect_argument.h"
#include "image_file.h"

namespace qpx::tool {

struct ApplyArguments {
  std::vector<std::string> words;
  std::string outDir;
  std::string to;
  std::string format;
  std::string mask;
  std::string second;
  std::string from;
  std::string inSize;
  std::string range;
  int band = 0;
  int threads = 0;
  int strength = 100;
  int level = 0;
  int quality = 95;
  bool plain = false;
  bool verbose = false;
};

struct Job {
  std::string in;
  std::string out;
  std::optional<FileKind> kind;  // nothing: that of the input
  bool stream = false;           // OUT cannot be a picture
};

struct Plan {
  std::vector<EffectCall> chain;
  std::vector<Job> jobs;
  std::optional<FrameShape> frames;  // inputs have frames without headers
  Range range = Range::bt601;        // of streams that do not say theirs
};

// Throws UsageError for words that make no sense together, for two inputs that would become one
// output, and for a folder in which an output would replace an input.
Plan planFor(const ApplyArguments& arguments);

}  // namespace qpx::tool
