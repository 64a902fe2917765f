// The outline of a cut-out as a drawing.
#pragma once

#include <qpx/types.h>

#include <span>
#include <string>

namespace qpx::tool {

// An SVG document of the picture's size with a path for each chain of neighbouring points. A chain
// whose ends meet is closed.
std::string outlineSvg(int32_t width, int32_t height, std::span<const MPoint> points);

}  // namespace qpx::tool
