#include "files.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace qpx {

std::vector<uint8_t> assetBytes(const std::string& path) {
  std::ifstream file(std::string(QPX_ASSETS_DIR "/") + path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  return {text.begin(), text.end()};
}

std::set<std::string> assetNames(const std::string& folder) {
  std::set<std::string> names;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::string(QPX_ASSETS_DIR "/") + folder)) {
    names.insert(entry.path().filename().string());
  }
  return names;
}

uint32_t bigEndian(const std::vector<uint8_t>& bytes, size_t at, size_t count) {
  uint32_t value = 0;
  for (size_t i = 0; i < count; ++i) {
    value = value << 8 | bytes[at + i];
  }
  return value;
}

}  // namespace qpx
