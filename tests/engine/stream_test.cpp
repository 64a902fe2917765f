// Which rectangle a band gives back, and how a stream begins, goes on and begins anew.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <vector>

#include "engine/address.h"
#include "engine/pipeline_support.h"
#include "engine/test_effects.h"

namespace qpx::testing {
namespace {

// Feeds bands of a whole picture to a whole picture; nothing is looked at but the rectangles.
class Stream {
 public:
  Stream(Size size, const std::vector<uint32_t>& effects)
      : engine_(formatOf(3), size, effects),
        source_(Picture::random(size.width, size.height, 3, 1)),
        // The last band of a stream gives more rows back than it has.
        result_(size.width, size.height + 8, 3) {}

  MRect feed(MRect rect) {
    const QPXPlaneSet in = address(source_, rect);
    const QPXPlaneSet out = address(result_, rect);
    EXPECT_EQ(QPXProcess(engine_.get(), &out, &in, &rect), 0);
    return rect;
  }
  MRect feedRows(int32_t top, int32_t bottom) { return feed({0, top, source_.width, bottom}); }
  QPXEngine* engine() const { return engine_.get(); }

 private:
  static QPXPlaneSet address(Picture& picture, const MRect& rect) {
    QPXPlaneSet set = picture.planes(0, 0);
    set.plane[0] = advance(advance(set.plane[0], picture.pitch, rect.top), 3, rect.left);
    return set;
  }

