// Commands that make one picture out of one: files in and out, progress, and messages that name
// them.
#pragma once

#include <qpx/types.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <string>

#include "picture.h"
#include "progress.h"

namespace qpx::tool {

struct JobArguments {
  std::string in;
  std::string out;
  std::string to;
  int quality = 95;
};

// IN, OUT, --to and --quality.
void addJobOptions(CLI::App& command, JobArguments& arguments);

// Reads, works, writes. The work reports `kEffectSteps` steps of progress and throws RunError
// without a name.
using PictureWork = std::function<Picture(Picture picture, Progress& progress)>;
void runPictureJob(const JobArguments& arguments, const PictureWork& work);

// What a RunError says of a code that the library answered to sound arguments.
std::string failureText(int32_t code);

// The picture as the library takes it: 24 or 32 bits in the order red, green, blue, alpha. The
// record has no place for "read only", which the picture may nevertheless be.
MBitmap recordOf(const Picture& picture);

}  // namespace qpx::tool
