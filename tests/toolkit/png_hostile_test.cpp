// Broken and lying files: a code, and no byte outside the bitmap.
#include <gtest/gtest.h>
#include <qpx/image.h>

#include <algorithm>
#include <cstring>

#include "support/failing_memory.h"
#include "support/picture.h"
#include "toolkit/png_files.h"

namespace {

using namespace qpx::testing;

constexpr uint8_t kGuard = 0xC3;
constexpr int32_t kSide = 24;

// A target of fixed size whatever the file says, with guards around it.
class Target {
 public:
  explicit Target(uint32_t format)
      : rowBytes_(kSide * UTIL_GetPixelBytesEX(format)),
        pitch_(rowBytes_ + 5),
        bytes_(static_cast<size_t>(pitch_ * kSide + 16), kGuard) {
    bitmap_ = {format, kSide, kSide, {pitch_, 0, 0}, {&bytes_[8], nullptr, nullptr}};
  }

  MBitmap* bitmap() { return &bitmap_; }

  bool guardsUntouched() const {
    for (int32_t i = 0; i < static_cast<int32_t>(bytes_.size()); ++i) {
      const int32_t y = (i - 8) / pitch_, x = (i - 8) % pitch_;
      const bool inside = i >= 8 && y < kSide && x < rowBytes_;
      if (!inside && bytes_[static_cast<size_t>(i)] != kGuard) return false;
    }
    return true;
  }

 private:
  int32_t rowBytes_;
  int32_t pitch_;
  std::vector<uint8_t> bytes_;
  MBitmap bitmap_;
};

bool knownCode(int32_t result) {
  return result == 0 || result == 1 || result == 3 || result == 34194;
}

// All passes at full size into a target of its own size.
void decodeIntoTarget(const std::vector<uint8_t>& file, uint32_t format) {
  const ByteStream stream(file);
  QPXPng* png = nullptr;
  ASSERT_TRUE(knownCode(QPX_png_create(stream.get(), &png)));
  if (png == nullptr) return;
  Target target(format);
  for (int pass = 0; pass < 8; ++pass) {
    ASSERT_TRUE(knownCode(QPX_png_decode(png, target.bitmap())));
  }
  ASSERT_TRUE(target.guardsUntouched());
  QPX_png_destroy(png);
}

// All passes at half size into rows of just the size that the decoder tells.
void decodeScaled(const std::vector<uint8_t>& file) {
  const ByteStream stream(file);
  PngHandle* png = nullptr;
  if (PNG_DecodeInit(stream.get(), &png) != 0) return;
  PngInfo info = {};
  PNG_DecodeGetPngInfo(png, &info);
  int32_t size = 0;
  PNG_DecodeGetColorTab(png, nullptr, &size);
  std::vector<uint8_t> table(static_cast<size_t>(size));
  PNG_DecodeGetColorTab(png, table.data(), &size);
  int32_t width = static_cast<int32_t>(info.width / 2), height = static_cast<int32_t>(info.height);
  PNG_DecodeSetDimension(png, &width, &height);
  PNG_DecodeGetPngInfo(png, &info);
  std::vector<uint8_t> bytes(info.rowBytes);
  bytes.shrink_to_fit();
  uint8_t* const row = bytes.data();
  int32_t line = 0, done = 0;
  while (PNG_DecodeScanLines(png, &row, 1, &line, &done) == 0) ASSERT_EQ(done, 1);
  ASSERT_EQ(done, 0);
  ASSERT_LE(line, static_cast<int32_t>(info.height));
  PNG_DecodeUninit(png);
}

void decodeEveryWay(const std::vector<uint8_t>& file) {
  for (const uint32_t format : {0x64000000u, 0x16001777u, 0x37001777u}) {
    decodeIntoTarget(file, format);
  }
  decodeScaled(file);
  MBitmap* bitmap = nullptr;
  const int32_t result = QPX_DecodePNG(file.data(), static_cast<int32_t>(file.size()), &bitmap);
  ASSERT_TRUE(result == 0 || result == -2);
  UTIL_MBitmapFree(bitmap);
}

std::vector<PngPicture> smallPictures() {
  std::vector<PngPicture> made;
  for (const PngKind& kind : pngKinds()) {
    for (const bool interlaced : {false, true}) {
      made.emplace_back(kind, 9, 6, interlaced);
      made.back().xResolution = 100;
      made.back().yResolution = 100;
      made.back().sRgbIntent = 0;
      if (kind.colorType == 3) made.back().alphas = {1, 2};
    }
  }
  return made;
}

TEST(HostilePng, TruncationAtEveryByte) {
  const int64_t blocks = FailingMemory::liveBlocks();
  for (const PngPicture& picture : smallPictures()) {
    const std::vector<uint8_t> file = picture.file();
    for (size_t size = 0; size < file.size(); ++size) {
      decodeEveryWay({file.begin(), file.begin() + static_cast<ptrdiff_t>(size)});
    }
  }
  EXPECT_EQ(FailingMemory::liveBlocks(), blocks);
}

// With its check sum made right again, a wrong header or palette gets through to the decoder.
void mendCheckSums(std::vector<uint8_t>* file) {
  for (size_t at = 8; at + 12 <= file->size();) {
    const auto byte = [&](size_t i) { return size_t{(*file)[at + i]}; };
    const size_t size = byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3);
    if (size > file->size() - at - 12) return;
    const auto start = file->begin() + static_cast<ptrdiff_t>(at);
    const std::vector<uint8_t> whole = chunk(std::string(start + 4, start + 8),
                                             {start + 8, start + 8 + static_cast<ptrdiff_t>(size)});
    std::copy(whole.begin(), whole.end(), start);
    at += size + 12;
  }
}

