// One table at the end of a run, in place of a line for every repetition.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace qpx::bench {

// What a benchmark is beside its name: rows of a group stand together, and each is held against the
// other subjects that do the same to the same bytes.
struct Subject {
  std::string group;     // "Tone tables, 1920x1080"
  std::string workload;  // "BGR24, one table"
  std::string name;      // "qpx", "memcpy", "cv::LUT"
  int64_t pixels;        // of one turn
};

class Report : public benchmark::BenchmarkReporter {
 public:
  // Registers a benchmark. Rows of the table stand in the order in which they are added.
  void add(Subject subject, std::function<void(benchmark::State&)> body);

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  struct Row {
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

// Runs what was added. Arguments are those of Google Benchmark; without any, repetitions are
// interleaved so that a slow moment of the machine falls on all subjects alike. Returns the exit
// code.
int run(int argc, char** argv, Report& report);

}  // namespace qpx::bench
