// Tiles at the right edge of pictures as wide as 32 bits say, in buffers of just their size:
// nothing that rounds up to blocks or adds margins may wrap round.
#include <gtest/gtest.h>
#include <qpx/engine.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace {

constexpr int32_t kWidth = std::numeric_limits<int32_t>::max();
constexpr int32_t kHeight = 4;
constexpr int32_t kTileWidth = 11;  // from an even column to the last, an odd number
constexpr int32_t kLeft = kWidth - kTileWidth;

struct Layout {
  uint32_t format;
  int32_t across;  // pixels of a chroma sample; 0 for no chroma planes
  int32_t down;
  int first;  // interleaved: the plane whose sample comes first
};

constexpr Layout kLayouts[] = {{QPX_FORMAT_BGR24, 0, 0, 0}, {QPX_FORMAT_GREY8, 0, 0, 0},
                               {QPX_FORMAT_I420, 2, 2, 0},  {QPX_FORMAT_I422, 2, 1, 0},
                               {QPX_FORMAT_I444, 1, 1, 0},  {0x50000830, 4, 1, 0},
                               {QPX_FORMAT_NV21, 2, 2, 2},  {QPX_FORMAT_NV12, 2, 2, 1}};

// Planes of the tile, each a block of its own, all of one value.
class TilePlanes {
 public:
  TilePlanes(const Layout& layout, uint8_t value) {
    const int32_t pixelBytes = layout.format == QPX_FORMAT_BGR24 ? 3 : 1;
    addPlane(0, kTileWidth * pixelBytes, kHeight, value);
    if (layout.across == 0) return;
    const int32_t rows = (kHeight + layout.down - 1) / layout.down;
    const int32_t cut = kWidth % layout.across != 0 ? 1 : 0;
    const int32_t columns = kWidth / layout.across - kLeft / layout.across + cut;
    if (layout.first == 0) {
      addPlane(1, columns, rows, value);
      addPlane(2, columns, rows, value);
    } else {
      addPlane(layout.first, 2 * columns, rows, value);
      set_.plane[3 - layout.first] = set_.plane[layout.first] + 1;
      set_.pitch[3 - layout.first] = set_.pitch[layout.first];
    }
  }

  const QPXPlaneSet& set() const { return set_; }
  uint8_t at(int p, size_t i) const { return blocks_[p][i]; }
  size_t bytes(int p) const { return blocks_[p].size(); }

 private:
  void addPlane(int p, int32_t pitch, int32_t rows, uint8_t value) {
    blocks_[p].assign(static_cast<size_t>(pitch) * static_cast<size_t>(rows), value);
    set_.plane[p] = blocks_[p].data();
    set_.pitch[p] = pitch;
  }

  std::vector<uint8_t> blocks_[3];
  QPXPlaneSet set_ = {};
};

TEST(FarColumns, AreServedByEveryEffectInEveryLayout) {
  for (const Layout& layout : kLayouts) {
    for (const uint32_t id : {0x1200u, 0x1300u, 0x1700u, 0x1800u, 0x1D00u, 0x1F00u, 0x2100u}) {
      SCOPED_TRACE(testing::Message() << std::hex << layout.format << " " << id);
      const int32_t record[3] = {40, 0, 20};
      const bool three = id == 0x1F00;
      const bool none = id == 0x1700 || id == 0x1800 || id == 0x2100;
      const QPXEffectItem item = {id, record, none ? 0u : three ? 12u : 8u};
      const QPXEffectList list = {&item, 1, 0};
      const MBitmap picture = {layout.format, kWidth, kHeight, {}, {}};
      QPXEngine* engine = nullptr;
      ASSERT_EQ(QPXCreate(&picture, &picture, &list, &engine), 0);
      const TilePlanes in(layout, 90), out(layout, 7);
      MRect rect = {kLeft, 0, kWidth, kHeight};
      EXPECT_EQ(QPXProcess(engine, &out.set(), &in.set(), &rect), 0);
      EXPECT_EQ(rect.left, kLeft);
      EXPECT_EQ(rect.right, kWidth);
      EXPECT_EQ(rect.bottom, kHeight);
      for (size_t i = 0; i < out.bytes(0); ++i) ASSERT_NE(out.at(0, i), 7) << i;
      QPXDestroy(engine);
    }
  }
}

TEST(FarColumns, OfGreyHaveNeutralChroma) {
  for (const Layout& layout : kLayouts) {
    if (layout.across == 0) continue;
    const QPXEffectItem item = {0x1700, nullptr, 0};
    const QPXEffectList list = {&item, 1, 0};
    const MBitmap picture = {layout.format, kWidth, kHeight, {}, {}};
    QPXEngine* engine = nullptr;
    ASSERT_EQ(QPXCreate(&picture, &picture, &list, &engine), 0);
    const TilePlanes in(layout, 90), out(layout, 7);
    MRect rect = {kLeft, 0, kWidth, kHeight};
    EXPECT_EQ(QPXProcess(engine, &out.set(), &in.set(), &rect), 0);
    for (int p = 1; p < 3; ++p) {
      for (size_t i = 0; i < out.bytes(p); ++i) {
        ASSERT_EQ(out.at(p, i), 128) << std::hex << layout.format << " plane " << p << " at " << i;
      }
    }
    QPXDestroy(engine);
  }
}

}  // namespace
