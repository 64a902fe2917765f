// Strokes as people and files give them: points in pixels that are joined by straight lines.
#pragma once

#include <qpx/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace qpx::tool {

struct Stroke {
  std::vector<MPoint> points;  // one or more
  std::string name;            // in messages: "the stroke '1,2 3,4'"
};

// "X,Y X,Y ...". Throws UsageError, which names the option, for what is no point or has fewer than
// `fewest`.
Stroke parseStroke(const std::string& option, const std::string& text, size_t fewest);

struct StrokeSet {
  std::vector<Stroke> foreground, background;
};

// A JSON object of "foreground" and "background", each an array of strokes, which are arrays of
// points [x, y]. Fractions are cut. Throws RunError with the line of what is wrong.
StrokeSet parseStrokeFile(std::string_view json);

// Every pixel of the lines between the points, the points among them. They lie within a picture.
std::vector<MPoint> pixelsOf(const Stroke& stroke);

}  // namespace qpx::tool
