// Runs of planar and semi-planar YUV, with chroma of any divisors.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

constexpr int kFractionBits = 16;
constexpr uint8_t kNoColor = 128;

int32_t toFixed(double value) {
  return static_cast<int32_t>(std::floor(value * (1 << kFractionBits) + 0.5));
}

void convertComponent(const simd::Rows& rows, const FixedMatrix& matrix, int component,
                      const PixelRun& from, uint8_t* to) {
  rows.weightedSum(from.r, from.g, from.b, to, from.count, matrix.row[component]);
}

// Repeats each sample for the pixels of its block; the first one fills `before` pixels.
template <int kStep>
void repeatSamples(const uint8_t* from, int32_t across, int32_t before, uint8_t* to,
                   int32_t count) {
  int32_t i = 0;
  for (const int32_t end = std::min(before, count); i < end; ++i) to[i] = *from;
  if (before > 0) from += kStep;
  if (across == 2) {
    for (; i + 1 < count; i += 2, from += kStep) to[i] = to[i + 1] = *from;
  }
  for (; i < count; from += kStep) {
    for (const int32_t end = std::min(i + across, count); i < end; ++i) to[i] = *from;
  }
}

void repeatChroma(const uint8_t* from, const ChromaGrid& grid, int32_t before, uint8_t* to,
                  int32_t count) {
  if (grid.across == 1) {
    std::memcpy(to, from, static_cast<size_t>(count));
  } else if (grid.step == 2) {
    repeatSamples<2>(from, grid.across, before, to, count);
  } else {
    repeatSamples<1>(from, grid.across, before, to, count);
  }
}

// One chroma sample for each pixel of the run. A run may begin within a block.
void spreadChroma(const uint8_t* row, const ChromaGrid& grid, const PixelRun& run, uint8_t* to) {
  const uint8_t* from = row + ptrdiff_t{run.x / grid.across} * grid.step;
  const int32_t before = grid.blockFrom(run.x) * grid.across - run.x;
  repeatChroma(from, grid, before, to, run.count);
}

// The same for the blocks that begin in the run.
void spreadCovered(const uint8_t* row, const ChromaGrid& grid, const PixelRun& run, uint8_t* to) {
  const int32_t first = grid.blockFrom(run.x);
  const int32_t before = std::min(first * grid.across - run.x, run.count);
  std::memset(to, kNoColor, static_cast<size_t>(before));
  repeatChroma(row + ptrdiff_t{first} * grid.step, grid, 0, to + before, run.count - before);
}

// The chroma of the blocks that begin in the run.
void gatherChroma(const uint8_t* from, const ChromaGrid& grid, const PixelRun& run, uint8_t* row) {
  const int32_t first = grid.blockFrom(run.x);
  uint8_t* to = row + ptrdiff_t{first} * grid.step;
  for (int32_t i = first * grid.across - run.x; i < run.count; i += grid.across, to += grid.step) {
    *to = from[i];
  }
}

void loadYuv(const RunFormat& format, const QPXRowTable* rows, PixelRun& run) {
  const ChromaGrid grid(format.pix());
  const size_t count = static_cast<size_t>(run.count);
  std::memcpy(run.r, rows[0][run.y] + run.x, count);
  spreadChroma(chromaRow(rows[1], run.y, grid.down), grid, run, run.g);
  spreadChroma(chromaRow(rows[2], run.y, grid.down), grid, run, run.b);
  std::memset(run.a, 255, count);
}

void storeYuv(const RunFormat& format, const PixelRun& run, const QPXRowTable*,
              const QPXRowTable* rows) {
  const ChromaGrid grid(format.pix());
  std::memcpy(rows[0][run.y] + run.x, run.r, static_cast<size_t>(run.count));
  if (!grid.startsRow(run.y)) return;
  gatherChroma(run.g, grid, run, chromaRow(rows[1], run.y, grid.down));
  gatherChroma(run.b, grid, run, chromaRow(rows[2], run.y, grid.down));
}

}  // namespace

FixedMatrix::FixedMatrix(const float* matrix) {
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 4; ++c) row[r][c] = toFixed(matrix[4 * r + c]);
    row[r][3] += 1 << (kFractionBits - 1);
  }
}

void RunFormat::chooseYuv(const Stage& stage) {
  load_ = loadYuv;
  store_ = storeYuv;
  blockWidth_ = ChromaGrid(pix_).across;
  model_ = Model::yuv;
  toRgb_ = FixedMatrix(stage.inverseMatrix);
  toYuv_ = FixedMatrix(stage.forwardMatrix);
}

void RunFormat::loadCovered(const QPXRowTable* rows, PixelRun& run) const {
  if (model_ != Model::yuv) {
    load_(*this, rows, run);
    return;
  }
  const ChromaGrid grid(pix_);
  const size_t count = static_cast<size_t>(run.count);
  std::memcpy(run.r, rows[0][run.y] + run.x, count);
  if (grid.startsRow(run.y)) {
    spreadCovered(chromaRow(rows[1], run.y, grid.down), grid, run, run.g);
    spreadCovered(chromaRow(rows[2], run.y, grid.down), grid, run, run.b);
  } else {
    std::memset(run.g, kNoColor, count);
    std::memset(run.b, kNoColor, count);
  }
}

void RunFormat::loadAsRgb(const QPXRowTable* rows, PixelRun& run) const {
  PixelRun yuv;
  yuv.x = run.x;
  yuv.y = run.y;
  yuv.count = run.count;
  load_(*this, rows, yuv);
  convertComponent(rows_, toRgb_, 0, yuv, run.r);
  convertComponent(rows_, toRgb_, 1, yuv, run.g);
  convertComponent(rows_, toRgb_, 2, yuv, run.b);
  std::memset(run.a, 255, static_cast<size_t>(run.count));
}

void RunFormat::storeAsYuv(const PixelRun& run, const QPXRowTable* source,
                           const QPXRowTable* rows) const {
  PixelRun yuv;
  yuv.x = run.x;
  yuv.y = run.y;
  yuv.count = run.count;
  convertComponent(rows_, toYuv_, 0, run, yuv.r);
  if (ChromaGrid(pix_).startsRow(run.y)) {
    convertComponent(rows_, toYuv_, 1, run, yuv.g);
    convertComponent(rows_, toYuv_, 2, run, yuv.b);
  }
  store_(*this, yuv, source, rows);
}

}  // namespace qpx
