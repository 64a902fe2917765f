// Regions against a literal second writing of the flood, which keeps to its steps one by one.
#include <gtest/gtest.h>
#include <qpx/watershed.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <deque>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "segment/watershed_gradient.h"
#include "segment/watershed_pairs.h"
#include "support/failing_memory.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

struct Scene {
  std::string name;
  int32_t width;
  int32_t height;
  int32_t pitch;
  std::vector<uint8_t> bytes;

  uint8_t* pixel(int32_t x, int32_t y) { return bytes.data() + pitch * y + 3 * x; }
  const uint8_t* pixel(int32_t x, int32_t y) const { return bytes.data() + pitch * y + 3 * x; }

  MBitmap record(uint32_t format = QPX_FORMAT_BGR24) const {
    return {format,
            width,
            height,
            {pitch, 0, 0},
            {const_cast<uint8_t*>(bytes.data()), nullptr, nullptr}};
  }
  size_t pixels() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
};

Scene makeScene(Random& random, int32_t width, int32_t height) {
  static const char* const kNames[] = {"flat",  "ramp",   "two levels", "few levels",
                                       "noise", "smooth", "blocks"};
  const int kind = random.between(0, 6);
  Scene scene = {kNames[kind], width, height, width * 3 + random.between(0, 5), {}};
  scene.bytes.resize(static_cast<size_t>(scene.pitch) * static_cast<size_t>(height), 0xEE);
  const double step = 0.05 + random.between(0, 30) * 0.01;
  const int32_t block = random.between(2, 6), seed = random.between(0, 1000);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      for (int32_t k = 0; k < 3; ++k) {
        const double wave = 128 + 60 * std::sin(x * step + k) + 55 * std::cos(y * step * 0.7 + x);
        const int32_t values[] = {90 + k,
                                  std::min(255, x * 5 + y * 3),
                                  random.between(0, 1) * 255,
                                  random.between(0, 3) * 20,
                                  random.byte(),
                                  static_cast<int32_t>(wave),
                                  (x / block * 71 + y / block * 37 * (k + seed)) & 255};
        scene.pixel(x, y)[k] = static_cast<uint8_t>(values[kind]);
      }
    }
  }
  return scene;
}

// One step of Newton's iteration behind the guess of the bit pattern.
uint8_t rootOf(int32_t squares) {
  const auto x = static_cast<float>(squares);
  int32_t bits = 0;
  std::memcpy(&bits, &x, sizeof bits);
  bits = 1597463174 - (bits >> 1);
  float y = 0;
  std::memcpy(&y, &bits, sizeof y);
  const float half = 0.5f * x;
  y = y * (1.5f - half * y * y);
  return static_cast<uint8_t>(static_cast<int32_t>(x * y));
}

using Field = std::vector<int32_t>;

Field levelsOf(const Scene& s) {
  Field levels(s.pixels(), 0);
  if (s.width < 3 || s.height < 3) return levels;
  const auto luma = [&](int32_t x, int32_t y) {
    const uint8_t* p = s.pixel(x, y);
    return (601 * p[1] + 306 * p[0] + 117 * p[2]) >> 10;
  };
  const auto at = [&](int32_t x, int32_t y) -> int32_t& {
    return levels[static_cast<size_t>(y * s.width + x)];
  };
  for (int32_t y = 1; y < s.height - 1; ++y) {
    for (int32_t x = 1; x < s.width - 1; ++x) {
      int32_t right = 0, left = 0, top = 0, bottom = 0;
      for (int32_t i = -1; i <= 1; ++i) {
        right += luma(x + 1, y + i);
        left += luma(x - 1, y + i);
        top += luma(x + i, y - 1);
        bottom += luma(x + i, y + 1);
      }
      const int32_t gx = ((right * 85) >> 8) - ((left * 85) >> 8);
      const int32_t gy = ((top * 85) >> 8) - ((bottom * 85) >> 8);
      at(x, y) = rootOf(gx * gx + gy * gy);
    }
  }
  for (int32_t y = 1; y < s.height - 1; ++y) {
    at(0, y) = at(1, y);
    at(s.width - 1, y) = at(s.width - 2, y);
  }
  for (int32_t x = 0; x < s.width; ++x) {
    at(x, 0) = at(x, 1);
    at(x, s.height - 1) = at(x, s.height - 2);
  }
  return levels;
}

