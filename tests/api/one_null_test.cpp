// Each pointer argument of an engine's calls null by itself, all others right.
#include <gtest/gtest.h>
#include <qpx/qpx.h>

#include "support/picture.h"

namespace qpx::testing {
namespace {

// An engine with everything right but for one argument at a time.
class OneNull : public ::testing::Test {
 protected:
  OneNull() : in_(QPX_FORMAT_I420, 6, 4, Placement::guarded), out_(in_), before_(in_) {
    image_ = in_.bitmap();
    const QPXEffectList list = {&item_, 1, 0};
    EXPECT_EQ(QPX_OK, QPXCreate(&image_, &image_, &list, &engine_));
    inPlanes_ = in_.planesAt(0, 0);
    outPlanes_ = out_.planesAt(0, 0);
  }
  ~OneNull() override {
    EXPECT_FALSE(out_.firstWriteOutside(before_, {}));
    QPXDestroy(engine_);
  }

  Picture in_, out_, before_;
  MBitmap image_;
  QPXEffectItem item_ = {0x1800, nullptr, 0};
  QPXEngine* engine_ = nullptr;
  QPXPlaneSet inPlanes_, outPlanes_;
  MRect rect_ = {0, 0, 6, 4};
  QPXBandRect band_ = {0, 0, 6, 4, 0, 0, 0, 0};
};

TEST_F(OneNull, IsRefusedByCreate) {
  const QPXEffectList list = {&item_, 1, 0};
  const QPXEffectList noItems = {nullptr, 1, 0};
  QPXEngine* const stale = engine_;
  QPXEngine* made = stale;
  EXPECT_EQ(2, QPXCreate(nullptr, &image_, &list, &made));
  EXPECT_EQ(nullptr, made);
  made = stale;
  EXPECT_EQ(2, QPXCreate(&image_, nullptr, &list, &made));
  EXPECT_EQ(nullptr, made);
  made = stale;
  EXPECT_EQ(2, QPXCreate(&image_, &image_, nullptr, &made));
  EXPECT_EQ(nullptr, made);
  EXPECT_EQ(2, QPXCreate(&image_, &image_, &noItems, &made));
  EXPECT_EQ(2, QPXCreate(&image_, &image_, &list, nullptr));
}

TEST_F(OneNull, IsRefusedByProcess) {
  EXPECT_EQ(2, QPXProcess(nullptr, &outPlanes_, &inPlanes_, &rect_));
  EXPECT_EQ(2, QPXProcess(engine_, nullptr, &inPlanes_, &rect_));
  EXPECT_EQ(2, QPXProcess(engine_, &outPlanes_, nullptr, &rect_));
  EXPECT_EQ(2, QPXProcess(engine_, &outPlanes_, &inPlanes_, nullptr));
  for (int p = 0; p < 3; ++p) {
    QPXPlaneSet hole = inPlanes_;
    hole.plane[p] = nullptr;
    EXPECT_EQ(2, QPXProcess(engine_, &outPlanes_, &hole, &rect_)) << "input plane " << p;
    hole = outPlanes_;
    hole.plane[p] = nullptr;
    EXPECT_EQ(2, QPXProcess(engine_, &hole, &inPlanes_, &rect_)) << "output plane " << p;
  }
}

TEST_F(OneNull, IsRefusedByMerge) {
  EXPECT_EQ(2, QPXMerge(nullptr, &outPlanes_, &inPlanes_, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXMerge(engine_, nullptr, &inPlanes_, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXMerge(engine_, &outPlanes_, nullptr, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXMerge(engine_, &outPlanes_, &inPlanes_, nullptr, nullptr, nullptr));
  EXPECT_EQ(2, QPXProcessIn(engine_, nullptr, &image_, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXProcessIn(engine_, &image_, nullptr, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXProcessIn(engine_, &image_, &image_, nullptr, nullptr, nullptr));
}

TEST_F(OneNull, SecondInputOrMaskIsRefusedWhereTheEngineHasOne) {
  const QPXEffectItem blend = {0x1100, nullptr, 0};
  const QPXEffectList list = {&blend, 1, 0};
  const MBitmap mask = {QPX_FORMAT_GREY8, 6, 4, {6, 0, 0}, {}};
  QPXEngine* made = nullptr;
  ASSERT_EQ(QPX_OK, QPXCreateIn(&image_, &image_, &image_, &mask, &list, &made));
  EXPECT_EQ(2, QPXMerge(made, &outPlanes_, &inPlanes_, nullptr, &inPlanes_, &band_));
  EXPECT_EQ(2, QPXMerge(made, &outPlanes_, &inPlanes_, &inPlanes_, nullptr, &band_));
  EXPECT_EQ(2, QPXProcess(made, &outPlanes_, &inPlanes_, &rect_));
  EXPECT_EQ(QPX_OK, QPXDestroy(made));
}

TEST_F(OneNull, IsRefusedByTheQueries) {
  int32_t value = -7;
  MRect other = {1, 2, 3, 4};
  EXPECT_EQ(2, QPXCalcRect(engine_, nullptr, &rect_));
  EXPECT_EQ(2, QPXCalcRect(engine_, &other, nullptr));
  EXPECT_EQ(2, QPXGetMaxOutLine(engine_, 1, nullptr));
  EXPECT_EQ(2, QPXGetProPerty(engine_, 0x9200, 0, nullptr, 4));
  EXPECT_EQ(2, QPXSetProPerty(engine_, 0x9200, 1, nullptr));
  EXPECT_EQ(2, QPXGetProPerty(nullptr, 0x9200, 0, &value, 4));
  EXPECT_EQ(-7, value);
  EXPECT_EQ(1, other.left);
}

// There is no head behind the handle of an empty list.
TEST_F(OneNull, EngineOfAnEmptyListCanOnlyBeDestroyed) {
  const QPXEffectList none = {nullptr, 0, 0};
  QPXEngine* made = nullptr;
  int32_t value = 0;
  MRect all = rect_;
  ASSERT_EQ(QPX_OK, QPXCreate(&image_, &image_, &none, &made));
  EXPECT_EQ(2, QPXProcess(made, &outPlanes_, &inPlanes_, &rect_));
  EXPECT_EQ(2, QPXMerge(made, &outPlanes_, &inPlanes_, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXCalcRect(made, &all, &rect_));
  EXPECT_EQ(2, QPXCalcRectReset(made));
  EXPECT_EQ(2, QPXGetMaxOutLine(made, 1, &value));
  EXPECT_EQ(2, QPXGetProPerty(made, 0x9200, 0, &value, 4));
  EXPECT_EQ(0, QPXFreeMemory(made));
  EXPECT_EQ(0, QPXDestroy(made));
}

}  // namespace
}  // namespace qpx::testing
