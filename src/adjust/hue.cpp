// Adjustments of hue, saturation and lightness.
#include "adjust/adjust.h"

#include "adjust/params.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = 0x7300,
     .name = "Saturation",
     .title = "Saturation",
     .summary = "Saturation of all colours by a percentage; a positive amount counts half.",
     .formats = kTakesRgb | QPX_TAKES_NV21,
     .record = {sizeof(QPXSaturationParam), adjust::kSaturationParams}},
    {.id = 0x7700,
     .name = "HSLColor",
     .title = "Colour range",
     .summary = "Hue, saturation and lightness of one of eight colour ranges.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXColorRangeParam), adjust::kColorRangeParams}},
    {.id = 0x7900,
     .name = "NaturalSaturation",
     .title = "Vibrance",
     .summary = "Saturation in a perceptual colour space, gentle on strong colours.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXVibranceParam), adjust::kVibranceParams}},
    {.id = 0x7F00,
     .name = "HSBAdjust",
     .title = "Hue, saturation and brightness by hue",
     .summary = "Shifts hue, saturation and brightness, each by its own table over the hue circle.",
     .formats = kTakesRgb,
     .record = {.size = 196}},
    {.id = 0x9900,
     .name = "NewNaturalSaturation",
     .title = "Vibrance and saturation",
     .summary = "Vibrance of a second kind, in the same perceptual colour space.",
     .formats = kTakesRgb,
     .record = {.size = 8}},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kHueFamily = {"hue", kEffects};

}  // namespace qpx
