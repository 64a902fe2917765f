// qpx sheet: many effects on one picture, side by side.
#include <qpx/engine.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "console.h"
#include "effect_run.h"
#include "errors.h"
#include "image_file.h"
#include "label_font.h"
#include "output_file.h"
#include "parallel.h"
#include "progress.h"
#include "sheet_drawing.h"
#include "sheet_layout.h"
#include "sheet_plan.h"
#include "text.h"

namespace qpx::tool {

namespace {

// Writing a tile takes less than an effect does.
constexpr int64_t kTileWriteSteps = kEffectSteps / 4;

constexpr int kSmallestTile = 64, kLargestTile = 1024;

// The longest side becomes `size`. What is smaller stays as it is.
Picture tileFrom(const Picture& picture, int32_t size) {
  const int32_t longest = std::max(picture.width(), picture.height());
  if (longest <= size) return copyOf(picture);
  const auto side = [&](int32_t length) {
    return static_cast<int32_t>(
        std::max<int64_t>((int64_t{length} * size + longest / 2) / longest, 1));
  };
  return scaled(picture, side(picture.width()), side(picture.height()));
}

std::string subheadingFor(const SheetArguments& arguments, const SheetPlan& plan,
                          const Picture& picture, const RunOptions& options) {
  std::vector<std::string> parts;
  if (arguments.sweep.empty()) {
    const size_t count = plan.tiles.size();
    parts.push_back(std::to_string(count) + (count == 1 ? " effect" : " effects"));
  } else {
    parts.push_back(plan.file);
  }
  parts.push_back(sizeText(picture) + " pixels");
  if (options.format) parts.emplace_back(options.format->name);
  return joined(parts, "  \u00B7  ");
}

SheetLayout layoutFor(const SheetArguments& arguments, const SheetPlan& plan, const Picture& tile) {
  SheetLayout layout(tile.width(), tile.height(), plan.tiles.size() + 1, arguments.columns);
  checkSize(layout.width(), layout.height(), 3);
  const std::string problem = sizeProblem(plan.kind, static_cast<int32_t>(layout.width()),
                                          static_cast<int32_t>(layout.height()));
  if (!problem.empty()) throw RunError(displayName(arguments.out, false) + ": " + problem);
  return layout;
}

// The picture itself is wanted at its full size only while it is read.
struct Source {
  Picture tile;
  std::string subheading;
};

Source readSource(const SheetArguments& arguments, const SheetPlan& plan, const RunOptions& options,
                  Progress& progress) {
  const Picture picture = onWhite(readPicture(arguments.in, {progress, kReadSteps}));
  Source source = {tileFrom(picture, arguments.size),
                   subheadingFor(arguments, plan, picture, options)};
  source.tile.icc = picture.icc;
  return source;
}

void sheet(const SheetArguments& arguments) {
  if (arguments.verbose) beVerbose();
  Picture second;
  RunOptions options;
  if (!arguments.format.empty()) options.format = &pixelFormatByName(arguments.format);
  options.second = arguments.second.empty() ? nullptr : &second;
  const SheetPlan plan = sheetPlanFor(arguments, options);
  LabelFont font;
  const auto count = plan.tiles.size();
  Progress progress(displayName(arguments.in, true),
                    kReadSteps + static_cast<int64_t>(count) * (kEffectSteps + kTileWriteSteps));

  refuseUnwritable(arguments.out);
  const Source source = readSource(arguments, plan, options, progress);
  if (options.second) {
    second = scaled(readPicture(arguments.second), source.tile.width(), source.tile.height());
  }
  const SheetLayout layout = layoutFor(arguments, plan, source.tile);
  options.threads = arguments.threads > 0 ? arguments.threads : defaultThreads();
  const Sheet sheet =
      drawSheet(plan, source.tile, source.subheading, layout, font, options, progress);
  writePicture(sheet.picture, arguments.out, plan.kind, arguments.quality,
               {progress, static_cast<int64_t>(count) * kTileWriteSteps});
  say(displayName(arguments.out, false) + ": written");
  progress.stop();
  const std::string failures = failureText(plan, sheet.problems);
  if (!failures.empty()) throw RunError(displayName(arguments.out, false) + ": " + failures);
}

constexpr const char* kFooter =
    R"(Every tile is the picture at tile size with one effect, computed at that size and
labelled with the effect's title and with what 'qpx apply' takes for it; the
first tile is the picture without an effect. Pictures smaller than a tile are
not enlarged, and transparency is laid on white.

Without --effects, --family and --sweep the sheet shows every effect that is
built and runs in bgr24, or in --format. In --effects a comma goes between
effects and between their parameters; the option may be repeated. --sweep shows
one parameter from its minimum to its maximum, and may set others behind it.

An effect that fails on the picture gets a grey tile with the engine's code. The
sheet is written all the same, and the exit status is then 1.

The font is the system's sans-serif, by fontconfig. The number of threads never
changes the sheet.

Examples:
  qpx sheet photo.jpg all.png
  qpx sheet photo.jpg curves.png --family curves --format nv21 --columns 4
  qpx sheet photo.jpg some.png --effects Fx1300:brightness=20,contrast=10,Sepia
  qpx sheet photo.jpg gamma.png --sweep Fx2D00:percent --steps 7
  qpx sheet photo.jpg contrast.png --sweep Fx1300:contrast,brightness=0)";

void addChoiceOptions(CLI::App& command, SheetArguments& arguments) {
  CLI::Option* effects =
      command
          .add_option("--effects", arguments.effects, "These effects, NAME[:param=value,...],...")
          ->check(notEmpty())
          ->allow_extra_args(false)
          ->type_name("LIST");
  CLI::Option* family =
      command.add_option("--family", arguments.family, "All built effects of a family")
          ->check(notEmpty());
  CLI::Option* sweep =
      command
          .add_option("--sweep", arguments.sweep, "One effect with one parameter over its range")
          ->check(notEmpty())
          ->type_name("NAME:param");
  effects->excludes(family)->excludes(sweep);
  family->excludes(sweep);
  command.add_option("--steps", arguments.steps, "Values of a sweep (default 11)")
      ->transform(wholeNumber(2, 256))
      ->needs(sweep);
  command.add_option("--format", arguments.format, "Pixel format that the effects run in")
      ->check(notEmpty())
      ->type_name("FORMAT");
  command.add_option("--second", arguments.second, "Second picture, for effects that take one")
      ->check(notEmpty())
      ->type_name("FILE");
}

void addSheetOptions(CLI::App& command, SheetArguments& arguments) {
  command.add_option("--columns", arguments.columns, "Tiles in a row (default: by their number)")
      ->transform(wholeNumber(1, 1000));
  command.add_option("--size", arguments.size, "Longest side of a tile in pixels (default 320)")
      ->transform(wholeNumber(kSmallestTile, kLargestTile));
  command
      .add_option("--threads", arguments.threads, "Tiles at once (default: one for each processor)")
      ->transform(wholeNumber(1, 256));
  command.add_option("--to", arguments.to, "Output format, whatever the name says")
      ->check(CLI::IsMember({"png", "jpeg", "jpg"}));
  command.add_option("--quality", arguments.quality, "Quality of JPEG output (default 95)")
      ->transform(wholeNumber(1, 100));
  command.add_flag("--verbose", arguments.verbose, "Print the library's log and what is done");
}

}  // namespace

void addSheetCommand(CLI::App& app) {
  const auto arguments = std::make_shared<SheetArguments>();
  CLI::App* command =
      app.add_subcommand("sheet", "Show many effects, or one over its range, on one picture");
  command->add_option("IN", arguments->in, "JPEG or PNG; '-' is standard input")
      ->required()
      ->check(notEmpty());
  command->add_option("OUT", arguments->out, "JPEG or PNG; '-' is standard output, as PNG")
      ->required()
      ->check(notEmpty());
  addChoiceOptions(*command, *arguments);
  addSheetOptions(*command, *arguments);
  command->footer(std::string(kFooter) + "\n\n" + formatHelp());
  command->callback([arguments] { sheet(*arguments); });
}

}  // namespace qpx::tool