// The flood step by step, with its queue, its mark between rounds and its distances.
class LiteralFlood {
 public:
  explicit LiteralFlood(const Scene& scene)
      : width_(scene.width),
        height_(scene.height),
        levels_(levelsOf(scene)),
        labels_(scene.pixels(), -2),
        distances_(scene.pixels(), 0) {
    for (int32_t level = 0; level < 256; ++level) raise(level);
    for (int32_t& label : labels_) --label;
  }

  const Field& labels() const { return labels_; }
  int32_t regions() const { return regions_; }

 private:
  static constexpr int32_t kMark = -99;

  int32_t& label(int32_t p) { return labels_[static_cast<size_t>(p)]; }
  int32_t& distance(int32_t p) { return distances_[static_cast<size_t>(p)]; }

  // Left, right, up, down.
  std::vector<int32_t> around(int32_t p) const {
    std::vector<int32_t> list;
    if (p % width_ > 0) list.push_back(p - 1);
    if (p % width_ + 1 < width_) list.push_back(p + 1);
    if (p / width_ > 0) list.push_back(p - width_);
    if (p / width_ + 1 < height_) list.push_back(p + width_);
    return list;
  }

  void raise(int32_t level) {
    std::vector<int32_t> pixels;
    for (int32_t p = 0; p < width_ * height_; ++p) {
      if (levels_[static_cast<size_t>(p)] == level) pixels.push_back(p);
    }
    for (const int32_t p : pixels) {
      label(p) = -1;
      for (const int32_t q : around(p)) {
        if (label(q) < 0) continue;
        distance(p) = 1;
        queue_.push_back(p);
        break;
      }
    }
    spread();
    for (const int32_t p : pixels) {
      distance(p) = 0;
      if (label(p) == -1) fill(p);
    }
  }

  int32_t pop() {
    const int32_t p = queue_.front();
    queue_.pop_front();
    return p;
  }

  void spread() {
    queue_.push_back(kMark);
    int32_t d = 1;
    for (;;) {
      int32_t p = pop();
      if (p == kMark) {
        if (queue_.empty()) return;
        queue_.push_back(kMark);
        ++d;
        p = pop();
      }
      for (const int32_t q : around(p)) {
        if (distance(q) < d && label(q) > 0) {
          if (label(p) == -1 || label(p) == 0) label(p) = label(q);
        } else if (label(q) == 0) {
          if (label(p) == -1) label(p) = 0;
        } else if (label(q) == -1 && distance(q) == 0) {
          distance(q) = d + 1;
          queue_.push_back(q);
        }
      }
    }
  }

  void fill(int32_t start) {
    ++regions_;
    label(start) = regions_;
    std::deque<int32_t> open = {start};
    while (!open.empty()) {
      const int32_t p = open.front();
      open.pop_front();
      for (const int32_t q : around(p)) {
        if (label(q) != -1) continue;
        label(q) = regions_;
        open.push_back(q);
      }
    }
  }

  int32_t width_, height_;
  Field levels_, labels_, distances_;
  std::deque<int32_t> queue_;
  int32_t regions_ = 0;
};

struct Segmented {
  Field labels;
  int32_t regions = -1;
};

Segmented segment(const Scene& scene, uint32_t format = QPX_FORMAT_BGR24) {
  Segmented result = {Field(scene.pixels(), -7)};
  const MBitmap record = scene.record(format);
  EXPECT_EQ(0, Watershed_PreSegmentation(&record, result.labels.data(), &result.regions));
  return result;
}

