#include "filters/curves/inverse_looks.h"

#include "filters/curves/stretched_texels.h"
#include "filters/curves/tone_runs.h"
#include "toolkit/asset_constants.h"
#include "toolkit/curve.h"

namespace qpx {
namespace {

// One table for each channel: 256 entries by the sample, or 65536 by the sample and the texel over
// it.
struct InverseTables {
  const uint8_t* red;
  const uint8_t* green;
  const uint8_t* blue;
};

int32_t runCurves(const Frame& frame, const InverseTables& curves) {
  auto body = [&](PixelRun& run) {
    const simd::Rows& rows = simd::rows();
    rows.lookup(run.r, run.r, run.count, curves.red);
    rows.lookup(run.g, run.g, run.count, curves.green);
    rows.lookup(run.b, run.b, run.count, curves.blue);
  };
  return runBody(frame, RunBody(body));
}

void lookUpPairs(const uint8_t* table, const uint8_t* texels, uint8_t* samples, int32_t count) {
  for (int32_t i = 0; i < count; ++i) samples[i] = table[samples[i] << 8 | texels[i]];
}

int32_t runUnderTexture(const Frame& frame, const InverseTables& tables) {
  const Stage& stage = frame.stage;
  const bool ready = stage.resources != nullptr && stage.resources[0] != nullptr &&
                     isSquareOf256(texture(stage, 0));
  if (!ready) return QPX_BAD_PARAM;
  StretchedPlaces places(stage);
  StretchedTexels texels(texture(stage, 0));
  auto body = [&](PixelRun& run) {
    places.place(run);
    texels.load(places, run.count);
    lookUpPairs(tables.red, texels.red(), run.r, run.count);
    lookUpPairs(tables.green, texels.green(), run.g, run.count);
    lookUpPairs(tables.blue, texels.blue(), run.b, run.count);
  };
  return runBody(frame, RunBody(body));
}

// The film's curves turned round: parabolas fitted to them, with 15 fractional bits. Blue's is cut
// below the sample where it becomes 0.
constexpr ToneTable kRedBeforeFilm =
    tabulate([](int32_t v) { return (59 * v * v + 5266 * v + 1974940) >> 15; });
constexpr ToneTable kGreenBeforeFilm =
    tabulate([](int32_t v) { return (102 * v * v + 6947 * v + 814583) >> 15; });
constexpr ToneTable kBlueBeforeFilm =
    tabulate([](int32_t v) { return v <= 53 ? 0 : (144 * v * v + 13235 * v - 1127059) >> 15; });

}  // namespace

int32_t setUpUndoFleetingTime(Stage& stage, QPXBand&) {
  return loadTextures(stage, {assets::fleet_data1});
}

int32_t setUpUndoSoftPink(Stage& stage, QPXBand&) {
  return loadTextures(stage, {assets::lomo_mask0});
}

int32_t undoNewReversal(const Frame& frame) {
  return runCurves(frame, {kRedBeforeFilm.data(), kGreenBeforeFilm.data(), kBlueBeforeFilm.data()});
}

int32_t undoRixi(const Frame& frame) { return runCurves(frame, {::rixi_r, ::rixi_g, ::rixi_b}); }

int32_t undoFleetingTime(const Frame& frame) {
  return runUnderTexture(frame, {::fleet_r, ::fleet_g, ::fleet_b});
}

int32_t undoSoftPink(const Frame& frame) {
  return runUnderTexture(frame, {::softpink_r, ::softpink_g, ::softpink_b});
}

}  // namespace qpx
