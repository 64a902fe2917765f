#pragma once

#include <qpx/convert.h>
#include <qpx/convert_kernels.h>

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "convert/conversion_picture.h"
#include "convert/record.h"
#include "support/picture.h"

namespace qpx::testing {

using RectKernel = void (*)(QPX_CONVERT_KERNEL_ARGUMENTS);
using SubsampledKernel = int32_t (*)(QPX_CONVERT_SUBSAMPLED_ARGUMENTS);
using PairedKernel = int32_t (*)(QPX_CONVERT_PAIRED_ARGUMENTS);
using AnyKernel = std::variant<RectKernel, SubsampledKernel, PairedKernel, ConvFrameFunction>;

// One kernel and one conversion that its name stands for.
struct KernelRow {
  const char* name;
  AnyKernel kernel;
  uint32_t from;
  uint32_t to;
  char sampling;   // 'u'nit, 'n'earest, 'b'ilinear
  int32_t orient;  // the three bits, or -1 for any
  int32_t block;
  bool onlyUnit;       // takes no other sampling
  bool equalsGeneral;  // not for those that dither in their own way
};

// Every kernel, with every pair of formats that its name takes.
const std::vector<KernelRow>& kernelRows();

struct Conversion {
  uint32_t from, to;
  int32_t srcWidth, srcHeight, dstWidth, dstHeight;
  ConvParams params = {};

  MRect rect() const {
    return {params.dstX, params.dstY, params.dstX + dstWidth, params.dstY + dstHeight};
  }
  bool turns() const { return (params.orient & 1) != 0; }
};

std::string describe(const Conversion& conversion, const MRect& rect);

class Converter {
 public:
  explicit Converter(const Conversion& conversion);
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() { convert::freeTables(&record); }

  // `rect` of the destination, by the strips of the library.
  int32_t run(const ConversionPicture& src, const MRect& rect, const AnyKernel& kernel,
              ConversionPicture* dst) const;
  // In one call, as a host may make it.
  int32_t runAtOnce(const ConversionPicture& src, const MRect& rect, const AnyKernel& kernel,
                    ConversionPicture* dst) const;

  ConvRecord record = {};
  int32_t result;
};

// Steps between 1/16 and 16, or 1 for 'u'; sizes such that `block` divides the destination.
Conversion anyConversion(uint32_t from, uint32_t to, char sampling, int32_t orient, int32_t block,
                         Random& random);
MRect partOf(const MRect& all, int32_t block, Random& random);

// Whether the kernel writes what the general path writes, in noise of `seed`.
bool equalsGeneral(const Conversion& conversion, const MRect& rect, const AnyKernel& kernel,
                   uint64_t seed);

}  // namespace qpx::testing
