// Pictures turned by 13 degrees and levelled by 3, beside cv::warpAffine with the same matrix: the
// one-call rotation, the object (in one call, and in strips by two threads), Straighten in both
// modes. One thread, but for one row; the report is of CPU time, so two threads show as their sum.
//
// Arguments are those of Google Benchmark; without any, repetitions are interleaved.
#include <benchmark/benchmark.h>
#include <qpx/qpx.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <string>
#include <thread>
#include <vector>

#include "bench_report.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

constexpr double kDegreesToRadians = 3.14159265358979323846 / 180.0;
constexpr double kLevel = 3 * kDegreesToRadians;

constexpr Frame kFull = {0, 1920, 1080};
constexpr Frame kPhoto = {0, 4000, 3000};

struct NamedFormat {
  uint32_t format;
  const char* name;
};
constexpr NamedFormat kFormats[] = {{QPX_FORMAT_BGR24, "BGR24"}, {QPX_FORMAT_BGRA32, "BGRA32"}};

MBitmap recordOf(Pixels& pixels) {
  const Frame& frame = pixels.frame();
  MBitmap image = {frame.format, frame.width, frame.height, {}, {}};
  const QPXPlaneSet planes = pixels.planesAt(0);
  image.plane[0] = planes.plane[0];
  image.pitch[0] = planes.pitch[0];
  return image;
}

void check(int32_t result) {
  if (result == QPX_OK) return;
  std::fprintf(stderr, "a call answered %d\n", static_cast<int>(result));
  std::exit(1);
}

Body imageBody(const PicturesPtr& on, int32_t degrees) {
  return [=] {
    const MBitmap src = recordOf(on->source);
    MBitmap dst = recordOf(on->target);
    check(QPX_RotateImage(&src, degrees, 0xFF808080, &dst));
  };
}

class Rotation {
 public:
  Rotation(const Frame& frame, int32_t degrees) {
    const uint8_t fill[4] = {128, 128, 128, 255};
    const QPXRotateFormat format = {frame.format, frame.width, frame.height};
    const QPXRotateParams params = {degrees, fill};
    check(QPXRotateCreate(&handle_, &format, &format, &params));
  }
  ~Rotation() { QPXRotateDestroy(handle_); }
  Rotation(const Rotation&) = delete;
  Rotation& operator=(const Rotation&) = delete;

  void run(Pixels& source, Pixels& target, const MRect& rect) const {
    const MBitmap src = recordOf(source);
    MBitmap dst = recordOf(target);
    check(QPXRotateProcess(handle_, &src, &dst, &rect));
  }

 private:
  QPXRotateHandle* handle_ = nullptr;
};

Body objectBody(const PicturesPtr& on, int32_t degrees, int threads) {
  const Frame frame = on->source.frame();
  const auto rotation = std::make_shared<Rotation>(frame, degrees);
  const auto half = [=](int index) {
    rotation->run(
        on->source, on->target,
        {0, frame.height * index / threads, frame.width, frame.height * (index + 1) / threads});
  };
  return [=] {
    std::vector<std::thread> others;
    for (int i = 1; i < threads; ++i) others.emplace_back(half, i);
    half(0);
    for (std::thread& thread : others) thread.join();
  };
}

Body straightenBody(const PicturesPtr& on, double angle, bool bilinear) {
  return [=] {
    const MBitmap src = recordOf(on->source);
    MBitmap dst = recordOf(on->target);
    check(QPX_Straighten(&src, &dst, angle, bilinear));
  };
}

// Destination to source, as the library maps: clockwise, about the centres.
Body peerBody(const PicturesPtr& on, double radians, double scale, int interpolation, int border) {
  cv::setNumThreads(1);
  const Frame frame = on->source.frame();
  const int type = CV_8UC(UTIL_GetPixelBytesEX(frame.format));
  const cv::Mat source(frame.height, frame.width, type, on->source.data());
  cv::Mat target(frame.height, frame.width, type, on->target.data());
  const double sine = std::sin(-radians) / scale;
  const double cosine = std::cos(-radians) / scale;
  const double x = frame.width / 2;
  const double y = frame.height / 2;
  const cv::Mat matrix = (cv::Mat_<double>(2, 3) << cosine, -sine, x - cosine * x + sine * y, sine,
                          cosine, y - sine * x - cosine * y);
  return [=]() mutable {
    cv::warpAffine(source, target, matrix, target.size(), interpolation | cv::WARP_INVERSE_MAP,
                   border, cv::Scalar(128, 128, 128, 255));
  };
}

class Suite {
 public:
  explicit Suite(Report* report) : report_(report) {}

  void addAll() {
    for (const Frame& size : {kFull, kPhoto}) {
      for (const NamedFormat& format : kFormats) addSize(size, format);
    }
  }

 private:
  void add(const std::string& group, const std::string& workload, const std::string& name,
           const PicturesPtr& on, const Body& body, bool plain = false) {
    report_->add({group, workload, name, on->source.frame().pixels()},
                 [body, plain](benchmark::State& state) {
                   QPX_UsePlainForms(plain);
                   for (auto _ : state) body();
                   QPX_UsePlainForms(0);
                 });
  }

  void addSize(const Frame& size, const NamedFormat& format) {
    const auto on = std::make_shared<Pictures>(Frame{format.format, size.width, size.height});
    const std::string group = "Turned, " + sizeName(size);
    for (const int32_t degrees : {13, 77, 90}) {
      const std::string workload =
          std::string(format.name) + ", " + std::to_string(degrees) + " degrees";
      add(group, workload, "cv::warpAffine", on,
          peerBody(on, degrees * kDegreesToRadians, 1, cv::INTER_LINEAR, cv::BORDER_CONSTANT));
      add(group, workload, "QPX_RotateImage", on, imageBody(on, degrees));
      add(group, workload, "QPXRotateProcess", on, objectBody(on, degrees, 1));
      if (degrees != 13) continue;
      add(group, workload, "the same, plain", on, objectBody(on, degrees, 1), true);
      add(group, workload, "the same, 2 threads", on, objectBody(on, degrees, 2));
    }
    const double scale = std::cos(kLevel) + double(size.width) / size.height * std::sin(kLevel);
    const std::string level = "Levelled, " + sizeName(size);
    for (const bool bilinear : {true, false}) {
      const std::string workload =
          std::string(format.name) + (bilinear ? ", bilinear" : ", nearest");
      add(level, workload, "cv::warpAffine", on,
          peerBody(on, kLevel, scale, bilinear ? cv::INTER_LINEAR : cv::INTER_NEAREST,
                   cv::BORDER_REPLICATE));
      add(level, workload, "QPX_Straighten", on, straightenBody(on, kLevel, bilinear));
    }
  }

  Report* report_;
};

}  // namespace
}  // namespace qpx::bench

int main(int argc, char** argv) {
  qpx::bench::Report report;
  qpx::bench::Suite suite(&report);
  suite.addAll();
  return qpx::bench::run(argc, argv, report);
}
