#include "retouch/fill_front.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "retouch/isophotes.h"
#include "retouch/scenes.h"
#include "retouch/source_map.h"

namespace qpx::testing {
namespace {

using namespace qpx::retouch;

Scene noiseScene(uint64_t seed) {
  return [seed](int32_t x, int32_t y) {
    Random random(seed * 1000003 + static_cast<uint64_t>(x * 977 + y));
    random.next();
    return Color{random.byte(), random.byte(), random.byte()};
  };
}

// Grey of x * 30 in a row of six; the third is a hole, the sixth is not trusted.
TEST(Isophotes, ByHand) {
  OwnLevel own(6, 1);
  own.paint([](int32_t x, int32_t) {
    const auto grey = static_cast<uint8_t>(x * x * 5);
    return Color{grey, grey, grey};
  });
  own.level().state(2, 0) = kHole;
  own.level().state(5, 0) = kDoubtful;
  const Isophotes isophotes(own.level());
  ASSERT_TRUE(isophotes);
  isophotes.computeAll();
  const float unit = 3 * 0.0013071896f;
  EXPECT_FLOAT_EQ(5 * unit, isophotes.at(0, 0).x);   // forwards: 5 - 0
  EXPECT_FLOAT_EQ(5 * unit, isophotes.at(1, 0).x);   // backwards: 5 - 0
  EXPECT_FLOAT_EQ(35 * unit, isophotes.at(3, 0).x);  // forwards: 80 - 45
  EXPECT_FLOAT_EQ(35 * unit, isophotes.at(4, 0).x);  // backwards: 80 - 45
  EXPECT_FLOAT_EQ(45 * unit, isophotes.at(5, 0).x);  // backwards: 125 - 80
  EXPECT_EQ(0, isophotes.at(3, 0).y);                // a row has no neighbours up and down
}

TEST(Isophotes, TwoNeighboursGiveTheCentralDifference) {
  OwnLevel own(3, 3);
  own.paint([](int32_t x, int32_t y) {
    const auto grey = static_cast<uint8_t>(10 * x * x + 40 * y);
    return Color{grey, grey, grey};
  });
  const Isophotes isophotes(own.level());
  isophotes.computeAll();
  EXPECT_FLOAT_EQ(20 * 3 * 0.0013071896f, isophotes.at(1, 1).x);  // (40 - 0) / 2
  EXPECT_FLOAT_EQ(40 * 3 * 0.0013071896f, isophotes.at(1, 1).y);
}

TEST(FrontNormal, ByHand) {
  OwnLevel own(5, 5);
  const Level& level = own.level();
  const auto normal = [&] { return frontNormal(level, 2, 2); };
  own.mark({0, 0, 5, 5}, kHole);
  EXPECT_FALSE(normal());
  level.state(1, 1) = kDoubtful;  // known, though not trusted
  ASSERT_TRUE(normal());
  EXPECT_FLOAT_EQ(-0.70710677f, normal()->x);
  EXPECT_FLOAT_EQ(-0.70710677f, normal()->y);
  own.mark({0, 0, 5, 2}, kKnown);
  EXPECT_FLOAT_EQ(0, normal()->x);
  EXPECT_FLOAT_EQ(-1, normal()->y);
  own.mark({0, 0, 2, 5}, kKnown);  // above and to the left
  EXPECT_NEAR(-0.70710677f, normal()->x, 1e-6);
  EXPECT_NEAR(-0.70710677f, normal()->y, 1e-6);
  own.mark({0, 0, 5, 5}, kKnown);
  own.mark({2, 0, 3, 5}, kHole);  // a column
  EXPECT_EQ(1, std::fabs(normal()->x));
  EXPECT_EQ(0, normal()->y);
  own.mark({0, 0, 5, 5}, kKnown);
  own.mark({0, 2, 5, 3}, kHole);  // a row
  EXPECT_EQ(0, normal()->x);
  EXPECT_EQ(1, std::fabs(normal()->y));
}

// The rules once more, step by step, over maps of their own.
class Model {
 public:
  Model(const Level& level, int32_t radius, float weight)
      : level_(level), r_(radius), w_(weight), confidence_(size()), ix_(size()), iy_(size()) {
    for (int32_t y = 0; y < level.height; ++y) {
      for (int32_t x = 0; x < level.width; ++x) {
        confidence_[at(x, y)] = level.state(x, y) == kKnown ? 1.0f : 0.0f;
        if (level.state(x, y) != kHole) gradient(x, y);
      }
    }
  }

