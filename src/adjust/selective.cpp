// Selective colour, by the inks of nine colour classes.
#include "adjust/adjust.h"

#include "adjust/params.h"
#include "adjust/selective_color.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = kSelectiveColor,
     .name = "SelectiveColor",
     .title = "Selective colour",
     .summary = "Cyan, magenta, yellow and black of nine colour classes.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXSelectiveColorParam), adjust::kSelectiveColorParams},
     .setup = setUpSelectiveColor,
     .kernels = {{{kTakesRgb, selectiveColor}}}},
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kSelectiveFamily = {"selective", kEffects};

}  // namespace qpx
