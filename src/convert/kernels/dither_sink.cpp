#include "convert/kernels/dither_sink.h"

#include <algorithm>

#include "convert/kernels/tables.h"
#include "convert/tables.h"

namespace qpx::convert::fast {

bool DitherSink::open(const Call& call, FormatSet from, FormatSet to) {
  if (call.dstPlanes[0] == nullptr || !source_.open(call, from)) return false;
  if (!source_.isRgb()) tables_ = yuvToRgbOf(*call.record);
  rect_ = call.rect;
  redFirst_ = (to & kInRedFirst) != 0;
  carries_ = {};
  const Stride stride = strideOf(call, 0, 0);
  lane_.open(call.dstPlanes[0], stride, 2, call.record->swapXY != 0);
  lane_.forbidTiles();
  return true;
}

void DitherSink::begin(const Positions& positions, int32_t x, int32_t count, int32_t y) {
  columns_.locate(positions, x, count);
  if (!source_.isRgb()) columns_.chromaOfPixels(source_.chromaShiftX());
  lane_.begin(x - rect_.left, count, y - rect_.top);
}

void DitherSink::row(int32_t index, int32_t, const SourcePair& place) {
  Values values;
  fetch(place, &values);
  uint8_t* const room = lane_.room(index);
  for (int32_t i = 0; i < columns_.count; ++i) ditherPixel(values, i, room);
  lane_.put(index, room);
}

void DitherSink::fetch(const SourcePair& place, Values* values) {
  if (source_.isRgb()) {
    fetchRgb(place, values);
  } else {
    fetchYuv(place, values);
  }
}

void DitherSink::fetchYuv(const SourcePair& place, Values* values) {
  uint8_t lumaRoom[kRun], roomU[kRun], roomV[kRun];
  const uint8_t* const luma = source_.luma(place, columns_, lumaRoom);
  const ChromaRow chroma = source_.chroma(place, columns_.chroma, roomU, roomV);
  const auto greenBias = static_cast<uint32_t>(tables_.greenBias);
  const uint32_t bias = channelBias(5, 16);
  int16_t* const red = values->channel[redFirst_ ? 0 : 2];
  int16_t* const blue = values->channel[redFirst_ ? 2 : 0];
  for (int32_t i = 0; i < columns_.count; ++i) {
    const int32_t c = columns_.chroma.halved ? i / 2 : i;
    const uint32_t y = tables_.luma[luma[i]];
    const uint32_t u = tables_.blue[chroma.u[c]], v = tables_.red[chroma.v[c]];
    red[i] = static_cast<int16_t>(channelValue(y + v, bias));
    values->channel[1][i] = static_cast<int16_t>(channelValue(y + ((u + v) << 16), greenBias));
    blue[i] = static_cast<int16_t>(channelValue(y + u, bias));
  }
}

void DitherSink::fetchRgb(const SourcePair& place, Values* values) {
  uint8_t room[4 * kRun];
  const PixelRow row = source_.pixels(place, columns_, room);
  const bool swap = source_.isRedFirst() != redFirst_;
  const uint8_t* pixel = row.pixels;
  for (int32_t i = 0; i < columns_.count; ++i, pixel += row.bytes) {
    values->channel[0][i] = pixel[swap ? 2 : 0];
    values->channel[1][i] = pixel[1];
    values->channel[2][i] = pixel[swap ? 0 : 2];
  }
}

void DitherSink::ditherPixel(const Values& values, int32_t i, uint8_t* room) {
  constexpr int32_t kMasks[3] = {7, 3, 7};
  constexpr int32_t kLost[3] = {3, 2, 3};
  constexpr int32_t kPositions[3] = {0, 5, 11};
  int32_t word = 0;
  for (int32_t c = 0; c < 3; ++c) {
    const int32_t value = values.channel[c][i] + carries_.carry[c];
    carries_.carry[c] = value & kMasks[c];
    word |= std::clamp(value, 0, 255) >> kLost[c] << kPositions[c];
  }
  room[2 * i] = static_cast<uint8_t>(word);
  room[2 * i + 1] = static_cast<uint8_t>(word >> 8);
}

void DitherSink::convertCells(const Call& call) {
  const Positions positions(call);
  Values values[2];
  uint8_t rooms[2][2 * kRun];
  for (int32_t y = rect_.top; y < rect_.bottom; y += 2) {
    const int32_t rows = std::min(2, rect_.bottom - y);
    for (int32_t x = rect_.left; x < rect_.right; x += kRun) {
      begin(positions, x, std::min(kRun, rect_.right - x), y);
      for (int32_t r = 0; r < rows; ++r) fetch(positions.row(y + r), &values[r]);
      for (int32_t i = 0; i < columns_.count; i += 2) {
        const int32_t end = std::min(i + 2, columns_.count);
        for (int32_t r = 0; r < rows; ++r) {
          for (int32_t k = i; k < end; ++k) ditherPixel(values[r], k, rooms[r]);
        }
      }
      for (int32_t r = 0; r < rows; ++r) lane_.put(r, rooms[r]);
    }
  }
}

}  // namespace qpx::convert::fast
