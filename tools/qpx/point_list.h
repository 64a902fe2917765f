// The points of a curve as one value: x:y,x:y,...
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue.h"

namespace qpx::tool {

// Parameters that belong together: NAMEPoints, and behind it NAMEX1, NAMEY1, NAMEX2 and so on.
struct PointList {
  std::string name;
  size_t count;  // where NAMEPoints stands in the catalogue's order
  size_t most;   // points that there are parameters for
};

// The one that begins at a parameter, if one does.
std::optional<PointList> pointListAt(const QPXEffectInfo& effect, size_t index);

// Case ignored.
std::optional<PointList> pointListNamed(const QPXEffectInfo& effect, std::string_view name);

// Their names, in the catalogue's order.
std::vector<std::string> pointListNames(const QPXEffectInfo& effect);

// Whether a text is one point, x:y.
bool isPoint(std::string_view text);

// What a list's parameters become: how many points, then x and y of each. Throws UsageError for
// what is no list of two or more points from left to right.
std::vector<double> parsePoints(const QPXEffectInfo& effect, const PointList& list,
                                const std::string& text);

}  // namespace qpx::tool
