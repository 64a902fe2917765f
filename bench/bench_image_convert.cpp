// Whole-image conversions beside libyuv and OpenCV, in one thread; then in bands on the pool's
// threads beside one thread and beside two that never sleep, by the clock on the wall.
//
// Peers do the same work with arithmetic of their own: full range where they have it, else video
// range; cv::cvtColor averages chroma. Arguments are those of Google Benchmark; without any,
// repetitions are interleaved.
#include <benchmark/benchmark.h>
#include <libyuv.h>
#include <qpx/qpx.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "bench_report.h"
#include "parts_table.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

// An image without padding, its planes one behind the other.
class Image {
 public:
  Image(int32_t format, int32_t width, int32_t height) : record_{format, width, height, {}, {}} {
    size_t size = 0;
    size_t starts[3] = {};
    const auto plane = [&](int index, int32_t pitch, int32_t rows) {
      starts[index] = size;
      record_.pitch[index] = pitch;
      size += static_cast<size_t>(pitch) * static_cast<size_t>(rows);
    };
    switch (format) {
      case MCV_RGBA8888:
        plane(0, 4 * width, height);
        break;
      case MCV_RGB888:
      case MCV_BGR888:
        plane(0, 3 * width, height);
        break;
      case MCV_YUYV:
        plane(0, 2 * width, height);
        break;
      case MCV_I420:
        plane(0, width, height);
        plane(1, width / 2, height / 2);
        plane(2, width / 2, height / 2);
        break;
      default:
        plane(0, width, height);
        plane(1, width, height / 2);
        break;
    }
    bytes_ = std::vector<uint8_t>(size);
    uint32_t state = 1;
    for (uint8_t& byte : bytes_) byte = static_cast<uint8_t>((state = state * 1664525 + 7) >> 24);
    for (int p = 0; p < 3; ++p) {
      if (record_.pitch[p] != 0) record_.plane[p] = bytes_.data() + starts[p];
    }
  }
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  const McvImage* record() const { return &record_; }
  uint8_t* plane(int index) const { return record_.plane[index]; }
  int pitch(int index) const { return record_.pitch[index]; }
  int width() const { return record_.width; }
  int height() const { return record_.height; }

  // As OpenCV sees images: planes of YUV below each other.
  cv::Mat mat() {
    const int channels = record_.pitch[0] / record_.width;
    const int rows = record_.plane[1] == nullptr ? record_.height : record_.height * 3 / 2;
    return cv::Mat(rows, record_.width, CV_8UC(channels), bytes_.data());
  }

 private:
  McvImage record_;
  std::vector<uint8_t> bytes_;
};

using Peer = void (*)(Image& src, Image& dst);

struct Work {
  const char* name;
  int32_t src, dst;
  Peer libyuv;
  int openCv;  // a code of cv::cvtColor, or kNone
};

constexpr int kNone = -1;

template <auto kConvert>
void semiPlanarToPacked(Image& s, Image& d) {
  kConvert(s.plane(0), s.pitch(0), s.plane(1), s.pitch(1), d.plane(0), d.pitch(0), d.width(),
           d.height());
}
template <auto kConvert>
void planesToPacked(Image& s, Image& d) {
  kConvert(s.plane(0), s.pitch(0), s.plane(1), s.pitch(1), s.plane(2), s.pitch(2), d.plane(0),
           d.pitch(0), d.width(), d.height());
}
template <auto kConvert>
void packedToSemiPlanar(Image& s, Image& d) {
  kConvert(s.plane(0), s.pitch(0), d.plane(0), d.pitch(0), d.plane(1), d.pitch(1), d.width(),
           d.height());
}
template <auto kConvert>
void packedToPlanes(Image& s, Image& d) {
  kConvert(s.plane(0), s.pitch(0), d.plane(0), d.pitch(0), d.plane(1), d.pitch(1), d.plane(2),
           d.pitch(2), d.width(), d.height());
}
template <auto kConvert>
void packedToPacked(Image& s, Image& d) {
  kConvert(s.plane(0), s.pitch(0), d.plane(0), d.pitch(0), d.width(), d.height());
}
void nv21ToI420(Image& s, Image& d) {
  libyuv::NV21ToI420(s.plane(0), s.pitch(0), s.plane(1), s.pitch(1), d.plane(0), d.pitch(0),
                     d.plane(1), d.pitch(1), d.plane(2), d.pitch(2), d.width(), d.height());
}
void i420ToNv21(Image& s, Image& d) {
  libyuv::I420ToNV21(s.plane(0), s.pitch(0), s.plane(1), s.pitch(1), s.plane(2), s.pitch(2),
                     d.plane(0), d.pitch(0), d.plane(1), d.pitch(1), d.width(), d.height());
}
void nv12ToNv21(Image& s, Image& d) {
  libyuv::NV21ToNV12(s.plane(0), s.pitch(0), s.plane(1), s.pitch(1), d.plane(0), d.pitch(0),
                     d.plane(1), d.pitch(1), d.width(), d.height());
}

