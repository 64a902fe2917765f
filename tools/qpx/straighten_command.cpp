// qpx straighten: a photograph levelled without empty corners.
#include <qpx/rotate.h>

#include <memory>
#include <numbers>
#include <string>

#include "command_line.h"
#include "commands.h"
#include "effect_run.h"
#include "errors.h"
#include "one_picture.h"
#include "picture_frame.h"
#include "text.h"

namespace qpx::tool {

namespace {

// Beyond this a picture is rather turned than levelled, and little of it would be left.
constexpr double kMostDegrees = 45;

struct StraightenArguments {
  OnePicture files;
  std::string degrees;
  bool nearest = false;
};

double degreesOf(const std::string& text) {
  const std::optional<double> degrees = parseReal(text);
  if (degrees && *degrees >= -kMostDegrees && *degrees <= kMostDegrees) return *degrees;
  throw UsageError("--degrees " + text + ": give a number from -45 to 45, such as 1.5");
}

void straighten(const StraightenArguments& arguments) {
  const double radians = degreesOf(arguments.degrees) * std::numbers::pi / 180.0;
  const int32_t bilinear = arguments.nearest ? 0 : 1;
  changePicture(arguments.files, [&](const Picture& picture, Progress& progress) {
    Picture result = emptyLike(picture, picture.width(), picture.height());
    const MBitmap from = bitmapOf(picture);
    MBitmap to = bitmapOf(result);
    checkResult(QPX_Straighten(&from, &to, radians, bilinear));
    progress.advance(kEffectSteps);
    return result;
  });
}

}  // namespace

void addStraightenCommand(CLI::App& app) {
  const auto arguments = std::make_shared<StraightenArguments>();
  CLI::App* command =
      app.add_subcommand("straighten", "Level a photograph and fill the frame with it");
  addOnePictureOptions(*command, arguments->files);
  command
      ->add_option("--degrees", arguments->degrees,
                   "How far to turn it, clockwise; -45 to 45, fractions too")
      ->required()
      ->check(notEmpty());
  command->add_flag("--nearest", arguments->nearest, "Take single pixels, without blending");
  command->footer(
      "The picture keeps its size: it is enlarged just so much that no corner stays\n"
      "empty. Exif data, colour profile and density are kept.\n\n"
      "Example:\n"
      "  qpx straighten horizon.jpg level.jpg --degrees -1.5");
  command->callback([arguments] { straighten(*arguments); });
}

}  // namespace qpx::tool
