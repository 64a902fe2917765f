// The tone controls of a photo editor.
#include "adjust/adjust.h"

#include "adjust/params.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = 0x6F00,
     .name = "Levels",
     .title = "Levels",
     .summary = "Black, white, gamma and output range for each channel and all together.",
     .formats = kTakesRgb,
     .record = {.size = 80}},
    {.id = 0x7000,
     .name = "Curve",
     .title = "Curves",
     .summary = "Free tone curves for each channel and all together.",
     .formats = kTakesRgb,
     .record = {.size = 64}},
    {.id = 0x7100,
     .name = "newBrightnessContrast",
     .title = "Brightness and contrast, smooth",
     .summary = "Brightness and contrast by one smooth curve.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXSmoothContrastParam), adjust::kSmoothContrastParams}},
    {.id = 0x7200,
     .name = "exposure",
     .title = "Exposure in stops",
     .summary = "Exposure from -5 to 5 stops that keeps hue as it brightens.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXExposureStopsParam), adjust::kExposureStopsParams}},
    {.id = 0x7500,
     .name = "HighlightBrightDarkShadow",
     .title = "Tonal ranges",
     .summary = "Highlights, brights, darks and shadows, each by its own amount.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXTonalRangesParam), adjust::kTonalRangesParams}},
    {.id = 0x7800,
     .name = "SeparateTone",
     .title = "Split toning",
     .summary = "One hue for highlights and one for shadows, at unchanged luma.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXSplitToningParam), adjust::kSplitToningParams}},
    {.id = 0x8500,
     .name = "ChannelMixer",
     .title = "Channel mixer",
     .summary = "Each channel, or one grey, as a weighted sum of the three.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXChannelMixerParam), adjust::kChannelMixerParams}},
    {.id = 0x8700,
     .name = "ColorBalance",
     .title = "Colour balance",
     .summary = "Cyan-red, magenta-green and yellow-blue of shadows, midtones and highlights.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXColorBalanceParam), adjust::kColorBalanceParams}},
    {.id = 0x11500,
     .name = "ColorTemperature",
     .title = "Colour temperature",
     .summary = "Cooler or warmer light, from 4000 to 6000 kelvin; 5000 changes nothing.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXColorTemperatureParam), adjust::kColorTemperatureParams}},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kToneFamily = {"tone", kEffects};

}  // namespace qpx