  void gradient(int32_t x, int32_t y) {
    const auto one = [&](int32_t dx, int32_t dy) {
      const bool before = trusted(x - dx, y - dy), behind = trusted(x + dx, y + dy);
      if (before && behind) return (grey(x + dx, y + dy) - grey(x - dx, y - dy)) * 0.5f;
      if (behind) return grey(x + dx, y + dy) - grey(x, y);
      return before ? grey(x, y) - grey(x - dx, y - dy) : 0.0f;
    };
    ix_[at(x, y)] = one(1, 0);
    iy_[at(x, y)] = one(0, 1);
  }

  float patchMean(const MRect& patch) const {
    float sum = 0;
    int count = 0;
    for (int32_t y = patch.top; y < patch.bottom; ++y) {
      for (int32_t x = patch.left; x < patch.right; ++x, ++count) {
        if (!level_.isHole(x, y)) sum += confidence_[at(x, y)];
      }
    }
    return sum / static_cast<float>(count);
  }
  void setConfidence(int32_t x, int32_t y, float value) { confidence_[at(x, y)] = value; }

  // No number above 0 off the front.
  float priority(int32_t x, int32_t y) const {
    const auto normal = level_.isHole(x, y) ? frontNormal(level_, x, y) : std::nullopt;
    if (!normal) return -1;
    float sum = 0, most = 0, bestX = 0, bestY = 0;
    int known = 0;
    for (int32_t j = std::max(y - r_, 0); j <= std::min(y + r_, level_.height - 1); ++j) {
      for (int32_t i = std::max(x - r_, 0); i <= std::min(x + r_, level_.width - 1); ++i) {
        if (level_.isHole(i, j)) continue;
        ++known;
        sum += confidence_[at(i, j)];
        const auto distance = static_cast<float>(1 + std::max(std::abs(i - x), std::abs(j - y)));
        const float gx = ix_[at(i, j)] / distance, gy = iy_[at(i, j)] / distance;
        if (std::fabs(gx) + std::fabs(gy) > most) {
          most = std::fabs(gx) + std::fabs(gy);
          bestX = gx;
          bestY = gy;
        }
      }
    }
    const float data = std::fabs(normal->y * bestX - normal->x * bestY);
    const float trust = sum / static_cast<float>(known);
    return (1 - w_) * (0.001f + data) + w_ * 0.5f * (1 + trust);
  }

 private:
  size_t size() const { return static_cast<size_t>(level_.width * level_.height); }
  size_t at(int32_t x, int32_t y) const { return static_cast<size_t>(y * level_.width + x); }
  bool trusted(int32_t x, int32_t y) const {
    return level_.contains(x, y) && level_.state(x, y) == kKnown;
  }
  float grey(int32_t x, int32_t y) const {
    const uint8_t* p = level_.pixel(x, y);
    const int sum = p[0] + p[level_.channelStep] + p[2 * level_.channelStep];
    return static_cast<float>(sum) * 0.0013071896f;
  }

