// Every member on pictures without pattern, against what it should make of each sample.
#include <gtest/gtest.h>
#include <qpx/engine.h>

#include <vector>

#include "convert/images_members.h"
#include "convert/images_picture.h"
#include "convert/images_reference.h"

namespace qpx::testing {
namespace {

struct Size {
  int32_t width, height;
};

// All small ones, then widths around whole vectors of every length, then heights.
std::vector<Size> sizes() {
  std::vector<Size> list;
  for (int32_t width = 2; width <= 9; ++width) {
    for (int32_t height = 2; height <= 9; ++height) list.push_back({width, height});
  }
  for (const int32_t width : {15, 16, 17, 18, 31, 32,  33,  34,  35,  47,  50,  63,
                              64, 65, 66, 67, 98, 127, 128, 129, 131, 192, 193, 258}) {
    list.push_back({width, 2 + width % 4});
  }
  for (int32_t height = 10; height <= 67; height += 19) list.push_back({21, height});
  return list;
}

class Members : public ::testing::TestWithParam<Member> {
 protected:
  ~Members() override { QPX_UsePlainForms(0); }
};

INSTANTIATE_TEST_SUITE_P(All, Members, ::testing::ValuesIn(members()),
                         [](const auto& member) { return member.param.name; });

TEST_P(Members, ConvertEverySampleAndNothingElse) {
  const Member& member = GetParam();
  uint32_t seed = 0;
  for (const Size size : sizes()) {
    ++seed;
    const auto alpha = static_cast<uint8_t>(seed * 37);
    const McvPicture src(member.src, size.width, size.height, seed);
    McvPicture actual(member.dst, size.width, size.height, seed + 1000);
    McvPicture expected = actual.copy();
    const McvPicture before = src.copy();
    referenceConvert(member, src, expected, alpha);
    QPX_UsePlainForms(seed % 3 == 0);
    ASSERT_EQ(0, member(src.image(), actual.image(), alpha));
    ASSERT_EQ("", expected.differenceTo(actual)) << size.width << " x " << size.height;
    ASSERT_EQ("", before.differenceTo(src));
  }
}

TEST_P(Members, TakeTheDestinationsSize) {
  const Member& member = GetParam();
  const bool luma = member.src == MCV_NV41 || member.dst == MCV_NV41;
  if (luma) return;  // NV41 is copied by pitch, below
  const McvPicture src(member.src, 37, 13, 5);
  McvPicture actual(member.dst, 18, 6, 6);
  McvPicture expected = actual.copy();
  ASSERT_EQ(0, member(src.image(), actual.image(), 9));
  referenceConvert(member, src, expected, 9);
  EXPECT_EQ("", expected.differenceTo(actual));
}

TEST_P(Members, AreReachedByTheirPairOfFormats) {
  const Member& member = GetParam();
  const McvPicture src(member.src, 22, 6, 11);
  McvPicture expected(member.dst, 22, 6, 12);
  McvPicture actual = expected.copy();
  ASSERT_EQ(0, member(src.image(), expected.image(), 77));
  ASSERT_EQ(0, mcvColorCvt(src.image(), actual.image(), 77));
  EXPECT_EQ(member.math != MemberMath::crossed, expected.differenceTo(actual).empty());
}

TEST_P(Members, RefuseWhatTheyAreNotFor) {
  const Member& member = GetParam();
  const McvPicture picture(member.src, 6, 6, 1);
  const McvPicture target(member.dst, 6, 6, 2);
  const McvPicture untouched = target.copy();
  EXPECT_EQ(-1, member(nullptr, target.image(), 0));
  EXPECT_EQ(-1, member(picture.image(), nullptr, 0));
  const auto answerTo = [&](auto change) {
    McvImage src = *picture.image(), dst = *target.image();
    change(src, dst);
    return member(&src, &dst, 0);
  };
  EXPECT_EQ(-2, answerTo([](McvImage& src, McvImage&) { src.format ^= 0x1000; }));
  EXPECT_EQ(-2, answerTo([](McvImage&, McvImage& dst) { dst.format ^= 0x1000; }));
  for (const int32_t side : {1, 0, -1, -6, INT32_MIN}) {
    EXPECT_EQ(-2, answerTo([=](McvImage& src, McvImage&) { src.width = side; }));
    EXPECT_EQ(-2, answerTo([=](McvImage& src, McvImage&) { src.height = side; }));
    EXPECT_EQ(-2, answerTo([=](McvImage&, McvImage& dst) { dst.width = side; }));
    EXPECT_EQ(-2, answerTo([=](McvImage&, McvImage& dst) { dst.height = side; }));
  }
  EXPECT_EQ(-2, answerTo([](McvImage& src, McvImage&) { src.width = 5; }));
  EXPECT_EQ(-2, answerTo([](McvImage& src, McvImage&) { src.height = 5; }));
  for (int plane = 0; plane < 3; ++plane) {
    if (picture.image()->plane[plane] != nullptr) {
      EXPECT_EQ(-1, answerTo([=](McvImage& src, McvImage&) { src.plane[plane] = nullptr; }));
    }
    if (target.image()->plane[plane] != nullptr) {
      EXPECT_EQ(-1, answerTo([=](McvImage&, McvImage& dst) { dst.plane[plane] = nullptr; }));
    }
  }
  EXPECT_EQ("", untouched.differenceTo(target));
}

}  // namespace
}  // namespace qpx::testing
