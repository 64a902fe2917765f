// qpx retouch: takes something out of a picture.
#include <qpx/retouch.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "command_line.h"
#include "commands.h"
#include "effect_run.h"
#include "errors.h"
#include "image_file.h"
#include "one_picture.h"
#include "picture_frame.h"
#include "retouch_guide.h"

namespace qpx::tool {

namespace {

struct RetouchArguments {
  OnePicture files;
  std::string mask;
  int radius = 4;
  double weight = 0.9;
  double scale = 0;  // 0: by the picture's size
};

std::string sizeText(const Picture& picture) {
  return std::to_string(picture.width()) + "x" + std::to_string(picture.height());
}

// Whether any pixel has this value.
bool hasAny(const Picture& mask, uint8_t value) {
  for (int32_t y = 0; y < mask.height(); ++y) {
    const uint8_t* const row = mask.row(y);
    if (std::find(row, row + mask.width(), value) != row + mask.width()) return true;
  }
  return false;
}

void checkMask(const Picture& mask, const RetouchArguments& arguments, const Picture& picture) {
  if (mask.width() == picture.width() && mask.height() == picture.height()) return;
  throw RunError("is " + sizeText(picture) + ", but its mask " + displayName(arguments.mask, true) +
                 " is " + sizeText(mask) + ": give a mask of the same size");
}

Picture retouched(const Picture& picture, const Picture& given, const RetouchArguments& arguments) {
  checkMask(given, arguments, picture);
  const double scale = arguments.scale > 0 ? arguments.scale : retouchScale(picture);
  const Picture mask = retouchMask(given, scale);
  if (!hasAny(mask, 0)) {
    throw RunError("is covered by its mask " + displayName(arguments.mask, true) +
                   ": leave something to fill from, black in the mask");
  }
  const Picture guide = retouchGuide(picture, scale);
  Picture result = copyOf(picture);
  const MBitmap from = bitmapOf(picture), plan = bitmapOf(guide), holes = bitmapOf(mask);
  MBitmap to = bitmapOf(result);
  const float settings[2] = {static_cast<float>(arguments.radius),
                             static_cast<float>(arguments.weight)};
  checkResult(ReTouch(&from, &plan, &holes, settings, &to));
  return result;
}

void retouch(const RetouchArguments& arguments) {
  if (arguments.mask == "-" && arguments.files.in == "-") {
    throw UsageError("IN and --mask cannot both be standard input: give one of them as a file");
  }
  const Picture mask = maskOf(readPicture(arguments.mask));
  changePicture(arguments.files, [&](const Picture& picture, Progress& progress) {
    Picture result = retouched(picture, mask, arguments);
    progress.advance(kEffectSteps);
    return result;
  });
}

}  // namespace

void addRetouchCommand(CLI::App& app) {
  const auto arguments = std::make_shared<RetouchArguments>();
  CLI::App* command = app.add_subcommand(
      "retouch", "Take something out of a picture and fill the hole from the rest of it");
  addOnePictureOptions(*command, arguments->files);
  command
      ->add_option("--mask", arguments->mask,
                   "Picture of the same size whose light or opaque parts are taken out")
      ->required()
      ->check(notEmpty())
      ->type_name("FILE");
  command
      ->add_option("--radius", arguments->radius,
                   "Half a patch in pixels, after reduction: 1 to 10 (default 4)")
      ->transform(wholeNumber(1, 10));
  command
      ->add_option("--weight", arguments->weight,
                   "What is filled first: 0 where lines run into the hole, 1 where most is known "
                   "(default 0.9)")
      ->check(number(0.0, 1.0));
  command
      ->add_option("--scale", arguments->scale,
                   "Seek patches in the picture reduced by this, 1 and up (default: as keeps it "
                   "quick)")
      ->check(number(1.0, 64.0));
  command->footer(
      "Paint the mask a few pixels beyond the object, its shadow and its soft edges. A larger\n"
      "radius keeps larger patterns together, a smaller one follows finer lines. Exif data,\n"
      "colour profile, density and alpha are kept.\n\n"
      "Example:\n"
      "  qpx retouch photo.jpg without.jpg --mask mask.png");
  command->callback([arguments] { retouch(*arguments); });
}

}  // namespace qpx::tool
