// Images of the whole-image conversions with room around every plane that must stay as it is.
#pragma once

#include <qpx/image_convert.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace qpx::testing {

struct PlaneSize {
  int32_t rowBytes;  // 0: there is no such plane
  int32_t rows;
};

// By the format's description; chroma of odd sizes is rounded up, so that nothing that could be
// read is missing, but for NV41, whose chroma is a quarter rounded down.
PlaneSize planeSize(int32_t format, int32_t width, int32_t height, int plane);

class McvPicture {
 public:
  // Filled without pattern, or with one byte.
  McvPicture(int32_t format, int32_t width, int32_t height, uint32_t seed);

  const McvImage* image() const { return &image_; }
  McvImage& record() { return image_; }
  uint8_t* row(int plane, int32_t y) const {
    return image_.plane[plane] + int64_t{image_.pitch[plane]} * y;
  }
  int32_t width() const { return image_.width; }
  int32_t height() const { return image_.height; }

  // A picture of the same bytes, padding and room around included.
  McvPicture copy() const;
  // "" or the first place where two pictures of one shape differ, around the planes too.
  std::string differenceTo(const McvPicture& other) const;

 private:
  void place();

  McvImage image_ = {};
  std::array<size_t, 3> starts_ = {};
  std::vector<uint8_t> bytes_;
};

}  // namespace qpx::testing