std::pair<int32_t, int32_t> randomSize(Random& random) {
  return {random.between(1, 40), random.between(1, 30)};
}

TEST(Watershed, RegionsAreThoseOfTheLiteralFlood) {
  Random random(1);
  for (int i = 0; i < 700; ++i) {
    const auto [width, height] = randomSize(random);
    const Scene scene = makeScene(random, width, height);
    const LiteralFlood expected(scene);
    const Segmented actual = segment(scene, i % 2 == 0 ? QPX_FORMAT_BGR24 : QPX_FORMAT_RGB24);
    ASSERT_EQ(expected.regions(), actual.regions) << scene.name << ' ' << width << 'x' << height;
    ASSERT_EQ(expected.labels(), actual.labels) << scene.name << ' ' << width << 'x' << height;
  }
}

TEST(Watershed, WideRowsAreCutAlike) {
  Random random(2);
  for (const auto& [width, height] : {std::pair{700, 5}, {3, 400}, {257, 64}}) {
    const Scene scene = makeScene(random, width, height);
    ASSERT_EQ(LiteralFlood(scene).labels(), segment(scene).labels) << scene.name;
  }
}

TEST(Watershed, EveryRegionIsThereAndConnected) {
  Random random(3);
  for (int i = 0; i < 100; ++i) {
    const auto [width, height] = randomSize(random);
    const Scene scene = makeScene(random, width, height);
    const Segmented cut = segment(scene);
    std::set<int32_t> seen;
    std::vector<bool> done(scene.pixels());
    for (int32_t start = 0; start < width * height; ++start) {
      if (done[static_cast<size_t>(start)]) continue;
      const int32_t label = cut.labels[static_cast<size_t>(start)];
      ASSERT_TRUE(label >= 0 && label < cut.regions);
      ASSERT_TRUE(seen.insert(label).second) << "in two pieces: " << label;
      std::vector<int32_t> open = {start};
      done[static_cast<size_t>(start)] = true;
      while (!open.empty()) {
        const int32_t p = open.back(), x = p % width, y = p / width;
        open.pop_back();
        for (const int32_t q : {x > 0 ? p - 1 : p, x + 1 < width ? p + 1 : p, y > 0 ? p - width : p,
                                y + 1 < height ? p + width : p}) {
          if (done[static_cast<size_t>(q)] || cut.labels[static_cast<size_t>(q)] != label) continue;
          done[static_cast<size_t>(q)] = true;
          open.push_back(q);
        }
      }
    }
    ASSERT_EQ(static_cast<size_t>(cut.regions), seen.size());
  }
}

// By hand, for the middle of nine greys: the mean of the right column less that of the left, the
// mean of the top row less that of the bottom row, and their root.
TEST(Watershed, LevelsAreRootsThatFallALittleShort) {
  const struct {
    std::array<uint8_t, 9> greys;
    uint8_t level;
  } cases[] = {
      {{0, 0, 0, 0, 0, 0, 0, 0, 0}, 0},          {{0, 0, 11, 0, 0, 10, 0, 0, 10}, 9},  // 10 and 0
      {{244, 244, 244, 0, 0, 28, 0, 0, 0}, 243},                                       // 9 and 243
      {{0, 255, 255, 0, 0, 255, 0, 0, 0}, 238},   // 169 and 169
      {{255, 255, 255, 0, 0, 255, 0, 0, 0}, 11},  // 85 and 254: 267 without its ninth bit
  };
  for (const auto& test : cases) {
    Scene scene = {"greys", 3, 3, 9, {}};
    for (const uint8_t grey : test.greys) scene.bytes.insert(scene.bytes.end(), 3, grey);
    std::array<uint8_t, 9> levels = {};
    ASSERT_EQ(0, gradientLevels(scene.record(), levels.data()));
    std::array<uint8_t, 9> expected;
    expected.fill(test.level);
    EXPECT_EQ(expected, levels) << int{test.level};
  }
}

