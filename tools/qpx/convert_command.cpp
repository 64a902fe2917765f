// qpx convert: pictures, raw frames and streams from one pixel format, size and orientation to
// another.
#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "command_line.h"
#include "commands.h"
#include "console.h"
#include "conversion.h"
#include "convert_plan.h"
#include "errors.h"
#include "exif.h"
#include "frame_sink.h"
#include "frame_source.h"
#include "image_file.h"
#include "input_file.h"
#include "parallel.h"
#include "picture_frame.h"
#include "progress.h"
#include "text.h"

namespace qpx::tool {

namespace {

bool isPictureFormat(const PixelFormat& format) {
  return format.code == QPX_FORMAT_RGB24 || format.code == QPX_FORMAT_RGBA32;
}

void sayConversion(const FrameShape& from, const FrameShape& to, int threads) {
  const auto text = [](const FrameShape& shape) {
    return std::string(shape.format->name) + " " + std::to_string(shape.width) + "x" +
           std::to_string(shape.height);
  };
  say(text(from) + " to " + text(to) + ", threads: " + std::to_string(threads));
}

// Where converted frames go.
class Target {
 public:
  Target() = default;
  virtual ~Target() = default;
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  virtual const MBitmap& frame() const = 0;
  virtual void write(const std::string& parameters) = 0;
  // All frames are there.
  virtual void finish() = 0;
  // No more will come, although they should.
  virtual void keepWhatIsThere() = 0;
};

class StreamTarget : public Target {
 public:
  StreamTarget(const std::string& path, const FrameShape& shape, std::optional<Y4mHeader> header)
      : frame_(*shape.format, shape.width, shape.height), sink_(path, std::move(header)) {}

  const MBitmap& frame() const override { return frame_.bitmap(); }
  void write(const std::string& parameters) override { sink_.write(frame_, parameters); }
  void finish() override { sink_.finish(); }
  void keepWhatIsThere() override { sink_.finish(); }

 private:
  Frame frame_;
  FrameSink sink_;
};

// A picture of a format that files do not have shows what is left in it.
class PictureTarget : public Target {
 public:
  // `origin` has the metadata, where there is any.
  PictureTarget(const ConvertArguments& arguments, FileKind kind, const FrameShape& shape,
                const Picture* origin)
      : arguments_(arguments),
        kind_(kind),
        picture_(shape.width, shape.height, shape.format->keepsAlpha ? 4 : 3),
        bitmap_(bitmapOf(picture_)) {
    if (origin) takeMetadata(*origin);
    if (isPictureFormat(*shape.format)) return;
    frame_.emplace(*shape.format, shape.width, shape.height);
    back_.emplace(shape, shapeOf(picture_), 1);
  }

  const MBitmap& frame() const override { return frame_ ? frame_->bitmap() : bitmap_; }

  void write(const std::string&) override {
    if (back_) back_->run(frame_->bitmap(), bitmap_);
  }

  void finish() override { writePicture(picture_, arguments_.out, kind_, arguments_.quality); }
  void keepWhatIsThere() override {}

 private:
  void takeMetadata(const Picture& origin) {
    picture_.exif = origin.exif;
    picture_.icc = origin.icc;
    picture_.density = origin.density;
    describeUpright(picture_.exif, picture_.width(), picture_.height());
  }

  const ConvertArguments& arguments_;
  FileKind kind_;
  Picture picture_;
  MBitmap bitmap_;
  std::optional<Frame> frame_;
  std::optional<Conversion> back_;
};

// What goes wrong with the input is reported with its name; the output's errors have their own.
template <typename Work>
auto named(const std::string& in, const Work& work) {
  try {
    return work();
  } catch (const RunError& error) {
    throw RunError(displayName(in, true) + ": " + error.what());
  }
}

class ConvertRun {
 public:
  ConvertRun(const ConvertArguments& arguments, const ConvertPlan& plan)
      : arguments_(arguments), plan_(plan) {}

