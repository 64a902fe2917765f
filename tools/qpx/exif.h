// The few things of Exif data that change when a picture is turned and changed. The data is a TIFF
// structure in either byte order; whatever is broken in it is left alone.
#pragma once

#include <cstdint>
#include <span>

namespace qpx::tool {

// The orientation tag, 1 ... 8; 1 where there is none or it makes no sense.
int exifOrientation(std::span<const uint8_t> tiff);

// Makes the data describe an upright picture of this size: orientation 1, the pixel dimensions, and
// no thumbnail, since the one stored shows the picture as it was before.
void describeUpright(std::span<uint8_t> tiff, int32_t width, int32_t height);

}  // namespace qpx::tool
