#include "filters/point/laid_over.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

static_assert(sizeof(QPXSecondPictureParam) == sizeof(QPXColorWashParam));

int32_t colorComponent(const float* row, const uint8_t (&rgb)[3]) {
  const double value =
      double{row[0]} * rgb[0] + double{row[1]} * rgb[1] + double{row[2]} * rgb[2] + double{row[3]};
  return static_cast<int32_t>(std::clamp(std::floor(value + 0.5), 0.0, 255.0));
}

// The colour as components of the stage's format.
void storeColor(Stage& stage, uint32_t color) {
  const uint8_t rgb[3] = {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
                          static_cast<uint8_t>(color)};
  const bool packedRgb = stage.pix.family == kFamilyPackedRgb;
  const float* matrix = stage.forwardMatrix;
  stage.fillY = packedRgb ? rgb[0] : colorComponent(matrix, rgb);
  stage.fillU = packedRgb ? rgb[1] : colorComponent(matrix + 4, rgb);
  stage.fillV = packedRgb ? rgb[2] : colorComponent(matrix + 8, rgb);
}

template <typename Record>
int32_t setUp(Stage& stage) {
  auto& param = editRecord<Record>(stage);
  param.opacity = std::clamp(param.opacity, 1, 100);
  storeColor(stage, param.color);
  stage.cropMode = 1;
  return QPX_OK;
}

// What is laid over the source, and how much of it.
class Layer {
 public:
  Layer(const Frame& frame, const RunFormat& format, int32_t opacity, bool showSecond)
      : format_(format),
        rows_(format.rows()),
        opacity_(opacity),
        picture_(showSecond && frame.stage.hasSecond != 0 ? frame.second : nullptr),
        mask_(frame.stage.hasMask != 0 ? frame.mask : nullptr) {
    std::memset(top_.r, frame.stage.fillY, kRunLength);
    std::memset(top_.g, frame.stage.fillU, kRunLength);
    std::memset(top_.b, frame.stage.fillV, kRunLength);
  }

  void layOver(PixelRun& run) {
    if (picture_ != nullptr) {
      top_.x = run.x;
      top_.y = run.y;
      top_.count = run.count;
      format_.loadCovered(picture_, top_);
    }
    mix(run.r, top_.r, run);
    mix(run.g, top_.g, run);
    mix(run.b, top_.b, run);
  }

 private:
  void mix(uint8_t* base, const uint8_t* top, const PixelRun& run) const {
    if (mask_ != nullptr) {
      rows_.mixMasked(base, top, mask_[run.y] + run.x, base, run.count, opacity_);
    } else if (picture_ != nullptr) {
      rows_.mixOpaque(base, top, base, run.count, opacity_);
    } else {
      rows_.mixColor(base, top[0], base, run.count, opacity_);
    }
  }

  const RunFormat& format_;
  const simd::Rows& rows_;
  int32_t opacity_;
  const QPXRowTable* picture_;
  QPXRowTable mask_;
  PixelRun top_;
};

int32_t layOver(const Frame& frame, int32_t opacity, bool showSecond) {
  const RunFormat format(frame.stage);
  if (!format.known()) return QPX_UNSUPPORTED;
  Layer layer(frame, format, opacity, showSecond);
  forEachRun(format, frame.rect, [&](PixelRun& run) {
    format.loadComponents(frame.in, run);
    layer.layOver(run);
    format.storeComponents(run, frame.in, frame.out);
  });
  return QPX_OK;
}

}  // namespace

int32_t setUpSecondPicture(Stage& stage, QPXBand&) { return setUp<QPXSecondPictureParam>(stage); }

int32_t setUpColorWash(Stage& stage, QPXBand&) { return setUp<QPXColorWashParam>(stage); }

int32_t laySecondPictureOver(const Frame& frame) {
  return layOver(frame, record<QPXSecondPictureParam>(frame.stage).opacity, true);
}

int32_t layColorOver(const Frame& frame) {
  return layOver(frame, record<QPXColorWashParam>(frame.stage).opacity, false);
}

}  // namespace qpx
