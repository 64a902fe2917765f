// Point effects of the engine beside memcpy, OpenCV and libyuv, and beside themselves: by size, by
// length of the chain, in plain and in vector forms, in bands and in one call. One thread; CPU
// time.
//
#include <benchmark/benchmark.h>

#include <string>

#include "bench_report.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

constexpr uint32_t kOneTable = 0x1300;
constexpr uint32_t kThreeTables = 0x4800;

class Suite {
 public:
  explicit Suite(Report* report) : report_(report) {}

  void addAll() {
    for (const Frame& size : {kFull, kPhoto}) {
      addTables(size, kBgr24, kOneTable, "one table");
      addTables(size, kBgr24, kThreeTables, "three tables");
      addTables(size, kRgba32, kOneTable, "one table");
      addTables(size, kRgba32, kThreeTables, "three tables");
      addTables(size, kNv21, kOneTable, "one table");
    }
    addInPlace(kFull);
    addSizes();
    addChains();
    addForms();
    addBands();
  }

 private:
  PicturesPtr pictures(const NamedFormat& format, const Frame& size) {
    return album_.pictures(format, size);
  }

  void add(const std::string& group, const std::string& workload, const std::string& name,
           const PicturesPtr& on, const Body& body, bool plain = false) {
    report_->add({group, workload, name, on->source.frame().pixels()},
                 [body, plain](benchmark::State& state) {
                   QPX_UsePlainForms(plain);
                   for (auto _ : state) body();
                   QPX_UsePlainForms(0);
                 });
  }

  void addTables(const Frame& size, const NamedFormat& format, uint32_t effect,
                 const std::string& tables) {
    const PicturesPtr on = pictures(format, size);
    const std::string group = "Tone tables, " + sizeName(size);
    const std::string workload = std::string(format.name) + ", " + tables;
    add(group, workload, "qpx", on, engineBody(on, {effect}));
    add(group, workload, "memcpy", on, copyBody(on));
    add(group, workload, "cv::LUT", on, openCvBody(on, effect == kOneTable ? 1 : 3));
  }

  void addInPlace(const Frame& size) {
    const PicturesPtr on = pictures(kRgba32, size);
    const std::string group = "In place, " + sizeName(size);
    add(group, "RGBA32, one table", "qpx", on, engineInPlaceBody(on, kOneTable));
    add(group, "RGBA32, one table", "libyuv ARGBColorTable", on, libyuvInPlaceBody(on));
  }

  void addSizes() {
    for (const Frame& size :
         {Frame{0, 1155, 866}, Frame{0, 2309, 1732}, kPhoto, Frame{0, 8000, 6000}}) {
      const PicturesPtr on = pictures(kBgr24, size);
      add("Cost by size, BGR24, one table", sizeName(size), "qpx", on, engineBody(on, {kOneTable}));
      add("Cost by size, BGR24, one table", sizeName(size), "memcpy", on, copyBody(on));
    }
  }

  void addChains() {
    const PicturesPtr on = pictures(kBgr24, kPhoto);
    const std::string group = "Merged chains, " + sizeName(kPhoto);
    add(group, "BGR24", "one effect", on, engineBody(on, {kOneTable}));
    add(group, "BGR24", "five, one table", on,
        engineBody(on, {kOneTable, 0x1800, 0x3000, kOneTable, 0x2100}));
    add(group, "BGR24", "five, three tables", on,
        engineBody(on, {kOneTable, kThreeTables, 0x1800, kOneTable, 0x4900}));
  }

  void addForms() {
    const std::string group = "Plain and vector forms, " + sizeName(kFull);
    for (const NamedFormat& format : {kBgr24, kRgba32, kNv21}) {
      const PicturesPtr on = pictures(format, kFull);
      const std::string workload = std::string(format.name) + ", one table";
      add(group, workload, "vector forms", on, engineBody(on, {kOneTable}));
      add(group, workload, "plain forms", on, engineBody(on, {kOneTable}), true);
    }
  }

  void addBands() {
    const PicturesPtr on = pictures(kBgr24, kPhoto);
    const std::string group = "Bands, " + sizeName(kPhoto);
    const std::string workload = "BGR24, one table";
    add(group, workload, "one call", on, engineBody(on, {kOneTable}));
    for (const int32_t rows : {64, 16, 1}) {
      add(group, workload, "rows a band: " + std::to_string(rows), on,
          engineBody(on, {kOneTable}, rows));
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
  return qpx::bench::run(argc, argv, report);
}
