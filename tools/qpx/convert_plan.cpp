#include "convert_plan.h"

#include <unistd.h>

#include <utility>

#include "errors.h"
#include "frame_source.h"
#include "output_file.h"
#include "text.h"

namespace qpx::tool {

namespace {

bool isPictureName(const std::string& name) {
  return sameName(name, "png") || sameName(name, "jpeg") || sameName(name, "jpg");
}

bool isSixteenBitRgb(const PixelFormat& format) {
  return format.layout == Layout::packedRgb && bytesPerPixel(format) == 2;
}

void takeInput(const ConvertArguments& arguments, ConvertPlan& plan) {
  if (arguments.from.empty() != arguments.inSize.empty()) {
    throw UsageError("raw frames need both --from and --in-size: nothing else says what they are");
  }
  const std::string& range = arguments.inRange.empty() ? arguments.range : arguments.inRange;
  if (!range.empty()) plan.inRange = rangeByName(range);
  if (!arguments.range.empty()) plan.outRange = rangeByName(arguments.range);
  if (arguments.from.empty()) return;
  const PictureSize size = parseSize(arguments.inSize);
  plan.frames = {&pixelFormatByName(arguments.from), size.width, size.height, plan.inRange};
}

void takeOutput(const ConvertArguments& arguments, ConvertPlan& plan) {
  if (isPictureName(arguments.to)) {
    plan.picture = wantedKind(lowerCase(arguments.to));
  } else {
    plan.picture = arguments.out == "-" ? std::nullopt : kindByName(arguments.out);
    if (!arguments.to.empty()) plan.format = &pixelFormatByName(arguments.to);
  }
  plan.stream = !plan.picture && !arguments.raw && lowerCase(arguments.out).ends_with(".y4m");
  if (plan.picture && arguments.raw) {
    throw UsageError(arguments.out + ": a picture is no raw frame: leave --raw out");
  }
  if (plan.stream && plan.format && !fitsY4m(*plan.format)) {
    throw UsageError(std::string("a .y4m stream holds i420, i422, i444, i411 or grey, not ") +
                     plan.format->name + ": use another --to, or --raw");
  }
  if (!arguments.size.empty()) plan.size = parseSize(arguments.size);
}

void takeOptions(const ConvertArguments& arguments, ConvertPlan& plan) {
  ConversionOptions& options = plan.options;
  if (arguments.fit == "crop") options.fit = Fit::crop;
  if (arguments.fit == "pad") options.fit = Fit::pad;
  options.orientation = orientationOf(arguments.rotate, arguments.mirror);
  options.bilinear = arguments.bilinear;
  options.dither = arguments.dither;
  options.brightness = arguments.brightness;
  options.contrast = arguments.contrast;
  options.saturation = arguments.saturation;
  if (options.dither && !(plan.format && isSixteenBitRgb(*plan.format))) {
    throw UsageError("--dither is for RGB of 16 bits, such as --to rgb565: leave it out");
  }
}

bool is709(Range range) { return range == Range::bt709 || range == Range::bt709Full; }

}  // namespace

uint32_t orientationOf(int degrees, const std::string& mirror) {
  uint32_t orientation = 0;
  if (degrees == 90) orientation = kExchanges | kMirrorsAcross;
  if (degrees == 180) orientation = kMirrorsAcross | kMirrorsDown;
  if (degrees == 270) orientation = kExchanges | kMirrorsDown;
  // Mirrors follow the exchange, so that another one on top of them adds up.
  if (mirror == "h") orientation ^= kMirrorsAcross;
  if (mirror == "v") orientation ^= kMirrorsDown;
  return orientation;
}

ConvertPlan planFor(const ConvertArguments& arguments) {
  ConvertPlan plan;
  takeInput(arguments, plan);
  takeOutput(arguments, plan);
  takeOptions(arguments, plan);
  refuseTerminal(arguments.out, isatty(STDOUT_FILENO) != 0);
  return plan;
}

FrameShape targetFor(const ConvertPlan& plan, const FrameShape& source, bool streamed) {
  FrameShape target = source;
  if ((plan.options.orientation & kExchanges) != 0) std::swap(target.width, target.height);
  if (plan.size) {
    target.width = plan.size->width;
    target.height = plan.size->height;
  }
  if (plan.outRange) target.range = *plan.outRange;
  const bool fromRgb = source.format->layout == Layout::packedRgb;
  if (plan.format) {
    target.format = plan.format;
  } else if (plan.picture) {
    const bool alpha = source.format->keepsAlpha && plan.picture == FileKind::png;
    target.format = &pixelFormatByName(alpha ? "rgba32" : "rgb24");
  } else if (plan.stream && !fitsY4m(*source.format)) {
    target.format = &pixelFormatByName("i420");
  } else if (!streamed) {
    throw UsageError("OUT is no name of a picture (.jpg, .png) or stream (.y4m): --to must say " +
                     std::string("the format of raw frames, such as --to nv21"));
  }
  const bool toRgb = target.format->layout == Layout::packedRgb;
  if (!fromRgb && !toRgb && is709(source.range) != is709(target.range)) {
    throw UsageError(
        "YUV becomes YUV of another matrix by way of RGB alone: convert to rgb24 first");
  }
  return target;
}

bool keepsGeometry(const ConvertPlan& plan, const FrameShape& source, const FrameShape& target) {
  return plan.options.orientation == 0 && source.width == target.width &&
         source.height == target.height;
}

Y4mHeader headerFor(const ConvertPlan& plan, const FrameShape& source,
                    const std::optional<Y4mHeader>& given, const FrameShape& target) {
  Y4mHeader header = given.value_or(Y4mHeader{});
  header.width = target.width;
  header.height = target.height;
  if (header.format != target.format) header.chroma = y4mChromaOf(*target.format);
  header.format = target.format;
  if (!given || plan.outRange) header.rangeStated = true;
  header.fullRange = isFull(target.range);
  const bool exchanges = (plan.options.orientation & kExchanges) != 0;
  if (exchanges) std::swap(header.aspectAcross, header.aspectDown);
  if (plan.options.fit == Fit::stretch) {
    const int32_t width = exchanges ? source.height : source.width;
    const int32_t height = exchanges ? source.width : source.height;
    stretchAspect(header, width, height, target.width, target.height);
  }
  if (!keepsGeometry(plan, source, target)) header.interlacing = "p";
  return header;
}

}  // namespace qpx::tool
