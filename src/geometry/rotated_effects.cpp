// Effects whose output is turned against the input.
#include "geometry/rotated_effects.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = 0x4400,
     .name = "Fx4400",
     .title = "Rotate",
     .summary = "Turns the picture by an angle.",
     .record = {.size = 8},
     .flags = QPX_EFFECT_GENERIC | kSupportsRgb | kSupportsYuv | kSupportsGrey | kWarps,
     .margin = {.rule = QPX_MARGIN_ROTATION}},
    {.id = 0xA200,
     .name = "FxA200",
     .title = "Rotate with scale and fill",
     .summary = "Turns and scales the picture and fills what lies outside.",
     .record = {.size = 16},
     .flags = kWarps,
     .margin = {.rule = QPX_MARGIN_ROTATION}},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kRotatedFamily = {"rotation", kEffects};

}  // namespace qpx
