// Cut-outs: the whole way against its steps taken one by one over the public surface, and the
// promises of the handle.
#include <gtest/gtest.h>
#include <qpx/contours.h>
#include <qpx/max_flow.h>
#include <qpx/watershed.h>

#include <algorithm>
#include <climits>
#include <map>

#include "segment/chain_model.h"
#include "segment/cutout_pictures.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

bool inDisc(int32_t x, int32_t y) { return (x - 40) * (x - 40) + (y - 30) * (y - 30) < 400; }

Canvas disc() { return paintedCanvas(80, 60, inDisc, 12, 1); }

const std::vector<MPoint> kOver = line({30, 30}, {50, 30});
const std::vector<MPoint> kAround = line({3, 3}, {75, 3});

struct Marking {
  int32_t side;
  std::vector<MPoint> points;
};

struct Described {
  std::vector<int32_t> labels, marks;
  std::vector<QPXRegionColor> colors;
};

std::vector<uint8_t> paletteOf(const Described& regions, int32_t mark) {
  std::vector<uint8_t> colors;
  for (size_t i = 0; i < regions.marks.size(); ++i) {
    if (regions.marks[i] != mark) continue;
    for (const int32_t channel : regions.colors[i].mean) {
      colors.push_back(static_cast<uint8_t>(channel));
    }
  }
  const size_t count = colors.size() / 3;
  if (count <= 64) return colors;
  std::vector<uint8_t> palette(192);
  EXPECT_EQ(0, KmeansSegColor(colors.data(), static_cast<int32_t>(count), 64, palette.data()));
  return palette;
}

int32_t distanceTo(const std::vector<uint8_t>& palette, const QPXRegionColor& color) {
  int32_t smallest = 195075;
  for (size_t k = 0; k < palette.size(); k += 3) {
    int32_t distance = 0;
    for (size_t c = 0; c < 3; ++c) {
      distance += (color.mean[c] - palette[k + c]) * (color.mean[c] - palette[k + c]);
    }
    smallest = std::min(smallest, distance);
  }
  return smallest;
}

void addNodes(const Described& regions, MaxFlowGraph* graph) {
  const std::vector<uint8_t> fore = paletteOf(regions, -1), back = paletteOf(regions, -2);
  for (size_t i = 0; i < regions.marks.size(); ++i) {
    const int32_t df = distanceTo(fore, regions.colors[i]),
                  db = distanceTo(back, regions.colors[i]);
    const int32_t w = df * 200 / (df + db + 1);
    int32_t caps[2] = {w, 200 - w};
    if (regions.marks[i] == -1) caps[0] = 0, caps[1] = 0x7FFFFFFF;
    if (regions.marks[i] == -2) caps[0] = 0x7FFFFFFF, caps[1] = 0;
    MaxFlowInt_AddNode(graph);
    MaxFlowInt_AddTWeights(graph, static_cast<int32_t>(i), caps);
  }
}

Described describe(const MBitmap& image, const std::vector<Marking>& markings) {
  Described regions;
  int32_t count = 0;
  regions.labels.resize(static_cast<size_t>(image.width) * static_cast<size_t>(image.height));
  Watershed_PreSegmentation(&image, regions.labels.data(), &count);
  regions.colors.resize(static_cast<size_t>(count));
  regions.marks.resize(static_cast<size_t>(count));
  Watershed_GetRegionColor(&image, regions.labels.data(), count, regions.colors.data());
  for (const Marking& marking : markings) {
    for (const MPoint& point : marking.points) {
      const auto place = static_cast<size_t>(point.y * image.width + point.x);
      regions.marks[static_cast<size_t>(regions.labels[place])] = marking.side == 0 ? -1 : -2;
    }
  }
  return regions;
}

