// Where the frames of qpx convert go: a stream, raw frames or a picture.
#pragma once

#include <qpx/types.h>

#include <memory>
#include <optional>
#include <string>

#include "conversion.h"
#include "convert_plan.h"
#include "frame_y4m.h"
#include "image_file.h"

namespace qpx::tool {

class Target {
 public:
  Target() = default;
  virtual ~Target() = default;
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  // What a converted frame is put into before it is written.
  virtual const MBitmap& frame() const = 0;
  virtual void write(const std::string& parameters) = 0;
  // All frames are there.
  virtual void finish() = 0;
  // No more will come, although they should.
  virtual void keepWhatIsThere() = 0;
};

// Raw frames where there is no header.
std::unique_ptr<Target> streamTarget(const std::string& path, const FrameShape& shape,
                                     std::optional<Y4mHeader> header);

// A picture of a format that files do not have shows what is left in it. `origin` has the metadata;
// null where there is none. The arguments must live as long as the target.
std::unique_ptr<Target> pictureTarget(const ConvertArguments& arguments, FileKind kind,
                                      const FrameShape& shape, const Picture* origin);

}  // namespace qpx::tool
