// Effects that turn a photograph into a drawing or a painting.
#include "filters/painterly/painterly.h"

#include "filters/look.h"
#include "filters/painterly/params.h"

namespace qpx {
namespace {

constexpr EffectRow kEffects[] = {
    {.id = 0xA600,
     .name = "Crayon",
     .title = "Crayon",
     .summary = "Wax crayon drawing that keeps the picture's colours.",
     .formats = kTakesRgb | QPX_TAKES_NV21 | QPX_TAKES_YUYV,
     .record = {sizeof(QPXCrayonParam), painterly::kCrayonParams},
     .flags = kSetsUpYuyv},
    look(0xB000, "PaintingOil", "Oil painting",
         "Brings out colour detail along edges, like oil paint.",
         {.record = {sizeof(QPXOilPaintingParam), painterly::kOilPaintingParams}}),
    fixedLook(0xC500, "ChalkBoard", "Chalk board", "White chalk drawing on a dark board."),
    fixedLook(0xD300, "HandWritten_Section02", "Handwriting, section 2",
              "Pencil toning by tables alone."),
    fixedLook(0xE500, "HandWritten_Section01", "Handwriting, section 1",
              "Pencil drawing from a blurred grey."),
    threadedLook(0xEF00, "WaterColor", "Watercolour", "Painted grey on paper."),
    threadedLook(0x12200, "PaintStrokes02", "Paint strokes 2",
                 "Broad brush strokes in a chosen colour over grey.",
                 {.record = kStyleColorRecord}),
    threadedLook(0x12600, "PaintStrokes", "Paint strokes", "Broad brush strokes over grey."),
};
static_assert(idsAscend(kEffects));

}  // namespace

constinit const EffectFamily kPainterlyFamily = {"painterly", kEffects};

}  // namespace qpx
