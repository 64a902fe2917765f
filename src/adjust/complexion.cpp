// Skin smoothed by a bilateral mean: C. Tomasi and R. Manduchi, "Bilateral filtering for gray and
// color images", ICCV 1998, with Tukey's biweight for the distance of colours (F. Durand and
// J. Dorsey, "Fast bilateral filtering for the display of high-dynamic-range images", SIGGRAPH
// 2002), which ends: what is no skin at all, such as lashes and hair, does not bleed into it.
#include <qpx/kernels_adjust.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "adjust/skin_effects.h"
#include "adjust/skin_map.h"
#include "simd/complexion_rows.h"
#include "simd/tone_rows.h"
#include "toolkit/color_field.h"
#include "toolkit/curve.h"
#include "toolkit/kernel_call.h"
#include "toolkit/planar_rows.h"
#include "toolkit/row_ring.h"

namespace qpx {
namespace {

constexpr int32_t kMaxSize = 63;
constexpr int32_t kMaxSide = kMaxSize;
constexpr int32_t kRowPlanes = kPlanes + 1;  // colours, and whether they are skin

// A slight lift of the middle, with black and white kept.
constexpr CurvePoint kLift[] = {{0, 0}, {64, 68}, {128, 135}, {192, 197}, {255, 255}};

// What setup leaves in the stage's block.
struct ComplexionTables {
  ToneTable tone;
  SkinMap skin;
  SkinSpans spans;
  uint16_t near[kMaxSide * kMaxSide];  // as many as the window has places
};

size_t sizeOf(int32_t count) { return static_cast<size_t>(count); }

int32_t reachOf(const Stage& stage) {
  return std::max(record<QPXComplexionParam>(stage).radiusSize >> 1, 1);
}

const ComplexionTables& tablesOf(const Stage& stage) {
  return *reinterpret_cast<const ComplexionTables*>(stage.lut);
}

// A bell that has fallen to a seventh at the window's sides.
void fillNear(uint16_t* near, int32_t reach) {
  const double deviation = (reach + 1) / 2.0;
  for (int32_t v = -reach; v <= reach; ++v) {
    for (int32_t u = -reach; u <= reach; ++u) {
      const double bell = std::exp(-0.5 * (u * u + v * v) / (deviation * deviation));
      *near++ = static_cast<uint16_t>(65535.0 * bell + 0.5);
    }
  }
}

// A row's columns begin ... begin + count - 1 of which some lie outside the picture.
struct Span {
  int32_t begin;
  int32_t count;
};

struct SkinRow {
  PlanarRow colors;
  uint8_t* skin;

  SkinRow(uint8_t* block, ptrdiff_t columns)
      : colors{{block, block + columns, block + 2 * columns}}, skin(block + 3 * columns) {}
};

// Luma and chroma in full-range BT.601, ten fractional bits of the sixteen that sums have.
constexpr int32_t kLumaRow[4] = {306 << 6, 601 << 6, 117 << 6, 0};
constexpr int32_t kCbRow[4] = {-(173 << 6), -(339 << 6), 512 << 6, 128 << 16};
constexpr int32_t kCrRow[4] = {512 << 6, -(428 << 6), -(83 << 6), 128 << 16};

// How rows of each layout are read and written. A loader fills a span's columns in the picture and,
// beyond them, whatever is safe to read; a storer writes the frame's columns from the first on.
// `spare` is what a layout needs beside them, three rows of a span and a pair more.
class RgbLayout {
 public:
  RgbLayout(const Frame& frame, const Span& span, uint8_t* spare)
      : frame_(frame),
        format_(frame.stage, spare),
        luma_(spare),
        cb_(luma_ + span.count),
        cr_(cb_ + span.count),
        reversed_(ColorFields(frame.stage.pix.mask, frame.stage.pix.bytesPerSample[0]).bytesBgr()) {
  }

  static int32_t right(const Frame& frame) { return frame.rect.right; }

  void load(int32_t y, const Span& span, const SkinRow& row) const {
    format_.load(frame_.in[0][y], span.begin, span.begin + span.count, 0, row.colors);
    const auto& plane = row.colors.plane;
    const uint8_t *r = plane[reversed_ ? 2 : 0], *g = plane[1], *b = plane[reversed_ ? 0 : 2];
    rows_.weightedSum(r, g, b, luma_, span.count, kLumaRow);
    rows_.weightedSum(r, g, b, cb_, span.count, kCbRow);
    rows_.weightedSum(r, g, b, cr_, span.count, kCrRow);
    markSkin(span.count, row.skin);
  }

