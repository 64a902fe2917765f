#include "exif.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "image_files.h"

namespace qpx::tool {
namespace {

std::vector<uint8_t> bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

TEST(Exif, ReadsTheOrientationInBothByteOrders) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    EXPECT_EQ(exifOrientation(bytesOf(test::exifWithOrientation(orientation))), orientation);
  }
  const std::string motorola("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0", 26);
  EXPECT_EQ(exifOrientation(bytesOf(motorola)), 6);
}

TEST(Exif, TakesAnythingElseForUpright) {
  EXPECT_EQ(exifOrientation({}), 1);
  EXPECT_EQ(exifOrientation(bytesOf(test::exifWithOrientation(0))), 1);
  EXPECT_EQ(exifOrientation(bytesOf(test::exifWithOrientation(9))), 1);
  EXPECT_EQ(exifOrientation(bytesOf("XX" + test::exifWithOrientation(6).substr(2))), 1);
}

TEST(Exif, ResetsTheOrientationAndUnlinksTheThumbnailAndNothingElse) {
  std::vector<uint8_t> data = bytesOf(test::exifWithOrientation(6, true));
  std::vector<uint8_t> expected = data;
  expected[18] = 1;  // the value
  expected[22] = 0;  // the pointer to the second directory
  describeUpright(data, 100, 50);
  EXPECT_EQ(data, expected);
}

TEST(Exif, StoresTheTurnedPixelDimensions) {
  // One entry pointing to a directory at 26, which holds the width as 32 bits and the height as 16.
  const std::string tiff =
      std::string("II*\0\x08\0\0\0\x01\0\x69\x87\x04\0\x01\0\0\0\x1A\0\0\0\0\0\0\0", 26) +
      std::string("\x02\0\x02\xA0\x04\0\x01\0\0\0\x11\x11\0\0", 14) +
      std::string("\x03\xA0\x03\0\x01\0\0\0\x22\x22\0\0\0\0\0\0", 16);
  std::vector<uint8_t> data = bytesOf(tiff);
  describeUpright(data, 0x12345, 0x678);
  EXPECT_EQ(std::vector<uint8_t>(data.begin() + 36, data.begin() + 40),
            (std::vector<uint8_t>{0x45, 0x23, 0x01, 0x00}));
  EXPECT_EQ(std::vector<uint8_t>(data.begin() + 48, data.begin() + 52),
            (std::vector<uint8_t>{0x78, 0x06, 0x00, 0x00}));
}

// Run under the address sanitizer this shows any read or write outside.
TEST(Exif, SurvivesEveryTruncationAndWildOffsets) {
  const std::string whole = test::exifWithOrientation(8, true);
  for (size_t length = 0; length <= whole.size(); ++length) {
    std::vector<uint8_t> data = bytesOf(whole.substr(0, length));
    const int orientation = exifOrientation(data);
    EXPECT_EQ(orientation, length >= 22 ? 8 : 1) << length;
    describeUpright(data, 1, 1);
    EXPECT_EQ(data.size(), length);
  }
  for (size_t i = 4; i < whole.size(); ++i) {
    std::vector<uint8_t> data = bytesOf(whole);
    data[i] = 0xFF;
    const int orientation = exifOrientation(data);
    EXPECT_TRUE(orientation >= 1 && orientation <= 8);
    describeUpright(data, 1, 1);
  }
}

}  // namespace
}  // namespace qpx::tool