  Engine engine_;
  Picture source_;
  Picture result_;
};

void expectRect(const MRect& rect, int32_t left, int32_t top, int32_t right, int32_t bottom) {
  EXPECT_EQ(rect.left, left);
  EXPECT_EQ(rect.top, top);
  EXPECT_EQ(rect.right, right);
  EXPECT_EQ(rect.bottom, bottom);
}

TEST(StreamRectangle, OneRowOfAPointEffectComesBack) {
  Stream stream({20, 40}, {kTone});
  expectRect(stream.feedRows(0, 1), 0, 0, 20, 1);
  expectRect(stream.feedRows(17, 18), 0, 17, 20, 18);
}

TEST(StreamRectangle, MarginOneTrailsByOneRowUntilTheEnd) {
  Stream stream({20, 40}, {kBox1});
  expectRect(stream.feedRows(0, 16), 0, 0, 20, 15);
  expectRect(stream.feedRows(16, 32), 0, 15, 20, 31);
  expectRect(stream.feedRows(32, 40), 0, 31, 20, 40);
}

TEST(StreamRectangle, ChainTrailsByTheSumOfItsMargins) {
  Stream stream({20, 40}, {kBox1, kBox2});
  expectRect(stream.feedRows(0, 16), 0, 0, 20, 13);
  expectRect(stream.feedRows(16, 32), 0, 13, 20, 29);
  expectRect(stream.feedRows(32, 40), 0, 29, 20, 40);
}

TEST(StreamRectangle, BandsBelowTheMarginHoldEverythingBack) {
  Stream stream({20, 40}, {kBox3});
  expectRect(stream.feedRows(0, 1), 0, 0, 20, 0);
  expectRect(stream.feedRows(1, 3), 0, 0, 20, 0);
  expectRect(stream.feedRows(3, 4), 0, 0, 20, 1);
  expectRect(stream.feedRows(4, 40), 0, 1, 20, 40);
}

TEST(StreamRectangle, StartInsideThePictureLosesTheUpperMargin) {
  Stream stream({20, 40}, {kBox2});
  expectRect(stream.feedRows(10, 20), 0, 12, 20, 18);
  expectRect(stream.feedRows(20, 30), 0, 18, 20, 28);
  expectRect(stream.feedRows(30, 40), 0, 28, 20, 40);
}

TEST(StreamRectangle, StartInsideThePictureWithSmallBands) {
  Stream stream({20, 40}, {kBox1});
  expectRect(stream.feedRows(10, 11), 0, 11, 20, 11);
  expectRect(stream.feedRows(11, 12), 0, 11, 20, 11);
  expectRect(stream.feedRows(12, 13), 0, 11, 20, 12);
  expectRect(stream.feedRows(13, 14), 0, 12, 20, 13);
}

TEST(StreamRectangle, RepeatedTopBeginsAnew) {
  Stream stream({20, 40}, {kBox1});
  expectRect(stream.feedRows(0, 16), 0, 0, 20, 15);
  expectRect(stream.feedRows(0, 16), 0, 0, 20, 15);
  expectRect(stream.feedRows(16, 32), 0, 15, 20, 31);
  expectRect(stream.feedRows(16, 32), 0, 17, 20, 31);
}

TEST(StreamRectangle, ResetBeginsAnew) {
  Stream stream({20, 40}, {kBox1});
  expectRect(stream.feedRows(0, 16), 0, 0, 20, 15);
  EXPECT_EQ(QPXCalcRectReset(stream.engine()), 0);
  expectRect(stream.feedRows(16, 32), 0, 17, 20, 31);
}

TEST(StreamRectangle, OtherColumnsBeginAnew) {
  Stream stream({20, 40}, {kBox1});
  expectRect(stream.feed({0, 0, 10, 16}), 0, 0, 9, 15);
  expectRect(stream.feed({0, 16, 12, 32}), 0, 17, 11, 31);
  expectRect(stream.feed({2, 32, 12, 40}), 3, 33, 11, 40);
}

TEST(StreamRectangle, InteriorTilesLoseTheirHorizontalMargins) {
  Stream stream({20, 40}, {kBox2});
  expectRect(stream.feed({0, 0, 20, 40}), 0, 0, 20, 40);
  expectRect(stream.feed({5, 0, 15, 40}), 7, 0, 13, 40);
  expectRect(stream.feed({0, 0, 15, 40}), 0, 0, 13, 40);
  expectRect(stream.feed({5, 0, 20, 40}), 7, 0, 20, 40);
}

TEST(StreamRectangle, TileNarrowerThanItsMarginsIsEmpty) {
  Stream stream({20, 40}, {kBox2});
  expectRect(stream.feed({5, 0, 8, 40}), 7, 0, 7, 40);
  Stream chain({20, 40}, {kBox2, kBox1});
  const MRect rect = chain.feed({5, 0, 8, 40});
  EXPECT_TRUE(rect.left >= rect.right || rect.top >= rect.bottom);
}

TEST(StreamRectangle, BandIsCutToThePicture) {
  Stream stream({20, 40}, {kTone});
  expectRect(stream.feed({-3, -5, 25, 45}), 0, 0, 20, 40);
  expectRect(stream.feed({INT_MIN, INT_MIN, INT_MAX, INT_MAX}), 0, 0, 20, 40);
}

TEST(StreamRectangle, BandOutsideThePictureIsLeftAsItIs) {
  for (const auto& effects : {std::vector<uint32_t>{kBox1}, {kBox1, kBox1}}) {
    Stream stream({20, 40}, effects);
    expectRect(stream.feed({0, 40, 20, 50}), 0, 40, 20, 50);
    expectRect(stream.feed({20, 0, 30, 40}), 20, 0, 30, 40);
    expectRect(stream.feed({-9, -8, 0, 20}), -9, -8, 0, 20);
    expectRect(stream.feed({INT_MIN, INT_MIN, INT_MIN + 1, INT_MIN + 1}), INT_MIN, INT_MIN,
               INT_MIN + 1, INT_MIN + 1);
    expectRect(stream.feed({INT_MAX - 1, INT_MAX - 1, INT_MAX, INT_MAX}), INT_MAX - 1, INT_MAX - 1,
               INT_MAX, INT_MAX);
  }
}

TEST(StreamRectangle, EmptyBandDoesNotBreakTheStream) {
  Stream stream({20, 40}, {kBox1});
  expectRect(stream.feedRows(0, 16), 0, 0, 20, 15);
  expectRect(stream.feedRows(40, 50), 0, 40, 20, 50);
  expectRect(stream.feedRows(16, 32), 0, 15, 20, 31);
}

// The rule for a single stage written down once more, with the counters that the band record has.
class RectangleModel {
 public:
  RectangleModel(Size size, int32_t margin) : size_(size), margin_(margin) {}

