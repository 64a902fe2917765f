// The picture that runs under a finger, segment by segment, at once or row by row.
#include <kesbase.h>
#include <qpx/threads.h>
#include <qpx/waterfall.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>

#include "engine/stage.h"
#include "geometry/line_sums.h"
#include "geometry/packed_rgb.h"
#include "geometry/stroke.h"

namespace qpx {
namespace {

constexpr int32_t kIdle = -2;
// Single precision, which the directions of strokes are known in.
constexpr double kSinglePi = 3.1415927f;

uint8_t* allocate(int64_t rows, int64_t pitch) {
  return static_cast<uint8_t*>(MMemAlloc(nullptr, blockBytes(rows, pitch)));
}

}  // namespace
}  // namespace qpx

struct QPXWaterFallHandle {
  std::optional<MPoint> lastPoint;
  MBitmap result = {};    // what the caller sees
  MBitmap snapshot = {};  // what segments read: four bytes a pixel, the last of them 1
  MBitmap mask = {};
  int32_t strokeCount = 0;  // segments since the stroke began
  qpx::Direction direction = {};
  qpx::Area dirty = qpx::kNoArea;  // of the latest segment
  int32_t radius = 20;
  int32_t feather = 4;
  int32_t blurLength = 40;
  int32_t progressRow = qpx::kIdle;

  QPXWaterFallHandle() = default;
  QPXWaterFallHandle(const QPXWaterFallHandle&) = delete;
  QPXWaterFallHandle& operator=(const QPXWaterFallHandle&) = delete;
  ~QPXWaterFallHandle() {
    for (const MBitmap* bitmap : {&result, &snapshot, &mask}) {
      MMemFree(nullptr, bitmap->plane[0]);
    }
  }

  bool adopt(const MBitmap& image);
  bool acceptPoint(const MPoint& point, bool finish);
  bool filter(uint32_t milliseconds);
  void report(MBitmap** resultRecord, int32_t* dirtyRect);

 private:
  int32_t pixelBytes() const { return qpx::packedRgbBytes(result.format); }
  bool farEnough(const MPoint& point) const;
  void restore();
  void prepareSegment(const MPoint& point);
  void filterRow(int32_t y);
  void filterRun(int32_t y, int32_t left, int32_t right);
  void sumRun(int32_t y, int32_t left, int32_t right, const qpx::simd::QuadSums& sums) const;
};

// All three buffers or none: what was allocated goes with the handle.
bool QPXWaterFallHandle::adopt(const MBitmap& image) {
  const int32_t bytes = qpx::packedRgbBytes(image.format);
  result = {image.format, image.width, image.height, {image.pitch[0], 0, 0}, {}};
  mask = {QPX_FORMAT_GREY8, image.width, image.height, {image.width, 0, 0}, {}};
  const int64_t quadPitch = 4 * int64_t{image.width};
  if (quadPitch > INT32_MAX) return false;
  snapshot = {QPX_FORMAT_BGRX32, image.width, image.height, {int32_t(quadPitch), 0, 0}, {}};
  for (MBitmap* bitmap : {&result, &snapshot, &mask}) {
    bitmap->plane[0] = qpx::allocate(image.height, bitmap->pitch[0]);
    if (bitmap->plane[0] == nullptr) return false;
  }
  MMemSet(result.plane[0], 0, qpx::blockBytes(image.height, result.pitch[0]));
  MMemSet(mask.plane[0], 0, qpx::blockBytes(image.height, mask.pitch[0]));
  for (int32_t y = 0; y < image.height; ++y) {
    const uint8_t* const row = qpx::rowOf(image, y);
    std::memcpy(qpx::rowOf(result, y), row, static_cast<size_t>(image.width) * size_t(bytes));
    qpx::packQuads(row, bytes, nullptr, image.width, qpx::rowOf(snapshot, y));
  }
  return true;
}

