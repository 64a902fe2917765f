// The decoder at full size: rows, and what it tells of a file. Expectations come from the samples
// that the files were written from.
#include <gtest/gtest.h>

#include <cstring>

#include "toolkit/png_files.h"

namespace {

using namespace qpx::testing;

constexpr uint8_t kUntouched = 0x5A;

// An open decoder over a file.
struct Decoder {
  explicit Decoder(std::vector<uint8_t> file) : stream(std::move(file)) {
    result = PNG_DecodeInit(stream.get(), &handle);
  }
  ~Decoder() { PNG_DecodeUninit(handle); }

  ByteStream stream;
  PngHandle* handle = nullptr;
  int32_t result;
};

// Rows with known bytes before, between and behind them.
struct Rows {
  Rows(uint32_t rowBytes, int32_t height)
      : pitch(rowBytes + 3), bytes(pitch * static_cast<size_t>(height) + 1, kUntouched) {
    for (int32_t y = 0; y < height; ++y) rows.push_back(&bytes[pitch * static_cast<size_t>(y) + 1]);
  }

  bool guardsUntouched(uint32_t rowBytes) const {
    if (bytes[0] != kUntouched) return false;
    for (const uint8_t* row : rows) {
      for (size_t i = rowBytes; i + 1 < pitch; ++i) {
        if (row[i] != kUntouched) return false;
      }
    }
    return true;
  }

