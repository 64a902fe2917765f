// qpx waterfall: a picture that runs along the strokes of a finger.
#include <qpx/waterfall.h>

#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "effect_run.h"
#include "errors.h"
#include "one_picture.h"
#include "picture_frame.h"
#include "strokes.h"

namespace qpx::tool {

namespace {

struct WaterfallArguments {
  OnePicture files;
  std::vector<std::string> strokes;
  int radius = 20;
  int length = 40;
};

class Waterfall {
 public:
  Waterfall(const Picture& picture, const WaterfallArguments& arguments) {
    const MBitmap image = bitmapOf(picture);
    // Everything but memory has been checked.
    if (QPX_WaterFall_Create(&handle_, &image, &record_) != QPX_OK) throw std::bad_alloc();
    const int32_t radius = arguments.radius, length = arguments.length;
    checkResult(QPX_WaterFall_SetProp(handle_, QPX_WATERFALL_RADIUS, &radius, sizeof radius));
    checkResult(QPX_WaterFall_SetProp(handle_, QPX_WATERFALL_LENGTH, &length, sizeof length));
  }
  ~Waterfall() { QPX_WaterFall_Destroy(handle_); }
  Waterfall(const Waterfall&) = delete;
  Waterfall& operator=(const Waterfall&) = delete;

  // Throws RunError for a stroke that leaves no trace.
  void draw(const Stroke& stroke, ProgressShare& share) {
    bool moved = false, touched = false;
    for (const MPoint& point : stroke.points) {
      MBitmap* shown = nullptr;
      int32_t area[4] = {};
      checkResult(QPX_WaterFall_Process(handle_, &point, &point == &stroke.points.back() ? 1 : 0,
                                        &shown, area));
      moved |= shown != nullptr;
      touched |= shown != nullptr && area[0] <= area[2];
      share.advance();
    }
    if (!moved)
      throw RunError(stroke.name + " has all points within a third of the radius: make it longer");
    if (!touched) {
      throw RunError(stroke.name + " does not touch the picture, which is " +
                     std::to_string(record_->width) + "x" + std::to_string(record_->height));
    }
  }

  void copyTo(Picture& picture) const {
    for (int32_t y = 0; y < picture.height(); ++y) {
      std::memcpy(picture.row(y), record_->plane[0] + ptrdiff_t{record_->pitch[0]} * y,
                  static_cast<size_t>(picture.pitch()));
    }
  }

 private:
  QPXWaterFallHandle* handle_ = nullptr;
  MBitmap* record_ = nullptr;
};

void waterfall(const WaterfallArguments& arguments) {
  std::vector<Stroke> strokes;
  int64_t points = 0;
  for (const std::string& text : arguments.strokes) {
    strokes.push_back(parseStroke("--stroke", text, 2));
    points += static_cast<int64_t>(strokes.back().points.size());
  }
  changePicture(arguments.files, [&](Picture picture, Progress& progress) {
    ProgressShare share(progress, kEffectSteps);
    share.expect(points);
    Waterfall running(picture, arguments);
    for (const Stroke& stroke : strokes) running.draw(stroke, share);
    running.copyTo(picture);
    return picture;
  });
}

}  // namespace

void addWaterfallCommand(CLI::App& app) {
  const auto arguments = std::make_shared<WaterfallArguments>();
  CLI::App* command =
      app.add_subcommand("waterfall", "Let a picture run along the strokes of a finger");
  addOnePictureOptions(*command, arguments->files);
  command
      ->add_option("--stroke", arguments->strokes,
                   "Points of a stroke in pixels, in quotes; may be given several times")
      ->required()
      ->take_all()
      ->expected(1)
      ->check(notEmpty())
      ->type_name("\"X,Y X,Y...\"");
  command->add_option("--radius", arguments->radius, "Half the stroke's width (default 20)")
      ->transform(wholeNumber(1, 1 << 30));
  command
      ->add_option("--length", arguments->length, "Pixels that run into one another (default 40)")
      ->transform(wholeNumber(2, 1 << 30));
  command->footer(
      "Pixels run in the direction of the stroke, whichever way it is drawn. Points may\n"
      "lie outside the picture. Exif data, colour profile, density and alpha are kept.\n\n"
      "Example:\n"
      "  qpx waterfall photo.jpg silk.jpg --stroke \"60,0 80,600\" --radius 60 --length 120");
  command->callback([arguments] { waterfall(*arguments); });
}

}  // namespace qpx::tool
