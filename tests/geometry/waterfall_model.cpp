#include "geometry/waterfall_model.h"

#include <algorithm>
#include <cmath>

namespace qpx::testing {

WaterfallModel::WaterfallModel(const MBitmap& image) : width_(image.width), height_(image.height) {
  for (int32_t y = 0; y < height_; ++y) {
    for (int32_t x = 0; x < width_; ++x) {
      for (int c = 0; c < 3; ++c) result_.push_back(sampleAt(image, x, y, c));
    }
  }
  snapshot_ = result_;
  mask_.resize(result_.size() / 3);
}

bool WaterfallModel::touch(const MPoint& point, bool finish, bool filters) {
  if (!last_) {
    last_ = point;
    return false;
  }
  const double dx = static_cast<double>(point.x) - last_->x;
  const double dy = static_cast<double>(point.y) - last_->y;
  const double third = radius / 3;
  const bool draws = dx * dx + dy * dy > third * third;
  if (draws) segment(point, filters);
  if (finish) {
    last_.reset();
    strokes_ = 0;
  } else if (draws) {
    last_ = point;
    ++strokes_;
  }
  return draws;
}

void WaterfallModel::put(int64_t x, int64_t y, int32_t value) {
  if (y < dirty_.top || y > dirty_.bottom) return;
  for (int64_t at = x; at <= x + 1; ++at) {
    if (at >= dirty_.left && at <= dirty_.right) {
      mask_[place(at, y, 0) / 3] = static_cast<uint8_t>(value);
    }
  }
}

void WaterfallModel::disc(const MPoint& centre) {
  const double inner = radius - feather, outer = radius + feather;
  for (int32_t y = dirty_.top; y <= dirty_.bottom; ++y) {
    for (int32_t x = dirty_.left; x <= dirty_.right; ++x) {
      const double dx = static_cast<double>(x) - centre.x, dy = static_cast<double>(y) - centre.y;
      const double d = std::sqrt(dx * dx + dy * dy);
      if (d >= outer) continue;
      const double value = d <= inner ? 255 : 255 - (d - inner) * 255 / (2 * feather);
      mask_[place(x, y, 0) / 3] = static_cast<uint8_t>(value);
    }
  }
}

void WaterfallModel::segment(const MPoint& point, bool filters) {
  for (int32_t y = dirty_.top; y <= dirty_.bottom; ++y) {
    for (int32_t x = dirty_.left; x <= dirty_.right; ++x) {
      for (int c = 0; c < 3; ++c) snapshot_[place(x, y, c)] = result_[place(x, y, c)];
      mask_[place(x, y, 0) / 3] = 0;
    }
  }

  MPoint a = *last_, b = point;
  if (b.y < a.y || (b.y == a.y && b.x > a.x)) std::swap(a, b);
  const double pi = 3.1415927f;
  const double run = static_cast<double>(a.x) - b.x, rise = static_cast<double>(b.y) - a.y;
  double angle = 0;
  if (run == 0) {
    angle = 90;
  } else if (rise != 0) {
    angle = run > 0 ? std::atan(rise / run) * 180 / pi : 180 - std::atan(rise / -run) * 180 / pi;
  }
  const double sin = std::sin(angle * pi / 180) * 256, cos = std::cos(angle * pi / 180) * 256;
  sin_ = static_cast<int32_t>(std::trunc(sin < 0 ? sin - 0.5 : sin + 0.5));
  cos_ = static_cast<int32_t>(std::trunc(cos < 0 ? cos - 0.5 : cos + 0.5));

  const int64_t grow = int64_t{radius} + feather;
  const int64_t left = std::min(a.x, b.x), right = std::max(a.x, b.x);
  const int64_t l = std::max<int64_t>(0, left - grow);
  const int64_t r = std::min<int64_t>(width_ - 1, right + grow);
  const int64_t t = std::max<int64_t>(0, a.y - grow);
  const int64_t m = std::min<int64_t>(height_ - 1, b.y + grow);
  dirty_ = {};
  if (l > r || t > m) return;
  dirty_ = {static_cast<int32_t>(l), static_cast<int32_t>(t), static_cast<int32_t>(r),
            static_cast<int32_t>(m)};

  disc(point);
  const int64_t length = static_cast<int64_t>(std::sqrt(run * run + rise * rise) + 0.5);
  const int64_t inner = radius - feather, outer = radius + feather;
  for (int64_t k = 0; k < length; ++k) {
    const int64_t cx = a.x - ((cos_ * k + 128) >> 8), cy = a.y + ((sin_ * k + 128) >> 8);
    put(cx, cy, 255);
    for (int64_t j = 1; j < inner; ++j) {
      const int64_t da = (sin_ * j + 128) >> 8, db = (cos_ * j + 128) >> 8;
      put(cx - da, cy - db, 255);
      put(cx + da, cy + db, 255);
    }
    for (int64_t j = inner; j < outer; ++j) {
      const int64_t da = (sin_ * j + 128) >> 8, db = (cos_ * j + 128) >> 8;
      const auto value = static_cast<int32_t>(255 - (j - inner) * (255 / (2 * feather)));
      put(cx - da, cy - db, value);
      put(cx + da, cy + db, value);
    }
  }
  if (strokes_ > 0) disc(*last_);
  if (!filters) return;
  for (int32_t y = dirty_.top; y <= dirty_.bottom; ++y) {
    for (int32_t x = dirty_.left; x <= dirty_.right; ++x) {
      if (maskValue(x, y) != 0) filter(x, y);
    }
  }
}

void WaterfallModel::filter(int32_t x, int32_t y) {
  const int64_t m = maskValue(x, y);
  const int32_t half = blurLength >> 1;
  int64_t sum[3] = {}, n = 0;
  for (int32_t t = 1 - half; t <= half - 1; ++t) {
    const int32_t sx = x + ((t * cos_) >> 8), sy = y - ((t * sin_) >> 8);
    if (sx < 0 || sx >= width_ || sy < 0 || sy >= height_) continue;
    for (int c = 0; c < 3; ++c) sum[c] += snapshot_[place(sx, sy, c)];
    ++n;
  }
  for (int c = 0; c < 3; ++c) {
    const int64_t old = snapshot_[place(x, y, c)];
    const int64_t mixed = m == 255 ? sum[c] / n : (sum[c] * m / n + old * (255 - m) + 128) >> 8;
    result_[place(x, y, c)] = static_cast<uint8_t>(std::clamp<int64_t>(mixed, 0, 255));
  }
}

}  // namespace qpx::testing