  void store(int32_t y, const PlanarRow& colors) const {
    format_.store(colors, frame_.in[0][y], frame_.out[0][y], frame_.rect.left, frame_.rect.right);
  }

 private:
  // Compilers turn this into vector code.
  void markSkin(int32_t count, uint8_t* skin) const {
    const SkinSpans& spans = tablesOf(frame_.stage).spans;
    constexpr int32_t kPart = 512;
    uint8_t lowest[kPart], highest[kPart];
    for (int32_t done = 0; done < count; done += kPart) {
      const int32_t part = std::min(kPart, count - done);
      rows_.lookup(cb_ + done, lowest, part, spans.lowest.data());
      rows_.lookup(cb_ + done, highest, part, spans.highest.data());
      const uint8_t *luma = luma_ + done, *cr = cr_ + done;
      uint8_t* to = skin + done;
      for (int32_t i = 0; i < part; ++i) {
        const uint8_t inside = cr[i] >= lowest[i] && cr[i] <= highest[i] ? 255 : 0;
        to[i] = luma[i] >= kDarkestSkin ? inside : 0;
      }
    }
  }

  const Frame& frame_;
  const simd::Rows& rows_ = simd::rows();
  PlanarFormat format_;
  uint8_t *luma_, *cb_, *cr_;
  bool reversed_;
};

// The part of a span that lies in the picture. Spans begin with a pair of pixels.
Span inPicture(const Span& span, int32_t width) {
  const int32_t first = std::max(span.begin, 0);
  return {first, std::min(span.begin + span.count, width) - first};
}

void markSkin(const Stage& stage, const uint8_t* luma, const uint8_t* pairs, bool vFirst,
              uint8_t* skin, int32_t count) {
  const SkinMap& map = tablesOf(stage).skin;
  for (int32_t i = 0; i < count; ++i) {
    const uint8_t* pair = pairs + i / 2 * 2;
    skin[i] = isSkin(map, luma[i], pair[vFirst ? 1 : 0], pair[vFirst ? 0 : 1]) ? 255 : 0;
  }
}

void clearRow(const SkinRow& row, int32_t columns) {
  std::memset(row.colors.plane[0], 0, sizeOf(columns) * kRowPlanes);
}

class Nv21Layout {
 public:
  Nv21Layout(const Frame& frame, const Span&, uint8_t*) : frame_(frame) {}

  static int32_t right(const Frame& frame) { return frame.rect.right; }

  void load(int32_t y, const Span& span, const SkinRow& row) const {
    const Span part = inPicture(span, frame_.stage.inWidth);
    const uint8_t* luma = frame_.in[0][y] + part.begin;
    const uint8_t* pairs = frame_.in[2][y] + part.begin;
    const ptrdiff_t at = part.begin - span.begin;
    const auto& [r, g, b] = row.colors.from(at).plane;
    clearRow(row, span.count);
    rows_.pairsToRgb(luma, pairs, true, r, g, b, part.count);
    markSkin(frame_.stage, luma, pairs, true, row.skin + at, part.count);
  }

  // Chroma is that of a block's top left pixel.
  void store(int32_t y, const PlanarRow& colors) const {
    const MRect& rect = frame_.rect;
    const auto& [r, g, b] = colors.plane;
    const ptrdiff_t count = rect.right - rect.left, lead = rect.left % 2;
    rows_.rgbToLuma(r, g, b, frame_.out[0][y] + rect.left, count);
    if (y % 2 != 0) return;
    rows_.rgbToPairs(r + lead, g + lead, b + lead, frame_.out[2][y] + rect.left + lead, true,
                     count - lead);
  }

 private:
  const Frame& frame_;
  const simd::ToneRows& rows_ = simd::toneRows();
};

// Of a picture of odd width the last pair is whole in memory: its second pixel is made too.
class YuyvLayout {
 public:
  YuyvLayout(const Frame& frame, const Span& span, uint8_t* spare)
      : frame_(frame), luma_(spare), pairs_(spare + span.count + 2) {}

