// The catalogue: the families' tables one behind the other. Nothing else knows which families there
// are. A file of its own, so that a test can define another list in its place.
#include "adjust/adjust.h"
#include "autofix/fix_effects.h"
#include "engine/effect_row.h"
#include "filters/curves/curves.h"
#include "filters/layered/layered.h"
#include "filters/light/light.h"
#include "filters/mirror/mirror.h"
#include "filters/monochrome/monochrome.h"
#include "filters/older/older.h"
#include "filters/painterly/painterly.h"
#include "filters/point/point.h"
#include "filters/soft_focus/soft_focus.h"
#include "geometry/rotated_effects.h"

namespace qpx {
namespace {

constexpr const EffectFamily* kFamilies[] = {
    &kPointFamily,      &kOlderFamily,  &kCurvesFamily,    &kLayeredFamily,
    &kMonochromeFamily, &kMirrorFamily, &kPainterlyFamily, &kLightFamily,
    &kSoftFocusFamily,  &kHueFamily,    &kSelectiveFamily, &kToneFamily,
    &kSharpenFamily,    &kSkinFamily,   &kFixFamily,       &kRotatedFamily};

}  // namespace

std::span<const EffectFamily* const> effectFamilies() { return kFamilies; }

}  // namespace qpx
