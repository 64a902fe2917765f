#include <qpx/convert.h>

#include <algorithm>
#include <tuple>
#include <vector>

#include "convert/conversion_model.h"
#include "engine/address.h"
#include "postprocess/context.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

using Kind = FormatLayout::Kind;

ConvParams paramsOf(const PostProcessOption& option) {
  ConvParams params = {};
  params.interp = option.resampleMode;
  params.orient = option.orientation;
  params.blockHint = option.filterLevel;
  params.dither = option.palette;
  params.brightness = option.brightness;
  params.contrast = option.contrast;
  params.saturation = option.saturation;
  params.srcX = option.srcLeft;
  params.srcY = option.srcTop;
  params.dstX = option.dstLeft;
  params.dstY = option.dstTop;
  params.alpha = option.alpha;
  return params;
}

// Sizes are those of the rectangles.
struct Job {
  uint32_t from, to;
  int32_t srcWidth, srcHeight, dstWidth, dstHeight;
  PostProcessOption option = {};

  MRect rect() const {
    return {option.dstLeft, option.dstTop, option.dstLeft + dstWidth, option.dstTop + dstHeight};
  }
  PostProcessImage src() const {
    return imageOf(from, static_cast<uint32_t>(srcWidth), static_cast<uint32_t>(srcHeight));
  }
  PostProcessImage dst() const {
    return imageOf(to, static_cast<uint32_t>(dstWidth), static_cast<uint32_t>(dstHeight));
  }
  ConversionPicture srcPicture(uint64_t seed) const {
    return {from, option.srcLeft + srcWidth, option.srcTop + srcHeight, seed};
  }
  ConversionPicture dstPicture(uint64_t seed) const {
    return {to, option.dstLeft + dstWidth, option.dstTop + dstHeight, seed};
  }
};

void expectAsModel(const Job& job, const MRect& rect, uint64_t seed) {
  const Context context(job.src(), job.dst(), job.option);
  ASSERT_EQ(QPX_OK, context.result);
  const ConversionPicture src = job.srcPicture(seed);
  ConversionPicture dst = job.dstPicture(seed + 1), expected = dst;
  convertByModel(src, paramsOf(job.option), job.srcWidth, job.srcHeight, job.dstWidth,
                 job.dstHeight, rect, &expected);
  ASSERT_EQ(QPX_OK, context.run(src, &rect, &dst));
  EXPECT_TRUE(dst.sameBytes(expected))
      << std::hex << job.from << " to " << job.to << std::dec << ", align mode "
      << job.option.alignMode << ", orientation " << job.option.orientation << ", " << job.srcWidth
      << "x" << job.srcHeight << " to " << job.dstWidth << "x" << job.dstHeight << " at "
      << job.option.dstLeft << " " << job.option.dstTop << ", rectangle " << rect.left << " "
      << rect.top << " " << rect.right << " " << rect.bottom << ", resample "
      << job.option.resampleMode;
}

// Colours of full-range BT.601 have kernels with an arithmetic of their own.
uint32_t withTableColours(const FormatLayout& layout, Random& random) {
  constexpr uint32_t kBits[3] = {0, 0x2000, 0x3000};
  if (layout.kind == Kind::rgb || layout.kind == Kind::palette) return layout.format;
  return layout.format | kBits[random.between(0, 2)];
}

// Half groups of YUYV show where a request was cut.
void keepWholeGroups(Job* job) {
  if (layoutOf(job->to).klass != 513) return;
  job->option.dstLeft &= ~1;
  job->dstWidth = (job->dstWidth + 1) & ~1;
}
void keepWholeGroups(const Job& job, MRect* rect) {
  if (layoutOf(job.to).klass != 513) return;
  rect->left &= ~1;
  rect->right = (rect->right + 1) & ~1;
}

MRect partOf(const MRect& all, Random& random) {
  MRect part;
  part.left = random.between(all.left, all.right - 1);
  part.top = random.between(all.top, all.bottom - 1);
  part.right = random.between(part.left + 1, all.right);
  part.bottom = random.between(part.top + 1, all.bottom);
  return part;
}

