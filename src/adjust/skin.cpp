// Adjustments of skin.
#include "adjust/adjust.h"

#include "adjust/params.h"
#include "adjust/skin_effects.h"
#include "filters/look.h"
#include "toolkit/row_ring.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = kComplexion,
     .name = "ComplexionOptimizing",
     .title = "Complexion",
     .summary = "Smooths skin and leaves everything else sharp.",
     .formats = kTakesRgb | QPX_TAKES_NV21 | QPX_TAKES_YUYV,
     .record = {sizeof(QPXComplexionParam), adjust::kComplexionParams},
     .flags = kSetsUpYuyv,
     .margin = {.rule = QPX_MARGIN_RECORD, .measure = complexionMargin},
     .setup = setUpComplexion,
     .kernels = {{{kTakesRgb, complexionRgb},
                  {QPX_TAKES_NV21, complexionNv21},
                  {QPX_TAKES_YUYV, complexionYuyv}}},
     .resetStream = forgetRing},
    threadedLook(kSkinTone, "SkinTone", "Skin tone", "Even, warm skin by selective colour.",
                 {.setup = setUpSkinTone, .kernel = skinTone}),
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kSkinFamily = {"skin", kEffects};

}  // namespace qpx
