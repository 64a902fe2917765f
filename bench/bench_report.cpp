#include "bench_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace qpx::bench {

void Report::add(Subject subject, std::function<void(benchmark::State&)> body) {
  const std::string name = subject.group + "/" + subject.workload + "/" + subject.name;
  places_[name] = rows_.size();
  rows_.push_back({std::move(subject), {}});
  benchmark::RegisterBenchmark(name.c_str(), std::move(body))->MeasureProcessCPUTime();
}

double Report::Row::median() const {
  if (nanoseconds.empty()) return NAN;
  std::vector<double> sorted = nanoseconds;
  const auto middle = sorted.begin() + static_cast<ptrdiff_t>(sorted.size() / 2);
  std::nth_element(sorted.begin(), middle, sorted.end());
  return *middle;
}

bool Report::ReportContext(const Context& context) {
  std::printf("%d processors of %.0f MHz, CPU time of all threads. Running ...\n",
              context.cpu_info.num_cpus, context.cpu_info.cycles_per_second / 1e6);
  std::fflush(stdout);
  return true;
}

void Report::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
    const auto place = places_.find(run.run_name.function_name);
    if (place == places_.end()) continue;
    Row& row = rows_[place->second];
    const double seconds = run.cpu_accumulated_time / static_cast<double>(run.iterations);
    row.nanoseconds.push_back(seconds * 1e9 / static_cast<double>(row.subject.pixels));
  }
}

double Report::ratioTo(const Row& row, const char* name) const {
  for (const Row& other : rows_) {
    const bool sameWork =
        other.subject.group == row.subject.group && other.subject.workload == row.subject.workload;
    if (!sameWork || other.nanoseconds.empty()) continue;
    if (name == nullptr || other.subject.name == name) return row.median() / other.median();
  }
  return NAN;
}

void Report::printRow(const Row& row) const {
  const auto [least, most] = std::minmax_element(row.nanoseconds.begin(), row.nanoseconds.end());
  std::printf("  %-26s %-24s %9.4f %9.4f %9.4f", row.subject.workload.c_str(),
              row.subject.name.c_str(), row.median(), *least, *most);
  const double toCopy = ratioTo(row, "memcpy");
  std::printf(" %9.2f", ratioTo(row, nullptr));
  std::printf(std::isnan(toCopy) ? "         -\n" : " %9.2f\n", toCopy);
}

void Report::Finalize() {
  std::string group;
  for (const Row& row : rows_) {
    if (row.nanoseconds.empty()) continue;
    if (row.subject.group != group) {
      group = row.subject.group;
      std::printf("\n%s\n  %-26s %-24s %9s %9s %9s %9s %9s\n", group.c_str(), "work", "by",
                  "ns/pixel", "least", "most", "x first", "x memcpy");
    }
    printRow(row);
  }
  std::printf("\nMedian, least and most CPU time of interleaved repetitions.\n");
}

int run(int argc, char** argv, Report& report) {
  // Arguments of the call come last and win.
  std::vector<std::string> texts = {argv[0], "--benchmark_repetitions=9",
                                    "--benchmark_min_time=0.02", "--benchmark_min_warmup_time=0.01",
                                    "--benchmark_enable_random_interleaving=true"};
  texts.insert(texts.end(), argv + 1, argv + argc);
  std::vector<char*> arguments;
  for (std::string& text : texts) arguments.push_back(text.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  benchmark::RunSpecifiedBenchmarks(&report);
  benchmark::Shutdown();
  return 0;
}

}  // namespace qpx::bench
