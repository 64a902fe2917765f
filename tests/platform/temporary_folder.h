#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/failing_memory.h"

namespace qpx::testing {

// A folder of its own for each test, gone with it.
class TemporaryFolder : public ::testing::Test {
 protected:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "qpx-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~TemporaryFolder() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  std::string fileWith(const std::string& name, const std::string& text) const {
    std::ofstream(path(name), std::ios::binary) << text;
    return path(name);
  }

  static std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  static std::vector<uint16_t> wide(const std::string& text) {
    std::vector<uint16_t> units;
    for (const char c : text) units.push_back(static_cast<uint8_t>(c));
    units.push_back(0);
    return units;
  }

  static int64_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  }

 private:
  std::filesystem::path folder_;
};

// Streams that give back every block and descriptor they took.
class StreamFolder : public TemporaryFolder {
 protected:
  static constexpr int32_t kStart = 0;
  static constexpr int32_t kEnd = 1;
  static constexpr int32_t kCurrent = 2;

  void SetUp() override {
    FailingMemory::reset();
    blocks_ = FailingMemory::liveBlocks();
    descriptors_ = openDescriptors();
  }
  void TearDown() override { expectAllGivenBack(); }

  void expectAllGivenBack() const {
    EXPECT_EQ(FailingMemory::liveBlocks(), blocks_);
    EXPECT_EQ(openDescriptors(), descriptors_);
  }

 private:
  int64_t blocks_ = 0;
  int64_t descriptors_ = 0;
};

}  // namespace qpx::testing