Job anyJob(const FormatLayout& from, const FormatLayout& to, Random& random) {
  Job job = {withTableColours(from, random), withTableColours(to, random), random.between(1, 60),
             random.between(1, 40),          random.between(1, 60),        random.between(1, 50)};
  PostProcessOption& option = job.option;
  option.resampleMode = static_cast<uint32_t>(random.between(1, 2));
  option.orientation = static_cast<uint32_t>(random.between(0, 7));
  option.filterLevel = static_cast<uint32_t>(random.between(0, 4));
  option.alpha = 200;
  if (random.between(0, 1) == 0) {
    const bool swap = (option.orientation & 1) != 0;
    job.dstWidth = swap ? job.srcHeight : job.srcWidth;
    job.dstHeight = swap ? job.srcWidth : job.srcHeight;
  }
  if (random.between(0, 2) == 0) option.brightness = random.between(-20, 20);
  for (int32_t* origin : {&option.srcLeft, &option.srcTop, &option.dstLeft, &option.dstTop}) {
    if (random.between(0, 3) == 0) *origin = random.between(1, 20);
  }
  return job;
}

// Split or not, in blocks or not: the colours are the same.
TEST(PostProcess, EqualsTheModelInEveryAlignMode) {
  constexpr uint32_t kAlignModes[] = {256, 1, 2, 3, 4};
  Random random(77);
  uint64_t seed = 0;
  for (const FormatLayout& from : formatLayouts()) {
    for (const FormatLayout& to : formatLayouts()) {
      if (to.kind == Kind::palette) continue;
      Job job = anyJob(from, to, random);
      keepWholeGroups(&job);
      job.option.alignMode = kAlignModes[std::max(0, random.between(-4, 4))];
      MRect rect = random.between(0, 1) == 0 ? job.rect() : partOf(job.rect(), random);
      keepWholeGroups(job, &rect);
      expectAsModel(job, rect, ++seed);
      if (::testing::Test::HasFailure()) return;
    }
  }
}

TEST(PostProcess, CopiesAtFullScale) {
  Job job = {QPX_FORMAT_BGRA32, QPX_FORMAT_BGRA32, 37, 21, 37, 21};
  job.option.resampleMode = 2;
  const Context context(job.src(), job.dst(), job.option);
  const ConversionPicture src = job.srcPicture(1);
  ConversionPicture dst = job.dstPicture(2);
  ASSERT_EQ(QPX_OK, context.run(src, nullptr, &dst));
  for (int32_t y = 0; y < 21; ++y) {
    const uint8_t* from = src.planes()[0] + ptrdiff_t{src.pitches()[0]} * y;
    const uint8_t* to = dst.planes()[0] + ptrdiff_t{dst.pitches()[0]} * y;
    EXPECT_TRUE(std::equal(from, from + ptrdiff_t{37} * 4, to)) << y;
  }
}

TEST(PostProcess, CutsClipsToTheDestination) {
  Job job = {QPX_FORMAT_I420, QPX_FORMAT_BGR24, 20, 20, 20, 20};
  job.option.dstLeft = 4;
  for (const uint32_t alignMode : {1u, 256u}) {
    job.option.alignMode = alignMode;
    const Context context(job.src(), job.dst(), job.option);
    const ConversionPicture src = job.srcPicture(1);
    ConversionPicture whole = job.dstPicture(2), cut = whole, untouched = whole;
    const MRect far = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    EXPECT_EQ(QPX_OK, context.run(src, nullptr, &whole));
    EXPECT_EQ(QPX_OK, context.run(src, &far, &cut));
    EXPECT_TRUE(whole.sameBytes(cut));
    for (const MRect& none :
         {MRect{0, 0, 4, 20}, MRect{10, 10, 10, 12}, MRect{12, 3, 5, 9},
          MRect{24, 0, INT32_MAX, INT32_MAX}, MRect{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN}}) {
      ConversionPicture dst = untouched;
      EXPECT_EQ(QPX_OK, context.run(src, &none, &dst));
      EXPECT_TRUE(dst.sameBytes(untouched));
    }
  }
}