// In doubles, which hold all distances that matter and overflow for none.
bool QPXWaterFallHandle::farEnough(const MPoint& point) const {
  const int32_t third = radius / 3;
  const double dx = double(point.x) - lastPoint->x, dy = double(point.y) - lastPoint->y;
  return dx * dx + dy * dy > double(third) * third;
}

// What the latest segment made becomes what the next one reads.
void QPXWaterFallHandle::restore() {
  if (dirty.empty()) return;
  const int32_t count = dirty.right - dirty.left + 1;
  for (int32_t y = dirty.top; y <= dirty.bottom; ++y) {
    const uint8_t* const row = qpx::rowOf(result, y) + ptrdiff_t{pixelBytes()} * dirty.left;
    qpx::packQuads(row, pixelBytes(), nullptr, count,
                   qpx::rowOf(snapshot, y) + 4 * ptrdiff_t{dirty.left});
    std::memset(qpx::rowOf(mask, y) + dirty.left, 0, static_cast<size_t>(count));
  }
}

// Later marks go over earlier ones: the band over the cap at the new point, the cap at the old
// point over the band. Its fading edge thins the band there, behind the point where two segments
// meet.
void QPXWaterFallHandle::prepareSegment(const MPoint& point) {
  restore();
  const qpx::Stroke stroke = qpx::strokeBetween(*lastPoint, point, qpx::kSinglePi);
  const qpx::Brush brush(radius, feather);
  direction = qpx::directionOf(stroke.degrees, qpx::kSinglePi);
  dirty = qpx::areaAbout(stroke, brush.outer, mask.width, mask.height);
  progressRow = dirty.top;
  if (dirty.empty()) return;
  const qpx::StrokeMask painted = {mask.plane[0], mask.pitch[0], dirty};
  qpx::paintDisc(painted, point, brush);
  qpx::paintBand(painted, stroke, direction, brush);
  if (strokeCount > 0) qpx::paintDisc(painted, *lastPoint, brush);
}

// True when there is a segment to filter.
bool QPXWaterFallHandle::acceptPoint(const MPoint& point, bool finish) {
  if (!lastPoint) {
    lastPoint = point;
    return false;
  }
  const bool draws = farEnough(point);
  if (draws) prepareSegment(point);
  if (finish) {
    lastPoint.reset();
    strokeCount = 0;
  } else if (draws) {
    lastPoint = point;
    strokeCount = std::min(strokeCount, INT32_MAX - 1) + 1;
  }
  return draws;
}

// Steps along the stroke's direction. Near the left and right edges not all of them are inside the
// picture, which is why the middle of a row is summed by itself.
void QPXWaterFallHandle::sumRun(int32_t y, int32_t left, int32_t right,
                                const qpx::simd::QuadSums& sums) const {
  const qpx::LineRows rows = {snapshot.plane[0], snapshot.pitch[0], snapshot.height, 0,
                              snapshot.width,    snapshot.height};
  const qpx::Line line = {direction.cos, direction.sin, false};
  const int64_t last = (blurLength >> 1) - 1;
  const int64_t reach = std::max(std::abs(line.across(last)), std::abs(line.across(-last)));
  const auto inside = [&](int64_t x) {
    return static_cast<int32_t>(std::clamp<int64_t>(x, left, right));
  };
  const int32_t from = inside(reach);
  const int32_t to = std::max(from, inside(int64_t{snapshot.width} - reach));
  qpx::addLine(rows, line, -last, last, y, left, from, sums);
  qpx::addLine(rows, line, -last, last, y, from, to, sums.from(from - left));
  qpx::addLine(rows, line, -last, last, y, to, right, sums.from(to - left));
}

