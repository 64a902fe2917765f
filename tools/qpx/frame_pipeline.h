// Frames from a reader through work of any kind to a writer, several at once and in their order.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "pixel_format.h"

namespace qpx::tool {

// What happens to frames between reading and writing. A lane has one frame at a time.
class FrameLane {
 public:
  FrameLane() = default;
  virtual ~FrameLane() = default;
  FrameLane(const FrameLane&) = delete;
  FrameLane& operator=(const FrameLane&) = delete;

  // The result stays until the next call. Lanes run at the same time.
  virtual const Frame& run(const Frame& frame) = 0;
};

// Reads the next frame over the given one, which is made where there is none yet, and returns the
// frame's parameters; nothing at the end.
using FrameReader = std::function<std::optional<std::string>(std::optional<Frame>& frame)>;
using LaneMaker = std::function<std::unique_ptr<FrameLane>()>;
// Called for one frame after the other, in the order in which they were read.
using FrameWriter = std::function<void(const Frame& frame, const std::string& parameters)>;

// Runs every frame of the reader through one of `lanes` lanes, each in a thread of its own; a
// single one in the calling thread. Each frame is written as soon as it and all before it are done.
// Whatever is thrown, by the reader, a lane or the writer, comes out once all frames before the
// failure are written.
void runFramePipeline(const FrameReader& read, int lanes, const LaneMaker& makeLane,
                      const FrameWriter& write);

}  // namespace qpx::tool
