// Tone curves with border and texture, the looks that camera previews have in YUV as well, and the
// kernels that undo some of them.
#include "filters/curves/curves.h"

#include "filters/curves/corner_looks.h"
#include "filters/curves/inverse_lomo.h"
#include "filters/curves/inverse_looks.h"
#include "filters/curves/light_looks.h"
#include "filters/curves/params.h"
#include "filters/curves/stored_looks.h"
#include "filters/curves/toned_looks.h"
#include "filters/look.h"

namespace qpx {
namespace {

using namespace curves;

constexpr uint32_t kRgb24AndYuv = QPX_TAKES_RGB24 | QPX_TAKES_NV21 | QPX_TAKES_I420;
constexpr uint32_t kRgbAndPreview = kTakesRgb | QPX_TAKES_NV21 | QPX_TAKES_YUYV;
constexpr uint32_t kRgb24AndNv21 = QPX_TAKES_RGB24 | QPX_TAKES_NV21;

constexpr uint32_t kRgb24AndPairs = QPX_TAKES_RGB24 | QPX_TAKES_NV21 | QPX_TAKES_YUYV;

using Kernels = std::array<LayoutKernel, 6>;

// One kernel for all formats that a look is written for.
template <const Look& look>
constexpr Kernels kernelsFor(uint32_t formats) {
  return {{{formats, overLook<look>}}};
}

constexpr RecordLayout kCurveRecord = {sizeof(QPXCurveLookParam), kCurveLookParams};
constexpr RecordLayout kLomoRecord = {sizeof(QPXMaskedLookParam), kLomoParams};
constexpr RecordLayout kSoftPinkRecord = {sizeof(QPXMaskedLookParam), kSoftPinkParams};
constexpr RecordLayout kModeRecord = {sizeof(QPXCornerLookParam), kModeParams};
constexpr RecordLayout kCornerRecord = {sizeof(QPXCornerLookParam), kCornerParams};

constexpr EffectRow kEffects[] = {
    {.id = 0x1900,
     .name = "Sepia",
     .title = "Sepia",
     .summary = "Every colour turns to a red or an orange of its own strength; greys stay grey.",
     .flags = QPX_EFFECT_SAME_AREA | QPX_EFFECT_GENERIC,
     .kernels = kernelsFor<kSepia>(kRgb24AndYuv),
     .generic = overLook<kSepia>},
    {.id = 0x5800,
     .name = "SingleColor",
     .title = "Single colour",
     .summary = "Grey picture toned in one colour by three tables.",
     .record = {sizeof(QPXSingleColorParam), kSingleColorParams},
     .setup = setUpSingleColor,
     .kernels = kernelsFor<kSingleColor>(kRgb24AndYuv | QPX_TAKES_RGB565)},
    {.id = 0x5E00,
     .name = "Nostalgic",
     .title = "Nostalgic",
     .summary = "Duotone from lightness, with darkened corners if wanted.",
     .record = kModeRecord,
     .setup = setUpNostalgic,
     .kernels = kernelsFor<kNostalgic>(kRgb24AndYuv)},
    {.id = 0x5F00,
     .name = "Vintage",
     .title = "Vintage",
     .summary = "Faded tone curves and lower saturation, with darkened corners if wanted.",
     .record = kModeRecord,
     .setup = setUpVintage,
     .kernels = kernelsFor<kVintage>(kRgb24AndYuv | QPX_TAKES_RGB32)},
    {.id = 0x6000,
     .name = "DeepQuite",
     .title = "Deep quiet",
     .summary = "Deep, calm tone curves, with darkened corners if wanted.",
     .record = kModeRecord,
     .setup = setUpDeepQuite,
     .kernels = kernelsFor<kDeepQuite>(kRgb24AndYuv)},
    {.id = 0x6100,
     .name = "ColdBlue",
     .title = "Cold blue",
     .summary = "Cool tone curves for each channel and darkened corners.",
     .record = kCornerRecord,
     .setup = setUpColdBlue,
     .kernels = kernelsFor<kColdBlue>(kRgb24AndYuv)},
    {.id = 0x6200,
     .name = "Gothic",
     .title = "Gothic",
     .summary = "Tone curves, stronger saturation and darkened corners.",
     .record = kCornerRecord,
     .setup = setUpGothic,
     .kernels = kernelsFor<kGothic>(kRgb24AndYuv)},
    {.id = 0x6300,
     .name = "Purple",
     .title = "Purple",
     .summary = "Tone curves towards purple and darkened corners.",
     .record = kCornerRecord,
     .setup = setUpPurple,
     .kernels = kernelsFor<kPurple>(kRgb24AndYuv)},
    {.id = 0x6400,
     .name = "VintageBlackWhite",
     .title = "Vintage black and white",
     .summary = "Grey by lightness through a soft curve, with darkened corners if wanted.",
     .record = kModeRecord,
     .setup = setUpVintageBlackWhite,
     .kernels = kernelsFor<kVintageBlackWhite>(kRgb24AndYuv)},
    {.id = 0x6700,
     .name = "ColorGradient",
     .title = "Colour gradient",
     .summary = "Colour shift that changes along the picture's diagonal.",
     .record = {sizeof(QPXColorGradientParam), kColorGradientParams},
     .setup = setUpColorGradient,
     .kernels = kernelsFor<kColorGradient>(kRgb24AndYuv)},
    {.id = 0x6900,
     .name = "Sunny",
     .title = "Sunny",
     .summary = "Sunlit tones: curves for each channel, lifted or lowered by luma.",
     .setup = setUpSunny,
     .kernels = kernelsFor<kSunny>(kRgb24AndYuv)},
    {.id = 0x6A00,
     .name = "CurveBrightness",
     .title = "Curve brightness",
     .summary = "Brightens or darkens along one curve a channel.",
     .record = {sizeof(QPXCurveBrightnessParam), kCurveBrightnessParams},
     .setup = setUpCurveBrightness,
     .kernels = kernelsFor<kCurveBrightness>(kRgb24AndNv21)},
    look(0x6E00, "ReversalFilm", "Reversal film",
         "Slide film: a curve, a colour matrix and a warm overlay by luma.",
         {.record = {sizeof(QPXReversalFilmParam), kReversalFilmParams},
          .setup = setUpReversalFilm,
          .kernel = overLook<kReversalFilm>}),
    {.id = 0xA500,
     .name = "FleetingTime",
     .title = "Fleeting time",
     .summary = "A soft-light texture and faded colour curves.",
     .flags = kSetsUpYuyv,
     .setup = setUpFleetingTime,
     .kernels = {{{kRgbAndPreview, fleetingTime}}}},
    {.id = 0xA800,
     .name = "NewReversal",
     .title = "Reversal film, soft",
     .summary = "The slide film curve, mixed in by its strength.",
     .record = kCurveRecord,
     .flags = kSetsUpYuyv,
     .kernels = {{{kRgbAndPreview, newReversal}}}},
    {.id = 0xA900,
     .name = "WarmLomo",
     .title = "Warm lomo",
     .summary = "Slide film curve under two soft-light textures that darken the border.",
     .record = kLomoRecord,
     .flags = kSetsUpYuyv,
     .setup = setUpLomo,
     .kernels = {{{kRgbAndPreview, warmLomo}}}},
    {.id = 0xAA00,
     .name = "ColdLomo",
     .title = "Cold lomo",
     .summary = "Cool curve under two soft-light textures that darken the border.",
     .record = kLomoRecord,
     .flags = kSetsUpYuyv,
     .setup = setUpLomo,
     .kernels = {{{kRgbAndPreview, coldLomo}}}},
    {.id = 0xAB00,
     .name = "SoftPink",
     .title = "Soft pink",
     .summary = "Soft curve under a pink soft-light texture.",
     .record = kSoftPinkRecord,
     .flags = kSetsUpYuyv,
     .setup = setUpSoftPink,
     .kernels = {{{kRgbAndPreview, softPink}}}},
    {.id = 0xAC00,
     .name = "RIXI",
     .title = "Japanese morning",
     .summary = "Light, airy tone curve, mixed in by its strength.",
     .record = kCurveRecord,
     .flags = kSetsUpYuyv,
     .kernels = {{{kRgbAndPreview, rixi}}}},
    {.id = 0xB900,
     .name = "RE_NEWREVERSAL",
     .title = "Undo reversal film",
     .summary = "Gives back the picture before the soft reversal film.",
     .kernels = {{{kRgb24AndNv21, undoNewReversal}}}},
    {.id = 0xBA00,
     .name = "RE_FleetingTime",
     .title = "Undo fleeting time",
     .summary = "Gives back the picture before fleeting time.",
     .setup = setUpUndoFleetingTime,
     .kernels = {{{kRgb24AndNv21, undoFleetingTime}}}},
    {.id = 0xBC00,
     .name = "RE_WarmLomo",
     .title = "Undo warm lomo",
     .summary = "Gives back the picture before warm lomo, by search.",
     .setup = setUpUndoWarmLomo,
     .kernels = {{{kRgb24AndNv21, undoWarmLomo}}}},
    {.id = 0xBD00,
     .name = "RE_SoftPink",
     .title = "Undo soft pink",
     .summary = "Gives back the picture before soft pink.",
     .setup = setUpUndoSoftPink,
     .kernels = {{{kRgb24AndNv21, undoSoftPink}}}},
    {.id = 0xBE00,
     .name = "RE_RIXI",
     .title = "Undo Japanese morning",
     .summary = "Gives back the picture before Japanese morning.",
     .kernels = {{{kRgb24AndNv21, undoRixi}}}},
    {.id = 0xBF00,
     .name = "BLACKWHITE2",
     .title = "Black and white, curve",
     .summary = "Grey by luma through one tone curve.",
     .flags = kSetsUpYuyv,
     .setup = setUpBlackWhite2,
     .kernels = kernelsFor<kBlackWhite2>(kRgb24AndPairs)},
    {.id = 0xC000,
     .name = "FINEFOOD",
     .title = "Fine food",
     .summary = "Tone curve and a lift of weak colours, for dishes.",
     .flags = kSetsUpYuyv,
     .setup = setUpFineFood,
     .kernels = kernelsFor<kFineFood>(kRgb24AndPairs)},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kCurvesFamily = {"curves", kEffects};

}  // namespace qpx
