#include "filters/older/toolkit_effects.h"

#include <algorithm>
#include <cstring>

#include "toolkit/curve.h"
#include "toolkit/feather.h"

namespace qpx {
namespace {

// Corner tones at full strength. Darkened ones lose about two stops, shadows more than lights, so
// that colours deepen and lamps still shine. Lightened ones are mist: blacks lift far, lights run
// softly into white.
constexpr CurvePoint kDarkTone[] = {{0, 0}, {64, 14}, {128, 40}, {192, 78}, {255, 128}};
constexpr CurvePoint kLightTone[] = {{0, 96}, {64, 158}, {128, 206}, {192, 238}, {255, 255}};

int32_t placeCentre(int32_t centre, int32_t size) {
  return centre < 0 ? size / 2 : std::min(centre, 65535);
}

}  // namespace

int32_t setUpDarkCorner(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXDarkCornerParam>(stage);
  param.centerX = placeCentre(param.centerX, stage.inWidth);
  param.centerY = placeCentre(param.centerY, stage.inHeight);
  param.radius = std::clamp(param.radius, 0, 100);
  param.intensity = std::clamp(param.intensity, -100, 100);

  ToneTable tone;
  const int32_t result =
      param.intensity < 0 ? drawCurve(kDarkTone, tone) : drawCurve(kLightTone, tone);
  if (result != QPX_OK) return result;
  Scratch block(tone.size());
  if (!block) return QPX_NO_MEMORY;
  std::memcpy(block.get(), tone.data(), tone.size());
  stage.lut = block.release();
  stage.lutSize = static_cast<uint32_t>(tone.size());
  stage.lutFlags = QPX_LUT_OTHER_SHAPE;
  return QPX_OK;
}

int32_t setUpFeather(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXFeatherParam>(stage);
  param.radius = std::clamp(param.radius, 0, 100);
  return QPX_OK;
}

int32_t feather(const Frame& frame) {
  return featherMask(frame, record<QPXFeatherParam>(frame.stage).radius);
}

}  // namespace qpx