// Where libyuv has no such pair, nothing stands in its place.
constexpr Work kWorks[] = {
    {"NV21 to RGBA8888", MCV_NV21, MCV_RGBA8888, semiPlanarToPacked<libyuv::NV21ToABGR>,
     cv::COLOR_YUV2RGBA_NV21},
    {"NV21 to BGR888", MCV_NV21, MCV_BGR888, semiPlanarToPacked<libyuv::NV21ToRGB24>,
     cv::COLOR_YUV2BGR_NV21},
    {"I420 to RGBA8888", MCV_I420, MCV_RGBA8888, planesToPacked<libyuv::J420ToABGR>,
     cv::COLOR_YUV2RGBA_I420},
    {"I420 to BGR888", MCV_I420, MCV_BGR888, planesToPacked<libyuv::I420ToRGB24>,
     cv::COLOR_YUV2BGR_I420},
    {"YUYV to BGR888", MCV_YUYV, MCV_BGR888, nullptr, cv::COLOR_YUV2BGR_YUY2},
    {"YUYV to RGBA8888", MCV_YUYV, MCV_RGBA8888, packedToPacked<libyuv::YUY2ToARGB>,
     cv::COLOR_YUV2RGBA_YUY2},
    {"RGBA8888 to NV21", MCV_RGBA8888, MCV_NV21, packedToSemiPlanar<libyuv::ABGRToNV21>, kNone},
    {"RGBA8888 to I420", MCV_RGBA8888, MCV_I420, packedToPlanes<libyuv::ABGRToJ420>,
     cv::COLOR_RGBA2YUV_I420},
    {"RGB888 to NV21", MCV_RGB888, MCV_NV21, packedToSemiPlanar<libyuv::RAWToJNV21>, kNone},
    {"BGR888 to NV21", MCV_BGR888, MCV_NV21, packedToSemiPlanar<libyuv::RAWToJNV21>, kNone},
    {"BGR888 to I420", MCV_BGR888, MCV_I420, packedToPlanes<libyuv::RGB24ToJ420>,
     cv::COLOR_BGR2YUV_I420},
    {"NV21 to I420", MCV_NV21, MCV_I420, nv21ToI420, kNone},
    {"I420 to NV21", MCV_I420, MCV_NV21, i420ToNv21, kNone},
    {"NV12 to NV21", MCV_NV12, MCV_NV21, nv12ToNv21, kNone},
    {"YUYV to I420", MCV_YUYV, MCV_I420, packedToPlanes<libyuv::YUY2ToI420>, kNone},
    {"RGB888 to BGR888", MCV_RGB888, MCV_BGR888, packedToPacked<libyuv::RAWToRGB24>,
     cv::COLOR_RGB2BGR},
    {"RGBA8888 to BGR888", MCV_RGBA8888, MCV_BGR888, packedToPacked<libyuv::ABGRToRGB24>,
     cv::COLOR_RGBA2BGR},
};

// Pictures that a work's subjects share.
struct Pair {
  Image src, dst;
  Pair(const Work& work, const Frame& size)
      : src(work.src, size.width, size.height), dst(work.dst, size.width, size.height) {}
};

void convert(const Pair& on) {
  if (mcvColorCvt(on.src.record(), on.dst.record(), 255) == 0) return;
  std::fprintf(stderr, "a conversion was refused\n");
  std::exit(1);
}

void addWork(Report& report, const Work& work, const Frame& size) {
  const auto on = std::make_shared<Pair>(work, size);
  const std::string group = "One thread, " + sizeName(size);
  const auto add = [&](const char* name, const Body& body) {
    report.add({group, work.name, name, size.pixels()}, [body](benchmark::State& state) {
      for (auto _ : state) body();
    });
  };
  if (work.libyuv != nullptr) {
    add("libyuv", [=, peer = work.libyuv] { peer(on->src, on->dst); });
  }
  if (work.openCv != kNone) {
    cv::setNumThreads(1);
    add("cv::cvtColor", [=, code = work.openCv] {
      cv::Mat target = on->dst.mat();
      cv::cvtColor(on->src.mat(), target, code);
    });
  }
  add("mcvColorCvt", [=] { convert(*on); });
}

// Half of an image's rows; pairs of rows stay together.
McvImage halfOf(const McvImage& image, int half) {
  const int32_t middle = image.height / 4 * 2;
  McvImage rows = image;
  rows.height = half == 0 ? middle : image.height - middle;
  if (half == 0) return rows;
  for (int p = 0; p < 3; ++p) {
    if (rows.plane[p] != nullptr) {
      rows.plane[p] += ptrdiff_t{image.pitch[p]} * (p == 0 ? middle : middle / 2);
    }
  }
  return rows;
}

InParts banded(McvColorCvtContext* context, const Work& work, const Frame& size) {
  const auto on = std::make_shared<Pair>(work, size);
  const auto bands = [=] {
    const uint8_t alpha = 255;
    mcvColorCvtProcess_MultiThreads(context, on->src.record(), on->dst.record(), &alpha);
  };
  const auto halves = [=](int half) {
    const McvImage src = halfOf(*on->src.record(), half), dst = halfOf(*on->dst.record(), half);
    mcvColorCvt(&src, &dst, 255);
  };
  return {work.name, sizeName(size), [=] { convert(*on); }, bands, halves};
}

// Wall time: what several threads are for.
void printPartsTable() {
  McvColorCvtContext* const context = mcvColorCvtInit_MultiThreads(nullptr);
  if (context == nullptr) return;
  std::vector<InParts> works;
  addCopies(&works);
  for (const Frame& size : {kFull, kPhoto}) {
    for (const Work& work : kWorks) {
      const McvImage src = {work.src, 0, 0, {}, {}}, dst = {work.dst, 0, 0, {}, {}};
      if (mcvColorCvtFunc(&src, &dst) >= 0) works.push_back(banded(context, work, size));
    }
  }
  addPooledWorks(&works);
  printParts(works);
  mcvColorCvtUnInit_MultiThreads(nullptr, context);
}

}  // namespace
}  // namespace qpx::bench

int main(int argc, char** argv) {
  qpx::bench::Report report;
  for (const qpx::bench::Frame& size : {qpx::bench::kFull, qpx::bench::kPhoto}) {
    for (const qpx::bench::Work& work : qpx::bench::kWorks) {
      qpx::bench::addWork(report, work, size);
    }
  }
  const int result = qpx::bench::run(argc, argv, report);
  if (result == 0) qpx::bench::printPartsTable();
  return result;
}