void QPXWaterFallHandle::filterRun(int32_t y, int32_t left, int32_t right) {
  constexpr int32_t kRun = 256;
  for (int32_t start = left; start < right; start += kRun) {
    const int32_t end = std::min(right - start, kRun) + start;
    uint32_t planes[4][kRun] = {};
    sumRun(y, start, end, {{planes[0], planes[1], planes[2], planes[3]}});
    const uint8_t* const old = qpx::rowOf(snapshot, y);
    uint8_t* const to = qpx::rowOf(result, y);
    for (int32_t x = start; x < end; ++x) {
      const uint32_t m = qpx::rowOf(mask, y)[x];
      if (m == 0) continue;
      const uint64_t n = planes[3][x - start];
      for (ptrdiff_t c = 0; c < 3; ++c) {
        const uint64_t sum = planes[c][x - start];
        const uint32_t kept = old[4 * ptrdiff_t{x} + c] * (255 - m) + 128;
        const uint64_t mixed = m == 255 ? sum / n : (sum * m / n + kept) >> 8;
        to[ptrdiff_t{pixelBytes()} * x + c] = static_cast<uint8_t>(std::min<uint64_t>(mixed, 255));
      }
    }
    if (end == right) break;
  }
}

// From the first pixel under the mask to the last.
void QPXWaterFallHandle::filterRow(int32_t y) {
  const uint8_t* const row = qpx::rowOf(mask, y);
  const uint8_t* const end = row + dirty.right + 1;
  const uint8_t* const first =
      std::find_if(row + dirty.left, end, [](uint8_t value) { return value != 0; });
  const uint8_t* last = end;
  while (last > first && last[-1] == 0) --last;
  filterRun(y, static_cast<int32_t>(first - row), static_cast<int32_t>(last - row));
}

// True when the segment is finished. A row that the time ran out behind is filtered again by the
// next call, which does no harm since only the snapshot is read; a call that did no more than this
// would never come to an end.
bool QPXWaterFallHandle::filter(uint32_t milliseconds) {
  const uint32_t start = MGetCurTimeStamp();
  const int32_t first = progressRow;
  for (int32_t y = first; y <= dirty.bottom; ++y) {
    filterRow(y);
    if (milliseconds == 0 || y == first || y == dirty.bottom) continue;
    if (MGetCurTimeStamp() - start >= milliseconds) {
      progressRow = y;
      return false;
    }
  }
  progressRow = qpx::kIdle;
  return true;
}

void QPXWaterFallHandle::report(MBitmap** resultRecord, int32_t* dirtyRect) {
  if (resultRecord != nullptr) *resultRecord = &result;
  if (dirtyRect == nullptr) return;
  const int32_t edges[4] = {dirty.left, dirty.top, dirty.right, dirty.bottom};
  std::memcpy(dirtyRect, edges, sizeof edges);
}

using namespace qpx;

namespace {

// The property's place, or null.
int32_t* propertyOf(QPXWaterFallHandle& handle, int32_t id) {
  if (id == QPX_WATERFALL_LENGTH) return &handle.blurLength;
  if (id == QPX_WATERFALL_RADIUS) return &handle.radius;
  return nullptr;
}

}  // namespace

int32_t QPX_WaterFall_Create(QPXWaterFallHandle** handle, const MBitmap* image,
                             MBitmap** resultRecord) {
  if (handle == nullptr) return QPX_WATERFALL_BAD_HANDLE;
  *handle = nullptr;
  if (image == nullptr) return QPX_WATERFALL_BAD_HANDLE;
  const int32_t bytes = packedRgbBytes(image->format);
  if (bytes == 0) return QPX_WATERFALL_BAD_RESULT;
  if (!hasRows(*image, bytes)) return QPX_WATERFALL_BAD_HANDLE;
  void* const place = MMemAlloc(nullptr, sizeof(QPXWaterFallHandle));
  if (place == nullptr) return QPX_WATERFALL_BAD_HANDLE;
  auto* const made = new (place) QPXWaterFallHandle;
  if (!made->adopt(*image)) {
    QPX_WaterFall_Destroy(made);
    return QPX_WATERFALL_BAD_HANDLE;
  }
  *handle = made;
  if (resultRecord != nullptr) *resultRecord = &made->result;
  return QPX_OK;
}

