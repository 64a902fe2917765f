#include <algorithm>

#include "convert/format_decoder.h"
#include "convert/slow_path.h"
#include "convert/tables.h"

namespace qpx::convert {
namespace {

struct Sums {
  uint32_t channel[3];
};

// One pixel through the tables from YUV to RGB.
class YuvToRgb {
 public:
  explicit YuvToRgb(const ConvRecord& record)
      : y_(static_cast<const uint32_t*>(record.tables) + record.yIndex),
        u_(static_cast<const uint32_t*>(record.tables) + record.uIndex),
        v_(static_cast<const uint32_t*>(record.tables) + record.vIndex),
        bias_{channelBias(record.dstBitsR, record.dstPlane.bitsPerPixel),
              channelBias(record.dstBitsG, record.dstPlane.bitsPerPixel),
              channelBias(record.dstBitsB, record.dstPlane.bitsPerPixel)} {}

  Sums sums(const PixelRun& run, int32_t i) const {
    const uint32_t y = y_[run.sample[0][i]], u = u_[run.sample[1][i]], v = v_[run.sample[2][i]];
    return {{y + v, y + ((u + v) << 16), y + u}};
  }
  int32_t value(const Sums& sums, int32_t channel) const {
    return channelValue(sums.channel[channel], bias_[channel]);
  }

 private:
  const uint32_t* y_;
  const uint32_t* u_;
  const uint32_t* v_;
  uint32_t bias_[3];
};

uint8_t clamped(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

void yuvToRgb(const ConvRecord& record, Carries*, PixelRun* run) {
  const YuvToRgb tables(record);
  for (int32_t i = 0; i < run->count; ++i) {
    const Sums sums = tables.sums(*run, i);
    for (int32_t c = 0; c < 3; ++c) run->sample[c][i] = clamped(tables.value(sums, c));
  }
}

void yuvToRgbDithered(const ConvRecord& record, Carries* carries, PixelRun* run) {
  const YuvToRgb tables(record);
  for (int32_t i = 0; i < run->count; ++i) {
    const Sums sums = tables.sums(*run, i);
    for (int32_t c = 0; c < 3; ++c) {
      const int32_t value = tables.value(sums, c) + carries->carry[c];
      carries->carry[c] = value & carries->mask[c];
      run->sample[c][i] = clamped(value);
    }
  }
}

void rgbToYuv(const ConvRecord& record, Carries*, PixelRun* run) {
  const auto* const t = static_cast<const int32_t*>(record.tables);
  for (int32_t i = 0; i < run->count; ++i) {
    const int32_t r = run->sample[0][i], g = run->sample[1][i], b = run->sample[2][i];
    const int32_t y = t[kRedToY + r] + t[kGreenToY + g] + t[kBlueToY + b];
    const int32_t u = t[kRedToU + r] + t[kGreenToU + g] + t[kBlueToU + b];
    const int32_t v = t[kRedToV + r] + t[kGreenToV + g] + t[kBlueToV + b];
    run->sample[0][i] = static_cast<uint8_t>(y >> 16);
    run->sample[1][i] = static_cast<uint8_t>(u >> 16);
    run->sample[2][i] = static_cast<uint8_t>(v >> 16);
  }
}

void throughLut(const ConvRecord& record, Carries*, PixelRun* run) {
  const auto* const luma = static_cast<const uint8_t*>(record.tables);
  const uint8_t* const chroma = luma + kChromaLut;
  for (int32_t i = 0; i < run->count; ++i) {
    run->sample[0][i] = luma[run->sample[0][i]];
    run->sample[1][i] = chroma[run->sample[1][i]];
    run->sample[2][i] = chroma[run->sample[2][i]];
  }
}

void keep(const ConvRecord&, Carries*, PixelRun*) {}

}  // namespace

// A carry starts at half of what the narrow channel loses.
Carries startCarries(const ConvRecord& record) {
  Carries carries = {};
  const int32_t bits[3] = {record.dstBitsR, record.dstBitsG, record.dstBitsB};
  for (int32_t c = 0; c < 3; ++c) {
    carries.mask[c] = (1 << (8 - bits[c])) - 1;
    carries.carry[c] = carries.mask[c] >> 1;
  }
  return carries;
}

ConvertRun convertFor(const ConvRecord& record) {
  switch (record.convKind) {
    case kYuvToYuv:
      return record.useLut != 0 ? throughLut : keep;
    case kYuvToRgb:
      return record.dither != 0 ? yuvToRgbDithered : yuvToRgb;
    case kRgbToYuv:
      return rgbToYuv;
    default:
      return keep;
  }
}

}  // namespace qpx::convert
