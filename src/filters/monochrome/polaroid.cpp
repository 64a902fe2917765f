#include "filters/monochrome/polaroid.h"

#include <algorithm>
#include <cstring>

#include "filters/curves/corner_terms.h"
#include "filters/curves/film.h"
#include "filters/curves/look_block.h"
#include "simd/rows.h"

namespace qpx {
namespace {

// The terms of rows, then those of columns, follow in memory.
struct PolaroidBlock {
  ChannelTables tone;
  ChannelTables light;  // by luma: what the channel is overlaid with
  MRect window;         // what the frame leaves of the picture
  int32_t frameMode;
  int32_t vignetteMode;

  int32_t* rowTerms() { return reinterpret_cast<int32_t*>(this + 1); }
  const int32_t* rowTerms() const { return reinterpret_cast<const int32_t*>(this + 1); }
};

int64_t termBytes(const Stage& stage) {
  const int64_t terms = int64_t{std::max(stage.inHeight, 0)} + std::max(stage.inWidth, 0);
  return terms * int64_t{sizeof(int32_t)};
}

bool hasPolaroidBlock(const Stage& stage) {
  return holdsBlock<PolaroidBlock>(stage, termBytes(stage));
}

bool knownFrame(const Stage& stage) {
  const int32_t mode = blockOf<PolaroidBlock>(stage).frameMode;
  return mode == 0 || mode == 1;
}

constexpr DyeMatrix kDyes = dyeMatrix(kUsualGain, kUsualGain);

// Soft blacks, blue at the bottom; the dyes add contrast of their own.
constexpr ChannelCurves kTone = {{{0, 14}, {64, 66}, {128, 132}, {192, 194}, {255, 232}},
                                 {{0, 16}, {64, 71}, {128, 138}, {192, 200}, {255, 240}},
                                 {{0, 28}, {64, 78}, {128, 136}, {192, 189}, {255, 224}}};

// Green is given back what the dyes take from it, so that greys run from blue-black through neutral
// shadows to cream.
constexpr ChannelCurves kLight = {{{0, 166}, {64, 131}, {128, 129}, {192, 125}, {255, 150}},
                                  {{0, 184}, {64, 147}, {128, 143}, {208, 204}, {255, 255}},
                                  {{0, 150}, {64, 130}, {128, 122}, {192, 127}, {255, 172}}};

constexpr uint8_t kPaper[3] = {244, 241, 233};

// Widths of the frame in shares of the picture's shorter side: even on three sides, and below it
// the room that the film's pods take.
constexpr int32_t kBorderShare = 18;
constexpr int32_t kFootShare = 5;

MRect windowOf(const Stage& stage, int32_t frameMode) {
  const int32_t width = std::max(stage.inWidth, 0);
  const int32_t height = std::max(stage.inHeight, 0);
  if (frameMode != 1) return {0, 0, width, height};
  const int32_t side = std::min(width, height);
  const int32_t border = side / kBorderShare;
  return {border, border, width - border, height - side / kFootShare};
}

void expose(const ChannelTables& tone, const PixelRun& run, FilmRun& exposed) {
  const simd::Rows& rows = simd::rows();
  rows.lookup(run.r, exposed.r, run.count, tone.red.data());
  rows.lookup(run.g, exposed.g, run.count, tone.green.data());
  rows.lookup(run.b, exposed.b, run.count, tone.blue.data());
}

// Pixels from column `from` to `to` of the picture, as far as the run has them.
void layPaper(PixelRun& run, int32_t from, int32_t to) {
  const int32_t first = std::max(from - run.x, 0);
  const int32_t last = std::min(to - run.x, run.count);
  if (first >= last) return;
  const size_t count = static_cast<size_t>(last - first);
  std::memset(run.r + first, kPaper[0], count);
  std::memset(run.g + first, kPaper[1], count);
  std::memset(run.b + first, kPaper[2], count);
}

void polaroid(const Stage& stage, PixelRun& run) {
  const auto& block = blockOf<PolaroidBlock>(stage);
  const MRect& window = block.window;
  const int32_t end = run.x + run.count;
  if (run.y < window.top || run.y >= window.bottom) return layPaper(run, run.x, end);
  FilmRun exposed;
  expose(block.tone, run, exposed);
  developFilm(exposed, kDyes, block.light, run);
  if (block.vignetteMode == 1) {
    const int32_t* terms = block.rowTerms();
    darkenCorners({terms, terms + stage.inHeight}, run);
  }
  layPaper(run, run.x, window.left);
  layPaper(run, window.right, end);
}

}  // namespace

int32_t setUpPolaroid(Stage& stage, QPXBand&) {
  auto& param = editRecord<QPXPolaroidParam>(stage);
  param.vignetteMode = std::clamp(param.vignetteMode, 0, 1);
  param.corners = std::clamp(param.corners, -100, 100);
  param.reach = std::clamp(param.reach, -100, 100);
  param.centerX = std::clamp(param.centerX, -100, 100);
  param.centerY = std::clamp(param.centerY, -100, 100);
  auto* block = makeBlock<PolaroidBlock>(stage, termBytes(stage));
  if (block == nullptr) return QPX_NO_MEMORY;
  block->frameMode = param.frameMode;
  block->vignetteMode = param.vignetteMode;
  block->window = windowOf(stage, param.frameMode);

  const MRect& window = block->window;
  const Falloff falloff(kSoftCorners, param.corners, param.reach);
  const size_t rows = static_cast<size_t>(std::max(stage.inHeight, 0));
  const size_t columns = static_cast<size_t>(std::max(stage.inWidth, 0));
  int32_t* terms = block->rowTerms();
  falloff.fill({terms, rows}, window.top, window.bottom, param.centerY);
  falloff.fill({terms + rows, columns}, window.left, window.right, param.centerX);
  const int32_t result = drawCurves(kTone, block->tone);
  return result == QPX_OK ? drawCurves(kLight, block->light) : result;
}

constinit const Look kPolaroid = {polaroid, hasPolaroidBlock, knownFrame};

}  // namespace qpx
