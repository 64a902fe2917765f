// Adjustments of hue, saturation and lightness.
#include "adjust/adjust.h"

#include "adjust/hue_effects.h"
#include "adjust/params.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = kSaturation,
     .name = "Saturation",
     .title = "Saturation",
     .summary = "Saturation of all colours by a percentage; a positive amount counts half.",
     .formats = kTakesRgb | QPX_TAKES_NV21,
     .record = {sizeof(QPXSaturationParam), adjust::kSaturationParams},
     .setup = setUpSaturation,
     .kernels = {{{kTakesRgb | QPX_TAKES_NV21, saturation}}}},
    {.id = kColorRange,
     .name = "HSLColor",
     .title = "Colour range",
     .summary = "Hue, saturation and lightness of one of eight colour ranges.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXColorRangeParam), adjust::kColorRangeParams},
     .setup = setUpColorRange,
     .kernels = {{{kTakesRgb, colorRange}}}},
    {.id = kVibrance,
     .name = "NaturalSaturation",
     .title = "Vibrance",
     .summary = "Saturation in a perceptual colour space, gentle on strong colours.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXVibranceParam), adjust::kVibranceParams},
     .setup = setUpVibrance,
     .kernels = {{{kTakesRgb, chromaMapped}}}},
    {.id = kHsbAdjust,
     .name = "HSBAdjust",
     .title = "Hue, saturation and brightness by hue",
     .summary = "Shifts hue, saturation and brightness, each by its own table over the hue circle.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXHsbAdjustParam), adjust::kHsbAdjustParams},
     .setup = setUpHsbAdjust,
     .kernels = {{{kTakesRgb, hsbAdjust}}}},
    {.id = kVibranceSaturation,
     .name = "NewNaturalSaturation",
     .title = "Vibrance and saturation",
     .summary = "Vibrance of a second kind, in the same perceptual colour space.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXVibranceSaturationParam), adjust::kVibranceSaturationParams},
     .setup = setUpVibranceSaturation,
     .kernels = {{{kTakesRgb, chromaMapped}}}},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kHueFamily = {"hue", kEffects};

}  // namespace qpx
