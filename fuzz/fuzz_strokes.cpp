// Strokes, masks and colours of any kind through cut-outs, outlines and palettes. A cut that goes
// on from earlier ones must be that of a fresh handle.
#include <fuzzer/FuzzedDataProvider.h>
#include <qpx/contours.h>
#include <qpx/cutout.h>
#include <qpx/engine.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "fuzz_check.h"

namespace {

struct Image {
  MBitmap record;
  std::vector<uint8_t> bytes;  // just those that the record tells of

  Image(FuzzedDataProvider& data, uint32_t format, int32_t bytesEach) {
    const int32_t width = data.ConsumeIntegralInRange(1, 48);
    const int32_t height = data.ConsumeIntegralInRange(1, 48);
    const int32_t row = width * bytesEach, pitch = row + data.ConsumeIntegralInRange(0, 5);
    bytes.resize(static_cast<size_t>(pitch) * static_cast<size_t>(height - 1) +
                 static_cast<size_t>(row));
    const std::vector<uint8_t> given = data.ConsumeBytes<uint8_t>(
        std::min<size_t>(bytes.size(), data.ConsumeIntegralInRange(1, 400)));
    const auto period = static_cast<size_t>(data.ConsumeIntegralInRange(1, 400));
    for (size_t i = 0; i < bytes.size(); ++i) {
      bytes[i] = given.empty() ? 0x5A : given[i / 3 * 3 % period % given.size()];
    }
    record = {format, width, height, {pitch, 0, 0}, {bytes.data(), nullptr, nullptr}};
  }
};

struct Marking {
  int32_t side;
  std::vector<MPoint> points;
};

int32_t pickPlace(FuzzedDataProvider& data, int32_t size) {
  if (data.ConsumeIntegralInRange(0, 63) == 0) return data.ConsumeIntegral<int32_t>();
  return data.ConsumeIntegralInRange(0, size - 1);
}

Marking pickMarking(FuzzedDataProvider& data, const MBitmap& image) {
  Marking marking = {data.ConsumeIntegralInRange(0, 15) == 0 ? data.ConsumeIntegral<int32_t>()
                                                             : data.ConsumeIntegralInRange(0, 1),
                     {}};
  for (int32_t n = data.ConsumeIntegralInRange(1, 40); n > 0; --n) {
    const int32_t x = pickPlace(data, image.width);
    marking.points.push_back({x, pickPlace(data, image.height)});
  }
  return marking;
}

struct Result {
  std::vector<uint8_t> mask;
  std::vector<MPoint> outline;
};

Result resultOf(StrokeMatting* handle, const MBitmap& image) {
  MBitmap* mask = nullptr;
  MPoint* points = nullptr;
  int32_t count = 0;
  FUZZ_CHECK(STRKM_Process(handle, &mask, &points, &count) == 0);
  FUZZ_CHECK(count >= 0 && count <= image.width * image.height);
  Result result;
  for (int32_t y = 0; y < image.height; ++y) {
    const uint8_t* const row = mask->plane[0] + ptrdiff_t{mask->pitch[0]} * y;
    result.mask.insert(result.mask.end(), row, row + image.width);
  }
  for (const uint8_t value : result.mask) FUZZ_CHECK(value == 0 || value == 255);
  result.outline.assign(points, points + count);
  for (const MPoint& point : result.outline) {
    FUZZ_CHECK(point.x >= 0 && point.y >= 0 && point.x < image.width && point.y < image.height);
  }
  return result;
}

int32_t add(StrokeMatting* handle, const Marking& marking) {
  return STRKM_AddLine(handle, marking.side, marking.points.data(),
                       static_cast<int32_t>(marking.points.size()));
}

void cut(FuzzedDataProvider& data) {
  const Image image(data, data.ConsumeBool() ? QPX_FORMAT_BGR24 : QPX_FORMAT_RGB24, 3);
  StrokeMatting* handle = nullptr;
  FUZZ_CHECK(STRKM_Create(&handle, &image.record) == 0);
  std::vector<Marking> added;
  Result last;
  for (int32_t turns = data.ConsumeIntegralInRange(1, 10); turns > 0; --turns) {
    if (data.ConsumeIntegralInRange(0, 15) == 0) {
      FUZZ_CHECK(STRKM_ResetLine(handle) == 0);
      added.clear();
    }
    const Marking marking = pickMarking(data, image.record);
    const int32_t code = add(handle, marking);
    FUZZ_CHECK(code == 0 || code == 2);
    if (code == 0) added.push_back(marking);
    if (data.ConsumeBool()) last = resultOf(handle, image.record);
  }
  last = resultOf(handle, image.record);
  StrokeMatting* fresh = nullptr;
  FUZZ_CHECK(STRKM_Create(&fresh, &image.record) == 0);
  for (const Marking& marking : added) FUZZ_CHECK(add(fresh, marking) == 0);
  const Result anew = resultOf(fresh, image.record);
  // Where a side has lost all its regions to the other one, the earlier results stand.
  const bool emptied = std::count(anew.mask.begin(), anew.mask.end(), 255) == 0;
  FUZZ_CHECK(emptied || anew.mask == last.mask);
  FUZZ_CHECK(emptied || anew.outline.size() == last.outline.size());
  STRKM_Destroy(fresh);
  STRKM_Destroy(handle);
}

void trace(FuzzedDataProvider& data) {
  const Image mask(data, QPX_FORMAT_GREY8, 1);
  const MBitmap& record = mask.record;
  std::vector<MPoint> points(static_cast<size_t>(record.width * record.height));
  int32_t count = -1;
  FUZZ_CHECK(QPX_ContourTracing(&record, points.data(), &count) == 0);
  FUZZ_CHECK(count >= 0);
  for (const MPoint& point : points) {
    FUZZ_CHECK(point.x >= 0 && point.y >= 0 && point.x < record.width && point.y < record.height);
  }
}

void cluster(FuzzedDataProvider& data) {
  const auto n = data.ConsumeIntegralInRange(0, 200), k = data.ConsumeIntegralInRange(-1, 260);
  std::vector<uint8_t> colors = data.ConsumeBytes<uint8_t>(3 * static_cast<size_t>(n));
  colors.resize(3 * static_cast<size_t>(n));
  std::vector<uint8_t> palette(3 * static_cast<size_t>(std::max(k, 1)));
  const int32_t code = KmeansSegColor(colors.data(), n, k, palette.data());
  FUZZ_CHECK(code == (k >= 1 && k <= 256 ? 0 : 2));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  constexpr void (*kServices[])(FuzzedDataProvider&) = {cut, trace, cluster};
  QPX_UsePlainForms(data.ConsumeBool());
  while (data.remaining_bytes() > 0) kServices[data.ConsumeIntegralInRange<size_t>(0, 2)](data);
  QPX_UsePlainForms(0);
  return 0;
}