// The mask by a fresh graph; `before` where a side has no region.
Plane modelMask(const MBitmap& image, const std::vector<Marking>& markings, const Plane& before) {
  const Described regions = describe(image, markings);
  if (paletteOf(regions, -1).empty() || paletteOf(regions, -2).empty()) return before;
  const size_t count = regions.marks.size();
  std::vector<QPXRegionEdge> edges(3 * count);
  std::vector<QPXRegionEdge*> heads(count);
  int32_t edgeCount = 0;
  Watershed_GetRegionAdjacentEdge(regions.labels.data(), image.width, image.height, edges.data(),
                                  heads.data(), &edgeCount);
  MaxFlowGraph* graph = nullptr;
  MaxFlowInt_Create(&graph, static_cast<int32_t>(count), edgeCount);
  addNodes(regions, graph);
  for (size_t a = 0; a < count; ++a) {
    for (const QPXRegionEdge* edge = heads[a]; edge != nullptr; edge = edge->next) {
      int32_t distance = 0;
      for (size_t c = 0; c < 3; ++c) {
        const int32_t d = regions.colors[a].mean[c] -
                          regions.colors[static_cast<size_t>(edge->neighbour)].mean[c];
        distance += d * d;
      }
      const int32_t likeness = 2000000 / (1 + distance);
      MaxFlowInt_AddEdge(graph, static_cast<int32_t>(a), edge->neighbour, likeness, likeness);
    }
  }
  MaxFlowInt_GetMaxFlow(graph);
  Plane mask(image.width, image.height);
  for (size_t i = 0; i < mask.bytes.size(); ++i) {
    mask.bytes[i] = MaxFlowInt_GetNodeType(graph, regions.labels[i]) == 1 ? 255 : 0;
  }
  MaxFlowInt_Destroy(graph);
  return mask;
}

Plane modelMask(const MBitmap& image, const std::vector<Marking>& markings) {
  return modelMask(image, markings, Plane(image.width, image.height));
}

std::vector<MPoint> modelOutline(const Plane& mask) {
  std::vector<MPoint> points;
  for (const ChainModel& chain : chainsOf(edgesOf(mask, false).edges)) {
    if (chain.points.size() < 20) continue;
    points.insert(points.end(), chain.points.begin(), chain.points.end());
  }
  return points;
}

void expectOutline(const std::vector<MPoint>& expected, const Cutting& cutting) {
  ASSERT_EQ(static_cast<int32_t>(expected.size()), cutting.count);
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), cutting.points, same));
}

std::vector<MPoint> randomStroke(const MBitmap& image, Random& random) {
  const MPoint from = {random.between(0, image.width - 1), random.between(0, image.height - 1)};
  return line(from, {random.between(0, image.width - 1), random.between(0, image.height - 1)});
}

// Stroke after stroke in one handle, each cut as if it were the first.
TEST(StrokeMatting, EveryCutIsThatOfAFreshGraph) {
  Random random(7);
  for (int picture = 0; picture < 6; ++picture) {
    const int32_t width = random.between(20, 90), height = random.between(20, 70);
    Canvas canvas = paintedCanvas(width, height, inDisc, 5 + 10 * picture, random.next());
    const MBitmap image = canvas.bitmap();
    Cutting cutting(image);
    std::vector<Marking> markings;
    Plane expected(width, height);
    for (int turn = 0; turn < 8; ++turn) {
      markings.push_back({turn % 3 == 1 ? 1 : 0, randomStroke(image, random)});
      ASSERT_EQ(0, cutting.stroke(markings.back().side, markings.back().points));
      ASSERT_EQ(0, cutting.process());
      expected = modelMask(image, markings, expected);
      ASSERT_EQ(expected.bytes, cutting.maskBytes()) << picture << ", " << turn;
      expectOutline(modelOutline(expected), cutting);
    }
  }
}

// By hand: the object has 30 by 20 pixels, so that 2 * (31 + 21) lie around it, and the way cuts
// each corner by one, since the regions end there two pixels early.
TEST(StrokeMatting, OutlinesComeBackToTheirStart) {
  const Inside inBox = [](int32_t x, int32_t y) { return x >= 25 && x < 55 && y >= 20 && y < 40; };
  Canvas canvas = paintedCanvas(80, 60, inBox, 0, 1);
  Cutting cutting(canvas.bitmap());
  cutting.stroke(0, kOver);
  cutting.stroke(1, kAround);
  ASSERT_EQ(0, cutting.process());
  const std::vector<MPoint> outline = cutting.outline();
  ASSERT_EQ(100u, outline.size());
  for (size_t i = 0; i < outline.size(); ++i) {
    EXPECT_TRUE(neighbours(outline[i], outline[(i + 1) % outline.size()])) << i;
  }
  EXPECT_TRUE(same({26, 19}, outline.front()));
  EXPECT_TRUE(same({27, 19}, outline.back()));
}

