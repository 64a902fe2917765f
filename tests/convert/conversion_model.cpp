#include "convert/conversion_model.h"

#include <algorithm>
#include <cmath>

namespace qpx::testing {
namespace model {
namespace {

constexpr uint32_t kColours[] = {0x10001, 0x10002, 0x20001, 0x20002};

struct Row {
  uint32_t colour;
  int64_t value[9];
};

constexpr Row kToRgb[] = {
    {0x10002, {65536, 91881, 46802, 116130, 22554, 11760828, 8877496, 14864613}},
    {0x20002, {65536, 103206, 30677, 121609, 12275, 13210380, 5497894, 15565901}},
    {0x20001, {76605, 117952, 35062, 138982, 14031, 16323497, 5058226, 19015401}},
    {0x10001, {76605, 105048, 53510, 132796, 25788, 14671780, 8924535, 18223517}},
};

constexpr Row kToYuv[] = {
    {0x10002, {19595, 38470, 7471, 11058, 21710, 32768, 32768, 27439, 5329}},
    {0x20002, {13933, 46871, 4732, 7510, 25258, 32768, 32768, 29766, 3005}},
    {0x20001, {11921, 40095, 4050, 6573, 22099, 28672, 28672, 26044, 2629}},
    {0x10001, {16763, 32910, 6391, 9676, 18999, 28672, 28672, 24012, 4663}},
};

const int64_t* rowOf(const Row (&rows)[4], uint32_t colour) {
  for (const Row& row : rows) {
    if (row.colour == colour) return row.value;
  }
  return rows[3].value;
}

int32_t wrapped(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }

int64_t floorShift(int64_t value, int32_t bits) {
  const int64_t unit = int64_t{1} << bits;
  return value >= 0 ? value / unit : -((-value + unit - 1) / unit);
}

}  // namespace

int32_t qmul(int32_t a, int32_t b) {
  const int64_t m = std::abs(int64_t{b}), k = std::abs(int64_t{a});
  const int64_t byte3 = m / 16777216, byte2 = m / 65536 % 256, byte1 = m / 256 % 256,
                byte0 = m % 256;
  const int64_t sum = byte3 * k * 65536 + byte2 * k * 256 + byte1 * k + (byte0 * k + 128) / 256;
  return wrapped((a < 0) != (b < 0) ? -sum : sum);
}

int32_t gain(int32_t c) {
  const double halved = c < 0 ? std::floor(c / 2.0) : c;
  return static_cast<int32_t>((halved + 64) * 4);
}

int32_t slope(int32_t contrast, int32_t saturation, int32_t coefficient, bool isChroma) {
  const int32_t scaled = isChroma ? qmul(gain(saturation), coefficient) : coefficient;
  return qmul(gain(contrast), scaled);
}

int32_t offset(int32_t contrast, int32_t saturation, int32_t base, int32_t coefficient) {
  const int64_t c = static_cast<int64_t>(contrast < 0 ? std::floor(contrast / 2.0) : contrast);
  const int64_t s =
      static_cast<int64_t>(saturation < 0 ? std::floor(saturation / 2.0) : saturation);
  const int64_t t = base + floorShift(-(s * 4 * coefficient), 1);
  return wrapped(t + qmul(static_cast<int32_t>(-4 * c), static_cast<int32_t>(0x800000 - t)));
}

ToRgbTables toRgbTables(uint32_t colour, int32_t b, int32_t c, int32_t s, int32_t bitsPerPixel,
                        const int32_t (&bits)[3]) {
  const int64_t* k = rowOf(kToRgb, colour);
  const auto word = [](int64_t value) { return static_cast<int32_t>(value); };
  const int64_t ySlope = slope(c, s, word(k[0]), false);
  const int64_t rSlope = slope(c, s, word(k[1]), true);
  const int64_t rBase = offset(c, s, word(b * k[0] - k[5]), word(k[1]));
  const int64_t guSlope = slope(c, s, word(-k[4]), true);
  const int64_t gvSlope = slope(c, s, word(-k[2]), true);
  const int64_t gBase = offset(c, s, word(b * k[0] + k[6] + 32768), word(-k[4] - k[2]));
  const int64_t bSlope = slope(c, s, word(k[3]), true);
  const int64_t bBase = offset(c, s, word(b * k[0] - k[7]), word(k[3]));
  int64_t bias[3];
  for (int32_t i = 0; i < 3; ++i) {
    bias[i] = int64_t{512} << 16;
    if (bitsPerPixel == 16 && bits[i] == 5) bias[i] = int64_t{64} << (16 + 3);
    if (bitsPerPixel == 16 && bits[i] == 6) bias[i] = int64_t{288} << (16 + 2);
  }
  ToRgbTables t;
  int64_t y = 0, gu = 0, gv = gBase + bias[1], r = rBase + 32768 + bias[0],
          blue = bBase + 32768 + bias[2];
  for (int32_t i = 0; i < 256; ++i) {
    t.y.push_back(static_cast<uint32_t>(y * 16));
    t.u.push_back((static_cast<uint32_t>(floorShift(gu, 12)) & 0xFFFF) |
                  static_cast<uint32_t>(floorShift(wrapped(blue), 12)) << 16);
    t.v.push_back(static_cast<uint32_t>(floorShift(wrapped(r), 12)) << 16 |
                  (static_cast<uint32_t>(floorShift(gv, 12)) & 0xFFFF));
    y += ySlope;
    gu += guSlope;
    gv += gvSlope;
    r += rSlope;
    blue += bSlope;
  }
  return t;
}

std::vector<int32_t> toYuvTables(uint32_t colour) {
  const int64_t* k = rowOf(kToYuv, colour);
  std::vector<int32_t> t(2048);
  for (int32_t i = 0; i < 256; ++i) {
    const auto at = [&t, i](int32_t index, int64_t value) {
      t[static_cast<size_t>(index + i)] = static_cast<int32_t>(value);
    };
    at(0, i * k[0] + (colour % 2 == 1 ? 0x100000 : 0));
    at(256, i * k[1]);
    at(512, i * k[2]);
    at(768, -i * k[3]);
    at(1024, -i * k[4]);
    at(1280, 0x800000 + i * k[6]);
    at(1536, -i * k[7]);
    at(1792, -i * k[8]);
  }
  return t;
}

std::vector<uint8_t> colourLut(uint32_t from, uint32_t to, int32_t b, int32_t c, int32_t s) {
  int32_t yS, yB, cS, cB;
  if (from % 4 == 2 && to % 4 == 1) {
    yS = slope(c, s, 56066, false);
    yB = offset(c, s, (b + 16) * 65536, 0);
    cS = slope(c, s, 57344, true);
    cB = offset(c, s, 0x100000, 57344);
  } else if (from % 4 == 1 && to % 4 == 2) {
    yS = slope(c, s, 76608, false);
    yB = offset(c, s, b * 65536 + 1225728, 0);
    cS = slope(c, s, 74901, true);
    cB = offset(c, s, -1198372, 74901);
  } else {
    yS = slope(c, s, 65536, false);
    yB = offset(c, s, b * 65536, 0);
    cS = slope(c, s, 65536, true);
    cB = offset(c, s, 0, 65536);
  }
  std::vector<uint8_t> lut;
  for (const auto& [base, rise] : {std::pair{yB, yS}, std::pair{cB, cS}}) {
    for (int64_t i = 0; i < 256; ++i) {
      const int64_t value = floorShift(wrapped(int64_t{base} + 32768 + i * rise), 16);
      lut.push_back(static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255)));
    }
  }
  return lut;
}