  void run() {
    const auto file =
        named(arguments_.in, [&] { return std::make_unique<InputFile>(arguments_.in); });
    if (plan_.frames) {
      FrameSource source(*file, *plan_.frames);
      runFrames(source);
    } else if (named(arguments_.in, [&] { return FrameSource::isStream(*file); })) {
      const auto source = named(arguments_.in, [&] {
        return std::make_unique<FrameSource>(*file, plan_.inRange, !arguments_.inRange.empty());
      });
      runFrames(*source);
    } else {
      runPicture(named(arguments_.in, [&] {
        const std::vector<uint8_t> bytes = file->readAll();
        if (bytes.empty()) throw RunError("is empty: use a picture or a stream");
        if (!isPicture(bytes)) {
          throw RunError("is no picture (JPEG, PNG) and no YUV4MPEG2 stream: raw frames need " +
                         std::string("--from and --in-size"));
        }
        return decodePicture(bytes);
      }));
    }
  }

 private:
  void open(const FrameShape& source, bool streamed, const std::optional<Y4mHeader>& header,
            const Picture* origin) {
    shape_ = targetFor(plan_, source, streamed);
    ConversionOptions options = plan_.options;
    options.threads = arguments_.threads > 0
                          ? arguments_.threads
                          : worthwhileThreads(shape_.width, shape_.height, defaultThreads());
    sayConversion(source, shape_, options.threads);
    named(arguments_.in, [&] { conversion_.emplace(source, shape_, options); });
    if (plan_.picture) {
      const std::string problem = sizeProblem(*plan_.picture, shape_.width, shape_.height);
      if (!problem.empty()) throw RunError(displayName(arguments_.out, false) + ": " + problem);
      target_ = std::make_unique<PictureTarget>(arguments_, *plan_.picture, shape_, origin);
      return;
    }
    std::optional<Y4mHeader> stream;
    if (plan_.stream || (header && !arguments_.raw && fitsY4m(*shape_.format))) {
      stream = headerFor(plan_, source, header, shape_);
    }
    target_ = std::make_unique<StreamTarget>(arguments_.out, shape_, std::move(stream));
  }

  void runFrames(FrameSource& source) {
    Progress progress(displayName(arguments_.in, true), 0);
    progress.countFrames(source.frames());
    std::optional<Frame> frame;
    try {
      while (const std::optional<std::string> parameters =
                 named(arguments_.in, [&] { return source.next(frame); })) {
        takeFrame(source, *frame, *parameters);
        progress.advance();
      }
    } catch (...) {
      if (target_) target_->keepWhatIsThere();
      throw;
    }
    target_->finish();
  }

  void takeFrame(const FrameSource& source, const Frame& frame, const std::string& parameters) {
    if (target_) {
      refuseSecondFrame();
    } else {
      open(source.shape(), true, source.header(), nullptr);
    }
    named(arguments_.in, [&] { conversion_->run(frame.bitmap(), target_->frame()); });
    target_->write(keepsGeometry(plan_, source.shape(), shape_) ? parameters : std::string());
  }

  void refuseSecondFrame() const {
    if (!plan_.picture) return;
    throw RunError(displayName(arguments_.in, true) +
                   ": has more frames than the one that a picture holds: name OUT .y4m, or cut it");
  }

  void runPicture(Picture picture) {
    const bool toAlpha = plan_.format ? plan_.format->keepsAlpha : plan_.picture == FileKind::png;
    if (!toAlpha || plan_.options.adjusts()) picture = onWhite(std::move(picture));
    open(shapeOf(picture), false, std::nullopt, &picture);
    named(arguments_.in, [&] { conversion_->run(bitmapOf(picture), target_->frame()); });
    target_->write({});
    target_->finish();
  }

  const ConvertArguments& arguments_;
  const ConvertPlan& plan_;
  FrameShape shape_;
  std::optional<Conversion> conversion_;
  std::unique_ptr<Target> target_;
};

void convert(const ConvertArguments& arguments) {
  if (arguments.verbose) beVerbose();
  const ConvertPlan plan = planFor(arguments);
  try {
    ConvertRun(arguments, plan).run();
  } catch (const std::bad_alloc&) {
    throw RunError(displayName(arguments.in, true) + ": not enough memory: use a smaller picture");
  }
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
  command.add_option("--from", arguments.from, "Pixel format of raw frames in IN")
      ->check(notEmpty())
      ->type_name("FORMAT");
  command.add_option("--in-size", arguments.inSize, "Size of raw frames in IN")
      ->check(notEmpty())
      ->type_name("WxH");
  command.add_flag("--raw", arguments.raw, "Write frames without the headers of a stream");
  command.add_option("--quality", arguments.quality, "Quality of JPEG output (default 95, 4:4:4)")
      ->transform(wholeNumber(1, 100));
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
