// Cut-outs of pictures of 12 megapixels: making a handle, the first cut, and what one more stroke
// costs; outlines and palettes by themselves. One thread; CPU time.
//
// Arguments are binary PPM files, photographs to be cut as well, and those of Google Benchmark;
// without any of these, repetitions are interleaved so that a slow
// moment of the machine falls on all subjects alike.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench_report.h"
#include "cutout_scenes.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

constexpr int32_t kWidth = Scene::kWidth, kHeight = Scene::kHeight;

void expectDone(int32_t result) {
  if (result == QPX_OK) return;
  std::fprintf(stderr, "refused with %d\n", static_cast<int>(result));
  std::exit(1);
}

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

void addCuts(Report& report, const ScenePtr& scene) {
  const auto add = [&](const char* work, auto body) {
    report.add({"Cut-outs, 4000x3000, " + scene->name(), work, "qpx", int64_t{kWidth} * kHeight},
               [=](benchmark::State& state) { body(state, scene); });
  };
  add("create", create);
  add("first cut", firstCut);
  add("one more stroke", nextCut);
}

void addSteps(Report& report, const ScenePtr& scene) {
  const auto add = [&](const char* work, int64_t count, auto body) {
    report.add({"Steps", work, "qpx", count}, [=](benchmark::State& state) { body(state, scene); });
  };
  add("outline of a mask", int64_t{kWidth} * kHeight, traceOutline);
  add("64 of 5000 colours", 5000, cluster);
}

}  // namespace
}  // namespace qpx::bench

int main(int argc, char** argv) {
  qpx::bench::Report report;
  const qpx::bench::ScenePtr smooth = qpx::bench::smoothScene();
  qpx::bench::addCuts(report, smooth);
  qpx::bench::addCuts(report, qpx::bench::busyScene());
  std::vector<char*> options = {argv[0]};
  for (int i = 1; i < argc; ++i) {
    if (argv[i][0] == '-') {
      options.push_back(argv[i]);
    } else {
      qpx::bench::addCuts(report, qpx::bench::sceneOf(argv[i]));
    }
  }
  qpx::bench::addSteps(report, smooth);
  return qpx::bench::run(static_cast<int>(options.size()), options.data(), report);
}
