#include "filters/point/table_kernel.h"

#include <cstring>
#include <utility>

#include "toolkit/curve.h"
#include "toolkit/joined_rows.h"
#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

// Where the pixels of a row of the frame begin and how many there are.
struct PackedRows {
  const Frame& frame;
  ptrdiff_t bytesPerPixel;

  ptrdiff_t pixels() const { return ptrdiff_t{frame.rect.right} - frame.rect.left; }
  const uint8_t* from(int32_t y) const { return frame.in[0][y] + frame.rect.left * bytesPerPixel; }
  uint8_t* to(int32_t y) const { return frame.out[0][y] + frame.rect.left * bytesPerPixel; }
};

void applyToBytes(const Frame& frame, bool reversed, ptrdiff_t bytes) {
  StageTables tables = stageTables(frame.stage);
  if (reversed) std::swap(tables.red, tables.blue);
  const simd::Rows& rows = simd::rows();
  const auto lookup = bytes == 3 ? rows.lookup3 : rows.lookup4;
  const PackedRows packed{frame, bytes};
  const auto apply = [&](const uint8_t* from, uint8_t* to, ptrdiff_t count) {
    lookup(from, to, count / bytes, tables.red, tables.green, tables.blue);
  };
  JoinedRows joined(apply);
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    joined.add(packed.from(y), packed.to(y), packed.pixels() * bytes);
  }
}

// A tone table for the values that a field can have, with the results in the field's place.
struct FieldTable {
  FieldTable(const ColorField& field, const uint8_t* table) : mask(field.mask), pos(field.pos) {
    for (uint32_t value = 0; value <= mask >> pos; ++value) {
      bits[value] = field.narrow(table[field.widen(value)]);
    }
  }

  uint32_t operator()(uint32_t pixel) const { return bits[(pixel & mask) >> pos]; }

  uint32_t mask;
  uint32_t pos;
  uint32_t bits[256];
};

template <int kBytes>
void applyToFields(const Frame& frame, const ColorFields& fields) {
  const StageTables tables = stageTables(frame.stage);
  const FieldTable red(fields.red, tables.red);
  const FieldTable green(fields.green, tables.green);
  const FieldTable blue(fields.blue, tables.blue);
  const PackedRows packed{frame, kBytes};
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    const uint8_t* from = packed.from(y);
    uint8_t* to = packed.to(y);
    for (ptrdiff_t i = packed.pixels(); i > 0; --i, from += kBytes, to += kBytes) {
      const uint32_t pixel = readPixel<kBytes>(from);
      writePixel<kBytes>((pixel & fields.spare) | red(pixel) | green(pixel) | blue(pixel), to);
    }
  }
}

void applyToRun(const Stage& stage, PixelRun& run) {
  const simd::Rows& rows = simd::rows();
  const StageTables tables = stageTables(stage);
  rows.lookup(run.r, run.r, run.count, tables.red);
  rows.lookup(run.g, run.g, run.count, tables.green);
  rows.lookup(run.b, run.b, run.count, tables.blue);
}

int32_t applyToPacked(const Frame& frame) {
  const PixInfo& pix = frame.stage.pix;
  const int32_t bytes = pix.bytesPerSample[0];
  const ColorFields fields(pix.mask, bytes);
  if (bytes >= 3 && (fields.bytesRgb() || fields.bytesBgr())) {
    applyToBytes(frame, fields.bytesBgr(), bytes);
  } else if (!fields.narrowFields()) {
    return overRuns<applyToRun>(frame);
  } else if (bytes == 2) {
    applyToFields<2>(frame, fields);
  } else if (bytes == 3) {
    applyToFields<3>(frame, fields);
  } else {
    applyToFields<4>(frame, fields);
  }
  return QPX_OK;
}

void applyToLumaPlane(const Frame& frame, const uint8_t* table) {
  const simd::Rows& rows = simd::rows();
  const PackedRows luma{frame, 1};
  const auto lookup = [&](const uint8_t* from, uint8_t* to, ptrdiff_t bytes) {
    rows.lookup(from, to, bytes, table);
  };
  JoinedRows joined(lookup);
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    joined.add(luma.from(y), luma.to(y), luma.pixels());
  }
}

int32_t applyToGrey(const Frame& frame) {
  const StageTables tables = stageTables(frame.stage);
  ToneTable grey;
  simd::rows().luma(tables.red, tables.green, tables.blue, grey.data(), 256);
  applyToLumaPlane(frame, grey.data());
  return QPX_OK;
}

void copyRow(const uint8_t* from, uint8_t* to, ptrdiff_t bytes) {
  if (from != to) std::memcpy(to, from, static_cast<size_t>(bytes));
}

}  // namespace

int32_t applyStageTables(const Frame& frame) {
  if (frame.stage.lut == nullptr) return QPX_BAD_PARAM;
  switch (frame.stage.pix.family) {
    case kFamilyPackedRgb:
      return applyToPacked(frame);
    case kFamilyGrey:
      return applyToGrey(frame);
    default:
      return overRuns<applyToRun>(frame);
  }
}

int32_t applyStageTableToLuma(const Frame& frame) {
  const uint8_t* table = frame.stage.lut;
  const uint32_t traits = frame.stage.mergedTraits;
  if (table == nullptr || (traits & kChangesHues) != 0) return applyStageTables(frame);
  applyToLumaPlane(frame, table);
  forEachChromaRow(frame, (traits & kComplements) != 0 ? simd::rows().complement256 : copyRow);
  return QPX_OK;
}

}  // namespace qpx