TEST(PostProcess, RefusesNulls) {
  const Job job = {QPX_FORMAT_I420, QPX_FORMAT_NV21, 8, 8, 8, 8};
  const Context context(job.src(), job.dst(), job.option);
  const ConversionPicture src = job.srcPicture(1);
  ConversionPicture dst = job.dstPicture(2);
  const ConversionPicture before = dst;
  const PostProcessContext* c = context.handle;
  const auto* const s = src.planes();
  auto* const d = dst.planes();
  const int32_t* sp = src.pitches();
  const int32_t* dp = dst.pitches();
  const MRect rect = {0, 0, 8, 8}, behind = {-1, 0, 8, 8}, above = {0, -1, 8, 8};
  EXPECT_EQ(QPX_BAD_PARAM, MPProcess(nullptr, s, nullptr, sp, d, dp));
  EXPECT_EQ(QPX_BAD_PARAM, MPProcess(c, nullptr, nullptr, sp, d, dp));
  EXPECT_EQ(QPX_BAD_PARAM, MPProcess(c, s, nullptr, nullptr, d, dp));
  EXPECT_EQ(QPX_BAD_PARAM, MPProcess(c, s, nullptr, sp, nullptr, dp));
  EXPECT_EQ(QPX_BAD_PARAM, MPProcess(c, s, nullptr, sp, d, nullptr));
  EXPECT_EQ(QPX_BAD_PARAM, MPProcessEx(c, s, nullptr, nullptr, sp, d, dp));
  EXPECT_EQ(QPX_BAD_PARAM, MPProcessEx(c, s, &behind, nullptr, sp, d, dp));
  EXPECT_EQ(QPX_BAD_PARAM, MPProcessEx(c, s, &above, nullptr, sp, d, dp));
  EXPECT_EQ(QPX_BAD_PARAM, MPProcessEx(nullptr, s, &rect, nullptr, sp, d, dp));
  for (int32_t hole = 0; hole < 3; ++hole) {
    const uint8_t* from[3] = {s[0], s[1], s[2]};
    uint8_t* to[3] = {d[0], d[1], d[2]};
    from[hole] = nullptr;
    EXPECT_EQ(QPX_BAD_PARAM, MPProcess(c, from, nullptr, sp, d, dp));
    to[hole] = nullptr;
    EXPECT_EQ(QPX_BAD_PARAM, MPProcess(c, s, nullptr, sp, to, dp));
  }
  EXPECT_TRUE(dst.sameBytes(before));
}

TEST(PostProcess, OnePlaneFormatsTakeArraysOfOne) {
  const Job job = {QPX_FORMAT_YUYV, QPX_FORMAT_UYVY, 6, 4, 6, 4};
  const Context context(job.src(), job.dst(), job.option);
  const uint8_t src[48] = {1, 2, 3, 4};
  uint8_t dst[48] = {};
  const uint8_t* const from[1] = {src};
  uint8_t* const to[1] = {dst};
  const int32_t pitch[1] = {12};
  EXPECT_EQ(QPX_OK, MPProcess(context.handle, from, nullptr, pitch, to, pitch));
  EXPECT_EQ(2, dst[0]);
  EXPECT_EQ(1, dst[1]);
  EXPECT_EQ(4, dst[2]);
  EXPECT_EQ(3, dst[3]);
}

