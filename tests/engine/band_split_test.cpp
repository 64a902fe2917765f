// Whatever the bands, a picture comes out as in one call, and as the slow model makes it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "engine/pipeline_support.h"
#include "engine/test_effects.h"

namespace qpx::testing {
namespace {

struct Chain {
  const char* name;
  std::vector<uint32_t> effects;
};

const Chain kChains[] = {
    {"Tone", {kTone}},
    {"Copy1", {kCopy1}},
    {"Copy3", {kCopy3}},
    {"Vertical1", {kVertical1}},
    {"Vertical2", {kVertical2}},
    {"Vertical3", {kVertical3}},
    {"Horizontal2", {kHorizontal2}},
    {"Box1", {kBox1}},
    {"Box2", {kBox2}},
    {"Box3", {kBox3}},
    {"GenericBox1", {kFailingBox1}},
    {"UpsideDown", {kUpsideDown}},
    {"ToneTone", {kTone, kTone}},
    {"ToneBox1", {kTone, kBox1}},
    {"Box1Tone", {kBox1, kTone}},
    {"Box1Box1", {kBox1, kBox1}},
    {"Box3Vertical1", {kBox3, kVertical1}},
    {"Vertical1Box3", {kVertical1, kBox3}},
    {"Horizontal2Box2", {kHorizontal2, kBox2}},
    {"GenericBox1Box2", {kFailingBox1, kBox2}},
    {"Box1GenericBox1", {kBox1, kFailingBox1}},
    {"UpsideDownBox1", {kUpsideDown, kBox1}},
    {"Box1UpsideDown", {kBox1, kUpsideDown}},
    {"ToneBox3Tone", {kTone, kBox3, kTone}},
    {"Box1ToneBox2", {kBox1, kTone, kBox2}},
    {"Box3Box2Box1", {kBox3, kBox2, kBox1}},
    {"Box1Box2Box3", {kBox1, kBox2, kBox3}},
    {"ToneBox1Vertical2Box3", {kTone, kBox1, kVertical2, kBox3}},
    {"Box3ToneBox2Copy1", {kBox3, kTone, kBox2, kCopy1}},
    {"Copy3Box3Copy3Box3", {kCopy3, kBox3, kCopy3, kBox3}},
};

constexpr Size kSizes[] = {{1, 1}, {1, 2}, {2, 1},  {1, 5},   {3, 3},   {5, 2},  {4, 4},
                           {7, 6}, {8, 7}, {5, 11}, {16, 16}, {17, 13}, {67, 41}};

class BandSplit : public ::testing::TestWithParam<Chain> {};

void expectSplit(QPXEngine* engine, Picture& source, const Picture& model, const Cuts& cuts,
                 const std::string& how) {
  const Picture actual = runBands(engine, source, cuts);
  EXPECT_EQ(difference(model, actual), "equal")
      << source.width << "x" << source.height << "x" << source.pixelBytes << ", " << how;
}

void expectAllSplits(const Chain& chain, Size size, int32_t pixelBytes) {
  Picture source = Picture::random(size.width, size.height, pixelBytes, 7);
  const Picture untouched = source;
  const Picture model = applyModel(chain.effects, source);
  Engine engine(formatOf(pixelBytes), size, chain.effects);
  ASSERT_EQ(engine.result(), 0);
  std::mt19937 random(static_cast<uint32_t>(size.width * 100 + size.height));
  // One engine for all: each stream begins anew at the top of the picture.
  expectSplit(engine.get(), source, model, {size.height}, "one call");
  for (const int32_t rows : {1, 2, 3, 7, 16, 64}) {
    expectSplit(engine.get(), source, model, equalBands(size.height, rows),
                "bands of " + std::to_string(rows));
  }
  for (int i = 0; i < 3; ++i) {
    expectSplit(engine.get(), source, model, randomBands(size.height, 5 + 6 * i, random),
                "random bands " + std::to_string(i));
  }
  EXPECT_EQ(difference(untouched, source), "equal") << "the source was written";
}

TEST_P(BandSplit, GivesTheBytesOfOneCall) {
  for (const Size size : kSizes) {
    for (const int32_t pixelBytes : {2, 3, 4}) {
      if (pixelBytes != 3 && size.width > 20) continue;  // the slow model takes most of the time
      expectAllSplits(GetParam(), size, pixelBytes);
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Effects, BandSplit, ::testing::ValuesIn(kChains),
                         [](const auto& chain) { return std::string(chain.param.name); });

TEST(BandStream, EveryPackedRgbFormatStreams) {
  for (const uint32_t format :
       {0x16000777u, 0x16001777u, 0x37000777u, 0x37001777u, 0x37004777u, 0x17000777u, 0x17001777u,
        0x16000555u, 0x15000454u, 0x15001454u, 0x15000333u, 0x15001444u}) {
    const int32_t pixelBytes = static_cast<int32_t>((format >> 24) & 15) - 3;
    Picture source = Picture::random(9, 14, pixelBytes, format);
    Engine engine(format, {9, 14}, {kBox1, kBox2});
    ASSERT_EQ(engine.result(), 0) << std::hex << format;
    const Picture actual = runBands(engine.get(), source, equalBands(14, 3));
    EXPECT_EQ(difference(applyModel({kBox1, kBox2}, source), actual), "equal");
  }
}

// A host that holds only a window of the picture, at another address for each call: the band and
// the rows of neighbourhood above it that the engine may still ask for.
TEST(BandStream, HostBuffersMayMoveFromCallToCall) {
  const Size size = {11, 37};
  for (const std::vector<uint32_t>& effects :
       {std::vector<uint32_t>{kBox2}, {kBox2, kBox1}, {kVertical1, kTone, kBox3}}) {
    const int32_t margin = neighbourhoodOf(effects[0]).down;
    const Picture source = Picture::random(size.width, size.height, 3, 3);
    const Picture model = applyModel(effects, source);
    Engine engine(formatOf(3), size, effects);
    int32_t finished = 0;
    std::vector<Picture> windows;  // kept, so that no address comes twice
    for (int32_t top = 0; top < size.height; top += 5) {
      const int32_t bottom = std::min(top + 5, size.height);
      const int32_t first = std::max(top - 2 * margin, 0);
      Picture window(size.width, bottom - first, 3);
      std::copy(source.at(0, first), source.at(0, first) + window.bytes.size(),
                window.bytes.begin());
      windows.push_back(window);
      Picture output(size.width, 5 + 8, 3);
      MRect rect = {0, top, size.width, bottom};
      const QPXPlaneSet in = windows.back().planes(0, top - first);
      const QPXPlaneSet out = output.planes(0, 0);
      ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
      ASSERT_EQ(rect.top, finished);
      for (int32_t y = rect.top; y < rect.bottom; ++y) {
        for (int32_t i = 0; i < size.width * 3; ++i) {
          ASSERT_EQ(output.at(0, y - rect.top)[i], model.at(0, y)[i]) << "row " << y;
        }
      }
      finished = rect.bottom;
      windows.back().bytes.assign(windows.back().bytes.size(), 0);
    }
    EXPECT_EQ(finished, size.height);
  }
}

TEST(BandStream, PitchesMayDifferAndChangeAndBeNegative) {
  const Size size = {6, 12};
  Picture source = Picture::random(size.width, size.height, 3, 4);
  const Picture model = applyModel({kBox1}, source);
  Picture flipped = source;  // stored bottom up
  for (int32_t y = 0; y < size.height; ++y) {
    std::copy(source.at(0, y), source.at(0, y) + source.pitch, flipped.at(0, size.height - 1 - y));
  }
  Engine engine(formatOf(3), size, {kBox1});
  Picture result(size.width, size.height, 3);
  int32_t finished = 0;
  for (int32_t top = 0; top < size.height; top += 4) {
    MRect rect = {0, top, size.width, top + 4};
    QPXPlaneSet in = source.planes(0, top);
    if (top == 4) {
      in = flipped.planes(0, size.height - 1 - top);
      in.pitch[0] = -in.pitch[0];
    }
    const QPXPlaneSet out = result.planes(0, finished);
    ASSERT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
    finished = rect.bottom;
  }
  EXPECT_EQ(difference(model, result), "equal");
}

TEST(BandStream, TallPictureThroughAChain) {
  const Size size = {2, 70000};
  const std::vector<uint32_t> effects = {kTone, kVertical1, kBox2};
  Picture source = Picture::random(size.width, size.height, 3, 5);
  const Picture model = applyModel(effects, source);
  Engine engine(formatOf(3), size, effects);
  for (const int32_t rows : {70000, 3000, 30011}) {
    EXPECT_EQ(difference(model, runBands(engine.get(), source, equalBands(size.height, rows))),
              "equal");
  }
  Engine single(formatOf(3), size, {kVertical2});
  EXPECT_EQ(difference(applyModel({kVertical2}, source),
                       runBands(single.get(), source, equalBands(size.height, 4999))),
            "equal");
}

TEST(BandStream, TallPictureThroughAWholeImageEffectInAChain) {
  const Size size = {2, 70000};
  const std::vector<uint32_t> effects = {kTone, kUpsideDown};
  Picture source = Picture::random(size.width, size.height, 3, 6);
  Engine engine(formatOf(3), size, effects);
  EXPECT_EQ(difference(applyModel(effects, source),
                       runBands(engine.get(), source, equalBands(size.height, 30000))),
            "equal");
}

TEST(BandStream, OneRowAtATimeOverManyRows) {
  const Size size = {3, 2000};
  const std::vector<uint32_t> effects = {kBox3, kBox1};
  Picture source = Picture::random(size.width, size.height, 3, 8);
  Engine engine(formatOf(3), size, effects);
  EXPECT_EQ(difference(applyModel(effects, source),
                       runBands(engine.get(), source, equalBands(size.height, 1))),
            "equal");
}

}  // namespace
}  // namespace qpx::testing
