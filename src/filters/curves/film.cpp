#include "filters/curves/film.h"

#include "simd/rows.h"
#include "simd/tone_rows.h"
#include "toolkit/steps.h"

namespace qpx {
namespace {

constexpr LumaWeights kLumaWeights = {64, 160, 32};

}  // namespace

void developFilm(const FilmRun& exposed, const DyeMatrix& dyes, const ChannelTables& light,
                 PixelRun& run) {
  const simd::Rows& rows = simd::rows();
  const simd::ToneRows& toneRows = simd::toneRows();
  alignas(kRunAlignment) uint8_t luma[kRunLength], tone[kRunLength];
  rows.weightedSum(exposed.r, exposed.g, exposed.b, run.r, run.count, dyes.rows[0]);
  rows.weightedSum(exposed.r, exposed.g, exposed.b, run.g, run.count, dyes.rows[1]);
  rows.weightedSum(exposed.r, exposed.g, exposed.b, run.b, run.count, dyes.rows[2]);
  lumaGrey(run, kLumaWeights, luma);
  const auto layLight = [&](uint8_t* channel, const ToneTable& table) {
    rows.lookup(luma, tone, run.count, table.data());
    toneRows.overlay(channel, tone, channel, run.count);
  };
  layLight(run.r, light.red);
  layLight(run.g, light.green);
  layLight(run.b, light.blue);
}

}  // namespace qpx
