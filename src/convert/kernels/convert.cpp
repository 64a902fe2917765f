#include "convert/kernels/convert.h"

#include "convert/format_decoder.h"
#include "convert/kernels/dither_sink.h"
#include "convert/kernels/group_sink.h"
#include "convert/kernels/planar_sink.h"
#include "convert/kernels/rgb_sink.h"
#include "convert/kernels/row_halves.h"
#include "convert/kernels/row_moves.h"
#include "convert/kernels/walk.h"
#include "convert/tables.h"

namespace qpx::convert::fast {
namespace {

int32_t runLength(const ConvRecord& record, bool needsNoRooms) {
  if (record.swapXY != 0) return kTileColumns;
  return needsNoRooms ? kWholeRow : kRun;
}

bool hasTables(const ConvRecord& record) {
  return tableBytesOf(record) == 0 || record.tables != nullptr;
}

bool convertDithered(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells,
                     bool byCells) {
  DitherSink sink;
  if (!sink.open(call, from, to)) return false;
  if (byCells) {
    sink.convertCells(call);
  } else {
    walkRows(call, cells, &sink);
  }
  return true;
}

bool convertToRgb(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells) {
  RgbSink sink;
  if (!sink.open(call, from, to)) return false;
  const Positions positions(call);
  const bool isCopied = from == to && sink.copyPixels(positions);
  if (!isCopied) walk(call, cells, runLength(*call.record, sink.needsNoRooms(positions)), &sink);
  return true;
}

bool convertToGroups(const Call& call, FormatSet from, const CellGrid& cells) {
  GroupSink sink;
  if (!sink.open(call, from, cells)) return false;
  walk(call, cells, runLength(*call.record, false), &sink);
  return true;
}

bool convertToPlanes(const Call& call, FormatSet from, FormatSet to, const CellGrid& cells) {
  PlanarSink sink;
  if (!sink.open(call, from, to, cells)) return false;
  const Positions positions(call);
  const bool isCopied = sink.copyPlanes(positions);
  if (!isCopied) walk(call, cells, runLength(*call.record, sink.needsNoRooms(positions)), &sink);
  return true;
}

bool dithers(const ConvRecord& record, FormatSet from, FormatSet to, Dither dither) {
  if ((to & kIn16) == 0 || record.dither == 0 || dither == Dither::none) return false;
  return (from & kInRgb) == 0 || dither == Dither::pixels;
}

}  // namespace

bool canConvert(const ConvRecord& record) {
  const FormatSet from = sourceFormat(record), to = destinationFormat(record);
  return from != 0 && to != 0 &&
         record.convKind == kindOf((from & kInRgb) != 0, (to & kInRgb) != 0) && hasTables(record);
}

bool convert(const Call& call, Dither dither) {
  const ConvRecord& record = *call.record;
  if (!canConvert(record)) return false;
  const FormatSet from = sourceFormat(record), to = destinationFormat(record);
  const CellGrid cells = cellsOf(record, call.rect, record.dst.klass == kYuyv);
  if (dithers(record, from, to, dither)) {
    return convertDithered(call, from, to, cells, dither == Dither::cells);
  }
  if (moveRows(call, from, to, cells) || halveRows(call, from, to, cells)) return true;
  if ((to & kInRgb) != 0) return convertToRgb(call, from, to, cells);
  if ((to & kInPacked) != 0 && GroupSink::fits(call, cells)) {
    return convertToGroups(call, from, cells);
  }
  return convertToPlanes(call, from, to, cells);
}

}  // namespace qpx::convert::fast
