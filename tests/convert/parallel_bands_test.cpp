// Conversions in bands against the same in one call.
#include <gtest/gtest.h>
#include <kesbase.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "convert/images_members.h"
#include "convert/images_picture.h"
#include "convert/parallel/pool.h"
#include "convert/parallel_support.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

struct Pair {
  int32_t src, dst;
};

// By id.
constexpr Pair kPairs[] = {
    {0x802, 0x305}, {0x802, 0x204}, {0x802, 0x201}, {0x802, 0x601}, {0x802, 0x302}, {0x801, 0x601},
    {0x801, 0x305}, {0x801, 0x302}, {0x601, 0x305}, {0x601, 0x204}, {0x601, 0x802}, {0x601, 0x501},
    {0x601, 0x302}, {0x601, 0x201}, {0x305, 0x802}, {0x305, 0x801}, {0x305, 0x601}, {0x302, 0x802},
    {0x302, 0x801}, {0x302, 0x601}, {0x204, 0x601}, {0x201, 0x601}, {0x201, 0x802}, {0x603, 0x601},
    {0x603, 0x802}, {0x603, 0x801}, {0x603, 0x501}, {0x603, 0x803}, {0x602, 0x601}, {0x602, 0x802},
    {0x602, 0x801}, {0x602, 0x501}, {0x602, 0x803}, {0x604, 0x601}, {0x604, 0x802}, {0x604, 0x801},
    {0x604, 0x501}, {0x604, 0x803}, {0x302, 0x803}, {0x803, 0x302}, {0x305, 0x803}, {0x803, 0x305},
    {0x501, 0x201}, {0x201, 0x501}};
static_assert(std::size(kPairs) == 44);

const Member& memberOf(const Pair& pair) {
  return *std::ranges::find_if(members(), [&](const Member& member) {
    return member.dispatched && member.src == pair.src && member.dst == pair.dst;
  });
}

// Each test with a context of four threads.
class Bands : public ::testing::Test {
 protected:
  Bands() {
    setCpusForTest(sixteenCpus());
    context_ = mcvColorCvtInit_MultiThreads(nullptr);
  }
  ~Bands() override {
    EXPECT_EQ(0, mcvColorCvtUnInit_MultiThreads(nullptr, context_));
    setCpusForTest(systemCpus());
  }

  McvColorCvtContext* context_ = nullptr;
};

TEST_F(Bands, GiveTheBytesOfTheMember) {
  uint32_t seed = 0;
  for (const Pair& pair : kPairs) {
    const Member& member = memberOf(pair);
    for (const int32_t height : {2, 3, 4, 7, 30, 31, 32, 33, 34, 63, 65, 98, 131}) {
      ++seed;
      const auto alpha = static_cast<uint8_t>(seed);
      const McvPicture src(pair.src, 22 + static_cast<int32_t>(seed % 2), height, seed);
      const McvPicture actual(pair.dst, src.width(), height, seed + 1000);
      const McvPicture expected = actual.copy();
      ASSERT_EQ(0, member(src.image(), expected.image(), alpha));
      ASSERT_EQ(0, mcvColorCvtProcess_MultiThreads(context_, src.image(), actual.image(), &alpha));
      ASSERT_EQ("", expected.differenceTo(actual)) << member.name << ' ' << height;
    }
  }
}

TEST_F(Bands, AreOpaqueWithoutAnAlpha) {
  const McvPicture src(MCV_NV21, 6, 40, 1);
  const McvPicture actual(MCV_RGBA8888, 6, 40, 2), expected = actual.copy();
  ASSERT_EQ(0, mcvColorCvt(src.image(), expected.image(), 255));
  ASSERT_EQ(0, mcvColorCvtProcess_MultiThreads(context_, src.image(), actual.image(), nullptr));
  EXPECT_EQ("", expected.differenceTo(actual));
}

TEST_F(Bands, ServeTwoCallersAtATime) {
  const auto convert = [this](uint32_t seed) {
    const McvPicture src(MCV_NV21, 34, 66, seed);
    const McvPicture actual(MCV_BGR888, 34, 66, seed), expected = actual.copy();
    EXPECT_EQ(0, mcvColorCvt(src.image(), expected.image(), 0));
    for (int round = 0; round < 40; ++round) {
      EXPECT_EQ(0, mcvColorCvtProcess_MultiThreads(context_, src.image(), actual.image(), nullptr));
    }
    EXPECT_EQ("", expected.differenceTo(actual));
  };
  std::thread other(convert, 1);
  convert(2);
  other.join();
}

