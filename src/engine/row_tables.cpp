#include "engine/row_tables.h"

#include <algorithm>

#include "engine/address.h"

namespace qpx {
namespace {

int32_t inputRows(const Stage& head) { return std::max(head.inHeight, 0); }

// The output tables of inner stages of a chain have a row for each input row.
int32_t outputRows(const Stage& head) { return std::max(inputRows(head), head.outHeight); }

int64_t tableEntries(const Stage& head) {
  const int64_t planes = head.pix.planes;
  int64_t entries = 0;
  for (int32_t k = 0; k < head.stageCount; ++k) {
    const QPXBand& band = head.bands[k];
    entries += planes * (int64_t{inputRows(head)} + band.marginTop + band.marginBottom);
    entries += planes * outputRows(head);
  }
  if (head.hasSecond != 0) entries += planes * inputRows(head);
  if (head.hasMask != 0) entries += inputRows(head);
  return entries;
}

// Hands out `rows` entries of the block behind `cursor`.
QPXRowTable carve(QPXRowTable* cursor, int64_t rows) {
  QPXRowTable table = *cursor;
  *cursor += rows;
  return table;
}

void carveTables(Stage& head) {
  QPXRowTable cursor = head.rowTables;
  const int32_t planes = head.pix.planes;
  for (int32_t k = 0; k < head.stageCount; ++k) {
    QPXBand& band = head.bands[k];
    for (int p = 0; p < planes; ++p) {
      carve(&cursor, band.marginTop);
      band.inRows[p] = carve(&cursor, int64_t{inputRows(head)} + band.marginBottom);
    }
    for (int p = 0; p < planes; ++p) band.outRows[p] = carve(&cursor, outputRows(head));
  }
  QPXBand& first = head.bands[0];
  for (int p = 0; p < planes && head.hasSecond != 0; ++p) {
    first.secondRows[p] = carve(&cursor, inputRows(head));
  }
  if (head.hasMask != 0) first.maskRows = carve(&cursor, inputRows(head));
  // All stages of a chain see the same second input and mask.
  for (int32_t k = 1; k < head.stageCount; ++k) {
    std::copy_n(first.secondRows, 3, head.bands[k].secondRows);
    head.bands[k].maskRows = first.maskRows;
  }
}

// Entry r of a plane's table points to this row of the plane. Chroma of half the height is indexed
// by image row; other divisors have their own rows one to one, the last of them repeated.
int32_t planeRow(int32_t r, int32_t ySampling, int32_t height) {
  return ySampling == 2 ? r / 2 : std::min(r, (height - 1) / ySampling);
}

void pointRows(QPXRowTable table, uint8_t* plane, int32_t pitch, int32_t ySampling,
               int32_t height) {
  for (int32_t r = 0; r < height; ++r) {
    table[r] = advance(plane, pitch, planeRow(r, ySampling, height));
  }
}

void repeatEdges(QPXRowTable table, int32_t height, int32_t above, int32_t below) {
  std::fill_n(table - above, above, table[0]);
  std::fill_n(table + height, below, table[height - 1]);
}

// Moves a plane by the samples that lie between two columns.
uint8_t* moveColumns(const PixInfo& pix, int p, uint8_t* plane, int32_t from, int32_t to) {
  // Interleaved chroma moves in whole pairs.
  if (p > 0 && isSemiPlanar(pix)) return retreat(advance(plane, 1, to & ~1), 1, from & ~1);
  const int32_t step = columnStep(pix, p);
  const int32_t across = pix.xSampling[p];
  return retreat(advance(plane, step, to / across), step, from / across);
}

}  // namespace

int32_t allocateRowTables(QPXEngine* engine) {
  Stage& head = *engine->head;
  const int64_t entries = std::max<int64_t>(tableEntries(head), 1);
  if (entries > static_cast<int64_t>(SIZE_MAX / 2 / sizeof(uint8_t*))) return QPX_NO_MEMORY;
  const size_t bytes = static_cast<size_t>(entries) * sizeof(uint8_t*);
  head.rowTables = static_cast<uint8_t**>(MMemAlloc(nullptr, bytes));
  if (head.rowTables == nullptr) return QPX_NO_MEMORY;
  MMemSet(head.rowTables, 0, bytes);
  carveTables(head);
  return QPX_OK;
}

void buildInputTables(Stage& head) {
  const int32_t height = inputRows(head);
  if (head.inputTablesValid || height == 0) return;
  QPXBand& band = head.bands[0];
  for (int p = 0; p < head.pix.planes; ++p) {
    const int32_t down = head.pix.ySampling[p];
    const int in = kInputPlane + p;
    pointRows(band.inRows[p], head.plane[in], head.pitch[in], down, height);
    repeatEdges(band.inRows[p], height, band.marginTop, band.marginBottom);
    if (head.hasSecond != 0) {
      const int second = kSecondPlane + p;
      pointRows(band.secondRows[p], head.plane[second], head.pitch[second], down, height);
    }
  }
  if (head.hasMask != 0) {
    pointRows(band.maskRows, head.plane[kMaskPlane], head.pitch[kMaskPlane], 1, height);
  }
  head.inputTablesValid = true;
}

void buildOutputTables(Stage& head, const MRect& out) {
  const PixInfo& pix = head.pix;
  for (int p = 0; p < pix.planes; ++p) {
    const int32_t pitch = head.pitch[kOutputPlane + p];
    const int32_t down = pix.ySampling[p];
    uint8_t* origin = moveColumns(pix, p, head.plane[kOutputPlane + p], out.left, head.bandLeft);
    origin = retreat(advance(origin, pitch, head.bandTop / down), pitch, out.top / down);
    QPXRowTable table = head.bands[0].outRows[p];
    for (int32_t y = out.top; y < out.bottom; ++y) {
      const int32_t row = y / down;
      table[down == 2 ? y : row] = advance(origin, pitch, row);
    }
  }
}

}  // namespace qpx
