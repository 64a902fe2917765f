// Even, warm skin: the inks of reds and yellows, then a soft lift.
#include <qpx/kernels_adjust.h>

#include "adjust/selective_color.h"
#include "adjust/skin_effects.h"
#include "toolkit/curve.h"
#include "toolkit/intensity.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

// Blotches are skin with too much magenta, sallow skin has too much yellow, and both look tired for
// the cyan and black in them.
constexpr simd::Inks kEvenSkin =
    foldBlack({.amounts = {{-16, -14}, {-20, 3}, {-10, -18}, {-6, -4}}, .reserved = 0});

constexpr CurvePoint kWarmLift[3][4] = {{{0, 4}, {96, 124}, {190, 218}, {255, 255}},
                                        {{0, 2}, {96, 112}, {190, 208}, {255, 253}},
                                        {{0, 2}, {96, 106}, {190, 200}, {255, 248}}};

// A channel with 14 percent of its curve.
int32_t liftTable(const CurvePoint (&points)[4], ToneTable& table) {
  ToneTable curve;
  const int32_t result = drawCurve(points, curve);
  if (result != QPX_OK) return result;
  table =
      tabulate([&curve](int32_t c) { return (86 * c + 14 * curve[static_cast<size_t>(c)]) / 100; });
  return QPX_OK;
}

void evenSkin(const Stage& stage, PixelRun& run) {
  const StageTables tables = stageTables(stage);
  const simd::Rows& rows = simd::rows();
  selectColors(run, kEvenSkin);
  rows.lookup(run.r, run.r, run.count, tables.red);
  rows.lookup(run.g, run.g, run.count, tables.green);
  rows.lookup(run.b, run.b, run.count, tables.blue);
}

}  // namespace

int32_t setUpSkinTone(Stage& stage, QPXBand&) {
  ToneTable tables[3];
  for (size_t i = 0; i < 3; ++i) {
    const int32_t result = liftTable(kWarmLift[i], tables[i]);
    if (result != QPX_OK) return result;
  }
  return composeTables(stage, tables[0], tables[1], tables[2]);
}

int32_t skinTone(const Frame& frame) { return runRecipeAtIntensity(frame, evenSkin); }

}  // namespace qpx

using namespace qpx;

int32_t SkinTone_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callOnFrameOf(kSkinTone, stage, rect, outRows, inRows, [](const Frame& frame) {
    return (formatGroup(frame.stage.pix) & kTakesRgb) != 0 ? skinTone(frame) : int32_t{QPX_OK};
  });
}