uint32_t colourOf(uint32_t format) { return kColours[(format >> 12) & 3]; }

}  // namespace model

namespace {

using Kind = FormatLayout::Kind;

struct Pixel {
  int32_t c[3];
  int32_t alpha;
};

struct Place {
  int64_t first, second, fraction;
};

// One conversion: everything but the planes.
class Model {
 public:
  Model(const ConversionPicture& src, const ConvParams& params, int32_t srcWidth, int32_t srcHeight,
        int32_t dstWidth, int32_t dstHeight, ConversionPicture* dst)
      : src_(src), dst_(*dst), p_(params), dstWidth_(dstWidth), dstHeight_(dstHeight) {
    swap_ = (params.orient & 1) != 0;
    stepX_ = static_cast<int64_t>(double(srcWidth) / (swap_ ? dstHeight : dstWidth) * 65536);
    stepY_ = static_cast<int64_t>(double(srcHeight) / (swap_ ? dstWidth : dstHeight) * 65536);
    bilinear_ = params.interp == 2 && (stepX_ != 65536 || stepY_ != 65536);
    clip_ = {params.clipLeft, params.clipTop, params.clipRight, params.clipBottom};
    if (clip_.left == 0 && clip_.top == 0 && clip_.right == 0 && clip_.bottom == 0) {
      clip_ = {params.srcX, params.srcY, params.srcX + srcWidth, params.srcY + srcHeight};
    }
    makeTables();
  }

