// Records, points, angles and rectangles of any kind through the whole-image services that turn and
// smear small pictures. Planes are blocks of just the bytes that their records tell of.
#include <fuzzer/FuzzedDataProvider.h>
#include <qpx/qpx.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz_check.h"

namespace {

constexpr uint32_t kFormats[] = {QPX_FORMAT_BGR24,  QPX_FORMAT_BGRA32, QPX_FORMAT_RGB24,
                                 QPX_FORMAT_RGBA32, QPX_FORMAT_BGRX32, QPX_FORMAT_GREY8};

bool rarely(FuzzedDataProvider& data) { return data.ConsumeIntegralInRange(0, 31) == 0; }

// Near the picture, or anywhere.
int32_t pickPlace(FuzzedDataProvider& data) {
  if (data.ConsumeIntegralInRange(0, 7) == 0) return data.ConsumeIntegral<int32_t>();
  return data.ConsumeIntegralInRange(-20, 60);
}

MPoint pickPoint(FuzzedDataProvider& data) {
  const int32_t x = pickPlace(data);
  return {x, pickPlace(data)};
}

MRect pickRect(FuzzedDataProvider& data) {
  MRect rect = {};
  for (int32_t* edge : {&rect.left, &rect.top, &rect.right, &rect.bottom}) *edge = pickPlace(data);
  return rect;
}

int32_t bytesOf(uint32_t format) {
  if (format == QPX_FORMAT_GREY8) return 1;
  return (format & ~0x1000u) == QPX_FORMAT_BGR24 ? 3 : 4;
}

struct Image {
  MBitmap record = {};
  size_t size = 0;
  std::unique_ptr<uint8_t[]> bytes;

  explicit Image(FuzzedDataProvider& data)
      : Image(data, kFormats[data.ConsumeIntegralInRange<size_t>(0, 5)],
              data.ConsumeIntegralInRange(1, 40), data.ConsumeIntegralInRange(1, 40)) {}

  // The record tells the truth about what can be read, or nothing that passes.
  Image(FuzzedDataProvider& data, uint32_t format, int32_t width, int32_t height) {
    const int32_t row = width * bytesOf(format);
    const int32_t pitch = row + data.ConsumeIntegralInRange(0, 7);
    size = static_cast<size_t>(pitch) * static_cast<size_t>(height - 1) + static_cast<size_t>(row);
    bytes.reset(new uint8_t[size]);
    const std::vector<uint8_t> given =
        data.ConsumeBytes<uint8_t>(std::min<size_t>(size, data.ConsumeIntegralInRange(1, 100)));
    for (size_t i = 0; i < size; ++i) bytes[i] = given.empty() ? 0x5A : given[i % given.size()];
    record = {format, width, height, {pitch, 0, 0}, {bytes.get(), nullptr, nullptr}};
    if (rarely(data)) record.plane[0] = nullptr;
    if (rarely(data)) record.width = -width;
    if (rarely(data)) record.height = data.ConsumeIntegralInRange(INT32_MIN, 0);
    if (rarely(data)) record.pitch[0] = data.ConsumeIntegralInRange(INT32_MIN, row - 1);
  }

  // Usually of this one's format and size.
  Image partner(FuzzedDataProvider& data) const {
    if (data.ConsumeIntegralInRange(0, 3) == 0) return Image(data);
    const uint32_t order = data.ConsumeIntegralInRange(0, 7) == 0 ? 0x1000 : 0;
    const uint32_t format =
        record.format == QPX_FORMAT_GREY8 ? record.format : record.format ^ order;
    return Image(data, format, std::abs(record.width), std::max(record.height, 1));
  }

