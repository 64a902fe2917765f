// What the pipeline does to the planes that an effect leaves to it, and bands of YUV pictures.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "engine/pipeline_support.h"
#include "engine/planar_support.h"
#include "engine/test_effects.h"

namespace qpx::testing {
namespace {

constexpr uint8_t kSentinel = 0xA7;

uint8_t lumaModel(PlanarPicture& source, int32_t margin, int32_t x, int32_t y) {
  int sum = 0;
  for (int dy = -margin; dy <= margin; ++dy) {
    sum += weightOf(dy, 0) * source.sample(0, x, std::clamp(y + dy, 0, source.height() - 1));
  }
  return static_cast<uint8_t>(sum);
}

// Plane p of pixel (x, y) after the kernel and the flags of the plane.
uint8_t planeModel(PlanarPicture& source, const PlanarFormat& format, const PlanesRecord& record,
                   int p, int32_t x, int32_t y, uint8_t before) {
  // The flags of both interleaved planes meet in their one plane.
  const bool interleaved = p > 0 && format.first != 0;
  const uint32_t both = interleaved ? 6u : 1u << p;
  if ((record.planeFlags >> 3 & both) != 0) return source.sample(p, x, y);
  if ((record.planeFlags & both) != 0) return record.fill[interleaved ? format.first : p];
  return p == 0 ? lumaModel(source, record.margin, x, y) : before;
}

PlanarPicture modelOf(PlanarPicture& source, const PlanarFormat& format, const PlanesRecord& record,
                      const MRect& rect) {
  PlanarPicture result(format, source.width(), source.height(), kSentinel);
  const int planes = format.across == 0 ? 1 : 3;
  for (int p = 0; p < planes; ++p) {
    for (int32_t y = rect.top; y < rect.bottom; ++y) {
      for (int32_t x = rect.left; x < rect.right; ++x) {
        // The first sample of a pair in front of the rectangle may not be the host's to write.
        const bool pairCut = x % 2 != 0 && x == rect.left;
        if (p == format.first && p > 0 && pairCut) continue;
        result.sample(p, x, y) = planeModel(source, format, record, p, x, y, kSentinel);
      }
    }
  }
  return result;
}

const std::vector<PlanesRecord> kRecords = {
    {0, 0, {}},
    {QPX_COPY_PLANE0 | QPX_FILL_PLANE2, 0, {1, 128, 128, 0}},
    {QPX_COPY_PLANE0 | QPX_FILL_PLANE1 | QPX_FILL_PLANE2, 0, {1, 120, 130, 0}},
    {QPX_FILL_PLANE1 | QPX_FILL_PLANE2, 0, {1, 120, 130, 0}},
    {QPX_FILL_PLANE0, 0, {77, 1, 2, 0}},
    {QPX_COPY_PLANE1 | QPX_COPY_PLANE2, 0, {}},
    {QPX_COPY_PLANE0 | QPX_COPY_PLANE1 | QPX_COPY_PLANE2, 0, {}},
    {63, 0, {9, 8, 7, 0}},
    {QPX_FILL_PLANE1, 0, {1, 120, 130, 0}},
    {QPX_COPY_PLANE2, 0, {1, 120, 130, 0}}};

TEST(PlaneFlags, TouchTheSamplesOfTheRectangleAndNoOthers) {
  for (const PlanarFormat& format : kPlanarFormats) {
    for (const PlanesRecord& record : kRecords) {
      for (const Size size : {Size{1, 1}, {8, 8}, {7, 5}, {9, 6}}) {
        PlanarPicture source = PlanarPicture::random(format, size.width, size.height, 1);
        Engine engine(format.format, size, size, {{kPlanes, &record, sizeof record}});
        ASSERT_EQ(engine.result(), 0);
        for (const MRect& band : {MRect{0, 0, size.width, size.height}, MRect{1, 1, 6, 4},
                                  MRect{2, 2, 5, 5}, MRect{3, 1, 4, 2}, MRect{0, 3, 7, 4}}) {
          if (band.right > size.width || band.bottom > size.height) continue;
          PlanarPicture result(format, size.width, size.height, kSentinel);
          const QPXPlaneSet in = source.planes(band.left, band.top);
          const QPXPlaneSet out = result.planes(band.left, band.top);
          MRect rect = band;
          ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
          EXPECT_TRUE(modelOf(source, format, record, band) == result)
              << format.name << ", flags " << record.planeFlags << ", " << size.width << "x"
              << size.height << ", band " << band.left << " " << band.top << " " << band.right
              << " " << band.bottom;
        }
      }
    }
  }
}

TEST(PlaneFlags, InPlaceACopyFallsBackOnTheFill) {
  const PlanarFormat& i420 = kPlanarFormats[2];
  const PlanesRecord record = {
      QPX_COPY_PLANE0 | QPX_FILL_PLANE0 | QPX_COPY_PLANE1 | QPX_COPY_PLANE2 | QPX_FILL_PLANE2,
      0,
      {11, 12, 13, 0}};
  PlanarPicture picture = PlanarPicture::random(i420, 8, 8, 1);
  PlanarPicture before = picture;
  Engine engine(i420.format, {8, 8}, {8, 8}, {{kPlanes, &record, sizeof record}});
  const QPXPlaneSet planes = picture.planes(0, 0);
  MRect rect = {0, 0, 8, 8};
  ASSERT_EQ(QPXProcess(engine.get(), &planes, &planes, &rect), 0);
  for (int32_t y = 0; y < 8; ++y) {
    for (int32_t x = 0; x < 8; ++x) {
      EXPECT_EQ(picture.sample(0, x, y), 11);
      EXPECT_EQ(picture.sample(1, x, y), before.sample(1, x, y));
      EXPECT_EQ(picture.sample(2, x, y), 13);
    }
  }
}

TEST(PlaneFlags, BandsOfYuvPicturesGiveTheBytesOfOneCall) {
  for (const PlanarFormat& format : kPlanarFormats) {
    for (int32_t margin = 0; margin < 4; ++margin) {
      const PlanesRecord record = {QPX_COPY_PLANE1 | QPX_COPY_PLANE2, margin, {}};
      for (const Size size : {Size{8, 16}, {7, 13}, {1, 1}, {3, 2}, {5, 22}}) {
        PlanarPicture source = PlanarPicture::random(format, size.width, size.height, 2);
        const PlanarPicture model =
            modelOf(source, format, record, {0, 0, size.width, size.height});
        Engine engine(format.format, size, size, {{kPlanes, &record, sizeof record}});
        for (const int32_t rows : {1, 2, 3, 4, 7, 22}) {
          PlanarPicture result(format, size.width, size.height, kSentinel);
          int32_t finished = 0;
          for (int32_t top = 0; top < size.height; top += rows) {
            MRect rect = {0, top, size.width, std::min(top + rows, size.height)};
            const QPXPlaneSet in = source.planes(0, top);
            const QPXPlaneSet out = result.planes(0, finished);
            ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
            ASSERT_EQ(rect.top, finished);
            finished = rect.bottom;
          }
          EXPECT_EQ(finished, size.height);
          EXPECT_TRUE(model == result) << format.name << ", margin " << margin << ", bands of "
                                       << rows << ", " << size.width << "x" << size.height;
        }
      }
    }
  }
}

// Odd margins at an even column: what is finished begins within a pair of interleaved chroma.
TEST(PlaneFlags, TilesOfInterleavedChromaKeepPairsTogether) {
  for (const PlanarFormat& format : {kPlanarFormats[0], kPlanarFormats[1], kPlanarFormats[2]}) {
    const PlanesRecord record = {QPX_COPY_PLANE1 | QPX_COPY_PLANE2, 1, {}};
    PlanarPicture source = PlanarPicture::random(format, 16, 12, 3);
    Engine engine(format.format, {16, 12}, {16, 12}, {{kPlanes, &record, sizeof record}});
    PlanarPicture tile(format, 8, 12, kSentinel);
    const QPXPlaneSet in = source.planes(4, 0);
    const QPXPlaneSet out = tile.planes(0, 0);
    MRect rect = {4, 0, 12, 12};
    ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
    ASSERT_EQ(rect.left, 5);
    ASSERT_EQ(rect.right, 11);
    for (int32_t y = 0; y < 12; ++y) {
      for (int32_t x = 5; x < 11; ++x) {
        ASSERT_EQ(tile.sample(0, x - 5, y), lumaModel(source, 1, x, y));
        // Blocks 4, 6, 8 and 10 of the source are the first four of the tile.
        for (int p = 1; p < 3; ++p) {
          ASSERT_EQ(tile.sample(p, (x & ~1) - 4, y), source.sample(p, x, y)) << format.name;
        }
      }
    }
  }
}

TEST(PlaneFlags, PackedYuvPixelsHaveTwoBytes) {
  for (const uint32_t format : {0x50000010u, 0x50000410u}) {
    const PlanesRecord record = {QPX_COPY_PLANE0, 0, {}};
    Engine engine(format, {8, 6}, {8, 6}, {{kPlanes, &record, sizeof record}});
    ASSERT_EQ(engine.result(), 0);
    std::vector<uint8_t> source(16 * 6);
    for (size_t i = 0; i < source.size(); ++i) source[i] = static_cast<uint8_t>(i);
    std::vector<uint8_t> result(16 * 6, kSentinel);
    MRect rect = {2, 1, 6, 5};
    const QPXPlaneSet in = {{source.data() + 16 + 4, nullptr, nullptr}, {16, 0, 0}};
    const QPXPlaneSet out = {{result.data() + 16 + 4, nullptr, nullptr}, {16, 0, 0}};
    ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
    for (int32_t y = 0; y < 6; ++y) {
      for (int32_t i = 0; i < 16; ++i) {
        const size_t place = static_cast<size_t>(16 * y + i);
        const bool inside = y >= 1 && y < 5 && i >= 4 && i < 12;
        ASSERT_EQ(result[place], inside ? source[place] : kSentinel) << "row " << y << ", " << i;
      }
    }
  }
}

TEST(PlaneFlags, MissingPlanesAreRefused) {
  const PlanesRecord record = {0, 0, {}};
  PlanarPicture source = PlanarPicture::random(kPlanarFormats[2], 8, 8, 3);
  Engine engine(0x50000811, {8, 8}, {8, 8}, {{kPlanes, &record, sizeof record}});
  for (int p = 0; p < 3; ++p) {
    const QPXPlaneSet whole = source.planes(0, 0);
    QPXPlaneSet part = whole;
    part.plane[p] = nullptr;
    MRect rect = {0, 0, 8, 8};
    EXPECT_EQ(QPXProcess(engine.get(), &whole, &part, &rect), 2);
    EXPECT_EQ(QPXProcess(engine.get(), &part, &whole, &rect), 2);
  }
}

}  // namespace
}  // namespace qpx::testing