int32_t QPX_WaterFall_Process(QPXWaterFallHandle* handle, const MPoint* point, int32_t finish,
                              MBitmap** resultRecord, int32_t* dirtyRect) {
  if (handle == nullptr) return QPX_WATERFALL_BAD_HANDLE;
  if (point == nullptr) return QPX_WATERFALL_BAD_POINT;
  if (resultRecord == nullptr) return QPX_WATERFALL_BAD_RESULT;
  if (finish != 0 && !handle->lastPoint) return QPX_WATERFALL_NO_STROKE;
  *resultRecord = nullptr;
  if (!handle->acceptPoint(*point, finish != 0)) return QPX_OK;
  handle->filter(0);
  handle->report(resultRecord, dirtyRect);
  return QPX_OK;
}

int32_t QPX_WaterFall_ProcessAsync(QPXWaterFallHandle* handle, const MPoint* point, int32_t finish,
                                   int32_t* started) {
  if (handle == nullptr) return QPX_WATERFALL_BAD_HANDLE;
  if (point == nullptr) return QPX_WATERFALL_BAD_POINT;
  if (started == nullptr) return QPX_WATERFALL_BAD_RESULT;
  if (handle->progressRow != kIdle) return QPX_WATERFALL_REFUSED;
  if (finish != 0 && !handle->lastPoint) return QPX_WATERFALL_NO_STROKE;
  *started = handle->acceptPoint(*point, finish != 0) ? 1 : 0;
  return QPX_OK;
}

int32_t QPX_WaterFall_Dostep(QPXWaterFallHandle* handle, uint32_t milliseconds,
                             MBitmap** resultRecord, int32_t* dirtyRect) {
  if (handle == nullptr) return QPX_WATERFALL_BAD_HANDLE;
  if (resultRecord != nullptr) *resultRecord = nullptr;
  if (handle->progressRow == kIdle) return QPX_OK;
  if (handle->filter(milliseconds)) handle->report(resultRecord, dirtyRect);
  return QPX_OK;
}

int32_t QPX_WaterFall_Destroy(QPXWaterFallHandle* handle) {
  if (handle == nullptr) return QPX_WATERFALL_BAD_HANDLE;
  handle->~QPXWaterFallHandle();
  MMemFree(nullptr, handle);
  return QPX_OK;
}

int32_t QPX_WaterFall_SetProp(QPXWaterFallHandle* handle, int32_t id, const void* value,
                              int32_t size) {
  if (handle == nullptr || value == nullptr) return QPX_WATERFALL_BAD_HANDLE;
  int32_t* const property = propertyOf(*handle, id);
  if (property == nullptr) return QPX_WATERFALL_BAD_POINT;
  int32_t wanted = 0;
  if (size != sizeof wanted) return QPX_WATERFALL_BAD_RESULT;
  std::memcpy(&wanted, value, sizeof wanted);
  const int32_t least = id == QPX_WATERFALL_LENGTH ? 2 : 1;
  if (wanted < least) return QPX_WATERFALL_REFUSED;
  *property = wanted;
  if (id == QPX_WATERFALL_RADIUS) handle->feather = std::max(1, wanted / 5);
  return QPX_OK;
}

int32_t QPX_WaterFall_GetProp(const QPXWaterFallHandle* handle, int32_t id, void* value,
                              int32_t size) {
  if (handle == nullptr || value == nullptr) return QPX_WATERFALL_BAD_HANDLE;
  if (id != QPX_WATERFALL_LENGTH && id != QPX_WATERFALL_RADIUS) return QPX_WATERFALL_BAD_POINT;
  const int32_t current = id == QPX_WATERFALL_LENGTH ? handle->blurLength : handle->radius;
  if (size != sizeof current) return QPX_WATERFALL_BAD_RESULT;
  std::memcpy(value, &current, sizeof current);
  return QPX_OK;
}
