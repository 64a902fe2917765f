// A colour cast that turns along the picture's diagonal.
#include <cmath>

#include "filters/curves/light_looks.h"
#include "filters/curves/look_block.h"
#include "simd/tone_rows.h"

namespace qpx {
namespace {

constexpr int32_t kFractionBits = 10;  // of places along the diagonal
constexpr int32_t kNoShift = 128;
constexpr int32_t kLastPlace = 255;

// Three tables by place and one by sample; the terms of rows, then those of columns, follow in
// memory.
struct GradientBlock {
  ChannelTables shift;  // kNoShift changes nothing
  ToneTable response;   // how far a sample may be shifted

  int32_t* rowTerms() { return reinterpret_cast<int32_t*>(this + 1); }
  const int32_t* rowTerms() const { return reinterpret_cast<const int32_t*>(this + 1); }
};

int64_t tailBytes(const Stage& stage) {
  const int64_t terms = int64_t{std::max(stage.inHeight, 0)} + std::max(stage.inWidth, 0);
  return terms * static_cast<int64_t>(sizeof(int32_t));
}

bool hasGradientBlock(const Stage& stage) {
  return holdsBlock<GradientBlock>(stage, tailBytes(stage));
}

// A place is the distance from the bottom right corner in the direction of the origin, in 255ths
// of the diagonal: with the diagonal d = (width - 1, height - 1), the way of a pixel from that
// corner times d / |d|, over |d|. Rows and columns give their parts of it.
class Diagonal {
 public:
  Diagonal(int32_t width, int32_t height)
      : across_(width - 1.0), down_(height - 1.0), square_(across_ * across_ + down_ * down_) {}

  int32_t column(int32_t x) const { return term((across_ - x) * across_); }
  int32_t row(int32_t y) const { return term((down_ - y) * down_); }

 private:
  int32_t term(double product) const {
    if (square_ <= 0.0) return 0;
    const double scale = kLastPlace << kFractionBits;
    return static_cast<int32_t>(std::floor(scale * product / square_ + 0.5));
  }

  double across_;
  double down_;
  double square_;
};

// Casts from the bottom right corner to the origin: violet night, magenta dusk, golden sun. They
// hardly change luma.
constexpr ChannelCurves kCasts = {{{0, 110}, {80, 134}, {150, 156}, {210, 164}, {255, 168}},
                                  {{0, 122}, {80, 112}, {150, 120}, {210, 128}, {255, 132}},
                                  {{0, 186}, {80, 172}, {150, 132}, {210, 100}, {255, 88}}};

// Black and white stay clean and tones keep their order.
constexpr int32_t responseOf(int32_t sample) {
  return std::min(sample * (255 - sample) / 128 + 8, 127);
}

// Turns the casts round the axis of greys.
void turnHue(int32_t degrees, ChannelTables& shift) {
  if (degrees == 0) return;
  const double angle = degrees * 3.14159265358979323846 / 180.0;
  const double same = (1.0 + 2.0 * std::cos(angle)) / 3.0;
  const double rest = (1.0 - same) / 2.0;
  const double skew = std::sin(angle) / std::sqrt(3.0);
  const auto turned = [&](double own, double next, double previous) {
    const double value = same * own + (rest - skew) * next + (rest + skew) * previous;
    return clampToByte(static_cast<int32_t>(std::floor(kNoShift + value + 0.5)));
  };
  for (size_t i = 0; i < 256; ++i) {
    const double r = shift.red[i] - kNoShift;
    const double g = shift.green[i] - kNoShift;
    const double b = shift.blue[i] - kNoShift;
    shift.red[i] = turned(r, g, b);
    shift.green[i] = turned(g, b, r);
    shift.blue[i] = turned(b, r, g);
  }
}

void colorGradient(const Stage& stage, PixelRun& run) {
  const auto& block = blockOf<GradientBlock>(stage);
  const int32_t row = block.rowTerms()[run.y];
  const int32_t* columns = block.rowTerms() + stage.inHeight + run.x;
  alignas(kRunAlignment) uint8_t place[kRunLength], shift[kRunLength], response[kRunLength];
  for (int32_t i = 0; i < run.count; ++i) {
    place[i] = static_cast<uint8_t>((row + columns[i]) >> kFractionBits);
  }
  const simd::Rows& rows = simd::rows();
  const auto shiftBy = [&](uint8_t* channel, const ToneTable& table) {
    rows.lookup(place, shift, run.count, table.data());
    rows.lookup(channel, response, run.count, block.response.data());
    simd::toneRows().lean(channel, shift, response, response, channel, run.count);
  };
  shiftBy(run.r, block.shift.red);
  shiftBy(run.g, block.shift.green);
  shiftBy(run.b, block.shift.blue);
}

}  // namespace

int32_t setUpColorGradient(Stage& stage, QPXBand&) {
  int32_t& hue = editRecord<QPXColorGradientParam>(stage).hue;
  hue = std::clamp(hue, -180, 180);
  auto* block = makeBlock<GradientBlock>(stage, tailBytes(stage));
  if (block == nullptr) return QPX_NO_MEMORY;
  const Diagonal diagonal(stage.inWidth, stage.inHeight);
  int32_t* term = block->rowTerms();
  for (int32_t y = 0; y < stage.inHeight; ++y) *term++ = diagonal.row(y);
  for (int32_t x = 0; x < stage.inWidth; ++x) *term++ = diagonal.column(x);
  block->response = tabulate(responseOf);
  const int32_t result = drawCurves(kCasts, block->shift);
  if (result == QPX_OK) turnHue(hue, block->shift);
  return result;
}

constinit const Look kColorGradient = {colorGradient, hasGradientBlock};

}  // namespace qpx