TEST(HostilePng, TwentyThousandFlippedBits) {
  const int64_t blocks = FailingMemory::liveBlocks();
  Random random(2026);
  std::vector<std::vector<uint8_t>> files;
  for (const PngPicture& picture : smallPictures()) files.push_back(picture.file());
  for (int i = 0; i < 20000; ++i) {
    std::vector<uint8_t> file = files[static_cast<size_t>(i) % files.size()];
    for (int flips = random.between(1, 3); flips > 0; --flips) {
      const size_t at =
          static_cast<size_t>(random.between(0, static_cast<int32_t>(file.size()) - 1));
      file[at] = static_cast<uint8_t>(file[at] ^ 1u << random.between(0, 7));
    }
    if (i % 2 == 0) mendCheckSums(&file);
    // A header may now claim a picture of up to 1 GiB, which has a test of its own.
    const auto side = [&](size_t byte) { return file[byte] == 0 && file[byte + 1] == 0; };
    if (side(16) && side(20)) decodeEveryWay(file);
  }
  EXPECT_EQ(FailingMemory::liveBlocks(), blocks);
}

TEST(HostilePng, AHeaderThatClaimsTooMuchIsRefusedBeforeAnythingIsAllocatedForIt) {
  struct Claim {
    uint32_t width, height;
  };
  constexpr Claim kTooLarge[] = {{65536, 1},     {1, 65536},      {65535, 65535},
                                 {46341, 46341}, {0x7FFFFFFF, 1}, {0x7FFFFFFF, 0x7FFFFFFF},
                                 {16385, 16384}, {0xFFFFFFFF, 1}, {1, 0x80000000}};
  for (const Claim& claim : kTooLarge) {
    const std::vector<uint8_t> file =
        joined(pngStart(claim.width, claim.height, 8, 6), chunk("IDAT", {1, 2, 3}));
    const ByteStream stream(file);
    PngHandle* handle = nullptr;
    FailingMemory::reset();
    const int64_t before = FailingMemory::liveBytes();
    EXPECT_EQ(PNG_DecodeInit(stream.get(), &handle), 1) << claim.width << "x" << claim.height;
    EXPECT_LT(FailingMemory::peakBytes() - before, 100000);
    MBitmap* bitmap = nullptr;
    EXPECT_EQ(QPX_DecodePNG(file.data(), static_cast<int32_t>(file.size()), &bitmap), 0);
    EXPECT_EQ(bitmap->width, 0);
    EXPECT_EQ(bitmap->plane[0], nullptr);
    UTIL_MBitmapFree(bitmap);
  }
}

TEST(HostilePng, TheLargestPictureIsOpenedWithLittleMemory) {
  const std::vector<uint8_t> file = joined(pngStart(16384, 16384, 8, 6), chunk("IDAT", {1, 2, 3}));
  const ByteStream stream(file);
  PngHandle* handle = nullptr;
  FailingMemory::reset();
  const int64_t before = FailingMemory::liveBytes();
  ASSERT_EQ(PNG_DecodeInit(stream.get(), &handle), 0);
  PngInfoHeader header = {};
  EXPECT_EQ(PNG_DecodeGetInfoHeader(handle, &header), 0);
  EXPECT_EQ(header.imageSize, 1u << 30);
  int32_t width = 16383, height = 16384;
  EXPECT_EQ(PNG_DecodeSetDimension(handle, &width, &height), 0);
  EXPECT_EQ(width, 16383);
  EXPECT_LT(FailingMemory::peakBytes() - before, 2000000);
  PNG_DecodeUninit(handle);
}

TEST(HostilePng, ABrokenDecoderStaysBroken) {
  std::vector<uint8_t> file = PngPicture({6, 8}, 64, 400, false).file();
  file.resize(file.size() / 2);
  const ByteStream stream(file);
  PngHandle* handle = nullptr;
  ASSERT_EQ(PNG_DecodeInit(stream.get(), &handle), 0);
  uint8_t bytes[256];
  uint8_t* const row = bytes;
  int32_t line = 0, done = 0, rows = 0;
  while (PNG_DecodeScanLines(handle, &row, 1, &line, &done) == 0) ++rows;
  EXPECT_GT(rows, 100);
  EXPECT_LT(rows, 300);
  EXPECT_EQ(line, rows);
  EXPECT_EQ(PNG_DecodeScanLines(handle, &row, 1, &line, &done), 1);
  EXPECT_EQ(line, rows);
  EXPECT_EQ(PNG_DecodeUninit(handle), 0);
}

}  // namespace
