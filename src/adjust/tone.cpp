// The tone controls of a photo editor.
#include "adjust/adjust.h"

#include "adjust/params.h"
#include "adjust/tone_effects.h"
#include "filters/point/table_kernel.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = kLevels,
     .name = "Levels",
     .title = "Levels",
     .summary = "Black, white, gamma and output range for each channel and all together.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXToneLevelsParam), adjust::kToneLevelsParams},
     .setup = setUpToneLevels,
     .kernels = {{{kTakesRgb, applyStageTables}}}},
    {.id = kCurve,
     .name = "Curve",
     .title = "Curves",
     .summary = "Free tone curves for each channel and all together.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXCurveParam), adjust::kCurveParams},
     .setup = setUpCurve,
     .kernels = {{{kTakesRgb, applyStageTables}}}},
    {.id = kSmoothContrast,
     .name = "newBrightnessContrast",
     .title = "Brightness and contrast, smooth",
     .summary = "Brightness and contrast by one smooth curve.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXSmoothContrastParam), adjust::kSmoothContrastParams},
     .setup = setUpSmoothContrast,
     .kernels = {{{kTakesRgb, applyStageTables}}}},
    {.id = kExposure,
     .name = "exposure",
     .title = "Exposure in stops",
     .summary = "Exposure from -5 to 5 stops that keeps hue as it brightens.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXExposureStopsParam), adjust::kExposureStopsParams},
     .setup = setUpExposureStops,
     .kernels = {{{kTakesRgb, exposure}}}},
    {.id = kTonalRanges,
     .name = "HighlightBrightDarkShadow",
     .title = "Tonal ranges",
     .summary = "Highlights, brights, darks and shadows, each by its own amount.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXTonalRangesParam), adjust::kTonalRangesParams},
     .setup = setUpTonalRanges,
     .kernels = {{{kTakesRgb, applyStageTables}}}},
    {.id = kSplitToning,
     .name = "SeparateTone",
     .title = "Split toning",
     .summary = "One hue for highlights and one for shadows, at unchanged luma.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXSplitToningParam), adjust::kSplitToningParams},
     .setup = setUpSplitToning,
     .kernels = {{{kTakesRgb, splitToning}}}},
    {.id = kChannelMixer,
     .name = "ChannelMixer",
     .title = "Channel mixer",
     .summary = "Each channel, or one grey, as a weighted sum of the three.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXChannelMixerParam), adjust::kChannelMixerParams},
     .setup = setUpChannelMixer,
     .kernels = {{{kTakesRgb, channelMixer}}}},
    {.id = kColorBalance,
     .name = "ColorBalance",
     .title = "Colour balance",
     .summary = "Cyan-red, magenta-green and yellow-blue of shadows, midtones and highlights.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXColorBalanceParam), adjust::kColorBalanceParams},
     .setup = setUpColorBalance,
     .kernels = {{{kTakesRgb, applyStageTables}}}},
    {.id = kColorTemperature,
     .name = "ColorTemperature",
     .title = "Colour temperature",
     .summary = "Cooler or warmer light, from 4000 to 6000 kelvin; 5000 changes nothing.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXColorTemperatureParam), adjust::kColorTemperatureParams},
     .setup = setUpColorTemperature,
     .kernels = {{{kTakesRgb, applyStageTables}}}},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kToneFamily = {"tone", kEffects};

}  // namespace qpx