TEST(Watershed, FlatAndNarrowPicturesAreOneRegion) {
  Random random(4);
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {30, 1}, {30, 2}, {2, 30}, {2, 2}}) {
    EXPECT_EQ(1, segment(makeScene(random, width, height)).regions);
  }
  Scene flat = makeScene(random, 20, 20);
  std::fill(flat.bytes.begin(), flat.bytes.end(), uint8_t{77});
  EXPECT_EQ(1, segment(flat).regions);
}

// A bright half beside a dark one: the ridge of two columns falls to both sides.
TEST(Watershed, AnEdgePartsTwoRegions) {
  Scene scene = {"edge", 10, 6, 30, std::vector<uint8_t>(180)};
  for (int32_t y = 0; y < 6; ++y) {
    for (int32_t x = 5; x < 10; ++x) std::memset(scene.pixel(x, y), 200, 3);
  }
  const Segmented cut = segment(scene);
  EXPECT_EQ(2, cut.regions);
  for (int32_t i = 0; i < 60; ++i) {
    EXPECT_EQ(i % 10 < 5 ? 0 : 1, cut.labels[static_cast<size_t>(i)]) << i;
  }
}

TEST(Watershed, PicturesThatCannotBeCutAreRefused) {
  Random random(5);
  const Scene scene = makeScene(random, 8, 8);
  const MBitmap good = scene.record();
  Field labels(64, 5);
  int32_t regions = 5;
  const auto cut = [&](const MBitmap& image) {
    return Watershed_PreSegmentation(&image, labels.data(), &regions);
  };
  EXPECT_EQ(2, Watershed_PreSegmentation(nullptr, labels.data(), &regions));
  EXPECT_EQ(2, Watershed_PreSegmentation(&good, nullptr, &regions));
  EXPECT_EQ(2, Watershed_PreSegmentation(&good, labels.data(), nullptr));
  MBitmap bad = good;
  bad.plane[0] = nullptr;
  EXPECT_EQ(2, cut(bad));
  for (int32_t MBitmap::*side : {&MBitmap::width, &MBitmap::height}) {
    for (const int32_t size : {0, -1, std::numeric_limits<int32_t>::min()}) {
      bad = good;
      bad.*side = size;
      EXPECT_EQ(2, cut(bad));
    }
  }
  bad = good;
  bad.pitch[0] = 23;
  EXPECT_EQ(2, cut(bad));
  for (const uint32_t format : {0x64000000u, 0x37000777u, 0x16000555u, 0u}) {
    EXPECT_EQ(3, cut(scene.record(format)));
  }
  bad = good;
  bad.width = bad.pitch[0] = 700000000;
  bad.height = 3;
  EXPECT_EQ(2, cut(bad));
  EXPECT_EQ(5, regions);
  EXPECT_EQ(Field(64, 5), labels);
}

TEST(Watershed, MissingMemoryIsReported) {
  Random random(6);
  const Scene scene = makeScene(random, 20, 20);
  const MBitmap record = scene.record();
  Field labels(400);
  int32_t regions = 0;
  FailingMemory::reset();
  const int64_t blocks = FailingMemory::liveBlocks();
  const int64_t failures = FailingMemory::forEachFailure(true, [&] {
    const int32_t result = Watershed_PreSegmentation(&record, labels.data(), &regions);
    EXPECT_EQ(FailingMemory::failures() > 0 ? 4 : 0, result);
  });
  EXPECT_EQ(5, failures);
  EXPECT_EQ(blocks, FailingMemory::liveBlocks());
}

std::vector<QPXRegionColor> meansOf(const Scene& scene, const Field& labels, int32_t regions) {
  std::vector<QPXRegionColor> means;
  for (int32_t region = 0; region < regions; ++region) {
    int64_t sum[3] = {};
    int32_t count = 0;
    for (int32_t i = 0; i < scene.width * scene.height; ++i) {
      if (labels[static_cast<size_t>(i)] != region) continue;
      for (int k : {0, 1, 2}) sum[k] += scene.pixel(i % scene.width, i / scene.width)[k];
      ++count;
    }
    QPXRegionColor mean = {{0, 0, 0}, count};
    for (int k : {0, 1, 2}) mean.mean[k] = static_cast<int32_t>(sum[k] / std::max(count, 1));
    means.push_back(mean);
  }
  return means;
}