  void reset() {
    ringPos_ = ringWrap_ = 0;
    lastOutBottom_ = 0;
    startedAtTop_ = false;
  }

  MRect feed(const MRect& rect) {
    const MRect band = {std::max(rect.left, 0), std::max(rect.top, 0),
                        std::min(rect.right, size_.width), std::min(rect.bottom, size_.height)};
    if (band.top >= band.bottom || band.left >= band.right) return rect;
    if (band.top != prev_.bottom || band.left != prev_.left || band.right != prev_.right) reset();
    prev_ = band;

    const int32_t capacity = 2 * margin_ + 1;
    int32_t top;
    if (band.top == 0) {
      startedAtTop_ = true;
      top = -margin_;
    } else if (startedAtTop_) {
      top = band.top - margin_;
    } else {
      const int32_t held = ringPos_ - margin_ + capacity * ringWrap_;
      top = held > margin_ ? band.top - margin_ : band.top - held;
    }
    MRect out;
    out.top = std::max(top, lastOutBottom_);
    out.bottom = band.bottom >= size_.height ? size_.height : band.bottom - margin_;
    out.left = band.left + (band.left != 0 ? margin_ : 0);
    out.right = band.right - (band.right != size_.width ? margin_ : 0);
    if (out.top >= out.bottom) out.bottom = out.top;
    if (out.left >= out.right) out.right = out.left;
    if (out.top < out.bottom && out.left < out.right) lastOutBottom_ = out.bottom;

    for (int32_t kept = std::min(band.bottom - band.top, 2 * margin_); kept > 0; --kept) {
      if (++ringPos_ == capacity) {
        ringPos_ = 0;
        ++ringWrap_;
      }
    }
    return out;
  }

