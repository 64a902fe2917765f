// Effects that analyse the picture or take the results of an analysis.
#include "autofix/fix_effects.h"

#include "autofix/params.h"
#include "engine/stage.h"

namespace qpx {
namespace {

// Sharpening alone reads the next pixels; shadows and highlights may go by a wide neighbourhood.
int32_t marginOfFix(const Stage& stage) { return record<FixParam>(stage).wideWindow != 0 ? 16 : 1; }

constexpr EffectRow kEffects[] = {
    {.id = 0x4A00,
     .name = "Fx4A00",
     .title = "White balance from a picked area",
     .summary = "Balances colours so that a picked area turns neutral.",
     .record = {.size = 16},
     .flags =
         QPX_EFFECT_SAME_AREA | QPX_EFFECT_GENERIC | kSupportsRgb | kSupportsYuv | kSupportsGrey},
    {.id = 0x4B00,
     .name = "Fx4B00",
     .title = "White balance",
     .summary =
         "Colour temperature and tint of the light; 5000 kelvin with tint 10 changes nothing.",
     .formats = QPX_TAKES_RGB32,
     .record = {sizeof(QPXWhiteBalanceParam), autofix::kWhiteBalanceParams},
     .flags = QPX_EFFECT_SAME_AREA | QPX_EFFECT_GENERIC | kSupportsRgb},
    {.id = 0x4C00,
     .name = "Fx4C00",
     .title = "Auto colour gains",
     .summary = "Gains for red, green and blue, as the automatic colour formula returns them.",
     .record = {.size = 12},
     .flags = QPX_EFFECT_SAME_AREA | QPX_EFFECT_GENERIC | kSupportsRgb},
    {.id = 0x4D00,
     .name = "Fx4D00",
     .title = "Dynamic light",
     .summary =
         "A tone table from the picture's histogram that opens shadows and protects highlights.",
     .formats = QPX_TAKES_RGB32,
     .record = {.size = 264},
     .flags = QPX_EFFECT_SAME_AREA | QPX_EFFECT_GENERIC | kSupportsRgb},
    {.id = 0x5400,
     .name = "Fx5400",
     .title = "One-click fix",
     .summary = "Colour balance, saturation, brightness, contrast, levels, shadows and sharpness "
                "in one step.",
     .formats = QPX_TAKES_NV21,
     .record = {sizeof(FixParam), autofix::kFixParams},
     .flags = QPX_EFFECT_GENERIC,
     .margin = {.rule = QPX_MARGIN_RECORD, .measure = marginOfFix}},
    {.id = 0x15A00,
     .name = "F01",
     .title = "Auto level and colour",
     .summary = "Levels from the picture's own histogram and a lift of weak colours.",
     .formats = kTakesRgb},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kFixFamily = {"autofix", kEffects};

}  // namespace qpx