  std::vector<uint8_t> copy() const { return {bytes.get(), bytes.get() + size}; }
  void restore(const std::vector<uint8_t>& from) const {
    std::copy(from.begin(), from.end(), bytes.get());
  }
};

// Runs call() in vector and plain form: both write the same, and a refused call nothing.
template <typename Call>
void inBothForms(const Image& target, const Call& call) {
  const std::vector<uint8_t> before = target.copy();
  std::vector<uint8_t> results[2];
  int32_t codes[2];
  for (const int32_t plain : {0, 1}) {
    target.restore(before);
    QPX_UsePlainForms(plain);
    codes[plain] = call();
    results[plain] = target.copy();
  }
  FUZZ_CHECK(codes[0] == 0 || codes[0] == 2 || codes[0] == 3);
  FUZZ_CHECK(codes[0] == codes[1]);
  FUZZ_CHECK(codes[0] == 0 || results[0] == before);
  FUZZ_CHECK(results[0] == results[1]);
}

void rotateImage(FuzzedDataProvider& data) {
  const Image src(data);
  Image dst = src.partner(data);
  const auto degrees = data.ConsumeIntegral<int32_t>();
  const auto fill = data.ConsumeIntegral<uint32_t>();
  inBothForms(dst, [&] { return QPX_RotateImage(&src.record, degrees, fill, &dst.record); });
}

void straighten(FuzzedDataProvider& data) {
  const Image src(data);
  Image dst = src.partner(data);
  const double angle = data.ConsumeBool() ? data.ConsumeFloatingPointInRange(-4.0, 4.0)
                                          : data.ConsumeFloatingPoint<double>();
  const int32_t bilinear = data.ConsumeIntegralInRange(0, 2);
  inBothForms(dst, [&] { return QPX_Straighten(&src.record, &dst.record, angle, bilinear); });
}

void motionBlur(FuzzedDataProvider& data) {
  const Image src(data);
  const bool fits = data.ConsumeIntegralInRange(0, 7) > 0;
  const Image mask = fits ? Image(data, QPX_FORMAT_GREY8, std::abs(src.record.width),
                                  std::max(src.record.height, 1))
                          : Image(data);
  Image dst = src.partner(data);
  const auto angle = data.ConsumeIntegral<int32_t>();
  const int32_t length = pickPlace(data);
  inBothForms(
      dst, [&] { return QPX_MotionBlur(&src.record, &mask.record, angle, length, &dst.record); });
}

void waterfallSegment(FuzzedDataProvider& data) {
  const Image src(data);
  Image dst = src.partner(data);
  const MPoint from = pickPoint(data), to = pickPoint(data);
  const int32_t radius = pickPlace(data), length = pickPlace(data);
  inBothForms(dst, [&] {
    MPoint p0 = from, p1 = to;
    return QPX_Waterfall(&src.record, &p0, &p1, radius, length, &dst.record);
  });
}

void measure(FuzzedDataProvider& data) {
  MBitmap image = {}, target = {};
  for (int32_t* side : {&image.width, &image.height, &target.width, &target.height}) {
    *side = pickPlace(data);
  }
  uint8_t pixel = 0;
  image.plane[0] = &pixel;
  const auto degrees = data.ConsumeIntegral<int32_t>();
  int32_t width = 1, height = 1;
  QPX_GetRotateDstSize(&image, degrees, &width, &height);
  FUZZ_CHECK(width > 0 && height > 0);
  QPXRotateCalcDstSize(&image, degrees, &width, &height);
  FUZZ_CHECK(width >= 0 && height >= 0);
  MRect rect = {};
  if (QPXRotateCalcInternalRect(&image, &target, degrees, &rect) != 0) return;
  FUZZ_CHECK(rect.left >= 0 && rect.right <= target.width && rect.left <= rect.right);
  FUZZ_CHECK(rect.top >= 0 && rect.bottom <= target.height && rect.top <= rect.bottom);
}

void rotateObject(FuzzedDataProvider& data) {
  const Image src(data);
  Image dst = src.partner(data);
  QPXRotateFormat from = {src.record.format, src.record.width, src.record.height};
  QPXRotateFormat to = {dst.record.format, dst.record.width, dst.record.height};
  if (rarely(data)) from.width = pickPlace(data);
  if (rarely(data)) to.height = pickPlace(data);
  const uint8_t fill[4] = {1, 128, 255, data.ConsumeIntegral<uint8_t>()};
  const int32_t degrees = data.ConsumeBool() ? 90 * data.ConsumeIntegralInRange(-5, 5)
                                             : data.ConsumeIntegral<int32_t>();
  const QPXRotateParams params = {degrees, fill};
  QPXRotateHandle* handle = nullptr;
  if (QPXRotateCreate(&handle, &from, &to, &params) != 0) {
    FUZZ_CHECK(handle == nullptr);
    return;
  }
  MRect dstRect = data.ConsumeBool() ? MRect{} : pickRect(data);
  MRect srcRect = pickRect(data);
  const bool forwards =
      dstRect.left == 0 && dstRect.top == 0 && dstRect.right == 0 && dstRect.bottom == 0;
  FUZZ_CHECK(QPXRotateCalcRect(handle, &dstRect, &srcRect) == 0);
  const MRect& made = forwards ? dstRect : srcRect;
  const QPXRotateFormat& bounds = forwards ? to : from;
  FUZZ_CHECK(made.left >= 0 && made.right <= bounds.width);
  FUZZ_CHECK(made.top >= 0 && made.bottom <= bounds.height);
  const MRect rect = pickRect(data);
  const MRect* asked = data.ConsumeBool() ? &rect : nullptr;
  inBothForms(dst, [&] { return QPXRotateProcess(handle, &src.record, &dst.record, asked); });
  QPXRotateDestroy(handle);
}

class Waterfall {
 public:
  Waterfall(FuzzedDataProvider& data, const Image& image) : data_(data), image_(image.record) {
    const int32_t code = QPX_WaterFall_Create(&handle_, &image_, &result_);
    FUZZ_CHECK((code == 0) == (handle_ != nullptr));
  }
  ~Waterfall() { QPX_WaterFall_Destroy(handle_); }
  Waterfall(const Waterfall&) = delete;
  Waterfall& operator=(const Waterfall&) = delete;