// The pitch of a single row is never taken.
TEST(PostProcess, TakesAnyPitchForOneRow) {
  for (const uint32_t orientation : {0u, 2u, 4u, 6u}) {
    Job job = {QPX_FORMAT_BGR24, QPX_FORMAT_GREY8, 9, 1, 9, 1};
    job.option.orientation = orientation;
    for (const uint32_t alignMode : {1u, 256u}) {
      job.option.alignMode = alignMode;
      const Context context(job.src(), job.dst(), job.option);
      const ConversionPicture src = job.srcPicture(1);
      ConversionPicture expected = job.dstPicture(2);
      ASSERT_EQ(QPX_OK, context.run(src, nullptr, &expected));
      for (const int32_t pitch : {INT32_MIN, INT32_MAX, 0, -1}) {
        ConversionPicture dst = job.dstPicture(2);
        const int32_t pitches[3] = {pitch, pitch, pitch};
        ASSERT_EQ(QPX_OK,
                  MPProcess(context.handle, src.planes(), nullptr, pitches, dst.planes(), pitches));
        EXPECT_TRUE(dst.sameBytes(expected)) << pitch;
      }
    }
  }
}

// A copy of what MPPAlign asks for, and nothing around it, is enough.
class Excerpt {
 public:
  Excerpt(const ConversionPicture& from, const MRect& rect) {
    const FormatLayout& l = from.layout();
    for (int32_t p = 0; p < 3; ++p) {
      if (from.planes()[p] == nullptr) continue;
      const bool chroma = p > 0;
      const int32_t subX = chroma ? l.subX : 1, subY = chroma ? l.subY : 1;
      const int32_t left = rect.left / subX, right = (rect.right - 1) / subX + 1;
      const int32_t top = rect.top / subY, bottom = (rect.bottom - 1) / subY + 1;
      const int32_t step = stepOf(l, chroma);
      pitch_[p] = step * (right - left);
      for (int32_t y = top; y < bottom; ++y) {
        const uint8_t* row = from.planes()[p] + ptrdiff_t{from.pitches()[p]} * y;
        for (int32_t x = left; x < right; ++x) {
          for (int32_t k = 0; k < (l.interleaved && chroma ? 1 : step); ++k) {
            block_[p].push_back(row[ptrdiff_t{step} * x + k]);
          }
          if (l.interleaved && chroma) block_[p].push_back(0xEE);
        }
      }
      plane[p] = block_[p].data();
    }
  }
  const int32_t* pitches() const { return pitch_; }

  const uint8_t* plane[3] = {};

 private:
  static int32_t stepOf(const FormatLayout& l, bool chroma) {
    if (l.kind == Kind::rgb || l.kind == Kind::palette) return l.bits / 8;
    return l.step[chroma ? 1 : 0];
  }

  std::vector<uint8_t> block_[3];
  int32_t pitch_[3] = {};
};

TEST(PostProcess, WorksFromExcerpts) {
  Random random(31);
  constexpr uint32_t kSources[] = {0x50000811, 0x70000002, 0x70000003, 0x16000777, 0x37001777,
                                   0x15000454, 0x64000000, 0x50000800, 0x44000000, 0x50000820};
  for (int32_t i = 0; i < 300; ++i) {
    Job job = anyJob(layoutOf(kSources[i % 10]), layoutOf(QPX_FORMAT_BGR24), random);
    job.option.alignMode = i % 3 == 0 ? 256 : 1;
    const Context context(job.src(), job.dst(), job.option);
    if (context.result != QPX_OK) continue;
    const ConversionPicture src = job.srcPicture(1);
    ConversionPicture expected = job.dstPicture(2), dst = expected;
    MRect clip = partOf(job.rect(), random), needed = {};
    if (clip.left == 0 && clip.top == 0) continue;
    ASSERT_EQ(QPX_OK, MPPAlign(context.handle, &needed, &clip));
    const Excerpt excerpt(src, needed);
    ASSERT_EQ(QPX_OK, context.run(src, &clip, &expected));
    ASSERT_EQ(QPX_OK, MPProcessEx(context.handle, excerpt.plane, &needed, &clip, excerpt.pitches(),
                                  dst.planes(), dst.pitches()));
    ASSERT_TRUE(dst.sameBytes(expected)) << std::hex << job.from << ", case " << std::dec << i;
  }
}

