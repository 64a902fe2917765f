// The colour matrices between RGB and YUV.
#include <qpx/image.h>

#include <cstring>

#include "engine/format_code.h"

namespace qpx {
namespace {

struct MatrixPair {
  float forward[12];  // R, G, B to Y, U, V: three rows of three coefficients and an offset
  float inverse[12];
};

// Indexed by bits 12 and 13 of the format code. Coefficients after ITU-R BT.601 and BT.709.
constexpr MatrixPair kMatrices[4] = {
    // BT.601, video range
    {{0.2558f, 0.5022f, 0.0975f, 16.0f,             //
      -0.1476f, -0.2897f, 0.4372f, 128.0f,          //
      0.4373f, -0.3662f, -0.0711f, 128.0f},         //
     {1.16895f, 0.0f, 1.60289f, -223.872482f,       //
      1.16895f, -0.39353f, -0.81646f, 136.175522f,  //
      1.16895f, 2.02634f, 0.0f, -278.068787f}},
    // BT.601, full range
    {{0.299f, 0.587f, 0.114f, 0.0f,            //
      -0.1686f, -0.3311f, 0.4997f, 128.0f,     //
      0.4998f, -0.4185f, -0.0813f, 128.0f},    //
     {1.0f, 0.0f, 1.4025f, -179.52f,           //
      1.0f, -0.34434f, -0.7144f, 135.518723f,  //
      1.0f, 1.77305f, 0.0f, -226.950394f}},
    // BT.709, video range
    {{0.1819f, 0.6119f, 0.0618f, 16.0f,        //
      -0.1002f, -0.3372f, 0.4375f, 128.0f,     //
      0.4375f, -0.3974f, -0.0401f, 128.0f},    //
     {1.1689f, 0.0f, 1.7998f, -249.076797f,    //
      1.1689f, -0.2141f, -0.535f, 77.182404f,  //
      1.1689f, 2.1207f, 0.0f, -290.152008f}},
    // BT.709, full range. The forward rows carry no chroma offset although the inverse takes one
    // off: hosts have come to rely on these very numbers.
    {{0.2126f, 0.7152f, 0.0722f, 0.0f,       //
      -0.1146f, -0.3854f, 0.5f, 0.0f,        //
      0.5f, -0.4542f, -0.0458f, 0.0f},       //
     {1.0f, 0.0f, 1.5748f, -201.574402f,     //
      1.0f, -0.1873f, -0.4681f, 83.891197f,  //
      1.0f, 1.8556f, 0.0f, -237.5168f}}};

constexpr uint32_t kDefaultColorimetry = 1;

constexpr float kIdentity[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};

// How a code chooses its pair: by its colorimetry bits, or with one of these refusals.
int32_t selectionResult(uint32_t format) {
  switch (colorModel(format)) {
    case ColorModel::yuv:
      return ((format >> 8) & 15) == 8 ? QPX_OK : QPX_BAD_PARAM;
    case ColorModel::grey:
      return QPX_OK;
    default:
      return QPX_UNSUPPORTED;
  }
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t mbf_GetMatrix(const float** forward, const float** inverse, const void* record) {
  if (forward == nullptr || inverse == nullptr || record == nullptr) return QPX_BAD_PARAM;
  uint32_t format;
  std::memcpy(&format, record, sizeof format);

  const uint32_t model = format >> 28;
  if (model >= 1 && model <= 4) {
    *forward = *inverse = kIdentity;
    return QPX_OK;
  }
  const int32_t result = selectionResult(format);
  const MatrixPair& pair = kMatrices[result == QPX_OK ? colorimetry(format) : kDefaultColorimetry];
  *forward = pair.forward;
  *inverse = pair.inverse;
  return result;
}
