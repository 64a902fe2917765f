#include "filters/curves/corner_looks.h"

#include <cstring>

#include "filters/curves/corner_terms.h"
#include "filters/curves/look_block.h"
#include "toolkit/steps.h"

namespace qpx {
namespace {

// A strength of saturation in 128ths, in the 1024ths that the step takes.
constexpr int32_t kOf128 = 8;

// The terms of rows, then those of columns, follow in memory.
struct CornerBlock {
  int32_t mode;
  ChannelTables tone;

  int32_t* rowTerms() { return reinterpret_cast<int32_t*>(this + 1); }
  const int32_t* rowTerms() const { return reinterpret_cast<const int32_t*>(this + 1); }
};

int64_t termCount(const Stage& stage) {
  return int64_t{std::max(stage.inHeight, 0)} + std::max(stage.inWidth, 0);
}

bool hasCornerBlock(const Stage& stage) {
  return holdsBlock<CornerBlock>(stage, termCount(stage) * static_cast<int64_t>(sizeof(int32_t)));
}

int32_t setUpCorners(Stage& stage, const ChannelCurves& curves, int32_t excess) {
  auto& param = editRecord<QPXCornerLookParam>(stage);
  param.corners = std::clamp(param.corners, -100, 100);
  param.reach = std::clamp(param.reach, -100, 100);
  param.centerX = std::clamp(param.centerX, -100, 100);
  param.centerY = std::clamp(param.centerY, -100, 100);
  auto* block = makeBlock<CornerBlock>(stage, termCount(stage) * int64_t{sizeof(int32_t)});
  if (block == nullptr) return QPX_NO_MEMORY;
  block->mode = param.mode;
  const Falloff falloff(excess, param.corners, param.reach);
  const size_t rows = static_cast<size_t>(std::max(stage.inHeight, 0));
  const size_t columns = static_cast<size_t>(std::max(stage.inWidth, 0));
  int32_t* terms = block->rowTerms();
  falloff.fill({terms, rows}, 0, stage.inHeight, param.centerY);
  falloff.fill({terms + rows, columns}, 0, stage.inWidth, param.centerX);
  return drawCurves(curves, block->tone);
}

// Modes other than 0 and 1 stand for the nearer of them.
int32_t setUpWithMode(Stage& stage, const ChannelCurves& curves, int32_t excess) {
  auto& mode = editRecord<QPXCornerLookParam>(stage).mode;
  mode = std::clamp(mode, 0, 1);
  return setUpCorners(stage, curves, excess);
}

void darkenCorners(const Stage& stage, const CornerBlock& block, PixelRun& run) {
  const int32_t* terms = block.rowTerms();
  darkenCorners({terms, terms + stage.inHeight}, run);
}

void darkenCornersInModeOne(const Stage& stage, const CornerBlock& block, PixelRun& run) {
  if (block.mode == 1) darkenCorners(stage, block, run);
}

void tonedCorners(const Stage& stage, PixelRun& run) {
  const auto& block = blockOf<CornerBlock>(stage);
  applyTables(run, block.tone);
  darkenCorners(stage, block, run);
}

void nostalgic(const Stage& stage, PixelRun& run) {
  const auto& block = blockOf<CornerBlock>(stage);
  alignas(kRunAlignment) uint8_t lightness[kRunLength];
  lightnessGrey(run, lightness);
  colorizeGrey(run, lightness, block.tone);
  darkenCornersInModeOne(stage, block, run);
}

void vintage(const Stage& stage, PixelRun& run) {
  const auto& block = blockOf<CornerBlock>(stage);
  applyTables(run, block.tone);
  saturate(run, -38 * kOf128);
  darkenCornersInModeOne(stage, block, run);
}

void deepQuite(const Stage& stage, PixelRun& run) {
  const auto& block = blockOf<CornerBlock>(stage);
  applyTables(run, block.tone);
  darkenCornersInModeOne(stage, block, run);
}

bool knownMode(const Stage& stage) {
  const int32_t mode = blockOf<CornerBlock>(stage).mode;
  return mode == 0 || mode == 1;
}

void gothic(const Stage& stage, PixelRun& run) {
  const auto& block = blockOf<CornerBlock>(stage);
  applyTables(run, block.tone);
  saturate(run, 55 * kOf128);
  darkenCorners(stage, block, run);
}

// Sepia toned albumen prints: umber shadows, ochre midtones, cream paper.
constexpr ChannelCurves kNostalgicCurves = {{{0, 36}, {64, 92}, {128, 160}, {192, 219}, {255, 252}},
                                            {{0, 26}, {64, 68}, {128, 129}, {192, 194}, {255, 241}},
                                            {{0, 28}, {64, 54}, {128, 97}, {192, 152}, {255, 208}}};

// A print of the seventies: blacks washed out and bluish, whites turned to cream.
constexpr ChannelCurves kVintageCurves = {{{0, 34}, {64, 80}, {128, 150}, {192, 211}, {255, 246}},
                                          {{0, 28}, {64, 74}, {128, 140}, {192, 202}, {255, 239}},
                                          {{0, 56}, {64, 88}, {128, 128}, {192, 170}, {255, 208}}};

// Late light in a still room: everything lower, shadows a deep teal, no glaring white.
constexpr ChannelCurves kDeepQuiteCurves = {
    {{0, 0}, {64, 34}, {128, 94}, {192, 160}, {255, 222}},
    {{0, 6}, {64, 46}, {128, 106}, {192, 169}, {255, 226}},
    {{0, 18}, {64, 60}, {128, 114}, {192, 168}, {255, 218}}};

// Winter light: blue shadows, pale blue lights.
constexpr ChannelCurves kColdBlueCurves = {{{0, 0}, {64, 40}, {128, 98}, {192, 170}, {255, 236}},
                                           {{0, 6}, {64, 60}, {128, 126}, {192, 196}, {255, 249}},
                                           {{0, 38}, {64, 96}, {128, 162}, {192, 221}, {255, 255}}};

// Moonlit stone: hard contrast, shadows to blue ink, lights no whiter than a clouded moon. Colours
// that are left glow, since saturation rises behind the curves.
constexpr ChannelCurves kGothicCurves = {{{0, 0}, {64, 28}, {128, 86}, {192, 162}, {255, 226}},
                                         {{0, 0}, {64, 31}, {128, 90}, {192, 165}, {255, 228}},
                                         {{0, 10}, {64, 44}, {128, 99}, {192, 165}, {255, 220}}};

// Dusk in lilac: green gives way, more in the shadows than in the lights.
constexpr ChannelCurves kPurpleCurves = {{{0, 24}, {64, 74}, {128, 144}, {192, 209}, {255, 250}},
                                         {{0, 2}, {64, 42}, {128, 106}, {192, 180}, {255, 240}},
                                         {{0, 50}, {64, 106}, {128, 168}, {192, 220}, {255, 252}}};

// A contact print kept in a drawer: soft blacks, paper no longer white. All channels alike.
constexpr CurvePoint kOldPrint[5] = {{0, 20}, {56, 52}, {128, 130}, {204, 206}, {255, 236}};

}  // namespace

int32_t setUpNostalgic(Stage& stage, QPXBand&) {
  return setUpWithMode(stage, kNostalgicCurves, kDeepCorners);
}

int32_t setUpVintage(Stage& stage, QPXBand&) {
  return setUpWithMode(stage, kVintageCurves, kDeepCorners);
}

int32_t setUpDeepQuite(Stage& stage, QPXBand&) {
  return setUpCorners(stage, kDeepQuiteCurves, kDeepCorners);
}

int32_t setUpColdBlue(Stage& stage, QPXBand&) {
  return setUpCorners(stage, kColdBlueCurves, kSoftCorners);
}

int32_t setUpGothic(Stage& stage, QPXBand&) {
  return setUpCorners(stage, kGothicCurves, kHeavyCorners);
}

int32_t setUpPurple(Stage& stage, QPXBand&) {
  return setUpCorners(stage, kPurpleCurves, kSoftCorners);
}

int32_t setUpVintageBlackWhite(Stage& stage, QPXBand&) {
  ChannelCurves curves;
  for (auto* channel : {&curves.red, &curves.green, &curves.blue}) {
    std::memcpy(*channel, kOldPrint, sizeof kOldPrint);
  }
  return setUpWithMode(stage, curves, kDeepCorners);
}

constinit const Look kNostalgic = {nostalgic, hasCornerBlock};
constinit const Look kVintage = {vintage, hasCornerBlock};
constinit const Look kDeepQuite = {deepQuite, hasCornerBlock, knownMode};
constinit const Look kColdBlue = {tonedCorners, hasCornerBlock};
constinit const Look kGothic = {gothic, hasCornerBlock};
constinit const Look kPurple = {tonedCorners, hasCornerBlock};
constinit const Look kVintageBlackWhite = {nostalgic, hasCornerBlock};

}  // namespace qpx
