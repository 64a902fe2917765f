#include "segment/edge_map.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace qpx {
namespace {

constexpr uint8_t kEdge = 255;

struct Step {
  int32_t dx, dy;
};

constexpr Step kClockwise[8] = {{-1, 1}, {0, 1},  {1, 1},   {1, 0},
                                {1, -1}, {0, -1}, {-1, -1}, {-1, 0}};

// Without branches, so that it runs in vectors.
int64_t markRow(const uint8_t* above, const uint8_t* here, const uint8_t* below, ptrdiff_t count,
                uint8_t* __restrict edges) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int around = above[i - 1] | above[i] | above[i + 1] | here[i - 1] | here[i + 1] |
                       below[i - 1] | below[i] | below[i + 1];
    edges[i] = ((here[i] == 0) & (around != 0)) ? kEdge : 0;
  }
  return std::count(edges, edges + count, kEdge);
}

bool touchesInside(const MaskRows& mask, int32_t x, int32_t y) {
  for (int32_t v = std::max(y - 1, 0); v <= std::min(y + 1, mask.height - 1); ++v) {
    for (int32_t u = std::max(x - 1, 0); u <= std::min(x + 1, mask.width - 1); ++u) {
      if (mask.row(v)[u] != 0) return true;
    }
  }
  return false;
}

// Calls visit(x, y, along) for every pixel of the border; `along` leads to a neighbour on it, to
// the pixel itself in corners.
template <typename Visit>
void forEachBorderPixel(int32_t width, int32_t height, const Visit& visit) {
  const auto rowOfBorder = [&](int32_t y) {
    for (int32_t x = 0; x < width; ++x) {
      visit(x, y, Step{x == 0 || x == width - 1 ? 0 : 1, 0});
    }
  };
  rowOfBorder(0);
  if (height > 1) rowOfBorder(height - 1);
  for (int32_t y = 1; y < height - 1; ++y) {
    visit(0, y, Step{0, 1});
    if (width > 1) visit(width - 1, y, Step{0, 1});
  }
}

bool keeps(const ChainRule& rule, const MPoint* points, const Chain& chain) {
  if (chain.length < rule.fewestPoints) return false;
  const MPoint &first = points[0], &last = points[chain.length - 1];
  return chain.closed || (std::abs(first.x - last.x) <= rule.widestGap &&
                          std::abs(first.y - last.y) <= rule.widestGap);
}

}  // namespace

EdgeMap::EdgeMap(int32_t width, int32_t height)
    : width_(width),
      height_(height),
      pitch_(static_cast<ptrdiff_t>(width) + 2),
      block_(blockBytes(int64_t{height} + 2, int64_t{width} + 2)) {
  if (block_) MMemSet(block_.get(), 0, blockBytes(int64_t{height} + 2, int64_t{width} + 2));
}

uint8_t* EdgeMap::row(int32_t y) const { return block_.get() + pitch_ * (ptrdiff_t{y} + 1) + 1; }

int64_t EdgeMap::markAround(const MaskRows& mask) {
  int64_t marked = 0;
  for (int32_t y = 1; y < height_ - 1 && width_ > 2; ++y) {
    marked +=
        markRow(mask.row(y - 1) + 1, mask.row(y) + 1, mask.row(y + 1) + 1, width_ - 2, row(y) + 1);
  }
  return marked;
}

int64_t EdgeMap::markBorder(const MaskRows& mask, bool outsideToo) {
  int64_t counted = 0;
  forEachBorderPixel(width_, height_, [&](int32_t x, int32_t y, Step along) {
    if (mask.row(y)[x] != 0) {
      for (const int32_t k : {-1, 0, 1}) row(y + k * along.dy)[x + k * along.dx] = kEdge;
      counted += 3;
    } else if (outsideToo && touchesInside(mask, x, y)) {
      row(y)[x] = kEdge;
      ++counted;
    }
  });
  return counted;
}

// Looks for the next pixel from the direction that the latest step turned to, or the latest chain
// ended with, in seven of the eight. The first pixel stays marked on the way, so that a walk that
// has gone round meets it where it would go on, and ends; other marked pixels that come earlier in
// the turn are taken before it, so that no walk turns back while its outline goes on.
Chain EdgeMap::walk(int32_t x, int32_t y, MPoint* points) {
  ptrdiff_t offsets[8];
  for (int d = 0; d < 8; ++d) offsets[d] = pitch_ * kClockwise[d].dy + kClockwise[d].dx;
  uint8_t* const start = row(y) + x;
  uint8_t* here = start;
  int64_t length = 0;
  int tried = 0;
  do {
    if (here != start) *here = 0;
    points[length++] = {x, y};
    for (tried = 0; tried < 7; ++tried) {
      const int d = (direction_ + tried) & 7;
      if (here[offsets[d]] != kEdge) continue;
      here += offsets[d];
      x += kClockwise[d].dx;
      y += kClockwise[d].dy;
      direction_ = (d + 6) & 7;
      break;
    }
  } while (tried < 7 && here != start);
  *start = 0;
  return {length, tried < 7};
}

int32_t EdgeMap::follow(const ChainRule& rule, MPoint* points) {
  direction_ = 0;
  int64_t kept = 0;
  for (int32_t y = 0; y < height_; ++y) {
    uint8_t* const begin = row(y);
    const auto rest = [&](const uint8_t* from) {
      return static_cast<size_t>(begin + width_ - from);
    };
    uint8_t* found = begin;
    while ((found = static_cast<uint8_t*>(std::memchr(found, kEdge, rest(found)))) != nullptr) {
      MPoint* const to = points + kept;
      const Chain chain = walk(static_cast<int32_t>(found - begin), y, to);
      if (keeps(rule, to, chain)) {
        kept += chain.length;
      } else {
        std::fill_n(to, chain.length, MPoint{});
      }
    }
  }
  return static_cast<int32_t>(kept);
}

}  // namespace qpx
