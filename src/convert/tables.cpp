#include "convert/tables.h"

#include <algorithm>

#include "convert/format_decoder.h"

namespace qpx::convert {
namespace {

constexpr int32_t kMiddle = 0x800000;  // 128
constexpr int32_t kHalf = 32768;

constexpr int32_t halvedBelowZero(int32_t adjustment) {
  return adjustment < 0 ? adjustment >> 1 : adjustment;
}

// Sums and products of the tables wrap.
constexpr int32_t wrapAdd(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
constexpr int32_t wrapMul(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
constexpr uint32_t magnitude(int32_t a) {
  return a < 0 ? 0u - static_cast<uint32_t>(a) : static_cast<uint32_t>(a);
}

struct Adjustment {
  int32_t brightness, contrast, saturation;
};

// Grey has no chroma to saturate, and keeps its tones.
Adjustment adjustmentOf(const ConvRecord& record) {
  const ConvParams& params = record.params;
  if (record.src.klass == kGrey) return {params.brightness, 0, 0};
  return {params.brightness, params.contrast, params.saturation};
}

struct ToRgb {
  int32_t yGain, vToR, vToG, uToB, uToG, rOff, gOff, bOff;
};

constexpr ToRgb kBt601FullToRgb = {65536, 91881, 46802, 116130, 22554, 11760828, 8877496, 14864613};
constexpr ToRgb kBt709FullToRgb = {65536, 103206,   30677,   121609,
                                   12275, 13210380, 5497894, 15565901};
constexpr ToRgb kBt709VideoToRgb = {76605, 117952,   35062,   138982,
                                    14031, 16323497, 5058226, 19015401};
constexpr ToRgb kBt601VideoToRgb = {76605, 105048,   53510,   132796,
                                    25788, 14671780, 8924535, 18223517};

const ToRgb& toRgbOf(uint32_t colour) {
  switch (colour) {
    case kBt601Full:
      return kBt601FullToRgb;
    case kBt709Full:
      return kBt709FullToRgb;
    case kBt709Video:
      return kBt709VideoToRgb;
    default:
      return kBt601VideoToRgb;
  }
}

// A block begins with clamp tables, of bytes; three tables of 256 words follow.
struct ToRgbLayout {
  size_t bytes;
  uint32_t yIndex, uIndex, vIndex;
};
constexpr ToRgbLayout kEightBitLayout = {4352, 320, 576, 832};
constexpr ToRgbLayout kSixteenBitLayout = {3552, 120, 376, 632};

const ToRgbLayout& toRgbLayout(const ConvRecord& record) {
  return record.dstPlane.bitsPerPixel == 16 ? kSixteenBitLayout : kEightBitLayout;
}

void fillClamp(int32_t entries, int32_t zero, int32_t most, uint8_t* table) {
  for (int32_t j = 0; j < entries; ++j) {
    table[j] = static_cast<uint8_t>(std::clamp(j - zero, 0, most));
  }
}

void fillClamps(const ConvRecord& record, uint8_t* block) {
  if (record.dstPlane.bitsPerPixel == 16) {
    fillClamp(160, 64, 31, block);
    fillClamp(320, 128, 63, block + 160);
  } else {
    fillClamp(1280, 512, 255, block);
  }
}

void fillYuvToRgb(ConvRecord* record) {
  const ToRgbLayout& layout = toRgbLayout(*record);
  record->yIndex = layout.yIndex;
  record->uIndex = layout.uIndex;
  record->vIndex = layout.vIndex;
  fillClamps(*record, static_cast<uint8_t*>(record->tables));

  const ToRgbLines lines = toRgbLines(*record);
  auto* const words = static_cast<uint32_t*>(record->tables);
  const auto highHalf = [](int32_t value) { return static_cast<uint32_t>(value >> 12) << 16; };
  const auto lowHalf = [](int32_t value) { return static_cast<uint32_t>(value >> 12) & 0xFFFF; };
  for (int32_t i = 0; i < 256; ++i) {
    words[layout.yIndex + i] = static_cast<uint32_t>(wrapMul(i, lines.ySlope)) << 4;
    words[layout.uIndex + i] = lowHalf(wrapMul(i, lines.guSlope)) |
                               highHalf(wrapAdd(lines.bBase, wrapMul(i, lines.bSlope)));
    words[layout.vIndex + i] = highHalf(wrapAdd(lines.rBase, wrapMul(i, lines.rSlope))) |
                               lowHalf(wrapAdd(lines.gBase, wrapMul(i, lines.gvSlope)));
  }
}

constexpr size_t kRgbToYuvBytes = 8192;

struct ToYuv {
  int32_t yR, yG, yB, uR, uG, uB, vR, vG, vB;
};

constexpr ToYuv kRgbToBt601Full = {19595, 38470, 7471, 11058, 21710, 32768, 32768, 27439, 5329};
constexpr ToYuv kRgbToBt709Full = {13933, 46871, 4732, 7510, 25258, 32768, 32768, 29766, 3005};
constexpr ToYuv kRgbToBt709Video = {11921, 40095, 4050, 6573, 22099, 28672, 28672, 26044, 2629};
constexpr ToYuv kRgbToBt601Video = {16763, 32910, 6391, 9676, 18999, 28672, 28672, 24012, 4663};

const ToYuv& toYuvOf(uint32_t colour) {
  switch (colour) {
    case kBt601Full:
      return kRgbToBt601Full;
    case kBt709Full:
      return kRgbToBt709Full;
    case kBt709Video:
      return kRgbToBt709Video;
    default:
      return kRgbToBt601Video;
  }
}

void fillRgbToYuv(ConvRecord* record) {
  const ToYuv& m = toYuvOf(record->dst.colour);
  const int32_t black = isVideoRange(record->dst.colour) ? 0x100000 : 0;
  auto* const words = static_cast<int32_t*>(record->tables);
  for (int32_t i = 0; i < 256; ++i) {
    words[kRedToY + i] = i * m.yR + black;
    words[kGreenToY + i] = i * m.yG;
    words[kBlueToY + i] = i * m.yB;
    words[kRedToU + i] = -i * m.uR;
    words[kGreenToU + i] = -i * m.uG;
    words[kBlueToU + i] = kMiddle + i * m.vR;
    words[kGreenToV + i] = -i * m.vG;
    words[kBlueToV + i] = -i * m.vB;
  }
}

constexpr size_t kLutBytes = 512;

struct Line {
  int32_t base, slope;
};

struct LutLines {
  Line luma, chroma;
};

// The luma constant of the second case is added although black moves down: bright tones clip.
LutLines lutLines(ConvRecord* record) {
  const auto [b, c, s] = adjustmentOf(*record);
  uint32_t& from = record->src.colour;
  uint32_t& to = record->dst.colour;
  if (isFullRange(from) && isVideoRange(to)) {
    return {{offset(c, s, (b + 16) * 65536, 0), slope(c, s, 56066, false)},
            {offset(c, s, 0x100000, 57344), slope(c, s, 57344, true)}};
  }
  if (isVideoRange(from) && isFullRange(to)) {
    return {{offset(c, s, b * 65536 + 1225728, 0), slope(c, s, 76608, false)},
            {offset(c, s, -1198372, 74901), slope(c, s, 74901, true)}};
  }
  from = (from & ~3u) | 1;
  to = (to & ~3u) | 1;
  return {{offset(c, s, b * 65536, 0), slope(c, s, 65536, false)},
          {offset(c, s, 0, 65536), slope(c, s, 65536, true)}};
}

void fillLine(const Line& line, uint8_t* table) {
  for (int32_t i = 0; i < 256; ++i) {
    const int32_t value = wrapAdd(wrapAdd(line.base, kHalf), wrapMul(i, line.slope)) >> 16;
    table[i] = static_cast<uint8_t>(std::clamp(value, 0, 255));
  }
}

void fillLut(ConvRecord* record) {
  const LutLines lines = lutLines(record);
  auto* const bytes = static_cast<uint8_t*>(record->tables);
  fillLine(lines.luma, bytes);
  fillLine(lines.chroma, bytes + kChromaLut);
}

}  // namespace

int32_t qmul(int32_t a, int32_t b) {
  const uint32_t m = magnitude(b), k = magnitude(a);
  const uint32_t product = (((m >> 24) * k) << 16) + ((((m >> 16) & 255) * k) << 8) +
                           ((m >> 8) & 255) * k + (((m & 255) * k + 128) >> 8);
  return static_cast<int32_t>((a < 0) != (b < 0) ? 0u - product : product);
}

int32_t gain(int32_t adjustment) { return (halvedBelowZero(adjustment) + 64) * 4; }

int32_t slope(int32_t contrast, int32_t saturation, int32_t coefficient, bool isChroma) {
  return qmul(gain(contrast), isChroma ? qmul(gain(saturation), coefficient) : coefficient);
}

int32_t offset(int32_t contrast, int32_t saturation, int32_t base, int32_t coefficient) {
  const int32_t taken = wrapMul(halvedBelowZero(saturation) * 4, coefficient);
  const int32_t t = wrapAdd(base, wrapMul(taken, -1) >> 1);
  return wrapAdd(t, qmul(-4 * halvedBelowZero(contrast), wrapAdd(kMiddle, wrapMul(t, -1))));
}

ToRgbLines toRgbLines(const ConvRecord& record) {
  const ToRgb& m = toRgbOf(record.src.colour);
  const auto [b, c, s] = adjustmentOf(record);
  const int32_t lift = wrapMul(b, m.yGain);
  const auto biased = [&record](int32_t base, int32_t bits) {
    const uint32_t bias = channelBias(bits, record.dstPlane.bitsPerPixel) << 16;
    return wrapAdd(base, static_cast<int32_t>(bias));
  };
  return {
      slope(c, s, m.yGain, false),
      slope(c, s, m.vToR, true),
      biased(wrapAdd(offset(c, s, wrapAdd(lift, -m.rOff), m.vToR), kHalf), record.dstBitsR),
      slope(c, s, -m.uToG, true),
      slope(c, s, -m.vToG, true),
      biased(offset(c, s, wrapAdd(lift, m.gOff + kHalf), -m.uToG - m.vToG), record.dstBitsG),
      slope(c, s, m.uToB, true),
      biased(wrapAdd(offset(c, s, wrapAdd(lift, -m.bOff), m.uToB), kHalf), record.dstBitsB),
  };
}

size_t tableBytesOf(const ConvRecord& record) {
  switch (record.convKind) {
    case kYuvToYuv:
      return record.useLut != 0 ? kLutBytes : 0;
    case kYuvToRgb:
      return toRgbLayout(record).bytes;
    case kRgbToYuv:
      return kRgbToYuvBytes;
    default:
      return 0;
  }
}

void fillTables(ConvRecord* record) {
  if (record->convKind == kYuvToYuv && record->useLut != 0) fillLut(record);
  if (record->convKind == kYuvToRgb) fillYuvToRgb(record);
  if (record->convKind == kRgbToYuv) fillRgbToYuv(record);
}

}  // namespace qpx::convert
