// Cut-outs of a picture of 12 megapixels: making a handle, the first cut, and what one more stroke
// costs; outlines and palettes by themselves. One thread; CPU time.
//
// Arguments are those of Google Benchmark; without any, repetitions are interleaved so that a slow
// moment of the machine falls on all subjects alike.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "bench_report.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

constexpr int32_t kWidth = 4000, kHeight = 3000;

void expectDone(int32_t result) {
  if (result == QPX_OK) return;
  std::fprintf(stderr, "refused with %d\n", static_cast<int>(result));
  std::exit(1);
}

// A photograph of sorts: discs of many sizes and shades, lit from a side, over a ground that goes
// from light to dark, all of it as soft as what a lens draws at this size, with a little noise.
class Scene {
 public:
  Scene() : bytes_(3 * size_t{kWidth} * kHeight) {
    for (int32_t y = 0; y < kHeight; ++y) {
      for (int32_t x = 0; x < kWidth; ++x) paint(x, y);
    }
  }

  MBitmap record() {
    return {
        QPX_FORMAT_BGR24, kWidth, kHeight, {3 * kWidth, 0, 0}, {bytes_.data(), nullptr, nullptr}};
  }

 private:
  void paint(int32_t x, int32_t y) {
    const double u = x / 400.0, v = y / 400.0;
    const double dx = x - kWidth / 2, dy = y - kHeight / 2;
    const double object = 1 / (1 + std::exp((std::hypot(dx, dy) - 900) / 4));
    const double texture = 18 * std::sin(9 * u + 3 * std::sin(5 * v)) * std::sin(8 * v + 2 * u);
    const double light = 20 * u - 12 * v + texture;
    const double ground[3] = {90 + light, 110 + light / 2, 70 - light / 3};
    const double front[3] = {60 + light / 3, 80 + texture, 190 - light / 4};
    uint8_t* const pixel =
        bytes_.data() + 3 * (static_cast<size_t>(y) * kWidth + static_cast<size_t>(x));
    for (int c = 0; c < 3; ++c) {
      noise_ = noise_ * 1664525u + 1013904223u;
      const double value = ground[c] + (front[c] - ground[c]) * object + (noise_ >> 24) / 64.0;
      pixel[c] = static_cast<uint8_t>(value < 0 ? 0 : (value > 255 ? 255 : value));
    }
  }

  std::vector<uint8_t> bytes_;
  uint32_t noise_ = 1;
};
using ScenePtr = std::shared_ptr<Scene>;

class Cutting {
 public:
  explicit Cutting(const ScenePtr& scene) { make(scene); }
  ~Cutting() { STRKM_Destroy(handle_); }
  Cutting(const Cutting&) = delete;
  Cutting& operator=(const Cutting&) = delete;

  // In thousandths of the picture's sides.
  void stroke(int32_t side, MPoint from, MPoint to) const {
    std::vector<MPoint> points;
    for (int32_t i = 0; i <= 1000; ++i) {
      points.push_back({(from.x * (1000 - i) + to.x * i) / 1000 * (kWidth / 1000),
                        (from.y * (1000 - i) + to.y * i) / 1000 * (kHeight / 1000)});
    }
    expectDone(STRKM_AddLine(handle_, side, points.data(), static_cast<int32_t>(points.size())));
  }

  void firstStrokes() const {
    stroke(0, {400, 500}, {600, 500});
    stroke(1, {50, 50}, {950, 50});
    stroke(1, {50, 950}, {950, 950});
  }

  void startOver(const ScenePtr& scene) {
    STRKM_Destroy(handle_);
    make(scene);
    firstStrokes();
  }

  void cut() {
    expectDone(STRKM_Process(handle_, &mask_, &points_, &count_));
    if (count_ > 0) return;
    std::fprintf(stderr, "nothing was cut out\n");
    std::exit(1);
  }

  const MBitmap& mask() const { return *mask_; }

 private:
  void make(const ScenePtr& scene) {
    const MBitmap record = scene->record();
    expectDone(STRKM_Create(&handle_, &record));
  }

  StrokeMatting* handle_ = nullptr;
  MBitmap* mask_ = nullptr;
  MPoint* points_ = nullptr;
  int32_t count_ = 0;
};

void create(benchmark::State& state, const ScenePtr& scene) {
  for (auto _ : state) Cutting cutting(scene);
}

void firstCut(benchmark::State& state, const ScenePtr& scene) {
  Cutting cutting(scene);
  cutting.firstStrokes();
  for (auto _ : state) {
    cutting.cut();
    state.PauseTiming();
    cutting.startOver(scene);
    state.ResumeTiming();
  }
}

// Each turn adds a stroke to either side, here and there.
void nextCut(benchmark::State& state, const ScenePtr& scene) {
  Cutting cutting(scene);
  cutting.firstStrokes();
  cutting.cut();
  int32_t turn = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const int32_t at = 430 + turn % 7 * 20;
    turn % 2 == 0 ? cutting.stroke(0, {at, 420}, {at + 10, 580})
                  : cutting.stroke(1, {at / 8, 100}, {at / 8, 900});
    ++turn;
    state.ResumeTiming();
    cutting.cut();
  }
}

void traceOutline(benchmark::State& state, const ScenePtr& scene) {
  Cutting cutting(scene);
  cutting.firstStrokes();
  cutting.cut();
  std::vector<MPoint> points(size_t{kWidth} * kHeight);
  int32_t count = 0;
  for (auto _ : state) expectDone(QPX_ContourTracing(&cutting.mask(), points.data(), &count));
}

void cluster(benchmark::State& state, const ScenePtr& scene) {
  const MBitmap record = scene->record();
  uint8_t palette[192];
  for (auto _ : state) expectDone(KmeansSegColor(record.plane[0], 5000, 64, palette));
}

void addAll(Report& report) {
  const auto scene = std::make_shared<Scene>();
  const int64_t pixels = int64_t{kWidth} * kHeight;
  const auto add = [&](const char* work, int64_t count, auto body) {
    report.add({"Cut-outs, 4000x3000", work, "qpx", count},
               [=](benchmark::State& state) { body(state, scene); });
  };
  add("create", pixels, create);
  add("first cut", pixels, firstCut);
  add("one more stroke", pixels, nextCut);
  add("outline of a mask", pixels, traceOutline);
  add("64 of 5000 colours", 5000, cluster);
}

}  // namespace
}  // namespace qpx::bench

int main(int argc, char** argv) {
  qpx::bench::Report report;
  qpx::bench::addAll(report);
  return qpx::bench::run(argc, argv, report);
}
