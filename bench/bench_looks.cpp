// Looks beside memcpy of the same frame and OpenCV's tables, and how long effects take to be set
// up. One thread; CPU time.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench_report.h"
#include "catalogue_effects.h"
#include "setup_times.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

constexpr const char* kLooks[] = {"WarmLomo", "SoftPink", "Gothic", "Sunny", "FINEFOOD"};
constexpr NamedFormat kLookFormats[] = {kBgr24, kRgba32, kNv21, kI420, kYuyv};

class Suite {
 public:
  explicit Suite(Report* report) : report_(report) {}

  void addAll() {
    for (const char* name : kLooks) {
      QPXEffectInfo look;
      if (findBuilt(name, look)) continue;
      std::fprintf(stderr, "bench_looks: the library has no look %s\n", name);
      std::exit(1);
    }
    for (const Frame& size : {kFull, kPhoto}) {
      for (const NamedFormat& format : kLookFormats) addFormat(size, format);
    }
  }

 private:
  void add(const Frame& size, const NamedFormat& format, const std::string& name,
           const PicturesPtr& on, const Body& body) {
    report_->add({"Looks, " + sizeName(size), format.name, name, on->source.frame().pixels()},
                 [body](benchmark::State& state) {
                   for (auto _ : state) body();
                 });
  }

  void addFormat(const Frame& size, const NamedFormat& format) {
    const PicturesPtr on = album_.pictures(format, size);
    add(size, format, "memcpy", on, copyBody(on));
    add(size, format, "cv::LUT", on, openCvBody(on, 3));
    for (const char* name : kLooks) {
      QPXEffectInfo look;
      if (!findBuilt(name, look)) continue;
      if ((look.formats & format.takes) == 0) continue;
      add(size, format, name, on, lookBody(on, {look.id, initialRecord(look)}));
    }
  }

  Report* report_;
  Album album_;
};

}  // namespace
}  // namespace qpx::bench

int main(int argc, char** argv) {
  qpx::bench::Report report;
  qpx::bench::Suite suite(&report);
  suite.addAll();
  const int code = qpx::bench::run(argc, argv, report);
  if (code == 0) qpx::bench::printSetupTimes();
  return code;
}