 private:
  Size size_;
  int32_t margin_;
  MRect prev_ = {};
  int32_t ringPos_ = 0;
  int32_t ringWrap_ = 0;
  int32_t lastOutBottom_ = 0;
  bool startedAtTop_ = false;
};

TEST(StreamRectangle, FollowsTheRuleForAnySequenceOfBands) {
  constexpr uint32_t kByMargin[] = {kTone, kBox1, kBox2, kBox3};
  std::mt19937 random(11);
  const auto below = [&](int32_t end) {
    return static_cast<int32_t>(random() % static_cast<uint32_t>(end));
  };
  for (int32_t margin = 0; margin < 4; ++margin) {
    for (int run = 0; run < 40; ++run) {
      const Size size = {1 + below(24), 1 + below(40)};
      Stream stream(size, {kByMargin[margin]});
      RectangleModel model(size, margin);
      MRect band = {0, 0, size.width, 0};
      for (int step = 0; step < 40; ++step) {
        const int choice = below(12);
        band.top = choice == 0 ? below(size.height + 4) - 2 : band.bottom;
        if (choice == 1) band.left = below(size.width + 2) - 1;
        if (choice == 2) band = {0, band.top, size.width, band.bottom};
        if (band.top >= size.height && choice > 3) band.top = 0;
        band.right = std::max(band.right, band.left + 1);
        band.bottom = band.top + 1 + below(run % 2 == 0 ? 4 : 12);
        if (choice == 3) {
          QPXCalcRectReset(stream.engine());
          model.reset();
        }
        const MRect expected = model.feed(band);
        const MRect actual = stream.feed(band);
        ASSERT_EQ(expected.left, actual.left);
        ASSERT_EQ(expected.top, actual.top) << "margin " << margin << ", step " << step;
        ASSERT_EQ(expected.right, actual.right);
        ASSERT_EQ(expected.bottom, actual.bottom) << "margin " << margin << ", step " << step;
      }
    }
  }
}

TEST(StreamReset, ReachesTheEffectWhenAStreamBeginsAndNotWithin) {
  Stream stream({20, 40}, {kTone});
  streamResets = 0;
  stream.feedRows(0, 16);
  EXPECT_EQ(streamResets, 1);
  stream.feedRows(16, 32);
  EXPECT_EQ(streamResets, 1);
  stream.feedRows(16, 32);
  EXPECT_EQ(streamResets, 2);
  QPXCalcRectReset(stream.engine());
  EXPECT_EQ(streamResets, 3);
  Stream chain({20, 40}, {kBox1, kTone, kTone});
  chain.feedRows(0, 16);
  EXPECT_EQ(streamResets, 5);
}

TEST(StreamArguments, SenselessOnesAreRefusedAndNothingIsWritten) {
  for (const auto& effects : {std::vector<uint32_t>{kBox1}, {kBox1, kBox1}}) {
    Engine engine(formatOf(3), {8, 8}, effects);
    Picture source = Picture::random(8, 8, 3, 1);
    Picture result(8, 8, 3);
    const Picture untouched = result;
    const QPXPlaneSet in = source.planes(0, 0);
    const QPXPlaneSet out = result.planes(0, 0);
    const QPXPlaneSet none = {};
    MRect rect = {0, 0, 8, 8};
    EXPECT_EQ(QPXProcess(nullptr, &out, &in, &rect), 2);
    EXPECT_EQ(QPXProcess(engine.get(), nullptr, &in, &rect), 2);
    EXPECT_EQ(QPXProcess(engine.get(), &out, nullptr, &rect), 2);
    EXPECT_EQ(QPXProcess(engine.get(), &out, &in, nullptr), 2);
    EXPECT_EQ(QPXProcess(engine.get(), &none, &in, &rect), 2);
    EXPECT_EQ(QPXProcess(engine.get(), &out, &none, &rect), 2);
    for (MRect inverted :
         {MRect{0, 5, 8, 5}, MRect{0, 6, 8, 5}, MRect{4, 0, 4, 8}, MRect{5, 0, 4, 8},
          MRect{0, 0, 0, 0}, MRect{INT_MAX, INT_MAX, INT_MIN, INT_MIN}}) {
      const MRect before = inverted;
      EXPECT_EQ(QPXProcess(engine.get(), &out, &in, &inverted), 2);
      expectRect(inverted, before.left, before.top, before.right, before.bottom);
    }
    EXPECT_EQ(difference(untouched, result), "equal");
    EXPECT_EQ(QPXProcess(engine.get(), &out, &in, &rect), 0);
  }
}

TEST(StreamArguments, WorkersCheckTheirImages) {
  MBitmap image = {};
  uint8_t bytes[8 * 8 * 3] = {};
  image.plane[0] = bytes;
  image.pitch[0] = 24;
  QPXBandRect rect = {0, 0, 8, 8, 0, 0, 0, 0};
  Engine single(formatOf(3), {8, 8}, {kTone});
  Engine chain(formatOf(3), {8, 8}, {kTone, kTone});
  struct Road {
    decltype(&QPXProcessIn) worker;
    QPXEngine* engine;
  };
  for (const auto& [worker, engine] :
       {Road{QPXProcessIn, single.get()}, {QPXMultProcessIn, chain.get()}}) {
    EXPECT_EQ(worker(nullptr, &image, &image, nullptr, nullptr, &rect), 2);
    EXPECT_EQ(worker(engine, nullptr, &image, nullptr, nullptr, &rect), 2);
    EXPECT_EQ(worker(engine, &image, nullptr, nullptr, nullptr, &rect), 2);
    EXPECT_EQ(worker(engine, &image, &image, nullptr, nullptr, &rect), 0);
  }
  EXPECT_EQ(QPXProcessIn(single.get(), &image, &image, nullptr, nullptr, nullptr), 2);
}

}  // namespace
}  // namespace qpx::testing
