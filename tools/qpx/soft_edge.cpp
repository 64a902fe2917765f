#include "soft_edge.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "parallel.h"

namespace qpx::tool {

namespace {

// Running means over 2 * reach + 1 samples; the border repeats. `count` samples `step` apart.
void meanAlong(uint8_t* samples, ptrdiff_t step, int32_t count, int32_t reach,
               std::vector<uint8_t>& copy) {
  copy.resize(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) copy[static_cast<size_t>(i)] = samples[step * i];
  const auto at = [&](int32_t i) -> int32_t {
    return copy[static_cast<size_t>(std::clamp(i, 0, count - 1))];
  };
  const int32_t size = 2 * reach + 1;
  int32_t sum = 0;
  for (int32_t i = -reach; i < reach; ++i) sum += at(i);
  for (int32_t i = 0; i < count; ++i) {
    sum += at(i + reach);
    samples[step * i] = static_cast<uint8_t>((sum + reach) / size);
    sum -= at(i - reach);
  }
}

// Twice, so that weights fall towards the sides: the stairs of the mask's edge are gone.
Picture smoothed(const Picture& mask, int32_t reach) {
  Picture result = copyOf(mask);
  const int32_t width = mask.width(), height = mask.height();
  forEachInThreads(static_cast<size_t>(height), defaultThreads(), [&](size_t y) {
    std::vector<uint8_t> copy;
    for (int pass = 0; pass < 2; ++pass) {
      meanAlong(result.row(static_cast<int32_t>(y)), 1, width, reach, copy);
    }
  });
  forEachInThreads(static_cast<size_t>(width), defaultThreads(), [&](size_t x) {
    std::vector<uint8_t> copy;
    for (int pass = 0; pass < 2; ++pass) {
      meanAlong(result.row(0) + x, result.pitch(), height, reach, copy);
    }
  });
  return result;
}

using Color = std::array<float, 3>;

Color colorAt(const uint8_t* pixel) {
  return {static_cast<float>(pixel[0]), static_cast<float>(pixel[1]), static_cast<float>(pixel[2])};
}

float dot(const Color& a, const Color& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Color mixed(const Color& a, const Color& b, float shareOfB) {
  Color result;
  for (size_t c = 0; c < 3; ++c) result[c] = a[c] + (b[c] - a[c]) * shareOfB;
  return result;
}

// The colours of one side around a pixel.
class Surroundings {
 public:
  void add(const uint8_t* pixel, float weight) {
    const Color color = colorAt(pixel);
    for (size_t c = 0; c < 3; ++c) sum_[c] += weight * color[c];
    squares_ += weight * dot(color, color);
    weight_ += weight;
  }

  bool empty() const { return weight_ == 0; }
  Color mean() const { return {sum_[0] / weight_, sum_[1] / weight_, sum_[2] / weight_}; }
  float variance() const {
    const Color m = mean();
    return std::max(squares_ / weight_ - dot(m, m), 0.0f);
  }

 private:
  Color sum_ = {};
  float squares_ = 0, weight_ = 0;
};

struct Mix {
  float share;  // of the object
  Color color;  // of the object alone
};

class EdgeSoftener {
 public:
  EdgeSoftener(const Picture& picture, const Picture& mask, int32_t reach)
      : picture_(picture),
        mask_(mask),
        smooth_(reach > 0 ? smoothed(mask, reach) : copyOf(mask)),
        window_(2 * reach + 2) {
    for (int32_t dy = -window_; dy <= window_; ++dy) {
      for (int32_t dx = -window_; dx <= window_; ++dx) {
        weights_.push_back(1.0f / static_cast<float>(1 + dx * dx + dy * dy));
      }
    }
  }

  void row(int32_t y, uint8_t* rgba) const {
    for (int32_t x = 0; x < picture_.width(); ++x, rgba += 4) pixel(x, y, rgba);
  }

 private:
  const uint8_t* at(int32_t x, int32_t y) const {
    return picture_.row(y) + ptrdiff_t{picture_.channels()} * x;
  }

  void pixel(int32_t x, int32_t y, uint8_t* rgba) const {
    const uint8_t coverage = smooth_.row(y)[x];
    const uint8_t* const from = at(x, y);
    if (coverage == 0) {
      std::fill_n(rgba, 4, uint8_t{0});
      return;
    }
    const Mix mix = coverage == 255 ? Mix{1, colorAt(from)} : taken(x, y);
    for (size_t c = 0; c < 3; ++c) {
      rgba[c] = static_cast<uint8_t>(std::lround(std::clamp(mix.color[c], 0.0f, 255.0f)));
    }
    const float alpha = picture_.hasAlpha() ? from[3] : 255.0f;
    rgba[3] = static_cast<uint8_t>(std::lround(mix.share * alpha));
  }

  // Apart into object and background.
  Mix taken(int32_t x, int32_t y) const {
    const float coverage = static_cast<float>(smooth_.row(y)[x]) / 255;
    const Color color = colorAt(at(x, y));
    Surroundings object, ground;
    lookAround(x, y, object, ground);
    // The mask's own edge, drawn a little steeper.
    const float byMask = std::clamp(0.5f + (coverage - 0.5f) * 1.5f, 0.0f, 1.0f);
    if (object.empty() || ground.empty()) return {byMask, color};
    const float share = shareOf(color, object, ground, coverage, byMask);
    Color alone = object.mean();
    if (share > 0.05f) {
      const Color rest = ground.mean();
      Color own;
      for (size_t c = 0; c < 3; ++c) {
        own[c] = std::clamp((color[c] - (1 - share) * rest[c]) / share, 0.0f, 255.0f);
      }
      alone = mixed(alone, own, share);
    }
    return {share, alone};
  }

  // The nearer the better; what is on the edge itself belongs to neither side, unless there is
  // nothing else, as in threads.
  void lookAround(int32_t x, int32_t y, Surroundings& object, Surroundings& ground) const {
    const int32_t top = std::max(y - window_, 0),
                  bottom = std::min(y + window_, picture_.height() - 1);
    const int32_t left = std::max(x - window_, 0),
                  right = std::min(x + window_, picture_.width() - 1);
    Surroundings thin, gap;
    for (int32_t v = top; v <= bottom; ++v) {
      const uint8_t* const smooth = smooth_.row(v);
      const uint8_t* const mask = mask_.row(v);
      const float* const weights = weights_.data() + weightRow(v - y) - x;
      for (int32_t u = left; u <= right; ++u) {
        Surroundings& side = smooth[u] == 255 ? object
                             : smooth[u] == 0 ? ground
                             : mask[u] != 0   ? thin
                                              : gap;
        side.add(at(u, v), weights[u]);
      }
    }
    if (object.empty()) object = thin;
    if (ground.empty()) ground = gap;
  }

  ptrdiff_t weightRow(int32_t dy) const {
    return ptrdiff_t{dy + window_} * (2 * window_ + 1) + window_;
  }

  // Where the pixel's colour lies between those of both sides, as far as these can be told apart;
  // else by the mask. Never far from what the mask says.
  static float shareOf(const Color& color, const Surroundings& object, const Surroundings& ground,
                       float coverage, float byMask) {
    constexpr float kNoise = 900;
    const Color base = ground.mean(), top = object.mean();
    Color across, way;
    for (size_t c = 0; c < 3; ++c) {
      across[c] = top[c] - base[c];
      way[c] = color[c] - base[c];
    }
    const float apart = dot(across, across);
    const float trust = apart / (apart + 4 * (object.variance() + ground.variance()) + kNoise);
    const float byColor = apart > 0 ? std::clamp(dot(way, across) / apart, 0.0f, 1.0f) : byMask;
    const float share = byMask + (byColor - byMask) * trust;
    return std::clamp(share, std::max(0.0f, 2 * coverage - 1), std::min(1.0f, 2 * coverage));
  }

  const Picture& picture_;
  const Picture& mask_;
  Picture smooth_;
  int32_t window_;
  std::vector<float> weights_;
};

}  // namespace

int32_t defaultReach(int32_t width, int32_t height) {
  const double side = std::sqrt(static_cast<double>(width) * height);
  return std::clamp(static_cast<int32_t>(std::lround(side / 1000)), 1, 4);
}

Picture cutOut(const Picture& picture, const Picture& mask, int32_t reach) {
  Picture result(picture.width(), picture.height(), 4);
  result.kind = FileKind::png;
  result.exif = picture.exif;
  result.icc = picture.icc;
  result.density = picture.density;
  const EdgeSoftener softener(picture, mask, reach);
  forEachInThreads(static_cast<size_t>(picture.height()), defaultThreads(), [&](size_t y) {
    softener.row(static_cast<int32_t>(y), result.row(static_cast<int32_t>(y)));
  });
  return result;
}

}  // namespace qpx::tool
