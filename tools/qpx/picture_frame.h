// Pictures as frames of any format, by the library's post process.
#pragma once

#include <qpx/types.h>

#include "conversion.h"
#include "picture.h"
#include "pixel_format.h"

namespace qpx::tool {

// A picture of 3 or 4 channels as one side of a conversion.
FrameShape shapeOf(const Picture& picture);

// The record of an RGB, RGBA or one-channel picture, which keeps its samples.
MBitmap bitmapOf(const Picture& picture);

// YUV and grey have the full range of BT.601.
Frame frameOf(const Picture& picture, const PixelFormat& format, int threads);

// Writes the colours of a frame into a picture of its size, and its alpha where both have one;
// otherwise alpha stays.
void takeColors(const Frame& frame, Picture& picture, int threads);

}  // namespace qpx::tool
