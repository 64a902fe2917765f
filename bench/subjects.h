// What is measured, each a loop body over pictures that are made once.
#pragma once

#include <qpx/qpx.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace qpx::bench {

struct Frame {
  uint32_t format;
  int32_t width;
  int32_t height;

  int64_t pixels() const { return int64_t{width} * height; }
  size_t bytes() const;
};

// Bytes of a frame without padding; semi-planar chroma stands behind luma.
class Pixels {
 public:
  explicit Pixels(const Frame& frame);

  uint8_t* data() { return bytes_.data(); }
  QPXPlaneSet planesAt(int32_t top);
  const Frame& frame() const { return frame_; }

 private:
  Frame frame_;
  std::vector<uint8_t> bytes_;
};

// A source and a target of one size, shared by all subjects of it.
struct Pictures {
  Pixels source;
  Pixels target;
  explicit Pictures(const Frame& frame) : source(frame), target(frame) {}
};
using PicturesPtr = std::shared_ptr<Pictures>;

using Body = std::function<void()>;

// An engine of point effects, run in bands of `rows` rows (0: in one call).
Body engineBody(PicturesPtr pictures, const std::vector<uint32_t>& effects, int32_t rows = 0);
// The same in the target's own planes.
Body engineInPlaceBody(PicturesPtr pictures, uint32_t effect);

Body copyBody(PicturesPtr pictures);
// cv::LUT with `tables` tables, 1 or 3; chroma of semi-planar frames is copied.
Body openCvBody(PicturesPtr pictures, int tables);
// libyuv's table of four bytes a pixel, which works in place.
Body libyuvInPlaceBody(PicturesPtr pictures);

}  // namespace qpx::bench
