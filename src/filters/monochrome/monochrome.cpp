// Looks whose heart is a grey: black and white with grain, sepia, tinted and textured monochromes.
#include "filters/monochrome/monochrome.h"

#include "filters/look.h"
#include "filters/monochrome/polaroid.h"

namespace qpx {
namespace {

constexpr uint32_t kPolaroidFormats =
    QPX_TAKES_RGB24 | QPX_TAKES_RGB565 | QPX_TAKES_NV21 | QPX_TAKES_I420;

constexpr EffectRow kEffects[] = {
    {.id = 0x5B00,
     .name = "Polaroid",
     .title = "Instant film",
     .summary =
         "Instant film: curves, a colour matrix and an overlay, with frame and corners if wanted.",
     .record = {sizeof(QPXPolaroidParam), kPolaroidParams},
     .setup = setUpPolaroid,
     .kernels = {{{kPolaroidFormats, overLook<kPolaroid>}}}},
    fixedLook(0x8800, "NordicMonochrome", "Nordic monochrome",
              "Cool monochrome with a brighter centre."),
    fixedLook(0x8D00, "BlackWhiteContrast", "Black and white, contrast",
              "Hard grey with local contrast from a blur."),
    fixedLook(0x8E00, "BlackWhiteDetails", "Black and white, details",
              "Grey that brings out fine detail with a blur."),
    fixedLook(0x8F00, "BlackWhiteNoise", "Black and white, grain",
              "Grey with strong film grain, softened a little."),
    fixedLook(0xB100, "BlackWhite", "Black and white", "Grey with a light grain."),
    fixedLook(0xC200, "White", "White", "Bright, high-key tones by curves."),
    fixedLook(0xC700, "BWSepia", "Sepia grey", "Grey by lightness in a light brown."),
    threadedLook(0xD200, "Sepia_Yellow", "Yellow sepia",
                 "Multiplied yellow and a screened orange."),
    threadedLook(0xD800, "BlackWhiteA", "Black and white A",
                 "Weighted grey in three toned curves."),
    threadedLook(0xD900, "BlackWhiteB", "Black and white B",
                 "Weighted grey in three toned curves, second toning."),
    threadedLook(0xF200, "SepiaBrown", "Brown sepia",
                 "Brown tinted grey with a mask and darkened corners."),
    threadedLook(0xF500, "SepiaRed", "Red sepia", "Red toned grey with a mask."),
    look(0x12900, "Type01", "Type 1", "Toned grey with a host's picture laid on.",
         {.record = kOverlayRecord}),
    look(0x12A00, "Type02", "Type 2", "Toned grey with a texture and a host's picture laid on.",
         {.record = kOverlayRecord}),
    look(0x12B00, "Type04", "Type 4", "Tinted, textured picture with a host's picture laid on.",
         {.record = kOverlayRecord}),
    threadedLook(0x12F00, "Monochrome1", "Monochrome 1", "A plain tint over grey."),
    threadedLook(0x13500, "Monochrome12", "Monochrome 12", "Weighted grey under soft light."),
    threadedLook(0x13600, "Monochrome13", "Monochrome 13",
                 "Weighted grey under a soft-light mask, second weighting."),
    threadedLook(0x13700, "Monochrome14", "Monochrome 14", "Tint under a soft-light texture."),
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kMonochromeFamily = {"monochrome", kEffects};

}  // namespace qpx
