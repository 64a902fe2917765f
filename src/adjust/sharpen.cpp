// Sharpening, clarity and blur.
#include "adjust/adjust.h"

#include "adjust/params.h"
#include "adjust/remove_edge.h"
#include "adjust/sharpening.h"
#include "toolkit/row_ring.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = kDefinition,
     .name = "Definition",
     .title = "Definition",
     .summary = "Local contrast against the mean of a window; negative amounts smooth.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXDefinitionParam), adjust::kDefinitionParams},
     .margin = {.rule = QPX_MARGIN_RECORD, .measure = definitionMargin},
     .setup = setUpDefinition,
     .kernels = {{{kTakesRgb, definition}}},
     .resetStream = forgetRing},
    {.id = kGaussBlur,
     .name = "GaussBlur",
     .title = "Gaussian blur",
     .summary = "Blurs with a Gaussian of a given size.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXGaussBlurParam), adjust::kGaussBlurParams},
     .margin = {.rule = QPX_MARGIN_RECORD, .measure = gaussBlurMargin},
     .setup = setUpGaussBlur,
     .kernels = {{{kTakesRgb, gaussBlur}}},
     .resetStream = forgetRing},
    {.id = kRemoveEdge,
     .name = "RemoveEdge",
     .title = "Fringe fade",
     .summary = "Fades purple and green fringes along edges to grey; surfaces keep their colours.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXRemoveEdgeParam), adjust::kRemoveEdgeParams},
     .margin = {.fixed = kFringeReach},
     .setup = setUpRemoveEdge,
     .kernels = {{{kTakesRgb, removeEdge}}},
     .resetStream = forgetRing},
    {.id = kUnsharpMask,
     .name = "SharpenUSM",
     .title = "Unsharp mask",
     .summary = "Sharpens by the difference from a Gaussian blur, above a threshold.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXUnsharpMaskParam), adjust::kUnsharpMaskParams},
     .margin = {.rule = QPX_MARGIN_RECORD, .measure = unsharpMaskMargin},
     .setup = setUpUnsharpMask,
     .kernels = {{{kTakesRgb, unsharpMask}}},
     .resetStream = forgetRing},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kSharpenFamily = {"sharpen", kEffects};

}  // namespace qpx
