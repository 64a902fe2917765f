#include "filters/curves/tone_runs.h"

#include <algorithm>

#include "simd/tone_rows.h"

namespace qpx {
namespace {

// Layouts whose chroma has half the width. A run that begins within a pair has a lead of one pixel;
// behind it, pairs are whole but for the last.
struct Lead {
  int32_t pixels;
  int32_t rest;

  explicit Lead(const PixelRun& run) : pixels(run.x % 2), rest(run.count - run.x % 2) {}

  bool endsWithinPair() const { return rest % 2 != 0; }
};

// NV21 and NV12.
class SemiPlanarRuns {
 public:
  explicit SemiPlanarRuns(const Stage& stage)
      : vFirst_(stage.pix.family == kFamilyNv21), plane_(vFirst_ ? 2 : 1) {}

  void load(const QPXRowTable* rows, PixelRun& run) const {
    const Lead lead(run);
    const uint8_t* y = rows[0][run.y] + run.x;
    const uint8_t* pairs = rows[plane_][run.y] + ptrdiff_t{run.x / 2} * 2;
    if (lead.pixels > 0) {
      rows_.pairsToRgb(y, pairs, vFirst_, run.r, run.g, run.b, 1);
      pairs += 2;
    }
    const int32_t at = lead.pixels;
    rows_.pairsToRgb(y + at, pairs, vFirst_, run.r + at, run.g + at, run.b + at, lead.rest);
  }

  void store(const PixelRun& run, const QPXRowTable* rows) const {
    rows_.rgbToLuma(run.r, run.g, run.b, rows[0][run.y] + run.x, run.count);
    if (run.y % 2 != 0) return;
    const Lead lead(run);
    const int32_t at = lead.pixels;
    rows_.rgbToPairs(run.r + at, run.g + at, run.b + at, rows[plane_][run.y] + run.x + at, vFirst_,
                     lead.rest);
  }

 private:
  const simd::ToneRows& rows_ = simd::toneRows();
  bool vFirst_;
  int plane_;
};

// Planes of their own for U and V, of any height.
class PlanarRuns {
 public:
  explicit PlanarRuns(const Stage& stage) : grid_(stage.pix) {}

  void load(const QPXRowTable* rows, PixelRun& run) const {
    const Lead lead(run);
    const uint8_t* y = rows[0][run.y] + run.x;
    const uint8_t* u = chromaRow(rows[1], run.y, grid_.down) + run.x / 2;
    const uint8_t* v = chromaRow(rows[2], run.y, grid_.down) + run.x / 2;
    if (lead.pixels > 0) rows_.halvesToRgb(y, u++, v++, run.r, run.g, run.b, 1);
    const int32_t at = lead.pixels;
    rows_.halvesToRgb(y + at, u, v, run.r + at, run.g + at, run.b + at, lead.rest);
  }

  void store(const PixelRun& run, const QPXRowTable* rows) const {
    rows_.rgbToLuma(run.r, run.g, run.b, rows[0][run.y] + run.x, run.count);
    if (!grid_.startsRow(run.y)) return;
    const Lead lead(run);
    const int32_t at = lead.pixels;
    const int32_t block = grid_.blockFrom(run.x);
    rows_.rgbToHalves(run.r + at, run.g + at, run.b + at,
                      chromaRow(rows[1], run.y, grid_.down) + block,
                      chromaRow(rows[2], run.y, grid_.down) + block, lead.rest);
  }

 private:
  const simd::ToneRows& rows_ = simd::toneRows();
  ChromaGrid grid_;
};

// Packed 4:2:2: each pixel is its luma and a sample of its pair's chroma, U behind the first luma
// and V behind the second.
class PackedRuns {
 public:
  void load(const QPXRowTable* rows, PixelRun& run) const {
    const Lead lead(run);
    const uint8_t* from = rows[0][run.y] + ptrdiff_t{run.x} * 2;
    alignas(kRunAlignment) uint8_t y[kRunLength], chroma[kRunLength + 1];
    bytes_.deinterleave2(from, run.count, y, chroma);
    if (lead.endsWithinPair()) chroma[run.count] = from[2 * run.count + 1];
    if (lead.pixels > 0) {
      const uint8_t uv[2] = {from[-1], chroma[0]};
      rows_.pairsToRgb(y, uv, false, run.r, run.g, run.b, 1);
    }
    const int32_t at = lead.pixels;
    rows_.pairsToRgb(y + at, chroma + at, false, run.r + at, run.g + at, run.b + at, lead.rest);
  }