TEST_F(Bands, RefuseWhatTheWholeImageRefuses) {
  McvPicture src(MCV_NV21, 6, 40, 1), dst(MCV_RGBA8888, 6, 40, 2);
  const McvPicture before = dst.copy();
  const auto answer = [&] {
    return mcvColorCvtProcess_MultiThreads(context_, src.image(), dst.image(), nullptr);
  };
  EXPECT_EQ(-1, mcvColorCvtProcess_MultiThreads(nullptr, src.image(), dst.image(), nullptr));
  EXPECT_EQ(-1, mcvColorCvtProcess_MultiThreads(context_, nullptr, dst.image(), nullptr));
  EXPECT_EQ(-1, mcvColorCvtProcess_MultiThreads(context_, src.image(), nullptr, nullptr));
  src.record().height = 39;
  EXPECT_EQ(-2, answer());
  src.record().height = 1;
  EXPECT_EQ(-2, answer());
  src.record().height = 40;
  src.record().plane[1] = nullptr;
  EXPECT_EQ(-1, answer());
  src.record().format = MCV_NV41;
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(-2, answer());
  EXPECT_EQ("[ERROR] mcvColorCvtForBigPixmorph error funcID!! -1\n",
            ::testing::internal::GetCapturedStdout());
  EXPECT_EQ("", before.differenceTo(dst));
}

TEST(BandIds, AreThese) {
  int32_t banded = 0;
  for (const Member& member : members()) {
    const McvImage src = {.format = member.src, .width = 0, .height = 0, .plane = {}, .pitch = {}};
    const McvImage dst = {.format = member.dst, .width = 0, .height = 0, .plane = {}, .pitch = {}};
    int32_t expected = -1;
    for (int32_t id = 0; id < 44; ++id) {
      if (kPairs[id].src == member.src && kPairs[id].dst == member.dst) expected = id;
    }
    EXPECT_EQ(expected, mcvColorCvtFunc(&src, &dst)) << member.name;
    if (expected >= 0 && member.math != MemberMath::crossed) ++banded;
  }
  EXPECT_EQ(44, banded);
  const McvImage any = {.format = MCV_NV21, .width = 2, .height = 2, .plane = {}, .pitch = {}};
  EXPECT_EQ(-1, mcvColorCvtFunc(nullptr, &any));
  EXPECT_EQ(-1, mcvColorCvtFunc(&any, nullptr));
  EXPECT_EQ(-1, mcvColorCvtFunc(&any, &any));
}

class BandContexts : public ::testing::Test {
 protected:
  BandContexts() { setCpusForTest(sixteenCpus()); }
  ~BandContexts() override { setCpusForTest(systemCpus()); }
};

TEST_F(BandContexts, ComeFromTheMemoryServices) {
  const int64_t before = FailingMemory::liveBlocks();
  McvColorCvtContext* const context = mcvColorCvtInit_MultiThreads(nullptr);
  ASSERT_NE(nullptr, context);
  EXPECT_EQ(before + 1, FailingMemory::liveBlocks());
  EXPECT_EQ(0, mcvColorCvtUnInit_MultiThreads(nullptr, context));
  EXPECT_EQ(before, FailingMemory::liveBlocks());
  EXPECT_EQ(-1, mcvColorCvtUnInit_MultiThreads(nullptr, nullptr));
}

TEST_F(BandContexts, WithoutMemoryAreNot) {
  FailingMemory::failOnly(1);
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(nullptr, mcvColorCvtInit_MultiThreads(nullptr));
  EXPECT_EQ("[ERROR] mcvColorCvt init failed!!\n", ::testing::internal::GetCapturedStdout());
  FailingMemory::reset();
}

// The first word of a context is its pool.
TEST_F(BandContexts, WhosePoolIsGoneStay) {
  const int64_t before = FailingMemory::liveBlocks();
  McvColorCvtContext* const context = mcvColorCvtInit_MultiThreads(nullptr);
  ASSERT_NE(nullptr, context);
  ASSERT_EQ(0, mcvParallelUninit(*reinterpret_cast<McvParallel**>(context)));
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(-6, mcvColorCvtUnInit_MultiThreads(nullptr, context));
  EXPECT_EQ("[ERROR] Parallel engine UnInit failed!!\n", ::testing::internal::GetCapturedStdout());
  EXPECT_EQ(before + 1, FailingMemory::liveBlocks());
  MMemFree(nullptr, context);
}

}  // namespace
}  // namespace qpx::testing
