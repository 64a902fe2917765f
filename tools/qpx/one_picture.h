// What the subcommands that change one whole picture have in common.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "picture.h"
#include "progress.h"

namespace qpx::tool {

struct OnePicture {
  std::string in;
  std::string out;
  std::string to;
  int quality = 95;
};

// IN, OUT, --to and --quality.
void addOnePictureOptions(CLI::App& command, OnePicture& files);

// Reads IN, has it changed and writes OUT, whole or not at all. A change reports `kEffectSteps`
// steps of progress; what goes wrong in it is reported with the name of IN.
using Change = std::function<Picture(Picture picture, Progress& progress)>;
void changePicture(const OnePicture& files, const Change& change);

// Throws RunError for the result codes of a service that failed.
void checkResult(int32_t code);

}  // namespace qpx::tool