  size_t pitch;
  std::vector<uint8_t> bytes;
  std::vector<uint8_t*> rows;
};

std::vector<PngPicture> pictures() {
  std::vector<PngPicture> made;
  for (const PngKind& kind : pngKinds()) {
    for (const bool interlaced : {false, true}) {
      for (const auto& [width, height] : {std::pair{1, 1}, {2, 9}, {7, 5}, {8, 8}, {33, 17}}) {
        made.emplace_back(kind, width, height, interlaced, static_cast<uint64_t>(width));
      }
    }
  }
  return made;
}

// Compares all pixels with what is there after `pass` passes.
void expectPicture(const PngPicture& picture, const Rows& rows, bool bgr, int pass) {
  Rows expected(picture.rowBytes(), picture.height);
  for (int32_t y = 0; y < picture.height; ++y) {
    const size_t row = static_cast<size_t>(y);
    for (int32_t x = 0; x < picture.width; ++x) {
      if (picture.passOf(x, y) > pass) continue;
      putPixel(expected.rows[row], picture.bits(), x, picture.pixel(x, y, bgr));
    }
    for (int32_t x = 0; x < picture.width; ++x) {
      ASSERT_EQ(pixelAt(rows.rows[row], picture.bits(), x),
                pixelAt(expected.rows[row], picture.bits(), x))
          << picture << ", pass " << pass << ", at " << x << "," << y;
    }
  }
}

void expectPasses(const PngPicture& picture, bool bgr) {
  Decoder decoder(picture.file());
  ASSERT_EQ(decoder.result, 0) << picture;
  if (!bgr) {
    EXPECT_EQ(PNG_DecodeSetRGBInvert(decoder.handle), 0);
  }
  Rows rows(picture.rowBytes(), picture.height);
  const int passes = picture.interlaced ? 7 : 1;
  for (int pass = 1; pass <= passes; ++pass) {
    for (int32_t y = 0; y < picture.height;) {
      const int32_t count = std::min(picture.height - y, 1 + pass);
      int32_t line = -1, done = -1;
      ASSERT_EQ(PNG_DecodeScanLines(decoder.handle, &rows.rows[static_cast<size_t>(y)], count,
                                    &line, &done),
                0);
      y += count;
      ASSERT_EQ(line, y);
      ASSERT_EQ(done, count);
    }
    expectPicture(picture, rows, bgr, pass);
  }
  EXPECT_TRUE(rows.guardsUntouched(picture.rowBytes())) << picture;
}

TEST(PngDecoder, DeliversRowsInFileOrderWithTheFlag) {
  for (const PngPicture& picture : pictures()) expectPasses(picture, false);
}

TEST(PngDecoder, SwapsRedAndBlueWithoutTheFlag) {
  for (const PngPicture& picture : pictures()) expectPasses(picture, true);
}

TEST(PngDecoder, CallsMaySpanPasses) {
  const PngPicture picture({6, 8}, 9, 6, true);
  Decoder decoder(picture.file());
  PNG_DecodeSetRGBInvert(decoder.handle);
  Rows rows(picture.rowBytes(), picture.height);
  std::vector<uint8_t*> all;
  for (int pass = 0; pass < 7; ++pass) all.insert(all.end(), rows.rows.begin(), rows.rows.end());
  int32_t line = 0, done = 0;
  EXPECT_EQ(PNG_DecodeScanLines(decoder.handle, all.data(), 42, &line, &done), 0);
  EXPECT_EQ(line, 6);
  EXPECT_EQ(done, 42);
  expectPicture(picture, rows, false, 7);
}

TEST(PngDecoder, BehindTheLastRowIsNothing) {
  for (const bool interlaced : {false, true}) {
    const PngPicture picture({2, 8}, 3, 4, interlaced);
    Decoder decoder(picture.file());
    Rows rows(picture.rowBytes(), 4);
    std::vector<uint8_t*> all;
    const size_t count = interlaced ? 28 : 4;
    for (size_t i = 0; i < count + 2; ++i) all.push_back(rows.rows[i % 4]);
    int32_t line = 0, done = 0;
    EXPECT_EQ(PNG_DecodeScanLines(decoder.handle, all.data(), static_cast<int32_t>(count) + 2,
                                  &line, &done),
              1);
    EXPECT_EQ(done, static_cast<int32_t>(count));
    EXPECT_EQ(line, 4);
    const std::vector<uint8_t> before = rows.bytes;
    EXPECT_EQ(PNG_DecodeScanLines(decoder.handle, all.data(), 1, &line, &done), 1);
    EXPECT_EQ(done, 0);
    EXPECT_EQ(rows.bytes, before);
  }
}

TEST(PngDecoder, InfoFollowsFromTheDepthOfAPixel) {
  for (const PngPicture& picture : pictures()) {
    Decoder decoder(picture.file());
    PngInfo info = {};
    ASSERT_EQ(PNG_DecodeGetPngInfo(decoder.handle, &info), 0);
    const uint32_t bits = picture.bits();
    EXPECT_EQ(info.width, static_cast<uint32_t>(picture.width));
    EXPECT_EQ(info.height, static_cast<uint32_t>(picture.height));
    EXPECT_EQ(info.bitsPerPixel, bits) << picture;
    EXPECT_EQ(info.rowBytes, picture.rowBytes()) << picture;
    const uint32_t format = bits == 8    ? 0x64000000u
                            : bits == 24 ? 0x16001777u
                            : bits == 32 ? 0x37001777u
                                         : 0u;
    EXPECT_EQ(info.format, format) << picture;
  }
}

TEST(PngDecoder, InfoHeaderHoldsPaddedSizeAndResolutions) {
  PngPicture picture({2, 8}, 5, 3, false);
  picture.xResolution = 2835;
  picture.yResolution = 5669;
  picture.sRgbIntent = 1;
  Decoder decoder(picture.file());
  PngInfoHeader header;
  std::memset(&header, 0xFF, sizeof header);
  ASSERT_EQ(PNG_DecodeGetInfoHeader(decoder.handle, &header), 0);
  const PngInfoHeader expected = {40, 5, 3, 1, 24, 0, 48, 2835, 5669, 0, 0};
  EXPECT_EQ(std::memcmp(&header, &expected, sizeof header), 0);
  static_assert(sizeof header == 40);

  Decoder bits(PngPicture({0, 1}, 33, 2, false).file());
  ASSERT_EQ(PNG_DecodeGetInfoHeader(bits.handle, &header), 0);
  const PngInfoHeader expectedBits = {40, 33, 2, 1, 1, 0, 16, 0, 0, 0, 0};
  EXPECT_EQ(std::memcmp(&header, &expectedBits, sizeof header), 0);
}

TEST(PngDecoder, ColorTabGoesByTheFlagAndTheTransparencyTable) {
  for (const int depth : {1, 2, 4, 8}) {
    for (const bool invert : {false, true}) {
      PngPicture picture({3, depth}, 4, 4, false);
      picture.alphas = {7};
      if (depth > 1) picture.alphas = {0, 200, 255};
      Decoder decoder(picture.file());
      if (invert) PNG_DecodeSetRGBInvert(decoder.handle);
      int32_t size = -1;
      EXPECT_EQ(PNG_DecodeGetColorTab(decoder.handle, nullptr, &size), 0);
      ASSERT_EQ(size, 4 << depth);
      std::vector<uint8_t> table(static_cast<size_t>(size) + 1, kUntouched);
      EXPECT_EQ(PNG_DecodeGetColorTab(decoder.handle, table.data(), &size), 0);
      for (size_t i = 0; i < static_cast<size_t>(picture.paletteSize); ++i) {
        EXPECT_EQ(table[4 * i + (invert ? 0 : 2)], picture.palette[3 * i]);
        EXPECT_EQ(table[4 * i + 1], picture.palette[3 * i + 1]);
        EXPECT_EQ(table[4 * i + (invert ? 2 : 0)], picture.palette[3 * i + 2]);
        EXPECT_EQ(table[4 * i + 3], i < picture.alphas.size() ? picture.alphas[i] : 255);
      }
      EXPECT_EQ(table.back(), kUntouched);
    }
  }
}

TEST(PngDecoder, ColorTabIsEmptyWithoutAPalette) {
  Decoder decoder(PngPicture({2, 8}, 4, 4, false).file());
  int32_t size = -1;
  uint8_t table[4] = {1, 2, 3, 4};
  EXPECT_EQ(PNG_DecodeGetColorTab(decoder.handle, table, &size), 0);
  EXPECT_EQ(size, 0);
  EXPECT_EQ(table[0], 1);
}

TEST(PngDecoder, StartsAtTheStreamsPosition) {
  const PngPicture picture({0, 8}, 3, 3, false);
  const ByteStream stream(joined({1, 2, 3, 4, 5}, picture.file()));
  PngHandle* handle = nullptr;
  EXPECT_EQ(PNG_DecodeInit(stream.get(), &handle), 3);
  EXPECT_EQ(handle, nullptr);
  MStreamSeek(stream.get(), 0, 5);
  EXPECT_EQ(PNG_DecodeInit(stream.get(), &handle), 0);
  EXPECT_EQ(PNG_DecodeUninit(handle), 0);
}

TEST(PngDecoder, RefusesWhatIsNoPngWithThreeAndABrokenOneWithOne) {
  const std::vector<uint8_t> file = PngPicture({0, 8}, 3, 3, false).file();
  for (size_t kept = 0; kept < 4; ++kept) {
    EXPECT_EQ(Decoder({file.begin(), file.begin() + static_cast<ptrdiff_t>(kept)}).result, 3);
  }
  for (size_t wrong = 0; wrong < 4; ++wrong) {
    std::vector<uint8_t> bytes = file;
    bytes[wrong] ^= 1;
    EXPECT_EQ(Decoder(bytes).result, 3) << wrong;
  }
  for (size_t wrong = 4; wrong < 8; ++wrong) {
    std::vector<uint8_t> bytes = file;
    bytes[wrong] ^= 1;
    EXPECT_EQ(Decoder(bytes).result, 1) << wrong;
  }
  EXPECT_EQ(Decoder({file.begin(), file.begin() + 4}).result, 1);
  EXPECT_EQ(Decoder({file.begin(), file.begin() + 30}).result, 1);
}

TEST(PngDecoder, RefusesNullArgumentsWithTwo) {
  const PngPicture picture({0, 8}, 3, 3, false);
  Decoder decoder(picture.file());
  PngHandle* handle = nullptr;
  PngInfo info = {};
  PngInfoHeader header = {};
  int32_t a = 3, b = 3;
  EXPECT_EQ(PNG_DecodeInit(nullptr, &handle), 2);
  EXPECT_EQ(PNG_DecodeInit(decoder.stream.get(), nullptr), 2);
  EXPECT_EQ(PNG_DecodeUninit(nullptr), 2);
  EXPECT_EQ(PNG_DecodeGetPngInfo(nullptr, &info), 2);
  EXPECT_EQ(PNG_DecodeGetPngInfo(decoder.handle, nullptr), 2);
  EXPECT_EQ(PNG_DecodeGetInfoHeader(nullptr, &header), 2);
  EXPECT_EQ(PNG_DecodeGetInfoHeader(decoder.handle, nullptr), 2);
  EXPECT_EQ(PNG_DecodeGetColorTab(nullptr, nullptr, &a), 2);
  EXPECT_EQ(PNG_DecodeGetColorTab(decoder.handle, nullptr, nullptr), 2);
  EXPECT_EQ(PNG_DecodeSetRGBInvert(nullptr), 2);
  EXPECT_EQ(PNG_DecodeSetDimension(nullptr, &a, &b), 2);
  EXPECT_EQ(PNG_DecodeSetDimension(decoder.handle, nullptr, &b), 2);
  EXPECT_EQ(PNG_DecodeSetDimension(decoder.handle, &a, nullptr), 2);
}

TEST(PngDecoder, ARefusedScanReadsNothing) {
  const PngPicture picture({0, 8}, 3, 3, false);
  Decoder decoder(picture.file());
  Rows rows(3, 3);
  uint8_t* const gap[] = {rows.rows[0], nullptr, rows.rows[2]};
  int32_t line = -1, done = -1;
  EXPECT_EQ(PNG_DecodeScanLines(nullptr, rows.rows.data(), 1, &line, &done), 2);
  EXPECT_EQ(PNG_DecodeScanLines(decoder.handle, nullptr, 1, &line, &done), 2);
  EXPECT_EQ(PNG_DecodeScanLines(decoder.handle, rows.rows.data(), -1, &line, &done), 2);
  EXPECT_EQ(PNG_DecodeScanLines(decoder.handle, rows.rows.data(), 1, nullptr, &done), 2);
  EXPECT_EQ(PNG_DecodeScanLines(decoder.handle, rows.rows.data(), 1, &line, nullptr), 2);
  EXPECT_EQ(PNG_DecodeScanLines(decoder.handle, gap, 3, &line, &done), 2);
  EXPECT_EQ(line, -1);
  EXPECT_EQ(done, -1);
  EXPECT_EQ(PNG_DecodeScanLines(decoder.handle, rows.rows.data(), 0, &line, &done), 0);
  EXPECT_EQ(done, 0);
  EXPECT_EQ(PNG_DecodeScanLines(decoder.handle, rows.rows.data(), 3, &line, &done), 0);
  expectPicture(picture, rows, false, 1);
}

}  // namespace
