#include "outline_svg.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace qpx::tool {

namespace {

bool near(const MPoint& a, const MPoint& b, int32_t reach) {
  return std::abs(a.x - b.x) <= reach && std::abs(a.y - b.y) <= reach;
}

// Steps in the same direction become one line. Lines run through the middles of pixels.
std::string pathOf(std::span<const MPoint> chain) {
  std::string path = "M" + std::to_string(chain[0].x) + ".5 " + std::to_string(chain[0].y) + ".5";
  size_t corner = 0;
  for (size_t i = 1; i < chain.size(); ++i) {
    const bool last = i + 1 == chain.size();
    const MPoint& before = chain[i - 1];
    if (!last && chain[i + 1].x - chain[i].x == chain[i].x - before.x &&
        chain[i + 1].y - chain[i].y == chain[i].y - before.y) {
      continue;
    }
    path += "l" + std::to_string(chain[i].x - chain[corner].x) + " " +
            std::to_string(chain[i].y - chain[corner].y);
    corner = i;
  }
  // Walks that come round end beside their first pixel, and some miss it by one.
  if (chain.size() > 2 && near(chain.front(), chain.back(), 2)) path += "z";
  return path;
}

}  // namespace

std::string outlineSvg(int32_t width, int32_t height, std::span<const MPoint> points) {
  const std::string w = std::to_string(width), h = std::to_string(height);
  std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + w + "\" height=\"" + h +
                    "\" viewBox=\"0 0 " + w + " " + h +
                    "\">\n<g fill=\"none\" stroke=\"#e00\" stroke-linejoin=\"round\">\n";
  for (size_t start = 0; start < points.size();) {
    size_t end = start + 1;
    while (end < points.size() && near(points[end - 1], points[end], 1)) ++end;
    svg += "<path d=\"" + pathOf(points.subspan(start, end - start)) + "\"/>\n";
    start = end;
  }
  return svg + "</g>\n</svg>\n";
}

}  // namespace qpx::tool