  void convert(const MRect& rect) {
    if (!swap_) return convertStrip(rect);
    for (int32_t top = rect.top; top < rect.bottom;) {
      int32_t bottom = top + (p_.blockHint == 4 ? 64 : 32);
      if (bottom >= rect.bottom) {
        bottom = rect.bottom;
      } else if (to().kind == Kind::yuv) {
        while (bottom % to().subY != 0) --bottom;
      }
      convertStrip({rect.left, top, rect.right, bottom});
      top = bottom;
    }
  }

 private:
  const FormatLayout& from() const { return src_.layout(); }
  const FormatLayout& to() const { return dst_.layout(); }
  bool fromRgb() const { return from().kind == Kind::rgb || from().kind == Kind::palette; }
  bool toRgb() const { return to().kind == Kind::rgb; }

  void makeTables() {
    const uint32_t srcColour = model::colourOf(src_.format());
    const uint32_t dstColour = model::colourOf(dst_.format());
    const bool grey = from().kind == Kind::grey;
    const int32_t b = p_.brightness, c = grey ? 0 : p_.contrast, s = grey ? 0 : p_.saturation;
    if (!fromRgb() && toRgb()) {
      toRgb_ = model::toRgbTables(srcColour, b, c, s, to().bits, to().width);
    } else if (fromRgb() && !toRgb()) {
      toYuv_ = model::toYuvTables(dstColour);
    } else if (!fromRgb() && (b != 0 || p_.contrast != 0 || p_.saturation != 0 ||
                              srcColour % 4 != dstColour % 4)) {
      lut_ = model::colourLut(srcColour, dstColour, b, c, s);
    }
  }

  // A column of the source.
  Place column(int64_t x, int64_t dstOrg) const {
    const int64_t half = stepX_ / 2 + 32768;
    const auto behind = [&](int64_t at) {
      return static_cast<int64_t>(
                 std::floor(double(half + (at - p_.srcX) * 65536) / double(stepX_))) +
             dstOrg;
    };
    if (x < behind(clip_.left)) return {clip_.left, clip_.left, 0};
    if (x >= behind(clip_.right - 1)) return {clip_.right - 1, clip_.right - 1, 0};
    const int64_t at = position(p_.srcX, stepX_, x - dstOrg);
    const int64_t whole = static_cast<int64_t>(std::floor(double(at) / 65536));
    const int64_t fraction = bilinear_ ? at - whole * 65536 : 0;
    return {whole, fraction != 0 ? whole + 1 : whole, fraction};
  }

  Place row(int64_t y, int64_t dstOrg) const {
    const int64_t at = position(p_.srcY, stepY_, y - dstOrg);
    if (at < clip_.top) return {clip_.top, clip_.top, 0};
    if (at / 65536 >= clip_.bottom - 1) return {clip_.bottom - 1, clip_.bottom - 1, 0};
    const int64_t fraction = bilinear_ ? at % 65536 : 0;
    return {at / 65536, at / 65536 + (fraction != 0 ? 1 : 0), fraction};
  }

  int64_t position(int64_t origin, int64_t step, int64_t distance) const {
    if (!bilinear_) return origin * 65536 + step * distance;
    return origin * 65536 - 32768 + step * (distance + 1) - step / 2;
  }

  const uint8_t* at(int32_t component, int64_t column, int64_t row) const {
    const FormatLayout& l = from();
    const bool chroma = component != 0;
    const int32_t plane = l.plane[component];
    const int64_t subX = chroma ? l.subX : 1, subY = chroma ? l.subY : 1;
    const int64_t index = !chroma && l.lumasExchanged ? column ^ 1 : column / subX;
    return src_.planes()[plane] + src_.pitches()[plane] * (row / subY) +
           l.step[chroma ? 1 : 0] * index + l.offset[component];
  }

  static int32_t mix(int64_t a, int64_t b, int64_t c, int64_t d, const Place& x, const Place& y) {
    const auto towards = [](int64_t from, int64_t to, int64_t fraction) {
      return static_cast<int64_t>(
          std::floor(double(from * 65536 + fraction * (to - from)) / 65536));
    };
    return static_cast<int32_t>(
        towards(towards(a, b, x.fraction), towards(c, d, x.fraction), y.fraction));
  }

