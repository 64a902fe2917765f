#pragma once

#include <qpx/convert_record.h>
#include <qpx/types.h>

#include <cstdint>
#include <vector>

#include "convert/conversion_picture.h"

namespace qpx::testing {

// Multiplier helpers and tables by their formulas.
namespace model {

int32_t qmul(int32_t a, int32_t b);
int32_t gain(int32_t c);
int32_t slope(int32_t contrast, int32_t saturation, int32_t coefficient, bool isChroma);
int32_t offset(int32_t contrast, int32_t saturation, int32_t base, int32_t coefficient);

struct ToRgbTables {
  std::vector<uint32_t> y, u, v;
};
// `bits` are those of R, G and B.
ToRgbTables toRgbTables(uint32_t colour, int32_t b, int32_t c, int32_t s, int32_t bitsPerPixel,
                        const int32_t (&bits)[3]);

std::vector<int32_t> toYuvTables(uint32_t colour);

// 512 bytes.
std::vector<uint8_t> colourLut(uint32_t from, uint32_t to, int32_t b, int32_t c, int32_t s);

uint32_t colourOf(uint32_t format);

}  // namespace model

// Converts `rect` of the destination, a pixel at a time, without fitting. Cells of chroma are not
// cut by strips.
void convertByModel(const ConversionPicture& src, const ConvParams& params, int32_t srcWidth,
                    int32_t srcHeight, int32_t dstWidth, int32_t dstHeight, const MRect& rect,
                    ConversionPicture* dst);

}  // namespace qpx::testing
