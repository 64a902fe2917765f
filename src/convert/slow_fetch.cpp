#include "convert/format_decoder.h"
#include "convert/slow_path.h"
#include "engine/address.h"

namespace qpx::convert {
namespace {

struct Weights {
  int32_t across, down;
};

int32_t blend(int32_t a, int32_t b, int32_t c, int32_t d, const Weights& weights) {
  const int32_t top = between(a, b, weights.across);
  const int32_t bottom = between(c, d, weights.across);
  return between(top, bottom, weights.down) & 0xFF;
}

// Luma of the packed formats whose groups hold the second luma first is one column aside.
void fetchLuma(const Source& source, const SourceRows& rows, const ColumnRun& columns,
               PixelRun* run) {
  const int32_t swap = swapsLumas(source.record->src.klass) ? 1 : 0;
  const ptrdiff_t step = source.component[0].step;
  if (source.record->bilinearY == 0) {
    for (int32_t i = 0; i < run->count; ++i) {
      run->sample[0][i] = rows.top[0][step * (columns.column[i].first ^ swap)];
    }
    return;
  }
  for (int32_t i = 0; i < run->count; ++i) {
    const SourcePair& column = columns.column[i];
    const ptrdiff_t left = step * (column.first ^ swap), right = step * (column.second ^ swap);
    run->sample[0][i] =
        static_cast<uint8_t>(blend(rows.top[0][left], rows.top[0][right], rows.bottom[0][left],
                                   rows.bottom[0][right], {column.fraction, rows.fraction}));
  }
}

// Chroma is never interpolated.
void fetchYuv(const Source& source, const SourceRows& rows, const ColumnRun& columns,
              PixelRun* run) {
  fetchLuma(source, rows, columns, run);
  const ptrdiff_t stepU = source.component[1].step, stepV = source.component[2].step;
  for (int32_t i = 0; i < run->count; ++i) {
    const int32_t cell = cellOf(columns.column[i].first, source.component[1].subX);
    run->sample[1][i] = rows.top[1][stepU * cell];
    run->sample[2][i] = rows.top[2][stepV * cell];
  }
}

void fetchGrey(const Source& source, const SourceRows& rows, const ColumnRun& columns,
               PixelRun* run) {
  fetchLuma(source, rows, columns, run);
  for (int32_t i = 0; i < run->count; ++i) run->sample[1][i] = run->sample[2][i] = 128;
}

struct Rgb {
  int32_t channel[3];
};

// Reads the pixels of a palette format, the first of a byte in its highest bits.
class PaletteReader {
 public:
  explicit PaletteReader(const ConvRecord& record)
      : palette_(record.src.palette), bits_(static_cast<int32_t>(record.src.colour)) {}

  uint32_t word(const uint8_t* row, int32_t column) const {
    const int32_t perByte = 8 / bits_;
    const int32_t shift = bits_ * (perByte - 1 - column % perByte);
    return (row[column / perByte] >> shift) & ((1 << bits_) - 1);
  }
  Rgb colour(uint32_t index) const {
    const uint8_t* entry = palette_ + ptrdiff_t{4} * index;
    return {{entry[2], entry[1], entry[0]}};
  }
  static uint8_t alpha(uint32_t) { return 0; }

 private:
  const uint8_t* palette_;
  int32_t bits_;
};

// Reads pixels of kBytes bytes. Narrow fields become the highest bits of a channel.
template <int32_t kBytes>
class MaskReader {
 public:
  explicit MaskReader(const ConvRecord& record)
      : position_{record.srcPosR, record.srcPosG, record.srcPosB},
        above_{32 - record.srcBitsR, 32 - record.srcBitsG, 32 - record.srcBitsB},
        alphaShift_(record.srcPosR == 0 || record.srcPosR == 16 ? 24 : 0) {}

  uint32_t word(const uint8_t* row, int32_t column) const {
    const uint8_t* bytes = row + ptrdiff_t{kBytes} * column;
    uint32_t word = 0;
    for (int32_t k = 0; k < kBytes; ++k) word |= static_cast<uint32_t>(bytes[k]) << (8 * k);
    return word;
  }
  Rgb colour(uint32_t word) const {
    Rgb rgb;
    for (int32_t c = 0; c < 3; ++c) {
      rgb.channel[c] = static_cast<int32_t>((word >> position_[c]) << above_[c] >> 24);
    }
    return rgb;
  }
  uint8_t alpha(uint32_t word) const { return static_cast<uint8_t>(word >> alphaShift_); }

 private:
  int32_t position_[3];
  int32_t above_[3];
  int32_t alphaShift_;
};

template <typename Reader>
void fetchRgb(const Source& source, const SourceRows& rows, const ColumnRun& columns,
              PixelRun* run) {
  const Reader reader(*source.record);
  const bool bilinear = source.record->bilinearY != 0;
  for (int32_t i = 0; i < run->count; ++i) {
    const SourcePair& column = columns.column[i];
    const uint32_t word = reader.word(rows.top[0], column.first);
    run->alpha[i] = reader.alpha(word);
    Rgb rgb = reader.colour(word);
    if (bilinear) {
      const Rgb right = reader.colour(reader.word(rows.top[0], column.second));
      const Rgb below = reader.colour(reader.word(rows.bottom[0], column.first));
      const Rgb across = reader.colour(reader.word(rows.bottom[0], column.second));
      for (int32_t c = 0; c < 3; ++c) {
        rgb.channel[c] = blend(rgb.channel[c], right.channel[c], below.channel[c],
                               across.channel[c], {column.fraction, rows.fraction});
      }
    }
    for (int32_t c = 0; c < 3; ++c) run->sample[c][i] = static_cast<uint8_t>(rgb.channel[c]);
  }
}

const uint8_t* rowOf(const SourceComponent& component, int32_t row) {
  return advance(component.base, component.pitch, cellOf(row, component.subY));
}

}  // namespace

bool openSource(const ConvRecord& record, const uint8_t* const* planes, const int32_t* pitches,
                Source* source) {
  source->record = &record;
  for (int32_t c = 0; c < 3; ++c) {
    const int32_t plane = planeOf(record.srcPlane, c);
    if (planes[plane] == nullptr) return false;
    const uint8_t* base = advance(planes[plane], record.srcPlane.offset[c], 1);
    source->component[c] = {base, pitches[plane], record.srcPlane.step[c], record.srcSubX[c],
                            record.srcSubY[c]};
  }
  return true;
}

// The second row matters to what is interpolated alone, which is never subsampled.
SourceRows rowsAt(const Source& source, const SourcePair& row) {
  SourceRows rows = {{}, {}, row.fraction};
  for (int32_t c = 0; c < 3; ++c) {
    rows.top[c] = rowOf(source.component[c], row.first);
    rows.bottom[c] = rowOf(source.component[c], row.second);
  }
  return rows;
}

FetchRun fetchFor(const ConvRecord& record) {
  if (record.src.klass == kGrey) return fetchGrey;
  if (record.src.klass != kRgb) return fetchYuv;
  switch (record.src.colour) {
    case 16:
      return fetchRgb<MaskReader<2>>;
    case 24:
      return fetchRgb<MaskReader<3>>;
    case 32:
      return fetchRgb<MaskReader<4>>;
    default:
      return fetchRgb<PaletteReader>;
  }
}

}  // namespace qpx::convert
