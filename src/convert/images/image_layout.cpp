#include "convert/images/image_layout.h"

namespace qpx {
namespace {

struct FormatLayout {
  int32_t format;
  YuvLayout layout;
};

constexpr FormatLayout kYuvLayouts[] = {
    {MCV_YUV, {1, {0, 0, 3}, {0, 1, 3}, {0, 2, 3}, 0, 0}},
    {MCV_YUYV, {1, {0, 0, 2}, {0, 1, 4}, {0, 3, 4}, 1, 0}},
    {MCV_YVYU, {1, {0, 0, 2}, {0, 3, 4}, {0, 1, 4}, 1, 0}},
    {MCV_UYVY, {1, {0, 1, 2}, {0, 0, 4}, {0, 2, 4}, 1, 0}},
    {MCV_VYUY, {1, {0, 1, 2}, {0, 2, 4}, {0, 0, 4}, 1, 0}},
    {MCV_I420, {3, {0, 0, 1}, {1, 0, 1}, {2, 0, 1}, 1, 1}},
    {MCV_I422V, {3, {0, 0, 1}, {1, 0, 1}, {2, 0, 1}, 0, 1}},
    {MCV_I422H, {3, {0, 0, 1}, {1, 0, 1}, {2, 0, 1}, 1, 0}},
    {MCV_I444, {3, {0, 0, 1}, {1, 0, 1}, {2, 0, 1}, 0, 0}},
    {MCV_YV12, {3, {0, 0, 1}, {2, 0, 1}, {1, 0, 1}, 1, 1}},
    {MCV_YV24, {3, {0, 0, 1}, {2, 0, 1}, {1, 0, 1}, 0, 0}},
    {MCV_NV12, {2, {0, 0, 1}, {1, 0, 2}, {1, 1, 2}, 1, 1}},
    {MCV_NV21, {2, {0, 0, 1}, {1, 1, 2}, {1, 0, 2}, 1, 1}},
    {MCV_LPI422H, {2, {0, 0, 1}, {1, 0, 2}, {1, 1, 2}, 1, 0}},
};

}  // namespace

const YuvLayout* yuvLayout(int32_t format) {
  for (const FormatLayout& entry : kYuvLayouts) {
    if (entry.format == format) return &entry.layout;
  }
  return nullptr;
}

int32_t planesOf(int32_t format) {
  if (const YuvLayout* const layout = yuvLayout(format)) return layout->planes;
  switch (format) {
    case MCV_BGR565:
    case MCV_RGB565:
    case MCV_BGR888:
    case MCV_RGB888:
    case MCV_BGRA8888:
    case MCV_ARGB8888:
    case MCV_RGBA8888:
      return 1;
    case MCV_NV41:
      return 2;
    default:
      return 0;
  }
}

}  // namespace qpx
