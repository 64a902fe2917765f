// Colour looks by inline chains without textures, several with a soft focus.
#include "filters/soft_focus/soft_focus.h"

#include "filters/look.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    fixedLook(0x7E00, "ClassicalNostalgia", "Classical nostalgia",
              "Faded, warm colours with local contrast from a wide blur."),
    fixedLook(0x8100, "NostalgicFresh", "Fresh nostalgia",
              "Light, faded tones with a blurred glow."),
    fixedLook(0x8200, "CoolTime", "Cool time", "Cool, faded colours with fine local contrast."),
    fixedLook(0x8300, "CoolChildren", "Cool children", "Clear, cool tones by curves."),
    fixedLook(0x8B00, "GirlTimes", "Girl times", "Soft focus, light skin and selective colour."),
    fixedLook(0x8C00, "GirlSoftLight", "Girl, soft light", "Soft focus with a gentle glow."),
    fixedLook(0x9000, "Forest", "Forest", "Deep greens with a soft focus."),
    fixedLook(0x9100, "NewLomo", "Strong lomo", "Saturated colours and deep shadows by curves."),
    fixedLook(0x9300, "PolaroidPurple", "Purple instant film",
              "Purple instant film with a soft focus."),
    fixedLook(0x9400, "PolaroidYellowGreen", "Yellow-green instant film",
              "Yellow-green instant film with a soft focus."),
    fixedLook(0x9500, "Building", "Building", "Clear structure and cool tones with a soft focus."),
    fixedLook(0x9600, "Fresh", "Fresh", "Light, fresh colours by curves."),
    fixedLook(0x9700, "SoftLight", "Soft light", "Gentle contrast by curves."),
    fixedLook(0x9800, "FreshPlant", "Fresh plant", "Fresh greens by curves and selective steps."),
    fixedLook(0x9A00, "CandyColors", "Candy colours", "Sweet, light colours with a soft focus."),
    look(0xA300, "DarkMood", "Dark mood", "Dark, muted tones by curves.", {.record = {.size = 4}}),
    look(0xA400, "HDR", "High dynamic range", "Lifted shadows and held highlights.",
         {.record = {.size = 4}}),
    fixedLook(0xB200, "SmallFresh", "Small fresh", "Light, faded tones with film grain."),
    look(0xB300, "Gorgeous", "Gorgeous", "Rich colours with a turn of hue.",
         {.record = {.size = 4}}),
    fixedLook(0xB400, "ColorBoots", "Colour boost", "Stronger colours by curves."),
    fixedLook(0xB500, "NewWarmColor", "New warm colour", "Warm tones by curves."),
    fixedLook(0xB600, "Nature", "Nature", "Natural greens and blues by curves."),
    fixedLook(0xB700, "ReverseLomo", "Reverse lomo", "Lomo colours turned to the cool side."),
    fixedLook(0xBB00, "GoldenTime", "Golden time", "Golden evening tones with film grain."),
    fixedLook(0xC300, "Brightly", "Brightly", "Bright colours with a soft focus."),
    fixedLook(0xC600, "ColorEnhance", "Colour enhance",
              "Clearer colours by curves and inline saturation."),
    fixedLook(0xCC00, "WeddingWarm", "Warm wedding", "Light, warm tones for weddings."),
    fixedLook(0xE200, "IzaKaya", "Izakaya", "Warm lantern light with darkened corners."),
    fixedLook(0x11400, "GlamourLife", "Glamour life", "Glamorous contrast by curves."),
    fixedLook(0x12800, "Colors", "Colours", "Vivid colours by curves."),
    look(0x15300, "DORVIKT01", "Dorvik 1",
         "Grey with darkened corners and a host's picture laid on.", {.record = kOverlayRecord}),
    look(0x15400, "DORVIKT02", "Dorvik 2", "Tone curves with a host's picture laid on.",
         {.record = kOverlayRecord}),
    look(0x15500, "DORVIKT03", "Dorvik 3", "Tone curves with a host's picture laid on, second set.",
         {.record = kOverlayRecord}),
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kSoftFocusFamily = {"soft focus", kEffects};

}  // namespace qpx