TEST(StrokeMatting, BothFormatsServe) {
  for (const uint32_t format : {QPX_FORMAT_BGR24, QPX_FORMAT_RGB24}) {
    Picture picture(format, 33, 21, Placement::exact);
    picture.paint(3);
    Cutting cutting(picture.bitmap());
    ASSERT_EQ(0, cutting.created);
    EXPECT_EQ(0, cutting.stroke(0, {{16, 10}}));
    EXPECT_EQ(0, cutting.stroke(1, {{0, 0}}));
    EXPECT_EQ(0, cutting.process());
    EXPECT_EQ(48, cutting.mask->pitch[0]);
    EXPECT_EQ(uint32_t{QPX_FORMAT_GREY8}, cutting.mask->format);
  }
}

TEST(StrokeMatting, PixelsAreReadByCreateOnly) {
  Canvas canvas = disc();
  Cutting cutting(canvas.bitmap());
  cutting.stroke(0, kOver);
  cutting.stroke(1, kAround);
  const Plane expected = modelMask(canvas.bitmap(), {{0, kOver}, {1, kAround}});
  std::vector<uint8_t>().swap(canvas.bytes);
  ASSERT_EQ(0, cutting.process());
  EXPECT_EQ(expected.bytes, cutting.maskBytes());
}

TEST(StrokeMatting, OneSideAloneCutsNothing) {
  Canvas canvas = disc();
  for (const int32_t side : {0, 1}) {
    Cutting cutting(canvas.bitmap());
    EXPECT_EQ(0, cutting.process());
    EXPECT_EQ(0, cutting.stroke(side, kOver));
    EXPECT_EQ(0, cutting.process());
    ASSERT_NE(nullptr, cutting.mask);
    EXPECT_EQ(std::vector<uint8_t>(80 * 60, 0), cutting.maskBytes());
    EXPECT_EQ(0, cutting.count);
    EXPECT_NE(nullptr, cutting.points);
    // The stroke still waits.
    EXPECT_EQ(0, cutting.stroke(1 - side, kAround));
    EXPECT_EQ(0, cutting.process());
    EXPECT_GT(cutting.count, 0);
  }
}

TEST(StrokeMatting, ResultsStandWithoutNewStrokes) {
  Canvas canvas = disc();
  Cutting cutting(canvas.bitmap());
  cutting.stroke(0, kOver);
  cutting.stroke(1, kAround);
  cutting.process();
  const std::vector<uint8_t> mask = cutting.maskBytes();
  const std::vector<MPoint> outline = cutting.outline();
  const MBitmap* const before = cutting.mask;
  EXPECT_EQ(0, STRKM_AddLine(cutting.handle, 0, kOver.data(), 0));
  ASSERT_EQ(0, cutting.process());
  EXPECT_EQ(before, cutting.mask);
  EXPECT_EQ(mask, cutting.maskBytes());
  expectOutline(outline, cutting);
}

TEST(StrokeMatting, LaterStrokesOverride) {
  Canvas canvas = disc();
  Cutting cutting(canvas.bitmap());
  cutting.stroke(0, kOver);
  cutting.stroke(1, kAround);
  cutting.process();
  EXPECT_EQ(255, cutting.maskAt(40, 30));
  cutting.stroke(0, kAround);
  cutting.stroke(1, kOver);
  cutting.process();
  EXPECT_EQ(0, cutting.maskAt(40, 30));
  EXPECT_EQ(255, cutting.maskAt(40, 3));
}

TEST(StrokeMatting, ResetTakesAllBack) {
  Canvas canvas = disc();
  Cutting cutting(canvas.bitmap());
  cutting.stroke(0, kAround);
  cutting.stroke(1, kOver);
  cutting.process();
  EXPECT_EQ(0, STRKM_ResetLine(cutting.handle));
  EXPECT_EQ(0, cutting.process());
  EXPECT_EQ(std::vector<uint8_t>(80 * 60, 0), cutting.maskBytes());
  EXPECT_EQ(0, cutting.count);
  EXPECT_EQ(0, cutting.stroke(0, kOver));
  EXPECT_EQ(0, cutting.process());
  EXPECT_EQ(0, cutting.count);
  EXPECT_EQ(0, cutting.stroke(1, kAround));
  EXPECT_EQ(0, cutting.process());
  EXPECT_EQ(modelMask(canvas.bitmap(), {{0, kOver}, {1, kAround}}).bytes, cutting.maskBytes());
}