  // The chroma of a pair belongs to its first pixel.
  void store(const PixelRun& run, const QPXRowTable* rows) const {
    const Lead lead(run);
    const int32_t at = lead.pixels;
    uint8_t* to = rows[0][run.y] + ptrdiff_t{run.x} * 2;
    alignas(kRunAlignment) uint8_t y[kRunLength], pairs[kRunLength + 1];
    rows_.rgbToLuma(run.r, run.g, run.b, y, run.count);
    rows_.rgbToPairs(run.r + at, run.g + at, run.b + at, pairs, false, lead.rest);
    if (at > 0) to[0] = y[0];
    bytes_.interleave2(y + at, pairs, lead.rest, to + 2 * at);
    if (lead.endsWithinPair()) to[2 * run.count + 1] = pairs[lead.rest];
  }

 private:
  const simd::Rows& bytes_ = simd::rows();
  const simd::ToneRows& rows_ = simd::toneRows();
};

// Rows from the bottom up, so that input and output may be one picture: chroma is written with the
// first row of its block, behind all others that read it. Runs end with a pair.
template <typename Layout>
int32_t runHalved(const Frame& frame, RunBody body, const Layout& layout, int32_t right) {
  PixelRun run;
  for (run.y = frame.rect.bottom - 1; run.y >= frame.rect.top; --run.y) {
    for (run.x = frame.rect.left; run.x < right; run.x += run.count) {
      run.count = std::min(right - run.x, kRunLength - run.x % 2);
      layout.load(frame.in, run);
      body(run);
      layout.store(run, frame.out);
    }
  }
  return QPX_OK;
}

// The last pair of a packed picture of odd width is whole in memory: its second pixel is made too.
int32_t packedRight(const Frame& frame) {
  const int32_t right = frame.rect.right;
  return right == frame.stage.inWidth && right % 2 != 0 ? right + 1 : right;
}

// simd::ToneRows' conversions in sixteen fractional bits, for chroma of any other width.
constexpr int32_t kToSixteenBits = 64;

constexpr int32_t kToRgb[3][4] = {{1024, 0, 1436, 512 - 128 * 1436},
                                  {1024, -352, -731, 512 + 128 * (352 + 731)},
                                  {1024, 1815, 0, 512 - 128 * 1815}};
constexpr int32_t kToYuv[3][4] = {
    {306, 601, 117, 0}, {-173, -339, 512, 128 * 1024}, {512, -428, -83, 128 * 1024}};

void convert(const int32_t (&matrix)[3][4], const PixelRun& from, PixelRun& to) {
  const simd::Rows& rows = simd::rows();
  uint8_t* const channels[3] = {to.r, to.g, to.b};
  for (int c = 0; c < 3; ++c) {
    int32_t weights[4];
    for (int k = 0; k < 4; ++k) weights[k] = matrix[c][k] * kToSixteenBits;
    rows.weightedSum(from.r, from.g, from.b, channels[c], from.count, weights);
  }
  to.x = from.x;
  to.y = from.y;
  to.count = from.count;
}

int32_t runPlanar(const Frame& frame, RunBody body) {
  const RunFormat format(frame.stage);
  PixelRun colors;
  forEachRun(format, frame.rect, [&](PixelRun& run) {
    format.loadComponents(frame.in, run);
    convert(kToRgb, run, colors);
    body(colors);
    convert(kToYuv, colors, run);
    format.storeComponents(run, frame.in, frame.out);
  });
  return QPX_OK;
}

int32_t runYuv(const Frame& frame, RunBody body) {
  const Stage& stage = frame.stage;
  const int32_t right = frame.rect.right;
  if (isSemiPlanar(stage.pix)) return runHalved(frame, body, SemiPlanarRuns(stage), right);
  if (stage.pix.xSampling[1] == 2) return runHalved(frame, body, PlanarRuns(stage), right);
  return runPlanar(frame, body);
}

int32_t runPacked(const Frame& frame, RunBody body) {
  const RunFormat format(frame.stage);
  if (!format.known()) return QPX_UNSUPPORTED;
  forEachRun(format, frame.rect, [&](PixelRun& run) {
    format.load(frame.in, run);
    body(run);
    format.store(run, frame.in, frame.out);
  });
  return QPX_OK;
}

}  // namespace

int32_t runBody(const Frame& frame, RunBody body) {
  const Stage& stage = frame.stage;
  if (stage.pix.format == QPX_FORMAT_YUYV) {
    return runHalved(frame, body, PackedRuns(), packedRight(frame));
  }
  if (stage.pix.family == kFamilyYuyv) return QPX_UNSUPPORTED;
  return isYuv(stage.pix) ? runYuv(frame, body) : runPacked(frame, body);
}

int32_t runLook(const Frame& frame, const Look& look) {
  const Stage& stage = frame.stage;
  if (look.ready != nullptr && !look.ready(stage)) return QPX_BAD_PARAM;
  if (look.applies != nullptr && !look.applies(stage)) return QPX_OK;
  auto recipe = [&](PixelRun& run) { look.recipe(stage, run); };
  return runBody(frame, RunBody(recipe));
}

}  // namespace qpx
