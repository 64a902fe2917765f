// Motion blur by length and direction beside OpenCV's filter of the same kernel, and the waterfall.
// One thread; CPU time.
//
// Arguments are those of Google Benchmark; without any, repetitions are interleaved so that a slow
// moment of the machine falls on all subjects alike.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "bench_report.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

constexpr Frame kOneMegapixel = {QPX_FORMAT_BGR24, 1155, 866};
constexpr Frame kPhoto = {QPX_FORMAT_BGR24, 4000, 3000};

MBitmap recordOf(Pixels& pixels) {
  const QPXPlaneSet planes = pixels.planesAt(0);
  const Frame& frame = pixels.frame();
  return {frame.format,
          frame.width,
          frame.height,
          {planes.pitch[0], 0, 0},
          {planes.plane[0], nullptr, nullptr}};
}

void expectDone(int32_t result) {
  if (result == QPX_OK) return;
  std::fprintf(stderr, "refused with %d\n", static_cast<int>(result));
  std::exit(1);
}

// Inside everywhere, or in a disc of a third of the picture.
std::vector<uint8_t> maskOf(const Frame& frame, bool disc) {
  std::vector<uint8_t> mask;
  const double reach = std::sqrt(static_cast<double>(frame.pixels()) / 9.42);
  for (int32_t y = 0; y < frame.height; ++y) {
    for (int32_t x = 0; x < frame.width; ++x) {
      const double distance = std::hypot(x - frame.width / 2, y - frame.height / 2);
      mask.push_back(!disc || distance < reach ? 255 : 0);
    }
  }
  return mask;
}

Body motionBody(PicturesPtr on, int32_t angle, int32_t length, bool disc) {
  const Frame& frame = on->source.frame();
  const auto mask = std::make_shared<std::vector<uint8_t>>(maskOf(frame, disc));
  return [=] {
    const MBitmap src = recordOf(on->source);
    const MBitmap under = {QPX_FORMAT_GREY8,
                           src.width,
                           src.height,
                           {src.width, 0, 0},
                           {mask->data(), nullptr, nullptr}};
    MBitmap dst = recordOf(on->target);
    expectDone(QPX_MotionBlur(&src, &under, angle, length, &dst));
  };
}

// The same line as a kernel, without a mask.
Body filterBody(PicturesPtr on, int32_t angle, int32_t length) {
  cv::setNumThreads(1);
  const int32_t half = length / 2;
  cv::Mat kernel = cv::Mat::zeros(2 * half + 1, 2 * half + 1, CV_32F);
  const double radians = angle * CV_PI / 180;
  for (int32_t t = -half; t <= half; ++t) {
    const auto dx = static_cast<int32_t>(std::lround(t * std::cos(radians)));
    const auto dy = static_cast<int32_t>(std::lround(t * std::sin(radians)));
    kernel.at<float>(half - dy, half + dx) += 1.0f / static_cast<float>(2 * half + 1);
  }
  if (angle == 0) kernel = kernel.row(half).clone();
  if (angle == 90) kernel = kernel.col(half).clone();
  const Frame& frame = on->source.frame();
  const cv::Mat source(frame.height, frame.width, CV_8UC3, on->source.data());
  cv::Mat target(frame.height, frame.width, CV_8UC3, on->target.data());
  return [=]() mutable { cv::filter2D(source, target, -1, kernel); };
}

Body segmentBody(PicturesPtr on, int32_t length) {
  return [=] {
    const MBitmap src = recordOf(on->source);
    MBitmap dst = recordOf(on->target);
    MPoint from = {src.width / 5, src.height / 5}, to = {src.width * 4 / 5, src.height * 4 / 5};
    expectDone(QPX_Waterfall(&src, &from, &to, 40, length, &dst));
  };
}

// A stroke of touches a finger's way apart, with the radius and length that a handle starts with.
Body strokeBody(PicturesPtr on) {
  return [=] {
    const MBitmap image = recordOf(on->source);
    QPXWaterFallHandle* handle = nullptr;
    MBitmap* shown = nullptr;
    expectDone(QPX_WaterFall_Create(&handle, &image, nullptr));
    for (int32_t i = 0; i <= 20; ++i) {
      const MPoint point = {image.width / 5 + image.width * 3 / 5 * i / 20,
                            image.height / 5 + image.height * 3 / 5 * i / 20};
      expectDone(QPX_WaterFall_Process(handle, &point, i == 20 ? 1 : 0, &shown, nullptr));
    }
    QPX_WaterFall_Destroy(handle);
  };
}

class Suite {
 public:
  explicit Suite(Report* report) : report_(report) {}

  void addAll() {
    const auto small = std::make_shared<Pictures>(kOneMegapixel);
    const auto large = std::make_shared<Pictures>(kPhoto);
    for (const int32_t angle : {0, 90, 30, 45}) {
      for (const int32_t length : {5, 20, 50, 200}) {
        const std::string work = std::to_string(angle) + " degrees, " + std::to_string(length);
        addBlur(small, work, "qpx", motionBody(small, angle, length, false));
        addBlur(small, work, "qpx, plain forms", motionBody(small, angle, length, false), true);
        addBlur(small, work, "qpx, mask of a third", motionBody(small, angle, length, true));
        addBlur(small, work, "cv::filter2D", filterBody(small, angle, length));
      }
    }
    addBlur(large, "45 degrees, 50", "qpx", motionBody(large, 45, 50, false));
    addBlur(large, "45 degrees, 200", "qpx", motionBody(large, 45, 200, false));
    for (const int32_t length : {20, 80}) {
      add("Waterfall, " + sizeName(kOneMegapixel), "segment, length " + std::to_string(length),
          "qpx", small, segmentBody(small, length), false);
    }
    add("Waterfall, " + sizeName(kOneMegapixel), "stroke of 20 segments", "qpx", small,
        strokeBody(small), false);
  }

 private:
  void addBlur(const PicturesPtr& on, const std::string& work, const std::string& name,
               const Body& body, bool plain = false) {
    add("Motion blur, " + sizeName(on->source.frame()), work, name, on, body, plain);
  }

  void add(const std::string& group, const std::string& workload, const std::string& name,
           const PicturesPtr& on, const Body& body, bool plain) {
    report_->add({group, workload, name, on->source.frame().pixels()},
                 [body, plain](benchmark::State& state) {
                   QPX_UsePlainForms(plain);
                   for (auto _ : state) body();
                   QPX_UsePlainForms(0);
                 });
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
