// What a call of qpx convert asks for, checked as far as it can be before the input is read.
#pragma once

#include <optional>
#include <string>

#include "conversion.h"
#include "frame_y4m.h"
#include "image_file.h"

namespace qpx::tool {

struct ConvertArguments {
  std::string in;
  std::string out;
  std::string to;
  std::string from;
  std::string inSize;
  std::string size;
  std::string fit = "stretch";
  std::string mirror;
  std::string range;
  std::string inRange;
  int rotate = 0;
  int brightness = 0;
  int contrast = 0;
  int saturation = 0;
  int threads = 0;
  int quality = 95;
  bool bilinear = false;
  bool dither = false;
  bool raw = false;
  bool verbose = false;
};

struct ConvertPlan {
  std::optional<FrameShape> frames;  // the input has frames without headers
  Range inRange = Range::bt601;
  std::optional<Range> outRange;  // nothing: that of the input
  std::optional<FileKind> picture;
  const PixelFormat* format = nullptr;  // null: goes by input and output
  std::optional<PictureSize> size;
  bool stream = false;  // OUT is a YUV4MPEG2 stream by its name
  ConversionOptions options;
};

// Throws UsageError for options that make no sense together.
ConvertPlan planFor(const ConvertArguments& arguments);

// The words of PostProcessOption for a turn clockwise by quarters, and then a mirror: 'h' exchanges
// left and right, 'v' top and bottom.
uint32_t orientationOf(int degrees, const std::string& mirror);

// The output's side of a conversion from `source`.
FrameShape targetFor(const ConvertPlan& plan, const FrameShape& source, bool streamed);

// What a stream says of its frames: the input's header, where it had one, with what has changed.
Y4mHeader headerFor(const ConvertPlan& plan, const FrameShape& source,
                    const std::optional<Y4mHeader>& given, const FrameShape& target);

// Fields and their order stay what they were.
bool keepsGeometry(const ConvertPlan& plan, const FrameShape& source, const FrameShape& target);

}  // namespace qpx::tool
