// What a call of qpx sheet asks for, checked as far as it can be before the picture is read.
#pragma once

#include <string>
#include <vector>

#include "effect_argument.h"
#include "effect_run.h"
#include "picture.h"

namespace qpx::tool {

struct SheetArguments {
  std::string in;
  std::string out;
  std::string to;
  std::vector<std::string> effects;
  std::string family;
  std::string sweep;
  std::string format;
  std::string second;
  int steps = 11;
  int columns = 0;
  int size = 320;
  int threads = 0;
  int quality = 95;
  bool verbose = false;
};

struct SheetTile {
  EffectCall call;
  std::string title;
  std::string note;  // what qpx apply takes for the same picture
};

struct SheetPlan {
  std::string file;  // the name of the input, without its folder
  std::string heading;
  std::vector<SheetTile> tiles;
  FileKind kind;
};

// Throws UsageError. `options` are those that the tiles will be run with.
SheetPlan sheetPlanFor(const SheetArguments& arguments, const RunOptions& options);

// With the second picture for effects that may take one, and without for others.
RunOptions optionsOf(const SheetTile& tile, RunOptions options);

// The effects of a list with commas between them, and between their parameters.
std::vector<std::string> splitEffects(const std::string& list);

// The values that a sweep shows: evenly spaced, the ends included, rounded so that they read well,
// none twice.
std::vector<double> sweepValues(const QPXParamInfo& param, int steps);

}  // namespace qpx::tool
