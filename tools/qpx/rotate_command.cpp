// qpx rotate: a picture turned by whole degrees, all of it or what is left without its corners.
#include <qpx/rotate.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "effect_argument.h"
#include "effect_run.h"
#include "errors.h"
#include "exif.h"
#include "one_picture.h"
#include "picture_frame.h"
#include "text.h"

namespace qpx::tool {

namespace {

// Source columns have 16 bits.
constexpr int32_t kMaxWidth = 32767;

struct RotateArguments {
  OnePicture files;
  std::string degrees;
  std::string fill;
  bool crop = false;
};

// What a call asks for, with the angle in 0 ... 359.
struct Turn {
  int32_t degrees = 0;
  std::optional<uint32_t> fill;  // 0xRRGGBB
  bool crop = false;
};

// What to give in place of degrees that are no integer.
const char* adviceFor(const std::string& degrees) {
  const std::optional<double> value = parseReal(degrees);
  if (!value) return " is no whole number: give one such as 13 or -90";
  if (*value != std::floor(*value)) {
    return ": rotate takes whole degrees: give a whole number, or level the picture with "
           "'qpx straighten', which takes any";
  }
  return ": give a whole number of up to 18 digits, such as 13 or -90";
}

Turn turnFor(const RotateArguments& arguments) {
  const std::optional<int64_t> degrees = parseInteger(arguments.degrees);
  if (!degrees) throw UsageError("--degrees " + arguments.degrees + adviceFor(arguments.degrees));
  Turn turn;
  turn.degrees = static_cast<int32_t>((*degrees % 360 + 360) % 360);
  if (!arguments.fill.empty()) turn.fill = parseColor(arguments.fill);
  turn.crop = arguments.crop;
  return turn;
}

// The Exif orientations that say the same of a stored picture.
int orientationOf(int32_t degrees) {
  constexpr std::array kQuarterTurns = {1, 6, 3, 8};
  return kQuarterTurns[static_cast<size_t>(degrees / 90)];
}

struct Size {
  int32_t width, height;
};

// Record of a size alone, for calls that measure.
MBitmap sized(const Size& size) {
  MBitmap record{};
  record.width = size.width;
  record.height = size.height;
  return record;
}

Size resultSize(const Picture& picture, const Turn& turn) {
  const MBitmap source = sized({picture.width(), picture.height()});
  Size size{};
  checkResult(QPXRotateCalcDstSize(&source, turn.degrees, &size.width, &size.height));
  size = {std::max(size.width, 1), std::max(size.height, 1)};
  if (!turn.crop) return size;
  const MBitmap target = sized(size);
  MRect inside{};
  checkResult(QPXRotateCalcInternalRect(&source, &target, turn.degrees, &inside));
  // The outermost pixels are half fill.
  constexpr int32_t kBorder = 2;
  size = {inside.right - inside.left - kBorder, inside.bottom - inside.top - kBorder};
  if (size.width < 1 || size.height < 1) {
    throw RunError("nothing is left of it without its corners: leave --crop out");
  }
  return size;
}

class Rotation {
 public:
  // Both pictures have the same channels and outlive it.
  Rotation(const Picture& source, Picture& result, const Turn& turn)
      : source_(asBgr(source)), result_(asBgr(result)) {
    const uint32_t color = turn.fill.value_or(0);
    // Nothing was asked for: what lies outside is see-through where that can be.
    const uint8_t alpha = turn.fill ? 255 : 0;
    const uint8_t fill[4] = {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
                             static_cast<uint8_t>(color), alpha};
    const QPXRotateFormat from = {source_.format, source_.width, source_.height};
    const QPXRotateFormat to = {result_.format, result_.width, result_.height};
    const QPXRotateParams params = {turn.degrees, fill};
    checkResult(QPXRotateCreate(&handle_, &from, &to, &params));
  }
  ~Rotation() { QPXRotateDestroy(handle_); }
  Rotation(const Rotation&) = delete;
  Rotation& operator=(const Rotation&) = delete;

  // Strips go to whichever thread is free.
  void run(Progress& progress) {
    const int32_t strips = (result_.height - 1) / kStripRows + 1;
    const int processors = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    std::atomic<int32_t> next{0};
    std::atomic<int32_t> worst{QPX_OK};
    const auto work = [&] {
      for (int32_t i = next++; i < strips; i = next++) {
        const MRect strip = {0, i * kStripRows, result_.width,
                             std::min((i + 1) * kStripRows, result_.height)};
        const int32_t code = QPXRotateProcess(handle_, &source_, &result_, &strip);
        if (code != QPX_OK) worst = code;
        progress.advance(kEffectSteps * (i + 1) / strips - kEffectSteps * i / strips);
      }
    };
    std::vector<std::jthread> threads;
    for (int i = 1; i < std::min(processors, strips); ++i) threads.emplace_back(work);
    work();
    threads.clear();  // joins
    checkResult(worst);
  }

 private:
  static constexpr int32_t kStripRows = 64;

  // The object knows the formats of one order only, and keeps the order that is there.
  static MBitmap asBgr(const Picture& picture) {
    MBitmap record = bitmapOf(picture);
    record.format = picture.hasAlpha() ? QPX_FORMAT_BGRA32 : QPX_FORMAT_BGR24;
    return record;
  }

  MBitmap source_;
  MBitmap result_;
  QPXRotateHandle* handle_ = nullptr;
};

Picture rotated(Picture picture, const Turn& turn, Progress& progress) {
  if (turn.degrees % 90 == 0) {
    progress.advance(kEffectSteps);
    Picture result = turned(std::move(picture), orientationOf(turn.degrees));
    describeUpright(result.exif, result.width(), result.height());
    return result;
  }
  if (picture.width() > kMaxWidth) {
    throw RunError(std::to_string(picture.width()) + " pixels are wider than the " +
                   std::to_string(kMaxWidth) +
                   " that turn by such an angle: use a smaller picture");
  }
  const Size size = resultSize(picture, turn);
  Picture result = emptyLike(picture, size.width, size.height);
  Rotation(picture, result, turn).run(progress);
  return result;
}

void rotate(const RotateArguments& arguments) {
  const Turn turn = turnFor(arguments);
  changePicture(arguments.files, [&](Picture picture, Progress& progress) {
    return rotated(std::move(picture), turn, progress);
  });
}

}  // namespace

void addRotateCommand(CLI::App& app) {
  const auto arguments = std::make_shared<RotateArguments>();
  CLI::App* command = app.add_subcommand("rotate", "Turn a picture by whole degrees");
  addOnePictureOptions(*command, arguments->files);
  command->add_option("--degrees", arguments->degrees, "How far, clockwise; a whole number")
      ->required()
      ->check(notEmpty());
  command
      ->add_option("--fill", arguments->fill,
                   "Colour of the corners (default black, or transparent where the picture has "
                   "alpha)")
      ->check(notEmpty())
      ->type_name("COLOR");
  command->add_flag("--crop", arguments->crop, "Keep the largest part without corners");
  command->footer(
      "The output is as large as the turned picture, or with --crop as the largest part\n"
      "of the picture's proportions inside it. Multiples of 90 degrees lose nothing but\n"
      "what JPEG loses. Colours are #rrggbb or names, as for effects. Exif data, colour\n"
      "profile and density are kept.\n\n"
      "Examples:\n"
      "  qpx rotate photo.jpg turned.jpg --degrees 13 --fill white\n"
      "  qpx rotate photo.jpg cut.jpg --degrees -7 --crop\n"
      "  qpx rotate scan.png upright.png --degrees 90");
  command->callback([arguments] { rotate(*arguments); });
}

}  // namespace qpx::tool
