// Adjustments of skin.
#include "adjust/adjust.h"

#include "adjust/params.h"
#include "filters/look.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = 0xAD00,
     .name = "ComplexionOptimizing",
     .title = "Complexion",
     .summary = "Smooths skin and leaves everything else sharp.",
     .formats = kTakesRgb | QPX_TAKES_NV21 | QPX_TAKES_YUYV,
     .record = {sizeof(QPXComplexionParam), adjust::kComplexionParams},
     .flags = kSetsUpYuyv},
    threadedLook(0xE900, "SkinTone", "Skin tone", "Even, warm skin by selective colour."),
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kSkinFamily = {"skin", kEffects};

}  // namespace qpx
