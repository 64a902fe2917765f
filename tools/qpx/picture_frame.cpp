#include "picture_frame.h"

#include <algorithm>
#include <limits>

#include "errors.h"

namespace qpx::tool {

namespace {

constexpr Range kPictureRange = Range::bt601Full;

FrameShape shapeOf(const Frame& frame) {
  return {&frame.format(), frame.width(), frame.height(), kPictureRange};
}

}  // namespace

FrameShape shapeOf(const Picture& picture) {
  return {&pixelFormatByName(picture.hasAlpha() ? "rgba32" : "rgb24"), picture.width(),
          picture.height()};
}

MBitmap bitmapOf(const Picture& picture) {
  const uint32_t format = picture.channels() == 1   ? QPX_FORMAT_GREY8
                          : picture.channels() == 3 ? QPX_FORMAT_RGB24
                                                    : QPX_FORMAT_RGBA32;
  if (picture.pitch() > std::numeric_limits<int32_t>::max()) {
    throw RunError("is too wide: use a smaller picture");
  }
  // Records have no const planes; what the library only reads stays as it is.
  return {format,
          picture.width(),
          picture.height(),
          {static_cast<int32_t>(picture.pitch()), 0, 0},
          {const_cast<uint8_t*>(picture.row(0)), nullptr, nullptr}};
}

Frame frameOf(const Picture& picture, const PixelFormat& format, int threads) {
  Frame frame(format, picture.width(), picture.height());
  Conversion(shapeOf(picture), shapeOf(frame), threads).run(bitmapOf(picture), frame.bitmap());
  return frame;
}

void takeColors(const Frame& frame, Picture& picture, int threads) {
  if (!picture.hasAlpha() || frame.format().keepsAlpha) {
    Conversion(shapeOf(frame), shapeOf(picture), threads).run(frame.bitmap(), bitmapOf(picture));
    return;
  }
  Picture colors(picture.width(), picture.height(), 3);
  takeColors(frame, colors, threads);
  for (int32_t y = 0; y < picture.height(); ++y) {
    const uint8_t* from = colors.row(y);
    uint8_t* to = picture.row(y);
    for (int32_t x = 0; x < picture.width(); ++x, from += 3, to += 4) std::copy_n(from, 3, to);
  }
}

}  // namespace qpx::tool
