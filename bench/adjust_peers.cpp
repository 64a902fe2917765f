#include "adjust_peers.h"

#include <libyuv.h>

#include <array>
#include <cstring>
#include <opencv2/imgproc.hpp>

namespace qpx::bench {
namespace {

int channelsOf(const Frame& frame) { return UTIL_GetPixelBytesEX(frame.format); }

cv::Mat wrapped(Pixels& pixels) {
  const Frame& frame = pixels.frame();
  return {frame.height, frame.width, CV_8UC(channelsOf(frame)), pixels.data()};
}

struct Ways {
  int there, back;
};

Ways waysOf(ColorSpace space, bool redFirst) {
  switch (space) {
    case ColorSpace::hls:
      return redFirst ? Ways{cv::COLOR_RGB2HLS, cv::COLOR_HLS2RGB}
                      : Ways{cv::COLOR_BGR2HLS, cv::COLOR_HLS2BGR};
    case ColorSpace::hsv:
      return redFirst ? Ways{cv::COLOR_RGB2HSV, cv::COLOR_HSV2RGB}
                      : Ways{cv::COLOR_BGR2HSV, cv::COLOR_HSV2BGR};
    default:
      return redFirst ? Ways{cv::COLOR_RGB2Lab, cv::COLOR_Lab2RGB}
                      : Ways{cv::COLOR_BGR2Lab, cv::COLOR_Lab2BGR};
  }
}

// op(source, target) on the pictures as OpenCV has them.
template <typename Op>
Body openCv(const PicturesPtr& pictures, Op op) {
  cv::setNumThreads(1);
  const cv::Mat source = wrapped(pictures->source);
  cv::Mat target = wrapped(pictures->target);
  return [pictures, source, target, op]() mutable { op(source, target); };
}

}  // namespace

Body roundTripBody(PicturesPtr pictures, ColorSpace space) {
  const int channels = channelsOf(pictures->source.frame());
  const Ways ways = waysOf(space, pictures->source.frame().format == QPX_FORMAT_RGBA32);
  const cv::Mat between(pictures->source.frame().height, pictures->source.frame().width, CV_8UC3);
  return openCv(pictures, [=](const cv::Mat& source, cv::Mat& target) mutable {
    cv::cvtColor(source, between, ways.there);
    cv::cvtColor(between, target, ways.back, channels);
  });
}

Body gaussianBody(PicturesPtr pictures, int radius) {
  const cv::Size window(2 * radius + 1, 2 * radius + 1);
  const double deviation = 0.3 * (radius - 1) + 0.8;
  return openCv(pictures, [=](const cv::Mat& source, cv::Mat& target) {
    cv::GaussianBlur(source, target, window, deviation, deviation, cv::BORDER_REPLICATE);
  });
}

Body boxBody(PicturesPtr pictures, int window) {
  return openCv(pictures, [=](const cv::Mat& source, cv::Mat& target) {
    cv::boxFilter(source, target, -1, {window, window}, {-1, -1}, true, cv::BORDER_REPLICATE);
  });
}

Body bilateralBody(PicturesPtr pictures, int window) {
  return openCv(pictures, [=](const cv::Mat& source, cv::Mat& target) {
    cv::bilateralFilter(source, target, window, 30.0, (window + 1) / 4.0, cv::BORDER_REPLICATE);
  });
}

Body transformBody(PicturesPtr pictures) {
  const int channels = channelsOf(pictures->source.frame());
  cv::Mat matrix = cv::Mat::eye(channels, channels + 1, CV_32F);
  matrix.at<float>(0, 1) = 0.25f;
  matrix.at<float>(1, 2) = -0.125f;
  matrix.at<float>(2, 0) = 0.0625f;
  return openCv(pictures, [=](const cv::Mat& source, cv::Mat& target) {
    cv::transform(source, target, matrix);
  });
}

Body libyuvMatrixBody(PicturesPtr pictures) {
  constexpr std::array<int8_t, 16> kMatrix = {58, 13, -6, 0, 0, 64, 0, 0,
                                              -6, 13, 58, 0, 0, 0,  0, 64};
  const Frame& frame = pictures->source.frame();
  const int pitch = frame.width * 4;
  return [=] {
    libyuv::ARGBColorMatrix(pictures->source.data(), pitch, pictures->target.data(), pitch,
                            kMatrix.data(), frame.width, frame.height);
  };
}

Body libyuvBlurBody(PicturesPtr pictures, int radius) {
  const Frame& frame = pictures->source.frame();
  const int pitch = frame.width * 4;
  const auto sums = std::make_shared<std::vector<int32_t>>(static_cast<size_t>(frame.pixels() * 4));
  return [=] {
    libyuv::ARGBBlur(pictures->source.data(), pitch, pictures->target.data(), pitch, sums->data(),
                     pitch, frame.width, frame.height, radius);
  };
}

// Chroma takes the mask of the upper row of its blocks, a byte for each of a pair.
Body libyuvMixBody(PicturesPtr pictures, const uint8_t* mask) {
  const Frame frame = pictures->source.frame();
  const auto lit = std::make_shared<Pixels>(frame);
  return [=] {
    uint8_t *source = pictures->source.data(), *target = pictures->target.data();
    const int width = frame.width;
    libyuv::BlendPlane(lit->data(), width, source, width, mask, width, target, width, width,
                       frame.height);
    const int64_t chroma = frame.pixels();
    libyuv::BlendPlane(lit->data() + chroma, width, source + chroma, width, mask, 2 * width,
                       target + chroma, width, width, frame.height / 2);
  };
}

}  // namespace qpx::bench