  Pixel rgbAt(int64_t column, int64_t row) const {
    const FormatLayout& l = from();
    const uint8_t* line = src_.planes()[0] + src_.pitches()[0] * row;
    if (l.kind == Kind::palette) {
      int32_t index = 0;
      for (int64_t bit = column * l.bits; bit < (column + 1) * l.bits; ++bit) {
        index = index * 2 + (line[bit / 8] >> (7 - bit % 8)) % 2;
      }
      const uint8_t* entry = noisePalette() + 4 * index;
      return {{entry[2], entry[1], entry[0]}, 0};
    }
    uint64_t word = 0;
    for (int32_t k = l.bits / 8 - 1; k >= 0; --k) word = word * 256 + line[column * l.bits / 8 + k];
    Pixel pixel = {};
    for (int32_t i = 0; i < 3; ++i) {
      const auto field = static_cast<int32_t>(word >> l.lowest[i]) & ((1 << l.width[i]) - 1);
      pixel.c[i] = field << (8 - l.width[i]);
    }
    const bool topAlpha = l.lowest[0] == 0 || l.lowest[0] == 16;
    pixel.alpha = static_cast<int32_t>(topAlpha ? word >> 24 : word & 255);
    return pixel;
  }

  Pixel fetch(const Place& x, const Place& y) const {
    Pixel pixel = {};
    if (fromRgb()) {
      const Pixel a = rgbAt(x.first, y.first), b = rgbAt(x.second, y.first),
                  c = rgbAt(x.first, y.second), d = rgbAt(x.second, y.second);
      pixel.alpha = a.alpha;
      for (int32_t i = 0; i < 3; ++i) pixel.c[i] = mix(a.c[i], b.c[i], c.c[i], d.c[i], x, y);
      return pixel;
    }
    pixel.c[0] = mix(*at(0, x.first, y.first), *at(0, x.second, y.first), *at(0, x.first, y.second),
                     *at(0, x.second, y.second), x, y);
    for (int32_t i = 1; i < 3; ++i) {
      pixel.c[i] = from().kind == Kind::grey ? 128 : *at(i, x.first, y.first);
    }
    return pixel;
  }

  // Through clamp tables, each with its zero point.
  static int32_t lookUp(uint32_t sum, int32_t bits, bool sixteen) {
    const int64_t index = sum >> 20;
    if (sixteen && bits == 5) return static_cast<int32_t>(clampEntry(index / 8 - 64, 31)) * 8;
    if (sixteen && bits == 6) return static_cast<int32_t>(clampEntry(index / 4 - 288, 63)) * 4;
    return static_cast<int32_t>(clampEntry(index - 512, 255));
  }
  static int64_t clampEntry(int64_t value, int64_t most) {
    return std::clamp<int64_t>(value, 0, most);
  }

  void toColour(Pixel* pixel) {
    const auto i = [pixel](int32_t c) { return static_cast<size_t>(pixel->c[c]); };
    if (!toRgb_.y.empty()) {
      const uint32_t y = toRgb_.y[i(0)], u = toRgb_.u[i(1)], v = toRgb_.v[i(2)];
      const uint32_t sums[3] = {y + v, y + ((u + v) << 16), y + u};
      for (int32_t c = 0; c < 3; ++c) {
        uint32_t sum = sums[c];
        const int32_t bits = to().width[c];
        if (p_.dither != 0 && to().bits == 16) {
          sum += static_cast<uint32_t>(carry_[c]) << 20;
          carry_[c] = static_cast<int32_t>(sum >> 20) % (1 << (8 - bits));
        }
        pixel->c[c] = lookUp(sum, bits, to().bits == 16);
      }
    } else if (!toYuv_.empty()) {
      const auto t = [this](int32_t table, size_t index) {
        return toYuv_[static_cast<size_t>(table) + index];
      };
      const int32_t y = t(0, i(0)) + t(256, i(1)) + t(512, i(2));
      const int32_t u = t(768, i(0)) + t(1024, i(1)) + t(1280, i(2));
      const int32_t v = t(1280, i(0)) + t(1536, i(1)) + t(1792, i(2));
      const int32_t values[3] = {y, u, v};
      for (int32_t c = 0; c < 3; ++c) {
        pixel->c[c] = static_cast<int32_t>(std::floor(values[c] / 65536.0)) & 255;
      }
    } else if (!lut_.empty()) {
      for (int32_t c = 0; c < 3; ++c) pixel->c[c] = lut_[i(c) + (c == 0 ? 0 : 256)];
    }
  }

