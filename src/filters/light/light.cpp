// Light added to the picture, double exposures, shifted channels and lens faults.
#include "filters/light/light.h"

#include "filters/light/params.h"
#include "filters/look.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = 0x8000,
     .name = "ChromaticAberration",
     .title = "Fringe removal",
     .summary = "Takes coloured fringes off strong edges.",
     .formats = kTakesRgb,
     .record = {sizeof(QPXFringeRemovalParam), light::kFringeRemovalParams},
     .margin = {.rule = QPX_MARGIN_RECORD}},
    {.id = 0xA700,
     .name = "SnowFlakes",
     .title = "Snowflakes",
     .summary = "Cool, bright winter tones by three tables.",
     .formats = kTakesRgb | QPX_TAKES_NV21 | QPX_TAKES_YUYV,
     .flags = kSetsUpYuyv},
    look(0xAF00, "LightLeak", "Light leak",
         "A coloured light leak in one of five styles, turned to any angle.",
         {.record = {sizeof(QPXLightLeakParam), light::kLightLeakParams}}),
    threadedLook(0xD000, "Flare07", "Golden flare", "A warm lens flare screened over the picture.",
                 {.record = kFlipRecord}),
    threadedLook(0xD100, "Flare08", "Wide flare", "A second lens flare screened over the picture.",
                 {.record = kFlipRecord}),
    threadedLook(0xD400, "Flare06", "Blue flare",
                 "A lens flare and a cool soft light that changes with position.",
                 {.record = kFlipRecord}),
    threadedLook(0xEB00, "AuroraMaster", "Aurora", "Northern lights screened over the picture."),
    threadedLook(0xEC00, "FourColorPanelMaster", "Four colour panels",
                 "Four quarters, each in a light and a dark colour of its own."),
    threadedLook(0xF000, "MultilyExposure03", "Double exposure, red",
                 "A blue exposure over a red one moved by a percentage of the picture.",
                 {.record = kExposureRecord}),
    threadedLook(0xF100, "MultilyExposure04", "Double exposure, blue",
                 "A second double exposure in red and blue, moved by a percentage of the picture.",
                 {.record = kExposureRecord}),
    fixedLook(0xF800, "Glitch01", "Glitch, bands",
              "Bands of the picture slip sideways with false colours.",
              {.flags = QPX_EFFECT_ROW_THREADS}),
    fixedLook(0xFB00, "Glitch02", "Glitch, fringes",
              "Two stretched copies with false colours; fringes grow to the right.",
              {.flags = QPX_EFFECT_ROW_THREADS}),
    look(0x10400, "MotionBlur", "Random motion blur",
         "Random strokes that grow with the distance; not the same from run to run.",
         {.record = kMotionBlurRecord}),
    look(0x11700, "MultiExposure02", "Double exposure, tinted",
         "Tinted picture over a host's picture of the band's size."),
    threadedLook(0x11C00, "Neon", "Neon", "Tinted grey with a neon line in a chosen colour.",
                 {.record = kStyleColorRecord}),
    look(0x11E00, "MultiExposure62", "Multiple exposure 62", "Several textured exposures in one."),
    threadedLook(0x12100, "ColorFullLightSteaks84", "Light streaks",
                 "Three greys with screened red and cyan light streaks."),
    threadedLook(0x13C00, "LensFlare_44", "Lens flare 44",
                 "Grey lit by a flare that fades with the distance."),
    look(0x13D00, "ColorReveal", "Colour reveal",
         "Grey in which a textured brush reveals the colour; one at a time, on whole pictures.",
         {.record = kRevealRecord}),
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kLightFamily = {"light", kEffects};

}  // namespace qpx