  static int32_t right(const Frame& frame) {
    const int32_t right = frame.rect.right;
    return right == frame.stage.inWidth ? right + right % 2 : right;
  }

  void load(int32_t y, const Span& span, const SkinRow& row) const {
    const int32_t width = frame_.stage.inWidth;
    const Span part = inPicture(span, width + width % 2);
    const ptrdiff_t at = part.begin - span.begin;
    const auto& [r, g, b] = row.colors.from(at).plane;
    clearRow(row, span.count);
    const int32_t whole = part.count + part.count % 2;
    bytes_.deinterleave2(frame_.in[0][y] + ptrdiff_t{part.begin} * 2, whole, luma_, pairs_);
    rows_.pairsToRgb(luma_, pairs_, false, r, g, b, part.count);
    // The pixel behind the picture has no neighbours that count.
    markSkin(frame_.stage, luma_, pairs_, false, row.skin + at, inPicture(span, width).count);
  }

  // The chroma of a pair belongs to its first pixel.
  void store(int32_t y, const PlanarRow& colors) const {
    const int32_t left = frame_.rect.left;
    const auto& [r, g, b] = colors.plane;
    const ptrdiff_t count = right(frame_) - left, lead = left % 2, rest = count - lead;
    uint8_t* to = frame_.out[0][y] + ptrdiff_t{left} * 2;
    rows_.rgbToLuma(r, g, b, luma_, count);
    rows_.rgbToPairs(r + lead, g + lead, b + lead, pairs_, false, rest);
    if (lead > 0) to[0] = luma_[0];
    bytes_.interleave2(luma_ + lead, pairs_, rest, to + 2 * lead);
    if (rest % 2 != 0) to[2 * count + 1] = pairs_[rest];
  }

 private:
  const Frame& frame_;
  const simd::Rows& bytes_ = simd::rows();
  const simd::ToneRows& rows_ = simd::toneRows();
  uint8_t* luma_;
  uint8_t* pairs_;
};

// One block holds the ring of rows as planes and, behind it, a row to write, which columns count,
// and what a layout needs.
template <typename Layout>
class Complexion {
 public:
  static bool bytesFor(int32_t columns, int32_t reach, size_t* bytes) {
    const uint64_t row = uint64_t{kRowPlanes} * (static_cast<uint64_t>(columns) + widest(reach));
    if (row > SIZE_MAX / 2) return false;
    return RowRing::bytesFor(static_cast<size_t>(row), 2 * sizeOf(reach) + 1 + 2, bytes);
  }

  Complexion(const Frame& frame, RingHead* head)
      : frame_(frame),
        reach_(reachOf(frame.stage)),
        lastRow_(std::abs(frame.stage.inHeight) - 1),
        left_(frame.rect.left),
        columns_(Layout::right(frame) - left_),
        span_(spanOf(left_, columns_, reach_)),
        ring_(head, sizeOf(span_.count) * kRowPlanes, 2 * reach_ + 1),
        result_(reinterpret_cast<uint8_t*>(head + 1) +
                    sizeOf(span_.count) * kRowPlanes * (2 * sizeOf(reach_) + 1),
                span_.count),
        inside_(result_.skin),
        layout_(frame, span_, inside_ + span_.count) {
    for (int32_t i = 0; i < span_.count; ++i) {
      const int32_t x = span_.begin + i;
      inside_[i] = x >= 0 && x < frame.stage.inWidth ? 255 : 0;
    }
  }

  void run() {
    for (int32_t y = frame_.rect.top; y < frame_.rect.bottom; ++y) makeRow(y);
  }

 private:
  // Columns beside those that are made: the window's, those that make pairs whole, and a pair that
  // a layout has room for.
  static uint32_t widest(int32_t reach) { return 2 * static_cast<uint32_t>(reach) + 6; }

  // Begins with a pair.
  static Span spanOf(int32_t left, int32_t columns, int32_t reach) {
    const int32_t begin = (left - reach) & ~1;
    return {begin, left + columns + reach - begin};
  }

  ptrdiff_t at() const { return left_ - span_.begin; }

  // Rows beyond the picture repeat its edge.
  SkinRow sourceRow(int32_t y) const {
    return {ring_.row(std::clamp(y, 0, lastRow_)), span_.count};
  }

