// Effects that move pixels or show the picture twice: lenses, mirrors, panes and shards.
#include "filters/mirror/mirror.h"

#include <algorithm>
#include <cmath>

#include "engine/stage.h"
#include "filters/look.h"
#include "filters/mirror/params.h"

namespace qpx {
namespace {

// Corners stay where they are and everything else moves inwards, by less than the corners lie
// behind the nearest edge.
int32_t marginOfFishEye(const Stage& stage) {
  const double across = std::max(stage.inWidth, 0) >> 1;
  const double down = std::max(stage.inHeight, 0) >> 1;
  const double margin = std::sqrt(across * across + down * down) - std::min(across, down);
  return static_cast<int32_t>(margin);
}

constexpr EffectRow kEffects[] = {
    {.id = 0x5900,
     .name = "KaleidoScope",
     .title = "Kaleidoscope",
     .summary = "Folds the picture into mirrored triangles; runs on whole pictures only.",
     .formats = QPX_TAKES_RGB24 | QPX_TAKES_NV21 | QPX_TAKES_I420,
     .record = {sizeof(QPXKaleidoscopeParam), mirror::kKaleidoscopeParams},
     .margin = {.rule = QPX_MARGIN_WHOLE_IMAGE}},
    {.id = 0x5A00,
     .name = "FishEye",
     .title = "Fish eye",
     .summary = "Bends the whole picture like a fish-eye lens.",
     .formats = QPX_TAKES_RGB24 | QPX_TAKES_NV21 | QPX_TAKES_I420,
     .record = {sizeof(QPXFishEyeParam), mirror::kFishEyeParams},
     .margin = {.rule = QPX_MARGIN_PICTURE, .measure = marginOfFishEye}},
    {.id = 0x6500,
     .name = "FishEyeMagnifier",
     .title = "Fish-eye magnifier",
     .summary = "A round lens that magnifies around a centre.",
     .formats = QPX_TAKES_RGB24 | QPX_TAKES_NV21 | QPX_TAKES_I420,
     .record = {sizeof(QPXMagnifierParam), mirror::kMagnifierParams},
     .margin = {.rule = QPX_MARGIN_RECORD}},
    fixedLook(0xC400, "KaleidaHorizontal", "Fourfold mirror",
              "Mirrors the top left quarter into the other three."),
    fixedLook(0xCB00, "Diamond", "Diamond", "Crisp tones by one curve for all channels."),
    threadedLook(0xE700, "PrismMasks", "Prism masks", "Screened and soft-light prism colours.",
                 {.record = kFlipRecord}),
    fixedLook(0xF400, "ShardsBW", "Grey shards", "Shards of glass with an enlarged copy in grey."),
    fixedLook(0xF600, "GeometricVertical", "Vertical panes",
              "An enlarged copy in upright panes, with darkened corners.",
              {.flags = QPX_EFFECT_ROW_THREADS}),
    fixedLook(0xFD00, "ShardPrism", "Prism shards",
              "Shards of glass with an enlarged copy in prism colours."),
    fixedLook(0x11600, "ShardsInvert", "Inverted shards", "Shards of glass with an inverted copy."),
    look(0x11800, "GeometricHexagon", "Hexagon",
         "Tinted grey in a hexagon over a host's picture of the band's size."),
    threadedLook(0x11900, "KaleiDoScope_Dorvik", "Kaleidoscope, textured",
                 "Kaleidoscope with a texture over the result.", {.record = kStyleRecord}),
    threadedLook(0x11B00, "Geometric", "Triangle figure",
                 "An enlarged copy inside a figure of triangles, grey around it.",
                 {.record = kStyleRecord}),
    threadedLook(0x11F00, "Geometric75", "Geometry 75",
                 "Grey, a rose multiply and screened shapes."),
    threadedLook(0x12000, "GeometricHorizontal77", "Horizontal panes",
                 "Tinted luma, soft light and grey in level panes."),
    threadedLook(0x12300, "GeometricTriangles", "Triangle panes",
                 "An enlarged copy seen through triangular panes."),
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kMirrorFamily = {"mirror", kEffects};

}  // namespace qpx
