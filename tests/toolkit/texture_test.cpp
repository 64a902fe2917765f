// Textures into stages, and the embedded objects against the files that they came from.
#include "toolkit/textures.h"

#include <gtest/gtest.h>
#include <qpx/image.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>

#include "support/failing_memory.h"
#include "toolkit/png_files.h"

namespace {

using namespace qpx::testing;
using qpx::Asset;

Asset assetOf(const std::vector<uint8_t>& file) {
  return {"test", file.data(), static_cast<uint32_t>(file.size())};
}

// A stage by itself, whose pictures are freed as an engine frees them.
struct Loaded {
  Loaded() { std::memset(static_cast<void*>(&stage), 0, sizeof stage); }
  ~Loaded() {
    for (void** slot = stage.resources; slot != nullptr && *slot != nullptr; ++slot) {
      MBitmapFree(static_cast<MBitmap*>(*slot));
      MMemFree(nullptr, *slot);
    }
    MMemFree(nullptr, stage.resources);
  }

  qpx::Stage stage;
};

TEST(Textures, AreDecodedInOrderAndEndedByANull) {
  const PngPicture first({6, 8}, 5, 4, false), second({0, 8}, 3, 7, false);
  const std::vector<uint8_t> files[] = {first.file(), second.file()};
  Loaded loaded;
  ASSERT_EQ(qpx::loadTextures(loaded.stage, {assetOf(files[0]), assetOf(files[1])}), 0);
  EXPECT_EQ(qpx::texture(loaded.stage, 0).format, 0x37001777u);
  EXPECT_EQ(qpx::texture(loaded.stage, 0).width, 5);
  EXPECT_EQ(qpx::texture(loaded.stage, 1).format, 0x64000000u);
  EXPECT_EQ(qpx::texture(loaded.stage, 1).height, 7);
  EXPECT_EQ(loaded.stage.resources[2], nullptr);
  const MBitmap& last = qpx::texture(loaded.stage, 1);
  EXPECT_EQ(last.plane[0][last.pitch[0] * 6 + 2], second.pixel(2, 6, false));
}

TEST(Textures, WithoutPixelsBecomeATransparentPixel) {
  const std::vector<uint8_t> files[] = {PngPicture({4, 8}, 5, 4, false).file(),
                                        std::vector<uint8_t>(50, 'x')};
  Loaded loaded;
  ASSERT_EQ(qpx::loadTextures(loaded.stage, {assetOf(files[0]), assetOf(files[1])}), 0);
  for (size_t i : {0, 1}) {
    const MBitmap& bitmap = qpx::texture(loaded.stage, i);
    EXPECT_EQ(bitmap.format, 0x37001777u);
    EXPECT_EQ(bitmap.width, 1);
    EXPECT_EQ(bitmap.height, 1);
    EXPECT_EQ(pixelAt(bitmap.plane[0], 32, 0), 0u);
  }
}

TEST(Textures, ABrokenOneKeepsItsSizeAndFirstRows) {
  const PngPicture picture({6, 8}, 64, 400, false);
  std::vector<uint8_t> file = picture.file();
  file.resize(file.size() / 2);
  Loaded loaded;
  ASSERT_EQ(qpx::loadTextures(loaded.stage, {assetOf(file)}), 0);
  EXPECT_EQ(qpx::texture(loaded.stage, 0).height, 400);
  EXPECT_EQ(pixelAt(qpx::texture(loaded.stage, 0).plane[0], 32, 9), picture.pixel(9, 0, false));
}

// Short memory anywhere, libpng's and zlib's share included, is never taken for a broken file.
TEST(Textures, AreCompleteOrOutOfMemory) {
  const PngPicture picture({6, 8}, 40, 30, false);
  const std::vector<uint8_t> file = picture.file();
  FailingMemory::reset();
  const int64_t blocks = FailingMemory::liveBlocks();
  for (const bool firstOnly : {true, false}) {
    const int64_t count = FailingMemory::forEachFailure(firstOnly, [&] {
      Loaded loaded;
      const int32_t result = qpx::loadTextures(loaded.stage, {assetOf(file), assetOf(file)});
      if (result == 0) {
        for (size_t i : {0, 1}) {
          const MBitmap& bitmap = qpx::texture(loaded.stage, i);
          const uint8_t* const last = bitmap.plane[0] + bitmap.pitch[0] * 29;
          EXPECT_EQ(pixelAt(last, 32, 39), picture.pixel(39, 29, false));
        }
      } else {
        EXPECT_EQ(result, 4);
        EXPECT_GT(FailingMemory::failures(), 0);
      }
    });
    EXPECT_GE(count, 15);
  }
  EXPECT_EQ(FailingMemory::liveBlocks(), blocks);
}

struct Folder {
  std::filesystem::path path;
  std::string extension;
  std::span<const Asset> embedded;
};

std::vector<Folder> folders() {
  const std::filesystem::path root = QPX_ASSETS_DIR;
  return {{root / "textures", ".png", qpx::embeddedTextures()},
          {root / "tables", ".bin", qpx::embeddedTables()}};
}

std::set<std::string> filesIn(const Folder& folder) {
  std::set<std::string> names;
  if (!std::filesystem::exists(folder.path)) return names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path)) {
    if (entry.path().extension() == folder.extension) names.insert(entry.path().stem());
  }
  return names;
}

TEST(EmbeddedAssets, AreTheFilesOfTheFolders) {
  for (const Folder& folder : folders()) {
    std::set<std::string> names;
    for (const Asset& asset : folder.embedded) {
      EXPECT_TRUE(names.insert(asset.name).second) << asset.name;
      std::ifstream file(folder.path / (asset.name + folder.extension), std::ios::binary);
      const std::string bytes{std::istreambuf_iterator<char>(file), {}};
      ASSERT_EQ(bytes.size(), asset.size) << asset.name;
      EXPECT_EQ(std::memcmp(bytes.data(), asset.data, bytes.size()), 0) << asset.name;
      EXPECT_EQ(reinterpret_cast<uintptr_t>(asset.data) % 64, 0u) << asset.name;
    }
    EXPECT_EQ(names, filesIn(folder));
  }
}

TEST(EmbeddedAssets, EveryTextureDecodesWhole) {
  for (const Asset& asset : qpx::embeddedTextures()) {
    const ByteStream stream({asset.data, asset.data + asset.size});
    QPXPng* png = nullptr;
    PngInfo info = {};
    ASSERT_EQ(QPX_png_create(stream.get(), &png), 0) << asset.name;
    EXPECT_EQ(QPX_png_get_property(png, QPX_PNG_PROPERTY_INFO, &info), 0) << asset.name;
    MBitmap* const bitmap = UTIL_MBitmapCreate(static_cast<int32_t>(info.width),
                                               static_cast<int32_t>(info.height), info.format);
    EXPECT_EQ(QPX_png_decode(png, bitmap), 0) << asset.name;
    UTIL_MBitmapFree(bitmap);
    QPX_png_destroy(png);
  }
}

}  // namespace
