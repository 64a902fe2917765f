// qpx cutout: an object on transparent ground, by strokes over it and over its background.
#include <qpx/cutout.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "effect_run.h"
#include "errors.h"
#include "image_file.h"
#include "one_picture.h"
#include "outline_svg.h"
#include "output_file.h"
#include "picture_frame.h"
#include "soft_edge.h"
#include "strokes.h"

namespace qpx::tool {

namespace {

struct CutoutArguments {
  OnePicture files;
  std::vector<std::string> foreground, background;
  std::string strokes, mask, outline;
  std::optional<int> feather;
};

// What the library made of the strokes.
struct Cut {
  Picture mask;
  std::string outline;  // as SVG
};

class Matting {
 public:
  explicit Matting(const Picture& picture) {
    const MBitmap image = bitmapOf(picture);
    checkResult(STRKM_Create(&handle_, &image));
  }
  ~Matting() { STRKM_Destroy(handle_); }
  Matting(const Matting&) = delete;
  Matting& operator=(const Matting&) = delete;

  void add(const Stroke& stroke, QPXStrokeSide side) {
    const std::vector<MPoint> pixels = pixelsOf(stroke);
    checkResult(STRKM_AddLine(handle_, side, pixels.data(), static_cast<int32_t>(pixels.size())));
  }

  Cut cut() {
    MBitmap* mask = nullptr;
    MPoint* points = nullptr;
    int32_t count = 0;
    checkResult(STRKM_Process(handle_, &mask, &points, &count));
    Cut result = {Picture(mask->width, mask->height, 1), {}};
    for (int32_t y = 0; y < mask->height; ++y) {
      std::memcpy(result.mask.row(y), mask->plane[0] + ptrdiff_t{mask->pitch[0]} * y,
                  static_cast<size_t>(mask->width));
    }
    result.outline = outlineSvg(mask->width, mask->height, {points, static_cast<size_t>(count)});
    return result;
  }

