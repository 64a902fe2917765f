// Runs the built qpx as a process, in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qpx::test {

struct ToolRun {
  int status = -1;  // exit status, or -1 for an end by a signal
  std::string out;
  std::string err;
};

// A fresh folder that goes with the test. Paths given to run() are relative to it.
class ToolTest : public testing::Test {
 protected:
  ToolTest();
  ~ToolTest() override;

  ToolRun run(const std::vector<std::string>& arguments, const std::string& input = {}) const;

  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  std::string read(const std::string& name) const;
  void write(const std::string& name, const std::string& bytes) const;
  bool exists(const std::string& name) const;

  // Names in the folder, hidden ones too, sorted and joined by spaces.
  std::string files() const;

 private:
  std::string folder_;
};

// The run failed with this status, said just one line that starts with "qpx: " and contains `text`.
testing::AssertionResult failedWith(const ToolRun& run, int status, const std::string& text);

// Status 0 and nothing on standard error.
testing::AssertionResult succeeded(const ToolRun& run);

}  // namespace qpx::test
