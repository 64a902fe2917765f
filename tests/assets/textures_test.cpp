#include <gtest/gtest.h>

#include <string>

#include "files.h"
#include "texture_rows.h"

namespace qpx {
namespace {

constexpr size_t kHeaderEnd = 33;  // signature, and the IHDR chunk with its sum

std::string fileOf(const TextureRow& row) { return std::string(row.name) + ".png"; }

TEST(Textures, EveryFileHasTheListedSizeAndChannels) {
  for (const TextureRow& row : kTextureRows) {
    const std::vector<uint8_t> bytes = assetBytes("textures/" + fileOf(row));
    ASSERT_GE(bytes.size(), kHeaderEnd) << row.name;
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 8), "\x89PNG\r\n\x1a\n") << row.name;
    EXPECT_EQ(bigEndian(bytes, 16, 4), row.width) << row.name;
    EXPECT_EQ(bigEndian(bytes, 20, 4), row.height) << row.name;
    EXPECT_EQ(bytes[24], 8) << row.name << ": bits a sample";
    EXPECT_EQ(bytes[25], row.color) << row.name << ": colour type";
    EXPECT_EQ(bytes[28], 0) << row.name << ": interlaced";
  }
}

TEST(Textures, ListAndFolderHoldTheSameNames) {
  std::set<std::string> listed;
  for (const TextureRow& row : kTextureRows) {
    EXPECT_TRUE(listed.insert(fileOf(row)).second) << row.name << " is listed twice";
  }
  EXPECT_EQ(listed.size(), 162u);
  EXPECT_EQ(assetNames("textures"), listed);
}

TEST(Textures, FilesHoldNoOptionalChunks) {
  for (const TextureRow& row : kTextureRows) {
    const std::vector<uint8_t> bytes = assetBytes("textures/" + fileOf(row));
    size_t at = 8;
    std::string type;
    while (at + 12 <= bytes.size() && type != "IEND") {
      type.assign(bytes.begin() + static_cast<ptrdiff_t>(at + 4),
                  bytes.begin() + static_cast<ptrdiff_t>(at + 8));
      const bool needed = type == "IHDR" || type == "IDAT" || type == "IEND" ||
                          (type == "PLTE" && row.color == kPalette);
      EXPECT_TRUE(needed) << row.name << ": " << type;
      at += 12 + size_t{bigEndian(bytes, at, 4)};
    }
    EXPECT_EQ(type, "IEND") << row.name;
    EXPECT_EQ(at, bytes.size()) << row.name << ": bytes behind the end";
  }
}

TEST(Assets, WholeSetStaysBelowSixteenMegabytes) {
  size_t total = 0;
  for (const std::string folder : {"textures", "tables"}) {
    for (const std::string& name : assetNames(folder)) {
      total += assetBytes(folder + "/" + name).size();
    }
  }
  EXPECT_GT(total, size_t{1} << 20);
  EXPECT_LT(total, size_t{16} << 20);
}

}  // namespace
}  // namespace qpx
