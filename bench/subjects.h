// What is measured, each a loop body over pictures that are made once.
#pragma once

#include <qpx/qpx.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qpx::bench {

struct NamedFormat {
  uint32_t format;
  const char* name;
  uint32_t takes;  // its bit in QPXEffectInfo.formats
};
inline constexpr NamedFormat kBgr24 = {QPX_FORMAT_BGR24, "BGR24", QPX_TAKES_RGB24};
inline constexpr NamedFormat kRgba32 = {QPX_FORMAT_RGBA32, "RGBA32", QPX_TAKES_RGB32};
inline constexpr NamedFormat kNv21 = {QPX_FORMAT_NV21, "NV21", QPX_TAKES_NV21};
inline constexpr NamedFormat kI420 = {QPX_FORMAT_I420, "I420", QPX_TAKES_I420};
inline constexpr NamedFormat kYuyv = {QPX_FORMAT_YUYV, "YUYV", QPX_TAKES_YUYV};

struct Frame {
  uint32_t format;
  int32_t width;
  int32_t height;

  int64_t pixels() const { return int64_t{width} * height; }
  size_t bytes() const;
};

// Sizes, of any format.
inline constexpr Frame kFull = {0, 1920, 1080};
inline constexpr Frame kPhoto = {0, 4000, 3000};

// Bytes of a frame without padding; planes of chroma stand behind luma.
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

// The frame's size as "1920x1080".
std::string sizeName(const Frame& frame);

// A source and a target of one size, shared by all subjects of it.
struct Pictures {
  Pixels source;
  Pixels target;
  explicit Pictures(const Frame& frame) : source(frame), target(frame) {}
};
using PicturesPtr = std::shared_ptr<Pictures>;

// Pictures by format and size, made once: there are tens of millions of pixels.
class Album {
 public:
  PicturesPtr pictures(const NamedFormat& format, const Frame& size);

 private:
  std::map<std::string, PicturesPtr> pictures_;
};

using Body = std::function<void()>;

// An engine of point effects, run in bands of `rows` rows (0: in one call).
Body engineBody(PicturesPtr pictures, const std::vector<uint32_t>& effects, int32_t rows = 0);
// An effect with a record of its own, in one call.
struct EffectCall {
  uint32_t id;
  std::vector<uint8_t> record;
};
Body lookBody(PicturesPtr pictures, const EffectCall& call);
// One effect in the target's own planes.
Body engineInPlaceBody(PicturesPtr pictures, uint32_t effect);

Body copyBody(PicturesPtr pictures);
// cv::LUT with `tables` tables, 1 or 3; planes of chroma are copied.
Body openCvBody(PicturesPtr pictures, int tables);
// libyuv's table of four bytes a pixel, which works in place.
Body libyuvInPlaceBody(PicturesPtr pictures);

}  // namespace qpx::bench
