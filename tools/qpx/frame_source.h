// Raw frames or a YUV4MPEG2 stream as input, frame by frame.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "conversion.h"
#include "frame_y4m.h"
#include "input_file.h"
#include "pixel_format.h"

namespace qpx::tool {

class FrameSource {
 public:
  // Frames without headers.
  FrameSource(InputFile& file, const FrameShape& shape);

  // A stream, whose header is read. Its samples have `range`, but that a header may say otherwise
  // whether they are full, unless the range is `certain`. Throws RunError for a broken header.
  FrameSource(InputFile& file, Range range, bool certain);

  static bool isStream(InputFile& file) { return file.startsWith(kY4mMagic); }

  const FrameShape& shape() const { return shape_; }
  const std::optional<Y4mHeader>& header() const { return header_; }

  // Reads a frame over the one before. False at the end of the input. Throws RunError where that
  // comes within a frame, and for an input without any.
  bool next();

  const Frame& frame() const { return frame_; }
  const std::string& parameters() const { return parameters_; }  // of the frame in the stream

 private:
  bool readFrameLine();

  InputFile& file_;
  std::optional<Y4mHeader> header_;
  FrameShape shape_;
  Frame frame_;
  std::string parameters_;
  int64_t taken_ = 0;
};

// Names of ranges, as options have them.
Range rangeByName(const std::string& name);
std::vector<std::string> rangeNames();

}  // namespace qpx::tool