  void makeRow(int32_t y) {
    ring_.hold(std::max(y - reach_, 0), std::min(y + reach_, lastRow_),
               [this](int32_t row, uint8_t* to) {
                 layout_.load(row, span_, {to, span_.count});
               });
    smoothRow(y);
    for (uint8_t* plane : result_.colors.plane) {
      simd::rows().lookup(plane, plane, columns_, tablesOf(frame_.stage).tone.data());
    }
    layout_.store(y, result_.colors);
  }

  void smoothRow(int32_t y) {
    const uint8_t* rows[kMaxSide];
    for (int32_t k = 0; k <= 2 * reach_; ++k) {
      rows[k] = sourceRow(y - reach_ + k).colors.plane[0] + at();
    }
    const simd::SkinWindow window = {reach_, rows, span_.count, inside_ + at(),
                                     tablesOf(frame_.stage).near};
    simd::complexionRows().smoothSkin(window, sourceRow(y).skin + at(), result_.colors.plane,
                                      columns_);
  }

  const Frame& frame_;
  int32_t reach_;
  int32_t lastRow_;
  int32_t left_;
  int32_t columns_;
  Span span_;
  RowRing ring_;
  SkinRow result_;
  uint8_t* inside_;
  Layout layout_;
};

template <typename Layout>
int32_t smooth(const Frame& frame, bool kept) {
  size_t bytes = 0;
  const int32_t columns = frame.rect.right - frame.rect.left;
  if (!Complexion<Layout>::bytesFor(columns, reachOf(frame.stage), &bytes)) return QPX_NO_MEMORY;
  return withRing(frame.stage, bytes, kept,
                  [&frame](RingHead* head) { Complexion<Layout>(frame, head).run(); });
}

template <typename Layout>
int32_t callOnLayout(uint32_t formats, QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callOnFrameOf(kComplexion, stage, rect, outRows, inRows, [=](const Frame& frame) {
    if ((formatGroup(frame.stage.pix) & formats) == 0) return int32_t{QPX_OK};
    return smooth<Layout>(frame, false);
  });
}

int32_t makeTables(Stage& stage) {
  const int32_t reach = reachOf(stage), side = 2 * reach + 1;
  const size_t bytes =
      offsetof(ComplexionTables, near) + sizeOf(side) * sizeOf(side) * sizeof(uint16_t);
  Scratch block(bytes);
  if (!block) return QPX_NO_MEMORY;
  auto* tables = reinterpret_cast<ComplexionTables*>(block.get());
  const int32_t result = drawCurve(kLift, tables->tone);
  if (result != QPX_OK) return result;
  fillSkinMap(tables->skin);
  tables->spans = skinSpans(tables->skin);
  fillNear(tables->near, reach);
  stage.lut = block.release();
  stage.lutSize = static_cast<uint32_t>(bytes);
  stage.lutFlags = QPX_LUT_OTHER_SHAPE;
  return QPX_OK;
}

}  // namespace

int32_t setUpComplexion(Stage& stage, QPXBand&) {
  int32_t& size = editRecord<QPXComplexionParam>(stage).radiusSize;
  size = std::clamp(size, 0, kMaxSize);
  size_t bytes = 0;
  if (!Complexion<RgbLayout>::bytesFor(stage.inWidth, reachOf(stage), &bytes)) {
    return QPX_NO_MEMORY;
  }
  const int32_t result = makeTables(stage);
  return result == QPX_OK ? reserveRing(stage, bytes) : result;
}

int32_t complexionMargin(const Stage& stage) { return reachOf(stage); }

int32_t complexionRgb(const Frame& frame) { return smooth<RgbLayout>(frame, true); }
int32_t complexionNv21(const Frame& frame) { return smooth<Nv21Layout>(frame, true); }
int32_t complexionYuyv(const Frame& frame) { return smooth<YuyvLayout>(frame, true); }

}  // namespace qpx

using namespace qpx;

int32_t ComplexionOptimizing_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows) {
  return callOnLayout<RgbLayout>(kTakesRgb, stage, rect, outRows, inRows);
}

int32_t ComplexionOptimizing_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                  QPXRowTable* inRows) {
  return callOnLayout<Nv21Layout>(QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t ComplexionOptimizing_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                  QPXRowTable* inRows) {
  return callOnLayout<YuyvLayout>(QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}
