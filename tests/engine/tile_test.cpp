// Where the finished rows land, tiles inside a picture, unequal sizes, and streams that begin
// anywhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "engine/pipeline_support.h"
#include "engine/test_effects.h"

namespace qpx::testing {
namespace {

constexpr Size kSize = {24, 30};

struct Tile {
  MRect rect;
  Picture output;  // rows and columns from the band's first on
};

// Runs a tile of the picture into a buffer of its own.
Tile runTile(QPXEngine* engine, Picture& source, const MRect& band) {
  Tile tile = {band,
               Picture(band.right - band.left, band.bottom - band.top + 8, source.pixelBytes)};
  const QPXPlaneSet in = source.planes(band.left, band.top);
  const QPXPlaneSet out = tile.output.planes(0, 0);
  EXPECT_EQ(QPXProcess(engine, &out, &in, &tile.rect), 0);
  return tile;
}

// Compares the columns `first` to `last` of the finished rows; `column` is where column `first`
// landed.
void expectTile(const Picture& model, const Tile& tile, int32_t first, int32_t last,
                int32_t column) {
  for (int32_t y = tile.rect.top; y < tile.rect.bottom; ++y) {
    for (int32_t x = first; x < last; ++x) {
      for (int32_t c = 0; c < model.pixelBytes; ++c) {
        ASSERT_EQ(tile.output.at(column + x - first, y - tile.rect.top)[c], model.at(x, y)[c])
            << "x " << x << ", y " << y;
      }
    }
  }
}

TEST(Tiles, FirstFinishedPixelOfAStageLandsOnTheFirstOfTheOutput) {
  for (const uint32_t effect : {kTone, kBox1, kBox3, kFailingBox1}) {
    Picture source = Picture::random(kSize.width, kSize.height, 3, 2);
    const Picture model = applyModel({effect}, source);
    Engine engine(formatOf(3), kSize, {effect});
    for (const MRect& band : {MRect{0, 0, 24, 30}, MRect{7, 0, 20, 15}, MRect{0, 11, 9, 22},
                              MRect{13, 9, 24, 30}, MRect{5, 6, 14, 16}}) {
      const Tile tile = runTile(engine.get(), source, band);
      expectTile(model, tile, tile.rect.left, tile.rect.right, 0);
    }
  }
}

// A tile narrower than the margin at the far right of a very wide picture: its first column with a
// full neighbourhood lies beyond 32 bits.
TEST(Tiles, FarColumnsWithMarginsAreEmptyAndNotWrappedRound) {
  constexpr int32_t kFar = std::numeric_limits<int32_t>::max();
  for (const std::vector<uint32_t>& chain :
       {std::vector<uint32_t>{kBox3}, {kBox3, kBox1}, {kTone, kBox3}}) {
    Picture source = Picture::random(2, 8, 3, 2);
    Picture result(2, 16, 3);
    Engine engine(formatOf(3), {kFar, 8}, chain);
    const QPXPlaneSet in = source.planes(0, 0);
    const QPXPlaneSet out = result.planes(0, 0);
    MRect rect = {kFar - 2, 0, kFar, 8};
    ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
    if (chain[0] == kBox3) {
      EXPECT_GE(rect.left, rect.right);
    }
  }
}

TEST(Tiles, BytesOutsideTheFinishedRectangleStay) {
  for (const uint32_t effect : {kTone, kBox2}) {
    Picture source = Picture::random(kSize.width, kSize.height, 4, 2);
    Engine engine(formatOf(4), kSize, {effect});
    const Tile tile = runTile(engine.get(), source, {5, 6, 14, 16});
    const Picture untouched(9, 18, 4);
    for (int32_t y = 0; y < 18; ++y) {
      for (int32_t x = 0; x < 9; ++x) {
        if (x < tile.rect.right - tile.rect.left && y < tile.rect.bottom - tile.rect.top) continue;
        for (int c = 0; c < 4; ++c) ASSERT_EQ(tile.output.at(x, y)[c], untouched.at(x, y)[c]);
      }
    }
  }
}

// A chain works out the columns that its first margin leaves. Those that the margins behind it
// leave too are the picture's own.
TEST(Tiles, InnerColumnsOfAChainAreThePicturesOwn) {
  const std::vector<uint32_t> effects = {kBox1, kBox2};
  Picture source = Picture::random(kSize.width, kSize.height, 3, 3);
  const Picture model = applyModel(effects, source);
  Engine engine(formatOf(3), kSize, effects);
  for (const MRect& band : {MRect{7, 0, 20, 30}, MRect{0, 0, 13, 30}, MRect{11, 0, 24, 30}}) {
    const Tile tile = runTile(engine.get(), source, band);
    EXPECT_EQ(tile.rect.top, 0);
    EXPECT_EQ(tile.rect.bottom, 30);
    EXPECT_EQ(tile.rect.left, band.left == 0 ? 0 : band.left + 1);
    EXPECT_EQ(tile.rect.right, band.right == 24 ? 24 : band.right - 1);
    const int32_t first = band.left == 0 ? 0 : band.left + 3;
    const int32_t last = band.right == 24 ? 24 : band.right - 3;
    expectTile(model, tile, first, last, first - band.left);
  }
}

TEST(Tiles, ChainTilesDoNotDependOnTilesBefore) {
  const std::vector<uint32_t> effects = {kBox1, kBox3, kBox2};
  Picture source = Picture::random(kSize.width, kSize.height, 3, 3);
  const MRect tile = {8, 0, 18, 30};
  Engine fresh(formatOf(3), kSize, effects);
  const Tile expected = runTile(fresh.get(), source, tile);
  Engine used(formatOf(3), kSize, effects);
  runTile(used.get(), source, {0, 0, 10, 30});
  runTile(used.get(), source, {14, 0, 24, 30});
  const Tile actual = runTile(used.get(), source, tile);
  EXPECT_EQ(difference(expected.output, actual.output), "equal");
}

TEST(Tiles, RingsFollowTheWidthOfTheBand) {
  const std::vector<uint32_t> effects = {kBox1, kBox2, kVertical3};
  Picture source = Picture::random(kSize.width, kSize.height, 3, 4);
  const Picture model = applyModel(effects, source);
  Engine engine(formatOf(3), kSize, effects);
  for (const int32_t width : {5, 24, 9, 17, 24, 8, 23}) {
    const Tile tile = runTile(engine.get(), source, {0, 0, width, 30});
    expectTile(model, tile, 0, width == 24 ? 24 : std::max(width - 3, 0), 0);
  }
}

TEST(Tiles, StageMayStartAnywhere) {
  for (const uint32_t effect : {kTone, kBox1, kBox2, kBox3}) {
    Picture source = Picture::random(kSize.width, kSize.height, 3, 5);
    const Picture model = applyModel({effect}, source);
    Engine engine(formatOf(3), kSize, {effect});
    for (int32_t start = 0; start < kSize.height; ++start) {
      for (const int32_t rows : {1, 2, 5, 30}) {
        for (int32_t top = start; top < kSize.height; top += rows) {
          const int32_t bottom = std::min(top + rows, kSize.height);
          const Tile tile = runTile(engine.get(), source, {0, top, kSize.width, bottom});
          expectTile(model, tile, 0, kSize.width, 0);
        }
        QPXCalcRectReset(engine.get());
      }
    }
  }
}

// Rows above the first that the chain's head can make do not exist for the stages behind it: they
// see that row repeated.
TEST(Tiles, ChainMayStartAnywhere) {
  for (const auto& effects : {std::vector<uint32_t>{kTone, kBox2},
                              {kBox1, kBox3},
                              {kBox2, kTone, kVertical1},
                              {kBox3, kBox1, kBox2}}) {
    const int32_t margin = neighbourhoodOf(effects[0]).down;
    Picture source = Picture::random(kSize.width, kSize.height, 3, 6);
    const Picture first = applyModel({effects[0]}, source);
    const std::vector<uint32_t> rest(effects.begin() + 1, effects.end());
    Engine engine(formatOf(3), kSize, effects);
    for (int32_t start = 1; start < kSize.height - margin; ++start) {
      const Picture model = applyModel(rest, first, start + margin);
      for (const int32_t rows : {1, 2, 5, 30}) {
        int32_t finished = start + margin;
        for (int32_t top = start; top < kSize.height; top += rows) {
          const int32_t bottom = std::min(top + rows, kSize.height);
          const Tile tile = runTile(engine.get(), source, {0, top, kSize.width, bottom});
          ASSERT_EQ(tile.rect.top, finished) << "start " << start << ", rows " << rows;
          expectTile(model, tile, 0, kSize.width, 0);
          finished = tile.rect.bottom;
        }
        ASSERT_EQ(finished, kSize.height);
        QPXCalcRectReset(engine.get());
      }
    }
  }
}

TEST(Tiles, AStartAtTheVeryEndIsHarmless) {
  for (const auto& effects : {std::vector<uint32_t>{kBox3}, {kBox3, kBox3}, {kTone, kBox3}}) {
    Engine engine(formatOf(3), kSize, effects);
    Picture source = Picture::random(kSize.width, kSize.height, 3, 6);
    for (int32_t start = 26; start < 30; ++start) {
      runTile(engine.get(), source, {0, start, 24, 30});
      runTile(engine.get(), source, {3, start, 5, 30});
      runTile(engine.get(), source, {0, start, 24, start + 1});
    }
  }
}

TEST(UnequalSizes, SmallerOutputGetsTheRowsAndColumnsThatItHas) {
  for (const auto& effects : {std::vector<uint32_t>{kBox1}, {kBox1, kBox2}, {kTone, kBox3}}) {
    Picture source = Picture::random(20, 24, 3, 7);
    const Picture model = applyModel(effects, source);
    std::vector<QPXEffectItem> items;
    for (const uint32_t id : effects) items.push_back({id, nullptr, 0});
    for (const Size outSize : {Size{20, 10}, {11, 24}, {7, 9}, {1, 1}, {20, 23}}) {
      Engine engine(formatOf(3), outSize, {20, 24}, items);
      for (const int32_t rows : {24, 4, 1, 7}) {
        Picture result(outSize.width, outSize.height, 3);
        int32_t finished = 0;
        for (int32_t top = 0; top < 24; top += rows) {
          MRect rect = {0, top, 20, std::min(top + rows, 24)};
          const QPXPlaneSet in = source.planes(0, top);
          const QPXPlaneSet out = result.planes(0, finished);
          ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
          if (rect.top < rect.bottom) {
            ASSERT_EQ(rect.top, finished);
            finished = rect.bottom;
          }
        }
        EXPECT_EQ(finished, outSize.height) << "bands of " << rows;
        for (int32_t y = 0; y < outSize.height; ++y) {
          for (int32_t i = 0; i < outSize.width * 3; ++i) {
            ASSERT_EQ(result.at(0, y)[i], model.at(0, y)[i])
                << "row " << y << ", byte " << i << ", bands of " << rows;
          }
        }
      }
    }
  }
}

TEST(UnequalSizes, LargerOutputKeepsItsOtherBytes) {
  for (const auto& effects : {std::vector<uint32_t>{kBox1}, {kBox1, kBox2}}) {
    Picture source = Picture::random(6, 5, 3, 7);
    const Picture model = applyModel(effects, source);
    std::vector<QPXEffectItem> items;
    for (const uint32_t id : effects) items.push_back({id, nullptr, 0});
    Engine engine(formatOf(3), {9, 12}, {6, 5}, items);
    Picture result(9, 12, 3);
    const Picture untouched = result;
    MRect rect = {0, 0, 6, 5};
    const QPXPlaneSet in = source.planes(0, 0);
    const QPXPlaneSet out = result.planes(0, 0);
    ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
    for (int32_t y = 0; y < 12; ++y) {
      for (int32_t i = 0; i < 27; ++i) {
        const Picture& expected = y < 5 && i < 18 ? model : untouched;
        ASSERT_EQ(result.at(0, y)[i], expected.at(0, y)[i]);
      }
    }
  }
}

TEST(UnequalSizes, NegativeAndEmptySizesProduceNothing) {
  for (const uint32_t effect : {kBox1, kTone, kUpsideDown}) {
    for (const Size in :
         {Size{8, -8}, {-8, 8}, {-8, -8}, {0, 0}, {0, 8}, {8, 0}, {8, INT32_MIN}, {INT32_MIN, 8}}) {
      for (const size_t count : {size_t{1}, size_t{2}}) {
        const std::vector<QPXEffectItem> items(count, {effect, nullptr, 0});
        Engine engine(formatOf(3), {8, 8}, in, items);
        ASSERT_EQ(engine.result(), 0) << in.width << "x" << in.height;
        Picture source = Picture::random(8, 8, 3, 1);
        Picture result(8, 8, 3);
        const Picture untouched = result;
        for (MRect rect : {MRect{0, 0, 8, 8}, MRect{0, 0, 8, 3}, MRect{0, 3, 8, 8}}) {
          const QPXPlaneSet inPlanes = source.planes(0, 0);
          const QPXPlaneSet outPlanes = result.planes(0, 0);
          EXPECT_EQ(QPXProcess(engine.get(), &outPlanes, &inPlanes, &rect), 0);
        }
        EXPECT_EQ(difference(untouched, result), "equal");
      }
    }
  }
}

TEST(Roads, ChainRoadOfOneStageGivesTheSamePicture) {
  for (const uint32_t effect : {kTone, kBox1, kBox3, kFailingBox1}) {
    Picture source = Picture::random(13, 21, 3, 9);
    const Picture model = applyModel({effect}, source);
    Engine engine(formatOf(3), {13, 21}, {effect});
    for (const int32_t rows : {1, 4, 21}) {
      Picture result(13, 21, 3);
      for (int32_t top = 0; top < 21; top += rows) {
        QPXBandRect rect = {0, top, 13, std::min(top + rows, 21), 0, 0, 0, 0};
        MBitmap in = {};
        in.plane[0] = source.at(0, 0);
        in.pitch[0] = static_cast<int32_t>(source.pitch);
        MBitmap out = {};
        // The first row of a call lands on the band's first row.
        std::vector<uint8_t> rowsOut(static_cast<size_t>(result.pitch) * 32, 0);
        out.plane[0] = rowsOut.data();
        out.pitch[0] = static_cast<int32_t>(result.pitch);
        ASSERT_EQ(QPXMultProcessIn(engine.get(), &out, &in, nullptr, nullptr, &rect), 0);
        for (int32_t y = rect.top; y < rect.bottom; ++y) {
          std::copy_n(rowsOut.data() + (top + y - rect.top) * result.pitch, result.pitch,
                      result.at(0, y));
        }
      }
      EXPECT_EQ(difference(model, result), "equal");
    }
  }
}

TEST(Roads, NullRectangleIsTheWholePictureOnTheChainRoad) {
  const std::vector<uint32_t> effects = {kBox1, kBox2};
  Picture source = Picture::random(13, 21, 3, 9);
  Picture result(13, 21, 3);
  Engine engine(formatOf(3), {13, 21}, effects);
  MBitmap in = {};
  in.plane[0] = source.at(0, 0);
  in.pitch[0] = 39;
  MBitmap out = {};
  out.plane[0] = result.at(0, 0);
  out.pitch[0] = 39;
  ASSERT_EQ(QPXMultProcessIn(engine.get(), &out, &in, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(difference(applyModel(effects, source), result), "equal");
}

TEST(Roads, ChainRoadRefusesFormatsOfSeveralPlanes) {
  std::vector<uint8_t> bytes(256);
  MBitmap image = {};
  for (int p = 0; p < 3; ++p) {
    image.plane[p] = bytes.data();
    image.pitch[p] = 8;
  }
  const PlanesRecord record = {0, 0, {}};
  Engine engine(0x50000811, {8, 8}, {8, 8}, {{kPlanes, &record, sizeof record}});
  ASSERT_EQ(engine.result(), 0);
  QPXBandRect rect = {0, 0, 8, 8, 0, 0, 0, 0};
  EXPECT_EQ(QPXMultProcessIn(engine.get(), &image, &image, nullptr, nullptr, &rect), 3);
}

// QPXMerge runs the first stage of a chain; a host may take either call for each band.
TEST(Roads, TakingTurnsOnAChainIsHarmless) {
  const std::vector<uint32_t> effects = {kBox1, kBox2, kBox3};
  Picture source = Picture::random(13, 60, 3, 9);
  Picture result(13, 60, 3);
  const Picture first = applyModel({kBox1}, source);
  for (unsigned pattern = 0; pattern < 64; ++pattern) {
    Engine engine(formatOf(3), {13, 60}, effects);
    for (unsigned band = 0; band < 6; ++band) {
      const int32_t top = static_cast<int32_t>(band) * 10;
      const QPXPlaneSet in = source.planes(0, top);
      const QPXPlaneSet out = result.planes(0, std::max(top - 6, 0));
      if ((pattern >> band & 1) != 0) {
        QPXBandRect rect = {0, top, 13, top + 10, 0, 0, 0, 0};
        ASSERT_EQ(QPXMerge(engine.get(), &out, &in, nullptr, nullptr, &rect), 0);
        const int32_t shift = std::max(top - 6, 0) - rect.top;
        for (int32_t y = rect.top; y < rect.bottom; ++y) {
          ASSERT_TRUE(std::equal(first.at(0, y), first.at(0, y) + 39, result.at(0, y + shift)));
        }
      } else {
        MRect rect = {0, top, 13, top + 10};
        ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
      }
    }
  }
}

}  // namespace
}  // namespace qpx::testing
