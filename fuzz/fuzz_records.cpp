// Format codes, image allocators, rectangles and tone tables with any arguments.
#include <fuzzer/FuzzedDataProvider.h>
#include <kesbase.h>
#include <qpx/qpx.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz_check.h"
#include "support/picture.h"

namespace {

uint32_t pickFormat(FuzzedDataProvider& data) {
  constexpr uint32_t kMore[] = {QPX_FORMAT_PALETTE8, QPX_FORMAT_YVYU, QPX_FORMAT_VYUY, 0x50001010,
                                0x50001000,          0x37005777,      0x70001002,      0x70001003};
  const auto formats = qpx::testing::formatCases();
  const size_t i = data.ConsumeIntegralInRange<size_t>(0, formats.size() + std::size(kMore));
  if (i < formats.size()) return formats[i].format;
  if (i < formats.size() + std::size(kMore)) return kMore[i - formats.size()];
  return data.ConsumeIntegral<uint32_t>();
}

int32_t pickNumber(FuzzedDataProvider& data, int32_t usual) {
  return data.ConsumeIntegralInRange(0, 3) == 0 ? data.ConsumeIntegral<int32_t>()
                                                : data.ConsumeIntegralInRange(-1, usual);
}

// Bytes that a picture must have in a row of plane 0.
int64_t rowBytes(const MBitmap& bitmap) {
  const int32_t known = UTIL_GetPixelBytesEX(bitmap.format);
  return int64_t{bitmap.width} * (known > 0 ? known : 1);
}

void touchPlanes(const MBitmap& bitmap) {
  for (int32_t y = 0; y < bitmap.height; ++y) {
    uint8_t* const row = bitmap.plane[0] + ptrdiff_t{bitmap.pitch[0]} * y;
    row[0] = 1;
    row[rowBytes(bitmap) - 1] = 2;
  }
  for (int p = 1; p < 3; ++p) {
    if (bitmap.plane[p] != nullptr) bitmap.plane[p][0] = 3;
  }
}

int32_t allocate(int which, MBitmap* bitmap) {
  int32_t size = 0;
  switch (which) {
    case 0:
      return MBitmapAlloc(bitmap);
    case 1:
      return MBitmapAllocEx(bitmap, &size);
    case 2:
      return MBitmapAlloc2(bitmap);
    default:
      return UTILS_MdBitmapAlloc(bitmap);
  }
}

void fuzzAllocators(FuzzedDataProvider& data) {
  MBitmap bitmap = {pickFormat(data), pickNumber(data, 70), pickNumber(data, 70), {}, {}};
  if (data.ConsumeBool()) {
    for (int32_t& pitch : bitmap.pitch) pitch = pickNumber(data, 300);
  }
  for (int i = 0; i < 2; ++i) {
    const int32_t result = allocate(data.ConsumeIntegralInRange(0, 3), &bitmap);
    FUZZ_CHECK(result == 0 || (result >= 2 && result <= 4));
    if (result != QPX_OK) continue;
    touchPlanes(bitmap);
    MBitmapSetAlpha(&bitmap, 7);
    QEMOOFFSCREEN offscreen;
    BuildQEMOOFFSCREEN(&bitmap, &offscreen);
  }
  MBitmapFree(&bitmap);
  MBitmap* const record =
      UTIL_MBitmapCreate(pickNumber(data, 70), pickNumber(data, 70), pickFormat(data));
  // A record of format 0 has no plane.
  if (record != nullptr && record->plane[0] != nullptr) touchPlanes(*record);
  UTIL_MBitmapFree(record);
}

void fuzzFormats(FuzzedDataProvider& data) {
  PixInfo info;
  MBitmap bitmap = {pickFormat(data), 1, 1, {}, {}};
  mbf_GetPixInfo(bitmap.format, &info);
  info.format = data.ConsumeIntegral<uint32_t>();
  info.family = data.ConsumeIntegral<uint32_t>();
  mbf_GetRGBPixelInfo(&info);
  mbf_GetYUVPixelInfo(&info);
  mbf_GetPixFormat(&info);
  const float* forward = nullptr;
  const float* inverse = nullptr;
  mbf_GetMatrix(&forward, &inverse, &bitmap);
  FUZZ_CHECK(forward != nullptr && inverse != nullptr);
  mbf_GetMaskPos(data.ConsumeIntegral<uint32_t>());
  QPXIsSupport(data.ConsumeIntegral<uint32_t>(), data.ConsumeIntegral<uint32_t>());
}

MRect pickRect(FuzzedDataProvider& data) {
  return {pickNumber(data, 9), pickNumber(data, 9), pickNumber(data, 9), pickNumber(data, 9)};
}

void fuzzRectangles(FuzzedDataProvider& data) {
  const MRect outer = pickRect(data);
  MRect rect = pickRect(data);
  FlipUpDownRect(&outer, &rect);
  MFlipLeftRightRect(&outer, &rect);
  MSwapRect(&rect);
  RectCopy(&rect, &outer);
}

void fuzzCurve(FuzzedDataProvider& data) {
  const size_t count = data.ConsumeIntegralInRange<size_t>(0, 300);
  std::vector<uint8_t> xs = data.ConsumeBytes<uint8_t>(count);
  std::vector<uint8_t> ys = data.ConsumeBytes<uint8_t>(count);
  xs.resize(count);
  ys.resize(count);
  xs.shrink_to_fit();
  ys.shrink_to_fit();
  if (data.ConsumeIntegralInRange(0, 3) != 0) std::sort(xs.begin(), xs.end());
  const std::unique_ptr<uint8_t[]> table(new uint8_t[256]());
  const int32_t result =
      BuildSplineCurve(xs.data(), ys.data(), static_cast<int32_t>(count), table.get());
  FUZZ_CHECK(result == 0 || result == 2 || result == 4);
}

void fuzzStageTables(FuzzedDataProvider& data) {
  const auto stage = std::make_unique<QPXStage>();
  std::memset(static_cast<void*>(stage.get()), 0, sizeof *stage);
  for (int i = 0; i < 4; ++i) {
    auto* const table = static_cast<uint8_t*>(MMemAlloc(nullptr, 768));
    std::memset(table, data.ConsumeIntegral<uint8_t>(), 768);
    const bool three = data.ConsumeBool();
    if (ComposeStageLut(stage.get(), table, three ? 9 : 5, three ? 768 : 256) == QPX_BAD_PARAM) {
      MMemFree(nullptr, table);
    }
  }
  MMemFree(nullptr, stage->lut);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  switch (data.ConsumeIntegralInRange(0, 4)) {
    case 0:
      fuzzFormats(data);
      break;
    case 1:
      fuzzRectangles(data);
      break;
    case 2:
      fuzzCurve(data);
      break;
    case 3:
      fuzzStageTables(data);
      break;
    default:
      fuzzAllocators(data);
      break;
  }
  return 0;
}