// Labels of any kind, some of which are no regions.
Field strangeLabels(Random& random, size_t pixels, int32_t most) {
  Field labels;
  for (size_t i = 0; i < pixels; ++i) {
    labels.push_back(labels.empty() || random.between(0, 2) == 0 ? random.between(-2, most)
                                                                 : labels.back());
  }
  return labels;
}

TEST(Watershed, ColoursAreMeans) {
  Random random(7);
  for (int i = 0; i < 60; ++i) {
    const auto [width, height] = randomSize(random);
    const Scene scene = makeScene(random, width, height);
    const MBitmap record = scene.record();
    const int32_t regions = random.between(0, 12);
    const Field labels = strangeLabels(random, scene.pixels(), 14);
    std::vector<QPXRegionColor> colors(static_cast<size_t>(regions) + 1, {{9, 9, 9}, 9});
    ASSERT_EQ(0, Watershed_GetRegionColor(&record, labels.data(), regions, colors.data()));
    EXPECT_EQ(9, colors.back().count);
    const std::vector<QPXRegionColor> expected = meansOf(scene, labels, regions);
    for (size_t k = 0; k < expected.size(); ++k) {
      EXPECT_TRUE(std::equal(expected[k].mean, expected[k].mean + 3, colors[k].mean)) << k;
      EXPECT_EQ(expected[k].count, colors[k].count) << k;
    }
  }
}

TEST(Watershed, ColoursOfLargePicturesDoNotWrap) {
  Scene scene = {"large", 5000, 3400, 0, std::vector<uint8_t>(15000, 255)};
  const MBitmap record = scene.record();  // every row is the same one
  MBitmap rows = record;
  rows.pitch[0] = 15000;
  scene.bytes.resize(size_t{15000} * 3400, 255);
  rows.plane[0] = scene.bytes.data();
  const Field labels(scene.pixels(), 1);
  QPXRegionColor colors[2];
  ASSERT_EQ(0, Watershed_GetRegionColor(&rows, labels.data(), 2, colors));
  EXPECT_EQ(17000000, colors[1].count);
  EXPECT_EQ(255, colors[1].mean[0]);
  EXPECT_EQ(255, colors[1].mean[2]);
  EXPECT_EQ(0, colors[0].count);
  FailingMemory::failFrom(1);
  EXPECT_EQ(4, Watershed_GetRegionColor(&rows, labels.data(), 2, colors));
  FailingMemory::reset();
}

struct Adjacency {
  std::vector<QPXRegionEdge> edges;
  std::vector<QPXRegionEdge*> heads;
  int32_t count = -1;

  Adjacency(const Field& labels, int32_t width, int32_t height)
      : edges(2 * labels.size() + 1),
        heads(static_cast<size_t>(*std::max_element(labels.begin(), labels.end()) + 3),
              edges.data()) {
    EXPECT_EQ(0, Watershed_GetRegionAdjacentEdge(labels.data(), width, height, edges.data(),
                                                 heads.data(), &count));
    EXPECT_EQ(edges.data(), heads.back());
  }

  bool linked(int32_t from, int32_t to) const {
    const QPXRegionEdge* edge = heads[static_cast<size_t>(from)];
    while (edge != nullptr && edge->neighbour != to) edge = edge->next;
    return edge != nullptr;
  }
};

