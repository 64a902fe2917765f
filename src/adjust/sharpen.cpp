// Sharpening, clarity and blur.
#include "adjust/adjust.h"

#include "adjust/params.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = 0x7400,
     .name = "Definition",
     .title = "Definition",
     .summary = "Local contrast against the mean of a window; negative amounts smooth.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXDefinitionParam), adjust::kDefinitionParams}},
    {.id = 0x7B00,
     .name = "GaussBlur",
     .title = "Gaussian blur",
     .summary = "Blurs with a Gaussian of a given size.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXGaussBlurParam), adjust::kGaussBlurParams}},
    {.id = 0x9B00,
     .name = "RemoveEdge",
     .title = "Edge fade",
     .summary = "Keeps a window of the picture and fades what lies outside, through a mask if "
                "there is one.",
     .formats = kTakesRgb,
     .record = {.size = 28}},
    {.id = 0xAE00,
     .name = "SharpenUSM",
     .title = "Unsharp mask",
     .summary = "Sharpens by the difference from a Gaussian blur, above a threshold.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXUnsharpMaskParam), adjust::kUnsharpMaskParams}},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kSharpenFamily = {"sharpen", kEffects};

}  // namespace qpx
