// What is written beside the pixels, read from the bytes of the files.
#include <string>
#include <vector>

#include "image_files.h"
#include "picture.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

uint32_t bigEndian(const std::string& bytes, size_t at, size_t count) {
  uint32_t value = 0;
  for (size_t i = 0; i < count; ++i) value = value << 8 | static_cast<uint8_t>(bytes.at(at + i));
  return value;
}

// The data of every chunk of a type, in the order of the file.
std::vector<std::string> chunks(const std::string& png, const std::string& type) {
  std::vector<std::string> found;
  for (size_t at = 8; at + 12 <= png.size();) {
    const size_t length = bigEndian(png, at, 4);
    if (png.substr(at + 4, 4) == type) found.push_back(png.substr(at + 8, length));
    at += length + 12;
  }
  return found;
}

// Behind the JFIF marker, its length, the name and the version: unit, across, down.
constexpr size_t kJfifUnit = 13;

std::string jpegWithDensity(Image image, int unit, int across, int down) {
  std::string file = jpegFile(image);
  file[kJfifUnit] = static_cast<char>(unit);
  for (const auto& [at, value] : {std::pair{size_t{14}, across}, {size_t{16}, down}}) {
    file[at] = static_cast<char>(value >> 8);
    file[at + 1] = static_cast<char>(value & 255);
  }
  return file;
}

class MetadataTest : public ToolTest {
 protected:
  std::string through(const std::string& file, const std::string& out) const {
    write("in", file);
    EXPECT_TRUE(succeeded(run({"apply", "Fx1800", "in", out})));
    return read(out);
  }

  static std::vector<uint32_t> jpegDensity(const std::string& file) {
    return {bigEndian(file, kJfifUnit, 1), bigEndian(file, 14, 2), bigEndian(file, 16, 2)};
  }

  static std::vector<uint32_t> pngDensity(const std::string& file) {
    const std::vector<std::string> found = chunks(file, "pHYs");
    if (found.size() != 1) return {};
    return {bigEndian(found[0], 8, 1), bigEndian(found[0], 0, 4), bigEndian(found[0], 4, 4)};
  }

  Image image_ = randomImage(8, 8, 3, 61);
};

using Numbers = std::vector<uint32_t>;

TEST_F(MetadataTest, APngHasOneExifAndOneProfile) {
  image_.exif = exifWithOrientation(1);
  image_.icc = rgbProfile(400);
  for (const std::string& file : {pngFile(image_), jpegFile(image_)}) {
    const std::string png = through(file, "out.png");
    EXPECT_EQ(chunks(png, "eXIf"), std::vector<std::string>{image_.exif});
    EXPECT_EQ(chunks(png, "iCCP").size(), 1u);
    EXPECT_EQ(chunks(png, "IEND").size(), 1u);
  }
}

// 300 dpi are 11811.02 pixels a metre, 72 dpi 2834.65.
TEST_F(MetadataTest, DensityIsKeptInEveryDirection) {
  const std::string file = jpegWithDensity(image_, 1, 300, 72);
  EXPECT_EQ(jpegDensity(through(file, "a.jpg")), (Numbers{1, 300, 72}));
  const std::string png = through(file, "a.png");
  EXPECT_EQ(pngDensity(png), (Numbers{1, 11811, 2835}));
  EXPECT_EQ(pngDensity(through(png, "b.png")), (Numbers{1, 11811, 2835}));
  EXPECT_EQ(jpegDensity(through(png, "b.jpg")), (Numbers{1, 300, 72}));
}

TEST_F(MetadataTest, DensityInOtherUnits) {
  const std::string centimetres = jpegWithDensity(image_, 2, 118, 40);
  EXPECT_EQ(jpegDensity(through(centimetres, "a.jpg")), (Numbers{2, 118, 40}));
  EXPECT_EQ(pngDensity(through(centimetres, "a.png")), (Numbers{1, 11800, 4000}));
  const std::string ratio = jpegWithDensity(image_, 0, 4, 3);
  EXPECT_EQ(jpegDensity(through(ratio, "b.jpg")), (Numbers{0, 4, 3}));
  EXPECT_EQ(pngDensity(through(ratio, "b.png")), (Numbers{0, 4, 3}));
}

TEST_F(MetadataTest, DensityTurnsWithThePicture) {
  image_.exif = exifWithOrientation(6);
  EXPECT_EQ(jpegDensity(through(jpegWithDensity(image_, 1, 300, 72), "a.jpg")),
            (Numbers{1, 72, 300}));
}

TEST_F(MetadataTest, NoDensityIsMadeUp) {
  for (const std::string& file :
       {jpegWithDensity(image_, 0, 1, 1), jpegWithDensity(image_, 1, 0, 72),
        jpegWithDensity(image_, 9, 5, 6), pngFile(image_)}) {
    EXPECT_EQ(jpegDensity(through(file, "a.jpg")), (Numbers{0, 1, 1}));
    EXPECT_EQ(pngDensity(through(file, "a.png")), Numbers{});
  }
}

TEST(Density, BeyondWhatFitsIsTheMost) {
  const tool::Density huge = {tool::Density::Unit::inch, 4000000000u, 1};
  EXPECT_EQ(tool::inUnit(huge, tool::Density::Unit::metre).across, 2147483647u);
}

}  // namespace
}  // namespace qpx::test
