#include "adjust/gauss_window.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "engine/stage.h"
#include "simd/window_rows.h"
#include "toolkit/planar_rows.h"
#include "toolkit/row_ring.h"

namespace qpx {
namespace {

constexpr int32_t kCentre = 192;
constexpr size_t kEntries = 2 * kCentre + 1;

// The usual deviation for a window of this radius: it ends where less than a hundredth of the bell
// is left.
double deviationOf(int32_t radius) { return 0.3 * (radius - 1) + 0.8; }

// What is rounded is the sum of all weights from the outermost inwards, so that errors do not add
// up and the whole is 2^15.
void fillWeights(int32_t* centre, int32_t radius) {
  const double deviation = deviationOf(radius);
  const auto bell = [deviation](int32_t k) {
    return std::exp(-0.5 * k * k / (deviation * deviation));
  };
  double total = 1.0;
  for (int32_t k = 1; k <= radius; ++k) total += 2.0 * bell(k);
  constexpr int32_t kWhole = 1 << simd::kWindowWeightBits;
  double tail = 0.0;
  int32_t given = 0;
  for (int32_t k = radius; k > 0; --k) {
    tail += bell(k);
    const int32_t rounded = static_cast<int32_t>(tail / total * kWhole + 0.5);
    centre[k] = centre[-k] = rounded - given;
    given = rounded;
  }
  centre[0] = kWhole - 2 * given;
}

size_t sizeOf(int32_t count) { return static_cast<size_t>(count); }

// One block holds the ring of rows blurred along and, behind it, a row to read, a row to write and
// its alpha.
class Blur {
 public:
  static bool bytesFor(int32_t columns, int32_t radius, size_t* bytes) {
    const size_t width = sizeOf(columns), window = 2 * sizeOf(radius) + 1;
    if (!RowRing::bytesFor(width * kPlanes, window + 4, bytes)) return false;
    *bytes += window * kPlanes;
    return true;
  }

  Blur(const Frame& frame, const BlurJob& job, RingHead* head)
      : frame_(frame),
        job_(job),
        columns_(frame.rect.right - frame.rect.left),
        lastRow_(std::abs(frame.stage.inHeight) - 1),
        rows_(simd::windowRows()),
        ring_(head, sizeOf(columns_) * kPlanes, 2 * job.radius + 1),
        behindRing_(reinterpret_cast<uint8_t*>(head + 1) +
                    sizeOf(columns_) * kPlanes * (2 * sizeOf(job.radius) + 1)),
        padded_(planesOf(behindRing_, columns_ + 2 * job.radius)),
        result_(planesOf(padded_.plane[2] + columns_ + 2 * job.radius, columns_)),
        format_(frame.stage, result_.plane[2] + columns_) {
    const int32_t* centre = reinterpret_cast<const int32_t*>(frame.stage.lut) + kCentre;
    for (int32_t k = 0; k <= job.radius; ++k) weights_[k] = static_cast<int16_t>(centre[k]);
  }

  void run() {
    for (int32_t y = frame_.rect.top; y < frame_.rect.bottom; ++y) makeRow(y);
  }

 private:
  static PlanarRow planesOf(uint8_t* block, ptrdiff_t columns) {
    return {{block, block + columns, block + 2 * columns}};
  }

  void makeRow(int32_t y) {
    const int32_t radius = job_.radius;
    ring_.hold(std::max(y - radius, 0), std::min(y + radius, lastRow_),
               [this](int32_t row, uint8_t* to) { blurAlong(row, planesOf(to, columns_)); });
    for (int p = 0; p < kPlanes; ++p) blurDown(y, p);
    if (job_.finish != nullptr) finishRow(y);
    format_.store(result_, frame_.in[0][y], frame_.out[0][y], frame_.rect.left, frame_.rect.right);
  }

  // Neighbours along a row are rows that begin a sample later.
  void blurAlong(int32_t y, const PlanarRow& to) {
    format_.load(frame_.in[0][y], frame_.rect.left, frame_.rect.right, job_.radius, padded_);
    const uint8_t* taps[2 * kMaxGaussRadius + 1];
    for (int p = 0; p < kPlanes; ++p) {
      for (int32_t k = 0; k <= 2 * job_.radius; ++k) taps[k] = padded_.plane[p] + k;
      weigh(taps, to.plane[p]);
    }
  }

  void blurDown(int32_t y, int plane) {
    const uint8_t* taps[2 * kMaxGaussRadius + 1];
    for (int32_t k = 0; k <= 2 * job_.radius; ++k) {
      const int32_t row = std::clamp(y - job_.radius + k, 0, lastRow_);
      taps[k] = planesOf(ring_.row(row), columns_).plane[plane];
    }
    weigh(taps, result_.plane[plane]);
  }

  void weigh(const uint8_t* const* taps, uint8_t* to) const {
    if (job_.radius == 0) {
      std::memcpy(to, taps[0], sizeOf(columns_));
    } else {
      rows_.weighRows(taps, weights_, job_.radius, to, columns_);
    }
  }

  void finishRow(int32_t y) {
    format_.load(frame_.in[0][y], frame_.rect.left, frame_.rect.right, 0, padded_);
    for (int p = 0; p < kPlanes; ++p) {
      job_.finish(job_.table, padded_.plane[p], result_.plane[p], columns_);
    }
  }

  const Frame& frame_;
  const BlurJob& job_;
  int32_t columns_;
  int32_t lastRow_;
  const simd::WindowRows& rows_;
  RowRing ring_;
  uint8_t* behindRing_;
  PlanarRow padded_;
  PlanarRow result_;
  PlanarFormat format_;
  int16_t weights_[kMaxGaussRadius + 1];
};

int32_t tabulateGauss(Stage& stage, int32_t radius) {
  constexpr size_t kBytes = kEntries * sizeof(int32_t);
  auto* weights = static_cast<int32_t*>(MMemAlloc(nullptr, kBytes));
  if (weights == nullptr) return QPX_NO_MEMORY;
  MMemSet(weights, 0, kBytes);
  fillWeights(weights + kCentre, radius);
  stage.lut = reinterpret_cast<uint8_t*>(weights);
  stage.lutSize = kBytes;
  stage.lutFlags = QPX_LUT_OTHER_SHAPE;
  return QPX_OK;
}

}  // namespace

int32_t setUpBlur(Stage& stage, int32_t radius) {
  size_t bytes = 0;
  if (!Blur::bytesFor(stage.inWidth, radius, &bytes)) return QPX_NO_MEMORY;
  const int32_t result = tabulateGauss(stage, radius);
  return result == QPX_OK ? reserveRing(stage, bytes) : result;
}

int32_t blurFrame(const Frame& frame, const BlurJob& job) {
  size_t bytes = 0;
  if (!Blur::bytesFor(frame.rect.right - frame.rect.left, job.radius, &bytes)) return QPX_NO_MEMORY;
  return withRing(frame.stage, bytes, job.kept,
                  [&](RingHead* head) { Blur(frame, job, head).run(); });
}

}  // namespace qpx
