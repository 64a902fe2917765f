#include "kit/facets.h"

namespace qpx::drawing {

Point middleOf(std::span<const Point> corners) {
  Point sum;
  for (const Point p : corners) {
    sum = sum + p;
  }
  return sum * (1 / static_cast<float>(corners.size()));
}

std::vector<Quad> fracture(const Canvas& canvas, Point impact, int sectors, int rings,
                           uint32_t seed) {
  const float farthest = length(canvas.reach()) + length(impact) + 0.1f;
  const auto angle = [&](int sector, int ring) {
    const float wobble = 0.55f * unitHash(sector % sectors, 0, seed) +
                         0.20f * unitHash(sector % sectors, ring, seed + 1);
    return 2 * kPi * (static_cast<float>(sector) + wobble) / static_cast<float>(sectors);
  };
  const auto corner = [&](int sector, int ring) {
    const float t = static_cast<float>(ring) / static_cast<float>(rings);
    const float wobble = ring == 0 || ring == rings
                             ? 0
                             : 0.6f * (unitHash(sector % sectors, ring, seed + 2) - 0.5f) /
                                   static_cast<float>(rings);
    return impact + direction(angle(sector, ring)) * (farthest * power(t + wobble, 1.35f));
  };
  std::vector<Quad> pieces;
  for (int ring = 0; ring < rings; ++ring) {
    for (int sector = 0; sector < sectors; ++sector) {
      pieces.push_back({corner(sector, ring), corner(sector, ring + 1),
                        corner(sector + 1, ring + 1), corner(sector + 1, ring)});
    }
  }
  return pieces;
}

Quad moved(const Quad& piece, float scale, float turn, Point shift) {
  const Point middle = middleOf(piece);
  const Point axis = direction(-turn);
  Quad result;
  for (size_t i = 0; i < piece.size(); ++i) {
    result[i] = middle + shift + alongAxis(piece[i] - middle, axis) * scale;
  }
  return result;
}

}  // namespace qpx::drawing
