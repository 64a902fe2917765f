// qpx convert: pictures, raw frames and streams from one pixel format, size and orientation to
// another.
#include <memory>
#include <string>
#include <utility>

#include "command_line.h"
#include "commands.h"
#include "console.h"
#include "convert_plan.h"
#include "convert_run.h"
#include "frame_source.h"

namespace qpx::tool {

namespace {

void convert(const ConvertArguments& arguments) {
  if (arguments.verbose) beVerbose();
  runConversion(arguments, planFor(arguments));
}

constexpr const char* kFooter =
    R"(IN is a JPEG or PNG picture, a YUV4MPEG2 stream (.y4m), or raw frames, which
--from and --in-size describe: planes without gaps, one frame behind the other.
OUT is a picture or a stream when its name says so; a stream too when IN is one
and the format fits (i420, i422, i444, i411, grey); else raw frames. '-' is standard
input and output. A frame that is cut off ends the run with an error, and the
whole frames before it are there.

A picture is turned first and then mirrored. --size is that of the output; with
another shape it is filled by stretching, by cropping the input, or by padding
with black.

YUV is BT.601 in video range where nothing else says so. --range holds for both
sides, and --in-range for an input that differs: then ranges are converted.
Colours are adjusted from -128 to 128, RGB by way of YUV; grey has brightness
alone.

Examples:
  qpx convert photo.jpg frame.nv21 --to nv21 --size 1920x1080 --fit crop
  qpx convert frame.nv21 photo.png --from nv21 --in-size 640x480 --rotate 90
  qpx convert photo.png small.raw --to rgb565 --size 320x240 --bilinear --dither
  ffmpeg -i in.mp4 -f yuv4mpegpipe - | qpx convert - out.y4m --size 640x360)";

void addSides(CLI::App& command, ConvertArguments& arguments) {
  command.add_option("IN", arguments.in, "Picture, stream or raw frames")
      ->required()
      ->check(notEmpty());
  command.add_option("OUT", arguments.out, "Picture, stream or raw frames")
      ->required()
      ->check(notEmpty());
  command
      .add_option("--to", arguments.to,
                  "Pixel format of the output; png or jpeg for a picture whatever its name")
      ->check(notEmpty())
      ->type_name("FORMAT");
  addRawFrameOptions(command, arguments.from, arguments.inSize);
  command.add_flag("--raw", arguments.raw, "Write frames without the headers of a stream");
  addQualityOption(command, arguments.quality);
}

void addGeometry(CLI::App& command, ConvertArguments& arguments) {
  command.add_option("--size", arguments.size, "Size of the output (default: as IN, turned)")
      ->check(notEmpty())
      ->type_name("WxH");
  command.add_option("--fit", arguments.fit, "How another shape is filled (default stretch)")
      ->check(CLI::IsMember({"crop", "pad", "stretch"}));
  command.add_option("--rotate", arguments.rotate, "Degrees clockwise")
      ->check(CLI::IsMember({0, 90, 180, 270}));
  command.add_option("--mirror", arguments.mirror, "h: left and right, v: top and bottom")
      ->check(CLI::IsMember({"h", "v"}));
  command.add_flag("--bilinear", arguments.bilinear, "Interpolate where the size changes");
}

void addColours(CLI::App& command, ConvertArguments& arguments) {
  command.add_option("--range", arguments.range, "Matrix and range of YUV and grey samples")
      ->check(CLI::IsMember(rangeNames()));
  command.add_option("--in-range", arguments.inRange, "The same of IN, where it differs")
      ->check(CLI::IsMember(rangeNames()));
  for (const auto& [name, value] : {std::pair{"--brightness", &arguments.brightness},
                                    {"--contrast", &arguments.contrast},
                                    {"--saturation", &arguments.saturation}}) {
    command.add_option(name, *value, "-128 to 128 (default 0)")->transform(wholeNumber(-128, 128));
  }
  command.add_flag("--dither", arguments.dither, "Spread the rounding of 16-bit RGB");
}

}  // namespace

void addConvertCommand(CLI::App& app) {
  const auto arguments = std::make_shared<ConvertArguments>();
  CLI::App* command = app.add_subcommand(
      "convert", "Change the format, size or orientation of pictures and frames");
  addSides(*command, *arguments);
  addGeometry(*command, *arguments);
  addColours(*command, *arguments);
  command
      ->add_option("--threads", arguments->threads,
                   "Strips of one frame at once (default: one for each processor)")
      ->transform(wholeNumber(1, 256));
  command->add_flag("--verbose", arguments->verbose, "Print the library's log and what is done");
  command->footer(std::string(kFooter) + "\n\n" + formatHelp());
  command->callback([arguments] { convert(*arguments); });
}

}  // namespace qpx::tool