TEST(StrokeMatting, HostileStrokesAreRefusedWhole) {
  Canvas canvas = disc();
  Cutting cutting(canvas.bitmap());
  cutting.stroke(0, kOver);
  cutting.stroke(1, kAround);
  cutting.process();
  const std::vector<uint8_t> mask = cutting.maskBytes();
  for (const MPoint& off : {MPoint{80, 3}, MPoint{3, 60}, MPoint{-1, 3}, MPoint{3, -1},
                            MPoint{INT_MAX, INT_MAX}, MPoint{INT_MIN, INT_MIN}}) {
    EXPECT_EQ(2, cutting.stroke(1, {{40, 30}, off}));
    EXPECT_EQ(2, cutting.stroke(1, {off, {40, 30}}));
  }
  const MPoint point = {40, 30};
  for (const int32_t side : {2, 3, -1, INT_MAX, INT_MIN}) {
    EXPECT_EQ(2, STRKM_AddLine(cutting.handle, side, &point, 1));
  }
  EXPECT_EQ(2, STRKM_AddLine(cutting.handle, 1, nullptr, 0));
  EXPECT_EQ(2, STRKM_AddLine(cutting.handle, 1, &point, -1));
  EXPECT_EQ(2, STRKM_AddLine(cutting.handle, 1, &point, INT_MIN));
  cutting.stroke(0, kOver);
  cutting.process();
  EXPECT_EQ(mask, cutting.maskBytes());
}

TEST(StrokeMatting, RefusesBadArguments) {
  Canvas canvas = disc();
  const MBitmap good = canvas.bitmap();
  auto* const stale = reinterpret_cast<StrokeMatting*>(&canvas);
  const auto code = [&](const auto& change) {
    MBitmap bitmap = good;
    change(bitmap);
    StrokeMatting* made = stale;
    const int32_t result = STRKM_Create(&made, &bitmap);
    EXPECT_EQ(stale, made);
    return result;
  };
  EXPECT_EQ(2, code([](MBitmap& b) { b.format = QPX_FORMAT_BGRA32; }));
  EXPECT_EQ(2, code([](MBitmap& b) { b.format = QPX_FORMAT_GREY8; }));
  EXPECT_EQ(2, code([](MBitmap& b) { b.plane[0] = nullptr; }));
  for (const int32_t size : {0, -1, INT_MIN}) {
    EXPECT_EQ(2, code([=](MBitmap& b) { b.width = size; }));
    EXPECT_EQ(2, code([=](MBitmap& b) { b.height = size; }));
  }
  EXPECT_EQ(2, code([](MBitmap& b) { b.pitch[0] = 239; }));
  MBitmap huge = good;
  huge.height = INT_MAX;
  StrokeMatting* made = stale;
  EXPECT_EQ(4, STRKM_Create(&made, &huge));
  EXPECT_EQ(nullptr, made);
}

// Everything that a row or column of pixels can do.
TEST(StrokeMatting, NarrowPicturesServe) {
  for (const auto& [width, height] :
       {std::pair{1, 1}, {1, 40}, {40, 1}, {2, 30}, {30, 2}, {3, 3}}) {
    Canvas canvas = paintedCanvas(
        width, height, [](int32_t x, int32_t y) { return x + y < 12; }, 5, 9);
    const MBitmap image = canvas.bitmap();
    Cutting cutting(image);
    const std::vector<Marking> markings = {
        {0, {{0, 0}}}, {1, {{width - 1, height - 1}}}, {0, {{0, 0}}}};
    for (const Marking& marking : markings) cutting.stroke(marking.side, marking.points);
    ASSERT_EQ(0, cutting.process());
    const Plane expected = modelMask(image, markings);
    EXPECT_EQ(expected.bytes, cutting.maskBytes());
    Plane mask(width, height);
    mask.bytes = cutting.maskBytes();
    expectOutline(modelOutline(mask), cutting);
  }
}

