// A Gaussian by recursion along rows, then along columns, after Young and van Vliet: the cost does
// not depend on the radius. Single precision throughout and in this order of operations, because
// results are cut to bytes.
#include "toolkit/feather.h"

#include <qpx/kernels.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "simd/blend_math.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

struct Recursion {
  float b0, b1, b2, b3;
  float gain;  // of the new sample

  explicit Recursion(int32_t radius);
};

// Deviation from the radius, then the parameter q of the published fit from the deviation. The
// fixed set is for deviations below one half, of negative radii.
Recursion::Recursion(int32_t radius) {
  const float sigma = static_cast<float>(radius) * 50.0f / 100.0f + 1.5f;
  if (!(sigma >= 0.5f)) {
    b0 = 1.8782136f;
    b1 = 0.32005137f;
    b2 = -0.020726161f;
    b3 = 0.0006382844f;
    gain = 0.8402932f;
    return;
  }
  const float q = sigma >= 2.5f ? 0.98711f * sigma - 0.9633f
                                : 3.97156f - 4.14554f * std::sqrt(1.0f - 0.26891f * sigma);
  const float q2 = q * q;
  const float q3 = q2 * q;
  b0 = 1.57825f + 2.44413f * q + 1.4281f * q2 + 0.422205f * q3;
  b1 = 2.44413f * q + 2.85619f * q2 + 1.26661f * q3;
  b2 = -(1.4281f * q2 + 1.26661f * q3);
  b3 = 0.422205f * q3;
  gain = 1.0f - (b1 + b2 + b3) / b0;
}

// Lines are worked several at a time, sample by sample, so that their recursions run beside each
// other.
constexpr size_t kLanes = 16;

struct Samples {
  float lane[kLanes];
};

// The last three results of a recursion, nearest first.
struct History {
  Samples w1, w2, w3;

  explicit History(const Samples& seed) : w1(seed), w2(seed), w3(seed) {}

  const Samples& step(const Recursion& r, const Samples& x) {
    Samples w;
    for (size_t i = 0; i < kLanes; ++i) {
      const float past = r.b1 * w1.lane[i] + r.b2 * w2.lane[i] + r.b3 * w3.lane[i];
      w.lane[i] = r.gain * x.lane[i] + past / r.b0;
    }
    w3 = w2;
    w2 = w1;
    w1 = w;
    return w1;
  }
};

// Buffers for kLanes lines of one length.
struct Lines {
  static constexpr size_t kSeeds = 3;

  static bool bytesFor(size_t length, size_t* bytes) {
    if (length > SIZE_MAX / 4 / sizeof(Samples)) return false;
    *bytes = (3 * length + kSeeds) * sizeof(Samples);
    return true;
  }

  Lines(uint8_t* block, size_t count)
      : length(count),
        line(reinterpret_cast<Samples*>(block)),
        first(line + length),
        result(first + length + kSeeds) {}

  size_t length;
  Samples* line;    // what is smoothed
  Samples* first;   // seeds and results of a first pass
  Samples* result;  // what it became

  void smooth(const Recursion& recursion);
};

// Each chain runs there and back. The way back reads the way there three entries late, seeds
// included, so that a chain is off by three samples; the mirrored chain is off by three the other
// way, and in their mean both cancel.
void Lines::smooth(const Recursion& recursion) {
  std::fill_n(first, kSeeds, line[0]);
  History there(line[0]);
  for (size_t i = 0; i < length; ++i) first[i + kSeeds] = there.step(recursion, line[i]);
  History back(there.w1);
  for (size_t i = length; i-- > 0;) result[i] = back.step(recursion, first[i]);

  // The mirrored chain, its array laid out backwards.
  std::fill_n(first + length, kSeeds, line[length - 1]);
  History mirroredThere(line[length - 1]);
  for (size_t i = length; i-- > 0;) first[i] = mirroredThere.step(recursion, line[i]);
  History mirroredBack(mirroredThere.w1);
  for (size_t i = 0; i < length; ++i) {
    const Samples& other = mirroredBack.step(recursion, first[i + kSeeds]);
    for (size_t k = 0; k < kLanes; ++k) {
      result[i].lane[k] = 0.5f * (result[i].lane[k] + other.lane[k]);
    }
  }
}

// The stage's float plane, with its size in bytes before it.
struct PlaneHeader {
  size_t bytes;
  size_t unused;
};

