// One context, many threads: strips made side by side are one call.
#include <algorithm>
#include <thread>
#include <vector>

#include "postprocess/context.h"

namespace qpx::testing {
namespace {

TEST(PostProcessStrips, OnTwoThreadsEqualOneCall) {
  for (const uint32_t to : {uint32_t{QPX_FORMAT_NV12}, uint32_t{QPX_FORMAT_BGRA32}}) {
    for (const uint32_t orientation : {0u, 3u, 6u}) {
      PostProcessOption option = {};
      option.resampleMode = 2;
      option.orientation = orientation;
      option.alignMode = 256;
      const Context context(imageOf(QPX_FORMAT_NV21, 97, 61), imageOf(to, 70, 91), option);
      ASSERT_EQ(QPX_OK, context.result);
      const ConversionPicture src(QPX_FORMAT_NV21, 97, 61, 1);
      ConversionPicture whole(to, 70, 91, 2), strips = whole;
      ASSERT_EQ(QPX_OK, context.run(src, nullptr, &whole));
      const auto run = [&](int32_t first) {
        for (int32_t top = first; top < 91; top += 20) {
          const MRect strip = {0, top, 70, std::min(top + 10, 91)};
          EXPECT_EQ(QPX_OK, context.run(src, &strip, &strips));
        }
      };
      std::thread other(run, 10);
      run(0);
      other.join();
      EXPECT_TRUE(whole.sameBytes(strips)) << std::hex << to << ", orientation " << orientation;
    }
  }
}

}  // namespace
}  // namespace qpx::testing