  void step() {
    const MPoint point = pickPoint(data_);
    const int32_t finish = data_.ConsumeIntegralInRange(0, 3) == 0;
    QPX_UsePlainForms(data_.ConsumeBool());
    MBitmap* shown = nullptr;
    int32_t area[4] = {}, started = 0;
    const int32_t id = data_.ConsumeIntegralInRange(0, 3), value = pickPlace(data_);
    switch (data_.ConsumeIntegralInRange(0, 3)) {
      case 0:
        QPX_WaterFall_Process(handle_, &point, finish, &shown, area);
        break;
      case 1:
        QPX_WaterFall_ProcessAsync(handle_, &point, finish, &started);
        break;
      case 2:
        QPX_WaterFall_Dostep(handle_, data_.ConsumeBool(), &shown, area);
        break;
      default:
        QPX_WaterFall_SetProp(handle_, id, &value, data_.ConsumeIntegralInRange(3, 4) & 4);
        break;
    }
    if (shown != nullptr) checkShown(*shown, area);
  }

 private:
  void checkShown(const MBitmap& shown, const int32_t (&area)[4]) const {
    FUZZ_CHECK(&shown == result_ && shown.width == image_.width && shown.height == image_.height);
    if (area[0] > area[2]) return;
    FUZZ_CHECK(area[0] >= 0 && area[1] >= 0 && area[2] < image_.width && area[3] < image_.height);
  }

  FuzzedDataProvider& data_;
  const MBitmap image_;
  QPXWaterFallHandle* handle_ = nullptr;
  MBitmap* result_ = nullptr;
};

void waterfall(FuzzedDataProvider& data) {
  const Image image(data);
  const std::vector<uint8_t> before = image.copy();
  Waterfall object(data, image);
  for (int32_t steps = data.ConsumeIntegralInRange(1, 12); steps > 0; --steps) object.step();
  FUZZ_CHECK(image.copy() == before);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  constexpr void (*kServices[])(FuzzedDataProvider&) = {
      rotateImage, rotateObject, straighten, motionBlur, waterfallSegment, waterfall, measure};
  while (data.remaining_bytes() > 0) kServices[data.ConsumeIntegralInRange<size_t>(0, 6)](data);
  QPX_UsePlainForms(0);
  return 0;
}