// A mirrored picture whose rows lie a pixel apart has the steps of a turned one, with longer runs
// and, resampled, as many rows at a time.
// Its rows overwrite each other, so that nothing can be said of what they come to.
TEST(PostProcess, StaysInRowsThatLieAPixelApart) {
  constexpr int32_t kColumns = 511, kRows = 16;
  const std::vector<uint8_t> pixels(size_t{3} * kColumns * (kRows + 1), 77);
  for (const auto& [to, bytes, step] :
       {std::tuple{0x37000777u, 4, 3}, std::tuple{0x37000777u, 4, -3},
        std::tuple{uint32_t{QPX_FORMAT_YUYV}, 2, 1},
        std::tuple{uint32_t{QPX_FORMAT_YUYV}, 2, -1}}) {
    const PostProcessImage src = {QPX_FORMAT_BGR24, kColumns - 3, kRows + 1, {}, nullptr};
    const PostProcessImage dst = {to, kColumns, kRows, {}, nullptr};
    PostProcessOption option = {};
    option.resampleMode = 1;
    option.orientation = 2;
    option.alignMode = 256;
    option.alpha = 255;
    PostProcessContext* handle = nullptr;
    ASSERT_EQ(QPX_OK, MPPCreate(&src, &dst, &option, &handle));
    const size_t above = static_cast<size_t>(kRows) * 3;
    std::vector<uint8_t> made(above + static_cast<size_t>(bytes * (kColumns + 1)) + above);
    const uint8_t* const from[3] = {pixels.data(), nullptr, nullptr};
    uint8_t* const into[3] = {made.data() + above, nullptr, nullptr};
    const int32_t srcPitch[3] = {3 * kColumns, 0, 0}, dstPitch[3] = {step, 0, 0};
    EXPECT_EQ(QPX_OK, MPProcess(handle, from, nullptr, srcPitch, into, dstPitch));
    MPPDestroy(handle);
  }
}

// Turned, so that rows are asked for ahead, and where coordinates end.
TEST(PostProcess, TurnsAtTheLastColumns) {
  constexpr int32_t kFar = INT32_MAX - 16;
  const PostProcessImage image = imageOf(QPX_FORMAT_GREY8, 16, 16);
  const ConversionPicture src(QPX_FORMAT_GREY8, 16, 16, 1);
  ConversionPicture near(QPX_FORMAT_GREY8, 16, 16, 2), far(near);
  PostProcessOption option = {};
  option.orientation = 1;
  ASSERT_EQ(QPX_OK, Context(image, image, option).run(src, nullptr, &near));
  option.dstLeft = kFar;
  const Context context(image, image, option);
  ASSERT_EQ(QPX_OK, context.result);
  uint8_t* const planes[3] = {retreat(far.planes()[0], kFar, 1), nullptr, nullptr};
  ASSERT_EQ(QPX_OK,
            MPProcess(context.handle, src.planes(), nullptr, src.pitches(), planes, far.pitches()));
  EXPECT_TRUE(near.sameBytes(far));
}

// Blocks of four columns of a palette of 1 bit: the excerpt begins with a whole byte.
TEST(PostProcess, ShiftsPartsOfBytesBack) {
  Job job = {0x41000000, QPX_FORMAT_BGR24, 32, 1, 32, 1};
  const Context context(job.src(), job.dst(), job.option);
  const ConversionPicture src = job.srcPicture(1);
  ConversionPicture expected = job.dstPicture(2), dst = expected;
  const MRect clip = {16, 0, 32, 1};
  ASSERT_EQ(QPX_OK, context.run(src, &clip, &expected));
  const uint8_t half[2] = {src.planes()[0][2], src.planes()[0][3]};
  const uint8_t* const planes[3] = {half, nullptr, nullptr};
  ASSERT_EQ(QPX_OK, MPProcessEx(context.handle, planes, &clip, &clip, src.pitches(), dst.planes(),
                                dst.pitches()));
  EXPECT_TRUE(dst.sameBytes(expected));
}

}  // namespace
}  // namespace qpx::testing
