// Effects whose output is turned against the input.
#include "geometry/rotated_effects.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "engine/warp.h"
#include "geometry/warp_kernel.h"

namespace qpx {
namespace {

constexpr QPXParamInfo kDegrees = {
    "degrees", "How far the picture turns, clockwise.", "degrees", QPX_PARAM_FLOAT, 0, -360, 360,
    15};

constexpr QPXParamInfo colorParam(size_t offset, double initial) {
  return {"color",
          "What lies outside the picture.",
          "",
          QPX_PARAM_COLOR,
          static_cast<int32_t>(offset),
          0,
          0xFFFFFF,
          initial};
}

constexpr QPXParamInfo kRotationParams[] = {
    kDegrees, colorParam(offsetof(QPXRotationParam, color), 0x000000)};

constexpr QPXParamInfo kScaledRotationParams[] = {
    kDegrees,
    {"scale", "Size of the turned picture; above 100 it grows.", "percent", QPX_PARAM_INT32,
     offsetof(QPXScaledRotationParam, scale), 10, 1000, 120},
    colorParam(offsetof(QPXScaledRotationParam, color), 0xFFFFFF),
    {"repeat", "Repeats the border outside the picture in place of the colour.", "", QPX_PARAM_FLAG,
     offsetof(QPXScaledRotationParam, repeat), 0, 1, 0}};

static_assert(offsetof(QPXRotationParam, degrees) == 0 &&
              offsetof(QPXScaledRotationParam, degrees) == 0);

// Of a record that may hold any bits: no number is no turn.
double angleOf(float degrees) {
  return std::isnan(degrees) ? 0.0 : static_cast<double>(std::clamp(degrees, -360.0f, 360.0f));
}

int32_t setUpRotation(Stage& stage, QPXBand&) {
  return buildWarpTables(stage, angleOf(record<QPXRotationParam>(stage).degrees));
}

int32_t setUpScaledRotation(Stage& stage, QPXBand&) {
  QPXScaledRotationParam& param = editRecord<QPXScaledRotationParam>(stage);
  param.scale = param.scale == 0 ? 100 : std::clamp(param.scale, 10, 1000);
  return buildWarpTables(stage, angleOf(param.degrees), param.scale / 100.0);
}

int32_t rotate(const Frame& frame) {
  return warpFrame(frame, {record<QPXRotationParam>(frame.stage).color, false});
}

int32_t rotateScaled(const Frame& frame) {
  const auto& param = record<QPXScaledRotationParam>(frame.stage);
  return warpFrame(frame, {param.color, param.repeat != 0});
}

constexpr EffectRow kEffects[] = {
    {.id = 0x4400,
     .name = "Fx4400",
     .title = "Rotate",
     .summary = "Turns the picture by an angle.",
     .record = {sizeof(QPXRotationParam), kRotationParams},
     .flags = QPX_EFFECT_GENERIC | kSupportsRgb | kSupportsYuv | kSupportsGrey | kWarps,
     .margin = {.rule = QPX_MARGIN_ROTATION, .measure = greatestDisplacement},
     .setup = setUpRotation,
     .generic = rotate},
    {.id = 0xA200,
     .name = "FxA200",
     .title = "Rotate with scale and fill",
     .summary = "Turns and scales the picture and fills what lies outside.",
     .record = {sizeof(QPXScaledRotationParam), kScaledRotationParams},
     .flags = kWarps,
     .margin = {.rule = QPX_MARGIN_ROTATION},
     .setup = setUpScaledRotation,
     .generic = rotateScaled},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kRotatedFamily = {"rotation", kEffects};

}  // namespace qpx