  const Level& level_;
  int32_t r_;
  float w_;
  std::vector<float> confidence_, ix_, iy_;
};

void expectPriorities(const Model& model, const FillFront& front, const Level& level) {
  float highest = 0;
  MPoint best = {-1, -1};
  for (int32_t y = 0; y < level.height; ++y) {
    for (int32_t x = 0; x < level.width; ++x) {
      const float expected = model.priority(x, y);
      if (expected > highest) {
        highest = expected;
        best = {x, y};
      }
      if (expected < 0) {
        EXPECT_FALSE(front.priorityAt({x, y}) > 0) << x << ", " << y;
      } else {
        EXPECT_EQ(expected, front.priorityAt({x, y})) << x << ", " << y;
      }
    }
  }
  const std::optional<MPoint> next = front.next();
  ASSERT_EQ(highest > 0, next.has_value());
  if (next) {
    EXPECT_EQ(best.x, next->x);
    EXPECT_EQ(best.y, next->y);
  }
}

// Patch by patch with random colours until nothing is left: what is refreshed around the last patch
// is all that has changed.
TEST(FillFront, PrioritiesAreThoseOfTheRulesUntilTheHoleIsFilled) {
  for (const int32_t radius : {1, 2, 4}) {
    for (const float weight : {0.0f, 0.3f, 1.0f}) {
      OwnLevel own(23, 17);
      const Level& level = own.level();
      own.paint(noiseScene(static_cast<uint64_t>(radius)));
      own.mark({5, 4, 16, 12}, kHole);
      own.mark({0, 10, 7, 17}, kHole);
      own.mark({20, 0, 23, 2}, kDoubtful);
      own.mark({12, 6, 13, 7}, kDoubtful);
      FillFront front(level, radius, weight);
      ASSERT_TRUE(front);
      front.start();
      Model model(level, radius, weight);
      Random random(7);
      int steps = 0;
      for (; const std::optional<MPoint> pixel = front.next(); ++steps) {
        expectPriorities(model, front, level);
        const MRect patch = intersection(squareAround(*pixel, radius), level.all());
        const float confidence = front.patchConfidence(patch);
        EXPECT_EQ(model.patchMean(patch), confidence);
        std::vector<MPoint> filled;
        for (int32_t y = patch.top; y < patch.bottom; ++y) {
          for (int32_t x = patch.left; x < patch.right; ++x) {
            if (!level.isHole(x, y)) continue;
            filled.push_back({x, y});
            level.state(x, y) = kKnown;
            level.pixel(x, y)[0] = random.byte();
          }
        }
        ASSERT_FALSE(filled.empty());
        for (const MPoint& at : filled) {
          front.filled(at, confidence);
          model.setConfidence(at.x, at.y, confidence);
          model.gradient(at.x, at.y);
        }
        front.refreshAround(patch);
      }
      EXPECT_GE(steps, 5);
      EXPECT_FALSE(front.next());
    }
  }
}

TEST(FillFront, NothingKnownHasNoFront) {
  OwnLevel own(9, 8);
  own.mark({0, 0, 9, 8}, kHole);
  FillFront front(own.level(), 2, 0.5f);
  front.start();
  EXPECT_FALSE(front.next());
}

TEST(SourceMap, MarksThePatchesWithoutAnythingButKnownPixels) {
  Random random(3);
  for (int round = 0; round < 30; ++round) {
    const int32_t width = random.between(1, 20), height = random.between(1, 20);
    const int32_t across = random.between(1, 7), down = random.between(1, 7);
    const MPoint anchor = {random.between(0, across - 1), random.between(0, down - 1)};
    OwnLevel own(width, height);
    const Level& level = own.level();
    for (int k = random.between(0, 4); k > 0; --k) {
      level.state(random.between(0, width - 1), random.between(0, height - 1)) =
          random.between(0, 1) == 0 ? kHole : kDoubtful;
    }
    const std::vector<uint8_t> before(level.mask, level.mask + width * height);
    std::vector<int32_t> row(static_cast<size_t>(width));
    const bool any = markSources(level, across, down, anchor, row.data());
    bool expectedAny = false;
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        const int32_t left = x - anchor.x, top = y - anchor.y;
        bool whole = left >= 0 && top >= 0 && left + across <= width && top + down <= height;
        for (int32_t j = top; whole && j < top + down; ++j) {
          for (int32_t i = left; whole && i < left + across; ++i) {
            whole = before[static_cast<size_t>(j * width + i)] == kKnown;
          }
        }
        const uint8_t was = before[static_cast<size_t>(y * width + x)];
        EXPECT_EQ(whole ? kSource : was, level.state(x, y)) << x << ", " << y;
        expectedAny |= whole;
      }
    }
    EXPECT_EQ(expectedAny, any);
  }
}

}  // namespace
}  // namespace qpx::testing