 private:
  StrokeMatting* handle_ = nullptr;
};

void readStrokeFile(const std::string& path, StrokeSet& strokes) {
  try {
    const std::vector<uint8_t> bytes = readFileBytes(path);
    StrokeSet more = parseStrokeFile({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    strokes = std::move(more);
  } catch (const RunError& error) {
    throw RunError(displayName(path, true) + ": " + error.what());
  }
}

// Those of the file and those of the command line behind them.
StrokeSet strokesOf(const CutoutArguments& arguments) {
  StrokeSet given, strokes;
  for (const std::string& text : arguments.foreground) {
    given.foreground.push_back(parseStroke("--foreground", text, 1));
  }
  for (const std::string& text : arguments.background) {
    given.background.push_back(parseStroke("--background", text, 1));
  }
  if (!arguments.strokes.empty()) readStrokeFile(arguments.strokes, strokes);
  const auto append = [](std::vector<Stroke>& to, std::vector<Stroke>& from) {
    std::move(from.begin(), from.end(), std::back_inserter(to));
  };
  append(strokes.foreground, given.foreground);
  append(strokes.background, given.background);
  const char* const missing = strokes.foreground.empty()   ? "--foreground"
                              : strokes.background.empty() ? "--background"
                                                           : nullptr;
  if (missing != nullptr) {
    throw UsageError(std::string("no stroke on one side: give ") + missing +
                     " \"X,Y X,Y\", or both sides in a file by --strokes");
  }
  return strokes;
}

void checkInside(const std::vector<Stroke>& strokes, const Picture& picture) {
  for (const Stroke& stroke : strokes) {
    for (const MPoint& point : stroke.points) {
      if (point.x >= 0 && point.y >= 0 && point.x < picture.width() && point.y < picture.height()) {
        continue;
      }
      throw RunError("is " + std::to_string(picture.width()) + "x" +
                     std::to_string(picture.height()) + ", and " + stroke.name + " leaves it at " +
                     std::to_string(point.x) + "," + std::to_string(point.y));
    }
  }
}

Cut cutBy(const StrokeSet& strokes, const Picture& picture) {
  checkInside(strokes.foreground, picture);
  checkInside(strokes.background, picture);
  const Picture opaque = picture.hasAlpha() ? onWhite(copyOf(picture)) : Picture();
  Matting matting(picture.hasAlpha() ? opaque : picture);
  for (const Stroke& stroke : strokes.foreground) matting.add(stroke, QPX_STROKE_FOREGROUND);
  for (const Stroke& stroke : strokes.background) matting.add(stroke, QPX_STROKE_BACKGROUND);
  return matting.cut();
}

void writeText(const std::string& text, const std::string& path) {
  OutputFile out(path);
  out.write(reinterpret_cast<const uint8_t*>(text.data()), text.size());
  out.commit();
}

void checkOutputs(const CutoutArguments& arguments) {
  for (const std::string& path : {arguments.files.out, arguments.mask}) {
    const bool unnamed = path == "-" || std::filesystem::path(path).extension().empty();
    if (unnamed || kindByName(path) == FileKind::png) continue;
    throw UsageError(path + ": is written as a PNG: name it .png");
  }
  const std::string* const outputs[] = {&arguments.files.out, &arguments.mask, &arguments.outline};
  for (size_t i = 0; i < 3; ++i) {
    for (size_t j = 0; j < i; ++j) {
      if (outputs[i]->empty() || *outputs[i] != *outputs[j]) continue;
      throw UsageError("two outputs are to go to " + displayName(*outputs[i], false) +
                       ": name them apart");
    }
  }
  if (arguments.files.in == "-" && arguments.strokes == "-") {
    throw UsageError("IN and --strokes cannot both be standard input: give one of them as a file");
  }
}

void cutout(const CutoutArguments& arguments) {
  checkOutputs(arguments);
  const StrokeSet strokes = strokesOf(arguments);
  Cut cut;
  changePicture(arguments.files, [&](const Picture& picture, Progress& progress) {
    ProgressShare share(progress, kEffectSteps);
    share.expect(2);
    // All outputs are there in the end, or none.
    for (const std::string& path : {arguments.mask, arguments.outline}) {
      if (!path.empty()) refuseUnwritable(path);
    }
    cut = cutBy(strokes, picture);
    share.advance();
    const int32_t reach =
        arguments.feather.value_or(defaultReach(picture.width(), picture.height()));
    Picture result = cutOut(picture, cut.mask, reach);
    share.advance();
    return result;
  });
  if (!arguments.mask.empty()) writePicture(cut.mask, arguments.mask, FileKind::png, 0);
  if (!arguments.outline.empty()) writeText(cut.outline, arguments.outline);
}

void addStrokeOption(CLI::App& command, const std::string& name, std::vector<std::string>& strokes,
                     const std::string& help) {
  command.add_option(name, strokes, help)
      ->take_all()
      ->expected(1)
      ->check(notEmpty())
      ->type_name("\"X,Y X,Y...\"");
}

}  // namespace

void addCutoutCommand(CLI::App& app) {
  const auto arguments = std::make_shared<CutoutArguments>();
  arguments->files.to = "png";
  CLI::App* command =
      app.add_subcommand("cutout", "Cut an object out of a picture by strokes over it and around");
  command->add_option("IN", arguments->files.in, "JPEG or PNG; '-' is standard input")
      ->required()
      ->check(notEmpty());
  command->add_option("OUT", arguments->files.out, "Transparent PNG; '-' is standard output")
      ->required()
      ->check(notEmpty());
  addStrokeOption(*command, "--foreground,-f", arguments->foreground,
                  "Points of a stroke over the object, in quotes; may be given several times");
  addStrokeOption(*command, "--background,-b", arguments->background,
                  "Points of a stroke over its background; may be given several times");
  command
      ->add_option("--strokes", arguments->strokes,
                   "JSON with strokes: {\"foreground\": [[[x, y], [x, y]]], \"background\": [...]}")
      ->check(notEmpty())
      ->type_name("FILE");
  command
      ->add_option("--feather", arguments->feather,
                   "Pixels that the edge is soft to each side (default: by size; 0: hard)")
      ->transform(wholeNumber(0, 20));
  command->add_option("--mask", arguments->mask, "Write the hard mask to this PNG")
      ->check(notEmpty())
      ->type_name("FILE");
  command->add_option("--outline", arguments->outline, "Write the outline to this SVG")
      ->check(notEmpty())
      ->type_name("FILE");
  command->footer(
      "Strokes are in pixels of the upright picture; their points are joined by lines,\n"
      "and one point makes a stroke too. A short stroke through every colour of the\n"
      "object and of what is around it goes a long way; where the cut is wrong, add a\n"
      "stroke there. Exif data, colour profile and density are kept.\n\n"
      "Example:\n"
      "  qpx cutout photo.jpg cup.png --foreground \"300,180 340,260\" \\\n"
      "    --background \"20,20 580,20\" --background \"20,380 580,380\"");
  command->callback([arguments] { cutout(*arguments); });
}

}  // namespace qpx::tool