// Without memory calls say so or do their work, whatever is missing, and nothing leaks.
TEST(StrokeMatting, SurvivesEveryFailedAllocation) {
  FailingMemory::reset();
  Canvas canvas = paintedCanvas(80, 60, inDisc, 40, 1);
  const std::vector<MPoint> thick = line({22, 30}, {58, 30}), rim = line({0, 3}, {79, 3});
  const Plane expected = modelMask(canvas.bitmap(), {{0, thick}, {1, rim}});
  int64_t failures = 0;
  const auto run = [&] {
    failures = 0;
    Cutting cutting(canvas.bitmap());
    if (cutting.created != 0) {
      EXPECT_EQ(4, cutting.created);
      EXPECT_EQ(nullptr, cutting.handle);
      return;
    }
    const int32_t added = std::max(cutting.stroke(0, thick), cutting.stroke(1, rim));
    const int64_t before = FailingMemory::failures();
    const int32_t result = cutting.process();
    // Where the solver ran out of memory the cut may not be the least.
    const bool inSolver = result == 0 && FailingMemory::failures() > before;
    EXPECT_TRUE(added == 0 || added == 4);
    EXPECT_TRUE(result == 0 || result == 4);
    if (added == 0 && result == 4) {
      failures = FailingMemory::failures();
      FailingMemory::failFrom(INT64_MAX);  // memory is back
      if (cutting.process() == 4) return;  // for ever without a part
    }
    if (added == 0 && !inSolver) {
      EXPECT_EQ(expected.bytes, cutting.maskBytes());
    }
    EXPECT_EQ(0, STRKM_ResetLine(cutting.handle));
  };
  for (const bool firstOnly : {true, false}) {
    int64_t runs = 0;
    for (bool failed = true; failed; ++runs) {
      firstOnly ? FailingMemory::failOnly(runs + 1) : FailingMemory::failFrom(runs + 1);
      run();
      failed = failures + FailingMemory::failures() > 0;
      FailingMemory::reset();
      EXPECT_EQ(0, FailingMemory::liveBlocks());
    }
    EXPECT_GT(runs, 40);
  }
  FailingMemory::reset();
}

double overlap(const Cutting& cutting, const Inside& inside) {
  int both = 0, either = 0;
  for (int32_t y = 0; y < cutting.mask->height; ++y) {
    for (int32_t x = 0; x < cutting.mask->width; ++x) {
      const bool cut = cutting.maskAt(x, y) != 0, in = inside(x, y);
      both += cut && in;
      either += cut || in;
    }
  }
  return static_cast<double>(both) / either;
}

TEST(StrokeMatting, CutsObjectsOutOfNoise) {
  const Inside letter = [](int32_t x, int32_t y) {
    return y >= 40 && y < 200 && ((x >= 60 && x < 100) || (x >= 60 && x < 180 && y >= 160));
  };
  const Inside ring = [](int32_t x, int32_t y) {
    const int32_t d = (x - 120) * (x - 120) + (y - 120) * (y - 120);
    return d < 9200 && d > 2800;
  };
  const Inside round = [](int32_t x, int32_t y) {
    return (x - 120) * (x - 120) + (y - 120) * (y - 120) < 6400;
  };
  const std::vector<MPoint> edge = line({4, 4}, {230, 4});
  const struct {
    Inside inside;
    std::vector<MPoint> over, around;
  } cases[] = {{letter, line({80, 60}, {80, 180}), edge},
               {ring, line({120, 40}, {120, 60}), edge},
               {round, line({80, 120}, {160, 120}), edge}};
  for (const auto& object : cases) {
    for (const int amplitude : {0, 8, 25}) {
      Canvas canvas = paintedCanvas(240, 240, object.inside, amplitude, 11);
      Cutting cutting(canvas.bitmap());
      cutting.stroke(0, object.over);
      cutting.stroke(1, object.around);
      ASSERT_EQ(0, cutting.process());
      EXPECT_GT(overlap(cutting, object.inside), 0.97) << amplitude;
    }
  }
}

// Stripes on checks: both sides have two colours each.
TEST(StrokeMatting, CutsTextureOutOfTexture) {
  Canvas canvas(240, 240);
  const Inside inside = [](int32_t x, int32_t y) {
    return (x - 120) * (x - 120) + (y - 120) * (y - 120) < 6400;
  };
  constexpr uint8_t kColors[4][3] = {{40, 40, 200}, {90, 120, 240}, {150, 60, 20}, {200, 160, 90}};
  Random random(3);
  for (int32_t y = 0; y < 240; ++y) {
    for (int32_t x = 0; x < 240; ++x) {
      const int which = inside(x, y) ? x / 12 % 2 : 2 + (x / 16 + y / 16) % 2;
      for (int c = 0; c < 3; ++c) {
        canvas.at(x, y)[c] = static_cast<uint8_t>(kColors[which][c] + random.between(-9, 9));
      }
    }
  }
  Cutting cutting(canvas.bitmap());
  cutting.stroke(0, line({80, 120}, {160, 120}));
  cutting.stroke(1, line({4, 12}, {230, 12}));
  cutting.process();
  EXPECT_GT(overlap(cutting, inside), 0.97);
}

}  // namespace
}  // namespace qpx::testing
