// Every call that allocates, with every one of its allocations failing, those of libpng and zlib
// included.
#include <gtest/gtest.h>
#include <qpx/image.h>

#include "support/failing_memory.h"
#include "toolkit/png_files.h"

namespace {

using namespace qpx::testing;

// Runs body with the n-th allocation failing, alone and with all behind it; returns how many there
// are.
template <typename Body>
int64_t faults(Body body) {
  int64_t count = 0;
  FailingMemory::reset();
  const int64_t blocks = FailingMemory::liveBlocks();
  for (const bool firstOnly : {true, false}) {
    count = FailingMemory::forEachFailure(firstOnly, [&] {
      body();
      EXPECT_EQ(FailingMemory::liveBlocks(), blocks);
      EXPECT_EQ(FailingMemory::doubleFrees() + FailingMemory::foreignFrees(), 0);
    });
  }
  return count;
}

bool refused() { return FailingMemory::failures() > 0; }

std::vector<PngPicture> pictures() {
  std::vector<PngPicture> made;
  for (const bool interlaced : {false, true}) {
    made.emplace_back(PngKind{6, 16}, 40, 30, interlaced);
    made.emplace_back(PngKind{3, 8}, 40, 30, interlaced);
    made.back().alphas = {1, 2, 3};
    made.back().sRgbIntent = 0;
  }
  return made;
}

TEST(PngFaults, OpeningADecoder) {
  for (const PngPicture& picture : pictures()) {
    const ByteStream stream(picture.file());
    EXPECT_GE(faults([&] {
                MStreamSeek(stream.get(), 0, 0);
                PngHandle* handle = nullptr;
                const int32_t result = PNG_DecodeInit(stream.get(), &handle);
                EXPECT_TRUE(result == 0 || (refused() && result == 4)) << result;
                EXPECT_EQ(handle != nullptr, result == 0);
                PNG_DecodeUninit(handle);
              }),
              5);
  }
}

TEST(PngFaults, OpeningAPair) {
  const ByteStream stream(pictures()[0].file());
  faults([&] {
    MStreamSeek(stream.get(), 0, 0);
    QPXPng* handle = nullptr;
    const int32_t result = QPX_png_create(stream.get(), &handle);
    EXPECT_TRUE(result == 0 || (refused() && (result == -1 || result == 4))) << result;
    EXPECT_EQ(handle != nullptr, result == 0);
    QPX_png_destroy(handle);
  });
  FailingMemory::failOnly(1);
  QPXPng* handle = nullptr;
  EXPECT_EQ(QPX_png_create(stream.get(), &handle), -1);
  FailingMemory::reset();
}

TEST(PngFaults, AskingForASizeLeavesTheOldOne) {
  const PngPicture picture({6, 8}, 40, 30, false);
  const ByteStream stream(picture.file());
  PngHandle* handle = nullptr;
  ASSERT_EQ(PNG_DecodeInit(stream.get(), &handle), 0);
  for (int64_t n = 1; n <= 3; ++n) {
    FailingMemory::failOnly(n);
    int32_t width = 20, height = 20;
    EXPECT_EQ(PNG_DecodeSetDimension(handle, &width, &height), 4);
    EXPECT_EQ(width, 20);
    EXPECT_EQ(height, 20);
    PngInfo info = {};
    PNG_DecodeGetPngInfo(handle, &info);
    EXPECT_EQ(info.width, 40u);
  }
  FailingMemory::reset();
  std::vector<uint8_t> bytes(160);
  uint8_t* const row = bytes.data();
  int32_t line = 0, done = 0;
  EXPECT_EQ(PNG_DecodeScanLines(handle, &row, 1, &line, &done), 0);
  for (int32_t x = 0; x < 40; ++x) EXPECT_EQ(pixelAt(row, 32, x), picture.pixel(x, 0, true));
  PNG_DecodeUninit(handle);
}

TEST(PngFaults, ReadingRows) {
  for (const PngPicture& picture : pictures()) {
    const ByteStream stream(picture.file());
    EXPECT_GE(faults([&] {
                MStreamSeek(stream.get(), 0, 0);
                PngHandle* handle = nullptr;
                PNG_DecodeInit(stream.get(), &handle);
                int32_t width = 20, height = 20;
                PNG_DecodeSetDimension(handle, &width, &height);
                uint8_t bytes[160];
                uint8_t* const row = bytes;
                int32_t line = 0, done = 0, result = 0;
                for (int i = 0; handle != nullptr && i < 30 && result == 0; ++i) {
                  result = PNG_DecodeScanLines(handle, &row, 1, &line, &done);
                }
                EXPECT_TRUE(result == 0 || result == 1 || (refused() && result == 4)) << result;
                PNG_DecodeUninit(handle);
              }),
              8);
  }
}

// What libpng left half done can not be gone on with, whether memory is back or not.
TEST(PngFaults, ADecoderThatRanOutOfMemoryStaysBroken) {
  const ByteStream stream(pictures()[0].file());
  PngHandle* handle = nullptr;
  ASSERT_EQ(PNG_DecodeInit(stream.get(), &handle), 0);
  uint8_t bytes[160];
  uint8_t* const row = bytes;
  int32_t line = 0, done = 0;
  FailingMemory::failFrom(1);
  EXPECT_EQ(PNG_DecodeScanLines(handle, &row, 1, &line, &done), 4);
  FailingMemory::reset();
  EXPECT_EQ(PNG_DecodeScanLines(handle, &row, 1, &line, &done), 1);
  EXPECT_EQ(done, 0);
  EXPECT_EQ(PNG_DecodeUninit(handle), 0);
}

TEST(PngFaults, DecodingAFileFailsForItsRecordAndItsPixelsOnly) {
  for (const PngPicture& picture : pictures()) {
    const std::vector<uint8_t> file = picture.file();
    int noBitmap = 0;
    EXPECT_GE(faults([&] {
                MBitmap* bitmap = nullptr;
                const int32_t result =
                    QPX_DecodePNG(file.data(), static_cast<int32_t>(file.size()), &bitmap);
                EXPECT_TRUE(result == 0 || (refused() && result == -2)) << result;
                EXPECT_EQ(bitmap != nullptr, result == 0);
                noBitmap += result == -2;
                UTIL_MBitmapFree(bitmap);
              }),
              9);
    EXPECT_GE(noBitmap, 4);
  }
}

}  // namespace
