// qpx motion-blur: a subject that moves before a background that does not.
#include <qpx/motion_blur.h>

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

namespace qpx::tool {

namespace {

struct MotionBlurArguments {
  OnePicture files;
  std::string mask;
  int angle = 0;
  int length = 50;
};

// Inside is what is at least half light or opaque: a mask kept as a JPEG is never quite black.
Picture insideOf(Picture mask) {
  for (int32_t y = 0; y < mask.height(); ++y) {
    uint8_t* const row = mask.row(y);
    for (int32_t x = 0; x < mask.width(); ++x) row[x] = row[x] >= 128 ? 255 : 0;
  }
  return mask;
}

Picture wholeMask(const Picture& picture) {
  Picture mask(picture.width(), picture.height(), 1);
  for (int32_t y = 0; y < mask.height(); ++y) {
    std::fill_n(mask.row(y), mask.width(), uint8_t{255});
  }
  return mask;
}

std::string sizeText(const Picture& picture) {
  return std::to_string(picture.width()) + "x" + std::to_string(picture.height());
}

// Without a mask all of the picture moves.
Picture blurred(const Picture& picture, const Picture* given,
                const MotionBlurArguments& arguments) {
  const Picture whole = given ? Picture() : wholeMask(picture);
  const Picture& mask = given ? *given : whole;
  if (mask.width() != picture.width() || mask.height() != picture.height()) {
    throw RunError("is " + sizeText(picture) + ", but its mask " +
                   displayName(arguments.mask, true) + " is " + sizeText(mask) +
                   ": give a mask of the same size");
  }
  Picture result = copyOf(picture);
  const MBitmap from = bitmapOf(picture), under = bitmapOf(mask);
  MBitmap to = bitmapOf(result);
  checkResult(QPX_MotionBlur(&from, &under, arguments.angle, arguments.length, &to));
  return result;
}

void motionBlur(const MotionBlurArguments& arguments) {
  if (arguments.mask == "-" && arguments.files.in == "-") {
    throw UsageError("IN and --mask cannot both be standard input: give one of them as a file");
  }
  Picture mask;
  if (!arguments.mask.empty()) mask = insideOf(maskOf(readPicture(arguments.mask)));
  changePicture(arguments.files, [&](const Picture& picture, Progress& progress) {
    Picture result = blurred(picture, arguments.mask.empty() ? nullptr : &mask, arguments);
    progress.advance(kEffectSteps);
    return result;
  });
}

}  // namespace

void addMotionBlurCommand(CLI::App& app) {
  const auto arguments = std::make_shared<MotionBlurArguments>();
  CLI::App* command = app.add_subcommand(
      "motion-blur", "Smear what is under a mask along a line; its background stays sharp");
  addOnePictureOptions(*command, arguments->files);
  command
      ->add_option("--mask", arguments->mask,
                   "Picture of the same size whose light or opaque parts move (default: all)")
      ->check(notEmpty())
      ->type_name("FILE");
  command
      ->add_option("--angle", arguments->angle,
                   "Degrees, anticlockwise from a movement across (default 0)")
      ->transform(wholeNumber(-360, 360));
  command->add_option("--length", arguments->length, "Length of the smear in pixels (default 50)")
      ->transform(wholeNumber(0, 1 << 30));
  command->footer(
      "Only pixels under the mask are taken into the smear, so that a subject does not\n"
      "drag its background along. Exif data, colour profile, density and alpha are kept.\n\n"
      "Example:\n"
      "  qpx motion-blur photo.jpg fast.jpg --mask mask.png --angle 5 --length 80");
  command->callback([arguments] { motionBlur(*arguments); });
}

}  // namespace qpx::tool