void checkAdjacency(const Field& labels, int32_t width, int32_t height) {
  const Adjacency actual(labels, width, height);
  std::set<std::pair<int32_t, int32_t>> pairs;
  std::vector<int32_t> targets;
  const auto meet = [&](int32_t from, int32_t to) {
    if (from == to || from < 0 || to < 0) return;
    if (pairs.count({from, to}) != 0 || pairs.count({to, from}) != 0) return;
    pairs.insert({from, to});
    targets.push_back(to);
    EXPECT_TRUE(actual.linked(from, to)) << from << ' ' << to;
    EXPECT_FALSE(actual.linked(to, from)) << from << ' ' << to;
  };
  for (int32_t i = 0; i < width * height; ++i) {
    const auto at = [&](int32_t p) { return labels[static_cast<size_t>(p)]; };
    if (i % width + 1 < width) meet(at(i), at(i + 1));
    if (i / width + 1 < height) meet(at(i), at(i + width));
  }
  ASSERT_EQ(static_cast<int32_t>(targets.size()), actual.count);
  for (size_t k = 0; k < targets.size(); ++k) {
    ASSERT_EQ(targets[k], actual.edges[k].neighbour) << "record " << k;
  }
}

TEST(Watershed, NeighboursAreLinkedOnceInTheOrderOfTheScan) {
  Random random(8);
  for (int i = 0; i < 120; ++i) {
    const auto [width, height] = randomSize(random);
    const Scene scene = makeScene(random, width, height);
    ASSERT_NO_FATAL_FAILURE(checkAdjacency(segment(scene).labels, width, height)) << scene.name;
    ASSERT_NO_FATAL_FAILURE(checkAdjacency(
        strangeLabels(random, scene.pixels(), random.between(0, 90)), width, height));
  }
}

TEST(Watershed, RegionsHaveFewerThanThreeEdgesEach) {
  Random random(9);
  for (int i = 0; i < 40; ++i) {
    const Scene scene = makeScene(random, 40, 30);
    const Segmented cut = segment(scene);
    EXPECT_LT(Adjacency(cut.labels, 40, 30).count, 3 * cut.regions);
  }
}

// One region around thousands of others, with memory for the table and without.
TEST(Watershed, ManyNeighboursAreLinked) {
  constexpr int32_t kSide = 101;
  Field labels(kSide * kSide, 0);
  int32_t next = 0;
  for (int32_t y = 1; y < kSide; y += 2) {
    for (int32_t x = 1; x < kSide; x += 2) labels[static_cast<size_t>(y * kSide + x)] = ++next;
  }
  for (const int64_t failing : {0, 1, 2}) {
    if (failing > 0) FailingMemory::failFrom(failing);
    ASSERT_NO_FATAL_FAILURE(checkAdjacency(labels, kSide, kSide)) << failing;
    FailingMemory::reset();
  }
}

TEST(Watershed, ThePairTableGrowsOrFillsUp) {
  FailingMemory::reset();
  for (const bool growing : {true, false}) {
    PairSet set(0);
    if (!growing) FailingMemory::failFrom(1);
    std::set<uint64_t> added;
    for (int32_t i = 0; i < 3000; ++i) {
      const uint64_t key = pairKey(i * 7, i * 7 + 1 + i % 5);
      const PairSet::Answer answer = set.add(key);
      if (answer == PairSet::Answer::added) added.insert(key);
      EXPECT_EQ(growing || i < 1023, answer == PairSet::Answer::added) << i;
      EXPECT_EQ(added.count(key) != 0 ? PairSet::Answer::known : PairSet::Answer::full,
                set.add(key));
    }
    FailingMemory::reset();
    EXPECT_EQ(growing ? 3000u : 1023u, added.size());
  }
}

