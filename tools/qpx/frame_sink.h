// Raw frames or a YUV4MPEG2 stream as output.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "frame_y4m.h"
#include "output_file.h"
#include "pixel_format.h"

namespace qpx::tool {

class FrameSink {
 public:
  // Without a header: frames alone. Throws RunError when nothing can be written there.
  FrameSink(const std::string& path, std::optional<Y4mHeader> header);

  // `parameters` are those of the frame in a stream, with a space in front. Throws RunError when it
  // cannot be written.
  void write(const Frame& frame, const std::string& parameters = {});

  // All frames are there, or those before the one that failed.
  void finish();

 private:
  void writeText(const std::string& text);

  OutputFile out_;
  std::optional<Y4mHeader> header_;
  int64_t written_ = 0;
};

}  // namespace qpx::tool
