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

  // Reads a frame over `frame`, which is made where there is none yet, once all its bytes are
  // there: memory goes by what comes in, not by what a header claims. Returns the frame's
  // parameters in a stream; nothing at the end of the input. Throws RunError where that comes
  // within a frame, and for an input without any.
  std::optional<std::string> next(std::optional<Frame>& frame);

  // How many frames the input has by its size; 0 where nobody knows.
  int64_t frames() const { return frames_; }

 private:
  size_t readFirst(std::optional<Frame>& frame);

  InputFile& file_;
  std::optional<Y4mHeader> header_;
  FrameShape shape_;
  size_t bytes_;  // of a frame
  int64_t frames_;
  int64_t taken_ = 0;
};

// Names of ranges, as options have them.
Range rangeByName(const std::string& name);
std::vector<std::string> rangeNames();

}  // namespace qpx::tool
