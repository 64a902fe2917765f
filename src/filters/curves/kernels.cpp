// The looks' kernels by name: a row for each, the layout's macro holding what it takes.
#include <qpx/kernels_curves.h>

#include "filters/curves/corner_looks.h"
#include "filters/curves/light_looks.h"
#include "filters/curves/toned_looks.h"
#include "filters/monochrome/polaroid.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

int32_t callLook(const Look& look, uint32_t formats, QPXStage* stage, const MRect* rect,
                 QPXRowTable* outRows, QPXRowTable* inRows) {
  return callOnFrame(stage, rect, outRows, inRows, [&](const Frame& frame) {
    const bool taken = (formatGroup(frame.stage.pix) & formats) != 0;
    return taken ? runLook(frame, look) : int32_t{QPX_OK};
  });
}

}  // namespace
}  // namespace qpx

using namespace qpx;

#define QPX_LAYOUT_KERNEL(name, formats, look)                                                  \
  int32_t name(QPXStage* stage, const MRect* rect, QPXRowTable* outRows, QPXRowTable* inRows) { \
    return callLook(look, formats, stage, rect, outRows, inRows);                               \
  }                                                                                             \
  static_assert(true)
#define QPX_RGB_KERNEL(effect, look) QPX_LAYOUT_KERNEL(effect##_RGB, kTakesRgb, look)
#define QPX_RGB24_KERNEL(effect, look) QPX_LAYOUT_KERNEL(effect##_RGB24, QPX_TAKES_RGB24, look)
#define QPX_rgb24_KERNEL(effect, look) QPX_LAYOUT_KERNEL(effect##_rgb24, QPX_TAKES_RGB24, look)
#define QPX_RGB565_KERNEL(effect, look) QPX_LAYOUT_KERNEL(effect##_RGB565, QPX_TAKES_RGB565, look)
#define QPX_NV21_KERNEL(effect, look) QPX_LAYOUT_KERNEL(effect##_NV21, QPX_TAKES_NV21, look)
#define QPX_I420_KERNEL(effect, look) QPX_LAYOUT_KERNEL(effect##_I420, QPX_TAKES_I420, look)
#define QPX_YUYV_KERNEL(effect, look) QPX_LAYOUT_KERNEL(effect##_YUYV, QPX_TAKES_YUYV, look)

QPX_RGB24_KERNEL(Sepia, kSepia);
QPX_NV21_KERNEL(Sepia, kSepia);
QPX_I420_KERNEL(Sepia, kSepia);
QPX_RGB24_KERNEL(SingleColor, kSingleColor);
QPX_RGB565_KERNEL(SingleColor, kSingleColor);
QPX_NV21_KERNEL(SingleColor, kSingleColor);
QPX_I420_KERNEL(SingleColor, kSingleColor);
QPX_RGB24_KERNEL(Polaroid, kPolaroid);
QPX_RGB565_KERNEL(Polaroid, kPolaroid);
QPX_NV21_KERNEL(Polaroid, kPolaroid);
QPX_I420_KERNEL(Polaroid, kPolaroid);
QPX_RGB24_KERNEL(Nostalgic, kNostalgic);
QPX_NV21_KERNEL(Nostalgic, kNostalgic);
QPX_I420_KERNEL(Nostalgic, kNostalgic);
QPX_RGB_KERNEL(Vintage, kVintage);
QPX_LAYOUT_KERNEL(Vintage_RGB24, kTakesRgb, kVintage);
QPX_NV21_KERNEL(Vintage, kVintage);
QPX_I420_KERNEL(Vintage, kVintage);
QPX_RGB24_KERNEL(DeepQuite, kDeepQuite);
QPX_NV21_KERNEL(DeepQuite, kDeepQuite);
QPX_I420_KERNEL(DeepQuite, kDeepQuite);
QPX_RGB24_KERNEL(ColdBlue, kColdBlue);
QPX_NV21_KERNEL(ColdBlue, kColdBlue);
QPX_I420_KERNEL(ColdBlue, kColdBlue);
QPX_RGB24_KERNEL(Gothic, kGothic);
QPX_NV21_KERNEL(Gothic, kGothic);
QPX_I420_KERNEL(Gothic, kGothic);
QPX_rgb24_KERNEL(Purple, kPurple);
QPX_NV21_KERNEL(Purple, kPurple);
QPX_I420_KERNEL(Purple, kPurple);
QPX_rgb24_KERNEL(VintageBlackWhite, kVintageBlackWhite);
QPX_NV21_KERNEL(VintageBlackWhite, kVintageBlackWhite);
QPX_I420_KERNEL(VintageBlackWhite, kVintageBlackWhite);
QPX_RGB24_KERNEL(ColorGradient, kColorGradient);
QPX_NV21_KERNEL(ColorGradient, kColorGradient);
QPX_I420_KERNEL(ColorGradient, kColorGradient);
QPX_RGB24_KERNEL(Sunny, kSunny);
QPX_NV21_KERNEL(Sunny, kSunny);
QPX_I420_KERNEL(Sunny, kSunny);
QPX_RGB24_KERNEL(CurveBrightness, kCurveBrightness);
QPX_NV21_KERNEL(CurveBrightness, kCurveBrightness);
QPX_RGB_KERNEL(ReversalFilm, kReversalFilm);
QPX_RGB24_KERNEL(BLACKWHITE2, kBlackWhite2);
QPX_NV21_KERNEL(BLACKWHITE2, kBlackWhite2);
QPX_YUYV_KERNEL(BLACKWHITE2, kBlackWhite2);
QPX_RGB24_KERNEL(FINEFOOD, kFineFood);
QPX_NV21_KERNEL(FINEFOOD, kFineFood);
QPX_YUYV_KERNEL(FINEFOOD, kFineFood);