  void storeRgb(int64_t x, int64_t y, const Pixel& pixel) {
    const FormatLayout& l = to();
    uint64_t word = 0;
    for (int32_t c = 0; c < 3; ++c) {
      word |= static_cast<uint64_t>(pixel.c[c] >> (8 - l.width[c])) << l.lowest[c];
    }
    uint8_t* bytes = dst_.planes()[0] + dst_.pitches()[0] * y + l.bits / 8 * x;
    const int32_t alphaAt = (48 - l.lowest[0] - l.lowest[1] - l.lowest[2]) / 8;
    for (int32_t k = 0; k < l.bits / 8; ++k) {
      if (l.bits == 32 && k == std::min(alphaAt, 3)) {
        if (!fromRgb()) bytes[k] = static_cast<uint8_t>(p_.alpha);
        if (fromRgb() && from().bits == 32) bytes[k] = static_cast<uint8_t>(pixel.alpha);
      } else {
        bytes[k] = static_cast<uint8_t>(word >> (8 * k));
      }
    }
  }

  uint8_t* to(int32_t component, int64_t index, int64_t row) {
    const FormatLayout& l = to();
    const int32_t plane = l.plane[component];
    return dst_.planes()[plane] + dst_.pitches()[plane] * row +
           l.step[component == 0 ? 0 : 1] * index + l.offset[component];
  }

  void storeYuv(int64_t x, int64_t y, int64_t chromaX, const Pixel& pixel) {
    const FormatLayout& l = to();
    *to(0, l.lumasExchanged ? x ^ 1 : x, y) = static_cast<uint8_t>(pixel.c[0]);
    if (l.kind == Kind::grey) return;
    for (int32_t c = 1; c < 3; ++c) {
      *to(c, chromaX, y / l.subY) = static_cast<uint8_t>(pixel.c[c]);
    }
  }

  // Walks the strip as the source lies.
  void convertStrip(const MRect& strip) {
    for (int32_t c = 0; c < 3; ++c) carry_[c] = ((1 << (8 - to().width[c])) - 1) / 2;
    const bool mirrorX = (p_.orient & 2) != 0, mirrorY = (p_.orient & 4) != 0;
    const int32_t across = strip.right - strip.left, down = strip.bottom - strip.top;
    for (int32_t j = 0; j < (swap_ ? across : down); ++j) {
      for (int32_t i = 0; i < (swap_ ? down : across); ++i) {
        const int32_t alongX = swap_ ? j : i, alongY = swap_ ? i : j;
        const int32_t x = mirrorX ? strip.right - 1 - alongX : strip.left + alongX;
        const int32_t y = mirrorY ? strip.bottom - 1 - alongY : strip.top + alongY;
        // Mirrored inside the destination rectangle.
        const int32_t plainX = mirrorX ? 2 * p_.dstX + dstWidth_ - 1 - x : x;
        const int32_t plainY = mirrorY ? 2 * p_.dstY + dstHeight_ - 1 - y : y;
        const Place sx = column(swap_ ? plainY : plainX, swap_ ? p_.dstY : p_.dstX);
        const Place sy = row(swap_ ? plainX : plainY, swap_ ? p_.dstX : p_.dstY);
        Pixel pixel = fetch(sx, sy);
        toColour(&pixel);
        int32_t cell = x / to().subX;
        if (to().klass == 513 && !swap_) {
          cell = mirrorX ? (strip.right - 1) / 2 - i / 2 : strip.left / 2 + i / 2;
        }
        toRgb() ? storeRgb(x, y, pixel) : storeYuv(x, y, cell, pixel);
      }
    }
  }

  const ConversionPicture& src_;
  ConversionPicture& dst_;
  const ConvParams p_;
  const int32_t dstWidth_, dstHeight_;
  bool swap_ = false, bilinear_ = false;
  int64_t stepX_ = 0, stepY_ = 0;
  MRect clip_ = {};
  model::ToRgbTables toRgb_;
  std::vector<int32_t> toYuv_;
  std::vector<uint8_t> lut_;
  int32_t carry_[3] = {};
};

}  // namespace

void convertByModel(const ConversionPicture& src, const ConvParams& params, int32_t srcWidth,
                    int32_t srcHeight, int32_t dstWidth, int32_t dstHeight, const MRect& rect,
                    ConversionPicture* dst) {
  Model(src, params, srcWidth, srcHeight, dstWidth, dstHeight, dst).convert(rect);
}

}  // namespace qpx::testing
