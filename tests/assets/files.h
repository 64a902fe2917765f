#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace qpx {

// The whole file below assets/; empty when it cannot be read.
std::vector<uint8_t> assetBytes(const std::string& path);

// Names of the files of a folder below assets/.
std::set<std::string> assetNames(const std::string& folder);

// Big-endian, as PNG and PKM headers store numbers.
uint32_t bigEndian(const std::vector<uint8_t>& bytes, size_t at, size_t count);

}  // namespace qpx
