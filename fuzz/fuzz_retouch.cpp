// Small pictures, guides and masks of any kind with any settings through the retouch. Planes are
// blocks of just the bytes that their records tell of.
#include <fuzzer/FuzzedDataProvider.h>
#include <qpx/qpx.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz_check.h"

namespace {

constexpr uint32_t kFormats[] = {QPX_FORMAT_BGR24, QPX_FORMAT_RGB24, QPX_FORMAT_BGRA32,
                                 QPX_FORMAT_RGBA32, QPX_FORMAT_BGRX32};

bool rarely(FuzzedDataProvider& data) { return data.ConsumeIntegralInRange(0, 63) == 0; }

struct Image {
  MBitmap record = {};
  size_t size = 0;
  std::unique_ptr<uint8_t[]> bytes;

  // Samples are the given bytes over and over.
  Image(FuzzedDataProvider& data, uint32_t format, int32_t width, int32_t height) {
    const int32_t pixel = format == QPX_FORMAT_GREY8 ? 1 : (format >> 24 & 15) == 6 ? 3 : 4;
    const int32_t row = width * pixel;
    const int32_t pitch = row + data.ConsumeIntegralInRange(0, 5);
    size = static_cast<size_t>(pitch) * static_cast<size_t>(height - 1) + static_cast<size_t>(row);
    bytes.reset(new uint8_t[size]);
    const std::vector<uint8_t> given =
        data.ConsumeBytes<uint8_t>(data.ConsumeIntegralInRange<size_t>(1, 60));
    for (size_t i = 0; i < size; ++i) bytes[i] = given.empty() ? 0x5A : given[i % given.size()];
    record = {format, width, height, {pitch, 0, 0}, {bytes.get(), nullptr, nullptr}};
    if (rarely(data)) record.plane[0] = nullptr;
    if (rarely(data)) record.width = data.ConsumeIntegralInRange(INT32_MIN, width - 1);
    if (rarely(data)) record.pitch[0] = data.ConsumeIntegralInRange(INT32_MIN, row - 1);
  }

  std::vector<uint8_t> copy() const { return {bytes.get(), bytes.get() + size}; }
};

// Rectangles of one state over another.
void mark(FuzzedDataProvider& data, Image& mask, int32_t width, int32_t height) {
  constexpr uint8_t kStates[] = {0, 255, 255, 1, 32, 64, 96, 254};
  std::fill_n(mask.bytes.get(), mask.size, kStates[data.ConsumeIntegralInRange(0, 15) == 0]);
  const ptrdiff_t pitch =
      height > 1 ? (static_cast<ptrdiff_t>(mask.size) - width) / (height - 1) : width;
  for (int32_t n = data.ConsumeIntegralInRange(1, 4); n > 0; --n) {
    const int32_t left = data.ConsumeIntegralInRange(0, width - 1);
    const int32_t top = data.ConsumeIntegralInRange(0, height - 1);
    const int32_t right = data.ConsumeIntegralInRange(left + 1, width);
    const int32_t bottom = data.ConsumeIntegralInRange(top + 1, height);
    const uint8_t state = kStates[data.ConsumeIntegralInRange(0, 7)];
    for (int32_t y = top; y < bottom; ++y) {
      std::memset(mask.bytes.get() + pitch * y + left, state, static_cast<size_t>(right - left));
    }
  }
}

void retouch(FuzzedDataProvider& data) {
  const uint32_t format = kFormats[data.ConsumeIntegralInRange(0, 31) / 8];
  const int32_t width = data.ConsumeIntegralInRange(1, 40);
  const int32_t height = data.ConsumeIntegralInRange(1, 40);
  const bool oneSize = data.ConsumeBool();
  const int32_t across = oneSize ? width : data.ConsumeIntegralInRange(1, 30);
  const int32_t down = oneSize ? height : data.ConsumeIntegralInRange(1, 30);
  const Image source(data, format, width, height), guide(data, format, across, down);
  Image mask(data, QPX_FORMAT_GREY8, across, down);
  mark(data, mask, across, down);
  Image destination(data, format, width, height);
  float settings[2] = {data.ConsumeFloatingPointInRange(0.9f, 11.1f),
                       data.ConsumeProbability<float>()};
  if (rarely(data)) settings[0] = data.ConsumeFloatingPoint<float>();
  if (rarely(data)) settings[1] = data.ConsumeFloatingPoint<float>();
  const std::vector<uint8_t> inputs[] = {source.copy(), guide.copy(), mask.copy()};
  const std::vector<uint8_t> before = destination.copy();
  std::vector<uint8_t> results[2];
  int32_t codes[2];
  for (const int32_t plain : {0, 1}) {
    std::copy(before.begin(), before.end(), destination.bytes.get());
    QPX_UsePlainForms(plain);
    codes[plain] =
        ReTouch(&source.record, &guide.record, &mask.record, settings, &destination.record);
    results[plain] = destination.copy();
  }
  QPX_UsePlainForms(0);
  FUZZ_CHECK(codes[0] == 0 || codes[0] == 2);
  FUZZ_CHECK(codes[0] == codes[1] && results[0] == results[1]);
  FUZZ_CHECK(codes[0] == 0 || results[0] == before);
  FUZZ_CHECK(source.copy() == inputs[0] && guide.copy() == inputs[1] && mask.copy() == inputs[2]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  retouch(data);
  return 0;
}
