#include "convert/slow_path.h"

#include <qpx/convert.h>

#include <algorithm>

#include "convert/strip_walk.h"

namespace qpx::convert {
namespace {

void locateColumns(const ConvRecord& record, int32_t x, int32_t count, ColumnRun* columns) {
  for (int32_t i = 0; i < count; ++i) columns->column[i] = sourceColumn(record, x + i);
}

void convertAll(const Source& from, const Destination& to) {
  const ConvRecord& record = *from.record;
  const FetchRun fetch = fetchFor(record);
  const ConvertRun convert = convertFor(record);
  const StoreRun store = storeFor(record);
  Carries carries = startCarries(record);
  ColumnRun columns;
  PixelRun run;
  for (int32_t y = to.rect.top; y < to.rect.bottom; ++y) {
    const SourceRows rows = rowsAt(from, sourceRow(record, y));
    for (int32_t x = to.rect.left; x < to.rect.right; x += run.count) {
      run.count = std::min(to.rect.right - x, kRunLength);
      locateColumns(record, x, run.count, &columns);
      fetch(from, rows, columns, &run);
      convert(record, &carries, &run);
      store(to, x, y, run);
    }
  }
}

}  // namespace
}  // namespace qpx::convert

int32_t ANY_ANY_C_SLOW(const MRect* rect, const int32_t* dstPitch, const int32_t* srcPitch,
                       uint8_t* const* dstPlanes, const uint8_t* const* srcPlanes,
                       const ConvRecord* record) {
  namespace convert = qpx::convert;
  if (rect == nullptr || dstPitch == nullptr || srcPitch == nullptr || dstPlanes == nullptr ||
      srcPlanes == nullptr || record == nullptr) {
    return QPX_BAD_PARAM;
  }
  if (convert::isEmpty(*rect)) return QPX_OK;
  convert::Source source;
  convert::Destination destination;
  if (!convert::isInDestination(*rect, *record) ||
      !convert::openSource(*record, srcPlanes, srcPitch, &source) ||
      !convert::openDestination(*record, *rect, dstPlanes, dstPitch, &destination)) {
    return QPX_BAD_PARAM;
  }
  convert::convertAll(source, destination);
  return QPX_OK;
}
