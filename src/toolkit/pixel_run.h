// Pixel runs: one recipe for every pixel format.
//
// A run is up to 256 neighbouring pixels of one row as planar samples of 8 bits. A driver walks a
// kernel's rectangle, loads each run from whatever the format is, calls the recipe and stores the
// run:
//
//   void swapRedAndBlue(const Stage&, PixelRun& run) { std::swap(run.r, run.b); }
//   constexpr Kernel kKernel = overRuns<swapRedAndBlue>;
//
// Which bytes a rectangle holds: those of its pixels; of subsampled chroma, the samples of the
// blocks whose top-left pixel it holds, and that pixel alone decides them. Nothing else is written.
// Input and output may be the same picture: rows are walked from the bottom up, so that no row of a
// chroma block is read after its chroma was written, and a run is loaded whole before it is stored.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "engine/stage.h"
#include "simd/rows.h"
#include "toolkit/chroma.h"
#include "toolkit/color_field.h"

namespace qpx {

inline constexpr int32_t kRunLength = 256;

// What runs, and the scratch rows of recipes, are lined up with: vectors of the widest targets fill
// a cache line, and half a line off costs twice the time.
inline constexpr size_t kRunAlignment = 64;

struct PixelRun {
  int32_t x = 0;  // of the first pixel, in image coordinates
  int32_t y = 0;
  int32_t count = 0;
  alignas(kRunAlignment) uint8_t r[kRunLength];
  alignas(kRunAlignment) uint8_t g[kRunLength];
  alignas(kRunAlignment) uint8_t b[kRunLength];
  alignas(kRunAlignment) uint8_t a[kRunLength];  // 255 where the format has none
};

// A colour matrix with 16 fractional bits: out = (m0 * a + m1 * b + m2 * c + m3) >> 16. The last
// column holds the offset and the half that rounds to nearest. A grey keeps its value both ways.
struct FixedMatrix {
  int32_t row[3][4] = {};

  FixedMatrix() = default;
  explicit FixedMatrix(const float* matrix);
};

// How the pixels of a stage's format become runs, and back. Cheap to make; made once per kernel
// call.
class RunFormat {
 public:
  explicit RunFormat(const Stage& stage);

  // Whether the format is one that runs know: all but packed 4:2:2.
  bool known() const { return load_ != nullptr; }

  // The run's x, y and count say which pixels. `source` is the picture that the run was loaded
  // from: bits of a pixel that belong to no colour field come from there.
  void load(const QPXRowTable* rows, PixelRun& run) const;
  void store(const PixelRun& run, const QPXRowTable* source, const QPXRowTable* rows) const;

  // The same without conversion to RGB: Y, U and V of a YUV picture arrive as r, g and b, the
  // chroma of a block at each of its pixels. A grey picture takes what is in r. Packed RGB is as
  // above.
  void loadComponents(const QPXRowTable* rows, PixelRun& run) const { load_(*this, rows, run); }
  void storeComponents(const PixelRun& run, const QPXRowTable* source,
                       const QPXRowTable* rows) const {
    store_(*this, run, source, rows);
  }

  // Components of another picture, which perhaps covers no more than the kernel's rectangle: chroma
  // of blocks that begin elsewhere is not read, since this run does not decide it; 128 stands for
  // it.
  void loadCovered(const QPXRowTable* rows, PixelRun& run) const;

  // Where a run from x ends: at a border of chroma blocks, so that no block is shared by two runs.
  int32_t runEnd(int32_t x, int32_t right) const {
    return right - x <= kRunLength ? right : (x + kRunLength) / blockWidth_ * blockWidth_;
  }

  const PixInfo& pix() const { return pix_; }
  const simd::Rows& rows() const { return rows_; }
  const ColorFields& fields() const { return fields_; }

 private:
  using Load = void (*)(const RunFormat&, const QPXRowTable*, PixelRun&);
  using Store = void (*)(const RunFormat&, const PixelRun&, const QPXRowTable*, const QPXRowTable*);

  enum class Model { rgb, grey, yuv };

  void choosePacked();
  void chooseGrey();
  void chooseYuv(const Stage& stage);
  void loadAsRgb(const QPXRowTable* rows, PixelRun& run) const;
  void storeAsYuv(const PixelRun& run, const QPXRowTable* source, const QPXRowTable* rows) const;

  const PixInfo& pix_;
  const simd::Rows& rows_;
  Load load_ = nullptr;
  Store store_ = nullptr;
  int32_t blockWidth_ = 1;
  ColorFields fields_;
  Model model_ = Model::rgb;
  FixedMatrix toRgb_;
  FixedMatrix toYuv_;
};

// Calls body(run) for every run of the rectangle, with x, y and count set.
template <typename Body>
void forEachRun(const RunFormat& format, const MRect& rect, const Body& body) {
  PixelRun run;
  for (run.y = rect.bottom - 1; run.y >= rect.top; --run.y) {
    for (run.x = rect.left; run.x < rect.right; run.x += run.count) {
      run.count = format.runEnd(run.x, rect.right) - run.x;
      body(run);
    }
  }
}

using Recipe = void (*)(const Stage& stage, PixelRun& run);

// Run a recipe on R, G and B, or on the format's own components, over the frame's rectangle. Return
// 0, or 3 for packed 4:2:2.
int32_t runRecipe(const Frame& frame, Recipe recipe);
int32_t runComponentRecipe(const Frame& frame, Recipe recipe);

// The same as kernels.
template <Recipe recipe>
int32_t overRuns(const Frame& frame) {
  return runRecipe(frame, recipe);
}

template <Recipe recipe>
int32_t overComponents(const Frame& frame) {
  return runComponentRecipe(frame, recipe);
}

}  // namespace qpx
