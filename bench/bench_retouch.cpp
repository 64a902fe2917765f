// Retouch of a square hole beside both methods of cv::inpaint, which continue colours and no
// texture. One thread; CPU time, of which each row is given for a pixel of the picture.
//
// Arguments are those of Google Benchmark; without any, repetitions are interleaved so that a slow
// moment of the machine falls on all subjects alike.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <opencv2/core.hpp>
#include <opencv2/photo.hpp>
#include <string>
#include <vector>

#include "bench_report.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

constexpr Frame kOneMegapixel = {QPX_FORMAT_BGR24, 1155, 866};
constexpr Frame kPhoto = {QPX_FORMAT_BGR24, 4000, 3000};

MBitmap record(uint32_t format, int32_t width, int32_t height, uint8_t* bytes) {
  const int32_t pixel = format == QPX_FORMAT_GREY8 ? 1 : 3;
  return {format, width, height, {width * pixel, 0, 0}, {bytes, nullptr, nullptr}};
}

// Waves of grass: soft stripes whose direction drifts, under noise, so that no patch is quite like
// another.
void paintGrass(Pixels& pixels) {
  const Frame& frame = pixels.frame();
  uint8_t* to = pixels.data();
  uint32_t state = 1;
  for (int32_t y = 0; y < frame.height; ++y) {
    for (int32_t x = 0; x < frame.width; ++x) {
      const double wave = std::sin(x * 0.21 + 30 * std::sin(y * 0.004)) + std::sin(y * 0.05);
      state = state * 1664525 + 1013904223;
      const double noise = static_cast<double>(state >> 24) / 16;
      for (int c = 0; c < 3; ++c) {
        *to++ = static_cast<uint8_t>(90 + 15 * c + 30 * wave + noise);
      }
    }
  }
}

// A retouch planned in a guide smaller by a whole number, of whose pixels it takes every so many.
struct Work {
  PicturesPtr on;
  int32_t scale;
  int32_t hole;  // side, in pixels of the source
  int32_t width, height;
  std::vector<uint8_t> guide, mask, fullMask;

  Work(PicturesPtr pictures, int32_t by, int32_t side) : on(pictures), scale(by), hole(side) {
    const Frame& frame = on->source.frame();
    width = (frame.width - 1) / scale + 1;
    height = (frame.height - 1) / scale + 1;
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        const auto place = static_cast<size_t>(frame.width) * static_cast<size_t>(y * scale) +
                           static_cast<size_t>(x * scale);
        const uint8_t* const pixel = on->source.data() + 3 * place;
        guide.insert(guide.end(), pixel, pixel + 3);
        mask.push_back(inside(x * scale, y * scale) ? 255 : 0);
      }
    }
    for (int32_t y = 0; y < frame.height; ++y) {
      for (int32_t x = 0; x < frame.width; ++x) fullMask.push_back(inside(x, y) ? 255 : 0);
    }
  }

  bool inside(int32_t x, int32_t y) const {
    const Frame& frame = on->source.frame();
    const int32_t left = (frame.width - hole) / 2, top = (frame.height - hole) / 2;
    return x >= left && x < left + hole && y >= top && y < top + hole;
  }
};
using WorkPtr = std::shared_ptr<Work>;

void retouch(Work& work, float radius) {
  const Frame& frame = work.on->source.frame();
  const MBitmap source =
      record(QPX_FORMAT_BGR24, frame.width, frame.height, work.on->source.data());
  const MBitmap guide = record(QPX_FORMAT_BGR24, work.width, work.height, work.guide.data());
  const MBitmap mask = record(QPX_FORMAT_GREY8, work.width, work.height, work.mask.data());
  MBitmap target = record(QPX_FORMAT_BGR24, frame.width, frame.height, work.on->target.data());
  const float settings[] = {radius, 0.8f};
  const int32_t result = ReTouch(&source, &guide, &mask, settings, &target);
  if (result == QPX_OK) return;
  std::fprintf(stderr, "refused with %d\n", static_cast<int>(result));
  std::exit(1);
}

void inpaint(Work& work, int method) {
  const Frame& frame = work.on->source.frame();
  const cv::Mat source(frame.height, frame.width, CV_8UC3, work.on->source.data());
  const cv::Mat mask(frame.height, frame.width, CV_8UC1, work.fullMask.data());
  cv::Mat target(frame.height, frame.width, CV_8UC3, work.on->target.data());
  cv::inpaint(source, mask, target, 4, method);
}

class Suite {
 public:
  explicit Suite(Report* report) : report_(report) {}

  void addAll() {
    cv::setNumThreads(1);
    const auto small = std::make_shared<Pictures>(kOneMegapixel);
    const auto large = std::make_shared<Pictures>(kPhoto);
    paintGrass(small->source);
    paintGrass(large->source);
    addHole(small, 1, 100);
    addHole(small, 2, 100);
    addHole(large, 4, 100);
    addHole(large, 4, 400);
  }

 private:
  void addHole(const PicturesPtr& on, int32_t scale, int32_t side) {
    const auto work = std::make_shared<Work>(on, scale, side);
    const std::string name =
        "hole of " + std::to_string(side) + ", guide 1/" + std::to_string(scale);
    add(on, name, "qpx", [work] { retouch(*work, 4); });
    add(on, name, "cv::inpaint, Telea", [work] { inpaint(*work, cv::INPAINT_TELEA); });
    add(on, name, "cv::inpaint, NS", [work] { inpaint(*work, cv::INPAINT_NS); });
  }

  void add(const PicturesPtr& on, const std::string& workload, const std::string& name,
           const Body& body) {
    const Frame& frame = on->source.frame();
    report_->add({"Retouch, " + sizeName(frame), workload, name, frame.pixels()},
                 [body](benchmark::State& state) {
                   for (auto _ : state) body();
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
