// What other libraries make of the same work, as a measure.
#include <libyuv.h>

#include <array>
#include <cstring>
#include <opencv2/core.hpp>

#include "subjects.h"

namespace qpx::bench {
namespace {

uint8_t brighter(int value) {
  const int lit = (value - 128) * 120 / 100 + 148;
  return static_cast<uint8_t>(lit < 0 ? 0 : lit > 255 ? 255 : lit);
}

cv::Mat tableFor(int channels, int tables) {
  const bool one = tables == 1 && channels != 4;
  cv::Mat table(1, 256, CV_8UC(one ? 1 : channels));
  for (int value = 0; value < 256; ++value) {
    uint8_t* entry = table.data + value * table.channels();
    for (int c = 0; c < table.channels(); ++c) {
      const int shift = tables == 1 ? 0 : 4 * c;
      entry[c] = c == 3 ? static_cast<uint8_t>(value) : brighter(value + shift);
    }
  }
  return table;
}

int channelsOf(uint32_t format) {
  switch (format) {
    case QPX_FORMAT_NV21:
    case QPX_FORMAT_I420:
      return 1;
    case QPX_FORMAT_YUYV:
      return 2;
    default:
      return UTIL_GetPixelBytesEX(format);
  }
}

}  // namespace

Body openCvBody(PicturesPtr pictures, int tables) {
  cv::setNumThreads(1);
  const Frame& frame = pictures->source.frame();
  const int channels = channelsOf(frame.format);
  const auto wrapped = [&](Pixels& pixels) {
    return cv::Mat(frame.height, frame.width, CV_8UC(channels), pixels.data());
  };
  const cv::Mat source = wrapped(pictures->source);
  cv::Mat target = wrapped(pictures->target);
  const cv::Mat table = tableFor(channels, tables);
  const size_t tableBytes = static_cast<size_t>(frame.pixels() * channels);
  return [=]() mutable {
    cv::LUT(source, table, target);
    std::memcpy(pictures->target.data() + tableBytes, pictures->source.data() + tableBytes,
                frame.bytes() - tableBytes);
  };
}

Body libyuvInPlaceBody(PicturesPtr pictures) {
  std::array<uint8_t, 1024> table;
  for (int value = 0; value < 256; ++value) {
    for (size_t c = 0; c < 4; ++c) {
      table[static_cast<size_t>(value) * 4 + c] =
          c == 3 ? static_cast<uint8_t>(value) : brighter(value);
    }
  }
  const Frame& frame = pictures->source.frame();
  return [=] {
    libyuv::ARGBColorTable(pictures->target.data(), frame.width * 4, table.data(), 0, 0,
                           frame.width, frame.height);
  };
}

}  // namespace qpx::bench
