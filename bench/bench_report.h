// One table at the end of a run, in place of a line for every repetition.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace qpx::bench {

// What a benchmark is beside its name: rows of a group stand together, and each is held against the
// other subjects that do the same to the same bytes.
struct Subject {
  std::string group;     // "Tone tables, 1920x1080"
  std::string workload;  // "0x1300 BGR24"
  std::string name;      // "qpx", "memcpy", "cv::LUT"
  int64_t pixels;
};

// Names of benchmarks in the order of their table.
class Report : public benchmark::BenchmarkReporter {
 public:
  void add(const std::string& benchmarkName, Subject subject);

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  struct Row {
    std::string benchmarkName;
    Subject subject;
    std::vector<double> nanoseconds;  // a pixel, one entry for each repetition
    double median() const;
  };

  void printRow(const Row& row) const;
  // Against the subject of this name that does the same work, or the first one (null).
  double ratioTo(const Row& row, const char* name) const;

  std::vector<Row> rows_;
  std::map<std::string, size_t> places_;
};

}  // namespace qpx::bench