float* floatPlane(Stage& stage, size_t samples) {
  if (samples > (SIZE_MAX - sizeof(PlaneHeader)) / sizeof(float)) return nullptr;
  const size_t bytes = samples * sizeof(float);
  auto* header = reinterpret_cast<PlaneHeader*>(stage.scratch2);
  if (header == nullptr || header->bytes < bytes) {
    auto* block = static_cast<uint8_t*>(MMemAlloc(nullptr, sizeof(PlaneHeader) + bytes));
    if (block == nullptr) return nullptr;
    MMemFree(nullptr, stage.scratch2);
    stage.scratch2 = block;
    header = reinterpret_cast<PlaneHeader*>(block);
    header->bytes = bytes;
  }
  return reinterpret_cast<float*>(header + 1);
}

struct Size {
  size_t width;
  size_t height;
};

// Lines beyond the last are left as they were: their results are not read.
void smoothRows(const Frame& frame, const Recursion& recursion, const Size& size, Lines& lines,
                float* plane) {
  for (size_t y = 0; y < size.height; y += kLanes) {
    const size_t used = std::min(kLanes, size.height - y);
    for (size_t k = 0; k < used; ++k) {
      const uint8_t* row =
          frame.in[0][frame.rect.top + static_cast<int32_t>(y + k)] + frame.rect.left;
      for (size_t x = 0; x < size.width; ++x) lines.line[x].lane[k] = row[x];
    }
    lines.smooth(recursion);
    for (size_t k = 0; k < used; ++k) {
      float* to = plane + (y + k) * size.width;
      for (size_t x = 0; x < size.width; ++x) to[x] = lines.result[x].lane[k];
    }
  }
}

void smoothColumns(const Frame& frame, const Recursion& recursion, const Size& size, Lines& lines,
                   const float* plane) {
  for (size_t x = 0; x < size.width; x += kLanes) {
    const size_t used = std::min(kLanes, size.width - x);
    for (size_t y = 0; y < size.height; ++y) {
      std::memcpy(lines.line[y].lane, plane + y * size.width + x, used * sizeof(float));
    }
    lines.smooth(recursion);
    for (size_t y = 0; y < size.height; ++y) {
      uint8_t* to = frame.out[0][frame.rect.top + static_cast<int32_t>(y)] + frame.rect.left;
      for (size_t k = 0; k < used; ++k) to[x + k] = truncateClamped(lines.result[y].lane[k]);
    }
  }
}

// An empty mask changes nothing, which hosts read off the rectangle. The place that is looked at is
// a byte offset of width * height into the plane, a quarter of the way down and seldom on a whole
// float; a plane of one sample does not reach it.
void reportEmptyMask(const Frame& frame, const Size& size, const float* plane) {
  const size_t samples = size.width * size.height;
  if (frame.rect.top != 0 || samples < 2) return;
  float seen;
  std::memcpy(&seen, reinterpret_cast<const uint8_t*>(plane) + samples, sizeof seen);
  if (seen != 0.0f) return;
  Stage& stage = frame.stage;
  stage.lastOutLeft = stage.lastOutTop = stage.lastOutRight = stage.lastOutBottom = 0;
}

void copyRows(const Frame& frame, size_t width) {
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    std::memmove(frame.out[0][y] + frame.rect.left, frame.in[0][y] + frame.rect.left, width);
  }
}

}  // namespace

int32_t featherMask(const Frame& frame, int32_t radius) {
  if (frame.stage.pix.family != kFamilyGrey) return QPX_BAD_PARAM;
  const MRect& rect = frame.rect;
  const Size size = {static_cast<size_t>(rect.right - rect.left),
                     static_cast<size_t>(rect.bottom - rect.top)};
  if (size.width == 0 || size.height == 0) return QPX_OK;
  if (radius == 0) {
    copyRows(frame, size.width);
    return QPX_OK;
  }
  size_t lineBytes = 0;
  if (size.width > SIZE_MAX / size.height ||
      !Lines::bytesFor(std::max(size.width, size.height), &lineBytes)) {
    return QPX_NO_MEMORY;
  }
  const Scratch buffers(lineBytes);
  if (!buffers) return QPX_NO_MEMORY;
  float* plane = floatPlane(frame.stage, size.width * size.height);
  if (plane == nullptr) return QPX_NO_MEMORY;

  MMemSet(buffers.get(), 0, lineBytes);
  const Recursion recursion(radius);
  Lines rows(buffers.get(), size.width);
  smoothRows(frame, recursion, size, rows, plane);
  Lines columns(buffers.get(), size.height);
  smoothColumns(frame, recursion, size, columns, plane);
  reportEmptyMask(frame, size, plane);
  return QPX_OK;
}

}  // namespace qpx

using namespace qpx;

int32_t Feather(QPXStage* stage, const MRect* rect, QPXRowTable* outRows, QPXRowTable* inRows) {
  return callOnFrame(stage, rect, outRows, inRows, [](const Frame& frame) {
    return featherMask(frame, record<QPXFeatherParam>(frame.stage).radius);
  });
}
