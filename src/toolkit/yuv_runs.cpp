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

uint8_t clampFixed(int32_t value) {
  return static_cast<uint8_t>(std::clamp(value >> kFractionBits, 0, 255));
}

// Rows of `matrix` from `first` on, into the arrays of `to`.
void convert(const FixedMatrix& matrix, const PixelRun& from, PixelRun& to, int first, int end) {
  uint8_t* const targets[3] = {to.r, to.g, to.b};
  for (int c = first; c < end; ++c) {
    const int32_t* m = matrix.row[c];
    const int32_t m0 = m[0], m1 = m[1], m2 = m[2], m3 = m[3];
    uint8_t* target = targets[c];
    for (int32_t i = 0; i < from.count; ++i) {
      target[i] = clampFixed(m0 * from.r[i] + m1 * from.g[i] + m2 * from.b[i] + m3);
    }
  }
}

// One chroma sample for each pixel of the run. A run may begin within a block.
void spreadChroma(const uint8_t* row, const ChromaGrid& grid, const PixelRun& run, uint8_t* to) {
  const uint8_t* from = row + ptrdiff_t{run.x / grid.across} * grid.step;
  if (grid.across == 1) {
    std::memcpy(to, from, static_cast<size_t>(run.count));
    return;
  }
  int32_t left = grid.across - run.x % grid.across;  // pixels of the block still to fill
  for (int32_t i = 0; i < run.count; from += grid.step, left = grid.across) {
    for (; left > 0 && i < run.count; --left) to[i++] = *from;
  }
}

// The same for the blocks that begin in the run.
void spreadCovered(const uint8_t* row, const ChromaGrid& grid, const PixelRun& run, uint8_t* to) {
  const int32_t first = grid.blockFrom(run.x);
  const int32_t before = std::min(first * grid.across - run.x, run.count);
  std::memset(to, kNoColor, static_cast<size_t>(before));
  const uint8_t* from = row + ptrdiff_t{first} * grid.step;
  for (int32_t i = before; i < run.count; from += grid.step) {
    const int32_t end = std::min(i + grid.across, run.count);
    while (i < end) to[i++] = *from;
  }
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
  yuv_ = true;
  toRgb_ = FixedMatrix(stage.inverseMatrix);
  toYuv_ = FixedMatrix(stage.forwardMatrix);
}

void RunFormat::loadCovered(const QPXRowTable* rows, PixelRun& run) const {
  if (!yuv_) {
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

void RunFormat::load(const QPXRowTable* rows, PixelRun& run) const {
  if (!yuv_) {
    load_(*this, rows, run);
    return;
  }
  PixelRun yuv;
  yuv.x = run.x;
  yuv.y = run.y;
  yuv.count = run.count;
  load_(*this, rows, yuv);
  convert(toRgb_, yuv, run, 0, 3);
  std::memset(run.a, 255, static_cast<size_t>(run.count));
}

void RunFormat::store(const PixelRun& run, const QPXRowTable* source,
                      const QPXRowTable* rows) const {
  if (!yuv_) {
    store_(*this, run, source, rows);
    return;
  }
  PixelRun yuv;
  yuv.x = run.x;
  yuv.y = run.y;
  yuv.count = run.count;
  convert(toYuv_, run, yuv, 0, ChromaGrid(pix_).startsRow(run.y) ? 3 : 1);
  store_(*this, yuv, source, rows);
}

}  // namespace qpx