TEST(Watershed, EdgesRefuseWhatIsNotThere) {
  const Field labels(4, 0);
  QPXRegionEdge edge;
  QPXRegionEdge* head = nullptr;
  int32_t count = 0;
  EXPECT_EQ(2, Watershed_GetRegionAdjacentEdge(nullptr, 2, 2, &edge, &head, &count));
  EXPECT_EQ(2, Watershed_GetRegionAdjacentEdge(labels.data(), 2, 2, nullptr, &head, &count));
  EXPECT_EQ(2, Watershed_GetRegionAdjacentEdge(labels.data(), 2, 2, &edge, nullptr, &count));
  EXPECT_EQ(2, Watershed_GetRegionAdjacentEdge(labels.data(), 2, 2, &edge, &head, nullptr));
  for (const int32_t side : {0, -3}) {
    EXPECT_EQ(2, Watershed_GetRegionAdjacentEdge(labels.data(), side, 2, &edge, &head, &count));
    EXPECT_EQ(2, Watershed_GetRegionAdjacentEdge(labels.data(), 2, side, &edge, &head, &count));
  }
}

TEST(Watershed, TheBmpShowsTheMeans) {
  Random random(10);
  for (int i = 0; i < 40; ++i) {
    const auto [width, height] = randomSize(random);
    const Scene scene = makeScene(random, width, height);
    Scene output = makeScene(random, width, height);
    const Scene before = output;
    const int32_t regions = random.between(0, 20);
    const Field labels = strangeLabels(random, scene.pixels(), 22);
    const std::vector<QPXRegionColor> means = meansOf(scene, labels, regions);
    const MBitmap from = scene.record();
    MBitmap to = output.record();
    ASSERT_EQ(0, Watershed_GetSegmentationBmp(&from, labels.data(), regions, &to));
    Scene expected = before;
    for (int32_t p = 0; p < width * height; ++p) {
      const int32_t label = labels[static_cast<size_t>(p)];
      const bool shown = label >= 0 && label < regions;
      for (int k : {0, 1, 2}) {
        expected.pixel(p % width, p / width)[k] =
            shown ? static_cast<uint8_t>(means[static_cast<size_t>(label)].mean[k]) : uint8_t{0};
      }
    }
    ASSERT_EQ(expected.bytes, output.bytes);
  }
}

TEST(Watershed, ABmpThatCannotBeMadeStaysAsItWas) {
  Random random(11);
  const Scene scene = makeScene(random, 9, 9), other = makeScene(random, 9, 8);
  Scene output = makeScene(random, 9, 9);
  const Scene before = output;
  const Field labels(81, 3);
  const MBitmap from = scene.record();
  MBitmap to = output.record();
  FailingMemory::reset();
  const int64_t blocks = FailingMemory::liveBlocks();
  FailingMemory::failFrom(1);
  EXPECT_EQ(0, Watershed_GetSegmentationBmp(&from, labels.data(), 4, &to));
  FailingMemory::reset();
  EXPECT_EQ(blocks, FailingMemory::liveBlocks());
  EXPECT_EQ(before.bytes, output.bytes);

  EXPECT_EQ(2, Watershed_GetSegmentationBmp(nullptr, labels.data(), 4, &to));
  EXPECT_EQ(2, Watershed_GetSegmentationBmp(&from, nullptr, 4, &to));
  EXPECT_EQ(2, Watershed_GetSegmentationBmp(&from, labels.data(), -1, &to));
  EXPECT_EQ(2, Watershed_GetSegmentationBmp(&from, labels.data(), 4, nullptr));
  MBitmap bad = other.record();
  EXPECT_EQ(2, Watershed_GetSegmentationBmp(&from, labels.data(), 4, &bad));
  bad = output.record(QPX_FORMAT_RGB24);
  EXPECT_EQ(2, Watershed_GetSegmentationBmp(&from, labels.data(), 4, &bad));
  bad = output.record(QPX_FORMAT_BGRA32);
  bad.pitch[0] = 36;
  EXPECT_EQ(3, Watershed_GetSegmentationBmp(&from, labels.data(), 4, &bad));
  EXPECT_EQ(before.bytes, output.bytes);
  // In place, and with a count that no labels reach.
  EXPECT_EQ(0, Watershed_GetSegmentationBmp(&to, labels.data(), std::numeric_limits<int32_t>::max(),
                                            &to));
}

}  // namespace
}  // namespace qpx::testing
