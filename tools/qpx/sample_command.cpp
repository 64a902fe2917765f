// qpx sample: a picture to try effects on.
#include <unistd.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "command_line.h"
#include "commands.h"
#include "errors.h"
#include "image_file.h"
#include "output_file.h"
#include "picture.h"
#include "progress.h"
#include "sample_scene.h"
#include "text.h"

namespace qpx::tool {

namespace {

struct SampleArguments {
  std::string out;
  std::string size = "1280x960";
  std::string to;
  uint32_t seed = 1;
  int quality = 95;
};

void sample(const SampleArguments& arguments) {
  const PictureSize size = parseSize(arguments.size);
  const FileKind kind = kindOfOutput(arguments.out, arguments.to).value_or(FileKind::png);
  const std::string problem = sizeProblem(kind, size.width, size.height);
  if (!problem.empty()) throw UsageError(displayName(arguments.out, false) + ": " + problem);
  refuseTerminal(arguments.out, isatty(STDOUT_FILENO) != 0);
  // A row takes about a quarter of the time to write that it takes to draw.
  const int64_t writeSteps = size.height / 4 + 1;
  Progress progress(displayName(arguments.out, false), size.height + writeSteps);
  const Picture scene = drawSampleScene(size.width, size.height, arguments.seed, progress);
  writePicture(scene, arguments.out, kind, arguments.quality, {progress, writeSteps});
}

}  // namespace

void addSampleCommand(CLI::App& app) {
  const auto arguments = std::make_shared<SampleArguments>();
  CLI::App* command = app.add_subcommand(
      "sample", "Draw a picture to judge effects by: sky, foliage, skin, colour chart, fine lines");
  command->add_option("OUT", arguments->out, "JPEG or PNG; '-' is standard output")
      ->required()
      ->check(notEmpty());
  command->add_option("--size", arguments->size, "Width and height (default 1280x960)")
      ->check(notEmpty())
      ->type_name("WxH");
  command->add_option("--seed", arguments->seed, "Another seed, other clouds and leaves")
      ->transform(wholeNumber(0, std::numeric_limits<uint32_t>::max()));
  command->add_option("--to", arguments->to, "Output format, whatever the name says")
      ->check(CLI::IsMember({"png", "jpeg", "jpg"}));
  command->add_option("--quality", arguments->quality, "Quality of JPEG output (default 95)")
      ->transform(wholeNumber(1, 100));
  command->footer(
      "The same size and seed always give the same pixels.\n\n"
      "Example:\n"
      "  qpx sample scene.png --size 1920x1080 --seed 7");
  command->callback([arguments] { sample(*arguments); });
}

}  // namespace qpx::tool
