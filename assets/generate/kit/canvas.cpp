#include "kit/canvas.h"

#include <array>

namespace qpx::drawing {
namespace {

// Ordered thresholds of a 4 x 4 tile: their pattern of one level is too fine and too faint to be
// seen, and being periodic it packs to half of what random dither does. Within -0.5..0.5, both
// excluded.
float ditherAt(int x, int y) {
  constexpr float kOrder[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
  return (kOrder[y & 3][x & 3] - 7.5f) / 16;
}

// How much dither a sample wants: bands are seen where a level is many pixels wide; on a slope they
// are too narrow, and dither would only fill the file. `slope` is in levels a pixel.
float ditherShare(float slope) { return smooth(0.11f, 0.03f, slope); }

uint8_t toByte(float value, float dither) {
  return static_cast<uint8_t>(std::clamp(value * 255 + dither + 0.5f, 0.0f, 255.0f));
}

void boxRow(std::vector<Color>& line, std::vector<Color>& out, int radius) {
  const int count = static_cast<int>(line.size());
  const float scale = 1.0f / static_cast<float>(2 * radius + 1);
  double sum[4] = {};
  const auto add = [&](int i, double sign) {
    const Color& c = line[static_cast<size_t>(std::clamp(i, 0, count - 1))];
    sum[0] += sign * c.r;
    sum[1] += sign * c.g;
    sum[2] += sign * c.b;
    sum[3] += sign * c.a;
  };
  for (int i = -radius; i < radius; ++i) {
    add(i, 1);
  }
  for (int i = 0; i < count; ++i) {
    add(i + radius, 1);
    out[static_cast<size_t>(i)] = {
        static_cast<float>(sum[0]) * scale, static_cast<float>(sum[1]) * scale,
        static_cast<float>(sum[2]) * scale, static_cast<float>(sum[3]) * scale};
    add(i - radius, -1);
  }
  line.swap(out);
}

}  // namespace

Color ramp(const Color* stops, int count, float t) {
  const float place = clamp01(t) * static_cast<float>(count - 1);
  const int i = std::min(static_cast<int>(place), count - 2);
  const Color& a = stops[std::max(i - 1, 0)];
  const Color& b = stops[i];
  const Color& c = stops[i + 1];
  const Color& d = stops[std::min(i + 2, count - 1)];
  const float f = place - static_cast<float>(i);
  const auto curve = [f](float p, float q, float r, float s) {
    return clamp01(q + 0.5f * f *
                           (r - p + f * (2 * p - 5 * q + 4 * r - s + f * (3 * (q - r) + s - p))));
  };
  return {curve(a.r, b.r, c.r, d.r), curve(a.g, b.g, c.g, d.g), curve(a.b, b.b, c.b, d.b),
          curve(a.a, b.a, c.a, d.a)};
}

Color hue(float turns) {
  const float h = fract(turns) * 6;
  return {clamp01(std::abs(h - 3) - 1), clamp01(2 - std::abs(h - 2)), clamp01(2 - std::abs(h - 4))};
}

Canvas::Canvas(int width, int height, Color fill)
    : width_(width),
      height_(height),
      unit_(static_cast<float>(std::min(width, height)) / 2),
      pixels_(static_cast<size_t>(width) * static_cast<size_t>(height), fill) {}

Point Canvas::reach() const {
  return {static_cast<float>(width_) / 2 / unit_, static_cast<float>(height_) / 2 / unit_};
}

Spot Canvas::spot(int x, int y) const {
  Spot s;
  s.x = static_cast<float>(x) + 0.5f;
  s.y = static_cast<float>(y) + 0.5f;
  s.u = s.x / static_cast<float>(width_);
  s.v = s.y / static_cast<float>(height_);
  s.p = Point{s.x, s.y} * (1 / unit_) - reach();
  s.corner = std::sqrt((square(2 * s.u - 1) + square(2 * s.v - 1)) / 2);
  return s;
}

void Canvas::blur(float radius) {
  const int box = std::max(1, static_cast<int>(radius * 0.6f + 0.5f));
  const auto line = [&](int count, auto pixel) {
    std::vector<Color> values(static_cast<size_t>(count));
    std::vector<Color> scratch(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
      values[static_cast<size_t>(i)] = pixel(i);
    }
    for (int pass = 0; pass < 3; ++pass) {
      boxRow(values, scratch, box);
    }
    for (int i = 0; i < count; ++i) {
      pixel(i) = values[static_cast<size_t>(i)];
    }
  };
  for (int y = 0; y < height_; ++y) {
    line(width_, [&](int x) -> Color& { return at(x, y); });
  }
  for (int x = 0; x < width_; ++x) {
    line(height_, [&](int y) -> Color& { return at(x, y); });
  }
}

void Canvas::develop(float exposure, float gamma) {
  const auto film = [&](float light) {
    return power(1 - static_cast<float>(exponential(-double{light} * exposure)), gamma);
  };
  for (Color& c : pixels_) {
    c = {film(c.r), film(c.g), film(c.b), c.a};
  }
}

void Canvas::moveLightToAlpha(float share) {
  for (Color& c : pixels_) {
    const float light = clamp01(brightest(c));
    const float alpha = power(light, share);
    // Less than half a level of light is no light, and no colour is divided by next to nothing.
    c = light < 0.002f ? Color{0, 0, 0, 0} : Color{c.r / alpha, c.g / alpha, c.b / alpha, alpha};
  }
}

void Canvas::coarsen(int step) {
  const float levels = 255.0f / static_cast<float>(step);
  const auto rounded = [levels](float v) {
    return std::floor(clamp01(v) * levels + 0.5f) / levels;
  };
  for (Color& c : pixels_) {
    c = {rounded(c.r), rounded(c.g), rounded(c.b), c.a};
  }
}

std::vector<uint8_t> toBytes(const Canvas& canvas, int channels) {
  std::vector<uint8_t> bytes;
  bytes.reserve(static_cast<size_t>(canvas.width()) * static_cast<size_t>(canvas.height()) *
                static_cast<size_t>(channels));
  for (int y = 0; y < canvas.height(); ++y) {
    for (int x = 0; x < canvas.width(); ++x) {
      const float dither = ditherAt(x, y);
      const auto samples = [&](int atX, int atY) {
        const Color& c = canvas.at(std::clamp(atX, 0, canvas.width() - 1),
                                   std::clamp(atY, 0, canvas.height() - 1));
        return std::array<float, 4>{c.r, c.g, c.b, c.a};
      };
      const auto here = samples(x, y);
      const auto left = samples(x - 1, y);
      const auto right = samples(x + 1, y);
      const auto above = samples(x, y - 1);
      const auto below = samples(x, y + 1);
      for (size_t i = 0; i < static_cast<size_t>(channels); ++i) {
        const float slope =
            127.5f * std::max(std::abs(right[i] - left[i]), std::abs(below[i] - above[i]));
        bytes.push_back(toByte(here[i], dither * ditherShare(slope)));
      }
    }
  }
  return bytes;
}

}  // namespace qpx::drawing
