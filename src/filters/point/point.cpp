#include "filters/point/point.h"

#include "filters/point/laid_over.h"
#include "filters/point/params.h"
#include "filters/point/table_kernel.h"
#include "filters/point/tone_tables.h"
#include "filters/point/two_tone.h"

namespace qpx {
namespace {

using namespace point;

constexpr uint32_t kGives = QPX_EFFECT_GIVES_TABLE;
constexpr uint32_t kGivesAndTakes = QPX_EFFECT_GIVES_TABLE | QPX_EFFECT_TAKES_TABLE;
constexpr uint32_t kSupportsAll = kSupportsRgb | kSupportsYuv | kSupportsGrey;

// Tone tables work on red, green and blue, whatever the format is made of.
using Kernels = std::array<LayoutKernel, 6>;
constexpr uint32_t kTakesAny = kTakesPackedRgb | QPX_TAKES_GREY | kTakesYuv;
constexpr Kernels kTableKernels = {{{kTakesAny, applyStageTables}}};

// Effects that leave hues alone, or turn all of them round, know a short way in YUV.
constexpr Kernels kLumaTableKernels = {
    {{kTakesYuv, applyStageTableToLuma}, {kTakesAny, applyStageTables}}};

constexpr RecordLayout levelsRecord(std::span<const QPXParamInfo> params) {
  return {sizeof(QPXLevelsParam), params};
}

constexpr EffectRow kEffects[] = {
    {.id = 0x1100,
     .name = "Fx1100",
     .title = "Second picture",
     .summary = "Fades the second input over the source, through the mask if there is one.",
     .record = {sizeof(QPXSecondPictureParam), kSecondPictureParams},
     .flags = QPX_EFFECT_SAME_AREA | QPX_EFFECT_SECOND_INPUT | kSupportsAll | kCrops,
     .setup = setUpSecondPicture,
     .generic = laySecondPictureOver},
    {.id = 0x1200,
     .name = "Fx1200",
     .title = "Colour wash",
     .summary = "Lays a plain colour over the source, through the mask if there is one.",
     .record = {sizeof(QPXColorWashParam), kColorWashParams},
     .flags = QPX_EFFECT_SAME_AREA | QPX_EFFECT_SECOND_INPUT | kSupportsAll | kCrops,
     .setup = setUpColorWash,
     .generic = layColorOver},
    {.id = 0x1300,
     .name = "Fx1300",
     .title = "Brightness and contrast",
     .summary = "Brightens or darkens, and steepens or flattens tones about mid grey.",
     .record = {sizeof(QPXBrightnessContrastParam), kBrightnessContrastParams},
     .flags = kGivesAndTakes | QPX_EFFECT_SAME_AREA | kSupportsRgb | kSupportsGrey,
     .setup = setUpBrightnessContrast,
     .kernels = kLumaTableKernels},
    {.id = 0x1600,
     .name = "Fx1600",
     .title = "Levels by channel",
     .summary = "A gain and an offset for each of red, green and blue.",
     .record = levelsRecord(kChannelLevelsParams),
     .flags = kGives | QPX_EFFECT_SAME_AREA | kSupportsRgb | kSupportsGrey,
     .setup = setUpLevels,
     .kernels = kTableKernels},
    {.id = 0x1700,
     .name = "Fx1700",
     .title = "Grey",
     .summary = "Every pixel as grey as its luma.",
     .formats = QPX_TAKES_RGB32,
     .flags = QPX_EFFECT_GENERIC | QPX_EFFECT_SAME_AREA | kSupportsAll,
     .setup = setUpGrey,
     .kernels = {{{QPX_TAKES_RGB32, makeGrey}}},
     .generic = makeGrey},
    {.id = 0x1800,
     .name = "Fx1800",
     .title = "Negative",
     .summary = "Light turns dark and every colour its complement.",
     .flags = kGivesAndTakes | QPX_EFFECT_SAME_AREA | kSupportsAll,
     .setup = setUpNegative,
     .kernels = kLumaTableKernels},
    {.id = 0x1D00,
     .name = "Fx1D00",
     .title = "Threshold",
     .summary = "Black below a level of luma, white or the picture itself above it.",
     .formats = QPX_TAKES_RGB32,
     .record = {sizeof(QPXThresholdParam), kThresholdParams},
     .flags = QPX_EFFECT_GENERIC | kSupportsAll,
     .setup = setUpThreshold,
     .kernels = {{{QPX_TAKES_RGB32, makeThreshold}}},
     .generic = makeThreshold},
    {.id = 0x1F00,
     .name = "Fx1F00",
     .title = "Channel offsets",
     .summary = "Adds an amount to each of red, green and blue.",
     .record = {sizeof(QPXChannelOffsetsParam), kChannelOffsetsParams},
     .flags = kGivesAndTakes | QPX_EFFECT_SAME_AREA | kSupportsRgb,
     .setup = setUpChannelOffsets,
     .kernels = kTableKernels},
    {.id = 0x2100,
     .name = "Fx2100",
     .title = "Solarise",
     .summary = "Tones rise to white at mid grey and turn back to black, as in a flashed print.",
     .flags = kGivesAndTakes | QPX_EFFECT_SAME_AREA | kSupportsRgb | kSupportsGrey,
     .setup = setUpSolarise,
     .kernels = kTableKernels},
    {.id = 0x2D00,
     .name = "Fx2D00",
     .title = "Gamma",
     .summary = "Lightens or darkens midtones while black and white stay.",
     .record = {sizeof(QPXGammaParam), kGammaParams},
     .flags = kGivesAndTakes | QPX_EFFECT_SAME_AREA | kSupportsRgb,
     .setup = setUpGamma,
     .kernels = kTableKernels},
    {.id = 0x3000,
     .name = "Fx3000",
     .title = "Contrast curve",
     .summary = "A soft S: deeper shadows, brighter highlights, black and white as they were.",
     .flags = kGivesAndTakes | QPX_EFFECT_SAME_AREA | kSupportsRgb | kSupportsGrey,
     .setup = setUpContrastCurve,
     .kernels = kTableKernels},
    {.id = 0x4500,
     .name = "Fx4500",
     .title = "Levels together",
     .summary = "Gains and offsets as a measured formula sets them for the whole picture.",
     .record = levelsRecord(kCommonLevelsParams),
     .flags = kGives | QPX_EFFECT_SAME_AREA | kSupportsRgb | kSupportsGrey,
     .setup = setUpLevels,
     .kernels = kTableKernels},
    {.id = 0x4600,
     .name = "Fx4600",
     .title = "Levels, second step",
     .summary = "A further pass of gains and offsets, for hosts that stack formulas.",
     .record = levelsRecord(kSecondLevelsParams),
     .flags = kGives | QPX_EFFECT_SAME_AREA | kSupportsRgb | kSupportsGrey,
     .setup = setUpLevels,
     .kernels = kTableKernels},
    {.id = 0x4700,
     .name = "Fx4700",
     .title = "Exposure",
     .summary = "More or less light, as if exposed longer or shorter, with a soft shoulder.",
     .record = {sizeof(QPXLevelsParam), kExposureParams},
     .flags = QPX_EFFECT_GENERIC | QPX_EFFECT_SAME_AREA | kSupportsRgb,
     .setup = setUpExposure,
     .generic = applyStageTables},
    {.id = 0x4800,
     .name = "Fx4800",
     .title = "Warm curve",
     .summary = "Golden midtones between neutral shadows and highlights.",
     .flags = kGivesAndTakes | QPX_EFFECT_SAME_AREA | kSupportsRgb,
     .setup = setUpWarmCurve,
     .kernels = kTableKernels},
    {.id = 0x4900,
     .name = "Fx4900",
     .title = "Cool curve",
     .summary = "Bluish midtones between neutral shadows and highlights.",
     .flags = kGivesAndTakes | QPX_EFFECT_SAME_AREA | kSupportsRgb,
     .setup = setUpCoolCurve,
     .kernels = kTableKernels},
};

static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kPointFamily = {"point", kEffects};

}  // namespace qpx
